// SPDX-License-Identifier: GPL-3.0-or-later
//
// The inline parser follows the algorithm of the CommonMark specification:
// one pass from left to right builds a list of nodes (text, and the markers
// where an attribute begins or ends) with a stack of delimiter runs and a
// stack of brackets; emphasis is resolved with the "openers bottom" rule,
// which keeps the whole linear. Escapes and character references are read
// in MarkdownCharacters.

#include "store/MarkdownText.h"

#include "store/MarkdownCharacters.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <map>
#include <vector>

namespace Vesko {

namespace {

using namespace MarkdownCharacters;

class Parser
{
public:
    explicit Parser(const QString &source)
        : m_source(source)
        , m_size(source.size())
    {
        indexBacktickRuns();
    }

    MarkdownText parse()
    {
        qsizetype i = 0;
        while (i < m_size) {
            const QChar c = m_source.at(i);
            switch (c.unicode()) {
            case '\\':
                i = backslash(i);
                break;
            case '`':
                i = codeSpan(i);
                break;
            case '&':
                i = entity(i);
                break;
            case '<':
                i = autolink(i);
                break;
            case '*':
            case '_':
            case '~':
                i = delimiterRun(i);
                break;
            case '[':
                pushBracket(false);
                m_pending += c;
                ++i;
                break;
            case '!':
                if (i + 1 < m_size && m_source.at(i + 1) == u'[') {
                    pushBracket(true);
                    m_pending += QStringLiteral("![");
                    i += 2;
                } else {
                    m_pending += c;
                    ++i;
                }
                break;
            case ']':
                i = closeBracket(i);
                break;
            default:
                m_pending += c;
                ++i;
            }
        }
        flushText();
        processEmphasis(-1);
        return render();
    }

private:
    // Kept small, since a long note can make a node of nearly every
    // character: the text lies in one shared buffer, m_text.
    struct Node
    {
        enum Kind : char { Text, Open, Close };
        Kind kind;
        char attribute;
        int textStart;
        int textLength;
        int destination; // index into m_destinations, or -1
        int next;
        int prev;
    };

    struct Delimiter
    {
        int node;
        char16_t character;
        int count;
        int original;
        bool canOpen;
        bool canClose;
        int prev = -1;
        int next = -1;
    };

    // An opening bracket stays plain text until its link closes; a run of
    // brackets costs no node of its own. Its characters are at \a offset in
    // m_text, inside the text node that will get the index \a node.
    struct Bracket
    {
        int node;
        int offset;
        int delimiterTop; // the top delimiter when the bracket was pushed
        bool image;
    };

    // -- nodes ------------------------------------------------------------------

    int appendNode(
        Node::Kind kind, QStringView text, int attribute = 0, const QString &destination = {})
    {
        const int start = int(m_text.size());
        m_text += text;
        int destinationIndex = -1;
        if (!destination.isNull()) {
            m_destinations.push_back(destination);
            destinationIndex = int(m_destinations.size()) - 1;
        }
        m_nodes.push_back(
            Node {kind, char(attribute), start, int(text.size()), destinationIndex, -1, m_last});
        const int index = int(m_nodes.size()) - 1;
        if (m_last >= 0)
            m_nodes[m_last].next = index;
        else
            m_first = index;
        m_last = index;
        return index;
    }

    int insertAfter(int at, Node::Kind kind, int attribute)
    {
        m_nodes.push_back(Node {kind, char(attribute), 0, 0, -1, m_nodes[at].next, at});
        const int index = int(m_nodes.size()) - 1;
        if (m_nodes[at].next >= 0)
            m_nodes[m_nodes[at].next].prev = index;
        else
            m_last = index;
        m_nodes[at].next = index;
        return index;
    }

    int insertBefore(int at, Node::Kind kind, int attribute)
    {
        const int before = m_nodes[at].prev;
        if (before >= 0)
            return insertAfter(before, kind, attribute);
        m_nodes.push_back(Node {kind, char(attribute), 0, 0, -1, at, -1});
        const int index = int(m_nodes.size()) - 1;
        m_nodes[at].prev = index;
        m_first = index;
        return index;
    }

    void flushText()
    {
        if (m_pending.isEmpty())
            return;
        appendNode(Node::Text, m_pending);
        m_pending.clear();
    }

    // -- character classes --------------------------------------------------------

