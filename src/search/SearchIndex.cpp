// SPDX-License-Identifier: GPL-3.0-or-later

#include "search/SearchIndex.h"

#include "platform/FileSystem.h"
#include "platform/Logging.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QStandardPaths>
#include <QTextBoundaryFinder>

#include <sqlite3.h>

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

bool noteContains(const IndexedNote &note, const QString &q)
{
    if (note.text.contains(q))
        return true;
    return std::any_of(note.attachmentNames.cbegin(), note.attachmentNames.cend(),
        [&](const QString &name) { return name.contains(q); });
}

} // namespace

// The state of the index; touched only on the index's thread.
class SearchIndex::Worker
{
public:
    Worker(QString path, std::atomic<int> &sqlQueryCount)
        : m_path(std::move(path))
        , m_sqlQueryCount(sqlQueryCount)
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
        try {
            recreateDatabase();
            performSynchronization(library, revision, Cancellation());
        } catch (const IndexError &error) {
            qCCritical(
                lcSearchIndex, "Search index rebuild failed: %s", qUtf8Printable(error.message));
        } catch (const Cancelled &) { }
    }

    SearchMatches search(const QString &query, const Project &project, const Library &library,
        quint64 revision, const Cancellation &cancellation)
    {
        const QString q = normalizedQuery(query);
        if (q.isEmpty() || cancellation.isCancelled())
            return {};
        synchronize(library, revision, cancellation);
        if (cancellation.isCancelled())
            return {};
        if (m_indexedRevision != revision)
            return scanProject(q, project);
        if (graphemeCount(q) < 3 || q.contains(u'%') || q.contains(u'_'))
            return scanIndexedMemory(q, project);

        try {
            const QByteArray pattern = sqlText(u'%' + q + u'%');
            const QByteArray projectID = idText(project.id);
            SearchMatches matches;
            for (const QUuid &id :
                fetchIDs("SELECT note_id FROM note_search WHERE body LIKE ? AND project_id = ?;",
                    pattern, projectID)) {
                const auto note = m_indexedNotes.constFind(id);
                if (note != m_indexedNotes.cend() && note->indexed.projectID == project.id
                    && noteContains(note->indexed, q))
                    matches.noteIDs.insert(id);
            }
            for (const QUuid &id : fetchIDs(
                     "SELECT section_id FROM section_search WHERE title LIKE ? AND project_id = ?;",
                     pattern, projectID)) {
                const auto section = m_indexedSections.constFind(id);
                if (section != m_indexedSections.cend() && section->projectID == project.id
                    && section->title.contains(q)) {
                    matches.sectionIDs.insert(id);
                }
            }
            return matches;
        } catch (const IndexError &error) {
            qCCritical(lcSearchIndex, "Indexed query failed; using background scan: %s",
                qUtf8Printable(error.message));
            return scanProject(q, project);
        }
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
            executeScript("COMMIT;");
        } catch (const IndexError &) {
            if (m_database)
                sqlite3_exec(m_database, "ROLLBACK;", nullptr, nullptr, nullptr);
            throw;
        }
        m_indexedNotes = std::move(snapshot.notes);
        m_indexedSections = std::move(snapshot.sections);
        m_indexedRevision = revision;
    }

    SearchMatches scanIndexedMemory(const QString &q, const Project &project) const
    {
        SearchMatches matches;
        for (const MirrorNote &entry : m_indexedNotes) {
            const IndexedNote &note = entry.indexed;
            if (note.projectID == project.id && noteContains(note, q))
                matches.noteIDs.insert(note.id);
        }
        for (const IndexedSection &section : m_indexedSections) {
            if (section.projectID == project.id && section.title.contains(q))
                matches.sectionIDs.insert(section.id);
        }
        return matches;
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

    QList<QUuid> fetchIDs(const char *sql, const QByteArray &pattern, const QByteArray &projectID)
    {
        ++m_sqlQueryCount;
        Statement statement(*this, sql);
        statement.bind({pattern, projectID});
        QList<QUuid> ids;
        int status;
        while ((status = sqlite3_step(statement.get())) == SQLITE_ROW) {
            const auto text
                = reinterpret_cast<const char *>(sqlite3_column_text(statement.get(), 0));
            if (!text)
                continue;
            const QUuid id = QUuid::fromString(QLatin1StringView(text));
            if (!id.isNull())
                ids.append(id);
        }
        if (status != SQLITE_DONE)
            throw IndexError {lastError()};
        return ids;
    }

    QString m_path;
    std::atomic<int> &m_sqlQueryCount;
    sqlite3 *m_database = nullptr;
    QHash<QUuid, MirrorNote> m_indexedNotes;
    QHash<QUuid, IndexedSection> m_indexedSections;
    std::optional<quint64> m_indexedRevision;
};

SearchIndex::SearchIndex(std::optional<QString> databasePath)
    : m_worker(
        std::make_unique<Worker>(databasePath.value_or(defaultDatabasePath()), m_sqlQueryCount))
    , m_queue(std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.search-index")))
{ }

SearchIndex::~SearchIndex()
{
    m_queue.reset(); // finishes the queued jobs before the state goes
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
    Worker *worker = m_worker.get();
    m_queue->async([worker, library, revision, cancellation] {
        worker->synchronize(library, revision, cancellation);
    });
}

void SearchIndex::search(const QString &query, const Project &project, const Library &library,
    quint64 revision, Cancellation cancellation, QObject *context,
    std::function<void(const SearchMatches &)> completion)
{
    Worker *worker = m_worker.get();
    QPointer<QObject> receiver(context);
    m_queue->async([=] {
        const SearchMatches matches
            = worker->search(query, project, library, revision, cancellation);
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
    Worker *worker = m_worker.get();
    return m_queue->sync(
        [&] { return worker->search(query, project, library, revision, Cancellation()); });
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
