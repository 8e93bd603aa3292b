#include "install/forms/frmInstall_ConfigureSound.h"

#include "session/Session.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

ConfigurePageLook soundLook(WizardState& state)
{
    const GlobalRecord& global = state.session.context().global;
    ConfigurePageLook look;
    look.family = MappedGroup::Sound;
    look.section = Section::InstallConfigureSound;
    look.header = u"Customize sound installation."_s;
    look.prompt =
        u"Click a sound group tab then select an installation method for the sound files."_s;
    look.methodName = u"optSoundMethod"_s;
    look.folderLabel = u"Folde&r:"_s;
    look.chooser.title = u"Select Sound Folder"_s;
    look.chooser.prompt = folderHint(look.family, global.names, global.generation);
    look.chooser.root =
        global.simObjectsFolder.isEmpty() ? global.aircraftFolder : global.simObjectsFolder;
    return look;
}

} // namespace

frmInstall_ConfigureSound::frmInstall_ConfigureSound(WizardState& state, QWidget* parent)
    : ConfigurePage(state, soundLook(state), parent)
{
    build();
}

} // namespace vt
