// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelMenus.h"

#include "panel/window/PanelCommands.h"
#include "panel/window/PanelKeyHandler.h"
#include "panel/window/PanelState.h"
#include "panel/window/Shortcut.h"
#include "shell/Preferences.h"
#include "store/NoteText.h"
#include "store/Store.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QTimer>

namespace Vesko {

namespace {

// The texts of this file, in the translation context "PanelMenus".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(PanelMenus)
};

//! Plain keys (Space, letters) stay with the open menu, which moves and
//! chooses with them; only combinations with a modifier reach the entries.
class MenuKeyGuard : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ShortcutOverride) {
            auto *key = static_cast<QKeyEvent *>(event);
            const Qt::KeyboardModifiers command
                = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
            if (!(key->modifiers() & command)) {
                key->accept();
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

void guardKeys(QMenu &menu)
{
    static const char guarded[] = "veskoKeysGuarded";
    if (menu.property(guarded).toBool())
        return;
    menu.setProperty(guarded, true);
    menu.installEventFilter(new MenuKeyGuard(&menu));
}

QAction *addEntry(QMenu &menu, const QString &title, std::function<void()> run,
    const QKeySequence &keys = {}, bool enabled = true)
{
    QAction *action = menu.addAction(title);
    if (!keys.isEmpty()) {
        // The key is shown in the desktop's convention; while the menu is
        // open it chooses the entry, elsewhere the panel's key handling owns it.
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setShortcutVisibleInContextMenu(true);
    }
    action->setEnabled(enabled);
    QObject::connect(action, &QAction::triggered, action, [run = std::move(run)] { run(); });
    return action;
}

void markDestructive(QAction *action)
{
    action->setIcon(QIcon::fromTheme(QStringLiteral("edit-delete")));
}

QList<Note> notesOf(const Store &store, const QList<QUuid> &ids)
{
    QList<Note> notes;
    for (const QUuid &id : ids) {
        if (std::optional<Note> note = store.note(id))
            notes.append(*note);
    }
    return notes;
}

QList<QUuid> noteIDs(const QList<Note> &notes)
{
    QList<QUuid> ids;
    ids.reserve(notes.size());
    for (const Note &note : notes)
        ids.append(note.id);
    return ids;
}

void fillAttachmentsMenu(QMenu &menu, Store &store, const Note &note)
{
    for (const NoteAttachment &attachment : note.attachments) {
        QMenu *entry = menu.addMenu(attachment.fileName);
        addEntry(*entry, Texts::tr("Open"),
            [attachment] { PanelCommands::shared().openAttachment(attachment); });
        addEntry(*entry, Texts::tr("Show in Files"),
            [attachment] { PanelCommands::shared().revealAttachment(attachment); });
        entry->addSeparator();
        QAction *remove
            = addEntry(*entry, Texts::tr("Remove"), [&store, attachment, noteID = note.id] {
                  store.removeAttachment(attachment.id, noteID);
              });
        markDestructive(remove);
    }
}

} // namespace

QList<QUuid> noteMenuTarget(const Store &store, const QUuid &noteID)
{
    const QSet<QUuid> selection = store.selection();
    if (!selection.contains(noteID) || selection.size() < 2)
        return {noteID};
    // The selected notes in the order the panel shows them, then any others.
    QList<QUuid> target;
    target.reserve(selection.size());
    for (const Note &note : store.visibleNotes()) {
        if (selection.contains(note.id))
            target.append(note.id);
    }
    if (target.size() < selection.size()) {
        QList<QUuid> rest;
        for (const QUuid &id : selection) {
            if (!target.contains(id))
                rest.append(id);
        }
        std::sort(rest.begin(), rest.end());
        target.append(rest);
    }
    return target;
}

void fillNoteMenu(QMenu &menu, Store &store, PanelState &state, const QList<QUuid> &target)
{
    guardKeys(menu);
    const QList<QUuid> ids = target;
    const QList<Note> notes = notesOf(store, ids);
    const std::optional<Note> single
        = notes.size() == 1 ? std::optional(notes.first()) : std::nullopt;

    addEntry(
        menu, Texts::tr("Copy"),
        [&store, ids] { store.copyNotes(ids, PanelCommands::shared().clipboard()); },
        Shortcuts::keySequence(Shortcut::copy));
    addEntry(
        menu, Texts::tr("Copy as List"),
        [&store, ids] { store.copyAsList(ids, PanelCommands::shared().clipboard()); },
        Shortcuts::keySequence(Shortcut::copyAsList));
    menu.addSeparator();

    const bool allDone = !notes.isEmpty()
        && std::all_of(notes.begin(), notes.end(), [](const Note &note) { return note.isDone; });
    addEntry(
        menu, allDone ? Texts::tr("Mark as Not Done") : Texts::tr("Mark as Done"),
        [&store, ids] { store.toggleDone(ids); }, Shortcuts::keySequence(Shortcut::toggleDone));

    const QSet<QUuid> expanded = store.expandedNoteIDs();
    const bool anyExpanded = std::any_of(
        ids.begin(), ids.end(), [&](const QUuid &id) { return expanded.contains(id); });
    const bool anyLong = std::any_of(
        notes.begin(), notes.end(), [](const Note &note) { return isLongNoteText(note.text); });
    addEntry(
        menu, anyExpanded ? Texts::tr("Collapse") : Texts::tr("Expand"),
        [&store, ids = noteIDs(notes)] {
            for (const QUuid &id : ids)
                store.toggleExpanded(id);
        },
        {}, anyLong);
    menu.addSeparator();

    const QUuid singleID = single ? single->id : QUuid();
    addEntry(
        menu, Texts::tr("Edit"),
        [&store, singleID] {
            store.setSelection({singleID}, singleID);
            // The row starts its editor once the menu has gone.
            QTimer::singleShot(0, &store, [&store, singleID] { store.setEditingNoteID(singleID); });
        },
        Shortcuts::keySequence(Shortcut::editNote), bool(single));
    addEntry(
        menu, Texts::tr("Edit in New Window"),
        [singleID] { PanelCommands::shared().openNoteWindow(singleID); },
        Shortcuts::keySequence(Shortcut::openInNewWindow), bool(single));
    addEntry(
        menu, Texts::tr("Merge Notes"), [&store, ids] { store.mergeNotes(ids); },
        Shortcuts::keySequence(Shortcut::mergeNotes), notes.size() >= 2);
    addEntry(
        menu, Texts::tr("Split into Notes"), [&store, singleID] { store.splitNote(singleID); }, {},
        single && single->text.contains(u'\n'));
    menu.addSeparator();

    addEntry(
        menu, Texts::tr("Add Attachment…"),
        [singleID] { PanelCommands::shared().addAttachments(singleID); }, {}, bool(single));
    addEntry(
        menu, Texts::tr("Paste Image or File"),
        [singleID] { PanelCommands::shared().pasteAttachments(singleID); }, {}, bool(single));
    if (single && !single->attachments.isEmpty())
        fillAttachmentsMenu(*menu.addMenu(Texts::tr("Attachments")), store, *single);
    fillMoveToMenu(*menu.addMenu(Texts::tr("Move to")), store, state, ids);
    menu.addSeparator();

    QAction *remove = addEntry(
        menu, Texts::tr("Delete"),
        [&store, ids] {
            if (!ids.isEmpty())
                store.deleteNotes(QSet<QUuid>(ids.begin(), ids.end()));
        },
        Shortcuts::keySequence(Shortcut::deleteNotes));
    markDestructive(remove);
}

void fillMoveToMenu(QMenu &menu, Store &store, PanelState &state, const QList<QUuid> &ids)
{
    guardKeys(menu);
    std::optional<QUuid> onlySection;
    if (ids.size() == 1) {
        if (const std::optional<NoteAddress> address = store.addressOfNote(ids.first()))
            onlySection = address->sectionID;
    }
    const Project project = store.activeProject();
    for (const NoteSection &section : project.sections) {
        addEntry(
            menu, menuEntryText(section.title),
            [&store, ids, id = section.id] { store.moveNotesToSection(ids, id); }, {},
            onlySection != section.id);
    }
    menu.addSeparator();
    addEntry(menu, Texts::tr("New Section…"), [&state, ids] {
        state.setPendingMoveIDs(ids);
        state.setShowing(PanelLayer::NewSection, true);
    });
    menu.addSeparator();
    QMenu *projects = menu.addMenu(Texts::tr("Project"));
    guardKeys(*projects);
    const QUuid activeID = project.id;
    for (const Project &other : store.library().projects) {
        addEntry(
            *projects, menuEntryText(other.name),
            [&store, ids, id = other.id] {
                store.moveNotesToProject(ids, id, QStringLiteral("Inbox"));
            },
            {}, other.id != activeID);
    }
}

void fillSectionMenu(QMenu &menu, Store &store, PanelState &state, const QUuid &sectionID)
{
    guardKeys(menu);
    const std::optional<NoteSection> section = store.section(sectionID);
    const bool isCollapsed = section && section->isCollapsed;
    const Project project = store.activeProject();
    qsizetype index = -1;
    for (qsizetype i = 0; i < project.sections.size(); ++i) {
        if (project.sections.at(i).id == sectionID)
            index = i;
    }
    const bool isFirst = index <= 0;
    const bool isLast = index < 0 || index == project.sections.size() - 1;

    addEntry(
        menu, Texts::tr("Use as Active Section"),
        [&store, sectionID] { store.activateSection(sectionID); }, {},
        store.activeSection().id != sectionID);
    menu.addSeparator();
    addEntry(menu, Texts::tr("Rename Section"),
        [&state, sectionID] { state.setRenamingSectionID(sectionID); });
    addEntry(menu, isCollapsed ? Texts::tr("Expand Section") : Texts::tr("Collapse Section"),
        [&store, sectionID] {
            store.toggleSectionCollapsed(sectionID);
            store.commit();
        });
    addEntry(menu, Texts::tr("Select All in Section"),
        [&store, sectionID] { store.selectAllInSection(sectionID); });
    addEntry(menu, Texts::tr("Copy Section as List"), [&store, sectionID] {
        QList<QUuid> ids;
        if (const std::optional<NoteSection> current = store.section(sectionID)) {
            for (const Note &note : current->notes)
                ids.append(note.id);
        }
        store.copyAsList(ids, PanelCommands::shared().clipboard());
    });
    menu.addSeparator();
    addEntry(
        menu, Texts::tr("Move Up"), [&store, sectionID] { store.moveSection(sectionID, -1); }, {},
        !isFirst);
    addEntry(
        menu, Texts::tr("Move Down"), [&store, sectionID] { store.moveSection(sectionID, +1); }, {},
        !isLast);
    const QUuid firstID = project.sections.isEmpty() ? QUuid() : project.sections.first().id;
    addEntry(
        menu, Texts::tr("Move to Top"),
        [&store, sectionID, firstID] { store.moveSection(sectionID, std::optional(firstID)); }, {},
        !isFirst);
    addEntry(
        menu, Texts::tr("Move to Bottom"),
        [&store, sectionID] { store.moveSection(sectionID, std::optional<QUuid>()); }, {}, !isLast);
    menu.addSeparator();
    addEntry(menu, Texts::tr("New Section…"),
        [&state] { state.setShowing(PanelLayer::NewSection, true); });
    QAction *remove = addEntry(
        menu, Texts::tr("Delete Section"), [&store, sectionID] { store.deleteSection(sectionID); },
        {}, project.sections.size() >= 2);
    markDestructive(remove);
}

void fillOverflowMenu(QMenu &menu, Store &store, PanelState &state, Preferences &preferences)
{
    guardKeys(menu);
    QPointer<QWidget> owner = menu.parentWidget() ? menu.parentWidget()->window() : nullptr;
    const Project active = store.activeProject();

    menu.addSection(Texts::tr("Project"));
    auto *projects = new QActionGroup(&menu);
    for (const Project &project : store.library().projects) {
        QAction *entry = addEntry(menu, menuEntryText(project.name),
            [&store, id = project.id] { store.switchProject(id); });
        entry->setCheckable(true);
        entry->setChecked(project.id == active.id);
        entry->setActionGroup(projects);
    }
    addEntry(
        menu, Texts::tr("New Project…"),
        [&state] { state.setShowing(PanelLayer::NewProject, true); },
        Shortcuts::keySequence(Shortcut::newProject));
    addEntry(menu, Texts::tr("Rename Project…"),
        [&state] { state.setShowing(PanelLayer::RenameProject, true); });
    QAction *deleteProject = addEntry(
        menu, Texts::tr("Delete Project"),
        [&store] { store.deleteProject(store.activeProject().id); }, {},
        store.library().projects.size() >= 2);
    markDestructive(deleteProject);

    menu.addSection(Texts::tr("Active Section"));
    auto *sections = new QActionGroup(&menu);
    const QUuid activeSectionID = store.activeSection().id;
    for (const NoteSection &section : active.sections) {
        QAction *entry = addEntry(menu, menuEntryText(section.title),
            [&store, id = section.id] { store.activateSection(id); });
        entry->setCheckable(true);
        entry->setChecked(section.id == activeSectionID);
        entry->setActionGroup(sections);
    }
    addEntry(
        menu, Texts::tr("Switch Section…"),
        [&state] { state.setShowing(PanelLayer::SectionSwitcher, true); },
        Shortcuts::keySequence(Shortcut::switchSection));

    menu.addSeparator();
    addEntry(
        menu, Texts::tr("New Section…"),
        [&state] { state.setShowing(PanelLayer::NewSection, true); },
        Shortcuts::keySequence(Shortcut::newSection));
    addEntry(menu, Texts::tr("Collapse All Sections"), [&store] {
        store.collapseAllSections();
        store.commit();
    });
    addEntry(menu, Texts::tr("Expand All Sections"), [&store] {
        store.expandAllSections();
        store.commit();
    });

    menu.addSection(Texts::tr("View"));
    struct Toggle
    {
        const char *title;
        bool value;
        void (Preferences::*set)(bool);
    };
    const Toggle toggles[] = {
        {QT_TRANSLATE_NOOP("PanelMenus", "Show Completed"), preferences.showCompleted(),
            &Preferences::setShowCompleted},
        {QT_TRANSLATE_NOOP("PanelMenus", "Completed at Bottom"), preferences.moveDoneToBottom(),
            &Preferences::setMoveDoneToBottom},
        {QT_TRANSLATE_NOOP("PanelMenus", "Newest First"), preferences.newestFirst(),
            &Preferences::setNewestFirst},
    };
    for (const Toggle &toggle : toggles) {
        QAction *entry = menu.addAction(Texts::tr(toggle.title));
        entry->setCheckable(true);
        entry->setChecked(toggle.value);
        QObject::connect(entry, &QAction::toggled, entry,
            [&preferences, set = toggle.set](bool on) { (preferences.*set)(on); });
    }

    menu.addSeparator();
    addEntry(menu, Texts::tr("Copy All as List"), [&store] {
        store.copyAsList(noteIDs(store.visibleNotes()), PanelCommands::shared().clipboard());
    });
    addEntry(menu, Texts::tr("Clear Completed"), [&store] { store.clearCompleted(); });
    addEntry(menu, Texts::tr("Export as Markdown…"), [&store, owner] {
        PanelCommands::shared().exportMarkdown(store.markdownExportText(), owner);
    });
    addEntry(menu, Texts::tr("Show Notes File in Files"),
        [] { PanelCommands::shared().revealLibraryFile(); });

    if (const auto &fillDashboard = PanelCommands::shared().hooks().fillDashboard) {
        // The tray's menu, here too: its entries stay within reach without a tray.
        QMenu *dashboard = menu.addMenu(Texts::tr("Dashboard"));
        fillDashboard(*dashboard);
        QObject::connect(dashboard, &QMenu::aboutToShow, dashboard,
            [dashboard, fillDashboard] { fillDashboard(*dashboard); });
    }
    if (const auto &commandMenus = PanelCommands::shared().hooks().commandMenus) {
        // Without a menu bar, the commands that have no key are reached here.
        QMenu *all = menu.addMenu(Texts::tr("All Commands"));
        for (QMenu *group : commandMenus())
            all->addMenu(group);
    }

    menu.addSeparator();
    addEntry(menu, Texts::tr("Reset Window Position"),
        [] { PanelCommands::shared().resetPanelPosition(); });
    addEntry(
        menu, Texts::tr("Reset Window Size"), [] { PanelCommands::shared().resetPanelSize(); });
    addEntry(
        menu, Texts::tr("Keyboard Shortcuts…"),
        [&state] { state.setShowing(PanelLayer::Shortcuts, true); },
        Shortcuts::keySequence(Shortcut::showShortcuts));
    addEntry(
        menu, Texts::tr("Settings…"), [] { PanelCommands::shared().openSettings(); },
        Shortcuts::keySequence(Shortcut::settings));
    addEntry(
        menu, Texts::tr("Quit Vesko"), [] { PanelCommands::shared().quit(); },
        QKeySequence(PanelKeyHandler::quitKey));
}

QString menuEntryText(const QString &words)
{
    QString shown = words;
    shown.replace(u'&', QStringLiteral("&&"));
    shown.replace(u'\t', u' ');
    return shown;
}

} // namespace Vesko
