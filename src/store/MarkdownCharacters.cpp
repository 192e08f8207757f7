// SPDX-License-Identifier: GPL-3.0-or-later

#include "store/MarkdownCharacters.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>

namespace Vesko::MarkdownCharacters {

namespace {

#include "store/HtmlEntities.inc"

} // namespace

bool isAsciiPunctuation(char32_t c)
{
    return (c >= 0x21 && c <= 0x2F) || (c >= 0x3A && c <= 0x40) || (c >= 0x5B && c <= 0x60)
        || (c >= 0x7B && c <= 0x7E);
}

bool isUnicodeWhitespace(char32_t c)
{
    return c == 0 || c == '\t' || c == '\n' || c == '\f' || c == '\r'
        || QChar::category(c) == QChar::Separator_Space;
}

bool isUnicodePunctuation(char32_t c)
{
    if (c < 0x80)
        return isAsciiPunctuation(c);
    switch (QChar::category(c)) {
    case QChar::Punctuation_Connector:
    case QChar::Punctuation_Dash:
    case QChar::Punctuation_Open:
    case QChar::Punctuation_Close:
    case QChar::Punctuation_InitialQuote:
    case QChar::Punctuation_FinalQuote:
    case QChar::Punctuation_Other:
    case QChar::Symbol_Math:
    case QChar::Symbol_Currency:
    case QChar::Symbol_Modifier:
    case QChar::Symbol_Other:
        return true;
    default:
        return false;
    }
}

qsizetype readEscape(QStringView source, qsizetype i, QString &out)
{
    if (i + 1 < source.size()) {
        const QChar next = source.at(i + 1);
        if (next.unicode() < 0x80 && isAsciiPunctuation(next.unicode())) {
            out += next;
            return i + 2;
        }
        if (next == u'\n') {
            // A hard line break: the line break stays, the backslash goes.
            out += next;
            return i + 2;
        }
    }
    out += u'\\';
    return i + 1;
}

qsizetype readReference(QStringView source, qsizetype i, QString &out)
{
    const qsizetype size = source.size();
    qsizetype j = i + 1;
    auto isHex = [](QChar c) {
        return c.isDigit() || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    };
    if (j < size && source.at(j) == u'#') {
        ++j;
        const bool hex = j < size && (source.at(j) == u'x' || source.at(j) == u'X');
        if (hex)
            ++j;
        const qsizetype digitsStart = j;
        while (
            j < size && j - digitsStart < 8 && (hex ? isHex(source.at(j)) : source.at(j).isDigit()))
            ++j;
        const qsizetype digits = j - digitsStart;
        if (digits >= 1 && digits <= (hex ? 6 : 7) && j < size && source.at(j) == u';') {
            bool ok = false;
            uint value = source.sliced(digitsStart, digits).toUInt(&ok, hex ? 16 : 10);
            if (!ok || value == 0 || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
                value = 0xFFFD;
            out += QString::fromUcs4(reinterpret_cast<const char32_t *>(&value), 1);
            return j + 1;
        }
    } else {
        const qsizetype nameStart = j;
        while (j < size && j - nameStart < 32 && source.at(j).unicode() < 0x80
            && source.at(j).isLetterOrNumber())
            ++j;
        if (j > nameStart && j < size && source.at(j) == u';') {
            const QByteArray name = source.sliced(nameStart, j - nameStart).toLatin1();
            const auto found = std::lower_bound(std::begin(htmlEntities), std::end(htmlEntities),
                name, [](const HtmlEntity &entry, const QByteArray &key) {
                    return std::strcmp(entry.name, key.constData()) < 0;
                });
            if (found != std::end(htmlEntities) && name == found->name) {
                out += QString::fromUtf8(found->utf8);
                return j + 1;
            }
        }
    }
    out += u'&';
    return i + 1;
}

QString unescaped(QStringView text)
{
    if (!text.contains(u'\\') && !text.contains(u'&'))
        return text.toString();
    QString out;
    for (qsizetype i = 0; i < text.size();) {
        if (text.at(i) == u'\\')
            i = readEscape(text, i, out);
        else if (text.at(i) == u'&')
            i = readReference(text, i, out);
        else
            out += text.at(i++);
    }
    return out;
}

} // namespace Vesko::MarkdownCharacters
