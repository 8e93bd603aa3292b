// repair: finds files that can stand in for an add-on's missing or damaged ones, and copies them
// in.
#include "addondb/AddonList.h"
#include "cli/AddonKey.h"
#include "cli/Command.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "remove/CRepairPresentationManager.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

/// --take NAME=FOLDER: the candidate in that folder for the file of that name (or path).
Result choose(CRepairItemGroup& items, const QString& typed)
{
    const qsizetype cut = typed.indexOf(u'=');
    if (cut <= 0)
        return Result::failure(u"'"_s + typed + u"' is not of the form NAME=FOLDER."_s,
                               ErrorKind::Usage);
    const QString name = typed.first(cut);
    const QString folder = winpath::asFolder(typed.sliced(cut + 1));
    bool known = false;
    for (CRepairItem& item : items.colRepairItems_Edit()) {
        if (!equalNoCase(item.item.sName_Installation, name) && !winpath::same(item.path(), name))
            continue;
        known = true;
        if (item.chooseFrom(folder))
            return Result::success();
    }
    return Result::failure(known ? u"No file that could stand in for '"_s + name +
                                       u"' was found in '"_s + folder + u"'."_s
                                 : u"'"_s + name +
                                       u"' is not one of the add-on's missing or changed files."_s);
}

QString candidateLine(const RepairCandidate& candidate)
{
    const QString date =
        candidate.date.isValid() ? candidate.date.toString(u"yyyy-MM-dd HH:mm:ss"_s) : u"no date"_s;
    return u"           "_s + candidate.folder + candidate.name + u"  ("_s + date + u", "_s +
           sizeText(candidate.size) + u")"_s;
}

void tellItem(World& world, const CRepairItem& item, bool fixed)
{
    JsonStream& out = world.out();
    out.beginObject();
    out.field(u"name", item.item.sName_Installation);
    out.field(u"location", item.item.sFolder_Installation);
    out.field(u"state", itemStateWord(item.state));
    out.beginArray(u"candidates");
    if (!fixed)
        world.say(itemStateWord(item.state).leftJustified(9) + item.path());
    for (const RepairCandidate& candidate : item.candidates) {
        out.beginObject();
        out.field(u"name", candidate.name);
        out.field(u"folder", candidate.folder);
        out.field(u"date", candidate.date.toString(u"yyyy-MM-ddTHH:mm:ss"_s));
        out.field(u"size", candidate.size);
        out.field(u"exact", candidate.exact);
        out.endObject();
        if (!fixed)
            world.say(candidateLine(candidate));
    }
    out.endArray();
    if (item.chosen >= 0) {
        out.field(u"chosen", item.candidates[item.chosen].folder);
    } else {
        out.key(u"chosen");
        out.null();
    }
    out.field(u"repaired", item.repaired);
    out.endObject();
}

void tellAll(World& world, CRepairPresentationManager& repair, bool fixed)
{
    JsonStream& out = world.out();
    out.field(u"key", repair.addon().key);
    out.field(u"name", repair.addon().name);
    out.beginArray(u"items");
    for (const CRepairItem& item : repair.items().colRepairItems())
        tellItem(world, item, fixed);
    out.endArray();
    if (fixed) {
        out.key(u"results");
        repair.results().write(out);
        world.say(repair.results());
    }
}

/// What is left to do, as a failure; a success when everything was repaired.
Result leftOver(CRepairPresentationManager& repair)
{
    for (const CRepairItem& item : repair.items().colRepairItems()) {
        if (item.repaired)
            continue;
        QString text = u"'"_s + repair.addon().name + u"' was not repaired whole."_s;
        if (!item.cause.isEmpty())
            text += u' ' + textAbout(item.path(), item.cause);
        return Result::failure(text);
    }
    return Result::success();
}

int runRepair(World& world, const Arguments& arguments)
{
    const ResultOf<qint64> key = addonKey(arguments.one(u"KEY"_s));
    if (!key)
        return world.fail(key.error());
    const QStringList taken = arguments.values(u"--take"_s);
    const bool fixes = arguments.has(u"--auto"_s) || !taken.isEmpty();
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    if (Result ready = fixes ? world.needWriting() : world.needDatabase(); !ready)
        return world.fail(ready);
    const Result unknown = unknownAddon(QString::number(*key));
    if (world.database() == nullptr)
        return world.fail(unknown);
    CRepairPresentationManager repair(world.context(), *world.database());
    if (Result set = repair.Setup(*key); !set)
        return world.fail(set.kind == ErrorKind::Failed ? unknown : set);
    Result done = repair.RepairItems_Analyze();
    if (done && arguments.has(u"--auto"_s))
        repair.RepairItems_ChooseMostRecent();
    for (const QString& one : taken) {
        if (done)
            done = choose(repair.items(), one);
    }
    const bool fixed = done && fixes && repair.anythingDamaged();
    if (fixed)
        done = repair.RepairItems_Fix();
    world.out().beginObject();
    tellAll(world, repair, fixed);
    if (!repair.anythingDamaged())
        world.say(u"The add-on '"_s + repair.addon().name + u"' needs no repair."_s);
    if (fixed || !done) {
        if (const QString missing = repair.missingFilesText(); !missing.isEmpty())
            world.say(fixed ? missing : missing.section(u'\n', -1));
    }
    if (done && fixed)
        done = leftOver(repair);
    if (!done)
        return world.fail(done);
    world.out().endObject();
    return Done;
}

} // namespace

std::vector<Command> repairCommands()
{
    return {{"repair",
             "find files that can replace an add-on's missing or changed ones",
             {{"KEY", "key of the add-on, as 'list' shows it"}},
             {{"--auto", nullptr, "take the most recent file for each and copy it into place"},
              {"--take",
               "NAME=FOLDER",
               "for the file of that name take the one in that folder; repeatable",
               true}},
             runRepair}};
}

} // namespace vt::cli
