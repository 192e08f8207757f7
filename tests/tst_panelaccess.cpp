// SPDX-License-Identifier: GPL-3.0-or-later
//
// The running panel as a screen reader user meets it: keys and clicks from
// xdotool in a private X session, what it shows read over AT-SPI; an
// unreadable library told of and restored; the panel in German.

#include "TestEnvironment.h"

#include "AccessibleTree.h"
#include "ProgramSession.h"

#include "library/LibraryCoding.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>

using namespace Vesko;
using Test::AccessibleNode;
using Test::AccessibleTree;
using Test::xdotool;

namespace {

const QString application = QStringLiteral("Vesko");

AccessibleTree tree()
{
    return AccessibleTree::read(application);
}

//! The object of \a role and \a name on screen now, as a copy.
std::optional<AccessibleNode> found(const QString &role, const QString &name)
{
    const AccessibleTree now = tree();
    const AccessibleNode *node = now.find(role, name);
    return node ? std::optional(*node) : std::nullopt;
}

void key(const QString &keys)
{
    xdotool({QStringLiteral("key"), QStringLiteral("--clearmodifiers"), keys});
}

void type(const QString &text)
{
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("10"), text});
}

void click(const QPoint &point)
{
    xdotool({QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y())});
    QTest::qWait(100);
    xdotool({QStringLiteral("click"), QStringLiteral("1")});
}

//! Whether the text field named \a name is on screen and has the keyboard.
bool focusedField(const QString &name)
{
    const AccessibleTree now = tree();
    const AccessibleNode *field = now.find(QStringLiteral("text"), name);
    return field && field->hasState(QStringLiteral("focused"));
}

//! The names of the rows on screen: list items (the notes and section headers).
QStringList rowNames(const AccessibleTree &tree)
{
    return tree.names(QStringLiteral("list item"));
}

//! The entries of the popup menu on screen, as a screen reader reads them
//! when the first one takes the focus: "-" for a rule, "#" before a heading,
//! "~" after a disabled entry.
QStringList menuEntries(const AccessibleTree &menu)
{
    QStringList entries;
    if (menu.isEmpty())
        return entries;
    for (const AccessibleNode &node : menu.root().children) {
        if (node.role == QLatin1String("separator"))
            entries.append(node.name.isEmpty() ? QStringLiteral("-") : u'#' + node.name);
        else
            entries.append(node.name
                + (node.hasState(QStringLiteral("enabled")) ? QString() : QStringLiteral("~")));
    }
    return entries;
}

const AccessibleNode *menuEntry(const AccessibleTree &menu, const QString &name)
{
    if (menu.isEmpty())
        return nullptr;
    for (const AccessibleNode &node : menu.root().children) {
        if (node.name == name)
            return &node;
    }
    return nullptr;
}

//! The pixels of \a area of the screen that are clearly blue (the search
//! marks are the accent colour over the note's fill), past the done control.
int bluishPixels(const QRect &area)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("row.png"));
    QProcess grab;
    grab.start(QStringLiteral(SCREEN_GRAB_PATH),
        {file, QString::number(area.x()), QString::number(area.y()), QString::number(area.width()),
            QString::number(area.height())});
    if (!grab.waitForFinished(Test::patience) || grab.exitCode() != 0)
        return -1;
    const QImage image(file);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 30; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (pixel.blue() - pixel.red() > 25)
                ++count;
        }
    }
    return count;
}

const AccessibleNode *row(const AccessibleTree &tree, const QString &name)
{
    return tree.find(QStringLiteral("list item"), name);
}

} // namespace

class PanelAccessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void throughTheScreenReader();
    void unreadableLibraryIsToldOfAndRestored();
    void inGerman();
};

void PanelAccessTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        QSKIP("Needs a session bus: run through dbus-run-session");
    if (!QFile::exists(QStringLiteral("/usr/bin/python3")))
        QSKIP("Needs python3 with pyatspi");
}

