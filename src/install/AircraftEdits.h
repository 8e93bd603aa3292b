// What an installation writes into aircraft.cfg files beyond the add-on's own bytes: the sections
// of repaints, and those of an aircraft that comes to one already installed. The plan and the
// installer both take it from here, so they agree. Reads only.
#pragma once

#include "install/AircraftEdit.h"
#include "install/CAddonInstallationDetails.h"

#include <QByteArray>
#include <QList>

namespace vt {

/// Every edit, in the order of the groups. \a masterKey is written into each section (0: none).
[[nodiscard]] QList<AircraftEdit>
aircraftEdits(const CAddonInstallationDetails& details, Context& context, qint64 masterKey);

/// Whether the file stands and holds an aircraft section.
[[nodiscard]] bool hasAircraftSections(const QString& file, Context& context);

/// Whether the item is an aircraft's configuration file that comes to one already standing there
/// with aircraft sections of its own: then it is merged into that one and replaces nothing.
[[nodiscard]] bool isMerged(const CAddon_Item& item, Context& context);

} // namespace vt
