// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one pass that a library read from the file goes through before use: it
// establishes the invariants the program relies on (at least one project,
// each with a section and a valid active section, version 3), lifts older
// files whose capture sections had no automatic flag, joins duplicate capture
// sections and dissolves ordinary sections that only shadow a capture
// section's title. It never loses or creates a note: notes only change section.

#pragma once

#include "library/Library.h"

namespace Vesko {

//! Repairs \a library in place; returns whether the file needs rewriting.
bool repairLibrary(Library &library);

//! Removes ordinary sections that repeat an automatic section's title and hold
//! nothing captured; their notes go to the end of "Inbox".
bool foldShadowSections(Project &project);

//! Stamps the version, gives every project a section and a valid active section.
bool repairActiveSections(Library &library);

//! Marks capture sections of older files (isLegacy), joins automatic sections
//! of the same title, and collects stray captures of older files into them.
bool migrateLegacySections(Project &project, bool isLegacy);

} // namespace Vesko
