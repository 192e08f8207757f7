// SPDX-License-Identifier: GPL-3.0-or-later
//
// The attachment actions of the program over a given Store, with the
// desktop's own file dialog, clipboard and file manager; the toasts they
// would show are only kept in toasts. For programs that draw or measure the
// list with attachments and for the list's tests (link vesko_widgets).

#pragma once

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentFileDialog.h"
#include "attachments/AttachmentStore.h"
#include "attachments/ThumbnailCache.h"
#include "platform/qt/QtDesktopFiles.h"
#include "platform/qt/QtPasteboardReader.h"

namespace Vesko::Test {

struct SilentAttachmentActions : AttachmentFeedback
{
    SilentAttachmentActions(Store &store, AttachmentStore &files)
        : actions({store, files, chooser, pasteboard, desktop, *this})
    { }
    void toast(const QString &message, const QString &) override { toasts.append(message); }

    AttachmentFileDialog chooser;
    QtPasteboardReader pasteboard;
    QtDesktopFiles desktop;
    AttachmentActions actions;
    ThumbnailCache thumbnails;
    QStringList toasts;
};

} // namespace Vesko::Test
