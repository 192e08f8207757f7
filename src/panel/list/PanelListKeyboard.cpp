// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keys the panel's list takes itself, and the menus of its rows, opened
// by the pointer on a row or from the keyboard on the selection.

#include "panel/list/PanelListView.h"

#include "panel/window/PanelMenus.h"
#include "store/Store.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>

namespace Vesko {

void PanelListView::showNoteMenu(const QList<QUuid> &target, const QPoint &globalPosition)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillNoteMenu(*menu, m_store, m_state, target);
    if (menu->isEmpty()) {
        delete menu;
        return;
    }
    menu->popup(globalPosition);
}

void PanelListView::showSectionMenu(const QUuid &sectionID, const QPoint &globalPosition)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillSectionMenu(*menu, m_store, m_state, sectionID);
    if (menu->isEmpty()) {
        delete menu;
        return;
    }
    menu->popup(globalPosition);
}

void PanelListView::keyPressEvent(QKeyEvent *event)
{
    if (m_keyHandler && m_keyHandler(event)) {
        event->accept();
        return;
    }
    const Qt::KeyboardModifiers modifiers
        = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    switch (event->key()) {
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (modifiers == Qt::NoModifier) {
            verticalScrollBar()->triggerAction(event->key() == Qt::Key_PageUp
                    ? QAbstractSlider::SliderPageStepSub
                    : QAbstractSlider::SliderPageStepAdd);
            event->accept();
            return;
        }
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        // Without the panel's key handling (a list on its own): the arrows
        // move the selection, Shift extends.
        if (!m_keyHandler && (modifiers == Qt::NoModifier || modifiers == Qt::ShiftModifier)) {
            m_store.moveSelection(event->key() == Qt::Key_Up ? -1 : 1, modifiers != Qt::NoModifier);
            event->accept();
            return;
        }
        break;
    default:
        break;
    }
    event->ignore();
}

void PanelListView::contextMenuEvent(QContextMenuEvent *event)
{
    // The Menu key; a click of the right button goes to the row under it.
    if (event->reason() != QContextMenuEvent::Keyboard) {
        event->ignore();
        return;
    }
    showKeyboardMenu();
    event->accept();
}

void PanelListView::showKeyboardMenu()
{
    if (QApplication::activePopupWidget())
        return;
    const QSet<QUuid> selection = m_store.selection();
    std::optional<QUuid> noteID;
    if (const std::optional<QUuid> anchor = m_store.selectionAnchor();
        anchor && selection.contains(*anchor) && indexOfRow(*anchor) >= 0)
        noteID = anchor;
    for (qsizetype i = 0; !noteID && i < m_rows.size(); ++i) {
        const PanelRow &row = m_rows.at(i);
        if (!row.isSection() && selection.contains(row.id()))
            noteID = row.id();
    }
    const std::optional<QUuid> rowID = noteID ? noteID : m_store.activeProject().activeSectionID;
    if (!rowID || indexOfRow(*rowID) < 0)
        return;
    finishScrollAnimation();
    if (!isRowInView(indexOfRow(*rowID)))
        scrollToRow(*rowID, ScrollAnchor::Center, false);
    // Below the row's first line, a little in from its left edge.
    const QRect row = rowRect(*rowID);
    const QPoint place
        = viewport()->mapToGlobal(QPoint(row.left() + 24, row.top() + std::min(row.height(), 28)));
    if (noteID)
        showNoteMenu(noteMenuTarget(m_store, *noteID), place);
    else
        showSectionMenu(*rowID, place);
}

} // namespace Vesko