    char32_t codePointBefore(qsizetype i) const
    {
        if (i <= 0)
            return '\n';
        const QChar low = m_source.at(i - 1);
        if (low.isLowSurrogate() && i >= 2 && m_source.at(i - 2).isHighSurrogate())
            return QChar::surrogateToUcs4(m_source.at(i - 2), low);
        return low.unicode();
    }

    char32_t codePointAt(qsizetype i) const
    {
        if (i >= m_size)
            return '\n';
        const QChar high = m_source.at(i);
        if (high.isHighSurrogate() && i + 1 < m_size && m_source.at(i + 1).isLowSurrogate())
            return QChar::surrogateToUcs4(high, m_source.at(i + 1));
        return high.unicode();
    }

    // -- inline elements ------------------------------------------------------------

    qsizetype backslash(qsizetype i) { return readEscape(m_source, i, m_pending); }

    void indexBacktickRuns()
    {
        for (qsizetype i = 0; i < m_size;) {
            if (m_source.at(i) != u'`') {
                ++i;
                continue;
            }
            qsizetype end = i;
            while (end < m_size && m_source.at(end) == u'`')
                ++end;
            m_backtickRuns[end - i].push_back(i);
            i = end;
        }
    }

    qsizetype codeSpan(qsizetype i)
    {
        qsizetype end = i;
        while (end < m_size && m_source.at(end) == u'`')
            ++end;
        const qsizetype length = end - i;
        const auto runs = m_backtickRuns.find(length);
        qsizetype closer = -1;
        if (runs != m_backtickRuns.end()) {
            const auto found = std::upper_bound(runs->second.cbegin(), runs->second.cend(), i);
            if (found != runs->second.cend()) {
                // A maximal run of exactly this length that begins after the opener.
                closer = *found;
                if (closer < end)
                    closer = -1;
            }
        }
        if (closer < 0) {
            m_pending += m_source.sliced(i, length);
            return end;
        }
        QString content = m_source.sliced(end, closer - end);
        content.replace(u'\n', u' ');
        if (content.size() >= 2 && content.front() == u' ' && content.back() == u' '
            && content.count(u' ') != content.size()) {
            content = content.sliced(1, content.size() - 2);
        }
        flushText();
        appendNode(Node::Open, QString(), MarkdownRun::Code);
        appendNode(Node::Text, content);
        appendNode(Node::Close, QString(), MarkdownRun::Code);
        return closer + length;
    }

    qsizetype entity(qsizetype i) { return readReference(m_source, i, m_pending); }

    qsizetype autolink(qsizetype i)
    {
        // <scheme:rest> or <user@host>
        qsizetype j = i + 1;
        qsizetype end = -1;
        const qsizetype schemeStart = j;
        while (j < m_size && j - schemeStart <= 32
            && (m_source.at(j).unicode() < 0x80
                && (m_source.at(j).isLetterOrNumber() || m_source.at(j) == u'+'
                    || m_source.at(j) == u'.' || m_source.at(j) == u'-'))) {
            ++j;
        }
        const qsizetype schemeLength = j - schemeStart;
        if (schemeLength >= 2 && schemeLength <= 32 && m_source.at(schemeStart).isLetter()
            && j < m_size && m_source.at(j) == u':') {
            ++j;
            while (j < m_size) {
                const QChar c = m_source.at(j);
                if (c == u'>') {
                    end = j;
                    break;
                }
                if (c == u'<' || c.unicode() <= 0x20)
                    break;
                ++j;
            }
            if (end >= 0) {
                const QString target = m_source.sliced(i + 1, end - i - 1);
                appendLink(target, target);
                return end + 1;
            }
        }
        // An e-mail address.
        static const QString localCharacters = QStringLiteral(".!#$%&'*+/=?^_`{|}~-");
        j = i + 1;
        while (j < m_size && m_source.at(j).unicode() < 0x80
            && (m_source.at(j).isLetterOrNumber() || localCharacters.contains(m_source.at(j)))) {
            ++j;
        }
        if (j > i + 1 && j < m_size && m_source.at(j) == u'@') {
            ++j;
            qsizetype labelLength = 0;
            bool valid = true;
            while (j < m_size && m_source.at(j) != u'>') {
                const QChar c = m_source.at(j);
                if (c.unicode() < 0x80 && c.isLetterOrNumber()) {
                    ++labelLength;
                } else if (c == u'-' && labelLength > 0) {
                    ++labelLength;
                } else if (c == u'.' && labelLength > 0 && m_source.at(j - 1) != u'-') {
                    labelLength = 0;
                } else {
                    valid = false;
                    break;
                }
                if (labelLength > 63) {
                    valid = false;
                    break;
                }
                ++j;
            }
            if (valid && j < m_size && labelLength > 0 && m_source.at(j - 1) != u'-') {
                const QString address = m_source.sliced(i + 1, j - i - 1);
                appendLink(address, QStringLiteral("mailto:") + address);
                return j + 1;
            }
        }
        m_pending += u'<';
        return i + 1;
    }

