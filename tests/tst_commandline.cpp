// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command line's words, and the requests that other programs hand the
// running Vesko, served from a real Store: what lands where, what is refused
// and left unchanged, and what can be undone. The program from the outside,
// on a session bus, is tested in tst_commandlineapp.

#include "StoreFixture.h"
#include "TestEnvironment.h"

#include "shell/CommandLine.h"
#include "shell/McpServer.h"
#include "shell/NoteRequests.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Vesko;
using namespace Vesko::Test;
using Kind = CommandLineRequest::Kind;

Q_DECLARE_METATYPE(CommandLineRequest::Kind)

namespace {

// Serves \a request and waits for its answer.
QJsonObject ask(NoteRequests &requests, const QJsonObject &request)
{
    std::optional<QJsonObject> answer;
    requests.handle(request, [&answer](const QJsonObject &object) { answer = object; });
    if (!QTest::qWaitFor([&answer] { return answer.has_value(); }, 20000))
        return {};
    return *answer;
}

QStringList texts(const QJsonObject &answer)
{
    QStringList texts;
    for (const QJsonValue &note : answer.value(QStringLiteral("notes")).toArray())
        texts.append(note.toObject().value(QStringLiteral("text")).toString());
    return texts;
}

QString error(const QJsonObject &answer)
{
    return answer.value(QStringLiteral("error")).toString();
}

} // namespace

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();

    void add_data();
    void add();
    void refusedRequestsChangeNothing_data();
    void refusedRequestsChangeNothing();
    void list_data();
    void list();
    void searchFindsWhatThePanelFinds();
    void setDoneIsOneUndoStep();
    void actionsRunAfterTheAnswer();

    void mcpMessages_data();
    void mcpMessages();
    void mcpToolsBecomeRequests_data();
    void mcpToolsBecomeRequests();
    void mcpLinesAreBounded_data();
    void mcpLinesAreBounded();
};

void CommandLineTest::parse_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<Kind>("kind");
    // Action: the action; Add: text|section|project|stdin; List:
    // project|section|all|json; Search: query|json; Help: a pattern of the
    // message; Invalid: part of the message.
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing launches") << QStringList {} << Kind::Launch << "";
    QTest::newRow("background") << QStringList {"--background"} << Kind::Launch << "";
    QTest::newRow("restored by the session manager")
        << QStringList {"-session", "10d3f8", "-platform=xcb", "--reverse"} << Kind::Launch << "";
    QTest::newRow("a toolkit option before a command")
        << QStringList {"--style", "Fusion", "add", "milk"} << Kind::Add << "milk|||0";
    QTest::newRow("help") << QStringList {"--help"} << Kind::Help << "^Usage: vesko \\[options\\]";
    QTest::newRow("help after a command")
        << QStringList {"list", "-h"} << Kind::Help << "^Usage: vesko list \\[options\\].*--json";
    QTest::newRow("version") << QStringList {"-v"} << Kind::Version << "";
    for (const QString &action : CommandLine::actionNames())
        QTest::addRow("action %s", qPrintable(action))
            << QStringList {action} << Kind::Action << action;
    QTest::newRow("add joins its words") << QStringList {"add", "buy", "milk", "--section", "Shop"}
                                         << Kind::Add << "buy milk|Shop||0";
    QTest::newRow("add with a project, options first") << QStringList {"add", "--project", "Work",
        "--section=Calls", "ring Ana"} << Kind::Add << "ring Ana|Calls|Work|0";
    QTest::newRow("add words that look like options after --")
        << QStringList {"add", "--", "--all", "-x"} << Kind::Add << "--all -x|||0";
    QTest::newRow("add from standard input") << QStringList {"add", "-"} << Kind::Add << "|||1";
    QTest::newRow("list everything as JSON") << QStringList {"list", "--all", "--json", "--project",
        "Home"} << Kind::List << "Home||1|1";
    QTest::newRow("list a section")
        << QStringList {"list", "--section", "Inbox"} << Kind::List << "|Inbox|0|0";
    QTest::newRow("search joins its words")
        << QStringList {"search", "red", "fox", "--json"} << Kind::Search << "red fox|1";
    QTest::newRow("mcp") << QStringList {"mcp"} << Kind::Mcp << "";

    QTest::newRow("unknown command") << QStringList {"frobnicate"} << Kind::Invalid << "frobnicate";
    QTest::newRow("unknown option") << QStringList {"--frob"} << Kind::Invalid << "frob";
    QTest::newRow("unknown option of a command")
        << QStringList {"list", "--text"} << Kind::Invalid << "text";
    QTest::newRow("option without its value")
        << QStringList {"add", "x", "--section"} << Kind::Invalid << "section";
    QTest::newRow("add without text") << QStringList {"add"} << Kind::Invalid << "text";
    QTest::newRow("add blank text") << QStringList {"add", " ", "\t"} << Kind::Invalid << "blank";
    QTest::newRow("standard input and words")
        << QStringList {"add", "-", "more"} << Kind::Invalid << "standard input";
    QTest::newRow("action with an argument")
        << QStringList {"toggle", "now"} << Kind::Invalid << "toggle";
    QTest::newRow("search without a query") << QStringList {"search"} << Kind::Invalid << "query";
    QTest::newRow("list with a stray word")
        << QStringList {"list", "all"} << Kind::Invalid << "list";
    QTest::newRow("background with a command")
        << QStringList {"--background", "add", "x"} << Kind::Invalid << "background";
}

