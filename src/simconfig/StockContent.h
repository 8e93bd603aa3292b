// What the simulator brought itself. It is known by the names of its folders; what an add-on put
// into such a folder is the add-on's.
#pragma once

#include <QString>
#include <QStringView>

namespace vt {

class Connection;
struct GlobalRecord;

namespace stockcontent {

/// Whether the simulator brings an aircraft in a folder of this name ("B737_800").
[[nodiscard]] bool isStockAircraftFolder(QStringView name);

/// Whether a folder of scenery lies where the simulator keeps its own: below "Scenery\", in a
/// folder of a name that it brings ("0601", "Cities", "World").
[[nodiscard]] bool isStockScenery(const GlobalRecord& global, QStringView folder);

/// Whether the file or folder belongs to an aircraft, panel or sound that came with the simulator:
/// it lies in a stock folder below those that hold aircraft, and no add-on recorded it. \a database
/// null: nothing is recorded.
[[nodiscard]] bool
isOriginal(Connection* database, const GlobalRecord& global, const QString& path);

} // namespace stockcontent
} // namespace vt
