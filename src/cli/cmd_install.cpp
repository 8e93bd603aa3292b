// install: the whole installation of one source.
#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "cli/AddonKey.h"
#include "cli/InstallArguments.h"
#include "install/CAddonInstaller.h"
#include "shell/Flying.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

void tellInstallation(World& world,
                      const CAddonInstaller& installer,
                      bool recorded,
                      bool again = false)
{
    JsonStream& out = world.out();
    out.beginObject();
    out.field(u"key", recorded ? installer.masterKey() : qint64(0));
    out.field(u"name", installer.record().name);
    out.field(u"status", recorded ? statusWord(installer.record().status) : u"not installed"_s);
    out.key(u"results");
    installer.results().write(out);
    const QString& name = installer.record().name;
    if (recorded)
        world.say(u"'"_s + name +
                  (again ? u"' was installed again under the key "_s
                         : u"' was installed under the key "_s) +
                  QString::number(installer.masterKey()) + u'.');
    if (recorded)
        world.say(again ? reinstallationResultsCaption(name) : installationResultsCaption(name));
    world.say(installer.results());
    if (!installer.movieToPlay().isEmpty())
        world.say(u"The movie is '"_s + installer.movieToPlay() + u"'."_s);
}

/// Says whether the simulator was started; the installation stands whatever comes of it.
void tellStart(World& world)
{
    const Result started = startFlying(world.context(), world.processes());
    world.out().field(u"started", started.ok);
    world.say(started.text);
}

/// The exit status, and the sentence that belongs to it.
int statusOf(World& world, const CAddonInstaller& installer)
{
    if (Result outcome = installer.outcome(); !outcome)
        return world.fail(outcome);
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
    if (Result prepared = details.prepare(source, *options); !prepared)
        return world.fail(prepared);
    CAddonInstaller installer(world.context(), *world.database(), details);
    installer.setProcesses(&world.processes());
    const bool reached = installer.Install_Begin();
    tellInstallation(world, installer, reached);
    if (reached && options->startSimulator)
        tellStart(world);
    return statusOf(world, installer);
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
    ResultOf<RecordedAddon> recorded = RecordedAddon::load(*world.database(), *key);
    if (!recorded)
        return world.fail(recorded.kind == ErrorKind::Failed ? unknownAddon(QString::number(*key))
                                                             : recorded.error());
    const QString given =
        arguments.has(u"--from"_s) ? world.userPath(arguments.value(u"--from"_s)) : QString();
    const ResultOf<QString> source = reinstallationSource(world.context(), *recorded, given);
    if (!source)
        return world.fail(source.error());
    CAddonInstallationDetails details(world.context());
    if (Result prepared =
            details.prepareAgain(*recorded, *source, againOptionsOf(world, arguments));
        !prepared)
        return world.fail(prepared);
    CAddonInstaller installer(world.context(), *world.database(), details);
    installer.simulatorIsRunning = [&world] {
        return isSimulatorRunning(world.context(), world.processes());
    };
    const bool reached = installer.Reinstall_Begin();
    tellInstallation(world, installer, reached, true);
    return statusOf(world, installer);
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