void CommandLineTest::parse()
{
    QFETCH(QStringList, words);
    QFETCH(Kind, kind);
    QFETCH(QString, expected);
    const CommandLineRequest request
        = CommandLine::parse(QStringList {"/usr/local/bin/vesko"} + words);
    QCOMPARE(request.kind, kind);
    const auto flag = [](bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); };
    switch (kind) {
    case Kind::Action:
        QCOMPARE(request.action, expected);
        QVERIFY(CommandLine::parse({"vesko", "--help"}).message.contains("  " + expected + u' '));
        break;
    case Kind::Help:
        QVERIFY2(QRegularExpression(expected, QRegularExpression::DotMatchesEverythingOption)
                     .match(request.message)
                     .hasMatch(),
            qPrintable(request.message));
        break;
    case Kind::Add:
        QCOMPARE(QStringList({request.text, request.section, request.project,
                                 flag(request.readsStandardInput)})
                     .join(u'|'),
            expected);
        break;
    case Kind::List:
        QCOMPARE(QStringList({request.project, request.section, flag(request.includeDone),
                                 flag(request.json)})
                     .join(u'|'),
            expected);
        break;
    case Kind::Search:
        QCOMPARE(request.query + u'|' + flag(request.json), expected);
        break;
    case Kind::Invalid:
        QVERIFY2(
            request.message.contains(expected, Qt::CaseInsensitive), qPrintable(request.message));
        break;
    case Kind::Launch:
        QCOMPARE(request.background, words.contains(QStringLiteral("--background")));
        break;
    default:
        break;
    }
}

void CommandLineTest::add_data()
{
    QTest::addColumn<QJsonObject>("request");
    QTest::addColumn<QString>("section"); // where the note lands, "project/section"
    const QJsonObject base {{"command", "add"}, {"text", "  fresh note \n"}};
    QTest::newRow("the active section") << base << "P/Work";
    QJsonObject inSection = base;
    inSection.insert("section", "inbox");
    QTest::newRow("a section by title, in any case") << inSection << "P/Inbox";
    inSection.insert("section", "Later");
    QTest::newRow("a section that is made") << inSection << "P/Later";
    QJsonObject inProject = base;
    inProject.insert("project", "q");
    QTest::newRow("another project's active section") << inProject << "Q/Home";
    inProject.insert("section", "Errands");
    QTest::newRow("another project's new section") << inProject << "Q/Errands";
}

void CommandLineTest::add()
{
    QFETCH(QJsonObject, request);
    QFETCH(QString, section);
    StoreFixture fixture;
    Store &store = fixture.make({"Inbox:a|*Work:b", "Misc:c|*Home:d"});
    NoteRequests requests(store, fixture.searchIndex());
    const qsizetype undoSteps = store.undoStepCount();

    const QJsonObject answer = ask(requests, request);
    QVERIFY2(answer.value("ok").toBool(), qPrintable(error(answer)));
    const QJsonObject note = answer.value("note").toObject();
    QCOMPARE(note.value("text").toString(), QStringLiteral("fresh note"));
    QCOMPARE(note.value("project").toString() + u'/' + note.value("section").toString(), section);
    const std::optional<Note> stored = store.note(QUuid::fromString(note.value("id").toString()));
    QVERIFY(stored);
    QCOMPARE(stored->text, QStringLiteral("fresh note"));
    QCOMPARE(store.activeProject().id, idFor("project P"));
    QCOMPARE(store.undoStepCount(), undoSteps + 1);
    QVERIFY(store.hasPendingSave());

    store.undo();
    QVERIFY(!store.note(stored->id));
}

