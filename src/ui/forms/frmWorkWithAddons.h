// The list of recorded add-ons, with search, filters and details.
#pragma once

#include "session/Session.h"
#include "shell/forms/Frame.h"
#include "shell/forms/ToolWindow.h"
#include "ui/forms/CControlMgr_lvwAddons.h"

#include <QTimer>

class QComboBox;
class QLabel;
class QLineEdit;
class QSplitter;
class QToolButton;

namespace vt {

class AddonDetailsPane;

class frmWorkWithAddons : public ToolWindow
{
    Q_OBJECT

public:
    /// Both must outlive this; the session is ready for writing.
    frmWorkWithAddons(Session& session, Frame& frame, QWidget* parent = nullptr);

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;
    void recordsChanged() override;

    /// Shows what the menu entry of that control name names ("mnuFileCabinet"); false for others.
    bool showList(const QString& controlName);
    /// All add-ons, with these selected.
    void selectAddons(const QList<qint64>& masterKeys);

    [[nodiscard]] ColumnView& list() { return *m_list; }

    [[nodiscard]] CControlMgr_lvwAddons& manager() { return *m_manager; }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QLayout* buildFilters();
    void buildPanes();
    void addShortcuts();
    void applyFilter();
    void setFilterBoxes(const ListFilter& filter);
    void showCounts();
    void showSelection();
    void editSelected();
    void emptyButton();

    Session& m_session;
    Frame& m_frame;
    ColumnView* m_list = nullptr;
    CControlMgr_lvwAddons* m_manager = nullptr;
    AddonDetailsPane* m_details = nullptr;
    QSplitter* m_panes = nullptr;
    QLineEdit* m_search = nullptr;
    QComboBox* m_category = nullptr;
    QComboBox* m_state = nullptr;
    QLabel* m_count = nullptr;
    QToolButton* m_showDetails = nullptr;
    QTimer m_selectionChanged; ///< several changes at once are one
    QList<qint64> m_shownKeys; ///< whose details stand in the pane
};

} // namespace vt
