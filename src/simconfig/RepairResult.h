// What a repair of one aircraft, panel or sound came to.
#pragma once

#include <QStringList>

namespace vt {

struct RepairResult
{
    enum Code : int
    {
        NotRepaired = 0,
        FullyRepaired = 1, ///< a verification afterwards finds nothing
        PartlyRepaired = 2,
    };

    int code = NotRepaired;
    QStringList done; ///< one sentence for each thing that was changed
    QStringList left; ///< the problems that a verification still finds, or why nothing was done
};

} // namespace vt
