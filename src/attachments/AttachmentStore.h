// SPDX-License-Identifier: GPL-3.0-or-later
//
// The files of attachments, in the "Attachments" folder beside the library:
// one folder per attachment, named by a UUID, holding the file. All file work
// runs on one worker thread, one job at a time.

#pragma once

#include "library/Library.h"

#include <memory>
#include <optional>

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

    //! Blocks until the jobs queued so far are done.
    void waitForIdle();

    //! The file of \a storedFileName below \a folder, or nothing when the name
    //! leads outside the folder, by "..", or through a link to elsewhere.
    static std::optional<QString> fileInside(const QString &folder, const QString &storedFileName);

private:
    std::unique_ptr<SerialQueue> m_queue;
};

} // namespace Vesko
