// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/FileSystem.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vesko::FileSystem {

namespace {

QByteArray native(const QString &path)
{
    return QFile::encodeName(path);
}

int retryOnInterrupt(auto call)
{
    int result;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

// Closes a descriptor when it goes out of scope.
class Descriptor
{
public:
    explicit Descriptor(int fd)
        : m_fd(fd)
    { }
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return m_fd; }
    // Closes now and reports whether the close succeeded.
    bool close()
    {
        const int fd = m_fd;
        m_fd = -1;
        return ::close(fd) == 0;
    }

private:
    int m_fd;
};

bool writeAll(int fd, const char *data, qsizetype size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        size -= written;
    }
    return true;
}

// The largest piece a copy moves in one call, and the buffer of a copy that
// has to go through user space.
constexpr qint64 copyPieceBytes = 8 * 1024 * 1024;
constexpr qint64 copyBufferBytes = 1024 * 1024;

// Copies [offset, end) of \a in to the same place in \a out, a piece at a
// time: inside the kernel where it can, else through one buffer. Reaching the
// source's end early stops without failing. With \a startWriteback each
// piece starts on its way to the disk at once, so that the final flush finds
// little left to write.
bool copyRange(
    int in, int out, qint64 offset, qint64 end, bool &inKernel, const PieceCopyOptions &options)
{
    const std::function<bool()> &shouldContinue = options.shouldContinue;
    auto pieceWritten = [&](qint64 from, qint64 length) {
        if (options.durability == Durability::Flushed)
            ::sync_file_range(out, from, length, SYNC_FILE_RANGE_WRITE);
        if (options.progress && !options.progress(length)) {
            errno = ECANCELED;
            return false;
        }
        return true;
    };
    QByteArray buffer;
    while (offset < end) {
        if (shouldContinue && !shouldContinue()) {
            errno = ECANCELED;
            return false;
        }
        const qint64 length = std::min(end - offset, inKernel ? copyPieceBytes : copyBufferBytes);
        if (inKernel) {
            loff_t from = offset;
            loff_t to = offset;
            const ssize_t copied = ::copy_file_range(in, &from, out, &to, size_t(length), 0);
            if (copied > 0) {
                if (!pieceWritten(offset, copied))
                    return false;
                offset += copied;
                continue;
            }
            if (copied == 0)
                return true;
            if (errno == EINTR)
                continue;
            // Not between these two files: copy through user space instead.
            if (errno != EXDEV && errno != ENOSYS && errno != EINVAL && errno != EOPNOTSUPP)
                return false;
            inKernel = false;
            continue;
        }
        if (buffer.isEmpty())
            buffer.resize(copyBufferBytes);
        const ssize_t read = ::pread(in, buffer.data(), size_t(length), offset);
        if (read < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (read == 0)
            return true;
        qsizetype written = 0;
        while (written < read) {
            const ssize_t n = ::pwrite(
                out, buffer.constData() + written, size_t(read - written), offset + written);
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                return false;
            }
            written += n;
        }
        if (!pieceWritten(offset, read))
            return false;
        offset += read;
    }
    return true;
}

} // namespace

QString lastErrorText()
{
    return qt_error_string(errno);
}

std::optional<QString> makePath(const QString &path)
{
    const QString clean = QDir::cleanPath(QDir(path).absolutePath());
    struct stat info;
    if (::stat(native(clean).constData(), &info) == 0) {
        if (S_ISDIR(info.st_mode))
            return std::nullopt;
        return QObject::tr("“%1” exists and is not a folder.").arg(clean);
    }
    if (errno != ENOENT)
        return QObject::tr("Could not open the folder “%1”: %2.").arg(clean, lastErrorText());
    const qsizetype slash = clean.lastIndexOf(u'/');
    if (slash > 0) {
        if (auto error = makePath(clean.left(slash)))
            return error;
    }
    if (::mkdir(native(clean).constData(), privateDirectoryMode) != 0 && errno != EEXIST)
        return QObject::tr("Could not create the folder “%1”: %2.").arg(clean, lastErrorText());
    // mkdir applies the umask; private means private whatever the umask is.
    ::chmod(native(clean).constData(), privateDirectoryMode);
    return std::nullopt;
}

