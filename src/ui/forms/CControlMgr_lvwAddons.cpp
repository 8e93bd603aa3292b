#include "ui/forms/CControlMgr_lvwAddons.h"

#include "addondb/AddonColumns.h"
#include "platform/Text.h"
#include "shell/Flying.h"
#include "shell/Settings.h"
#include "shell/forms/Icons.h"
#include "shell/forms/folderchooser.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QMenu>
#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

icons::State iconOf(AddonIcon icon)
{
    switch (icon) {
    case AddonIcon::TrashCan:
        return icons::State::TrashCan;
    case AddonIcon::Own:
        return icons::State::Own;
    case AddonIcon::Simulator:
        return icons::State::Simulator;
    }
    Q_UNREACHABLE();
}

void tellEnd(Session& session,
             Frame& frame,
             const AddonCommandEnd& end,
             SettingKey showReport,
             const AfterResults& after)
{
    if (!end.begun)
        return;
    if (!end.changed.isEmpty())
        frame.recordsChanged();
    session.services().status.text(u"Primary"_s, end.text); // the filling ended it
    Settings& settings = session.context().settings;
    if (settings.flag(showReport) || !end.good)
        frame.showResults(end.caption, end.results, after);
    if (!end.changed.isEmpty() && settings.flag(SettingKey::ShowRunningFSWarnings) &&
        isSimulatorRunning(session.context(), session.processes()))
        frame.startFlying({}, true);
}

/// Again from the results, when the list may be closed already.
void reinstall(Session& session, Frame& frame, const QList<qint64>& keys)
{
    const AddonCommandEnd end = [&] {
        const Working working(frame);
        return CAddonPresentationManager(session).Addons_Reinstall(keys);
    }();
    AfterResults after{end.changed};
    if (!end.failed.isEmpty())
        after.tryAgain = [&session, &frame, failed = end.failed] {
            reinstall(session, frame, failed);
        };
    tellEnd(session, frame, end, SettingKey::ShowReinstallReport, after);
}

} // namespace

CControlMgr_lvwAddons::CControlMgr_lvwAddons(Session& session,
                                             Frame& frame,
                                             ColumnView& list,
                                             QObject* parent)
    : QObject(parent), m_session(session), m_frame(frame), m_list(list), m_manager(session)
{
    m_model.picture = [](AddonIcon icon) { return QVariant(icons::state(iconOf(icon))); };
    m_model.folderDate = [this](qint64 key) {
        return newestInFolder(*m_session.database(), m_session.services().files, key);
    };
    m_model.change = [this](qint64 key, const AddonChanges& changes) {
        return change(key, changes);
    };
    chooseFolder = [this](const QString& caption, const QString& proposal) {
        folderchooser::Request request;
        request.title = caption;
        request.start = proposal;
        return folderchooser::chooseFolder(m_list.window(), m_session.services().files, request);
    };
    m_list.setModel(&m_model);
    m_list.setMainColumn(int(AddonColumn::AddonName));
    m_list.setPathColumns({int(AddonColumn::SourceName)});
    m_list.setHiddenAtFirst({int(AddonColumn::DateRemoved),
                             int(AddonColumn::FolderDate),
                             int(AddonColumn::ReferenceNumber)});
    buildCommands();
    connectList();
}

// --- commands ---

QAction* CControlMgr_lvwAddons::add(const QString& name,
                                    const QString& text,
                                    Run run,
                                    const QKeySequence& keys)
{
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, run);
    m_list.addAction(action);
    m_commands.append(action);
    m_forSelection.append(action);
    return action;
}

void CControlMgr_lvwAddons::buildCommands()
{
    using M = CControlMgr_lvwAddons;
    const auto separator = [this] { m_commands.append(nullptr); };
    add(u"Delete"_s, u"&Delete"_s, &M::Delete, QKeySequence::Delete);
    m_cabinet = add(u"MoveToFileCabinet"_s, u"Move to File &Cabinet"_s, &M::MoveToFileCabinet);
    add(u"MoveToFolder"_s, u"Move to Folder..."_s, &M::MoveToFolder);
    add(u"MoveToZipFile"_s, u"Move to Zip File..."_s, &M::MoveToZipFile);
    separator();
    add(u"CopyToFolder"_s, u"Copy to &Folder..."_s, &M::CopyToFolder);
    add(u"CopyToZipFile"_s, u"Copy to &Zip File..."_s, &M::CopyToZipFile);
    separator();
    add(u"RemoveAddonRecords"_s, u"Remove Addon Record&s"_s, &M::RemoveAddonRecords);
    separator();
    add(u"Reinstall"_s, u"&Reinstall"_s, &M::Reinstall);
    add(u"Validate"_s, u"Validate"_s, &M::Validate);
    m_rename = add(u"Rename"_s, u"Rena&me..."_s, &M::Rename, Qt::Key_F2);
    separator();
    add(u"RemoveSelectedGroups"_s, u"Remove Selected Grou&p(s)"_s, &M::RemoveSelectedGroups);
    add(u"WorkWithAddons"_s, u"Wor&k With Addon(s)"_s, &M::WorkWithAddons);
    separator();
    m_commands.append(
        {m_list.selectAllAction(), m_list.selectNoneAction(), m_list.invertSelectionAction()});
    m_forSelection.append(m_list.selectNoneAction());
}

