// Registers the lists of add-ons with the main window.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt {

/// Every menu entry that names a list, and the hook that shows certain add-ons. Both must outlive
/// the window's use.
void wireAddonLists(frmControl& window, Session& session);

} // namespace vt
