// What "show" prints of one add-on, for commands that change it as well.
#pragma once

#include "cli/Command.h"

namespace vt::cli {

/// The whole document about the add-on KEY; the exit status.
[[nodiscard]] int showAddon(World& world, const Arguments& arguments);

} // namespace vt::cli
