// SPDX-License-Identifier: GPL-3.0-or-later
//
// Drops on the panel's list and its rows (text, notes and files), the drag
// of a section header to a new place, and the drop lines that show where
// either would land.

#include "panel/list/PanelListView.h"

#include "attachments/AttachmentActions.h"
#include "panel/list/DropIndicatorOverlay.h"
#include "panel/list/PanelDrop.h"
#include "panel/list/SectionReorder.h"
#include "panel/list/VirtualRowLayout.h"
#include "shell/Toast.h"
#include "store/Store.h"

#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>

namespace Vesko {

namespace {

//! How far below a header the line at the end of the sections lies during a section drag.
constexpr int endLineOffset = 6;

} // namespace

std::optional<QUuid> PanelListView::sectionDragTargetID() const
{
    return m_reorder->targetID();
}

std::optional<QUuid> PanelListView::sectionDragSourceID() const
{
    return m_reorder->sourceID();
}

bool PanelListView::showsDropLineBelow(const QUuid &sectionID) const
{
    if (m_dropTargetID == sectionID)
        return true;
    const std::optional<QUuid> dragged = m_reorder->sourceID();
    if (!dragged || m_reorder->targetID())
        return false;
    const Project project = m_store.activeProject();
    for (qsizetype i = project.sections.size() - 1; i >= 0; --i) {
        if (project.sections.at(i).id != *dragged)
            return project.sections.at(i).id == sectionID;
    }
    return false;
}

void PanelListView::updateDropLines()
{
    QList<int> lines;
    const int scroll = verticalScrollBar()->value();
    auto topOf = [&](int index) { return m_topMargin + m_layout->top(index) - scroll; };
    if (m_dropTargetID) {
        const int index = indexOfRow(*m_dropTargetID);
        if (index >= 0) {
            if (m_rows.at(index).isNote())
                lines.append(topOf(index));
            else
                lines.append(
                    topOf(index) + m_layout->height(index) - DropIndicatorOverlay::lineHeight);
        }
    }
    if (m_reorder->sourceID()) {
        if (const std::optional<QUuid> target = m_reorder->targetID()) {
            const int index = indexOfRow(*target);
            if (index >= 0)
                lines.append(topOf(index));
        } else {
            for (int index = m_rows.size() - 1; index >= 0; --index) {
                if (m_rows.at(index).isSection() && showsDropLineBelow(m_rows.at(index).id())) {
                    lines.append(topOf(index) + m_layout->height(index)
                        - DropIndicatorOverlay::lineHeight + endLineOffset);
                    break;
                }
            }
        }
    }
    m_overlay->setLines(lines);
}

// -- drag and drop ----------------------------------------------------------------

void PanelListView::setDropTarget(std::optional<QUuid> id)
{
    if (m_dropTargetID == id)
        return;
    m_dropTargetID = id;
    Q_EMIT dropIndicatorsChanged();
}

void PanelListView::setRowDropTarget(const QUuid &id, bool targeted)
{
    if (targeted)
        setDropTarget(id);
    else if (m_dropTargetID == id)
        setDropTarget(std::nullopt);
}

bool PanelListView::dropOnRow(const QMimeData *data, const std::optional<QUuid> &sectionID,
    const std::optional<QUuid> &beforeNoteID)
{
    const std::optional<QStringList> items = data ? PanelDrop::textItems(*data) : std::nullopt;
    if (!items) {
        m_state.setDraggingNoteIDs({});
        setDropTarget(std::nullopt);
        return false;
    }
    const PanelDrop::Outcome outcome
        = PanelDrop::handleDrop(m_store, m_state, *items, sectionID, beforeNoteID);
    if (outcome == PanelDrop::Outcome::AddedNote)
        ToastPresenter::shared().present(tr("Added"), QStringLiteral("plus"));
    setDropTarget(std::nullopt);
    return outcome != PanelDrop::Outcome::Refused;
}

bool PanelListView::dropFiles(const QList<QUrl> &files, const QUuid &noteID)
{
    setDropTarget(std::nullopt);
    return attachmentActions().dropFiles(files, noteID);
}

void PanelListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (PanelDrop::textItems(*event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void PanelListView::dragMoveEvent(QDragMoveEvent *event)
{
    event->acceptProposedAction();
}

void PanelListView::dragLeaveEvent(QDragLeaveEvent *) { }

void PanelListView::dropEvent(QDropEvent *event)
{
    // Behind the rows: the active section, at its end.
    const NoteSection active = m_store.activeSection();
    const std::optional<QUuid> section
        = m_store.section(active.id) ? std::optional<QUuid>(active.id) : std::nullopt;
    if (dropOnRow(event->mimeData(), section, std::nullopt))
        event->acceptProposedAction();
    else
        event->ignore();
}

void PanelListView::updateSectionFrames()
{
    QHash<QUuid, QRectF> frames;
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).isSection()) {
            frames.insert(m_rows.at(i).id(),
                QRectF(0, m_layout->top(int(i)), viewport()->width(), m_layout->height(int(i))));
        }
    }
    m_reorder->setSectionFrames(frames);
}

void PanelListView::sectionReorderChanged(const QUuid &sectionID, double translation)
{
    if (m_reorder->sourceID() != sectionID)
        updateSectionFrames();
    m_reorder->changed(m_store, sectionID, translation);
    placeRows();
    Q_EMIT dropIndicatorsChanged();
}

void PanelListView::sectionReorderEnded(const QUuid &sectionID, double translation)
{
    if (m_reorder->sourceID() != sectionID)
        updateSectionFrames();
    m_reorder->ended(m_store, sectionID, translation);
    placeRows();
    Q_EMIT dropIndicatorsChanged();
}

void PanelListView::sectionReorderCancelled()
{
    m_reorder->cancelled();
    placeRows();
    Q_EMIT dropIndicatorsChanged();
}

} // namespace Vesko
