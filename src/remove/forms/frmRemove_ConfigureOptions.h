// The removal wizard's second page: what happens to the files of the add-ons that were ticked, for
// all of them or for one of them alone.
#pragma once

#include "platform/Result.h"
#include "remove/forms/RemovalChoices.h"
#include "shell/Context.h"

#include <QWidget>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace vt {

class ElidedLabel;
class Session;

/// "Deleting the addon", "Recreating the addons by placing them in folders or zip files": what
/// stands at a method's button.
[[nodiscard]] QString
removalMethodText(RemovalMethod method, bool several, const QString& productName);

class frmRemove_ConfigureOptions : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive this; the page changes the ways in \a choices.
    frmRemove_ConfigureOptions(Session& session,
                               RemovalChoices& choices,
                               QWidget* parent = nullptr);

    /// Shows the add-ons that are ticked now.
    void refresh();

    /// Whether every add-on's files have a place to go to; a failure says what is missing.
    [[nodiscard]] Result check() const;

Q_SIGNALS:
    void changed();

private:
    void buildMethods(QVBoxLayout* layout);
    void buildFolder(QVBoxLayout* layout);
    [[nodiscard]] bool several() const;
    [[nodiscard]] QList<qint64> concerned() const;
    void showTexts();
    void showWay();
    void takeWay();
    void chooseFolder();

    Session& m_session;
    RemovalChoices& m_choices;
    bool m_showing = false;
    QString m_folder; ///< that the next recreation goes to
    QLabel* m_intro = nullptr;
    QLabel* m_appliesLabel = nullptr;
    QComboBox* m_applies = nullptr;
    QButtonGroup* m_methods = nullptr;
    QLabel* m_mixed = nullptr;
    QWidget* m_destination = nullptr;
    ElidedLabel* m_folderLabel = nullptr;
    QCheckBox* chkZipRecreatedFiles = nullptr;
    QLabel* m_consequence = nullptr;
};

} // namespace vt
