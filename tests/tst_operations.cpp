// SPDX-License-Identifier: GPL-3.0-or-later
//
// The operations on notes, sections and projects. A project is written as
// text: sections separated by "|", "Title" with "!" for automatic and "+" for
// collapsed, "*" before the active one, then ":" and its notes by letter,
// upper case for done ones; "a@Mail" is a note captured from Mail.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSignalSpy>

using namespace Vesko;

namespace {

QUuid idFor(const QString &name)
{
    return QUuid::createUuidV5(QUuid(), name);
}

Project makeProject(const QString &description, const QString &name = QStringLiteral("P"))
{
    Project project;
    project.id = idFor(QStringLiteral("project ") + name);
    project.name = name;
    for (const QString &part : description.split(u'|', Qt::SkipEmptyParts)) {
        NoteSection section;
        QString title = part.section(u':', 0, 0);
        const bool active = title.startsWith(u'*');
        if (active)
            title.remove(0, 1);
        section.isCollapsed = title.contains(u'+');
        section.isAutomatic = title.contains(u'!');
        title.remove(u'+').remove(u'!');
        section.title = title;
        section.id = idFor(name + u'/' + title);
        if (active)
            project.activeSectionID = section.id;
        for (const QString &item : part.section(u':', 1).split(u',', Qt::SkipEmptyParts)) {
            const QString letter = item.section(u'@', 0, 0);
            Note note;
            note.id = idFor(letter.toLower());
            note.text = letter.toLower();
            note.isDone = letter != letter.toLower();
            if (note.isDone)
                note.completedAt = QDateTime::fromSecsSinceEpoch(1000, Qt::UTC);
            note.createdAt = note.updatedAt = QDateTime::fromSecsSinceEpoch(100, Qt::UTC);
            if (item.contains(u'@'))
                note.source = NoteSource {item.section(u'@', 1), std::nullopt, std::nullopt};
            section.notes.append(note);
        }
        project.sections.append(section);
    }
    return project;
}

QString describe(const Project &project)
{
    QStringList parts;
    for (const NoteSection &section : project.sections) {
        QStringList notes;
        for (const Note &note : section.notes) {
            QString text = note.isDone ? note.text.toUpper() : note.text;
            text.replace(QStringLiteral("\n\n"), QStringLiteral("/"));
            if (note.source)
                text += u'@' + note.source->appName;
            notes.append(text);
        }
        parts.append((project.activeSectionID == section.id ? QStringLiteral("*") : QString())
            + section.title + (section.isAutomatic ? QStringLiteral("!") : QString())
            + (section.isCollapsed ? QStringLiteral("+") : QString()) + u':' + notes.join(u','));
    }
    return parts.join(u'|');
}

QList<QUuid> ids(const QString &letters)
{
    QList<QUuid> out;
    for (const QString &letter : letters.split(u',', Qt::SkipEmptyParts))
        out.append(idFor(letter));
    return out;
}

QString letterOf(const Store &store, const QUuid &id)
{
    const std::optional<Note> note = store.note(id);
    return note ? QString(note->text).replace(QStringLiteral("\n\n"), QStringLiteral("/"))
                : QStringLiteral("?");
}

QString selectionText(const Store &store)
{
    QStringList out;
    for (const Note &note : store.visibleNotes()) {
        if (store.selection().contains(note.id))
            out.append(letterOf(store, note.id));
    }
    if (out.size() != store.selection().size())
        out.append(QStringLiteral("+hidden"));
    return out.join(u',');
}

} // namespace

class OperationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void addNote_data();
    void addNote();
    void addNoteReveals();
    void updateNote_data();
    void updateNote();
    void setDone();
    void toggleDone_data();
    void toggleDone();
    void deleteNotes_data();
    void deleteNotes();
    void mergeNotes_data();
    void mergeNotes();
    void splitNote_data();
    void splitNote();
    void moveNotes_data();
    void moveNotes();
    void sections_data();
    void sections();
    void projects();
    void automaticSectionComesBackWithUndo();
    void attachmentFilesGoOnlyWhenUnreferenced();
    void removalStaysInsideTheAttachmentsFolder_data();
    void removalStaysInsideTheAttachmentsFolder();
    void invariantsUnderRandomOperations();

private:
    std::unique_ptr<Store> storeWith(const QString &description, const QString &other = QString());

    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<LibraryWriter> m_writer;
    std::unique_ptr<AttachmentStore> m_attachments;
    std::unique_ptr<SearchIndex> m_searchIndex = std::make_unique<SearchIndex>();
};

void OperationsTest::init()
{
    Preferences::openSettings()->clear();
    QDir(Test::IsolatedEnvironment::current().dataHome()).removeRecursively();
    m_preferences = std::make_unique<Preferences>();
    m_writer = std::make_unique<LibraryWriter>();
    m_attachments = std::make_unique<AttachmentStore>();
}

void OperationsTest::cleanup()
{
    m_attachments.reset();
    m_writer.reset();
}

