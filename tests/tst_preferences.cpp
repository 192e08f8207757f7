// SPDX-License-Identifier: GPL-3.0-or-later
//
// Preferences over a real settings file: defaults, round trips, readings of
// bad stored values, notification only on change, the side effects that
// run on every assignment, and writes that never hold the event loop.

#include "TestEnvironment.h"

#include "FakeHotKeyRegistrar.h"

#include "capture/HotKeyCenter.h"
#include "library/LibraryFile.h"
#include "shell/Preferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSignalSpy>
#include <QTimer>

using namespace Vesko;
using namespace Qt::StringLiterals;

class PreferencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Preferences::openSettings()->clear(); }

    void defaults();
    void roundTripThroughTheFile();
    void badStoredValues_data();
    void badStoredValues();
    void equalAssignments();
    void storedPanelFrame();
    void writesDoNotHoldTheEventLoop_data();
    void writesDoNotHoldTheEventLoop();
};

void PreferencesTest::defaults()
{
    const Preferences p;
    QCOMPARE(p.appearance(), AppAppearance::System);
    QCOMPARE(p.panelEdge(), PanelEdge::Right);
    QCOMPARE(p.panelWidth(), 340.0);
    QCOMPARE(p.panelHeight(), 560.0);
    QCOMPARE(p.panelInset(), 24.0);
    QCOMPARE(p.doubleShiftEnabled(), true);
    QCOMPARE(p.doubleShiftInterval(), 0.4);
    QCOMPARE(p.showPanelOnCapture(), true);
    QCOMPARE(p.groupCapturesBySource(), true);
    QCOMPARE(p.newestFirst(), false);
    QCOMPARE(p.showCompleted(), true);
    QCOMPARE(p.moveDoneToBottom(), false);
    QCOMPARE(p.listStyle(), ListStyle::Numbered);
    QCOMPARE(p.copyIncludesMarkdown(), true);
    QCOMPARE(p.joinsAllSpaces(), true);
    QCOMPARE(p.pinOnTop(), false);
    QCOMPARE(p.showsInMenuBar(), true);
    QCOMPARE(p.showsInDock(), false);
    QCOMPARE(p.libraryPath(), defaultLibraryURL());
    QVERIFY(!p.storedPanelFrame());
    // Reading the default path does not store it.
    QVERIFY(!Preferences::openSettings()->contains(QStringLiteral("libraryPath")));
}

void PreferencesTest::roundTripThroughTheFile()
{
    {
        Preferences p;
        p.setAppearance(AppAppearance::Dark);
        p.setPanelEdge(PanelEdge::Center);
        p.setPanelWidth(412.5);
        p.setDoubleShiftInterval(5);
        p.setShowCompleted(false);
        p.setListStyle(ListStyle::Dash);
        p.setShowsInDock(true);
        p.setLibraryPath(QStringLiteral("/data/Mine.json"));
        // Readers of the file see an assignment at once, written or not.
        QCOMPARE(libraryURL(), QStringLiteral("/data/Mine.json"));
    }
    const Preferences p;
    QCOMPARE(p.appearance(), AppAppearance::Dark);
    QCOMPARE(p.panelEdge(), PanelEdge::Center);
    QCOMPARE(p.panelWidth(), 412.5);
    QCOMPARE(p.doubleShiftInterval(), 5.0); // no clamp here
    QCOMPARE(p.showCompleted(), false);
    QCOMPARE(p.listStyle(), ListStyle::Dash);
    QCOMPARE(p.showsInDock(), true);
    QCOMPARE(p.libraryPath(), QStringLiteral("/data/Mine.json"));
    QCOMPARE(libraryURL(), QStringLiteral("/data/Mine.json"));

    const auto settings = Preferences::openSettings();
    QCOMPARE(settings->value(QStringLiteral("appearance")).toString(), QStringLiteral("dark"));
    QCOMPARE(settings->value(QStringLiteral("panelEdge")).toString(), QStringLiteral("center"));
    QCOMPARE(settings->value(QStringLiteral("listStyle")).toString(), QStringLiteral("dash"));
}

void PreferencesTest::badStoredValues_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QVariant>("read");

    QTest::newRow("edge left") << "panelEdge" << QVariant(u"left"_s)
                               << QVariant(int(PanelEdge::Left));
    QTest::newRow("edge unknown") << "panelEdge" << QVariant(u"top"_s)
                                  << QVariant(int(PanelEdge::Right));
    QTest::newRow("edge empty") << "panelEdge" << QVariant(u""_s)
                                << QVariant(int(PanelEdge::Right));
    QTest::newRow("appearance light")
        << "appearance" << QVariant(u"light"_s) << QVariant(int(AppAppearance::Light));
    QTest::newRow("appearance other case")
        << "appearance" << QVariant(u"Dark"_s) << QVariant(int(AppAppearance::System));
    QTest::newRow("list style plain")
        << "listStyle" << QVariant(u"plain"_s) << QVariant(int(ListStyle::Plain));
    QTest::newRow("list style unknown")
        << "listStyle" << QVariant(u"bullets"_s) << QVariant(int(ListStyle::Numbered));
    // Values of the wrong type read as zero.
    QTest::newRow("a word for a width") << "panelWidth" << QVariant(u"wide"_s) << QVariant(0.0);
    QTest::newRow("a word for a switch")
        << "showCompleted" << QVariant(u"sometimes"_s) << QVariant(false);
    QTest::newRow("a zero interval") << "doubleShiftInterval" << QVariant(0) << QVariant(0.0);
}

