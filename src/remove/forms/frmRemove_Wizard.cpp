#include "remove/forms/frmRemove_Wizard.h"

#include "addondb/AddonDatabase.h"
#include "platform/Text.h"
#include "remove/forms/frmRemove_ConfigureOptions.h"
#include "remove/forms/frmRemove_SelectAddons.h"
#include "remove/forms/frmRemove_Summary.h"
#include "session/Session.h"
#include "shell/Flying.h"
#include "shell/Settings.h"
#include "shell/forms/Frame.h"
#include "ui/CAddonPresentationManager.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The three steps, with their hints.
QList<WizardStep> stepsOfRemoval()
{
    const QString select = u"Select &Addons"_s;
    const QString options = u"Removal &Options"_s;
    const QString summary = u"Removal S&ummary"_s;
    return {
        {u"cmdSelectAddons"_s,
         select,
         WizardFrame::withCaption(
             u"Select the addons you want to remove. You can remove entire addons or just certain files. Press "_s,
             select,
             u" to select addons for removal."_s)},
        {u"cmdConfigureOptions"_s,
         options,
         WizardFrame::withCaption(
             u"You can delete addons, move them to the File Cabinet, copy or move them to a folder or zip file, or simply delete their records while leaving the files installed. Set these options by pressing "_s,
             options,
             u"."_s)},
        {u"cmdRemovalSummary"_s,
         summary,
         WizardFrame::withCaption(
             u"Press "_s,
             summary,
             u" to see a report listing all addons and how they will be removed."_s)}};
}

} // namespace

frmRemove_Wizard::frmRemove_Wizard(Session& session,
                                   Frame& frame,
                                   const QList<qint64>& masterKeys,
                                   QWidget* parent)
    : WizardFrame(session.context(), frame, Section::RemovalWizard, parent), m_session(session),
      m_firstKeys(masterKeys)
{
    setObjectName(u"frmRemove_Wizard"_s);
    setWindowTitle(u"Remove An Addon"_s);
    Steps_Build(stepsOfRemoval());
}

void frmRemove_Wizard::Form_PrepareToShow()
{
    (void)SubForm_SelectAddons_Show();
    tickAddons(m_firstKeys);
}

void frmRemove_Wizard::tickAddons(const QList<qint64>& masterKeys)
{
    QList<SelectedAddon> addons;
    for (const qint64 key : masterKeys) {
        if (const auto addon = modDatabase_Addon::addon(*m_session.database(), key))
            addons.append({key, addon->name, addon->status == InstallationStatus::FileCabinet});
    }
    if (m_working || addons.isEmpty() || (m_integrated && addons == m_choices.addons))
        return;
    m_choices = {addons, {}};
    m_integrated = true;
    (void)SubForm_SelectAddons_Show();
    SubForm_ConfigureOptions_Unload();
    SubForm_Summary_Unload();
    refreshSteps();
}

void frmRemove_Wizard::Form_Settings_Save()
{
    if (m_select)
        m_select->Form_Settings_Save();
    if (m_summary)
        m_summary->Form_Settings_Save();
}

bool frmRemove_Wizard::mayClose()
{
    return !m_working;
}

/// Add-ons that another window removed lose their ticks.
void frmRemove_Wizard::recordsChanged()
{
    if (!m_select || m_working)
        return;
    (void)m_select->refresh();
    if (currentStep() != SelectAddons)
        (void)SubForm_SelectAddons_Show();
    (void)SubForm_SelectAddons_IntegrateData();
}

// --- the pages ---

void frmRemove_Wizard::showStep(Step step, const QString& header, QWidget* page)
{
    setHeader(header);
    showPage(page);
    Step_SetCurrent(step);
    refreshSteps();
    refreshFooter();
    page->setFocus();
}

bool frmRemove_Wizard::SubForm_SelectAddons_Show()
{
    if (!m_select) {
        m_select = new frmRemove_SelectAddons(context(), *m_session.database());
        const Result read = m_select->refresh();
        setNotice(read.text, true);
        connect(m_select, &frmRemove_SelectAddons::ticksChanged, this, [this] {
            setNotice({}, false);
            refreshSteps();
            refreshFooter();
        });
    }
    say(u"Restoring selections..."_s);
    if (m_integrated)
        m_select->restore(m_choices.addons);
    say({});
    showStep(SelectAddons, u"Select addons to remove."_s, m_select);
    return true;
}

bool frmRemove_Wizard::SubForm_ConfigureOptions_Show()
{
    if (!m_options) {
        m_options = new frmRemove_ConfigureOptions(m_session, m_choices);
        connect(m_options, &frmRemove_ConfigureOptions::changed, this, [this] {
            setNotice({}, false);
            refreshSteps();
            refreshFooter();
        });
    }
    m_options->refresh();
    showStep(ConfigureOptions, u"Set removal options."_s, m_options);
    return true;
}

bool frmRemove_Wizard::SubForm_Summary_Show()
{
    for (const RemovalWay& way : std::as_const(m_choices.ways))
        if (way.method == RemovalMethod::Recreate)
            (void)m_session.userRoot(way.folder);
    if (!m_summary)
        m_summary = new frmRemove_Summary(m_session, m_choices);
    m_session.services().files.newOperation();
    if (const Result looked = m_summary->refresh(); !looked)
        setNotice(looked.text, true);
    showStep(RemovalSummary, u"Review removal summary."_s, m_summary);
    return true;
}

