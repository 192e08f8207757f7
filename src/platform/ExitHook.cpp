// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ExitHook.h"

#include "platform/Logging.h"

#include <QThread>

#include <cstdlib>
#include <mutex>
#include <utility>

namespace Vesko {

namespace {

struct Installed
{
    std::function<void()> work;
    QThread *thread = nullptr;
};

Installed &installed()
{
    // Never destroyed: it is read from the exit handler, after the static
    // objects made later than the handler's registration have gone.
    static Installed *const state = new Installed;
    return *state;
}

void runAtExit()
{
    Installed &state = installed();
    if (!state.work)
        return;
    const std::function<void()> work = std::exchange(state.work, {});
    // The work belongs to the thread that installed it; exit() from any other
    // thread finds that thread still running, and nothing safe is left to do.
    if (QThread::currentThread() != state.thread) {
        qCCritical(lcStorage,
            "The process ends through exit() outside the main thread; "
            "the library cannot be written on the way out");
        return;
    }
    qCInfo(lcStorage, "The process ends through exit(); writing the library first");
    work();
}

} // namespace

ExitHook::ExitHook(std::function<void()> lastWork)
{
    Installed &state = installed();
    Q_ASSERT(!state.work);
    state.work = std::move(lastWork);
    state.thread = QThread::currentThread();
    static std::once_flag registered;
    std::call_once(registered, [] { std::atexit(runAtExit); });
}

ExitHook::~ExitHook()
{
    installed().work = {};
}

} // namespace Vesko
