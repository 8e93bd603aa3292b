// Verifies many aircraft, panels or sounds and, when asked to, repairs the damaged ones: one after
// the other, and one that fails stops nobody. Drives Repairable objects; what a fault is and how it
// is mended is theirs.
#pragma once

#include "shell/CReporting.h"
#include "shell/Context.h"
#include "simconfig/RepairResult.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace vt {

/// One object, loaded.
class Repairable
{
public:
    virtual ~Repairable() = default;

    [[nodiscard]] virtual QString title() const = 0;
    /// Full path of its configuration file.
    [[nodiscard]] virtual QString file() const = 0;
    /// Whether the user wants to hear nothing about it.
    [[nodiscard]] virtual bool suppressed() = 0;
    /// Each begins with "- "; lines that belong to it follow after "\n\t". Empty: healthy.
    [[nodiscard]] virtual QStringList verify() = 0;
    virtual RepairResult repair() = 0;
};

/// What to go through, in the order of the list; an object is made when its turn comes.
struct BulkList
{
    QString noun;    ///< "panels"
    QString heading; ///< "Panels"
    qsizetype count = 0;
    std::function<std::unique_ptr<Repairable>(qsizetype index)> open;
};

struct BulkOutcome
{
    /// A damaged one.
    struct Damage
    {
        QString title;
        QString file;
        QStringList problems; ///< as found first
        RepairResult repair;  ///< of a verification alone: nothing done, nothing left
    };

    QString heading;
    bool repairing = false;
    bool cancelled = false; ///< the user stopped it; later objects are in no list
    QStringList healthy;    ///< titles
    QList<Damage> damaged;  ///< all that were found damaged, repaired ones too
    QStringList skipped;    ///< titles

    /// Titles; " (partial)" behind those that still have problems.
    [[nodiscard]] QStringList repaired() const;
    [[nodiscard]] QStringList notRepaired() const;
    /// Nothing damaged, or everything repaired in full.
    [[nodiscard]] bool allWell() const;
    /// "Repair Summary Report for 3 Panels": the titles under "Healthy", "Repaired", "Not Repaired"
    /// and "Skipped (suppressed)"; of a verification alone "Damaged" instead of the two.
    [[nodiscard]] ReportList report() const;
};

/// Names of the groups, as shown.
namespace bulkgroup {
inline constexpr QStringView healthy = u"Healthy";
inline constexpr QStringView damaged = u"Damaged";
inline constexpr QStringView repaired = u"Repaired";
inline constexpr QStringView notRepaired = u"Not Repaired";
inline constexpr QStringView skipped = u"Skipped (suppressed)";
} // namespace bulkgroup

/// Writes only with \a repair.
[[nodiscard]] BulkOutcome runBulkRepair(Context& context, const BulkList& list, bool repair);

} // namespace vt
