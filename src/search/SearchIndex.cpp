// SPDX-License-Identifier: GPL-3.0-or-later

#include "search/SearchIndex.h"

#include "search/ProjectCorpus.h"

#include "platform/FileSystem.h"
#include "platform/Logging.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QPointer>
#include <QStandardPaths>
#include <QTextBoundaryFinder>

#include <sqlite3.h>

#include <bit>
#include <utility>
#include <vector>

namespace Vesko {

namespace {

// A failure of the database, with SQLite's message.
struct IndexError
{
    QString message;
};

// The job was cancelled before its transaction began.
struct Cancelled
{
};

const QString recordSeparator = QStringLiteral("\n\u241E\n");

QByteArray idText(const QUuid &id)
{
    return id.toByteArray(QUuid::WithoutBraces).toUpper();
}

// Text as the tables hold it. SQLite's LIKE stops at a NUL character, so the
// tables and the patterns hold U+FFFD in its place: what follows a NUL is
// found too, and every match is checked against the text itself afterwards.
QByteArray sqlText(QString text)
{
    return text.replace(QChar(u'\0'), QChar::ReplacementCharacter).toUtf8();
}

// User-perceived characters, as a person counts them.
qsizetype graphemeCount(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

} // namespace

// What the searches may know of the database: the revision its committed
// tables hold, and counters that move whenever they may change, so that a
// search reading on a connection of its own can tell that what it read was
// that revision.
struct SearchIndex::Published
{
    QMutex mutex;
    std::optional<quint64> revision;
    quint64 changes = 0;
    quint64 generation = 0;

    void beginChange(bool newFile)
    {
        QMutexLocker locker(&mutex);
        revision.reset();
        ++changes;
        if (newFile)
            ++generation;
    }

    void publish(quint64 committed)
    {
        QMutexLocker locker(&mutex);
        revision = committed;
        ++changes;
    }
};

// The state of the index; touched only on the index's thread.
class SearchIndex::Worker
{
public:
    Worker(QString path, Published &published)
        : m_path(std::move(path))
        , m_published(published)
    { }

    ~Worker()
    {
        if (m_database)
            sqlite3_close(m_database);
    }

    void synchronize(const Library &library, quint64 revision, const Cancellation &cancellation)
    {
        if (cancellation.isCancelled())
            return;
        if (m_indexedRevision && *m_indexedRevision >= revision)
            return;
        try {
            performSynchronization(library, revision, cancellation);
            return;
        } catch (const Cancelled &) {
            return;
        } catch (const IndexError &error) {
            qCCritical(lcSearchIndex, "Search index synchronization failed: %s",
                qUtf8Printable(error.message));
        }
        // Nothing of the old file is trusted any more, whether or not a new
        // one can be made: the next synchronisation that succeeds fills a
        // file whole, never one that only the mirror believes is filled.
        m_indexedNotes.clear();
        m_indexedSections.clear();
        m_indexedRevision.reset();
        m_published.beginChange(true);
        try {
            recreateDatabase();
            performSynchronization(library, revision, Cancellation());
        } catch (const IndexError &error) {
            qCCritical(
                lcSearchIndex, "Search index rebuild failed: %s", qUtf8Printable(error.message));
        } catch (const Cancelled &) { }
    }

