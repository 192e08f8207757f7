// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/SelectionText.h"

#include <QStringList>

namespace Vesko {

QString cleanWindowTitle(const QString &title)
{
    // In this order; the first that matches is the only one removed. The
    // Linux forms of the same applications follow the first sixteen.
    static const char16_t *const suffixes[] = {
        u" \u2014 Google Chrome",
        u" - Google Chrome",
        u" \u2014 Safari",
        u" - Safari",
        u" \u2014 Arc",
        u" \u2013 Arc",
        u" \u2014 Firefox",
        u" - Mozilla Firefox",
        u" \u2014 Claude",
        u" - Claude",
        u" \u2014 ChatGPT",
        u" - ChatGPT",
        u" \u2014 Visual Studio Code",
        u" - Visual Studio Code",
        u" \u2014 Cursor",
        u" - Cursor",
        u" \u2014 Mozilla Firefox",
        u" - Chromium",
        u" \u2014 Chromium",
        u" - Code - OSS",
        u" - VSCodium",
        u" \u2014 Konsole",
        u" - Konsole",
    };
    QString cleaned = title;
    for (const char16_t *suffix : suffixes) {
        const QString s = QString::fromUtf16(suffix);
        if (cleaned.endsWith(s)) {
            cleaned.chop(s.size());
            break;
        }
    }
    return cleaned.trimmed();
}

QString normalizeCapturedText(const QString &text)
{
    QString unified = text;
    unified.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    unified.replace(QChar(0x00A0), QChar(u' '));
    const QStringList lines = unified.split(u'\n');
    QStringList kept;
    kept.reserve(lines.size());
    int blankRun = 0;
    for (const QString &line : lines) {
        if (line.trimmed().isEmpty()) {
            ++blankRun;
            if (blankRun < 2)
                kept.append(line);
        } else {
            blankRun = 0;
            kept.append(line);
        }
    }
    return kept.join(u'\n').trimmed();
}

} // namespace Vesko
