// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Capture tab of Settings: whether capture works in this session, each
// capability in plain words (shortcuts, selected text, source, copy, double
// Shift) and, for what does not work, why and what to do instead; the
// double-Shift gesture and its interval; the four system-wide shortcuts, or
// where the desktop gives none, the command of each and how to bind it to
// keys there (sway's lines ready to copy; on KDE Plasma the two commands
// that have KWin pass Shift taps); and whether a capture brings the panel
// forward.

#pragma once

#include "capture/KeyCombo.h"
#include "platform/CaptureCapabilities.h"
#include "platform/CaptureSupport.h"
#include "platform/portal/PortalShortcutsState.h"
#include "shell/CaptureStatus.h"

#include <QWidget>

#include <functional>
#include <optional>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSlider;

namespace Vesko {

class AccessibilityPermission;
class CaptureEngine;
class HotKeyCenter;
class KeyLayout;
class Preferences;
class ShortcutRecorderView;

class CaptureSettingsView : public QWidget
{
    Q_OBJECT

public:
    struct Services
    {
        Preferences &preferences;
        AccessibilityPermission &permission;
        CaptureEngine &engine;
        HotKeyCenter &hotKeys;
        const KeyLayout *keyLayout;
        //! What keeps capture from working, asked when the tab shows.
        std::function<CaptureObstacle()> captureObstacle;
        //! Opens the desktop's keyboard-shortcut settings; empty where the
        //! desktop has none that Vesko knows, and the tab's buttons then
        //! stay hidden, since they would lead nowhere.
        std::function<void()> openShortcutSettings = {};
        //! What capture can do here, asked when the tab shows. Without it,
        //! an X11 session's set when capture is available, else nothing.
        std::function<CaptureCapabilities()> capabilities = {};
        //! Where the desktop's global shortcuts stand, where Vesko asked
        //! for them; nothing elsewhere.
        std::function<std::optional<PortalShortcutsState>()> portalState = {};
        //! XDG_CURRENT_DESKTOP: how commands are bound to keys there.
        QString currentDesktop = currentDesktopNames();
        //! KDE_SESSION_VERSION: which Plasma's tools the commands name.
        QString plasmaVersion = qEnvironmentVariable("KDE_SESSION_VERSION");
    };

    //! The interval slider's bounds and step, in milliseconds.
    static constexpr int shortestInterval = 200;
    static constexpr int longestInterval = 800;
    static constexpr int intervalStep = 50;

    explicit CaptureSettingsView(const Services &services, QWidget *parent = nullptr);

    ShortcutRecorderView *recorder(HotKeyAction action) const;
    //! The sway lines offered for copying; empty off sway.
    QString swayLines() const;
    //! The commands that turn on KWin's Shift taps; empty but on a KDE
    //! Plasma where they are off.
    QString kwinLines() const;
    //! The interval as the tab shows it: "400 ms".
    static QString intervalText(double seconds);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void refreshPermission();
    void refreshDoubleShift();
    CaptureCapabilities capabilities() const;

    Services m_services;
    QLabel *m_permissionIcon;
    QLabel *m_permissionTitle;
    QLabel *m_reason;
    QLabel *m_advice;
    QPushButton *m_grantAccess;
    QPushButton *m_openSystemSettings;
    QList<QLabel *> m_capabilityIcons;
    QList<QLabel *> m_capabilityTexts;
    QLabel *m_portalMessage;
    QLabel *m_bindingAdvice;
    QPlainTextEdit *m_swayLines;
    QPushButton *m_copySwayLines;
    QList<QLabel *> m_commands;
    QCheckBox *m_doubleShift;
    QLabel *m_listener;
    QPlainTextEdit *m_kwinLines;
    QPushButton *m_copyKwinLines;
    QSlider *m_interval;
    QLabel *m_intervalValue;
    QList<ShortcutRecorderView *> m_recorders;
    QCheckBox *m_showPanel;
};

} // namespace Vesko
