// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/McpServer.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace Vesko {

namespace {

constexpr int parseError = -32700;
constexpr int invalidRequest = -32600;
constexpr int methodNotFound = -32601;
constexpr int invalidParams = -32602;

QJsonObject property(const char *type, const QString &description)
{
    return {{QStringLiteral("type"), QLatin1String(type)},
        {QStringLiteral("description"), description}};
}

QJsonObject tool(const char *name, const QString &title, const QString &description,
    const QJsonObject &properties, const QStringList &required)
{
    QJsonObject schema {{QStringLiteral("type"), QStringLiteral("object")},
        {QStringLiteral("properties"), properties},
        {QStringLiteral("additionalProperties"), false}};
    if (!required.isEmpty())
        schema.insert(QStringLiteral("required"), QJsonArray::fromStringList(required));
    return {{QStringLiteral("name"), QLatin1String(name)}, {QStringLiteral("title"), title},
        {QStringLiteral("description"), description}, {QStringLiteral("inputSchema"), schema}};
}

QJsonArray tools()
{
    const QJsonObject project = property(
        "string", QStringLiteral("The project's name; the active project when left out."));
    const QJsonObject section = property("string", QStringLiteral("The section's title."));
    QJsonObject ids = property(
        "array", QStringLiteral("The ids of the notes, as list_notes and search_notes give them."));
    ids.insert(
        QStringLiteral("items"), QJsonObject {{QStringLiteral("type"), QStringLiteral("string")}});
    ids.insert(QStringLiteral("minItems"), 1);
    return {
        tool("list_notes", QStringLiteral("List notes"),
            QStringLiteral(
                "Lists the notes of a project, section by section: open ones, or done ones too."),
            {{QStringLiteral("project"), project}, {QStringLiteral("section"), section},
                {QStringLiteral("includeDone"),
                    property("boolean", QStringLiteral("Also list the notes marked done."))}},
            {}),
        tool("search_notes", QStringLiteral("Search notes"),
            QStringLiteral(
                "Finds the notes of a project whose text or section title contains the query."),
            {{QStringLiteral("query"),
                 property("string", QStringLiteral("What to look for; case does not matter."))},
                {QStringLiteral("project"), project}},
            {QStringLiteral("query")}),
        tool("add_note", QStringLiteral("Add a note"),
            QStringLiteral("Adds a note. It goes to the named section (made when missing), else "
                           "the active one."),
            {{QStringLiteral("text"),
                 property("string", QStringLiteral("The note's text; Markdown is shown as such."))},
                {QStringLiteral("section"), section}, {QStringLiteral("project"), project}},
            {QStringLiteral("text")}),
        tool("set_done", QStringLiteral("Mark notes done"),
            QStringLiteral("Marks notes done, or open again."),
            {{QStringLiteral("ids"), ids},
                {QStringLiteral("done"),
                    property("boolean",
                        QStringLiteral("true to mark them done, false to open them again."))}},
            {QStringLiteral("ids"), QStringLiteral("done")}),
    };
}

QJsonObject response(const QJsonValue &id, const QJsonObject &result)
{
    return {{QStringLiteral("jsonrpc"), QStringLiteral("2.0")}, {QStringLiteral("id"), id},
        {QStringLiteral("result"), result}};
}

bool isTool(const QString &name)
{
    const QJsonArray all = tools();
    return std::any_of(all.begin(), all.end(), [&name](const QJsonValue &tool) {
        return tool.toObject().value(QStringLiteral("name")).toString() == name;
    });
}

QJsonObject errorResponse(const QJsonValue &id, int code, const QString &message)
{
    return {{QStringLiteral("jsonrpc"), QStringLiteral("2.0")}, {QStringLiteral("id"), id},
        {QStringLiteral("error"),
            QJsonObject {{QStringLiteral("code"), code}, {QStringLiteral("message"), message}}}};
}

QJsonObject toolResult(const QString &text, bool isError)
{
    return {{QStringLiteral("content"),
                QJsonArray {QJsonObject {{QStringLiteral("type"), QStringLiteral("text")},
                    {QStringLiteral("text"), text}}}},
        {QStringLiteral("isError"), isError}};
}

QString noteLine(const QJsonObject &note)
{
    return QStringLiteral("- [%1] %2 (id: %3, section: %4)")
        .arg(QChar(note.value(QStringLiteral("done")).toBool() ? u'x' : u' '))
        .arg(note.value(QStringLiteral("text")).toString(),
            note.value(QStringLiteral("id")).toString(),
            note.value(QStringLiteral("section")).toString());
}

QString notesText(const QJsonArray &notes, const QString &none)
{
    if (notes.isEmpty())
        return none;
    QStringList lines;
    for (const QJsonValue &note : notes)
        lines.append(noteLine(note.toObject()));
    return lines.join(u'\n');
}

// Copies the string or boolean arguments named in \a keys; a value of the
// wrong type is an error text.
std::optional<QString> copyArguments(const QJsonObject &arguments, QJsonObject &request,
    const QStringList &strings, const QStringList &booleans)
{
    for (auto it = arguments.begin(); it != arguments.end(); ++it) {
        if (strings.contains(it.key())) {
            if (!it.value().isString())
                return QStringLiteral("“%1” must be a string.").arg(it.key());
        } else if (booleans.contains(it.key())) {
            if (!it.value().isBool())
                return QStringLiteral("“%1” must be true or false.").arg(it.key());
        } else {
            return QStringLiteral("Unknown argument “%1”.").arg(it.key());
        }
        request.insert(it.key(), it.value());
    }
    return std::nullopt;
}

} // namespace

