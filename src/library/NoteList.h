// SPDX-License-Identifier: GPL-3.0-or-later
//
// The notes of a section: a list of notes held in implicitly shared chunks,
// so that copying the list costs two reference counts and changing one note
// copies only the chunk that holds it (and the small array of chunk handles).
// Reads like a QList<Note>; chunks shared by two lists hold the same notes,
// which lets comparisons and the writer skip them whole.

#pragma once

#include "library/Note.h"

#include <QList>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <type_traits>

namespace Vesko {

class NoteList
{
public:
    using value_type = Note;
    using size_type = qsizetype;
    using difference_type = qsizetype;
    using reference = Note &;
    using const_reference = const Note &;
    using pointer = Note *;
    using const_pointer = const Note *;
    using Chunk = QList<Note>;

    //! The size a chunk is cut to when a list is built. A chunk that grows
    //! past twice this is split; two neighbours that fit in this are merged.
    static constexpr qsizetype chunkSize = 1024;

    template<typename List, typename Ref> class Iterator
    {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = Note;
        using difference_type = qsizetype;
        using reference = Ref;
        using pointer = std::remove_reference_t<Ref> *;

        Iterator() = default;
        Iterator(List *list, qsizetype index)
            : m_list(list)
            , m_index(index)
        {
            if (m_list)
                m_list->locate(index, &m_chunk, &m_offset);
        }
        //! A const iterator from an iterator.
        template<typename L, typename R>
        Iterator(const Iterator<L, R> &other) requires std::is_const_v<List>
            : Iterator(other.list(), other.index())
        { }

        Ref operator*() const { return m_list->chunkAt(m_chunk, m_offset); }
        pointer operator->() const { return &**this; }
        Ref operator[](qsizetype n) const { return *(*this + n); }

        Iterator &operator++()
        {
            ++m_index;
            if (++m_offset == m_list->m_chunks.at(m_chunk).size()) {
                ++m_chunk;
                m_offset = 0;
            }
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator was = *this;
            ++*this;
            return was;
        }
        Iterator &operator--()
        {
            --m_index;
            if (m_offset == 0)
                m_offset = m_list->m_chunks.at(--m_chunk).size();
            --m_offset;
            return *this;
        }
        Iterator operator--(int)
        {
            Iterator was = *this;
            --*this;
            return was;
        }
        Iterator &operator+=(qsizetype n)
        {
            const qsizetype offset = m_offset + n;
            m_index += n;
            if (offset >= 0 && m_chunk < m_list->m_chunks.size()
                && offset < m_list->m_chunks.at(m_chunk).size())
                m_offset = offset;
            else
                m_list->locate(m_index, &m_chunk, &m_offset);
            return *this;
        }
        Iterator &operator-=(qsizetype n) { return *this += -n; }
        friend Iterator operator+(Iterator it, qsizetype n) { return it += n; }
        friend Iterator operator+(qsizetype n, Iterator it) { return it += n; }
        friend Iterator operator-(Iterator it, qsizetype n) { return it -= n; }
        friend qsizetype operator-(const Iterator &a, const Iterator &b)
        {
            return a.m_index - b.m_index;
        }
        friend bool operator==(const Iterator &a, const Iterator &b)
        {
            return a.m_index == b.m_index;
        }
        friend auto operator<=>(const Iterator &a, const Iterator &b)
        {
            return a.m_index <=> b.m_index;
        }

        List *list() const { return m_list; }
        qsizetype index() const { return m_index; }

    private:
        List *m_list = nullptr;
        qsizetype m_index = 0;
        qsizetype m_chunk = 0;
        qsizetype m_offset = 0;
    };
    using iterator = Iterator<NoteList, Note &>;
    using const_iterator = Iterator<const NoteList, const Note &>;

    NoteList() = default;
    NoteList(const QList<Note> &notes);
    NoteList(std::initializer_list<Note> notes);
    template<typename InputIterator>
    requires(!std::is_integral_v<InputIterator>) NoteList(InputIterator first, InputIterator last)
        : NoteList(QList<Note>(first, last))
    { }

    //! A list of these chunks, in order; empty ones are dropped, and the
    //! rest balanced (which copies only the chunks that are cut or merged).
    static NoteList fromChunks(QList<Chunk> chunks);

    QList<Note> toList() const;
    operator QList<Note>() const { return toList(); }

    qsizetype size() const { return m_ends.isEmpty() ? 0 : m_ends.last(); }
    qsizetype count() const { return size(); }
    qsizetype length() const { return size(); }
    bool isEmpty() const { return m_chunks.isEmpty(); }
    bool empty() const { return isEmpty(); }

