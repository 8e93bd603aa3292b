// Care for the database file as a whole: whether it can be used, and what start-up asks when it
// cannot.
#pragma once

#include "addondb/Connection.h"
#include "platform/Files.h"
#include "platform/Prompt.h"

#include <QString>

namespace vt {

struct DatabaseHealth
{
    DatabaseFault fault = DatabaseFault::None;
    DatabaseError error; ///< number 0 when all is well
    Result result;       ///< one sentence for people, kind Surroundings, when it is not
    qint64 bytes = 0;    ///< size of the file; 0 when there is none
    int structure = 0;   ///< 0 when it could not be opened
};

/// Opens the database for reading, looks through it, and closes it; leaves nothing beside it.
/// \a thorough compares the indexes with the rows as well.
[[nodiscard]] DatabaseHealth
databaseHealth(const Files& files, const QString& path, bool thorough = false);

/// The question of the damage check: Yes optimises with repair, No goes on, Cancel ends the
/// program.
[[nodiscard]] Prompt databaseDamagePrompt(const QString& productTitle, const DatabaseError& error);

} // namespace vt
