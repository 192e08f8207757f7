// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryCoding.h"

#include <QCoreApplication>

#include <simdjson.h>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <system_error>
#include <thread>

namespace Vesko {

namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;
using simdjson::dom::object;

// The texts of this file, in the translation context "LibraryDecoder".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(LibraryDecoder)
};

// Thrown inside the decoder only, and turned into the error text at its door.
struct DecodeError
{
    QString text;
};

// The path from the root to the value being read, for error texts such as
// "projects[0].sections[2].notes[5]".
class Path
{
public:
    void push(std::string_view name) { m_parts.push_back({name, -1}); }
    void pushIndex(std::string_view name, qsizetype index) { m_parts.push_back({name, index}); }
    void pop() { m_parts.pop_back(); }

    QString text(std::string_view key) const
    {
        QString out;
        for (const Part &part : m_parts) {
            if (!out.isEmpty())
                out += u'.';
            out += QString::fromUtf8(part.name.data(), qsizetype(part.name.size()));
            if (part.index >= 0)
                out += u'[' + QString::number(part.index) + u']';
        }
        if (!key.empty()) {
            if (!out.isEmpty())
                out += u'.';
            out += QString::fromUtf8(key.data(), qsizetype(key.size()));
        }
        return out.isEmpty() ? Texts::tr("the document") : out;
    }

private:
    struct Part
    {
        std::string_view name;
        qsizetype index;
    };
    std::vector<Part> m_parts;
};

const char *typeName(element_type type)
{
    switch (type) {
    case element_type::ARRAY:
        return QT_TRANSLATE_NOOP("LibraryDecoder", "an array");
    case element_type::OBJECT:
        return QT_TRANSLATE_NOOP("LibraryDecoder", "an object");
    case element_type::INT64:
    case element_type::UINT64:
    case element_type::DOUBLE:
        return QT_TRANSLATE_NOOP("LibraryDecoder", "a number");
    case element_type::STRING:
        return QT_TRANSLATE_NOOP("LibraryDecoder", "a string");
    case element_type::BOOL:
        return QT_TRANSLATE_NOOP("LibraryDecoder", "a boolean");
    case element_type::NULL_VALUE:
        return QT_TRANSLATE_NOOP("LibraryDecoder", "null");
    }
    return QT_TRANSLATE_NOOP("LibraryDecoder", "a value");
}

