#include "install/forms/frmInstall_ConfigureAircraft.h"

#include "session/Session.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

ConfigurePageLook aircraftLook(WizardState& state)
{
    const GlobalRecord& global = state.session.context().global;
    ConfigurePageLook look;
    look.family = MappedGroup::Aircraft;
    look.section = Section::InstallConfigureAircraft;
    look.header = u"Customize aircraft installation."_s;
    look.prompt =
        u"Click an aircraft group tab then choose an installation folder and a picture for the aircraft."_s;
    look.methodName = u"optAircraftMethod"_s;
    look.folderLabel = u"Folde&r:"_s;
    look.chooser.title = u"Select Aircraft Folder"_s;
    look.chooser.prompt = folderHint(look.family, global.names, global.generation);
    look.chooser.root =
        global.simObjectsFolder.isEmpty() ? global.aircraftFolder : global.simObjectsFolder;
    return look;
}

} // namespace

frmInstall_ConfigureAircraft::frmInstall_ConfigureAircraft(WizardState& state, QWidget* parent)
    : ConfigurePage(state, aircraftLook(state), parent)
{
    build();
}

} // namespace vt
