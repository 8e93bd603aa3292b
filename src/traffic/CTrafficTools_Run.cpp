// Running the tool, and what is said about single plans.
#include "platform/AnsiCodec.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "traffic/CTrafficTools.h"
#include "traffic/OutsideTool.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 listLimit = 64LL * 1024 * 1024;

QString common(const TrafficNames& names)
{
    return u" /fp"_s + names.convertSwitch;
}

Prompt overwriteAirports(const QString& file)
{
    return yesNo(
        u"Overwrite "_s + file + u'?',
        u"The Airport Collector created a file listing all of your airports, even those airports not currently used by A.I. traffic. You can opt to overwrite your '"_s +
            file + u"' file using the airport list created by the Airport Collector?"_s +
            u"\n\n"_s + u"Would you like to overwrite your '"_s + file +
            u"' file with this larger file to ensure your airports file has an up-to-date list of all of your airports."_s +
            u"\n\n"_s +
            u"Press Yes to overwrite the file or press No to retain the existing airport list."_s,
        Button::No);
}

} // namespace

QString compileArguments(const TrafficNames& names)
{
    return common(names) + u" /co"_s + names.stamp;
}

QString decompileArguments(const TrafficNames& names)
{
    return common(names) + u" /de"_s + names.stamp;
}

Result CTrafficTools::run(const QString& program,
                          const QString& arguments,
                          int timeoutMs,
                          const QString& failure)
{
    Q_ASSERT(m_processes && !m_folder.isEmpty());
    const QString path = m_folder + program;
    if (!m_context.services.files.isFile(path))
        return failed(failure, u"'"_s + path + u"' was not found."_s);
    status(u"Wait for Traffic Tools to finish then press ENTER to dismiss it..."_s);
    ProcessCall call;
    call.program = path;
    call.commandLine = arguments;
    call.workingFolder = m_folder;
    call.timeoutMs = timeoutMs;
    call.keepWaiting = [this] { return !m_context.services.status.cancelled(); };
    const ProcessEnd end = m_processes->run(call);
    m_context.services.files.newOperation();
    const QString complaint = outsidetool::complaint(m_context, path, end);
    return complaint.isEmpty() ? Result::success() : failed(failure, complaint);
}

Result CTrafficTools::Sources_Compile()
{
    const QString failure = u"Could not compile source files."_s;
    for (const TrafficKind kind : trafficKinds) {
        const QString file = sourceFile(kind);
        if (!m_context.services.files.isFile(file))
            return failed(failure, u"'"_s + file + u"' was not found."_s);
    }
    return run(u"TTools.exe"_s, compileArguments(m_names), compileTimeoutMs, failure);
}

Result CTrafficTools::Sources_Create()
{
    const QString failure = u"Could not create source files."_s;
    FileActions& actions = m_context.services.actions;
    FileStamp before[trafficKindCount];
    for (const TrafficKind kind : trafficKinds)
        before[int(kind)] = FileStamp::of(actions, sourceFile(kind));
    if (Result ran = run(u"TTools.exe"_s, decompileArguments(m_names), createTimeoutMs, failure);
        !ran)
        return ran;
    for (const TrafficKind kind : trafficKinds) {
        const QString file = sourceFile(kind);
        if (FileStamp::of(actions, file) == before[int(kind)])
            return failed(failure,
                          u"Traffic Tools ended without an error, but did not write '"_s + file +
                              u"'."_s);
    }
    return Result::success();
}

Result CTrafficTools::Airports_Collect()
{
    const QString failure = u"Could not collect airports."_s;
    Services& services = m_context.services;
    const QString list =
        m_names.collectedAirports.isEmpty() ? QString() : m_folder + m_names.collectedAirports;
    const FileStamp before = FileStamp::of(services.actions, list);
    if (Result ran =
            run(u"CollectAirports.exe"_s, m_names.collectSwitch, collectTimeoutMs, failure);
        !ran)
        return ran;
    if (list.isEmpty())
        return Result::success();
    const FileStamp now = FileStamp::of(services.actions, list);
    if (now == before || !now.exists())
        return failed(failure,
                      u"The Airport Collector ended without an error, but did not write '"_s +
                          list + u"'."_s);
    const QString file = sourceFile(TrafficKind::Airports);
    if (now.size <= FileStamp::of(services.actions, file).size ||
        services.prompts.ask(overwriteAirports(file)) != Button::Yes)
        return Result::success();
    const Result replaced = replaceAirports(list);
    return replaced ? replaced : failed(failure, replaced.text);
}

