// Step 10: what the add-on is called, where it goes, and what happens afterwards.
#pragma once

#include "install/InstallOptions.h"
#include "install/forms/WizardPage.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;

namespace vt {

class ElidedLabel;

class frmInstall_ConfigureOptions : public WizardPage
{
    Q_OBJECT

public:
    explicit frmInstall_ConfigureOptions(WizardState& state, QWidget* parent = nullptr);

    [[nodiscard]] QString header() const override;

    [[nodiscard]] Section section() const override { return Section::InstallSetOptions; }

    void enter() override;
    Result leave() override;

private:
    QWidget* nameAndDescription();
    QWidget* authorsAndRating();
    QWidget* installTo();
    QWidget* afterwards();
    /// Every control's way into the details.
    void connectControls();
    void Options_UpdateInstallationClass();
    void changeInstallTo();
    void archiveToggled(bool on);
    bool chooseArchiveFolder();
    void showArchiveFolder();

    bool m_filling = false;
    QString m_archiveFolder; ///< also while archives stay where they are
    QLineEdit* m_name = nullptr;
    QPlainTextEdit* m_description = nullptr;
    QLineEdit* m_authors = nullptr;
    QComboBox* m_rating = nullptr;
    QRadioButton* m_toSimulator = nullptr;
    QRadioButton* m_toCabinet = nullptr;
    QCheckBox* m_archive = nullptr;
    ElidedLabel* m_archiveFolderLabel = nullptr;
    QPushButton* m_changeFolder = nullptr;
    QCheckBox* m_delete = nullptr;
    QCheckBox* m_start = nullptr;
};

} // namespace vt