std::unique_ptr<Store> OperationsTest::storeWith(const QString &description, const QString &other)
{
    Library library;
    library.projects = {makeProject(description)};
    if (!other.isEmpty())
        library.projects.append(makeProject(other, QStringLiteral("Q")));
    library.activeProjectID = library.projects[0].id;
    // Set after construction, so that the repair at load leaves the fixture as written.
    auto store = std::make_unique<Store>(makeDefaultLibrary(),
        Store::Services {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    store->setLibrary(library);
    store->refreshRows();
    return store;
}

void OperationsTest::addNote_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sectionID"); // a title to look the id up by, or "stale"
    QTest::addColumn<QString>("sectionTitle");
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<QString>("expected");

    QTest::newRow("to the active section") << "Inbox:a|*Work:b"
                                           << " n \n"
                                           << ""
                                           << "" << false << "Inbox:a|*Work:b,n";
    QTest::newRow("to a section by id") << "Inbox:a|*Work:b"
                                        << "n"
                                        << "Inbox"
                                        << "" << false << "Inbox:a,n|*Work:b";
    QTest::newRow("stale id falls to the title") << "*Inbox:a"
                                                 << "n"
                                                 << "stale"
                                                 << "Mail" << true << "*Inbox:a|Mail!:n";
    QTest::newRow("capture joins its automatic section") << "*Inbox:|mail!:a"
                                                         << "n"
                                                         << ""
                                                         << "Mail" << true << "*Inbox:|mail!:a,n";
    QTest::newRow("capture never falls into an ordinary section")
        << "*Inbox:|Mail:a"
        << "n"
        << ""
        << "Mail" << true << "*Inbox:|Mail:a|Mail!:n";
    QTest::newRow("automatic Inbox is not the ordinary one")
        << "*Inbox:a"
        << "n"
        << ""
        << "Inbox" << true << "*Inbox:a|Inbox!:n";
    QTest::newRow("ordinary title skips the automatic section")
        << "*Inbox:|Mail!:a"
        << "n"
        << ""
        << "mail" << false << "*Inbox:|Mail!:a|mail:n";
    QTest::newRow("stale active section makes Inbox active") << "Work:a"
                                                             << "n"
                                                             << ""
                                                             << "" << false << "Work:a|*Inbox:n";
    QTest::newRow("stale active section finds inbox") << "Work:a|inbox:b"
                                                      << "n"
                                                      << ""
                                                      << "" << false << "Work:a|*inbox:b,n";
    QTest::newRow("blank text adds nothing") << "*Inbox:a"
                                             << " \n\t"
                                             << ""
                                             << "" << false << "*Inbox:a";
}

void OperationsTest::addNote()
{
    QFETCH(QString, project);
    QFETCH(QString, text);
    QFETCH(QString, sectionID);
    QFETCH(QString, sectionTitle);
    QFETCH(bool, automatic);
    QFETCH(QString, expected);

    auto store = storeWith(project);
    std::optional<QUuid> id;
    if (sectionID == u"stale")
        id = makeID();
    else if (!sectionID.isEmpty())
        id = idFor(QStringLiteral("P/") + sectionID);
    const std::optional<Note> note = store->addNote(text, id,
        sectionTitle.isEmpty() ? std::nullopt : std::optional(sectionTitle), automatic,
        std::nullopt, {}, false);
    // Give the new note the name "n" for the description.
    QString actual = describe(store->library().projects[0]);
    QCOMPARE(actual, expected);
    QCOMPARE(note.has_value(), expected != project);
    QCOMPARE(store->canUndo(), note.has_value());
}

void OperationsTest::addNoteReveals()
{
    auto store = storeWith(QStringLiteral("*Inbox+:a"));
    store->setSelection({idFor(QStringLiteral("a"))}, idFor(QStringLiteral("a")));

    NoteAttachment attachment;
    attachment.id = makeID();
    attachment.fileName = attachment.storedFileName = QStringLiteral("x.png");
    const std::optional<Note> note = store->addNote(
        QStringLiteral("  "), std::nullopt, std::nullopt, false, std::nullopt, {attachment}, true);
    QVERIFY(note);
    QCOMPARE(note->text, QString()); // blank text with an attachment
    QCOMPARE(describe(store->library().projects[0]), QStringLiteral("*Inbox:a,")); // expanded
    QCOMPARE(store->selection(), QSet<QUuid> {note->id});
    QVERIFY(!store->selectionAnchor());
    QTRY_COMPARE(store->selectionAnchor(), note->id);

    // The late anchor is not set when the note is no longer selected.
    const std::optional<Note> second = store->addNote(
        QStringLiteral("b"), std::nullopt, std::nullopt, false, std::nullopt, {}, true);
    store->setSelection({}, std::nullopt);
    QTest::qWait(60);
    QVERIFY(!store->selectionAnchor());
    Q_UNUSED(second);
}

void OperationsTest::updateNote_data()
{
    QTest::addColumn<QString>("note"); // a letter, or "unknown"
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("undoStep");

    QTest::newRow("edit") << "a"
                          << " x "
                          << "*S:x,b" << true;
    QTest::newRow("same text after trimming") << "a"
                                              << "a\n"
                                              << "*S:a,b" << false;
    QTest::newRow("emptying deletes") << "a"
                                      << " \n"
                                      << "*S:b" << true;
    QTest::newRow("unknown id still takes a step") << "unknown"
                                                   << "x"
                                                   << "*S:a,b" << true;
    QTest::newRow("unknown id, empty text") << "unknown"
                                            << ""
                                            << "*S:a,b" << true;
}

void OperationsTest::updateNote()
{
    QFETCH(QString, note);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QFETCH(bool, undoStep);

    auto store = storeWith(QStringLiteral("*S:a,b"));
    const quint64 revision = store->libraryRevision();
    store->updateNote(note == u"unknown" ? makeID() : idFor(note), text);
    QCOMPARE(describe(store->library().projects[0]), expected);
    QCOMPARE(store->canUndo(), undoStep);
    QCOMPARE(store->libraryRevision(), revision + (undoStep ? 1 : 0));
}

void OperationsTest::setDone()
{
    auto store = storeWith(QStringLiteral("*S:a,B,c"));
    const QDateTime before = store->note(idFor(QStringLiteral("b")))->completedAt.value();
    store->setDone(ids(QStringLiteral("a,b")), true);
    QCOMPARE(describe(store->library().projects[0]), QStringLiteral("*S:A,B,c"));
    QVERIFY(store->note(idFor(QStringLiteral("b")))->completedAt.value() > before); // stamped again
    QVERIFY(store->note(idFor(QStringLiteral("a")))->completedAt.has_value());

    store->setDone(ids(QStringLiteral("a,b")), false);
    QCOMPARE(describe(store->library().projects[0]), QStringLiteral("*S:a,b,c"));
    QVERIFY(!store->note(idFor(QStringLiteral("a")))->completedAt);
    QCOMPARE(store->undoStepCount(), 2);
    store->setDone({}, true);
    QCOMPARE(store->undoStepCount(), 2);
}

void OperationsTest::toggleDone_data()
{
    // Done unless every one of the notes is done; a note that cannot be
    // found counts as not done.
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("notes");
    QTest::addColumn<bool>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("open first") << "*S:a,B"
                                << ""
                                << "a,b" << true << "*S:A,B";
    QTest::newRow("open last") << "*S:A,b"
                               << ""
                               << "a,b" << true << "*S:A,B";
    QTest::newRow("all done") << "*S:A,B,c"
                              << ""
                              << "b,a" << false << "*S:a,b,c";
    QTest::newRow("all done, one in another project") << "*S:A,b"
                                                      << "T:C"
                                                      << "a,c" << false << "*S:a,b";
    QTest::newRow("open in another project") << "*S:A"
                                             << "T:c"
                                             << "a,c" << true << "*S:A";
    QTest::newRow("one of them is gone") << "*S:A,B"
                                         << ""
                                         << "a,z,b" << true << "*S:A,B";
    QTest::newRow("named twice") << "*S:A,B"
                                 << ""
                                 << "a,a" << false << "*S:a,B";
}

void OperationsTest::toggleDone()
{
    QFETCH(QString, project);
    QFETCH(QString, other);
    QFETCH(QString, notes);
    QFETCH(bool, value);
    QFETCH(QString, expected);
    auto store = storeWith(project, other);
    QCOMPARE(store->toggledDoneValue(ids(notes)), value);
    store->toggleDone(ids(notes));
    QCOMPARE(describe(store->library().projects[0]), expected);
}

void OperationsTest::deleteNotes_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("deleted");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("selected");

    QTest::newRow("selects the next") << "*S:a,b,c"
                                      << "b"
                                      << "*S:a,c"
                                      << "c";
    QTest::newRow("last selects the one above") << "*S:a,b,c"
                                                << "c"
                                                << "*S:a,b"
                                                << "b";
    QTest::newRow("across sections") << "*S:a,b|T:c"
                                     << "b"
                                     << "*S:a|T:c"
                                     << "c";
    QTest::newRow("skips other removed notes") << "*S:a,b,c,d"
                                               << "b,c"
                                               << "*S:a,d"
                                               << "d";
    QTest::newRow("all notes leave nothing selected") << "*S:a,b"
                                                      << "a,b"
                                                      << "*S:"
                                                      << "";
    QTest::newRow("emptied automatic section goes") << "*S:a|Mail!:b"
                                                    << "b"
                                                    << "*S:a"
                                                    << "a";
    QTest::newRow("emptied ordinary section stays") << "*S:a|Mail:b"
                                                    << "b"
                                                    << "*S:a|Mail:"
                                                    << "a";
    QTest::newRow("hidden note: no next") << "*S:a|T+:b"
                                          << "b"
                                          << "*S:a|T+:"
                                          << "";
}

