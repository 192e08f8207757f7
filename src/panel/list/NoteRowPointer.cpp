// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the pointer does to a note row: clicks that select, the double click
// that edits in place, the context menu, the drag of the notes out as text,
// and drops of text, notes and files on the row.

#include "panel/list/NoteRowView.h"

#include "panel/list/NoteRowActions.h"
#include "panel/list/PanelDrop.h"
#include "panel/list/PanelListView.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/PanelState.h"
#include "store/Store.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QMimeData>
#include <QUrl>

namespace Vesko {

void NoteRowView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_pressed = true;
    m_dragStarted = false;
    m_pressPosition = event->position().toPoint();
}

void NoteRowView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed || m_editing || m_dragStarted)
        return;
    if ((event->position().toPoint() - m_pressPosition).manhattanLength()
        >= QApplication::startDragDistance()) {
        m_dragStarted = true;
        m_pressed = false;
        startDrag();
    }
}

void NoteRowView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_pressed) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    m_pressed = false;
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (modifiers & Qt::ControlModifier) {
        NoteRowActions::clickNote(m_store, m_state, noteID(), NoteRowActions::ClickKind::Toggling);
    } else if (modifiers & Qt::ShiftModifier) {
        NoteRowActions::clickNote(m_store, m_state, noteID(), NoteRowActions::ClickKind::Extending);
    } else {
        // Also on a link: the row is a list item, and a click chooses it.
        NoteRowActions::clickNote(m_store, m_state, noteID(), NoteRowActions::ClickKind::Plain);
    }
}

void NoteRowView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) {
        // A modified click wins over the double click.
        m_pressed = true;
        m_dragStarted = false;
        return;
    }
    m_pressed = false;
    NoteRowActions::startEditing(m_store, noteID());
}

void NoteRowView::contextMenuEvent(QContextMenuEvent *event)
{
    m_list.showNoteMenu(noteMenuTarget(m_store, noteID()), event->globalPos());
}

void NoteRowView::startDrag()
{
    const QList<QUuid> target = noteMenuTarget(m_store, noteID());
    auto *data = new QMimeData;
    data->setText(m_store.plainCopyText(target));
    m_state.setDraggingNoteIDs(target);
    QPointer<NoteRowView> self(this);
    auto *drag = new QDrag(this);
    drag->setMimeData(data);
    QPixmap image = grab();
    image.setDevicePixelRatio(devicePixelRatioF());
    drag->setPixmap(image);
    drag->setHotSpot(m_pressPosition);
    drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    // The drag is over wherever it ended: a drop outside the panel leaves no
    // notes marked as being dragged.
    m_state.setDraggingNoteIDs({});
}

void NoteRowView::dragEnterEvent(QDragEnterEvent *event)
{
    const QMimeData *data = event->mimeData();
    if (!PanelDrop::localFiles(*data).isEmpty()) {
        m_fileTargeted = true;
        updateFill(true, dropFillMilliseconds);
        event->acceptProposedAction();
    } else if (PanelDrop::textItems(*data)) {
        m_list.setRowDropTarget(noteID(), true);
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void NoteRowView::dragMoveEvent(QDragMoveEvent *event)
{
    event->acceptProposedAction();
}

void NoteRowView::dragLeaveEvent(QDragLeaveEvent *)
{
    if (m_fileTargeted) {
        m_fileTargeted = false;
        updateFill(true, dropFillMilliseconds);
    }
    m_list.setRowDropTarget(noteID(), false);
}

void NoteRowView::dropEvent(QDropEvent *event)
{
    const QMimeData *data = event->mimeData();
    const QList<QUrl> files = PanelDrop::localFiles(*data);
    bool accepted = false;
    if (m_fileTargeted || !files.isEmpty()) {
        m_fileTargeted = false;
        updateFill(true, dropFillMilliseconds);
        accepted = m_list.dropFiles(files, noteID());
    } else {
        accepted = m_list.dropOnRow(data, sectionID(), noteID());
    }
    if (accepted)
        event->acceptProposedAction();
    else
        event->ignore();
}

} // namespace Vesko
