// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryCoding.h"

#include <array>
#include <chrono>

namespace Vesko {

namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

// Writes the document into one growing buffer. Members are written in the
// order the caller gives; every caller gives them in ascending byte order.
class DocumentWriter
{
public:
    explicit DocumentWriter(qsizetype expectedSize) { m_out.reserve(expectedSize); }

    QByteArray take() { return std::move(m_out); }

    void beginObject()
    {
        m_out.append('{');
        ++m_depth;
        m_first = true;
    }

    void endObject()
    {
        --m_depth;
        if (!m_first)
            newline();
        m_out.append('}');
        m_first = false;
    }

    void beginArray()
    {
        m_out.append('[');
        ++m_depth;
        m_first = true;
    }

    void endArray()
    {
        --m_depth;
        if (!m_first)
            newline();
        m_out.append(']');
        m_first = false;
    }

    // Starts an array element.
    void element() { separator(); }

    // Starts an object member: its key, a blank, a colon and a blank.
    void key(std::string_view name)
    {
        separator();
        m_out.append('"');
        m_out.append(name.data(), qsizetype(name.size()));
        m_out.append("\" : ", 4);
    }

    void string(const QString &value)
    {
        m_out.append('"');
        appendEscaped(value.toUtf8());
        m_out.append('"');
        m_first = false;
    }

    void rawString(const QByteArray &ascii)
    {
        m_out.append('"');
        m_out.append(ascii);
        m_out.append('"');
        m_first = false;
    }

    void boolean(bool value)
    {
        if (value)
            m_out.append("true", 4);
        else
            m_out.append("false", 5);
        m_first = false;
    }

    void integer(qint64 value)
    {
        m_out.append(QByteArray::number(value));
        m_first = false;
    }

    void uuid(const QUuid &id) { rawString(uuidText(id)); }

    void date(const QDateTime &value) { rawString(formatDocumentDate(value)); }

    static QByteArray uuidText(const QUuid &id)
    {
        const QByteArray bytes = id.toRfc4122();
        QByteArray text(36, Qt::Uninitialized);
        char *out = text.data();
        for (int i = 0; i < 16; ++i) {
            if (i == 4 || i == 6 || i == 8 || i == 10)
                *out++ = '-';
            const auto byte = static_cast<unsigned char>(bytes.at(i));
            *out++ = hexDigits[byte >> 4];
            *out++ = hexDigits[byte & 0xF];
        }
        return text;
    }

private:
    void separator()
    {
        if (!m_first)
            m_out.append(',');
        newline();
        m_first = false;
    }

    void newline()
    {
        m_out.append('\n');
        m_out.append(qsizetype(m_depth) * 2, ' ');
    }

    // JSON escapes for the characters that must be escaped; everything else,
    // slashes and non-ASCII text included, is written as it is.
    void appendEscaped(const QByteArray &utf8)
    {
        const char *begin = utf8.constData();
        const char *end = begin + utf8.size();
        const char *run = begin;
        for (const char *p = begin; p != end; ++p) {
            const auto c = static_cast<unsigned char>(*p);
            if (c >= 0x20 && c != '"' && c != '\\')
                continue;
            m_out.append(run, p - run);
            run = p + 1;
            switch (c) {
            case '"':
                m_out.append("\\\"", 2);
                break;
            case '\\':
                m_out.append("\\\\", 2);
                break;
            case '\n':
                m_out.append("\\n", 2);
                break;
            case '\r':
                m_out.append("\\r", 2);
                break;
            case '\t':
                m_out.append("\\t", 2);
                break;
            case '\b':
                m_out.append("\\b", 2);
                break;
            case '\f':
                m_out.append("\\f", 2);
                break;
            default: {
                const char escape[6] = {'\\', 'u', '0', '0', hexDigits[c >> 4], hexDigits[c & 0xF]};
                m_out.append(escape, 6);
            }
            }
        }
        m_out.append(run, end - run);
    }

    QByteArray m_out;
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

void writeSection(DocumentWriter &w, const NoteSection &section)
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
    w.beginArray();
    for (const Note &note : section.notes) {
        w.element();
        writeNote(w, note);
    }
    w.endArray();
    w.key("title");
    w.string(section.title);
    w.endObject();
}

void writeProject(DocumentWriter &w, const Project &project)
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
        writeSection(w, section);
    }
    w.endArray();
    w.endObject();
}

} // namespace

QByteArray formatDocumentDate(const QDateTime &date)
{
    using namespace std::chrono;
    // Whole seconds, rounded towards the past also before 1970.
    const qint64 msecs = date.isValid() ? date.toMSecsSinceEpoch() : 0;
    const sys_seconds instant {seconds {msecs / 1000 - (msecs % 1000 < 0 ? 1 : 0)}};
    const sys_days day = floor<days>(instant);
    const year_month_day ymd {day};
    const hh_mm_ss<seconds> time {instant - day};

    const int year = int(ymd.year());
    if (year < 0 || year > 9999)
        return date.toUTC().toString(Qt::ISODate).toLatin1();

    char text[20];
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
    return QByteArray(text, 20);
}

QByteArray encodeLibrary(const Library &library)
{
    // About 600 bytes a note is typical; reserving avoids most regrowth.
    DocumentWriter w(4096 + noteCount(library) * 640);
    w.beginObject();
    if (library.activeProjectID) {
        w.key("activeProjectID");
        w.uuid(*library.activeProjectID);
    }
    w.key("projects");
    w.beginArray();
    for (const Project &project : library.projects) {
        w.element();
        writeProject(w, project);
    }
    w.endArray();
    w.key("version");
    w.integer(library.version);
    w.endObject();
    QByteArray document = w.take();
    document.append('\n');
    return document;
}

} // namespace Vesko
