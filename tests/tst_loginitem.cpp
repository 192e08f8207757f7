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
    void execLine_data();
    void execLine();
    void turnedOverWhatIsThere_data();
    void turnedOverWhatIsThere();
    void readOnlyFolderKeepsTheTruth();
};

void LoginItemTest::defaultFolderFollowsXdgConfigHome()
{
    QCOMPARE(LoginItem::defaultAutostartFolder(),
        Test::IsolatedEnvironment::current().configHome() + QStringLiteral("/autostart"));
    QCOMPARE(LoginItem::forCurrentProgram().entryPath(),
        Test::IsolatedEnvironment::current().configHome()
            + QStringLiteral("/autostart/com.vesko.Vesko.desktop"));
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

//! Turned on or off over what the autostart folder holds, twice: the second
//! time changes nothing.
void LoginItemTest::turnedOverWhatIsThere_data()
{
    QTest::addColumn<QString>("fileName"); // empty: no entry, not even the folder
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("wasEnabled");
    QTest::addColumn<bool>("enable");
    const QString own = QStringLiteral("com.vesko.Vesko.desktop");
    const QString older = QStringLiteral("vesko.desktop");
    const QByteArray on = "[Desktop Entry]\nType=Application\nExec=/usr/bin/vesko\n";
    const QByteArray hidden = on + "Hidden=true\n";
    QTest::newRow("none, turned on") << QString() << QByteArray() << false << true;
    QTest::newRow("none, turned off") << QString() << QByteArray() << false << false;
    QTest::newRow("hidden, turned on") << own << hidden << false << true;
    QTest::newRow("hidden false") << own
                                  << QByteArray("[Desktop Entry]\nHidden=false\nExec=vesko\n")
                                  << true << false;
    QTest::newRow("hidden with blanks")
        << own << QByteArray("[Desktop Entry]\nHidden = true\nExec=vesko\n") << false << true;
    QTest::newRow("hidden in another group")
        << own << QByteArray("[Desktop Entry]\nExec=vesko\n[Desktop Action x]\nHidden=true\n")
        << true << false;
    QTest::newRow("an older entry on, turned off") << older << on << true << false;
    QTest::newRow("an older entry on, turned on again") << older << on << true << true;
    QTest::newRow("an older hidden entry, turned on") << older << hidden << false << true;
    QTest::newRow("an older hidden entry, turned off") << older << hidden << false << false;
}

void LoginItemTest::turnedOverWhatIsThere()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, text);
    QFETCH(bool, wasEnabled);
    QFETCH(bool, enable);
    QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("config/autostart"));
    LoginItem item(folder, QStringLiteral("/usr/bin/vesko"));
    if (!fileName.isEmpty())
        writeFile(folder + u'/' + fileName, text);

    QCOMPARE(item.isEnabled(), wasEnabled);
    QCOMPARE(item.setEnabled(enable), std::nullopt);
    const QByteArray written = readFile(item.entryPath());
    QCOMPARE(item.setEnabled(enable), std::nullopt);
    QCOMPARE(readFile(item.entryPath()), written);
    QCOMPARE(item.isEnabled(), enable);
    // One visible entry at most, under the application's id, and no temporary file beside it.
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden),
        enable ? QStringList {"com.vesko.Vesko.desktop"} : QStringList {});
    if (enable) {
        QVERIFY(written.startsWith("[Desktop Entry]\n"));
        QCOMPARE(entryValue(written, "Exec"), QStringLiteral("/usr/bin/vesko"));
        QCOMPARE(entryValue(written, "Type"), QStringLiteral("Application"));
        QCOMPARE(entryValue(written, "Hidden"), QString());
    }
}

//! A failed turning off leaves the entry on. A failed turning on is tst_settingsviews' openAtLogin.
void LoginItemTest::readOnlyFolderKeepsTheTruth()
{
    QTemporaryDir root;
    const QString holding = root.filePath(QStringLiteral("holding"));
    LoginItem item(holding, QStringLiteral("/usr/bin/vesko"));
    Test::ReadOnlyFolder folder(holding, [&] { QCOMPARE(item.setEnabled(true), std::nullopt); });
    if (!folder.isMounted())
        QSKIP("Mounting a read-only tmpfs is not permitted here");
    QVERIFY(item.isEnabled());
    QVERIFY(item.setEnabled(false).has_value());
    QVERIFY(item.isEnabled());
}

VESKO_TEST_MAIN(LoginItemTest)
#include "tst_loginitem.moc"
