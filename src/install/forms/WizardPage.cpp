#include "install/forms/WizardPage.h"

namespace vt {

WizardPage::WizardPage(WizardState& state, QWidget* parent) : QWidget(parent), m_state(state) {}

} // namespace vt
