#include "install/forms/frmInstall_Summary.h"

#include "install/forms/ConfigChangesView.h"
#include "install/forms/PlannedFilesModel.h"
#include "platform/Text.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/Frame.h"
#include "shell/forms/Icons.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QTabWidget>
#include <QTreeWidget>

#include <utility>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

enum Tab
{
    FilesTab,
    ChangesTab,
    AdditionsTab,
    ProblemsTab,
};

/// "Problems (3)"; the caption alone for none.
QString withCount(const QString& caption, qsizetype count)
{
    return count == 0 ? caption : QString(caption + u" ("_s + QString::number(count) + u')');
}

} // namespace

frmInstall_Summary::frmInstall_Summary(WizardState& state, QWidget* parent)
    : WizardPage(state, parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    m_tabs = new QTabWidget;
    m_changes = new ConfigChangesView;
    m_tabs->addTab(filesTab(), QString());
    m_tabs->addTab(m_changes, QString());
    m_tabs->addTab(additionsTab(), QString());
    m_tabs->addTab(problemsTab(), QString());
    m_tabs->setTabToolTip(FilesTab, u"Every file below the folder that it goes to"_s);
    m_tabs->setTabToolTip(ChangesTab, u"Configuration files that change, line by line"_s);
    layout->addWidget(m_tabs, 1);
    m_remark = new QLabel;
    m_remark->setObjectName(u"lblRemark"_s);
    m_remark->setWordWrap(true);
    layout->addWidget(m_remark);
}

QString frmInstall_Summary::header() const
{
    return u"Review installation summary."_s;
}

// The parts.

QWidget* frmInstall_Summary::filesTab()
{
    auto* tab = new QWidget;
    auto* column = new QVBoxLayout(tab);
    auto* row = new QHBoxLayout;
    auto* label = new QLabel(u"&Kind:"_s);
    m_filter = new QComboBox;
    m_filter->setObjectName(u"cboFilter"_s);
    m_filter->addItems({u"All files"_s,
                        u"Only what is replaced"_s,
                        u"Only what is changed"_s,
                        u"Only problems"_s});
    label->setBuddy(m_filter);
    m_counts = new QLabel;
    m_counts->setObjectName(u"lblCounts"_s);
    m_counts->setWordWrap(true);
    row->addWidget(label);
    row->addWidget(m_filter);
    row->addWidget(m_counts, 1);
    column->addLayout(row);

    m_model = new PlannedFilesModel(this);
    m_files = new ColumnView;
    m_files->setObjectName(u"lvwSummary"_s);
    m_files->setAccessibleName(u"Files and where they go"_s);
    m_files->setRootIsDecorated(true);
    m_files->setHiddenAtFirst({PlannedFilesModel::FolderColumn});
    m_files->setPathColumns({PlannedFilesModel::NameColumn,
                             PlannedFilesModel::SourceColumn,
                             PlannedFilesModel::FolderColumn});
    m_files->setModel(m_model);
    m_files->setEmptyText(u"No file is of this kind."_s);
    m_files->restoreLayout(state().session.context().settings, section(), ViewPrefix::Files);
    column->addWidget(m_files, 1);
    connect(m_filter, &QComboBox::currentIndexChanged, this, &frmInstall_Summary::filterChanged);
    connect(m_files, &QTreeView::activated, this, [this](const QModelIndex& index) {
        if (const qint32 item = index.data(FileTreeModel::IdRole).toInt(); item > 0)
            Q_EMIT itemStepWanted(item);
    });
    return tab;
}

QWidget* frmInstall_Summary::additionsTab()
{
    auto* tab = new QWidget;
    auto* column = new QVBoxLayout(tab);
    m_additions = new QTreeWidget;
    m_additions->setObjectName(u"tvwAdditions"_s);
    m_additions->setAccessibleName(u"Scenery areas and aircraft variations that are added"_s);
    m_additions->setHeaderLabels({u"Title"_s, u"Folder"_s});
    m_additions->setAlternatingRowColors(true);
    m_additions->setTextElideMode(Qt::ElideMiddle);
    m_additions->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    column->addWidget(m_additions);
    return tab;
}

QWidget* frmInstall_Summary::problemsTab()
{
    auto* tab = new QWidget;
    auto* column = new QVBoxLayout(tab);
    m_problems = new QListWidget;
    m_problems->setObjectName(u"lstProblems"_s);
    m_problems->setAccessibleName(u"Problems"_s);
    m_problems->setWordWrap(true);
    m_problems->setAlternatingRowColors(true);
    m_problems->setResizeMode(QListView::Adjust);
    column->addWidget(m_problems);
    connect(m_problems, &QListWidget::itemActivated, this, [this](QListWidgetItem* row) {
        if (const qint32 item = row->data(Qt::UserRole).toInt(); item > 0)
            Q_EMIT itemStepWanted(item);
    });
    return tab;
}

// What is shown.

