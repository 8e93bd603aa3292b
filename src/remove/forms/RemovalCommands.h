// Registers the removal wizard with the main window.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt {

/// The menu entry, and the hook that ticks certain add-ons. Both must outlive the window's use.
void wireRemoval(frmControl& window, Session& session);

} // namespace vt
