// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's rows and the selection over them. Notes are named by letters;
// a row list is written as text: "[S]" a section header with its remaining
// count (a "+" when collapsed, a "*" when active), a letter a note row.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QRandomGenerator>

using namespace Vesko;

namespace {

// A project from a description such as "S1:a,B,c|S2+:d": sections separated
// by "|", a "+" after a title for collapsed, notes after ":" with upper case
// for done. Note ids and texts are the letters; section ids follow titles.
QUuid idFor(const QString &name)
{
    return QUuid::createUuidV5(QUuid(), name);
}

Project makeProject(const QString &description)
{
    Project project;
    project.id = idFor(QStringLiteral("project"));
    project.name = QStringLiteral("P");
    if (description.isEmpty())
        return project;
    for (const QString &part : description.split(u'|')) {
        NoteSection section;
        QString title = part.section(u':', 0, 0);
        section.isCollapsed = title.endsWith(u'+');
        if (section.isCollapsed)
            title.chop(1);
        section.title = title;
        section.id = idFor(title);
        const QString notes = part.section(u':', 1);
        if (!notes.isEmpty()) {
            for (const QString &letter : notes.split(u',')) {
                Note note;
                note.id = idFor(letter.toLower());
                note.text = letter.toLower();
                note.isDone = letter != letter.toLower();
                section.notes.append(note);
            }
        }
        project.sections.append(section);
    }
    project.activeSectionID = project.sections.value(0).id;
    return project;
}

QString describe(const QList<PanelRow> &rows)
{
    QStringList parts;
    for (const PanelRow &row : rows) {
        if (row.isSection()) {
            const PanelSectionRow &s = row.section();
            parts.append(QStringLiteral("[%1%2%3%4]")
                             .arg(s.title)
                             .arg(s.remainingCount)
                             .arg(s.isCollapsed ? QStringLiteral("+") : QString())
                             .arg(s.isActive ? QStringLiteral("*") : QString()));
        } else {
            parts.append(row.note().text);
        }
    }
    return parts.join(u' ');
}

std::optional<SearchMatches> matchesFrom(const QString &notes, const QString &sections)
{
    if (notes == u"none")
        return std::nullopt;
    SearchMatches matches;
    for (const QString &letter : notes.split(u',', Qt::SkipEmptyParts))
        matches.noteIDs.insert(idFor(letter));
    for (const QString &title : sections.split(u',', Qt::SkipEmptyParts))
        matches.sectionIDs.insert(idFor(title));
    return matches;
}

} // namespace

class PanelRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void derivation_data();
    void derivation();
    void rowsAgreeWithTheLibraryThroughRandomChanges();

    void select_data();
    void select();
    void moveSelection_data();
    void moveSelection();
    void selectAllLeavesCollapsedOut();
    void forgetNotes();

private:
    // A store over "S1:a,b,c|S2+:d,e|S3:f" with the selection and anchor given.
    std::unique_ptr<Store> storeWith(
        const QString &description, const QString &selection, const QString &anchor);

    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<LibraryWriter> m_writer;
    std::unique_ptr<AttachmentStore> m_attachments = std::make_unique<AttachmentStore>();
    std::unique_ptr<SearchIndex> m_searchIndex = std::make_unique<SearchIndex>();
};

void PanelRowsTest::init()
{
    Preferences::openSettings()->clear();
    m_preferences = std::make_unique<Preferences>();
    m_writer = std::make_unique<LibraryWriter>();
}

