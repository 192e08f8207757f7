// SPDX-License-Identifier: GPL-3.0-or-later
//
// Feeds arbitrary text to the inline Markdown parser. Besides not crashing
// or hanging, the visible text may hold only characters of the input: the
// exceptions are what character references stand for and the spaces that
// line breaks become inside code spans. Runs must lie inside the text.

#include "store/MarkdownText.h"

#include <QSet>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString source = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const Vesko::MarkdownText parsed = Vesko::markdownAttributedString(source);

    if (!source.contains(u'&')) {
        QSet<QChar> allowed(source.cbegin(), source.cend());
        if (source.contains(u'\n'))
            allowed.insert(u' ');
        for (QChar c : parsed.text) {
            if (!allowed.contains(c))
                std::abort();
        }
    }
    qsizetype end = 0;
    for (const Vesko::MarkdownRun &run : parsed.runs) {
        if (run.start < end || run.length <= 0 || run.start + run.length > parsed.text.size())
            std::abort();
        end = run.start + run.length;
    }
    return 0;
}
