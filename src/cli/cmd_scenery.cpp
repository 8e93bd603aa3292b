// scenery list, add, remove, enable, disable, restore: the simulator's scenery library.
#include "cli/Command.h"
#include "platform/WinPath.h"
#include "simconfig/CSceneryCfgMgr.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

CSceneryCfgMgr sceneryLibrary(World& world)
{
    const GlobalRecord& global = world.context().global;
    return {ConfigAccess(world.services()), global.sceneryCfgFile, global.simulatorFolder};
}

/// The library of the located simulator, loaded; for writing under the lock.
Result openLibrary(World& world, bool writes, std::optional<CSceneryCfgMgr>& library)
{
    if (writes) {
        if (Result ready = world.needWriting(); !ready)
            return ready;
    }
    if (Result found = world.needSimulator(); !found)
        return found;
    library.emplace(sceneryLibrary(world));
    return library->SceneryCfg_Load();
}

void sayAreas(World& world, const CSceneryCfgMgr& library)
{
    for (const CSceneryCfgItem& item : library.areas())
        world.say(QString::number(item.intArea).rightJustified(5) +
                  QString::number(item.intLayer).rightJustified(6) +
                  (item.boolActive ? u"  on   "_s : u"  off  "_s) + item.sTitle + u"  ("_s +
                  (item.sLocal.isEmpty() ? item.sRemote : item.sLocal) + u")"_s);
}

int tellAreas(World& world, const CSceneryCfgMgr& library, const QStringList& notes = {})
{
    JsonStream& out = world.out();
    out.beginObject();
    out.field(u"file", library.file());
    out.beginArray(u"areas");
    for (const CSceneryCfgItem& item : library.areas()) {
        out.beginObject();
        out.field(u"area", item.intArea);
        out.field(u"layer", item.intLayer);
        out.field(u"title", item.sTitle);
        out.field(u"local", item.sLocal);
        out.field(u"remote", item.sRemote);
        out.field(u"active", item.boolActive);
        out.field(u"required", item.boolRequired);
        out.endObject();
    }
    out.endArray();
    if (!notes.isEmpty())
        out.field(u"notes", notes);
    out.endObject();
    for (const QString& note : notes)
        world.say(note);
    return Done;
}

int saveLibrary(World& world, CSceneryCfgMgr& library, const QStringList& notes = {})
{
    const Result saved = library.SceneryCfg_Save();
    if (!saved)
        return world.fail(saved);
    world.say(saved.text);
    return tellAreas(world, library, notes);
}

int sceneryList(World& world, const Arguments&)
{
    std::optional<CSceneryCfgMgr> library;
    const Result opened = openLibrary(world, false, library);
    if (!opened)
        return world.fail(opened);
    if (!opened.text.isEmpty())
        world.say(opened.text);
    sayAreas(world, *library);
    return tellAreas(world, *library);
}

/// A path that is not there from the current folder may be meant from the simulator's.
QString sceneryFolder(World& world, const QString& typed)
{
    const Files& files = world.services().files;
    const QString folder = winpath::asFolder(world.userPath(typed));
    if (files.isFolder(folder) || winpath::isAbsolute(typed) || typed.startsWith(u'/'))
        return folder;
    const QString inside = winpath::asFolder(
        winpath::join(world.context().global.simulatorFolder, winpath::normalised(typed)));
    return files.isFolder(inside) ? inside : folder;
}

int sceneryAdd(World& world, const Arguments& arguments)
{
    std::optional<CSceneryCfgMgr> library;
    if (const Result opened = openLibrary(world, true, library); !opened)
        return world.fail(opened);
    const QString folder = sceneryFolder(world, arguments.one(u"FOLDER"_s));
    const QString title = arguments.value(u"--title"_s, winpath::name(folder));
    const CSceneryCfgMgr::AddResult added = library->SceneryCfg_AddArea(title, folder, true);
    if (added.code == CSceneryCfgMgr::UserDeclined)
        return world.fail(
            Result::failure(u"The scenery library was left as it is, because an area covers '"_s +
                                folder + u"' already; answer yes to add it anyway."_s,
                            ErrorKind::Declined));
    if (!added.added)
        return world.fail(Result::failure(added.text));
    QStringList notes;
    const CSceneryCfgItem& item = library->areas().constLast();
    const auto problem = library->SceneryCfg_Validate(item, world.services().files);
    if (problem != CSceneryCfgMgr::NoProblem)
        notes.push_back(u"Note: "_s + CSceneryCfgMgr::problemText(
                                          problem, true, world.context().global.names.simShort));
    return saveLibrary(world, *library, notes);
}

