// Step 6: where scenery goes, and whether the simulator's scenery library learns of it.
#pragma once

#include "install/forms/ConfigurePage.h"

class QCheckBox;
class QLabel;
class QLineEdit;

namespace vt {

class frmInstall_ConfigureScenery : public ConfigurePage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureScenery(WizardState& state, QWidget* parent = nullptr);
    ~frmInstall_ConfigureScenery() override;

    Result leave() override;
    bool advance(bool forward) override;

protected:
    void showGroup() override;

private:
    [[nodiscard]] QWidget* library();
    void takeLibrary();

    bool m_filling = false;
    QWidget* m_library = nullptr;
    QCheckBox* m_update = nullptr;
    QLineEdit* m_title = nullptr;
    QLabel* m_warning = nullptr; ///< while the library is not updated
};

} // namespace vt