void CommandLineTest::refusedRequestsChangeNothing_data()
{
    QTest::addColumn<QJsonObject>("request");
    QTest::addColumn<QString>("message");
    QTest::newRow("blank note") << QJsonObject {{"command", "add"}, {"text", " \n\t"}} << "blank";
    QTest::newRow("no text at all") << QJsonObject {{"command", "add"}} << "blank";
    QTest::newRow("note past the bound") << QJsonObject {{"command", "add"},
        {"text", QString(NoteRequests::maximumTextLength + 1, u'x')}}
                                         << "too long";
    QTest::newRow("unknown project")
        << QJsonObject {{"command", "add"}, {"text", "x"}, {"project", "Nowhere"}} << "Nowhere";
    QTest::newRow("done for an unknown id") << QJsonObject {{"command", "setDone"},
        {"ids", QJsonArray {idFor("a").toString(), QUuid::createUuid().toString()}}, {"done", true}}
                                            << "No note has the id";
    QTest::newRow("done for something that is no id") << QJsonObject {{"command", "setDone"},
        {"ids", QJsonArray {"../Library.json"}}, {"done", true}}
                                                      << "../Library.json";
    QTest::newRow("done without ids")
        << QJsonObject {{"command", "setDone"}, {"done", true}} << "No note ids";
    QTest::newRow("done without saying done")
        << QJsonObject {{"command", "setDone"}, {"ids", QJsonArray {idFor("a").toString()}}}
        << "true or false";
    QTest::newRow("unknown section")
        << QJsonObject {{"command", "list"}, {"section", "Nope"}} << "Nope";
    QTest::newRow("list of an unknown project")
        << QJsonObject {{"command", "list"}, {"project", "Nowhere"}} << "Nowhere";
    QTest::newRow("search in an unknown project")
        << QJsonObject {{"command", "search"}, {"query", "a"}, {"project", "Nowhere"}} << "Nowhere";
    QTest::newRow("blank query") << QJsonObject {{"command", "search"}, {"query", "  "}} << "blank";
    QTest::newRow("unknown action")
        << QJsonObject {{"command", "action"}, {"name", "explode"}} << "explode";
    QTest::newRow("unknown request") << QJsonObject {{"command", "deleteAll"}} << "deleteAll";
}

void CommandLineTest::refusedRequestsChangeNothing()
{
    QFETCH(QJsonObject, request);
    QFETCH(QString, message);
    StoreFixture fixture;
    Store &store = fixture.make({"*Inbox:a,b"});
    NoteRequests requests(store, fixture.searchIndex());
    const Library before = store.library();

    const QJsonObject answer = ask(requests, request);
    QCOMPARE(answer.value("ok").toBool(true), false);
    QVERIFY2(error(answer).contains(message), qPrintable(error(answer)));
    QCOMPARE(store.library(), before);
    QVERIFY(!store.canUndo());
}

void CommandLineTest::list_data()
{
    QTest::addColumn<QJsonObject>("request");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("open notes of the active project")
        << QJsonObject {{"command", "list"}} << QStringList {"a", "c"};
    QTest::newRow("with the done ones") << QJsonObject {{"command", "list"}, {"includeDone", true}}
                                        << QStringList {"a", "b", "c", "d"};
    QTest::newRow("one section") << QJsonObject {{"command", "list"}, {"section", "WORK"},
        {"includeDone", true}} << QStringList {"c", "d"};
    QTest::newRow("another project")
        << QJsonObject {{"command", "list"}, {"project", "Q"}} << QStringList {"e"};
}

void CommandLineTest::list()
{
    QFETCH(QJsonObject, request);
    QFETCH(QStringList, texts);
    StoreFixture fixture;
    Store &store = fixture.make({"Inbox:a,B|*Work:c,D", "*Home:e,F"});
    NoteRequests requests(store, fixture.searchIndex());
    const QJsonObject answer = ask(requests, request);
    QVERIFY2(answer.value("ok").toBool(), qPrintable(error(answer)));
    QCOMPARE(::texts(answer), texts);
}

