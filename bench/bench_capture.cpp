// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture's costs on a real X server (tests/x-session.sh):
// - the key monitor per raw key event, decoding plus the double-Shift state
//   machine, beside decoding alone;
// - capture latency, from the XTEST release of the second Shift to the note
//   in the Store, through the primary selection of an xterm and through the
//   synthetic copy of a window that answers Copy; beside the time the same
//   release takes to reach the key monitor;
// - the main thread's longest stall during a capture through each path, as
//   the lateness of a 1 ms timer, beside the same timer's lateness while no
//   capture runs.

#include "RatioReporter.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "library/LibraryWriter.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyMonitor.h"
#include "platform/x11/X11Session.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <benchmark/benchmark.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <cstdio>

using namespace Vesko;

namespace {

class SilentFeedback : public CaptureFeedback
{
public:
    void showPanel(bool, bool) override { }
    void togglePanel() override { }
    void toast(const QString &, const QString &) override { }
};

//! Raw key events as the server sends them: a letter and a Shift, each
//! pressed and released.
std::vector<xcb_input_raw_key_press_event_t> rawEvents(uint8_t opcode)
{
    std::vector<xcb_input_raw_key_press_event_t> events(4);
    for (size_t i = 0; i < events.size(); ++i) {
        xcb_input_raw_key_press_event_t &event = events[i];
        event = {};
        event.response_type = XCB_GE_GENERIC;
        event.extension = opcode;
        event.event_type = i % 2 == 0 ? XCB_INPUT_RAW_KEY_PRESS : XCB_INPUT_RAW_KEY_RELEASE;
        event.detail = i < 2 ? 38 : 50;
        event.time = 1000 + uint32_t(i) * 50;
    }
    return events;
}

void BM_DecodeRawKeyEvent(benchmark::State &state)
{
    X11KeyMonitor monitor;
    quint64 delivered = 0;
    if (!monitor.start([&delivered](const KeyEvent &) { ++delivered; })) {
        state.SkipWithError("no XInput 2");
        return;
    }
    auto events = rawEvents(monitor.xinputOpcode());
    for (auto _ : state) {
        for (auto &event : events)
            monitor.handleEvent(reinterpret_cast<xcb_generic_event_t *>(&event));
    }
    benchmark::DoNotOptimize(delivered);
    state.SetItemsProcessed(state.iterations() * qint64(events.size()));
}

void BM_DecodeAndRecognize(benchmark::State &state)
{
    X11KeyMonitor keys;
    DoubleShiftMonitor doubleShift(
        keys, [] { return 0.4; }, [] { return true; });
    doubleShift.start();
    if (!doubleShift.isListening()) {
        state.SkipWithError("no XInput 2");
        return;
    }
    auto events = rawEvents(keys.xinputOpcode());
    for (auto _ : state) {
        for (auto &event : events)
            keys.handleEvent(reinterpret_cast<xcb_generic_event_t *>(&event));
    }
    state.SetItemsProcessed(state.iterations() * qint64(events.size()));
}

//! The capture pieces of the program over a fresh Store.
struct CaptureRig
{
    CaptureRig()
        : store(Library {}, {Preferences::shared(), writer, attachments, index})
        , hotKeys(registrar)
        , permission(&X11Session::isCaptureAvailable)
        , doubleShift(
              keys, [] { return 0.4; }, [this] { return permission.isTrusted(); })
        , reader(session, clipboard, [this] { return permission.isTrusted(); })
        , engine({store, Preferences::shared(), hotKeys, doubleShift, reader, permission, feedback,
              clipboard})
    {
        engine.start();
    }

    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex index;
    Store store;
    X11Clipboard clipboard;
    X11HotKeys registrar;
    HotKeyCenter hotKeys;
    AccessibilityPermission permission;
    X11KeyMonitor keys;
    X11Session session;
    SilentFeedback feedback;
    DoubleShiftMonitor doubleShift;
    SelectionReader reader;
    CaptureEngine engine;
};

void run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(10000);
}

bool waitFor(QObject *sender, const char *signal, int milliseconds = 3000)
{
    QEventLoop loop;
    QObject::connect(sender, signal, &loop, SLOT(quit()));
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    QElapsedTimer timer;
    timer.start();
    loop.exec();
    return timer.elapsed() < milliseconds;
}

