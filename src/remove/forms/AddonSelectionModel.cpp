#include "remove/forms/AddonSelectionModel.h"

#include "addondb/AddonDatabase.h"
#include "platform/Text.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Of the row of an add-on; a file has its add-on's row + 1.
constexpr quintptr addonLevel = 0;

QString statusText(InstallationStatus status)
{
    switch (status) {
    case InstallationStatus::FileCabinet:
        return u"File Cabinet"_s;
    case InstallationStatus::Imported:
        return u"Imported"_s;
    default:
        return u"Installed"_s;
    }
}

} // namespace

AddonSelectionModel::AddonSelectionModel(Connection& database, QObject* parent)
    : QAbstractItemModel(parent), m_database(database)
{}

Result AddonSelectionModel::load()
{
    const QList<SelectedAddon> before = selection();
    const ResultOf<QList<AddonRow>> rows = addonRows(m_database, {});
    beginResetModel();
    m_addons.clear();
    if (rows) {
        m_addons.reserve(size_t(rows->size()));
        for (const AddonRow& row : *rows)
            m_addons.push_back({row});
    }
    show();
    endResetModel();
    setSelection(before);
    return rows.error();
}

void AddonSelectionModel::readFiles(Addon& addon)
{
    if (addon.read)
        return;
    addon.read = true;
    if (const auto files = modDatabase_Addon::detailsOf(m_database, addon.row.addon.key))
        addon.files = *files;
    if (addon.whole)
        for (const DetailRecord& file : std::as_const(addon.files))
            addon.ticked.insert(file.key);
}

// --- what is shown ---

bool AddonSelectionModel::less(const Addon& a, const Addon& b) const
{
    switch (m_sortBy) {
    case FilesColumn:
        return a.row.files < b.row.files;
    case DateColumn:
        return a.row.addon.dateInstalled < b.row.addon.dateInstalled;
    case StatusColumn:
        return a.row.addon.status < b.row.addon.status;
    default:
        return compareNoCase(a.row.addon.name, b.row.addon.name) < 0;
    }
}

void AddonSelectionModel::show()
{
    m_shown.clear();
    for (size_t i = 0; i < m_addons.size(); ++i)
        if (m_search.isEmpty() || containsNoCase(m_addons[i].row.addon.name, m_search))
            m_shown.push_back(i);
    std::stable_sort(m_shown.begin(), m_shown.end(), [this](size_t a, size_t b) {
        return m_order == Qt::AscendingOrder ? less(m_addons[a], m_addons[b])
                                             : less(m_addons[b], m_addons[a]);
    });
}

void AddonSelectionModel::setSearch(const QString& text)
{
    m_search = text;
    beginResetModel();
    show();
    endResetModel();
}

void AddonSelectionModel::sort(int column, Qt::SortOrder order)
{
    m_sortBy = column;
    m_order = order;
    beginResetModel();
    show();
    endResetModel();
}

// --- ticks ---

QList<SelectedAddon> AddonSelectionModel::selection() const
{
    QList<SelectedAddon> all;
    for (const Addon& addon : m_addons) {
        if (!addon.whole && addon.ticked.isEmpty())
            continue;
        SelectedAddon one{addon.row.addon.key,
                          addon.row.addon.name,
                          addon.row.addon.status == InstallationStatus::FileCabinet};
        if (!addon.whole) {
            for (const DetailRecord& file : addon.files)
                if (addon.ticked.contains(file.key))
                    one.files.append(file.location + file.name);
        }
        all.append(one);
    }
    return all;
}

void AddonSelectionModel::setSelection(const QList<SelectedAddon>& selection)
{
    QHash<qint64, const SelectedAddon*> wanted;
    for (const SelectedAddon& one : selection)
        wanted.insert(one.key, &one);
    beginResetModel();
    for (Addon& addon : m_addons) {
        const SelectedAddon* one = wanted.value(addon.row.addon.key);
        addon.whole = false;
        addon.ticked.clear();
        if (!one)
            continue;
        if (one->files.isEmpty()) {
            tick(addon, true);
            continue;
        }
        readFiles(addon);
        for (const DetailRecord& file : std::as_const(addon.files))
            if (one->files.contains(file.location + file.name, Qt::CaseInsensitive))
                tickFile(addon, file.key, true);
    }
    endResetModel();
    Q_EMIT ticksChanged();
}

void AddonSelectionModel::tickShown(bool ticked)
{
    for (const size_t number : m_shown)
        tick(m_addons[number], ticked);
    if (!m_shown.empty())
        Q_EMIT dataChanged(index(0, 0), index(int(m_shown.size()) - 1, 0));
    for (size_t row = 0; row < m_shown.size(); ++row)
        tellTicks(index(int(row), 0));
    Q_EMIT ticksChanged();
}

