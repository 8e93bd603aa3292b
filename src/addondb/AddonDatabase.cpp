#include "addondb/AddonDatabase.h"

#include "addondb/DatabaseSteps.h"
#include "platform/Text.h"

using namespace Qt::StringLiterals;

namespace vt {

Prompt addonDatabaseError(const QString& text)
{
    return announcement(u"Addon Database Error"_s, text, Icon::Critical);
}

} // namespace vt

namespace vt::modDatabase_Addon {

namespace {

struct CategoryField
{
    Category category;
    Field field;
};

constexpr std::array<CategoryField, 13> categoryFields{{
    {Category::Adventures, Field::Adventures},
    {Category::Aircraft, Field::Aircraft_Flag},
    {Category::Scenery, Field::Scenery},
    {Category::Textures, Field::Textures},
    {Category::Missions, Field::Missions},
    {Category::Videos, Field::Videos},
    {Category::Sounds, Field::Sounds},
    {Category::Panels, Field::Panels},
    {Category::Flights, Field::Flights},
    {Category::Airport_Facilities_Data, Field::Airport_Facilities_Data},
    {Category::AI_Flight_Plans, Field::AI_Flight_Plans},
    {Category::Aircraft_Skins_And_Repaints, Field::Aircraft_Skins_And_Repaints},
    {Category::Movies, Field::Movies},
}};

/// The fields that Addon_Master and Addon_History share, but for key and date.
void writeShared(Recordset& rows, const AddonRecord& addon)
{
    rows.set(Field::Addon_Name, trimmedBlanks(addon.name));
    for (const CategoryField& about : categoryFields)
        rows.set(about.field, addon.categories.testFlag(about.category));
    rows.set(Field::Authors, trimmedBlanks(addon.authors));
    rows.set(Field::Rating, addon.rating);
    rows.set(Field::Source_Name, trimmedBlanks(addon.sourceName));
    rows.set(Field::Source_Size, addon.sourceSize);
    rows.set(Field::Source_Type, int(addon.sourceType));
    rows.set(Field::Source_Total_Files, addon.sourceTotalFiles);
}

AddonRecord readShared(const Recordset& rows)
{
    AddonRecord addon;
    addon.key = rows.number(Field::Addon_Master_Key);
    addon.name = rows.text(Field::Addon_Name);
    addon.dateInstalled = rows.date(Field::Date_Installed);
    for (const CategoryField& about : categoryFields)
        addon.categories.setFlag(about.category, rows.flag(about.field));
    addon.authors = rows.text(Field::Authors);
    addon.rating = rows.number(Field::Rating);
    addon.sourceName = rows.text(Field::Source_Name);
    addon.sourceSize = rows.number(Field::Source_Size);
    addon.sourceType = SourceType(rows.number(Field::Source_Type));
    addon.sourceTotalFiles = rows.number(Field::Source_Total_Files);
    return addon;
}

AddonRecord readMaster(const Recordset& rows)
{
    AddonRecord addon = readShared(rows);
    addon.status = InstallationStatus(rows.number(Field::Installation_Status));
    addon.original = rows.flag(Field::Original_Addon);
    return addon;
}

Result addMaster(Connection& database, const AddonRecord& addon)
{
    Recordset masters(database, Table::Addon_Master);
    masters.addNew();
    masters.set(Field::Addon_Master_Key, addon.key);
    masters.set(Field::Date_Installed, addon.dateInstalled);
    masters.set(Field::Installation_Status, int(addon.status));
    masters.set(Field::Original_Addon, addon.original);
    writeShared(masters, addon);
    if (!masters.update())
        return databaseFailure(u"Could not create a master record for the addon."_s);
    return Result::success();
}

Result addDescription(Connection& database, const AddonRecord& addon)
{
    Recordset descriptions(database, Table::Addon_Description);
    descriptions.addNew();
    descriptions.set(Field::Addon_Master_Key, addon.key);
    descriptions.set(Field::Description, trimmedBlanks(addon.description));
    if (!descriptions.update())
        return databaseFailure(u"Could not create a description record for the addon."_s);
    return Result::success();
}

Result addHistory(Connection& database, const AddonRecord& addon)
{
    Recordset history(database, Table::Addon_History);
    history.addNew();
    history.set(Field::Addon_Master_Key, addon.key);
    history.set(Field::Date_Installed, addon.dateInstalled);
    writeShared(history, addon);
    if (!history.update())
        return databaseFailure(u"Could not create history record for the addon."_s);
    return Result::success();
}

Result addHistoryDescription(Connection& database, const AddonRecord& addon)
{
    Recordset descriptions(database, Table::Addon_History_Description);
    descriptions.addNew();
    descriptions.set(Field::Addon_Master_Key, addon.key);
    descriptions.set(Field::Date_Installed, addon.dateInstalled);
    descriptions.set(Field::Description, trimmedBlanks(addon.description));
    if (!descriptions.update())
        return databaseFailure(u"Could not create a description record for the addon."_s);
    return Result::success();
}

/// One change of the master row, the same in the history row of its date when \a mirrored.
Result changeMaster(Connection& database,
                    qint64 masterKey,
                    bool mirrored,
                    const std::function<void(Recordset&)>& change)
{
    return database.together([&]() -> Result {
        Recordset masters(database, Table::Addon_Master);
        if (!masters.seek({masterKey})) {
            return Result::failure(u"Could not locate the addon master record."_s,
                                   masters.error().ok ? ErrorKind::Failed
                                                      : ErrorKind::Surroundings);
        }
        const QString date = masters.text(Field::Date_Installed);
        masters.edit();
        change(masters);
        if (!masters.update())
            return databaseFailure(u"Could not update the addon master header."_s);
        if (!mirrored)
            return Result::success();
        Recordset history(database, Table::Addon_History);
        if (history.seek({masterKey, date})) {
            history.edit();
            change(history);
            if (!history.update())
                return databaseFailure(u"Could not update the addon history header."_s);
        } else if (!history.error()) {
            return databaseFailure(u"Could not update the addon history header."_s);
        }
        return Result::success();
    });
}

Result deleteRows(Connection& database,
                  Table table,
                  std::initializer_list<FieldValue> keys,
                  const QString& failure)
{
    return database.together([&]() -> Result {
        Recordset rows(database, table);
        return rows.deleteAllMatching(keys) ? Result::success() : databaseFailure(failure);
    });
}

/// Name of the counter of master keys.
QString keyCounter()
{
    return u"Addon_Master_Key"_s;
}

} // namespace

// --- counters ---

qint64 counter(Connection& database, const QString& name)
{
    Recordset counters(database, Table::Vantrel_Counters);
    return counters.seek({name}) ? counters.number(Field::Value) : 0;
}

Result setCounter(Connection& database, const QString& name, qint64 value)
{
    return database.together([&]() -> Result {
        Recordset counters(database, Table::Vantrel_Counters);
        if (counters.seek({name})) {
            counters.edit();
        } else {
            if (!counters.error())
                return counters.error();
            counters.addNew();
            counters.set(Field::Name, name);
        }
        counters.set(Field::Value, value);
        return counters.update();
    });
}

ResultOf<qint64> nextMasterKey(Connection& database)
{
    qint64 key = counter(database, keyCounter());
    for (const Table table : {Table::Addon_Master, Table::Addon_History}) {
        Recordset rows(database, table);
        if (rows.moveLast())
            key = qMax(key, rows.number(Field::Addon_Master_Key));
        else if (!rows.error())
            return rows.error();
    }
    return key + 1;
}

ResultOf<qint64> newMasterKey(Connection& database)
{
    ResultOf<qint64> key = Result::failure(QString());
    const Result done = database.together([&]() -> Result {
        key = nextMasterKey(database);
        return key ? setCounter(database, keyCounter(), *key) : key.error();
    });
    return done ? key : ResultOf<qint64>(done);
}

// --- the add-on itself ---

Result createAddon(Connection& database, AddonRecord& addon)
{
    return database.together([&]() -> Result {
        if (addon.key == 0) {
            const ResultOf<qint64> key = newMasterKey(database);
            if (!key)
                return databaseFailure(u"Could not create a master record for the addon."_s);
            addon.key = *key;
        }
        addon.dateInstalled = dateOf(dateText(addon.dateInstalled));
        Recordset history(database, Table::Addon_History);
        while (history.seek({addon.key, addon.dateInstalled}))
            addon.dateInstalled = addon.dateInstalled.addSecs(1);
        for (const auto& add : {addMaster, addDescription, addHistory, addHistoryDescription}) {
            if (Result added = add(database, addon); !added)
                return added;
        }
        return Result::success();
    });
}

ResultOf<int> completeAddon(Connection& database, const AddonRecord& addon)
{
    int added = 0;
    const auto addMissing =
        [&](Table table, bool dated, Result (*add)(Connection&, const AddonRecord&)) {
            Recordset rows(database, table);
            if (dated ? rows.seek({addon.key, addon.dateInstalled}) : rows.seek({addon.key}))
                return Result::success();
            ++added;
            return rows.error() ? add(database, addon) : rows.error();
        };
    const Result done = database.together([&]() -> Result {
        if (Result master = addMissing(Table::Addon_Master, false, addMaster); !master)
            return master;
        if (Result text = addMissing(Table::Addon_Description, false, addDescription); !text)
            return text;
        if (Result history = addMissing(Table::Addon_History, true, addHistory); !history)
            return history;
        return addMissing(Table::Addon_History_Description, true, addHistoryDescription);
    });
    if (!done)
        return done;
    return added;
}

ResultOf<AddonRecord> addon(Connection& database, qint64 masterKey)
{
    Recordset masters(database, Table::Addon_Master);
    if (!masters.seek({masterKey})) {
        return Result::failure(u"Could not locate the addon master record."_s,
                               masters.error().ok ? ErrorKind::Failed : ErrorKind::Surroundings);
    }
    AddonRecord found = readMaster(masters);
    Recordset descriptions(database, Table::Addon_Description);
    if (descriptions.seek({masterKey}))
        found.description = descriptions.text(Field::Description);
    else if (!descriptions.error())
        return databaseFailure(u"Could not open the addon description table."_s);
    return found;
}

ResultOf<QList<AddonRecord>> addons(Connection& database, bool descriptions)
{
    QList<AddonRecord> all;
    Recordset masters(database, Table::Addon_Master);
    for (bool more = masters.moveFirst(); more; more = masters.moveNext())
        all.push_back(readMaster(masters));
    if (!masters.error())
        return databaseFailure(u"Could not open the addon master table."_s);
    if (!descriptions)
        return all;
    // Both tables lie in the order of keys: one walk beside the other.
    Recordset texts(database, Table::Addon_Description);
    bool more = texts.moveFirst();
    for (AddonRecord& each : all) {
        while (more && texts.number(Field::Addon_Master_Key) < each.key)
            more = texts.moveNext();
        if (more && texts.number(Field::Addon_Master_Key) == each.key)
            each.description = texts.text(Field::Description);
    }
    if (!texts.error())
        return databaseFailure(u"Could not open the addon description table."_s);
    return all;
}

Result updateAddon(Connection& database, const AddonRecord& addon)
{
    return database.together([&]() -> Result {
        Result done = changeMaster(
            database, addon.key, true, [&](Recordset& rows) { writeShared(rows, addon); });
        if (!done)
            return done;
        return changeMaster(database, addon.key, false, [&](Recordset& masters) {
            masters.set(Field::Installation_Status, int(addon.status));
            masters.set(Field::Original_Addon, addon.original);
        });
    });
}

Result setName(Connection& database, qint64 masterKey, const QString& name)
{
    return changeMaster(database, masterKey, true, [&](Recordset& rows) {
        rows.set(Field::Addon_Name, trimmedBlanks(name));
    });
}

Result setAuthors(Connection& database, qint64 masterKey, const QString& authors)
{
    return changeMaster(database, masterKey, false, [&](Recordset& rows) {
        rows.set(Field::Authors, trimmedBlanks(authors));
    });
}

Result setRating(Connection& database, qint64 masterKey, qint64 rating)
{
    return changeMaster(
        database, masterKey, true, [&](Recordset& rows) { rows.set(Field::Rating, rating); });
}

Result setStatus(Connection& database, qint64 masterKey, InstallationStatus status)
{
    return changeMaster(database, masterKey, false, [&](Recordset& rows) {
        rows.set(Field::Installation_Status, int(status));
    });
}

Result setCategories(Connection& database, qint64 masterKey, Categories categories)
{
    return changeMaster(database, masterKey, true, [&](Recordset& rows) {
        for (const CategoryField& about : categoryFields)
            rows.set(about.field, categories.testFlag(about.category));
    });
}

Result setDescription(Connection& database, qint64 masterKey, const QString& description)
{
    return database.together([&]() -> Result {
        Recordset descriptions(database, Table::Addon_Description);
        if (descriptions.seek({masterKey})) {
            descriptions.edit();
        } else {
            if (!descriptions.error())
                return databaseFailure(u"Could not open the addon description table."_s);
            descriptions.addNew();
            descriptions.set(Field::Addon_Master_Key, masterKey);
        }
        descriptions.set(Field::Description, trimmedBlanks(description));
        if (!descriptions.update())
            return databaseFailure(u"Could not create a description record for the addon."_s);
        return Result::success();
    });
}

Result setHistoryDescription(Connection& database,
                             qint64 masterKey,
                             const QDateTime& dateInstalled,
                             const QString& description)
{
    return database.together([&]() -> Result {
        Recordset texts(database, Table::Addon_History_Description);
        bool done = texts.seek({masterKey, dateInstalled});
        if (done) {
            texts.edit();
            texts.set(Field::Description, trimmedBlanks(description));
            done = texts.update().ok;
        }
        return done ? Result::success()
                    : databaseFailure(u"Could not update the addon history header."_s);
    });
}

std::optional<qint64> Addon_Database_IsAlreadyIn(Connection& database, const AddonRecord& addon)
{
    const QString name = trimmedBlanks(addon.name);
    const QString source = trimmedBlanks(addon.sourceName);
    Recordset masters(database, Table::Addon_Master);
    for (bool more = masters.moveFirst(); more; more = masters.moveNext()) {
        const bool sameSource = !source.isEmpty() &&
                                masters.number(Field::Source_Size) == addon.sourceSize &&
                                equalNoCase(masters.text(Field::Source_Name), source);
        if (sameSource || equalNoCase(masters.text(Field::Addon_Name), name))
            return masters.number(Field::Addon_Master_Key);
    }
    return std::nullopt;
}

// --- removal, table by table ---

Result deleteDescription(Connection& database, qint64 masterKey)
{
    return deleteRows(database,
                      Table::Addon_Description,
                      {masterKey},
                      u"Could not delete the addon description record."_s);
}

Result deleteMaster(Connection& database, qint64 masterKey)
{
    return deleteRows(
        database, Table::Addon_Master, {masterKey}, u"Could not delete the addon master record."_s);
}

Result deleteHistory(Connection& database, qint64 masterKey, const QDateTime& dateInstalled)
{
    return deleteRows(database,
                      Table::Addon_History,
                      {masterKey, dateInstalled},
                      u"Could not delete the addon history record."_s);
}

Result
deleteHistoryDescription(Connection& database, qint64 masterKey, const QDateTime& dateInstalled)
{
    return deleteRows(database,
                      Table::Addon_History_Description,
                      {masterKey, dateInstalled},
                      u"Could not delete the addon history description record."_s);
}

// --- history ---

Result setDateUninstalled(Connection& database,
                          qint64 masterKey,
                          const QDateTime& dateInstalled,
                          const QDateTime& dateUninstalled)
{
    return database.together([&]() -> Result {
        Recordset history(database, Table::Addon_History);
        bool done = history.seek({masterKey, dateInstalled});
        if (done) {
            history.edit();
            history.set(Field::Date_Uninstalled, dateUninstalled);
            done = history.update().ok;
        }
        return done ? Result::success()
                    : databaseFailure(u"Could not update the addon history header."_s);
    });
}

ResultOf<QList<HistoryRecord>> history(Connection& database)
{
    QList<HistoryRecord> all;
    Recordset rows(database, Table::Addon_History);
    for (bool more = rows.moveFirst(); more; more = rows.moveNext()) {
        HistoryRecord record{readShared(rows), rows.date(Field::Date_Uninstalled)};
        record.addon.status = record.dateUninstalled.isValid() ? InstallationStatus::Removed
                                                               : InstallationStatus::Installed;
        all.push_back(record);
    }
    if (!rows.error())
        return databaseFailure(u"Could not open the addon history table."_s);
    Recordset texts(database, Table::Addon_History_Description);
    for (HistoryRecord& record : all) {
        if (texts.seek({record.addon.key, record.addon.dateInstalled}))
            record.addon.description = texts.text(Field::Description);
        else if (!texts.error())
            return databaseFailure(u"Could not open the addon history description table."_s);
    }
    return all;
}

} // namespace vt::modDatabase_Addon
