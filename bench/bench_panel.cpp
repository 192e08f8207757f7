// SPDX-License-Identifier: GPL-3.0-or-later
//
// Showing and hiding a panel that has been made: the time from the call to the
// first frame of the fade, beside the time a plain frameless window takes from
// show() to its first paint, in the same run. Needs an X session with a window
// manager (tests/x-session.sh).

#include "RatioReporter.h"
#include "TestEnvironment.h"

#include "panel/window/PanelController.h"
#include "panel/window/PanelState.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace Vesko;

namespace {

//! Runs the event loop until \a signal of \a sender fires, at most five seconds.
template<typename Signal>
bool waitFor(const typename QtPrivate::FunctionPointer<Signal>::Object *sender, Signal signal)
{
    QEventLoop loop;
    QObject::connect(sender, signal, &loop, &QEventLoop::quit);
    bool timedOut = false;
    QTimer::singleShot(5000, &loop, [&] {
        timedOut = true;
        loop.quit();
    });
    loop.exec();
    return !timedOut;
}

void settle(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

class PaintProbe : public QWidget
{
    Q_OBJECT

public:
    PaintProbe()
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint)
    {
        resize(340, 560);
    }

Q_SIGNALS:
    void painted();

protected:
    void paintEvent(QPaintEvent *) override { Q_EMIT painted(); }
};

void BM_PlainWindowShowToFirstPaint(benchmark::State &state)
{
    PaintProbe probe;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        probe.show();
        if (!waitFor(&probe, &PaintProbe::painted)) {
            state.SkipWithError("no paint");
            break;
        }
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        probe.hide();
        settle(50);
    }
}

void BM_PanelShowToFirstFrame(benchmark::State &state)
{
    PanelController &panel = PanelController::shared();
    panel.show(true, true);
    settle(300);
    panel.hide();
    settle(300);
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        panel.show(true, false);
        if (!waitFor(&panel, &PanelController::fadeBegan)) {
            state.SkipWithError("no frame");
            break;
        }
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        settle(200);
        panel.hide();
        settle(200);
    }
}

void BM_PanelHideToFirstFrame(benchmark::State &state)
{
    PanelController &panel = PanelController::shared();
    for (auto _ : state) {
        panel.show(true, false);
        settle(200);
        QElapsedTimer timer;
        timer.start();
        panel.hide();
        if (!waitFor(&panel, &PanelController::fadeBegan)) {
            state.SkipWithError("no frame");
            break;
        }
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        settle(200);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    Store::shared();
    for (auto *benchmark : {
             benchmark::RegisterBenchmark(
                 "BM_PlainWindowShowToFirstPaint", BM_PlainWindowShowToFirstPaint),
             benchmark::RegisterBenchmark("BM_PanelShowToFirstFrame", BM_PanelShowToFirstFrame),
             benchmark::RegisterBenchmark("BM_PanelHideToFirstFrame", BM_PanelHideToFirstFrame),
         }) {
        benchmark->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const std::string floor = "BM_PlainWindowShowToFirstPaint/iterations:20/manual_time";
    std::printf("\nshow to first frame: %.2f ms, %.2f of a plain window's first paint\n",
        reporter.times["BM_PanelShowToFirstFrame/iterations:20/manual_time"],
        reporter.ratio("BM_PanelShowToFirstFrame/iterations:20/manual_time", floor));
    std::printf("hide to first frame: %.2f ms, %.2f of a plain window's first paint\n",
        reporter.times["BM_PanelHideToFirstFrame/iterations:20/manual_time"],
        reporter.ratio("BM_PanelHideToFirstFrame/iterations:20/manual_time", floor));
    benchmark::Shutdown();
    return 0;
}

#include "bench_panel.moc"