    std::optional<quint64> indexedRevision() const { return m_indexedRevision; }
    bool isOpen() const { return m_database != nullptr; }

private:
    void openDatabase()
    {
        if (m_database)
            return;
        if (auto error = FileSystem::makePath(QFileInfo(m_path).absolutePath()))
            throw IndexError {*error};
        // The database holds the user's words: it is private, and so are the
        // side files, which SQLite makes with the database file's permissions.
        if (auto error = FileSystem::makePrivateFile(m_path))
            throw IndexError {*error};
        sqlite3 *handle = nullptr;
        const int status
            = sqlite3_open_v2(QFile::encodeName(m_path).constData(), &handle, 0x10006, nullptr);
        if (status != SQLITE_OK || !handle) {
            QString message = QStringLiteral("Unable to open the search index");
            if (handle) {
                message = QString::fromUtf8(sqlite3_errmsg(handle));
                sqlite3_close(handle);
            }
            throw IndexError {message};
        }
        m_database = handle;
        for (const char *suffix : {"-wal", "-shm"}) {
            // Left by an earlier run, they may not be private yet.
            const QString sideFile = m_path + QLatin1StringView(suffix);
            if (FileSystem::exists(sideFile))
                (void)FileSystem::makePrivateFile(sideFile);
        }
        sqlite3_busy_timeout(m_database, 2000);
        executeScript("PRAGMA journal_mode=WAL;");
        executeScript("PRAGMA synchronous=NORMAL;");
        executeScript("PRAGMA temp_store=MEMORY;");
        executeScript("CREATE VIRTUAL TABLE IF NOT EXISTS note_search USING fts5(\n"
                      "    note_id UNINDEXED,\n"
                      "    project_id UNINDEXED,\n"
                      "    section_id UNINDEXED,\n"
                      "    body,\n"
                      "    tokenize='trigram'\n"
                      ");");
        executeScript("CREATE VIRTUAL TABLE IF NOT EXISTS section_search USING fts5(\n"
                      "    section_id UNINDEXED,\n"
                      "    project_id UNINDEXED,\n"
                      "    title,\n"
                      "    tokenize='trigram'\n"
                      ");");
    }

