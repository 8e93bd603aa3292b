// Step 5: into which category of missions, or into which folder, the mission files go.
#pragma once

#include "install/forms/ConfigurePage.h"

class QMenu;
class QToolButton;

namespace vt {

class frmInstall_ConfigureMissions : public ConfigurePage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureMissions(WizardState& state, QWidget* parent = nullptr);

protected:
    void showGroup() override;
    Result takeMethod(InstallationMethod method) override;

private:
    void fillCategories();

    QLabel* m_title = nullptr;
    QToolButton* m_category = nullptr;
    QMenu* m_categories = nullptr;
};

} // namespace vt
