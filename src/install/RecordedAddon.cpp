#include "install/RecordedAddon.h"

#include "addondb/AddonDatabase.h"
#include "addondb/FileCabinet.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "simconfig/AddonVariations.h"

#include <QMultiHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// How many last components two folders have in common.
int commonEnd(const QString& a, const QString& b)
{
    const QStringList first = winpath::components(a);
    const QStringList second = winpath::components(b);
    int common = 0;
    while (common < first.size() && common < second.size() &&
           equalNoCase(first.at(first.size() - 1 - common), second.at(second.size() - 1 - common)))
        ++common;
    return common;
}

/// How well an item fits a recorded file of the same name.
int fitness(const CAddon_Item& item, const DetailRecord& row, const Fingerprint& check)
{
    int points = 4 * qMax(commonEnd(item.sFolder_Current, row.preferredLocation),
                          commonEnd(item.sFolder_Current, row.location));
    if (check.size == item.size)
        points += 1000; // a configuration file may have been brought to another form
    return points;
}

void assign(CAddon_Item& item, const DetailRecord& row)
{
    item.setPreferred(row.preferredLocation, row.preferredName);
    item.setInstallation(row.location, row.name);
    item.detailKey = row.key;
    item.boolProcess = true;
}

} // namespace

ResultOf<RecordedAddon> RecordedAddon::load(Connection& database, qint64 masterKey)
{
    using namespace modDatabase_Addon;
    RecordedAddon out;
    const ResultOf<AddonRecord> record = addon(database, masterKey);
    if (!record)
        return record.error();
    const ResultOf<QList<DetailRecord>> files = detailsOf(database, masterKey);
    const ResultOf<QList<OriginalRecord>> kept = originalsOf(database, masterKey);
    const ResultOf<QList<SceneryAreaRecord>> areas = sceneryAreasOf(database, masterKey);
    const ResultOf<QList<PictureRecord>> pictures = picturesOf(database, masterKey);
    if (!files || !kept || !areas || !pictures)
        return Result::failure(u"Could not open the addon details table."_s);
    const ResultOf<QHash<qint64, Fingerprint>> checks = checksOf(database, *files);
    if (!checks)
        return checks.error();
    const ResultOf<originals::Sharers> sharers = originals::Sharers::load(database, *files);
    if (!sharers)
        return sharers.error();
    out.record = *record;
    out.files = *files;
    out.checks = *checks;
    for (const OriginalRecord& original : *kept)
        out.originals.insert(original.detailKey, original);
    out.areas = *areas;
    out.pictures = *pictures;
    out.sharers = *sharers;
    return out;
}

ResultOf<QString>
reinstallationSource(Context& context, RecordedAddon& recorded, const QString& given)
{
    const Files& files = context.services.files;
    recorded.fromCabinet = false;
    if (!given.isEmpty())
        return given;
    if (const auto stored =
            FileCabinet(context.services, context.global).find(recorded.record.key)) {
        recorded.fromCabinet = true;
        return *stored;
    }
    const QString& source = recorded.record.sourceName;
    if (!source.isEmpty() && files.exists(winpath::withoutTrailing(source))) {
        const auto info = files.info(source);
        const bool same =
            source.endsWith(u'\\') || (info && info->size == recorded.record.sourceSize);
        if (same)
            return source;
        return Result::failure(u"'"_s + recorded.record.name + u"' cannot be installed again: '"_s +
                                   source +
                                   u"' is another file than the one that was installed. If it is "
                                   u"the right one all the same, name it with --from."_s,
                               ErrorKind::Surroundings);
    }
    const QString drawer = context.settings.text(SettingKey::ArchiveAddonZipFileFolder);
    const QString archived = drawer.isEmpty() || source.isEmpty()
                                 ? QString()
                                 : winpath::asFolder(drawer) + winpath::name(source);
    if (!archived.isEmpty() && files.isFile(archived))
        return archived;
    return Result::failure(
        u"'"_s + recorded.record.name + u"' cannot be installed again: "_s +
            (source.isEmpty() ? u"it is not known what it was installed from"_s
                              : u"its source '"_s + source + u"' is no longer there"_s) +
            u", and the File Cabinet does not hold it. Name its archive or folder with --from."_s,
        ErrorKind::Surroundings);
}

QList<DetailRecord> matchRecorded(CAddon_ItemGroup& addon,
                                  const RecordedAddon& recorded,
                                  const std::function<QString(const CAddon_Item&)>& pathOf)
{
    QMultiHash<NoCase, qint32> items; ///< by path in the File Cabinet, else by name
    for (CAddon_Item& item : addon.colAddonItems_Edit()) {
        item.boolProcess = false;
        items.insert(NoCase{pathOf ? pathOf(item) : item.sName}, item.lngKey);
    }

    struct Pair
    {
        int points;
        qsizetype row;
        qint32 item;
    };

    std::vector<Pair> pairs;
    for (qsizetype i = 0; i < recorded.files.size(); ++i) {
        const DetailRecord& row = recorded.files.at(i);
        const QString wanted = pathOf ? row.location + row.name : row.filename;
        for (const qint32 key : items.values(NoCase{wanted}))
            pairs.push_back(
                {pathOf ? 0 : fitness(*addon.Search(key), row, recorded.checks.value(row.key)),
                 i,
                 key});
    }
    // The best pairs first; of equal ones those that come first in the record and in the source.
    std::sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) {
        if (a.points != b.points)
            return a.points > b.points;
        return a.row != b.row ? a.row < b.row : a.item < b.item;
    });
    QSet<qsizetype> rows;
    QSet<qint32> taken;
    for (const Pair& pair : pairs) {
        if (rows.contains(pair.row) || taken.contains(pair.item))
            continue;
        rows.insert(pair.row);
        taken.insert(pair.item);
        assign(*addon.edit(pair.item), recorded.files.at(pair.row));
    }
    QList<DetailRecord> missing;
    for (qsizetype i = 0; i < recorded.files.size(); ++i) {
        if (!rows.contains(i))
            missing.append(recorded.files.at(i));
    }
    return missing;
}

} // namespace vt
