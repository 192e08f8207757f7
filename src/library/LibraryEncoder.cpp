// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryCoding.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <chrono>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Vesko {

namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

// Writes "YYYY-MM-DDTHH:MM:SSZ" for whole seconds since the epoch; false for
// a year that does not have four digits.
bool writeCompactDate(char *text, qint64 msecs)
{
    using namespace std::chrono;
    // Whole seconds, rounded towards the past also before 1970.
    const sys_seconds instant {seconds {msecs / 1000 - (msecs % 1000 < 0 ? 1 : 0)}};
    const sys_days day = floor<days>(instant);
    const year_month_day ymd {day};
    const hh_mm_ss<seconds> time {instant - day};
    const int year = int(ymd.year());
    if (year < 0 || year > 9999)
        return false;

    auto put2 = [](char *at, unsigned value) {
        at[0] = char('0' + value / 10);
        at[1] = char('0' + value % 10);
    };
    put2(text, unsigned(year) / 100);
    put2(text + 2, unsigned(year) % 100);
    text[4] = '-';
    put2(text + 5, unsigned(ymd.month()));
    text[7] = '-';
    put2(text + 8, unsigned(ymd.day()));
    text[10] = 'T';
    put2(text + 11, unsigned(time.hours().count()));
    text[13] = ':';
    put2(text + 14, unsigned(time.minutes().count()));
    text[16] = ':';
    put2(text + 17, unsigned(time.seconds().count()));
    text[19] = 'Z';
    return true;
}

// Writes the document into one buffer through a cursor. Members are written
// in the order the caller gives; every caller gives them in ascending byte order.
class DocumentWriter
{
public:
    using Sink = std::function<bool(const char *, qsizetype)>;

    //! Collects the whole document in memory; \a depth is the nesting of the
    //! value written first, for a piece of a document.
    explicit DocumentWriter(qsizetype expectedSize, int depth = 0)
        : m_depth(depth)
    {
        m_out.resize(std::max<qsizetype>(expectedSize, 256));
    }

    //! Hands the document to \a sink in pieces of about \a pieceSize bytes.
    DocumentWriter(const Sink *sink, qsizetype pieceSize)
        : m_sink(sink)
    {
        m_out.resize(pieceSize);
    }

    QByteArray take()
    {
        m_out.truncate(m_size);
        return std::move(m_out);
    }

    //! The bytes written so far, in memory; in pieces, since the last piece.
    qsizetype size() const { return m_size; }
    int depth() const { return m_depth; }

    //! Writes a value encoded before at the same depth, as it stands.
    void raw(const char *data, qsizetype n)
    {
        if (m_sink && n >= (1 << 16)) {
            // A large piece goes to the sink as it is, without a copy.
            flush();
            if (m_sinkOk)
                m_sinkOk = (*m_sink)(data, n);
        } else {
            append(data, n);
        }
        m_first = false;
    }

    //! Hands what is left to the sink; false if the sink failed on the way.
    bool finish() { return flush() && m_sinkOk; }

    void beginObject()
    {
        put('{');
        ++m_depth;
        m_first = true;
    }

    void endObject()
    {
        --m_depth;
        if (!m_first)
            newline();
        put('}');
        m_first = false;
    }

    void beginArray()
    {
        put('[');
        ++m_depth;
        m_first = true;
    }

    void endArray()
    {
        --m_depth;
        if (!m_first)
            newline();
        put(']');
        m_first = false;
    }

    // Ends the document's last line.
    void endLine() { put('\n'); }

    // Starts an array element.
    void element() { separator(); }

    // Starts an object member: its key, a blank, a colon and a blank.
    void key(std::string_view name)
    {
        separator();
        char *out = room(qsizetype(name.size()) + 5);
        *out++ = '"';
        std::memcpy(out, name.data(), name.size());
        out += name.size();
        std::memcpy(out, "\" : ", 4);
        m_size += qsizetype(name.size()) + 5;
    }

    void string(const QString &value)
    {
        // At most six bytes a UTF-16 unit (a \u00XX escape), and the quotes.
        char *const start = room(value.size() * 6 + 2);
        char *out = start;
        *out++ = '"';
        out = writeEscapedUtf8(
            out, reinterpret_cast<const char16_t *>(value.constData()), value.size());
        *out++ = '"';
        m_size += out - start;
        m_first = false;
    }

