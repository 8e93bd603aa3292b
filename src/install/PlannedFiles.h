// What an installation does with each file, in one word, for those who show a plan.
#pragma once

#include "install/CAddonInstallationDetails.h"

#include <QList>
#include <QString>

#include <vector>

namespace vt {

enum class PlannedState : quint8
{
    New,
    Replaces, ///< another file stands at the target, and is kept to come back at removal
    Same,     ///< the file there has its size and date
    Merges,   ///< its sections come into the file that stands there
    Skipped,
    Problem, ///< nothing is installed until it is solved
};

/// "new", "replaces", "same", "adds to", "not installed", "problem".
[[nodiscard]] QString plannedStateWord(PlannedState state);

struct PlannedFile
{
    qint32 item = 0; ///< key
    PlannedState state = PlannedState::New;
    QString remark; ///< why it is skipped, what the problem is, or what else is to be known
};

/// Every item of the add-on, in its order. \a facts: the details' own, as they are now.
[[nodiscard]] std::vector<PlannedFile>
plannedFiles(const CAddonInstallationDetails& details, const PlanFacts& facts, const Files& files);

/// What an installation would write now: how many files, and what they hold.
struct PlannedTotals
{
    qsizetype files = 0;
    qint64 bytes = 0;
};

[[nodiscard]] PlannedTotals plannedTotals(const CAddonInstallationDetails& details);

} // namespace vt
