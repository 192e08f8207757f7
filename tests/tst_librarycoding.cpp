// SPDX-License-Identifier: GPL-3.0-or-later
//
// The library document: exact bytes out, the accept and reject rules in, and
// round trips of realistic libraries.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "library/LibraryCoding.h"

#include <functional>

using namespace Vesko;

class LibraryCodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goldenBytes_data();
    void goldenBytes();
    void decodeAccepts_data();
    void decodeAccepts();
    void decodeRejects_data();
    void decodeRejects();
    void minimalNoteDefaultsAndRewrite();
    void generatedLibraryRoundTrips_data();
    void generatedLibraryRoundTrips();
    void dates_data();
    void dates();
    void reusedEncodingFollowsEdits_data();
    void reusedEncodingFollowsEdits();
};

namespace {

// The documents in data/ were written by hand, byte by byte.
QByteArray goldenDocument(const char *name)
{
    QFile file(QFINDTESTDATA(QStringLiteral("data/") + QLatin1String(name)));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing test data %s", name);
    return file.readAll();
}

QUuid uuid(const char *text)
{
    return *parseDocumentUuid(text);
}

QDateTime date(const char *text)
{
    return parseDocumentDate(text);
}

// Every optional field present somewhere, and absent somewhere else.
Library fullLibrary()
{
    const NoteAttachment image {uuid("11111111-2222-4333-8444-555555555555"),
        QStringLiteral("Screen shot.png"), QStringLiteral("A1B2/Screen shot.png"),
        NoteAttachment::Kind::Image, QStringLiteral("image/png"), 1234567,
        date("2026-03-14T09:30:00Z")};
    const NoteAttachment file {uuid("aaaaaaaa-bbbb-4ccc-8ddd-eeeeeeeeeeee"),
        QStringLiteral("report.pdf"), QStringLiteral("report.pdf"), NoteAttachment::Kind::File,
        std::nullopt, std::nullopt, date("2026-03-14T09:31:00Z")};
    const Note done {uuid("00000000-0000-4000-8000-000000000001"),
        QString::fromUtf8("Line one\nTab\there \"quoted\" back\\slash a/b \x01 日本語 🙂"),
        true, date("2026-03-14T09:28:00Z"), date("2026-03-14T09:29:00Z"),
        date("2026-03-14T09:29:00Z"),
        NoteSource {QStringLiteral("Firefox"), QStringLiteral("org.mozilla.firefox"),
            QStringLiteral("Docs — Mozilla Firefox")},
        {image, file}};
    const Note plain {uuid("00000000-0000-4000-8000-000000000002"), QString(), false,
        date("2026-03-14T09:32:00Z"), date("2026-03-14T09:32:00Z"), std::nullopt,
        NoteSource {QStringLiteral("Terminal"), std::nullopt, std::nullopt}, {}};
    const NoteSection section {uuid("5EC7A000-0000-4000-8000-000000000000"),
        QStringLiteral("Firefox — Docs"), {done, plain}, true, date("2026-03-14T09:27:00Z"), true};
    const Project project {uuid("6F9619FF-8B86-D011-B42D-00C04FC964FF"),
        QStringLiteral("Work / Ünïcode"), {section}, date("2026-03-14T09:26:53Z"), section.id};
    return Library {libraryFormatVersion, {project}, project.id};
}

Library sparseLibrary()
{
    const NoteSection section {uuid("5EC7A000-0000-4000-8000-000000000000"),
        QStringLiteral("Inbox"), {}, false, date("2000-02-29T00:00:00Z"), false};
    return Library {libraryFormatVersion,
        {Project {uuid("6F9619FF-8B86-D011-B42D-00C04FC964FF"), QStringLiteral("Notes"), {section},
            date("1999-12-31T23:59:59Z"), std::nullopt}},
        std::nullopt};
}

// A document with one note whose members are \a noteMembers, inside a valid
// library; \a sectionExtra and \a rootExtra add members around it.
QByteArray documentWithNote(const QByteArray &noteMembers, const QByteArray &sectionExtra = {},
    const QByteArray &rootExtra = {})
{
    return R"({"version": 3, )" + rootExtra
        + R"("projects": [{"id": "6F9619FF-8B86-D011-B42D-00C04FC964FF",
        "name": "P", "createdAt": "2026-01-01T00:00:00Z", "sections": [{
        "id": "5EC7A000-0000-4000-8000-000000000000", "title": "S", "isCollapsed": false,
        "createdAt": "2026-01-01T00:00:00Z", )"
        + sectionExtra + R"("notes": [{)" + noteMembers + "}]}]}]}";
}

const QByteArray noteID = R"("id": "00000000-0000-4000-8000-000000000001")";

// The members of 6000 notes for documentWithNote(), with a wrong value in
// notes[3000] and another in notes[5500]: more notes than one run of the
// reading, so that the two faults are met on different threads.
QByteArray notesWithTwoFaults()
{
    QByteArray members;
    for (int i = 0; i < 6000; ++i) {
        if (i > 0)
            members += "}, {";
        const QByteArray id = R"("id": "00000000-0000-4000-8000-)"
            + QByteArray::number(i).rightJustified(12, '0') + '"';
        if (i == 3000)
            members += id + R"(, "text": 4)";
        else if (i == 5500)
            members += R"("text": "no id")";
        else
            members += id + R"(, "text": "x")";
    }
    return members;
}

} // namespace

