// Step 2: where the aircraft go, and which picture they get.
#pragma once

#include "install/forms/ConfigurePage.h"

namespace vt {

class frmInstall_ConfigureAircraft : public ConfigurePage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureAircraft(WizardState& state, QWidget* parent = nullptr);
};

} // namespace vt
