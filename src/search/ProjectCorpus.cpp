// SPDX-License-Identifier: GPL-3.0-or-later

#include "search/ProjectCorpus.h"

namespace Vesko {

namespace {

// Chunks end after a note whose id falls on this mask, so that a note added
// or removed changes the chunk around it and no other; and at the latest
// after this many notes.
constexpr size_t boundaryMask = 0xFF;
constexpr qsizetype longestChunk = 1024;

bool endsChunk(const QUuid &id)
{
    return (qHash(id) & boundaryMask) == 0;
}

void appendCodePoint(char *&to, char32_t c)
{
    if (c < 0x80) {
        *to++ = char(c);
    } else if (c < 0x800) {
        *to++ = char(0xC0 | (c >> 6));
        *to++ = char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        *to++ = char(0xE0 | (c >> 12));
        *to++ = char(0x80 | ((c >> 6) & 0x3F));
        *to++ = char(0x80 | (c & 0x3F));
    } else {
        *to++ = char(0xF0 | (c >> 18));
        *to++ = char(0x80 | ((c >> 12) & 0x3F));
        *to++ = char(0x80 | ((c >> 6) & 0x3F));
        *to++ = char(0x80 | (c & 0x3F));
    }
}

// Each UTF-16 unit as QString::toLower() lower-cases it alone, or 0 for the
// few whose lower case is longer than one unit.
const char16_t *lowerTable()
{
    // Never freed: a search thread may still lower-case while the program's
    // statics are destroyed at exit.
    static const char16_t *const table = [] {
        auto *units = new char16_t[0x10000];
        for (char32_t u = 0; u < 0x10000; ++u) {
            const QString lowered = QString(QChar(char16_t(u))).toLower();
            units[u] = lowered.size() == 1 ? lowered.at(0).unicode() : 0;
        }
        return units;
    }();
    return table;
}

// Lower-cases \a text as QString::toLower() does and appends it as UTF-8,
// keeping a lone surrogate as three bytes of its own instead of replacing it,
// so that no two texts encode alike.
void appendLowered(QByteArray &out, QStringView text)
{
    const char16_t *const lower = lowerTable();
    const qsizetype start = out.size();
    // Three bytes per unit at most, but for the few that lower-case to more.
    out.resize(start + text.size() * 3);
    char *to = out.data() + start;
    const char16_t *from = text.utf16();
    const char16_t *const end = from + text.size();
    while (from < end) {
        const char16_t c = *from++;
        if (c < 0x80) {
            *to++ = char(c >= u'A' && c <= u'Z' ? c + 32 : c);
        } else if (QChar::isHighSurrogate(c) && from < end && QChar::isLowSurrogate(*from)) {
            appendCodePoint(to, QChar::toLower(QChar::surrogateToUcs4(c, *from++)));
        } else if (const char16_t l = lower[c]) {
            appendCodePoint(to, l);
        } else {
            const QString lowered = QString(QChar(c)).toLower();
            const qsizetype at = to - out.constData();
            out.resize(out.size() + lowered.size() * 3);
            to = out.data() + at;
            for (const QChar unit : lowered)
                appendCodePoint(to, unit.unicode());
        }
    }
    out.resize(to - out.constData());
}

// \a text, lower-cased already, as appendLowered() would encode it.
void appendEncoded(QByteArray &out, QStringView text)
{
    const qsizetype start = out.size();
    out.resize(start + text.size() * 3);
    char *to = out.data() + start;
    const char16_t *from = text.utf16();
    const char16_t *const end = from + text.size();
    while (from < end) {
        const char16_t c = *from++;
        if (QChar::isHighSurrogate(c) && from < end && QChar::isLowSurrogate(*from))
            appendCodePoint(to, QChar::surrogateToUcs4(c, *from++));
        else
            appendCodePoint(to, c);
    }
    out.resize(to - out.constData());
}

} // namespace

void ProjectCorpus::Chunk::addLoweredField(const QString &source)
{
    appendLowered(text, source);
    fieldEnds.append(quint32(text.size()));
    fieldOwners.append(quint32(noteIDs.size() - 1));
}

bool ProjectCorpus::Chunk::matches(const QList<const Note *> &notes) const
{
    if (notes.size() != noteIDs.size())
        return false;
    for (qsizetype i = 0; i < notes.size(); ++i) {
        const Note &note = *notes[i];
        if (note.id != noteIDs[i] || note.text.constData() != sourceTexts[i].constData()
            || note.text.size() != sourceTexts[i].size()
            || note.attachments.constData() != sourceAttachments[i].constData()
            || note.attachments.size() != sourceAttachments[i].size())
            return false;
    }
    return true;
}

std::shared_ptr<const ProjectCorpus::Chunk> ProjectCorpus::Chunk::make(
    const QList<const Note *> &notes)
{
    auto chunk = std::make_shared<Chunk>();
    qsizetype bytes = 0;
    for (const Note *note : notes)
        bytes += note->text.size() + 16;
    chunk->text.reserve(bytes + bytes / 8);
    chunk->noteIDs.reserve(notes.size());
    chunk->firstFields.reserve(notes.size());
    chunk->sourceTexts.reserve(notes.size());
    chunk->sourceAttachments.reserve(notes.size());
    for (const Note *note : notes) {
        chunk->noteIDs.append(note->id);
        chunk->firstFields.append(quint32(chunk->fieldEnds.size()));
        chunk->sourceTexts.append(note->text);
        chunk->sourceAttachments.append(note->attachments);
        chunk->addLoweredField(note->text);
        for (const NoteAttachment &attachment : note->attachments)
            chunk->addLoweredField(attachment.fileName);
    }
    chunk->text.squeeze();
    return chunk;
}

std::shared_ptr<const ProjectCorpus> ProjectCorpus::make(
    const Project &project, const ProjectCorpus *previous)
{
    auto corpus = std::make_shared<ProjectCorpus>();
    corpus->m_sections = project.sections;

    // The chunks of the previous corpus, by their first note.
    QHash<QUuid, std::shared_ptr<const Chunk>> reusable;
    if (previous) {
        reusable.reserve(previous->m_chunks.size());
        for (const auto &chunk : previous->m_chunks)
            reusable.insert(chunk->noteIDs.constFirst(), chunk);
    }

    QList<const Note *> pending;
    auto close = [&] {
        if (pending.isEmpty())
            return;
        const auto old = reusable.constFind(pending.constFirst()->id);
        if (old != reusable.cend() && (*old)->matches(pending))
            corpus->m_chunks.append(*old);
        else
            corpus->m_chunks.append(Chunk::make(pending));
        corpus->m_noteCount += pending.size();
        corpus->m_byteCount += corpus->m_chunks.constLast()->text.size();
        pending.clear();
    };
    for (const NoteSection &section : project.sections) {
        corpus->m_titles.noteIDs.append(section.id);
        corpus->m_titles.addLoweredField(section.title);
        for (const Note &note : section.notes) {
            pending.append(&note);
            if (endsChunk(note.id) || pending.size() >= longestChunk)
                close();
        }
        close();
    }
    corpus->m_byteCount += corpus->m_titles.text.size();
    return corpus;
}

bool ProjectCorpus::describes(const Project &project) const
{
    return project.sections.constData() == m_sections.constData()
        && project.sections.size() == m_sections.size();
}

std::optional<QByteArray> ProjectCorpus::encode(const QString &query)
{
    for (qsizetype i = 0; i < query.size(); ++i) {
        const QChar c = query.at(i);
        if (c.isHighSurrogate() && i + 1 < query.size() && query.at(i + 1).isLowSurrogate())
            ++i;
        else if (c.isSurrogate())
            return std::nullopt;
    }
    QByteArray out;
    appendEncoded(out, query);
    return out;
}

template<typename Found>
void ProjectCorpus::find(
    const Chunk &chunk, const SubstringFinder &finder, qsizetype length, Found found)
{
    const char *const base = chunk.text.constData();
    const char *const end = base + chunk.text.size();
    const char *at = base;
    qsizetype field = 0;
    while (const char *hit = finder.find(at, end)) {
        const quint32 position = quint32(hit - base);
        while (chunk.fieldEnds[field] <= position)
            ++field;
        if (position + quint32(length) > chunk.fieldEnds[field]) {
            // Runs into the next field: not a match.
            at = hit + 1;
            continue;
        }
        const quint32 owner = chunk.fieldOwners[field];
        found(owner);
        // The rest of this owner's fields need no look.
        while (field + 1 < chunk.fieldOwners.size() && chunk.fieldOwners[field + 1] == owner)
            ++field;
        at = base + chunk.fieldEnds[field];
    }
}

void ProjectCorpus::findNotes(
    qsizetype chunk, const SubstringFinder &finder, qsizetype length, QSet<QUuid> &notes) const
{
    const Chunk &c = *m_chunks.at(chunk);
    find(c, finder, length, [&](quint32 owner) { notes.insert(c.noteIDs[owner]); });
}

void ProjectCorpus::findNotes(qsizetype chunk, const SubstringFinder &finder, qsizetype length,
    std::vector<QUuid> &notes) const
{
    const Chunk &c = *m_chunks.at(chunk);
    find(c, finder, length, [&](quint32 owner) { notes.push_back(c.noteIDs[owner]); });
}

QSet<QUuid> ProjectCorpus::findSections(const SubstringFinder &finder, qsizetype length) const
{
    QSet<QUuid> sections;
    find(
        m_titles, finder, length, [&](quint32 owner) { sections.insert(m_titles.noteIDs[owner]); });
    return sections;
}

bool ProjectCorpus::noteHolds(const QUuid &id, const SubstringFinder &finder) const
{
    std::pair<quint32, quint32> place;
    {
        QMutexLocker locker(&m_tableMutex);
        if (m_noteTable.isEmpty()) {
            m_noteTable.reserve(m_noteCount);
            for (qsizetype c = 0; c < m_chunks.size(); ++c) {
                for (qsizetype n = 0; n < m_chunks[c]->noteIDs.size(); ++n)
                    m_noteTable.insert(m_chunks[c]->noteIDs[n], {quint32(c), quint32(n)});
            }
        }
        const auto it = m_noteTable.constFind(id);
        if (it == m_noteTable.cend())
            return false;
        place = *it;
    }
    const Chunk &chunk = *m_chunks[place.first];
    const qsizetype first = chunk.firstFields[place.second];
    const qsizetype last = place.second + 1 < chunk.firstFields.size()
        ? chunk.firstFields[place.second + 1]
        : chunk.fieldEnds.size();
    for (qsizetype field = first; field < last; ++field) {
        const char *begin = chunk.text.constData() + (field > 0 ? chunk.fieldEnds[field - 1] : 0);
        const char *end = chunk.text.constData() + chunk.fieldEnds[field];
        if (finder.find(begin, end))
            return true;
    }
    return false;
}

} // namespace Vesko