void PanelRowsTest::derivation_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>(
        "options"); // letters: c hide completed, n newest first, d done to bottom, s searching
    QTest::addColumn<QString>("matchedNotes"); // "none" for no matches at all
    QTest::addColumn<QString>("matchedSections");
    QTest::addColumn<QString>("rows");

    QTest::newRow("no sections") << ""
                                 << ""
                                 << "none"
                                 << ""
                                 << "";
    QTest::newRow("one empty section") << "S1:"
                                       << ""
                                       << "none"
                                       << ""
                                       << "[S10*]";
    QTest::newRow("storage order") << "S1:a,B,c|S2:d"
                                   << ""
                                   << "none"
                                   << ""
                                   << "[S12*] a b c [S21] d";
    QTest::newRow("newest first") << "S1:a,B,c"
                                  << "n"
                                  << "none"
                                  << ""
                                  << "[S12*] c b a";
    QTest::newRow("done to bottom") << "S1:a,B,c"
                                    << "d"
                                    << "none"
                                    << ""
                                    << "[S12*] a c b";
    QTest::newRow("newest first, done to bottom") << "S1:a,B,c"
                                                  << "nd"
                                                  << "none"
                                                  << ""
                                                  << "[S12*] c a b";
    QTest::newRow("done notes keep storage order at the bottom") << "S1:A,b,C,d"
                                                                 << "d"
                                                                 << "none"
                                                                 << ""
                                                                 << "[S12*] b d a c";
    QTest::newRow("hide completed keeps the header") << "S1:A,B|S2:c"
                                                     << "c"
                                                     << "none"
                                                     << ""
                                                     << "[S10*] [S21] c";
    QTest::newRow("collapsed shows its count, no notes") << "S1+:a,b,C"
                                                         << ""
                                                         << "none"
                                                         << ""
                                                         << "[S12+*]";
    QTest::newRow("search with no matches lists nothing") << "S1:a|S2:b"
                                                          << "s"
                                                          << "none"
                                                          << ""
                                                          << "";
    QTest::newRow("search lists matching notes only") << "S1:a,b|S2:c"
                                                      << "s"
                                                      << "b"
                                                      << ""
                                                      << "[S12*] b";
    QTest::newRow("search opens collapsed sections") << "S1+:a,b,c"
                                                     << "s"
                                                     << "a,c"
                                                     << ""
                                                     << "[S13+*] a c";
    QTest::newRow("title match keeps all notes") << "S1:a,b|S2:c"
                                                 << "s"
                                                 << ""
                                                 << "S1"
                                                 << "[S12*] a b";
    QTest::newRow("title match of an empty section") << "S1:|S2:c"
                                                     << "s"
                                                     << "c"
                                                     << "S1"
                                                     << "[S21] c";
    QTest::newRow("search hides done notes without showCompleted") << "S1:A|S2:b"
                                                                   << "sc"
                                                                   << "a,b"
                                                                   << ""
                                                                   << "[S21] b";
    QTest::newRow("title match, all notes hidden") << "S1:A,B"
                                                   << "sc"
                                                   << ""
                                                   << "S1"
                                                   << "";
    QTest::newRow("matches ignored when not searching") << "S1:a,b"
                                                        << ""
                                                        << "a"
                                                        << ""
                                                        << "[S12*] a b";
    QTest::newRow("search sorts like the list") << "S1:a,B,c"
                                                << "snd"
                                                << "a,b,c"
                                                << ""
                                                << "[S12*] c a b";
}

void PanelRowsTest::derivation()
{
    QFETCH(QString, project);
    QFETCH(QString, options);
    QFETCH(QString, matchedNotes);
    QFETCH(QString, matchedSections);
    QFETCH(QString, rows);

    const Project p = makeProject(project);
    RowOptions o;
    o.showCompleted = !options.contains(u'c');
    o.newestFirst = options.contains(u'n');
    o.moveDoneToBottom = options.contains(u'd');
    o.isSearching = options.contains(u's');
    QCOMPARE(describe(derivePanelRows(&p, o, matchesFrom(matchedNotes, matchedSections))), rows);
}

