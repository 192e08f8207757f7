// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user does with attachments, from every place that offers it:
// choosing files, pasting, dropping, opening, showing in the file manager
// and removing, each answered by the toasts the user expects. The desktop's
// services come in through small interfaces, so that all of it runs headless
// in tests.

#pragma once

#include "attachments/AttachmentStore.h"
#include "library/Library.h"

#include <QObject>
#include <QUrl>

#include <functional>
#include <optional>

namespace Vesko {

class DesktopFiles;
class FileChooser;
class PasteboardReader;
class Store;

//! How attachment actions answer the user: the toast.
class AttachmentFeedback
{
public:
    virtual ~AttachmentFeedback() = default;
    virtual void toast(const QString &message, const QString &symbol) = 0;
};

class AttachmentActions : public QObject
{
    Q_OBJECT

public:
    struct Services
    {
        Store &store;
        AttachmentStore &files;
        FileChooser &chooser;
        PasteboardReader &pasteboard;
        DesktopFiles &desktop;
        AttachmentFeedback &feedback;
    };

    explicit AttachmentActions(const Services &services, QObject *parent = nullptr);
    ~AttachmentActions() override;

    Store &store() const { return m_store; }

    //! The folder of the attachment files, beside the library file.
    QString attachmentsFolder() const;
    //! The file of \a attachment, found from its name alone (nothing is read
    //! from the disk), or nothing when the name leads outside the folder.
    std::optional<QString> filePath(const NoteAttachment &attachment) const;
    std::optional<QString> filePath(const NoteAttachment &attachment, const QString &folder) const;

    // -- the pieces ---------------------------------------------------------------

    //! The dialog "Add Attachments": several files, no folders. Hands the
    //! chosen files to \a done, or an empty list.
    void chooseFiles(std::function<void(const QList<QUrl> &files)> done);
    //! Makes attachments of what the clipboard holds: its files are imported,
    //! an image is written as "Pasted Image.png". No records and no error
    //! means the clipboard held nothing usable.
    void pasteAttachments(std::function<void(const ImportResult &result)> done);
    void openAttachment(const NoteAttachment &attachment);
    void revealAttachment(const NoteAttachment &attachment);
    void removeAttachment(const QUuid &attachmentID, const QUuid &noteID);

    // -- the entry points, each with its toasts --------------------------------------

    //! "Add Attachment…" of a note: the dialog, then the import.
    void addChosenFiles(const QUuid &noteID);
    //! "Paste Image or File" of a note.
    void pasteIntoNote(const QUuid &noteID);
    //! Files dropped on a note. True when there were files to import.
    bool dropFiles(const QList<QUrl> &files, const QUuid &noteID);
    //! The files of a note not yet written: imported for it, with the toast on
    //! failure. \a done gets the records, or nothing after a failure.
    void importForNewNote(const QList<QUrl> &files,
        std::function<void(const std::optional<QList<NoteAttachment>> &attachments)> done);

private:
    //! Imports into a note; \a announcesSuccess adds the toast "Attachment Added".
    void importIntoNote(const QList<QUrl> &files, const QUuid &noteID, bool announcesSuccess);
    void toastAddFailed();

    Store &m_store;
    AttachmentStore &m_files;
    FileChooser &m_chooser;
    PasteboardReader &m_pasteboard;
    DesktopFiles &m_desktop;
    AttachmentFeedback &m_feedback;
};

} // namespace Vesko