void LibraryCodingTest::goldenBytes_data()
{
    QTest::addColumn<Library>("library");
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("every optional present or absent")
        << fullLibrary() << goldenDocument("library-full.json");
    QTest::newRow("sparse") << sparseLibrary() << goldenDocument("library-sparse.json");
}

void LibraryCodingTest::goldenBytes()
{
    QFETCH(Library, library);
    QFETCH(QByteArray, document);
    QCOMPARE(encodeLibrary(library), document);

    QString error;
    const std::optional<Library> decoded = decodeLibrary(document, &error);
    QVERIFY2(decoded, qPrintable(error));
    QCOMPARE(*decoded, library);
}

void LibraryCodingTest::decodeAccepts_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("check");
    QTest::newRow("lower-case uuid")
        << documentWithNote(R"("id": "abcdef00-0000-4000-8000-00000000000a", "text": "x")")
        << "id=ABCDEF00-0000-4000-8000-00000000000A";
    QTest::newRow("optionals null") << documentWithNote(
        noteID + R"(, "text": "x", "isDone": null, "createdAt": null, "updatedAt": null,
            "completedAt": null, "source": null, "attachments": null)",
        R"("isAutomatic": null, )", R"("activeProjectID": null, )")
                                    << "text=x";
    QTest::newRow("version 7") << documentWithNote(noteID + R"(, "text": "x")")
                                      .replace(R"("version": 3)", R"("version": 7)")
                               << "version=7";
    QTest::newRow("version as 3.0") << documentWithNote(noteID + R"(, "text": "x")")
                                           .replace(R"("version": 3)", R"("version": 3.0)")
                                    << "version=3";
    QTest::newRow("unknown keys everywhere, gone when written") << documentWithNote(
        noteID + R"(, "text": "x", "color": "red", "tags": [1, {"a": null}])",
        R"("sortOrder": 4, )", R"("sync": {"v": true}, )") << "absent=color,tags,sortOrder,sync";
    QTest::newRow("keys in any order")
        << QByteArray(R"({"projects": [], "version": 3})") << "projects=0";
    QTest::newRow("date with offset")
        << documentWithNote(noteID + R"(, "text": "x", "createdAt": "2026-01-01T02:00:00+02:00")")
        << "createdAt=2026-01-01T00:00:00Z";
    QTest::newRow("date with fraction")
        << documentWithNote(noteID + R"(, "text": "x", "createdAt": "2026-01-01T00:00:00.250Z")")
        << "createdAtMs=250";
    QTest::newRow("escaped text") << documentWithNote(
        noteID + R"(, "text": "a\/b \u00e9 \ud83d\ude42 \"q\"")")
                                  << QString::fromUtf8("text=a/b é 🙂 \"q\"");
    QTest::newRow("source with app only")
        << documentWithNote(noteID + R"(, "text": "x", "source": {"appName": "Mail"})")
        << "source=Mail";
    QTest::newRow("byte order mark absent, leading blanks")
        << ("  \n" + documentWithNote(noteID + R"(, "text": "x")")) << "text=x";
}

