// aircraft list, show: the installed aircraft and variations, and what one of them uses. Reads
// only.
#include "addondb/AddonDatabase.h"
#include "catalogue/Catalogue.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/TypedFile.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;
using vt::catalogue::RefKind;

namespace vt::cli {

namespace {

/// The catalogue with the add-ons' side of it.
struct Installed
{
    const Catalogue* catalogue = nullptr;
    QSet<qint64> addons;           ///< keys of recorded add-ons
    QHash<NoCase, qint64> ownerOf; ///< of an aircraft.cfg, by full path
    bool recorded = false;         ///< there is a database to ask

    /// The add-on that brought the variation, 0 for none.
    [[nodiscard]] qint64 addonKey(const CatalogueVariation& variation) const
    {
        if (variation.addonKey != 0 && (!recorded || addons.contains(variation.addonKey)))
            return variation.addonKey;
        return ownerOf.value(NoCase{catalogue->file(variation.config)});
    }
};

Result loadOwners(World& world, Installed& installed)
{
    if (Result ready = world.needDatabase(); !ready)
        return ready;
    if (world.database() == nullptr)
        return Result::success();
    installed.recorded = true;
    const auto addons = modDatabase_Addon::addons(*world.database());
    if (!addons)
        return addons.error();
    for (const AddonRecord& addon : *addons)
        installed.addons.insert(addon.key);
    const auto files = modDatabase_Addon::byInstalledName(*world.database(), u"aircraft.cfg"_s);
    if (!files)
        return files.error();
    for (const DetailRecord& file : *files)
        installed.ownerOf.insert(NoCase{winpath::join(file.location, file.name)}, file.masterKey);
    return Result::success();
}

Result load(World& world, Installed& installed)
{
    if (Result found = world.needSimulator(); !found)
        return found;
    if (Result owners = loadOwners(world, installed); !owners)
        return owners;
    installed.catalogue = &world.catalogue();
    return Result::success();
}

/// \a path below the simulator's folder.
QString shortened(World& world, const QString& path)
{
    return winpath::relativeTo(path, world.context().global.simulatorFolder);
}

/// The members of one row, without the braces.
void writeVariation(JsonStream& out, const Installed& installed, const CatalogueVariation& one)
{
    out.field(u"file", installed.catalogue->file(one.config));
    out.field(u"section", one.section);
    out.field(u"title", one.title);
    out.field(u"sim", one.sim);
    out.field(u"model", one.model);
    out.field(u"panel", one.panel);
    out.field(u"sound", one.sound);
    out.field(u"texture", one.texture);
    out.field(u"ui_manufacturer", one.manufacturer);
    out.field(u"ui_type", one.type);
    out.field(u"ui_variation", one.variation);
    out.field(u"category", installed.catalogue->category(one.config));
    out.field(u"addonKey", installed.addonKey(one));
    out.field(u"hidden", one.hidden);
}

QString variationLine(World& world, const Installed& installed, const CatalogueVariation& one)
{
    QString line = u"    "_s + one.shownVariation();
    if (!one.title.isEmpty() && !equalNoCase(one.shownVariation(), one.title))
        line += u" - "_s + one.title.toString();
    line += u"  ("_s + shortened(world, installed.catalogue->file(one.config)) + u", "_s +
            one.section.toString();
    if (one.hidden)
        line += u", hidden"_s;
    if (const qint64 key = installed.addonKey(one); key != 0)
        line += u", add-on "_s + QString::number(key);
    return line + u')';
}

int aircraftList(World& world, const Arguments&)
{
    Installed installed;
    if (const Result loaded = load(world, installed); !loaded)
        return world.fail(loaded);
    const Catalogue& catalogue = *installed.catalogue;
    JsonStream& out = world.out();
    out.beginArray();
    for (quint32 number = 0; number < catalogue.variationCount(); ++number) {
        out.beginObject();
        writeVariation(out, installed, catalogue.variation(number));
        out.endObject();
    }
    out.endArray();
    for (const ManufacturerGroup& manufacturer : catalogue.grouped()) {
        world.say(manufacturer.manufacturer);
        for (const AircraftTypeGroup& type : manufacturer.types) {
            world.say(u"  "_s + type.type);
            for (const quint32 number : type.variations)
                world.say(variationLine(world, installed, catalogue.variation(number)));
        }
    }
    if (catalogue.variationCount() == 0)
        world.say(u"No aircraft is installed in "_s + world.context().global.simulatorFolder +
                  u'.');
    for (const CatalogueProblem& problem : catalogue.problems())
        console::error(problem.text + u'\n');
    return Done;
}

// --- show --------------------------------------------------------------------------------------

/// The aircraft.cfg that was named.
std::optional<ConfigIndex>
installedAircraft(World& world, const Catalogue& catalogue, const QString& typed)
{
    const Files& files = world.services().files;
    const QString path = typedConfiguration(world, typed, u"aircraft.cfg"_s);
    const std::optional<ConfigIndex> found = catalogue.find(path);
    if (found || !files.isFile(path))
        return found && catalogue.kind(*found) == Catalogue::Kind::Aircraft ? found : std::nullopt;
    // The same file by another drive.
    const QByteArray host = files.hostPath(path);
    for (const ConfigIndex config : catalogue.configs(Catalogue::Kind::Aircraft)) {
        if (files.hostPath(catalogue.file(config)) == host)
            return config;
    }
    return std::nullopt;
}

QStringList namesOf(const Catalogue& catalogue, ConfigIndex config, RefKind kind)
{
    QStringList names;
    for (const Catalogue::Named& named : catalogue.named(config)) {
        if (named.kind == kind && !names.contains(named.name, Qt::CaseInsensitive))
            names += named.name;
    }
    return names;
}

/// A panel, sound or model of a variation: its file and where its aliases end.
void writePart(World& world,
               const Catalogue& catalogue,
               quint32 number,
               Catalogue::Kind kind,
               const QString& part)
{
    const auto config = catalogue.configOf(number, kind);
    std::optional<ConfigIndex> original = config;
    for (int steps = 0; original && !catalogue.alias(*original).isEmpty(); ++steps)
        original = steps < 16 ? catalogue.aliasTarget(*original) : std::nullopt;
    JsonStream& out = world.out();
    const QString file = config ? catalogue.file(*config) : QString();
    const QString end = original ? catalogue.file(*original) : QString();
    const QString alias = config ? catalogue.alias(*config).toString() : QString();
    out.beginObject(QString(part + u"File"_s));
    out.field(u"file", file);
    out.field(u"alias", alias);
    out.field(u"original", end);
    if (original && kind == Catalogue::Kind::Panel) {
        out.field(u"gauges", namesOf(catalogue, *original, RefKind::Gauge));
        out.field(u"bitmaps", namesOf(catalogue, *original, RefKind::Bitmap));
    }
    if (original && kind == Catalogue::Kind::Sound)
        out.field(u"waves", namesOf(catalogue, *original, RefKind::Wave));
    out.endObject();
    QString line = u"  "_s + part + u": "_s;
    line += config ? shortened(world, file) : u"none"_s;
    if (!alias.isEmpty())
        line += u" -> "_s + (original ? shortened(world, end)
                                      : alias + u" (which leads to no installed file)"_s);
    world.say(line);
}

void showVariation(World& world, const Installed& installed, quint32 number)
{
    const Catalogue& catalogue = *installed.catalogue;
    const CatalogueVariation one = catalogue.variation(number);
    JsonStream& out = world.out();
    const QStringList effects = namesOf(catalogue, one.config, RefKind::Effect);
    out.beginObject();
    writeVariation(out, installed, one);
    out.field(u"ui_typerole", one.typeRole);
    out.field(u"ui_createdby", one.createdBy);
    world.say(one.section.toString() + u": "_s +
              (one.title.isEmpty() ? u"(no title)"_s : one.title.toString()));
    world.say(u"  aircraft: "_s + one.shownManufacturer() + u", "_s + one.shownType() + u", "_s +
              one.shownVariation());
    writePart(world, catalogue, number, Catalogue::Kind::Model, u"model"_s);
    writePart(world, catalogue, number, Catalogue::Kind::Panel, u"panel"_s);
    writePart(world, catalogue, number, Catalogue::Kind::Sound, u"sound"_s);
    out.field(u"effects", effects);
    out.endObject();
    world.say(u"  effects: "_s + (effects.isEmpty() ? u"none"_s : effects.join(u", "_s)));
    if (const qint64 key = installed.addonKey(one); key != 0)
        world.say(u"  add-on: "_s + QString::number(key));
}

int aircraftShow(World& world, const Arguments& arguments)
{
    Installed installed;
    if (const Result loaded = load(world, installed); !loaded)
        return world.fail(loaded);
    const Catalogue& catalogue = *installed.catalogue;
    const QString typed = arguments.one(u"FILE"_s);
    const auto config = installedAircraft(world, catalogue, typed);
    if (!config)
        return world.fail(Result::failure(
            u"'"_s + typed +
            u"' is no aircraft.cfg of an installed aircraft; 'aircraft list' shows them."_s));
    const QString section = arguments.one(u"SECTION"_s);
    QList<quint32> wanted;
    for (const quint32 number : catalogue.variationsOf(*config)) {
        if (section.isEmpty() || equalNoCase(catalogue.variation(number).section, section))
            wanted += number;
    }
    if (wanted.isEmpty()) {
        const QString file = catalogue.file(*config);
        for (const CatalogueProblem& problem : catalogue.problems()) {
            if (problem.file == file)
                return world.fail(Result::failure(problem.text));
        }
        return world.fail(Result::failure(u"'"_s + file + u"' has no section '"_s + section +
                                          u"'; 'aircraft show' without it shows all."_s));
    }
    world.say(catalogue.file(*config));
    world.out().beginArray();
    for (const quint32 number : wanted)
        showVariation(world, installed, number);
    world.out().endArray();
    return Done;
}

} // namespace

std::vector<Command> aircraftCommands()
{
    return {
        {"aircraft list", "installed aircraft and their variations", {}, {}, aircraftList},
        {"aircraft show",
         "what the variations of one aircraft use",
         {{"FILE", "its aircraft.cfg, or the folder that holds it"},
          {"SECTION", "one variation, such as fltsim.0", false}},
         {},
         aircraftShow},
    };
}

} // namespace vt::cli
