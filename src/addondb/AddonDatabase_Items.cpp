// Scenery-library areas, pictures, and the user's remarks on aircraft, panels and sounds.
#include "addondb/AddonDatabase.h"
#include "addondb/DatabaseSteps.h"

using namespace Qt::StringLiterals;

namespace vt::modDatabase_Addon {

namespace {

SceneryAreaRecord readArea(const Recordset& rows)
{
    SceneryAreaRecord area;
    area.masterKey = rows.number(Field::Addon_Master_Key);
    area.detailKey = rows.number(Field::Addon_Details_Key);
    area.area = int(rows.number(Field::Area));
    area.enabled = rows.flag(Field::Enabled);
    area.layer = int(rows.number(Field::Layer));
    area.path = rows.text(Field::Path);
    area.title = rows.text(Field::Title);
    area.parameters = rows.text(Field::Parameters);
    return area;
}

Table tableOf(ItemTable table)
{
    switch (table) {
    case ItemTable::Aircraft:
        return Table::Aircraft_Details;
    case ItemTable::Panel:
        return Table::Panel_Details;
    case ItemTable::Sound:
        return Table::Sound_Details;
    }
    Q_UNREACHABLE();
}

Field keyFieldOf(ItemTable table)
{
    switch (table) {
    case ItemTable::Aircraft:
        return Field::Aircraft;
    case ItemTable::Panel:
        return Field::Panel;
    case ItemTable::Sound:
        return Field::Sound;
    }
    Q_UNREACHABLE();
}

QString sectionKey(const QString& section)
{
    return trimmedBlanks(section).toLower();
}

bool seekItem(Recordset& rows, ItemTable table, const QString& item, const QString& section)
{
    if (table == ItemTable::Aircraft)
        return rows.seek({item.toLower(), sectionKey(section)});
    return rows.seek({item.toLower()});
}

Field customField(std::size_t number)
{
    return Field(std::size_t(Field::Custom1) + number);
}

/// The primary picture makes room for another one.
Result clearPrimary(Connection& database, qint64 masterKey)
{
    Recordset rows(database, Table::Addon_Details_Picture);
    for (bool more = rows.seek({masterKey}); more; more = rows.moveNext()) {
        if (!rows.flag(Field::PrimaryAddonPicture))
            continue;
        rows.edit();
        rows.set(Field::PrimaryAddonPicture, false);
        if (Result done = rows.update(); !done)
            return done;
    }
    return rows.error();
}

} // namespace

// --- scenery library ---

Result addSceneryAreas(Connection& database, const QList<SceneryAreaRecord>& areas)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Addon_Details_SceneryLibrary);
        for (const SceneryAreaRecord& area : areas) {
            rows.addNew();
            rows.set(Field::Addon_Master_Key, area.masterKey);
            rows.set(Field::Addon_Details_Key, area.detailKey);
            rows.set(Field::Area, area.area);
            rows.set(Field::Enabled, area.enabled);
            rows.set(Field::Layer, area.layer);
            rows.set(Field::Path, trimmedBlanks(area.path));
            rows.set(Field::Title, trimmedBlanks(area.title));
            rows.set(Field::Parameters, area.parameters);
            if (!rows.update()) {
                return databaseFailure(u"Could not create addon details scenery library record."_s);
            }
        }
        return Result::success();
    });
}

ResultOf<QList<SceneryAreaRecord>> sceneryAreasOf(Connection& database, qint64 masterKey)
{
    QList<SceneryAreaRecord> areas;
    Recordset rows(database, Table::Addon_Details_SceneryLibrary);
    for (bool more = rows.seek({masterKey}); more; more = rows.moveNext())
        areas.push_back(readArea(rows));
    if (!rows.error())
        return databaseFailure(u"Could not open the addon scenery library table."_s);
    return areas;
}

ResultOf<QList<SceneryAreaRecord>> sceneryAreas(Connection& database)
{
    QList<SceneryAreaRecord> areas;
    Recordset rows(database, Table::Addon_Details_SceneryLibrary);
    for (bool more = rows.moveFirst(); more; more = rows.moveNext())
        areas.push_back(readArea(rows));
    if (!rows.error())
        return databaseFailure(u"Could not open the addon scenery library table."_s);
    QHash<qint64, bool> stored;
    areas.removeIf([&](const SceneryAreaRecord& area) {
        auto known = stored.constFind(area.masterKey);
        if (known == stored.cend()) {
            const ResultOf<AddonRecord> owner = addon(database, area.masterKey);
            known = stored.insert(area.masterKey,
                                  owner && owner->status == InstallationStatus::FileCabinet);
        }
        return *known;
    });
    return areas;
}

Result deleteSceneryArea(Connection& database, const SceneryAreaRecord& area)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Addon_Details_SceneryLibrary);
        if (!rows.deleteAllMatching({area.masterKey, area.detailKey, area.area})) {
            return databaseFailure(u"Could not delete the addon details scenery library record."_s);
        }
        return Result::success();
    });
}

Result deleteSceneryAreasOf(Connection& database, qint64 masterKey)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Addon_Details_SceneryLibrary);
        if (!rows.deleteAllMatching({masterKey})) {
            return databaseFailure(u"Could not delete the addon details scenery library record."_s);
        }
        return Result::success();
    });
}

