// The history: every installation, removed ones included, under three filters.
#pragma once

#include "addondb/HistoryFilter.h"
#include "session/Session.h"
#include "shell/forms/Frame.h"
#include "shell/forms/ToolWindow.h"
#include "ui/HistoryTableModel.h"

class QComboBox;
class QLabel;
class QLayout;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QSplitter;

namespace vt {

class ColumnView;

class frmAddon_History : public ToolWindow
{
    Q_OBJECT

public:
    /// Both must outlive this; the session is ready for writing.
    frmAddon_History(Session& session, Frame& frame, QWidget* parent = nullptr);

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;
    void recordsChanged() override;

private:
    QLayout* buildFilters();
    void buildPanes();
    QLayout* buildButtons();
    void fill();
    void showSelection();
    void openAddons();
    void deleteRows();
    [[nodiscard]] ListFilter filter() const;

    Session& m_session;
    Frame& m_frame;
    HistoryTableModel m_model;
    QComboBox* m_status = nullptr;
    QComboBox* m_category = nullptr;
    QComboBox* m_date = nullptr;
    QLabel* m_count = nullptr;
    QSplitter* m_panes = nullptr;
    ColumnView* m_list = nullptr;
    QLabel* m_name = nullptr;
    QLabel* m_facts = nullptr;
    QPlainTextEdit* m_description = nullptr;
    QAction* m_open = nullptr;
    QAction* m_delete = nullptr;
    QPushButton* m_openButton = nullptr;
    QPushButton* m_deleteButton = nullptr;
};

} // namespace vt
