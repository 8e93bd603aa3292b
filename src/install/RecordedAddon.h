// An add-on as it is recorded, for installing it again, and where its files can be had from.
// Reads only.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/CAddon_ItemGroup.h"
#include "addondb/Connection.h"
#include "addondb/Originals.h"
#include "platform/Result.h"
#include "shell/Context.h"

#include <QHash>
#include <QList>
#include <QString>

#include <functional>

namespace vt {

struct RecordedAddon
{
    AddonRecord record;
    QList<DetailRecord> files;
    QHash<qint64, Fingerprint> checks; ///< by detail key
    QHash<qint64, OriginalRecord> originals;
    QList<SceneryAreaRecord> areas;
    QList<PictureRecord> pictures;
    originals::Sharers sharers;
    bool fromCabinet = false; ///< the source is the add-on's archive in the File Cabinet

    /// Its files are in the File Cabinet, not in the simulator.
    [[nodiscard]] bool isStored() const { return record.status == InstallationStatus::FileCabinet; }

    [[nodiscard]] static ResultOf<RecordedAddon> load(Connection& database, qint64 masterKey);
};

/// Where the files come from: \a given by the user, else the File Cabinet, else the source that was
/// installed, or that archive where archived sources go. Sets fromCabinet. A failure (kind
/// Surroundings) says what was looked for.
[[nodiscard]] ResultOf<QString>
reinstallationSource(Context& context, RecordedAddon& recorded, const QString& given);

/// Gives each item of a listed source the place of the recorded file that it is, and unmarks the
/// others. \a pathOf tells where an item of the File Cabinet belongs; null for other sources, where
/// names, recorded sizes and folders decide. The recorded files that the source lacks.
[[nodiscard]] QList<DetailRecord>
matchRecorded(CAddon_ItemGroup& addon,
              const RecordedAddon& recorded,
              const std::function<QString(const CAddon_Item&)>& pathOf);

} // namespace vt
