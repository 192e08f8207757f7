// SPDX-License-Identifier: GPL-3.0-or-later
//
// How screen readers see the rows of the panel's list: a note row is one
// list item named by its text and attachments with the value "Done" or "Not
// done"; a section header is a button named "Title section, N remaining"
// that is expanded or collapsed.

#pragma once

namespace Vesko {

//! Installs the accessibility factory of the rows; once per process.
void installRowAccessibility();

} // namespace Vesko
