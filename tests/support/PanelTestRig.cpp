// SPDX-License-Identifier: GPL-3.0-or-later

#include "PanelTestRig.h"

namespace Vesko::Test {

QList<QUuid> idsFor(const QString &names)
{
    QList<QUuid> ids;
    for (const QString &name : names.split(u',', Qt::SkipEmptyParts))
        ids.append(idFor(name.trimmed()));
    return ids;
}

Project projectFrom(const QString &description)
{
    // The fixture's project, its sections known by their titles alone.
    Project project = describedProject(description);
    for (NoteSection &section : project.sections) {
        if (project.activeSectionID == section.id)
            project.activeSectionID = idFor(section.title);
        section.id = idFor(section.title);
    }
    if (!project.activeSectionID && !project.sections.isEmpty())
        project.activeSectionID = project.sections.first().id;
    return project;
}

QString describeProject(const Project &project)
{
    QStringList parts;
    for (const NoteSection &section : project.sections) {
        QStringList notes;
        for (const Note &note : section.notes)
            notes.append(note.isDone ? note.text.toUpper() : note.text);
        parts.append((project.activeSectionID == section.id ? QStringLiteral("*") : QString())
            + section.title + (section.isCollapsed ? QStringLiteral("+") : QString()) + u':'
            + notes.join(u','));
    }
    return parts.join(u'|');
}

QString nameOf(const std::optional<QUuid> &id)
{
    if (!id)
        return {};
    // Notes are named by letters, sections by titles of a letter and a digit.
    for (char first = 'a'; first <= 'z'; ++first) {
        const QString letter(QLatin1Char {first});
        if (idFor(letter) == *id)
            return letter;
        for (char digit = '1'; digit <= '9'; ++digit) {
            const QString title
                = QString(QLatin1Char(char(first - 'a' + 'A'))) + QLatin1Char(digit);
            if (idFor(title) == *id)
                return title;
        }
    }
    return QStringLiteral("?");
}

QString namesOf(const QList<QUuid> &ids)
{
    QStringList names;
    for (const QUuid &id : ids)
        names.append(nameOf(id));
    names.sort();
    return names.join(u',');
}

QStringList sectionTitles(const Store &store)
{
    QStringList titles;
    for (const NoteSection &section : store.activeProject().sections)
        titles.append(section.title);
    return titles;
}

QStringList notesOfSection(const Store &store, const QString &title)
{
    QStringList notes;
    for (const NoteSection &section : store.activeProject().sections) {
        if (section.title == title) {
            for (const Note &note : section.notes)
                notes.append(note.isDone ? note.text.toUpper() : note.text);
        }
    }
    return notes;
}

PanelTestRig::PanelTestRig(const QString &description)
    : PanelTestRig([&] {
        Library library;
        library.projects = {projectFrom(description)};
        library.activeProjectID = library.projects.first().id;
        return library;
    }())
{ }

PanelTestRig::PanelTestRig(const Library &library)
{
    m_fixture.make(library);
}

} // namespace Vesko::Test
