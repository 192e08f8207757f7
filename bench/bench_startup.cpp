// SPDX-License-Identifier: GPL-3.0-or-later
//
// Start to panel visible, measured from outside the process: vesko is
// started with private XDG folders, and the X server is watched until a
// window named "Vesko" is viewable. Once with an empty library and once each
// with generated libraries of 10 000, 100 000 and 1 000 000 notes (the last a
// file of about 760 MB, written below the current folder). Needs an X session with a window
// manager (tests/x-session.sh).

#include "LibraryGenerator.h"
#include "RatioReporter.h"

#include "library/LibraryFile.h"
#include "platform/x11/X11Connection.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <xcb/xcb.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

extern char **environ;

using namespace Vesko;

namespace {

xcb_atom_t atom(xcb_connection_t *c, const char *name)
{
    return X11Connection::atom(c, name);
}

//! A viewable client window named "Vesko" is managed by the window manager.
bool panelVisible(xcb_connection_t *c, xcb_window_t root, xcb_atom_t clientList, xcb_atom_t utf8,
    xcb_atom_t netWmName)
{
    xcb_get_property_reply_t *list = xcb_get_property_reply(
        c, xcb_get_property(c, 0, root, clientList, XCB_ATOM_WINDOW, 0, 1024), nullptr);
    if (!list)
        return false;
    const auto *windows = static_cast<const xcb_window_t *>(xcb_get_property_value(list));
    const int count = xcb_get_property_value_length(list) / 4;
    bool found = false;
    for (int i = 0; i < count && !found; ++i) {
        xcb_get_property_reply_t *name = xcb_get_property_reply(
            c, xcb_get_property(c, 0, windows[i], netWmName, utf8, 0, 64), nullptr);
        const bool named = name && xcb_get_property_value_length(name) == 5
            && std::memcmp(xcb_get_property_value(name), "Vesko", 5) == 0;
        std::free(name);
        if (!named)
            continue;
        xcb_get_window_attributes_reply_t *attributes
            = xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, windows[i]), nullptr);
        found = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        std::free(attributes);
    }
    std::free(list);
    return found;
}

//! A data folder holding a library of \a notes notes (none: no file at all).
struct Fixture
{
    explicit Fixture(int notes)
    {
        for (const char *folder : {"data/Vesko", "config", "cache", "runtime"})
            QDir(root.path()).mkpath(QString::fromLatin1(folder));
        QFile::setPermissions(root.filePath(QStringLiteral("runtime")),
            QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        if (notes > 0) {
            const auto failure = writeLibrary(Test::generateLibrary(notes, 7),
                root.filePath(QStringLiteral("data/Vesko/Library.json")));
            if (failure)
                qFatal("Cannot write the library: %s", qPrintable(*failure));
        }
    }

    QTemporaryDir root {QDir::currentPath() + QStringLiteral("/vesko-startup-XXXXXX")};
};

void BM_StartToPanelVisible(benchmark::State &state)
{
    const Fixture fixture(int(state.range(0)));
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        state.SkipWithError("no X server");
        return;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const xcb_atom_t clientList = atom(c, "_NET_CLIENT_LIST");
    const xcb_atom_t utf8 = atom(c, "UTF8_STRING");
    const xcb_atom_t netWmName = atom(c, "_NET_WM_NAME");

    const auto folder = [&](const char *name) {
        return QDir(fixture.root.path()).filePath(QString::fromLatin1(name)).toLocal8Bit();
    };
    qputenv("XDG_DATA_HOME", folder("data"));
    qputenv("XDG_CONFIG_HOME", folder("config"));
    qputenv("XDG_CACHE_HOME", folder("cache"));
    qputenv("XDG_RUNTIME_DIR", folder("runtime"));
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_LOGGING_RULES", "com.vesko.vesko.*=false");

    for (auto _ : state) {
        char *const arguments[] = {const_cast<char *>(VESKO_PATH), nullptr};
        QElapsedTimer timer;
        timer.start();
        pid_t pid = 0;
        if (posix_spawn(&pid, VESKO_PATH, nullptr, nullptr, arguments, environ) != 0) {
            state.SkipWithError("cannot start vesko");
            break;
        }
        bool visible = false;
        while (!visible && timer.elapsed() < 60000) {
            visible = panelVisible(c, root, clientList, utf8, netWmName);
            if (!visible)
                std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        ::kill(pid, SIGTERM);
        int status = 0;
        ::waitpid(pid, &status, 0);
        if (!visible) {
            state.SkipWithError("the panel did not appear");
            break;
        }
    }
    xcb_disconnect(c);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    benchmark::RegisterBenchmark("BM_StartToPanelVisible", BM_StartToPanelVisible)
        ->Arg(0)
        ->Arg(10000)
        ->Arg(100000)
        ->Arg(1000000)
        ->Iterations(5)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const auto name = [](int notes) {
        return "BM_StartToPanelVisible/" + std::to_string(notes) + "/iterations:5/manual_time";
    };
    std::printf(
        "\nstart to panel visible, against the empty library (%.0f ms)\n", reporter.times[name(0)]);
    for (int notes : {10000, 100000, 1000000}) {
        std::printf("%8d notes %8.0f ms %8.2f\n", notes, reporter.times[name(notes)],
            reporter.ratio(name(notes), name(0)));
    }
    benchmark::Shutdown();
    return 0;
}
