// What a removal does for computer-controlled traffic: the add-on's flight plans go out of the
// traffic tools' source files, and airport files that it had replaced come back.
#include "addondb/AddonDatabase.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "remove/CAddonRemover.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"
#include "traffic/TrafficAddon.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 airportFileLimit = 64LL * 1024 * 1024;
constexpr qint64 trafficFileLimit = 64LL * 1024 * 1024;

/// Of a file that cannot be read any more, its name decides.
bool holdsFlightPlans(const Services& services, const DetailRecord& detail)
{
    if (!mayBeTrafficFile(detail.name))
        return false;
    const ResultOf<QByteArray> bytes =
        services.files.read(detail.location + detail.name, trafficFileLimit);
    if (!bytes)
        return startsWithNoCase(detail.name, trafficBaseName(TrafficKind::FlightPlans));
    TrafficKind kind{};
    return isTrafficFile(detail.name, *bytes, services.ansi, kind) &&
           kind == TrafficKind::FlightPlans;
}

} // namespace

/// The lines of one file are not told from those of the others: they go, with the aircraft and
/// airports that only they need, when the last file of plans does.
bool CAddonRemover::allFlightPlansGo() const
{
    if (m_whole)
        return true;
    bool any = false;
    for (const DetailRecord& detail : m_details) {
        if (!holdsFlightPlans(m_context.services, detail))
            continue;
        const bool goes =
            std::any_of(m_files.cbegin(), m_files.cend(), [&detail](const File& file) {
                return file.detail.key == detail.key;
            });
        if (!goes)
            return false;
        any = true;
    }
    return any;
}

Result CAddonRemover::FlightPlans_Remove()
{
    CTrafficTools tools(m_context);
    if (!(m_record.categories & Category::AI_Flight_Plans) || !allFlightPlansGo() ||
        !tools.Tool_Find())
        return Result::success(); // they were never incorporated, or are gone with the tool
    Result done = tools.Sources_Read(*m_actions, CTrafficTools::Missing::Ignore);
    if (done && !tools.sources().record.find(m_masterKey))
        return Result::success();
    QStringList told;
    if (done) {
        (void)tools.FlightPlans_Remove(m_masterKey, told);
        done = tools.Sources_Write(*m_actions);
    }
    for (const QString& text : std::as_const(told))
        m_log.line(QString(u"   "_s + text));
    m_traffic.wanted = true;
    m_traffic.problem = done.text;
    for (const TrafficKind kind : trafficKinds)
        m_traffic.files.append(tools.sourceFile(kind));
    m_traffic.files.append(tools.dataFile());
    return done;
}

Result CAddonRemover::AirportFiles_Restore()
{
    if (!(m_record.categories & Category::Airport_Facilities_Data))
        return Result::success();
    const CAFCAD editor(m_context);
    Result last = Result::success();
    for (const File& file : m_files) {
        const QString& name = file.detail.name;
        if (!CAFCADMetaGroup::isAirportFile(name) ||
            !winpath::isBelow(file.detail.location, m_context.global.addonsFolder))
            continue;
        const ResultOf<QByteArray> bytes =
            m_context.services.files.read(file.detail.location + name, airportFileLimit);
        const QString airport = bytes ? editor.AirportName_Get(*bytes) : QString();
        const Result restored = restoreAirport(editor, name);
        m_results.add(restored ? resultgroup::specialActions : resultgroup::failedSpecialActions,
                      u"The airport and facilities data for '"_s +
                          (airport.isEmpty() ? name : airport) + u"' were "_s +
                          (restored ? QString() : u"NOT "_s) + u"restored."_s);
        if (restored)
            continue;
        m_anyFailed = true;
        m_results.add(resultgroup::failedSpecialActions, restored.text);
        last = restored;
    }
    return last;
}

Result CAddonRemover::restoreAirport(const CAFCAD& editor, const QString& name)
{
    const ResultOf<QList<DetailRecord>> namesakes =
        modDatabase_Addon::byInstalledName(m_database, name);
    if (!namesakes)
        return namesakes.error();
    for (const DetailRecord& other : *namesakes) {
        if (other.masterKey != m_masterKey &&
            winpath::isBelow(other.location, m_context.global.addonsFolder))
            return Result::failure(u"'"_s + editor.installedFile(name) +
                                   u"' stays: another addon brought that airport too."_s);
    }
    return editor.AirportFile_Restore(*m_actions, name);
}

void CAddonRemover::tellTraffic(const QList<StepFailure>& failures)
{
    if (!m_traffic.wanted)
        return;
    for (const StepFailure& failure : failures) {
        for (const QString& file : std::as_const(m_traffic.files)) {
            if (m_traffic.problem.isEmpty() && winpath::same(file, failure.path))
                m_traffic.problem = textAbout(failure.path, failure.text);
        }
    }
    const bool done = m_traffic.problem.isEmpty();
    m_anyFailed = m_anyFailed || !done;
    m_results.add(done ? resultgroup::specialActions : resultgroup::failedSpecialActions,
                  u"The A.I. flight plans were "_s + (done ? QString() : u"NOT "_s) +
                      u"removed."_s);
    if (!done)
        m_results.add(resultgroup::failedSpecialActions, m_traffic.problem);
}

} // namespace vt
