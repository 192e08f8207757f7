// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/TitleComparison.h"

namespace Vesko {

namespace {

bool isAscii(const QString &s)
{
    for (QChar c : s) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

} // namespace

QString titleFoldingKey(const QString &title)
{
    if (isAscii(title))
        return title.toLower();
    // Upper-casing applies the full special-casing table (ß becomes SS, the
    // ligature ﬁ becomes FI); folding afterwards brings every cased letter to
    // one form. Decomposing first lets accents fold with their base letters.
    return title.normalized(QString::NormalizationForm_D)
        .toUpper()
        .toCaseFolded()
        .normalized(QString::NormalizationForm_C);
}

bool titlesEqual(const QString &a, const QString &b)
{
    if (a.compare(b, Qt::CaseInsensitive) == 0)
        return true;
    if (isAscii(a) && isAscii(b))
        return false;
    return titleFoldingKey(a) == titleFoldingKey(b);
}

} // namespace Vesko
