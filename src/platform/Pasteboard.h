// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the clipboard offers that can become attachments, and the reading of
// it: local files first, then a PNG image, then any other image converted to
// PNG. Reading another application's clipboard is a transfer between
// processes, so the answer comes later, on the main thread, never by waiting.

#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace Vesko {

struct PasteboardContent
{
    //! Local files, in the clipboard's order.
    QList<QUrl> fileURLs;
    //! An image as PNG, when there are no files.
    QByteArray png;

    bool isEmpty() const { return fileURLs.isEmpty() && png.isEmpty(); }
    bool operator==(const PasteboardContent &) const = default;
};

class PasteboardReader
{
public:
    virtual ~PasteboardReader() = default;
    //! Reads the clipboard and hands what it found to \a done on the main
    //! thread; an empty content when it holds nothing usable or cannot be read.
    virtual void readPasteboard(std::function<void(const PasteboardContent &content)> done) = 0;
};

namespace Pasteboard {

//! The formats to read, best first, among those the clipboard \a offers: the
//! file list, PNG, then the other image formats in the order offered.
QStringList formatsToRead(const QStringList &offers);
//! The local files of a text/uri-list; other URLs and comments are left out.
QList<QUrl> localFilesOfUriList(const QByteArray &uriList);

} // namespace Pasteboard

} // namespace Vesko
