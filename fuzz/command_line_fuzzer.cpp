// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads the input as the words after "vesko" (separated by line breaks; a
// word after a line "--stdin--" is what standard input holds), parses them,
// and hands what the command asks of the running instance to the requests
// served from a Store. A command that cannot be understood says why; the
// help and version print something; an action is one of the known ones. A
// request that fails says why and changes nothing; an added note is there,
// with its text, where the answer says; listed notes exist, done ones only
// when asked for; no note is ever lost.

#include "shell/CommandLine.h"

#include "FuzzSupport.h"

#include <QJsonArray>

using namespace Vesko;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static Fuzz::StoreRig rig;
    static NoteRequests requests(rig.store(), rig.searchIndex());
    rig.reset();

    const QString input = QString::fromUtf8(reinterpret_cast<const char *>(bytes), qsizetype(size));
    const qsizetype split = input.indexOf(QStringLiteral("\n--stdin--\n"));
    const QString standardInput = split < 0 ? QString() : input.mid(split + 11);
    QStringList arguments = (split < 0 ? input : input.left(split)).split(u'\n');
    arguments.prepend(QStringLiteral("vesko"));

    using Kind = CommandLineRequest::Kind;
    const CommandLineRequest request = CommandLine::parse(arguments);
    switch (request.kind) {
    case Kind::Invalid:
    case Kind::Help:
    case Kind::Version:
        FUZZ_REQUIRE(!request.message.trimmed().isEmpty());
        return 0;
    case Kind::Action:
        FUZZ_REQUIRE(CommandLine::actionNames().contains(request.action));
        return 0;
    case Kind::Launch:
    case Kind::Mcp:
        return 0;
    default:
        break;
    }

    const QString text = request.readsStandardInput ? standardInput : request.text;
    const std::optional<QJsonObject> sent = CommandLine::instanceRequest(request, text);
    FUZZ_REQUIRE(sent.has_value());
    const Library before = rig.store().library();
    const QJsonObject answer = Fuzz::ask(requests, *sent);
    FUZZ_REQUIRE(Fuzz::isWellFormedAnswer(answer));
    const Library &after = rig.store().library();
    FUZZ_REQUIRE(Fuzz::noteIDs(after).contains(Fuzz::noteIDs(before)));
    if (!answer.value(QStringLiteral("ok")).toBool()) {
        FUZZ_REQUIRE(after == before);
        return 0;
    }

    if (request.kind == Kind::Add) {
        const QJsonObject note = answer.value(QStringLiteral("note")).toObject();
        const std::optional<Note> stored
            = rig.store().note(QUuid::fromString(note.value(QStringLiteral("id")).toString()));
        FUZZ_REQUIRE(stored.has_value());
        FUZZ_REQUIRE(stored->text == note.value(QStringLiteral("text")).toString());
        FUZZ_REQUIRE(!stored->text.trimmed().isEmpty());
        FUZZ_REQUIRE(noteCount(after) == noteCount(before) + 1);
        return 0;
    }
    FUZZ_REQUIRE(after == before);
    for (const QJsonValue &value : answer.value(QStringLiteral("notes")).toArray()) {
        const QJsonObject note = value.toObject();
        const std::optional<Note> stored
            = rig.store().note(QUuid::fromString(note.value(QStringLiteral("id")).toString()));
        FUZZ_REQUIRE(stored.has_value());
        FUZZ_REQUIRE(stored->text == note.value(QStringLiteral("text")).toString());
        FUZZ_REQUIRE(stored->isDone == note.value(QStringLiteral("done")).toBool());
        if (request.kind == Kind::List && !request.includeDone)
            FUZZ_REQUIRE(!stored->isDone);
    }
    return 0;
}
