// SPDX-License-Identifier: GPL-3.0-or-later
//
// "Open at login" on real files: the autostart entry appears with the right
// Exec line and goes with the toggle, a hidden entry counts as off, and a
// read-only autostart folder gives a failure with the entry as it was.

#include "TestEnvironment.h"
#include "TestFiles.h"

#include "ReadOnlyFolder.h"
#include "shell/LoginItem.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Vesko;
using namespace Qt::StringLiterals;
using namespace Vesko::Test;

namespace {

//! The value of \a key in the [Desktop Entry] group, as a plain reader of the format sees it.
QString entryValue(const QByteArray &text, const QByteArray &key)
{
    for (const QByteArray &line : text.split('\n')) {
        if (line.startsWith(key + '='))
            return QString::fromUtf8(line.mid(key.size() + 1));
    }
    return {};
}

} // namespace

class LoginItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultFolderFollowsXdgConfigHome();
    void turnsOnAndOff();
    void execLine_data();
    void execLine();
    void hiddenEntryIsOff_data();
    void hiddenEntryIsOff();
    void readOnlyFolderKeepsTheTruth();
    void olderEntryIsTakenOver_data();
    void olderEntryIsTakenOver();
};

void LoginItemTest::defaultFolderFollowsXdgConfigHome()
{
    QCOMPARE(LoginItem::defaultAutostartFolder(),
        Test::IsolatedEnvironment::current().configHome() + QStringLiteral("/autostart"));
    QCOMPARE(LoginItem::forCurrentProgram().entryPath(),
        Test::IsolatedEnvironment::current().configHome()
            + QStringLiteral("/autostart/com.vesko.Vesko.desktop"));
}

void LoginItemTest::turnsOnAndOff()
{
    QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("config/autostart"));
    LoginItem item(folder, QStringLiteral("/usr/bin/vesko"));
    const QString entry = folder + QStringLiteral("/com.vesko.Vesko.desktop");

    QVERIFY(!item.isEnabled());
    QCOMPARE(item.setEnabled(true), std::nullopt);
    QVERIFY(item.isEnabled());
    const QByteArray text = readFile(entry);
    QVERIFY(text.startsWith("[Desktop Entry]\n"));
    QCOMPARE(entryValue(text, "Exec"), QStringLiteral("/usr/bin/vesko"));
    QCOMPARE(entryValue(text, "Type"), QStringLiteral("Application"));
    QCOMPARE(entryValue(text, "Hidden"), QString());
    // No temporary file is left beside it.
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden),
        QStringList {"com.vesko.Vesko.desktop"});

    // Turning it on again changes nothing.
    QCOMPARE(item.setEnabled(true), std::nullopt);
    QCOMPARE(readFile(entry), text);

    QCOMPARE(item.setEnabled(false), std::nullopt);
    QVERIFY(!QFile::exists(entry));
    QVERIFY(!item.isEnabled());
    QCOMPARE(item.setEnabled(false), std::nullopt);
}

void LoginItemTest::execLine_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("exec");
    QTest::newRow("plain") << "/usr/bin/vesko" << u"/usr/bin/vesko"_s;
    QTest::newRow("space") << "/opt/My Apps/vesko" << u"\"/opt/My Apps/vesko\""_s;
    QTest::newRow("dollar") << "/opt/$HOME/vesko" << u"\"/opt/\\\\$HOME/vesko\""_s;
    QTest::newRow("percent") << "/opt/100%/vesko" << u"/opt/100%%/vesko"_s;
    QTest::newRow("quote") << "/opt/a\"b/vesko" << u"\"/opt/a\\\\\"b/vesko\""_s;
}

void LoginItemTest::execLine()
{
    QFETCH(QString, program);
    QFETCH(QString, exec);
    QCOMPARE(entryValue(LoginItem::entryText(program), "Exec"), exec);
}

