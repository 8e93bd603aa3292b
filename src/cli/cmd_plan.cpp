// classify and plan: what a file is, and what an installation would do. Both only read.
#include "addondb/AddonDatabase.h"
#include "cli/InstallArguments.h"
#include "install/CAddonInstallationDetails.h"
#include "shell/JsonStream.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

int runClassify(World& world, const Arguments& arguments)
{
    JsonStream& out = world.out();
    out.beginArray();
    for (const QString& name : arguments.all(u"NAME"_s)) {
        const qsizetype cut = qMax(name.lastIndexOf(u'\\'), name.lastIndexOf(u'/'));
        const FileType type =
            classify(QStringView(name).sliced(cut + 1), world.context().global.generation);
        out.beginObject();
        out.field(u"name", name);
        out.field(u"code", int(type));
        out.field(u"type", fileTypeName(type));
        out.field(u"families", familyNames(familiesOf(type)));
        out.endObject();
        world.say(name + u": "_s + fileTypeName(type) + u" ("_s + QString::number(int(type)) +
                  u')');
    }
    out.endArray();
    return Done;
}

QString sourceWord(const AddonSource& source)
{
    return sourceTypeWord(source.type());
}

void writeItem(JsonStream& out,
               const CAddon_Item& item,
               const CAddonInstallationDetails& details,
               const QSet<QString>& closed)
{
    const QString archive = item.GetAssociatedZipFileItemDetails(details.addon()).name;
    out.beginObject();
    out.field(u"key", item.lngKey);
    out.field(u"name", item.sName);
    out.field(u"folder", item.sFolder_Current);
    out.field(u"archive", archive);
    out.field(u"code", int(item.enumAddonFileType));
    out.field(u"type", fileTypeName(item.enumAddonFileType));
    out.field(u"families", familyNames(familiesOf(item.enumAddonFileType)));
    out.field(u"group", mappedGroupName(item.enumMappedGroup));
    out.field(u"size", item.size);
    out.field(u"install", details.willBePlaced(item, closed));
    out.field(u"targetFolder", item.sFolder_Installation);
    out.field(u"targetName", item.sName_Installation);
    out.field(u"follows", item.lngKey_AssociatedItem);
    out.field(u"exists", item.boolTargetExists);
    out.endObject();
}

void writeDecisions(JsonStream& out, const PlanFacts& facts)
{
    out.beginArray(u"variants");
    for (const PlannedVariant& variant : facts.variants()) {
        out.beginObject();
        out.field(u"title", variant.title);
        out.field(u"variation", variant.variation);
        out.field(u"texture", variant.texture);
        out.field(u"aircraft", variant.aircraft);
        out.field(u"file", variant.file);
        out.endObject();
    }
    out.endArray();
    out.beginArray(u"sceneryAreas");
    for (const SceneryAreaToAdd& area : facts.sceneryAreas()) {
        out.beginObject();
        out.field(u"title", area.title);
        out.field(u"folder", area.folder);
        out.endObject();
    }
    out.endArray();
    out.beginArray(u"configChanges");
    for (const ConfigChange& change : facts.configChanges()) {
        out.beginObject();
        out.field(u"file", change.file);
        out.field(u"added", change.lines.added);
        out.field(u"removed", change.lines.removed);
        out.endObject();
    }
    out.endArray();
}

void writeProblems(JsonStream& out,
                   const CAddonInstallationDetails& details,
                   const QList<PlanProblem>& problems)
{
    out.beginArray(u"problems");
    for (const PlanProblem& problem : problems) {
        const CAddon_Item* item = details.addon().Search(problem.item);
        out.beginObject();
        out.key(u"item");
        if (item)
            out.value(item->lngKey);
        else
            out.null();
        out.field(u"name", item ? item->sFolder_Current + item->sName : QString());
        out.field(u"text", problem.text);
        out.field(u"blocks", problem.blocks);
        out.endObject();
    }
    out.endArray();
}