void OperationsTest::deleteNotes()
{
    QFETCH(QString, project);
    QFETCH(QString, deleted);
    QFETCH(QString, expected);
    QFETCH(QString, selected);

    auto store = storeWith(project);
    const QList<QUuid> list = ids(deleted);
    store->deleteNotes(QSet<QUuid>(list.cbegin(), list.cend()));
    QCOMPARE(describe(store->library().projects[0]), expected);
    QCOMPARE(selectionText(*store), selected);
    QCOMPARE(store->selectionAnchor().has_value(), !selected.isEmpty());
}

void OperationsTest::mergeNotes_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<bool>("newestFirst");
    QTest::addColumn<QString>("merged");
    QTest::addColumn<QString>("expected");

    QTest::newRow("two in a row") << "*S:a,b,c" << false << "a,b"
                                  << "*S:a/b,c";
    QTest::newRow("row order, not argument order") << "*S:a,b,c" << false << "c,a"
                                                   << "*S:a/c,b";
    QTest::newRow("newest first puts the newest text first") << "*S:a,b,c" << true << "a,b"
                                                             << "*S:b/a,c";
    QTest::newRow("all done stays done") << "*S:A,B" << false << "a,b"
                                         << "*S:A/B";
    QTest::newRow("one open makes it open") << "*S:A,b,C" << false << "a,b,c"
                                            << "*S:a/b/c";
    QTest::newRow("into the first's section; empty automatic goes")
        << "*S:a|Mail!:b" << false << "b,a"
        << "*S:a/b";
    QTest::newRow("first's source is kept") << "*S:a@Mail,b@Notes" << false << "a,b"
                                            << "*S:a/b@Mail";
    QTest::newRow("first without source gives none") << "*S:a,b@Notes" << false << "a,b"
                                                     << "*S:a/b";
    QTest::newRow("one note is not a merge") << "*S:a,b" << false << "a"
                                             << "*S:a,b";
    QTest::newRow("hidden notes take no part") << "*S:a|T+:b" << false << "a,b"
                                               << "*S:a|T+:b";
}

