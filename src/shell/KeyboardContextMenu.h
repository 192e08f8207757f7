// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shift+F10 opens the context menu of the control that has the keyboard, as
// the Menu key does: Qt turns only the Menu key into a keyboard context-menu
// event on this desktop. Installed once on the application.

#pragma once

#include <QObject>

namespace Vesko {

class KeyboardContextMenu : public QObject
{
public:
    explicit KeyboardContextMenu(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace Vesko
