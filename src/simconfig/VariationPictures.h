// Thumbnails of single variations follow the numbers of their sections, and go with them. How they
// come to be is addondb/Pictures' matter.
#pragma once

#include "platform/FileActions.h"
#include "shell/GlobalRecord.h"
#include "simconfig/AircraftSections.h"

#include <QString>
#include <QStringList>

namespace vt::variationpictures {

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
