// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the programs that draw the panel's views into PNG files for the
// documentation share: the panel's rounded surface to draw on, a wait that
// lets animations run out, the demo library read from its file, and a pass
// in each appearance (link vesko_widgets).

#pragma once

#include "library/LibraryCoding.h"
#include "shell/Theme.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <cstdio>
#include <optional>

namespace Vesko::Test {

//! The panel's rounded surface, in the colours of the current appearance.
class PanelSurface : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        const ThemeColors colors = Theme::currentColors();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 22, 22);
        QColor surface = colors.panelSurface;
        surface.setAlpha(255);
        painter.fillPath(path, surface);
        painter.setPen(QPen(colors.panelStroke, 1));
        painter.drawPath(path);
    }
};

//! Runs the event loop for \a milliseconds.
inline void wait(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

//! The library described in the file at \a path; nothing, with the reason
//! printed on standard error, when it cannot be read or decoded.
inline std::optional<Library> readLibraryFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return std::nullopt;
    }
    QString error;
    std::optional<Library> library = decodeLibrary(file.readAll(), &error);
    if (!library)
        std::fprintf(stderr, "cannot decode the library: %s\n", qPrintable(error));
    return library;
}

//! Calls \a draw in the light and then the dark appearance, with its name
//! ("light", "dark") for the files.
template<typename Draw> void inEachAppearance(Draw draw)
{
    for (const AppAppearance appearance : {AppAppearance::Light, AppAppearance::Dark}) {
        Theme::applyAppearance(appearance);
        draw(appearance == AppAppearance::Light ? QStringLiteral("light") : QStringLiteral("dark"));
    }
}

} // namespace Vesko::Test
