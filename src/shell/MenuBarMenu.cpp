// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/MenuBarMenu.h"

#include "panel/window/PanelCommands.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/PanelState.h"
#include "shell/MenuBarDashboard.h"
#include "store/Store.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>

namespace Vesko {

namespace {

// The texts of this file, in the translation context "MenuBar".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(MenuBar)
};

void call(const std::function<void()> &command)
{
    if (command)
        command();
}

QAction *addEntry(
    QMenu &menu, const QString &title, std::function<void()> run, const QKeySequence &keys = {})
{
    QAction *action = menu.addAction(title);
    if (!keys.isEmpty()) {
        // Shown in the desktop's convention; the panel's own key handling acts on it.
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setShortcutVisibleInContextMenu(true);
    }
    QObject::connect(action, &QAction::triggered, action, [run = std::move(run)] { run(); });
    return action;
}

//! Checkable entries of \a choices, one of them checked, in a group.
void addChoices(QMenu &menu, const QList<MenuBarChoice> &choices,
    const std::function<void(const QUuid &)> &choose)
{
    auto *group = new QActionGroup(&menu);
    for (const MenuBarChoice &choice : choices) {
        QAction *entry
            = addEntry(menu, menuEntryText(choice.title), [choose, id = choice.id] { choose(id); });
        entry->setCheckable(true);
        entry->setChecked(choice.isActive);
        entry->setActionGroup(group);
    }
}

} // namespace

void rebuildMenuBarMenu(
    QMenu &menu, Store &store, PanelState &state, const MenuBarCommands &commands)
{
    // The submenus and groups of the last opening are the menu's children;
    // clear() alone would leave them behind.
    menu.clear();
    qDeleteAll(menu.findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly));
    qDeleteAll(menu.findChildren<QActionGroup *>(QString(), Qt::FindDirectChildrenOnly));

    const MenuBarDashboard dashboard = menuBarDashboard(store);
    auto bringForward = [commands] {
        if (commands.showPanel)
            commands.showPanel(false);
    };

    const bool shown = commands.isPanelShown && commands.isPanelShown();
    if (shown) {
        addEntry(menu, Texts::tr("Hide Vesko"), [commands] { call(commands.hidePanel); });
    } else {
        addEntry(menu, Texts::tr("Show Vesko"), [commands] {
            if (commands.showPanel)
                commands.showPanel(true);
        });
    }
    addEntry(menu, Texts::tr("Capture Selection"), [commands] { call(commands.captureSelection); });
    addEntry(menu, Texts::tr("Add a Note"), [commands] {
        if (commands.showPanel)
            commands.showPanel(true);
    });
    menu.addSeparator();

    if (dashboard.notes.isEmpty()) {
        QAction *none
            = menu.addAction(Texts::tr("No notes in %1").arg(menuEntryText(dashboard.projectName)));
        none->setEnabled(false);
    } else {
        for (const MenuBarNote &note : dashboard.notes) {
            // A box to tick: the dashboard lists open notes only, and
            // choosing one marks it done.
            QAction *entry = addEntry(menu, menuEntryText(note.title),
                [&store, id = note.id] { store.setDone({id}, true); });
            entry->setCheckable(true);
        }
        addEntry(menu, Texts::tr("Copy All as List"), [&store] {
            QList<QUuid> ids;
            for (const Note &note : store.visibleNotes())
                ids.append(note.id);
            store.copyAsList(ids, PanelCommands::shared().clipboard());
        });
    }
    menu.addSeparator();

    QMenu *sections
        = menu.addMenu(Texts::tr("Section: %1").arg(menuEntryText(dashboard.activeSectionTitle)));
    addChoices(*sections, dashboard.sections, [&store, bringForward](const QUuid &id) {
        bringForward();
        store.activateSection(id);
    });
    sections->addSeparator();
    addEntry(*sections, Texts::tr("Switch Section…"), [&state, bringForward] {
        bringForward();
        state.setShowing(PanelLayer::SectionSwitcher, true);
    });

    if (!dashboard.projects.isEmpty()) {
        QMenu *projects = menu.addMenu(Texts::tr("Project"));
        addChoices(*projects, dashboard.projects, [&store, bringForward](const QUuid &id) {
            bringForward();
            store.switchProject(id);
        });
        projects->addSeparator();
        addEntry(*projects, Texts::tr("Switch Project…"), [&state, bringForward] {
            bringForward();
            state.setShowing(PanelLayer::ProjectSwitcher, true);
        });
    }
    menu.addSeparator();

    addEntry(
        menu, Texts::tr("Settings"), [commands] { call(commands.openSettings); },
        QKeySequence(Qt::CTRL | Qt::Key_Comma));
    addEntry(
        menu, Texts::tr("Quit Vesko"), [commands] { call(commands.quit); },
        QKeySequence(Qt::CTRL | Qt::Key_Q));
}

} // namespace Vesko
