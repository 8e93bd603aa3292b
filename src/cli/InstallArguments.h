// The options that `plan` and `install` share, from the command line to InstallOptions: what plan
// says is what install does.
#pragma once

#include "cli/Command.h"
#include "install/CAddonInstallationDetails.h"
#include "install/InstallOptions.h"
#include "platform/Result.h"

namespace vt::cli {

/// The options of the commands, for their tables.
[[nodiscard]] std::vector<Option> installOptionTable();
[[nodiscard]] std::vector<Option> reinstallOptionTable();

/// Wrong values are kind Usage. Folders that are named become roots of this call when \a writes.
[[nodiscard]] ResultOf<InstallOptions>
installOptionsOf(World& world, const Arguments& arguments, bool writes);

/// Prepares \a details of the source, as a new add-on or, with --complete, as the rest of one.
[[nodiscard]] Result prepareInstallation(World& world,
                                         CAddonInstallationDetails& details,
                                         const QString& source,
                                         const InstallOptions& options,
                                         const Arguments& arguments);

/// What a reinstallation knows of them.
[[nodiscard]] InstallOptions againOptionsOf(World& world, const Arguments& arguments);

} // namespace vt::cli
