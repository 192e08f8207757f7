// SPDX-License-Identifier: GPL-3.0-or-later
//
// "vesko mcp": the notes for AI agents over the Model Context Protocol,
// JSON-RPC 2.0 messages, one a line, on standard input and output. Its tools
// list, search and add notes and mark them done; each becomes one request
// to the running Vesko, so an agent changes nothing but through the Store.

#pragma once

#include <QIODevice>
#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>

namespace Vesko {

class McpServer
{
public:
    //! The protocol revisions this server speaks, newest first.
    static QStringList protocolVersions();

    //! Serves with \a send handing a request (see NoteRequests) to the
    //! running Vesko and returning its answer.
    explicit McpServer(std::function<QJsonObject(const QJsonObject &)> send);

    //! The answer to one message, or nothing for a notification.
    std::optional<QJsonObject> handle(const QJsonObject &message);
    //! The answer to one line of input: a parse error for what is no JSON object.
    std::optional<QByteArray> handleLine(const QByteArray &line);

    //! The longest line read as one message; a longer one is skipped.
    static constexpr qint64 maximumLineLength = 8 * 1024 * 1024;
    //! Reads standard input to its end, answering on standard output. Returns the exit status.
    int serve();
    //! Reads \a input to its end, answering on \a output; lines longer than
    //! \a maximumLength bytes get a parse error. Returns the exit status.
    int serve(QIODevice &input, QIODevice &output, qint64 maximumLength = maximumLineLength);

private:
    QJsonObject callTool(const QString &name, const QJsonObject &arguments);

    std::function<QJsonObject(const QJsonObject &)> m_send;
};

} // namespace Vesko