    const Note &at(qsizetype i) const;
    const Note &operator[](qsizetype i) const { return at(i); }
    Note &operator[](qsizetype i);
    const Note &first() const { return m_chunks.first().first(); }
    const Note &last() const { return m_chunks.last().last(); }
    const Note &constFirst() const { return first(); }
    const Note &constLast() const { return last(); }
    Note &first() { return (*this)[0]; }
    Note &last() { return (*this)[size() - 1]; }
    const Note &front() const { return first(); }
    const Note &back() const { return last(); }
    Note &front() { return first(); }
    Note &back() { return last(); }

    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, size()); }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    const_iterator constBegin() const { return begin(); }
    const_iterator constEnd() const { return end(); }
    iterator begin() { return iterator(this, 0); }
    iterator end() { return iterator(this, size()); }

    void append(const Note &note) { insert(size(), note); }
    //! Appends \a other's chunks as they are, shared.
    void append(const NoteList &other);
    void append(const QList<Note> &notes) { append(NoteList(notes)); }
    void push_back(const Note &note) { append(note); }
    void prepend(const Note &note) { insert(0, note); }
    void insert(qsizetype i, const Note &note);
    iterator insert(const_iterator before, const Note &note);
    void removeAt(qsizetype i) { remove(i, 1); }
    void remove(qsizetype i, qsizetype n = 1);
    iterator erase(const_iterator first, const_iterator last);
    iterator erase(const_iterator at) { return erase(at, at + 1); }
    Note takeAt(qsizetype i);
    Note takeFirst() { return takeAt(0); }
    Note takeLast() { return takeAt(size() - 1); }
    void removeFirst() { removeAt(0); }
    void removeLast() { removeAt(size() - 1); }
    //! Moves the note at \a from so that it stands at \a to.
    void move(qsizetype from, qsizetype to);
    void swapItemsAt(qsizetype i, qsizetype j);
    void reserve(qsizetype) { }
    void clear();
    template<typename Predicate> qsizetype removeIf(Predicate predicate);

    //! The notes from \a position on, \a length of them (all when -1);
    //! whole chunks are shared with this list.
    NoteList mid(qsizetype position, qsizetype length = -1) const;
    NoteList &operator+=(const NoteList &other)
    {
        append(other);
        return *this;
    }
    NoteList &operator<<(const Note &note)
    {
        append(note);
        return *this;
    }

    //! Equal notes in the same order; chunks that both lists share at the
    //! same place are taken as equal without reading them.
    bool operator==(const NoteList &other) const;

    //! Whether both lists are made of the same chunks, shared: then they
    //! hold the same notes, and nothing has been changed in either.
    bool sharesAllChunks(const NoteList &other) const;

    qsizetype chunkCount() const { return m_chunks.size(); }
    const Chunk &chunk(qsizetype c) const { return m_chunks.at(c); }
    //! The index of the first note of chunk \a c.
    qsizetype chunkStart(qsizetype c) const { return c == 0 ? 0 : m_ends.at(c - 1); }
    //! Whether \a a and \a b are one chunk, shared.
    static bool sameChunk(const Chunk &a, const Chunk &b)
    {
        return a.size() == b.size() && a.constData() == b.constData();
    }

private:
    void locate(qsizetype i, qsizetype *chunk, qsizetype *offset) const;
    const Note &chunkAt(qsizetype c, qsizetype offset) const { return m_chunks.at(c).at(offset); }
    Note &chunkAt(qsizetype c, qsizetype offset) { return m_chunks[c][offset]; }
    //! Restores the balance of chunks [from, to) and their neighbours after
    //! a change to them, and the ends from there on.
    void settle(qsizetype from, qsizetype to);
    void updateEnds(qsizetype from);

    // Every chunk holds one to 2 × chunkSize notes, and two neighbours
    // together more than chunkSize. m_ends[c] is the index past chunk c.
    QList<Chunk> m_chunks;
    QList<qsizetype> m_ends;
};

template<typename Predicate> qsizetype NoteList::removeIf(Predicate predicate)
{
    // The predicate sees each note once; a chunk without a match is not copied.
    qsizetype removed = 0;
    qsizetype first = m_chunks.size();
    for (qsizetype c = 0; c < m_chunks.size(); ++c) {
        const Chunk &chunk = std::as_const(m_chunks).at(c);
        const auto hit = std::find_if(chunk.cbegin(), chunk.cend(), predicate);
        if (hit == chunk.cend())
            continue;
        const qsizetype from = hit - chunk.cbegin();
        Chunk &target = m_chunks[c];
        qsizetype kept = from;
        for (qsizetype i = from + 1; i < target.size(); ++i) {
            if (!predicate(std::as_const(target).at(i)))
                target[kept++] = std::move(target[i]);
        }
        removed += target.size() - kept;
        target.resize(kept);
        first = std::min(first, c);
    }
    if (removed > 0)
        settle(first, m_chunks.size());
    return removed;
}

} // namespace Vesko
