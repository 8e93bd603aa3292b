// Registers the history and the optimisation with the main window.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt {

/// Both must outlive the window's use.
void wireDatabaseTools(frmControl& window, Session& session);

} // namespace vt
