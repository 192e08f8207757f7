// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/NoteRowActions.h"

#include "panel/window/PanelState.h"
#include "store/Store.h"

namespace Vesko::NoteRowActions {

void pressDoneControl(Store &store, const QUuid &noteID, const QList<QUuid> &target)
{
    const std::optional<Note> note = store.note(noteID);
    if (!note)
        return;
    store.setDone(target, !note->isDone);
}

void clickNote(Store &store, PanelState &state, const QUuid &noteID, ClickKind kind)
{
    switch (kind) {
    case ClickKind::Toggling:
        store.select(noteID, false, true);
        break;
    case ClickKind::Extending:
        store.select(noteID, true, false);
        break;
    case ClickKind::Plain:
        if (store.editingNoteID() == noteID)
            return;
        store.setSelection({noteID}, noteID);
        break;
    }
    state.requestFocus(PanelFocusTarget::List);
}

void startEditing(Store &store, const QUuid &noteID)
{
    if (!store.note(noteID))
        return;
    store.setSelection({noteID}, noteID);
    store.setEditingNoteID(noteID);
}

void commitEdit(Store &store, PanelState &state, const QUuid &noteID, const QString &draft)
{
    if (store.editingNoteID() != noteID)
        return;
    store.updateNote(noteID, draft);
    store.setEditingNoteID(std::nullopt);
    state.requestFocus(PanelFocusTarget::List);
}

void cancelEdit(Store &store, PanelState &state, const QUuid &noteID)
{
    if (store.editingNoteID() == noteID)
        store.setEditingNoteID(std::nullopt);
    state.requestFocus(PanelFocusTarget::List);
}

void clickSection(Store &store, const PanelState &state, const QUuid &sectionID)
{
    if (state.renamingSectionID() == sectionID)
        return;
    store.toggleSectionCollapsed(sectionID);
    store.commit();
}

void commitRename(Store &store, PanelState &state, const QUuid &sectionID, const QString &title)
{
    if (state.renamingSectionID() != sectionID)
        return;
    store.renameSection(sectionID, title);
    state.setRenamingSectionID(std::nullopt);
}

void cancelRename(PanelState &state, const QUuid &sectionID)
{
    if (state.renamingSectionID() == sectionID)
        state.setRenamingSectionID(std::nullopt);
}

} // namespace Vesko::NoteRowActions
