// configs list, create, remove, rename, describe, switch, use-once: the simulator's configuration
// file and its alternatives; fly: the simulator itself.
#include "cli/Command.h"
#include "platform/WinPath.h"
#include "shell/Flying.h"
#include "simconfig/CFSCFGManager.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

/// The list of the located simulator's files; under the lock when it is to be changed.
Result openConfigs(World& world, bool writes, std::optional<CFSCFGManager>& configs)
{
    if (writes) {
        if (Result ready = world.needWriting(); !ready)
            return ready;
    }
    if (Result found = world.needSimulator(); !found)
        return found;
    configs.emplace(world.context(), world.processes());
    return configs->GetFSCFGFiles();
}

int tellConfigs(World& world, const CFSCFGManager& configs)
{
    JsonStream& out = world.out();
    out.beginArray();
    for (const CFSCFGFile& file : configs.files()) {
        out.beginObject();
        out.field(u"name", file.sName);
        out.field(u"path", file.sPath);
        out.field(u"primary", file.boolPrimary);
        out.field(u"description", file.sDescription);
        out.field(u"defaultFlight", file.sDefaultFlight);
        out.field(u"flightFile", configs.flightFile(file.sDefaultFlight));
        out.field(u"menuHidden", file.boolMenuHidden);
        out.endObject();
    }
    out.endArray();
    return Done;
}

int listConfigs(World& world, const Arguments&)
{
    std::optional<CFSCFGManager> configs;
    const Result opened = openConfigs(world, false, configs);
    if (!opened)
        return world.fail(opened);
    if (!opened.text.isEmpty())
        world.say(opened.text);
    for (const CFSCFGFile& file : configs->files())
        world.say((file.boolPrimary ? u"* "_s : u"  "_s) + file.sName +
                  (file.sDescription.isEmpty() ? QString() : u": "_s + file.sDescription) +
                  u" ("_s + file.sDefaultFlight + u")"_s);
    return tellConfigs(world, *configs);
}

/// A file may be typed without its ".cfg", and with the folder that 'configs list' shows.
QString typedName(const CFSCFGManager& configs, const QString& typed)
{
    const QString folder = winpath::parent(configs.GetPrimaryFSCFGFilespec());
    const QString name =
        winpath::same(winpath::parent(typed), folder) ? winpath::name(typed) : typed;
    for (const QString& candidate : {name, name + u".cfg"_s}) {
        if (const qsizetype index = configs.indexOf(candidate); index >= 0)
            return configs.files().at(index).sName;
    }
    return winpath::extension(name).isEmpty() ? name + u".cfg"_s : name;
}

/// Opens the list, does the one thing, tells its result and the list as it then is.
template <typename Change> int changeConfigs(World& world, bool writes, Change change)
{
    std::optional<CFSCFGManager> configs;
    if (const Result opened = openConfigs(world, writes, configs); !opened)
        return world.fail(opened);
    const Result changed = change(*configs);
    if (!changed)
        return world.fail(changed);
    world.say(changed.text);
    if (const Result listed = configs->GetFSCFGFiles(); !listed)
        return world.fail(listed);
    return tellConfigs(world, *configs);
}

int createConfig(World& world, const Arguments& arguments)
{
    return changeConfigs(world, true, [&](CFSCFGManager& configs) {
        const QString typed = arguments.one(u"NAME"_s);
        return configs.CreateNewFSCFGFile(typed.isEmpty() ? configs.proposedName() : typed,
                                          arguments.value(u"--description"_s));
    });
}

int removeConfig(World& world, const Arguments& arguments)
{
    return changeConfigs(world, true, [&](CFSCFGManager& configs) {
        return configs.RemoveFSCFGFile(typedName(configs, arguments.one(u"NAME"_s)));
    });
}

int renameConfig(World& world, const Arguments& arguments)
{
    return changeConfigs(world, true, [&](CFSCFGManager& configs) {
        const QString name = typedName(configs, arguments.one(u"NAME"_s));
        return arguments.positionals.contains(u"NEW"_s)
                   ? configs.RenameFSCFGFile(name, arguments.one(u"NEW"_s))
                   : configs.RenameFSCFGFile(name);
    });
}

int describeConfig(World& world, const Arguments& arguments)
{
    return changeConfigs(world, true, [&](CFSCFGManager& configs) {
        const QString name = typedName(configs, arguments.one(u"NAME"_s));
        const qsizetype index = configs.indexOf(name);
        if (index < 0) // fails, and says why
            return configs.UpdateFSCFGFileDescription(name, QString());
        configs.setDescription(index, arguments.one(u"TEXT"_s));
        return configs.SaveFSCFGFiles();
    });
}

int switchConfig(World& world, const Arguments& arguments)
{
    return changeConfigs(world, true, [&](CFSCFGManager& configs) {
        return configs.SwitchToFSCFGFile(typedName(configs, arguments.one(u"NAME"_s)));
    });
}

int useConfigOnce(World& world, const Arguments& arguments)
{
    return changeConfigs(world, false, [&](CFSCFGManager& configs) {
        return configs.UseFSCFGFileOnce(typedName(configs, arguments.one(u"NAME"_s)));
    });
}

int fly(World& world, const Arguments& arguments)
{
    const auto refused = [&](const Result& why) {
        return world.fail(why, {{u"ok"_s, false}, {u"text"_s, why.text}});
    };
    if (const Result found = world.needSimulator(); !found)
        return refused(found);
    const QString typed = arguments.one(u"FILE"_s);
    const Result started = startFlying(
        world.context(), world.processes(), typed.isEmpty() ? QString() : world.userPath(typed));
    if (!started)
        return refused(started);
    world.json(QJsonObject{{u"ok"_s, true}, {u"text"_s, started.text}});
    world.say(started.text);
    return Done;
}

} // namespace

std::vector<Command> configCommands()
{
    const Positional name{"NAME", "name of the file, as 'configs list' shows it"};
    return {
        {"configs list", "the simulator's configuration files", {}, {}, listConfigs},
        {"configs create",
         "copies the primary file to a new one",
         {{"NAME", "name of the new file", false}},
         {{"--description", "T", "description of the new file"}},
         createConfig},
        {"configs remove", "deletes an alternative file", {name}, {}, removeConfig},
        {"configs rename",
         "gives an alternative file another name",
         {name, {"NEW", "new name, with the same ending; asked for when left out", false}},
         {},
         renameConfig},
        {"configs describe",
         "sets the description of a file",
         {name, {"TEXT", "the description"}},
         {},
         describeConfig},
        {"configs switch", "makes a file the primary one", {name}, {}, switchConfig},
        {"configs use-once", "starts the simulator with a file", {name}, {}, useConfigOnce},
        {"fly",
         "starts the simulator",
         {{"FILE", "what the simulator is to open", false}},
         {},
         fly},
    };
}

} // namespace vt::cli
