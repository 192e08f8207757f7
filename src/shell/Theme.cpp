// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/Theme.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QProxyStyle>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOption>

namespace Vesko {

namespace {

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(float(alpha));
    return color;
}

const QColor white(255, 255, 255);
const QColor black(0, 0, 0);

struct StyleState
{
    QString systemStyle;
    QPalette systemPalette;
    bool captured = false;
    bool dark = false;
};

StyleState &styleState()
{
    static StyleState state;
    return state;
}

bool paletteIsDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

// Fusion frames a check box in a shade of the window colour, which all but
// vanishes on a dark window: there the frame is drawn again, lighter.
class VeskoStyle : public QProxyStyle
{
public:
    explicit VeskoStyle(QStyle *fusion)
        : QProxyStyle(fusion)
    { }

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override
    {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        if (element != PE_IndicatorCheckBox || !paletteIsDark(option->palette))
            return;
        // The keyboard focus keeps Fusion's highlighted frame.
        if ((option->state & State_HasFocus) && (option->state & State_KeyboardFocusChange))
            return;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing, true);
        painter->translate(0.5, 0.5);
        painter->setPen(withAlpha(white, 0.4));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(QRectF(option->rect.adjusted(0, 0, -1, -1)));
        painter->restore();
    }
};

QFont systemFont(int pixelSize, QFont::Weight weight)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

} // namespace

namespace Theme {

ThemeColors colors(bool dark, const QColor &accent)
{
    ThemeColors c;
    c.accent = accent;
    c.accentStrong = withAlpha(accent, 0.82);
    c.accentSoft = withAlpha(accent, 0.18);
    if (dark) {
        c.greyStrong = withAlpha(white, 0.45);
        c.greyLight = withAlpha(white, 0.34);
        c.tertiaryText = withAlpha(white, 0.45);
        c.noteFill = withAlpha(black, 0.16);
        c.noteFillSelected = withAlpha(black, 0.22);
        c.noteFillDone = withAlpha(black, 0.1);
        c.surfaceFill = withAlpha(black, 0.03);
        c.surfaceHoverFill = withAlpha(black, 0.12);
        c.surfaceStroke = withAlpha(white, 0.12);
        c.surfaceShadow = withAlpha(black, 0.5);
        c.sectionHairline = withAlpha(white, 0.13);
        c.panelStroke = withAlpha(white, 0.1);
        c.panelSurface = QColor(40, 40, 44, 236);
        c.text = QColor(236, 236, 238);
    } else {
        c.greyStrong = withAlpha(black, 0.72);
        c.greyLight = withAlpha(black, 0.28);
        c.tertiaryText = withAlpha(black, 0.7);
        c.noteFill = withAlpha(white, 0.78);
        c.noteFillSelected = withAlpha(white, 0.95);
        c.noteFillDone = withAlpha(white, 0.42);
        c.surfaceFill = withAlpha(white, 0.26);
        c.surfaceHoverFill = withAlpha(white, 0.32);
        c.surfaceStroke = withAlpha(black, 0.08);
        c.surfaceShadow = withAlpha(black, 0.28);
        c.sectionHairline = withAlpha(black, 0.1);
        c.panelStroke = withAlpha(black, 0.06);
        c.panelSurface = QColor(228, 230, 235, 236);
        c.text = QColor(28, 28, 30);
    }
    return c;
}

bool isDark()
{
    return paletteIsDark(QApplication::palette());
}

ThemeColors currentColors()
{
    return colors(isDark(), QApplication::palette().color(QPalette::Highlight));
}

QPalette palette(bool dark)
{
    QPalette p;
    const QColor accent(10, 132, 255);
    if (dark) {
        const QColor window(44, 44, 48);
        const QColor base(30, 30, 33);
        const QColor text(236, 236, 238);
        p.setColor(QPalette::Window, window);
        p.setColor(QPalette::WindowText, text);
        p.setColor(QPalette::Base, base);
        p.setColor(QPalette::AlternateBase, window);
        p.setColor(QPalette::Text, text);
        p.setColor(QPalette::Button, window);
        p.setColor(QPalette::ButtonText, text);
        p.setColor(QPalette::ToolTipBase, base);
        p.setColor(QPalette::ToolTipText, text);
        p.setColor(QPalette::PlaceholderText, withAlpha(white, 0.45));
        p.setColor(QPalette::BrightText, Qt::white);
        p.setColor(QPalette::Disabled, QPalette::Text, withAlpha(white, 0.34));
        p.setColor(QPalette::Disabled, QPalette::WindowText, withAlpha(white, 0.34));
        p.setColor(QPalette::Disabled, QPalette::ButtonText, withAlpha(white, 0.34));
    } else {
        const QColor window(236, 236, 240);
        const QColor text(28, 28, 30);
        p.setColor(QPalette::Window, window);
        p.setColor(QPalette::WindowText, text);
        p.setColor(QPalette::Base, Qt::white);
        p.setColor(QPalette::AlternateBase, window);
        p.setColor(QPalette::Text, text);
        p.setColor(QPalette::Button, window);
        p.setColor(QPalette::ButtonText, text);
        p.setColor(QPalette::ToolTipBase, Qt::white);
        p.setColor(QPalette::ToolTipText, text);
        p.setColor(QPalette::PlaceholderText, withAlpha(black, 0.7));
        p.setColor(QPalette::Disabled, QPalette::Text, withAlpha(black, 0.28));
        p.setColor(QPalette::Disabled, QPalette::WindowText, withAlpha(black, 0.28));
        p.setColor(QPalette::Disabled, QPalette::ButtonText, withAlpha(black, 0.28));
    }
    // Disabled text is drawn flat: no light etching under it, which would
    // make it brighter than enabled text on a dark surface.
    p.setColor(QPalette::Disabled, QPalette::Light, Qt::transparent);
    p.setColor(QPalette::Highlight, accent);
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Link, accent);
    return p;
}

