// One damaged or missing file of an add-on, the files that could stand in for it, and the one that
// was chosen. Plain data; RepairSearch finds, CRepairPresentationManager copies.
#pragma once

#include "addondb/AddonList.h"
#include "addondb/CAddon_Item.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace vt {

/// A file that could stand in for a damaged or missing one.
struct RepairCandidate
{
    QString name;
    QString folder; ///< full path, ends in "\"; of an archive's entry "C:\a.zip\sub\"
    QDateTime date; ///< local time; invalid when the archive tells none
    qint64 size = 0;
    bool exact = false;      ///< the very bytes that were recorded
    bool normalised = false; ///< to be brought to CR LF and ANSI, as when it was installed
    int archive = -1;        ///< number of the archive in the search; -1: a plain file
    EntryRef entry;          ///< of an archive
};

class CRepairItem
{
public:
    /// As the record tells it; sFolder_Installation and sName_Installation are its place.
    CAddon_Item item;
    ItemState state = ItemState::Missing; ///< as found: Missing or Changed
    Fingerprint recorded;                 ///< what is to lie there; size -1: not known
    /// A configuration file with entries of several add-ons: only its very bytes stand in for it.
    bool exactOnly = false;
    QList<RepairCandidate> candidates; ///< in the order of the search
    qsizetype chosen = -1;             ///< index of a candidate; -1: none
    bool repaired = false;
    QString cause; ///< why the repair failed

    [[nodiscard]] QString path() const
    {
        return item.sFolder_Installation + item.sName_Installation;
    }

    /// Chooses the candidate with the latest date; of equal ones the first.
    void chooseMostRecent();
    /// Chooses the first candidate of this folder; false when there is none.
    bool chooseFrom(QStringView folder);
};

} // namespace vt
