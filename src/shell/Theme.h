// SPDX-License-Identifier: GPL-3.0-or-later
//
// The colours and fonts of Vesko's surfaces, for the dark and the light
// appearance, and the application-wide appearance (Fusion with a light or a
// dark palette, or the desktop's own palette).

#pragma once

#include "shell/Preferences.h"
#include "shell/SymbolIcon.h"

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QPalette>

namespace Vesko {

struct ThemeColors
{
    QColor accent;
    QColor accentStrong;
    QColor accentSoft;
    QColor greyStrong;
    QColor greyLight;
    //! Hints and placeholders.
    QColor tertiaryText;
    QColor noteFill;
    QColor noteFillSelected;
    QColor noteFillDone;
    QColor surfaceFill;
    QColor surfaceHoverFill;
    QColor surfaceStroke;
    QColor surfaceShadow;
    QColor sectionHairline;
    QColor panelStroke;
    //! The panel's own surface under everything, translucent where a compositor runs.
    QColor panelSurface;
    QColor text;
};

namespace Theme {

//! The colour tokens of one appearance around the desktop's \a accent colour.
ThemeColors colors(bool dark, const QColor &accent);
//! The tokens of the application's present appearance.
ThemeColors currentColors();
//! The application's present appearance is the dark one.
bool isDark();

//! Sets the application-wide style and palette for \a appearance: System
//! keeps the desktop's palette, Light and Dark use Fusion with their own.
void applyAppearance(AppAppearance appearance);
QPalette palette(bool dark);

QFont noteFont();
QFont searchFont();
QFont sectionFont();
QFont captionFont();

//! The program's icon, drawn, so that it needs no image plug-in.
QIcon applicationIcon();

} // namespace Theme

} // namespace Vesko
