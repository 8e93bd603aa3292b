// verify aircraft, panels, sounds, scenery: checks of what is installed; with --repair they are
// mended.
#include "catalogue/Catalogue.h"
#include "cli/Command.h"
#include "platform/WinPath.h"
#include "remove/RepairLists.h"
#include "simconfig/CSceneryCfgMgr.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

void tellDamage(World& world, const BulkOutcome::Damage& damage)
{
    JsonStream& out = world.out();
    out.beginObject();
    out.field(u"title", damage.title);
    out.field(u"file", damage.file);
    out.field(u"problems", damage.problems);
    out.field(u"done", damage.repair.done);
    out.field(u"left", damage.repair.left);
    out.endObject();
}

void sayGroup(World& world, QStringView name, const QStringList& titles)
{
    if (titles.isEmpty())
        return;
    world.say(name.toString() + u':');
    for (const QString& title : titles)
        world.say(u"  "_s + title);
}

void sayLines(World& world, const QString& heading, const QStringList& lines)
{
    if (!lines.isEmpty() && !heading.isEmpty())
        world.say(u"    "_s + heading);
    for (const QString& text : lines) {
        for (const QString& line : text.split(u'\n'))
            world.say(u"    "_s + QString(line).replace(u'\t', u"    "_s));
    }
}

/// The healthy are counted, all others named.
void sayOutcome(World& world, const BulkOutcome& outcome)
{
    world.say(bulkgroup::healthy.toString() + u": "_s + QString::number(outcome.healthy.size()));
    if (!outcome.damaged.isEmpty())
        world.say(bulkgroup::damaged.toString() + u':');
    for (const BulkOutcome::Damage& damage : outcome.damaged) {
        world.say(u"  "_s + damage.title);
        sayLines(world, {}, damage.problems);
        sayLines(world, u"Mended:"_s, damage.repair.done);
        if (!damage.repair.done.isEmpty())
            sayLines(world, u"Still there:"_s, damage.repair.left);
    }
    sayGroup(world, bulkgroup::repaired, outcome.repaired());
    sayGroup(world, bulkgroup::notRepaired, outcome.notRepaired());
    sayGroup(world, bulkgroup::skipped, outcome.skipped);
    if (!outcome.repairing && !outcome.damaged.isEmpty())
        world.say(u"Call again with --repair to mend what can be mended."_s);
}

void tellOutcome(World& world, const BulkOutcome& outcome)
{
    JsonStream& out = world.out();
    out.beginObject();
    out.field(bulkgroup::healthy, outcome.healthy);
    out.beginArray(bulkgroup::damaged);
    for (const BulkOutcome::Damage& damage : outcome.damaged)
        tellDamage(world, damage);
    out.endArray();
    out.field(bulkgroup::repaired, outcome.repaired());
    out.field(bulkgroup::notRepaired, outcome.notRepaired());
    out.field(bulkgroup::skipped, outcome.skipped);
    sayOutcome(world, outcome);
}

/// Runs through the list, tells and reports. What the report could not be saved for is a failure of
/// the call; what was repaired stays.
int runList(World& world, const Arguments& arguments, const BulkList& list)
{
    const BulkOutcome outcome = runBulkRepair(world.context(), list, arguments.has(u"--repair"_s));
    tellOutcome(world, outcome);
    Result saved;
    if (arguments.has(u"--report"_s)) {
        const QString path = world.userPath(arguments.value(u"--report"_s));
        (void)world.userRoot(winpath::parent(path));
        CReporting reporting(world.services(), world.context().settings);
        reporting.ReportStorageFile_SetPath(path);
        saved = reporting.save(outcome.report());
        if (saved) {
            world.out().field(u"report", path);
            world.say(saved.text);
        }
    }
    if (!saved)
        return world.fail(saved);
    if (outcome.cancelled)
        return world.fail(Result::failure(
            u"It was stopped before everything had been looked at; what stands above is done."_s));
    world.out().endObject();
    return outcome.allWell() ? Done : Partly;
}

