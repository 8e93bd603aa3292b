// Configuration files as users name them: the file or its folder, by a host path, a Windows path or
// a path from the simulator's folder.
#pragma once

#include "simconfig/AliasTarget.h"

#include <QString>

namespace vt {
class AliasConfig;
}

namespace vt::cli {

class World;

/// Full path of the configuration file; \a name ("aircraft.cfg") is added to a folder. A path that
/// is not there from the current folder may be meant from the simulator's. The file need not exist.
[[nodiscard]] QString typedConfiguration(World& world, const QString& typed, const QString& name);

/// What is typed as the panel or sound to refer to, in the form of an alias: a folder or
/// configuration file that is there is named as aliases are (empty for one outside the simulator);
/// anything else is an alias already.
[[nodiscard]] QString
typedAlias(World& world, const AliasConfig& part, aliastarget::Kind kind, const QString& typed);

} // namespace vt::cli
