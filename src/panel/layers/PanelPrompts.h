// SPDX-License-Identifier: GPL-3.0-or-later
//
// The three one-field prompts of the panel: what each asks, and what its
// answer does. "New Section" makes or picks the section and carries over the
// notes that "Move to ▸ New Section…" left waiting; "New Project" makes a
// project; "Rename Project" renames the active one. Each first closes its
// own layer, whatever the answer.

#pragma once

#include "panel/window/PanelState.h"

#include <QString>

#include <optional>

namespace Vesko {

class Store;

struct PanelPrompt
{
    QString title;
    QString placeholder;
    QString initialText;
};

//! The prompt of \a layer, or nothing when the layer is not a prompt.
std::optional<PanelPrompt> panelPrompt(PanelLayer layer, const Store &store);

//! Closes the prompt of \a layer and acts on \a name (nothing: cancelled).
void commitPanelPrompt(
    PanelLayer layer, Store &store, PanelState &state, const std::optional<QString> &name);

} // namespace Vesko
