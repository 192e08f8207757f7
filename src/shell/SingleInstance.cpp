// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SingleInstance.h"

#include "library/LibraryFile.h"
#include "platform/FileSystem.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QStandardPaths>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Vesko {

namespace {

const QByteArray reopenMessage = QByteArrayLiteral("reopen\n");
const QByteArray answerMessage = QByteArrayLiteral("ok\n");
//! The longest request line that the socket takes: a note of the longest
//! kind, every character escaped.
constexpr qint64 maximumRequestBytes = 16 << 20;
//! How often a held lock is tried again while it may be let go.
constexpr int claimRetryMilliseconds = 20;

// A folder of the user's own that nobody else may enter.
bool isPrivateFolder(const QString &path)
{
    struct stat info;
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode)
        && info.st_uid == ::geteuid() && (info.st_mode & 077) == 0;
}

// Makes \a path (its parent exists) a private folder of the user's own, or
// says that it cannot be one: a folder of that name that belongs to another
// user, or a link, is never used.
bool makePrivateFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), FileSystem::privateDirectoryMode) != 0 && errno != EEXIST)
        return false;
    struct stat info;
    if (::lstat(name.constData(), &info) != 0 || !S_ISDIR(info.st_mode)
        || info.st_uid != ::geteuid())
        return false;
    // Made by an older version, by hand or under another umask: closed to others.
    if ((info.st_mode & 077) != 0)
        ::chmod(name.constData(), FileSystem::privateDirectoryMode);
    return isPrivateFolder(path);
}

// The user's runtime folder of the system, or "vesko-UID" in the temporary
// folder: both short enough for a socket's address.
QString shortPrivateFolder(const QString &runtimeRoot, const QString &temporaryRoot)
{
    const QString uid = QString::number(::geteuid());
    const QString runtime = runtimeRoot + u'/' + uid;
    if (isPrivateFolder(runtime))
        return runtime;
    const QString temporary = temporaryRoot + QStringLiteral("/vesko-") + uid;
    if (makePrivateFolder(temporary))
        return temporary;
    return {};
}

// Whether a socket's address holds \a path.
bool fitsSocketAddress(const QString &path)
{
    return QFile::encodeName(path).size() < qsizetype(sizeof(sockaddr_un::sun_path));
}

} // namespace

SingleInstance::SingleInstance(const QString &libraryPath, const QString &folder, QObject *parent)
    : QObject(parent)
    , m_folder(folder)
{
    setName(instanceName(libraryPath));
}

SingleInstance::~SingleInstance()
{
    if (m_lock >= 0)
        ::close(m_lock); // releases the lock
}

void SingleInstance::setName(const QString &name)
{
    m_name = name;
    if (m_folder.isEmpty())
        return;
    m_lockPath = m_folder + u'/' + name + QStringLiteral(".lock");
    m_socketPath = m_folder + u'/' + name + QStringLiteral(".socket");
    if (!fitsSocketAddress(m_socketPath)) {
        const QString shorter
            = shortPrivateFolder(QStringLiteral("/run/user"), QStringLiteral("/tmp"));
        if (!shorter.isEmpty())
            m_socketPath = shorter + u'/' + name + QStringLiteral(".socket");
    }
}

QString SingleInstance::privateFolder(const QString &runtimeRoot, const QString &temporaryRoot)
{
    const QString folder = shortPrivateFolder(runtimeRoot, temporaryRoot);
    if (!folder.isEmpty())
        return folder;
    // The names in the temporary folder are taken by another user: a folder
    // in the user's own cache, never a shared one.
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (cache.isEmpty())
        return {};
    const QString instances = cache + QStringLiteral("/Vesko/Instance");
    if (FileSystem::makePath(QFileInfo(instances).absolutePath()) || !makePrivateFolder(instances))
        return {};
    return instances;
}

QString SingleInstance::privateFolder()
{
    return privateFolder(QStringLiteral("/run/user"), QStringLiteral("/tmp"));
}

QString SingleInstance::instanceName(const QString &libraryPath)
{
    const QByteArray hash = QCryptographicHash::hash(
        canonicalLocation(libraryPath).toUtf8(), QCryptographicHash::Sha256)
                                .toHex()
                                .left(16);
    return QStringLiteral("vesko-") + QString::fromLatin1(hash);
}

int SingleInstance::lockFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    // Not inherited by programs that Vesko starts: the lock ends with this process.
    const int fd = ::open(
        name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, FileSystem::privateFileMode);
    if (fd < 0)
        return -1;
    int result;
    do {
        result = ::flock(fd, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0)
        return fd;
    const int error = errno;
    ::close(fd);
    errno = error;
    return -1;
}

