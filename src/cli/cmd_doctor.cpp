// doctor: what start-up does, told: the program folder, the simulator, the database, interrupted
// work, outside tools.
#include "addondb/Connection.h"
#include "catalogue/Catalogue.h"
#include "cli/Command.h"
#include "platform/Gate.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"
#include "traffic/OutsideTool.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

void tellSimulator(World& world)
{
    const LocatedSimulator& located = world.located();
    JsonStream& out = world.out();
    out.beginObject(u"simulator");
    out.field(u"folder", located.chosen.folder);
    out.field(u"generation", located.generation);
    out.field(u"valid", located.valid());
    out.field(u"code", located.chosen.validation.code);
    out.field(u"foundBy", located.chosen.foundBy);
    out.endObject();
    const QString folder = located.chosen.folder.isEmpty() ? u"none"_s : located.chosen.folder;
    world.say(u"Simulator:      "_s + folder +
              (located.valid() ? u" (valid, by "_s + located.chosen.foundBy + u")"_s
               : located.chosen.folder.isEmpty()
                   ? QString()
                   : u" (not valid: "_s +
                         validationCause(located.chosen.validation, located.generation) + u")"_s));
}

/// False when the database is not usable; \a why then says so.
void tellDatabase(World& world, const Result& opened)
{
    const QString path = world.context().global.databaseFile;
    const std::optional<FileInfo> info = world.services().files.info(path);
    JsonStream& out = world.out();
    out.beginObject(u"database");
    out.field(u"path", path);
    out.field(u"ok", opened.ok);
    out.field(u"bytes", info ? info->size : 0);
    out.field(u"structure", world.database() ? world.database()->structure() : 0);
    out.endObject();
    world.say(u"Database:       "_s + path +
              (opened.ok ? u" (sound)"_s : u" ("_s + opened.text + u")"_s));
}

void tellInterrupted(World& world)
{
    JsonStream& out = world.out();
    out.beginArray(u"interrupted");
    for (const Recovery& recovery : world.recoveries()) {
        const JournalOperation& operation = recovery.operation;
        out.beginObject();
        out.field(u"name", operation.label);
        out.field(u"kind", operationWord(operation.kind));
        out.field(u"outcome", recovery.outcome);
        out.field(u"texts", recovery.texts);
        out.endObject();
        world.say(u"Interrupted:    the "_s + operationWord(operation.kind) + u" of '"_s +
                  operation.label + u"' was "_s + recovery.outcome);
        for (const QString& text : recovery.texts)
            world.say(u"                "_s + text);
    }
    out.endArray();
}

void tellTool(World& world, QStringView key, const QString& title, const OutsideTool& tool)
{
    Context& context = world.context();
    const QString wanted = winpath::asFolder(context.settings.text(tool.setting));
    const QString found = outsidetool::find(context, tool);
    const QString folder = found.isEmpty() ? wanted : found;
    const Result whole = found.isEmpty() ? Result::failure(u"missing"_s)
                                         : outsidetool::check(world.services().files, tool, found);
    JsonStream& out = world.out();
    out.beginObject(key);
    out.field(u"folder", folder);
    out.field(u"found", whole.ok);
    if (!folder.isEmpty() && !whole)
        out.field(u"problem", whole.text);
    out.endObject();
    world.say(title + (folder.isEmpty()
                           ? u"not set"_s
                           : folder + (whole ? QString() : u" ("_s + whole.text + u')')));
}

void tellTools(World& world)
{
    JsonStream& out = world.out();
    const QString launcher = QStandardPaths::findExecutable(u"wine"_s);
    out.beginObject(u"tools");
    out.beginObject(u"launcher");
    out.field(u"path", launcher);
    out.field(u"found", !launcher.isEmpty());
    out.endObject();
    world.say(u"Launcher:       "_s + (launcher.isEmpty() ? u"'wine' was not found"_s : launcher));
    tellTool(world, u"trafficTools", u"Traffic Tools:  "_s, CTrafficTools::tool(world.context()));
    tellTool(world, u"airportEditor", u"Airport editor: "_s, CAFCAD::tool(world.context()));
    out.endObject();
}

/// Folders of the simulator that stand there twice, spelled differently.
void tellTwins(World& world)
{
    JsonStream& out = world.out();
    out.beginArray(u"twins");
    const GlobalRecord& global = world.context().global;
    if (world.located().valid()) {
        for (const QString& folder : {global.simulatorFolder, global.simObjectsFolder}) {
            for (const QStringList& names : world.services().files.twins(folder)) {
                out.beginObject();
                out.field(u"folder", folder);
                out.field(u"names", names);
                out.endObject();
                world.say(u"Twins:          '"_s + names.join(u"', '"_s) + u"' in '"_s + folder +
                          u"' differ only in case"_s);
            }
        }
    }
    out.endArray();
}

/// What is installed, looked up now so that later calls need not.
void tellAircraft(World& world)
{
    if (!world.located().valid())
        return;
    const Catalogue& catalogue = world.catalogue();
    const qsizetype aircraft = catalogue.configs(Catalogue::Kind::Aircraft).size();
    JsonStream& out = world.out();
    out.beginObject(u"aircraft");
    out.field(u"files", aircraft);
    out.field(u"variations", catalogue.variationCount());
    out.beginArray(u"problems");
    world.say(u"Aircraft:       "_s + QString::number(aircraft) + u" with "_s +
              QString::number(catalogue.variationCount()) + u" variations"_s);
    for (const CatalogueProblem& problem : catalogue.problems()) {
        out.beginObject();
        out.field(u"file", problem.file);
        out.field(u"text", problem.text);
        out.endObject();
        world.say(u"                "_s + problem.text);
    }
    out.endArray();
    out.endObject();
}

int doctor(World& world, const Arguments&)
{
    const Result writing = world.needWriting({.tellRecoveries = false});
    const Result simulator = world.needSimulator();
    Result database = writing;
    if (writing && world.database())
        database = world.database()->check(true);

    JsonStream& out = world.out();
    const QString home = world.context().global.programFolder;
    out.beginObject();
    out.field(u"home", home);
    world.say(u"Program folder: "_s + home);
    tellSimulator(world);
    tellDatabase(world, database);
    tellInterrupted(world);
    tellTools(world);
    tellTwins(world);
    tellAircraft(world);
    // The first failure counts: without the program folder nothing else can be right.
    for (const Result& failure : {writing, database, simulator})
        if (!failure)
            return world.fail(Result::failure(failure.text, ErrorKind::Surroundings));
    out.endObject();
    return Done;
}

} // namespace

std::vector<Command> doctorCommands()
{
    return {{"doctor",
             "looks at simulator, program folder and database; finishes interrupted work",
             {},
             {},
             doctor}};
}

} // namespace vt::cli