void CControlMgr_lvwAddons::connectList()
{
    connect(&m_list, &ColumnView::menuWanted, this, &CControlMgr_lvwAddons::showMenu);
    connect(&m_list, &QAbstractItemView::clicked, this, [this] {
        if (m_clickInProgress)
            return;
        const QScopedValueRollback guard(m_clickInProgress, true);
        lvwAddons_Analyze();
    });
    connect(m_list.selectionModel(),
            &QItemSelectionModel::selectionChanged,
            this,
            &CControlMgr_lvwAddons::lvwAddons_Analyze);
    connect(&m_model, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        m_keptSelection = selectedKeys();
        const QModelIndex current = m_list.currentIndex();
        m_keptCurrent = current.isValid() ? m_model.at(current.row()).addon.key : 0;
    });
    connect(&m_model, &QAbstractItemModel::modelReset, this, [this] {
        if (!m_keptSelection.isEmpty())
            select(m_keptSelection);
        lvwAddons_Analyze();
        Q_EMIT shownChanged();
    });
}

void CControlMgr_lvwAddons::showMenu(QMenu* menu)
{
    for (QAction* command : std::as_const(m_commands)) {
        if (command)
            menu->addAction(command);
        else
            menu->addSeparator();
    }
}

// --- rows and selection ---

void CControlMgr_lvwAddons::fill()
{
    if (m_loadInProgress)
        return;
    StatusSink& status = m_session.services().status;
    auto rows = [&]() -> ResultOf<AddonTableModel::Ready> {
        const QScopedValueRollback guard(m_loadInProgress, true);
        ResultOf<QList<AddonListRow>> read = addonListRows(*m_session.database(), status, {});
        if (!read)
            return read.error();
        return AddonTableModel::ready(std::move(*read), [&status] { status.breathe(); });
    }();
    status.text(u"Primary"_s, rows ? QString() : rows.text);
    if (rows)
        m_model.setRows(std::move(*rows));
}

void CControlMgr_lvwAddons::setFilter(const ListFilter& filter)
{
    m_model.setFilter(filter);
}

QList<qint64> CControlMgr_lvwAddons::selectedKeys() const
{
    QList<qint64> keys;
    for (const int row : selectedRows())
        keys.append(m_model.at(row).addon.key);
    return keys;
}

void CControlMgr_lvwAddons::select(const QList<qint64>& masterKeys)
{
    const QSet<qint64> wanted(masterKeys.begin(), masterKeys.end());
    QItemSelection selection;
    int first = -1;
    int current = -1;
    int begin = -1;
    for (int row = 0; row <= m_model.rowCount(); ++row) {
        const bool end = row == m_model.rowCount();
        const qint64 key = end ? 0 : m_model.at(row).addon.key;
        const bool chosen = !end && wanted.contains(key);
        if (chosen && first < 0)
            first = row;
        if (chosen && key == m_keptCurrent)
            current = row;
        if (chosen && begin < 0)
            begin = row;
        if (!chosen && begin >= 0) {
            selection.select(m_model.index(begin, 0),
                             m_model.index(row - 1, m_model.columnCount() - 1));
            begin = -1;
        }
    }
    if (first < 0)
        return;
    const QModelIndex at =
        m_model.index(current >= 0 ? current : first, int(AddonColumn::AddonName));
    m_list.selectionModel()->setCurrentIndex(at, QItemSelectionModel::NoUpdate);
    m_list.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    m_list.scrollTo(at);
}