void LibraryCodingTest::decodeAccepts()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, check);
    QString error;
    const std::optional<Library> library = decodeLibrary(document, &error);
    QVERIFY2(library, qPrintable(error));

    const QString key = check.section(u'=', 0, 0);
    const QString value = check.section(u'=', 1);
    if (key == u"projects") {
        QCOMPARE(QString::number(library->projects.size()), value);
        return;
    }
    if (key == u"version") {
        QCOMPARE(QString::number(library->version), value);
        return;
    }
    const Note &note = library->projects.at(0).sections.at(0).notes.at(0);
    if (key == u"text")
        QCOMPARE(note.text, value);
    else if (key == u"id")
        QCOMPARE(QString::fromLatin1(encodeLibrary(*library)).contains(value), true);
    else if (key == u"createdAt")
        QCOMPARE(QString::fromLatin1(formatDocumentDate(note.createdAt)), value);
    else if (key == u"createdAtMs")
        QCOMPARE(QString::number(note.createdAt.toMSecsSinceEpoch() % 1000), value);
    else if (key == u"source")
        QCOMPARE(note.source->appName, value);
    else if (key == u"absent")
        for (const QString &name : value.split(u','))
            QVERIFY2(!encodeLibrary(*library).contains(name.toUtf8()), qPrintable(name));
    else
        QFAIL("unknown check");
}

void LibraryCodingTest::decodeRejects_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("errorMentions");
    QTest::newRow("empty") << QByteArray() << "empty";
    QTest::newRow("blank") << QByteArray("  \n") << "empty";
    QTest::newRow("truncated") << goldenDocument("library-full.json").left(700) << "JSON";
    QTest::newRow("not JSON") << QByteArray("Library") << "JSON";
    QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << "not valid";
    QTest::newRow("invalid UTF-8")
        << documentWithNote(noteID + ", \"text\": \"caf\xe9\"") << "UTF-8";
    QTest::newRow("root is an array") << QByteArray("[]") << "object";
    QTest::newRow("no version") << QByteArray(R"({"projects": []})") << "version";
    QTest::newRow("no projects") << QByteArray(R"({"version": 3})") << "projects";
    QTest::newRow("version is a string")
        << QByteArray(R"({"version": "3", "projects": []})") << "version";
    QTest::newRow("version has a fraction")
        << QByteArray(R"({"version": 3.5, "projects": []})") << "version";
    QTest::newRow("version too large")
        << QByteArray(R"({"version": 18446744073709551615, "projects": []})") << "version";
    QTest::newRow("note without text")
        << documentWithNote(noteID) << "projects[0].sections[0].notes[0].text";
    QTest::newRow("note without id") << documentWithNote(R"("text": "x")") << "notes[0].id";
    QTest::newRow("text is null") << documentWithNote(noteID + R"(, "text": null)") << "null";
    QTest::newRow("text is a number") << documentWithNote(noteID + R"(, "text": 4)") << "string";
    QTest::newRow("text is a boolean")
        << documentWithNote(noteID + R"(, "text": true)") << "should be a string but is a boolean";
    QTest::newRow("isDone is a string")
        << documentWithNote(noteID + R"(, "text": "x", "isDone": "yes")") << "isDone";
    QTest::newRow("isCollapsed is a number")
        << documentWithNote(noteID + R"(, "text": "x")")
               .replace(R"("isCollapsed": false)", R"("isCollapsed": 0)")
        << "isCollapsed should be a boolean but is a number";
    QTest::newRow("section without isCollapsed")
        << documentWithNote(noteID + R"(, "text": "x")").replace(R"("isCollapsed": false,)", "")
        << "isCollapsed";
    QTest::newRow("bad uuid") << documentWithNote(R"("id": "not-a-uuid", "text": "x")")
                              << "not-a-uuid";
    QTest::newRow("uuid with braces")
        << documentWithNote(R"("id": "{00000000-0000-4000-8000-000000000001}", "text": "x")")
        << "UUID";
    QTest::newRow("bad date") << documentWithNote(
        noteID + R"(, "text": "x", "createdAt": "yesterday")")
                              << "yesterday";
    QTest::newRow("February 30") << documentWithNote(
        noteID + R"(, "text": "x", "createdAt": "2026-02-30T00:00:00Z")")
                                 << "2026-02-30";
    QTest::newRow("date without zone")
        << documentWithNote(noteID + R"(, "text": "x", "createdAt": "2026-01-01T00:00:00")")
        << "createdAt";
    QTest::newRow("unknown kind") << documentWithNote(
        noteID + R"(, "text": "x", "attachments": [{"id": "00000000-0000-4000-8000-000000000009",
            "fileName": "a", "storedFileName": "a", "kind": "video", "createdAt": "2026-01-01T00:00:00Z"}])")
                                  << "video";
    QTest::newRow("attachment without createdAt") << documentWithNote(
        noteID + R"(, "text": "x", "attachments": [{"id": "00000000-0000-4000-8000-000000000009",
            "fileName": "a", "storedFileName": "a", "kind": "file"}])")
                                                  << "attachments[0].createdAt";
    QTest::newRow("byteCount with a fraction") << documentWithNote(
        noteID + R"(, "text": "x", "attachments": [{"id": "00000000-0000-4000-8000-000000000009",
            "fileName": "a", "storedFileName": "a", "kind": "file", "createdAt": "2026-01-01T00:00:00Z", "byteCount": 1.5}])")
                                               << "byteCount";
    QTest::newRow("source without appName")
        << documentWithNote(noteID + R"(, "text": "x", "source": {})") << "source.appName";
    QTest::newRow("projects is an object")
        << QByteArray(R"({"version": 3, "projects": {}})") << "array";
    QTest::newRow("the first of two faults in many notes")
        << documentWithNote(notesWithTwoFaults()) << "projects[0].sections[0].notes[3000].text";
    QTest::newRow("trailing garbage")
        << (documentWithNote(noteID + R"(, "text": "x")") + "}") << "JSON";
}

