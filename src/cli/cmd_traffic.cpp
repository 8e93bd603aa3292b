// traffic read, validate, describe: flight plans of computer-controlled traffic in a file; compile,
// decompile, collect: the outside tool.
#include "cli/Command.h"
#include "platform/AnsiCodec.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "traffic/CTrafficTools.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

constexpr qint64 planFileLimit = 64LL * 1024 * 1024;

/// A plans file with what its plans are compared with.
struct PlanFile
{
    QList<CAIFlightPlan> plans;
    QList<QStringList> problems; ///< of each plan
    PlanSurroundings around;
};

QList<QByteArray> linesOf(World& world, const QString& file)
{
    const ResultOf<QByteArray> bytes = world.services().files.read(file, planFileLimit);
    return bytes ? SourceLines::ofBytes(*bytes).texts() : QList<QByteArray>();
}

/// Where the records that belong to a plans file are looked for: beside it under a name of the same
/// form, else among the tool's own source files.
QString companion(World& world, const CTrafficTools& tools, const QString& plans, TrafficKind kind)
{
    const QString name = winpath::name(plans);
    const QString base = trafficBaseName(TrafficKind::FlightPlans);
    if (startsWithNoCase(name, base)) {
        const QString beside =
            winpath::parent(plans) + trafficBaseName(kind) + name.sliced(base.size());
        if (world.services().files.isFile(beside))
            return beside;
    }
    return tools.folder().isEmpty() ? QString() : tools.sourceFile(kind);
}

/// Each plan against the surroundings; one that stands twice exists already the second time.
void validateAll(PlanFile& file)
{
    for (const CAIFlightPlan& plan : std::as_const(file.plans)) {
        file.problems.append(CTrafficTools::FlightPlan_Validate(plan, file.around));
        file.around.plans.insert(CAIFlightPlan::identity(plan.sLine.toUtf8()));
    }
}

ResultOf<PlanFile> readPlans(World& world, const QString& file)
{
    if (!world.services().files.isFile(file))
        return Result::failure(u"'"_s + file + u"' was not found."_s, ErrorKind::Surroundings);
    const ResultOf<QByteArray> bytes = world.services().files.read(file, planFileLimit);
    if (!bytes)
        return Result::failure(u"Could not read source file '"_s + file + u"'. "_s + bytes.text,
                               ErrorKind::Surroundings);
    CTrafficTools tools(world.context());
    (void)tools.Tool_Find(); // without it there is less to compare with
    PlanFile out;
    out.plans = tools.FlightPlans_Read(SourceLines::ofBytes(*bytes).texts());
    const QString installed =
        tools.folder().isEmpty() ? QString() : tools.sourceFile(TrafficKind::FlightPlans);
    const QString aircraft = companion(world, tools, file, TrafficKind::Aircraft);
    const QString airports = companion(world, tools, file, TrafficKind::Airports);
    const bool own = winpath::same(installed, file);
    out.around = tools.surroundings(linesOf(world, aircraft),
                                    linesOf(world, airports),
                                    own ? QList<QByteArray>() : linesOf(world, installed));
    if (!aircraft.isEmpty())
        out.around.aircraftFile = winpath::name(aircraft);
    if (!airports.isEmpty())
        out.around.airportsFile = winpath::name(airports);
    world.services().status.text(u"Primary"_s, u"Analyzing flight plans..."_s);
    validateAll(out);
    return out;
}

const CAIAircraft* aircraftOf(const PlanFile& file, const CAIFlightPlan& plan)
{
    const auto found = file.around.aircraft.constFind(plan.lngAircraft);
    return found == file.around.aircraft.cend() ? nullptr : &*found;
}

QString description(World& world, const PlanFile& file, qsizetype index)
{
    const CAIFlightPlan& plan = file.plans[index];
    return plan.Describe(index + 1, aircraftOf(file, plan), world.context().global.names.simLong);
}

void writeLeg(JsonStream& out, const CAIFlightPlanLeg& leg)
{
    out.beginObject();
    out.field(u"departure", leg.sDepartureAirport);
    out.field(u"departing", leg.sDepartureTime);
    out.field(u"arrival", leg.sArrivalAirport);
    out.field(u"arriving", leg.sArrivalTime);
    out.field(u"day", CAIFlightPlanLeg::dayOf(leg.sDepartureTime));
    out.field(u"altitude", leg.sCruiseAltitude);
    out.field(u"flight", leg.sFlightNumber);
    out.field(u"callSign", leg.sCallSign);
    out.endObject();
}

/// The member "plans".
void writePlans(World& world, const PlanFile& file)
{
    JsonStream& out = world.out();
    out.beginArray(u"plans");
    for (qsizetype i = 0; i < file.plans.size(); ++i) {
        const CAIFlightPlan& plan = file.plans[i];
        out.beginObject();
        out.field(u"number", i + 1);
        out.field(u"aircraft", plan.sAircraft);
        out.field(u"tail", plan.sTailNumber);
        out.field(u"percentage", plan.sPercentage);
        out.field(u"period", plan.sRepeatPeriod);
        out.field(u"rules", plan.sTrafficType);
        out.beginArray(u"legs");
        for (const CAIFlightPlanLeg& leg : plan.colLegs)
            writeLeg(out, leg);
        out.endArray();
        out.field(u"problems", file.problems[i]);
        out.field(u"description", description(world, file, i));
        out.endObject();
    }
    out.endArray();
}

QString titles(std::span<const QStringView> columns)
{
    QStringList out;
    for (const QStringView column : columns)
        out.append(column.toString());
    return out.join(u" | "_s);
}

