// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Capture tab of Settings: whether capture works in this session and,
// when it does not, why in plain words and what to do instead; the
// double-Shift gesture and its interval; the four system-wide shortcuts; and whether a capture
// brings the panel forward.

#pragma once

#include "capture/KeyCombo.h"
#include "platform/CaptureSupport.h"

#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
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
    };

    //! The interval slider's bounds and step, in milliseconds.
    static constexpr int shortestInterval = 200;
    static constexpr int longestInterval = 800;
    static constexpr int intervalStep = 50;

    explicit CaptureSettingsView(const Services &services, QWidget *parent = nullptr);

    ShortcutRecorderView *recorder(HotKeyAction action) const;
    //! The interval as the tab shows it: "400 ms".
    static QString intervalText(double seconds);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void refreshPermission();
    void refreshDoubleShift();

    Services m_services;
    QLabel *m_permissionIcon;
    QLabel *m_permissionTitle;
    QLabel *m_reason;
    QLabel *m_advice;
    QPushButton *m_grantAccess;
    QPushButton *m_openSystemSettings;
    QCheckBox *m_doubleShift;
    QLabel *m_listener;
    QSlider *m_interval;
    QLabel *m_intervalValue;
    QList<ShortcutRecorderView *> m_recorders;
    QCheckBox *m_showPanel;
};

} // namespace Vesko