    void boolean(bool value)
    {
        if (value)
            append("true", 4);
        else
            append("false", 5);
        m_first = false;
    }

    void integer(qint64 value)
    {
        char *out = room(24);
        const auto result = std::to_chars(out, out + 24, value);
        m_size += result.ptr - out;
        m_first = false;
    }

    void uuid(const QUuid &id)
    {
        char *out = room(38);
        *out++ = '"';
        auto hex = [&out](unsigned value, int digits) {
            for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
                *out++ = hexDigits[(value >> shift) & 0xF];
        };
        hex(id.data1, 8);
        *out++ = '-';
        hex(id.data2, 4);
        *out++ = '-';
        hex(id.data3, 4);
        *out++ = '-';
        for (int i = 0; i < 8; ++i) {
            if (i == 2)
                *out++ = '-';
            hex(id.data4[i], 2);
        }
        *out++ = '"';
        m_size += 38;
        m_first = false;
    }

    void date(const QDateTime &value)
    {
        char *out = room(22);
        if (writeCompactDate(out + 1, value.isValid() ? value.toMSecsSinceEpoch() : 0)) {
            out[0] = '"';
            out[21] = '"';
            m_size += 22;
        } else {
            put('"');
            const QByteArray text = formatDocumentDate(value);
            append(text.constData(), text.size());
            put('"');
        }
        m_first = false;
    }

private:
    // Makes room for \a n more bytes and returns where they go.
    char *room(qsizetype n)
    {
        if (m_size + n > m_out.size()) {
            if (m_sink)
                flush();
            if (m_size + n > m_out.size())
                m_out.resize(std::max(m_out.size() * 2, m_size + n));
        }
        return m_out.data() + m_size;
    }

    bool flush()
    {
        if (m_sink && m_size > 0) {
            if (m_sinkOk)
                m_sinkOk = (*m_sink)(m_out.constData(), m_size);
            m_size = 0;
        }
        return m_sinkOk;
    }

    void put(char c)
    {
        *room(1) = c;
        ++m_size;
    }

    void append(const char *data, qsizetype n)
    {
        std::memcpy(room(n), data, size_t(n));
        m_size += n;
    }

    void separator()
    {
        if (!m_first)
            put(',');
        newline();
        m_first = false;
    }

    void newline()
    {
        const qsizetype indent = qsizetype(m_depth) * 2;
        char *out = room(indent + 1);
        *out = '\n';
        std::memset(out + 1, ' ', size_t(indent));
        m_size += indent + 1;
    }

