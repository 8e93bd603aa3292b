#include "install/forms/CInstallWizardSubFormManager.h"

#include "install/CAddonInstallationDetails.h"
#include "install/forms/InstallItemModel.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/Icons.h"
#include "shell/forms/WrappedLabel.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Longest tab, in average characters.
constexpr int tabWidth = 28;
/// Least height of the list, in lines.
constexpr int leastLines = 2;

void showHint(QLabel* label, const QString& text, bool shown)
{
    label->setText(shown ? text : QString());
    label->parentWidget()->setVisible(shown);
}

/// A line with the icon of a problem before it; hidden at first.
QLabel* hintLine(const QString& name, QVBoxLayout* column, QWidget* page)
{
    auto* line = new QWidget(page);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins({});
    auto* icon = new QLabel(line);
    const int extent = line->style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, line);
    icon->setPixmap(icons::state(icons::State::Problem).pixmap(extent, extent));
    auto* text = new QLabel(line);
    text->setObjectName(name);
    wrap(text);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addWidget(text, 1);
    line->hide();
    column->addWidget(line);
    return text;
}

} // namespace

CInstallWizardSubFormManager::CInstallWizardSubFormManager(WizardState& state,
                                                           const QList<MappedGroup>& families,
                                                           Section section,
                                                           QWidget* page)
    : QObject(page), m_state(state), m_families(families), m_section(section), m_page(page)
{}

CAddonInstallationDetails& CInstallWizardSubFormManager::details() const
{
    return *m_state.details;
}

void CInstallWizardSubFormManager::buildTabs()
{
    m_tabs = new QTabBar(m_page);
    m_tabs->setObjectName(u"tabGroups"_s);
    m_tabs->setAccessibleName(u"Groups of files"_s);
    m_tabs->setExpanding(false);
    m_tabs->setDrawBase(false);
    m_tabs->setElideMode(Qt::ElideMiddle);
    m_tabs->setUsesScrollButtons(true);
    m_noTabs = new QLabel(u"No categories are available."_s, m_page);
    m_noTabs->setObjectName(u"lblNoCategories"_s);
    connect(m_tabs, &QTabBar::currentChanged, this, [this] {
        fillList();
        Q_EMIT placeShown();
    });
}

void CInstallWizardSubFormManager::buildList()
{
    m_model = new InstallItemModel(this);
    m_list = new ColumnView(m_page);
    m_list->setObjectName(u"lvwItems"_s);
    m_list->setAccessibleName(u"Files and where they go"_s);
    m_list->setPathColumns({InstallItemModel::File, InstallItemModel::TargetFolder});
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setRootIsDecorated(false);
    m_list->setEmptyText(u"No files belong to this page."_s);
    m_list->setModel(m_model);
    connect(m_model, &InstallItemModel::ticked, this, [this](qint32 key, bool install) {
        // A tick in a selection counts for the whole of it.
        QList<qint32> keys = selectedKeys();
        if (!keys.contains(key))
            keys = {key};
        (void)decide([&] {
            details().AddonItems_InstallationStatus_Modify(keys, install);
            return Result::success();
        });
    });
}

QAction* CInstallWizardSubFormManager::addCommand(const QString& name,
                                                  const QString& text,
                                                  const QList<QKeySequence>& keys,
                                                  void (CInstallWizardSubFormManager::*run)())
{
    auto* action = new QAction(text, m_list);
    action->setObjectName(name);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setShortcuts(keys);
    m_list->addAction(action);
    m_commands->addAction(action);
    connect(action, &QAction::triggered, this, run);
    return action;
}

void CInstallWizardSubFormManager::buildActions()
{
    using M = CInstallWizardSubFormManager;
    m_commands = new QMenu(m_page);
    m_install = addCommand(
        u"mnuInstall"_s, u"&Install"_s, {QKeySequence(Qt::Key_Insert)}, &M::Items_Install);
    m_doNotInstall = addCommand(u"mnuDoNotInstall"_s,
                                u"&Do Not Install"_s,
                                {QKeySequence(Qt::Key_Delete)},
                                &M::Items_DoNotInstall);
    m_commands->addSeparator();
    m_rename =
        addCommand(u"mnuRename"_s, u"&Rename..."_s, {QKeySequence(Qt::Key_F2)}, &M::Item_Rename);
    m_selectFolder = addCommand(u"mnuSelectFolder"_s,
                                u"Select Target &Folder..."_s,
                                {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F)},
                                &M::Items_SelectFolder);
    m_copyFolder = addCommand(u"mnuCopyFolder"_s,
                              u"Cop&y Folder"_s,
                              {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)},
                              &M::Item_CopyFolder);
    m_pasteFolder = addCommand(
        u"mnuPasteFolder"_s,
        u"&Paste Folder"_s,
        {QKeySequence(Qt::CTRL | Qt::Key_V), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V)},
        &M::Items_PasteFolder);
    m_follow =
        addCommand(u"mnuFollow"_s, u"Same Folder as Ano&ther File..."_s, {}, &M::Items_Follow);
    connect(m_list, &ColumnView::menuWanted, this, [this](QMenu* menu) {
        updateActions();
        menu->addActions(m_commands->actions());
        menu->addSeparator();
        menu->addAction(m_list->selectAllAction());
        menu->addAction(m_list->copyAction());
        menu->addSeparator();
    });
    connect(m_commands, &QMenu::aboutToShow, this, &M::updateActions);
}

