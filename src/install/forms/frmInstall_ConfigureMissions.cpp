#include "install/forms/frmInstall_ConfigureMissions.h"

#include "install/CAddonInstallationDetails.h"
#include "platform/WinPath.h"
#include "session/Session.h"
#include "shell/forms/FolderBox.h"
#include "shell/forms/WrappedLabel.h"

#include <QAction>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

ConfigurePageLook missionsLook(WizardState& state)
{
    ConfigurePageLook look;
    look.family = MappedGroup::Missions;
    look.section = Section::InstallConfigureMissions;
    look.header = u"Customize mission installation."_s;
    look.prompt = u"Click a mission group tab then select "_s +
                  u"an installation method for the mission files."_s;
    look.methodName = u"optMissionMethod"_s;
    look.folderLabel = u"Folde&r:"_s;
    look.chooser.title = u"Select Mission Folder"_s;
    look.chooser.prompt = u"Select a folder under the Missions folder."_s;
    look.chooser.root = state.session.context().global.missionsFolder;
    return look;
}

} // namespace

frmInstall_ConfigureMissions::frmInstall_ConfigureMissions(WizardState& state, QWidget* parent)
    : ConfigurePage(state, missionsLook(state), parent)
{
    m_title = new QLabel(this);
    m_title->setTextFormat(Qt::PlainText);
    wrap(m_title);
    build(m_title);
    m_categories = new QMenu(this);
    m_category = new QToolButton(folderBox());
    m_category->setObjectName(u"cmdChangeCategory"_s);
    m_category->setText(u"Categor&y"_s);
    m_category->setToolTip(u"Put the mission under one of the simulator's categories"_s);
    m_category->setPopupMode(QToolButton::InstantPopup);
    m_category->setMenu(m_categories);
    m_category->setFocusPolicy(Qt::StrongFocus);
    folderBox()->addButton(m_category);
    connect(m_categories, &QMenu::aboutToShow, this, [this] { fillCategories(); });
}

void frmInstall_ConfigureMissions::showGroup()
{
    m_title->setText(u"Configure Missions - "_s + details().addon().sGroupName);
}

Result frmInstall_ConfigureMissions::takeMethod(InstallationMethod method)
{
    const Result taken = ConfigurePage::takeMethod(method);
    if (method == InstallationMethod::ChosenFolder) {
        m_folderWanted = true;
        say(u"Press Next to select the mission folder."_s);
    }
    return taken;
}

/// Each category is a folder below the simulator's missions; the mission keeps its own folder's
/// name below it.
void frmInstall_ConfigureMissions::fillCategories()
{
    m_categories->clear();
    const QString missions = state().session.context().global.missionsFolder;
    const QList<FileInfo> entries = state().session.services().files.list(missions);
    for (const FileInfo& entry : entries) {
        if (!entry.folder)
            continue;
        QAction* choice = m_categories->addAction(QString(entry.name).replace(u'&', u"&&"_s));
        connect(choice, &QAction::triggered, this, [this, folder = missions + entry.name + u'\\'] {
            const InstallationGroup* shown = shownGroup();
            const QString own =
                shown ? winpath::name(shown->targetFolder.isEmpty() ? shown->sourceFolder
                                                                    : shown->targetFolder)
                      : QString();
            (void)folderBox()->give(own.isEmpty() ? folder : folder + own + u'\\');
        });
    }
    if (m_categories->isEmpty())
        m_categories->addAction(u"No categories are available."_s)->setEnabled(false);
}

} // namespace vt
