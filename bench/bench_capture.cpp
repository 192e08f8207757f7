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
//   capture runs: the first capture of the program (whose desktop has 1500
//   applications installed), later ones, and one while another program
//   holds 64 MiB on the clipboard;
// - the same stall while a preference changes twenty times in a row.
//
// Run inside a sway session (tests/sway-session.sh), the Wayland rows
// instead: capture to the note through data control's primary selection of
// a foot window and through the virtual keyboard's copy, beside the front
// window's lookup alone; and the main thread's longest stall during each,
// and while a selection's owner never sends its data.

#include "RatioReporter.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "library/LibraryWriter.h"
#include "platform/HotKeyRegistrar.h"
#include "platform/ShiftTaps.h"
#include "platform/wayland/WaylandClipboard.h"
#include "platform/wayland/WaylandDataControl.h"
#include "platform/wayland/WaylandGlobals.h"
#include "platform/wayland/WaylandSession.h"
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
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryFile>
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

enum class StallPath { Idle, Primary, Copy, FirstCopy, CopyLargeClipboard };

//! The installed applications of a desktop: \a count desktop entries in the
//! user's applications folder, read by the first capture.
void installApplications(int count)
{
    const QString folder
        = Test::IsolatedEnvironment::current().dataHome() + QStringLiteral("/applications");
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i) {
        QFile file(folder + QStringLiteral("/org.example.App%1.desktop").arg(i));
        if (!file.open(QIODevice::WriteOnly))
            return;
        file.write(QStringLiteral("[Desktop Entry]\nType=Application\nName=Application %1\n"
                                  "Name[de]=Anwendung %1\nName[fr]=Application n°%1\n"
                                  "GenericName=Tool\nComment=Does things, number %1\n"
                                  "Exec=app%1 %%U\nIcon=app%1\nCategories=Utility;Office;\n"
                                  "StartupWMClass=App%1\nMimeType=text/plain;image/png;\n"
                                  "Keywords=one;two;three;\n\n[Desktop Action New]\n"
                                  "Name=New Window\nExec=app%1 --new\n")
                       .arg(i)
                       .toUtf8());
    }
}

//! Puts \a mebibytes of image data on the clipboard, owned by xclip.
void fillClipboard(int mebibytes)
{
    static QTemporaryFile *image = nullptr;
    if (!image) {
        image = new QTemporaryFile;
        image->open();
        QByteArray block(1 << 20, '\0');
        for (int i = 0; i < block.size(); ++i)
            block[i] = char(i * 2654435761u >> 24);
        for (int i = 0; i < mebibytes; ++i)
            image->write(block);
        image->flush();
    }
    run(QStringLiteral("xclip"),
        {QStringLiteral("-i"), QStringLiteral("-selection"), QStringLiteral("clipboard"),
            QStringLiteral("-t"), QStringLiteral("image/png"), image->fileName()});
}

