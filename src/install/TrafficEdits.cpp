#include "install/TrafficEdits.h"

#include "platform/AnsiCodec.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "traffic/CTrafficTools.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QList<QByteArray> linesOf(const Context& context, const QString& file)
{
    const ResultOf<QByteArray> bytes = file.isEmpty()
                                           ? ResultOf<QByteArray>(Result::failure({}))
                                           : context.services.files.read(file, trafficFileLimit);
    return bytes ? SourceLines::ofBytes(*bytes).texts() : QList<QByteArray>();
}

/// What one file of plans is compared with: what belongs to it in the add-on, then what is there.
PlanSurroundings
surroundingsOf(const TrafficFile& plans, QList<TrafficFile> files, Context& context, bool again)
{
    CTrafficTools tools(context);
    const bool installed = tools.Tool_Find();
    const auto source = [&](TrafficKind kind) {
        return installed ? linesOf(context, tools.sourceFile(kind)) : QList<QByteArray>();
    };
    files.removeIf([](const TrafficFile& file) { return file.kind == TrafficKind::FlightPlans; });
    files.prepend(plans);
    const TrafficSet set = trafficSets(files).first(); // that of the plans
    QList<QByteArray> airports = source(TrafficKind::Airports);
    for (const TrafficFile& file : std::as_const(files)) {
        if (file.kind == TrafficKind::Airports)
            airports += SourceLines::ofBytes(file.bytes).texts();
    }
    if (airports.isEmpty())
        airports.append("*"); // any airport
    return tools.surroundings(set.of(TrafficKind::Aircraft) + source(TrafficKind::Aircraft),
                              airports,
                              again ? QList<QByteArray>() : source(TrafficKind::FlightPlans));
}

} // namespace

QList<TrafficFile> trafficFiles(const CAddonInstallationDetails& details,
                                const AnsiCodec& ansi,
                                const std::function<bool(const CAddon_Item&)>& wanted)
{
    QList<TrafficFile> files;
    for (const CAddon_Item& item : details.addon().colAddonItems()) {
        if (!item.IsMappedToTrafficToolsGroup() || !wanted(item))
            continue;
        const ResultOf<QByteArray> bytes = details.source().read(item, trafficFileLimit);
        TrafficKind kind{};
        if (bytes && isTrafficFile(item.sName, *bytes, ansi, kind))
            files.append({kind, item.sFolder_Current, item.sName, *bytes, item.lngKey});
    }
    return files;
}

QList<AddonFlightPlan> addonFlightPlans(const CAddonInstallationDetails& details, Context& context)
{
    QList<AddonFlightPlan> plans;
    if (!details.holds(MappedGroup::TrafficTools))
        return plans;
    const AnsiCodec& ansi = context.services.ansi;
    const QList<TrafficFile> files = trafficFiles(
        details, ansi, [&](const CAddon_Item& item) { return details.willBeInstalled(item); });
    for (const TrafficFile& file : files) {
        if (file.kind != TrafficKind::FlightPlans)
            continue;
        PlanSurroundings around = surroundingsOf(file, files, context, details.recorded());
        qsizetype number = 0;
        for (const CAIFlightPlan& plan :
             CTrafficTools(context).FlightPlans_Read(SourceLines::ofBytes(file.bytes).texts())) {
            AddonFlightPlan one{file.item, ++number, plan, {}, {}};
            one.problems = CTrafficTools::FlightPlan_Validate(plan, around);
            if (const auto known = around.aircraft.constFind(plan.lngAircraft);
                known != around.aircraft.cend())
                one.aircraft = *known;
            around.plans.insert(CAIFlightPlan::identity(plan.sLine.toUtf8()));
            plans.append(std::move(one));
        }
    }
    return plans;
}

QList<PlanProblem> flightPlanRemarks(const QList<AddonFlightPlan>& plans)
{
    QList<PlanProblem> remarks;
    qsizetype faulty = 0;
    for (qsizetype i = 0; i < plans.size(); ++i) {
        const AddonFlightPlan& plan = plans.at(i);
        if (plan.problems.isEmpty())
            continue;
        const QString told =
            u"Flight plan #"_s + QString::number(plan.number) + u": "_s + plan.problems.join(u' ');
        if (remarks.isEmpty() || remarks.last().item != plan.item) {
            faulty = 1;
            remarks.append({plan.item, told, false});
        } else if (++faulty == 2) {
            remarks.last().text += u" The page of the A.I. traffic tells of more."_s;
        }
    }
    return remarks;
}

QList<ConfigChange>
trafficChanges(const CAddonInstallationDetails& details, Context& context, QString& problem)
{
    QList<ConfigChange> changes;
    CTrafficTools tools(context);
    const bool any = details.holds(MappedGroup::TrafficTools) && tools.Tool_Find();
    if (!any)
        return changes;
    const AnsiCodec& ansi = context.services.ansi;
    const QList<TrafficSet> sets =
        trafficSets(trafficFiles(details, ansi, [&](const CAddon_Item& item) {
            return item.boolProcess && details.willBeInstalled(item);
        }));
    if (sets.isEmpty())
        return changes;
    if (const Result read =
            tools.Sources_Read(context.services.actions, CTrafficTools::Missing::Create);
        !read) {
        problem = read.text;
        return changes;
    }
    QStringList told;
    const TrafficSources::Change change =
        tools.FlightPlans_Add(0, details.addon().sGroupName, sets, told);
    for (const TrafficKind kind : trafficKinds) {
        if (change.isEmpty(kind))
            continue;
        ConfigChange one;
        one.file = tools.sourceFile(kind);
        for (const QByteArray& line : change.lines[int(kind)])
            one.lines.added.append(ansi.decode(line));
        changes.append(one);
    }
    return changes;
}

} // namespace vt
