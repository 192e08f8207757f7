// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SingleInstance.h"

#include "platform/FileSystem.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vesko {

namespace {

const QByteArray reopenMessage = QByteArrayLiteral("reopen\n");

// A folder of the user's own that nobody else may enter.
bool isPrivateFolder(const QString &path, bool followsLinks)
{
    struct stat info;
    const QByteArray name = QFile::encodeName(path);
    const int result
        = followsLinks ? ::stat(name.constData(), &info) : ::lstat(name.constData(), &info);
    return result == 0 && S_ISDIR(info.st_mode) && info.st_uid == ::geteuid()
        && (info.st_mode & 077) == 0;
}

// The name shared by the lock and the socket of one data folder.
QString instanceName()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QByteArray hash
        = QCryptographicHash::hash(data.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    return QStringLiteral("vesko-") + QString::fromLatin1(hash);
}

} // namespace

SingleInstance::SingleInstance(const QString &folder, QObject *parent)
    : QObject(parent)
    , m_folder(folder)
{
    if (!m_folder.isEmpty()) {
        m_socketPath = m_folder + u'/' + instanceName() + QStringLiteral(".socket");
        m_lockPath = m_folder + u'/' + instanceName() + QStringLiteral(".lock");
    }
}

SingleInstance::~SingleInstance()
{
    if (m_lock >= 0)
        ::close(m_lock); // releases the lock
}

QString SingleInstance::privateFolder()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir::isAbsolutePath(runtime) && isPrivateFolder(runtime, true))
        return QDir::cleanPath(runtime);

    // Without one, a folder in the user's own cache: never a shared folder
    // such as /tmp, where another user could take the name first.
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (cache.isEmpty())
        return {};
    const QString folder = cache + QStringLiteral("/Vesko/Instance");
    if (FileSystem::makePath(folder))
        return {};
    if (!isPrivateFolder(folder, false)) {
        // Made by an older version, or by hand: closed to others if it is ours.
        struct stat info;
        const QByteArray name = QFile::encodeName(folder);
        if (::lstat(name.constData(), &info) == 0 && S_ISDIR(info.st_mode)
            && info.st_uid == ::geteuid())
            ::chmod(name.constData(), FileSystem::privateDirectoryMode);
        if (!isPrivateFolder(folder, false))
            return {};
    }
    return folder;
}

QString SingleInstance::serverNameForSession()
{
    const QString folder = privateFolder();
    return folder.isEmpty() ? QString()
                            : folder + u'/' + instanceName() + QStringLiteral(".socket");
}

SingleInstance::Claim SingleInstance::claim()
{
    if (m_lock >= 0)
        return Claim::Acquired;
    if (m_folder.isEmpty()) {
        m_failure = tr("There is no private folder for the instance lock.");
        return Claim::Failed;
    }
    const QByteArray name = QFile::encodeName(m_lockPath);
    // Not inherited by programs that Vesko starts: the lock ends with this process.
    const int fd = ::open(
        name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, FileSystem::privateFileMode);
    if (fd < 0) {
        m_failure = tr("Could not open “%1”: %2.").arg(m_lockPath, FileSystem::lastErrorText());
        return Claim::Failed;
    }
    int result;
    do {
        result = ::flock(fd, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0) {
        m_lock = fd;
        return Claim::Acquired;
    }
    const bool held = errno == EWOULDBLOCK;
    if (!held)
        m_failure = tr("Could not lock “%1”: %2.").arg(m_lockPath, FileSystem::lastErrorText());
    ::close(fd);
    return held ? Claim::HeldElsewhere : Claim::Failed;
}

std::optional<QString> SingleInstance::listen()
{
    Q_ASSERT(m_lock >= 0);
    m_server = new QLocalServer(this);
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::readConnection);
    // Whoever holds the lock owns the socket's name: anything there was left
    // by a process that ended without closing it.
    QLocalServer::removeServer(m_socketPath);
    if (m_server->listen(m_socketPath))
        return std::nullopt;
    return m_server->errorString();
}

bool SingleInstance::forwardReopen(int timeoutMilliseconds) const
{
    if (m_socketPath.isEmpty())
        return false;
    const QDeadlineTimer deadline(timeoutMilliseconds);
    while (true) {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        if (socket.waitForConnected(int(std::max<qint64>(1, deadline.remainingTime())))) {
            socket.write(reopenMessage);
            if (!socket.waitForBytesWritten(int(std::max<qint64>(1, deadline.remainingTime()))))
                return false;
            // The running instance closes the connection once it has read the message.
            socket.waitForDisconnected(int(std::max<qint64>(1, deadline.remainingTime())));
            return true;
        }
        // The process holding the lock may not listen yet: it has just started.
        if (deadline.hasExpired())
            return false;
        QThread::msleep(20);
    }
}

void SingleInstance::readConnection()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        auto readMessage = [this, socket] {
            if (!socket->canReadLine())
                return;
            const QByteArray line = socket->readLine();
            socket->disconnectFromServer();
            if (line == reopenMessage)
                Q_EMIT reopenRequested();
        };
        connect(socket, &QLocalSocket::readyRead, this, readMessage);
        readMessage();
    }
}

} // namespace Vesko
