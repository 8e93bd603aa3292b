// Finishing: the last checks, the installation, and what is told about it.
#include "install/CAddonInstaller.h"
#include "install/forms/frmInstall_Wizard.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/Desktop.h"
#include "shell/forms/Frame.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

namespace vt {

void frmInstall_Wizard::finishChosen()
{
    Install_Finish();
}

void frmInstall_Wizard::tell(const QString& text, Icon icon)
{
    context().services.prompts.ask(announcement(windowTitle(), text, icon));
}

/// Even when the page that is open cannot be left.
void frmInstall_Wizard::showFamily(MappedGroup family)
{
    const InstallStep step = stepOfFamily(family);
    if (int(step) != currentStep() && page(step))
        enterPage(step);
}

bool frmInstall_Wizard::readyToInstall()
{
    if (!m_details || !currentPage()->advance(true))
        return false;
    // What was typed last counts; whether it is right is asked below, family by family.
    (void)leaveCurrentPage();
    if (!m_details->AddonItemGroup_IsAnythingMarkedForInstall()) {
        tell(u"Nothing to install. All addon files are marked 'Do Not Install'."_s,
             Icon::Information);
        return false;
    }
    const QList<FamilyFailure> wrong = m_details->invalidFamilies();
    if (!wrong.isEmpty()) {
        tell(wrong.first().text, Icon::Warning);
        showFamily(wrong.first().family);
        setNotice(wrong.first().why, true);
        return false;
    }
    if (Result named = m_details->Options_InstallationChoices_Validate(); !named) {
        tell(named.text, Icon::Warning);
        if (InstallStep(currentStep()) != InstallStep::Options)
            enterPage(InstallStep::Options);
        setNotice(named.text, true);
        return false;
    }
    return true;
}

void frmInstall_Wizard::Install_Finish()
{
    if (m_installing || !readyToInstall())
        return;
    CAddonInstaller installer(context(), *m_session.database(), *m_details);
    bool reached = false;
    {
        const QScopedValueRollback installing(m_installing, true);
        const Working working(frame());
        setNotice({}, false);
        setFooter({});
        installer.setProcesses(&m_session.processes());
        reached = installer.Install_Begin();
    }
    tellEnd(installer, reached);
}

void frmInstall_Wizard::showResults(const CAddonInstaller& installer)
{
    AfterResults after{{installer.masterKey()}};
    const QString& source = m_details->source().path();
    const QStringList left = installer.notInstalled();
    const bool completable = installer.record().status == InstallationStatus::Installed;
    if (completable && !left.isEmpty() && context().services.files.exists(source))
        after.tryAgain =
            [&frame = frame(), source, rest = InstallationRest{installer.masterKey(), left}] {
                frame.installAddon(source, rest);
            };
    frame().showResults(
        installationResultsCaption(installer.record().name), installer.results(), after);
}

void frmInstall_Wizard::tellEnd(const CAddonInstaller& installer, bool reached)
{
    const Result outcome = installer.outcome();
    if (!reached) {
        say(outcome.text);
        refreshSteps();
        tell(outcome.text, outcome.kind == ErrorKind::Declined ? Icon::Information : Icon::Warning);
        return;
    }
    frame().recordsChanged();
    if (!outcome || context().settings.flag(SettingKey::InstallShowReport))
        showResults(installer);
    say(outcome ? u"The addon was installed."_s : outcome.text);
    if (!installer.movieToPlay().isEmpty())
        desktop::openFile(context().services.files, installer.movieToPlay());
    if (m_details->options().startSimulator)
        frame().startFlying({}, true);
    close();
}

} // namespace vt
