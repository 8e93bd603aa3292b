// Configuration files as users name them: the file or its folder, by a host path, a Windows path or
// a path from the simulator's folder.
#pragma once

#include <QString>

namespace vt::cli {

class World;

/// Full path of the configuration file; \a name ("aircraft.cfg") is added to a folder. A path that
/// is not there from the current folder may be meant from the simulator's. The file need not exist.
[[nodiscard]] QString typedConfiguration(World& world, const QString& typed, const QString& name);

} // namespace vt::cli
