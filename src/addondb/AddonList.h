// What lists and reports show of the records: add-ons, their files beside what lies on the disk,
// the history. Reads only.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "platform/Files.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace vt {

enum class StatusFilter
{
    All,
    Installed, ///< installed or imported
    FileCabinet,
    Removed, ///< history only
};

struct ListFilter
{
    StatusFilter status = StatusFilter::All;
    std::optional<Category> category;
    QString search;  ///< in name, description, authors or source name, without regard to case
    QDateTime since; ///< installed then or later; invalid: at any time
};

/// By status, category and date; the search is not looked at.
[[nodiscard]] bool passesWithoutSearch(const AddonRecord& addon, const ListFilter& filter);
/// The texts that are searched, folded, parted by line ends. The add-on passes a search when
/// foldCase() of what is looked for is a part of this.
[[nodiscard]] QString searchedText(const AddonRecord& addon);

struct AddonRow
{
    AddonRecord addon;
    qint64 files = 0; ///< recorded ones
};

/// Recorded add-ons in the order of keys.
[[nodiscard]] ResultOf<QList<AddonRow>> addonRows(Connection& database, const ListFilter& filter);
/// Kind Failed for an unknown key.
[[nodiscard]] ResultOf<AddonRow> addonRow(Connection& database, qint64 masterKey);

/// The history in the order of keys and dates. A row's status: what its add-on is now, Removed when
/// it is gone, or was installed anew since.
[[nodiscard]] ResultOf<QList<HistoryRecord>> historyRows(Connection& database,
                                                         const ListFilter& filter);

/// The places of all files of add-ons that stand (installed or imported), each with the key of the
/// add-on that recorded it last.
[[nodiscard]] ResultOf<QHash<NoCase, qint64>> standingPlaces(Connection& database);

enum class ItemState
{
    Ok,
    Missing, ///< no file lies there
    Changed, ///< one lies there, but not with the recorded bytes
};

/// "ok", "missing", "changed".
[[nodiscard]] QString itemStateWord(ItemState state);

/// The files of one add-on as recorded, each to be compared with the disk when it is asked for.
class AddonItems
{
public:
    [[nodiscard]] static ResultOf<AddonItems> load(Connection& database, qint64 masterKey);

    [[nodiscard]] const QList<DetailRecord>& details() const { return m_details; }

    [[nodiscard]] bool replacedOriginal(const DetailRecord& detail) const;
    /// The add-on whose version lies at the file's place because it was installed later; 0: none.
    [[nodiscard]] qint64 coveredBy(const DetailRecord& detail) const;
    /// Size and time first, the bytes only when those differ. A file that a later add-on covers is
    /// compared with that one's record; without a record of its bytes a file is ok when it is
    /// there. A configuration file is ok, too, as this program last wrote it.
    [[nodiscard]] ItemState
    state(Connection& database, const Gate& gate, const DetailRecord& detail) const;

private:
    QList<DetailRecord> m_details;
    QHash<qint64, Fingerprint> m_checks;
    QSet<qint64> m_replaced;
    QHash<NoCase, DetailRecord> m_covering; ///< by place, the topmost other row
    QHash<qint64, Fingerprint> m_coveringChecks;
};

} // namespace vt