/// Simulator and database; the lock as well when the call is going to write.
Result enter(World& world, const Arguments& arguments)
{
    if (Result found = world.needSimulator(); !found)
        return found;
    if (arguments.has(u"--repair"_s)) {
        if (Result ready = world.needWriting(); !ready)
            return ready;
    }
    return world.needDatabase();
}

QStringList typedPaths(World& world, const Arguments& arguments)
{
    QStringList paths;
    for (const QString& typed : arguments.all(u"PATH"_s)) {
        const QString path = world.userPath(typed);
        paths.append(path);
        if (!world.services().gate.place(path))
            (void)world.userRoot(world.services().files.isFolder(path) ? path
                                                                       : winpath::parent(path));
    }
    return paths;
}

int verifyFiles(World& world, const Arguments& arguments, ConfigFileKind kind)
{
    if (const Result ready = enter(world, arguments); !ready)
        return world.fail(ready);
    const QStringList paths = typedPaths(world, arguments);
    Catalogue catalogue(world.context().global);
    if (paths.isEmpty())
        catalogue.open(world.services());
    const ResultOf<QStringList> files =
        filesToVerify(world.services().files, catalogue, kind, paths);
    if (!files)
        return world.fail(files.error());
    const int status =
        runList(world, arguments, repairList(world.context(), world.database(), kind, *files));
    // What was repaired is read again at the next call; all the rest need not be.
    if (paths.isEmpty() && arguments.has(u"--repair"_s))
        (void)catalogue.save(world.services());
    return status;
}

int verifyAircraft(World& world, const Arguments& arguments)
{
    return verifyFiles(world, arguments, ConfigFileKind::Aircraft);
}

int verifyPanels(World& world, const Arguments& arguments)
{
    return verifyFiles(world, arguments, ConfigFileKind::Panel);
}

int verifySounds(World& world, const Arguments& arguments)
{
    return verifyFiles(world, arguments, ConfigFileKind::Sound);
}

int verifyScenery(World& world, const Arguments& arguments)
{
    if (const Result found = world.needSimulator(); !found)
        return world.fail(found);
    const GlobalRecord& global = world.context().global;
    CSceneryCfgMgr library(
        ConfigAccess(world.services()), global.sceneryCfgFile, global.simulatorFolder);
    if (const Result loaded = library.SceneryCfg_Load(); !loaded)
        return world.fail(loaded);
    QList<qsizetype> areas;
    const QStringList paths = arguments.all(u"PATH"_s);
    for (const QString& typed : paths) {
        const QList<qsizetype> named = library.areasOfFolder(world.userPath(typed));
        if (named.isEmpty())
            return world.fail(Result::failure(u"There is no scenery area for '"_s +
                                              world.userPath(typed) + u"'."_s));
        areas += named;
    }
    for (qsizetype i = 0; paths.isEmpty() && i < library.areas().size(); ++i)
        areas.append(i);
    return runList(world, arguments, sceneryList(world.context(), library, areas));
}

} // namespace

std::vector<Command> verifyCommands()
{
    const Positional path{
        "PATH", "configuration file, or a folder that holds some (default: all)", false, true};
    const std::vector<Option> options = {
        {"--repair", nullptr, "mend what can be mended; backups are kept"},
        {"--report", "FILE", "save a report: .htm or .html as a page, else text"}};
    return {
        {"verify aircraft",
         "checks every variation of aircraft configurations",
         {path},
         options,
         verifyAircraft},
        {"verify panels", "checks panel configurations", {path}, options, verifyPanels},
        {"verify sounds", "checks sound configurations", {path}, options, verifySounds},
        {"verify scenery",
         "checks the areas of the scenery library",
         {{"PATH", "folder of an area (default: all)", false, true}},
         options,
         verifyScenery},
    };
}

} // namespace vt::cli