// --- pictures ---

Result addPicture(Connection& database, const PictureRecord& picture)
{
    return database.together([&]() -> Result {
        const QString failure = u"Could not create addon details picture record."_s;
        if (picture.primary && !clearPrimary(database, picture.masterKey))
            return databaseFailure(failure);
        Recordset rows(database, Table::Addon_Details_Picture);
        const FieldValue category(int(picture.category));
        if (rows.seek({picture.masterKey, picture.detailKey, category})) {
            rows.edit();
        } else if (!rows.error()) {
            return databaseFailure(u"Could not open the picture table."_s);
        } else {
            rows.addNew();
            rows.set(Field::Addon_Master_Key, picture.masterKey);
            rows.set(Field::Addon_Details_Key, picture.detailKey);
            rows.set(Field::AddonTypeCategory, category);
        }
        rows.set(Field::PrimaryAddonPicture, picture.primary);
        return rows.update() ? Result::success() : databaseFailure(failure);
    });
}

ResultOf<QList<PictureRecord>> picturesOf(Connection& database, qint64 masterKey)
{
    QList<PictureRecord> pictures;
    Recordset rows(database, Table::Addon_Details_Picture);
    for (bool more = rows.seek({masterKey}); more; more = rows.moveNext()) {
        pictures.push_back({rows.number(Field::Addon_Master_Key),
                            rows.number(Field::Addon_Details_Key),
                            AddonTypeCategory(rows.number(Field::AddonTypeCategory)),
                            rows.flag(Field::PrimaryAddonPicture)});
    }
    if (!rows.error())
        return databaseFailure(u"Could not open the addon details picture table."_s);
    return pictures;
}

Result deletePicturesOf(Connection& database, qint64 masterKey)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Addon_Details_Picture);
        if (!rows.deleteAllMatching({masterKey}))
            return databaseFailure(u"Could not delete the addon details picture record."_s);
        return Result::success();
    });
}

// --- remarks on items ---

std::optional<ItemDetailRecord>
itemDetail(Connection& database, ItemTable table, const QString& item, const QString& section)
{
    Recordset rows(database, tableOf(table));
    if (!seekItem(rows, table, item, section))
        return std::nullopt;
    ItemDetailRecord record;
    record.item = rows.text(keyFieldOf(table));
    if (table == ItemTable::Aircraft)
        record.section = rows.text(Field::Section);
    record.suppressErrors = rows.flag(Field::SuppressErrors);
    record.suppressCfgFileDateTime = rows.date(Field::SuppressCfgFileDateTime);
    record.suppressCfgFileSize = rows.number(Field::SuppressCfgFileSize);
    for (std::size_t i = 0; i < record.custom.size(); ++i)
        record.custom[i] = rows.text(customField(i));
    return record;
}

Result setItemDetail(Connection& database, ItemTable table, const ItemDetailRecord& record)
{
    return database.together([&]() -> Result {
        Recordset rows(database, tableOf(table));
        if (seekItem(rows, table, record.item, record.section))
            rows.edit();
        else
            rows.addNew();
        rows.set(keyFieldOf(table), record.item.toLower());
        if (table == ItemTable::Aircraft)
            rows.set(Field::Section, sectionKey(record.section));
        rows.set(Field::SuppressErrors, record.suppressErrors);
        rows.set(Field::SuppressCfgFileDateTime, record.suppressCfgFileDateTime);
        rows.set(Field::SuppressCfgFileSize, record.suppressCfgFileSize);
        for (std::size_t i = 0; i < record.custom.size(); ++i)
            rows.set(customField(i), trimmedBlanks(record.custom[i]));
        if (!rows.update())
            return databaseFailure(u"Could not update the addon section record."_s);
        return Result::success();
    });
}

Result moveItemSections(Connection& database,
                        const QString& item,
                        const QList<std::pair<QString, QString>>& moves)
{
    return database.together([&]() -> Result {
        QList<ItemDetailRecord> moved;
        for (const auto& [before, after] : moves) {
            auto record = itemDetail(database, ItemTable::Aircraft, item, before);
            if (!record)
                continue;
            record->section = after;
            moved.append(*record);
            if (Result gone = deleteItemDetail(database, ItemTable::Aircraft, item, before); !gone)
                return gone;
        }
        for (const ItemDetailRecord& record : moved) {
            if (Result set = setItemDetail(database, ItemTable::Aircraft, record); !set)
                return set;
        }
        return Result::success();
    });
}

Result
deleteItemDetail(Connection& database, ItemTable table, const QString& item, const QString& section)
{
    return database.together([&]() -> Result {
        Recordset rows(database, tableOf(table));
        const Result deleted = table == ItemTable::Aircraft && !section.isEmpty()
                                   ? rows.deleteAllMatching({item.toLower(), sectionKey(section)})
                                   : rows.deleteAllMatching({item.toLower()});
        if (!deleted)
            return databaseFailure(u"Could not delete the addon aircraft section record."_s);
        return Result::success();
    });
}

} // namespace vt::modDatabase_Addon
