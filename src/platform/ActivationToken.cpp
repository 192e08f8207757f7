// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ActivationToken.h"

namespace Vesko {

void keepActivationToken(const QString &token)
{
    // Qt's xdg-shell integration reads the variable in requestActivate() and
    // unsets it once used. (On X11 the panel asks the window manager itself.)
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

} // namespace Vesko
