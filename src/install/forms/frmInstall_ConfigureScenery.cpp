#include "install/forms/frmInstall_ConfigureScenery.h"

#include "install/CAddonInstallationDetails.h"
#include "install/forms/AccessKey.h"
#include "session/Session.h"
#include "shell/forms/WrappedLabel.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

ConfigurePageLook sceneryLook(WizardState& state)
{
    ConfigurePageLook look;
    look.family = MappedGroup::Scenery;
    look.section = Section::InstallConfigureScenery;
    look.header = u"Customize scenery installation."_s;
    look.prompt =
        u"Click a scenery group tab then select an installation method for the scenery files."_s;
    look.methodName = u"optSceneryMethod"_s;
    look.folderLabel = u"Folde&r:"_s;
    look.chooser.title = u"Select Scenery Folder"_s;
    look.chooser.prompt =
        u"Select the folder that holds, or is to hold, the scenery and texture folders."_s;
    look.chooser.root = state.session.context().global.sceneryAddonFolder;
    return look;
}

} // namespace

frmInstall_ConfigureScenery::frmInstall_ConfigureScenery(WizardState& state, QWidget* parent)
    : ConfigurePage(state, sceneryLook(state), parent)
{
    build(nullptr, [this] { return library(); });
}

frmInstall_ConfigureScenery::~frmInstall_ConfigureScenery()
{
    m_title->disconnect(this); // with the focus in it, it ends its editing when it goes
}

QWidget* frmInstall_ConfigureScenery::library()
{
    const DisplayNames& names = state().session.context().global.names;
    auto* frame = new QGroupBox(u"Scenery Library"_s, this);
    m_library = frame;
    auto* grid = new QGridLayout(frame);
    m_update = new QCheckBox(withAccessKey(names.productName + u" can update "_s + names.simLong +
                                               u"'s scenery library (Scenery.cfg)."_s,
                                           u'c'),
                             frame);
    m_update->setObjectName(u"chkUpdateSceneryLibrary"_s);
    grid->addWidget(m_update, 0, 0, 1, 2);
    m_title = new QLineEdit(frame);
    m_title->setObjectName(u"txtSceneryTitle"_s);
    auto* caption = new QLabel(u"Title in the librar&y:"_s, frame);
    caption->setBuddy(m_title);
    grid->addWidget(caption, 1, 0);
    grid->addWidget(m_title, 1, 1);
    m_warning =
        new QLabel(u"Without the update you "_s +
                       u"must locate, arrange, layer and activate the scenery manually"_s + u'.',
                   frame);
    m_warning->setObjectName(u"lblWithoutUpdate"_s);
    wrap(m_warning);
    m_update->setToolTip(m_warning->text());
    grid->addWidget(m_warning, 2, 0, 1, 2);
    connect(m_update, &QCheckBox::toggled, this, &frmInstall_ConfigureScenery::takeLibrary);
    connect(m_title, &QLineEdit::editingFinished, this, &frmInstall_ConfigureScenery::takeLibrary);
    return frame;
}

void frmInstall_ConfigureScenery::showGroup()
{
    const QScopedValueRollback filling(m_filling, true);
    const InstallationGroup* shown = shownGroup();
    m_library->setEnabled(shown != nullptr);
    m_update->setChecked(shown && shown->sceneryLibraryUpdate);
    m_title->setText(shown ? shown->sceneryTitle : QString());
    m_title->setEnabled(shown && shown->sceneryLibraryUpdate);
    m_warning->setVisible(shown && !shown->sceneryLibraryUpdate);
}

void frmInstall_ConfigureScenery::takeLibrary()
{
    const InstallationGroup* shown = shownGroup();
    if (m_filling || !shown ||
        (shown->sceneryLibraryUpdate == m_update->isChecked() &&
         shown->sceneryTitle == m_title->text().trimmed()))
        return;
    (void)manager().decide([&] {
        details().Scenery_InstallationDetails_ModifyPerSceneryLibraryUpdateSelection(
            group(), m_update->isChecked(), m_title->text());
        return Result::success();
    });
}

Result frmInstall_ConfigureScenery::leave()
{
    takeLibrary();
    return ConfigurePage::leave();
}

bool frmInstall_ConfigureScenery::advance(bool forward)
{
    takeLibrary();
    return ConfigurePage::advance(forward);
}

} // namespace vt
