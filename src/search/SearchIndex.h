// SPDX-License-Identifier: GPL-3.0-or-later
//
// A derived, disposable full-text index of the library in a small SQLite
// database with two FTS5 trigram tables, one for notes (text and attachment
// names) and one for section titles. The library file stays the only truth:
// the database is refilled at every launch and recreated after any failure,
// and every search that the database cannot serve scans the project in memory
// instead, so a search never fails.
//
// Synchronisations run on the index's own thread, one at a time. Searches run
// on a thread of their own and never wait for a synchronisation: each is
// answered from a lower-cased copy of the project kept in memory
// (ProjectCorpus), or through the database when it is current and the query
// selective enough for the index to win. Callers hand in value copies and get
// their answers as queued calls on the main thread.

#pragma once

#include "library/Library.h"
#include "search/SearchMatches.h"

#include <QHash>
#include <QObject>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

struct sqlite3;

namespace Vesko {

class SerialQueue;
class ProjectCorpus;

//! A flag that a caller raises to tell a queued job it is no longer wanted.
class Cancellation
{
public:
    Cancellation()
        : m_flag(std::make_shared<std::atomic<bool>>(false))
    { }
    void cancel() const { m_flag->store(true); }
    bool isCancelled() const { return m_flag->load(); }

private:
    std::shared_ptr<std::atomic<bool>> m_flag;
};

//! What the index holds of one note: lower-cased text and attachment names.
struct IndexedNote
{
    QUuid id;
    QUuid projectID;
    QUuid sectionID;
    QString text;
    QStringList attachmentNames;

    bool operator==(const IndexedNote &) const = default;
};

struct IndexedSection
{
    QUuid id;
    QUuid projectID;
    QString title;

    bool operator==(const IndexedSection &) const = default;
};

class SearchIndex
{
public:
    //! The index in \a databasePath, or in "Vesko/SearchIndex-v1.sqlite" of
    //! the user's cache folder ($XDG_CACHE_HOME) when none is given.
    explicit SearchIndex(std::optional<QString> databasePath = std::nullopt);
    ~SearchIndex();

    SearchIndex(const SearchIndex &) = delete;
    SearchIndex &operator=(const SearchIndex &) = delete;

    //! The one index of the process, made on first use and never destroyed.
    static SearchIndex &shared();

    static QString defaultDatabasePath();

    //! Brings the index up to \a library at \a revision, in the background.
    void synchronize(const Library &library, quint64 revision, Cancellation cancellation = {});

    //! Holds back the synchronisations asked for from now on, the last of
    //! which starts at resumeSynchronization(): a launch keeps the index's
    //! first pass over the library off the cores until its window is up.
    //! Searches are answered meanwhile. Main thread only, as synchronize().
    void holdSynchronization();
    void resumeSynchronization();

    //! Searches \a project (a value of the library at \a revision) for
    //! \a query in the background; \a completion runs on the main thread
    //! unless \a context has gone by then.
    void search(const QString &query, const Project &project, const Library &library,
        quint64 revision, Cancellation cancellation, QObject *context,
        std::function<void(const SearchMatches &)> completion);

    //! The same, blocking until done; for tests and tools, never the main thread.
    void synchronizeAndWait(const Library &library, quint64 revision);
    SearchMatches searchAndWait(
        const QString &query, const Project &project, const Library &library, quint64 revision);

    //! How a search that the index could serve is answered.
    enum class Plan {
        Chosen, //!< by the index or the scan, whichever the query favours
        Index, //!< by the index whenever it is current
        Scan, //!< always from memory
    };
    //! For tests and benchmarks.
    void setPlan(Plan plan) { m_plan.store(plan); }

    //! For tests: runs \a job on the index's thread, in turn with the
    //! synchronisations.
    void runOnIndexThread(std::function<void()> job);

    //! For tests: the revision the tables hold, and how many SQL queries ran.
    std::optional<quint64> indexedRevision() const;
    int sqlQueryCount() const { return m_sqlQueryCount.load(); }
    bool isDatabaseOpen() const;

    //! Every note and section of \a project that holds \a query (lower-cased
    //! already) in its text, an attachment name or its title; no index involved.
    static SearchMatches scanProject(const QString &query, const Project &project);

    //! The query as the search uses it: spaces of every kind and tabs (not
    //! line breaks) trimmed, lower-cased.
    static QString normalizedQuery(const QString &text);

private:
    struct Published;
    SearchMatches runSearch(const QString &query, const Project &project, const Library &library,
        quint64 revision, const Cancellation &cancellation);

    class Worker;
    class Searcher;
    std::unique_ptr<Published> m_published;
    std::atomic<int> m_sqlQueryCount {0};
    std::atomic<Plan> m_plan {Plan::Chosen};
    std::unique_ptr<Worker> m_worker;
    std::unique_ptr<Searcher> m_searcher;
    std::unique_ptr<SerialQueue> m_queue;
    std::unique_ptr<SerialQueue> m_queryQueue;

    struct HeldSynchronization
    {
        Library library;
        quint64 revision = 0;
        Cancellation cancellation;
    };
    //! Set and cleared on the owner's thread; read by searches on theirs.
    std::atomic<bool> m_holding = false;
    std::optional<HeldSynchronization> m_held;
};

} // namespace Vesko
