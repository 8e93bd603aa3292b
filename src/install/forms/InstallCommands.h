// Registers the installation wizard with the main window.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt {

/// The menu entry, and the hook that opens the wizard with an add-on. Both must outlive the
/// window's use.
void wireInstallation(frmControl& window, Session& session);

} // namespace vt