void BM_Stall(benchmark::State &state)
{
    const StallPath path = StallPath(state.range(0));
    CaptureRig *rig = sharedRig();
    X11Connection x;
    StallMeter meter;
    const bool copies = path == StallPath::Copy || path == StallPath::FirstCopy
        || path == StallPath::CopyLargeClipboard;
    showSource(path == StallPath::Primary ? Source::SelectedText
            : copies                      ? Source::CopyTarget
                                          : Source::None);

    double longest = 0;
    for (auto _ : state) {
        if (path == StallPath::CopyLargeClipboard) {
            fillClipboard(64);
            settle(100);
        } else if (copies) {
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
        if (copies)
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
        QDeadlineTimer deadline(6000);
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

//! Twenty preference changes in a row, as a slider dragged through its
//! range makes, beside an idle event loop over the same time.
void BM_StallPreferences(benchmark::State &state)
{
    const bool changes = state.range(0) == 1;
    StallMeter meter;
    double longest = 0;
    for (auto _ : state) {
        meter.start();
        for (int i = 0; i < 20; ++i) {
            if (changes)
                Preferences::shared().setPanelWidth(300 + (i + state.iterations()) % 97);
            settle(10);
        }
        const double stall = meter.stop();
        longest = std::max(longest, stall);
        state.SetIterationTime(stall);
    }
    Preferences::shared().flush();
    state.counters["longest_ms"] = longest * 1000;
}

//! No global keys on Wayland: the compositor binds commands instead.
class NoHotKeys : public HotKeyRegistrar
{
public:
    bool isAvailable() const override { return false; }
    void installHandler(std::function<void(int)>) override { }
    void removeHandler() override { }
    int registerKey(int, quint16, quint64) override { return -1; }
    void unregisterKey(int) override { }
};

//! The capture pieces of the program on a Wayland compositor, over a fresh Store.
struct WaylandRig
{
    WaylandRig()
        : store(Library {}, {Preferences::shared(), writer, attachments, index})
        , dataControl(globals)
        , clipboard(dataControl)
        , hotKeys(registrar)
        , permission([this] { return dataControl.hasPrimarySelection(); })
        , session(globals, dataControl)
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
    WaylandGlobals globals;
    WaylandDataControl dataControl;
    WaylandClipboard clipboard;
    NoHotKeys registrar;
    HotKeyCenter hotKeys;
    AccessibilityPermission permission;
    ShiftTaps keys;
    WaylandSession session;
    SilentFeedback feedback;
    DoubleShiftMonitor doubleShift;
    SelectionReader reader;
    CaptureEngine engine;
};

WaylandRig *waylandRig()
{
    static WaylandRig *rig = new WaylandRig;
    return rig;
}

enum class WaylandPath { Front, Primary, Copy, SilentOwner, Idle };

//! Brings forward a foot window with its text in the primary selection, or
//! the copy target with the primary selection empty, or foot with a primary
//! selection whose owner never sends it; each window started once.
void showWaylandSource(WaylandPath path)
{
    static QProcess *foot = nullptr;
    static QProcess *target = nullptr;
    static QProcess *silent = nullptr;
    if (silent) {
        silent->kill();
        silent->waitForFinished(2000);
        delete silent;
        silent = nullptr;
    }
    if (path == WaylandPath::Copy) {
        if (!target) {
            target = new QProcess;
            target->start(QStringLiteral(COPY_TARGET_PATH),
                {QStringLiteral("copied by the benchmark"), QStringLiteral("0")});
            settle(1500);
        }
        run(QStringLiteral("swaymsg"), {QStringLiteral("[title=\"^Copy Target$\"] focus")});
        run(QStringLiteral("wl-copy"), {QStringLiteral("--primary"), QStringLiteral("--clear")});
        run(QStringLiteral("sh"),
            {QStringLiteral("-c"), QStringLiteral("printf 'the user clipboard' | wl-copy")});
    } else {
        if (!foot) {
            foot = new QProcess;
            foot->start(QStringLiteral("foot"),
                {QStringLiteral("--title"), QStringLiteral("bench"), QStringLiteral("sleep"),
                    QStringLiteral("3600")});
            settle(1500);
        }
        run(QStringLiteral("swaymsg"), {QStringLiteral("[title=\"^bench$\"] focus")});
        if (path == WaylandPath::SilentOwner) {
            silent = new QProcess;
            silent->start(QStringLiteral(STUCK_SELECTION_PATH), {QStringLiteral("silent")});
            silent->waitForReadyRead(5000);
        } else {
            run(QStringLiteral("sh"),
                {QStringLiteral("-c"),
                    QStringLiteral("printf 'captured by the benchmark' | wl-copy --primary")});
        }
    }
    settle(300);
}

void BM_WaylandCapture(benchmark::State &state)
{
    const WaylandPath path = WaylandPath(state.range(0));
    WaylandRig *rig = waylandRig();
    showWaylandSource(path);
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        bool arrived;
        if (path == WaylandPath::Front) {
            bool answered = false;
            rig->session.frontApplication([&answered](std::optional<FrontApplication> front) {
                answered = front.has_value();
            });
            QDeadlineTimer deadline(3000);
            while (!answered && !deadline.hasExpired())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
            arrived = answered;
        } else {
            QTimer::singleShot(0, &rig->engine, [rig] { rig->engine.captureSelection(); });
            arrived = waitFor(&rig->store, SIGNAL(libraryChanged()));
        }
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        if (!arrived) {
            state.SkipWithError("nothing arrived");
            break;
        }
        waitFor(&rig->engine, SIGNAL(captureFinished()), 2000);
        settle(200);
    }
}

void BM_WaylandStall(benchmark::State &state)
{
    const WaylandPath path = WaylandPath(state.range(0));
    WaylandRig *rig = waylandRig();
    StallMeter meter;
    if (path != WaylandPath::Idle)
        showWaylandSource(path);
    double longest = 0;
    for (auto _ : state) {
        if (path == WaylandPath::Copy)
            showWaylandSource(path); // the user's clipboard again
        int finished = 0;
        const QMetaObject::Connection counting = QObject::connect(
            &rig->engine, &CaptureEngine::captureFinished, [&finished] { ++finished; });
        meter.start();
        if (path == WaylandPath::Idle) {
            settle(400);
            finished = 1;
        } else {
            QTimer::singleShot(0, &rig->engine, [rig] { rig->engine.captureSelection(); });
        }
        QDeadlineTimer deadline(6000);
        while (finished == 0 && !deadline.hasExpired())
            settle(5);
        QObject::disconnect(counting);
        const double stall = meter.stop();
        longest = std::max(longest, stall);
        state.SetIterationTime(stall);
        if (finished == 0) {
            state.SkipWithError("the capture did not finish");
            break;
        }
        settle(300);
    }
    state.counters["longest_ms"] = longest * 1000;
}

//! The Wayland rows, inside a sway session.
int runWayland(int argc, char *argv[])
{
    QApplication app(argc, argv);
    Preferences::shared().setShowPanelOnCapture(false);
    const std::pair<const char *, WaylandPath> captures[] = {
        {"BM_WaylandFront", WaylandPath::Front}, {"BM_WaylandCapturePrimary", WaylandPath::Primary},
        {"BM_WaylandCaptureCopy", WaylandPath::Copy}};
    for (const auto &[name, path] : captures) {
        benchmark::RegisterBenchmark(name, BM_WaylandCapture)
            ->Arg(int(path))
            ->Iterations(10)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    const std::pair<const char *, WaylandPath> stalls[]
        = {{"BM_WaylandStallIdle", WaylandPath::Idle},
            {"BM_WaylandStallPrimary", WaylandPath::Primary},
            {"BM_WaylandStallCopy", WaylandPath::Copy},
            {"BM_WaylandStallSilentOwner", WaylandPath::SilentOwner}};
    for (const auto &[name, path] : stalls) {
        benchmark::RegisterBenchmark(name, BM_WaylandStall)
            ->Arg(int(path))
            ->Iterations(10)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const auto key = [](const char *name, WaylandPath path) {
        return std::string(name) + "/" + std::to_string(int(path)) + "/iterations:10/manual_time";
    };
    const std::string front = key("BM_WaylandFront", WaylandPath::Front);
    const std::string primary = key("BM_WaylandCapturePrimary", WaylandPath::Primary);
    const std::string copy = key("BM_WaylandCaptureCopy", WaylandPath::Copy);
    std::printf("\nWayland: front window lookup: %.2f ms\n", reporter.times[front]);
    std::printf("capture to note, primary selection: %.2f ms, %.1f of the lookup\n",
        reporter.times[primary], reporter.ratio(primary, front));
    std::printf("capture to note, virtual keyboard copy: %.2f ms, %.1f of the lookup\n",
        reporter.times[copy], reporter.ratio(copy, front));
    const std::string idle = key("BM_WaylandStallIdle", WaylandPath::Idle);
    std::printf("1 ms timer lateness, no capture: %.2f ms\n", reporter.times[idle]);
    for (const auto &[name, path] : stalls) {
        if (path == WaylandPath::Idle)
            continue;
        const std::string row = key(name, path);
        std::printf("%s: %.2f ms (mean of the worst per capture), %.1f of idle\n", name,
            reporter.times[row], reporter.ratio(row, idle));
    }
    benchmark::Shutdown();
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    // tests/sway-session.sh sets both; tests/x-session.sh unsets WAYLAND_DISPLAY.
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        && !qEnvironmentVariableIsEmpty("SWAYSOCK")) {
        qputenv("QT_QPA_PLATFORM", "wayland");
        installApplications(1500);
        return runWayland(argc, argv);
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    Preferences::shared().setShowPanelOnCapture(false);
    installApplications(1500);
    // First: the first capture of the program, right after its pieces are made.
    benchmark::RegisterBenchmark("BM_StallFirstCopy", BM_Stall)
        ->Arg(int(StallPath::FirstCopy))
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
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
             std::pair {"BM_StallCopy", StallPath::Copy},
             std::pair {"BM_StallCopyLargeClipboard", StallPath::CopyLargeClipboard}}) {
        benchmark::RegisterBenchmark(name, BM_Stall)
            ->Arg(int(path))
            ->Iterations(10)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    for (const auto &[name, changes] :
        {std::pair {"BM_StallNoPreferenceChange", 0}, std::pair {"BM_StallPreferenceChanges", 1}}) {
        benchmark::RegisterBenchmark(name, BM_StallPreferences)
            ->Arg(changes)
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
    const std::string first = "BM_StallFirstCopy/3/iterations:1/manual_time";
    const std::string large = "BM_StallCopyLargeClipboard/4/iterations:10/manual_time";
    std::printf("during the first capture, synthetic copy: %.2f ms, %.1f of idle\n",
        reporter.times[first], reporter.ratio(first, idle));
    std::printf("during a synthetic copy over 64 MiB on the clipboard: %.2f ms, %.1f of idle\n",
        reporter.times[large], reporter.ratio(large, idle));
    const std::string quiet = "BM_StallNoPreferenceChange/0/iterations:10/manual_time";
    const std::string changes = "BM_StallPreferenceChanges/1/iterations:10/manual_time";
    std::printf("1 ms timer lateness over 20 turns: %.2f ms; with a preference change in each: "
                "%.2f ms, %.1f of that\n",
        reporter.times[quiet], reporter.times[changes], reporter.ratio(changes, quiet));
    benchmark::Shutdown();
    return 0;
}
