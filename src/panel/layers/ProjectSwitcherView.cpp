// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/ProjectSwitcherView.h"

#include "panel/window/PanelState.h"
#include "panel/window/Shortcut.h"
#include "shell/Toast.h"
#include "store/Store.h"

namespace Vesko {

ProjectSwitcherView::ProjectSwitcherView(Store &store, PanelState &state, QWidget *parent)
    : SwitcherView(store, state, PanelLayer::ProjectSwitcher, false, parent)
{
    setObjectName(QStringLiteral("VeskoProjectSwitcher"));
    setAccessibleName(tr("Switch project"));
    build(tr("Switch project"),
        tr("↵ switch · esc close · %1 for a new project")
            .arg(Shortcuts::displayText(Shortcut::newProject)),
        200, activeItem());
}

QList<SwitcherItem> ProjectSwitcherView::currentItems() const
{
    QList<SwitcherItem> items;
    for (const Project &project : m_store.library().projects)
        items.append({project.id, project.name});
    return items;
}

std::optional<QUuid> ProjectSwitcherView::activeItem() const
{
    return m_store.activeProject().id;
}

void ProjectSwitcherView::choose(const QUuid &id)
{
    QString name;
    for (const Project &project : m_store.library().projects) {
        if (project.id == id)
            name = project.name;
    }
    m_store.switchProject(id);
    ToastPresenter::shared().present(tr("Using %1").arg(name), QStringLiteral("checkmark"));
    close();
}

} // namespace Vesko
