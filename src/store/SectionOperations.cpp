// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user does to sections and projects, and the rules of the active
// section and of automatic sections: capture makes one per source, they are
// matched only among their own kind, and they go once they are empty.

#include "store/Store.h"

#include "library/TitleComparison.h"

namespace Vesko {

qsizetype Store::findOrCreateSection(Project &project, const QString &title, bool automatic)
{
    for (qsizetype i = 0; i < project.sections.size(); ++i) {
        const NoteSection &section = project.sections.at(i);
        if (section.isAutomatic == automatic && titlesEqual(section.title, title))
            return i;
    }
    NoteSection section;
    section.id = makeID();
    section.title = title;
    section.createdAt = currentDate();
    section.isAutomatic = automatic;
    project.sections.append(section);
    return project.sections.size() - 1;
}

std::optional<NoteSection> Store::createOrUseSection(const QString &title)
{
    const QString cleaned = title.trimmed();
    if (cleaned.isEmpty())
        return std::nullopt;

    const Project project = activeProject();
    for (const NoteSection &section : project.sections) {
        if (titlesEqual(section.title, cleaned)) {
            activateSection(section.id);
            return section;
        }
    }

    const qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0)
        return std::nullopt;
    recordUndo();
    NoteSection section;
    section.id = makeID();
    section.title = cleaned;
    section.createdAt = currentDate();
    Project &target = m_library.projects[activeIndex];
    target.sections.append(section);
    target.activeSectionID = section.id;
    setSelection({}, std::nullopt);
    commit();
    return section;
}

void Store::activateSection(const QUuid &id)
{
    const qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0)
        return;
    const Project &project = m_library.projects.at(activeIndex);
    const qsizetype index = sectionIndex(project, id);
    if (index < 0 || project.activeSectionID == id)
        return;

    recordUndo();
    Project &target = m_library.projects[activeIndex];
    target.activeSectionID = id;
    target.sections[index].isCollapsed = false;
    setSelection({}, std::nullopt);
    clearSearchText();
    commit();
}

void Store::jumpToSection(int number)
{
    const Project *project = Vesko::activeProject(m_library);
    if (!project || number < 1 || number > project->sections.size())
        return;
    activateSection(project->sections.at(number - 1).id);
}

void Store::renameSection(const QUuid &id, const QString &title)
{
    const QString cleaned = title.trimmed();
    if (cleaned.isEmpty() || !section(id))
        return;
    recordUndo();
    findSection(id)->title = cleaned;
    commit();
}

void Store::renameProject(const QUuid &id, const QString &name)
{
    const QString cleaned = name.trimmed();
    const qsizetype index = projectIndex(m_library, id);
    if (cleaned.isEmpty() || index < 0)
        return;
    recordUndo();
    m_library.projects[index].name = cleaned;
    commit();
}

void Store::moveSection(const QUuid &id, int by)
{
    const qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0)
        return;
    const Project &project = m_library.projects.at(activeIndex);
    const qsizetype from = sectionIndex(project, id);
    const qsizetype to = from + by;
    if (from < 0 || to < 0 || to >= project.sections.size())
        return;
    recordUndo();
    m_library.projects[activeIndex].sections.swapItemsAt(from, to);
    commit();
}

void Store::moveSection(const QUuid &id, const std::optional<QUuid> &before)
{
    const qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0)
        return;
    const Project &project = m_library.projects.at(activeIndex);
    const qsizetype from = sectionIndex(project, id);
    if (from < 0)
        return;
    qsizetype destination = before ? sectionIndex(project, *before) : -1;
    if (destination < 0)
        destination = project.sections.size();
    const qsizetype to = from < destination ? destination - 1 : destination;
    if (to == from)
        return;

    recordUndo();
    QList<NoteSection> &target = m_library.projects[activeIndex].sections;
    const NoteSection moving = target.takeAt(from);
    target.insert(std::clamp<qsizetype>(to, 0, target.size()), moving);
    commit();
}

