// The installation wizard: from choosing an add-on to the finished installation. It owns the
// details and the pages; what is decided, checked and installed is the core's.
#pragma once

#include "install/CAddonInstallationDetails.h"
#include "install/forms/WizardPage.h"
#include "install/forms/WizardSteps.h"
#include "shell/forms/Frame.h"
#include "shell/forms/WizardFrame.h"

#include <QSet>
#include <QTimer>

#include <array>
#include <memory>

namespace vt {

class CAddonInstaller;

class frmInstall_Wizard : public WizardFrame
{
    Q_OBJECT

public:
    /// Both must outlive this; the session writes.
    frmInstall_Wizard(Session& session, Frame& frame, QWidget* parent = nullptr);
    ~frmInstall_Wizard() override;

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;
    bool mayClose() override;

    /// Chooses an archive, a folder or a file in the first step, as if the user had typed it. \a
    /// rest: of it, what a recorded add-on still lacks.
    Result choose(const QString& source, const InstallationRest& rest = {});

    /// Null until an add-on was chosen.
    [[nodiscard]] const CAddonInstallationDetails* details() const { return m_details.get(); }

    // The steps' pages; false when the page that is shown cannot be left.

    bool SubForm_SelectFiles_Show() { return showStep(InstallStep::SelectFiles); }

    bool SubForm_ConfigureAircraft_Show() { return showStep(InstallStep::Aircraft); }

    bool SubForm_ConfigurePanel_Show() { return showStep(InstallStep::Panel); }

    bool SubForm_ConfigureSound_Show() { return showStep(InstallStep::Sound); }

    bool SubForm_ConfigureMissions_Show() { return showStep(InstallStep::Missions); }

    bool SubForm_ConfigureScenery_Show() { return showStep(InstallStep::Scenery); }

    bool SubForm_ConfigureTextures_Show() { return showStep(InstallStep::Textures); }

    bool SubForm_ConfigureAI_Show() { return showStep(InstallStep::AI); }

    bool SubForm_ConfigureOther_Show() { return showStep(InstallStep::Other); }

    bool SubForm_ConfigureOptions_Show() { return showStep(InstallStep::Options); }

    bool SubForm_InstallationSummary_Show() { return showStep(InstallStep::Summary); }

    /// Checks everything and installs. The wizard closes when the add-on is installed.
    void Install_Finish();

protected:
    void stepChosen(int step) override;
    void finishChosen() override;
    [[nodiscard]] QString helpTopic() const override;

private:
    bool showStep(InstallStep step);
    [[nodiscard]] WizardPage* page(InstallStep step);
    void connectPage(WizardPage* page, InstallStep step);
    void enterPage(InstallStep step);
    [[nodiscard]] WizardPage* currentPage() const;
    Result leaveCurrentPage();
    Result SubForm_SelectFiles_IntegrateData(const QString& source);
    void SubForms_Unload();
    void selectionChanged();
    void tellRest();
    [[nodiscard]] Result prepare(CAddonInstallationDetails& details, const QString& source);
    void validate();
    void tellProblem(const QString& problem);
    void refreshSteps();
    void refreshFooter();
    void keepPageSize();
    void restorePageSize();

    // Parts of Install_Finish.
    [[nodiscard]] bool readyToInstall();
    void tell(const QString& text, Icon icon);
    void showFamily(MappedGroup family);
    void showResults(const CAddonInstaller& installer);
    void tellEnd(const CAddonInstaller& installer, bool reached);

    Session& m_session;
    WizardState m_state;
    std::unique_ptr<CAddonInstallationDetails> m_details;
    std::array<WizardPage*, installStepCount> m_pages{};
    QSet<MappedGroup> m_families; ///< that the add-on holds files of
    QSet<int> m_visited;
    QTimer m_validation;          ///< runs out shortly after the last edit
    bool m_othersChanged = false; ///< since the page was entered
    bool m_installing = false;
    InstallationRest m_rest; ///< while a source is taken for it
};

} // namespace vt
