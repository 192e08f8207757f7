// SPDX-License-Identifier: GPL-3.0-or-later
//
// The token with which the desktop lets Vesko take the focus for a request it
// passed on (xdg-activation: a command run from a launcher or a shortcut, a
// press of a desktop shortcut): kept where Qt's Wayland client takes it, and
// forgets it, the next time a window of Vesko's asks for the focus.

#pragma once

#include <QString>

namespace Vesko {

//! Keeps \a token for the next window that asks for the focus; an empty
//! token leaves the one kept before.
void keepActivationToken(const QString &token);

} // namespace Vesko
