// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one case-insensitive comparison of section and project titles. It folds
// case fully ("Straße" equals "STRASSE", "ΣΊΣΥΦΟΣ" equals "σίσυφος") and treats
// canonically equivalent spellings (a precomposed "é" and "e" with a combining
// accent) as equal. It compares whole strings; it does not trim.

#pragma once

#include <QString>

namespace Vesko {

//! The key under which two titles compare equal exactly when titlesEqual() says so.
QString titleFoldingKey(const QString &title);

bool titlesEqual(const QString &a, const QString &b);

} // namespace Vesko
