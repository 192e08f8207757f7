// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Pasteboard.h"

namespace Vesko::Pasteboard {

namespace {

const QString uriListFormat = QStringLiteral("text/uri-list");
const QString pngFormat = QStringLiteral("image/png");

} // namespace

QStringList formatsToRead(const QStringList &offers)
{
    QStringList formats;
    if (offers.contains(uriListFormat))
        formats.append(uriListFormat);
    if (offers.contains(pngFormat))
        formats.append(pngFormat);
    for (const QString &offer : offers) {
        if (offer.startsWith(u"image/") && offer != pngFormat && !formats.contains(offer))
            formats.append(offer);
    }
    return formats;
}

QList<QUrl> localFilesOfUriList(const QByteArray &uriList)
{
    QList<QUrl> files;
    for (const QByteArray &rawLine : uriList.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QUrl url = QUrl::fromEncoded(line, QUrl::StrictMode);
        if (url.isValid() && url.isLocalFile() && !url.toLocalFile().isEmpty())
            files.append(url);
    }
    return files;
}

} // namespace Vesko::Pasteboard