void CControlMgr_lvwAddons::lvwAddons_Analyze()
{
    if (m_loadInProgress || m_analyzeInProgress)
        return;
    const QScopedValueRollback guard(m_analyzeInProgress, true);
    const QList<int> rows = selectedRows();
    for (QAction* action : std::as_const(m_forSelection))
        action->setEnabled(!rows.isEmpty());
    m_rename->setEnabled(rows.size() == 1);
    m_cabinet->setEnabled(std::any_of(rows.begin(), rows.end(), [this](int row) {
        return m_model.at(row).addon.status != InstallationStatus::FileCabinet;
    }));
    m_list.selectAllAction()->setEnabled(m_model.rowCount() > 0);
    m_list.invertSelectionAction()->setEnabled(m_model.rowCount() > 0);
    Q_EMIT analyzed();
}

// --- what the commands do ---

void CControlMgr_lvwAddons::Delete()
{
    remove(RemovalMethod::Delete);
}

void CControlMgr_lvwAddons::MoveToFileCabinet()
{
    remove(RemovalMethod::FileCabinet);
}

void CControlMgr_lvwAddons::MoveToFolder()
{
    remove(RemovalMethod::Recreate, u"Select Recreate Folder"_s);
}

void CControlMgr_lvwAddons::MoveToZipFile()
{
    remove(RemovalMethod::Recreate, u"Select Recreate Folder"_s, true);
}

void CControlMgr_lvwAddons::CopyToFolder()
{
    remove(RemovalMethod::Copy, u"Select Folder for the Copy"_s);
}

void CControlMgr_lvwAddons::CopyToZipFile()
{
    remove(RemovalMethod::Copy, u"Select Folder for the Copy"_s, true);
}

void CControlMgr_lvwAddons::RemoveAddonRecords()
{
    remove(RemovalMethod::RemoveRecords);
}

void CControlMgr_lvwAddons::remove(RemovalMethod method, const QString& folderCaption, bool zip)
{
    RemovalOptions options;
    options.method = method;
    options.zip = zip;
    if (!folderCaption.isEmpty()) {
        Settings& settings = m_session.context().settings;
        const auto folder =
            chooseFolder(folderCaption, settings.text(SettingKey::RecreateLastFolder));
        if (!folder)
            return;
        settings.setText(SettingKey::RecreateLastFolder, *folder);
        options.toFolder = m_session.userRoot(*folder);
    }
    QList<AddonToRemove> addons;
    for (const int row : selectedRows()) {
        const AddonRecord& addon = m_model.at(row).addon;
        const bool there = addon.status == InstallationStatus::FileCabinet;
        if (method != RemovalMethod::FileCabinet || !there)
            addons.append({addon.key, addon.name, options});
    }
    const AddonCommandEnd end = [&] {
        const Working working(m_frame);
        return m_manager.Addons_Remove(addons);
    }();
    AfterResults after;
    if (!end.failed.isEmpty())
        after.tryAgain = [&frame = m_frame, keys = end.failed] { frame.removeAddons(keys); };
    tellEnd(m_session, m_frame, end, SettingKey::RemovalShowReport, after);
}

void CControlMgr_lvwAddons::Reinstall()
{
    reinstall(m_session, m_frame, selectedKeys());
}

void CControlMgr_lvwAddons::Validate()
{
    const QList<qint64> keys = selectedKeys();
    const AddonCommandEnd end = [&] {
        const Working working(m_frame);
        return m_manager.Addons_Validate(keys);
    }();
    if (end.begun)
        m_frame.showResults(end.caption, end.results, {end.failed.isEmpty() ? keys : end.failed});
}

void CControlMgr_lvwAddons::Rename()
{
    const QList<int> rows = selectedRows();
    if (rows.size() != 1)
        return;
    const QModelIndex name = m_model.index(rows.first(), int(AddonColumn::AddonName));
    m_list.setCurrentIndex(name);
    m_list.edit(name);
}

void CControlMgr_lvwAddons::RemoveSelectedGroups()
{
    const QList<qint64> keys = selectedKeys();
    m_list.clearSelection();
    m_model.leaveOut(keys);
    m_session.services().status.text(
        u"Primary"_s,
        countText(keys.size(), u"addon was"_s, u"addons were"_s) +
            u" taken out of this list; nothing else changed. F5 brings the rows back."_s);
}

void CControlMgr_lvwAddons::WorkWithAddons()
{
    m_frame.workWithAddons(selectedKeys());
}

bool CControlMgr_lvwAddons::change(qint64 masterKey, const AddonChanges& changes)
{
    if (!m_manager.Addon_Change(masterKey, changes))
        return false;
    // Once the editor of the cell is closed.
    QMetaObject::invokeMethod(
        this, [this] { m_frame.recordsChanged(); }, Qt::QueuedConnection);
    return true;
}

} // namespace vt