/// No focus proxy, which would be where Tab goes from the steps, past what is above it.
void frmInstall_Summary::focusInEvent(QFocusEvent*)
{
    m_files->setFocus();
}

void frmInstall_Summary::enter()
{
    InstallationSummary_UpdateInstallationClass();
}

Result frmInstall_Summary::leave()
{
    return Result::success();
}

/// The plan anew, as every decision stands now.
void frmInstall_Summary::InstallationSummary_UpdateInstallationClass()
{
    const Working working(state().frame);
    Context& context = state().session.context();
    details().AddonItems_UpdateTargetExists();
    const PlanFacts facts = details().facts();
    showFiles(facts);
    m_changes->setChanges(facts.configChanges());
    m_tabs->setTabText(ChangesTab, withCount(u"Chan&ges"_s, facts.configChanges().size()));
    showAdditions(facts);
    showProblems(facts);
    const QString space = details().spaceProblem();
    m_remark->setText(details().installTo() == InstallTo::Cabinet
                          ? u"The files go to the File Cabinet and nowhere else. "_s + space
                          : space);
    m_remark->setVisible(!m_remark->text().isEmpty());
    context.services.status.text(u"Primary"_s, {});
}

void frmInstall_Summary::showFiles(const PlanFacts& facts)
{
    m_model->setPlan(state().details,
                     plannedFiles(details(), facts, state().session.services().files));
    QStringList parts;
    for (const PlannedState each : {PlannedState::New,
                                    PlannedState::Replaces,
                                    PlannedState::Same,
                                    PlannedState::Merges,
                                    PlannedState::Skipped,
                                    PlannedState::Problem}) {
        if (const qsizetype count = m_model->count(each))
            parts.append(QString::number(count) + u' ' + plannedStateWord(each));
    }
    m_counts->setText(parts.join(u", "_s));
    m_tabs->setTabText(
        FilesTab, withCount(u"Ta&rgets"_s, qsizetype(details().addon().colAddonItems().size())));
    filterChanged();
}

void frmInstall_Summary::filterChanged()
{
    m_model->setFilter(PlannedFilter(m_filter->currentIndex()));
    if (m_model->fileCount() <= expandsUpTo)
        m_files->expandAll();
    else
        m_files->expandToDepth(0);
    if (!std::exchange(m_sized, true))
        m_files->autoSizeAtFirst();
}

void frmInstall_Summary::showAdditions(const PlanFacts& facts)
{
    m_additions->clear();
    const auto group = [this](const QString& caption, qsizetype count) {
        auto* row = new QTreeWidgetItem(m_additions, {withCount(caption, count)});
        row->setFirstColumnSpanned(true);
        row->setExpanded(true);
        return row;
    };
    const auto add = [](QTreeWidgetItem* above, const QString& title, const QString& folder) {
        auto* row = new QTreeWidgetItem(above, {title, folder});
        row->setToolTip(1, folder);
        row->setIcon(0, icons::state(icons::State::New));
    };
    const QList<SceneryAreaToAdd> areas = facts.sceneryAreas();
    const QList<PlannedVariant> variants = facts.variants();
    if (!areas.isEmpty()) {
        QTreeWidgetItem* above = group(u"New scenery library areas"_s, areas.size());
        for (const SceneryAreaToAdd& area : areas)
            add(above, area.title, area.folder);
    }
    if (!variants.isEmpty()) {
        QTreeWidgetItem* above = group(u"New aircraft variations"_s, variants.size());
        for (const PlannedVariant& variant : variants)
            add(above, variant.title, variant.aircraft);
    }
    if (m_additions->topLevelItemCount() == 0)
        group(u"No scenery area and no aircraft variation is added."_s, 0);
    m_tabs->setTabText(AdditionsTab,
                       withCount(u"Areas and &Variations"_s, areas.size() + variants.size()));
}

void frmInstall_Summary::showProblems(const PlanFacts& facts)
{
    m_problems->clear();
    for (const PlanProblem& problem : facts.problems) {
        auto* row = new QListWidgetItem(problem.sentence(details().addon()), m_problems);
        row->setIcon(
            icons::state(problem.blocks ? icons::State::Problem : icons::State::Attention));
        row->setData(Qt::UserRole, problem.item);
        row->setData(Qt::AccessibleTextRole,
                     (problem.blocks ? u"Problem: "_s : u"Remark: "_s) + row->text());
    }
    if (facts.problems.isEmpty())
        new QListWidgetItem(
            icons::state(icons::State::Done), u"There are no problems."_s, m_problems);
    m_tabs->setTabText(ProblemsTab, withCount(u"&Problems"_s, facts.problems.size()));
    m_tabs->setTabIcon(ProblemsTab,
                       facts.problems.isEmpty() ? QIcon() : icons::state(icons::State::Attention));
}

void frmInstall_Summary::Form_Settings_Save()
{
    m_files->saveLayout(state().session.context().settings, section(), ViewPrefix::Files);
}

} // namespace vt
