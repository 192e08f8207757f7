// SPDX-License-Identifier: GPL-3.0-or-later
//
// File permissions that hold in tests run as root: the calling thread's
// file access runs as the user nobody (the file-system user and group ids
// are the thread's own, and threads started meanwhile inherit them), so that
// a file without read permission really cannot be read.

#pragma once

#include <QFile>
#include <QFileInfo>
#include <QString>

#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vesko::Test {

class FileAccessAsNobody
{
public:
    //! The user nobody and the group nogroup.
    static constexpr uid_t nobody = 65534;
    static constexpr gid_t nogroup = 65534;

    FileAccessAsNobody()
    {
        if (::geteuid() != 0)
            return;
        // The group too: with root's group, a folder's group bits would apply.
        m_previousGroup = ::setfsgid(nogroup);
        m_previousUser = ::setfsuid(nobody);
    }
    ~FileAccessAsNobody()
    {
        if (m_previousUser >= 0)
            ::setfsuid(uid_t(m_previousUser));
        if (m_previousGroup >= 0)
            ::setfsgid(gid_t(m_previousGroup));
    }
    FileAccessAsNobody(const FileAccessAsNobody &) = delete;
    FileAccessAsNobody &operator=(const FileAccessAsNobody &) = delete;

private:
    int m_previousUser = -1;
    int m_previousGroup = -1;
};

//! Lets nobody reach \a path through its folders up to \a top (each gains
//! the others' search permission) and, when \a writable, create files in
//! \a path itself, which then belongs to nobody.
inline void letNobodyIn(const QString &path, const QString &top, bool writable)
{
    for (QString folder = path; folder.startsWith(top); folder = QFileInfo(folder).absolutePath()) {
        struct stat info;
        const QByteArray name = QFile::encodeName(folder);
        if (::stat(name.constData(), &info) == 0)
            ::chmod(name.constData(), (info.st_mode & 07777) | S_IXOTH);
        if (folder == top)
            break;
    }
    if (writable && ::geteuid() == 0) {
        const QByteArray name = QFile::encodeName(path);
        [[maybe_unused]] const int ignored
            = ::chown(name.constData(), FileAccessAsNobody::nobody, gid_t(-1));
    }
}

} // namespace Vesko::Test
