// SPDX-License-Identifier: GPL-3.0-or-later
//
// The library document: a Library as JSON and back.
//
// The encoder writes one canonical form: two-space indentation, one member a
// line, keys in ascending byte order, dates as whole-second UTC ISO-8601 with Z,
// identifiers as upper-case UUIDs, UTF-8 text, optional fields left out. Equal
// libraries give equal bytes.
//
// The decoder accepts any document that carries the required keys with the
// right types; unknown keys are ignored and any version number is accepted.
// It never returns part of a library: one bad value fails the whole document.

#pragma once

#include "library/Library.h"

#include <QByteArray>

#include <functional>

namespace Vesko {

QByteArray encodeLibrary(const Library &library);

//! Encodes \a library into \a sink, a piece of about a mebibyte at a time, so
//! that a large library is never held twice in memory. Returns false as soon
//! as the sink does.
bool encodeLibrary(
    const Library &library, const std::function<bool(const char *, qsizetype)> &sink);

//! Decodes a document. On failure returns nothing and, when \a errorText is
//! given, sets it to a description a person can read.
std::optional<Library> decodeLibrary(const QByteArray &document, QString *errorText = nullptr);

//! A date as the document writes it: "2026-03-14T09:26:53Z".
QByteArray formatDocumentDate(const QDateTime &date);

//! Parses a document date: the Internet date-time form, "Z" or a numeric
//! offset, fractions of a second allowed. Returns an invalid date on failure.
QDateTime parseDocumentDate(std::string_view text);

//! Parses a UUID in the 8-4-4-4-12 form, in either case. Returns a null UUID on failure.
std::optional<QUuid> parseDocumentUuid(std::string_view text);

} // namespace Vesko
