// One recorded add-on with everything that its display needs, and its comparison with the disk.
// Reads only.
#pragma once

#include "addondb/AddonList.h"
#include "shell/Context.h"

#include <QList>

#include <memory>

namespace vt {

class CabinetArchive;

struct AddonFacts
{
    AddonRow row;
    AddonItems items;
    QList<SceneryAreaRecord> areas;
    /// Where the files of an add-on in the File Cabinet are looked for; null without its archive.
    std::shared_ptr<CabinetArchive> stored;

    /// Kind Failed for an unknown key. The gate must know the simulator's folders.
    [[nodiscard]] static ResultOf<AddonFacts>
    load(Context& context, Connection& database, qint64 masterKey);

    /// On the disk, or in the File Cabinet for an add-on that is there.
    [[nodiscard]] ItemState
    state(Context& context, Connection& database, const DetailRecord& detail) const;

    /// "The add-on 'Zeta 5' is whole: 74 files as recorded.", or the failure that it is not.
    [[nodiscard]] Result verdict(bool whole) const;
};

} // namespace vt