void settle(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

//! Taps Shift once through XTEST; returns when the release has been sent.
void tapShift(X11Connection &x, quint8 shift)
{
    xcb_test_fake_input(x.get(), XCB_KEY_PRESS, shift, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(x.get(), XCB_KEY_RELEASE, shift, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(x.get());
}

//! One set of capture pieces for every benchmark, so that one trigger makes one capture.
CaptureRig *sharedRig()
{
    static CaptureRig *rig = new CaptureRig;
    return rig;
}

QProcess *xterm = nullptr;
QProcess *copyTarget = nullptr;

enum class Source { None, SelectedText, CopyTarget };

//! Brings forward what a capture takes from: text selected in an xterm (the
//! primary selection), or the window of the copy target; started once.
void showSource(Source source)
{
    if (source == Source::SelectedText) {
        if (!xterm) {
            xterm = new QProcess;
            xterm->start(QStringLiteral("xterm"),
                {QStringLiteral("-T"), QStringLiteral("bench"), QStringLiteral("-geometry"),
                    QStringLiteral("80x8+20+20"), QStringLiteral("-e"), QStringLiteral("sh"),
                    QStringLiteral("-c"),
                    QStringLiteral("echo captured by the benchmark; sleep 3600")});
            settle(1500);
        }
        run(QStringLiteral("sh"),
            {QStringLiteral("-c"),
                QStringLiteral("w=$(xdotool search --name '^bench$' | head -1); "
                               "xdotool windowactivate --sync $w mousemove --window $w 30 6 "
                               "click --repeat 3 --delay 80 1")});
    } else if (source == Source::CopyTarget) {
        if (!copyTarget) {
            copyTarget = new QProcess;
            copyTarget->start(QStringLiteral(COPY_TARGET_PATH),
                {QStringLiteral("copied by the benchmark"), QStringLiteral("0")});
            settle(1500);
        }
        run(QStringLiteral("sh"),
            {QStringLiteral("-c"),
                QStringLiteral("xdotool windowactivate --sync $(xdotool search --name '^Copy "
                               "Target$' | head -1)")});
    }
    settle(200);
}

enum class Path { KeyDelivery, Primary, Copy };

void BM_Capture(benchmark::State &state)
{
    const Path path = Path(state.range(0));
    CaptureRig *rig = sharedRig();
    X11Connection x;
    const quint8 shift = 50;

    showSource(path == Path::Copy ? Source::CopyTarget : Source::SelectedText);

    for (auto _ : state) {
        tapShift(x, shift);
        settle(150);
        QElapsedTimer timer;
        xcb_test_fake_input(x.get(), XCB_KEY_PRESS, shift, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(x.get());
        settle(60);
        xcb_test_fake_input(x.get(), XCB_KEY_RELEASE, shift, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(x.get());
        timer.start();
        bool arrived;
        if (path == Path::KeyDelivery) {
            // The same release, only as far as the gesture's recognition.
            arrived = waitFor(&rig->engine, SIGNAL(isCapturingChanged()));
        } else {
            arrived = waitFor(&rig->store, SIGNAL(libraryChanged()));
        }
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        if (!arrived) {
            state.SkipWithError("nothing arrived");
            break;
        }
        waitFor(&rig->engine, SIGNAL(captureFinished()), 2000);
        settle(500); // beyond the gesture's gap
    }
}

//! The lateness of a 1 ms timer on the main thread: how long the event loop
//! was kept from turning.
class StallMeter
{
public:
    StallMeter()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(1);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            m_longest = std::max(m_longest, now - m_last - 1'000'000);
            m_last = now;
        });
    }
    void start()
    {
        m_longest = 0;
        m_clock.start();
        m_last = 0;
        m_timer.start();
    }
    //! The longest lateness since start(), in seconds.
    double stop()
    {
        m_timer.stop();
        return double(std::max<qint64>(m_longest, 0)) / 1e9;
    }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    qint64 m_longest = 0;
};

//! Holds the capture hot key (Super+Alt+C) for about as long as a person
//! does, from another process, as a keyboard would.
void pressCaptureHotKey()
{
    QProcess::startDetached(QStringLiteral("xdotool"),
        {QStringLiteral("keydown"), QStringLiteral("super+alt+c"), QStringLiteral("sleep"),
            QStringLiteral("0.08"), QStringLiteral("keyup"), QStringLiteral("super+alt+c")});
}

enum class StallPath { Idle, Primary, Copy };

void BM_Stall(benchmark::State &state)
{
    const StallPath path = StallPath(state.range(0));
    CaptureRig *rig = sharedRig();
    X11Connection x;
    StallMeter meter;
    showSource(path == StallPath::Primary ? Source::SelectedText
            : path == StallPath::Copy     ? Source::CopyTarget
                                          : Source::None);

    double longest = 0;
    for (auto _ : state) {
        if (path == StallPath::Copy) {
            // The user's clipboard belongs to another program, as it usually does.
            run(QStringLiteral("sh"),
                {QStringLiteral("-c"),
                    QStringLiteral("printf 'the user clipboard' | xclip -i -selection "
                                   "clipboard")});
            settle(100);
        }
        int finishedCaptures = 0;
        const QMetaObject::Connection counting = QObject::connect(&rig->engine,
            &CaptureEngine::captureFinished, [&finishedCaptures] { ++finishedCaptures; });
        // Starting xdotool blocks for its fork and exec: before the measure,
        // which still begins well before xdotool's keys arrive.
        if (path == StallPath::Copy)
            pressCaptureHotKey();
        meter.start();
        if (path == StallPath::Idle) {
            settle(400);
            finishedCaptures = 1;
        } else if (path == StallPath::Primary) {
            tapShift(x, 50);
            settle(100);
            tapShift(x, 50);
        }
        QDeadlineTimer deadline(3000);
        while (finishedCaptures == 0 && !deadline.hasExpired())
            settle(5);
        const bool finished = finishedCaptures > 0;
        QObject::disconnect(counting);
        const double stall = meter.stop();
        longest = std::max(longest, stall);
        state.SetIterationTime(stall);
        if (!finished) {
            state.SkipWithError("the capture did not finish");
            break;
        }
        settle(500);
    }
    state.counters["longest_ms"] = longest * 1000;
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    Preferences::shared().setShowPanelOnCapture(false);
    benchmark::RegisterBenchmark("BM_DecodeRawKeyEvent", BM_DecodeRawKeyEvent);
    benchmark::RegisterBenchmark("BM_DecodeAndRecognize", BM_DecodeAndRecognize);
    for (const auto &[name, path] : {std::pair {"BM_CaptureKeyDelivery", Path::KeyDelivery},
             std::pair {"BM_CapturePrimary", Path::Primary},
             std::pair {"BM_CaptureCopy", Path::Copy}}) {
        benchmark::RegisterBenchmark(name, BM_Capture)
            ->Arg(int(path))
            ->Iterations(10)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    for (const auto &[name, path] : {std::pair {"BM_StallIdle", StallPath::Idle},
             std::pair {"BM_StallPrimary", StallPath::Primary},
             std::pair {"BM_StallCopy", StallPath::Copy}}) {
        benchmark::RegisterBenchmark(name, BM_Stall)
            ->Arg(int(path))
            ->Iterations(10)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nkey monitor per event: %.1f ns, %.2f of decoding alone\n",
        reporter.times["BM_DecodeAndRecognize"] / 4,
        reporter.ratio("BM_DecodeAndRecognize", "BM_DecodeRawKeyEvent"));
    const std::string delivery = "BM_CaptureKeyDelivery/0/iterations:10/manual_time";
    const std::string primary = "BM_CapturePrimary/1/iterations:10/manual_time";
    const std::string copy = "BM_CaptureCopy/2/iterations:10/manual_time";
    std::printf("release to recognition: %.2f ms\n", reporter.times[delivery]);
    std::printf("release to note, primary selection: %.2f ms, %.1f of recognition\n",
        reporter.times[primary], reporter.ratio(primary, delivery));
    std::printf("release to note, synthetic copy: %.2f ms, %.1f of recognition\n",
        reporter.times[copy], reporter.ratio(copy, delivery));
    const std::string idle = "BM_StallIdle/0/iterations:10/manual_time";
    const std::string stallPrimary = "BM_StallPrimary/1/iterations:10/manual_time";
    const std::string stallCopy = "BM_StallCopy/2/iterations:10/manual_time";
    std::printf("1 ms timer lateness, no capture: %.2f ms\n", reporter.times[idle]);
    std::printf("during a capture through the primary selection: %.2f ms, %.1f of idle\n",
        reporter.times[stallPrimary], reporter.ratio(stallPrimary, idle));
    std::printf("during a capture through the synthetic copy: %.2f ms, %.1f of idle\n",
        reporter.times[stallCopy], reporter.ratio(stallCopy, idle));
    benchmark::Shutdown();
    return 0;
}
