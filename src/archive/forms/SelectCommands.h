// Registers the selection window with the main window.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt {

/// "Browse Folders...". Both must outlive the window's use.
void wireBrowseFolders(frmControl& window, Session& session);

} // namespace vt
