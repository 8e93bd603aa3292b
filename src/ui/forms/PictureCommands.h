// Default pictures of the simulator's own aircraft, panels and scenery: assigned at the first start
// and by the menu, cleared by the menu.
#pragma once

#include "session/Session.h"
#include "shell/forms/frmControl.h"

namespace vt {

/// Both must outlive the window's use.
void wirePictures(frmControl& window, Session& session);

/// At a start: assigns them unless an earlier start did. What cannot be used stands in the error
/// log; nobody asked for it, so nobody is told. Stopped by the user, the next start goes on.
void assignDefaultPicturesOnce(Frame& frame, Session& session);

} // namespace vt
