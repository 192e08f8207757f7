// SPDX-License-Identifier: GPL-3.0-or-later
//
// The decisions of the Storage tab in Settings, apart from its widgets:
// whether the library lies away from its default place, the move of the
// library with its outcome reported later on the main thread, and the counts
// the tab shows.

#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace Vesko {

class Store;

namespace LibraryLocation {

//! The library file at \a libraryPath is not the default one, so "Use Default
//! Location" is offered. Paths are compared cleaned and absolute.
bool differsFromDefault(const QString &libraryPath);

//! Receives the failure text of a move, or nothing when it succeeded.
using MoveFinished = std::function<void(const std::optional<QString> &failure)>;

//! Moves the library (with its attachments) to \a destination, a folder or a
//! file path, and answers \a finished on the main thread once it has ended,
//! never before this call returns. Dropped if \a context is gone by then.
void move(Store &store, const QString &destination, QObject *context, MoveFinished finished);

//! The notes of the active project, over all its sections.
qsizetype activeProjectNoteCount(const Store &store);
qsizetype projectCount(const Store &store);

} // namespace LibraryLocation

} // namespace Vesko
