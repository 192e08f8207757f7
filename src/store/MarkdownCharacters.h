// SPDX-License-Identifier: GPL-3.0-or-later
//
// The character level of the inline Markdown parse: which characters count
// as punctuation and whitespace where the flanking rules of emphasis ask,
// backslash escapes, and character references (named as in HTML, decimal
// and hexadecimal), read to the text they stand for.

#pragma once

#include <QString>
#include <QStringView>

namespace Vesko::MarkdownCharacters {

bool isAsciiPunctuation(char32_t c);
bool isUnicodeWhitespace(char32_t c);
//! Punctuation and symbols of any script.
bool isUnicodePunctuation(char32_t c);

//! Reads the backslash at \a i of \a source: an escaped ASCII punctuation
//! character or line break is appended to \a out without the backslash, any
//! other backslash as itself. Returns the position after what was read.
qsizetype readEscape(QStringView source, qsizetype i, QString &out);

//! Reads the "&" at \a i of \a source: a valid character reference is
//! appended to \a out as the text it stands for (U+FFFD for a code point
//! that cannot be one), anything else as a plain "&". Returns the position
//! after what was read.
qsizetype readReference(QStringView source, qsizetype i, QString &out);

//! \a text with its backslash escapes and character references read, as in
//! a link's destination.
QString unescaped(QStringView text);

} // namespace Vesko::MarkdownCharacters
