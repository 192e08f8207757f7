// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop entries that name the application in front: which entry a
// window's ids and class find and the name the application is given by it
// (or by the window and its process), and a first lookup answered on the
// event loop or given up.

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
    // The window's ids and class (found in the index by the first two), its
    // instance, and whether only its process is known.
    QTest::addColumn<QStringList>("candidates");
    QTest::addColumn<QString>("windowClass");
    QTest::addColumn<QString>("instance");
    QTest::addColumn<bool>("ownProcess");
    // The name and identifier of the application in front ("-": none), and
    // whether it is a terminal.
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<bool>("terminal");

    QTest::newRow("application id, a terminal by its entry")
        << QStringList {"org.gnome.Terminal", "Terminal"} << "Terminal"
        << "" << false << "Terminal"
        << "org.gnome.Terminal" << true;
    QTest::newRow("desktop file name") << QStringList {"firefox.desktop"} << "Navigator"
                                       << "" << false << "Firefox Web Browser"
                                       << "firefox" << false;
    QTest::newRow("declared window class, any case")
        << QStringList {"editormain", "editor"} << "editormain"
        << "editor" << false << "My Editor"
        << "org.example.Editor" << false;
    QTest::newRow("an id before the window class")
        << QStringList {"viewer", "EditorMain"} << "EditorMain"
        << "" << false << "Viewer"
        << "viewer" << false;
    QTest::newRow("class in lower case") << QStringList {"Firefox", "Navigator"} << "Navigator"
                                         << "" << false << "Firefox Web Browser"
                                         << "firefox" << false;
    QTest::newRow("no entry: the class and the instance")
        << QStringList {"gimp-2.10", "Gimp"} << "Gimp"
        << "gimp-2.10" << false << "Gimp"
        << "gimp-2.10" << false;
    QTest::newRow("a terminal by its instance") << QStringList {"xterm", "XTerm"} << "XTerm"
                                                << "xterm" << false << "XTerm"
                                                << "xterm" << true;
    QTest::newRow("a terminal by its app_id") << QStringList {"foot"} << "foot"
                                              << "" << false << "foot"
                                              << "foot" << true;
    QTest::newRow("nothing but a process") << QStringList {} << ""
                                           << "" << true << "tst_x11desktope"
                                           << "-" << false;
}

void X11DesktopEntriesTest::find()
{
    QFETCH(QStringList, candidates);
    QFETCH(QString, windowClass);
    QFETCH(QString, instance);
    QFETCH(bool, ownProcess);
    QFETCH(QString, name);
    QFETCH(QString, identifier);
    QFETCH(bool, terminal);
    const X11DesktopEntries::Index index = X11DesktopEntries::Index::read({m_user, m_system});
    FrontApplication front;
    if (ownProcess)
        front.processID = QCoreApplication::applicationPid(); // the kernel names it
    nameFrontApplication(front, index.find(candidates, windowClass), windowClass, instance);
    QCOMPARE(front.name, name);
    QCOMPARE(front.identifier.value_or(QStringLiteral("-")), identifier);
    QCOMPARE(front.isTerminal, terminal);
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

VESKO_TEST_MAIN(X11DesktopEntriesTest)
#include "tst_x11desktopentries.moc"
