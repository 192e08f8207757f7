// SPDX-License-Identifier: GPL-3.0-or-later
//
// The double-Shift state machine over recorded event sequences: gaps and
// holds at their limits, the interval's clamps, spoiling keys and modifiers,
// a property: no sequence with another key between the first press and the
// second release is ever recognised; and the taps a compositor reports,
// judged by the same limits.

#include "TestEnvironment.h"

#include "FakeKeyMonitor.h"

#include "capture/DoubleShiftMonitor.h"
#include "platform/ShiftTaps.h"

#include <QRandomGenerator>

#include <cmath>
#include <limits>

using namespace Vesko;

namespace {

using FakeKeys = Test::FakeKeyMonitor;

constexpr quint16 leftShift = DoubleShiftMonitor::leftShiftKeyCode;
constexpr quint16 rightShift = DoubleShiftMonitor::rightShiftKeyCode;
constexpr quint16 keyA = 38;
constexpr quint16 controlKey = 37; // Ctrl, the Command flag
constexpr quint16 capsLock = 66;

// A compact script: "S+@0" Shift (left) down at 0 s, "S-@0.1" up, "R+" right
// Shift down, "A@0.2" a letter, "C+"/"C-" Ctrl down and up, "K+"/"K-" Caps Lock;
// in sequences(), "|" stops the monitor and starts it again.
QList<KeyEvent> script(const QString &text)
{
    QList<KeyEvent> events;
    quint64 held = 0;
    int shiftsDown = 0;
    for (const QString &step : text.split(u' ', Qt::SkipEmptyParts)) {
        const QString what = step.section(u'@', 0, 0);
        const double time = step.section(u'@', 1, 1).toDouble();
        if (what == u"A") {
            events.append({KeyEvent::KeyDown, keyA, held, time});
        } else if (what == u"S+" || what == u"R+") {
            ++shiftsDown;
            held |= ModifierFlag::Shift;
            events.append(
                {KeyEvent::FlagsChanged, what == u"S+" ? leftShift : rightShift, held, time});
        } else if (what == u"S-" || what == u"R-") {
            if (--shiftsDown == 0)
                held &= ~ModifierFlag::Shift;
            events.append(
                {KeyEvent::FlagsChanged, what == u"S-" ? leftShift : rightShift, held, time});
        } else if (what == u"C+" || what == u"C-") {
            held = what == u"C+" ? held | ModifierFlag::Command : held & ~ModifierFlag::Command;
            events.append({KeyEvent::FlagsChanged, controlKey, held, time});
        } else if (what == u"K+" || what == u"K-") {
            held = what == u"K+" ? held | ModifierFlag::CapsLock : held & ~ModifierFlag::CapsLock;
            events.append({KeyEvent::FlagsChanged, capsLock, held, time});
        }
    }
    return events;
}

} // namespace

class DoubleShiftTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sequences_data();
    void sequences();
    void anyOtherKeyBetweenTheTapsSpoils();
    void compositorTaps_data();
    void compositorTaps();
};

void DoubleShiftTest::sequences_data()
{
    QTest::addColumn<double>("interval");
    QTest::addColumn<QString>("events");
    QTest::addColumn<int>("triggers");

    QTest::newRow("gap 0.40 at the default") << 0.4 << "S+@10 S-@10.1 S+@10.5 S-@10.6" << 1;
    QTest::newRow("gap 0.41") << 0.4 << "S+@10 S-@10.1 S+@10.51 S-@10.6" << 0;
    QTest::newRow("late tap starts again")
        << 0.4 << "S+@10 S-@10.1 S+@10.51 S-@10.6 S+@10.8 S-@10.9" << 1;
    QTest::newRow("third tap is a first tap")
        << 0.4 << "S+@10 S-@10.1 S+@10.2 S-@10.3 S+@10.4 S-@10.5" << 1;
    QTest::newRow("hold 0.65") << 0.4 << "S+@10 S-@10.65 S+@10.7 S-@10.8" << 1;
    QTest::newRow("hold 0.66 clears the first tap")
        << 0.4 << "S+@10 S-@10.1 S+@10.2 S-@10.86 S+@10.9 S-@11" << 0;
    QTest::newRow("interval 0.1: gap 0.2") << 0.1 << "S+@10 S-@10.1 S+@10.3 S-@10.4" << 1;
    QTest::newRow("interval 0.1: gap 0.21") << 0.1 << "S+@10 S-@10.1 S+@10.31 S-@10.4" << 0;
    QTest::newRow("interval 0.9: hold 0.8") << 0.9 << "S+@10 S-@10.8 S+@11 S-@11.1" << 1;
    QTest::newRow("interval 1.5: gap 1.0") << 1.5 << "S+@10 S-@10.1 S+@11.1 S-@11.2" << 1;
    QTest::newRow("interval 1.5: gap 1.01") << 1.5 << "S+@10 S-@10.1 S+@11.11 S-@11.2" << 0;
    QTest::newRow("interval 1.5: hold 1.01") << 1.5 << "S+@10 S-@11.01 S+@11.1 S-@11.2" << 0;
    QTest::newRow("NaN interval: gap 1.0")
        << std::numeric_limits<double>::quiet_NaN() << "S+@10 S-@10.1 S+@11.1 S-@11.2" << 1;
    QTest::newRow("a letter inside a press") << 0.4 << "S+@10 A@10.05 S-@10.1 S+@10.2 S-@10.3" << 0;
    QTest::newRow("a letter, then two taps")
        << 0.4 << "S+@10 A@10.05 S-@10.1 S+@10.2 S-@10.3 S+@10.4 S-@10.5" << 1;
    QTest::newRow("Ctrl held") << 0.4 << "C+@9 S+@10 S-@10.1 S+@10.2 S-@10.3 C-@11" << 0;
    QTest::newRow("left then right") << 0.4 << "S+@10 S-@10.1 R+@10.2 R-@10.3" << 1;
    QTest::newRow("right tapped while left held")
        << 0.4 << "S+@10 R+@10.05 R-@10.1 S-@10.15 S+@10.2 S-@10.3" << 1;
    QTest::newRow("Caps Lock on") << 0.4 << "K+@9 K-@9.1 S+@10 S-@10.1 S+@10.2 S-@10.3" << 1;
    QTest::newRow("Ctrl tapped between the taps")
        << 0.4 << "S+@10 S-@10.1 C+@10.15 C-@10.2 S+@10.3 S-@10.4" << 0;
    QTest::newRow("Ctrl released alone between the taps")
        << 0.4 << "C+@9 S+@10 C-@10.05 S-@10.1 S+@10.2 S-@10.3 S+@10.4 S-@10.5" << 1;
    QTest::newRow("stop forgets a pending tap") << 0.4 << "S+@10 S-@10.1 | S+@10.2 S-@10.3" << 0;
    QTest::newRow("two gestures") << 0.4
                                  << "S+@10 S-@10.1 S+@10.2 S-@10.3 S+@12 S-@12.1 S+@12.2 S-@12.3"
                                  << 2;
}