    // UTF-16 to UTF-8 with the JSON escapes for quotes, backslashes and
    // control characters; slashes and non-ASCII text are written as they are.
    // A lone surrogate becomes U+FFFD.
    static char *writeEscapedUtf8(char *out, const char16_t *in, qsizetype length)
    {
        const char16_t *const end = in + length;
        while (in < end) {
#ifdef __SSE2__
            if (end - in >= 8) {
                const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
                const __m128i nonAscii = _mm_cmpeq_epi16(
                    _mm_and_si128(units, _mm_set1_epi16(short(0xFF80))), _mm_setzero_si128());
                const __m128i special
                    = _mm_or_si128(_mm_or_si128(_mm_cmplt_epi16(units, _mm_set1_epi16(0x20)),
                                       _mm_cmpeq_epi16(units, _mm_set1_epi16('"'))),
                        _mm_cmpeq_epi16(units, _mm_set1_epi16('\\')));
                // Bits set for units that can be copied as single bytes.
                const unsigned plain
                    = unsigned(_mm_movemask_epi8(_mm_andnot_si128(special, nonAscii)));
                _mm_storel_epi64(reinterpret_cast<__m128i *>(out), _mm_packus_epi16(units, units));
                const int count = plain == 0xFFFF ? 8 : std::countr_one(plain) / 2;
                in += count;
                out += count;
                if (count == 8)
                    continue;
            }
#endif
            // One character at a time through a run of non-ASCII text, so that
            // the block test above is not tried, and failed, at every character.
            do {
                const char16_t c = *in++;
                if (c < 0x80) {
                    if (c >= 0x20 && c != '"' && c != '\\') {
                        *out++ = char(c);
                        continue;
                    }
                    *out++ = '\\';
                    switch (c) {
                    case '"':
                        *out++ = '"';
                        break;
                    case '\\':
                        *out++ = '\\';
                        break;
                    case '\n':
                        *out++ = 'n';
                        break;
                    case '\r':
                        *out++ = 'r';
                        break;
                    case '\t':
                        *out++ = 't';
                        break;
                    case '\b':
                        *out++ = 'b';
                        break;
                    case '\f':
                        *out++ = 'f';
                        break;
                    default:
                        *out++ = 'u';
                        *out++ = '0';
                        *out++ = '0';
                        *out++ = hexDigits[c >> 4];
                        *out++ = hexDigits[c & 0xF];
                    }
                } else if (c < 0x800) {
                    *out++ = char(0xC0 | c >> 6);
                    *out++ = char(0x80 | (c & 0x3F));
                } else if (c >= 0xD800 && c < 0xDC00 && in < end && *in >= 0xDC00 && *in < 0xE000) {
                    const char32_t point
                        = 0x10000 + ((char32_t(c) - 0xD800) << 10) + (char32_t(*in++) - 0xDC00);
                    *out++ = char(0xF0 | point >> 18);
                    *out++ = char(0x80 | ((point >> 12) & 0x3F));
                    *out++ = char(0x80 | ((point >> 6) & 0x3F));
                    *out++ = char(0x80 | (point & 0x3F));
                } else {
                    const char16_t unit = (c >= 0xD800 && c < 0xE000) ? char16_t(0xFFFD) : c;
                    *out++ = char(0xE0 | unit >> 12);
                    *out++ = char(0x80 | ((unit >> 6) & 0x3F));
                    *out++ = char(0x80 | (unit & 0x3F));
                }
            } while (in < end && *in >= 0x80);
        }
        return out;
    }

    QByteArray m_out;
    qsizetype m_size = 0;
    const Sink *m_sink = nullptr;
    bool m_sinkOk = true;
    int m_depth = 0;
    bool m_first = true;
};

void writeSource(DocumentWriter &w, const NoteSource &source)
{
    w.beginObject();
    w.key("appName");
    w.string(source.appName);
    if (source.bundleIdentifier) {
        w.key("bundleIdentifier");
        w.string(*source.bundleIdentifier);
    }
    if (source.windowTitle) {
        w.key("windowTitle");
        w.string(*source.windowTitle);
    }
    w.endObject();
}

void writeAttachment(DocumentWriter &w, const NoteAttachment &attachment)
{
    w.beginObject();
    if (attachment.byteCount) {
        w.key("byteCount");
        w.integer(*attachment.byteCount);
    }
    if (attachment.contentTypeIdentifier) {
        w.key("contentTypeIdentifier");
        w.string(*attachment.contentTypeIdentifier);
    }
    w.key("createdAt");
    w.date(attachment.createdAt);
    w.key("fileName");
    w.string(attachment.fileName);
    w.key("id");
    w.uuid(attachment.id);
    w.key("kind");
    w.string(kindRawValue(attachment.kind));
    w.key("storedFileName");
    w.string(attachment.storedFileName);
    w.endObject();
}

void writeNote(DocumentWriter &w, const Note &note)
{
    w.beginObject();
    w.key("attachments");
    w.beginArray();
    for (const NoteAttachment &attachment : note.attachments) {
        w.element();
        writeAttachment(w, attachment);
    }
    w.endArray();
    if (note.completedAt) {
        w.key("completedAt");
        w.date(*note.completedAt);
    }
    w.key("createdAt");
    w.date(note.createdAt);
    w.key("id");
    w.uuid(note.id);
    w.key("isDone");
    w.boolean(note.isDone);
    if (note.source) {
        w.key("source");
        writeSource(w, *note.source);
    }
    w.key("text");
    w.string(note.text);
    w.key("updatedAt");
    w.date(note.updatedAt);
    w.endObject();
}

