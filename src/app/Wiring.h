// Which window each command of the main window opens: the one place that knows them all.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt::app {

/// Registers every command that there is a window or an operation for. Both must outlive the
/// window's use.
void wire(frmControl& window, Session& session);

/// The first window, by the setting "Open With"; nothing for a value whose window there is not.
void openFirst(frmControl& window, Session& session, int openWith);

} // namespace vt::app
