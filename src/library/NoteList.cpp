// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/NoteList.h"

#include <algorithm>

namespace Vesko {

NoteList::NoteList(const QList<Note> &notes)
{
    const qsizetype count = notes.size();
    m_chunks.reserve((count + chunkSize - 1) / chunkSize);
    m_ends.reserve(m_chunks.capacity());
    for (qsizetype at = 0; at < count; at += chunkSize) {
        m_chunks.append(notes.mid(at, std::min(chunkSize, count - at)));
        m_ends.append(at + m_chunks.last().size());
    }
    // The last chunk may be small: its neighbour takes it when both fit in one.
    settle(m_chunks.size() - 1, m_chunks.size());
}

NoteList::NoteList(std::initializer_list<Note> notes)
    : NoteList(QList<Note>(notes))
{ }

NoteList NoteList::fromChunks(QList<Chunk> chunks)
{
    NoteList list;
    list.m_chunks = std::move(chunks);
    list.settle(0, list.m_chunks.size());
    return list;
}

QList<Note> NoteList::toList() const
{
    QList<Note> notes;
    notes.reserve(size());
    for (const Chunk &chunk : m_chunks)
        notes.append(chunk);
    return notes;
}

void NoteList::locate(qsizetype i, qsizetype *chunk, qsizetype *offset) const
{
    const auto found = std::upper_bound(m_ends.cbegin(), m_ends.cend(), i);
    *chunk = found - m_ends.cbegin();
    *offset = *chunk < m_chunks.size() ? i - chunkStart(*chunk) : 0;
}

const Note &NoteList::at(qsizetype i) const
{
    Q_ASSERT(i >= 0 && i < size());
    qsizetype c = 0;
    qsizetype offset = 0;
    locate(i, &c, &offset);
    return m_chunks.at(c).at(offset);
}

Note &NoteList::operator[](qsizetype i)
{
    Q_ASSERT(i >= 0 && i < size());
    qsizetype c = 0;
    qsizetype offset = 0;
    locate(i, &c, &offset);
    return m_chunks[c][offset];
}

void NoteList::updateEnds(qsizetype from)
{
    m_ends.resize(m_chunks.size());
    qsizetype end = from > 0 ? m_ends.at(from - 1) : 0;
    for (qsizetype c = from; c < m_chunks.size(); ++c) {
        end += m_chunks.at(c).size();
        m_ends[c] = end;
    }
}

void NoteList::settle(qsizetype from, qsizetype to)
{
    from = std::max<qsizetype>(from - 1, 0);
    to = std::min(to + 1, m_chunks.size());
    // No empty chunk.
    for (qsizetype c = to - 1; c >= from; --c) {
        if (m_chunks.at(c).isEmpty()) {
            m_chunks.removeAt(c);
            --to;
        }
    }
    // None larger than twice the size: cut into pieces of about chunkSize.
    for (qsizetype c = from; c < to; ++c) {
        const qsizetype count = m_chunks.at(c).size();
        if (count <= 2 * chunkSize)
            continue;
        const Chunk whole = m_chunks.at(c);
        const qsizetype pieces = (count + chunkSize - 1) / chunkSize;
        QList<Chunk> cut;
        cut.reserve(pieces);
        for (qsizetype p = 0; p < pieces; ++p) {
            const qsizetype start = count * p / pieces;
            cut.append(whole.mid(start, count * (p + 1) / pieces - start));
        }
        m_chunks[c] = cut.first();
        for (qsizetype p = 1; p < pieces; ++p)
            m_chunks.insert(c + p, cut.at(p));
        c += pieces - 1;
        to += pieces - 1;
    }
    // No two neighbours that fit in one chunk.
    for (qsizetype c = from; c + 1 < to;) {
        if (m_chunks.at(c).size() + m_chunks.at(c + 1).size() <= chunkSize) {
            m_chunks[c].append(std::as_const(m_chunks).at(c + 1));
            m_chunks.removeAt(c + 1);
            --to;
        } else {
            ++c;
        }
    }
    updateEnds(from);
}

void NoteList::append(const NoteList &other)
{
    if (other.isEmpty())
        return;
    const qsizetype joint = m_chunks.size();
    m_chunks.append(other.m_chunks);
    settle(joint, joint + 1);
}

void NoteList::insert(qsizetype i, const Note &note)
{
    Q_ASSERT(i >= 0 && i <= size());
    if (m_chunks.isEmpty()) {
        m_chunks.append(Chunk {note});
        m_ends.append(1);
        return;
    }
    qsizetype c = 0;
    qsizetype offset = 0;
    if (i == size()) {
        c = m_chunks.size() - 1;
        offset = m_chunks.at(c).size();
    } else {
        locate(i, &c, &offset);
    }
    m_chunks[c].insert(offset, note);
    if (m_chunks.at(c).size() > 2 * chunkSize) {
        settle(c, c + 1);
    } else {
        for (qsizetype e = c; e < m_ends.size(); ++e)
            ++m_ends[e];
    }
}

NoteList::iterator NoteList::insert(const_iterator before, const Note &note)
{
    const qsizetype i = before.index();
    insert(i, note);
    return iterator(this, i);
}

void NoteList::remove(qsizetype i, qsizetype n)
{
    Q_ASSERT(i >= 0 && n >= 0 && i + n <= size());
    if (n == 0)
        return;
    qsizetype c = 0;
    qsizetype offset = 0;
    locate(i, &c, &offset);
    const qsizetype first = c;
    for (qsizetype left = n; left > 0;) {
        const qsizetype count = m_chunks.at(c).size();
        const qsizetype taken = std::min(left, count - offset);
        if (taken == count)
            m_chunks[c].clear();
        else
            m_chunks[c].remove(offset, taken);
        left -= taken;
        offset = 0;
        ++c;
    }
    settle(first, c);
}

NoteList::iterator NoteList::erase(const_iterator first, const_iterator last)
{
    const qsizetype i = first.index();
    remove(i, last.index() - i);
    return iterator(this, i);
}

Note NoteList::takeAt(qsizetype i)
{
    Note note = at(i);
    removeAt(i);
    return note;
}

void NoteList::move(qsizetype from, qsizetype to)
{
    if (from == to)
        return;
    const Note note = takeAt(from);
    insert(to, note);
}

void NoteList::swapItemsAt(qsizetype i, qsizetype j)
{
    if (i == j)
        return;
    std::swap((*this)[i], (*this)[j]);
}

void NoteList::clear()
{
    m_chunks.clear();
    m_ends.clear();
}

NoteList NoteList::mid(qsizetype position, qsizetype length) const
{
    const qsizetype count = size();
    if (position < 0) {
        if (length >= 0)
            length = std::max<qsizetype>(length + position, 0);
        position = 0;
    }
    if (position >= count)
        return {};
    if (length < 0 || length > count - position)
        length = count - position;
    NoteList part;
    if (length == 0)
        return part;
    qsizetype c = 0;
    qsizetype offset = 0;
    locate(position, &c, &offset);
    for (qsizetype left = length; left > 0; ++c, offset = 0) {
        const Chunk &chunk = m_chunks.at(c);
        const qsizetype taken = std::min(left, chunk.size() - offset);
        part.m_chunks.append(taken == chunk.size() ? chunk : chunk.mid(offset, taken));
        left -= taken;
    }
    // Only the chunks cut at either end can be small.
    part.settle(0, part.m_chunks.size());
    return part;
}

bool NoteList::operator==(const NoteList &other) const
{
    if (size() != other.size())
        return false;
    if (m_chunks.constData() == other.m_chunks.constData())
        return true;
    qsizetype a = 0;
    qsizetype aOffset = 0;
    qsizetype b = 0;
    qsizetype bOffset = 0;
    while (a < m_chunks.size()) {
        const Chunk &x = m_chunks.at(a);
        const Chunk &y = other.m_chunks.at(b);
        if (aOffset == 0 && bOffset == 0 && sameChunk(x, y)) {
            ++a;
            ++b;
            continue;
        }
        const qsizetype run = std::min(x.size() - aOffset, y.size() - bOffset);
        if (!std::equal(x.cbegin() + aOffset, x.cbegin() + aOffset + run, y.cbegin() + bOffset))
            return false;
        aOffset += run;
        bOffset += run;
        if (aOffset == x.size()) {
            ++a;
            aOffset = 0;
        }
        if (bOffset == y.size()) {
            ++b;
            bOffset = 0;
        }
    }
    return true;
}

bool NoteList::sharesAllChunks(const NoteList &other) const
{
    if (m_chunks.size() != other.m_chunks.size())
        return false;
    if (m_chunks.constData() == other.m_chunks.constData())
        return true;
    for (qsizetype c = 0; c < m_chunks.size(); ++c) {
        if (!sameChunk(m_chunks.at(c), other.m_chunks.at(c)))
            return false;
    }
    return true;
}

} // namespace Vesko
