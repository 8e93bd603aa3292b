#include "addondb/AddonFacts.h"

#include "addondb/AddonDatabase.h"
#include "addondb/FileCabinet.h"
#include "platform/Text.h"

using namespace Qt::StringLiterals;

namespace vt {

ResultOf<AddonFacts> AddonFacts::load(Context& context, Connection& database, qint64 masterKey)
{
    const ResultOf<AddonRow> row = addonRow(database, masterKey);
    if (!row)
        return row.error();
    ResultOf<AddonItems> items = AddonItems::load(database, masterKey);
    if (!items)
        return items.error();
    const auto areas = modDatabase_Addon::sceneryAreasOf(database, masterKey);
    if (!areas)
        return areas.error();
    AddonFacts facts{*row, std::move(*items), *areas, nullptr};
    if (row->addon.status != InstallationStatus::FileCabinet)
        return facts;
    facts.areas.clear(); // they are in the library no more
    const FileCabinet cabinet(context.services, context.global);
    if (const auto archive = cabinet.find(masterKey)) {
        facts.stored = std::make_shared<CabinetArchive>(context.services);
        if (Result opened = facts.stored->open(*archive); !opened)
            return opened;
    }
    return facts;
}

ItemState
AddonFacts::state(Context& context, Connection& database, const DetailRecord& detail) const
{
    if (row.addon.status != InstallationStatus::FileCabinet)
        return items.state(database, context.services.gate, detail);
    return stored && stored->holds(detail.location + detail.name) ? ItemState::Ok
                                                                  : ItemState::Missing;
}

Result AddonFacts::verdict(bool whole) const
{
    const QString& name = row.addon.name;
    if (!whole)
        return Result::failure(
            u"The add-on '"_s + name +
            u"' is not whole: some of its files are missing or were changed since it was installed."_s);
    return Result::success(u"The add-on '"_s + name + u"' is whole: "_s +
                           countText(row.files, u"file"_s, u"files"_s) + u" as recorded."_s);
}

} // namespace vt
