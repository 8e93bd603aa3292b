// list, show, owner, validate, history: what is recorded, beside what lies on the disk. Reads only.
#include "addondb/AddonColumns.h"
#include "addondb/AddonDatabase.h"
#include "addondb/AddonFacts.h"
#include "addondb/Pictures.h"
#include "cli/AddonKey.h"
#include "cli/ShowAddon.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/AddonVariations.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

QString jsonDate(const QDateTime& time)
{
    return time.isValid() ? time.toString(u"yyyy-MM-ddTHH:mm:ss"_s) : QString();
}

QString shownDate(const QDateTime& time)
{
    return time.isValid() ? time.toString(u"yyyy-MM-dd HH:mm"_s) : QString();
}

// --- arguments ---

/// One of the words that the options allow.
StatusFilter statusOf(const QString& word)
{
    if (equalNoCase(word, u"all") || word.isEmpty())
        return StatusFilter::All;
    if (equalNoCase(word, u"installed"))
        return StatusFilter::Installed;
    if (equalNoCase(word, u"cabinet"))
        return StatusFilter::FileCabinet;
    return StatusFilter::Removed;
}

/// --filter or --status, --category, --search, --since.
ResultOf<ListFilter> filterOf(const Arguments& arguments)
{
    ListFilter filter;
    const QString status = arguments.value(u"--filter"_s, arguments.value(u"--status"_s));
    filter.status = statusOf(status);
    filter.search = arguments.value(u"--search"_s);
    if (arguments.has(u"--category"_s)) {
        const QString word = arguments.value(u"--category"_s);
        filter.category = categoryOfWord(word);
        if (!filter.category) {
            const Categories all = Categories::fromInt((1 << 13) - 1);
            return Result::failure(u"There is no category '"_s + word +
                                       u"'; the categories are: "_s +
                                       categoryWords(all).join(u", "_s) + u"."_s,
                                   ErrorKind::Usage);
        }
    }
    if (arguments.has(u"--since"_s)) {
        const QString typed = arguments.value(u"--since"_s);
        filter.since = QDateTime::fromString(typed, Qt::ISODate);
        if (!filter.since.isValid()) {
            return Result::failure(u"'"_s + typed +
                                       u"' is not a date; write it as in 2024-12-31."_s,
                                   ErrorKind::Usage);
        }
    }
    return filter;
}

// --- list ---

/// The members of one row, without the braces.
void writeAddon(JsonStream& out, const AddonRow& row)
{
    const AddonRecord& addon = row.addon;
    out.field(u"key", addon.key);
    out.field(u"name", addon.name);
    out.field(u"status", statusWord(addon.status));
    out.field(u"statusCode", int(addon.status));
    out.field(u"dateInstalled", jsonDate(addon.dateInstalled));
    out.field(u"categories", categoryWords(addon.categories));
    out.field(u"authors", addon.authors);
    out.field(u"rating", addon.rating);
    out.field(u"sourceName", addon.sourceName);
    out.field(u"sourceSize", addon.sourceSize);
    out.field(u"sourceType", sourceTypeWord(addon.sourceType));
    out.field(u"sourceFiles", addon.sourceTotalFiles);
    out.field(u"original", addon.original);
    out.field(u"files", row.files);
}

QString addonLine(const AddonRow& row)
{
    const AddonRecord& addon = row.addon;
    return QString::number(addon.key).rightJustified(5) + u"  "_s + addon.name + u"  ("_s +
           statusWord(addon.status) + u" "_s + shownDate(addon.dateInstalled) + u", "_s +
           countText(row.files, u"file"_s, u"files"_s) + u")"_s;
}

int listAddons(World& world, const Arguments& arguments)
{
    const ResultOf<ListFilter> filter = filterOf(arguments);
    if (!filter)
        return world.fail(filter.error());
    if (Result ready = world.needDatabase(); !ready)
        return world.fail(ready);
    QList<AddonRow> rows;
    if (world.database() != nullptr) {
        ResultOf<QList<AddonRow>> found = addonRows(*world.database(), *filter);
        if (!found)
            return world.fail(found.error());
        rows = std::move(*found);
    }
    JsonStream& out = world.out();
    out.beginArray();
    for (const AddonRow& row : rows) {
        out.beginObject();
        writeAddon(out, row);
        out.endObject();
        world.say(addonLine(row));
    }
    out.endArray();
    if (rows.isEmpty())
        world.say(u"No recorded add-on matches."_s);
    return Done;
}

// --- show, validate ---

struct Shown
{
    AddonFacts facts;
    bool whole = true;
};

