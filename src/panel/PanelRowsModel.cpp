// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/PanelRowsModel.h"

#include "store/Store.h"

namespace Vesko {

PanelRowsModel::PanelRowsModel(Store &store, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
    , m_rowCount(int(store.rows().size()))
{
    connect(&m_store, &Store::rowsChanged, this, &PanelRowsModel::resetRows);
    connect(&m_store, &Store::selectionChanged, this, &PanelRowsModel::refreshSelection);
}

int PanelRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rowCount;
}

QVariant PanelRowsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rowCount)
        return {};
    const PanelRow &row = m_store.rows().at(index.row());
    if (row.isSection()) {
        const PanelSectionRow &section = row.section();
        switch (role) {
        case Qt::DisplayRole:
            return section.title;
        case IsSectionRole:
            return true;
        case IdRole:
            return section.id;
        case IsCollapsedRole:
            return section.isCollapsed;
        case IsActiveSectionRole:
            return section.isActive;
        case RemainingCountRole:
            return section.remainingCount;
        default:
            return {};
        }
    }
    const Note &note = row.note();
    switch (role) {
    case Qt::DisplayRole:
        return note.text;
    case IsSectionRole:
        return false;
    case IdRole:
        return note.id;
    case IsDoneRole:
        return note.isDone;
    case IsSelectedRole:
        return m_store.selection().contains(note.id);
    case SourceRole: {
        if (!note.source)
            return QString();
        const NoteSource &source = *note.source;
        if (source.windowTitle && !source.windowTitle->isEmpty())
            return source.appName + QStringLiteral(" · ") + *source.windowTitle;
        return source.appName;
    }
    default:
        return {};
    }
}

int PanelRowsModel::rowOf(const QUuid &id) const
{
    const QList<PanelRow> &rows = m_store.rows();
    for (int i = 0; i < m_rowCount; ++i) {
        if (rows.at(i).id() == id)
            return i;
    }
    return -1;
}

void PanelRowsModel::resetRows()
{
    beginResetModel();
    m_rowCount = int(m_store.rows().size());
    endResetModel();
}

void PanelRowsModel::refreshSelection()
{
    if (m_rowCount > 0)
        Q_EMIT dataChanged(index(0), index(m_rowCount - 1), {IsSelectedRole});
}

} // namespace Vesko