void writePlan(JsonStream& out, const CAddonInstallationDetails& details, const PlanFacts& facts)
{
    const CAddon_ItemGroup& addon = details.addon();
    out.beginObject();
    out.beginObject(u"addon");
    out.field(u"name", addon.sGroupName);
    out.field(u"description", addon.sGroupDescription);
    out.field(u"authors", addon.sAuthors);
    out.field(u"rating", addon.lngRating);
    out.endObject();
    out.beginObject(u"source");
    out.field(u"path", details.source().path());
    out.field(u"type", sourceWord(details.source()));
    out.field(u"bytes", details.source().bytes());
    out.field(u"files", details.source().files());
    out.endObject();
    out.beginArray(u"items");
    const QSet<QString> closed = details.closedFolders();
    for (const CAddon_Item& item : addon.colAddonItems())
        writeItem(out, item, details, closed);
    out.endArray();
    writeDecisions(out, facts);
    writeProblems(out, details, facts.problems);
    out.field(u"eliminatedDuplicates", addon.Array_sarrayEliminatedDuplicateItems_Get());
    out.field(u"bytesNeeded", details.bytesNeeded());
    out.field(u"bytesFree", details.bytesFree());
    out.endObject();
}

/// "C:\...\Effects\fx_a.fx  (replaces the existing file)" and its like.
QString targetLine(const CAddon_Item& item,
                   const CAddonInstallationDetails& details,
                   const QSet<QString>& closed)
{
    if (!details.willBePlaced(item, closed))
        return plantext::installWord(false);
    if (item.sFolder_Installation.isEmpty())
        return plantext::notSelected();
    return item.sFolder_Installation + item.sName_Installation +
           (item.lngKey_AssociatedItem > 0
                ? u"  ("_s + plantext::sameFolderAsItem() + u" '"_s +
                      item.GetAssociatedFileItemDetails(details.addon()).name + u"')"_s
                : QString()) +
           (item.boolTargetExists ? u"  (a file stands there already)"_s : QString());
}

void sayPlan(World& world, const CAddonInstallationDetails& details, const PlanFacts& facts)
{
    const CAddon_ItemGroup& addon = details.addon();
    world.say(u"Add-on: "_s + addon.sGroupName);
    const QSet<QString> closed = details.closedFolders();
    for (const CAddon_Item& item : addon.colAddonItems())
        world.say(u"  "_s + item.sFolder_Current + item.sName + u" -> "_s +
                  targetLine(item, details, closed));
    for (const SceneryAreaToAdd& area : facts.sceneryAreas())
        world.say(u"New scenery area '"_s + area.title + u"': "_s + area.folder);
    for (const PlannedVariant& variant : facts.variants())
        world.say(u"Aircraft variation '"_s + variant.title + u"', texture "_s + variant.texture);
    for (const PlanProblem& problem : facts.problems)
        world.say(u"Problem: "_s + problem.sentence(addon));
}

int runPlan(World& world, const Arguments& arguments)
{
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    ResultOf<InstallOptions> options = installOptionsOf(world, arguments, false);
    if (!options)
        return world.fail(options.error());
    // A database that cannot be read is the installation's matter.
    if (world.needDatabase() && world.database()) {
        if (const auto key = modDatabase_Addon::nextMasterKey(*world.database()))
            options->masterKey = *key;
    } else {
        options->masterKey = 1;
    }
    CAddonInstallationDetails details(world.context());
    const QString source = world.userPath(arguments.one(u"SOURCE"_s));
    const Result prepared = prepareInstallation(world, details, source, *options, arguments);
    if (!prepared)
        return world.fail(prepared);
    const PlanFacts facts = details.facts();
    if (world.options().json)
        writePlan(world.out(), details, facts);
    else
        sayPlan(world, details, facts);
    return Done;
}

} // namespace

std::vector<Command> planCommands()
{
    return {
        {"classify",
         "tell the file type of each name",
         {{"NAME", "a file name, with or without its folder", true, true}},
         {},
         runClassify},
        {"plan",
         "show what an installation would do, without writing anything",
         {{"SOURCE", "archive, folder or file"}},
         installOptionTable(),
         runPlan},
    };
}

} // namespace vt::cli
