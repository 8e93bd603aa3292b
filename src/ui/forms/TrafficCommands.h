// The outside tools for computer-controlled traffic: started, had their steps run, their source
// files opened for editing.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt {

/// Both must outlive the window's use.
void wireTrafficTools(frmControl& window, Session& session);

} // namespace vt