SingleInstance::Claim SingleInstance::claim()
{
    if (m_lock >= 0)
        return Claim::Acquired;
    if (m_folder.isEmpty()) {
        m_failure = tr("There is no private folder for the instance lock.");
        return Claim::Failed;
    }
    m_lock = lockFile(m_lockPath);
    if (m_lock >= 0)
        return Claim::Acquired;
    if (errno == EWOULDBLOCK)
        return Claim::HeldElsewhere;
    m_failure = tr("Could not lock “%1”: %2.").arg(m_lockPath, FileSystem::lastErrorText());
    return Claim::Failed;
}

SingleInstance::Claim SingleInstance::claimWithin(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    while (true) {
        const Claim result = claim();
        if (result != Claim::HeldElsewhere || deadline.hasExpired())
            return result;
        QThread::msleep(claimRetryMilliseconds);
    }
}

std::optional<QString> SingleInstance::listen()
{
    Q_ASSERT(m_lock >= 0);
    if (!m_server) {
        m_server = new QLocalServer(this);
        connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::readConnection);
    }
    // Whoever holds the lock owns the socket's name: anything there was left
    // by a process that ended without closing it.
    QLocalServer::removeServer(m_socketPath);
    if (m_server->listen(m_socketPath))
        return std::nullopt;
    return m_server->errorString();
}

bool SingleInstance::followLibrary(const QString &libraryPath)
{
    const QString name = instanceName(libraryPath);
    if (name == m_name)
        return true;
    if (m_lock < 0 || m_folder.isEmpty()) {
        setName(name);
        return true;
    }
    const int lock = lockFile(m_folder + u'/' + name + QStringLiteral(".lock"));
    if (lock < 0)
        return false;
    ::close(m_lock);
    m_lock = lock;
    const bool wasListening = m_server && m_server->isListening();
    if (m_server)
        m_server->close(); // removes the old socket
    setName(name);
    if (wasListening)
        listen();
    return true;
}

bool SingleInstance::forwardReopen(int timeoutMilliseconds) const
{
    if (m_socketPath.isEmpty())
        return false;
    const QDeadlineTimer deadline(timeoutMilliseconds);
    auto remaining = [&deadline] { return int(std::max<qint64>(1, deadline.remainingTime())); };
    while (true) {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        if (socket.waitForConnected(remaining())) {
            socket.write(reopenMessage);
            if (!socket.waitForBytesWritten(remaining()))
                return false;
            // A running instance answers once its event loop has read the
            // message; one that is ending closes the connection unanswered.
            while (!socket.canReadLine()) {
                if (!socket.waitForReadyRead(remaining()))
                    return false;
            }
            return socket.readLine() == answerMessage;
        }
        // The process holding the lock may not listen yet: it has just started.
        if (deadline.hasExpired())
            return false;
        QThread::msleep(claimRetryMilliseconds);
    }
}

void SingleInstance::readConnection()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        auto readMessage = [this, socket] {
            if (!socket->canReadLine()) {
                if (socket->bytesAvailable() > maximumRequestBytes)
                    socket->abort();
                return;
            }
            const QByteArray line = socket->readLine();
            if (line != reopenMessage && m_requestHandler) {
                QPointer<QLocalSocket> guarded(socket);
                m_requestHandler(
                    line.chopped(line.endsWith('\n') ? 1 : 0), [guarded](const QByteArray &answer) {
                        if (!guarded)
                            return;
                        guarded->write(answer + '\n');
                        guarded->disconnectFromServer();
                    });
                return;
            }
            if (line == reopenMessage)
                socket->write(answerMessage);
            socket->disconnectFromServer();
            if (line == reopenMessage)
                Q_EMIT reopenRequested();
        };
        connect(socket, &QLocalSocket::readyRead, this, readMessage);
        readMessage();
    }
}

std::optional<QByteArray> SingleInstance::sendRequest(
    const QByteArray &line, int timeoutMilliseconds) const
{
    if (m_socketPath.isEmpty())
        return std::nullopt;
    const QDeadlineTimer deadline(timeoutMilliseconds);
    auto remaining = [&deadline] { return int(std::max<qint64>(1, deadline.remainingTime())); };
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(remaining()))
        return std::nullopt;
    socket.write(line + '\n');
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(remaining()))
            return std::nullopt;
    }
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(remaining()))
            return std::nullopt;
    }
    QByteArray answer = socket.readLine();
    answer.chop(1);
    return answer;
}

} // namespace Vesko
