// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/MenuBarDashboard.h"

#include "store/NoteTitle.h"
#include "store/Store.h"

#include <QCoreApplication>

namespace Vesko {

MenuBarDashboard menuBarDashboard(const Store &store)
{
    MenuBarDashboard dashboard;
    const Project project = store.activeProject();
    dashboard.projectName = project.name;
    for (const NoteSection &section : project.sections) {
        for (const Note &note : section.notes) {
            if (note.isDone)
                continue;
            ++dashboard.openNoteCount;
            if (dashboard.notes.size() < MenuBarDashboard::noteLimit)
                dashboard.notes.append({note.id, dashboardNoteTitle(note.text)});
        }
    }

    const NoteSection active = store.activeSection();
    dashboard.activeSectionTitle = active.title;
    for (const NoteSection &section : project.sections)
        dashboard.sections.append({section.id, section.title, section.id == active.id});

    const QList<Project> &projects = store.library().projects;
    if (projects.size() >= 2) {
        for (const Project &other : projects)
            dashboard.projects.append({other.id, other.name, other.id == project.id});
    }
    return dashboard;
}

qsizetype openNoteCount(const Store &store)
{
    qsizetype count = 0;
    for (const NoteSection &section : store.activeProject().sections) {
        for (const Note &note : section.notes)
            count += note.isDone ? 0 : 1;
    }
    return count;
}

QString menuBarToolTip(const QString &projectName, qsizetype openNotes, const QString &saveFailure)
{
    QString tip;
    if (openNotes == 0)
        tip = QCoreApplication::translate("MenuBar", "Vesko: no open notes in %1").arg(projectName);
    else if (openNotes == 1)
        tip = QCoreApplication::translate("MenuBar", "Vesko: 1 open note in %1").arg(projectName);
    else
        tip = QCoreApplication::translate(
            "MenuBar", "Vesko: %n open notes in %1", nullptr, int(openNotes))
                  .arg(projectName);
    if (!saveFailure.isEmpty())
        tip += u'\n' + QCoreApplication::translate("TrayIcon", "Not saved: %1").arg(saveFailure);
    return tip;
}

} // namespace Vesko