void CommandLineTest::searchFindsWhatThePanelFinds()
{
    StoreFixture fixture;
    Store &store = fixture.make({"Inbox|*Work"});
    // Typed through the Store, as a user would have.
    store.addNote(QStringLiteral("Call the Plumber"));
    store.addNote(QStringLiteral("water the plants"));
    store.addNote(QStringLiteral("buy stamps"));
    NoteRequests requests(store, fixture.searchIndex());
    const QJsonObject answer = ask(requests, {{"command", "search"}, {"query", "  PL "}});
    QVERIFY2(answer.value("ok").toBool(), qPrintable(error(answer)));
    QCOMPARE(texts(answer), QStringList({"Call the Plumber", "water the plants"}));
    // The panel's own search is left as it was.
    QCOMPARE(store.searchText(), QString());
}

void CommandLineTest::setDoneIsOneUndoStep()
{
    StoreFixture fixture;
    Store &store = fixture.make({"*Inbox:a,B,c", "*Home:e"});
    NoteRequests requests(store, fixture.searchIndex());
    const QJsonArray ids {idFor("a").toString(QUuid::WithoutBraces), idFor("b").toString(),
        idFor("e").toString(QUuid::WithoutBraces)};
    const QJsonObject answer
        = ask(requests, {{"command", "setDone"}, {"ids", ids}, {"done", true}});
    QVERIFY2(answer.value("ok").toBool(), qPrintable(error(answer)));
    QCOMPARE(answer.value("notes").toArray().size(), 3);
    QVERIFY(store.note(idFor("a"))->isDone);
    QVERIFY(store.note(idFor("e"))->isDone);
    QCOMPARE(store.undoStepCount(), 1);
    store.undo();
    QVERIFY(!store.note(idFor("a"))->isDone);
    QVERIFY(store.note(idFor("b"))->isDone);
    QVERIFY(!store.note(idFor("e"))->isDone);
    // Asking for what already holds takes no step.
    store.redo();
    const qsizetype steps = store.undoStepCount();
    QVERIFY(
        ask(requests, {{"command", "setDone"}, {"ids", ids}, {"done", true}}).value("ok").toBool());
    QCOMPARE(store.undoStepCount(), steps);
}

void CommandLineTest::actionsRunAfterTheAnswer()
{
    StoreFixture fixture;
    Store &store = fixture.make({"*Inbox:a"});
    NoteRequests requests(store, fixture.searchIndex());
    QStringList ran;
    requests.setActions(
        {{"hide", [&ran] { ran.append("hide"); }}, {"quit", [&ran] { ran.append("quit"); }}});
    bool answered = false;
    requests.handle({{"command", "action"}, {"name", "quit"}}, [&](const QJsonObject &answer) {
        answered = answer.value("ok").toBool();
        // Quitting must not end the program before the caller has its answer.
        QVERIFY(ran.isEmpty());
    });
    QVERIFY(answered);
    QVERIFY(QTest::qWaitFor([&ran] { return ran == QStringList {"quit"}; }, 5000));
}

void CommandLineTest::mcpMessages_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("answer"); // the answer without "jsonrpc"; empty for none
    QTest::newRow("no JSON") << QByteArray("{\"jsonrpc\": \"2.0\", \"id\": 1,")
                             << QByteArray(R"({"error":{"code":-32700},"id":null})");
    QTest::newRow("a batch") << QByteArray(R"([{"jsonrpc":"2.0","id":1,"method":"ping"}])")
                             << QByteArray(R"({"error":{"code":-32600},"id":null})");
    QTest::newRow("not JSON-RPC 2.0") << QByteArray(R"({"id":3,"method":"ping"})")
                                      << QByteArray(R"({"error":{"code":-32600},"id":3})");
    QTest::newRow("a notification")
        << QByteArray(R"({"jsonrpc":"2.0","method":"notifications/initialized"})") << QByteArray();
    QTest::newRow("a client's answer")
        << QByteArray(R"({"jsonrpc":"2.0","id":"s1","result":{}})") << QByteArray();
    QTest::newRow("a blank line") << QByteArray("  \n") << QByteArray();
    QTest::newRow("unknown method")
        << QByteArray(R"({"jsonrpc":"2.0","id":"x","method":"resources/list"})")
        << QByteArray(R"({"error":{"code":-32601},"id":"x"})");
    QTest::newRow("ping") << QByteArray(R"({"jsonrpc":"2.0","id":4,"method":"ping"})")
                          << QByteArray(R"({"id":4,"result":{}})");
    QTest::newRow("a version it speaks")
        << QByteArray(
               R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2025-03-26"}})")
        << QByteArray(
               R"({"id":1,"result":{"protocolVersion":"2025-03-26","serverInfo":{"name":"vesko"}}})");
    QTest::newRow("a later version than it speaks")
        << QByteArray(
               R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2099-01-01"}})")
        << QByteArray(
               R"({"id":1,"result":{"protocolVersion":"2025-06-18","capabilities":{"tools":{}}}})");
    QTest::newRow("a call without a name")
        << QByteArray(R"({"jsonrpc":"2.0","id":9,"method":"tools/call","params":{"arguments":{}}})")
        << QByteArray(R"({"error":{"code":-32602},"id":9})");
    QTest::newRow("an unknown tool") << QByteArray(
        R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":"delete_all"}})")
                                     << QByteArray(R"({"error":{"code":-32602},"id":7})");
}