void sayPlans(World& world, const PlanFile& file)
{
    // The last column is for those who decide about each plan.
    const auto columns = CAIFlightPlan::columns();
    world.say(titles(columns.first(columns.size() - 1)));
    world.say(u"    "_s + titles(CAIFlightPlanLeg::columns()));
    for (qsizetype i = 0; i < file.plans.size(); ++i) {
        const CAIFlightPlan& plan = file.plans[i];
        world.say(QStringList{plan.sAircraft,
                              QString::number(i + 1),
                              plan.sTailNumber,
                              plan.sPercentage,
                              plan.sRepeatPeriod,
                              plan.sTrafficType}
                      .join(u" | "_s));
        for (qsizetype n = 0; n < plan.colLegs.size(); ++n) {
            const CAIFlightPlanLeg& leg = plan.colLegs[n];
            world.say(u"    "_s + QStringList{QString::number(n + 1),
                                              leg.sFlightNumber,
                                              leg.sDepartureAirport,
                                              CAIFlightPlanLeg::shownTime(leg.sDepartureTime),
                                              leg.sArrivalAirport,
                                              CAIFlightPlanLeg::shownTime(leg.sArrivalTime),
                                              leg.altitudeInFeet(),
                                              leg.callSigning()}
                                      .join(u" | "_s));
        }
    }
}

/// Reads FILE, has it told by \a tell, writes the document.
template <typename Tell> int withPlans(World& world, const Arguments& arguments, Tell tell)
{
    const QString path = world.userPath(arguments.one(u"FILE"_s));
    const ResultOf<PlanFile> file = readPlans(world, path);
    if (!file)
        return world.fail(file.error(), {{u"plans"_s, QJsonArray()}});
    world.out().beginObject();
    world.out().field(u"file", path);
    writePlans(world, *file);
    const Result told = tell(*file);
    if (!told)
        return world.fail(told);
    world.out().endObject();
    return Done;
}

int trafficRead(World& world, const Arguments& arguments)
{
    return withPlans(world, arguments, [&](const PlanFile& file) {
        if (file.plans.isEmpty())
            world.say(u"The file holds no flight plans."_s);
        else
            sayPlans(world, file);
        return Result::success();
    });
}

int trafficValidate(World& world, const Arguments& arguments)
{
    return withPlans(world, arguments, [&](const PlanFile& file) {
        if (file.plans.isEmpty())
            return Result::failure(CTrafficTools::nothingToValidate());
        qsizetype faulty = 0;
        for (qsizetype i = 0; i < file.plans.size(); ++i) {
            if (file.problems[i].isEmpty())
                continue;
            ++faulty;
            world.say(u"Flight plan #"_s + QString::number(i + 1) + u':');
            for (const QString& text : file.problems[i])
                world.say(u"    "_s + text);
        }
        if (faulty == 0) {
            world.say(CTrafficTools::noProblems());
            return Result::success();
        }
        return Result::failure(countText(faulty, u"flight plan has"_s, u"flight plans have"_s) +
                               u" problems."_s);
    });
}

int trafficDescribe(World& world, const Arguments& arguments)
{
    return withPlans(world, arguments, [&](const PlanFile& file) {
        for (qsizetype i = 0; i < file.plans.size(); ++i)
            world.say(description(world, file, i));
        if (file.plans.isEmpty())
            world.say(u"The file holds no flight plans."_s);
        return Result::success();
    });
}

/// One run of the located tool; the plans that the source file then holds go into the document.
int runTool(World& world, Result (CTrafficTools::*work)(), const QString& done)
{
    const auto refused = [&](const Result& why) {
        return world.fail(why,
                          {{u"ok"_s, false}, {u"text"_s, why.text}, {u"plans"_s, QJsonArray()}});
    };
    if (const Result ready = world.needWriting(); !ready)
        return refused(ready);
    CTrafficTools tools(world.context(), &world.processes());
    if (const Result located = tools.Tool_Locate(); !located)
        return refused(located);
    if (const Result ran = (tools.*work)(); !ran)
        return refused(ran);
    world.out().beginObject();
    world.out().field(u"ok", true);
    world.out().field(u"text", done);
    PlanFile file;
    if (const auto read = readPlans(world, tools.sourceFile(TrafficKind::FlightPlans)))
        file = *read;
    writePlans(world, file);
    world.out().endObject();
    world.say(done);
    return Done;
}

int trafficCompile(World& world, const Arguments&)
{
    return runTool(world, &CTrafficTools::Sources_Compile, u"The source files were compiled."_s);
}

int trafficDecompile(World& world, const Arguments&)
{
    return runTool(world, &CTrafficTools::Sources_Create, u"The source files were created."_s);
}

int trafficCollect(World& world, const Arguments&)
{
    return runTool(world, &CTrafficTools::Airports_Collect, u"The airports were collected."_s);
}

} // namespace

std::vector<Command> trafficCommands()
{
    const std::vector<Positional> file = {{"FILE", "text file with flight plans"}};
    return {
        {"traffic read", "flight plans of computer-controlled traffic", file, {}, trafficRead},
        {"traffic validate", "what stands in the way of flight plans", file, {}, trafficValidate},
        {"traffic describe", "flight plans in words", file, {}, trafficDescribe},
        {"traffic compile", "source files to traffic file", {}, {}, trafficCompile},
        {"traffic decompile", "traffic file to source files", {}, {}, trafficDecompile},
        {"traffic collect", "lists all airports of the simulator", {}, {}, trafficCollect},
    };
}

} // namespace vt::cli
