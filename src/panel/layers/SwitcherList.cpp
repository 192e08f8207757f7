// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/SwitcherList.h"

namespace Vesko {

SwitcherList::SwitcherList(QList<SwitcherItem> items, bool offersCreate)
    : m_items(std::move(items))
    , m_offersCreate(offersCreate)
{
    refilter();
}

void SwitcherList::setItems(QList<SwitcherItem> items)
{
    m_items = std::move(items);
    refilter();
    if (m_selection && !indexOf(*m_selection))
        m_selection = firstRow();
}

QString SwitcherList::trimmedQuery() const
{
    return m_query.trimmed();
}

void SwitcherList::setQuery(const QString &query)
{
    m_query = query;
    refilter();
    if (!m_selection || !indexOf(*m_selection))
        m_selection = firstRow();
}

void SwitcherList::refilter()
{
    const QString q = trimmedQuery();
    m_filtered.clear();
    for (const SwitcherItem &item : std::as_const(m_items)) {
        if (q.isEmpty() || item.title.contains(q, Qt::CaseInsensitive))
            m_filtered.append(item);
    }
}

bool SwitcherList::createOffered() const
{
    if (!m_offersCreate)
        return false;
    const QString q = trimmedQuery();
    if (q.isEmpty())
        return false;
    for (const SwitcherItem &item : m_items) {
        if (item.title.compare(q, Qt::CaseInsensitive) == 0)
            return false;
    }
    return true;
}

int SwitcherList::count() const
{
    return int(m_filtered.size()) + (createOffered() ? 1 : 0);
}

std::optional<SwitcherSelection> SwitcherList::rowAt(int index) const
{
    if (index >= 0 && index < m_filtered.size())
        return SwitcherSelection::item(m_filtered.at(index).id);
    if (index == m_filtered.size() && createOffered())
        return SwitcherSelection::create();
    return std::nullopt;
}

std::optional<int> SwitcherList::indexOf(const SwitcherSelection &selection) const
{
    if (selection.isCreate)
        return createOffered() ? std::optional(int(m_filtered.size())) : std::nullopt;
    for (qsizetype i = 0; i < m_filtered.size(); ++i) {
        if (m_filtered.at(i).id == selection.id)
            return int(i);
    }
    return std::nullopt;
}

std::optional<int> SwitcherList::selectedIndex() const
{
    return m_selection ? indexOf(*m_selection) : std::nullopt;
}

void SwitcherList::setSelection(std::optional<SwitcherSelection> selection)
{
    m_selection = selection;
}

std::optional<SwitcherSelection> SwitcherList::firstRow() const
{
    return rowAt(0);
}

void SwitcherList::selectInitial(const std::optional<QUuid> &current)
{
    if (current && indexOf(SwitcherSelection::item(*current)))
        m_selection = SwitcherSelection::item(*current);
    else
        m_selection = firstRow();
}

void SwitcherList::move(int delta)
{
    const int rows = count();
    if (rows < 1) {
        m_selection.reset();
        return;
    }
    if (const std::optional<int> index = selectedIndex())
        m_selection = rowAt(((*index + delta) % rows + rows) % rows);
    else
        m_selection = rowAt(delta < 0 ? rows - 1 : 0);
}

std::optional<SwitcherSelection> SwitcherList::commitTarget() const
{
    if (m_selection && m_selection->isCreate && m_offersCreate)
        return SwitcherSelection::create();
    if (m_selection && !m_selection->isCreate) {
        // The section switcher finds the selected section among all of them;
        // the project switcher only among those still listed.
        const QList<SwitcherItem> &pool = m_offersCreate ? m_items : m_filtered;
        for (const SwitcherItem &item : pool) {
            if (item.id == m_selection->id)
                return m_selection;
        }
    }
    if (!m_filtered.isEmpty())
        return SwitcherSelection::item(m_filtered.first().id);
    if (m_offersCreate)
        return SwitcherSelection::create();
    return std::nullopt;
}

} // namespace Vesko
