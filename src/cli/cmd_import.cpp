// import: records add-ons that reached the simulator without this program.
#include "cli/Command.h"
#include "import/CAddonImportMgr.h"
#include "platform/Text.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

struct FamilyOption
{
    const char16_t* word;
    bool ImportOptions::*member;
};

constexpr FamilyOption familyOptions[] = {
    {u"aircraft", &ImportOptions::chkImportAircraft},
    {u"panels", &ImportOptions::chkImportPanels},
    {u"sounds", &ImportOptions::chkImportSounds},
    {u"scenery", &ImportOptions::chkImportScenery},
    {u"missions", &ImportOptions::chkImportMissions},
};

/// Only the families of the list, separated by commas.
Result chooseFamilies(const QString& typed, ImportOptions& options)
{
    for (const FamilyOption& family : familyOptions)
        options.*family.member = false;
    for (const QString& word : typed.split(u',', Qt::SkipEmptyParts)) {
        bool known = false;
        for (const FamilyOption& family : familyOptions) {
            if (equalNoCase(word.trimmed(), QStringView(family.word)))
                known = options.*family.member = true;
        }
        if (!known)
            return Result::failure(
                u"There is no family '"_s + word +
                    u"'; the families are: aircraft, panels, sounds, scenery, missions."_s,
                ErrorKind::Usage);
    }
    return Result::success();
}

void tellGroup(World& world, const ImportGroup& group, bool dryRun)
{
    JsonStream& out = world.out();
    const qint64 files = qint64(group.addon.colAddonItems().size());
    out.beginObject();
    out.field(u"name", group.addon.sGroupName);
    out.field(u"family", importFamilyWord(group.family));
    out.field(u"files", files);
    out.field(u"imported", group.imported);
    out.field(u"folder", group.folder);
    out.field(u"original", group.addon.boolOriginal_Addon);
    out.field(u"authors", group.addon.sAuthors);
    out.field(u"key", group.addon.lngKey);
    out.endObject();
    if (dryRun)
        world.say(importFamilyWord(group.family).leftJustified(9) + group.addon.sGroupName +
                  u"  ("_s + countText(files, u"file"_s, u"files"_s) + u", "_s + group.folder +
                  (group.boolProcess ? u")"_s : u"; imported before)"_s));
}

int runImport(World& world, const Arguments& arguments)
{
    const bool dryRun = arguments.has(u"--dry-run"_s);
    ImportOptions families;
    if (arguments.has(u"--families"_s)) {
        if (Result chosen = chooseFamilies(arguments.value(u"--families"_s), families); !chosen)
            return world.fail(chosen);
    }
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    if (Result ready = dryRun ? world.needDatabase() : world.needWriting(); !ready)
        return world.fail(ready);
    CAddonImportMgr manager(world.context(), world.catalogue(), world.database());
    if (arguments.has(u"--families"_s)) {
        for (const FamilyOption& family : familyOptions)
            manager.options.*family.member = families.*family.member;
    }
    if (arguments.has(u"--new-only"_s))
        manager.options.chkDoNotImportPreviouslyImportedAddons = true;
    if (Result found = manager.Addons_Import_GatherAddons(); !found)
        return world.fail(found);
    const bool any = std::any_of(manager.groups().cbegin(),
                                 manager.groups().cend(),
                                 [](const ImportGroup& group) { return group.boolProcess; });
    Result done;
    if (!dryRun && any)
        done = manager.Addon_Install_ImportGroups(world.processes());
    else if (!any)
        world.say(u"No groups to import."_s);

    JsonStream& out = world.out();
    out.beginObject();
    out.beginArray(u"groups");
    for (const ImportGroup& group : manager.groups())
        tellGroup(world, group, dryRun);
    out.endArray();
    out.field(u"remarks", manager.remarks());
    for (const QString& remark : manager.remarks())
        world.say(remark);
    if (!manager.results().empty())
        world.say(u"Import Results"_s);
    world.say(manager.results());
    for (const ImportGroup& group : manager.groups()) {
        if (done && !group.cause.isEmpty())
            done = Result::failure(group.cause);
    }
    if (!done)
        return world.fail(done);
    out.endObject();
    return Done;
}

} // namespace

std::vector<Command> importCommands()
{
    return {{"import",
             "record add-ons that are installed already",
             {},
             {{"--dry-run", nullptr, "only show what would be recorded"},
              {"--families",
               "LIST",
               "of aircraft, panels, sounds, scenery, missions; separated by commas"},
              {"--new-only", nullptr, "leave out what was imported before"}},
             runImport}};
}

} // namespace vt::cli
