// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a focused widget does with typed text: whether it is a text editor,
// and whether it has typing of its own to undo or redo. The panel's key
// handling and the program's Edit commands ask the same questions here.

#pragma once

class QWidget;

namespace Vesko {

//! \a widget is a line or text editor (QLineEdit, QTextEdit, QPlainTextEdit).
bool isTextEditor(const QWidget *widget);

//! \a widget is a text editor with typing to undo (or, with \a redo, to
//! redo); any other widget has none.
bool canUndoTyping(const QWidget *widget, bool redo);

} // namespace Vesko
