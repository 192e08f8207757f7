// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opening attachments and showing them in the file manager, on a private
// session bus (dbus-run-session): a file manager that answers ShowItems, one
// that fails, and none at all, where the file's folder is opened instead;
// files and folders that no installed application takes, which are told of
// instead of handed on; and the panel's commands going the same way.

#include "TestEnvironment.h"
#include "TestFiles.h"
#include "WidgetTestMain.h"

#include "library/LibraryFile.h"
#include "panel/window/PanelCommands.h"
#include "platform/qt/QtDesktopFiles.h"
#include "shell/Toast.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>

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

//! The user's applications folder, where the tests install what they need.
QString applicationsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/applications");
}

//! A desktop entry \a id taking \a types, as an installed application has.
void installApplication(const QString &id, const QString &types)
{
    Test::writeFile(applicationsFolder() + u'/' + id,
        QStringLiteral("[Desktop Entry]\nType=Application\nName=%1\nExec=true %%f\nMimeType=%2\n")
            .arg(id, types)
            .toUtf8());
}

void writeUserList(const QString &contents)
{
    Test::writeFile(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
            + QStringLiteral("/mimeapps.list"),
        contents.toUtf8());
}

void uninstallApplications()
{
    QDir(applicationsFolder()).removeRecursively();
    QFile::remove(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/mimeapps.list"));
}

} // namespace

class DesktopFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void open_data();
    void open();
    void reveal_data();
    void reveal();
    void panelCommandsGoTheSameWay();

private:
    OpenedUrls m_opened;
    //! Stands for the machine's own folders, so that only the tests' applications count.
    QTemporaryDir m_system;
};

void DesktopFilesTest::initTestCase()
{
    QVERIFY2(
        QDBusConnection::sessionBus().isConnected(), "run on a session bus (dbus-run-session)");
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &m_opened, "open");
    // The machine's types of files, without its applications.
    QFile::link(QStringLiteral("/usr/share/mime"), m_system.filePath(QStringLiteral("mime")));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(m_system.path()));
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(m_system.path()));
}

void DesktopFilesTest::init()
{
    m_opened.urls.clear();
    uninstallApplications();
    installApplication(QStringLiteral("editor.desktop"), QStringLiteral("text/plain;"));
    installApplication(QStringLiteral("files.desktop"), QStringLiteral("inode/directory;"));
}

void DesktopFilesTest::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
}

void DesktopFilesTest::open_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("userList"); // the user's mimeapps.list
    QTest::addColumn<bool>("opened");

    QTest::newRow("an application takes it") << "report final.txt" << "" << true;
    QTest::newRow("one takes a parent type") << "notes.md" << "" << true;
    QTest::newRow("no application") << "report final.pdf" << "" << false;
    QTest::newRow("the user's default")
        << "report final.pdf"
        << "[Default Applications]\napplication/pdf=editor.desktop\n" << true;
    QTest::newRow("a default that is not installed")
        << "report final.pdf" << "[Default Applications]\napplication/pdf=gone.desktop\n"
        << false;
    QTest::newRow("removed by the user")
        << "report final.txt" << "[Removed Associations]\ntext/plain=editor.desktop;\n" << false;
}

void DesktopFilesTest::open()
{
    QFETCH(QString, file);
    QFETCH(QString, userList);
    QFETCH(bool, opened);
    if (!userList.isEmpty())
        writeUserList(userList);
    const QString path = QStringLiteral("/data/Attachments/A B/") + file;
    QtDesktopFiles files;
    bool unhandled = false;
    files.open(path, [&unhandled] { unhandled = true; });
    QVERIFY(QTest::qWaitFor([&] { return unhandled || !m_opened.urls.isEmpty(); }, 20000));
    QCOMPARE(unhandled, !opened);
    QCOMPARE(m_opened.urls, opened ? QList<QUrl> {QUrl::fromLocalFile(path)} : QList<QUrl>());
}

void DesktopFilesTest::reveal_data()
{
    QTest::addColumn<QString>("fileManager"); // answers, fails, none
    QTest::addColumn<bool>("folderApplication");
    QTest::newRow("the file manager shows the file") << "answers" << false;
    QTest::newRow("the file manager fails: the folder opens") << "fails" << true;
    QTest::newRow("no file manager: the folder opens") << "none" << true;
    QTest::newRow("nothing opens folders") << "none" << false;
}

void DesktopFilesTest::reveal()
{
    QFETCH(QString, fileManager);
    QFETCH(bool, folderApplication);
    if (!folderApplication)
        QFile::remove(applicationsFolder() + QStringLiteral("/files.desktop"));
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
    bool unhandled = false;
    files.reveal(path, [&unhandled] { unhandled = true; });
    QVERIFY(QTest::qWaitFor([&] { return handled.count() == 1 || unhandled; }, 20000));

    QCOMPARE(unhandled, fileManager != u"answers" && !folderApplication);
    if (unhandled) {
        QVERIFY(handled.isEmpty());
        QVERIFY(m_opened.urls.isEmpty());
    } else if (fileManager == u"answers") {
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
    QVERIFY(QTest::qWaitFor([&] { return !m_opened.urls.isEmpty(); }, 20000));
    // A record whose name leads outside the folder is neither opened nor shown.
    attachment.storedFileName = QStringLiteral("../Library.json");
    PanelCommands::shared().openAttachment(attachment);
    PanelCommands::shared().revealAttachment(attachment);
    QTest::qWait(50);
    QCOMPARE(m_opened.urls, QList<QUrl> {QUrl::fromLocalFile(file)});
    QCOMPARE(handled.count(), 2);

    // No file manager on the bus, and no application for folders or PDFs:
    // the panel says so.
    bus.unregisterService(QStringLiteral("org.freedesktop.FileManager1"));
    bus.unregisterObject(QStringLiteral("/org/freedesktop/FileManager1"));
    QDBusConnection::disconnectFromBus(name);
    uninstallApplications();
    PanelCommands::shared().revealLibraryFile();
    QVERIFY(QTest::qWaitFor(
        [] { return ToastPresenter::shared().currentMessage() == u"No File Manager Found"; },
        20000));

    m_opened.urls.clear();
    attachment.fileName = QStringLiteral("Q3 report.pdf");
    attachment.storedFileName = QStringLiteral("7A1C/Q3 report.pdf");
    PanelCommands::shared().openAttachment(attachment);
    QVERIFY(QTest::qWaitFor(
        [] {
            return ToastPresenter::shared().currentMessage() == u"No Application for “Q3 report.pdf”";
        },
        20000));
    QVERIFY(m_opened.urls.isEmpty());
}

VESKO_WIDGET_TEST_MAIN(DesktopFilesTest)

#include "tst_desktopfiles.moc"
