// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/DesktopAttachments.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentFileDialog.h"
#include "platform/qt/QtDesktopFiles.h"
#include "platform/qt/QtPasteboardReader.h"
#include "shell/Toast.h"
#include "store/Store.h"

namespace Vesko {

namespace {

class ToastFeedback : public AttachmentFeedback
{
public:
    void toast(const QString &message, const QString &symbol) override
    {
        ToastPresenter::shared().present(message, symbol);
    }
};

} // namespace

AttachmentActions &attachmentActions()
{
    static ToastFeedback *const feedback = new ToastFeedback;
    static AttachmentFileDialog *const chooser = new AttachmentFileDialog;
    static QtPasteboardReader *const pasteboard = new QtPasteboardReader;
    static QtDesktopFiles *const desktop = new QtDesktopFiles;
    static AttachmentActions *const actions = new AttachmentActions(
        {Store::shared(), AttachmentStore::shared(), *chooser, *pasteboard, *desktop, *feedback});
    return *actions;
}

} // namespace Vesko
