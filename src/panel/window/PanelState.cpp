// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelState.h"

#include <limits>

namespace Vesko {

namespace {

template<typename T, typename Signal>
void assign(PanelState *state, T &field, const T &value, Signal changed)
{
    if (field == value)
        return;
    field = value;
    Q_EMIT(state->*changed)();
}

} // namespace

PanelState::PanelState(QObject *parent)
    : QObject(parent)
{ }

PanelState &PanelState::shared()
{
    static PanelState *const state = new PanelState;
    return *state;
}

void PanelState::requestFocus(PanelFocusTarget target)
{
    assign(this, m_focusTarget, target, &PanelState::focusTargetChanged);
    if (m_focusRequest == std::numeric_limits<qint64>::max())
        qFatal("The focus request counter overflowed");
    ++m_focusRequest;
    Q_EMIT focusRequestChanged();
}

void PanelState::setVisible(bool visible)
{
    assign(this, m_isVisible, visible, &PanelState::isVisibleChanged);
}

void PanelState::setRenamingSectionID(std::optional<QUuid> id)
{
    assign(this, m_renamingSectionID, id, &PanelState::renamingSectionIDChanged);
}

bool PanelState::isShowing(PanelLayer layer) const
{
    return m_showing[int(layer)];
}

void PanelState::setShowing(PanelLayer layer, bool showing)
{
    if (layer == PanelLayer::None)
        return;
    assign(this, m_showing[int(layer)], showing, &PanelState::layersChanged);
}

PanelLayer PanelState::frontLayer() const
{
    for (PanelLayer layer :
        {PanelLayer::SectionSwitcher, PanelLayer::ProjectSwitcher, PanelLayer::Shortcuts,
            PanelLayer::NewSection, PanelLayer::NewProject, PanelLayer::RenameProject}) {
        if (isShowing(layer))
            return layer;
    }
    return PanelLayer::None;
}

PanelLayer PanelState::dismissLayerOnEscape()
{
    for (PanelLayer layer :
        {PanelLayer::Shortcuts, PanelLayer::SectionSwitcher, PanelLayer::ProjectSwitcher,
            PanelLayer::NewSection, PanelLayer::NewProject, PanelLayer::RenameProject}) {
        if (!isShowing(layer))
            continue;
        setShowing(layer, false);
        if (layer == PanelLayer::NewSection)
            setPendingMoveIDs({});
        return layer;
    }
    return PanelLayer::None;
}

void PanelState::setSectionJumpRequest(std::optional<QUuid> id)
{
    assign(this, m_sectionJumpRequest, id, &PanelState::sectionJumpRequestChanged);
}

void PanelState::setPendingMoveIDs(const QList<QUuid> &ids)
{
    assign(this, m_pendingMoveIDs, ids, &PanelState::pendingMoveIDsChanged);
}

void PanelState::setDraggingNoteIDs(const QList<QUuid> &ids)
{
    assign(this, m_draggingNoteIDs, ids, &PanelState::draggingNoteIDsChanged);
}

} // namespace Vesko
