// Step 9: documents and everything else that belongs to no other page.
#pragma once

#include "install/forms/ConfigurePage.h"

class QPushButton;

namespace vt {

class frmInstall_ConfigureOther : public ConfigurePage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureOther(WizardState& state, QWidget* parent = nullptr);

protected:
    void showGroup() override;

private:
    [[nodiscard]] QWidget* storage();

    QLabel* m_storage = nullptr;
    QPushButton* m_resolve = nullptr;
};

} // namespace vt
