// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's menus as lists of commands: the context menu of note rows
// (with its "Move to" submenu), the context menu of section headers, and the
// menu of the "More options" button. Each function fills a QMenu afresh from
// the present state of the Store; the entries call the Store, the PanelState
// and the PanelCommands, and show their keys in the desktop's convention.

#pragma once

#include <QList>
#include <QString>
#include <QUuid>

class QMenu;

namespace Vesko {

class PanelState;
class Preferences;
class Store;

//! The notes a note row's menu, done control and drag act on: every selected
//! note (in row order) when the row's note is one of two or more selected,
//! else the row's note alone.
QList<QUuid> noteMenuTarget(const Store &store, const QUuid &noteID);

//! Copy, marking, expanding, editing, merging, splitting, attachments,
//! moving and deleting, for the notes \a target.
void fillNoteMenu(QMenu &menu, Store &store, PanelState &state, const QList<QUuid> &target);

//! The "Move to" submenu: the active project's sections, a new section, and
//! the other projects.
void fillMoveToMenu(QMenu &menu, Store &store, PanelState &state, const QList<QUuid> &ids);

//! Activation, renaming, collapsing, selecting, copying, reordering and
//! deleting of one section.
void fillSectionMenu(QMenu &menu, Store &store, PanelState &state, const QUuid &sectionID);

//! The "More options" menu: projects, sections, view options, copy, export,
//! the tray's dashboard (when the program provides it), the window,
//! shortcuts, Settings and Quit.
void fillOverflowMenu(QMenu &menu, Store &store, PanelState &state, Preferences &preferences);

//! The user's own words (a note, a section title, a project name) as the
//! text of a menu entry, so that they show as typed: a menu reads "&" as the
//! mark of an access key and a tab as the start of the key column.
QString menuEntryText(const QString &words);

} // namespace Vesko
