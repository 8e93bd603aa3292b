#include "addondb/AddonList.h"

#include "addondb/AddonDatabase.h"
#include "addondb/DatabaseSteps.h"
#include "addondb/Originals.h"
#include "platform/Hash.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

bool passesStatus(InstallationStatus status, StatusFilter filter)
{
    switch (filter) {
    case StatusFilter::All:
        return true;
    case StatusFilter::Installed:
        return status == InstallationStatus::Installed || status == InstallationStatus::Imported;
    case StatusFilter::FileCabinet:
        return status == InstallationStatus::FileCabinet;
    case StatusFilter::Removed:
        return status == InstallationStatus::Removed;
    }
    return false;
}

bool passes(const AddonRecord& addon, const ListFilter& filter)
{
    return passesWithoutSearch(addon, filter) &&
           (filter.search.isEmpty() || searchedText(addon).contains(foldCase(filter.search)));
}

qint64 filesOf(Recordset& details, qint64 masterKey)
{
    details.setIndex(Index::Addon_Details_Addon_Master_Key);
    return details.countMatching({masterKey});
}

Result detailsNotRead()
{
    return databaseFailure(u"Could not open the addon details table."_s);
}

NoCase placeKey(const DetailRecord& detail)
{
    return {detail.location + detail.name};
}

bool isAsLastWritten(Connection& database,
                     const Gate& gate,
                     const QString& path,
                     const FileInfo& now)
{
    const ResultOf<Place> place = gate.place(path);
    if (!place)
        return false;
    const auto base = modDatabase_Addon::configBase(database, *place);
    if (!base || base->lastWrittenSize != now.size)
        return false;
    const ResultOf<Fingerprint> print = fingerprint(gate.files(), path);
    return print && print->xxh3 == base->lastWrittenHash;
}

} // namespace

bool passesWithoutSearch(const AddonRecord& addon, const ListFilter& filter)
{
    return passesStatus(addon.status, filter.status) &&
           (!filter.category || addon.categories.testFlag(*filter.category)) &&
           (!filter.since.isValid() || addon.dateInstalled >= filter.since);
}

QString searchedText(const AddonRecord& addon)
{
    return foldCase(QString(addon.name + u'\n' + addon.description + u'\n' + addon.authors + u'\n' +
                            addon.sourceName));
}

ResultOf<QList<AddonRow>> addonRows(Connection& database, const ListFilter& filter)
{
    const ResultOf<QList<AddonRecord>> addons = modDatabase_Addon::addons(database, true);
    if (!addons)
        return addons.error();
    QList<AddonRow> rows;
    for (const AddonRecord& addon : *addons)
        if (passes(addon, filter))
            rows.push_back({addon, 0});
    // For many rows one walk over the whole index is shorter than a look for each.
    constexpr qsizetype many = 1000;
    Recordset details(database, Table::Addon_Details);
    details.setIndex(Index::Addon_Details_Addon_Master_Key);
    const QHash<qint64, qint64> counts =
        rows.size() > many ? details.countsOfEach() : QHash<qint64, qint64>();
    for (AddonRow& row : rows)
        row.files =
            rows.size() > many ? counts.value(row.addon.key) : filesOf(details, row.addon.key);
    if (!details.error())
        return detailsNotRead();
    return rows;
}

ResultOf<AddonRow> addonRow(Connection& database, qint64 masterKey)
{
    const ResultOf<AddonRecord> addon = modDatabase_Addon::addon(database, masterKey);
    if (!addon)
        return addon.error();
    Recordset details(database, Table::Addon_Details);
    const AddonRow row{*addon, filesOf(details, masterKey)};
    if (!details.error())
        return detailsNotRead();
    return row;
}

ResultOf<QList<HistoryRecord>> historyRows(Connection& database, const ListFilter& filter)
{
    const ResultOf<QList<AddonRecord>> addons = modDatabase_Addon::addons(database);
    if (!addons)
        return addons.error();
    QHash<qint64, AddonRecord> present;
    for (const AddonRecord& addon : *addons)
        present.insert(addon.key, addon);
    ResultOf<QList<HistoryRecord>> history = modDatabase_Addon::history(database);
    if (!history)
        return history;
    QList<HistoryRecord> rows;
    for (HistoryRecord& record : *history) {
        const auto now = present.constFind(record.addon.key);
        const bool same = now != present.cend() && now->dateInstalled == record.addon.dateInstalled;
        const bool cabinet = same && now->status == InstallationStatus::FileCabinet;
        if (cabinet || (same && !record.dateUninstalled.isValid()))
            record.addon.status = now->status;
        else
            record.addon.status = InstallationStatus::Removed;
        if (passes(record.addon, filter))
            rows.push_back(record);
    }
    return rows;
}