// Whether \a actual holds every member of \a expected, objects compared member by member.
static bool holds(const QJsonValue &actual, const QJsonValue &expected)
{
    if (!expected.isObject())
        return actual == expected;
    const QJsonObject object = expected.toObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (!actual.toObject().contains(it.key())
            || !holds(actual.toObject().value(it.key()), it.value()))
            return false;
    }
    return true;
}

void CommandLineTest::mcpMessages()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, answer);
    int sent = 0;
    McpServer server([&sent](const QJsonObject &) {
        ++sent;
        return QJsonObject {{"ok", true}};
    });
    const std::optional<QByteArray> reply = server.handleLine(line);
    QCOMPARE(sent, 0);
    if (answer.isEmpty()) {
        QVERIFY2(!reply, reply ? reply->constData() : "");
        return;
    }
    QVERIFY(reply);
    QVERIFY(reply->endsWith('\n'));
    QCOMPARE(reply->count('\n'), 1);
    const QJsonObject actual = QJsonDocument::fromJson(*reply).object();
    QCOMPARE(actual.value("jsonrpc").toString(), QStringLiteral("2.0"));
    QVERIFY2(holds(actual, QJsonDocument::fromJson(answer).object()), reply->constData());
}

void CommandLineTest::mcpToolsBecomeRequests_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QJsonObject>("arguments");
    QTest::addColumn<QJsonObject>("request"); // empty: refused before any request
    QTest::addColumn<QString>("text"); // part of the result's text
    QTest::newRow("list_notes") << "list_notes" << QJsonObject {}
                                << QJsonObject {{"command", "list"}}
                                << "- [ ] milk (id: 1, section: Inbox)";
    QTest::newRow("list_notes with options")
        << "list_notes" << QJsonObject {{"project", "Home"}, {"includeDone", true}}
        << QJsonObject {{"command", "list"}, {"project", "Home"}, {"includeDone", true}} << "milk";
    QTest::newRow("search_notes") << "search_notes" << QJsonObject {{"query", "mi"}}
                                  << QJsonObject {{"command", "search"}, {"query", "mi"}} << "milk";
    QTest::newRow("add_note") << "add_note" << QJsonObject {{"text", "t"}, {"section", "S"}}
                              << QJsonObject {{"command", "add"}, {"text", "t"}, {"section", "S"}}
                              << "Added: [ ] milk";
    QTest::newRow("set_done") << "set_done"
                              << QJsonObject {{"ids", QJsonArray {"1"}}, {"done", false}}
                              << QJsonObject {{"command", "setDone"}, {"ids", QJsonArray {"1"}},
                                     {"done", false}}
                              << "milk";
    QTest::newRow("a number for text")
        << "add_note" << QJsonObject {{"text", 5}} << QJsonObject {} << "“text” must be a string";
    QTest::newRow("no text") << "add_note" << QJsonObject {{"section", "S"}} << QJsonObject {}
                             << "“text” is required";
    QTest::newRow("an argument of its own")
        << "add_note" << QJsonObject {{"text", "t"}, {"file", "/etc/passwd"}} << QJsonObject {}
        << "Unknown argument “file”";
    QTest::newRow("ids that are no list")
        << "set_done" << QJsonObject {{"ids", "1"}, {"done", true}} << QJsonObject {} << "“ids”";
    QTest::newRow("ids that are no strings")
        << "set_done" << QJsonObject {{"ids", QJsonArray {1}}, {"done", true}} << QJsonObject {}
        << "must be a string";
}

