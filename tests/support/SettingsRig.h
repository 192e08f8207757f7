// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the Settings window works with, put together for in-process tests: a
// real Store over the isolated library file, real Preferences and panel
// controller, and the capture logic over stand-ins of the desktop (the fakes
// of tests/fakes).

#pragma once

#include "FakeCaptureFeedback.h"
#include "FakeClipboard.h"
#include "FakeDesktopSession.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeKeyMonitor.h"

#include "attachments/AttachmentStore.h"
#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "panel/window/PanelController.h"
#include "panel/window/PanelState.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "shell/SettingsView.h"
#include "store/Store.h"

namespace Vesko::Test {

struct SettingsRig
{
    explicit SettingsRig(std::function<bool()> available = [] { return true; })
        : store(loadLibrary(), {preferences, writer, attachments, index})
        , panel(store, panelState, preferences)
        , hotKeys(registrar)
        , permission(std::move(available))
        , monitor(
              keys, [this] { return preferences.doubleShiftInterval(); },
              [this] { return permission.isTrusted(); })
        , reader(session, clipboard, [this] { return permission.isTrusted(); })
        , engine({store, preferences, hotKeys, monitor, reader, permission, feedback, clipboard})
    { }

    SettingsView::Services services(
        const LoginItem &loginItem,
        std::function<CaptureObstacle()> obstacle = [] { return CaptureObstacle::None; })
    {
        return {preferences, panel, loginItem,
            {preferences, permission, engine, hotKeys, nullptr, std::move(obstacle)},
            {store, preferences, clipboard,
                [this](const QString &path) { revealed.append(path); }}};
    }

    Preferences preferences;
    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex index;
    Store store;
    PanelState panelState;
    PanelController panel;
    FakeClipboard clipboard;
    FakeDesktopSession session;
    FakeKeyMonitor keys;
    FakeHotKeyRegistrar registrar;
    FakeCaptureFeedback feedback;
    HotKeyCenter hotKeys;
    AccessibilityPermission permission;
    DoubleShiftMonitor monitor;
    SelectionReader reader;
    CaptureEngine engine;
    QStringList revealed;
};

} // namespace Vesko::Test