QStringList McpServer::protocolVersions()
{
    return {
        QStringLiteral("2025-06-18"), QStringLiteral("2025-03-26"), QStringLiteral("2024-11-05")};
}

McpServer::McpServer(std::function<QJsonObject(const QJsonObject &)> send)
    : m_send(std::move(send))
{ }

std::optional<QJsonObject> McpServer::handle(const QJsonObject &message)
{
    const QJsonValue id = message.value(QStringLiteral("id"));
    const bool isNotification = !message.contains(QStringLiteral("id"));
    const QString method = message.value(QStringLiteral("method")).toString();
    if (message.value(QStringLiteral("jsonrpc")).toString() != u"2.0" || method.isEmpty()) {
        // Answers from a client (to requests this server never sends) need nothing.
        if (message.contains(QStringLiteral("result")) || message.contains(QStringLiteral("error")))
            return std::nullopt;
        return errorResponse(isNotification ? QJsonValue() : id, invalidRequest,
            QStringLiteral("Not a JSON-RPC 2.0 request."));
    }
    if (isNotification)
        return std::nullopt; // notifications/initialized, notifications/cancelled, ...

    const QJsonObject params = message.value(QStringLiteral("params")).toObject();
    if (method == u"initialize") {
        const QString asked = params.value(QStringLiteral("protocolVersion")).toString();
        const QString version
            = protocolVersions().contains(asked) ? asked : protocolVersions().constFirst();
        return response(id,
            {{QStringLiteral("protocolVersion"), version},
                {QStringLiteral("capabilities"),
                    QJsonObject {{QStringLiteral("tools"),
                        QJsonObject {{QStringLiteral("listChanged"), false}}}}},
                {QStringLiteral("serverInfo"),
                    QJsonObject {{QStringLiteral("name"), QStringLiteral("vesko")},
                        {QStringLiteral("title"), QStringLiteral("Vesko")},
                        {QStringLiteral("version"), QCoreApplication::applicationVersion()}}},
                {QStringLiteral("instructions"),
                    QStringLiteral("The user's notes in Vesko, a notes panel: projects hold "
                                   "sections, sections hold notes. Add notes the user asks "
                                   "for; mark done only what the user says is done.")}});
    }
    if (method == u"ping")
        return response(id, {});
    if (method == u"tools/list")
        return response(id, {{QStringLiteral("tools"), tools()}});
    if (method == u"tools/call") {
        const QJsonValue name = params.value(QStringLiteral("name"));
        const QJsonValue arguments = params.value(QStringLiteral("arguments"));
        if (!name.isString() || !(arguments.isObject() || arguments.isUndefined()))
            return errorResponse(id, invalidParams,
                QStringLiteral("tools/call needs a name and an object of arguments."));
        if (!isTool(name.toString()))
            return errorResponse(
                id, invalidParams, QStringLiteral("Unknown tool “%1”.").arg(name.toString()));
        return response(id, callTool(name.toString(), arguments.toObject()));
    }
    return errorResponse(id, methodNotFound, QStringLiteral("Unknown method “%1”.").arg(method));
}

