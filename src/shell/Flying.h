// Starting the simulator: with or without asking first, on its own or with something to open.
#pragma once

#include "platform/Prompt.h"
#include "platform/Result.h"
#include "shell/Context.h"

#include <QString>
#include <QStringList>

namespace vt {

class Processes;

[[nodiscard]] bool isSimulatorRunning(const Context& context, const Processes& processes);

/// Starts the simulator's program and leaves it alone. Asks nothing.
[[nodiscard]] Result
launchSimulator(const Context& context, const Processes& processes, const QStringList& arguments);

/// The user's own wish to fly. Asks first when the setting "Confirm Start" is on (kind Declined
/// after anything but Yes); fails when the simulator runs already. \a file: Windows text of what
/// the simulator is to open, empty for nothing. A success carries a remark.
[[nodiscard]] Result
startFlying(Context& context, const Processes& processes, const QString& file = {});

/// Told after an installation or removal while the simulator runs.
[[nodiscard]] Prompt restartNotice(const DisplayNames& names);

} // namespace vt