void OperationsTest::mergeNotes()
{
    QFETCH(QString, project);
    QFETCH(bool, newestFirst);
    QFETCH(QString, merged);
    QFETCH(QString, expected);

    m_preferences->setNewestFirst(newestFirst);
    auto store = storeWith(project);
    store->mergeNotes(ids(merged));
    QCOMPARE(describe(store->library().projects[0]), expected);
    if (expected != project) {
        QCOMPARE(store->selection().size(), 1);
        const Note note = *store->note(*store->selection().cbegin());
        QCOMPARE(store->selectionAnchor(), note.id);
        QCOMPARE(note.completedAt.has_value(), note.isDone);
        QCOMPARE(note.createdAt, QDateTime::fromSecsSinceEpoch(100, Qt::UTC));
    } else {
        QVERIFY(!store->canUndo());
    }
}

void OperationsTest::splitNote_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("done");
    QTest::addColumn<QStringList>("pieces");

    QTest::newRow("two paragraphs") << "a\n\nb" << false << QStringList {"a", "b"};
    QTest::newRow("three newlines") << "a\n\n\nb" << false << QStringList {"a", "b"};
    QTest::newRow("single newlines do nothing") << "a\nb\nc" << false << QStringList {};
    QTest::newRow("blank line with spaces is no cut") << "a\n \nb" << false << QStringList {};
    QTest::newRow("carriage returns are not special") << "a\r\n\r\nb" << false << QStringList {};
    QTest::newRow("empty pieces drop") << "\n\na\n\n\n\n  \n\nb\n\n"
                                       << false << QStringList {"a", "b"};
    QTest::newRow("done pieces lose the stamp")
        << "a\n\nb\n\nc" << true << QStringList {"a", "b", "c"};
}

void OperationsTest::splitNote()
{
    QFETCH(QString, text);
    QFETCH(bool, done);
    QFETCH(QStringList, pieces);

    Library library;
    library.projects = {makeProject(QStringLiteral("*S:x,n,y"))};
    library.activeProjectID = library.projects[0].id;
    Note &note = library.projects[0].sections[0].notes[1];
    note.text = text;
    note.isDone = done;
    note.completedAt
        = done ? std::optional(QDateTime::fromSecsSinceEpoch(1000, Qt::UTC)) : std::nullopt;
    note.source = NoteSource {QStringLiteral("Mail"), std::nullopt, std::nullopt};
    NoteAttachment attachment;
    attachment.id = makeID();
    note.attachments = {attachment};
    Store store(library, {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});

    store.splitNote(idFor(QStringLiteral("n")));
    const QList<Note> notes = store.library().projects[0].sections[0].notes;
    if (pieces.isEmpty()) {
        QCOMPARE(notes.size(), 3);
        QVERIFY(!store.canUndo());
        return;
    }
    QCOMPARE(notes.size(), pieces.size() + 2);
    QCOMPARE(notes.first().text, QStringLiteral("x"));
    QCOMPARE(notes.last().text, QStringLiteral("y"));
    QSet<QUuid> newIDs;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const Note &part = notes.at(i + 1);
        QCOMPARE(part.text, pieces.at(i));
        QCOMPARE(part.isDone, done);
        QVERIFY(!part.completedAt);
        QCOMPARE(part.source->appName, QStringLiteral("Mail"));
        QCOMPARE(part.attachments.size(), i == 0 ? 1 : 0);
        QVERIFY(part.id != idFor(QStringLiteral("n")));
        newIDs.insert(part.id);
    }
    QCOMPARE(store.selection(), newIDs);
    QCOMPARE(store.selectionAnchor(), notes.at(1).id);
}

