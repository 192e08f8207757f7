// SPDX-License-Identifier: GPL-3.0-or-later
//
// The project switcher over the panel: picks the project the panel shows.

#pragma once

#include "panel/layers/SwitcherView.h"

namespace Vesko {

class ProjectSwitcherView : public SwitcherView
{
    Q_OBJECT

public:
    ProjectSwitcherView(Store &store, PanelState &state, QWidget *parent = nullptr);

protected:
    QList<SwitcherItem> currentItems() const override;
    std::optional<QUuid> activeItem() const override;
    void choose(const QUuid &id) override;
};

} // namespace Vesko
