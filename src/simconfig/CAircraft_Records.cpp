// What the add-on database keeps about aircraft variations: silenced warnings, the rows of
// sections, and to whom a variation belongs.
#include "addondb/AddonDatabase.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "simconfig/Suppression.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Result moveRows(Connection& database, const QString& file, const aircraftsections::Renames& renames)
{
    QList<std::pair<QString, QString>> moves;
    for (const aircraftsections::Rename& rename : renames)
        moves.append({rename.before, rename.after});
    return modDatabase_Addon::moveItemSections(database, file, moves);
}

} // namespace

bool CAircraft::SuppressionStatus_Load(Connection& database) const
{
    return suppression::isSuppressed(
        database, m_access.actions, ItemTable::Aircraft, sConfigurationFile, sSection);
}

Result CAircraft::SuppressionStatus_Save(Connection& database, bool suppressed) const
{
    return suppression::setSuppressed(
        database, m_access.actions, ItemTable::Aircraft, sConfigurationFile, suppressed, sSection);
}

std::optional<qint64> CAircraft::Database_AircraftIsInDatabase(Connection& database)
{
    if (LoadVTTextureAddonMasterKey() && lngVTTextureAddonMasterKey > 0 &&
        modDatabase_Addon::addon(database, lngVTTextureAddonMasterKey))
        return lngVTTextureAddonMasterKey;
    const ResultOf<QList<DetailRecord>> owners = modDatabase_Addon::ownersOf(
        database, Folder_Aircraft_Get(), winpath::name(sConfigurationFile));
    if (!owners || owners->isEmpty())
        return std::nullopt;
    return owners->constLast().masterKey;
}

Result CAircraft::Variant_Add_UpdateDatabase(Connection& database,
                                             const VariantsChanged& added) const
{
    const Result done = database.together([&]() -> Result {
        if (Result moved = moveRows(database, sConfigurationFile, added.renamed); !moved)
            return moved;
        for (const QString& section : added.sections) {
            ItemDetailRecord record;
            record.item = sConfigurationFile;
            record.section = section;
            if (Result set =
                    modDatabase_Addon::setItemDetail(database, ItemTable::Aircraft, record);
                !set)
                return set;
        }
        return Result::success();
    });
    return done ? done : Result::failure(u"Could not include new variant in the database."_s);
}

Result CAircraft::Variant_Remove_UpdateDatabase(Connection& database,
                                                const VariantsChanged& removed) const
{
    const Result done = database.together([&]() -> Result {
        for (const QString& section : removed.sections) {
            if (Result gone = modDatabase_Addon::deleteItemDetail(
                    database, ItemTable::Aircraft, sConfigurationFile, section);
                !gone)
                return gone;
        }
        return moveRows(database, sConfigurationFile, removed.renamed);
    });
    return done ? done : Result::failure(u"Could not remove addon database record."_s);
}

Result CAircraft::Variants_Renamed_UpdateDatabase(Connection& database,
                                                  const aircraftsections::Renames& renames) const
{
    return moveRows(database, sConfigurationFile, renames);
}

} // namespace vt
