// A dialog for what is recorded about one add-on: name, authors, rating, description, picture.
#pragma once

#include "addondb/AddonEdit.h"
#include "addondb/AddonRecords.h"
#include "platform/Files.h"

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace vt {

class frmAddon_Edit : public QDialog
{
    Q_OBJECT

public:
    /// \a files must outlive this.
    frmAddon_Edit(const Files& files, const AddonRecord& addon, QWidget* parent = nullptr);

    /// What differs from the record now.
    [[nodiscard]] AddonChanges changes() const;

private:
    void buildTexts(QFormLayout* form);
    QLayout* buildPicture();
    void check();

    const Files& m_files;
    AddonRecord m_addon;
    QLineEdit* m_name = nullptr;
    QLineEdit* m_authors = nullptr;
    QComboBox* m_rating = nullptr;
    QPlainTextEdit* m_description = nullptr;
    QLabel* m_pictureText = nullptr;
    QLabel* m_problem = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
    std::optional<QString> m_picture;
};

} // namespace vt
