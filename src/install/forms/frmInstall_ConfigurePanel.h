// Step 3: how panels and gauges find their folder, and which picture they get.
#pragma once

#include "install/forms/ConfigurePage.h"

namespace vt {

class frmInstall_ConfigurePanel : public ConfigurePage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigurePanel(WizardState& state, QWidget* parent = nullptr);
};

} // namespace vt
