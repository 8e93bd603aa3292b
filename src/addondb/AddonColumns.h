// The columns of the add-on list and what a row shows in each: texts for people, values to sort by.
// Reads only; draws nothing.
#pragma once

#include "addondb/AddonList.h"
#include "platform/Status.h"
#include "shell/CSuperSort.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>

namespace vt {

/// In the order shown. Stored with widths: never renumber.
enum class AddonColumn
{
    Order,
    AddonName,
    DateInstalled,
    DateRemoved,
    FolderDate,
    ReferenceNumber,
    Group,
    Authors,
    SourceName,
    Size,
    Files,
    Origin,
    Rating,
    Count,
};

/// "Addon Name"
[[nodiscard]] QString addonColumnTitle(AddonColumn column);
[[nodiscard]] SortDataType addonColumnDataType(AddonColumn column);

/// The small picture before a row.
enum class AddonIcon
{
    TrashCan,  ///< removed, or in the File Cabinet
    Own,       ///< installed or imported
    Simulator, ///< the simulator's own content
};

struct AddonListRow
{
    AddonRecord addon;
    qint64 files = 0;
    QDateTime dateRemoved; ///< invalid while the add-on is there
    QDateTime folderDate;  ///< as newestInFolder() gives it, where that was asked

    [[nodiscard]] AddonIcon icon() const;
    /// What the column shows; \a position is the row's, from 0.
    [[nodiscard]] QString text(AddonColumn column, qsizetype position) const;
    /// What the column is sorted by.
    [[nodiscard]] QVariant key(AddonColumn column, qsizetype position) const;
};

/// "Flight Simulator" for the simulator's own content, else "File Cabinet", "Imported" or
/// "Installed".
[[nodiscard]] QString originWord(const AddonRecord& addon);
/// "(unrated)", "1" to "5".
[[nodiscard]] QString ratingText(qint64 rating);

/// The recorded add-ons that pass, in the order of keys; "Building display..." meanwhile. Folder
/// dates are left to newestInFolder(), since each costs a look at the disk.
[[nodiscard]] ResultOf<QList<AddonListRow>>
addonListRows(Connection& database, StatusSink& status, const ListFilter& filter);

/// Time of the newest file in the add-on's own folder (that of its first file); invalid without
/// one.
[[nodiscard]] QDateTime newestInFolder(Connection& database, const Files& files, qint64 masterKey);

} // namespace vt
