// SPDX-License-Identifier: GPL-3.0-or-later
//
// Notes as text: plain copies and lists in panel order, list styles, the
// Markdown export as golden text, and writing the export to a real file.

#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "store/NoteText.h"

using namespace Vesko;
using namespace Qt::StringLiterals;

namespace {

NoteAttachment attachment(const QString &name, const QString &stored, NoteAttachment::Kind kind)
{
    NoteAttachment a;
    a.id = makeID();
    a.fileName = name;
    a.storedFileName = stored;
    a.kind = kind;
    return a;
}

} // namespace

class NoteTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listItem_data();
    void listItem();
    void copiesFollowThePanel();
    void exportDocument();
    void exportEdges_data();
    void exportEdges();
    void writeExport();
};

void NoteTextTest::listItem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("style");
    QTest::addColumn<bool>("markdown");
    QTest::addColumn<QString>("expected");
    const QString three = QStringLiteral("first\nsecond\nthird");
    QTest::newRow("numbered") << three << int(ListStyle::Numbered) << true
                              << "3. first\n   second\n   third";
    QTest::newRow("dash") << three << int(ListStyle::Dash) << true
                          << "- first\n   second\n   third";
    QTest::newRow("plain keeps the indent")
        << three << int(ListStyle::Plain) << true << "first\n   second\n   third";
    QTest::newRow("empty line becomes three spaces")
        << "a\n\nb" << int(ListStyle::Dash) << true << "- a\n   \n   b";
    QTest::newRow("markdown kept") << "**bold** [site](https://x.org)" << int(ListStyle::Dash)
                                   << true << "- **bold** [site](https://x.org)";
    QTest::newRow("markdown stripped, heading stays")
        << "# **bold** [site](https://x.org)" << int(ListStyle::Dash) << false << "- # bold site";
}

void NoteTextTest::listItem()
{
    QFETCH(QString, text);
    QFETCH(int, style);
    QFETCH(bool, markdown);
    QFETCH(QString, expected);
    QCOMPARE(listItemText(2, Test::noteWith(text), ListStyle(style), markdown), expected);
}

void NoteTextTest::copiesFollowThePanel()
{
    Test::StoreFixture fixture;
    Preferences &preferences = fixture.preferences();
    Store &store = fixture.make(
        {QStringLiteral("*Inbox:one,two,*three*,four,five,six,seven|Hidden+:hidden")});
    // Notes 7 and 3, asked for in that order, and a hidden one: panel order, numbered from 1.
    const QList<QUuid> ids = Test::noteIDs(QStringLiteral("seven,*three*,hidden"));
    QCOMPARE(store.listCopyText(ids), QStringLiteral("1. *three*\n2. seven"));
    preferences.setCopyIncludesMarkdown(false);
    preferences.setListStyle(ListStyle::Dash);
    QCOMPARE(store.listCopyText(ids), QStringLiteral("- three\n- seven"));
    QCOMPARE(store.plainCopyText(ids), QStringLiteral("three\n\nseven"));
    QCOMPARE(store.plainCopyText(Test::noteIDs(QStringLiteral("hidden"))), QString());
    QCOMPARE(store.listCopyText({}), QString());
    preferences.setNewestFirst(true);
    store.refreshRows();
    QCOMPARE(store.plainCopyText(ids), QStringLiteral("seven\n\nthree"));
}

void NoteTextTest::exportDocument()
{
    Library library;
    library.projects = {Test::describedProject(
        QStringLiteral("Ideas:first line\nsecond line,DONE THING,**raw** *text*"),
        QStringLiteral("Work"))};
    NoteList &notes = library.projects[0].sections[0].notes;
    notes[0].attachments = {attachment(QStringLiteral("Pasted Image.png"),
        QStringLiteral("A1/Pasted Image.png"), NoteAttachment::Kind::Image)};
    notes[2].attachments = {attachment(
        QStringLiteral("a b.pdf"), QStringLiteral("X/a b.pdf"), NoteAttachment::Kind::File)};
    // Images are shown, other files linked; the text goes as it was typed.
    QCOMPARE(markdownExportText(library),
        QStringLiteral("# Work\n"
                       "\n"
                       "## Ideas\n"
                       "\n"
                       "- [ ] first line\n"
                       "      second line\n"
                       "      ![Pasted Image.png](Attachments/A1/Pasted Image.png)\n"
                       "- [x] done thing\n"
                       "- [ ] **raw** *text*\n"
                       "      [a b.pdf](Attachments/X/a b.pdf)\n"));
}

void NoteTextTest::exportEdges_data()
{
    // The projects P, Q, ... as the fixture describes them.
    QTest::addColumn<QStringList>("projects");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no projects") << QStringList() << u""_s;
    QTest::newRow("project without sections") << QStringList {u""_s} << u"# P\n"_s;
    QTest::newRow("empty section") << QStringList {u"S"_s} << u"# P\n\n## S\n\n"_s;
    QTest::newRow("two projects") << QStringList {u"S"_s, u"T"_s}
                                  << u"# P\n\n## S\n\n\n# Q\n\n## T\n\n"_s;
}

void NoteTextTest::exportEdges()
{
    QFETCH(QStringList, projects);
    QFETCH(QString, expected);
    Library library;
    for (qsizetype i = 0; i < projects.size(); ++i)
        library.projects.append(Test::describedProject(projects[i], QString(QChar(u'P' + int(i)))));
    QCOMPARE(markdownExportText(library), expected);
}

void NoteTextTest::writeExport()
{
    const QString folder = Test::IsolatedEnvironment::current().root() + QStringLiteral("/export");
    const QString path = folder + QStringLiteral("/Vesko Notes.md");
    // Files whose names a fixed temporary name would take: they are not the export's.
    const QStringList others
        = {QStringLiteral(".Vesko Notes.md.export"), QStringLiteral(".Vesko Notes.md.tmp")};
    for (const QString &name : others)
        Test::writeFile(folder + u'/' + name, "not the export's");

    const QString text = QStringLiteral("# Ünïcode 🙂\n");
    const mode_t previous = ::umask(022);
    QCOMPARE(writeMarkdownExport(text, path), std::nullopt);
    QCOMPARE(writeMarkdownExport(text + text, path), std::nullopt); // replaces
    ::umask(previous);
    QCOMPARE(QString::fromUtf8(Test::readFile(path)), text + text);
    QCOMPARE(Test::fileMode(path), 0600u);
    QCOMPARE(Test::fileTree(folder), QStringList(others) << QStringLiteral("Vesko Notes.md"));
    for (const QString &name : others)
        QCOMPARE(Test::readFile(folder + u'/' + name), QByteArray("not the export's"));
    // A folder that cannot take the file gives a readable failure.
    const auto failure = writeMarkdownExport(text, folder + QStringLiteral("/missing/Notes.md"));
    QVERIFY(failure);
    QVERIFY2(failure->contains(QStringLiteral("missing")), qPrintable(*failure));
}

VESKO_TEST_MAIN(NoteTextTest)
#include "tst_notetext.moc"
