// database check, upgrade, optimize: care for the add-on database. Without --repair the check reads
// only.
#include "addondb/AddonDatabase.h"
#include "addondb/DatabaseCare.h"
#include "cli/Command.h"
#include "platform/Text.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

/// What was saved from a damaged file, for people.
QString salvageText(const CareReport& report)
{
    const SalvageReport& salvage = *report.salvage;
    QString text = countText(salvage.rows, u"row was"_s, u"rows were"_s) + u" saved; "_s +
                   countText(salvage.brokenPages, u"page"_s, u"pages"_s) + u" of "_s +
                   QString::number(salvage.pages) + u" could not be trusted."_s;
    if (salvage.doubtful > 0)
        text += u" From those come "_s + countText(salvage.doubtful, u"row"_s, u"rows"_s) +
                u" of the saved; 'validate' tells whether the files are there."_s;
    if (salvage.rebuilt > 0)
        text += u" "_s + countText(salvage.rebuilt, u"row"_s, u"rows"_s) +
                u" of add-ons were made again from other tables."_s;
    return text + u" The damaged file is kept as '"_s + report.damagedFile + u"'."_s;
}

QJsonObject documentOf(World& world, const CareReport& report, const QString& text)
{
    Connection* database = world.database();
    QJsonObject document{{u"ok"_s, report.result.ok},
                         {u"text"_s, text},
                         {u"bytesBefore"_s, report.bytesBefore},
                         {u"bytesAfter"_s, report.bytesAfter},
                         {u"path"_s, world.context().global.databaseFile},
                         {u"structure"_s, database != nullptr ? database->structure() : 0}};
    if (report.errorCode != 0)
        document.insert(u"errorCode"_s, report.errorCode);
    if (report.salvage) {
        document.insert(u"damagedFile"_s, report.damagedFile);
        document.insert(u"salvage"_s,
                        QJsonObject{{u"rows"_s, report.salvage->rows},
                                    {u"doubtful"_s, report.salvage->doubtful},
                                    {u"rebuilt"_s, report.salvage->rebuilt},
                                    {u"pages"_s, report.salvage->pages},
                                    {u"brokenPages"_s, report.salvage->brokenPages}});
    }
    if (!report.added.isEmpty())
        document.insert(u"added"_s, QJsonArray::fromStringList(report.added));
    return document;
}

int tell(World& world, const CareReport& report, const QString& text)
{
    const QJsonObject document = documentOf(world, report, text);
    if (!report.result)
        return world.fail(report.result, document);
    world.json(document);
    world.say(text);
    for (const QString& part : report.added)
        world.say(u"  added "_s + part);
    if (report.salvage)
        world.say(salvageText(report));
    return Done;
}

QString wholeText(World& world, qint64 bytes)
{
    const QString path = world.context().global.databaseFile;
    return bytes == 0
               ? u"There is no add-on database yet; the first installation makes '"_s + path +
                     u"'."_s
               : u"The add-on database '"_s + path + u"' ("_s + sizeText(bytes) + u") is whole."_s;
}

/// The report of a file that was only looked at.
CareReport lookedAt(World& world)
{
    const QString path = world.context().global.databaseFile;
    CareReport report;
    report.result = world.needDatabase();
    if (report.result && world.database() != nullptr)
        report.result = databaseHealth(world.services().files, path, true).result;
    report.bytesBefore = world.services().files.info(path).value_or(FileInfo{}).size;
    report.bytesAfter = report.bytesBefore;
    return report;
}

int repairDatabase(World& world)
{
    if (Result ready = world.needWriting({.repair = true}); !ready)
        return world.fail(ready);
    CareReport report;
    if (world.careTaken() && world.careTaken()->salvage)
        report = *world.careTaken();
    else
        report = world.careForDatabase([](DatabaseCare& care) { return care.repair(); });
    return tell(world,
                report,
                !report.result   ? report.result.text
                : report.salvage ? u"The add-on database was repaired."_s
                                 : wholeText(world, report.bytesAfter));
}

int checkDatabase(World& world, const Arguments& arguments)
{
    if (arguments.has(u"--repair"_s))
        return repairDatabase(world);
    const CareReport report = lookedAt(world);
    return tell(
        world, report, report.result ? wholeText(world, report.bytesAfter) : report.result.text);
}

int upgradeDatabase(World& world, const Arguments&)
{
    const qint64 before =
        world.services().files.info(world.context().global.databaseFile).value_or(FileInfo{}).size;
    // Getting ready to write is what upgrades.
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    if (world.careTaken())
        return tell(world, *world.careTaken(), u"The add-on database was brought up to date."_s);
    CareReport report;
    report.bytesBefore = before;
    report.bytesAfter = before;
    return tell(world, report, u"The add-on database lacks nothing."_s);
}

int optimizeDatabase(World& world, const Arguments& arguments)
{
    const bool repair = arguments.has(u"--repair"_s);
    if (Result ready = world.needWriting({.repair = repair}); !ready)
        return world.fail(ready);
    CareReport report =
        world.careForDatabase([repair](DatabaseCare& care) { return care.optimize(repair); });
    if (const std::optional<CareReport>& taken = world.careTaken(); taken && taken->salvage) {
        report.salvage = taken->salvage;
        report.damagedFile = taken->damagedFile;
        report.bytesBefore = taken->bytesBefore;
    }
    return tell(world, report, report.result.text);
}

} // namespace

std::vector<Command> databaseCommands()
{
    const Option repair{
        "--repair", nullptr, "save what can be read of a damaged one, and keep that beside"};
    return {
        {"database check",
         "looks through the add-on database for damage",
         {},
         {repair},
         checkDatabase},
        {"database upgrade",
         "adds what a database of an earlier version lacks",
         {},
         {},
         upgradeDatabase},
        {"database optimize",
         "writes the add-on database anew, without gaps",
         {},
         {repair},
         optimizeDatabase},
    };
}

} // namespace vt::cli