void LibraryCodingTest::decodeRejects()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, errorMentions);
    QString error;
    QVERIFY(!decodeLibrary(document, &error));
    QVERIFY2(error.contains(errorMentions, Qt::CaseInsensitive), qPrintable(error));
}

void LibraryCodingTest::minimalNoteDefaultsAndRewrite()
{
    const QDateTime before = QDateTime::currentDateTimeUtc().addMSecs(-1);
    const std::optional<Library> library
        = decodeLibrary(documentWithNote(noteID + R"(, "text": "hi")"));
    QVERIFY(library);
    const Note &note = library->projects[0].sections[0].notes[0];
    QCOMPARE(note.isDone, false);
    QVERIFY(note.createdAt >= before && note.createdAt <= QDateTime::currentDateTimeUtc());
    QCOMPARE(note.updatedAt, note.createdAt);
    QVERIFY(!note.completedAt);
    QVERIFY(!note.source);
    QVERIFY(note.attachments.isEmpty());
    QCOMPARE(library->projects[0].sections[0].isAutomatic, false);

    const QByteArray rewritten = encodeLibrary(*library);
    QVERIFY(rewritten.contains(R"("createdAt" : ")" + formatDocumentDate(note.createdAt)));
    for (const char *part : {R"("attachments" : [])", R"("isDone" : false)", R"("updatedAt" : ")",
             R"("isAutomatic" : false)"})
        QVERIFY2(rewritten.contains(part), part);
    for (const char *part : {"completedAt", "source", "activeProjectID", "null"})
        QVERIFY2(!rewritten.contains(part), part);
}

void LibraryCodingTest::generatedLibraryRoundTrips_data()
{
    QTest::addColumn<int>("notes");
    QTest::addColumn<int>("seed");
    QTest::newRow("empty projects") << 0 << 1;
    QTest::newRow("small") << 50 << 2;
    QTest::newRow("large") << 20000 << 3;
}

