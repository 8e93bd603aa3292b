// Pictures of single variations: files named after sections ("fltsim.2.jpg") in a folder below
// "Images\Aircraft\" that mirrors the aircraft's place in the simulator. Only following a section's
// number is known here, not how pictures come to be.
#pragma once

#include "platform/FileActions.h"
#include "shell/GlobalRecord.h"
#include "simconfig/AircraftSections.h"

#include <QString>
#include <QStringList>

namespace vt::variationpictures {

/// "...\Images\Aircraft\SimObjects\Airplanes\Cub\"; empty for an aircraft outside the simulator.
[[nodiscard]] QString folder(const GlobalRecord& global, const QString& configurationFile);

/// All at once, so that names may be exchanged.
Result rename(FileActions& actions,
              const GlobalRecord& global,
              const QString& configurationFile,
              const aircraftsections::Renames& renames);
Result remove(FileActions& actions,
              const GlobalRecord& global,
              const QString& configurationFile,
              const QStringList& sections);

} // namespace vt::variationpictures
