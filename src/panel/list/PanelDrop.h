// SPDX-License-Identifier: GPL-3.0-or-later
//
// Drops on the panel's list. Text from another application becomes a new
// note in the section it was dropped on; notes dragged inside the panel (the
// PanelState tells which) move there, before the note they were dropped on.

#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>
#include <QUuid>

#include <optional>

class QMimeData;

namespace Vesko {

class PanelState;
class Store;

namespace PanelDrop {

enum class Outcome {
    //! Nothing happened: no section, or only blanks from outside.
    Refused,
    //! A note was made of the dropped text; the panel says "Added".
    AddedNote,
    //! The notes being dragged moved.
    MovedNotes,
};

//! The local files a drag carries, in its order; none when it carries no
//! file URLs.
QList<QUrl> localFiles(const QMimeData &data);

//! The plain texts a drag carries, or nothing when it carries no text or
//! carries files: files are not text to the rows, whatever text they bring.
std::optional<QStringList> textItems(const QMimeData &data);

//! Handles a drop of \a items, plain texts, on the section \a sectionID,
//! before the note \a beforeNoteID (or at the end of the section). Ends the
//! drag of notes in the PanelState whatever the outcome.
Outcome handleDrop(Store &store, PanelState &state, const QStringList &items,
    const std::optional<QUuid> &sectionID, const std::optional<QUuid> &beforeNoteID);

} // namespace PanelDrop
} // namespace Vesko
