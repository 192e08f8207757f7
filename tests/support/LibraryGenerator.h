// SPDX-License-Identifier: GPL-3.0-or-later
//
// Makes realistic libraries for tests and benchmarks: the same seed and size
// always give the same library. Notes are spread over several projects and
// sections, with texts of varied length and script, sources, attachments and
// done notes in the proportions of a library in daily use. Dates are whole
// seconds, so a generated library survives a round trip through the file.

#pragma once

#include "library/Library.h"

namespace Vesko::Test {

Library generateLibrary(qsizetype noteCount, quint32 seed = 1);

//! A generated library of \a total notes whose first project, made active
//! with its sections open, holds exactly \a active of them.
Library generateLibraryWithActiveProject(qsizetype total, qsizetype active, quint32 seed = 1);

//! The library of state \a number that a save loop writes, named "state N" in its first project.
Library numberedLibrary(int number);

} // namespace Vesko::Test