void PreferencesTest::badStoredValues()
{
    QFETCH(QString, key);
    QFETCH(QVariant, stored);
    QFETCH(QVariant, read);
    Preferences::openSettings()->setValue(key, stored);
    const Preferences p;
    const QHash<QString, QVariant> values = {{u"panelEdge"_s, int(p.panelEdge())},
        {u"appearance"_s, int(p.appearance())}, {u"listStyle"_s, int(p.listStyle())},
        {u"panelWidth"_s, p.panelWidth()}, {u"showCompleted"_s, p.showCompleted()},
        {u"doubleShiftInterval"_s, p.doubleShiftInterval()}};
    QCOMPARE(values.value(key), read);
}

//! An equal assignment is written and runs its side effects, but is no change.
void PreferencesTest::equalAssignments()
{
    Preferences p;
    QSignalSpy changed(&p, &Preferences::pinOnTopChanged);
    p.setPinOnTop(false); // the default, but now written
    QCOMPARE(changed.size(), 0);
    p.flush();
    QVERIFY(Preferences::openSettings()->contains(QStringLiteral("pinOnTop")));
    p.setPinOnTop(true);
    p.setPinOnTop(true);
    QCOMPARE(changed.size(), 1);

    QSignalSpy dock(&p, &Preferences::showsInDockAssigned);
    QSignalSpy dockChanged(&p, &Preferences::showsInDockChanged);
    QSignalSpy appearance(&p, &Preferences::appearanceAssigned);
    QSignalSpy list(&p, &Preferences::listOptionsAssigned);
    p.setShowsInDock(false);
    p.setShowsInDock(false);
    QCOMPARE(dock.size(), 2);
    QCOMPARE(dockChanged.size(), 0);
    p.setAppearance(AppAppearance::System);
    QCOMPARE(appearance.size(), 1);
    p.setNewestFirst(false);
    p.setShowCompleted(true);
    p.setMoveDoneToBottom(true);
    QCOMPARE(list.size(), 3);
    p.setListStyle(ListStyle::Plain); // no side effect on the rows
    QCOMPARE(list.size(), 3);
}

void PreferencesTest::storedPanelFrame()
{
    Preferences p;
    QSignalSpy width(&p, &Preferences::panelWidthChanged);
    p.setStoredPanelFrame(QRectF(10, 20, 200, 300));
    QCOMPARE(p.panelWidth(), 200.0); // no clamp
    QCOMPARE(width.size(), 1);
    QCOMPARE(p.storedPanelFrame(), QRectF(10, 20, 200, 300));

    p.clearStoredPanelFrame();
    QVERIFY(!p.storedPanelFrame());
    p.flush();
    const auto settings = Preferences::openSettings();
    QVERIFY(settings->contains(QStringLiteral("panelOriginX"))); // the origin stays
    QCOMPARE(settings->value(QStringLiteral("panelOriginY")).toDouble(), 20.0);
}

void PreferencesTest::writesDoNotHoldTheEventLoop_data()
{
    QTest::addColumn<bool>("hotKey");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("a preference") << false << QByteArray("pinOnTop=true");
    QTest::newRow("a hot key") << true << QByteArray("hotkey.quickAdd=");
}

void PreferencesTest::writesDoNotHoldTheEventLoop()
{
    QFETCH(bool, hotKey);
    QFETCH(QByteArray, written);
    // Another writer holds the settings file's lock, as a slow disk would
    // hold the write: the interface goes on meanwhile.
    const QString file = Preferences::openSettings()->fileName();
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QLockFile otherWriter(file + QStringLiteral(".lock"));
    QVERIFY(otherWriter.tryLock());
    Preferences p;
    Test::FakeHotKeyRegistrar registrar;
    HotKeyCenter hotKeys(registrar);
    if (hotKey) {
        hotKeys.setCombo(KeyCombo {58, KeyCombo::defaultFor(HotKeyAction::QuickAdd).modifiers},
            HotKeyAction::QuickAdd);
    } else {
        p.setPinOnTop(true);
        QCOMPARE(p.pinOnTop(), true);
    }
    int turns = 0;
    QTimer turning;
    connect(&turning, &QTimer::timeout, [&turns] { ++turns; });
    turning.start(5);
    QTRY_VERIFY_WITH_TIMEOUT(turns >= 20, Test::patience);

    otherWriter.unlock();
    const auto fileHolds = [&file, &written] {
        QFile settings(file);
        return settings.open(QIODevice::ReadOnly) && settings.readAll().contains(written);
    };
    QTRY_VERIFY_WITH_TIMEOUT(fileHolds(), Test::patience);
}

VESKO_TEST_MAIN(PreferencesTest)
#include "tst_preferences.moc"
