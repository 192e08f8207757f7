// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelKeyHandler.h"

#include "panel/window/PanelCommands.h"
#include "shell/Toast.h"
#include "store/NoteText.h"
#include "store/Store.h"

#include <QCoreApplication>
#include <QWidget>

namespace Vesko {

namespace {

constexpr Qt::KeyboardModifiers countedModifiers
    = Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier | Qt::MetaModifier;

//! The selection in the order of the rows; notes the rows don't show follow.
QList<QUuid> orderedSelection(const Store &store)
{
    QSet<QUuid> remaining = store.selection();
    QList<QUuid> ids;
    ids.reserve(remaining.size());
    if (remaining.isEmpty())
        return ids;
    for (const Note &note : store.visibleNotes()) {
        if (remaining.remove(note.id))
            ids.append(note.id);
    }
    for (const QUuid &id : std::as_const(remaining))
        ids.append(id);
    return ids;
}

QList<QUuid> visibleIDs(const Store &store)
{
    QList<QUuid> ids;
    for (const Note &note : store.visibleNotes())
        ids.append(note.id);
    return ids;
}

} // namespace

PanelKeyHandler::PanelKeyHandler(Store &store, PanelState &state)
    : m_store(store)
    , m_state(state)
{ }

bool PanelKeyHandler::isTextEntryContext() const
{
    if (m_store.editingNoteID() || m_state.renamingSectionID())
        return true;
    // With a layer in front (the sheet, a switcher, a prompt) the keyboard is
    // in that layer, whatever part of the panel had it before.
    const PanelFocusTarget focus
        = m_hooks.focusTarget ? m_hooks.focusTarget() : PanelFocusTarget::None;
    if (m_state.frontLayer() == PanelLayer::None
        && (focus == PanelFocusTarget::Composer || focus == PanelFocusTarget::Search))
        return true;
    return m_hooks.textFieldFocused && m_hooks.textFieldFocused();
}

bool PanelKeyHandler::passesTextFilter(int key, Qt::KeyboardModifiers modifiers)
{
    modifiers &= countedModifiers;
    if (!(modifiers & Qt::ControlModifier))
        return false;
    switch (key) {
    case Qt::Key_A:
    case Qt::Key_C:
    case Qt::Key_V:
    case Qt::Key_X:
    case Qt::Key_Z:
        return false;
    default:
        break;
    }
    const bool arrow
        = key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_Left || key == Qt::Key_Right;
    if (modifiers == Qt::ControlModifier
        && (arrow || key == Qt::Key_Backspace || key == Qt::Key_Delete))
        return false;
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && arrow)
        return false;
    return true;
}

PanelKeyHandler::Result PanelKeyHandler::handleKeyPress(int key, Qt::KeyboardModifiers modifiers)
{
    modifiers &= countedModifiers;
    if (isTextEntryContext() && !passesTextFilter(key, modifiers)) {
        // Undo and redo stay with the text while it has typing to undo;
        // beyond that they undo the library, as everywhere else.
        const bool redo = modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
        if (key == Qt::Key_Z && (redo || modifiers == Qt::ControlModifier)
            && m_hooks.textFieldCanUndo && !m_hooks.textFieldCanUndo(redo))
            return perform(redo ? Shortcut::redo : Shortcut::undo);
        return Result::Ignored;
    }
    // Outside the table: the desktop's keys for a context menu, and quitting.
    if ((key == Qt::Key_Menu && modifiers == Qt::NoModifier)
        || (key == Qt::Key_F10 && modifiers == Qt::ShiftModifier)) {
        if (!m_hooks.showContextMenu)
            return Result::Ignored;
        m_hooks.showContextMenu();
        return Result::Handled;
    }
    if (QKeyCombination(modifiers, Qt::Key(key)) == quitKey) {
        PanelCommands::shared().quit();
        return Result::Handled;
    }
    const std::optional<Shortcut> shortcut = Shortcuts::lookup(key, modifiers);
    if (!shortcut)
        return Result::Ignored;
    return perform(*shortcut);
}

