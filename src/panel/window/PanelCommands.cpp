// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelCommands.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"
#include "platform/SerialQueue.h"
#include "platform/qt/QtClipboard.h"
#include "platform/qt/QtDesktopFiles.h"
#include "shell/Toast.h"
#include "store/NoteText.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

namespace Vesko {

namespace {

SerialQueue &exportQueue()
{
    static SerialQueue *const queue = new SerialQueue(QStringLiteral("com.vesko.vesko.export"));
    return *queue;
}

std::optional<QString> attachmentFile(const NoteAttachment &attachment)
{
    return AttachmentStore::pathInside(attachmentsFolder(libraryURL()), attachment.storedFileName);
}

} // namespace

PanelCommands::PanelCommands(QObject *parent)
    : QObject(parent)
{ }

PanelCommands::~PanelCommands() = default;

PanelCommands &PanelCommands::shared()
{
    static PanelCommands *const commands = new PanelCommands;
    return *commands;
}

void PanelCommands::setHooks(Hooks hooks)
{
    m_hooks = std::move(hooks);
}

Clipboard &PanelCommands::clipboard()
{
    if (!m_clipboard)
        m_clipboard = std::make_unique<QtClipboard>();
    return *m_clipboard;
}

void PanelCommands::openNoteWindow(const QUuid &noteID) const
{
    if (m_hooks.openNoteWindow)
        m_hooks.openNoteWindow(noteID);
}

void PanelCommands::openSettings() const
{
    if (m_hooks.openSettings)
        m_hooks.openSettings();
}

void PanelCommands::quit() const
{
    if (m_hooks.quit)
        m_hooks.quit();
    else
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
}

void PanelCommands::resetPanelPosition() const
{
    if (m_hooks.resetPanelPosition)
        m_hooks.resetPanelPosition();
}

void PanelCommands::resetPanelSize() const
{
    if (m_hooks.resetPanelSize)
        m_hooks.resetPanelSize();
}

void PanelCommands::addAttachments(const QUuid &noteID) const
{
    if (m_hooks.addAttachments)
        m_hooks.addAttachments(noteID);
}

void PanelCommands::pasteAttachments(const QUuid &noteID) const
{
    if (m_hooks.pasteAttachments)
        m_hooks.pasteAttachments(noteID);
}

void PanelCommands::chooseFiles(std::function<void(const QList<QUrl> &)> done) const
{
    if (m_hooks.chooseFiles)
        m_hooks.chooseFiles(std::move(done));
    else
        done({});
}

void PanelCommands::importForNewNote(const QList<QUrl> &urls,
    std::function<void(const std::optional<QList<NoteAttachment>> &)> done) const
{
    if (m_hooks.importForNewNote) {
        m_hooks.importForNewNote(urls, std::move(done));
        return;
    }
    ToastPresenter::shared().present(
        tr("Could Not Add Attachment"), QStringLiteral("exclamationmark.triangle"));
    done(std::nullopt);
}

QtDesktopFiles &PanelCommands::desktopFiles()
{
    // The same instance as the attachment tiles use: one way to open and show files.
    return QtDesktopFiles::shared();
}

namespace {

void toastNoFileManager()
{
    ToastPresenter::shared().present(
        DesktopFileMessages::noFileManager(), DesktopFileMessages::symbol());
}

} // namespace

void PanelCommands::openAttachment(const NoteAttachment &attachment)
{
    const std::optional<QString> file = attachmentFile(attachment);
    if (!file)
        return;
    desktopFiles().open(*file, [name = attachment.fileName] {
        ToastPresenter::shared().present(
            DesktopFileMessages::noApplication(name), DesktopFileMessages::symbol());
    });
}

void PanelCommands::revealAttachment(const NoteAttachment &attachment)
{
    if (const std::optional<QString> file = attachmentFile(attachment))
        desktopFiles().reveal(*file, toastNoFileManager);
}

void PanelCommands::showInFileManager(const QString &path)
{
    shared().desktopFiles().reveal(path, toastNoFileManager);
}

void PanelCommands::revealLibraryFile()
{
    desktopFiles().reveal(libraryURL(), toastNoFileManager);
}

void PanelCommands::exportMarkdown(const QString &text, QWidget *parent)
{
    if (m_exportDialog) {
        m_exportDialog->raise();
        m_exportDialog->activateWindow();
        return;
    }
    auto *dialog = new QFileDialog(parent, tr("Export as Markdown"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters({tr("Markdown (*.md)"), tr("Plain text (*.txt)")});
    dialog->setDefaultSuffix(QStringLiteral("md"));
    dialog->setDirectory(QDir::homePath());
    dialog->selectFile(QString::fromLatin1(TextOutMessages::exportFileName));
    m_exportDialog = dialog;
    QPointer<QWidget> owner(parent);
    connect(dialog, &QFileDialog::fileSelected, this,
        [this, text, owner](const QString &path) { writeExport(text, path, owner); });
    dialog->open();
}

void PanelCommands::writeExport(const QString &text, const QString &path, QWidget *parent)
{
    QPointer<QWidget> owner(parent);
    exportQueue().async([this, text, path, owner] {
        const QString failure = writeMarkdownExport(text, path).value_or(QString());
        QMetaObject::invokeMethod(this, [this, path, failure, owner] {
            if (failure.isEmpty()) {
                ToastPresenter::shared().present(
                    QCoreApplication::translate("TextOut", TextOutMessages::exported),
                    QString::fromLatin1(TextOutMessages::exportedSymbol));
            } else {
                auto *alert = new QMessageBox(QMessageBox::Warning, tr("Export as Markdown"),
                    tr("The notes could not be exported to “%1”.").arg(path), QMessageBox::Ok,
                    owner);
                alert->setInformativeText(failure);
                alert->setAttribute(Qt::WA_DeleteOnClose);
                alert->open();
            }
            Q_EMIT exportFinished(path, failure);
        });
    });
}

} // namespace Vesko