void OperationsTest::moveNotes_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("moved");
    QTest::addColumn<QString>("target"); // "Title", "Title@index", or "project:Title"
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("expectedOther");
    QTest::addColumn<QString>("selected");

    QTest::newRow("to a section's end") << "*S:a,b|T:c"
                                        << "a"
                                        << "T"
                                        << "*S:b|T:c,a"
                                        << "X:"
                                        << "a";
    QTest::newRow("row order kept") << "*S:a,b|T:c"
                                    << "b,a"
                                    << "T"
                                    << "*S:|T:c,a,b"
                                    << "X:"
                                    << "a,b";
    QTest::newRow("hidden notes stay") << "*S:a|T+:b|U:"
                                       << "a,b"
                                       << "U"
                                       << "*S:|T+:b|U:a"
                                       << "X:"
                                       << "a";
    QTest::newRow("drop just after themselves") << "*S:a,b,c,d"
                                                << "b,c"
                                                << "S@3"
                                                << "*S:a,b,c,d"
                                                << "X:"
                                                << "b,c";
    QTest::newRow("drop at the top") << "*S:a,b,c,d"
                                     << "c,d"
                                     << "S@0"
                                     << "*S:c,d,a,b"
                                     << "X:"
                                     << "c,d";
    QTest::newRow("drop past the end is clamped") << "*S:a,b|T:c"
                                                  << "a"
                                                  << "T@9"
                                                  << "*S:b|T:c,a"
                                                  << "X:"
                                                  << "a";
    QTest::newRow("drop between others") << "*S:a,b,c,d"
                                         << "a"
                                         << "S@3"
                                         << "*S:b,c,a,d"
                                         << "X:"
                                         << "a";
    QTest::newRow("emptied automatic section goes") << "*S:a|Mail!:b"
                                                    << "b"
                                                    << "S"
                                                    << "*S:a,b"
                                                    << "X:"
                                                    << "b";
    QTest::newRow("to another project, new section") << "*S:a,b"
                                                     << "a"
                                                     << "project:Later"
                                                     << "*S:b"
                                                     << "X:|Later:a"
                                                     << "";
    QTest::newRow("to another project, never an automatic section") << "*S:a,b"
                                                                    << "a"
                                                                    << "project:mail"
                                                                    << "*S:b"
                                                                    << "X:|Mail!:m|mail:a"
                                                                    << "";
    QTest::newRow("to a section of another project") << "*S:a,b"
                                                     << "a"
                                                     << "X"
                                                     << "*S:b"
                                                     << "X:a"
                                                     << "";
}

void OperationsTest::moveNotes()
{
    QFETCH(QString, project);
    QFETCH(QString, moved);
    QFETCH(QString, target);
    QFETCH(QString, expected);
    QFETCH(QString, expectedOther);
    QFETCH(QString, selected);

    const QString other
        = expectedOther.contains(u"Mail!") ? QStringLiteral("X:|Mail!:m") : QStringLiteral("X:");
    auto store = storeWith(project, other);
    store->setSelection({idFor(QStringLiteral("a"))}, idFor(QStringLiteral("a")));
    const QString projectName = QStringLiteral("P");
    if (target.startsWith(u"project:")) {
        store->moveNotesToProject(ids(moved), idFor(QStringLiteral("project Q")), target.mid(8));
        QVERIFY(!store->selectionAnchor());
    } else if (target.contains(u'@')) {
        store->moveNotesToSection(ids(moved),
            idFor(projectName + u'/' + target.section(u'@', 0, 0)),
            target.section(u'@', 1).toInt());
    } else {
        const QString owner = target == u"X" ? QStringLiteral("Q") : projectName;
        store->moveNotesToSection(ids(moved), idFor(owner + u'/' + target));
    }
    QCOMPARE(describe(store->library().projects[0]), expected);
    QCOMPARE(describe(store->library().projects[1]), expectedOther);
    if (target != u"X")
        QCOMPARE(selectionText(*store), selected);
}