void DoubleShiftTest::sequences()
{
    QFETCH(double, interval);
    QFETCH(QString, events);
    QFETCH(int, triggers);
    FakeKeys keys;
    DoubleShiftMonitor monitor(
        keys, [interval] { return interval; }, [] { return true; });
    int count = 0;
    monitor.onTrigger = [&count] { ++count; };
    monitor.start();
    QVERIFY(monitor.isListening());
    const QStringList runs = events.split(u'|');
    for (qsizetype run = 0; run < runs.size(); ++run) {
        if (run > 0) {
            monitor.stop();
            monitor.start();
        }
        for (const KeyEvent &event : script(runs.at(run)))
            keys.receiver(event);
    }
    QCOMPARE(count, triggers);
}

void DoubleShiftTest::anyOtherKeyBetweenTheTapsSpoils()
{
    // Random clean double taps with a letter or a modifier press put anywhere
    // between the first press and the second release.
    QRandomGenerator random(20261122);
    for (int round = 0; round < 2000; ++round) {
        FakeKeys keys;
        DoubleShiftMonitor monitor(
            keys, [] { return 0.4; }, [] { return true; });
        int count = 0;
        monitor.onTrigger = [&count] { ++count; };
        monitor.start();
        const double t0 = 100 + random.bounded(1000);
        const QList<KeyEvent> taps = script(QStringLiteral("S+@%1 S-@%2 S+@%3 S-@%4")
                                                .arg(t0)
                                                .arg(t0 + 0.1)
                                                .arg(t0 + 0.2)
                                                .arg(t0 + 0.3));
        const int at = 1 + int(random.bounded(3)); // before the 2nd, 3rd or 4th event
        const bool letter = random.bounded(2) == 0;
        const double time = taps[at - 1].timestamp + 0.01;
        const quint64 flags = taps[at - 1].flags;
        for (int i = 0; i < taps.size(); ++i) {
            if (i == at) {
                if (letter) {
                    keys.receiver(
                        {KeyEvent::KeyDown, quint16(10 + random.bounded(40)), flags, time});
                } else {
                    keys.receiver(
                        {KeyEvent::FlagsChanged, controlKey, flags | ModifierFlag::Option, time});
                    keys.receiver({KeyEvent::FlagsChanged, controlKey, flags, time});
                }
            }
            keys.receiver(taps[i]);
        }
        QCOMPARE(count, 0);
    }
}

void DoubleShiftTest::compositorTaps_data()
{
    // "p@0" the compositor reports a Shift press at 0 s, "t@0.1" a lone Shift release.
    QTest::addColumn<QString>("reports");
    QTest::addColumn<int>("triggers");
    QTest::addColumn<bool>("passed"); // the desktop can pass Shift taps at all
    QTest::newRow("releases alone") << "t@10 t@10.4" << 1 << true;
    QTest::newRow("on a desktop that passes none") << "t@10 t@10.4" << 0 << false;
    QTest::newRow("first hold 0.65") << "p@10 t@10.65 p@10.7 t@10.8" << 1 << true;
    QTest::newRow("first hold 0.66") << "p@10 t@10.66 p@10.7 t@10.8" << 0 << true;
    QTest::newRow("second hold 0.66") << "t@10 p@10.1 t@10.76" << 0 << true;
    QTest::newRow("the gap ends at the press") << "t@10 p@10.41 t@10.5" << 0 << true;
    QTest::newRow("a press whose release never came")
        << "p@10 p@12 t@12.1 p@12.2 t@12.3" << 1 << true;
}

void DoubleShiftTest::compositorTaps()
{
    QFETCH(QString, reports);
    QFETCH(int, triggers);
    QFETCH(bool, passed);
    double now = 0;
    ShiftTaps taps([&now] { return now; }, [passed] { return passed; });
    DoubleShiftMonitor monitor(
        taps, [] { return 0.4; }, [] { return true; });
    int count = 0;
    monitor.onTrigger = [&count] { ++count; };
    monitor.start();
    QCOMPARE(monitor.isListening(), passed);
    for (const QString &report : reports.split(u' ')) {
        now = report.section(u'@', 1).toDouble();
        if (report.startsWith(u'p'))
            taps.press();
        else
            taps.tap();
    }
    QCOMPARE(count, triggers);
}

VESKO_TEST_MAIN(DoubleShiftTest)
#include "tst_doubleshift.moc"
