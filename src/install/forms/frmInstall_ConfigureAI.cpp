#include "install/forms/frmInstall_ConfigureAI.h"

#include "install/CAddonInstallationDetails.h"
#include "install/TrafficEdits.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/FolderBox.h"
#include "shell/forms/WrappedLabel.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"
#include "traffic/OutsideTool.h"

#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int leastPlanLines = 2;
constexpr qsizetype mostPlansTold = 200;

} // namespace

frmInstall_ConfigureAI::frmInstall_ConfigureAI(WizardState& state, QWidget* parent)
    : WizardPage(state, parent)
{
    setWindowTitle(u"Configure A.I. Traffic Files"_s);
    m_manager = new CInstallWizardSubFormManager(
        state, {MappedGroup::TrafficTools, MappedGroup::Afcad}, section(), this);
    connect(m_manager, &CInstallWizardSubFormManager::decided, this, [this](bool others) {
        showPlans();
        Q_EMIT edited();
        if (others)
            Q_EMIT othersChanged();
    });
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins({});
    auto* title = new QLabel(windowTitle(), content);
    column->addWidget(title);
    m_airports = makeTool(MappedGroup::Afcad, u"Airport Files"_s, u"AF&CAD folder:"_s);
    m_traffic = makeTool(MappedGroup::TrafficTools, u"Traffic Tools"_s, u"Tools folde&r:"_s);
    column->addWidget(m_airports.frame);
    column->addWidget(m_traffic.frame);
    m_manager->addTabs(column);
    m_manager->addList(column);
    addPlans(column);
    setContent(content);
}

QString frmInstall_ConfigureAI::header() const
{
    return u"Customize the way the A.I. traffic management files will be installed by making changes below."_s;
}

OutsideTool frmInstall_ConfigureAI::outsideTool(MappedGroup family) const
{
    const Context& context = state().session.context();
    return family == MappedGroup::Afcad ? CAFCAD::tool(context) : CTrafficTools::tool(context);
}

frmInstall_ConfigureAI::Tool
frmInstall_ConfigureAI::makeTool(MappedGroup family, const QString& title, const QString& label)
{
    Context& context = state().session.context();
    Tool tool;
    tool.family = family;
    tool.frame = new QGroupBox(title, this);
    tool.frame->setObjectName(family == MappedGroup::Afcad ? u"fraAFCAD"_s : u"fraTrafficTools"_s);
    auto* column = new QVBoxLayout(tool.frame);
    tool.state = new QLabel(tool.frame);
    tool.state->setTextFormat(Qt::PlainText);
    wrap(tool.state);
    column->addWidget(tool.state);
    tool.folder = new FolderBox(context, label, tool.frame);
    tool.folder->setChooser({outsideTool(family).title, outsideTool(family).question, {}, {}, {}});
    tool.folder->take = [this, family](const QString& folder) -> Result {
        if (Result valid = details().AI_InstallationChoices_ValidateFolder(family, folder); !valid)
            return valid;
        return outsidetool::remember(state().session.context(), outsideTool(family), folder);
    };
    column->addWidget(tool.folder);
    connect(tool.folder, &FolderBox::folderTaken, this, [this] {
        showTool(m_airports);
        showTool(m_traffic);
        m_manager->refresh();
        showPlans();
        Q_EMIT edited();
    });
    connect(tool.folder, &FolderBox::problemChanged, this, &WizardPage::edited);
    return tool;
}

/// What becomes of the family's files as things are now.
QString frmInstall_ConfigureAI::outcome(MappedGroup family) const
{
    Context& context = state().session.context();
    const QString& sim = context.global.names.simLong;
    if (family == MappedGroup::Afcad)
        return u"The airport and facilities data files are handed to AFCAD, which puts them into "_s +
               sim + u"; those that they replace are kept."_s;
    return u"The flight plans are added to the source files of Traffic Tools. Without its folder they are kept as documents in '"_s +
           details().storageFolder() + u"'."_s;
}

void frmInstall_ConfigureAI::showTool(const Tool& tool)
{
    Context& context = state().session.context();
    tool.frame->setVisible(details().holds(tool.family));
    tool.state->setText(outcome(tool.family));
    tool.folder->setFolder(outsidetool::find(context, outsideTool(tool.family)));
    tool.folder->setVisible(details().holds(tool.family));
}

void frmInstall_ConfigureAI::addPlans(QVBoxLayout* column)
{
    m_plansLabel = new QLabel(u"Flight &plans in words:"_s);
    m_plans = new QPlainTextEdit;
    m_plans->setObjectName(u"txtFlightPlans"_s);
    m_plans->setAccessibleName(u"Flight plans in words"_s);
    m_plans->setReadOnly(true);
    m_plans->setTabChangesFocus(true);
    m_plans->setMinimumHeight(m_plans->fontMetrics().lineSpacing() * leastPlanLines);
    m_plans->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    m_plansLabel->setBuddy(m_plans);
    column->addWidget(m_plansLabel);
    column->addWidget(m_plans, 1);
}

void frmInstall_ConfigureAI::showPlans()
{
    Context& context = state().session.context();
    const QList<AddonFlightPlan> plans = addonFlightPlans(details(), context);
    QStringList texts;
    for (const AddonFlightPlan& one : plans) {
        if (texts.size() == mostPlansTold) {
            texts.append(u"There are "_s + QString::number(plans.size() - mostPlansTold) +
                         u" more flight plans."_s);
            break;
        }
        QStringList lines = one.problems;
        lines.append(one.plan.Describe(
            one.number, one.aircraft ? &*one.aircraft : nullptr, context.global.names.simLong));
        texts.append(lines.join(u'\n'));
    }
    if (plans.isEmpty())
        texts.append(CTrafficTools::nothingToValidate());
    else if (std::all_of(plans.cbegin(), plans.cend(), [](const AddonFlightPlan& one) {
                 return one.problems.isEmpty();
             }))
        texts.prepend(CTrafficTools::noProblems());
    m_plans->setPlainText(texts.join(u"\n\n"_s));
    const bool any = details().holds(MappedGroup::TrafficTools);
    m_plansLabel->setVisible(any);
    m_plans->setVisible(any);
}

void frmInstall_ConfigureAI::enter()
{
    m_manager->enter();
    showPlans();
    showTool(m_airports);
    showTool(m_traffic);
}

void frmInstall_ConfigureAI::focusInEvent(QFocusEvent*)
{
    (details().holds(MappedGroup::Afcad) ? m_airports : m_traffic).folder->setFocus();
}

Result frmInstall_ConfigureAI::leave()
{
    for (const Tool& tool : {m_airports, m_traffic}) {
        if (!tool.folder->problem().isEmpty())
            return Result::failure(tool.folder->problem());
    }
    return m_manager->validate();
}

bool frmInstall_ConfigureAI::tells(const QString& problem) const
{
    return m_airports.folder->problem() == problem || m_traffic.folder->problem() == problem;
}

bool frmInstall_ConfigureAI::advance(bool)
{
    return m_airports.folder->commit().ok && m_traffic.folder->commit().ok;
}

void frmInstall_ConfigureAI::Form_Settings_Save()
{
    m_manager->saveLayout();
}

} // namespace vt
