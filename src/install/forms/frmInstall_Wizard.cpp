// The steps and their pages; finishing is in frmInstall_Wizard_Finish.cpp.
#include "install/forms/frmInstall_Wizard.h"

#include "addondb/AddonDatabase.h"
#include "install/PlannedFiles.h"
#include "install/forms/frmInstall_SelectFiles.h"
#include "install/forms/frmInstall_Summary.h"
#include "platform/Text.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/Frame.h"
#include "shell/forms/ProgressStrip.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int validatesAfterMs = 300;

} // namespace

frmInstall_Wizard::frmInstall_Wizard(Session& session, Frame& frame, QWidget* parent)
    : WizardFrame(session.context(), frame, Section::InstallationWizard, parent),
      m_session(session), m_state{session, frame, nullptr}
{
    setWindowTitle(u"Install An Addon"_s);
    Steps_Build(installSteps(context().global.names));
    addToFooter(new ProgressStrip(context().services.status));
    m_validation.setSingleShot(true);
    m_validation.setInterval(validatesAfterMs);
    connect(&m_validation, &QTimer::timeout, this, &frmInstall_Wizard::validate);
}

frmInstall_Wizard::~frmInstall_Wizard() = default;

void frmInstall_Wizard::Form_PrepareToShow()
{
    refreshSteps();
    SubForm_SelectFiles_Show();
}

void frmInstall_Wizard::Form_Settings_Save()
{
    keepPageSize();
    for (WizardPage* page : m_pages) {
        if (page)
            page->Form_Settings_Save();
    }
}

bool frmInstall_Wizard::mayClose()
{
    return !m_installing;
}

QString frmInstall_Wizard::helpTopic() const
{
    return currentPage() ? sectionName(currentPage()->section()) : sectionName(section());
}

// The steps.

void frmInstall_Wizard::stepChosen(int step)
{
    showStep(InstallStep(step));
}

bool frmInstall_Wizard::showStep(InstallStep step)
{
    if (int(step) == currentStep())
        return true;
    if (currentPage() &&
        (!currentPage()->advance(int(step) > currentStep()) || !leaveCurrentPage()))
        return false;
    // Leaving the first page may have chosen an add-on without files for that step.
    if (!mayVisit(int(step)) || !page(step))
        return false;
    enterPage(step);
    return true;
}

WizardPage* frmInstall_Wizard::currentPage() const
{
    return currentStep() < 0 ? nullptr : m_pages[size_t(currentStep())];
}

Result frmInstall_Wizard::leaveCurrentPage()
{
    m_validation.stop();
    const Result left = currentPage()->leave();
    refreshSteps();
    if (left)
        return left;
    if (InstallStep(currentStep()) != InstallStep::SelectFiles)
        Step_SetGraphic(currentStep(), StepState::NeedsAttention, left.text);
    tellProblem(left.text);
    return left;
}

void frmInstall_Wizard::enterPage(InstallStep step)
{
    keepPageSize();
    WizardPage* entered = page(step);
    m_othersChanged = false;
    m_visited.insert(int(step));
    entered->enter();
    showPage(entered);
    Step_SetCurrent(int(step));
    setHeader(entered->header());
    setNotice({}, false);
    refreshSteps();
    restorePageSize();
    entered->setFocus();
}

WizardPage* frmInstall_Wizard::page(InstallStep step)
{
    WizardPage*& made = m_pages[size_t(step)];
    if (!made) {
        made = newPage(step, m_state);
        if (made)
            connectPage(made, step);
    }
    return made;
}

void frmInstall_Wizard::connectPage(WizardPage* page, InstallStep step)
{
    connect(page, &WizardPage::edited, this, [this] { m_validation.start(); });
    connect(page, &WizardPage::othersChanged, this, [this] {
        m_othersChanged = true;
        m_validation.start();
    });
    if (step == InstallStep::SelectFiles)
        connect(qobject_cast<frmInstall_SelectFiles*>(page),
                &frmInstall_SelectFiles::sourceChosen,
                this,
                [this](const QString& source, Result& result) {
                    result = SubForm_SelectFiles_IntegrateData(source);
                });
    if (step == InstallStep::Summary)
        connect(qobject_cast<frmInstall_Summary*>(page),
                &frmInstall_Summary::itemStepWanted,
                this,
                [this](qint32 item) {
                    showStep(stepOfFamily(m_details->addon().Search(item)->enumMappedGroup));
                });
}

void frmInstall_Wizard::SubForms_Unload()
{
    for (size_t step = 0; step < m_pages.size(); ++step) {
        if (step == size_t(InstallStep::SelectFiles) || !m_pages[step])
            continue;
        m_pages[step]->Form_Settings_Save();
        delete m_pages[step];
        m_pages[step] = nullptr;
    }
}

// The add-on.

Result frmInstall_Wizard::choose(const QString& source, const InstallationRest& rest)
{
    if (!SubForm_SelectFiles_Show())
        return Result::failure(u"The page that is open has to be put right first."_s);
    const QScopedValueRollback completing(m_rest, rest);
    return qobject_cast<frmInstall_SelectFiles*>(page(InstallStep::SelectFiles))->choose(source);
}

Result frmInstall_Wizard::prepare(CAddonInstallationDetails& details, const QString& source)
{
    InstallOptions options = installOptionsFromSettings(context(), source);
    if (m_rest.masterKey != 0) {
        const ResultOf<RecordedAddon> recorded =
            RecordedAddon::load(*m_session.database(), m_rest.masterKey);
        return recorded ? details.prepareRest(*recorded, source, options, m_rest.files)
                        : recorded.error();
    }
    if (const auto key = modDatabase_Addon::nextMasterKey(*m_session.database()))
        options.masterKey = *key; // so that the summary shows the very lines
    return details.prepare(source, options);
}