void OperationsTest::sections_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("undoStep");

    QTest::newRow("create") << "*Inbox:a"
                            << "create"
                            << " Later "
                            << "Inbox:a|*Later:" << true;
    QTest::newRow("create uses an existing one") << "*Work:|Inbox+:a"
                                                 << "create"
                                                 << " inbox "
                                                 << "Work:|*Inbox:a" << true;
    QTest::newRow("create naming the active one does nothing") << "*Inbox:a"
                                                               << "create"
                                                               << "INBOX"
                                                               << "*Inbox:a" << false;
    QTest::newRow("create uses an automatic one too") << "*Inbox:|Mail!:a"
                                                      << "create"
                                                      << "mail"
                                                      << "Inbox:|*Mail!:a" << true;
    QTest::newRow("create blank") << "*Inbox:a"
                                  << "create"
                                  << " \n "
                                  << "*Inbox:a" << false;
    QTest::newRow("activate expands") << "*Inbox:|Work+:a"
                                      << "activate"
                                      << "Work"
                                      << "Inbox:|*Work:a" << true;
    QTest::newRow("activate the active one") << "*Inbox+:a"
                                             << "activate"
                                             << "Inbox"
                                             << "*Inbox+:a" << false;
    QTest::newRow("jump to the second") << "*A:|B:|C:"
                                        << "jump"
                                        << "2"
                                        << "A:|*B:|C:" << true;
    QTest::newRow("jump past the end") << "*A:|B:"
                                       << "jump"
                                       << "3"
                                       << "*A:|B:" << false;
    QTest::newRow("rename keeps the flag") << "*Inbox:|Mail!:a"
                                           << "rename"
                                           << "Mail"
                                           << "*Inbox:|Post!:a" << true;
    QTest::newRow("rename to blanks") << "*Inbox:"
                                      << "rename"
                                      << "Inbox"
                                      << "*Inbox:" << false;
    QTest::newRow("move down") << "*A:|B:|C:"
                               << "down"
                               << "A"
                               << "B:|*A:|C:" << true;
    QTest::newRow("move down at the end") << "*A:|B:"
                                          << "down"
                                          << "B"
                                          << "*A:|B:" << false;
    QTest::newRow("move up at the top") << "*A:|B:"
                                        << "up"
                                        << "A"
                                        << "*A:|B:" << false;
    QTest::newRow("move before the one below: nothing") << "*A:|B:|C:"
                                                        << "before"
                                                        << "A>B"
                                                        << "*A:|B:|C:" << false;
    QTest::newRow("move before the one after next") << "*A:|B:|C:"
                                                    << "before"
                                                    << "A>C"
                                                    << "B:|*A:|C:" << true;
    QTest::newRow("move to the top") << "*A:|B:|C:"
                                     << "before"
                                     << "C>A"
                                     << "C:|*A:|B:" << true;
    QTest::newRow("move to the bottom") << "*A:|B:|C:"
                                        << "before"
                                        << "A>"
                                        << "B:|C:|*A:" << true;
    QTest::newRow("delete the active one: Inbox takes over") << "A:|inbox:|*B:a|C:"
                                                             << "delete"
                                                             << "B"
                                                             << "A:|*inbox:|C:" << true;
    QTest::newRow("delete the active one without Inbox") << "A:|*B:a"
                                                         << "delete"
                                                         << "B"
                                                         << "*A:" << true;
    QTest::newRow("delete the last one") << "*A:a"
                                         << "delete"
                                         << "A"
                                         << "" << true;
    QTest::newRow("delete unknown") << "*A:a"
                                    << "delete"
                                    << "Z"
                                    << "*A:a" << false;
    QTest::newRow("collapse all") << "*A:|B:"
                                  << "collapse"
                                  << ""
                                  << "*A+:|B+:" << false;
    QTest::newRow("toggle collapsed") << "*A:|B+:"
                                      << "toggle"
                                      << "B"
                                      << "*A:|B:" << false;
}

void OperationsTest::sections()
{
    QFETCH(QString, project);
    QFETCH(QString, operation);
    QFETCH(QString, argument);
    QFETCH(QString, expected);
    QFETCH(bool, undoStep);

    auto store = storeWith(project);
    store->setSelection({idFor(QStringLiteral("a"))}, idFor(QStringLiteral("a")));
    auto section = [](const QString &title) { return idFor(QStringLiteral("P/") + title); };
    if (operation == u"create")
        store->createOrUseSection(argument);
    else if (operation == u"activate")
        store->activateSection(section(argument));
    else if (operation == u"jump")
        store->jumpToSection(argument.toInt());
    else if (operation == u"rename")
        store->renameSection(section(argument),
            argument == u"Mail" ? QStringLiteral(" Post ") : QStringLiteral("  "));
    else if (operation == u"down" || operation == u"up")
        store->moveSection(section(argument), operation == u"down" ? 1 : -1);
    else if (operation == u"before") {
        const QString before = argument.section(u'>', 1);
        store->moveSection(section(argument.section(u'>', 0, 0)),
            before.isEmpty() ? std::nullopt : std::optional(section(before)));
    } else if (operation == u"delete")
        store->deleteSection(section(argument));
    else if (operation == u"collapse")
        store->collapseAllSections();
    else if (operation == u"toggle")
        store->toggleSectionCollapsed(section(argument));

    QCOMPARE(describe(store->library().projects[0]), expected);
    QCOMPARE(store->canUndo(), undoStep);
    if (!undoStep)
        QVERIFY(!store->hasPendingSave());
    // A change of the active section empties the selection.
    if (operation == u"delete") {
        QCOMPARE(store->selection().contains(idFor(QStringLiteral("a"))), !undoStep);
    } else {
        const bool changesActive
            = operation == u"activate" || operation == u"jump" || operation == u"create";
        QCOMPARE(store->selection().isEmpty(), changesActive && undoStep);
    }
}

void OperationsTest::projects()
{
    auto store = storeWith(QStringLiteral("*S:a"), QStringLiteral("X:"));
    store->setSelection({idFor(QStringLiteral("a"))}, idFor(QStringLiteral("a")));

    // Switching to the project on screen keeps the selection.
    store->switchProject(store->library().projects[0].id);
    QCOMPARE(store->selection().size(), 1);
    QVERIFY(!store->hasPendingSave());

    // Another project: selection gone, its active section filled in, no undo step.
    store->switchProject(store->library().projects[1].id);
    QVERIFY(store->selection().isEmpty());
    QCOMPARE(store->activeProject().name, QStringLiteral("Q"));
    QCOMPARE(
        store->library().projects[1].activeSectionID, store->library().projects[1].sections[0].id);
    QVERIFY(!store->canUndo());

    QVERIFY(!store->createProject(QStringLiteral("  ")));
    const std::optional<Project> created = store->createProject(QStringLiteral(" New "));
    QCOMPARE(created->name, QStringLiteral("New"));
    QCOMPARE(store->activeProject().id, created->id);
    QCOMPARE(store->activeSection().title, QStringLiteral("Inbox"));

    store->renameProject(created->id, QStringLiteral("Renamed"));
    QCOMPARE(store->activeProject().name, QStringLiteral("Renamed"));

    store->deleteProject(created->id);
    QCOMPARE(store->library().projects.size(), 2);
    QCOMPARE(store->activeProject().id, store->library().projects[0].id); // the first takes over

    store->undo(); // brings the deleted project back, and it is active again
    QCOMPARE(store->activeProject().name, QStringLiteral("Renamed"));
}

