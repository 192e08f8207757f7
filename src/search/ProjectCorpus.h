// SPDX-License-Identifier: GPL-3.0-or-later
//
// The lower-cased text of one project, kept in memory for searching it at the
// speed of reading it: each note's text and attachment names and each section
// title, encoded as UTF-8 (a lone surrogate as its own three bytes) and laid
// end to end in chunks of a few hundred notes. The corpus of a later revision
// of the project is made from the one before, taking over every chunk whose
// notes did not change, so an edit costs the lower-casing of one chunk.
//
// A corpus never changes once made and may be read from any thread.

#pragma once

#include "library/Library.h"
#include "search/SubstringFinder.h"

#include <QByteArray>
#include <QHash>
#include <QMutex>
#include <QSet>

#include <memory>
#include <optional>
#include <vector>

namespace Vesko {

class ProjectCorpus
{
public:
    //! The corpus of \a project, taking over what it can of \a previous (which
    //! may be of another project, or none).
    static std::shared_ptr<const ProjectCorpus> make(
        const Project &project, const ProjectCorpus *previous);

    //! Whether this corpus was made from \a project as it stands: the same
    //! sections' storage, which any change to the project would have copied.
    bool describes(const Project &project) const;

    //! \a query (lower-cased already) as the corpus holds text, or none when
    //! it holds half of a surrogate pair, which no byte search can match as
    //! text does.
    static std::optional<QByteArray> encode(const QString &query);

    qsizetype chunkCount() const { return m_chunks.size(); }
    qsizetype noteCount() const { return m_noteCount; }
    qsizetype byteCount() const { return m_byteCount; }
    qsizetype notesInChunk(qsizetype chunk) const { return m_chunks.at(chunk)->noteIDs.size(); }

    //! Adds to \a notes every note of chunk \a chunk that holds \a needle (of
    //! \a length bytes, found by \a finder) in its text or an attachment name.
    void findNotes(qsizetype chunk, const SubstringFinder &finder, qsizetype length,
        QSet<QUuid> &notes) const;
    //! The same, appending their ids to \a notes in the chunk's order.
    void findNotes(qsizetype chunk, const SubstringFinder &finder, qsizetype length,
        std::vector<QUuid> &notes) const;

    //! The sections whose titles hold the needle.
    QSet<QUuid> findSections(const SubstringFinder &finder, qsizetype length) const;

    //! Whether note \a id is in this project and holds the needle; the table
    //! of ids behind it is made on first use.
    bool noteHolds(const QUuid &id, const SubstringFinder &finder) const;

    // Reached through make() only.
    ProjectCorpus() = default;

private:
    // Fields (texts, names or titles) end to end, each owned by one entry.
    struct Chunk
    {
        QByteArray text;
        QList<quint32> fieldEnds;
        QList<quint32> fieldOwners;
        QList<quint32> firstFields;
        QList<QUuid> noteIDs;
        // What each note was made from; holding them keeps their storage,
        // so that the same storage seen later means the same content.
        QList<QString> sourceTexts;
        QList<QList<NoteAttachment>> sourceAttachments;

        void addLoweredField(const QString &text);
        bool matches(const QList<const Note *> &notes) const;
        static std::shared_ptr<const Chunk> make(const QList<const Note *> &notes);
    };

    template<typename Found>
    static void find(
        const Chunk &chunk, const SubstringFinder &finder, qsizetype length, Found found);

    QList<NoteSection> m_sections;
    QList<std::shared_ptr<const Chunk>> m_chunks;
    Chunk m_titles;
    qsizetype m_noteCount = 0;
    qsizetype m_byteCount = 0;

    mutable QMutex m_tableMutex;
    mutable QHash<QUuid, std::pair<quint32, quint32>> m_noteTable;
};

} // namespace Vesko