void PanelRowsTest::rowsAgreeWithTheLibraryThroughRandomChanges()
{
    Store store(
        Test::generateLibrary(400, 9), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    QRandomGenerator random(77);
    for (int step = 0; step < 400; ++step) {
        const int action = random.bounded(6);
        if (action == 0 && store.canUndo()) {
            store.undo();
        } else if (action == 1 && store.canRedo()) {
            store.redo();
        } else if (action == 2) {
            m_preferences->setNewestFirst(!m_preferences->newestFirst());
            store.refreshRows();
        } else {
            store.recordUndo();
            Library library = store.library();
            Project &project = library.projects[activeProjectIndex(library)];
            NoteSection &section = project.sections[random.bounded(int(project.sections.size()))];
            if (action == 3 && !section.notes.isEmpty())
                section.notes[random.bounded(int(section.notes.size()))].isDone ^= true;
            else if (action == 4)
                section.isCollapsed = !section.isCollapsed;
            else if (!section.notes.isEmpty())
                section.notes.removeAt(random.bounded(int(section.notes.size())));
            store.setLibrary(library);
            store.commit();
        }
        RowOptions options;
        options.showCompleted = m_preferences->showCompleted();
        options.newestFirst = m_preferences->newestFirst();
        options.moveDoneToBottom = m_preferences->moveDoneToBottom();
        QCOMPARE(
            store.rows(), derivePanelRows(activeProject(store.library()), options, std::nullopt));
    }
}

std::unique_ptr<Store> PanelRowsTest::storeWith(
    const QString &description, const QString &selection, const QString &anchor)
{
    Library library;
    library.projects = {makeProject(description)};
    library.activeProjectID = library.projects[0].id;
    auto store = std::make_unique<Store>(
        library, Store::Services {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    QSet<QUuid> ids;
    for (const QString &letter : selection.split(u',', Qt::SkipEmptyParts))
        ids.insert(idFor(letter));
    store->setSelection(ids, anchor.isEmpty() ? std::nullopt : std::optional<QUuid>(idFor(anchor)));
    return store;
}

namespace {
const QStringList allLetters = {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
    QStringLiteral("d"), QStringLiteral("e"), QStringLiteral("f")};

QString letters(const QSet<QUuid> &ids)
{
    QStringList out;
    for (const QString &letter : allLetters) {
        if (ids.contains(idFor(letter)))
            out.append(letter);
    }
    return out.join(u',');
}

QString letter(const std::optional<QUuid> &id)
{
    for (const QString &l : allLetters) {
        if (id == idFor(l))
            return l;
    }
    return id ? QStringLiteral("?") : QString();
}
} // namespace

void PanelRowsTest::select_data()
{
    QTest::addColumn<QString>("selection");
    QTest::addColumn<QString>("anchor");
    QTest::addColumn<QString>("clicked");
    QTest::addColumn<QString>("modifiers"); // s extending, t toggling
    QTest::addColumn<QString>("expectedSelection");
    QTest::addColumn<QString>("expectedAnchor");

    QTest::newRow("plain click") << "a,b"
                                 << "a"
                                 << "c"
                                 << ""
                                 << "c"
                                 << "c";
    QTest::newRow("shift without anchor") << ""
                                          << ""
                                          << "c"
                                          << "s"
                                          << "c"
                                          << "c";
    QTest::newRow("shift extends from the anchor") << "b"
                                                   << "a"
                                                   << "f"
                                                   << "s"
                                                   << "a,b,c,f"
                                                   << "a";
    QTest::newRow("shift upwards replaces") << "a,b,c,f"
                                            << "f"
                                            << "b"
                                            << "s"
                                            << "b,c,f"
                                            << "f";
    QTest::newRow("shift with the anchor collapsed") << "d"
                                                     << "d"
                                                     << "b"
                                                     << "s"
                                                     << "b"
                                                     << "b";
    QTest::newRow("toggle adds and anchors") << "a"
                                             << "a"
                                             << "c"
                                             << "t"
                                             << "a,c"
                                             << "c";
    QTest::newRow("toggle removes, anchor stays") << "c"
                                                  << "c"
                                                  << "c"
                                                  << "t"
                                                  << ""
                                                  << "c";
    QTest::newRow("toggle wins over shift") << "a"
                                            << "a"
                                            << "c"
                                            << "st"
                                            << "a,c"
                                            << "c";
}

void PanelRowsTest::select()
{
    QFETCH(QString, selection);
    QFETCH(QString, anchor);
    QFETCH(QString, clicked);
    QFETCH(QString, modifiers);
    QFETCH(QString, expectedSelection);
    QFETCH(QString, expectedAnchor);

    auto store = storeWith(QStringLiteral("S1:a,b,c|S2+:d,e|S3:f"), selection, anchor);
    store->select(idFor(clicked), modifiers.contains(u's'), modifiers.contains(u't'));
    QCOMPARE(letters(store->selection()), expectedSelection);
    QCOMPARE(letter(store->selectionAnchor()), expectedAnchor);
}

void PanelRowsTest::moveSelection_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("selection");
    QTest::addColumn<QString>("anchor");
    QTest::addColumn<QString>("keys"); // a sequence of d, u, D (shift+down), U (shift+up)
    QTest::addColumn<QString>("expectedSelection");
    QTest::addColumn<QString>("expectedAnchor");

    const QString abc = QStringLiteral("S1:a,b,c");
    QTest::newRow("down") << abc << "a"
                          << "a"
                          << "d"
                          << "b"
                          << "b";
    QTest::newRow("down on the last stays") << abc << "c"
                                            << "c"
                                            << "d"
                                            << "c"
                                            << "c";
    QTest::newRow("down with nothing selected") << abc << ""
                                                << ""
                                                << "d"
                                                << "a"
                                                << "a";
    QTest::newRow("up with nothing selected") << abc << ""
                                              << ""
                                              << "u"
                                              << "c"
                                              << "c";
    QTest::newRow("shift down") << abc << "b"
                                << "b"
                                << "D"
                                << "b,c"
                                << "b";
    QTest::newRow("shift down twice stays at two") << abc << "b"
                                                   << "b"
                                                   << "DD"
                                                   << "b,c"
                                                   << "b";
    QTest::newRow("shift down then up") << abc << "b"
                                        << "b"
                                        << "DDU"
                                        << "a,b"
                                        << "b";
    QTest::newRow("no anchor starts from a selected note") << abc << "b"
                                                           << ""
                                                           << "d"
                                                           << "c"
                                                           << "c";
    QTest::newRow("anchor collapsed, down") << "S1:a,b|S2+:d|S3:f"
                                            << "d"
                                            << "d"
                                            << "d"
                                            << "a"
                                            << "a";
    QTest::newRow("anchor collapsed, up") << "S1:a,b|S2+:d|S3:f"
                                          << "d"
                                          << "d"
                                          << "u"
                                          << "f"
                                          << "f";
    QTest::newRow("nothing visible keeps the selection") << "S1+:a,b"
                                                         << "a"
                                                         << "a"
                                                         << "d"
                                                         << "a"
                                                         << "a";
}

void PanelRowsTest::moveSelection()
{
    QFETCH(QString, project);
    QFETCH(QString, selection);
    QFETCH(QString, anchor);
    QFETCH(QString, keys);
    QFETCH(QString, expectedSelection);
    QFETCH(QString, expectedAnchor);

    auto store = storeWith(project, selection, anchor);
    for (QChar key : keys)
        store->moveSelection(key.toLower() == u'd' ? 1 : -1, key.isUpper());
    QCOMPARE(letters(store->selection()), expectedSelection);
    QCOMPARE(letter(store->selectionAnchor()), expectedAnchor);
}

void PanelRowsTest::selectAllLeavesCollapsedOut()
{
    auto store = storeWith(QStringLiteral("S1:a,b|S2+:d,e|S3:f"), QString(), QStringLiteral("b"));
    store->selectAll();
    QCOMPARE(letters(store->selection()), QStringLiteral("a,b,f"));
    QCOMPARE(letter(store->selectionAnchor()), QStringLiteral("b"));

    store->selectAllInSection(idFor(QStringLiteral("S2")));
    QCOMPARE(letters(store->selection()), QStringLiteral("d,e"));
    QCOMPARE(letter(store->selectionAnchor()), QStringLiteral("d"));

    store->selectAllInSection(makeID());
    QVERIFY(store->selection().isEmpty());
    QVERIFY(!store->selectionAnchor());
}

void PanelRowsTest::forgetNotes()
{
    auto store = storeWith(QStringLiteral("S1:a,b,c"), QStringLiteral("a,b"), QStringLiteral("a"));
    store->setEditingNoteID(idFor(QStringLiteral("a")));
    store->forgetNotes({idFor(QStringLiteral("a"))});
    QCOMPARE(letters(store->selection()), QStringLiteral("b"));
    QCOMPARE(letter(store->selectionAnchor()), QStringLiteral("b"));
    QVERIFY(!store->editingNoteID());

    store->forgetNotes({idFor(QStringLiteral("b"))});
    QVERIFY(store->selection().isEmpty());
    QVERIFY(!store->selectionAnchor());
}

VESKO_TEST_MAIN(PanelRowsTest)
#include "tst_panelrows.moc"