// UTF-8 that the parser has already validated, as UTF-16. ASCII, the common
// case, is widened sixteen bytes at a time; a multi-byte sequence is decoded
// where the first non-ASCII byte of a block stands.
QString fromValidatedUtf8(std::string_view text)
{
    QString out(qsizetype(text.size()), Qt::Uninitialized);
    char16_t *const begin = reinterpret_cast<char16_t *>(out.data());
    char16_t *d = begin;
    auto p = reinterpret_cast<const unsigned char *>(text.data());
    const auto end = p + text.size();
    while (p < end) {
#ifdef __SSE2__
        if (end - p >= 16) {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
            const unsigned high = unsigned(_mm_movemask_epi8(block));
            const __m128i zero = _mm_setzero_si128();
            _mm_storeu_si128(reinterpret_cast<__m128i *>(d), _mm_unpacklo_epi8(block, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i *>(d + 8), _mm_unpackhi_epi8(block, zero));
            // Everything before the first non-ASCII byte was written correctly.
            const int ascii = high ? std::countr_zero(high) : 16;
            p += ascii;
            d += ascii;
            if (!high)
                continue;
        }
#endif
        // A run of non-ASCII text one character at a time, without trying
        // the block test at every character.
        do {
            const unsigned c = *p;
            if (c < 0x80) {
                *d++ = char16_t(c);
                p += 1;
            } else if (c < 0xE0) {
                *d++ = char16_t((c & 0x1F) << 6 | (p[1] & 0x3F));
                p += 2;
            } else if (c < 0xF0) {
                *d++ = char16_t((c & 0x0F) << 12 | (p[1] & 0x3F) << 6 | (p[2] & 0x3F));
                p += 3;
            } else {
                const std::uint32_t point
                    = ((c & 0x07) << 18 | (p[1] & 0x3F) << 12 | (p[2] & 0x3F) << 6 | (p[3] & 0x3F))
                    - 0x10000;
                *d++ = char16_t(0xD800 + (point >> 10));
                *d++ = char16_t(0xDC00 + (point & 0x3FF));
                p += 4;
            }
        } while (p < end && *p >= 0x80);
    }
    out.truncate(d - begin);
    return out;
}

// Reads the members of one JSON object into the fields of a value. Every
// member is looked at once; required members that never came are reported
// when the object is done.
class Reader
{
public:
    //! A notes array whose notes are read later, perhaps on another thread,
    //! into the section at projects[project].sections[section].
    struct DeferredNotes
    {
        qsizetype project;
        qsizetype section;
        simdjson::dom::array items;
    };

    explicit Reader(QDateTime timeOfReading, std::vector<DeferredNotes> *deferred = nullptr)
        : m_timeOfReading(std::move(timeOfReading))
        , m_deferred(deferred)
    { }

    //! Reads one note; for the notes that library() left to be read later.
    Note readNote(element value) { return note(value); }

    Library library(element root)
    {
        const object members = expectObject(root, {});
        Library library;
        bool hasVersion = false;
        bool hasProjects = false;
        for (auto [key, value] : members) {
            if (key == "version") {
                library.version = integer(value, key);
                hasVersion = true;
            } else if (key == "projects") {
                const simdjson::dom::array items = expectArray(value, key);
                library.projects.reserve(qsizetype(items.size()));
                qsizetype index = 0;
                for (element item : items) {
                    m_currentProject = library.projects.size();
                    m_path.pushIndex("projects", index++);
                    library.projects.append(project(item));
                    m_path.pop();
                }
                hasProjects = true;
            } else if (key == "activeProjectID") {
                library.activeProjectID = optionalUuid(value, key);
            }
        }
        require(hasVersion, "version");
        require(hasProjects, "projects");
        return library;
    }

private:
    Project project(element value)
    {
        const object members = expectObject(value, {});
        Project project;
        bool hasId = false, hasName = false, hasSections = false, hasCreatedAt = false;
        for (auto [key, field] : members) {
            if (key == "id") {
                project.id = uuid(field, key);
                hasId = true;
            } else if (key == "name") {
                project.name = string(field, key);
                hasName = true;
            } else if (key == "sections") {
                const simdjson::dom::array items = expectArray(field, key);
                project.sections.reserve(qsizetype(items.size()));
                qsizetype index = 0;
                for (element item : items) {
                    m_currentSection = project.sections.size();
                    m_path.pushIndex("sections", index++);
                    project.sections.append(section(item));
                    m_path.pop();
                }
                hasSections = true;
            } else if (key == "createdAt") {
                project.createdAt = date(field, key);
                hasCreatedAt = true;
            } else if (key == "activeSectionID") {
                project.activeSectionID = optionalUuid(field, key);
            }
        }
        require(hasId, "id");
        require(hasName, "name");
        require(hasSections, "sections");
        require(hasCreatedAt, "createdAt");
        return project;
    }

    NoteSection section(element value)
    {
        const object members = expectObject(value, {});
        NoteSection section;
        bool hasId = false, hasTitle = false, hasNotes = false, hasCollapsed = false,
             hasCreatedAt = false;
        for (auto [key, field] : members) {
            if (key == "id") {
                section.id = uuid(field, key);
                hasId = true;
            } else if (key == "title") {
                section.title = string(field, key);
                hasTitle = true;
            } else if (key == "notes") {
                const simdjson::dom::array items = expectArray(field, key);
                if (m_deferred) {
                    m_deferred->push_back({m_currentProject, m_currentSection, items});
                } else {
                    section.notes.reserve(qsizetype(items.size()));
                    qsizetype index = 0;
                    for (element item : items) {
                        m_path.pushIndex("notes", index++);
                        section.notes.append(note(item));
                        m_path.pop();
                    }
                }
                hasNotes = true;
            } else if (key == "isCollapsed") {
                section.isCollapsed = boolean(field, key);
                hasCollapsed = true;
            } else if (key == "createdAt") {
                section.createdAt = date(field, key);
                hasCreatedAt = true;
            } else if (key == "isAutomatic") {
                section.isAutomatic = optionalBoolean(field, key).value_or(false);
            }
        }
        require(hasId, "id");
        require(hasTitle, "title");
        require(hasNotes, "notes");
        require(hasCollapsed, "isCollapsed");
        require(hasCreatedAt, "createdAt");
        return section;
    }

    Note note(element value)
    {
        const object members = expectObject(value, {});
        Note note;
        bool hasId = false, hasText = false;
        std::optional<QDateTime> createdAt, updatedAt;
        for (auto [key, field] : members) {
            if (key == "id") {
                note.id = uuid(field, key);
                hasId = true;
            } else if (key == "text") {
                note.text = string(field, key);
                hasText = true;
            } else if (key == "isDone") {
                note.isDone = optionalBoolean(field, key).value_or(false);
            } else if (key == "createdAt") {
                createdAt = optionalDate(field, key);
            } else if (key == "updatedAt") {
                updatedAt = optionalDate(field, key);
            } else if (key == "completedAt") {
                note.completedAt = optionalDate(field, key);
            } else if (key == "source") {
                if (!field.is_null()) {
                    m_path.push("source");
                    note.source = source(field);
                    m_path.pop();
                }
            } else if (key == "attachments") {
                if (!field.is_null()) {
                    const simdjson::dom::array items = expectArray(field, key);
                    note.attachments.reserve(qsizetype(items.size()));
                    qsizetype index = 0;
                    for (element item : items) {
                        m_path.pushIndex("attachments", index++);
                        note.attachments.append(attachment(item));
                        m_path.pop();
                    }
                }
            }
        }
        require(hasId, "id");
        require(hasText, "text");
        note.createdAt = createdAt.value_or(m_timeOfReading);
        note.updatedAt = updatedAt.value_or(note.createdAt);
        return note;
    }

    NoteSource source(element value)
    {
        const object members = expectObject(value, {});
        NoteSource source;
        bool hasAppName = false;
        for (auto [key, field] : members) {
            if (key == "appName") {
                source.appName = string(field, key);
                hasAppName = true;
            } else if (key == "bundleIdentifier") {
                source.bundleIdentifier = optionalString(field, key);
            } else if (key == "windowTitle") {
                source.windowTitle = optionalString(field, key);
            }
        }
        require(hasAppName, "appName");
        return source;
    }

    NoteAttachment attachment(element value)
    {
        const object members = expectObject(value, {});
        NoteAttachment attachment;
        bool hasId = false, hasFileName = false, hasStoredFileName = false, hasKind = false,
             hasCreatedAt = false;
        for (auto [key, field] : members) {
            if (key == "id") {
                attachment.id = uuid(field, key);
                hasId = true;
            } else if (key == "fileName") {
                attachment.fileName = string(field, key);
                hasFileName = true;
            } else if (key == "storedFileName") {
                attachment.storedFileName = string(field, key);
                hasStoredFileName = true;
            } else if (key == "kind") {
                const QString raw = string(field, key);
                const auto kind = kindFromRawValue(raw);
                if (!kind) {
                    fail(Texts::tr("%1 is “%2”, which is neither “image” nor “file”.")
                             .arg(m_path.text(key), raw));
                }
                attachment.kind = *kind;
                hasKind = true;
            } else if (key == "createdAt") {
                attachment.createdAt = date(field, key);
                hasCreatedAt = true;
            } else if (key == "contentTypeIdentifier") {
                attachment.contentTypeIdentifier = optionalString(field, key);
            } else if (key == "byteCount") {
                if (!field.is_null())
                    attachment.byteCount = integer(field, key);
            }
        }
        require(hasId, "id");
        require(hasFileName, "fileName");
        require(hasStoredFileName, "storedFileName");
        require(hasKind, "kind");
        require(hasCreatedAt, "createdAt");
        return attachment;
    }

    // -- values -------------------------------------------------------------

    [[noreturn]] void fail(const QString &text) { throw DecodeError {text}; }

    void require(bool present, std::string_view key)
    {
        if (!present)
            fail(Texts::tr("%1 is missing.").arg(m_path.text(key)));
    }

    [[noreturn]] void wrongType(element value, std::string_view key, const char *expected)
    {
        if (value.is_null())
            fail(Texts::tr("%1 is null.").arg(m_path.text(key)));
        fail(Texts::tr("%1 should be %2 but is %3.")
                 .arg(m_path.text(key), Texts::tr(expected), Texts::tr(typeName(value.type()))));
    }

    object expectObject(element value, std::string_view key)
    {
        object members;
        if (value.get(members) != simdjson::SUCCESS)
            wrongType(value, key, QT_TRANSLATE_NOOP("LibraryDecoder", "an object"));
        return members;
    }

    simdjson::dom::array expectArray(element value, std::string_view key)
    {
        simdjson::dom::array items;
        if (value.get(items) != simdjson::SUCCESS)
            wrongType(value, key, QT_TRANSLATE_NOOP("LibraryDecoder", "an array"));
        return items;
    }

    QString string(element value, std::string_view key)
    {
        std::string_view text;
        if (value.get(text) != simdjson::SUCCESS)
            wrongType(value, key, QT_TRANSLATE_NOOP("LibraryDecoder", "a string"));
        return fromValidatedUtf8(text);
    }

    std::optional<QString> optionalString(element value, std::string_view key)
    {
        if (value.is_null())
            return std::nullopt;
        return string(value, key);
    }

    bool boolean(element value, std::string_view key)
    {
        bool flag = false;
        if (value.get(flag) != simdjson::SUCCESS)
            wrongType(value, key, QT_TRANSLATE_NOOP("LibraryDecoder", "a boolean"));
        return flag;
    }

    std::optional<bool> optionalBoolean(element value, std::string_view key)
    {
        if (value.is_null())
            return std::nullopt;
        return boolean(value, key);
    }

    // A whole number. A number written with a fraction or exponent is taken
    // when its value is a whole number that fits.
    qint64 integer(element value, std::string_view key)
    {
        switch (value.type()) {
        case element_type::INT64:
            return int64_t(value);
        case element_type::UINT64:
            break;
        case element_type::DOUBLE: {
            const double number = double(value);
            if (number >= -9.2e18 && number <= 9.2e18 && number == double(qint64(number)))
                return qint64(number);
            break;
        }
        default:
            wrongType(value, key, QT_TRANSLATE_NOOP("LibraryDecoder", "a whole number"));
        }
        fail(Texts::tr("%1 is not a whole number in range.").arg(m_path.text(key)));
    }

    QUuid uuid(element value, std::string_view key)
    {
        std::string_view text;
        if (value.get(text) != simdjson::SUCCESS)
            wrongType(value, key, QT_TRANSLATE_NOOP("LibraryDecoder", "a UUID string"));
        const std::optional<QUuid> id = parseDocumentUuid(text);
        if (!id) {
            fail(
                Texts::tr("%1 is “%2”, which is not a UUID.")
                    .arg(m_path.text(key), QString::fromUtf8(text.data(), qsizetype(text.size()))));
        }
        return *id;
    }

    std::optional<QUuid> optionalUuid(element value, std::string_view key)
    {
        if (value.is_null())
            return std::nullopt;
        return uuid(value, key);
    }

    QDateTime date(element value, std::string_view key)
    {
        std::string_view text;
        if (value.get(text) != simdjson::SUCCESS)
            wrongType(value, key, QT_TRANSLATE_NOOP("LibraryDecoder", "a date string"));
        QDateTime date = parseDocumentDate(text);
        if (!date.isValid()) {
            fail(
                Texts::tr("%1 is “%2”, which is not an ISO-8601 date.")
                    .arg(m_path.text(key), QString::fromUtf8(text.data(), qsizetype(text.size()))));
        }
        return date;
    }

    std::optional<QDateTime> optionalDate(element value, std::string_view key)
    {
        if (value.is_null())
            return std::nullopt;
        return date(value, key);
    }

    QDateTime m_timeOfReading;
    std::vector<DeferredNotes> *m_deferred = nullptr;
    qsizetype m_currentProject = 0;
    qsizetype m_currentSection = 0;
    Path m_path;
};

// The value of each hexadecimal digit, -1 for every other byte.
constexpr std::array<signed char, 256> hexValues = [] {
    std::array<signed char, 256> table {};
    table.fill(-1);
    for (int i = 0; i < 10; ++i)
        table['0' + i] = static_cast<signed char>(i);
    for (int i = 0; i < 6; ++i) {
        table['a' + i] = static_cast<signed char>(10 + i);
        table['A' + i] = static_cast<signed char>(10 + i);
    }
    return table;
}();

int hexValue(char c)
{
    return hexValues[static_cast<unsigned char>(c)];
}

// Reads exactly n decimal digits.
bool digits(std::string_view text, size_t at, size_t n, int &value)
{
    if (at + n > text.size())
        return false;
    value = 0;
    for (size_t i = at; i < at + n; ++i) {
        const char c = text[i];
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + (c - '0');
    }
    return true;
}

} // namespace

