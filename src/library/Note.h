// SPDX-License-Identifier: GPL-3.0-or-later
//
// A note and the records it carries: its source and its attachments. Plain
// values over Qt's implicitly shared types; equality is structural.

#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace Vesko {

//! Where a captured note came from.
struct NoteSource
{
    QString appName;
    std::optional<QString> bundleIdentifier;
    std::optional<QString> windowTitle;

    bool operator==(const NoteSource &) const = default;
};

//! The record of a file stored with a note; the bytes live in the attachments folder.
struct NoteAttachment
{
    enum class Kind { Image, File };

    QUuid id;
    QString fileName;
    QString storedFileName;
    Kind kind = Kind::File;
    std::optional<QString> contentTypeIdentifier;
    std::optional<qint64> byteCount;
    QDateTime createdAt;

    bool operator==(const NoteAttachment &) const = default;
};

//! The stored form of an attachment kind: "image" or "file".
QString kindRawValue(NoteAttachment::Kind kind);
std::optional<NoteAttachment::Kind> kindFromRawValue(QStringView raw);

struct Note
{
    QUuid id;
    QString text;
    bool isDone = false;
    QDateTime createdAt;
    QDateTime updatedAt;
    std::optional<QDateTime> completedAt;
    std::optional<NoteSource> source;
    QList<NoteAttachment> attachments;

    bool operator==(const Note &) const = default;
};

} // namespace Vesko
