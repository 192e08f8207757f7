// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture in this session in the words the Capture tab of Settings uses:
// what each capability does here, why capture is not available where it is
// not, the state of the desktop's global shortcuts, and how to bind Vesko's
// commands to keys on desktops that give Vesko no shortcuts of its own.

#pragma once

#include "capture/KeyCombo.h"
#include "platform/CaptureCapabilities.h"
#include "platform/CaptureSupport.h"
#include "platform/portal/PortalShortcutsState.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace Vesko {

//! The reason, in a sentence; empty for None.
QString captureObstacleReason(CaptureObstacle obstacle);
//! What the user can do instead; empty for None.
QString captureObstacleAdvice(CaptureObstacle obstacle);

//! The program and arguments that open the keyboard-shortcut settings of
//! the desktop named by \a currentDesktop (XDG_CURRENT_DESKTOP, a list
//! separated by colons); empty for a desktop without such a page.
QStringList keyboardShortcutSettingsCommand(const QString &currentDesktop);

//! One capability as the tab words it: what it is, and whether and how it works.
struct CapabilityLine
{
    QString title;
    bool works = false;
    QString text;
};
//! Capture works at all once it can read the selected text; all the rest
//! only needs setting up, so Settings opens by itself only without it.
bool canCaptureAtAll(const CaptureCapabilities &capabilities);

//! The desktop's global shortcuts, when they did not come: why, and what
//! to do. Empty while they are on their way or bound, and without a portal.
QString portalShortcutsMessage(PortalShortcutsState state);

//! The desktops whose way of binding a command to keys the tab explains.
enum class ShortcutDesktop { Gnome, Kde, Sway, Other };
//! From XDG_CURRENT_DESKTOP (a list separated by colons).
ShortcutDesktop shortcutDesktop(const QString &currentDesktop);
//! Shortcuts, selected text, source, copy and double Shift, in that order;
//! on \a desktop, what to do about what does not work there.
QList<CapabilityLine> capabilityLines(
    const CaptureCapabilities &capabilities, ShortcutDesktop desktop);
//! The desktop's names as XDG_CURRENT_DESKTOP gives them; "sway" where only
//! sway's socket tells.
QString currentDesktopNames();
//! The command line that runs an action in the running Vesko: "vesko toggle".
QString actionCommand(HotKeyAction action);
//! How to bind the commands to keys on \a desktop, in a sentence or two.
QString commandBindingAdvice(ShortcutDesktop desktop);
//! Lines for sway's configuration file, one "bindsym KEYS exec vesko ..." per
//! action, with \a keys of the action in sway's words (commented out for an
//! action without keys), and the Shift release that feeds double Shift.
QString swayBindings(const std::function<QString(HotKeyAction)> &keys);
//! The two commands that have KWin call Vesko on each lone Shift release:
//! the entry in kwinrc, then KWin reading its configuration again. For the
//! Plasma of \a plasmaVersion (KDE_SESSION_VERSION), whose tools carry it.
QString kwinShiftCommands(const QString &plasmaVersion);
//! Whether \a kwinrc, the text of KWin's configuration file, has KWin call
//! Vesko on each lone Shift release.
bool kwinPassesShiftTaps(QStringView kwinrc);

} // namespace Vesko