/// Index of the one area with the number that was typed.
ResultOf<qsizetype> typedArea(const CSceneryCfgMgr& library, const Arguments& arguments)
{
    bool isNumber = false;
    const QString typed = arguments.one(u"NUMBER"_s);
    const int number = typed.toInt(&isNumber);
    if (!isNumber || number < 0)
        return Result::failure(u"'"_s + typed + u"' is not the number of a scenery area."_s,
                               ErrorKind::Usage);
    const qsizetype index = library.indexOfArea(number);
    if (index < 0)
        return Result::failure(u"There is no scenery area "_s + typed + u" in '"_s +
                               library.file() + u"'; 'scenery list' shows them."_s);
    for (qsizetype i = index + 1; i < library.areas().size(); ++i) {
        if (library.areas().at(i).intArea == number)
            return Result::failure(
                u"'"_s + library.file() + u"' has more than one scenery area "_s + typed +
                u" ('"_s + library.areas().at(index).sTitle + u"' and '"_s +
                library.areas().at(i).sTitle + u"'); give them numbers of their own first."_s);
    }
    return index;
}

int changeArea(World& world,
               const Arguments& arguments,
               Result (*change)(CSceneryCfgMgr& library, qsizetype index))
{
    std::optional<CSceneryCfgMgr> library;
    if (const Result opened = openLibrary(world, true, library); !opened)
        return world.fail(opened);
    const ResultOf<qsizetype> index = typedArea(*library, arguments);
    if (!index)
        return world.fail(index.error());
    if (const Result changed = change(*library, *index); !changed)
        return world.fail(changed);
    return saveLibrary(world, *library);
}

int sceneryRemove(World& world, const Arguments& arguments)
{
    return changeArea(world, arguments, [](CSceneryCfgMgr& library, qsizetype index) {
        return library.SceneryCfg_RemoveArea(index)
                   ? Result::success()
                   : Result::failure(u"The scenery area could not be removed."_s);
    });
}

int sceneryEnable(World& world, const Arguments& arguments)
{
    return changeArea(world, arguments, [](CSceneryCfgMgr& library, qsizetype index) {
        return library.setActive(index, true);
    });
}

int sceneryDisable(World& world, const Arguments& arguments)
{
    return changeArea(world, arguments, [](CSceneryCfgMgr& library, qsizetype index) {
        return library.setActive(index, false);
    });
}

int sceneryRestore(World& world, const Arguments&)
{
    std::optional<CSceneryCfgMgr> library;
    // A library that cannot be read is the very thing to be restored.
    if (const Result opened = openLibrary(world, true, library); !library)
        return world.fail(opened);
    const Result restored = library->SceneryCfg_Backup_Restore(true);
    if (!restored)
        return world.fail(restored);
    world.say(restored.text);
    if (const Result loaded = library->SceneryCfg_Load(); !loaded)
        return world.fail(loaded);
    return tellAreas(world, *library);
}

} // namespace

std::vector<Command> sceneryCommands()
{
    const Positional number{"NUMBER", "number of the area, as 'scenery list' shows it"};
    return {
        {"scenery list", "areas of the simulator's scenery library", {}, {}, sceneryList},
        {"scenery add",
         "adds an area on top of all others",
         {{"FOLDER", "folder that holds the folders \"scenery\" and \"texture\""}},
         {{"--title", "T", "title of the area (default: the folder's name)"}},
         sceneryAdd},
        {"scenery remove", "removes an area, no files", {number}, {}, sceneryRemove},
        {"scenery enable", "lets the simulator load an area", {number}, {}, sceneryEnable},
        {"scenery disable", "keeps an area from being loaded", {number}, {}, sceneryDisable},
        {"scenery restore", "goes back to the last backup", {}, {}, sceneryRestore},
    };
}

} // namespace vt::cli
