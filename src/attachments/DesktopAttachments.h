// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's attachment actions, working on the shared Store with the
// desktop's file dialog, clipboard, file manager and toast.

#pragma once

namespace Vesko {

class AttachmentActions;

//! Made on first use and kept for the life of the process. Main thread only.
AttachmentActions &attachmentActions();

} // namespace Vesko
