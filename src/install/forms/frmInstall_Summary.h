// Step 11: what will happen, before anything does: every file at its place, the lines that
// configuration files gain and lose, new areas and variations, problems, room on the disk.
#pragma once

#include "install/CAddonInstallationDetails.h"
#include "install/forms/WizardPage.h"

class QComboBox;
class QLabel;
class QListWidget;
class QTabWidget;
class QTreeWidget;

namespace vt {

class ColumnView;
class ConfigChangesView;
class PlannedFilesModel;

class frmInstall_Summary : public WizardPage
{
    Q_OBJECT

public:
    explicit frmInstall_Summary(WizardState& state, QWidget* parent = nullptr);

    [[nodiscard]] QString header() const override;

    [[nodiscard]] Section section() const override { return Section::InstallSummary; }

    void enter() override;
    Result leave() override;
    void Form_Settings_Save() override;

Q_SIGNALS:
    /// The step that configures this file is wanted.
    void itemStepWanted(qint32 item);

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    QWidget* filesTab();
    QWidget* additionsTab();
    QWidget* problemsTab();
    void InstallationSummary_UpdateInstallationClass();
    void showFiles(const PlanFacts& facts);
    void showAdditions(const PlanFacts& facts);
    void showProblems(const PlanFacts& facts);
    void filterChanged();

    bool m_sized = false; ///< the columns were
    QTabWidget* m_tabs = nullptr;
    QComboBox* m_filter = nullptr;
    QLabel* m_counts = nullptr;
    QLabel* m_remark = nullptr;
    ColumnView* m_files = nullptr;
    PlannedFilesModel* m_model = nullptr;
    ConfigChangesView* m_changes = nullptr;
    QTreeWidget* m_additions = nullptr;
    QListWidget* m_problems = nullptr;
};

} // namespace vt
