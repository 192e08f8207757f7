// SPDX-License-Identifier: GPL-3.0-or-later
//
// The attachment actions of the program over a given Store, with the
// desktop's own file dialog, clipboard and file manager; the toasts they
// would show are only kept in toasts. For programs that draw or measure the
// list with attachments and for the list's tests (link vesko_widgets).
// ScriptedAttachmentActions: the same over stand-ins that answer at once.

#pragma once

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentFileDialog.h"
#include "attachments/AttachmentStore.h"
#include "attachments/ThumbnailCache.h"
#include "platform/qt/QtDesktopFiles.h"
#include "platform/DesktopFiles.h"
#include "platform/FileChooser.h"
#include "platform/Pasteboard.h"
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

//! The file dialog answers with chosen, the clipboard holds nothing, and the
//! files opened and revealed are only recorded.
struct ScriptedAttachmentActions : AttachmentFeedback, FileChooser, PasteboardReader, DesktopFiles
{
    ScriptedAttachmentActions(Store &store, AttachmentStore &files)
        : actions({store, files, *this, *this, *this, *this})
    { }
    void toast(const QString &message, const QString &) override { toasts.append(message); }
    void chooseFiles(std::function<void(const QList<QUrl> &)> done) override { done(chosen); }
    void readPasteboard(std::function<void(const PasteboardContent &)> done) override { done({}); }
    void open(const QString &path, Unhandled) override { opened.append(path); }
    void reveal(const QString &path, Unhandled) override { revealed.append(path); }

    QList<QUrl> chosen;
    QStringList toasts;
    QStringList opened;
    QStringList revealed;
    AttachmentActions actions;
};

} // namespace Vesko::Test
