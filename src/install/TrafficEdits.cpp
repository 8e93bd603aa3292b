#include "install/TrafficEdits.h"

#include "platform/AnsiCodec.h"
#include "traffic/CTrafficTools.h"

namespace vt {

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
            files.append({kind, item.sFolder_Current, item.sName, *bytes});
    }
    return files;
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
