#include "install/forms/InstallCommands.h"

#include "install/forms/frmInstall_Wizard.h"
#include "shell/startup/CommandLine.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

void openInstallation(frmControl& window,
                      Session& session,
                      const QString& source,
                      const InstallationRest& rest)
{
    ToolWindow* open =
        window.openTool(u"install"_s, u"Opening Install An Addon..."_s, [&]() -> ToolWindow* {
            return new frmInstall_Wizard(session, window);
        });
    auto* wizard = qobject_cast<frmInstall_Wizard*>(open);
    if (!wizard || source.isEmpty())
        return;
    (void)wizard->choose(source, rest); // its first page says what is wrong with the source
}

/// Also where a second start's file is picked up.
void installFromMenu(frmControl& window, Session& session)
{
    Services& services = session.services();
    services.files.newOperation();
    const QString handedOver =
        takeStartupFile(services.files, services.actions, session.context().global);
    window.installAddon(handedOver);
}

} // namespace

void wireInstallation(frmControl& window, Session& session)
{
    window.hooks.installAddon = [&window, &session](const QString& source,
                                                    const InstallationRest& rest) {
        openInstallation(window, session, source, rest);
    };
    window.setCommand(u"mnuFile_InstallAnAddon"_s,
                      [&window, &session] { installFromMenu(window, session); });
}

} // namespace vt
