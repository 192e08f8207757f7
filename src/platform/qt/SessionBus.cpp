// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/SessionBus.h"

#include <QByteArray>

#include <unistd.h>

namespace Vesko {

void keepDBusFromStartingABus()
{
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return;
    QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    if (runtime.isEmpty())
        runtime = "/run/user/" + QByteArray::number(uint(::getuid()));
    // Where a bus listens there, this is the address libdbus would find by
    // itself; where nothing does, a connection fails at once.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + runtime + "/bus");
}

} // namespace Vesko
