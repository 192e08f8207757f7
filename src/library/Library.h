// SPDX-License-Identifier: GPL-3.0-or-later
//
// The data the user keeps: a Library of projects, their sections, the notes in
// them and the records of the notes' attachments. All types are plain values
// over Qt's implicitly shared containers: copying a whole Library costs a few
// reference counts, and a change detaches only the path from the root to what
// it touches. Equality is structural over every field.

#pragma once

#include "library/NoteList.h"

#include <QDateTime>
#include <QHashFunctions>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace Vesko {

//! The format version that this program writes.
inline constexpr qint64 libraryFormatVersion = 3;

struct NoteSection
{
    QUuid id;
    QString title;
    NoteList notes;
    bool isCollapsed = false;
    QDateTime createdAt;
    bool isAutomatic = false;

    bool operator==(const NoteSection &) const = default;
};

struct Project
{
    QUuid id;
    QString name;
    QList<NoteSection> sections;
    QDateTime createdAt;
    std::optional<QUuid> activeSectionID;

    bool operator==(const Project &) const = default;
};

struct Library
{
    qint64 version = libraryFormatVersion;
    QList<Project> projects;
    std::optional<QUuid> activeProjectID;

    bool operator==(const Library &) const = default;
};

//! Where a note lies. Used in memory only, never written to the file.
struct NoteAddress
{
    QUuid projectID;
    QUuid sectionID;
    QUuid noteID;

    bool operator==(const NoteAddress &) const = default;
};

inline size_t qHash(const NoteAddress &address, size_t seed = 0) noexcept
{
    return qHashMulti(seed, address.projectID, address.sectionID, address.noteID);
}

//! The index of the project that activeProjectID names; the first project when it
//! is absent or stale; -1 when the library has no project at all.
qsizetype activeProjectIndex(const Library &library);

//! The project that activeProjectIndex() names, or nullptr.
const Project *activeProject(const Library &library);

//! The index of the section \a id in \a project, or -1.
qsizetype sectionIndex(const Project &project, const QUuid &id);

//! The index of the project \a id in \a library, or -1.
qsizetype projectIndex(const Library &library, const QUuid &id);

//! The index of the first section of \a project titled "Inbox", in any case
//! and of either kind, or -1.
qsizetype inboxSectionIndex(const Project &project);

//! The number of notes over all projects and sections.
qsizetype noteCount(const Library &library);

//! The library of a new user: one project "Notes" with one section "Inbox".
Library makeDefaultLibrary();

//! A new, empty, expanded section titled "Inbox".
NoteSection makeInboxSection();

//! The title of the section that holds the captures from one source:
//! "App — Window", or just "App" when the window is absent or repeats the
//! application's name; "Unknown" stands in for a blank application name.
QString sourceSectionTitle(const QString &appName, const std::optional<QString> &windowTitle);

//! The current time, in UTC, to the millisecond.
QDateTime currentDate();

//! A new random identifier.
QUuid makeID();

} // namespace Vesko
