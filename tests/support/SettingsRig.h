// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the Settings window works with, put together for in-process tests: a
// real Store over the isolated library file, real Preferences and panel
// controller, and the capture logic over stand-ins of the desktop (no keys
// arrive, the clipboard is a list, registrations are kept in a map).

#pragma once

#include "attachments/AttachmentStore.h"
#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "panel/PanelController.h"
#include "panel/PanelState.h"
#include "platform/Clipboard.h"
#include "platform/DesktopSession.h"
#include "platform/KeyMonitor.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "shell/SettingsView.h"
#include "store/Store.h"

namespace Vesko::Test {

class ListClipboard : public Clipboard
{
public:
    void setText(const QString &text) override
    {
        items = {{{QStringLiteral("text/plain"), text.toUtf8()}}};
        ++count;
    }
    Snapshot snapshot() const override { return items; }
    void restore(const Snapshot &snapshot) override
    {
        items = snapshot;
        ++count;
    }
    quint64 changeCount() const override { return count; }
    std::optional<QString> text() const override
    {
        if (items.isEmpty() || !items.first().contains(QStringLiteral("text/plain")))
            return std::nullopt;
        return QString::fromUtf8(items.first().value(QStringLiteral("text/plain")));
    }

    Snapshot items;
    quint64 count = 0;
};

class QuietSession : public DesktopSession
{
public:
    std::optional<FrontApplication> frontApplication() override { return std::nullopt; }
    std::optional<QString> primarySelection(qint64) override { return std::nullopt; }
    bool sendCopy(int) override { return false; }
};

class QuietKeys : public KeyMonitor
{
public:
    bool start(std::function<void(const KeyEvent &)> r) override
    {
        receiver = std::move(r);
        return true;
    }
    void stop() override { receiver = nullptr; }
    bool isRunning() const override { return bool(receiver); }
    std::function<void(const KeyEvent &)> receiver;
};

//! Holds what it is given; a combination held under another id is refused.
class MapRegistrar : public HotKeyRegistrar
{
public:
    void installHandler(std::function<void(int)>) override { }
    void removeHandler() override { }
    int registerKey(int id, quint16 keyCode, quint64 modifiers) override
    {
        const auto combination = qMakePair(keyCode, modifiers);
        if (taken.contains(combination))
            return 10;
        held.insert(id, combination);
        return 0;
    }
    void unregisterKey(int id) override { held.remove(id); }

    QMap<int, QPair<quint16, quint64>> held;
    //! Combinations another program holds.
    QSet<QPair<quint16, quint64>> taken;
};

class SilentFeedback : public CaptureFeedback
{
public:
    void showPanel(bool, bool) override { }
    void togglePanel() override { }
    void toast(const QString &, const QString &) override { }
};

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
    ListClipboard clipboard;
    QuietSession session;
    QuietKeys keys;
    MapRegistrar registrar;
    SilentFeedback feedback;
    HotKeyCenter hotKeys;
    AccessibilityPermission permission;
    DoubleShiftMonitor monitor;
    SelectionReader reader;
    CaptureEngine engine;
    QStringList revealed;
};

} // namespace Vesko::Test
