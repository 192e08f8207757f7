// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Store's rows as a list model for the panel's list view: one item per
// section header or note, reset whenever the Store rebuilds its rows, with
// the selection flag updated in place.

#pragma once

#include <QAbstractListModel>

namespace Vesko {

class Store;

class PanelRowsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        IsSectionRole = Qt::UserRole + 1,
        IdRole,
        IsDoneRole,
        IsSelectedRole,
        IsCollapsedRole,
        IsActiveSectionRole,
        RemainingCountRole,
        //! The source line of a note: application, and window when there is one.
        SourceRole,
    };

    explicit PanelRowsModel(Store &store, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    //! The row of the note or section \a id, or -1.
    int rowOf(const QUuid &id) const;

private:
    void resetRows();
    void refreshSelection();

    Store &m_store;
    int m_rowCount = 0;
};

} // namespace Vesko
