// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/AppCommands.h"

#include "panel/window/PanelCommands.h"
#include "panel/window/PanelState.h"
#include "panel/window/Shortcut.h"
#include "panel/window/TextEditing.h"
#include "store/Store.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextEdit>

namespace Vesko {

namespace {

//! The focused text field, if any: a line or text editor.
QWidget *focusedTextField()
{
    QWidget *focus = QApplication::focusWidget();
    return isTextEditor(focus) ? focus : nullptr;
}

} // namespace

AppCommands::AppCommands(Store &store, PanelState &state, MenuBarCommands commands, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_state(state)
    , m_commands(std::move(commands))
{
    build();
}

AppCommands::~AppCommands()
{
    qDeleteAll(m_menus);
}

QAction *AppCommands::add(
    QMenu *menu, const QString &text, std::function<void()> run, const QKeySequence &keys)
{
    QAction *action = menu->addAction(text);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, [run = std::move(run)] { run(); });
    return action;
}

void AppCommands::build()
{
    using Shortcuts::keySequence;
    const auto menu = [this](const QString &title) {
        auto *created = new QMenu(title);
        m_menus.append(created);
        return created;
    };

    QMenu *application = menu(tr("Vesko"));
    add(
        application, tr("Settings"), [] { PanelCommands::shared().openSettings(); },
        keySequence(Shortcut::settings));
    application->addSeparator();
    add(
        application, tr("Keyboard Shortcuts…"),
        [this] {
            bringForward();
            m_state.setShowing(PanelLayer::Shortcuts, true);
        },
        keySequence(Shortcut::showShortcuts));
    application->addSeparator();
    add(application, tr("Quit Vesko"), [this] {
        if (m_commands.quit)
            m_commands.quit();
    });

    QMenu *file = menu(tr("File"));
    add(
        file, tr("New Note"),
        [this] {
            if (m_commands.showPanel)
                m_commands.showPanel(true);
        },
        keySequence(Shortcut::newNote));
    const auto layerEntry = [this, file](const QString &text, PanelLayer layer, Shortcut key) {
        add(
            file, text,
            [this, layer] {
                bringForward();
                m_state.setShowing(layer, true);
            },
            keySequence(key));
    };
    layerEntry(tr("New Section…"), PanelLayer::NewSection, Shortcut::newSection);
    layerEntry(tr("Switch Section…"), PanelLayer::SectionSwitcher, Shortcut::switchSection);
    layerEntry(tr("New Project…"), PanelLayer::NewProject, Shortcut::newProject);
    layerEntry(tr("Switch Project…"), PanelLayer::ProjectSwitcher, Shortcut::switchProject);
    file->addSeparator();
    add(file, tr("Capture Selection"), [this] {
        if (m_commands.captureSelection)
            m_commands.captureSelection();
    });
    m_toggle = add(
        file, tr("Show Vesko"),
        [this] {
            // A panel on screen behind another window comes forward rather than going.
            if (m_commands.togglePanel)
                m_commands.togglePanel();
        },
        keySequence(Shortcut::hidePanel));
    connect(file, &QMenu::aboutToShow, this, [this] {
        const bool shown = m_commands.isPanelShown && m_commands.isPanelShown();
        m_toggle->setText(shown ? tr("Hide Vesko") : tr("Show Vesko"));
    });

    QMenu *edit = menu(tr("Edit"));
    const auto undoEntry = [this, edit](bool redo) {
        add(
            edit, redo ? tr("Redo") : tr("Undo"),
            [this, redo] {
                QWidget *field = focusedTextField();
                if (field && canUndoTyping(field, redo))
                    QMetaObject::invokeMethod(field, redo ? "redo" : "undo");
                else if (redo)
                    m_store.redo();
                else
                    m_store.undo();
            },
            keySequence(redo ? Shortcut::redo : Shortcut::undo));
    };
    undoEntry(false);
    undoEntry(true);

    QMenu *notes = menu(tr("Notes"));
    add(
        notes, tr("Copy"),
        [this] {
            if (QWidget *field = focusedTextField())
                QMetaObject::invokeMethod(field, "copy");
            else
                m_store.copyNotes(selectedNotes(), PanelCommands::shared().clipboard());
        },
        keySequence(Shortcut::copy));
    add(
        notes, tr("Copy as List"),
        [this] { m_store.copyAsList(selectedNotes(), PanelCommands::shared().clipboard()); },
        keySequence(Shortcut::copyAsList));
    notes->addSeparator();
    add(notes, tr("Mark as Done"), [this] { m_store.toggleDone(selectedNotes()); });
    add(
        notes, tr("Merge Notes"), [this] { m_store.mergeNotes(selectedNotes()); },
        keySequence(Shortcut::mergeNotes));
    add(
        notes, tr("Edit in New Window"),
        [this] {
            for (const QUuid &id : selectedNotes())
                PanelCommands::shared().openNoteWindow(id);
        },
        keySequence(Shortcut::openInNewWindow));
    notes->addSeparator();
    add(
        notes, tr("Find"),
        [this] {
            bringForward();
            m_state.requestFocus(PanelFocusTarget::Search);
        },
        keySequence(Shortcut::focusSearch));
    add(
        notes, tr("Select All"),
        [this] {
            if (QWidget *field = focusedTextField())
                QMetaObject::invokeMethod(field, "selectAll");
            else
                m_store.selectAll();
        },
        keySequence(Shortcut::selectAll));
    notes->addSeparator();
    add(
        notes, tr("Delete"),
        [this] {
            const QSet<QUuid> selection = m_store.selection();
            if (!selection.isEmpty())
                m_store.deleteNotes(selection);
        },
        keySequence(Shortcut::deleteNotes));
    add(notes, tr("Clear Completed"), [this] { m_store.clearCompleted(); });

    QMenu *sections = menu(tr("Sections"));
    add(
        sections, tr("Previous Section"), [this] { stepSection(-1); },
        keySequence(Shortcut::previousSection));
    add(
        sections, tr("Next Section"), [this] { stepSection(1); },
        keySequence(Shortcut::nextSection));
    sections->addSeparator();
    add(
        sections, tr("Collapse or Expand Active Section"),
        [this] {
            bringForward();
            if (const std::optional<QUuid> active = m_store.activeProject().activeSectionID) {
                m_store.toggleSectionCollapsed(*active);
                m_store.commit();
            }
        },
        keySequence(Shortcut::toggleSectionCollapsed));
    add(
        sections, tr("Expand or Collapse Note"),
        [this] {
            bringForward();
            for (const QUuid &id : selectedNotes())
                m_store.toggleExpanded(id);
        },
        keySequence(Shortcut::toggleExpanded));
    sections->addSeparator();
    for (int number = 1; number <= 9; ++number) {
        const Shortcut jump = Shortcut(int(Shortcut::jumpToSection1) + number - 1);
        add(
            sections, Shortcuts::title(jump), [this, number] { jumpToSection(number); },
            keySequence(jump));
    }
}

QList<QAction *> AppCommands::actions() const
{
    QList<QAction *> all;
    for (const QMenu *menu : m_menus) {
        for (QAction *action : menu->actions()) {
            if (!action->isSeparator())
                all.append(action);
        }
    }
    return all;
}

QAction *AppCommands::action(const QString &text) const
{
    for (QAction *each : actions()) {
        if (each->text() == text)
            return each;
    }
    return nullptr;
}

void AppCommands::attachTo(QWidget *window) const
{
    QList<QKeySequence> taken;
    for (const QAbstractButton *button : window->findChildren<QAbstractButton *>()) {
        if (!button->shortcut().isEmpty())
            taken.append(button->shortcut());
    }
    for (const QAction *action : window->findChildren<QAction *>()) {
        if (!action->shortcut().isEmpty())
            taken.append(action->shortcut());
    }
    for (QAction *action : actions()) {
        if (action->shortcut().isEmpty() || taken.contains(action->shortcut()))
            continue;
        window->addAction(action);
    }
}

QList<QUuid> AppCommands::selectedNotes() const
{
    const QSet<QUuid> selection = m_store.selection();
    QList<QUuid> ids;
    for (const Note &note : m_store.visibleNotes()) {
        if (selection.isEmpty() || selection.contains(note.id))
            ids.append(note.id);
    }
    return ids;
}

void AppCommands::bringForward()
{
    if (m_commands.showPanel)
        m_commands.showPanel(false);
}

void AppCommands::stepSection(int delta)
{
    const QList<NoteSection> sections = m_store.activeProject().sections;
    const qsizetype count = sections.size();
    if (count == 0)
        return;
    qsizetype index = 0;
    for (qsizetype i = 0; i < count; ++i) {
        if (sections.at(i).id == m_store.activeProject().activeSectionID)
            index = i;
    }
    jumpToSection(int((index + delta + count) % count) + 1);
}

void AppCommands::jumpToSection(int number)
{
    const QList<NoteSection> sections = m_store.activeProject().sections;
    if (number < 1 || number > sections.size())
        return;
    const QUuid id = sections.at(number - 1).id;
    bringForward();
    m_store.activateSection(id);
    m_state.setSectionJumpRequest(id);
}

} // namespace Vesko
