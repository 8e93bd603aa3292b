// The icon of what an installation does with a file, wherever a plan is shown.
#pragma once

#include "install/PlannedFiles.h"

#include <QIcon>

namespace vt {

/// Its word is plannedStateWord().
[[nodiscard]] QIcon plannedIcon(PlannedState state);

} // namespace vt
