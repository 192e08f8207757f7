// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opening attachments and showing them in the file manager, on a private
// session bus (dbus-run-session): a file manager that answers ShowItems, one
// that fails, and none at all, where the file's folder is opened instead;
// and the panel's commands going the same way.

#include "TestEnvironment.h"

#include "library/LibraryFile.h"
#include "panel/PanelCommands.h"
#include "platform/qt/QtDesktopFiles.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QSignalSpy>

using namespace Vesko;

namespace {

// What QDesktopServices was asked to open.
class OpenedUrls : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url); }

public:
    QList<QUrl> urls;
};

// A file manager on its own bus connection, as another program would be.
class FakeFileManager : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    bool fails = false;
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &startupId)
    {
        Q_UNUSED(startupId)
        if (fails) {
            sendErrorReply(QDBusError::Failed, QStringLiteral("cannot show that"));
            return;
        }
        shown.append(uris);
    }
};

} // namespace

class DesktopFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void openGivesTheFile();
    void reveal_data();
    void reveal();
    void panelCommandsGoTheSameWay();

private:
    OpenedUrls m_opened;
};

void DesktopFilesTest::initTestCase()
{
    QVERIFY2(
        QDBusConnection::sessionBus().isConnected(), "run on a session bus (dbus-run-session)");
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &m_opened, "open");
}

void DesktopFilesTest::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
}

void DesktopFilesTest::openGivesTheFile()
{
    m_opened.urls.clear();
    QtDesktopFiles files;
    files.open(QStringLiteral("/data/Attachments/A B/report final.pdf"));
    QCOMPARE(m_opened.urls,
        QList<QUrl> {
            QUrl::fromLocalFile(QStringLiteral("/data/Attachments/A B/report final.pdf"))});
}

void DesktopFilesTest::reveal_data()
{
    QTest::addColumn<QString>("fileManager"); // answers, fails, none
    QTest::newRow("the file manager shows the file") << "answers";
    QTest::newRow("the file manager fails: the folder opens") << "fails";
    QTest::newRow("no file manager: the folder opens") << "none";
}

void DesktopFilesTest::reveal()
{
    QFETCH(QString, fileManager);
    m_opened.urls.clear();
    const QString name = QStringLiteral("filemanager-") + fileManager;
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    FakeFileManager fake;
    fake.fails = fileManager == u"fails";
    if (fileManager != u"none") {
        QVERIFY(bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &fake,
            QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    }

    const QString path = QStringLiteral("/data/Attachments/1F2E/Holiday photo.jpg");
    QtDesktopFiles files;
    QSignalSpy handled(&files, &QtDesktopFiles::revealHandled);
    files.reveal(path);
    QVERIFY(QTest::qWaitFor([&] { return handled.count() == 1; }, 20000));

    if (fileManager == u"answers") {
        QCOMPARE(fake.shown,
            QStringList {QStringLiteral("file:///data/Attachments/1F2E/Holiday%20photo.jpg")});
        QCOMPARE(handled.first().at(1).toBool(), true);
        QVERIFY(m_opened.urls.isEmpty());
    } else {
        QVERIFY(fake.shown.isEmpty());
        QCOMPARE(handled.first().at(1).toBool(), false);
        QCOMPARE(m_opened.urls,
            QList<QUrl> {QUrl::fromLocalFile(QStringLiteral("/data/Attachments/1F2E"))});
    }
    bus.unregisterService(QStringLiteral("org.freedesktop.FileManager1"));
    bus.unregisterObject(QStringLiteral("/org/freedesktop/FileManager1"));
    QDBusConnection::disconnectFromBus(name);
}

void DesktopFilesTest::panelCommandsGoTheSameWay()
{
    m_opened.urls.clear();
    const QString name = QStringLiteral("filemanager-commands");
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    FakeFileManager fake;
    QVERIFY(bus.registerObject(
        QStringLiteral("/org/freedesktop/FileManager1"), &fake, QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(QStringLiteral("org.freedesktop.FileManager1")));

    NoteAttachment attachment;
    attachment.fileName = QStringLiteral("minutes.txt");
    attachment.storedFileName = QStringLiteral("7A1C/minutes.txt");
    const QString file = attachmentsFolder(libraryURL()) + QStringLiteral("/7A1C/minutes.txt");
    QSignalSpy handled(&QtDesktopFiles::shared(), &QtDesktopFiles::revealHandled);
    PanelCommands::shared().revealAttachment(attachment);
    PanelCommands::shared().revealLibraryFile();
    QVERIFY(QTest::qWaitFor([&] { return handled.count() == 2; }, 20000));
    QCOMPARE(fake.shown,
        QStringList({QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded),
            QUrl::fromLocalFile(libraryURL()).toString(QUrl::FullyEncoded)}));

    PanelCommands::shared().openAttachment(attachment);
    // A record whose name leads outside the folder is neither opened nor shown.
    attachment.storedFileName = QStringLiteral("../Library.json");
    PanelCommands::shared().openAttachment(attachment);
    PanelCommands::shared().revealAttachment(attachment);
    QCOMPARE(m_opened.urls, QList<QUrl> {QUrl::fromLocalFile(file)});
    QCoreApplication::processEvents();
    QCOMPARE(handled.count(), 2);

    bus.unregisterService(QStringLiteral("org.freedesktop.FileManager1"));
    bus.unregisterObject(QStringLiteral("/org/freedesktop/FileManager1"));
    QDBusConnection::disconnectFromBus(name);
}

int main(int argc, char *argv[])
{
    Vesko::Test::IsolatedEnvironment environment;
    QGuiApplication app(argc, argv);
    DesktopFilesTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_desktopfiles.moc"
