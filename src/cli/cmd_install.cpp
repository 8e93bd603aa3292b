// install: the whole installation of one source.
#include "addondb/AddonDatabase.h"
#include "addondb/Connection.h"
#include "cli/AddonKey.h"
#include "cli/InstallArguments.h"
#include "install/InstallationEnd.h"
#include "shell/Flying.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

void tellInstallation(World& world, const InstallationEnd& end, bool again = false)
{
    JsonStream& out = world.out();
    const QString& name = end.record.name;
    out.beginObject();
    out.field(u"key", end.recorded ? end.record.key : qint64(0));
    out.field(u"name", name);
    out.field(u"status", end.recorded ? statusWord(end.record.status) : u"not installed"_s);
    out.key(u"results");
    end.results.write(out);
    if (end.recorded) {
        world.say(u"'"_s + name +
                  (again ? u"' was installed again under the key "_s
                         : u"' was installed under the key "_s) +
                  QString::number(end.record.key) + u'.');
        world.say(again ? reinstallationResultsCaption(name) : installationResultsCaption(name));
    }
    world.say(end.results);
    if (!end.movieToPlay.isEmpty())
        world.say(u"The movie is '"_s + end.movieToPlay + u"'."_s);
}

/// Says whether the simulator was started; the installation stands whatever comes of it.
void tellStart(World& world)
{
    const Result started = startFlying(world.context(), world.processes());
    world.out().field(u"started", started.ok);
    world.say(started.text);
}

/// The exit status, and the sentence that belongs to it.
int statusOf(World& world, const InstallationEnd& end)
{
    if (!end.result)
        return world.fail(end.result);
    world.out().endObject();
    return Done;
}

int runInstall(World& world, const Arguments& arguments)
{
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    const ResultOf<InstallOptions> options = installOptionsOf(world, arguments, true);
    if (!options)
        return world.fail(options.error());
    const QString source = world.userPath(arguments.one(u"SOURCE"_s));
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    if (Result ready = world.needDatabase(); !ready)
        return world.fail(ready);
    CAddonInstallationDetails details(world.context());
    const Result prepared = prepareInstallation(world, details, source, *options, arguments);
    if (!prepared)
        return world.fail(prepared);
    CAddonInstaller installer(world.context(), *world.database(), details);
    installer.setProcesses(&world.processes());
    const bool reached = installer.Install_Begin();
    const InstallationEnd end = InstallationEnd::of(installer, reached);
    tellInstallation(world, end);
    if (reached && options->startSimulator)
        tellStart(world);
    return statusOf(world, end);
}

int runReinstall(World& world, const Arguments& arguments)
{
    const ResultOf<qint64> key = addonKey(arguments.one(u"KEY"_s));
    if (!key)
        return world.fail(key.error());
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    if (Result ready = world.needDatabase(); !ready)
        return world.fail(ready);
    const auto recorded = modDatabase_Addon::addon(*world.database(), *key);
    if (!recorded)
        return world.fail(recorded.kind == ErrorKind::Failed ? unknownAddon(QString::number(*key))
                                                             : recorded.error());
    const QString given =
        arguments.has(u"--from"_s) ? world.userPath(arguments.value(u"--from"_s)) : QString();
    const InstallationEnd end =
        reinstallAddon(world.context(),
                       *world.database(),
                       *key,
                       given,
                       againOptionsOf(world, arguments),
                       [&world] { return isSimulatorRunning(world.context(), world.processes()); });
    if (!end.begun)
        return world.fail(end.result);
    tellInstallation(world, end, true);
    return statusOf(world, end);
}

} // namespace

std::vector<Command> installCommands()
{
    return {{"install",
             "install an add-on from an archive or a folder",
             {{"SOURCE", "archive, folder or file"}},
             installOptionTable(),
             runInstall},
            {"reinstall",
             "install a recorded add-on again, from its source or the File Cabinet",
             {{"KEY", "key of an add-on, as 'list' shows it"}},
             reinstallOptionTable(),
             runReinstall}};
}

} // namespace vt::cli
