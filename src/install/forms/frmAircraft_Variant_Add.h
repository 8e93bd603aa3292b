// The dialog in which the user gives new variations of an aircraft their titles and names. Decides
// nothing: whoever opens it says which names may be taken, and takes them.
#pragma once

#include "install/InstallationGroup.h"
#include "platform/Result.h"

#include <QDialog>
#include <QList>

#include <functional>

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;

namespace vt {

class frmAircraft_Variant_Add : public QDialog
{
    Q_OBJECT

public:
    /// \a aircraft: what is painted, as shown. \a check: as
    /// CAddonInstallationDetails::VariantDetails_Validate().
    frmAircraft_Variant_Add(
        const QString& aircraft,
        const QList<VariantDetails>& variants,
        std::function<Result(const QList<VariantDetails>&, qsizetype* problem)> check,
        QWidget* parent = nullptr);

    /// As the user left them.
    [[nodiscard]] const QList<VariantDetails>& variants() const { return m_variants; }

    void accept() override;

private:
    [[nodiscard]] QWidget* fields(const QString& aircraft);
    void showVariant(int index);
    void takeFields();
    /// Says what stands against the names; true when they may be taken.
    bool checkNames();

    QList<VariantDetails> m_variants;
    std::function<Result(const QList<VariantDetails>&, qsizetype*)> m_check;
    int m_shown = -1;
    QComboBox* m_choice = nullptr;
    QLineEdit* m_title = nullptr;
    QLineEdit* m_variation = nullptr;
    QLabel* m_texture = nullptr;
    QLabel* m_section = nullptr;
    QLabel* m_problem = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

} // namespace vt
