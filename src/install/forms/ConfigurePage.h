// A configure page: tabs of groups, the installation method, the folder, the picture, and the
// files. What a family has beyond that, its page adds.
#pragma once

#include "install/InstallationGroup.h"
#include "install/forms/CInstallWizardSubFormManager.h"
#include "install/forms/WizardPage.h"
#include "shell/forms/folderchooser.h"

#include <QString>

#include <functional>

class QBoxLayout;
class QButtonGroup;
class QGroupBox;
class QLabel;
class QVBoxLayout;

namespace vt {

class FolderBox;
class PictureBox;

/// What is fixed about a page.
struct ConfigurePageLook
{
    MappedGroup family = MappedGroup::None;
    Section section = Section::Count;
    QString header;
    QString prompt;      ///< what to do first, a sentence; may be empty
    QString methodName;  ///< object name of the option buttons
    QString folderLabel; ///< with its access key
    folderchooser::Request chooser;
};

class ConfigurePage : public WizardPage
{
    Q_OBJECT

public:
    [[nodiscard]] QString header() const override { return m_look.header; }

    [[nodiscard]] Section section() const override { return m_look.section; }

    void enter() override;
    Result leave() override;
    [[nodiscard]] bool tells(const QString& problem) const override;
    bool advance(bool forward) override;
    void Form_Settings_Save() override;

    [[nodiscard]] CInstallWizardSubFormManager& manager() const { return *m_manager; }

    [[nodiscard]] FolderBox* folderBox() const { return m_folderBox; }

protected:
    ConfigurePage(WizardState& state, const ConfigurePageLook& look, QWidget* parent);

    /// Puts the page together; called once, at the end of a page's constructor. \a title: a line
    /// above the prompt, kept by the page; null: none. \a extra makes what the family has of its
    /// own.
    void build(QLabel* title = nullptr, const std::function<QWidget*()>& extra = {});

    /// Another group, or new decisions: whatever a page has of its own is shown anew.
    virtual void showGroup() {}

    /// The user chose a method; the standard way changes it at once.
    virtual Result takeMethod(InstallationMethod method);

    /// Index of the group that is shown; -1 for all files and while there is none.
    [[nodiscard]] int group() const;
    /// Null for all files and while there is none.
    [[nodiscard]] const InstallationGroup* shownGroup() const;

    [[nodiscard]] MappedGroup family() const { return m_look.family; }

    void say(const QString& text) const;

    void resizeEvent(QResizeEvent* event) override;

    /// The folder is to be chosen when the user goes on.
    bool m_folderWanted = false;

private:
    [[nodiscard]] QWidget* methods();
    [[nodiscard]] QWidget* folderFrame();
    [[nodiscard]] QWidget* pictureFrame();
    void fitHeight();
    void setCloseness(int closeness);
    void showAll();
    void showMethod(const InstallationGroup* group);
    void showPicture(const InstallationGroup* group);
    void methodChosen(int id);
    Result takeFolder(const QString& folder);
    void choosePicture();
    void takePictureFile(const QString& file);
    void takeClipboard();
    void clearPicture();
    void takeDropped(const QStringList& hostFiles);
    void picture(const std::function<Result()>& decision);

    ConfigurePageLook m_look;
    /// The method that was chosen and waits for its folder.
    bool m_pending = false;
    CInstallWizardSubFormManager* m_manager = nullptr;
    QButtonGroup* m_methods = nullptr;
    QLabel* m_prompt = nullptr;
    QVBoxLayout* m_column = nullptr;
    int m_spacing = 0; ///< of the column, on a page that is high enough
    QBoxLayout* m_methodRow = nullptr;
    QGroupBox* m_folderFrame = nullptr;
    QGroupBox* m_methodFrame = nullptr;
    FolderBox* m_folderBox = nullptr;
    PictureBox* m_picture = nullptr;
};

} // namespace vt
