// What an installation does for computer-controlled traffic: flight plans go into the traffic
// tools' source files together with the add-on's other files, airport files to the airport editor
// once they are in their place.
#include "install/CAddonInstaller.h"
#include "install/TrafficEdits.h"
#include "platform/PathIndex.h"
#include "platform/WinPath.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"

using namespace Qt::StringLiterals;

namespace vt {

bool CAddonInstaller::isInstalled(const CAddon_Item& item) const
{
    return std::any_of(m_files.cbegin(), m_files.cend(), [&item](const File& file) {
        return file.item == &item && file.code == InstallCode::Installed;
    });
}

Result CAddonInstaller::FlightPlans_Incorporate()
{
    if (!m_details.holds(MappedGroup::TrafficTools) || m_details.installTo() == InstallTo::Cabinet)
        return Result::success();
    const QList<TrafficSet> sets = trafficSets(
        trafficFiles(m_details, m_context.services.ansi, [this](const CAddon_Item& item) {
            return isInstalled(item);
        }));
    if (sets.isEmpty())
        return Result::success();
    m_traffic.wanted = true;
    m_traffic.target = m_context.global.names.simLong;
    CTrafficTools tools(m_context);
    Result done = tools.Tool_Locate();
    // Without it the files are documents, which is no failure.
    m_traffic.optional = done.kind == ErrorKind::Surroundings;
    if (done) {
        m_traffic.target = tools.sourceFile(TrafficKind::FlightPlans);
        done = tools.Sources_Read(*m_actions, CTrafficTools::Missing::Ask);
        if (done) {
            (void)tools.FlightPlans_Add(m_record.key, m_record.name, sets, m_traffic.told);
            done = tools.Sources_Write(*m_actions);
        }
        m_traffic.optional = done.kind == ErrorKind::Declined;
        for (const TrafficKind kind : trafficKinds)
            m_traffic.files.append(tools.sourceFile(kind));
        m_traffic.files.append(tools.dataFile());
    }
    if (!done) {
        m_traffic.problem = done.text;
        m_log.line(QString(u"   "_s + done.text));
    }
    return m_traffic.optional ? Result::success() : done;
}

void CAddonInstaller::tellTraffic(const QList<StepFailure>& failures)
{
    if (!m_traffic.wanted)
        return;
    for (const StepFailure& failure : failures) {
        if (m_traffic.problem.isEmpty() &&
            std::any_of(m_traffic.files.cbegin(), m_traffic.files.cend(), [&](const QString& file) {
                return winpath::same(file, failure.path);
            }))
            m_traffic.problem = textAbout(failure.path, failure.text);
    }
    const bool done = m_traffic.problem.isEmpty();
    const QStringView group = done || m_traffic.optional ? resultgroup::specialActions
                                                         : resultgroup::failedSpecialActions;
    m_results.add(group,
                  u"The A.I. flight plans were "_s + (done ? QString() : u"NOT "_s) +
                      u"incorporated into "_s + m_traffic.target);
    if (!done)
        m_results.add(group,
                      m_traffic.problem + u" The flight plans are kept as documents in '"_s +
                          m_details.storageFolder() + u"'."_s);
    for (const QString& text : std::as_const(m_traffic.told)) {
        if (done)
            m_results.add(resultgroup::specialActions, text);
    }
}

Result CAddonInstaller::AirportFiles_Install()
{
    QStringList files;
    for (const CAFCADFile& file : CAFCADMetaGroup::ofAddon(m_details.addon()).colFiles) {
        if (const CAddon_Item* item = m_details.addon().Search(file.itemKey);
            item && isInstalled(*item))
            files.append(file.path);
    }
    if (files.isEmpty() || m_details.installTo() == InstallTo::Cabinet)
        return Result::success();
    CAFCAD editor(m_context, m_processes);
    Result done = m_processes ? editor.Tool_Locate()
                              : Result::failure(u"No outside program can be run here."_s);
    if (done)
        done = editor.AirportFiles_Install(files);
    m_results.add(done ? resultgroup::specialActions : resultgroup::failedSpecialActions,
                  u"The airport and facilities data files were "_s +
                      (done ? QString() : u"NOT "_s) + u"incorporated into "_s +
                      m_context.global.names.simLong);
    if (!done)
        m_results.add(resultgroup::failedSpecialActions, done.text);
    return done;
}

} // namespace vt