ResultOf<QHash<NoCase, qint64>> standingPlaces(Connection& database)
{
    const ResultOf<QList<AddonRecord>> addons = modDatabase_Addon::addons(database);
    if (!addons)
        return addons.error();
    QSet<qint64> standing;
    for (const AddonRecord& addon : *addons) {
        if (passesStatus(addon.status, StatusFilter::Installed))
            standing.insert(addon.key);
    }
    QHash<NoCase, qint64> places;
    Recordset rows(database, Table::Addon_Details);
    for (bool more = rows.moveFirst(); more; more = rows.moveNext()) {
        const qint64 key = rows.number(Field::Addon_Master_Key);
        if (standing.contains(key))
            places.insert(NoCase{rows.text(Field::Installed_To_Location) +
                                 rows.text(Field::Installed_To_FileName)},
                          key);
    }
    if (!rows.error())
        return detailsNotRead();
    return places;
}

QString itemStateWord(ItemState state)
{
    switch (state) {
    case ItemState::Ok:
        return u"ok"_s;
    case ItemState::Missing:
        return u"missing"_s;
    case ItemState::Changed:
        return u"changed"_s;
    }
    Q_UNREACHABLE();
}

ResultOf<AddonItems> AddonItems::load(Connection& database, qint64 masterKey)
{
    AddonItems items;
    ResultOf<QList<DetailRecord>> details = modDatabase_Addon::detailsOf(database, masterKey);
    if (!details)
        return details.error();
    items.m_details = std::move(*details);
    ResultOf<QHash<qint64, Fingerprint>> checks =
        modDatabase_Addon::checksOf(database, items.m_details);
    if (!checks)
        return checks.error();
    items.m_checks = std::move(*checks);
    const auto originals = modDatabase_Addon::originalsOf(database, masterKey);
    if (!originals)
        return originals.error();
    for (const OriginalRecord& original : *originals)
        items.m_replaced.insert(original.detailKey);

    const auto sharers = modDatabase_Addon::sharersOf(database, items.m_details);
    if (!sharers)
        return sharers.error();
    if (sharers->isEmpty())
        return items;
    const ResultOf<QList<AddonRecord>> addons = modDatabase_Addon::addons(database);
    if (!addons)
        return addons.error();
    QSet<qint64> standing;
    for (const AddonRecord& addon : *addons) {
        if (passesStatus(addon.status, StatusFilter::Installed))
            standing.insert(addon.key);
    }
    for (const DetailRecord& other : *sharers) {
        if (!standing.contains(other.masterKey))
            continue;
        items.m_covering.insert(placeKey(other), other); // the last one is the topmost
        if (const auto check = modDatabase_Addon::checkOf(database, other.key))
            items.m_coveringChecks.insert(other.key, *check);
    }
    return items;
}

bool AddonItems::replacedOriginal(const DetailRecord& detail) const
{
    return m_replaced.contains(detail.key);
}

qint64 AddonItems::coveredBy(const DetailRecord& detail) const
{
    const auto other = m_covering.constFind(placeKey(detail));
    return other != m_covering.cend() && other->key > detail.key ? other->masterKey : 0;
}

ItemState
AddonItems::state(Connection& database, const Gate& gate, const DetailRecord& detail) const
{
    const QString path = detail.location + detail.name;
    const std::optional<FileInfo> now = gate.files().entry(path);
    if (!now || now->folder)
        return ItemState::Missing;
    Fingerprint recorded = m_checks.value(detail.key);
    if (coveredBy(detail) != 0)
        recorded = m_coveringChecks.value(m_covering.value(placeKey(detail)).key);
    if (originals::isRecorded(gate.files(), path, *now, recorded))
        return ItemState::Ok;
    return isAsLastWritten(database, gate, path, *now) ? ItemState::Ok : ItemState::Changed;
}

} // namespace vt
