// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one place that decides what a key press does in the panel: it reduces
// the modifiers, keeps text-editing keys with a text field, looks the key up
// in the Shortcut table and performs the shortcut on the Store and the
// PanelState. A press it leaves alone goes on to the focused widget.

#pragma once

#include "panel/window/PanelState.h"
#include "panel/window/Shortcut.h"

#include <QCoreApplication>
#include <QUuid>

#include <functional>

namespace Vesko {

class Store;

class PanelKeyHandler
{
    Q_DECLARE_TR_FUNCTIONS(PanelKeyHandler)

public:
    enum class Result { Handled, Ignored };

    //! What the handler reaches beyond the Store and the PanelState. An
    //! empty hook leaves its shortcut without effect.
    struct Hooks
    {
        //! The panel's focus target (composer, search field or list).
        std::function<PanelFocusTarget()> focusTarget;
        //! The focused widget of the panel takes text.
        std::function<bool()> textFieldFocused;
        //! The focused text widget has typing of its own to undo (or, with
        //! true, to redo); when it has none, the library's undo takes the key.
        std::function<bool(bool redo)> textFieldCanUndo;
        std::function<void()> hidePanel;
        //! Opens the menu of the selected note, or of the active section's
        //! header (the Menu key, Shift+F10).
        std::function<void()> showContextMenu;
    };

    //! Quits the program from the panel, as "Quit Vesko" says.
    static constexpr QKeyCombination quitKey {Qt::ControlModifier, Qt::Key_Q};

    PanelKeyHandler(Store &store, PanelState &state);

    void setHooks(Hooks hooks) { m_hooks = std::move(hooks); }

    //! Decides a key press: \a key a Qt::Key, \a modifiers as the event has them.
    Result handleKeyPress(int key, Qt::KeyboardModifiers modifiers);

    //! The press is made while text is being entered: a note or a section
    //! title is being edited, the composer or the search field has the
    //! panel's focus, or the focused widget takes text.
    bool isTextEntryContext() const;
    //! Inside a text-entry context, only Ctrl combinations that aren't the
    //! text's own editing keys reach the panel.
    static bool passesTextFilter(int key, Qt::KeyboardModifiers modifiers);

    //! Performs \a shortcut; Ignored where it cannot act and the key should
    //! go on down the chain.
    Result perform(Shortcut shortcut);

private:
    //! Steps the active section by \a delta, wrapping at both ends.
    void stepSection(int delta);
    //! Activates the section at \a index of the active project and asks the
    //! list to scroll to it; nothing when there is none.
    void jumpToSectionIndex(qsizetype index);
    void copy(bool asList, const QList<QUuid> &ids);
    void escape();

    Store &m_store;
    PanelState &m_state;
    Hooks m_hooks;
};

} // namespace Vesko