void Store::toggleSectionCollapsed(const QUuid &id)
{
    if (NoteSection *target = section(id) ? findSection(id) : nullptr)
        target->isCollapsed = !target->isCollapsed;
}

void Store::expandSection(const QUuid &id)
{
    const std::optional<NoteSection> existing = section(id);
    if (existing && existing->isCollapsed)
        findSection(id)->isCollapsed = false;
}

void Store::collapseAllSections()
{
    const qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0)
        return;
    for (NoteSection &section : m_library.projects[activeIndex].sections)
        section.isCollapsed = true;
}

void Store::expandAllSections()
{
    const qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0)
        return;
    for (NoteSection &section : m_library.projects[activeIndex].sections)
        section.isCollapsed = false;
}

void Store::deleteSection(const QUuid &id)
{
    const std::optional<NoteSection> existing = section(id);
    if (!existing)
        return;
    QList<NoteAttachment> attachments;
    QSet<QUuid> noteIDs;
    for (const Note &note : existing->notes) {
        noteIDs.insert(note.id);
        attachments.append(note.attachments);
    }

    recordUndo();
    for (Project &project : m_library.projects) {
        if (sectionIndex(std::as_const(project), id) < 0)
            continue;
        project.sections.removeIf([&](const NoteSection &section) { return section.id == id; });
        if (project.activeSectionID == id) {
            const qsizetype inbox = inboxSectionIndex(project);
            if (inbox >= 0)
                project.activeSectionID = project.sections.at(inbox).id;
            else if (!project.sections.isEmpty())
                project.activeSectionID = project.sections.first().id;
            else
                project.activeSectionID.reset();
        }
    }
    forgetNotes(noteIDs);
    purgeAttachmentFiles(attachments);
    commit();
}

void Store::pruneEmptyAutomaticSections()
{
    auto isEmptyAutomatic
        = [](const NoteSection &section) { return section.isAutomatic && section.notes.isEmpty(); };
    for (qsizetype p = 0; p < m_library.projects.size(); ++p) {
        const QList<NoteSection> &sections = m_library.projects.at(p).sections;
        if (std::any_of(sections.cbegin(), sections.cend(), isEmptyAutomatic))
            m_library.projects[p].sections.removeIf(isEmptyAutomatic);
    }
}

std::optional<Project> Store::createProject(const QString &name)
{
    const QString cleaned = name.trimmed();
    if (cleaned.isEmpty())
        return std::nullopt;
    recordUndo();
    const NoteSection inbox = makeInboxSection();
    Project project;
    project.id = makeID();
    project.name = cleaned;
    project.sections = {inbox};
    project.createdAt = currentDate();
    project.activeSectionID = inbox.id;
    m_library.projects.append(project);
    m_library.activeProjectID = project.id;
    commit();
    return project;
}

void Store::deleteProject(const QUuid &id)
{
    const qsizetype index = projectIndex(m_library, id);
    if (index < 0)
        return;
    QList<NoteAttachment> attachments;
    QSet<QUuid> noteIDs;
    for (const NoteSection &section : m_library.projects.at(index).sections) {
        for (const Note &note : section.notes) {
            noteIDs.insert(note.id);
            attachments.append(note.attachments);
        }
    }

    recordUndo();
    m_library.projects.removeAt(index);
    if (m_library.activeProjectID == id) {
        m_library.activeProjectID = m_library.projects.isEmpty()
            ? std::nullopt
            : std::optional(m_library.projects.first().id);
    }
    forgetNotes(noteIDs);
    purgeAttachmentFiles(attachments);
    clearSearchText();
    commit();
}

void Store::switchProject(const QUuid &id)
{
    if (m_library.activeProjectID == id)
        return;
    m_library.activeProjectID = id;
    const qsizetype index = projectIndex(m_library, id);
    if (index >= 0) {
        Project &project = m_library.projects[index];
        if (!project.activeSectionID && !project.sections.isEmpty())
            project.activeSectionID = project.sections.first().id;
    }
    setSelection({}, std::nullopt);
    clearSearchText();
    commit();
}

} // namespace Vesko