bool frmRemove_Wizard::SubForm_SelectAddons_IntegrateData()
{
    const QList<SelectedAddon> ticked = m_select->selection();
    if (ticked.isEmpty()) {
        setNotice(u"Tick at least one addon, or a file of one, to go on."_s, true);
        m_choices = {};
        m_integrated = false;
        refreshSteps();
        return false;
    }
    if (ticked == m_choices.addons && m_integrated)
        return true;
    const bool later = m_integrated && (m_options || m_summary);
    m_choices = {ticked, {}};
    m_integrated = true;
    if (later) {
        SubForm_ConfigureOptions_Unload();
        SubForm_Summary_Unload();
        say(u"Selections have changed. Wizard has been reset."_s);
        setNotice(u"Selections have changed. Wizard has been reset."_s, false);
    }
    return true;
}

bool frmRemove_Wizard::SubForm_ConfigureOptions_IntegrateData()
{
    if (!m_options)
        return true;
    const Result fit = m_options->check();
    if (!fit)
        setNotice(fit.text, true);
    return fit.ok;
}

void frmRemove_Wizard::SubForm_SelectAddons_Unload()
{
    if (m_select)
        m_select->Form_Settings_Save();
    delete m_select;
    m_select = nullptr;
}

void frmRemove_Wizard::SubForm_ConfigureOptions_Unload()
{
    delete m_options;
    m_options = nullptr;
}

void frmRemove_Wizard::SubForm_Summary_Unload()
{
    if (m_summary)
        m_summary->Form_Settings_Save();
    delete m_summary;
    m_summary = nullptr;
}

void frmRemove_Wizard::SubForms_Unload()
{
    SubForm_Summary_Unload();
    SubForm_ConfigureOptions_Unload();
    SubForm_SelectAddons_Unload();
}

void frmRemove_Wizard::stepChosen(int step)
{
    if (step == currentStep())
        return;
    setNotice({}, false);
    if (currentStep() == SelectAddons && !SubForm_SelectAddons_IntegrateData())
        return;
    if (currentStep() == ConfigureOptions && step == RemovalSummary &&
        !SubForm_ConfigureOptions_IntegrateData())
        return;
    if (step == SelectAddons)
        (void)SubForm_SelectAddons_Show();
    else if (step == ConfigureOptions)
        (void)SubForm_ConfigureOptions_Show();
    else
        (void)SubForm_Summary_Show();
}

// --- the end ---

void frmRemove_Wizard::finishChosen()
{
    setNotice({}, false);
    if (currentStep() == SelectAddons && !SubForm_SelectAddons_IntegrateData())
        return;
    if (!SubForm_ConfigureOptions_IntegrateData()) {
        if (currentStep() != ConfigureOptions)
            (void)SubForm_ConfigureOptions_Show();
        return;
    }
    Remove_Finish();
}

void frmRemove_Wizard::Remove_Finish()
{
    QList<AddonToRemove> addons;
    for (const SelectedAddon& addon : std::as_const(m_choices.addons)) {
        AddonToRemove one{addon.key, addon.name, m_choices.options(addon)};
        if (!one.options.toFolder.isEmpty())
            one.options.toFolder = m_session.userRoot(one.options.toFolder);
        addons.append(one);
    }
    m_working = true;
    AddonCommandEnd end;
    {
        const Working working(frame());
        end = CAddonPresentationManager(m_session).Addons_Remove(addons);
    }
    m_working = false;
    if (!end.begun)
        return;
    SubForms_Unload();
    Settings& settings = context().settings;
    if (!end.changed.isEmpty())
        frame().recordsChanged();
    if (settings.flag(SettingKey::RemovalShowReport) || !end.good) {
        AfterResults after;
        if (!end.failed.isEmpty())
            after.tryAgain = [&frame = frame(), keys = end.failed] { frame.removeAddons(keys); };
        frame().showResults(end.caption, end.results, after);
    }
    if (!end.changed.isEmpty() && settings.flag(SettingKey::ShowRunningFSWarnings) &&
        isSimulatorRunning(context(), m_session.processes()))
        frame().startFlying({}, true);
    close();
}

// --- states ---

void frmRemove_Wizard::refreshSteps()
{
    const bool any = m_select && !m_select->selection().isEmpty();
    const StepState later = any ? StepState::Open : StepState::Off;
    const QString why = any ? QString() : u"Tick an addon first."_s;
    const bool fits = !m_options || m_options->check();
    Step_SetGraphic(SelectAddons, any ? StepState::Done : StepState::Open);
    Step_SetGraphic(ConfigureOptions,
                    any && !fits       ? StepState::NeedsAttention
                    : any && m_options ? StepState::Done
                                       : later,
                    why);
    Step_SetGraphic(RemovalSummary, any && m_summary ? StepState::Done : later, why);
    setFinishEnabled(any);
}

void frmRemove_Wizard::refreshFooter()
{
    const qsizetype addons = m_select ? m_select->selection().size() : 0;
    QString text = countText(addons, u"addon"_s, u"addons"_s) + u" ticked. "_s;
    if (currentStep() == RemovalSummary && m_summary)
        text = m_summary->totals() + u' ';
    setFooter(text + u"Nothing has been removed yet."_s);
}

QString frmRemove_Wizard::helpTopic() const
{
    return u"remove"_s;
}

} // namespace vt
