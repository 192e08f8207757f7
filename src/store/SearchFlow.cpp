// SPDX-License-Identifier: GPL-3.0-or-later
//
// The search side of the Store: what the user types becomes a debounced
// search of the active project on the index's thread, and its answer filters
// the rows. A result is applied only if its search was not cancelled, the
// library has not changed since, and the text still asks for it. Every change
// of the library is handed to the index right away.

#include "store/Store.h"

namespace Vesko {

void Store::setSearchText(const QString &text)
{
    if (text == m_searchText)
        return;
    m_searchText = text;
    Q_EMIT searchTextChanged();
    runSearch();
}

void Store::runSearch()
{
    m_searchTimer.stop();
    m_searchCancellation.cancel();

    const QString q = SearchIndex::normalizedQuery(m_searchText);
    if (q.isEmpty()) {
        // No search: everything shows again at once.
        forgetSearchResult();
        rebuildRows();
        return;
    }
    if (q != m_appliedSearchQuery) {
        // A new query shows nothing until its own answer comes, never the
        // rows of an older query.
        m_lastRowChange = m_rows.clear();
        Q_EMIT rowsChanged();
    }
    m_pendingSearch = {q, activeProject(), m_library, m_libraryRevision};
    m_searchCancellation = Cancellation();
    m_searchTimer.start();
}

void Store::forgetSearchResult()
{
    if (!m_currentMatches.noteIDs.isEmpty() || !m_currentMatches.sectionIDs.isEmpty()) {
        m_currentMatches = {};
        Q_EMIT currentMatchesChanged();
    }
    m_appliedSearchQuery.clear();
}

void Store::startPendingSearch()
{
    const PendingSearch search = std::exchange(m_pendingSearch, PendingSearch {});
    const Cancellation cancellation = m_searchCancellation;
    m_searchIndex.search(search.query, search.project, search.library, search.revision,
        cancellation, this,
        [this, cancellation, query = search.query, revision = search.revision](
            const SearchMatches &matches) {
            if (!cancellation.isCancelled())
                applySearchResult(matches, query, revision);
        });
}

void Store::applySearchResult(const SearchMatches &matches, const QString &query, quint64 revision)
{
    if (revision != m_libraryRevision || SearchIndex::normalizedQuery(m_searchText) != query)
        return;
    if (m_currentMatches != matches) {
        m_currentMatches = matches;
        Q_EMIT currentMatchesChanged();
    }
    m_appliedSearchQuery = query;
    rebuildRows(matches);
}

void Store::refreshRows()
{
    const QString q = SearchIndex::normalizedQuery(m_searchText);
    if (q.isEmpty())
        rebuildRows();
    else if (q == m_appliedSearchQuery)
        rebuildRows(m_currentMatches);
    else
        runSearch();
}

void Store::scheduleIndexSync()
{
    m_indexSyncCancellation.cancel();
    m_indexSyncCancellation = Cancellation();
    m_searchIndex.synchronize(m_library, m_libraryRevision, m_indexSyncCancellation);
}

} // namespace Vesko
