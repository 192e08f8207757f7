// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop entries that name the application in front: which entry a
// window's ids and class find, a first lookup answered on the event loop or
// given up, and the name a front application is given.

#include "TestEnvironment.h"

#include "platform/x11/X11DesktopEntries.h"

#include <QDir>
#include <QFile>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTimer>

using namespace Vesko;

namespace {

void writeEntry(const QString &folder, const QString &id, const QByteArray &body)
{
    QDir().mkpath(folder);
    QFile file(folder + u'/' + id + QStringLiteral(".desktop"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\n" + body);
}

} // namespace

class X11DesktopEntriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void find_data();
    void find();
    void firstLookup_data();
    void firstLookup();
    void frontApplicationName_data();
    void frontApplicationName();

private:
    QTemporaryDir m_dir;
    QString m_user;
    QString m_system;
};

void X11DesktopEntriesTest::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_user = m_dir.filePath(QStringLiteral("user"));
    m_system = m_dir.filePath(QStringLiteral("system"));
    writeEntry(m_system, QStringLiteral("org.gnome.Terminal"),
        "Name=Terminal\nName[de]=Konsole der Wahl\nCategories=GTK;System;TerminalEmulator;\n");
    writeEntry(m_system, QStringLiteral("org.example.Editor"),
        "Name=System Editor\nStartupWMClass=EditorMain\n");
    // The user's own entry of the same id wins over the system's.
    writeEntry(m_user, QStringLiteral("org.example.Editor"),
        "Name=My Editor\nStartupWMClass=EditorMain\n");
    writeEntry(m_system, QStringLiteral("firefox"), "Name=Firefox Web Browser\n");
    // Keys outside the entry's own group are not its keys.
    writeEntry(m_system, QStringLiteral("viewer"),
        "Name=Viewer\n\n[Desktop Action Open]\nName=Open a Window\n");
}

void X11DesktopEntriesTest::find_data()
{
    QTest::addColumn<QStringList>("candidates");
    QTest::addColumn<QString>("windowClass");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("terminal");

    QTest::newRow("application id")
        << QStringList {"org.gnome.Terminal", "Gnome-terminal"} << "Gnome-terminal"
        << "org.gnome.Terminal"
        << "Terminal" << true;
    QTest::newRow("desktop file name") << QStringList {"firefox.desktop"} << "Navigator"
                                       << "firefox"
                                       << "Firefox Web Browser" << false;
    QTest::newRow("declared window class, any case")
        << QStringList {"editormain", "editor"} << "editormain"
        << "org.example.Editor"
        << "My Editor" << false;
    QTest::newRow("an id before the window class")
        << QStringList {"viewer", "EditorMain"} << "EditorMain"
        << "viewer"
        << "Viewer" << false;
    QTest::newRow("class in lower case") << QStringList {"Firefox", "Navigator"} << "Navigator"
                                         << "firefox"
                                         << "Firefox Web Browser" << false;
    QTest::newRow("no entry") << QStringList {"xterm", "XTerm"} << "XTerm"
                              << ""
                              << "" << false;
}

void X11DesktopEntriesTest::find()
{
    QFETCH(QStringList, candidates);
    QFETCH(QString, windowClass);
    QFETCH(QString, id);
    QFETCH(QString, name);
    QFETCH(bool, terminal);
    const X11DesktopEntries::Index index = X11DesktopEntries::Index::read({m_user, m_system});
    const std::optional<X11DesktopEntries::Entry> entry = index.find(candidates, windowClass);
    QCOMPARE(entry.has_value(), !id.isEmpty());
    if (entry) {
        QCOMPARE(entry->id, id);
        QCOMPARE(entry->name, name);
        QCOMPARE(entry->isTerminal, terminal);
    }
}

void X11DesktopEntriesTest::firstLookup_data()
{
    QTest::addColumn<bool>("inTime"); // the folders are read before the lookup gives up
    QTest::newRow("folders read in time") << true;
    QTest::newRow("folders read too late") << false;
}

