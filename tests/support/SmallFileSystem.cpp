// SPDX-License-Identifier: GPL-3.0-or-later

#include "SmallFileSystem.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

namespace Vesko::Test {

namespace {

QString fillerPath(const QString &folder)
{
    return folder + QStringLiteral("/.filler");
}

} // namespace

SmallFileSystem::SmallFileSystem(const QString &folder, int kibibytes)
    : m_folder(folder)
    , m_options("size=" + QByteArray::number(kibibytes) + "k,mode=0700")
{
    QDir().mkpath(folder);
    const QByteArray &options = m_options;
    if (::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", MS_NOSUID | MS_NODEV,
            options.constData())
        == 0) {
        m_mounted = true;
    } else {
        m_failure = QString::fromLocal8Bit(std::strerror(errno));
    }
}

SmallFileSystem::~SmallFileSystem()
{
    if (m_mounted)
        ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
}

bool SmallFileSystem::fill()
{
    const int fd = ::open(QFile::encodeName(fillerPath(m_folder)).constData(),
        O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    const QByteArray block(4096, 'f');
    bool full = false;
    // Whole pages first, then single bytes for what is left of the last one.
    for (qsizetype size : {qsizetype(4096), qsizetype(1)}) {
        while (true) {
            const ssize_t written = ::write(fd, block.constData(), size_t(size));
            if (written < 0) {
                full = errno == ENOSPC;
                break;
            }
        }
    }
    ::fsync(fd);
    ::close(fd);
    return full;
}

void SmallFileSystem::release()
{
    QFile::remove(fillerPath(m_folder));
}

bool SmallFileSystem::setReadOnly(bool readOnly)
{
    const unsigned long flags = MS_REMOUNT | MS_NOSUID | MS_NODEV | (readOnly ? MS_RDONLY : 0);
    return ::mount("tmpfs", QFile::encodeName(m_folder).constData(), "tmpfs", flags,
               m_options.constData())
        == 0;
}

} // namespace Vesko::Test
