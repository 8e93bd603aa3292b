#include "addondb/DatabaseCare.h"

using namespace Qt::StringLiterals;

namespace vt {

DatabaseHealth databaseHealth(const Files& files, const QString& path, bool thorough)
{
    DatabaseHealth health;
    if (const std::optional<FileInfo> info = files.info(path))
        health.bytes = info->size;
    OpenedDatabase opened = Connection::open(files, path, OpenMode::ReadOnly);
    health.fault = opened.fault;
    health.error = opened.error;
    health.result = opened.result;
    if (!opened.connection)
        return health;
    health.structure = opened.connection->structure();
    health.result = opened.connection->check(thorough);
    if (!health.result) {
        health.fault = DatabaseFault::Damaged;
        health.error = opened.connection->lastError();
    }
    return health;
}

Prompt databaseDamagePrompt(const QString& productTitle, const DatabaseError& error)
{
    return yesNoCancel(
        u"Database Error"_s,
        productTitle +
            u"'s database appears to be damaged. This can happen when the program's database engine was improperly shut down during the process of writing to disk. Would you like to try to fix the problems?"_s +
            u"\nError #"_s + QString::number(error.number) + u": "_s + error.text + u"\n\n"_s +
            u"Select Yes to attempt to optimize the database to repair the damage (recommended). Select No to continue loading Vantrel. Select Cancel to quit the program."_s,
        Button::Yes,
        Icon::Warning);
}

} // namespace vt
