// SPDX-License-Identifier: GPL-3.0-or-later
//
// The front application named as the desktop names it: from its desktop
// entry where one was found, else from the names its window gives itself
// (X11 window class and instance, Wayland app_id, accessible name). One rule
// for every session, so that a note's source reads the same on each.

#pragma once

#include "platform/DesktopSession.h"

#include <QString>

#include <optional>

namespace Vesko {

//! What an installed application's desktop entry says about it.
struct DesktopEntry
{
    //! The file name without ".desktop", such as "org.gnome.Terminal".
    QString id;
    //! Its Name, in the user's language.
    QString name;
    bool isTerminal = false;
};

//! Whether \a windowClass (an X11 window class or instance, a Wayland
//! app_id) names a terminal emulator, where no synthetic key is ever typed.
bool isTerminalClass(const QString &windowClass);

//! Sets \a front's name, identifier and isTerminal from \a entry, else from
//! \a windowClass (the name) and \a instance (the identifier, else the
//! class), else from the process's own name where \a front has a process.
void nameFrontApplication(FrontApplication &front, const std::optional<DesktopEntry> &entry,
    const QString &windowClass, const QString &instance = {});

} // namespace Vesko
