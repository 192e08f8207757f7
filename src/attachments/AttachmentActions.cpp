// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentActions.h"

#include "platform/DesktopFiles.h"
#include "platform/FileChooser.h"
#include "platform/Logging.h"
#include "platform/Pasteboard.h"
#include "store/Store.h"

#include <QPointer>

namespace Vesko {

namespace {

const QString warningSymbol = QStringLiteral("exclamationmark.triangle");

void logFailure(const ImportResult &result)
{
    if (result.error)
        qCCritical(lcStorage, "Attachment failed: %s", qUtf8Printable(*result.error));
}

} // namespace

AttachmentActions::AttachmentActions(const Services &services, QObject *parent)
    : QObject(parent)
    , m_store(services.store)
    , m_files(services.files)
    , m_chooser(services.chooser)
    , m_pasteboard(services.pasteboard)
    , m_desktop(services.desktop)
    , m_feedback(services.feedback)
{ }

AttachmentActions::~AttachmentActions() = default;

QString AttachmentActions::attachmentsFolder() const
{
    return m_store.currentAttachmentsFolder();
}

std::optional<QString> AttachmentActions::filePath(const NoteAttachment &attachment) const
{
    return filePath(attachment, attachmentsFolder());
}

std::optional<QString> AttachmentActions::filePath(
    const NoteAttachment &attachment, const QString &folder) const
{
    return AttachmentStore::pathInside(folder, attachment.storedFileName);
}

void AttachmentActions::chooseFiles(std::function<void(const QList<QUrl> &files)> done)
{
    QPointer<AttachmentActions> guard(this);
    m_chooser.chooseFiles([guard, done = std::move(done)](const QList<QUrl> &files) {
        if (guard && done)
            done(files);
    });
}

void AttachmentActions::pasteAttachments(std::function<void(const ImportResult &result)> done)
{
    QPointer<AttachmentActions> guard(this);
    m_pasteboard.readPasteboard([guard, done = std::move(done)](const PasteboardContent &content) {
        if (!guard)
            return;
        if (content.fileURLs.isEmpty() && content.png.isEmpty()) {
            done(ImportResult {});
            return;
        }
        // During a move of the library the files wait for its end.
        guard->m_store.whenAttachmentsFolderSettled(
            guard.data(), [guard, content, done](const QString &folder) {
                if (!content.fileURLs.isEmpty())
                    guard->m_files.importFiles(content.fileURLs, folder, guard.data(), done);
                else
                    guard->m_files.writePastedImage(content.png, folder, guard.data(), done);
            });
    });
}

void AttachmentActions::openAttachment(const NoteAttachment &attachment)
{
    const std::optional<QString> path = filePath(attachment);
    if (!path)
        return;
    QPointer<AttachmentActions> guard(this);
    m_desktop.open(*path, [guard, name = attachment.fileName] {
        if (guard)
            guard->m_feedback.toast(
                DesktopFileMessages::noApplication(name), DesktopFileMessages::symbol());
    });
}

void AttachmentActions::revealAttachment(const NoteAttachment &attachment)
{
    const std::optional<QString> path = filePath(attachment);
    if (!path)
        return;
    QPointer<AttachmentActions> guard(this);
    m_desktop.reveal(*path, [guard] {
        if (guard)
            guard->m_feedback.toast(
                DesktopFileMessages::noFileManager(), DesktopFileMessages::symbol());
    });
}

void AttachmentActions::removeAttachment(const QUuid &attachmentID, const QUuid &noteID)
{
    m_store.removeAttachment(attachmentID, noteID);
}

void AttachmentActions::addChosenFiles(const QUuid &noteID)
{
    chooseFiles([this, noteID](const QList<QUrl> &files) {
        if (!files.isEmpty())
            importIntoNote(files, noteID, false);
    });
}

void AttachmentActions::pasteIntoNote(const QUuid &noteID)
{
    pasteAttachments([this, noteID](const ImportResult &result) {
        logFailure(result);
        if (!result.succeeded())
            m_feedback.toast(tr("Could Not Paste Attachment"), warningSymbol);
        else if (result.attachments.isEmpty())
            m_feedback.toast(tr("No Image or File to Paste"), QStringLiteral("clipboard"));
        else
            m_store.addAttachments(result.attachments, noteID);
    });
}

bool AttachmentActions::dropFiles(const QList<QUrl> &files, const QUuid &noteID)
{
    if (files.isEmpty())
        return false;
    importIntoNote(files, noteID, true);
    return true;
}

void AttachmentActions::importForNewNote(const QList<QUrl> &files,
    std::function<void(const std::optional<QList<NoteAttachment>> &attachments)> done)
{
    m_store.whenAttachmentsFolderSettled(
        this, [this, files, done = std::move(done)](const QString &folder) {
            m_files.importFiles(files, folder, this, [this, done](const ImportResult &result) {
                logFailure(result);
                if (!result.succeeded())
                    toastAddFailed();
                if (done)
                    done(result.succeeded() ? std::optional(result.attachments) : std::nullopt);
            });
        });
}

void AttachmentActions::importIntoNote(
    const QList<QUrl> &files, const QUuid &noteID, bool announcesSuccess)
{
    QPointer<AttachmentActions> guard(this);
    m_store.importAttachments(files, noteID, [guard, announcesSuccess](const ImportResult &result) {
        if (!guard)
            return;
        logFailure(result);
        if (!result.succeeded())
            guard->toastAddFailed();
        else if (announcesSuccess)
            guard->m_feedback.toast(tr("Attachment Added"), QStringLiteral("paperclip"));
    });
}

void AttachmentActions::toastAddFailed()
{
    m_feedback.toast(tr("Could Not Add Attachment"), warningSymbol);
}

} // namespace Vesko
