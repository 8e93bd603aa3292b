#include "app/Wiring.h"

#include "addondb/forms/DatabaseCommands.h"
#include "archive/forms/SelectCommands.h"
#include "install/forms/InstallCommands.h"
#include "remove/forms/RemovalCommands.h"
#include "shell/Settings.h"
#include "shell/forms/Desktop.h"
#include "shell/forms/frmAbout.h"
#include "shell/forms/frmHelp.h"
#include "shell/forms/frmProgramInfo.h"
#include "shell/startup/Preparation.h"
#include "ui/forms/AddonListCommands.h"
#include "ui/forms/PictureCommands.h"
#include "ui/forms/TrafficCommands.h"

#include <QApplication>

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
}

/// As a child of the main window; above a dialog, which lets nothing else be used, in a window of
/// its own.
void openHelp(frmControl& window, Session& session, const QString& topic)
{
    frmHelp* help = nullptr;
    if (QWidget* dialog = QApplication::activeModalWidget()) {
        help = dialog->findChild<frmHelp*>();
        if (!help) {
            help = new frmHelp(session.context(), dialog);
            help->setWindowFlag(Qt::Window);
            help->resize(window.size() * 3 / 4);
            help->Form_PrepareToShow();
        }
        help->show();
        help->raise();
        help->activateWindow();
    } else {
        help = qobject_cast<frmHelp*>(
            window.openTool(u"help"_s, u"Opening Help Topics..."_s, [&]() -> ToolWindow* {
                return new frmHelp(session.context());
            }));
    }
    if (help)
        help->showTopic(topic);
}

/// An address of the settings; where there is none, the topic that tells how to report.
void openSite(frmControl& window, Session& session, SettingKey address)
{
    Context& context = session.context();
    const QString text = context.settings.text(address);
    if (text.isEmpty()) {
        window.showHelp(u"report"_s);
        return;
    }
    if (const Result opened = desktop::openAddress(text); !opened)
        context.services.prompts.ask(
            announcement(context.global.names.productTitle, opened.text, Icon::Warning));
}

void wireHelp(frmControl& window, Session& session)
{
    window.hooks.showHelp = [&window, &session](const QString& topic) {
        openHelp(window, session, topic);
    };
    window.setCommand(u"mnuHelpTopics"_s, [&window] { window.showHelp(); });
    window.setCommand(u"mnuHowToUseThisProgram"_s, [&window] { window.showHelp(u"how-to-use"_s); });
    const auto site = [&](const QString& entry, SettingKey address) {
        window.setCommand(entry,
                          [&window, &session, address] { openSite(window, session, address); });
    };
    site(u"mnuBugReport"_s, SettingKey::BugReportAddress);
    site(u"mnuWebSite"_s, SettingKey::WebSite);
    site(u"mnuFSWebSite"_s, SettingKey::SimulatorWebSite);
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
    wireHelp(window, session);
    wireRemoval(window, session);
    wireBrowseFolders(window, session);
    wireAddonLists(window, session);
    wirePictures(window, session);
    wireTrafficTools(window, session);
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