// Whether two notes are the same values as far as their encoding goes:
// their texts and attachments share their buffers, the rest is equal.
bool sameEncodedNote(const Note &a, const Note &b)
{
    auto sameDate = [](const QDateTime &x, const QDateTime &y) {
        return x.isValid() == y.isValid()
            && (!x.isValid() || x.toMSecsSinceEpoch() == y.toMSecsSinceEpoch());
    };
    return a.id == b.id && a.isDone == b.isDone && a.text.size() == b.text.size()
        && (a.text.isEmpty() || a.text.constData() == b.text.constData())
        && a.attachments.size() == b.attachments.size()
        && (a.attachments.isEmpty() || a.attachments.constData() == b.attachments.constData())
        && sameDate(a.createdAt, b.createdAt) && sameDate(a.updatedAt, b.updatedAt)
        && a.completedAt.has_value() == b.completedAt.has_value()
        && (!a.completedAt || sameDate(*a.completedAt, *b.completedAt)) && a.source == b.source;
}

// Encodes the notes of sections, reusing the bytes of the last encoding for
// the notes that are still the same values, and keeps what it writes for
// the next one.
class NotesEncoder
{
public:
    explicit NotesEncoder(const EncodedSections &previous)
        : m_previous(previous)
    { }

    EncodedSections take() { return std::move(m_next); }

    //! The value of \a section's "notes" member at \a depth.
    const QByteArray &encode(const NoteSection &section, int depth)
    {
        const auto old = m_previous.sections.constFind(section.id);
        const EncodedSections::Section *previous
            = old != m_previous.sections.cend() && m_previous.depth == depth ? &*old : nullptr;
        if (previous && previous->notes.sharesAllChunks(section.notes)) {
            m_next.depth = depth;
            return m_next.sections.insert(section.id, *previous)->value;
        }
        m_next.depth = depth;

        EncodedSections::Section fresh;
        fresh.notes = section.notes;
        fresh.noteBounds.reserve(section.notes.size());
        DocumentWriter w(
            previous ? previous->value.size() + 4096 : 512 + section.notes.size() * 1024, depth);
        QHash<QUuid, qsizetype> previousIndex;
        // The chunks of the last encoding, by buffer: a chunk the two lists
        // share holds the same notes, written as one piece.
        QHash<const Note *, qsizetype> previousChunks;
        if (previous) {
            previousChunks.reserve(previous->notes.chunkCount());
            for (qsizetype c = 0; c < previous->notes.chunkCount(); ++c)
                previousChunks.insert(previous->notes.chunk(c).constData(), c);
        }
        w.beginArray();
        for (qsizetype c = 0; c < section.notes.chunkCount(); ++c) {
            const NoteList::Chunk &chunk = section.notes.chunk(c);
            const qsizetype kept = previousChunks.value(chunk.constData(), -1);
            if (kept >= 0 && NoteList::sameChunk(previous->notes.chunk(kept), chunk)) {
                const qsizetype first = previous->notes.chunkStart(kept);
                const qsizetype from = previous->noteBounds.at(first).first;
                const qsizetype to = previous->noteBounds.at(first + chunk.size() - 1).second;
                w.element();
                const qsizetype shift = w.size() - from;
                w.raw(previous->value.constData() + from, to - from);
                for (qsizetype i = first; i < first + chunk.size(); ++i) {
                    const auto [start, end] = previous->noteBounds.at(i);
                    fresh.noteBounds.emplace_back(start + shift, end + shift);
                }
                continue;
            }
            const qsizetype chunkStart = section.notes.chunkStart(c);
            for (qsizetype k = 0; k < chunk.size(); ++k) {
                const Note &note = chunk.at(k);
                w.element();
                const qsizetype start = w.size();
                const qsizetype at = previous
                    ? findPrevious(*previous, previousIndex, note, chunkStart + k)
                    : -1;
                if (at >= 0) {
                    const auto [from, to] = previous->noteBounds.at(at);
                    w.raw(previous->value.constData() + from, to - from);
                } else {
                    writeNote(w, note);
                }
                fresh.noteBounds.emplace_back(start, w.size());
            }
        }
        w.endArray();
        fresh.value = w.take();
        return m_next.sections.insert(section.id, std::move(fresh))->value;
    }

private:
    // The place of \a note in the previous encoding of its section, or -1:
    // where it stood, else wherever its id is.
    static qsizetype findPrevious(const EncodedSections::Section &previous,
        QHash<QUuid, qsizetype> &index, const Note &note, qsizetype position)
    {
        if (position < previous.notes.size() && sameEncodedNote(previous.notes.at(position), note))
            return position;
        if (index.isEmpty()) {
            index.reserve(previous.notes.size());
            for (qsizetype i = 0; i < previous.notes.size(); ++i)
                index.insert(previous.notes.at(i).id, i);
        }
        const qsizetype at = index.value(note.id, -1);
        return at >= 0 && sameEncodedNote(previous.notes.at(at), note) ? at : -1;
    }

