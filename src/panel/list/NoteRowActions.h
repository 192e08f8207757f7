// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the pointer does to note rows and section headers, apart from the
// widgets: which notes a row's menu, done control and drag act on, clicks
// with their modifiers, inline editing of a note and renaming of a section.

#pragma once

#include <QList>
#include <QString>
#include <QUuid>

namespace Vesko {

class PanelState;
class Store;

namespace NoteRowActions {

//! The done control of the row of \a noteID: marks the notes the row acts
//! on, \a target, done, or not done when the row's own note is done.
void pressDoneControl(Store &store, const QUuid &noteID, const QList<QUuid> &target);

enum class ClickKind { Plain, Extending, Toggling };
//! A click on a note row: Ctrl toggles the note, Shift extends the range
//! from the anchor, a plain click selects the note alone unless it is being
//! edited. Every click that selects hands the keyboard to the list.
void clickNote(Store &store, PanelState &state, const QUuid &noteID, ClickKind kind);

//! A double click: the note alone is selected and anchored, and edited.
void startEditing(Store &store, const QUuid &noteID);
//! Return or leaving the field: saves \a draft when the note is still being
//! edited (an emptied note goes as the Store decides), ends the editing and
//! hands the keyboard to the list.
void commitEdit(Store &store, PanelState &state, const QUuid &noteID, const QString &draft);
//! Escape: ends the editing without saving and hands the keyboard to the list.
void cancelEdit(Store &store, PanelState &state, const QUuid &noteID);

//! A click on a section header collapses or expands it, unless it is being renamed.
void clickSection(Store &store, const PanelState &state, const QUuid &sectionID);
//! Return or leaving the rename field: renames the section when it is still
//! being renamed, and ends the renaming.
void commitRename(Store &store, PanelState &state, const QUuid &sectionID, const QString &title);
//! Escape in the rename field.
void cancelRename(PanelState &state, const QUuid &sectionID);

} // namespace NoteRowActions
} // namespace Vesko
