// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/PanelPrompts.h"

#include "store/Store.h"

#include <QCoreApplication>

namespace Vesko {

namespace {
// The texts of this file, in the translation context "PanelPrompts".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(PanelPrompts)
};
} // namespace

std::optional<PanelPrompt> panelPrompt(PanelLayer layer, const Store &store)
{
    switch (layer) {
    case PanelLayer::NewSection:
        return PanelPrompt {Texts::tr("New Section"), Texts::tr("Section name"), QString()};
    case PanelLayer::NewProject:
        return PanelPrompt {Texts::tr("New Project"), Texts::tr("Project name"), QString()};
    case PanelLayer::RenameProject:
        return PanelPrompt {
            Texts::tr("Rename Project"), Texts::tr("Project name"), store.activeProject().name};
    default:
        return std::nullopt;
    }
}

void commitPanelPrompt(
    PanelLayer layer, Store &store, PanelState &state, const std::optional<QString> &name)
{
    state.setShowing(layer, false);
    switch (layer) {
    case PanelLayer::NewSection: {
        const QList<QUuid> pending = state.pendingMoveIDs();
        if (name) {
            const std::optional<NoteSection> section = store.createOrUseSection(*name);
            if (section && !pending.isEmpty())
                store.moveNotesToSection(pending, section->id);
        }
        // Cancelled or not, the notes no longer wait for a section.
        state.setPendingMoveIDs({});
        break;
    }
    case PanelLayer::NewProject:
        if (name)
            store.createProject(*name);
        break;
    case PanelLayer::RenameProject:
        if (name)
            store.renameProject(store.activeProject().id, *name);
        break;
    default:
        break;
    }
}

} // namespace Vesko
