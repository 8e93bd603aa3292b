// Made-up add-ons in the shapes that real ones have: trees to be merged, one aircraft folder,
// scenery areas, gauges, repaints, missions, documents, archives inside archives. Every call gives
// the same bytes.
#pragma once

#include "demo/DemoAircraft.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace vt {

struct SampleAddon
{
    QString name;    ///< file name without ".zip", such as "kestrel-repaint"
    QString about;   ///< one line for people
    DemoFiles files; ///< entries of the archive in their order

    [[nodiscard]] QByteArray archive() const;
};

/// All samples, made anew by each call (some milliseconds).
[[nodiscard]] QList<SampleAddon> sampleAddons();
/// The sample of that name; asserts that there is one.
[[nodiscard]] SampleAddon sampleAddon(const QString& name);

/// Writes every sample as "<name>.zip" into \a hostFolder (made when missing); files of these names
/// are written anew. Gives the paths.
[[nodiscard]] ResultOf<QStringList> writeSampleAddons(const QString& hostFolder);

} // namespace vt