    void recreateDatabase()
    {
        if (m_database) {
            sqlite3_close(m_database);
            m_database = nullptr;
        }
        for (const QString &suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
            QFile::remove(m_path + suffix);
        openDatabase();
    }

    // A note as indexed, with the text and attachments it was made from. The
    // sources keep their buffers alive, so that a note whose text still
    // shares the same buffer is known unchanged without looking at its text.
    struct MirrorNote
    {
        IndexedNote indexed;
        QString sourceText;
        QList<NoteAttachment> sourceAttachments;
        //! Taken over from the mirror as it was: no row to write.
        bool unchanged = false;
        //! The note's row in note_search; 0 before it is written.
        qint64 rowID = 0;
    };

    struct Snapshot
    {
        QHash<QUuid, MirrorNote> notes;
        QHash<QUuid, IndexedSection> sections;
    };

    Snapshot makeSnapshot(const Library &library) const
    {
        Snapshot snapshot;
        snapshot.notes.reserve(noteCount(library));
        for (const Project &project : library.projects) {
            for (const NoteSection &section : project.sections) {
                snapshot.sections.insert(
                    section.id, IndexedSection {section.id, project.id, section.title.toLower()});
                for (const Note &note : section.notes) {
                    const auto previous = m_indexedNotes.constFind(note.id);
                    if (previous != m_indexedNotes.cend()
                        && previous->sourceText.constData() == note.text.constData()
                        && previous->sourceText.size() == note.text.size()
                        && previous->sourceAttachments.constData() == note.attachments.constData()
                        && previous->sourceAttachments.size() == note.attachments.size()
                        && previous->indexed.projectID == project.id
                        && previous->indexed.sectionID == section.id) {
                        MirrorNote same = *previous;
                        same.unchanged = true;
                        snapshot.notes.insert(note.id, same);
                        continue;
                    }
                    const qint64 previousRow
                        = previous != m_indexedNotes.cend() ? previous->rowID : 0;
                    QStringList names;
                    names.reserve(note.attachments.size());
                    for (const NoteAttachment &attachment : note.attachments)
                        names.append(attachment.fileName.toLower());
                    snapshot.notes.insert(note.id,
                        MirrorNote {IndexedNote {note.id, project.id, section.id,
                                        note.text.toLower(), names},
                            note.text, note.attachments, false, previousRow});
                }
            }
        }
        return snapshot;
    }

    void performSynchronization(
        const Library &library, quint64 revision, const Cancellation &cancellation)
    {
        openDatabase();
        // A file removed under an open connection (the cache folder cleared,
        // say) would go on taking writes unseen; it counts as a failure, so
        // that a new file is made.
        if (!FileSystem::exists(m_path))
            throw IndexError {QStringLiteral("The database file %1 was removed").arg(m_path)};
        Snapshot snapshot = makeSnapshot(library);
        if (cancellation.isCancelled())
            throw Cancelled {};

        executeScript("BEGIN IMMEDIATE TRANSACTION;");
        try {
            // A note's row goes by its rowid: note_id is not indexed, and a
            // delete by it would read the whole table for each note.
            Statement deleteNote(*this, "DELETE FROM note_search WHERE rowid = CAST(? AS INTEGER);");
            Statement insertNote(*this,
                "INSERT INTO note_search(note_id, project_id, section_id, body) VALUES (?, ?, ?, "
                "?);");
            Statement deleteSection(*this, "DELETE FROM section_search WHERE section_id = ?;");
            Statement insertSection(*this,
                "INSERT INTO section_search(section_id, project_id, title) VALUES (?, ?, ?);");
            auto writeNote = [&](MirrorNote &entry) {
                const IndexedNote &note = entry.indexed;
                const QString body = note.attachmentNames.isEmpty()
                    ? note.text
                    : note.text + recordSeparator + note.attachmentNames.join(recordSeparator);
                insertNote.run({idText(note.id), idText(note.projectID), idText(note.sectionID),
                    sqlText(body)});
                entry.rowID = sqlite3_last_insert_rowid(database());
            };
            auto removeNote = [&](const MirrorNote &entry) {
                if (entry.rowID > 0)
                    deleteNote.run({QByteArray::number(entry.rowID)});
            };
            auto writeSection = [&](const IndexedSection &section) {
                insertSection.run(
                    {idText(section.id), idText(section.projectID), sqlText(section.title)});
            };

            if (!m_indexedRevision) {
                executeScript("DELETE FROM note_search;");
                executeScript("DELETE FROM section_search;");
                for (MirrorNote &note : snapshot.notes)
                    writeNote(note);
                for (const IndexedSection &section : std::as_const(snapshot.sections))
                    writeSection(section);
            } else {
                for (auto it = m_indexedNotes.cbegin(); it != m_indexedNotes.cend(); ++it) {
                    if (!snapshot.notes.contains(it.key()))
                        removeNote(*it);
                }
                for (MirrorNote &entry : snapshot.notes) {
                    if (entry.unchanged)
                        continue;
                    const auto old = m_indexedNotes.constFind(entry.indexed.id);
                    if (old == m_indexedNotes.cend()) {
                        writeNote(entry);
                    } else if (!(old->indexed == entry.indexed)) {
                        removeNote(*old);
                        writeNote(entry);
                    }
                }
                for (auto it = m_indexedSections.cbegin(); it != m_indexedSections.cend(); ++it) {
                    if (!snapshot.sections.contains(it.key()))
                        deleteSection.run({idText(it.key())});
                }
                for (const IndexedSection &section : std::as_const(snapshot.sections)) {
                    const auto old = m_indexedSections.constFind(section.id);
                    if (old == m_indexedSections.cend() || !(*old == section)) {
                        deleteSection.run({idText(section.id)});
                        writeSection(section);
                    }
                }
            }
            // Searches stop trusting the tables before they change.
            m_published.beginChange(false);
            executeScript("COMMIT;");
        } catch (const IndexError &) {
            if (m_database)
                sqlite3_exec(m_database, "ROLLBACK;", nullptr, nullptr, nullptr);
            throw;
        }
        m_indexedNotes = std::move(snapshot.notes);
        m_indexedSections = std::move(snapshot.sections);
        m_indexedRevision = revision;
        m_published.publish(revision);
    }

    // -- SQLite -----------------------------------------------------------------

    sqlite3 *database() const
    {
        if (!m_database)
            throw IndexError {QStringLiteral("Search database is not open")};
        return m_database;
    }

    QString lastError() const { return QString::fromUtf8(sqlite3_errmsg(m_database)); }

    void executeScript(const char *sql)
    {
        char *message = nullptr;
        if (sqlite3_exec(database(), sql, nullptr, nullptr, &message) != SQLITE_OK) {
            const QString text = message ? QString::fromUtf8(message) : lastError();
            sqlite3_free(message);
            throw IndexError {text};
        }
    }

    // A prepared statement, finalised on every path.
    class Statement
    {
    public:
        Statement(Worker &worker, const char *sql)
            : m_worker(worker)
        {
            if (sqlite3_prepare_v2(worker.database(), sql, -1, &m_statement, nullptr) != SQLITE_OK
                || !m_statement)
                throw IndexError {worker.lastError()};
        }
        ~Statement() { sqlite3_finalize(m_statement); }
        Statement(const Statement &) = delete;
        Statement &operator=(const Statement &) = delete;

        void bind(std::initializer_list<QByteArray> parameters)
        {
            sqlite3_reset(m_statement);
            int index = 1;
            for (const QByteArray &value : parameters) {
                if (sqlite3_bind_text(m_statement, index++, value.constData(), int(value.size()),
                        SQLITE_TRANSIENT)
                    != SQLITE_OK) {
                    throw IndexError {QStringLiteral("Could not bind search query")};
                }
            }
        }

        // Runs a statement that returns no rows.
        void run(std::initializer_list<QByteArray> parameters)
        {
            bind(parameters);
            if (sqlite3_step(m_statement) != SQLITE_DONE)
                throw IndexError {m_worker.lastError()};
        }

        sqlite3_stmt *get() const { return m_statement; }

    private:
        Worker &m_worker;
        sqlite3_stmt *m_statement = nullptr;
    };

    QString m_path;
    Published &m_published;
    sqlite3 *m_database = nullptr;
    QHash<QUuid, MirrorNote> m_indexedNotes;
    QHash<QUuid, IndexedSection> m_indexedSections;
    std::optional<quint64> m_indexedRevision;
};

namespace {

// Inserts \a ids into \a set in the order of the places its table gives
// them, so that the table is filled from one end to the other rather than at
// random: a million ids written at random places miss the cache at nearly
// every one. Where QHash places a key (the low bits of its hash with the
// table's seed) is its own affair: were it to change, the set would be the
// same, only made more slowly.
void insertInTableOrder(QSet<QUuid> &set, const std::vector<QUuid> &ids)
{
    set.reserve(set.size() + qsizetype(ids.size()));
    const size_t buckets = size_t(set.capacity()) * 2;
    constexpr int partBits = 12;
    if (ids.size() < 1024 || !std::has_single_bit(buckets)) {
        for (const QUuid &id : ids)
            set.insert(id);
        return;
    }
    // A counting sort on the highest bits of each id's place.
    const int shift = std::max(0, std::countr_zero(buckets) - partBits);
    const size_t seed = QHashSeed::globalSeed();
    std::vector<quint16> parts(ids.size());
    std::vector<size_t> starts((size_t(1) << partBits) + 1, 0);
    for (size_t i = 0; i < ids.size(); ++i) {
        parts[i] = quint16((qHash(ids[i], seed) & (buckets - 1)) >> shift);
        ++starts[parts[i] + 1];
    }
    for (size_t p = 1; p < starts.size(); ++p)
        starts[p] += starts[p - 1];
    std::vector<QUuid> ordered(ids.size());
    for (size_t i = 0; i < ids.size(); ++i)
        ordered[starts[parts[i]]++] = ids[i];
    for (const QUuid &id : ordered)
        set.insert(id);
}

} // namespace

// The searches; touched only on the searches' thread. It keeps the corpus of
// each project searched, and reads the database through a read-only
// connection of its own, which sees the last committed tables without
// waiting for a synchronisation that is writing new ones.
class SearchIndex::Searcher
{
public:
    Searcher(QString path, Published &published, std::atomic<int> &sqlQueryCount,
        std::atomic<Plan> &plan)
        : m_path(std::move(path))
        , m_published(published)
        , m_sqlQueryCount(sqlQueryCount)
        , m_plan(plan)
    { }

