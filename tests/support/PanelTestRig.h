// SPDX-License-Identifier: GPL-3.0-or-later
//
// A real Store over a small library written as text, for the tests of the
// panel's rows and list. Sections are separated by "|": a title, "+" after
// it for collapsed, "*" before it for the active one, then ":" and the notes
// by name, upper case for done ones. Ids follow from the names (idFor()),
// so a test names notes and sections by letters and titles.

#pragma once

#include "StoreFixture.h"

#include "panel/window/PanelState.h"

namespace Vesko::Test {

//! The ids of the names in \a names, separated by commas.
QList<QUuid> idsFor(const QString &names);
Project projectFrom(const QString &description);
//! The active project as text in the form of projectFrom().
QString describeProject(const Project &project);
//! Names of \a ids in alphabetical order, separated by commas.
QString namesOf(const QList<QUuid> &ids);
QString nameOf(const std::optional<QUuid> &id);
//! The titles of the active project's sections, in order.
QStringList sectionTitles(const Store &store);
//! The notes of the active project's section \a title, upper case for done ones.
QStringList notesOfSection(const Store &store, const QString &title);

class PanelTestRig
{
public:
    //! Starts from clean preferences.
    explicit PanelTestRig(const QString &description);
    //! Wraps a library of its own, such as a generated one.
    explicit PanelTestRig(const Library &library);

    Store &store() { return m_fixture.store(); }
    PanelState &state() { return m_state; }
    Preferences &preferences() { return m_fixture.preferences(); }
    AttachmentStore &attachments() { return m_fixture.attachments(); }
    QString describe() { return describeProject(store().activeProject()); }

private:
    StoreFixture m_fixture;
    PanelState m_state;
};

} // namespace Vesko::Test