Result frmInstall_Wizard::SubForm_SelectFiles_IntegrateData(const QString& source)
{
    auto details = std::make_unique<CAddonInstallationDetails>(context());
    {
        const Working working(frame());
        const Result prepared = prepare(*details, source);
        say({});
        if (!prepared)
            return prepared;
        details->Pictures_AutoAssign(); // the pages show them
    }
    const bool another = m_details != nullptr;
    // Pages hold what they were filled with, so they go before it does.
    SubForms_Unload();
    m_details = std::move(details);
    m_state.details = m_details.get();
    selectionChanged();
    if (another)
        setNotice(u"Another addon was chosen; all other steps begin anew."_s, false);
    tellRest();
    if (context().settings.flag(SettingKey::AdvanceWizardStepsAutomatically))
        QTimer::singleShot(0, this, [this] { showStep(InstallStep(neighbour(currentStep(), 1))); });
    return Result::success();
}

void frmInstall_Wizard::tellRest()
{
    if (!m_details->completes())
        return;
    const auto& items = m_details->addon().colAddonItems();
    const qint64 marked = std::count_if(
        items.begin(), items.end(), [](const CAddon_Item& item) { return item.boolProcess; });
    setNotice(u"Only what '"_s + m_details->recorded()->record.name +
                  u"' lacks is marked, and it comes to that addon: "_s +
                  countText(marked, u"file"_s, u"files"_s) + u'.',
              false);
}

void frmInstall_Wizard::selectionChanged()
{
    m_visited = {int(InstallStep::SelectFiles)};
    m_families.clear();
    for (const CAddon_Item& item : m_details->addon().colAddonItems())
        m_families.insert(item.enumMappedGroup);
    if (m_families.contains(MappedGroup::Afcad))
        m_families.insert(MappedGroup::TrafficTools); // one page for both
    setHeader(page(InstallStep::SelectFiles)->header());
    setNotice({}, false);
    refreshSteps();
}

// Checks.

void frmInstall_Wizard::validate()
{
    if (!m_details || !currentPage())
        return;
    const Result valid = currentPage()->leave();
    refreshSteps();
    if (!valid) {
        Step_SetGraphic(currentStep(), StepState::NeedsAttention, valid.text);
        tellProblem(valid.text);
        return;
    }
    setNotice(m_othersChanged
                  ? u"Other steps may have been updated to reflect the changes you just made."_s
                  : QString(),
              false);
}

void frmInstall_Wizard::tellProblem(const QString& problem)
{
    setNotice(currentPage()->tells(problem) ? QString() : problem, true);
}

void frmInstall_Wizard::refreshSteps()
{
    QHash<MappedGroup, QString> wrong;
    if (m_details) {
        for (const FamilyFailure& failure : m_details->invalidFamilies())
            wrong.insert(failure.family, failure.why);
    }
    for (int i = 0; i < installStepCount; ++i) {
        const InstallStep step = InstallStep(i);
        const MappedGroup family = familyOfStep(step);
        const bool first = step == InstallStep::SelectFiles;
        QString why = wrong.value(family);
        if (step == InstallStep::Options && m_details)
            why = m_details->Options_InstallationChoices_Validate().text;
        StepState state =
            m_visited.contains(i) && (!first || m_details) ? StepState::Done : StepState::Open;
        if (!why.isEmpty())
            state = StepState::NeedsAttention;
        if (!first && !m_details)
            state = StepState::Later;
        else if (family != MappedGroup::None && !m_families.contains(family))
            state = StepState::Off;
        Step_SetGraphic(i, state, why);
    }
    setFinishEnabled(m_details != nullptr);
    refreshFooter();
}

void frmInstall_Wizard::refreshFooter()
{
    const QString untouched = u"Nothing has been written yet."_s;
    if (!m_details) {
        setFooter(untouched);
        return;
    }
    const PlannedTotals totals = plannedTotals(*m_details);
    const qint64 available = m_details->bytesFree();
    setFooter(countText(totals.files, u"file"_s, u"files"_s) + u", "_s + sizeText(totals.bytes) +
              (available < 0 ? QString() : u", "_s + sizeText(available) + u" free"_s) + u". "_s +
              untouched);
}

// Sizes: of the wizard as a whole, or of each page.

void frmInstall_Wizard::keepPageSize()
{
    if (!currentPage() || !isVisible())
        return;
    const Section window = currentPage()->section();
    Settings& settings = context().settings;
    settings.setLayoutText(
        window, LayoutValue::SecondPaneWidth, QString::number(currentPage()->width()));
    settings.setLayoutText(
        window, LayoutValue::SecondPaneHeight, QString::number(currentPage()->height()));
}

void frmInstall_Wizard::restorePageSize()
{
    Settings& settings = context().settings;
    QWidget* outer = window()->isWindow() && parentWidget() ? parentWidget() : window();
    if (settings.flag(SettingKey::SynchronizeWizardSizes) || !isVisible() || outer->isMaximized())
        return;
    const Section window = currentPage()->section();
    const QSize wanted(settings.layoutText(window, LayoutValue::SecondPaneWidth).toInt(),
                       settings.layoutText(window, LayoutValue::SecondPaneHeight).toInt());
    if (!wanted.isEmpty())
        outer->resize(outer->size() + wanted - currentPage()->size());
}

} // namespace vt
