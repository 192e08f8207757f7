// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>

#include <optional>

namespace Vesko {

namespace {

const QByteArray reopenMessage = QByteArrayLiteral("reopen\n");

} // namespace

SingleInstance::SingleInstance(const QString &serverName, QObject *parent)
    : QObject(parent)
    , m_serverName(serverName)
{ }

SingleInstance::~SingleInstance() = default;

QString SingleInstance::serverNameForSession()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QByteArray hash
        = QCryptographicHash::hash(data.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    return folder + QStringLiteral("/vesko-") + QString::fromLatin1(hash)
        + QStringLiteral(".socket");
}

bool SingleInstance::forwardReopen(int timeoutMilliseconds) const
{
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(timeoutMilliseconds))
        return false;
    socket.write(reopenMessage);
    if (!socket.waitForBytesWritten(timeoutMilliseconds))
        return false;
    // The running instance closes the connection once it has read the message.
    socket.waitForDisconnected(timeoutMilliseconds);
    return true;
}

std::optional<QString> SingleInstance::listen()
{
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::readConnection);
    if (m_server->listen(m_serverName))
        return std::nullopt;
    if (m_server->serverError() == QAbstractSocket::AddressInUseError && !forwardReopen(500)) {
        // Left behind by a process that ended without closing it.
        QLocalServer::removeServer(m_serverName);
        if (m_server->listen(m_serverName))
            return std::nullopt;
    }
    return m_server->errorString();
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