void AddonSelectionModel::tick(Addon& addon, bool ticked)
{
    addon.whole = ticked;
    addon.ticked.clear();
    if (!ticked)
        return;
    for (const DetailRecord& file : std::as_const(addon.files))
        addon.ticked.insert(file.key);
}

void AddonSelectionModel::tickFile(Addon& addon, qint64 detailKey, bool ticked)
{
    if (ticked)
        addon.ticked.insert(detailKey);
    else
        addon.ticked.remove(detailKey);
    addon.whole = !addon.files.isEmpty() && addon.ticked.size() == addon.files.size();
}

Qt::CheckState AddonSelectionModel::stateOf(const Addon& addon) const
{
    return addon.whole              ? Qt::Checked
           : addon.ticked.isEmpty() ? Qt::Unchecked
                                    : Qt::PartiallyChecked;
}

/// The boxes of an add-on's files, and its own.
void AddonSelectionModel::tellTicks(const QModelIndex& addon)
{
    const QList<int> roles{Qt::CheckStateRole};
    Q_EMIT dataChanged(addon, addon, roles);
    if (const int files = rowCount(addon); files > 0)
        Q_EMIT dataChanged(index(0, 0, addon), index(files - 1, 0, addon), roles);
}

bool AddonSelectionModel::setData(const QModelIndex& changed, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || !changed.isValid() || changed.column() != NameColumn)
        return false;
    const bool ticked = value.toInt() == Qt::Checked;
    const bool file = changed.internalId() != addonLevel;
    const QModelIndex top = file ? changed.parent() : changed;
    Addon& addon = m_addons[m_shown[size_t(top.row())]];
    if (file)
        tickFile(addon, addon.files.at(changed.row()).key, ticked);
    else
        tick(addon, ticked);
    tellTicks(top);
    Q_EMIT ticksChanged();
    return true;
}

// --- the tree ---

QModelIndex AddonSelectionModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : addonLevel);
}

QModelIndex AddonSelectionModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == addonLevel)
        return {};
    return createIndex(int(child.internalId() - 1), 0, addonLevel);
}

int AddonSelectionModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_shown.size());
    if (parent.internalId() != addonLevel || parent.column() > 0)
        return 0;
    return int(m_addons[m_shown[size_t(parent.row())]].files.size());
}

int AddonSelectionModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

bool AddonSelectionModel::hasChildren(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return !m_shown.empty();
    return parent.internalId() == addonLevel && parent.column() == 0 &&
           m_addons[m_shown[size_t(parent.row())]].row.files > 0;
}

bool AddonSelectionModel::canFetchMore(const QModelIndex& parent) const
{
    return parent.isValid() && parent.internalId() == addonLevel &&
           !m_addons[m_shown[size_t(parent.row())]].read;
}

void AddonSelectionModel::fetchMore(const QModelIndex& parent)
{
    Addon& addon = m_addons[m_shown[size_t(parent.row())]];
    Addon filled = addon;
    readFiles(filled);
    if (filled.files.isEmpty()) {
        addon = filled;
        return;
    }
    beginInsertRows(parent.siblingAtColumn(0), 0, int(filled.files.size()) - 1);
    addon = filled;
    endInsertRows();
}

Qt::ItemFlags AddonSelectionModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    return index.column() == NameColumn ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant AddonSelectionModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::TextAlignmentRole && index.column() == FilesColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (index.internalId() == addonLevel)
        return addonData(m_addons[m_shown[size_t(index.row())]], index.column(), role);
    return fileData(m_addons[m_shown[index.internalId() - 1]], index.row(), index.column(), role);
}

QVariant AddonSelectionModel::addonData(const Addon& addon, int column, int role) const
{
    if (role == Qt::CheckStateRole && column == NameColumn)
        return stateOf(addon);
    if (role != Qt::DisplayRole)
        return {};
    switch (column) {
    case NameColumn:
        return addon.row.addon.name;
    case FilesColumn:
        return QLocale().toString(addon.row.files);
    case DateColumn:
        return QLocale().toString(addon.row.addon.dateInstalled, QLocale::ShortFormat);
    default:
        return statusText(addon.row.addon.status);
    }
}

QVariant AddonSelectionModel::fileData(const Addon& addon, int row, int column, int role) const
{
    const DetailRecord& file = addon.files.at(row);
    if (column != NameColumn)
        return {};
    if (role == Qt::CheckStateRole)
        return addon.ticked.contains(file.key) ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::ToolTipRole)
        return file.location + file.name;
    if (role == Qt::DisplayRole)
        return file.name;
    return {};
}

QVariant AddonSelectionModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole && section == FilesColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList titles = {
        u"Addon Name"_s, u"Files"_s, u"Date Installed"_s, u"Status"_s};
    return titles.value(section);
}

} // namespace vt
