// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's commands as actions, in the five groups of a main menu
// (application, file, edit, notes, sections), each with its key from the
// Shortcut table. Linux has no global menu bar, so the actions go where the
// keyboard is: the note windows take them (the panel decides its own keys in
// its key handler). A focused text field keeps Copy, Select All, Undo and
// Redo for its own text.

#pragma once

#include "shell/MenuBarMenu.h"

#include <QKeySequence>
#include <QObject>
#include <QUuid>

class QAction;
class QMenu;
class QWidget;

namespace Vesko {

class PanelState;
class Store;

class AppCommands : public QObject
{
    Q_OBJECT

public:
    AppCommands(
        Store &store, PanelState &state, MenuBarCommands commands, QObject *parent = nullptr);
    ~AppCommands() override;

    //! The five groups, in order: "Vesko", "File", "Edit", "Notes", "Sections".
    QList<QMenu *> menus() const { return m_menus; }
    //! Every action with a key, in menu order.
    QList<QAction *> actions() const;
    //! The action titled \a text (for tests and the tray), or null.
    QAction *action(const QString &text) const;

    //! Makes the actions' keys work in \a window. A key the window already
    //! uses for a control of its own stays with that control.
    void attachTo(QWidget *window) const;

    //! The notes a command acts on: the selection, else every visible note,
    //! in the rows' order.
    QList<QUuid> selectedNotes() const;

private:
    void build();
    QAction *add(
        QMenu *menu, const QString &text, std::function<void()> run, const QKeySequence &keys = {});
    void bringForward();
    void stepSection(int delta);
    void jumpToSection(int number);

    Store &m_store;
    PanelState &m_state;
    MenuBarCommands m_commands;
    QList<QMenu *> m_menus;
    QAction *m_toggle = nullptr;
};

} // namespace Vesko