    ~Searcher() { closeReader(); }

    //! Brings the corpus of \a project up to date ahead of its searches.
    void prepare(const Project &project) { corpusFor(project); }

    //! \a q is normalised and not empty.
    SearchMatches search(
        const QString &q, const Project &project, quint64 revision, const Cancellation &cancellation)
    {
        const std::optional<QByteArray> needle = ProjectCorpus::encode(q);
        if (!needle)
            return scanProject(q, project);
        const std::shared_ptr<const ProjectCorpus> corpus = corpusFor(project);
        if (cancellation.isCancelled())
            return {};
        const SubstringFinder finder(needle->constData(), std::size_t(needle->size()));
        const qsizetype length = needle->size();

        SearchMatches matches;
        matches.sectionIDs = corpus->findSections(finder, length);
        const qsizetype chunks = corpus->chunkCount();
        // The first notes tell how common the query is: one that many notes
        // hold is read faster than looked up row by row, and its set of
        // matches is given its size at once.
        qsizetype chunk = 0;
        qsizetype sampled = 0;
        const qsizetype sample = std::max<qsizetype>(corpus->noteCount() / 32, 1024);
        const Plan plan = m_plan.load();
        if (plan != Plan::Index) {
            while (chunk < chunks && sampled < sample) {
                corpus->findNotes(chunk, finder, length, matches.noteIDs);
                sampled += corpus->notesInChunk(chunk++);
            }
        }
        const bool selective = matches.noteIDs.size() * selectiveShare <= sampled;
        // A trigram cannot be formed from fewer than three characters, and
        // the wildcards of LIKE never reach SQL.
        const bool indexable = chunk < chunks && graphemeCount(q) >= 3 && !q.contains(u'%')
            && !q.contains(u'_') && indexCurrent(revision);
        const bool useIndex = plan == Plan::Index
            || (plan == Plan::Chosen && selective && corpus->byteCount() >= smallestIndexed);
        if (indexable && useIndex) {
            if (const auto candidates = indexCandidates(q, project.id, revision)) {
                // LIKE ignores only ASCII case and runs across the fields of
                // a row: each candidate is confirmed.
                matches.noteIDs.clear();
                for (const QUuid &id : *candidates) {
                    if (corpus->noteHolds(id, finder))
                        matches.noteIDs.insert(id);
                }
                return matches;
            }
        }
        std::vector<QUuid> found;
        if (sampled > 0 && chunk < chunks) {
            const qsizetype expected = matches.noteIDs.size() * corpus->noteCount() / sampled;
            matches.noteIDs.reserve(expected);
            found.reserve(size_t(expected));
        }
        for (; chunk < chunks; ++chunk) {
            // A search that a newer one replaced stops here.
            if (cancellation.isCancelled())
                return {};
            corpus->findNotes(chunk, finder, length, found);
        }
        insertInTableOrder(matches.noteIDs, found);
        return matches;
    }

private:
    // The index serves a query when fewer than one note in this many holds
    // it, and only in a project of this much text: below it, reading all of
    // it costs less than a query's fixed cost in SQLite.
    static constexpr qsizetype selectiveShare = 128;
    static constexpr qsizetype smallestIndexed = 8 * 1024 * 1024;

