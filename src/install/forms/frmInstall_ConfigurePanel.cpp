#include "install/forms/frmInstall_ConfigurePanel.h"

#include "session/Session.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

ConfigurePageLook panelLook(WizardState& state)
{
    const GlobalRecord& global = state.session.context().global;
    ConfigurePageLook look;
    look.family = MappedGroup::Panel;
    look.section = Section::InstallConfigurePanel;
    look.header = u"Customize panel installation."_s;
    look.prompt =
        u"Click a panel group tab then select an installation method for the panel files."_s;
    look.methodName = u"optPanelMethod"_s;
    look.folderLabel = u"Folde&r:"_s;
    look.chooser.title = u"Select Panel Folder"_s;
    look.chooser.prompt = folderHint(look.family, global.names, global.generation);
    look.chooser.root =
        global.simObjectsFolder.isEmpty() ? global.aircraftFolder : global.simObjectsFolder;
    return look;
}

} // namespace

frmInstall_ConfigurePanel::frmInstall_ConfigurePanel(WizardState& state, QWidget* parent)
    : ConfigurePage(state, panelLook(state), parent)
{
    build();
}

} // namespace vt
