// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's view state: every focus request is delivered, equal assignments
// stay silent, and the modal layer on screen and the one Escape closes follow
// their two different orders.

#include "TestEnvironment.h"

#include "panel/window/PanelState.h"

#include <QSignalSpy>

using namespace Vesko;

class PanelStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void repeatedFocusRequestsAreEachDelivered();
    void equalAssignmentsAreSilent();
    void layerOrders_data();
    void layerOrders();
};

void PanelStateTest::repeatedFocusRequestsAreEachDelivered()
{
    PanelState state;
    QSignalSpy requests(&state, &PanelState::focusRequestChanged);
    QSignalSpy targets(&state, &PanelState::focusTargetChanged);
    state.requestFocus(PanelFocusTarget::Composer);
    state.requestFocus(PanelFocusTarget::Composer);
    QCOMPARE(state.focusRequest(), 2);
    QCOMPARE(requests.count(), 2);
    QCOMPARE(targets.count(), 1);
    state.requestFocus(PanelFocusTarget::None);
    QCOMPARE(requests.count(), 3);
    QCOMPARE(state.focusTarget(), PanelFocusTarget::None);
}

void PanelStateTest::equalAssignmentsAreSilent()
{
    PanelState state;
    QSignalSpy layers(&state, &PanelState::layersChanged);
    QSignalSpy jumps(&state, &PanelState::sectionJumpRequestChanged);
    QSignalSpy moves(&state, &PanelState::pendingMoveIDsChanged);
    QSignalSpy visible(&state, &PanelState::isVisibleChanged);
    const QUuid section = QUuid::createUuid();
    const QList<QUuid> ids = {QUuid::createUuid(), QUuid::createUuid()};
    for (int i = 0; i < 2; ++i) {
        state.setShowing(PanelLayer::Shortcuts, true);
        state.setSectionJumpRequest(section);
        state.setPendingMoveIDs(ids);
        state.setVisible(true);
    }
    QCOMPARE(layers.count(), 1);
    QCOMPARE(jumps.count(), 1);
    QCOMPARE(moves.count(), 1);
    QCOMPARE(visible.count(), 1);
    // Emptying the jump slot and asking for the same section again is heard.
    state.setSectionJumpRequest(std::nullopt);
    state.setSectionJumpRequest(section);
    QCOMPARE(jumps.count(), 3);
}

void PanelStateTest::layerOrders_data()
{
    QTest::addColumn<QList<PanelLayer>>("up");
    QTest::addColumn<PanelLayer>("front");
    QTest::addColumn<PanelLayer>("closedByEscape");
    QTest::addColumn<PanelLayer>("frontAfterEscape");
    using L = PanelLayer;
    QTest::newRow("none") << QList<L> {} << L::None << L::None << L::None;
    QTest::newRow("one") << QList<L> {L::NewProject} << L::NewProject << L::NewProject << L::None;
    // The sheet is in front of the prompt and Escape closes the sheet.
    QTest::newRow("shortcuts over new section")
        << QList<L> {L::NewSection, L::Shortcuts} << L::Shortcuts << L::Shortcuts << L::NewSection;
    // A switcher is in front, yet Escape closes the shortcut sheet behind it.
    QTest::newRow("switcher and shortcuts")
        << QList<L> {L::Shortcuts, L::SectionSwitcher} << L::SectionSwitcher << L::Shortcuts
        << L::SectionSwitcher;
    QTest::newRow("both switchers")
        << QList<L> {L::ProjectSwitcher, L::SectionSwitcher} << L::SectionSwitcher
        << L::SectionSwitcher << L::ProjectSwitcher;
    QTest::newRow("prompts") << QList<L> {L::RenameProject, L::NewProject, L::NewSection}
                             << L::NewSection << L::NewSection << L::NewProject;
}

void PanelStateTest::layerOrders()
{
    QFETCH(QList<PanelLayer>, up);
    QFETCH(PanelLayer, front);
    QFETCH(PanelLayer, closedByEscape);
    QFETCH(PanelLayer, frontAfterEscape);
    PanelState state;
    state.setPendingMoveIDs({QUuid::createUuid()});
    for (PanelLayer layer : up)
        state.setShowing(layer, true);
    QCOMPARE(state.frontLayer(), front);
    QCOMPARE(state.dismissLayerOnEscape(), closedByEscape);
    QCOMPARE(state.frontLayer(), frontAfterEscape);
    // Closing one layer touches no other.
    for (PanelLayer layer : up)
        QCOMPARE(state.isShowing(layer), layer != closedByEscape);
    // The notes waiting for a new section wait no longer once its prompt is closed.
    QCOMPARE(state.pendingMoveIDs().isEmpty(), closedByEscape == PanelLayer::NewSection);
}

VESKO_TEST_MAIN(PanelStateTest)
#include "tst_panelstate.moc"
