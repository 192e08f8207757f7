// SPDX-License-Identifier: GPL-3.0-or-later
//
// The section switcher over the panel: picks a section of the active
// project, makes one of a query no section bears as its title, and renames
// the selected one in a form of its own (F2).

#pragma once

#include "panel/layers/SwitcherView.h"

class QLineEdit;
class QPushButton;

namespace Vesko {

class SectionSwitcherView : public SwitcherView
{
    Q_OBJECT

public:
    SectionSwitcherView(Store &store, PanelState &state, QWidget *parent = nullptr);

    std::optional<QUuid> renamingSectionID() const { return m_renamingSectionID; }
    QLineEdit *renameField() const { return m_renameField; }
    QPushButton *renameButton() const { return m_renameButton; }
    void beginRename() override;
    void commitRename();
    void cancelRename();

protected:
    QList<SwitcherItem> currentItems() const override;
    std::optional<QUuid> activeItem() const override;
    void choose(const QUuid &id) override;
    void create() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateRenameButton();

    std::optional<QUuid> m_renamingSectionID;
    QLineEdit *m_renameField = nullptr;
    QPushButton *m_renameButton = nullptr;
};

} // namespace Vesko
