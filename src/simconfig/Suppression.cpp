#include "simconfig/Suppression.h"

#include "addondb/AddonDatabase.h"

using namespace Qt::StringLiterals;

namespace vt::suppression {

namespace {

/// As the database keeps it: whole seconds.
QDateTime secondOf(const FileInfo& info)
{
    QDateTime time = info.modified();
    const QTime clock = time.time();
    time.setTime(QTime(clock.hour(), clock.minute(), clock.second()));
    return time;
}

} // namespace

bool isSuppressed(Connection& database,
                  FileActions& actions,
                  ItemTable table,
                  const QString& file,
                  const QString& section)
{
    const std::optional<ItemDetailRecord> record =
        modDatabase_Addon::itemDetail(database, table, file, section);
    if (!record || !record->suppressErrors)
        return false;
    const std::optional<FileInfo> info = actions.info(file);
    return info && !info->folder && info->size == record->suppressCfgFileSize &&
           secondOf(*info) == record->suppressCfgFileDateTime;
}

Result setSuppressed(Connection& database,
                     FileActions& actions,
                     ItemTable table,
                     const QString& file,
                     bool suppressed,
                     const QString& section)
{
    const std::optional<ItemDetailRecord> before =
        modDatabase_Addon::itemDetail(database, table, file, section);
    if (!suppressed && !before)
        return Result::success();
    ItemDetailRecord record = before.value_or(ItemDetailRecord{});
    record.item = file;
    record.section = section;
    record.suppressErrors = suppressed;
    if (suppressed) {
        const std::optional<FileInfo> info = actions.info(file);
        if (!info || info->folder)
            return Result::failure(u"The file '"_s + file +
                                   u"' was not found, so its warnings cannot be silenced."_s);
        record.suppressCfgFileDateTime = secondOf(*info);
        record.suppressCfgFileSize = info->size;
    }
    return modDatabase_Addon::setItemDetail(database, table, record);
}

} // namespace vt::suppression