/// The collected list takes the airports file's place; what add-ons had added to that is forgotten.
Result CTrafficTools::replaceAirports(const QString& list)
{
    FileActions& actions = m_context.services.actions;
    const ResultOf<QByteArray> bytes = actions.read(list, listLimit);
    if (!bytes)
        return Result::failure(u"'"_s + list + u"' could not be read."_s + u' ' + bytes.text);
    if (Result got = Sources_Read(actions, Missing::Create); !got)
        return got;
    for (const TrafficKind kind : trafficKinds) { // the others are not made by this
        if (kind != TrafficKind::Airports && !m_read[int(kind)].stamp.exists())
            m_sources.forgetCreated(kind);
    }
    m_sources.forgetAirports();
    if (Result noted = writeData(actions); !noted)
        return noted;
    const QString file = sourceFile(TrafficKind::Airports);
    const Result written = actions.replace(file, *bytes);
    if (written)
        return written;
    return Result::failure(u"'"_s + file + u"' could not be written."_s + u' ' + written.text);
}

QList<CAIFlightPlan> CTrafficTools::FlightPlans_Read(const QList<QByteArray>& lines) const
{
    QList<CAIFlightPlan> plans;
    for (const QByteArray& line : lines) {
        if (auto plan = CAIFlightPlan::ofLine(m_context.services.ansi.decode(line)))
            plans.append(std::move(*plan));
    }
    return plans;
}

PlanSurroundings CTrafficTools::surroundings(const QList<QByteArray>& aircraft,
                                             const QList<QByteArray>& airports,
                                             const QList<QByteArray>& plans) const
{
    const AnsiCodec& ansi = m_context.services.ansi;
    PlanSurroundings out;
    out.aircraftFile = m_names.file(TrafficKind::Aircraft);
    out.airportsFile = m_names.file(TrafficKind::Airports);
    for (const QByteArray& line : aircraft) {
        const auto one = CAIAircraft::ofLine(ansi.decode(line));
        if (one && !out.aircraft.contains(one->lngNumber))
            out.aircraft.insert(one->lngNumber, *one);
    }
    for (const QByteArray& line : airports)
        out.airports.addLine(ansi.decode(line));
    for (const QByteArray& line : plans)
        out.plans.insert(CAIFlightPlan::identity(ansi.decode(line).toUtf8()));
    return out;
}

QStringList CTrafficTools::FlightPlan_Validate(const CAIFlightPlan& plan,
                                               const PlanSurroundings& around)
{
    QStringList found;
    if (!around.aircraft.contains(plan.lngAircraft))
        found.append(u"The aircraft '"_s + plan.sAircraft + u"' is not listed in "_s +
                     around.aircraftFile +
                     u". This flight plan will not be active until this aircraft is installed."_s);
    QStringList missing = plan.sarrayAirports;
    missing.removeIf([&](const QString& code) { return around.airports.contains(code); });
    if (!missing.isEmpty())
        found.append(u"The following airport(s) are not listed in "_s + around.airportsFile +
                     u":"_s + u' ' + missing.join(u", "_s) + u". "_s +
                     u"This flight plan will not be active until the airport(s) are installed."_s);
    if (around.plans.contains(CAIFlightPlan::identity(plan.sLine.toUtf8())))
        found.append(u"This flight plan already exists:"_s + u' ' + plan.sLine.trimmed());
    return found;
}

QString CTrafficTools::nothingToValidate()
{
    return u"There are no flight plans to validate."_s;
}

QString CTrafficTools::noProblems()
{
    return u"No problems were detected."_s;
}

} // namespace vt
