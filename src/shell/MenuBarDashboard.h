// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the tray's menu shows, read from the Store when it opens: the first
// open notes of the active project with their titles, the sections and the
// projects to choose from, and the count of open notes for the icon's tool
// tip. Plain values, so that the menu is only built from them.

#pragma once

#include <QList>
#include <QString>
#include <QUuid>

namespace Vesko {

class Store;

struct MenuBarChoice
{
    QUuid id;
    QString title;
    bool isActive = false;

    bool operator==(const MenuBarChoice &) const = default;
};

struct MenuBarNote
{
    QUuid id;
    //! The note's text on one line, cut to 44 characters and "…".
    QString title;

    bool operator==(const MenuBarNote &) const = default;
};

struct MenuBarDashboard
{
    //! The most open notes the menu lists.
    static constexpr qsizetype noteLimit = 6;

    QString projectName;
    //! The first open notes of the active project: its sections in order,
    //! each section's notes in stored order, done ones left out.
    QList<MenuBarNote> notes;
    //! Every open note of the active project, also those beyond the list.
    qsizetype openNoteCount = 0;
    QString activeSectionTitle;
    //! The active project's sections, the active one marked.
    QList<MenuBarChoice> sections;
    //! Every project, the active one marked; empty with fewer than two.
    QList<MenuBarChoice> projects;
};

MenuBarDashboard menuBarDashboard(const Store &store);

//! The number of open notes in the active project.
qsizetype openNoteCount(const Store &store);

//! The tray icon's tool tip: the program and how many open notes the
//! project named \a projectName has, then, while saves fail, "Not saved: "
//! and \a saveFailure on a line of its own.
QString menuBarToolTip(
    const QString &projectName, qsizetype openNotes, const QString &saveFailure = {});

} // namespace Vesko
