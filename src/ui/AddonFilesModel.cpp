#include "ui/AddonFilesModel.h"

#include "shell/CSuperSort.h"

#include <numeric>

using namespace Qt::StringLiterals;

namespace vt {

void AddonFilesModel::setFiles(const QList<DetailRecord>& files, Compare compare)
{
    beginResetModel();
    m_files = files;
    m_compare = std::move(compare);
    m_states.assign(size_t(files.size()), std::nullopt);
    m_order.resize(size_t(files.size()));
    putInOrder();
    endResetModel();
}

QString AddonFilesModel::path(int row) const
{
    const DetailRecord& file = m_files.at(m_order[size_t(row)]);
    return file.location + file.name;
}

int AddonFilesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_files.size());
}

int AddonFilesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

ItemState AddonFilesModel::stateOf(int place) const
{
    std::optional<ItemState>& state = m_states[size_t(place)];
    if (!state)
        state = m_compare(m_files.at(place));
    return *state;
}

QVariant AddonFilesModel::key(int place, int column) const
{
    const DetailRecord& file = m_files.at(place);
    if (column == FileColumn)
        return file.name;
    return column == FolderColumn ? file.location : itemStateWord(stateOf(place));
}

QVariant AddonFilesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const int place = int(m_order[size_t(index.row())]);
    if (role == Qt::DisplayRole)
        return key(place, index.column());
    if (role == Qt::DecorationRole && index.column() == StateColumn && picture)
        return picture(stateOf(place));
    return {};
}

QVariant AddonFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QStringList({u"File"_s, u"State"_s, u"Folder"_s}).value(section);
}

void AddonFilesModel::putInOrder()
{
    std::iota(m_order.begin(), m_order.end(), 0);
    if (m_sortColumn < 0)
        return;
    QList<QVariant> keys;
    keys.reserve(m_files.size());
    for (int place = 0; place < m_files.size(); ++place)
        keys.append(key(place, m_sortColumn));
    m_order = CSuperSort::Order(keys,
                                SortDataType::General,
                                m_sortOrder == Qt::DescendingOrder ? SortDirection::Descending
                                                                   : SortDirection::Ascending);
}

void AddonFilesModel::sort(int column, Qt::SortOrder order)
{
    if (column >= ColumnCount)
        return;
    beginResetModel();
    m_sortColumn = column;
    m_sortOrder = order;
    putInOrder();
    endResetModel();
}

} // namespace vt