    std::shared_ptr<const ProjectCorpus> corpusFor(const Project &project)
    {
        std::shared_ptr<const ProjectCorpus> &corpus = m_corpora[project.id];
        if (!corpus || !corpus->describes(project))
            corpus = ProjectCorpus::make(project, corpus.get());
        return corpus;
    }

    bool indexCurrent(quint64 revision)
    {
        QMutexLocker locker(&m_published.mutex);
        return m_published.revision == revision;
    }

    void closeReader()
    {
        if (m_reader)
            sqlite3_close(m_reader);
        m_reader = nullptr;
    }

    // The notes of the project whose rows hold q, as the tables of \a revision
    // have them; none when the tables are not that revision or fail.
    std::optional<QList<QUuid>> indexCandidates(
        const QString &q, const QUuid &projectID, quint64 revision)
    {
        quint64 changes = 0;
        {
            QMutexLocker locker(&m_published.mutex);
            if (m_published.revision != revision)
                return std::nullopt;
            changes = m_published.changes;
            if (m_reader && m_readerGeneration != m_published.generation)
                closeReader(); // the file was made anew
            m_readerGeneration = m_published.generation;
        }
        if (!m_reader) {
            sqlite3 *handle = nullptr;
            if (sqlite3_open_v2(QFile::encodeName(m_path).constData(), &handle,
                    SQLITE_OPEN_READONLY, nullptr)
                != SQLITE_OK) {
                sqlite3_close(handle);
                return std::nullopt;
            }
            m_reader = handle;
            sqlite3_busy_timeout(m_reader, 100);
        }
        ++m_sqlQueryCount;
        QList<QUuid> ids;
        sqlite3_stmt *statement = nullptr;
        const QByteArray pattern = sqlText(u'%' + q + u'%');
        const QByteArray project = idText(projectID);
        bool ok = sqlite3_exec(m_reader, "BEGIN;", nullptr, nullptr, nullptr) == SQLITE_OK
            && sqlite3_prepare_v2(m_reader,
                   "SELECT note_id FROM note_search WHERE body LIKE ? AND project_id = ?;", -1,
                   &statement, nullptr)
                == SQLITE_OK
            && sqlite3_bind_text(statement, 1, pattern.constData(), int(pattern.size()),
                   SQLITE_TRANSIENT)
                == SQLITE_OK
            && sqlite3_bind_text(statement, 2, project.constData(), int(project.size()),
                   SQLITE_TRANSIENT)
                == SQLITE_OK;
        if (ok) {
            int status;
            while ((status = sqlite3_step(statement)) == SQLITE_ROW) {
                const auto text = reinterpret_cast<const char *>(sqlite3_column_text(statement, 0));
                if (!text)
                    continue;
                const QUuid id = QUuid::fromString(QLatin1StringView(text));
                if (!id.isNull())
                    ids.append(id);
            }
            ok = status == SQLITE_DONE;
        }
        if (!ok) {
            qCCritical(lcSearchIndex, "Indexed query failed; using background scan: %s",
                sqlite3_errmsg(m_reader));
        }
        sqlite3_finalize(statement);
        sqlite3_exec(m_reader, ok ? "COMMIT;" : "ROLLBACK;", nullptr, nullptr, nullptr);
        if (!ok) {
            closeReader();
            return std::nullopt;
        }
        // A commit since the revision was read may have changed the rows.
        QMutexLocker locker(&m_published.mutex);
        if (m_published.changes != changes)
            return std::nullopt;
        return ids;
    }