void OperationsTest::automaticSectionComesBackWithUndo()
{
    auto store = storeWith(QStringLiteral("*Inbox:"));
    for (int i = 0; i < 2; ++i)
        store->addNote(QStringLiteral("m%1").arg(i), std::nullopt, QStringLiteral("Mail"), true,
            NoteSource {QStringLiteral("Mail"), std::nullopt, std::nullopt}, {}, true);
    QCOMPARE(store->library().projects[0].sections.size(), 2);
    QCOMPARE(store->activeSection().title, QStringLiteral("Inbox")); // captures do not change it

    QList<QUuid> notes;
    for (const Note &note : store->library().projects[0].sections[1].notes)
        notes.append(note.id);
    store->deleteNotes(QSet<QUuid>(notes.cbegin(), notes.cend()));
    QCOMPARE(describe(store->library().projects[0]), QStringLiteral("*Inbox:"));

    store->undo();
    QCOMPARE(store->library().projects[0].sections.size(), 2);
    QCOMPARE(store->library().projects[0].sections[1].notes.size(), 2);
    QVERIFY(store->library().projects[0].sections[1].isAutomatic);
}

void OperationsTest::attachmentFilesGoOnlyWhenUnreferenced()
{
    const QString folder = attachmentsFolder(libraryURL());
    auto makeFile = [&](const QString &stored) {
        QDir().mkpath(QFileInfo(folder + u'/' + stored).absolutePath());
        QFile file(folder + u'/' + stored);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("data");
    };
    makeFile(QStringLiteral("A/shared.png"));
    makeFile(QStringLiteral("B/own.pdf"));

    Library library;
    library.projects = {makeProject(QStringLiteral("*S:a,b,c"))};
    library.activeProjectID = library.projects[0].id;
    auto attach = [](Note &note, const QString &stored) {
        NoteAttachment attachment;
        attachment.id = makeID();
        attachment.storedFileName = stored;
        attachment.fileName = QFileInfo(stored).fileName();
        note.attachments.append(attachment);
    };
    attach(library.projects[0].sections[0].notes[0], QStringLiteral("A/shared.png"));
    attach(library.projects[0].sections[0].notes[1], QStringLiteral("A/shared.png"));
    attach(library.projects[0].sections[0].notes[1], QStringLiteral("B/own.pdf"));
    Store store(library, {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});

    store.deleteNotes({idFor(QStringLiteral("b"))});
    m_attachments->waitForIdle();
    QVERIFY(QFileInfo::exists(folder + QStringLiteral("/A/shared.png"))); // still referenced by a
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/B/own.pdf")));
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/B"))); // emptied folder goes

    // Undo brings the record back, not the file.
    store.undo();
    QCOMPARE(store.note(idFor(QStringLiteral("b")))->attachments.size(), 2);
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/B/own.pdf")));

    const QUuid attachmentID = store.note(idFor(QStringLiteral("a")))->attachments.first().id;
    store.removeAttachment(attachmentID, idFor(QStringLiteral("a")));
    m_attachments->waitForIdle();
    QVERIFY(QFileInfo::exists(folder + QStringLiteral("/A/shared.png"))); // b refers to it again
    store.deleteNotes({idFor(QStringLiteral("b"))});
    m_attachments->waitForIdle();
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/A")));
    QVERIFY(QFileInfo::exists(folder)); // the folder itself stays

    // Files imported for a note that has gone are removed.
    makeFile(QStringLiteral("C/late.txt"));
    NoteAttachment late;
    late.id = makeID();
    late.storedFileName = QStringLiteral("C/late.txt");
    store.addAttachments({late}, idFor(QStringLiteral("b")));
    m_attachments->waitForIdle();
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/C")));
}

void OperationsTest::removalStaysInsideTheAttachmentsFolder_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("parent reference") << "../outside.txt";
    QTest::newRow("deep parent reference") << "A/../../outside.txt";
    QTest::newRow("through a linked folder") << "link/outside.txt";
    QTest::newRow("the folder itself") << ".";
    QTest::newRow("nothing") << "";
}

