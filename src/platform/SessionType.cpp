// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/SessionType.h"

#include <QByteArray>
#include <QtGlobal>

namespace Vesko {

bool isWaylandSession()
{
    return qgetenv("XDG_SESSION_TYPE").toLower() == "wayland"
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace Vesko