QWidget* CInstallWizardSubFormManager::addTabs(QVBoxLayout* column)
{
    buildTabs();
    column->addWidget(m_tabs);
    column->addWidget(m_noTabs);
    return m_tabs;
}

void CInstallWizardSubFormManager::addList(QVBoxLayout* column)
{
    auto* caption = new QLabel(u"Chec&k what goes where:"_s, m_page);
    m_change = new QToolButton(m_page);
    m_change->setObjectName(u"cmdChangeItems"_s);
    m_change->setText(u"Chan&ge Selected Files"_s);
    m_change->setToolTip(u"What can be done with the files that are selected in the list"_s);
    m_change->setPopupMode(QToolButton::InstantPopup);
    m_change->setFocusPolicy(Qt::StrongFocus);
    buildList();
    buildActions();
    caption->setBuddy(m_list);
    m_change->setMenu(m_commands);
    auto* row = new QHBoxLayout;
    row->addWidget(caption, 1, Qt::AlignBottom);
    row->addWidget(m_change);
    column->addLayout(row);
    column->addWidget(m_list, 1);
    m_list->setMinimumHeight(m_list->fontMetrics().lineSpacing() * (leastLines + 1));
    // On a low page the list gives way before anything has to be scrolled for.
    m_list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    m_folderHint = hintLine(u"lblTargetFolderHint"_s, column, m_page);
    m_nameHint = hintLine(u"lblProblemHint"_s, column, m_page);
}

CInstallWizardSubFormManager::Place CInstallWizardSubFormManager::current() const
{
    return m_places.value(m_tabs->currentIndex());
}

void CInstallWizardSubFormManager::setCurrent(const Place& place)
{
    for (qsizetype i = 0; i < m_places.size(); ++i) {
        if (m_places.at(i).family == place.family && m_places.at(i).group == place.group)
            m_tabs->setCurrentIndex(int(i));
    }
}

void CInstallWizardSubFormManager::fillTabs()
{
    const Place before = current();
    const QSignalBlocker silent(m_tabs);
    while (m_tabs->count() > 0)
        m_tabs->removeTab(0);
    m_places.clear();
    const int width = m_tabs->fontMetrics().averageCharWidth() * tabWidth;
    for (const MappedGroup family : std::as_const(m_families)) {
        const std::vector<InstallationGroup>& groups = details().groups(family);
        for (size_t i = 0; i < groups.size(); ++i) {
            const QString& name = groups[i].name;
            QString shown = m_tabs->fontMetrics().elidedText(name, Qt::ElideMiddle, width);
            const int tab = m_tabs->addTab(shown.replace(u'&', u"&&"_s));
            m_tabs->setTabToolTip(tab,
                                  name + (groups[i].sourceFolder.isEmpty()
                                              ? QString()
                                              : u'\n' + groups[i].sourceFolder));
            m_tabs->setAccessibleTabName(tab, name);
            m_places.append({family, int(i)});
        }
    }
    if (m_places.size() > 1) {
        const bool first = m_state.session.context().settings.flag(SettingKey::ShowAllTabFirst);
        const int at = first ? 0 : int(m_places.size());
        m_tabs->insertTab(at, u"All Files"_s);
        m_tabs->setTabToolTip(at, u"The files of all groups of this page"_s);
        m_places.insert(at, {m_families.first(), -1});
        m_tabs->setCurrentIndex(0);
    }
    setCurrent(before);
    m_tabs->setVisible(!m_places.isEmpty());
    m_noTabs->setVisible(m_places.isEmpty());
    m_tabs->updateGeometry(); // a bar that is not shown yet does not tell of its tabs
}

QList<qint32> CInstallWizardSubFormManager::keysOf(const Place& place) const
{
    if (place.group >= 0)
        return details().groups(place.family)[size_t(place.group)].items;
    QList<qint32> keys;
    for (const CAddon_Item& item : details().addon().colAddonItems()) {
        if (m_families.contains(item.enumMappedGroup))
            keys.append(item.lngKey);
    }
    return keys;
}

void CInstallWizardSubFormManager::fillList()
{
    m_model->show(m_state.details, keysOf(current()), m_state.session.services().files);
    if (!m_layoutRestored) {
        m_layoutRestored = true;
        m_list->restoreLayout(m_state.session.context().settings, m_section);
    }
    showHints();
}

void CInstallWizardSubFormManager::enter()
{
    fillTabs();
    fillList();
}

void CInstallWizardSubFormManager::refresh()
{
    m_model->refresh(m_state.session.services().files);
    showHints();
}

void CInstallWizardSubFormManager::saveLayout()
{
    if (m_layoutRestored)
        m_list->saveLayout(m_state.session.context().settings, m_section);
}

Result CInstallWizardSubFormManager::validate() const
{
    const QList<FamilyFailure> failures = details().invalidFamilies();
    for (const FamilyFailure& failure : failures) {
        if (m_families.contains(failure.family))
            return Result::failure(failure.why);
    }
    return Result::success();
}

void CInstallWizardSubFormManager::showHints()
{
    showHint(m_folderHint,
             u"Some target folders are not specified. See Target Folder column."_s,
             m_model->anyWithoutFolder());
    showHint(m_nameHint,
             u"Some names and target folders are identical. See Problem Details column."_s,
             m_model->anyTwice());
}

} // namespace vt
