// SPDX-License-Identifier: GPL-3.0-or-later
//
// Owns the "Vesko Settings" window: made on the first show and kept, closing
// only hides it, and its place is remembered. Showing it brings it to the
// front, once at once and again on the next turn of the event loop, since a
// window manager may refuse the first request of a program in the background.

#pragma once

#include "shell/SettingsView.h"

#include <QObject>
#include <QPointer>

#include <optional>

namespace Vesko {

class AccessibilityPermission;

class SettingsWindowController : public QObject
{
    Q_OBJECT

public:
    //! The settings key under which the window's place is kept.
    static constexpr auto frameKey = "VeskoSettings/geometry";
    static constexpr int contentWidth = 480;
    static constexpr int contentHeight = 430;

    explicit SettingsWindowController(QObject *parent = nullptr);
    ~SettingsWindowController() override;

    //! The controller of the process, made on first use and never destroyed.
    static SettingsWindowController &shared();

    //! What the window works with; set once before the first show.
    void setServices(const SettingsView::Services &services, AccessibilityPermission &permission);

    //! Reads capture availability again, then brings the window forward,
    //! making it first when needed; it opens on the tab it last showed.
    void show();
    //! The same, on \a tab.
    void show(SettingsTab tab);
    //! Rebuilds the content in the present appearance, if the window exists.
    void refreshAppearance();

    QWidget *window() const { return m_window; }
    SettingsView *view() const;

private:
    void makeWindow();
    void bringForward();

    std::optional<SettingsView::Services> m_services;
    AccessibilityPermission *m_permission = nullptr;
    QPointer<QWidget> m_window;
};

} // namespace Vesko