void OperationsTest::removalStaysInsideTheAttachmentsFolder()
{
    QFETCH(QString, stored);
    const QString root = Test::IsolatedEnvironment::current().root() + QStringLiteral("/traversal");
    const QString folder = root + QStringLiteral("/Vesko/Attachments");
    QDir().mkpath(folder + QStringLiteral("/A"));
    const QString outsideFolder = root + QStringLiteral("/Vesko");
    QFile::link(outsideFolder, folder + QStringLiteral("/link"));
    QFile outside(outsideFolder + QStringLiteral("/outside.txt"));
    QVERIFY(outside.open(QIODevice::WriteOnly));
    outside.close();

    NoteAttachment attachment;
    attachment.storedFileName = stored;
    m_attachments->removeFiles({attachment}, folder);
    m_attachments->waitForIdle();
    QVERIFY(QFileInfo::exists(outsideFolder + QStringLiteral("/outside.txt")));
    QVERIFY(QFileInfo::exists(folder));
    QDir(root).removeRecursively();
}

void OperationsTest::invariantsUnderRandomOperations()
{
    Store store(Test::generateLibrary(300, 21),
        {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    QRandomGenerator random(4242);

    auto allNotes = [&](const Library &library) {
        QHash<QUuid, int> count;
        for (const Project &project : library.projects)
            for (const NoteSection &section : project.sections)
                for (const Note &note : section.notes)
                    ++count[note.id];
        return count;
    };
    auto pick = [&](int n) {
        QList<QUuid> out;
        const QList<Note> visible = store.visibleNotes();
        for (int i = 0; i < n && !visible.isEmpty(); ++i)
            out.append(visible.at(random.bounded(int(visible.size()))).id);
        return out;
    };

    for (int step = 0; step < 2000; ++step) {
        const Library before = store.library();
        const qsizetype undoBefore = store.undoStepCount();
        const QHash<QUuid, int> notesBefore = allNotes(before);
        const int action = random.bounded(16);
        bool removes = false;
        const Project project = store.activeProject();
        const QUuid someSection = project.sections.isEmpty()
            ? makeID()
            : project.sections.at(random.bounded(int(project.sections.size()))).id;
        switch (action) {
        case 0:
            store.addNote(QStringLiteral("new %1").arg(step), std::nullopt,
                random.bounded(2) ? std::optional(QStringLiteral("App %1").arg(random.bounded(3)))
                                  : std::nullopt,
                random.bounded(2), NoteSource {QStringLiteral("App"), std::nullopt, std::nullopt},
                {}, true);
            break;
        case 1: {
            const QList<QUuid> one = pick(1);
            if (!one.isEmpty())
                store.updateNote(one.first(),
                    random.bounded(5) ? QStringLiteral("edit %1").arg(step) : QString());
            removes = true;
            break;
        }
        case 2:
            store.setDone(pick(3), random.bounded(2));
            break;
        case 3: {
            const QList<QUuid> some = pick(2);
            store.deleteNotes(QSet<QUuid>(some.cbegin(), some.cend()));
            removes = true;
            break;
        }
        case 4:
            store.mergeNotes(pick(3));
            removes = true; // merged notes are replaced by a new one
            break;
        case 5: {
            const QList<QUuid> one = pick(1);
            if (!one.isEmpty())
                store.splitNote(one.first());
            removes = true;
            break;
        }
        case 6:
            store.moveNotesToSection(pick(3), someSection);
            break;
        case 7:
            store.moveNotesToSection(pick(2), someSection, random.bounded(10));
            break;
        case 8:
            store.moveNotesToProject(pick(2),
                store.library()
                    .projects.at(random.bounded(int(store.library().projects.size())))
                    .id,
                QStringLiteral("Moved"));
            break;
        case 9:
            store.createOrUseSection(QStringLiteral("Section %1").arg(random.bounded(4)));
            break;
        case 10:
            store.moveSection(someSection, random.bounded(2) ? 1 : -1);
            break;
        case 11:
            if (random.bounded(8) == 0) {
                store.deleteSection(someSection);
                removes = true;
            }
            break;
        case 12:
            store.toggleSectionCollapsed(someSection);
            store.commit();
            break;
        case 13:
            store.undo();
            removes = true;
            break;
        case 14:
            store.redo();
            removes = true;
            break;
        case 15:
            store.clearCompleted();
            removes = true;
            break;
        }

        const Library &after = store.library();
        // An operation that took an undo step is reversed exactly by undo.
        if (action != 13 && action != 14 && store.undoStepCount() > undoBefore
            && random.bounded(4) == 0) {
            store.undo();
            QVERIFY2(store.library() == before,
                qPrintable(QStringLiteral("step %1, action %2").arg(step).arg(action)));
            store.redo();
        }
        // No note is lost but by the operations that remove notes; ids stay unique.
        const QHash<QUuid, int> notesAfter = allNotes(after);
        for (auto it = notesAfter.cbegin(); it != notesAfter.cend(); ++it)
            QCOMPARE(it.value(), 1);
        if (!removes) {
            for (auto it = notesBefore.cbegin(); it != notesBefore.cend(); ++it)
                QVERIFY2(notesAfter.contains(it.key()),
                    qPrintable(QStringLiteral("step %1, action %2").arg(step).arg(action)));
        }
        // No automatic section is left empty.
        for (const Project &p : after.projects)
            for (const NoteSection &section : p.sections)
                QVERIFY2(!section.isAutomatic || !section.notes.isEmpty(),
                    qPrintable(QStringLiteral("step %1, action %2").arg(step).arg(action)));
    }
}

VESKO_TEST_MAIN(OperationsTest)
#include "tst_operations.moc"
