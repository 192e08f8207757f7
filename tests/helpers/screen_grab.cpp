// SPDX-License-Identifier: GPL-3.0-or-later
//
// screen_grab FILE.png [x y width height]: saves the X screen, or a part of
// it, as a PNG. For the screenshots of the documentation and for UI tests.

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

#include <cstdio>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 6) {
        std::fprintf(stderr, "usage: screen_grab FILE.png [x y width height]\n");
        return 2;
    }
    QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen) {
        std::fprintf(stderr, "screen_grab: no screen\n");
        return 1;
    }
    QPixmap pixmap;
    if (arguments.size() == 6) {
        pixmap = screen->grabWindow(0, arguments[2].toInt(), arguments[3].toInt(),
            arguments[4].toInt(), arguments[5].toInt());
    } else {
        pixmap = screen->grabWindow(0);
    }
    if (!pixmap.save(arguments[1], "PNG")) {
        std::fprintf(stderr, "screen_grab: cannot write %s\n", qPrintable(arguments[1]));
        return 1;
    }
    return 0;
}
