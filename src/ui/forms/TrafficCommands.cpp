#include "ui/forms/TrafficCommands.h"

#include "platform/Processes.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "shell/forms/Desktop.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"
#include "traffic/OutsideTool.h"

#include <functional>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// For what the user answered, or was told in a box, already.
void note(Session& session, const Result& why)
{
    session.services().status.text(u"Primary"_s, why.text);
}

void complain(Session& session, const Result& why)
{
    note(session, why);
    if (why.kind == ErrorKind::Declined)
        return; // by the user
    Context& context = session.context();
    context.services.prompts.ask(
        announcement(context.global.names.productTitle, why.text, Icon::Warning));
}

/// The program in the folder of the settings, even where that folder is not the tool's any more.
ResultOf<QString> programOf(Session& session, const OutsideTool& tool, const QString& program)
{
    Context& context = session.context();
    QString folder = winpath::asFolder(context.settings.text(tool.setting));
    if (folder.isEmpty()) {
        const ResultOf<QString> located = outsidetool::locate(context, tool);
        if (!located) {
            note(session, located.error());
            return Result::failure({}, ErrorKind::Declined);
        }
        folder = *located;
    }
    const QString path = folder + program;
    context.services.files.newOperation();
    if (!context.services.files.isFile(path))
        return Result::failure(path + u" not found."_s);
    return path;
}

void runAirportEditor(Session& session)
{
    const ResultOf<QString> program =
        programOf(session, CAFCAD::tool(session.context()), u"AFCAD.exe"_s);
    if (!program) {
        if (program.kind != ErrorKind::Declined)
            complain(session, program.error());
        return;
    }
    ProcessCall call;
    call.program = *program;
    if (const Result started = session.processes().startDetached(call); !started)
        complain(session, started);
}

void runTrafficTools(frmControl& window, Session& session)
{
    const ResultOf<QString> program =
        programOf(session, CTrafficTools::tool(session.context()), u"TTools.exe"_s);
    if (!program) {
        if (program.kind != ErrorKind::Declined)
            complain(session, program.error());
        return;
    }
    StatusSink& status = session.services().status;
    const ProcessEnd end = [&] {
        const Working working(window);
        status.text(u"Primary"_s, u"Waiting for Traffic Tools to finish..."_s);
        ProcessCall call;
        call.program = *program;
        call.keepWaiting = [&status] { return !status.cancelled(); };
        return session.processes().run(call);
    }();
    session.services().files.newOperation();
    status.text(u"Primary"_s, {});
    if (end.how != ProcessEnd::How::Exited && end.how != ProcessEnd::How::Cancelled)
        complain(session, Result::failure(end.text));
}

/// Locates the tool, has it do one of its steps, and says so.
void runStep(frmControl& window,
             Session& session,
             Result (CTrafficTools::*step)(),
             const QString& done)
{
    CTrafficTools tools(session.context(), &session.processes());
    if (const Result located = tools.Tool_Locate(); !located)
        return note(session, located);
    const Result ran = [&] {
        const Working working(window);
        return (tools.*step)();
    }();
    session.services().status.text(u"Primary"_s, ran ? done : QString());
    if (!ran)
        complain(session, ran);
}

/// Opens a source file; \a name tells its path once the tool is found.
void edit(Session& session, const std::function<QString(const CTrafficTools&)>& name)
{
    CTrafficTools tools(session.context(), &session.processes());
    if (const Result located = tools.Tool_Locate(); !located)
        return note(session, located);
    const QString file = name(tools);
    if (file.isEmpty())
        return complain(
            session,
            Result::failure(u"Traffic Tools keeps no list of collected airports for "_s +
                            session.context().global.names.simLong + u'.'));
    Files& files = session.services().files;
    files.newOperation();
    if (!files.isFile(file))
        complain(session, Result::failure(u"'"_s + file + u"' was not found."_s));
    else if (!desktop::openFile(files, file))
        complain(session,
                 Result::failure(u"The desktop has no program that opens '"_s + file + u"'."_s));
}

} // namespace

void wireTrafficTools(frmControl& window, Session& session)
{
    window.setCommand(u"mnuRunAFCAD"_s, [&session] { runAirportEditor(session); });
    window.setCommand(u"mnuTrafficTools_Run"_s,
                      [&window, &session] { runTrafficTools(window, session); });
    const auto step =
        [&](const QString& entry, Result (CTrafficTools::*run)(), const QString& done) {
            window.setCommand(
                entry, [&window, &session, run, done] { runStep(window, session, run, done); });
        };
    step(u"mnuCompileAITraffic"_s,
         &CTrafficTools::Sources_Compile,
         u"The source files were compiled."_s);
    step(u"mnuDecompileAITraffic"_s,
         &CTrafficTools::Sources_Create,
         u"The source files were created."_s);
    step(u"mnuCollectAirports"_s,
         &CTrafficTools::Airports_Collect,
         u"The airports were collected."_s);
    const auto source = [&](const QString& entry, TrafficKind kind) {
        window.setCommand(entry, [&session, kind] {
            edit(session, [kind](const CTrafficTools& tools) { return tools.sourceFile(kind); });
        });
    };
    source(u"mnuEditTrafficToolsAircraftSource"_s, TrafficKind::Aircraft);
    source(u"mnuEditTrafficToolsAirportsSource"_s, TrafficKind::Airports);
    source(u"mnuEditTrafficToolsFlightPlansSource"_s, TrafficKind::FlightPlans);
    window.setCommand(u"mnuEditTrafficToolsCollectAirportsSource"_s, [&session] {
        edit(session, [](const CTrafficTools& tools) {
            const QString& list = tools.names().collectedAirports;
            return list.isEmpty() ? QString() : tools.folder() + list;
        });
    });
}

} // namespace vt