void X11DesktopEntriesTest::firstLookup()
{
    // The folders are read while a capture asks; the event loop goes on meanwhile.
    QFETCH(bool, inTime);
    QSemaphore reading;
    const QString user = m_user;
    X11DesktopEntries entries([&reading, user] {
        reading.tryAcquire(1, 20000);
        return X11DesktopEntries::Index::read({user});
    });
    int turns = 0;
    QTimer turning;
    connect(&turning, &QTimer::timeout, [&turns] { ++turns; });
    turning.start(5);
    QList<std::optional<X11DesktopEntries::Entry>> answers;
    const auto lookUp = [&] {
        entries.find({QStringLiteral("org.example.Editor")}, QString(),
            [&answers](std::optional<X11DesktopEntries::Entry> entry) { answers.append(entry); });
    };
    lookUp();
    if (inTime) {
        QTRY_VERIFY_WITH_TIMEOUT(turns >= 10, Test::patience);
        QVERIFY(answers.isEmpty());
        reading.release();
        QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 1, Test::patience);
        QVERIFY(answers.first());
        QCOMPARE(answers.first()->name, QStringLiteral("My Editor"));
        lookUp(); // once read, answered at once
        QCOMPARE(answers.size(), 2);
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 1, Test::patience);
        QVERIFY(!answers.first());
        // The folders read at last answer the next lookup, and the first only once.
        reading.release();
        lookUp();
        QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 2, Test::patience);
    }
    QVERIFY(answers.last());
}

void X11DesktopEntriesTest::frontApplicationName_data()
{
    QTest::addColumn<QStringList>("entry"); // id, Name, "terminal"; empty: none found
    QTest::addColumn<QString>("windowClass");
    QTest::addColumn<QString>("instance");
    QTest::addColumn<bool>("ownProcess");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("identifier"); // "-": none
    QTest::addColumn<bool>("terminal");
    QTest::newRow("the entry names it")
        << QStringList {"org.example.Editor", "My Editor"} << "EditorMain"
        << "editor" << false << "My Editor"
        << "org.example.Editor" << false;
    QTest::newRow("a terminal by its entry")
        << QStringList {"org.gnome.Terminal", "Terminal", "terminal"} << "Gnome-terminal"
        << "" << false << "Terminal"
        << "org.gnome.Terminal" << true;
    QTest::newRow("no entry: the class and the instance") << QStringList {} << "Gimp"
                                                          << "gimp-2.10" << false << "Gimp"
                                                          << "gimp-2.10" << false;
    QTest::newRow("a terminal by its instance") << QStringList {} << "XTerm"
                                                << "xterm" << false << "XTerm"
                                                << "xterm" << true;
    QTest::newRow("a terminal by its app_id") << QStringList {} << "foot"
                                              << "" << false << "foot"
                                              << "foot" << true;
    QTest::newRow("nothing but a process") << QStringList {} << ""
                                           << "" << true << "tst_x11desktope"
                                           << "-" << false;
}

void X11DesktopEntriesTest::frontApplicationName()
{
    QFETCH(QStringList, entry);
    QFETCH(QString, windowClass);
    QFETCH(QString, instance);
    QFETCH(bool, ownProcess);
    QFETCH(QString, name);
    QFETCH(QString, identifier);
    QFETCH(bool, terminal);
    std::optional<DesktopEntry> found;
    if (!entry.isEmpty())
        found = DesktopEntry {entry.at(0), entry.at(1), entry.size() > 2};
    FrontApplication front;
    if (ownProcess)
        front.processID = QCoreApplication::applicationPid(); // the kernel names it
    nameFrontApplication(front, found, windowClass, instance);
    QCOMPARE(front.name, name);
    QCOMPARE(front.identifier.value_or(QStringLiteral("-")), identifier);
    QCOMPARE(front.isTerminal, terminal);
}

VESKO_TEST_MAIN(X11DesktopEntriesTest)
#include "tst_x11desktopentries.moc"
