// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one table of everything the panel does by keyboard: each shortcut's
// title, symbol, key and modifiers, and the text shown for it. Menus, the
// shortcut sheet and the key handler take their keys and labels from here,
// so that a key is stated in one place. Command is Ctrl, Option is Alt and
// Control is Super (Meta), as Qt maps them.

#pragma once

#include <QList>
#include <QString>
#include <QtCore/qnamespace.h>

#include <optional>

class QKeySequence;

namespace Vesko {

enum class Shortcut {
    newNote,
    newSection,
    newProject,
    switchSection,
    switchProject,
    previousSection,
    nextSection,
    moveSectionUp,
    moveSectionDown,
    toggleSectionCollapsed,
    jumpToSection1,
    jumpToSection2,
    jumpToSection3,
    jumpToSection4,
    jumpToSection5,
    jumpToSection6,
    jumpToSection7,
    jumpToSection8,
    jumpToSection9,
    focusSearch,
    selectAll,
    copy,
    copyAsList,
    mergeNotes,
    toggleExpanded,
    undo,
    redo,
    openInNewWindow,
    deleteNotes,
    showShortcuts,
    settings,
    hidePanel,
    moveSelectionUp,
    moveSelectionDown,
    extendSelectionUp,
    extendSelectionDown,
    firstNote,
    lastNote,
    toggleDone,
    editNote,
    focusComposer,
    close,
    commitNote,
    newLine,
    hashtagSection,
};

namespace Shortcuts {

//! Every shortcut in its declared order (45).
const QList<Shortcut> &allCases();

//! The case's name as text ("newNote"), its identity.
QString identity(Shortcut shortcut);
//! "New Note", translated.
QString title(Shortcut shortcut);
//! The symbol name ("plus.square.on.square"), empty for none; drawn through symbolIcon().
QString symbolName(Shortcut shortcut);
//! The key (Qt::Key_N, Qt::Key_Up, Qt::Key_Backspace for delete, …).
Qt::Key keyEquivalent(Shortcut shortcut);
//! Ctrl stands for Command, Alt for Option, Meta for Control.
Qt::KeyboardModifiers modifiers(Shortcut shortcut);
//! The key sequence of the shortcut, for menus and actions.
QKeySequence keySequence(Shortcut shortcut);

//! The text at the right of the shortcut's row, in the desktop's convention
//! ("Ctrl+Shift+N"), or one of the five fixed texts ("Ctrl+Backspace",
//! "Ctrl+Up / Home", "Ctrl+Down / End", "Shift+Return", "# Name").
QString displayText(Shortcut shortcut);
//! The same in key symbols, Control, Option, Shift and Command in that order
//! ("⇧⌘N", "⌥↑", "⌘⌫"), for a build that shows them.
QString symbolDisplayText(Shortcut shortcut);

//! The shortcut that \a key with \a modifiers means, the first in declared
//! order; Enter counts as Return, Home as firstNote and End as lastNote.
//! Modifiers other than Ctrl, Shift, Alt and Meta do not count.
std::optional<Shortcut> lookup(int key, Qt::KeyboardModifiers modifiers);

//! The nine section jumps: 1 to 9 for jumpToSection1 … jumpToSection9, else 0.
int jumpNumber(Shortcut shortcut);

} // namespace Shortcuts

} // namespace Vesko
