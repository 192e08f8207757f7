// SPDX-License-Identifier: GPL-3.0-or-later
//
// A real Store over a small library written as text, for the tests of the
// panel's rows and list. Sections are separated by "|": a title, "+" after
// it for collapsed, "*" before it for the active one, then ":" and the notes
// by name, upper case for done ones. Ids follow from the names, so a test
// names notes and sections by letters and titles.

#pragma once

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "panel/PanelState.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <memory>

namespace Vesko::Test {

//! The id of the note or section named \a name.
QUuid idFor(const QString &name);
//! The ids of the names in \a names, separated by commas.
QList<QUuid> idsFor(const QString &names);
Project projectFrom(const QString &description);
//! The active project as text in the form of projectFrom().
QString describeProject(const Project &project);
//! Names of \a ids in alphabetical order, separated by commas.
QString namesOf(const QList<QUuid> &ids);
QString nameOf(const std::optional<QUuid> &id);

class PanelTestRig
{
public:
    //! Starts from clean preferences.
    explicit PanelTestRig(const QString &description);
    //! Wraps a library of its own, such as a generated one.
    explicit PanelTestRig(Library library);
    ~PanelTestRig();

    Store &store() { return *m_store; }
    PanelState &state() { return m_state; }
    Preferences &preferences() { return *m_preferences; }
    QString describe() const { return describeProject(m_store->activeProject()); }

private:
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<LibraryWriter> m_writer;
    std::unique_ptr<AttachmentStore> m_attachments;
    std::unique_ptr<SearchIndex> m_searchIndex;
    std::unique_ptr<Store> m_store;
    PanelState m_state;
};

} // namespace Vesko::Test
