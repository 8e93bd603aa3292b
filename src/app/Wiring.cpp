#include "app/Wiring.h"

#include "addondb/forms/DatabaseCommands.h"
#include "archive/forms/SelectCommands.h"
#include "install/forms/InstallCommands.h"
#include "remove/forms/RemovalCommands.h"
#include "shell/forms/frmAbout.h"
#include "shell/forms/frmProgramInfo.h"
#include "shell/startup/Preparation.h"
#include "ui/forms/AddonListCommands.h"

#include <array>

using namespace Qt::StringLiterals;

namespace vt::app {

namespace {

void wireFile(frmControl& window, Session& session)
{
    window.setCommand(u"mnuFile_ProgramInfo"_s, [&window, &session] {
        window.openTool(u"program info"_s, u"Opening Program Info..."_s, [&]() -> ToolWindow* {
            return new frmProgramInfo(session.context(), QStringLiteral(VANTREL_VERSION));
        });
    });
    window.setCommand(u"mnuAbout"_s, [&window, &session] {
        frmAbout(session.context().global.names, QStringLiteral(VANTREL_VERSION), &window).exec();
    });
}

/// The command that each value of "Open With" stands for.
constexpr std::array<const char16_t*, 13> firstCommands = {u"mnuAddonWizard",
                                                           u"mnuFile_InstallAnAddon",
                                                           u"mnuFile_RemoveAnAddon",
                                                           u"mnuWorkWithAllAddons",
                                                           u"mnuInstalledAddons",
                                                           u"mnuFileCabinet",
                                                           u"mnuEditAircraft",
                                                           u"mnuEditPanels",
                                                           u"mnuEditSounds",
                                                           u"mnuScenery",
                                                           u"mnuAddonHistory",
                                                           u"mnuFS9CFGManager",
                                                           u"mnuAITrafficManager"};
constexpr int addonWizard = 0;

} // namespace

void wire(frmControl& window, Session& session)
{
    window.hooks.processes = [&session]() -> const Processes& { return session.processes(); };
    wireFile(window, session);
    wireInstallation(window, session);
    wireRemoval(window, session);
    wireBrowseFolders(window, session);
    wireAddonLists(window, session);
    wireDatabaseTools(window, session);
}

void openFirst(frmControl& window, Session& session, int openWith)
{
    Context& context = session.context();
    const QString text =
        openWithStatus(openWith, context.global.generation, u"FS Configuration Manager"_s);
    if (text.isEmpty())
        return; // values that open nothing
    const QString name = QString::fromUtf16(firstCommands[static_cast<size_t>(openWith)]);
    if (window.hasCommand(name)) {
        context.services.status.text(u"Primary"_s, text);
        window.command(name);
    }
    if (openWith == addonWizard)
        context.services.status.text(u"Primary"_s, welcomeText(context.global.names));
}

} // namespace vt::app