ResultOf<Shown> loadShown(World& world, const Arguments& arguments)
{
    const ResultOf<qint64> key = addonKey(arguments.one(u"KEY"_s));
    if (!key)
        return key.error();
    if (Result ready = world.needDatabase(); !ready)
        return ready;
    const Result unknown = unknownAddon(QString::number(*key));
    if (world.database() == nullptr)
        return unknown;
    Connection& database = *world.database();
    const auto recorded = modDatabase_Addon::addon(database, *key);
    if (!recorded)
        return recorded.kind == ErrorKind::Failed ? unknown : recorded.error();
    (void)world.located(); // the gate then knows the simulator's folders
    ResultOf<AddonFacts> facts = AddonFacts::load(world.context(), database, *key);
    if (!facts)
        return facts.error();
    return Shown{std::move(*facts), true};
}

/// Every file with its state; for people only those that are not whole unless \a all.
void writeItems(World& world, Shown& shown, bool all)
{
    JsonStream& out = world.out();
    out.beginArray(u"items");
    for (const DetailRecord& detail : shown.facts.items.details()) {
        const ItemState state = shown.facts.state(world.context(), *world.database(), detail);
        shown.whole = shown.whole && state == ItemState::Ok;
        out.beginObject();
        out.field(u"detailKey", detail.key);
        out.field(u"filename", detail.filename);
        out.field(u"location", detail.location);
        out.field(u"name", detail.name);
        out.field(u"preferredLocation", detail.preferredLocation);
        out.field(u"preferredName", detail.preferredName);
        out.field(u"state", itemStateWord(state));
        out.field(u"replacedOriginal", shown.facts.items.replacedOriginal(detail));
        if (const qint64 other = shown.facts.items.coveredBy(detail); other != 0)
            out.field(u"coveredBy", other);
        out.endObject();
        if (all || state != ItemState::Ok) {
            world.say(itemStateWord(state).leftJustified(9) + detail.location + detail.name);
        }
    }
    out.endArray();
}

void writeAreas(World& world, const QList<SceneryAreaRecord>& areas)
{
    JsonStream& out = world.out();
    out.beginArray(u"sceneryAreas");
    for (const SceneryAreaRecord& area : areas) {
        out.beginObject();
        out.field(u"area", area.area);
        out.field(u"layer", area.layer);
        out.field(u"title", area.title);
        out.field(u"path", area.path);
        out.field(u"enabled", area.enabled);
        out.endObject();
        world.say(u"Scenery library area "_s + QString::number(area.area) + u": "_s + area.title +
                  u" ("_s + area.path + u")"_s);
    }
    out.endArray();
}

void sayHead(World& world, const AddonRow& row)
{
    const AddonRecord& addon = row.addon;
    world.say(addon.name);
    world.say(u"  Key:         "_s + QString::number(addon.key));
    world.say(u"  Status:      "_s + statusWord(addon.status) + u", "_s +
              shownDate(addon.dateInstalled));
    world.say(u"  Categories:  "_s + categoryWords(addon.categories).join(u", "_s));
    world.say(u"  Authors:     "_s + addon.authors);
    world.say(u"  Rating:      "_s + ratingText(addon.rating));
    world.say(u"  Source:      "_s + addon.sourceName + u" ("_s + sizeText(addon.sourceSize) +
              u", "_s + countText(addon.sourceTotalFiles, u"file"_s, u"files"_s) + u")"_s);
    if (!addon.description.isEmpty())
        world.say(u"  Description: "_s + addon.description);
}

int validateAddon(World& world, const Arguments& arguments)
{
    ResultOf<Shown> shown = loadShown(world, arguments);
    if (!shown)
        return world.fail(shown.error());
    const QString& name = shown->facts.row.addon.name;
    JsonStream& out = world.out();
    out.beginObject();
    out.field(u"key", shown->facts.row.addon.key);
    out.field(u"name", name);
    writeItems(world, *shown, false);
    const Result verdict = shown->facts.verdict(shown->whole);
    if (!verdict)
        return world.fail(verdict);
    out.endObject();
    world.say(verdict.text);
    return Done;
}

// --- owner ---

int showOwners(World& world, const Arguments& arguments)
{
    const QString path = world.userPath(arguments.one(u"PATH"_s));
    if (Result ready = world.needDatabase(); !ready)
        return world.fail(ready);
    QList<DetailRecord> owners;
    QHash<qint64, QString> names;
    if (Connection* database = world.database()) {
        auto found =
            modDatabase_Addon::ownersOf(*database, winpath::parent(path), winpath::name(path));
        const auto addons = modDatabase_Addon::addons(*database);
        for (const Result& read : {found.error(), addons.error()}) {
            if (!read)
                return world.fail(read);
        }
        owners = std::move(*found);
        for (const AddonRecord& addon : *addons)
            names.insert(addon.key, addon.name);
    }
    JsonStream& out = world.out();
    out.beginArray();
    for (const DetailRecord& detail : owners) {
        out.beginObject();
        out.field(u"key", detail.masterKey);
        out.field(u"name", names.value(detail.masterKey));
        out.field(u"detailKey", detail.key);
        out.endObject();
        world.say(QString::number(detail.masterKey).rightJustified(5) + u"  "_s +
                  names.value(detail.masterKey));
    }
    out.endArray();
    if (owners.isEmpty())
        world.say(u"No add-on recorded '"_s + path + u"'."_s);
    return Done;
}

