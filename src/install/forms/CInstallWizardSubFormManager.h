// What all configure pages share: the tab strip of groups, the list of files with its commands, and
// the hints about problems in it. Decides through the installation details alone.
#pragma once

#include "addondb/CAddon_Item.h"
#include "install/forms/WizardPage.h"

#include <QList>
#include <QObject>

#include <functional>

class QAction;
class QLabel;
class QMenu;
class QTabBar;
class QToolButton;
class QVBoxLayout;

namespace vt {

class ColumnView;
class InstallItemModel;

class CInstallWizardSubFormManager : public QObject
{
    Q_OBJECT

public:
    /// A tab: one group, or all files of the page (group -1).
    struct Place
    {
        MappedGroup family = MappedGroup::None;
        int group = -1;
    };

    /// All must outlive this. The widgets come to lie in \a page.
    CInstallWizardSubFormManager(WizardState& state,
                                 const QList<MappedGroup>& families,
                                 Section section,
                                 QWidget* page);

    // Each is called once, in the order in which the parts lie on the page: so the keyboard goes
    // through them.

    /// The tabs, or what stands for them while there are none. Gives what takes the focus.
    QWidget* addTabs(QVBoxLayout* column);
    /// The list with its caption and its hints; takes what room is left.
    void addList(QVBoxLayout* column);

    /// Tabs and list anew, the tab kept where it can be.
    void enter();
    /// The list after a decision.
    void refresh();
    void saveLayout();

    /// Why the page's files cannot be installed as they are.
    [[nodiscard]] Result validate() const;

    [[nodiscard]] Place current() const;
    void setCurrent(const Place& place);

    [[nodiscard]] const InstallItemModel& items() const { return *m_model; }

    /// Carries out a decision; what follows from it is told by decided(). A failure that the user
    /// did not want himself is announced, unless \a quiet.
    Result decide(const std::function<Result()>& decision, bool quiet = false);

Q_SIGNALS:
    void placeShown();
    /// \a others: files of other families moved too.
    void decided(bool others);

private:
    void buildTabs();
    void buildList();
    void buildActions();
    QAction* addCommand(const QString& name,
                        const QString& text,
                        const QList<QKeySequence>& keys,
                        void (CInstallWizardSubFormManager::*run)());
    void fillTabs();
    void fillList();
    void showHints();
    void updateActions();
    [[nodiscard]] QList<qint32> keysOf(const Place& place) const;
    [[nodiscard]] QList<qint32> selectedKeys() const;
    [[nodiscard]] size_t fingerprintOfOthers() const;
    [[nodiscard]] CAddonInstallationDetails& details() const;

    void markSelected(bool install);
    void Items_Install();
    void Items_DoNotInstall();
    void Item_Rename();
    void Item_CopyFolder();
    void Items_PasteFolder();
    void Items_SelectFolder();
    void Items_Follow();

    WizardState& m_state;
    QList<MappedGroup> m_families;
    Section m_section;
    QWidget* m_page;
    QList<Place> m_places; ///< by tab
    bool m_layoutRestored = false;
    InstallItemModel* m_model = nullptr;
    QTabBar* m_tabs = nullptr;
    QLabel* m_noTabs = nullptr;
    ColumnView* m_list = nullptr;
    QToolButton* m_change = nullptr;
    QMenu* m_commands = nullptr;
    QLabel* m_folderHint = nullptr;
    QLabel* m_nameHint = nullptr;
    QAction* m_install = nullptr;
    QAction* m_doNotInstall = nullptr;
    QAction* m_rename = nullptr;
    QAction* m_copyFolder = nullptr;
    QAction* m_pasteFolder = nullptr;
    QAction* m_selectFolder = nullptr;
    QAction* m_follow = nullptr;
};

} // namespace vt