void LibraryCodingTest::generatedLibraryRoundTrips()
{
    QFETCH(int, notes);
    QFETCH(int, seed);
    const Library library = Test::generateLibrary(notes, quint32(seed));
    const QByteArray document = encodeLibrary(library);
    QString error;
    const std::optional<Library> decoded = decodeLibrary(document, &error);
    QVERIFY2(decoded, qPrintable(error));
    QCOMPARE(noteCount(*decoded), notes);
    QVERIFY(*decoded == library);
    QCOMPARE(encodeLibrary(*decoded), document);
}

void LibraryCodingTest::dates_data()
{
    QTest::addColumn<qint64>("msecs");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("epoch") << qint64(0) << QByteArray("1970-01-01T00:00:00Z");
    QTest::newRow("pi day") << qint64(1773480413000) << QByteArray("2026-03-14T09:26:53Z");
    QTest::newRow("leap day") << qint64(951782400000) << QByteArray("2000-02-29T00:00:00Z");
    QTest::newRow("before epoch, rounded down") << qint64(-1) << QByteArray("1969-12-31T23:59:59Z");
    QTest::newRow("end of year") << qint64(4102444799500) << QByteArray("2099-12-31T23:59:59Z");
}

void LibraryCodingTest::dates()
{
    QFETCH(qint64, msecs);
    QFETCH(QByteArray, text);
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC);
    const qint64 wholeSeconds = (msecs >= 0 ? msecs / 1000 : (msecs - 999) / 1000) * 1000;
    QCOMPARE(formatDocumentDate(date), text);
    QCOMPARE(parseDocumentDate(text.toStdString()).toMSecsSinceEpoch(), wholeSeconds);
    // A library keeps its dates to the second: a fraction is dropped on the way out.
    Library library = sparseLibrary();
    library.projects[0].createdAt = date;
    QCOMPARE(decodeLibrary(encodeLibrary(library))->projects[0].createdAt.toMSecsSinceEpoch(),
        wholeSeconds);
}