void LoginItemTest::hiddenEntryIsOff_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("hidden") << QByteArray("[Desktop Entry]\nType=Application\nHidden=true\n")
                            << false;
    QTest::newRow("hidden false") << QByteArray("[Desktop Entry]\nHidden=false\nExec=vesko\n")
                                  << true;
    QTest::newRow("hidden with blanks")
        << QByteArray("[Desktop Entry]\nHidden = true\nExec=vesko\n") << false;
    QTest::newRow("hidden in another group")
        << QByteArray("[Desktop Entry]\nExec=vesko\n[Desktop Action x]\nHidden=true\n") << true;
}

void LoginItemTest::hiddenEntryIsOff()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, enabled);
    QTemporaryDir root;
    LoginItem item(root.path(), QStringLiteral("/usr/bin/vesko"));
    writeFile(item.entryPath(), text);
    QCOMPARE(item.isEnabled(), enabled);
    if (!enabled) {
        // Turning a hidden entry on writes a visible one in its place.
        QCOMPARE(item.setEnabled(true), std::nullopt);
        QVERIFY(item.isEnabled());
        QCOMPARE(entryValue(readFile(item.entryPath()), "Exec"), QStringLiteral("/usr/bin/vesko"));
    }
}

void LoginItemTest::olderEntryIsTakenOver_data()
{
    QTest::addColumn<QByteArray>("olderText");
    QTest::addColumn<bool>("enable");
    QTest::addColumn<bool>("wasEnabled");
    const QByteArray on = "[Desktop Entry]\nType=Application\nExec=/usr/bin/vesko\n";
    const QByteArray hidden = on + "Hidden=true\n";
    QTest::newRow("an older entry on, turned off") << on << false << true;
    QTest::newRow("an older entry on, turned on again") << on << true << true;
    QTest::newRow("an older hidden entry, turned on") << hidden << true << false;
    QTest::newRow("an older hidden entry, turned off") << hidden << false << false;
}

void LoginItemTest::olderEntryIsTakenOver()
{
    QFETCH(QByteArray, olderText);
    QFETCH(bool, enable);
    QFETCH(bool, wasEnabled);
    QTemporaryDir root;
    LoginItem item(root.path(), QStringLiteral("/usr/bin/vesko"));
    writeFile(root.filePath(QStringLiteral("vesko.desktop")), olderText);

    QCOMPARE(item.isEnabled(), wasEnabled);
    QCOMPARE(item.setEnabled(enable), std::nullopt);
    QCOMPARE(item.isEnabled(), enable);
    // One entry at most, under the application's id.
    QCOMPARE(QDir(root.path()).entryList(QDir::Files | QDir::Hidden),
        enable ? QStringList {"com.vesko.Vesko.desktop"} : QStringList {});
}

void LoginItemTest::readOnlyFolderKeepsTheTruth()
{
    QTemporaryDir root;
    const QString empty = root.filePath(QStringLiteral("empty"));
    {
        Test::ReadOnlyFolder folder(empty);
        if (!folder.isMounted())
            QSKIP("Mounting a read-only tmpfs is not permitted here");
        LoginItem item(empty, QStringLiteral("/usr/bin/vesko"));
        const std::optional<QString> failure = item.setEnabled(true);
        QVERIFY(failure.has_value());
        QVERIFY2(failure->contains(QStringLiteral("Read-only file system")), qPrintable(*failure));
        QVERIFY(!item.isEnabled());
        QVERIFY(!QFile::exists(item.entryPath()));
    }

    const QString holding = root.filePath(QStringLiteral("holding"));
    LoginItem item(holding, QStringLiteral("/usr/bin/vesko"));
    Test::ReadOnlyFolder folder(holding, [&] { QCOMPARE(item.setEnabled(true), std::nullopt); });
    QVERIFY(folder.isMounted());
    QVERIFY(item.isEnabled());
    const std::optional<QString> failure = item.setEnabled(false);
    QVERIFY(failure.has_value());
    QVERIFY(item.isEnabled());
}

VESKO_TEST_MAIN(LoginItemTest)
#include "tst_loginitem.moc"
