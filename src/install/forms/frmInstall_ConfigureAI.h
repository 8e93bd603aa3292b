// Step 8: files for computer-controlled traffic, and the two outside tools that take them.
#pragma once

#include "install/forms/CInstallWizardSubFormManager.h"
#include "install/forms/WizardPage.h"

class QGroupBox;
class QLabel;
class QPlainTextEdit;
class QVBoxLayout;

namespace vt {

class FolderBox;
struct OutsideTool;

class frmInstall_ConfigureAI : public WizardPage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureAI(WizardState& state, QWidget* parent = nullptr);

    [[nodiscard]] QString header() const override;

    [[nodiscard]] Section section() const override { return Section::InstallConfigureAITraffic; }

    void enter() override;
    Result leave() override;
    [[nodiscard]] bool tells(const QString& problem) const override;
    bool advance(bool forward) override;
    void Form_Settings_Save() override;

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    /// One outside tool with its folder.
    struct Tool
    {
        MappedGroup family = MappedGroup::None;
        QGroupBox* frame = nullptr;
        FolderBox* folder = nullptr;
        QLabel* state = nullptr;
    };

    [[nodiscard]] Tool makeTool(MappedGroup family, const QString& title, const QString& label);
    [[nodiscard]] OutsideTool outsideTool(MappedGroup family) const;
    void showTool(const Tool& tool);
    void addPlans(QVBoxLayout* column);
    void showPlans();
    [[nodiscard]] QString outcome(MappedGroup family) const;

    CInstallWizardSubFormManager* m_manager = nullptr;
    Tool m_airports;
    Tool m_traffic;
    QLabel* m_plansLabel = nullptr;
    QPlainTextEdit* m_plans = nullptr;
};

} // namespace vt
