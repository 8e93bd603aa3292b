// The commands of vantrelctl, and which of them a command line names.
#pragma once

#include "cli/Command.h"

namespace vt::cli {

/// Every command, in the order of the help.
[[nodiscard]] std::vector<Command> allCommands();

} // namespace vt::cli
