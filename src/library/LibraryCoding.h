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
#include <QHash>

#include <functional>
#include <utility>

namespace Vesko {

//! The notes of each section as the last encoding wrote them, so that the
//! next one writes again only the notes that changed since. A writer keeps
//! one and hands it to every encoding it makes.
//!
//! Bytes are reused for the very same values only: each entry holds a copy
//! of the notes it encoded, so a list of notes, a text or a list of
//! attachments that still shares its buffer with that copy cannot have been
//! changed (a change to a shared buffer copies it first). A note that shares
//! nothing with the copy is encoded again, even when it is equal.
struct EncodedSections
{
    struct Section
    {
        //! The notes as they were encoded; shares its chunks and buffers with that library.
        NoteList notes;
        //! The value of the section's "notes" member: the array, brackets included.
        QByteArray value;
        //! Where each note's object lies in value.
        QList<std::pair<qsizetype, qsizetype>> noteBounds;
    };

    //! By section id; a library with two sections of one id keeps one of them.
    QHash<QUuid, Section> sections;
    //! The nesting the notes were written at.
    int depth = -1;
};

QByteArray encodeLibrary(const Library &library);

//! The spare bytes behind a document that let the parser read it in place.
inline constexpr qsizetype libraryParsePadding = 64;

//! Encodes \a library into \a sink, a piece of about a mebibyte at a time, so
//! that a large library is never held twice in memory. Returns false as soon
//! as the sink does. With \a encoded, the notes that are the same values as
//! in the last encoding are copied from it, and \a encoded then holds this
//! encoding; it is left as it was when the sink fails.
bool encodeLibrary(const Library &library, const std::function<bool(const char *, qsizetype)> &sink,
    EncodedSections *encoded = nullptr);

//! Decodes a document. On failure returns nothing and, when \a errorText is
//! given, sets it to a description a person can read.
std::optional<Library> decodeLibrary(const QByteArray &document, QString *errorText = nullptr);

//! The same, letting go of the document's bytes as soon as they are parsed,
//! before the library is built from them: a large file is not held in
//! memory beside the library it becomes. A buffer with the parser's padding
//! of spare capacity (see readLibraryFile()) is parsed where it lies.
std::optional<Library> decodeLibrary(QByteArray &&document, QString *errorText = nullptr);

//! A date as the document writes it: "2026-03-14T09:26:53Z".
QByteArray formatDocumentDate(const QDateTime &date);

//! Parses a document date: the Internet date-time form, "Z" or a numeric
//! offset, fractions of a second allowed. Returns an invalid date on failure.
QDateTime parseDocumentDate(std::string_view text);

//! Parses a UUID in the 8-4-4-4-12 form, in either case. Returns a null UUID on failure.
std::optional<QUuid> parseDocumentUuid(std::string_view text);

} // namespace Vesko
