#include "ui/OrderedTableModel.h"

#include <algorithm>
#include <numeric>

namespace vt {

int OrderedTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_order.size());
}

void OrderedTableModel::setRowCount(qsizetype rows)
{
    m_order.resize(size_t(rows));
    putInOrder();
}

int OrderedTableModel::rowOfPlace(qsizetype place) const
{
    return int(std::find(m_order.begin(), m_order.end(), place) - m_order.begin());
}

void OrderedTableModel::putInOrder()
{
    std::iota(m_order.begin(), m_order.end(), 0);
    if (m_sortColumn < 0)
        return;
    QList<QVariant> keys;
    keys.reserve(qsizetype(m_order.size()));
    for (const qsizetype place : m_order)
        keys.append(sortKey(place, m_sortColumn));
    m_order = CSuperSort::Order(keys,
                                sortType(m_sortColumn),
                                m_sortOrder == Qt::DescendingOrder ? SortDirection::Descending
                                                                   : SortDirection::Ascending);
    std::stable_partition(
        m_order.begin(), m_order.end(), [this](qsizetype place) { return leads(place); });
}

void OrderedTableModel::sort(int column, Qt::SortOrder order)
{
    if (column >= columnCount({}))
        return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const std::vector<qsizetype> before = m_order;
    m_sortColumn = column;
    m_sortOrder = order;
    putInOrder();
    std::vector<int> rows(m_order.size());
    for (size_t row = 0; row < m_order.size(); ++row)
        rows[size_t(m_order[row])] = int(row);
    const QModelIndexList shown = persistentIndexList();
    for (const QModelIndex& old : shown)
        changePersistentIndex(old, index(rows[size_t(before[size_t(old.row())])], old.column()));
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

} // namespace vt