PanelKeyHandler::Result PanelKeyHandler::perform(Shortcut shortcut)
{
    const QList<QUuid> ids = orderedSelection(m_store);
    if (const int number = Shortcuts::jumpNumber(shortcut)) {
        jumpToSectionIndex(number - 1);
        return Result::Handled;
    }
    switch (shortcut) {
    case Shortcut::newNote:
    case Shortcut::focusComposer:
        m_state.requestFocus(PanelFocusTarget::Composer);
        break;
    case Shortcut::focusSearch:
        m_state.requestFocus(PanelFocusTarget::Search);
        break;
    case Shortcut::newSection:
        m_state.setShowing(PanelLayer::NewSection, true);
        break;
    case Shortcut::newProject:
        m_state.setShowing(PanelLayer::NewProject, true);
        break;
    case Shortcut::switchSection:
        m_state.setShowing(PanelLayer::SectionSwitcher, true);
        break;
    case Shortcut::switchProject:
        if (m_store.library().projects.size() < 2)
            return Result::Ignored;
        m_state.setShowing(PanelLayer::ProjectSwitcher, true);
        break;
    case Shortcut::previousSection:
        stepSection(-1);
        break;
    case Shortcut::nextSection:
        stepSection(1);
        break;
    case Shortcut::moveSectionUp:
    case Shortcut::moveSectionDown:
        if (const std::optional<QUuid> active = m_store.activeProject().activeSectionID)
            m_store.moveSection(*active, shortcut == Shortcut::moveSectionUp ? -1 : 1);
        break;
    case Shortcut::toggleSectionCollapsed:
        if (const std::optional<QUuid> active = m_store.activeProject().activeSectionID) {
            m_store.toggleSectionCollapsed(*active);
            m_store.commit();
        }
        break;
    case Shortcut::selectAll:
        m_store.selectAll();
        break;
    case Shortcut::copy:
    case Shortcut::copyAsList:
        copy(shortcut == Shortcut::copyAsList, ids);
        break;
    case Shortcut::mergeNotes:
        m_store.mergeNotes(ids);
        break;
    case Shortcut::toggleExpanded:
        for (const QUuid &id : ids)
            m_store.toggleExpanded(id);
        break;
    case Shortcut::undo:
        m_store.undo();
        break;
    case Shortcut::redo:
        m_store.redo();
        break;
    case Shortcut::openInNewWindow:
        if (ids.isEmpty())
            return Result::Ignored;
        PanelCommands::shared().openNoteWindow(ids.first());
        break;
    case Shortcut::deleteNotes:
        if (ids.isEmpty())
            return Result::Ignored;
        m_store.deleteNotes(QSet<QUuid>(ids.cbegin(), ids.cend()));
        break;
    case Shortcut::showShortcuts:
        m_state.setShowing(PanelLayer::Shortcuts, true);
        break;
    case Shortcut::settings:
        PanelCommands::shared().openSettings();
        break;
    case Shortcut::hidePanel:
        if (m_hooks.hidePanel)
            m_hooks.hidePanel();
        break;
    case Shortcut::moveSelectionUp:
    case Shortcut::moveSelectionDown:
    case Shortcut::extendSelectionUp:
    case Shortcut::extendSelectionDown: {
        const bool up
            = shortcut == Shortcut::moveSelectionUp || shortcut == Shortcut::extendSelectionUp;
        const bool extending
            = shortcut == Shortcut::extendSelectionUp || shortcut == Shortcut::extendSelectionDown;
        m_store.moveSelection(up ? -1 : 1, extending);
        break;
    }
    case Shortcut::firstNote:
    case Shortcut::lastNote: {
        const QList<Note> notes = m_store.visibleNotes();
        if (!notes.isEmpty()) {
            const QUuid id = shortcut == Shortcut::firstNote ? notes.first().id : notes.last().id;
            m_store.setSelection({id}, id);
        }
        break;
    }
    case Shortcut::toggleDone:
        if (ids.isEmpty())
            return Result::Ignored;
        m_store.toggleDone(ids);
        break;
    case Shortcut::editNote:
        if (ids.size() != 1)
            return Result::Ignored;
        m_store.setEditingNoteID(ids.first());
        break;
    case Shortcut::close:
        escape();
        break;
    case Shortcut::commitNote:
    case Shortcut::newLine:
    case Shortcut::hashtagSection:
        return Result::Ignored;
    default:
        break;
    }
    return Result::Handled;
}

void PanelKeyHandler::stepSection(int delta)
{
    const QList<NoteSection> sections = m_store.activeProject().sections;
    const qsizetype count = sections.size();
    if (count == 0)
        return;
    qsizetype index = 0;
    if (const std::optional<QUuid> active = m_store.activeProject().activeSectionID) {
        for (qsizetype i = 0; i < count; ++i) {
            if (sections.at(i).id == *active)
                index = i;
        }
    }
    jumpToSectionIndex((index + delta + count) % count);
}

void PanelKeyHandler::jumpToSectionIndex(qsizetype index)
{
    const QList<NoteSection> sections = m_store.activeProject().sections;
    if (index < 0 || index >= sections.size())
        return;
    const QUuid id = sections.at(index).id;
    m_store.activateSection(id);
    m_state.setSectionJumpRequest(id);
}

void PanelKeyHandler::copy(bool asList, const QList<QUuid> &ids)
{
    const QList<QUuid> notes = ids.isEmpty() ? visibleIDs(m_store) : ids;
    Clipboard &clipboard = PanelCommands::shared().clipboard();
    if (asList) {
        m_store.copyAsList(notes, clipboard);
        ToastPresenter::shared().present(
            QCoreApplication::translate("TextOut", TextOutMessages::copiedAsList),
            QString::fromLatin1(TextOutMessages::copiedAsListSymbol));
    } else {
        m_store.copyNotes(notes, clipboard);
        ToastPresenter::shared().present(
            QCoreApplication::translate("TextOut", TextOutMessages::copied),
            QString::fromLatin1(TextOutMessages::copiedSymbol));
    }
}

void PanelKeyHandler::escape()
{
    if (m_state.dismissLayerOnEscape() != PanelLayer::None)
        return;
    if (m_store.isSearching()) {
        m_store.setSearchText(QString());
        return;
    }
    if (!m_store.selection().isEmpty()) {
        m_store.setSelection({}, std::nullopt);
        return;
    }
    if (m_hooks.hidePanel)
        m_hooks.hidePanel();
}

} // namespace Vesko