    void appendLink(const QString &text, const QString &destination)
    {
        flushText();
        appendNode(Node::Open, QString(), MarkdownRun::Link, destination);
        appendNode(Node::Text, text);
        appendNode(Node::Close, QString(), MarkdownRun::Link);
    }

    qsizetype delimiterRun(qsizetype i)
    {
        const char16_t character = m_source.at(i).unicode();
        qsizetype end = i;
        while (end < m_size && m_source.at(end) == character)
            ++end;
        const int count = int(end - i);
        // Strikethrough takes one or two tildes; longer runs are plain text.
        if (character == u'~' && count > 2) {
            m_pending += m_source.sliced(i, count);
            return end;
        }

        const char32_t before = codePointBefore(i);
        const char32_t after = codePointAt(end);
        const bool leftFlanking = !isUnicodeWhitespace(after)
            && (!isUnicodePunctuation(after) || isUnicodeWhitespace(before)
                || isUnicodePunctuation(before));
        const bool rightFlanking = !isUnicodeWhitespace(before)
            && (!isUnicodePunctuation(before) || isUnicodeWhitespace(after)
                || isUnicodePunctuation(after));
        bool canOpen = leftFlanking;
        bool canClose = rightFlanking;
        if (character == u'_') {
            canOpen = leftFlanking && (!rightFlanking || isUnicodePunctuation(before));
            canClose = rightFlanking && (!leftFlanking || isUnicodePunctuation(after));
        }

        flushText();
        const int node = appendNode(Node::Text, m_source.sliced(i, count));
        if (canOpen || canClose) {
            m_delimiters.push_back(
                Delimiter {node, character, count, count, canOpen, canClose, m_delimiterTop, -1});
            const int index = int(m_delimiters.size()) - 1;
            if (m_delimiterTop >= 0)
                m_delimiters[m_delimiterTop].next = index;
            m_delimiterTop = index;
        }
        return end;
    }

    void removeDelimiter(int d)
    {
        Delimiter &delimiter = m_delimiters[d];
        if (delimiter.prev >= 0)
            m_delimiters[delimiter.prev].next = delimiter.next;
        if (delimiter.next >= 0)
            m_delimiters[delimiter.next].prev = delimiter.prev;
        else
            m_delimiterTop = delimiter.prev;
    }

