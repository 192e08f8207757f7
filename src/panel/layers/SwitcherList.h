// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a switcher shows and which row it has selected: the items whose
// title contains the query (trimmed, without regard to case), in their own
// order, and for the section switcher a "create" row after them when no
// item bears the query as its title. Arrows wrap; a query change keeps a
// selection that is still listed.

#pragma once

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace Vesko {

struct SwitcherItem
{
    QUuid id;
    QString title;

    bool operator==(const SwitcherItem &) const = default;
};

//! A row of a switcher: an item by its id, or the create row.
struct SwitcherSelection
{
    bool isCreate = false;
    QUuid id;

    static SwitcherSelection item(const QUuid &id) { return {false, id}; }
    static SwitcherSelection create() { return {true, {}}; }
    bool operator==(const SwitcherSelection &) const = default;
};

class SwitcherList
{
public:
    //! \a offersCreate: the section switcher's create row.
    SwitcherList(QList<SwitcherItem> items, bool offersCreate);

    void setItems(QList<SwitcherItem> items);
    const QList<SwitcherItem> &items() const { return m_items; }

    QString query() const { return m_query; }
    //! The query trimmed of whitespace and line breaks.
    QString trimmedQuery() const;
    //! Sets the query; the selection stays while it is still listed, else
    //! goes to the first item, or the create row, or none.
    void setQuery(const QString &query);

    QList<SwitcherItem> filtered() const { return m_filtered; }
    bool createOffered() const;
    //! Filtered items, plus one for the create row.
    int count() const;
    //! The row at \a index, or none.
    std::optional<SwitcherSelection> rowAt(int index) const;
    std::optional<int> indexOf(const SwitcherSelection &selection) const;

    std::optional<SwitcherSelection> selection() const { return m_selection; }
    std::optional<int> selectedIndex() const;
    void setSelection(std::optional<SwitcherSelection> selection);
    //! On opening: \a current if listed, else the first item, else the
    //! create row, else none.
    void selectInitial(const std::optional<QUuid> &current);
    //! One row up (-1) or down (+1), wrapping; from none, the last row
    //! going up and the first going down.
    void move(int delta);

    //! What Return does: the selected item if it is listed, else the first
    //! listed item; the create row when that is selected or nothing is
    //! listed (and creating is offered); else nothing.
    std::optional<SwitcherSelection> commitTarget() const;

private:
    void refilter();
    std::optional<SwitcherSelection> firstRow() const;

    QList<SwitcherItem> m_items;
    bool m_offersCreate;
    QString m_query;
    QList<SwitcherItem> m_filtered;
    std::optional<SwitcherSelection> m_selection;
};

} // namespace Vesko