std::optional<QUuid> parseDocumentUuid(std::string_view text)
{
    if (text.size() != 36)
        return std::nullopt;
    char bytes[16];
    size_t at = 0;
    for (int i = 0; i < 16; ++i) {
        if (at == 8 || at == 13 || at == 18 || at == 23) {
            if (text[at] != '-')
                return std::nullopt;
            ++at;
        }
        const int high = hexValue(text[at]);
        const int low = hexValue(text[at + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes[i] = char(high << 4 | low);
        at += 2;
    }
    return QUuid::fromRfc4122(QByteArrayView(bytes, 16));
}

QDateTime parseDocumentDate(std::string_view text)
{
    using namespace std::chrono;
    // YYYY-MM-DDTHH:MM:SS[.fraction](Z|+HH:MM|-HH:MM)
    int y, mo, d, h, mi, s;
    if (!digits(text, 0, 4, y) || text.size() < 20 || text[4] != '-' || !digits(text, 5, 2, mo)
        || text[7] != '-' || !digits(text, 8, 2, d) || (text[10] != 'T' && text[10] != 't')
        || !digits(text, 11, 2, h) || text[13] != ':' || !digits(text, 14, 2, mi) || text[16] != ':'
        || !digits(text, 17, 2, s)) {
        return {};
    }
    if (h > 23 || mi > 59 || s > 59)
        return {};
    const year_month_day ymd {year {y}, month {unsigned(mo)}, day {unsigned(d)}};
    if (!ymd.ok())
        return {};

    size_t at = 19;
    qint64 millis = 0;
    if (at < text.size() && text[at] == '.') {
        ++at;
        int scale = 100;
        const size_t start = at;
        while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
            millis += (text[at] - '0') * scale;
            scale /= 10;
            ++at;
        }
        if (at == start)
            return {};
    }

    qint64 offsetSeconds = 0;
    if (at < text.size() && (text[at] == 'Z' || text[at] == 'z')) {
        ++at;
    } else if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        const int sign = text[at] == '-' ? -1 : 1;
        int oh, om;
        if (!digits(text, at + 1, 2, oh) || at + 3 >= text.size() || text[at + 3] != ':'
            || !digits(text, at + 4, 2, om) || oh > 23 || om > 59) {
            return {};
        }
        offsetSeconds = sign * (oh * 3600 + om * 60);
        at += 6;
    } else {
        return {};
    }
    if (at != text.size())
        return {};

    const qint64 daysSinceEpoch = sys_days(ymd).time_since_epoch().count();
    const qint64 seconds = daysSinceEpoch * 86400 + h * 3600 + mi * 60 + s - offsetSeconds;
    return QDateTime::fromMSecsSinceEpoch(seconds * 1000 + millis, Qt::UTC);
}

