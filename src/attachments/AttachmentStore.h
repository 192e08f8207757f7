// SPDX-License-Identifier: GPL-3.0-or-later
//
// The files of attachments, in the "Attachments" folder beside the library:
// one folder per attachment, named by a UUID, holding the file. All file work
// runs on one worker thread, one job at a time.

#pragma once

#include "library/Library.h"

#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace Vesko {

class SerialQueue;

class AttachmentStore
{
public:
    AttachmentStore();
    ~AttachmentStore();

    //! The one attachment store of the process, made on first use and never destroyed.
    static AttachmentStore &shared();

    //! Deletes the files of \a attachments below \a folder in the background,
    //! and each folder that this leaves empty, but never the attachments
    //! folder itself. Nothing outside \a folder is ever touched, whatever the
    //! records say. Failures are ignored.
    void removeFiles(const QList<NoteAttachment> &attachments, const QString &folder);

    //! Reports of copyFolder(), on the main thread.
    using CopyProgress = std::function<void(qint64 copiedBytes, qint64 totalBytes)>;
    using CopyCompletion = std::function<void(std::optional<QString> failure)>;

    //! Copies the attachment folder \a from into \a to in the background, a
    //! piece of each file at a time, keeping files already there and copying
    //! links as links (see mergeAttachmentFolder()). \a progress and
    //! \a completion run on the main thread unless \a context has gone.
    void copyFolder(const QString &from, const QString &to, QObject *context, CopyProgress progress,
        CopyCompletion completion);

    //! Removes the file at \a oldLibrary and its attachment folder in the
    //! background, unless they are the same as those of \a newLibrary. After a move.
    void removeMovedLibrary(const QString &oldLibrary, const QString &newLibrary);

    //! Blocks until the jobs queued so far are done.
    void waitForIdle();

    //! The file of \a storedFileName below \a folder, or nothing when the name
    //! leads outside the folder, by "..", or through a link to elsewhere.
    static std::optional<QString> fileInside(const QString &folder, const QString &storedFileName);

private:
    std::unique_ptr<SerialQueue> m_queue;
};

} // namespace Vesko