namespace {

QDateTime wholeSecond(qint64 secs)
{
    return QDateTime::fromSecsSinceEpoch(secs, Qt::UTC);
}

// The parts of a library an edit reaches: the first project's first section,
// its second one and the second note of the first.
struct EditTarget
{
    Library &library;
    NoteSection &section;
    NoteSection &other;
    Note &note;
};

// Edits made in place, through the same objects the last encoding saw.
const QList<std::pair<const char *, std::function<void(EditTarget)>>> edits = {
    {"text changed in place, same length",
        [](EditTarget e) { e.note.text[0] = e.note.text.at(0) == u'Z' ? u'Y' : u'Z'; }},
    {"text replaced",
        [](EditTarget e) { e.note.text = QStringLiteral("a new \"text\"\n— with ünïcode"); }},
    {"done toggled",
        [](EditTarget e) {
            e.note.isDone = !e.note.isDone;
            e.note.completedAt
                = e.note.isDone ? std::optional(wholeSecond(1800000000)) : std::nullopt;
        }},
    {"updatedAt", [](EditTarget e) { e.note.updatedAt = e.note.updatedAt.addSecs(1); }},
    {"createdAt", [](EditTarget e) { e.note.createdAt = wholeSecond(1700000000); }},
    {"source",
        [](EditTarget e) {
            e.note.source
                = NoteSource {QStringLiteral("Terminal"), std::nullopt, QStringLiteral("~")};
        }},
    {"attachment added",
        [](EditTarget e) {
            e.note.attachments.append(
                NoteAttachment {makeID(), QStringLiteral("a.pdf"), QStringLiteral("X.pdf"),
                    NoteAttachment::Kind::File, std::nullopt, 3, wholeSecond(1750000000)});
        }},
    {"attachment renamed in place",
        [](EditTarget e) {
            Note &withAttachment = *std::find_if(e.section.notes.begin(), e.section.notes.end(),
                [](const Note &n) { return !n.attachments.isEmpty(); });
            withAttachment.attachments[0].fileName[0] = u'#';
        }},
    {"note removed", [](EditTarget e) { e.section.notes.removeAt(1); }},
    {"note inserted first",
        [](EditTarget e) {
            Note added = e.note;
            added.id = makeID();
            added.text = QStringLiteral("first");
            e.section.notes.prepend(added);
        }},
    {"notes swapped",
        [](EditTarget e) { e.section.notes.swapItemsAt(0, e.section.notes.size() - 1); }},
    {"note moved to another section",
        [](EditTarget e) { e.other.notes.insert(0, e.section.notes.takeAt(1)); }},
    {"note rebuilt with its id",
        [](EditTarget e) {
            Note rebuilt = e.note;
            rebuilt.text = QString(e.note.text.size(), u'x');
            e.note = rebuilt;
        }},
    {"notes of another section", [](EditTarget e) { e.section.notes = e.other.notes; }},
    {"section renamed", [](EditTarget e) { e.section.title = QStringLiteral("Renamed"); }},
    {"sections reordered", [](EditTarget e) { e.library.projects[0].sections.swapItemsAt(0, 1); }},
    {"section removed", [](EditTarget e) { e.library.projects[0].sections.removeAt(0); }},
    {"section added",
        [](EditTarget e) {
            NoteSection added = makeInboxSection();
            added.createdAt = wholeSecond(1760000000);
            added.notes = e.other.notes.mid(0, 2);
            e.library.projects[0].sections.append(added);
        }},
    {"a note in a later chunk",
        [](EditTarget e) { e.section.notes[e.section.notes.size() / 2].text.append(u'!'); }},
    {"a chunk's worth of notes removed", [](EditTarget e) { e.section.notes.remove(100, 1100); }},
    {"project renamed",
        [](EditTarget e) { e.library.projects[1].name = QStringLiteral("Renamed"); }},
    {"every note",
        [](EditTarget e) {
            for (Project &project : e.library.projects)
                for (NoteSection &s : project.sections)
                    for (Note &n : s.notes)
                        n.text.append(u'!');
        }},
};

QByteArray encodedReusing(const Library &library, EncodedSections &encoded)
{
    QByteArray document;
    const bool ok = encodeLibrary(
        library,
        [&document](const char *data, qsizetype size) {
            document.append(data, size);
            return true;
        },
        &encoded);
    return ok ? document : QByteArray();
}

} // namespace

void LibraryCodingTest::reusedEncodingFollowsEdits_data()
{
    QTest::addColumn<int>("edit");
    for (qsizetype i = 0; i < edits.size(); ++i)
        QTest::newRow(edits[i].first) << int(i);
}

// A writer reuses the bytes of notes it encoded before; every kind of edit,
// made in place on the library it encoded, reaches the next document.
void LibraryCodingTest::reusedEncodingFollowsEdits()
{
    QFETCH(int, edit);
    Library library = Test::generateLibrary(600, 5);
    // The edited section large enough to be held in several chunks.
    NoteList &notes = library.projects[0].sections[0].notes;
    for (int i = 0; notes.size() < 3000; ++i) {
        Note copy = notes.at(i);
        copy.id = QUuid::createUuidV5(copy.id, QString::number(i));
        notes.append(copy);
    }
    EncodedSections encoded;
    QVERIFY(*decodeLibrary(encodedReusing(library, encoded)) == library);
    QVERIFY(*decodeLibrary(encodedReusing(library, encoded)) == library);

    const Library before = library;
    edits[edit].second({library, library.projects[0].sections[0], library.projects[0].sections[1],
        library.projects[0].sections[0].notes[1]});
    QVERIFY(library != before);
    for (int save = 0; save < 2; ++save) {
        QString error;
        const std::optional<Library> decoded
            = decodeLibrary(encodedReusing(library, encoded), &error);
        QVERIFY2(decoded, qPrintable(error));
        QVERIFY(*decoded == library);
    }
    // An undo hands the older state back.
    QVERIFY(*decodeLibrary(encodedReusing(before, encoded)) == before);
}

VESKO_TEST_MAIN(LibraryCodingTest)
#include "tst_librarycoding.moc"