static_assert(libraryParsePadding >= qsizetype(simdjson::SIMDJSON_PADDING));

namespace {

// Reads the library with its notes shared between this thread and one
// more, a run of notes at a time. Nothing when anything is wrong: the
// caller reads the document again to tell what.
std::optional<Library> readOnTwoThreads(element root, const QDateTime &now)
{
    std::vector<Reader::DeferredNotes> deferred;
    Library library;
    try {
        Reader reader(now, &deferred);
        library = reader.library(root);
    } catch (const DecodeError &) {
        return std::nullopt;
    }

    // Runs of one chunk of a section's notes each, starting where the
    // array's walk stands; the chunks become the section's list at the end.
    constexpr qsizetype runLength = NoteList::chunkSize;
    struct Run
    {
        Note *target;
        simdjson::dom::array::iterator from;
        qsizetype count;
    };
    std::vector<Run> runs;
    std::vector<QList<NoteList::Chunk>> chunks(deferred.size());
    qsizetype total = 0;
    for (size_t d = 0; d < deferred.size(); ++d) {
        const Reader::DeferredNotes &notes = deferred[d];
        // A section with its notes twice over is for the careful reading.
        if (d > 0 && deferred[d - 1].project == notes.project
            && deferred[d - 1].section == notes.section)
            return std::nullopt;
        qsizetype count = 0;
        for (auto it = notes.items.begin(); it != notes.items.end(); ++it)
            ++count;
        QList<NoteList::Chunk> &sectionChunks = chunks[d];
        sectionChunks.reserve((count + runLength - 1) / runLength);
        qsizetype index = 0;
        for (auto it = notes.items.begin(); it != notes.items.end(); ++it, ++index) {
            if (index % runLength == 0) {
                sectionChunks.append(NoteList::Chunk(std::min(runLength, count - index)));
                runs.push_back({sectionChunks.last().data(), it, sectionChunks.last().size()});
            }
        }
        total += count;
    }

    std::atomic<size_t> next {0};
    std::atomic<bool> failed {false};
    auto work = [&runs, &next, &failed, &now] {
        Reader reader(now);
        try {
            for (size_t r = next++; r < runs.size() && !failed; r = next++) {
                auto it = runs[r].from;
                for (qsizetype i = 0; i < runs[r].count; ++i, ++it)
                    runs[r].target[i] = reader.readNote(*it);
            }
        } catch (...) {
            // Told again by the careful reading.
            failed = true;
        }
    };
    std::thread helper;
    if (total >= 2 * runLength) {
        try {
            helper = std::thread(work);
        } catch (const std::system_error &) {
            // No thread to be had: this one reads every run.
        }
    }
    work();
    if (helper.joinable())
        helper.join();
    if (failed)
        return std::nullopt;
    for (size_t d = 0; d < deferred.size(); ++d) {
        library.projects[deferred[d].project].sections[deferred[d].section].notes
            = NoteList::fromChunks(std::move(chunks[d]));
    }
    return library;
}

// Parses \a document and builds the library from the parsed values. When
// \a owned is the document's own buffer, it is let go once parsed: the
// parser keeps copies of the strings, and the library is built from them.
std::optional<Library> decode(const QByteArray &document, QByteArray *owned, QString *errorText)
{
    auto failWith = [errorText](const QString &text) -> std::optional<Library> {
        if (errorText)
            *errorText = text;
        return std::nullopt;
    };

    // simdjson reads a little past the end of the input; a buffer with that
    // much spare capacity is parsed in place, any other one is copied.
    simdjson::dom::parser parser;
    const bool hasPadding
        = document.capacity() - document.size() >= qsizetype(simdjson::SIMDJSON_PADDING);
    element root;
    const simdjson::error_code status
        = parser.parse(document.constData(), size_t(document.size()), !hasPadding).get(root);
    if (owned)
        *owned = QByteArray();
    if (status != simdjson::SUCCESS) {
        if (status == simdjson::UTF8_ERROR)
            return failWith(Texts::tr("The file is not valid UTF-8 text."));
        if (status == simdjson::EMPTY)
            return failWith(Texts::tr("The file is empty."));
        return failWith(Texts::tr("The file is not valid JSON: %1.")
                            .arg(QString::fromUtf8(simdjson::error_message(status))));
    }

    const QDateTime now = currentDate();
    if (std::optional<Library> library = readOnTwoThreads(root, now))
        return library;
    // Read again one value after the other, for the first fault in the
    // document's order and its exact place.
    try {
        Reader reader(now);
        return reader.library(root);
    } catch (const DecodeError &error) {
        return failWith(error.text);
    }
}

} // namespace

std::optional<Library> decodeLibrary(const QByteArray &document, QString *errorText)
{
    return decode(document, nullptr, errorText);
}

std::optional<Library> decodeLibrary(QByteArray &&document, QString *errorText)
{
    // A buffer shared with another owner stays alive there anyway.
    QByteArray taken = std::move(document);
    return decode(taken, &taken, errorText);
}

} // namespace Vesko
