// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/WindowCloseKeys.h"

#include <QAction>
#include <QKeyEvent>
#include <QWidget>

namespace Vesko {

WindowCloseKeys::WindowCloseKeys(QWidget *window)
    : QObject(window)
    , m_window(window)
    , m_close(new QAction(tr("Close Window"), window))
{
    m_close->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::CTRL | Qt::Key_F4)});
    m_close->setShortcutContext(Qt::WindowShortcut);
    connect(m_close, &QAction::triggered, window, &QWidget::close);
    window->addAction(m_close);
    window->installEventFilter(this);
}

bool WindowCloseKeys::eventFilter(QObject *watched, QEvent *event)
{
    // A press reaches the window itself only when the focused control and
    // its parents left it: a field or a recorder that uses Escape keeps it.
    if (watched == m_window && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Escape
            && (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
            m_window->close();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Vesko
