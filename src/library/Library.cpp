// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/Library.h"

#include "library/TitleComparison.h"

namespace Vesko {

QString kindRawValue(NoteAttachment::Kind kind)
{
    switch (kind) {
    case NoteAttachment::Kind::Image:
        return QStringLiteral("image");
    case NoteAttachment::Kind::File:
        break;
    }
    return QStringLiteral("file");
}

std::optional<NoteAttachment::Kind> kindFromRawValue(QStringView raw)
{
    if (raw == u"image")
        return NoteAttachment::Kind::Image;
    if (raw == u"file")
        return NoteAttachment::Kind::File;
    return std::nullopt;
}

qsizetype activeProjectIndex(const Library &library)
{
    if (library.projects.isEmpty())
        return -1;
    if (library.activeProjectID) {
        for (qsizetype i = 0; i < library.projects.size(); ++i) {
            if (library.projects.at(i).id == *library.activeProjectID)
                return i;
        }
    }
    return 0;
}

const Project *activeProject(const Library &library)
{
    const qsizetype index = activeProjectIndex(library);
    return index < 0 ? nullptr : &library.projects.at(index);
}

qsizetype sectionIndex(const Project &project, const QUuid &id)
{
    for (qsizetype i = 0; i < project.sections.size(); ++i) {
        if (project.sections.at(i).id == id)
            return i;
    }
    return -1;
}

qsizetype projectIndex(const Library &library, const QUuid &id)
{
    for (qsizetype i = 0; i < library.projects.size(); ++i) {
        if (library.projects.at(i).id == id)
            return i;
    }
    return -1;
}

qsizetype inboxSectionIndex(const Project &project)
{
    for (qsizetype i = 0; i < project.sections.size(); ++i) {
        if (titlesEqual(project.sections.at(i).title, QStringLiteral("Inbox")))
            return i;
    }
    return -1;
}

qsizetype noteCount(const Library &library)
{
    qsizetype count = 0;
    for (const Project &project : library.projects) {
        for (const NoteSection &section : project.sections)
            count += section.notes.size();
    }
    return count;
}

QDateTime currentDate()
{
    return QDateTime::currentDateTimeUtc();
}

QUuid makeID()
{
    return QUuid::createUuid();
}

NoteSection makeInboxSection()
{
    NoteSection section;
    section.id = makeID();
    section.title = QStringLiteral("Inbox");
    section.createdAt = currentDate();
    return section;
}

Library makeDefaultLibrary()
{
    const NoteSection inbox = makeInboxSection();

    Project project;
    project.id = makeID();
    project.name = QStringLiteral("Notes");
    project.sections = {inbox};
    project.createdAt = currentDate();
    project.activeSectionID = inbox.id;

    Library library;
    library.version = libraryFormatVersion;
    library.projects = {project};
    library.activeProjectID = project.id;
    return library;
}

QString sourceSectionTitle(const QString &appName, const std::optional<QString> &windowTitle)
{
    const QString app = appName.trimmed();
    const QString window = windowTitle.value_or(QString()).trimmed();
    const QString shownApp = app.isEmpty() ? QStringLiteral("Unknown") : app;

    if (!window.isEmpty() && !titlesEqual(window, app))
        return shownApp + QStringLiteral(" \u2014 ") + window;
    return shownApp;
}

} // namespace Vesko
