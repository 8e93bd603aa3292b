// What an add-on's flight plans do to the source files of the traffic tools: read from the add-on's
// files, for the plan and for the installation alike.
#pragma once

#include "install/CAddonInstallationDetails.h"
#include "traffic/CAIAircraft.h"
#include "traffic/CAIFlightPlan.h"
#include "traffic/TrafficAddon.h"

#include <functional>
#include <optional>

namespace vt {

/// Larger ones are no flight plans.
inline constexpr qint64 trafficFileLimit = 32LL * 1024 * 1024;

/// The add-on's flight plan, aircraft and airport texts, of the items that \a wanted names.
[[nodiscard]] QList<TrafficFile>
trafficFiles(const CAddonInstallationDetails& details,
             const AnsiCodec& ansi,
             const std::function<bool(const CAddon_Item&)>& wanted);

/// One of the flight plans that an add-on brings.
struct AddonFlightPlan
{
    qint32 item = 0;      ///< key of its file
    qsizetype number = 0; ///< in its file, from 1
    CAIFlightPlan plan;
    std::optional<CAIAircraft> aircraft; ///< nothing: not listed anywhere
    QStringList problems;                ///< what stands in its way, a sentence each
};

/// The plans of every marked file, in their order: checked against the add-on's own aircraft and
/// airports and, where the tool has source files for this simulator, against those. Airports are
/// left unchecked where nobody lists any.
[[nodiscard]] QList<AddonFlightPlan> addonFlightPlans(const CAddonInstallationDetails& details,
                                                      Context& context);

/// One remark for each file whose plans have problems.
[[nodiscard]] QList<PlanProblem> flightPlanRemarks(const QList<AddonFlightPlan>& plans);

/// The lines that the installation will add, by file; nothing where the tool is not known, or has
/// no source files for this simulator. \a problem is set when the files cannot be read.
[[nodiscard]] QList<ConfigChange>
trafficChanges(const CAddonInstallationDetails& details, Context& context, QString& problem);

} // namespace vt