QJsonObject McpServer::callTool(const QString &name, const QJsonObject &arguments)
{
    QJsonObject request;
    std::optional<QString> wrong;
    QString none;
    if (name == u"list_notes") {
        request.insert(QStringLiteral("command"), QStringLiteral("list"));
        wrong = copyArguments(arguments, request,
            {QStringLiteral("project"), QStringLiteral("section")},
            {QStringLiteral("includeDone")});
        none = QStringLiteral("No notes.");
    } else if (name == u"search_notes") {
        request.insert(QStringLiteral("command"), QStringLiteral("search"));
        wrong = copyArguments(
            arguments, request, {QStringLiteral("query"), QStringLiteral("project")}, {});
        if (!wrong && !arguments.contains(QStringLiteral("query")))
            wrong = QStringLiteral("“query” is required.");
        none = QStringLiteral("No note contains “%1”.")
                   .arg(arguments.value(QStringLiteral("query")).toString());
    } else if (name == u"add_note") {
        request.insert(QStringLiteral("command"), QStringLiteral("add"));
        wrong = copyArguments(arguments, request,
            {QStringLiteral("text"), QStringLiteral("section"), QStringLiteral("project")}, {});
        if (!wrong && !arguments.contains(QStringLiteral("text")))
            wrong = QStringLiteral("“text” is required.");
    } else if (name == u"set_done") {
        request.insert(QStringLiteral("command"), QStringLiteral("setDone"));
        const QJsonValue ids = arguments.value(QStringLiteral("ids"));
        const QJsonValue done = arguments.value(QStringLiteral("done"));
        if (!ids.isArray() || !done.isBool())
            wrong = QStringLiteral(
                "“ids” (a list of note ids) and “done” (true or false) are required.");
        for (const QJsonValue &id : ids.toArray()) {
            if (!id.isString())
                wrong = QStringLiteral("Each of “ids” must be a string.");
        }
        request.insert(QStringLiteral("ids"), ids);
        request.insert(QStringLiteral("done"), done);
    } else {
        return toolResult(QStringLiteral("Unknown tool “%1”.").arg(name), true);
    }
    if (wrong)
        return toolResult(*wrong, true);

    const QJsonObject answer = m_send(request);
    if (!answer.value(QStringLiteral("ok")).toBool())
        return toolResult(answer.value(QStringLiteral("error")).toString(), true);
    if (name == u"add_note") {
        return toolResult(QStringLiteral("Added: ")
                + noteLine(answer.value(QStringLiteral("note")).toObject()).mid(2),
            false);
    }
    const QJsonArray notes = answer.value(QStringLiteral("notes")).toArray();
    if (name == u"set_done")
        return toolResult(QStringLiteral("Now:\n") + notesText(notes, {}), false);
    return toolResult(notesText(notes, none), false);
}

std::optional<QByteArray> McpServer::handleLine(const QByteArray &line)
{
    if (line.trimmed().isEmpty())
        return std::nullopt;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    std::optional<QJsonObject> answer;
    if (error.error != QJsonParseError::NoError)
        answer = errorResponse(QJsonValue(), parseError, error.errorString());
    else if (!document.isObject())
        answer = errorResponse(
            QJsonValue(), invalidRequest, QStringLiteral("Batches are not served."));
    else
        answer = handle(document.object());
    if (!answer)
        return std::nullopt;
    return QJsonDocument(*answer).toJson(QJsonDocument::Compact) + '\n';
}

int McpServer::serve()
{
    QFile input;
    QFile output;
    if (!input.open(stdin, QIODevice::ReadOnly) || !output.open(stdout, QIODevice::WriteOnly))
        return 1;
    return serve(input, output);
}

int McpServer::serve(QIODevice &input, QIODevice &output, qint64 maximumLength)
{
    constexpr qint64 chunkLength = 64 * 1024;
    while (true) {
        QByteArray line;
        bool tooLong = false;
        while (!line.endsWith('\n')) {
            const QByteArray chunk = input.readLine(chunkLength);
            if (chunk.isEmpty())
                break;
            // Past the bound the rest of the line is read and dropped:
            // memory stays bounded whatever the client sends.
            if (tooLong) {
                line = chunk.right(1);
                continue;
            }
            line += chunk;
            if (line.size() - (line.endsWith('\n') ? 1 : 0) > maximumLength) {
                tooLong = true;
                line = chunk.right(1);
            }
        }
        if (line.isEmpty())
            return 0; // the client closed the stream
        std::optional<QByteArray> answer;
        if (tooLong) {
            answer
                = QJsonDocument(
                      errorResponse(QJsonValue(), parseError,
                          QStringLiteral("A message is at most %1 bytes long.").arg(maximumLength)))
                      .toJson(QJsonDocument::Compact)
                + '\n';
        } else {
            answer = handleLine(line);
        }
        if (answer) {
            output.write(*answer);
            if (auto *file = qobject_cast<QFile *>(&output))
                file->flush();
        }
    }
}

} // namespace Vesko
