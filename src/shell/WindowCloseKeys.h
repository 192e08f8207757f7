// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keys that close a window on the Linux desktop: Ctrl+W (and Ctrl+F4)
// always, and Escape when no control inside the window took it. The note
// windows and Settings use it; the panel has keys of its own.

#pragma once

#include <QObject>

class QAction;
class QWidget;

namespace Vesko {

class WindowCloseKeys : public QObject
{
    Q_OBJECT

public:
    //! Makes the keys close \a window; lives as long as the window.
    explicit WindowCloseKeys(QWidget *window);

    //! The window's own "Close Window" action, which holds Ctrl+W.
    QAction *closeAction() const { return m_close; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_window;
    QAction *m_close;
};

} // namespace Vesko
