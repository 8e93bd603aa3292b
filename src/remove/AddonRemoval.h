// One add-on's removal or copy from the question to the sentence about its end: what every front
// end does with each of the add-ons that the user chose.
#pragma once

#include "addondb/Connection.h"
#include "remove/RemovalOptions.h"
#include "shell/Context.h"
#include "shell/Results.h"

#include <QString>

namespace vt {

struct RemovedAddon
{
    qint64 key = 0;
    QString name; ///< empty for a key that nobody recorded
    /// It ran to its end, whole or not. False: nothing was changed.
    bool ended = false;
    /// Failure: it did not end, or is not whole; names the add-on and the cause.
    Result result;
    Results results; ///< by the groups of a removal
    QString target;  ///< the archive, folder or zip file that the files went to
};

/// Runs CAddonRemover. \a database is open for writing.
[[nodiscard]] RemovedAddon removeAddon(Context& context,
                                       Connection& database,
                                       qint64 masterKey,
                                       const RemovalOptions& options);

} // namespace vt
