// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/KeyboardContextMenu.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QWidget>

namespace Vesko {

KeyboardContextMenu::KeyboardContextMenu(QObject *parent)
    : QObject(parent)
{ }

bool KeyboardContextMenu::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_F10 || (key->modifiers() & ~Qt::KeypadModifier) != Qt::ShiftModifier)
        return false;
    // Only the first delivery, to the focused control; an open menu keeps its
    // keys, and so does a control that grabbed the keyboard (a shortcut recorder).
    QWidget *focus = QApplication::focusWidget();
    if (watched != focus || !focus->isEnabled() || QApplication::activePopupWidget()
        || QWidget::keyboardGrabber())
        return false;
    // Where the Menu key puts it: at the caret, or in the middle of the control.
    const QPoint place = focus->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent menu(
        QContextMenuEvent::Keyboard, place, focus->mapToGlobal(place), key->modifiers());
    QCoreApplication::sendEvent(focus, &menu);
    return menu.isAccepted();
}

} // namespace Vesko
