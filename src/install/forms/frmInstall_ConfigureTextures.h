// Step 7: where textures go; repaints choose their aircraft here, and what the new variations of it
// are called.
#pragma once

#include "install/forms/ConfigurePage.h"

#include <QSet>

class QPushButton;

namespace vt {

class frmInstall_ConfigureTextures : public ConfigurePage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureTextures(WizardState& state, QWidget* parent = nullptr);

    void enter() override;
    bool advance(bool forward) override;

protected:
    void showGroup() override;
    Result takeMethod(InstallationMethod method) override;

private:
    [[nodiscard]] QWidget* repaintTools();
    void chooseAircraft();
    /// True when the details were taken.
    bool askVariantDetails();

    QSet<int> m_wanted; ///< groups whose details are to be asked for on the way on
    QLabel* m_variants = nullptr;
    QPushButton* m_selectAircraft = nullptr;
    QPushButton* m_details = nullptr;
};

} // namespace vt
