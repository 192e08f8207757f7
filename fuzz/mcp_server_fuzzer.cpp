// SPDX-License-Identifier: GPL-3.0-or-later
//
// Feeds the input, line by line, to the agents' server, whose requests are
// served from a Store as in the running program. Every answer is one JSON-RPC
// 2.0 response that carries the id of the request it answers and either a
// result or an error with a code and a message; a notification gets none; no
// note is ever lost. The same input served as a stream with a short line
// bound answers every line too, in order.

#include "shell/McpServer.h"

#include "FuzzSupport.h"

#include <QBuffer>
#include <QJsonDocument>

using namespace Vesko;

namespace {

void requireResponse(const QJsonObject &answer, const std::optional<QJsonValue> &id)
{
    FUZZ_REQUIRE(answer.value(QStringLiteral("jsonrpc")).toString() == u"2.0");
    FUZZ_REQUIRE(answer.contains(QStringLiteral("id")));
    if (id)
        FUZZ_REQUIRE(answer.value(QStringLiteral("id")) == *id);
    const bool hasResult = answer.value(QStringLiteral("result")).isObject();
    const QJsonObject error = answer.value(QStringLiteral("error")).toObject();
    FUZZ_REQUIRE(hasResult != !error.isEmpty());
    if (!hasResult) {
        FUZZ_REQUIRE(error.value(QStringLiteral("code")).isDouble());
        FUZZ_REQUIRE(!error.value(QStringLiteral("message")).toString().isEmpty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static Fuzz::StoreRig rig;
    static NoteRequests requests(rig.store(), rig.searchIndex());
    rig.reset();
    const QSet<QUuid> startNotes = Fuzz::noteIDs(rig.store().library());
    McpServer server([](const QJsonObject &request) { return Fuzz::ask(requests, request); });

    const QByteArray input(reinterpret_cast<const char *>(bytes), qsizetype(size));
    for (const QByteArray &line : input.split('\n')) {
        if (line.trimmed().isEmpty())
            continue;
        const std::optional<QByteArray> answer = server.handleLine(line);
        QJsonParseError error;
        const QJsonDocument sent = QJsonDocument::fromJson(line, &error);
        const QJsonObject message = sent.object();
        const bool isRequest = sent.isObject() && message.contains(QStringLiteral("id"));
        if (isRequest)
            FUZZ_REQUIRE(answer.has_value());
        if (!answer)
            continue;
        const QJsonDocument received = QJsonDocument::fromJson(*answer, &error);
        FUZZ_REQUIRE(error.error == QJsonParseError::NoError && received.isObject());
        FUZZ_REQUIRE(answer->indexOf('\n') == answer->size() - 1); // one line
        requireResponse(received.object(),
            isRequest ? std::optional(message.value(QStringLiteral("id"))) : std::nullopt);
    }
    FUZZ_REQUIRE(Fuzz::noteIDs(rig.store().library()).contains(startNotes));

    // The stream: lines past the bound get a parse error, the others an answer.
    rig.reset();
    QBuffer in;
    in.setData(input);
    in.open(QIODevice::ReadOnly);
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    server.serve(in, out, 200);
    for (const QByteArray &line : out.data().split('\n')) {
        if (line.isEmpty())
            continue;
        const QJsonDocument received = QJsonDocument::fromJson(line);
        FUZZ_REQUIRE(received.isObject());
        requireResponse(received.object(), std::nullopt);
    }
    return 0;
}
