// remove: takes recorded add-ons out of the simulator again, one after the other, or moves them to
// the File Cabinet or a folder. copy: leaves them as they are.
#include "addondb/AddonDatabase.h"
#include "cli/AddonKey.h"
#include "cli/Command.h"
#include "cli/TypedFile.h"
#include "platform/WinPath.h"
#include "remove/AddonRemoval.h"
#include "remove/CAddonRemover.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSound.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

/// Of an option that names a sound or panel; empty when it is not given.
ResultOf<QString> insteadOf(World& world,
                            const Arguments& arguments,
                            const QString& option,
                            const AliasConfig& part,
                            aliastarget::Kind kind)
{
    if (!arguments.has(option))
        return QString();
    const QString typed = arguments.value(option);
    const QString alias = typedAlias(world, part, kind, typed);
    if (alias.trimmed().isEmpty())
        return Result::failure(u"'"_s + typed + u"' of "_s + option +
                                   u" does not lie in the simulator's folder."_s,
                               ErrorKind::Usage);
    return alias;
}

RemovalMethod methodOf(const QString& word)
{
    return word == u"cabinet"    ? RemovalMethod::FileCabinet
           : word == u"recreate" ? RemovalMethod::Recreate
           : word == u"records"  ? RemovalMethod::RemoveRecords
                                 : RemovalMethod::Delete;
}

/// A recorded file as typed: a path, also one from the simulator's folder.
QString typedInstalled(World& world, const QString& typed)
{
    const QString path = world.userPath(typed);
    if (winpath::isAbsolute(typed) || typed.startsWith(u'/') || world.services().files.exists(path))
        return path;
    return winpath::join(world.context().global.simulatorFolder, winpath::normalised(typed));
}

/// Where the files go; the folder is one that this call may write below.
Result takeFolder(World& world, const Arguments& arguments, RemovalOptions& options)
{
    const bool needed =
        options.method == RemovalMethod::Recreate || options.method == RemovalMethod::Copy;
    options.zip = arguments.has(u"--zip"_s);
    if (needed && !arguments.has(u"--to"_s))
        return Result::failure(u"Name the folder that the files go to: --to DIR."_s,
                               ErrorKind::Usage);
    if (!needed && (arguments.has(u"--to"_s) || options.zip))
        return Result::failure(u"--to and --zip belong to --method recreate."_s, ErrorKind::Usage);
    if (needed)
        options.toFolder = world.userRoot(arguments.value(u"--to"_s));
    return Result::success();
}

ResultOf<RemovalOptions> optionsOf(World& world, const Arguments& arguments)
{
    RemovalOptions options;
    options.method = methodOf(arguments.value(u"--method"_s));
    if (Result taken = takeFolder(world, arguments, options); !taken)
        return taken;
    for (const QString& typed : arguments.values(u"--file"_s))
        options.files.append(typedInstalled(world, typed));
    if (!options.files.isEmpty() && arguments.all(u"KEY"_s).size() > 1)
        return Result::failure(u"--file names files of one add-on; name its key alone."_s,
                               ErrorKind::Usage);
    const ConfigAccess access(world.services());
    const Files& files = world.services().files;
    const GlobalRecord& global = world.context().global;
    const ResultOf<QString> sound = insteadOf(world,
                                              arguments,
                                              u"--sound-instead"_s,
                                              CSound(access, files, global),
                                              aliastarget::Kind::Sound);
    const ResultOf<QString> panel = insteadOf(world,
                                              arguments,
                                              u"--panel-instead"_s,
                                              CPanel(access, files, global),
                                              aliastarget::Kind::Panel);
    if (!sound)
        return sound.error();
    if (!panel)
        return panel.error();
    options.soundInstead = *sound;
    options.panelInstead = *panel;
    return options;
}

/// One element of the document; the exit status that belongs to it.
int removeOne(World& world, const ResultOf<qint64>& key, const RemovalOptions& options)
{
    JsonStream& out = world.out();
    out.beginObject();
    Result failure = key.error();
    out.field(u"key", key ? *key : 0);
    if (key) {
        const auto recorded = modDatabase_Addon::addon(*world.database(), *key);
        if (!recorded && recorded.kind == ErrorKind::Failed)
            failure = unknownAddon(QString::number(*key));
    }
    if (failure) {
        const RemovedAddon removed = removeAddon(world.context(), *world.database(), *key, options);
        failure = removed.result;
        out.field(u"name", removed.name);
        out.field(u"ok", failure.ok);
        out.key(u"results");
        removed.results.write(out);
        out.field(u"target", removed.target);
        if (removed.ended)
            world.say(removalActionText(options.method, removed.target));
        world.say(removalResultsCaption(removed.name));
        world.say(removed.results);
    } else {
        out.field(u"name", QString());
        out.field(u"ok", false);
        out.key(u"results");
        Results::forRemoval().write(out);
    }
    const int status = failure ? Done : world.failElement(failure);
    out.endObject();
    return status;
}

int runRemove(World& world, const Arguments& arguments)
{
    QList<ResultOf<qint64>> keys;
    for (const QString& typed : arguments.all(u"KEY"_s)) {
        keys.push_back(addonKey(typed));
        // Nothing is removed by a command that was mistyped.
        if (!keys.constLast() && keys.constLast().kind == ErrorKind::Usage)
            return world.fail(keys.constLast().error());
    }
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    const ResultOf<RemovalOptions> options = optionsOf(world, arguments);
    if (!options)
        return world.fail(options.error());
    int status = Done;
    world.out().beginArray();
    for (const ResultOf<qint64>& key : std::as_const(keys))
        status = std::max(status, removeOne(world, key, *options));
    world.out().endArray();
    return status;
}

int runCopy(World& world, const Arguments& arguments)
{
    const ResultOf<qint64> key = addonKey(arguments.one(u"KEY"_s));
    if (!key && key.kind == ErrorKind::Usage)
        return world.fail(key.error());
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    RemovalOptions options;
    options.method = RemovalMethod::Copy;
    if (Result taken = takeFolder(world, arguments, options); !taken)
        return world.fail(taken);
    world.out().beginArray();
    const int status = removeOne(world, key, options);
    world.out().endArray();
    return status;
}

} // namespace

std::vector<Command> removeCommands()
{
    return {{"copy",
             "copy an add-on's files to a folder, leaving it installed",
             {{"KEY", "key of an add-on, as 'list' shows it"}},
             {{"--to", "DIR", "folder that gets a folder of the add-on"},
              {"--zip", nullptr, "a zip file in that folder instead"}},
             runCopy},
            {"remove",
             "remove add-ons, putting back what they had replaced",
             {{"KEY", "key of an add-on, as 'list' shows it", true, true}},
             {{"--method",
               "METHOD",
               "what happens to the files",
               false,
               {"delete", "cabinet", "recreate", "records"}},
              {"--to", "DIR", "folder that gets a folder of the add-on (recreate)"},
              {"--zip", nullptr, "a zip file in that folder instead (recreate)"},
              {"--file", "PATH", "only this file of the add-on; repeatable", true},
              {"--sound-instead", "PATH", "sound for aircraft that use one of the add-on's"},
              {"--panel-instead", "PATH", "panel for aircraft that use one of the add-on's"}},
             runRemove}};
}

} // namespace vt::cli