void CommandLineTest::mcpToolsBecomeRequests()
{
    QFETCH(QString, tool);
    QFETCH(QJsonObject, arguments);
    QFETCH(QJsonObject, request);
    QFETCH(QString, text);
    QList<QJsonObject> sent;
    const QJsonObject note {{"id", "1"}, {"text", "milk"}, {"section", "Inbox"}, {"done", false}};
    McpServer server([&](const QJsonObject &request) {
        sent.append(request);
        return QJsonObject {{"ok", true}, {"note", note}, {"notes", QJsonArray {note}}};
    });
    const std::optional<QJsonObject> answer
        = server.handle({{"jsonrpc", "2.0"}, {"id", 2}, {"method", "tools/call"},
            {"params", QJsonObject {{"name", tool}, {"arguments", arguments}}}});
    QVERIFY(answer);
    const QJsonObject result = answer->value("result").toObject();
    const QString resultText
        = result.value("content").toArray().first().toObject().value("text").toString();
    QVERIFY2(resultText.contains(text), qPrintable(resultText));
    QCOMPARE(result.value("isError").toBool(), request.isEmpty());
    QCOMPARE(sent, request.isEmpty() ? QList<QJsonObject> {} : QList<QJsonObject> {request});
    // What the running Vesko refuses is the tool's error, in its words.
    if (!request.isEmpty()) {
        McpServer refusing(
            [](const QJsonObject &) { return NoteRequests::failure("No such thing."); });
        const QJsonObject refused
            = refusing
                  .handle({{"jsonrpc", "2.0"}, {"id", 3}, {"method", "tools/call"},
                      {"params", QJsonObject {{"name", tool}, {"arguments", arguments}}}})
                  ->value("result")
                  .toObject();
        QVERIFY(refused.value("isError").toBool());
        QCOMPARE(refused.value("content").toArray().first().toObject().value("text").toString(),
            QStringLiteral("No such thing."));
    }
}

void CommandLineTest::mcpLinesAreBounded_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QList<int>>("codes"); // each answer's error code, 0 for a result
    const QByteArray ping = R"({"jsonrpc":"2.0","id":1,"method":"ping"})";
    const QByteArray padded = R"({"jsonrpc":"2.0","id":1,"method":"ping","pad":")";
    const auto ofLength = [&padded](int length) {
        return padded + QByteArray(length - padded.size() - 2, 'x') + "\"}";
    };
    QTest::newRow("lines within the bound") << ping + '\n' + ping + '\n' << QList<int> {0, 0};
    QTest::newRow("a last line without its line break") << ping << QList<int> {0};
    QTest::newRow("a line of just the bound") << ofLength(100) + '\n' << QList<int> {0};
    QTest::newRow("a line one past the bound, then a good one") << ofLength(101) + '\n' + ping
            + '\n' << QList<int> {-32700, 0};
    QTest::newRow("a line far past the bound, in many reads") << ofLength(300000) + '\n' + ping
            + '\n' << QList<int> {-32700, 0};
    QTest::newRow("a long line at the end, without its line break")
        << ping + '\n' + ofLength(300000) << QList<int> {0, -32700};
}

void CommandLineTest::mcpLinesAreBounded()
{
    QFETCH(QByteArray, input);
    QFETCH(QList<int>, codes);
    McpServer server([](const QJsonObject &) { return QJsonObject {{"ok", true}}; });
    QBuffer in(&input);
    QVERIFY(in.open(QIODevice::ReadOnly));
    QByteArray written;
    QBuffer out(&written);
    QVERIFY(out.open(QIODevice::WriteOnly));

    QCOMPARE(server.serve(in, out, 100), 0);
    QList<int> answered;
    for (const QByteArray &line : written.split('\n')) {
        if (!line.isEmpty()) {
            const QJsonObject answer = QJsonDocument::fromJson(line).object();
            answered.append(answer.value("error").toObject().value("code").toInt());
        }
    }
    QCOMPARE(answered, codes);
}

VESKO_TEST_MAIN(CommandLineTest)
#include "tst_commandline.moc"