void PanelAccessTest::throughTheScreenReader()
{
    Test::ProgramSession session;
    session.setEnvironmentVariable(
        QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    QProcess *vesko = session.start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(
        !Test::visibleWindow(QStringLiteral("^Vesko$")).isEmpty(), Test::patience);

    // The composer has the keyboard, and a screen reader hears where a note goes.
    QTRY_VERIFY_WITH_TIMEOUT(focusedField(QStringLiteral("Add to Inbox")), Test::patience);
    {
        const AccessibleTree now = tree();
        QVERIFY(now.find(QStringLiteral("push button"), QStringLiteral("More options")));
        QVERIFY(now.find(QStringLiteral("push button"), QStringLiteral("Add Attachment")));
        QVERIFY(now.find(QStringLiteral("text"), QStringLiteral("Search")));
        // No search yet: no clear button on screen.
        QVERIFY(!now.find(QStringLiteral("push button"), QStringLiteral("Clear search")));
    }

    // Two notes through the composer; Shift+Return breaks a line.
    type(QStringLiteral("Buy oat milk"));
    key(QStringLiteral("Return"));
    type(QStringLiteral("Call the plumber"));
    key(QStringLiteral("shift+Return"));
    type(QStringLiteral("about the sink"));
    key(QStringLiteral("Return"));
    QTRY_VERIFY_WITH_TIMEOUT(
        rowNames(tree()).contains(QStringLiteral("Buy oat milk")), Test::patience);
    QTRY_VERIFY_WITH_TIMEOUT(
        rowNames(tree()).contains(QStringLiteral("Call the plumber\nabout the sink")),
        Test::patience);
    // A note is heard as it reads on screen: without its markers, and
    // without what it strikes through.
    type(QStringLiteral("Email ~~Bob~~ **Alice**"));
    key(QStringLiteral("Return"));
    QTRY_VERIFY_WITH_TIMEOUT(
        rowNames(tree()).contains(QStringLiteral("Email Alice")), Test::patience);
    QVERIFY(rowNames(tree()).filter(QStringLiteral("~~")).isEmpty());

    // A search, typed into the field after a click on it, narrows the rows
    // and marks the word in the note that stays.
    const int bluishBefore = [] {
        const AccessibleTree now = tree();
        const AccessibleNode *milk = row(now, QStringLiteral("Buy oat milk"));
        return milk ? bluishPixels(milk->extents) : -1;
    }();
    QVERIFY(bluishBefore >= 0);
    const std::optional<AccessibleNode> search
        = found(QStringLiteral("text"), QStringLiteral("Search"));
    QVERIFY(search);
    click(search->center());
    type(QStringLiteral("oat"));
    QTRY_COMPARE_WITH_TIMEOUT(
        rowNames(tree()).filter(QStringLiteral("plumber")).size(), 0, Test::patience);
    QVERIFY(rowNames(tree()).contains(QStringLiteral("Buy oat milk")));
    QVERIFY(tree().find(QStringLiteral("push button"), QStringLiteral("Clear search")));
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            const AccessibleTree now = tree();
            const AccessibleNode *milk = row(now, QStringLiteral("Buy oat milk"));
            return milk && bluishPixels(milk->extents) > bluishBefore + 40;
        }(),
        Test::patience);
    // A word nobody wrote: the empty state says so.
    type(QStringLiteral("zzz"));
    QTRY_VERIFY_WITH_TIMEOUT(
        tree().find(QStringLiteral("label"), QStringLiteral("No matches")), Test::patience);
    // Escape clears the search; the rows come back.
    key(QStringLiteral("Escape"));
    QTRY_VERIFY_WITH_TIMEOUT(
        rowNames(tree()).contains(QStringLiteral("Call the plumber\nabout the sink")),
        Test::patience);
    QVERIFY(!tree().find(QStringLiteral("push button"), QStringLiteral("Clear search")));

    // "More options" opens its menu.
    const std::optional<AccessibleNode> more
        = found(QStringLiteral("push button"), QStringLiteral("More options"));
    QVERIFY(more);
    click(more->center());
    AccessibleTree overflow;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(overflow = AccessibleTree::popup(application)).isEmpty(), Test::patience);
    // Its entries in their order are read in German below.
    QCOMPARE(overflow.root().name, QStringLiteral("More options"));
    const AccessibleNode *newSection = menuEntry(overflow, QStringLiteral("New Section…"));
    QVERIFY(newSection);
    click(newSection->center());

    // The prompt takes the keyboard; its name is said.
    QTRY_VERIFY_WITH_TIMEOUT(focusedField(QStringLiteral("Section name")), Test::patience);
    QVERIFY(tree().find(QStringLiteral("push button"), QStringLiteral("Add")));
    type(QStringLiteral("Errands"));
    key(QStringLiteral("Return"));
    // The new section is the active one: the composer says so.
    QTRY_VERIFY_WITH_TIMEOUT(
        tree().find(QStringLiteral("text"), QStringLiteral("Add to Errands")), Test::patience);
    QVERIFY(!tree().find(QStringLiteral("text"), QStringLiteral("Section name")));

    // The done control of a row, found inside the row and clicked.
    {
        const AccessibleTree now = tree();
        const AccessibleNode *listed = row(now, QStringLiteral("Buy oat milk"));
        QVERIFY(listed);
        QCOMPARE(listed->description, QStringLiteral("Not done"));
        const auto control = std::find_if(listed->children.cbegin(), listed->children.cend(),
            [](const AccessibleNode &child) { return child.role == u"push button"; });
        QVERIFY(control != listed->children.cend());
        QCOMPARE(control->name, QStringLiteral("Mark as done"));
        click(control->center());
    }
    QTRY_VERIFY_WITH_TIMEOUT(
        [] {
            const AccessibleTree now = tree();
            const AccessibleNode *done = row(now, QStringLiteral("Buy oat milk"));
            return done && done->description == QLatin1String("Done");
        }(),
        Test::patience);

    // A note edited in place: a double click opens its editor with the text.
    const AccessibleTree beforeEdit = tree();
    const AccessibleNode *plumber
        = row(beforeEdit, QStringLiteral("Call the plumber\nabout the sink"));
    QVERIFY(plumber);
    const QPoint onText = plumber->extents.topLeft() + QPoint(plumber->extents.width() / 2, 14);
    xdotool(
        {QStringLiteral("mousemove"), QString::number(onText.x()), QString::number(onText.y())});
    QTest::qWait(100);
    xdotool({QStringLiteral("click"), QStringLiteral("--repeat"), QStringLiteral("2"),
        QStringLiteral("--delay"), QStringLiteral("80"), QStringLiteral("1")});
    QTRY_VERIFY_WITH_TIMEOUT(
        [] {
            const AccessibleTree now = tree();
            for (const AccessibleNode *node : now.all()) {
                if (node->role == QLatin1String("text") && node->hasState(QStringLiteral("focused"))
                    && node->text == QStringLiteral("Call the plumber\nabout the sink"))
                    return true;
            }
            return false;
        }(),
        Test::patience);
    key(QStringLiteral("ctrl+a"));
    type(QStringLiteral("Call the plumber today"));
    key(QStringLiteral("Return"));
    QTRY_VERIFY_WITH_TIMEOUT(
        rowNames(tree()).contains(QStringLiteral("Call the plumber today")), Test::patience);

    // Ended by a signal within the save delay: the file holds every change.
    ::kill(pid_t(vesko->processId()), SIGTERM);
    QVERIFY(vesko->waitForFinished(Test::patience));
    QCOMPARE(vesko->exitCode(), 0);
    const Library library = Test::readLibraryFile(session.libraryPath());
    QCOMPARE(library.projects.size(), 1);
    QStringList sections;
    for (const NoteSection &section : library.projects.first().sections)
        sections.append(section.title);
    QCOMPARE(sections, (QStringList {"Inbox", "Errands"}));
    const QList<Note> notes = library.projects.first().sections.first().notes;
    QCOMPARE(notes.size(), 3);
    QCOMPARE(notes.at(0).text, QStringLiteral("Buy oat milk"));
    QVERIFY(notes.at(0).isDone);
    QCOMPARE(notes.at(1).text, QStringLiteral("Call the plumber today"));
    QVERIFY(!notes.at(1).isDone);
    // What was typed is kept as typed.
    QCOMPARE(notes.at(2).text, QStringLiteral("Email ~~Bob~~ **Alice**"));
    QCOMPARE(library.projects.first().activeSectionID, library.projects.first().sections.last().id);
}