std::optional<QString> writeNewFile(
    const QString &path, const Producer &produce, Durability durability, unsigned mode)
{
    const QByteArray name = native(path);
    Descriptor fd(retryOnInterrupt(
        [&] { return ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode); }));
    if (fd.get() < 0)
        return QObject::tr("Could not create “%1”: %2.").arg(path, lastErrorText());

    // Takes the message with the file's name and the system's reason to fill in.
    auto failed = [&](const QString &message) {
        const QString text = message.arg(path, lastErrorText());
        ::unlink(name.constData());
        return text;
    };
    if (::fchmod(fd.get(), mode) != 0)
        return failed(QObject::tr("Could not set the permissions of “%1”: %2."));
    const int descriptor = fd.get();
    if (!produce([descriptor](const char *data, qsizetype size) {
            return writeAll(descriptor, data, size);
        }))
        return failed(QObject::tr("Could not write “%1”: %2."));
    if (durability == Durability::Flushed && ::fsync(fd.get()) != 0)
        return failed(QObject::tr("Could not flush “%1”: %2."));
    if (!fd.close())
        return failed(QObject::tr("Could not close “%1”: %2."));
    return std::nullopt;
}

std::optional<QString> writeNewFile(
    const QString &path, const QByteArray &bytes, Durability durability, unsigned mode)
{
    return writeNewFile(
        path, [&bytes](const ByteSink &sink) { return sink(bytes.constData(), bytes.size()); },
        durability, mode);
}

std::optional<QString> replaceFile(const QString &from, const QString &to)
{
    if (::rename(native(from).constData(), native(to).constData()) != 0)
        return QObject::tr("Could not replace “%1”: %2.").arg(to, lastErrorText());
    syncDirectory(QFileInfo(to).absolutePath());
    return std::nullopt;
}

std::optional<QString> renameWithoutReplacing(const QString &from, const QString &to)
{
    // A hard link fails when the name is taken, which makes the check and the
    // rename one step; the old name is dropped once the new one exists.
    const QByteArray source = native(from);
    const QByteArray target = native(to);
    if (::link(source.constData(), target.constData()) != 0) {
        if (errno == EEXIST)
            return QObject::tr("“%1” already exists.").arg(to);
        // Without hard links (some file systems), check and rename.
        if (exists(to))
            return QObject::tr("“%1” already exists.").arg(to);
        if (::rename(source.constData(), target.constData()) != 0)
            return QObject::tr("Could not rename “%1”: %2.").arg(from, lastErrorText());
        return std::nullopt;
    }
    ::unlink(source.constData());
    syncDirectory(QFileInfo(to).absolutePath());
    return std::nullopt;
}

std::optional<QString> copyFileKeepingDate(
    const QString &from, const QString &to, const CopyOptions &options)
{
    // The copy comes into being whole or not at all: an interrupted copy
    // leaves a hidden partial file, never a short file under the real name.
    const QFileInfo target(to);
    const QByteArray partial = native(target.absolutePath() + QStringLiteral("/.")
        + target.fileName() + QStringLiteral(".partial"));
    ::unlink(partial.constData());
    PieceCopyOptions pieces;
    pieces.followLinks = options.followsLinks;
    pieces.keepDate = true;
    pieces.durability = options.durability;
    pieces.progress = options.progress;
    if (auto error = copyFileInPieces(from, QFile::decodeName(partial), pieces))
        return error;
    if (::rename(partial.constData(), native(to).constData()) != 0) {
        const QString error = QObject::tr("Could not create “%1”: %2.").arg(to, lastErrorText());
        ::unlink(partial.constData());
        return error;
    }
    return std::nullopt;
}

std::optional<QString> copySymbolicLink(const QString &from, const QString &to)
{
    QByteArray target(4096, Qt::Uninitialized);
    const ssize_t length
        = ::readlink(native(from).constData(), target.data(), size_t(target.size()));
    if (length < 0 || length >= target.size())
        return QObject::tr("Could not read the link “%1”: %2.").arg(from, lastErrorText());
    target.truncate(length);
    if (::symlink(target.constData(), native(to).constData()) != 0)
        return QObject::tr("Could not create the link “%1”: %2.").arg(to, lastErrorText());
    return std::nullopt;
}