    // Resolves emphasis among the delimiters above \a bottom (-1 for all).
    void processEmphasis(int bottom)
    {
        // The lowest opener worth looking at again, by character, closer length
        // modulo 3 and whether the closer can open too.
        std::array<int, 3 * 3 * 2> openersBottom;
        openersBottom.fill(bottom);
        auto slot = [](char16_t c, int count, bool canOpen) {
            const int which = c == u'*' ? 0 : c == u'_' ? 1 : 2;
            return (which * 3 + count % 3) * 2 + (canOpen ? 1 : 0);
        };

        int current;
        if (bottom >= 0) {
            current = m_delimiters[bottom].next;
        } else {
            current = m_delimiterTop;
            while (current >= 0 && m_delimiters[current].prev >= 0)
                current = m_delimiters[current].prev;
        }

        while (current >= 0) {
            Delimiter &closer = m_delimiters[current];
            if (!closer.canClose) {
                current = closer.next;
                continue;
            }
            const int bottomSlot = slot(closer.character, closer.original, closer.canOpen);
            int opener = closer.prev;
            bool found = false;
            while (opener >= 0 && opener != bottom && opener != openersBottom[bottomSlot]) {
                const Delimiter &candidate = m_delimiters[opener];
                if (candidate.character == closer.character && candidate.canOpen) {
                    if (closer.character == u'~') {
                        found = candidate.count == closer.count;
                    } else {
                        const bool oddMatch = (candidate.canClose || closer.canOpen)
                            && (candidate.original + closer.original) % 3 == 0
                            && !(candidate.original % 3 == 0 && closer.original % 3 == 0);
                        found = !oddMatch;
                    }
                    if (found)
                        break;
                }
                opener = candidate.prev;
            }

            if (!found) {
                openersBottom[bottomSlot] = closer.prev;
                const int next = closer.next;
                if (!closer.canOpen)
                    removeDelimiter(current);
                current = next;
                continue;
            }

            Delimiter &open = m_delimiters[opener];
            int used;
            int attribute;
            if (closer.character == u'~') {
                used = closer.count;
                attribute = MarkdownRun::Strikethrough;
            } else {
                used = (closer.count >= 2 && open.count >= 2) ? 2 : 1;
                attribute = used == 2 ? MarkdownRun::Strong : MarkdownRun::Emphasis;
            }
            open.count -= used;
            closer.count -= used;
            m_nodes[open.node].textLength -= used;
            m_nodes[closer.node].textStart += used;
            m_nodes[closer.node].textLength -= used;
            insertAfter(open.node, Node::Open, attribute);
            insertBefore(closer.node, Node::Close, attribute);

            // Delimiters between the two can no longer match anything.
            open.next = current;
            closer.prev = opener;

            if (open.count == 0)
                removeDelimiter(opener);
            if (closer.count == 0) {
                const int next = closer.next;
                removeDelimiter(current);
                current = next;
            }
        }

        // Everything above the bottom is done with.
        while (m_delimiterTop >= 0 && m_delimiterTop != bottom)
            removeDelimiter(m_delimiterTop);
    }

    // -- links ----------------------------------------------------------------------

    void pushBracket(bool image)
    {
        // Every node is made by a flush of the pending text before any other
        // node, so the text that holds this bracket gets the next index.
        m_brackets.push_back(Bracket {
            int(m_nodes.size()), int(m_text.size() + m_pending.size()), m_delimiterTop, image});
    }

    Bracket popBracket()
    {
        const Bracket bracket = m_brackets.back();
        m_brackets.pop_back();
        m_linkOpenersBottom = std::min(m_linkOpenersBottom, m_brackets.size());
        return bracket;
    }

    qsizetype closeBracket(qsizetype i)
    {
        if (m_brackets.empty()) {
            m_pending += u']';
            return i + 1;
        }
        // A link opener under a link that has closed can no longer open one.
        const bool active = m_brackets.back().image || m_brackets.size() > m_linkOpenersBottom;
        const Bracket bracket = popBracket();
        QString destination;
        const qsizetype after = active ? inlineLinkTail(i + 1, &destination) : -1;
        if (after < 0) {
            m_pending += u']';
            return i + 1;
        }

        flushText();
        const int attribute = bracket.image ? MarkdownRun::Image : MarkdownRun::Link;
        const int holder = bracket.node;
        const int holderEnd = m_nodes[holder].textStart + m_nodes[holder].textLength;
        const int contentStart = bracket.offset + (bracket.image ? 2 : 1);
        m_nodes[holder].textLength = bracket.offset - m_nodes[holder].textStart;
        const int open = insertAfter(holder, Node::Open, attribute);
        m_destinations.push_back(destination);
        m_nodes[open].destination = int(m_destinations.size()) - 1;
        const int content = insertAfter(open, Node::Text, 0);
        m_nodes[content].textStart = contentStart;
        m_nodes[content].textLength = holderEnd - contentStart;

        processEmphasis(bracket.delimiterTop);
        appendNode(Node::Close, QString(), attribute);
        if (!bracket.image)
            m_linkOpenersBottom = m_brackets.size(); // no links inside links
        return after;
    }

    qsizetype skipSpaces(qsizetype j) const
    {
        bool newline = false;
        while (j < m_size) {
            const QChar c = m_source.at(j);
            if (c == u' ' || c == u'\t') {
                ++j;
            } else if (c == u'\n' && !newline) {
                newline = true;
                ++j;
            } else {
                break;
            }
        }
        return j;
    }

