// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads files and images from the desktop's clipboard without holding up the
// program. When Vesko itself owns the clipboard, its data are at hand. On
// X11 another owner is asked through X11ClipboardReader, which never waits.
// Elsewhere (Wayland) QClipboard is read, which waits for the other
// application within Qt's own bound on its silence; only a few formats are
// read that way. Images are encoded and converted to PNG on worker threads.

#pragma once

#include "platform/Pasteboard.h"

#include <QObject>

#include <memory>

namespace Vesko {

class X11ClipboardReader;

class QtPasteboardReader : public QObject, public PasteboardReader
{
    Q_OBJECT

public:
    //! At most this many formats are read through QClipboard from another
    //! application, each read holding the main thread until it is answered.
    static constexpr int maximumBlockingReads = 3;

    explicit QtPasteboardReader(QObject *parent = nullptr);
    ~QtPasteboardReader() override;

    void readPasteboard(std::function<void(const PasteboardContent &content)> done) override;

    //! \a bytes of an image in \a format as PNG, or empty when they do not decode.
    static QByteArray convertToPng(const QByteArray &bytes, const QString &format);

private:
    using Done = std::function<void(const PasteboardContent &content)>;
    //! Reads the formats of \a plan from the first on, until one gives content.
    void readFormats(QStringList plan, Done done);
    //! Reads one format from whoever owns the clipboard.
    void readFormat(const QString &format, std::function<void(const QByteArray &data)> done);
    //! The formats on offer, from whoever owns the clipboard.
    void readOffers(std::function<void(const QStringList &formats)> done);
    bool readsFromX11() const;
    //! Runs \a work on a pool thread and hands its result to \a done here,
    //! unless this reader is gone by then.
    void inBackground(
        std::function<QByteArray()> work, std::function<void(const QByteArray &)> done);

    std::unique_ptr<X11ClipboardReader> m_x11;
};

} // namespace Vesko
