// Manages a list of add-ons: its rows, icons and selection, its context menu, and which commands
// the selection allows. The commands themselves are CAddonPresentationManager's.
#pragma once

#include "session/Session.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/Frame.h"
#include "ui/AddonTableModel.h"
#include "ui/CAddonPresentationManager.h"

#include <QObject>

#include <functional>
#include <optional>

namespace vt {

class CControlMgr_lvwAddons : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this.
    CControlMgr_lvwAddons(Session& session, Frame& frame, ColumnView& list, QObject* parent);

    /// Asks for the folder of a move or copy: caption and proposal (a Windows folder), the folder
    /// chosen or nothing. A dialog unless something else is set.
    std::function<std::optional<QString>(const QString& caption, const QString& proposal)>
        chooseFolder;

    /// Reads every row anew; the selection stays where its add-ons do.
    void fill();
    void setFilter(const ListFilter& filter);
    /// Selects these as far as they are shown, and brings the first one into sight.
    void select(const QList<qint64>& masterKeys);

    [[nodiscard]] const AddonTableModel& model() const { return m_model; }

    [[nodiscard]] QList<qint64> selectedKeys() const;

    /// Rows of the model that are selected, from above.
    [[nodiscard]] QList<int> selectedRows() const { return m_list.selectedRowNumbers(); }

    /// After every click and change of the selection: enables the commands that fit it. Not entered
    /// again while rows are loaded or an analysis runs.
    void lvwAddons_Analyze();

    /// The commands in the order of the menu, nullptr where a separator stands.
    [[nodiscard]] const QList<QAction*>& commands() const { return m_commands; }

    /// Changes what is recorded about one add-on, and tells every window.
    bool change(qint64 masterKey, const AddonChanges& changes);

Q_SIGNALS:
    /// The analysis of another selection ended.
    void analyzed();
    /// The rows that are shown are others.
    void shownChanged();

private:
    using Run = void (CControlMgr_lvwAddons::*)();

    void buildCommands();
    QAction* add(const QString& name, const QString& text, Run run, const QKeySequence& keys = {});
    void connectList();
    void showMenu(QMenu* menu);

    void Delete();
    void MoveToFileCabinet();
    void MoveToFolder();
    void MoveToZipFile();
    void CopyToFolder();
    void CopyToZipFile();
    void RemoveAddonRecords();
    void Reinstall();
    void Validate();
    void Rename();
    void RemoveSelectedGroups();
    void WorkWithAddons();

    void remove(RemovalMethod method, const QString& folderCaption = {}, bool zip = false);

    Session& m_session;
    Frame& m_frame;
    ColumnView& m_list;
    AddonTableModel m_model;
    CAddonPresentationManager m_manager;
    QList<QAction*> m_commands;
    QList<QAction*> m_forSelection; ///< need at least one add-on
    QAction* m_cabinet = nullptr;
    QAction* m_rename = nullptr;
    QList<qint64> m_keptSelection; ///< while the model is reset
    qint64 m_keptCurrent = 0;
    bool m_loadInProgress = false;
    bool m_analyzeInProgress = false;
    bool m_clickInProgress = false;
};

} // namespace vt
