// "Do not tell me about this one": the user's mark on an aircraft variation, a panel or a sound,
// kept in the database. It holds only as long as the configuration file is the one that was marked,
// by date-time and size; a file that changes is checked again.
#pragma once

#include "addondb/AddonRecords.h"
#include "platform/FileActions.h"
#include "platform/Result.h"

#include <QString>

namespace vt {

class Connection;

namespace suppression {

/// \a file: full path of the configuration file; \a section: of an aircraft only.
[[nodiscard]] bool isSuppressed(Connection& database,
                                FileActions& actions,
                                ItemTable table,
                                const QString& file,
                                const QString& section = {});
/// Other remarks on the item are kept. Fails when the file does not exist or the database refuses.
Result setSuppressed(Connection& database,
                     FileActions& actions,
                     ItemTable table,
                     const QString& file,
                     bool suppressed,
                     const QString& section = {});

} // namespace suppression
} // namespace vt
