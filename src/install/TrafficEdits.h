// What an add-on's flight plans do to the source files of the traffic tools: read from the add-on's
// files, for the plan and for the installation alike.
#pragma once

#include "install/CAddonInstallationDetails.h"
#include "traffic/TrafficAddon.h"

#include <functional>

namespace vt {

/// Larger ones are no flight plans.
inline constexpr qint64 trafficFileLimit = 32LL * 1024 * 1024;

/// The add-on's flight plan, aircraft and airport texts, of the items that \a wanted names.
[[nodiscard]] QList<TrafficFile>
trafficFiles(const CAddonInstallationDetails& details,
             const AnsiCodec& ansi,
             const std::function<bool(const CAddon_Item&)>& wanted);

/// The lines that the installation will add, by file; nothing where the tool is not known, or has
/// no source files for this simulator. \a problem is set when the files cannot be read.
[[nodiscard]] QList<ConfigChange>
trafficChanges(const CAddonInstallationDetails& details, Context& context, QString& problem);

} // namespace vt
