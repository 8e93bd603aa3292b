// Step 1: which archive, folder or file is to be installed. What it holds is shown before anything
// else happens.
#pragma once

#include "install/forms/WizardPage.h"
#include "shell/CRecentItemsManager.h"

class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QToolButton;

namespace vt {

class ColumnView;
class SourceContentsModel;

class frmInstall_SelectFiles : public WizardPage
{
    Q_OBJECT

public:
    explicit frmInstall_SelectFiles(WizardState& state, QWidget* parent = nullptr);

    [[nodiscard]] QString header() const override;

    [[nodiscard]] Section section() const override { return Section::InstallSelectAddonFiles; }

    void enter() override;
    /// Chooses what was typed and not chosen yet. Without an add-on the page cannot be left.
    Result leave() override;
    void Form_Settings_Save() override;

    /// Has the wizard read the archive, folder or file, as a user types it; a refusal is told on
    /// the page, and what was chosen before stays chosen.
    Result choose(const QString& typed);

Q_SIGNALS:
    /// \a result becomes whether the wizard could read \a source, a Windows path.
    void sourceChosen(const QString& source, Result& result);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildPath();
    void buildProblem();
    void buildContents();
    void Form_Addon_Selections_Restore();
    void showContents();
    void showProblem(const QString& text);
    void chooseInWindow();
    void fillRecent();
    [[nodiscard]] bool isPending() const;

    CRecentItemsManager m_recent;
    QString m_shown; ///< what the line held when it was chosen or restored
    QLineEdit* m_path = nullptr;
    QToolButton* m_recentButton = nullptr;
    QMenu* m_recentMenu = nullptr;
    QWidget* m_problem = nullptr;
    QLabel* m_problemText = nullptr;
    QLabel* m_summary = nullptr;
    ColumnView* m_contents = nullptr;
    SourceContentsModel* m_model = nullptr;
};

} // namespace vt