void PanelAccessTest::unreadableLibraryIsToldOfAndRestored()
{
    Test::ProgramSession session;
    session.setEnvironmentVariable(
        QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    // The latest backup holds the user's notes; the file itself lost a comma.
    Library earlier = makeDefaultLibrary();
    for (const QString &text : {QStringLiteral("Pay the rent"), QStringLiteral("Water the fern")}) {
        Note note;
        note.id = makeID();
        note.text = text;
        note.createdAt = note.updatedAt = currentDate();
        earlier.projects[0].sections[0].notes.append(note);
    }
    const QString backups = session.libraryFolder() + QStringLiteral("/Library Backups");
    QDir().mkpath(backups);
    const QString backup = backups + QStringLiteral("/Library-2026-03-14T09-26-53Z-1F3A9C.json");
    {
        QFile file(backup);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(encodeLibrary(earlier));
        QFile damaged(session.libraryPath());
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        damaged.write(QByteArray(encodeLibrary(earlier)).replace("\",", "\""));
    }
    QProcess *vesko = session.start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(
        !Test::visibleWindow(QStringLiteral("^Vesko$")).isEmpty(), Test::patience);

    // The foot of the panel tells of it, in words and buttons a screen reader
    // reads and the keyboard reaches.
    const QRegularExpression told(QStringLiteral("^Your notes file could not be read\\. It was set "
                                                 "aside as “(Library-unreadable-.+\\.json)”\\.$"));
    QString setAside;
    const auto toldOf = [&] {
        for (const QString &name : tree().names(QStringLiteral("label"))) {
            if (const QRegularExpressionMatch match = told.match(name); match.hasMatch())
                setAside = match.captured(1);
        }
        return !setAside.isEmpty();
    };
    QTRY_VERIFY_WITH_TIMEOUT(toldOf(), Test::patience);
    QVERIFY(QFileInfo::exists(session.libraryFolder() + u'/' + setAside));
    {
        const AccessibleTree now = tree();
        for (const QString &name : {QStringLiteral("Restore Latest Backup"),
                 QStringLiteral("Show in Files"), QStringLiteral("Dismiss")}) {
            const AccessibleNode *button = now.find(QStringLiteral("push button"), name);
            QVERIFY2(button, qPrintable(name));
            QVERIFY2(button->hasState(QStringLiteral("focusable")), qPrintable(name));
        }
    }

    // Notes typed meanwhile are saved, one save each, more than the backups
    // kept over the two runs.
    const auto typeNotes = [&session](int from, int to) {
        for (int i = from; i <= to; ++i) {
            type(QStringLiteral("typed %1").arg(i));
            key(QStringLiteral("Return"));
            // Saved before the next one is typed, however slow the machine.
            QTRY_COMPARE_WITH_TIMEOUT(
                noteCount(Test::readLibraryFile(session.libraryPath())), i, Test::patience);
        }
    };
    typeNotes(1, 4);

    // Quit without acting on it: the next start tells of it again.
    ::kill(pid_t(vesko->processId()), SIGTERM);
    QVERIFY(vesko->waitForFinished(Test::patience));
    QTRY_VERIFY_WITH_TIMEOUT(
        Test::visibleWindow(QStringLiteral("^Vesko$")).isEmpty(), Test::patience);
    vesko = session.start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(
        !Test::visibleWindow(QStringLiteral("^Vesko$")).isEmpty(), Test::patience);
    const QString firstSetAside = std::exchange(setAside, QString());
    QTRY_VERIFY_WITH_TIMEOUT(toldOf(), Test::patience);
    QCOMPARE(setAside, firstSetAside);
    QTRY_VERIFY_WITH_TIMEOUT(focusedField(QStringLiteral("Add to Inbox")), Test::patience);
    typeNotes(5, 8);
    QVERIFY(QFileInfo::exists(backup));

    // The keyboard reaches the line: Escape hands the keyboard from the empty
    // composer to the list, Shift+Tab goes on to the line's buttons, from the
    // last, and Space presses one.
    key(QStringLiteral("Escape"));
    const QStringList order = {QStringLiteral("Dismiss"), QStringLiteral("Show in Files"),
        QStringLiteral("Restore Latest Backup")};
    for (const QString &name : order) {
        key(QStringLiteral("shift+Tab"));
        QTRY_VERIFY2_WITH_TIMEOUT(
            [&name] {
                const AccessibleTree now = tree();
                const AccessibleNode *button = now.find(QStringLiteral("push button"), name);
                return button && button->hasState(QStringLiteral("focused"));
            }(),
            qPrintable(name), Test::patience);
    }
    key(QStringLiteral("space"));
    QTRY_VERIFY_WITH_TIMEOUT(
        rowNames(tree()).contains(QStringLiteral("Water the fern")), Test::patience);
    QTRY_VERIFY_WITH_TIMEOUT(
        !tree().find(QStringLiteral("push button"), QStringLiteral("Restore Latest Backup")),
        Test::patience);

    ::kill(pid_t(vesko->processId()), SIGTERM);
    QVERIFY(vesko->waitForFinished(Test::patience));
    QStringList texts;
    for (const Note &note : Test::allNotes(Test::readLibraryFile(session.libraryPath())))
        texts.append(note.text);
    QCOMPARE(
        texts, (QStringList {QStringLiteral("Pay the rent"), QStringLiteral("Water the fern")}));
    QVERIFY(QFileInfo::exists(session.libraryFolder() + u'/' + setAside));
    // Restored, it is not told of again.
    QVERIFY(
        !QFileInfo::exists(session.libraryFolder() + QStringLiteral("/.Library.json.unreadable")));
}

void PanelAccessTest::inGerman()
{
    Test::ProgramSession session;
    session.setEnvironmentVariable(
        QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    session.setEnvironmentVariable(QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8"));
    QProcess *vesko = session.start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(!Test::visibleWindow(QStringLiteral("^Vesko$")).isEmpty(), 15000);

    // The panel's controls; the names of the project and section it made
    // are the user's data and stay as they are.
    QTRY_VERIFY_WITH_TIMEOUT(focusedField(QStringLiteral("Zu Inbox hinzufügen")), 20000);
    {
        const AccessibleTree now = tree();
        QVERIFY(now.find(QStringLiteral("push button"), QStringLiteral("Weitere Optionen")));
        QVERIFY(now.find(QStringLiteral("push button"), QStringLiteral("Anhang hinzufügen")));
        QVERIFY(now.find(QStringLiteral("text"), QStringLiteral("Suchen")));
    }
    type(QStringLiteral("Milch kaufen"));
    key(QStringLiteral("Return"));
    QTRY_VERIFY_WITH_TIMEOUT(
        [] {
            const AccessibleTree now = tree();
            const AccessibleNode *milk = row(now, QStringLiteral("Milch kaufen"));
            return now.find(
                       QStringLiteral("push button"), QStringLiteral("Abschnitt Inbox, 1 offen"))
                && milk && milk->description == QLatin1String("Nicht erledigt")
                && std::any_of(milk->children.cbegin(), milk->children.cend(),
                    [](const AccessibleNode &child) {
                        return child.role == QLatin1String("push button")
                            && child.name == QLatin1String("Als erledigt markieren");
                    });
        }(),
        Test::patience);

    const std::optional<AccessibleNode> more
        = found(QStringLiteral("push button"), QStringLiteral("Weitere Optionen"));
    QVERIFY(more);
    click(more->center());
    AccessibleTree overflow;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(overflow = AccessibleTree::popup(application)).isEmpty(), Test::patience);
    QCOMPARE(menuEntries(overflow),
        (QStringList {"#Projekt", "Notes", "Neues Projekt …", "Projekt umbenennen …",
            "Projekt löschen~", "#Aktiver Abschnitt", "Inbox", "Abschnitt wechseln …", "-",
            "Neuer Abschnitt …", "Alle Abschnitte einklappen", "Alle Abschnitte ausklappen",
            "#Ansicht", "Erledigte anzeigen", "Erledigte unten", "Neueste zuerst", "-",
            "Alle als Liste kopieren", "Erledigte entfernen", "Als Markdown exportieren …",
            "Notizdatei in Dateiverwaltung anzeigen", "Übersicht", "Alle Befehle", "-",
            "Fensterposition zurücksetzen", "Fenstergröße zurücksetzen", "Tastenkürzel …",
            "Einstellungen …", "Vesko beenden"}));
    key(QStringLiteral("Escape"));
    QTest::qWait(300);

    // Settings, opened from the keyboard.
    key(QStringLiteral("ctrl+comma"));
    QTRY_VERIFY_WITH_TIMEOUT(
        !Test::visibleWindow(QStringLiteral("^Vesko-Einstellungen$")).isEmpty(), 15000);
    QTRY_COMPARE_WITH_TIMEOUT(tree().names(QStringLiteral("page tab")),
        (QStringList {"Allgemein", "Erfassen", "Speicherort", "Über"}), 15000);
    {
        const AccessibleTree now = tree();
        for (const QString &name :
            {QStringLiteral("Immer im Vordergrund"), QStringLiteral("Bei der Anmeldung öffnen"),
                QStringLiteral("Markdown beim Kopieren beibehalten")})
            QVERIFY2(now.find(QStringLiteral("check box"), name), qPrintable(name));
        QVERIFY(now.find(
            QStringLiteral("push button"), QStringLiteral("Fensterposition zurücksetzen")));
    }

    ::kill(pid_t(vesko->processId()), SIGTERM);
    QVERIFY(vesko->waitForFinished(15000));
}

QTEST_GUILESS_MAIN(PanelAccessTest)
#include "tst_panelaccess.moc"
