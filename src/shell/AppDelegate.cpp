// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/AppDelegate.h"

#include "panel/window/PanelController.h"
#include "shell/Preferences.h"
#include "shell/Theme.h"
#include "shell/UpdateController.h"
#include "store/Store.h"

namespace Vesko {

namespace {

void call(const std::function<void()> &hook)
{
    if (hook)
        hook();
}

} // namespace

AppDelegate::AppDelegate(
    Store &store, Preferences &preferences, PanelController &panel, Hooks hooks, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_panel(panel)
    , m_hooks(std::move(hooks))
{
    // Later on the main thread: the palette changes first, and every window is
    // rebuilt in it after, whatever else listens to the preference.
    connect(&m_preferences, &Preferences::appearanceAssigned, this, &AppDelegate::applyAppearance,
        Qt::QueuedConnection);
    connect(&m_preferences, &Preferences::showsInDockAssigned, this,
        &AppDelegate::applyActivationPolicy);
}

void AppDelegate::didFinishLaunching()
{
    Theme::applyAppearance(m_preferences.appearance());
    applyActivationPolicy();
    call(m_hooks.refreshTrust);
    UpdateController::shared().start();
    call(m_hooks.startCapture);
    call(m_hooks.refreshTrust);
    if (m_hooks.isTrusted && !m_hooks.isTrusted()) {
        call(m_hooks.requestAccess);
        call(m_hooks.showSettings);
    }
    if (m_showsPanelAtLaunch)
        m_panel.show(true, true);
}

void AppDelegate::applyAppearance()
{
    Theme::applyAppearance(m_preferences.appearance());
    m_panel.refreshAppearance();
    call(m_hooks.refreshWindows);
}

void AppDelegate::handleReopen()
{
    m_panel.show(true, true);
}

void AppDelegate::willTerminate()
{
    if (m_terminated)
        return;
    m_terminated = true;
    // The library first: a copy of attachments under way does not hold it up.
    m_store.finishForQuit();
    // The settings live as long as the process: what is still on its way goes now.
    m_preferences.flush();
    call(m_hooks.unregisterHotKeys);
}

void AppDelegate::applyActivationPolicy()
{
    m_panel.setShowsInTaskbar(m_preferences.showsInDock());
}

} // namespace Vesko
