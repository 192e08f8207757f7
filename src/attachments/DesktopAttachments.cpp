// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/DesktopAttachments.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentFileDialog.h"
#include "library/LibraryFile.h"
#include "panel/window/PanelCommands.h"
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
    static AttachmentActions *const actions = new AttachmentActions({Store::shared(),
        AttachmentStore::shared(), *chooser, *pasteboard, QtDesktopFiles::shared(), *feedback});
    return *actions;
}

void installAttachmentCommands(PanelCommands &commands)
{
    PanelCommands::Hooks hooks = commands.hooks();
    hooks.addAttachments = [](const QUuid &noteID) { attachmentActions().addChosenFiles(noteID); };
    hooks.pasteAttachments = [](const QUuid &noteID) { attachmentActions().pasteIntoNote(noteID); };
    hooks.chooseFiles = [](std::function<void(const QList<QUrl> &)> done) {
        attachmentActions().chooseFiles(std::move(done));
    };
    hooks.importForNewNote
        = [](const QList<QUrl> &urls,
              std::function<void(const std::optional<QList<NoteAttachment>> &)> done) {
              attachmentActions().importForNewNote(urls, std::move(done));
          };
    commands.setHooks(hooks);
}

} // namespace Vesko
