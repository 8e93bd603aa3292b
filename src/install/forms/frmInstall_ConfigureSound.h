// Step 4: how sounds find their folder.
#pragma once

#include "install/forms/ConfigurePage.h"

namespace vt {

class frmInstall_ConfigureSound : public ConfigurePage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureSound(WizardState& state, QWidget* parent = nullptr);
};

} // namespace vt
