// The airport files of an add-on: scenery files that describe one airport each, and that the
// airport editor's installer puts into the simulator.
#pragma once

#include <QList>
#include <QString>
#include <QStringView>

namespace vt {

class CAddon_ItemGroup;

/// One airport file.
struct CAFCADFile
{
    qint32 itemKey = 0;
    QString path; ///< full, where it lies once it is installed
};

struct CAFCADMetaGroup
{
    QList<CAFCADFile> colFiles;

    /// The items that were mapped to the airport editor and are marked for installation.
    [[nodiscard]] static CAFCADMetaGroup ofAddon(const CAddon_ItemGroup& addon);
    /// "AF2_KSEA.bgl", "AFD_KSEA.bgl": the names that the editor gives.
    [[nodiscard]] static bool isAirportFile(QStringView name);
};

} // namespace vt
