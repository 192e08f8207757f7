// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's attachment actions, working on the shared Store with the
// desktop's file dialog, clipboard, file manager and toast.

#pragma once

namespace Vesko {

class AttachmentActions;
class PanelCommands;

//! Made on first use and kept for the life of the process. Main thread only.
AttachmentActions &attachmentActions();

//! Lets the panel's commands add, paste, choose and import attachments
//! through attachmentActions(); their other hooks stay as they are.
void installAttachmentCommands(PanelCommands &commands);

} // namespace Vesko
