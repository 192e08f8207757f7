// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the panel and the toast go, as pure functions of screens, pointer and
// preferences: preset frames on each edge, stored frames that barely touch a
// screen, the reset size, and the toast kept inside the screen.

#include "TestEnvironment.h"

#include "panel/window/PanelPlacement.h"

using namespace Vesko;

class PanelPlacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presetFrame_data();
    void presetFrame();
    void presentationFrame_data();
    void presentationFrame();
    void resetSize_data();
    void resetSize();
    void toastOrigin_data();
    void toastOrigin();
};

void PanelPlacementTest::presetFrame_data()
{
    QTest::addColumn<std::optional<QRectF>>("available");
    QTest::addColumn<PanelEdge>("edge");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");
    QTest::addColumn<QRectF>("expected");

    const std::optional<QRectF> screen = QRectF(0, 0, 1440, 900);
    QTest::newRow("right") << screen << PanelEdge::Right << 340.0 << 560.0
                           << QRectF(1440 - 340 - 24, 170, 340, 560);
    QTest::newRow("left") << screen << PanelEdge::Left << 340.0 << 560.0
                          << QRectF(24, 170, 340, 560);
    QTest::newRow("center") << screen << PanelEdge::Center << 340.0 << 560.0
                            << QRectF(550, 170, 340, 560);
    // Taller than the screen: the height is cut to the area less two insets.
    QTest::newRow("too tall") << screen << PanelEdge::Right << 340.0 << 1600.0
                              << QRectF(1076, 24, 340, 900 - 48);
    // The width is left to the window's own limits.
    QTest::newRow("wider than the screen")
        << std::optional(QRectF(0, 0, 300, 400)) << PanelEdge::Left << 340.0 << 560.0 << QRectF(24, 24, 340, 352);
    // A second screen to the right, with a panel bar at its top.
    QTest::newRow("offset screen") << std::optional(QRectF(1440, 30, 1920, 1050)) << PanelEdge::Right
                                   << 340.0 << 560.0 << QRectF(1440 + 1920 - 364, 30 + 245, 340, 560);
    // No screen to place it on: the frame it has stays.
    QTest::newRow("no screen") << std::optional<QRectF>() << PanelEdge::Left << 400.0 << 700.0
                               << QRectF(5, 6, 340, 560);
}

void PanelPlacementTest::presetFrame()
{
    QFETCH(std::optional<QRectF>, available);
    QFETCH(PanelEdge, edge);
    QFETCH(double, width);
    QFETCH(double, height);
    QFETCH(QRectF, expected);
    QCOMPARE(presetPanelFrame(available, edge, width, height, 24, QRectF(5, 6, 340, 560)), expected);
}

void PanelPlacementTest::presentationFrame_data()
{
    QTest::addColumn<std::optional<QRectF>>("stored");
    QTest::addColumn<QRectF>("expected");

    const QRectF preset(1076, 170, 340, 560);
    QTest::newRow("none stored") << std::optional<QRectF>() << preset;
    QTest::newRow("inside") << std::optional<QRectF>(QRectF(100, 100, 300, 400))
                            << QRectF(100, 100, 300, 400);
    // One pixel of overlap with the first screen is enough; used as it stands.
    QTest::newRow("overlaps by one")
        << std::optional<QRectF>(QRectF(-299, -375, 300, 400)) << QRectF(-299, -375, 300, 400);
    QTest::newRow("touches only") << std::optional<QRectF>(QRectF(-300, 0, 300, 400)) << preset;
    QTest::newRow("on the second screen")
        << std::optional<QRectF>(QRectF(2000, 500, 300, 400)) << QRectF(2000, 500, 300, 400);
    QTest::newRow("on a screen that has gone")
        << std::optional<QRectF>(QRectF(5000, 100, 300, 400)) << preset;
    // The available area counts, not the whole screen: under a top panel bar.
    QTest::newRow("under the panel bar")
        << std::optional<QRectF>(QRectF(200, 0, 300, 20)) << preset;
}

void PanelPlacementTest::presentationFrame()
{
    QFETCH(std::optional<QRectF>, stored);
    QFETCH(QRectF, expected);
    const QList<ScreenArea> screens = {
        {QRectF(0, 0, 1440, 900), QRectF(0, 24, 1440, 876)},
        {QRectF(1440, 0, 1920, 1080), QRectF(1440, 0, 1920, 1080)},
    };
    QCOMPARE(Vesko::presentationFrame(stored, screens, QRectF(1076, 170, 340, 560)), expected);
}

void PanelPlacementTest::resetSize_data()
{
    QTest::addColumn<QRectF>("available");
    QTest::addColumn<QRectF>("current");
    QTest::addColumn<QRectF>("expected");

    const QRectF screen(0, 0, 1440, 900);
    QTest::newRow("centred on the old frame")
        << screen << QRectF(500, 100, 500, 700) << QRectF(580, 170, 340, 560);
    QTest::newRow("kept inside at the right")
        << screen << QRectF(1300, 100, 400, 600) << QRectF(1100, 120, 340, 560);
    QTest::newRow("kept inside at the top left")
        << screen << QRectF(-200, -300, 300, 300) << QRectF(0, 0, 340, 560);
    // Smaller than the default: limited to the area less two insets.
    QTest::newRow("small screen") << QRectF(0, 0, 300, 400) << QRectF(0, 0, 300, 400)
                                  << QRectF(24, 24, 252, 352);
}

void PanelPlacementTest::resetSize()
{
    QFETCH(QRectF, available);
    QFETCH(QRectF, current);
    QFETCH(QRectF, expected);
    QCOMPARE(resetPanelSizeFrame(available, current, 24), expected);
}

void PanelPlacementTest::toastOrigin_data()
{
    QTest::addColumn<QPointF>("pointer");
    QTest::addColumn<QPointF>("expected");

    QTest::newRow("beside the pointer") << QPointF(500, 400) << QPointF(514, 414);
    QTest::newRow("bottom right corner")
        << QPointF(1439, 899) << QPointF(1440 - 140 - 8, 900 - 34 - 8);
    QTest::newRow("top left, under the bar") << QPointF(0, 0) << QPointF(14, 24 + 8);
    QTest::newRow("second screen") << QPointF(3350, 10) << QPointF(3360 - 148, 14 + 10);
    // Off every screen: the primary one keeps it.
    QTest::newRow("off screen") << QPointF(-500, 5000) << QPointF(8, 900 - 34 - 8);
}

void PanelPlacementTest::toastOrigin()
{
    QFETCH(QPointF, pointer);
    QFETCH(QPointF, expected);
    const QList<ScreenArea> screens = {
        {QRectF(0, 0, 1440, 900), QRectF(0, 24, 1440, 876)},
        {QRectF(1440, 0, 1920, 1080), QRectF(1440, 0, 1920, 1080)},
    };
    QCOMPARE(Vesko::toastOrigin(pointer, QSizeF(140, 34), screens), expected);
    QCOMPARE(Vesko::toastOrigin(pointer, QSizeF(140, 34), {}), pointer + QPointF(14, 14));
}

VESKO_TEST_MAIN(PanelPlacementTest)
#include "tst_panelplacement.moc"