std::optional<QString> makePrivateFile(const QString &path)
{
    Descriptor fd(retryOnInterrupt([&] {
        return ::open(native(path).constData(), O_RDONLY | O_CREAT | O_CLOEXEC, privateFileMode);
    }));
    if (fd.get() < 0)
        return QObject::tr("Could not create “%1”: %2.").arg(path, lastErrorText());
    if (::fchmod(fd.get(), privateFileMode) != 0)
        return QObject::tr("Could not set the permissions of “%1”: %2.").arg(path, lastErrorText());
    return std::nullopt;
}

std::optional<QString> copyFileInPieces(
    const QString &from, const QString &to, const PieceCopyOptions &options)
{
    const QByteArray source = native(from);
    const int noFollow = options.followLinks ? 0 : O_NOFOLLOW;
    // Opened without waiting: a pipe or a device put where the file was
    // would otherwise hold the open until another program writes to it.
    Descriptor in(retryOnInterrupt(
        [&] { return ::open(source.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | noFollow); }));
    if (in.get() < 0) {
        if (errno == ELOOP && noFollow)
            return QObject::tr("“%1” is a link.").arg(from);
        return QObject::tr("Could not read “%1”: %2.").arg(from, lastErrorText());
    }
    struct stat info;
    if (::fstat(in.get(), &info) != 0)
        return QObject::tr("Could not read “%1”: %2.").arg(from, lastErrorText());
    if (!S_ISREG(info.st_mode))
        return QObject::tr("“%1” is not a file.").arg(from);
    const int flags = ::fcntl(in.get(), F_GETFL);
    if (flags < 0 || ::fcntl(in.get(), F_SETFL, flags & ~O_NONBLOCK) != 0)
        return QObject::tr("Could not read “%1”: %2.").arg(from, lastErrorText());

    const QByteArray target = native(to);
    Descriptor out(retryOnInterrupt([&] {
        return ::open(target.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateFileMode);
    }));
    if (out.get() < 0)
        return QObject::tr("Could not create “%1”: %2.").arg(to, lastErrorText());
    auto failed = [&](const QString &text) {
        ::unlink(target.constData());
        return text;
    };
    if (::fchmod(out.get(), privateFileMode) != 0)
        return failed(
            QObject::tr("Could not set the permissions of “%1”: %2.").arg(to, lastErrorText()));

    // Only the parts of the source that hold data are copied; the holes
    // between them stay holes, and the final size is set at the end.
    const qint64 size = info.st_size;
    bool inKernel = true;
    qint64 offset = 0;
    while (offset < size) {
        qint64 data = ::lseek(in.get(), offset, SEEK_DATA);
        if (data < 0) {
            if (errno == ENXIO)
                break; // a hole up to the end
            data = offset; // no hole lookup on this file system: all data
        }
        qint64 hole = ::lseek(in.get(), data, SEEK_HOLE);
        if (hole < 0 || hole > size)
            hole = size;
        if (!copyRange(in.get(), out.get(), data, hole, inKernel, options)) {
            if (errno == ECANCELED)
                return failed(QObject::tr("The copy of “%1” was cancelled.").arg(from));
            return failed(
                QObject::tr("Could not copy “%1” to “%2”: %3.").arg(from, to, lastErrorText()));
        }
        offset = hole;
    }
    if (::ftruncate(out.get(), size) != 0)
        return failed(QObject::tr("Could not write “%1”: %2.").arg(to, lastErrorText()));
    if (options.keepDate) {
        const timespec times[2] = {info.st_atim, info.st_mtim};
        ::futimens(out.get(), times);
    }
    if (options.durability == Durability::Flushed && ::fsync(out.get()) != 0)
        return failed(QObject::tr("Could not flush “%1”: %2.").arg(to, lastErrorText()));
    if (!out.close())
        return failed(QObject::tr("Could not close “%1”: %2.").arg(to, lastErrorText()));
    return std::nullopt;
}

std::optional<timespec> modificationTime(const QString &path)
{
    struct stat info;
    if (::lstat(native(path).constData(), &info) != 0)
        return std::nullopt;
    return info.st_mtim;
}

void syncDirectory(const QString &path)
{
    Descriptor fd(retryOnInterrupt(
        [&] { return ::open(native(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (fd.get() >= 0)
        ::fsync(fd.get());
}

bool exists(const QString &path)
{
    struct stat info;
    return ::lstat(native(path).constData(), &info) == 0;
}

} // namespace Vesko::FileSystem