void applyAppearance(AppAppearance appearance)
{
    StyleState &state = styleState();
    if (!state.captured) {
        state.systemStyle = QApplication::style()->name();
        state.systemPalette = QApplication::palette();
        state.captured = true;
    }
    switch (appearance) {
    case AppAppearance::System:
        QApplication::setStyle(QStyleFactory::create(state.systemStyle));
        QApplication::setPalette(state.systemPalette);
        break;
    case AppAppearance::Light:
    case AppAppearance::Dark:
        QApplication::setStyle(new VeskoStyle(QStyleFactory::create(QStringLiteral("Fusion"))));
        QApplication::setPalette(palette(appearance == AppAppearance::Dark));
        break;
    }
}

QFont noteFont()
{
    return systemFont(13, QFont::Normal);
}

QFont searchFont()
{
    return systemFont(13, QFont::Normal);
}

QFont sectionFont()
{
    return systemFont(10, QFont::DemiBold);
}

QFont captionFont()
{
    return systemFont(11, QFont::Normal);
}

QIcon applicationIcon()
{
    QIcon icon;
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF bounds(0.5, 0.5, size - 1.0, size - 1.0);
        QPainterPath card;
        card.addRoundedRect(bounds.adjusted(size * 0.06, size * 0.06, -size * 0.06, -size * 0.06),
            size * 0.22, size * 0.22);
        painter.fillPath(card, QColor(10, 132, 255));
        // Three lines of a list, the first one ticked.
        painter.setPen(QPen(Qt::white, std::max(1.0, size * 0.07), Qt::SolidLine, Qt::RoundCap));
        for (int line = 0; line < 3; ++line) {
            const double y = size * (0.33 + 0.17 * line);
            painter.drawLine(QPointF(size * 0.42, y), QPointF(size * 0.74, y));
        }
        painter.drawLine(QPointF(size * 0.24, size * 0.33), QPointF(size * 0.29, size * 0.38));
        painter.drawLine(QPointF(size * 0.29, size * 0.38), QPointF(size * 0.36, size * 0.27));
        painter.setBrush(Qt::white);
        painter.setPen(Qt::NoPen);
        for (int line = 1; line < 3; ++line) {
            const double y = size * (0.33 + 0.17 * line);
            painter.drawEllipse(QPointF(size * 0.30, y), size * 0.04, size * 0.04);
        }
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace Theme

} // namespace Vesko
