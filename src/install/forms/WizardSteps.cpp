#include "install/forms/WizardSteps.h"

#include "install/forms/frmInstall_ConfigureAI.h"
#include "install/forms/frmInstall_ConfigureAircraft.h"
#include "install/forms/frmInstall_ConfigureMissions.h"
#include "install/forms/frmInstall_ConfigureOptions.h"
#include "install/forms/frmInstall_ConfigureOther.h"
#include "install/forms/frmInstall_ConfigurePanel.h"
#include "install/forms/frmInstall_ConfigureScenery.h"
#include "install/forms/frmInstall_ConfigureSound.h"
#include "install/forms/frmInstall_ConfigureTextures.h"
#include "install/forms/frmInstall_SelectFiles.h"
#include "install/forms/frmInstall_Summary.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// A hint in which the caption of its own step stands between two halves.
WizardStep
step(const QString& objectName, const QString& caption, const QString& before, const QString& after)
{
    return {objectName, caption, WizardFrame::withCaption(before, caption, after)};
}

} // namespace

QList<WizardStep> installSteps(const DisplayNames& names)
{
    return {
        step(
            u"cmdSelectFiles"_s,
            u"Select A&ddon Files"_s,
            u"Select the addon you would like to install. "_s + names.productName +
                u" works best when you select the addon zip file directly. The zip file may be located in any folder on your hard drive or on external media. Press "_s,
            u" to locate the addon."_s),
        step(u"cmdConfigureAircraft"_s,
             u"Configure &Aircraft"_s,
             u"One or more aircraft files will be installed. Press "_s,
             u" to choose a destination folder and image for this aircraft."_s),
        step(u"cmdConfigurePanel"_s,
             u"Configure Pane&l"_s,
             u"One or more panel files will be installed. Press "_s,
             u" to choose an installation method, destination folder and image for this panel."_s),
        step(u"cmdConfigureSound"_s,
             u"Configure &Sound"_s,
             u"One or more sound files will be installed. Press "_s,
             u" to choose an installation method and destination folder for this sound."_s),
        // The missing word has always been missing.
        step(u"cmdConfigureMissions"_s,
             u"Configure &Missions"_s,
             u"One or missions will be installed. Press "_s,
             u" to choose an installation method and destination folder for your mission files."_s),
        step(u"cmdConfigureScenery"_s,
             u"Configure Sc&enery"_s,
             u"One or more scenery files will be installed. Press "_s,
             u" to choose an installation method and set scenery library update options."_s),
        step(u"cmdConfigureTextures"_s,
             u"Configure &Textures"_s,
             u"One or more scenery/miscellaneous texture files will be installed. Press "_s,
             u" to choose an installation method and destination folder."_s),
        step(
            u"cmdConfigureAI"_s,
            u"Configure A.I. Traffic"_s,
            u"One or more A.I. traffic management files will be installed. These include Traffic Tools A.I. flight plans. Press "_s,
            u" to configure these files for installation."_s),
        step(
            u"cmdConfigureOther"_s,
            u"Configure Oth&er"_s,
            u"One or more adventure, adventure source, briefing, flight, flight plan, video, documentation or other files will be installed. Press "_s,
            u" to review the installation settings for these files."_s),
        step(u"cmdConfigureOptions"_s,
             u"Installation &Options"_s,
             u"Press "_s,
             u" to name this addon, give it a description and set final options."_s),
        step(u"cmdInstallationSummary"_s,
             u"Installation S&ummary"_s,
             u"Press "_s,
             u" to see a report listing all files and how they will be installed."_s),
    };
}

MappedGroup familyOfStep(InstallStep step)
{
    switch (step) {
    case InstallStep::Aircraft:
        return MappedGroup::Aircraft;
    case InstallStep::Panel:
        return MappedGroup::Panel;
    case InstallStep::Sound:
        return MappedGroup::Sound;
    case InstallStep::Missions:
        return MappedGroup::Missions;
    case InstallStep::Scenery:
        return MappedGroup::Scenery;
    case InstallStep::Textures:
        return MappedGroup::Texture;
    case InstallStep::AI:
        return MappedGroup::TrafficTools;
    case InstallStep::Other:
        return MappedGroup::DocumentAndOther;
    default:
        return MappedGroup::None;
    }
}

InstallStep stepOfFamily(MappedGroup family)
{
    for (int i = int(InstallStep::Aircraft); i <= int(InstallStep::Other); ++i) {
        if (familyOfStep(InstallStep(i)) == family)
            return InstallStep(i);
    }
    return family == MappedGroup::Afcad ? InstallStep::AI : InstallStep::Other;
}

WizardPage* newPage(InstallStep step, WizardState& state)
{
    switch (step) {
    case InstallStep::SelectFiles:
        return new frmInstall_SelectFiles(state);
    case InstallStep::Aircraft:
        return new frmInstall_ConfigureAircraft(state);
    case InstallStep::Panel:
        return new frmInstall_ConfigurePanel(state);
    case InstallStep::Sound:
        return new frmInstall_ConfigureSound(state);
    case InstallStep::Missions:
        return new frmInstall_ConfigureMissions(state);
    case InstallStep::Scenery:
        return new frmInstall_ConfigureScenery(state);
    case InstallStep::Textures:
        return new frmInstall_ConfigureTextures(state);
    case InstallStep::AI:
        return new frmInstall_ConfigureAI(state);
    case InstallStep::Other:
        return new frmInstall_ConfigureOther(state);
    case InstallStep::Options:
        return new frmInstall_ConfigureOptions(state);
    case InstallStep::Summary:
        return new frmInstall_Summary(state);
    case InstallStep::Count:
        break;
    }
    return nullptr;
}

} // namespace vt
