// The removal wizard: tick add-ons or files of them, say how they are removed, read what will
// happen, finish. Nothing is changed before Finish, which hands everything to the add-on list's
// presentation manager.
#pragma once

#include "remove/forms/RemovalChoices.h"
#include "shell/forms/WizardFrame.h"

#include <QList>

#include <optional>

namespace vt {

class Session;
class frmRemove_ConfigureOptions;
class frmRemove_SelectAddons;
class frmRemove_Summary;

class frmRemove_Wizard : public WizardFrame
{
    Q_OBJECT

public:
    /// Both must outlive this. \a masterKeys: add-ons that are ticked at first.
    frmRemove_Wizard(Session& session,
                     Frame& frame,
                     const QList<qint64>& masterKeys = {},
                     QWidget* parent = nullptr);

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;
    bool mayClose() override;
    void recordsChanged() override;

    /// Ticks these add-ons and no others, and begins anew; none, or those that are ticked already:
    /// everything stays.
    void tickAddons(const QList<qint64>& masterKeys);

    // The pages, each shown by its step; false when the page before cannot be left.

    bool SubForm_SelectAddons_Show();
    bool SubForm_ConfigureOptions_Show();
    bool SubForm_Summary_Show();

    /// Removes what was ticked; the window closes when that was begun.
    void Remove_Finish();

protected:
    void stepChosen(int step) override;
    void finishChosen() override;
    [[nodiscard]] QString helpTopic() const override;

private:
    enum Step
    {
        SelectAddons,
        ConfigureOptions,
        RemovalSummary,
    };

    /// Takes the ticks over. False: nothing is ticked, which is said. Ticks that differ from those
    /// that the later pages show reset these.
    bool SubForm_SelectAddons_IntegrateData();
    /// False: a folder is missing, which is said at the page.
    bool SubForm_ConfigureOptions_IntegrateData();
    void SubForm_SelectAddons_Unload();
    void SubForm_ConfigureOptions_Unload();
    void SubForm_Summary_Unload();
    void SubForms_Unload();
    void showStep(Step step, const QString& header, QWidget* page);
    void refreshSteps();
    void refreshFooter();

    Session& m_session;
    RemovalChoices m_choices;
    bool m_integrated = false; ///< the later pages stand on m_choices
    bool m_working = false;
    QList<qint64> m_firstKeys;
    frmRemove_SelectAddons* m_select = nullptr;
    frmRemove_ConfigureOptions* m_options = nullptr;
    frmRemove_Summary* m_summary = nullptr;
};

} // namespace vt