    // Parses "(destination "title")" at \a j; returns the position after it, or -1.
    qsizetype inlineLinkTail(qsizetype j, QString *destination) const
    {
        if (j >= m_size || m_source.at(j) != u'(')
            return -1;
        j = skipSpaces(j + 1);
        qsizetype destinationStart = j;
        qsizetype destinationEnd = j;
        if (j < m_size && m_source.at(j) == u'<') {
            ++j;
            destinationStart = j;
            while (j < m_size && m_source.at(j) != u'>') {
                const QChar c = m_source.at(j);
                if (c == u'\n' || c == u'<')
                    return -1;
                j += (c == u'\\' && j + 1 < m_size) ? 2 : 1;
            }
            if (j >= m_size)
                return -1;
            destinationEnd = j;
            ++j;
        } else {
            int depth = 0;
            while (j < m_size) {
                const QChar c = m_source.at(j);
                if (c == u'\\' && j + 1 < m_size
                    && isAsciiPunctuation(m_source.at(j + 1).unicode())) {
                    j += 2;
                    continue;
                }
                if (c.unicode() <= 0x20 || c.unicode() == 0x7F)
                    break;
                if (c == u'(') {
                    if (++depth > 32)
                        return -1;
                } else if (c == u')') {
                    if (depth == 0)
                        break;
                    --depth;
                }
                ++j;
            }
            if (depth != 0)
                return -1;
            destinationEnd = j;
        }
        *destination = unescaped(
            QStringView(m_source).sliced(destinationStart, destinationEnd - destinationStart));

        const qsizetype beforeTitle = j;
        j = skipSpaces(j);
        if (j < m_size && j > beforeTitle
            && (m_source.at(j) == u'"' || m_source.at(j) == u'\'' || m_source.at(j) == u'(')) {
            const QChar close = m_source.at(j) == u'(' ? QChar(u')') : m_source.at(j);
            ++j;
            while (j < m_size && m_source.at(j) != close) {
                if (m_source.at(j) == u'(' && close == u')')
                    return -1;
                j += (m_source.at(j) == u'\\' && j + 1 < m_size) ? 2 : 1;
            }
            if (j >= m_size)
                return -1;
            j = skipSpaces(j + 1);
        }
        if (j >= m_size || m_source.at(j) != u')')
            return -1;
        return j + 1;
    }

    // -- output -----------------------------------------------------------------------

    MarkdownText render() const
    {
        MarkdownText out;
        out.text.reserve(m_size);
        struct Active
        {
            int attribute;
            QString destination;
        };
        std::vector<Active> active;
        for (int n = m_first; n >= 0; n = m_nodes[n].next) {
            const Node &node = m_nodes[n];
            switch (node.kind) {
            case Node::Open:
                active.push_back({node.attribute,
                    node.destination >= 0 ? m_destinations[node.destination] : QString()});
                break;
            case Node::Close:
                for (auto it = active.rbegin(); it != active.rend(); ++it) {
                    if (it->attribute == node.attribute) {
                        active.erase(std::next(it).base());
                        break;
                    }
                }
                break;
            case Node::Text: {
                const QStringView text
                    = QStringView(m_text).sliced(node.textStart, node.textLength);
                if (text.isEmpty())
                    break;
                int attributes = 0;
                QString destination;
                for (const Active &a : active) {
                    attributes |= a.attribute;
                    if (!a.destination.isEmpty()
                        || a.attribute & (MarkdownRun::Link | MarkdownRun::Image))
                        destination = a.destination;
                }
                if (attributes) {
                    MarkdownRun run {out.text.size(), text.size(), attributes, destination};
                    if (!out.runs.isEmpty()
                        && out.runs.last().start + out.runs.last().length == run.start
                        && out.runs.last().attributes == run.attributes
                        && out.runs.last().destination == run.destination) {
                        out.runs.last().length += run.length;
                    } else {
                        out.runs.append(run);
                    }
                }
                out.text += text;
            }
            }
        }
        return out;
    }

    const QString m_source;
    const qsizetype m_size;
    QString m_pending;
    std::vector<Node> m_nodes;
    QString m_text;
    std::vector<QString> m_destinations;
    int m_first = -1;
    int m_last = -1;
    std::vector<Delimiter> m_delimiters;
    int m_delimiterTop = -1;
    std::vector<Bracket> m_brackets;
    size_t m_linkOpenersBottom = 0;
    std::map<qsizetype, std::vector<qsizetype>> m_backtickRuns;
};

} // namespace

MarkdownText markdownAttributedString(const QString &source)
{
    return Parser(source).parse();
}

QString strippedMarkdown(const QString &source)
{
    return markdownAttributedString(source).text;
}

} // namespace Vesko