    const EncodedSections &m_previous;
    EncodedSections m_next;
};

void writeSection(DocumentWriter &w, const NoteSection &section, NotesEncoder *notes)
{
    w.beginObject();
    w.key("createdAt");
    w.date(section.createdAt);
    w.key("id");
    w.uuid(section.id);
    w.key("isAutomatic");
    w.boolean(section.isAutomatic);
    w.key("isCollapsed");
    w.boolean(section.isCollapsed);
    w.key("notes");
    if (notes) {
        const QByteArray &value = notes->encode(section, w.depth());
        w.raw(value.constData(), value.size());
    } else {
        w.beginArray();
        for (const Note &note : section.notes) {
            w.element();
            writeNote(w, note);
        }
        w.endArray();
    }
    w.key("title");
    w.string(section.title);
    w.endObject();
}

void writeProject(DocumentWriter &w, const Project &project, NotesEncoder *notes)
{
    w.beginObject();
    if (project.activeSectionID) {
        w.key("activeSectionID");
        w.uuid(*project.activeSectionID);
    }
    w.key("createdAt");
    w.date(project.createdAt);
    w.key("id");
    w.uuid(project.id);
    w.key("name");
    w.string(project.name);
    w.key("sections");
    w.beginArray();
    for (const NoteSection &section : project.sections) {
        w.element();
        writeSection(w, section, notes);
    }
    w.endArray();
    w.endObject();
}

} // namespace

QByteArray formatDocumentDate(const QDateTime &date)
{
    char text[20];
    if (writeCompactDate(text, date.isValid() ? date.toMSecsSinceEpoch() : 0))
        return QByteArray(text, 20);
    return date.toUTC().toString(Qt::ISODate).toLatin1();
}

namespace {

void writeLibrary(DocumentWriter &w, const Library &library, NotesEncoder *notes = nullptr)
{
    w.beginObject();
    if (library.activeProjectID) {
        w.key("activeProjectID");
        w.uuid(*library.activeProjectID);
    }
    w.key("projects");
    w.beginArray();
    for (const Project &project : library.projects) {
        w.element();
        writeProject(w, project, notes);
    }
    w.endArray();
    w.key("version");
    w.integer(library.version);
    w.endObject();
    w.endLine();
}

// The document's size, near enough to allocate it once: the texts, and
// what a note's members take around them.
qsizetype estimatedSize(const Library &library)
{
    qsizetype size = 4096;
    for (const Project &project : library.projects) {
        size += 512;
        for (const NoteSection &section : project.sections) {
            size += 512 + section.title.size() * 3;
            for (const Note &note : section.notes)
                size += 448 + note.text.size() * 3 / 2 + note.attachments.size() * 512
                    + (note.source ? 256 : 0);
        }
    }
    return size;
}

} // namespace

QByteArray encodeLibrary(const Library &library)
{
    DocumentWriter w(estimatedSize(library));
    writeLibrary(w, library);
    return w.take();
}

bool encodeLibrary(const Library &library, const std::function<bool(const char *, qsizetype)> &sink,
    EncodedSections *encoded)
{
    DocumentWriter w(&sink, 1 << 20);
    if (!encoded) {
        writeLibrary(w, library);
        return w.finish();
    }
    NotesEncoder notes(*encoded);
    writeLibrary(w, library, &notes);
    if (!w.finish())
        return false;
    *encoded = notes.take();
    return true;
}

} // namespace Vesko