    QString m_path;
    Published &m_published;
    std::atomic<int> &m_sqlQueryCount;
    std::atomic<Plan> &m_plan;
    QHash<QUuid, std::shared_ptr<const ProjectCorpus>> m_corpora;
    sqlite3 *m_reader = nullptr;
    quint64 m_readerGeneration = 0;
};

SearchIndex::SearchIndex(std::optional<QString> databasePath)
    : m_published(std::make_unique<Published>())
{
    const QString path = databasePath.value_or(defaultDatabasePath());
    m_worker = std::make_unique<Worker>(path, *m_published);
    m_searcher = std::make_unique<Searcher>(path, *m_published, m_sqlQueryCount, m_plan);
    m_queue = std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.search-index"));
    m_queryQueue = std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.search"));
}

SearchIndex::~SearchIndex()
{
    // Searches hand synchronisations to the index: they finish first.
    m_queryQueue.reset();
    m_queue.reset();
}

SearchIndex &SearchIndex::shared()
{
    static SearchIndex *const index = new SearchIndex;
    return *index;
}

QString SearchIndex::defaultDatabasePath()
{
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (caches.isEmpty())
        qFatal("There is no cache folder (XDG_CACHE_HOME); cannot place the search index.");
    return caches + QStringLiteral("/Vesko/SearchIndex-v1.sqlite");
}

QString SearchIndex::normalizedQuery(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    // Blanks are the tab and every space separator of Unicode (category Zs);
    // line breaks are not blanks.
    auto blank = [](QChar c) { return c == u'\t' || c.category() == QChar::Separator_Space; };
    while (begin < end && blank(text.at(begin)))
        ++begin;
    while (end > begin && blank(text.at(end - 1)))
        --end;
    return text.sliced(begin, end - begin).toLower();
}

SearchMatches SearchIndex::scanProject(const QString &query, const Project &project)
{
    SearchMatches matches;
    for (const NoteSection &section : project.sections) {
        if (section.title.toLower().contains(query))
            matches.sectionIDs.insert(section.id);
        for (const Note &note : section.notes) {
            const bool found = note.text.toLower().contains(query)
                || std::any_of(note.attachments.cbegin(), note.attachments.cend(),
                    [&](const NoteAttachment &a) { return a.fileName.toLower().contains(query); });
            if (found)
                matches.noteIDs.insert(note.id);
        }
    }
    return matches;
}

void SearchIndex::synchronize(const Library &library, quint64 revision, Cancellation cancellation)
{
    if (m_holding) {
        m_held = HeldSynchronization {library, revision, std::move(cancellation)};
        return;
    }
    Worker *worker = m_worker.get();
    m_queue->async([worker, library, revision, cancellation] {
        worker->synchronize(library, revision, cancellation);
    });
    // The project that will be searched gets its corpus now, not at its
    // first search.
    if (const Project *project = activeProject(library)) {
        Searcher *searcher = m_searcher.get();
        m_queryQueue->async([searcher, project = *project, cancellation] {
            if (!cancellation.isCancelled())
                searcher->prepare(project);
        });
    }
}

void SearchIndex::holdSynchronization()
{
    m_holding = true;
}

void SearchIndex::resumeSynchronization()
{
    if (!m_holding.exchange(false))
        return;
    if (std::optional<HeldSynchronization> held = std::exchange(m_held, std::nullopt))
        synchronize(held->library, held->revision, std::move(held->cancellation));
}

SearchMatches SearchIndex::runSearch(const QString &query, const Project &project,
    const Library &library, quint64 revision, const Cancellation &cancellation)
{
    const QString q = normalizedQuery(query);
    if (q.isEmpty() || cancellation.isCancelled())
        return {};
    // The index catches up in the background; this search does not wait for
    // it. While the launch holds the index, the held request catches it up.
    if (!m_holding.load()) {
        Worker *worker = m_worker.get();
        m_queue->async([worker, library, revision] {
            worker->synchronize(library, revision, Cancellation());
        });
    }
    return m_searcher->search(q, project, revision, cancellation);
}

void SearchIndex::search(const QString &query, const Project &project, const Library &library,
    quint64 revision, Cancellation cancellation, QObject *context,
    std::function<void(const SearchMatches &)> completion)
{
    QPointer<QObject> receiver(context);
    m_queryQueue->async([=, this] {
        const SearchMatches matches = runSearch(query, project, library, revision, cancellation);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [receiver, completion, matches] {
                if (receiver)
                    completion(matches);
            },
            Qt::QueuedConnection);
    });
}

void SearchIndex::synchronizeAndWait(const Library &library, quint64 revision)
{
    Worker *worker = m_worker.get();
    m_queue->sync([&] { worker->synchronize(library, revision, Cancellation()); });
}

SearchMatches SearchIndex::searchAndWait(
    const QString &query, const Project &project, const Library &library, quint64 revision)
{
    return m_queryQueue->sync(
        [&] { return runSearch(query, project, library, revision, Cancellation()); });
}

void SearchIndex::runOnIndexThread(std::function<void()> job)
{
    m_queue->async(std::move(job));
}

std::optional<quint64> SearchIndex::indexedRevision() const
{
    Worker *worker = m_worker.get();
    return m_queue->sync([worker] { return worker->indexedRevision(); });
}

bool SearchIndex::isDatabaseOpen() const
{
    Worker *worker = m_worker.get();
    return m_queue->sync([worker] { return worker->isOpen(); });
}

} // namespace Vesko
