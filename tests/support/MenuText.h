// SPDX-License-Identifier: GPL-3.0-or-later
//
// A menu as one line of text, for tests that compare a menu's entries in
// their order: the entries joined by "|", "-" for a rule, "#" before a
// heading, ">" after a submenu, "~" after a disabled entry and, when asked
// for, "*" after a checked one.

#pragma once

#include <QMenu>

namespace Vesko::Test {

inline QString describeMenu(const QMenu &menu, bool markChecked = false)
{
    QStringList entries;
    for (const QAction *action : menu.actions()) {
        if (action->isSeparator()) {
            entries.append(action->text().isEmpty() ? QStringLiteral("-") : u'#' + action->text());
            continue;
        }
        QString entry = action->text();
        if (action->menu())
            entry += u'>';
        if (!action->isEnabled())
            entry += u'~';
        if (markChecked && action->isChecked())
            entry += u'*';
        entries.append(entry);
    }
    return entries.join(u'|');
}

//! The entries of \a menu that have keys, as "Title=Keys" joined by "|".
inline QString menuKeys(const QMenu &menu)
{
    QStringList entries;
    for (const QAction *action : menu.actions()) {
        if (!action->shortcut().isEmpty())
            entries.append(
                action->text() + u'=' + action->shortcut().toString(QKeySequence::NativeText));
    }
    return entries.join(u'|');
}

//! The entry titled \a title, or null.
inline QAction *menuEntry(const QMenu &menu, const QString &title)
{
    for (QAction *action : menu.actions()) {
        if (action->text() == title)
            return action;
    }
    return nullptr;
}

inline QMenu *submenu(const QMenu &menu, const QString &title)
{
    QAction *action = menuEntry(menu, title);
    return action ? action->menu() : nullptr;
}

} // namespace Vesko::Test
