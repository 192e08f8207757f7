// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/DesktopScreens.h"

#include <QGuiApplication>
#include <QScreen>

namespace Vesko {

QList<ScreenArea> currentScreenAreas()
{
    QList<ScreenArea> areas;
    const QScreen *primary = QGuiApplication::primaryScreen();
    if (primary)
        areas.append({primary->geometry(), primary->availableGeometry()});
    for (const QScreen *screen : QGuiApplication::screens()) {
        if (screen != primary)
            areas.append({screen->geometry(), screen->availableGeometry()});
    }
    return areas;
}

} // namespace Vesko