// --- history ---

void writeHistory(JsonStream& out, const HistoryRecord& record)
{
    const AddonRecord& addon = record.addon;
    out.beginObject();
    out.field(u"key", addon.key);
    out.field(u"name", addon.name);
    out.field(u"dateInstalled", jsonDate(addon.dateInstalled));
    if (record.dateUninstalled.isValid()) {
        out.field(u"dateUninstalled", jsonDate(record.dateUninstalled));
    } else {
        out.key(u"dateUninstalled");
        out.null();
    }
    out.field(u"status", statusWord(addon.status));
    out.field(u"categories", categoryWords(addon.categories));
    out.field(u"authors", addon.authors);
    out.field(u"rating", addon.rating);
    out.field(u"sourceName", addon.sourceName);
    out.field(u"description", addon.description);
    out.endObject();
}

QString historyLine(const HistoryRecord& record)
{
    const QString gone = record.dateUninstalled.isValid()
                             ? u", removed "_s + shownDate(record.dateUninstalled)
                             : QString();
    return QString::number(record.addon.key).rightJustified(5) + u"  "_s + record.addon.name +
           u"  (installed "_s + shownDate(record.addon.dateInstalled) + gone + u"; now "_s +
           statusWord(record.addon.status) + u")"_s;
}

int showHistory(World& world, const Arguments& arguments)
{
    const ResultOf<ListFilter> filter = filterOf(arguments);
    if (!filter)
        return world.fail(filter.error());
    if (Result ready = world.needDatabase(); !ready)
        return world.fail(ready);
    QList<HistoryRecord> rows;
    if (world.database() != nullptr) {
        ResultOf<QList<HistoryRecord>> found = historyRows(*world.database(), *filter);
        if (!found)
            return world.fail(found.error());
        rows = std::move(*found);
    }
    JsonStream& out = world.out();
    out.beginArray();
    for (const HistoryRecord& record : rows) {
        writeHistory(out, record);
        world.say(historyLine(record));
    }
    out.endArray();
    if (rows.isEmpty())
        world.say(u"No installation matches."_s);
    return Done;
}

} // namespace

int showAddon(World& world, const Arguments& arguments)
{
    ResultOf<Shown> shown = loadShown(world, arguments);
    if (!shown)
        return world.fail(shown.error());
    JsonStream& out = world.out();
    sayHead(world, shown->facts.row);
    out.beginObject();
    writeAddon(out, shown->facts.row);
    out.field(u"description", shown->facts.row.addon.description);
    const QString picture =
        pictures::addonPicture(world.context().global, shown->facts.row.addon.key);
    const bool hasPicture = world.services().files.isFile(picture);
    out.field(u"picture", hasPicture ? picture : QString());
    if (hasPicture)
        world.say(u"  Picture:     "_s + picture);
    writeItems(world, *shown, true);
    writeAreas(world, shown->facts.areas);
    out.beginArray(u"variants");
    for (const auto& variation : addonvariations::find(ConfigAccess(world.services()),
                                                       shown->facts.row.addon.key,
                                                       shown->facts.items.details())) {
        world.say(u"Aircraft variation '"_s + variation.title + u"' ["_s + variation.section +
                  u"] of "_s + variation.file);
        out.beginObject();
        out.field(u"file", variation.file);
        out.field(u"section", variation.section);
        out.field(u"title", variation.title);
        out.endObject();
    }
    out.endArray();
    out.endObject();
    return Done;
}

std::vector<Command> addonCommands()
{
    const Positional key{"KEY", "key of the add-on, as 'list' shows it"};
    const Option category{"--category", "NAME", "only those with files of this category"};
    return {
        {"list",
         "recorded add-ons",
         {},
         {{"--filter",
           "STATUS",
           "only those of this status",
           false,
           {"all", "installed", "cabinet"}},
          category,
          {"--search", "TEXT", "only those with the text in name, description, authors or source"}},
         listAddons},
        {"show", "one add-on with its files", {key}, {}, showAddon},
        {"owner",
         "which add-ons recorded a file",
         {{"PATH", "the file, as a path of the host or of Windows"}},
         {},
         showOwners},
        {"validate", "compares an add-on's record with the disk", {key}, {}, validateAddon},
        {"history",
         "every installation, removed ones included",
         {},
         {{"--status",
           "STATUS",
           "only those of this status",
           false,
           {"all", "installed", "cabinet", "removed"}},
          category,
          {"--since", "DATE", "only those installed on this day (2024-12-31) or later"}},
         showHistory},
    };
}

} // namespace vt::cli
