#include "archive/forms/ItemListModel.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

void ItemListModel::setItems(const QList<CRecentItem>& items)
{
    beginResetModel();
    m_rows.clear();
    for (const CRecentItem& item : items)
        m_rows.append({item, int(m_rows.size()) + 1});
    sortRows();
    endResetModel();
}

QString ItemListModel::path(const QModelIndex& index) const
{
    return index.isValid() ? m_rows.at(index.row()).item.sRecentItem : QString();
}

int ItemListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ItemListModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant ItemListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Row& row = m_rows.at(index.row());
    if (role == Qt::ToolTipRole)
        return row.item.sRecentItem;
    if (role == Qt::TextAlignmentRole && index.column() == OrderColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case NameColumn:
        return winpath::name(row.item.sRecentItem);
    case DateColumn:
        return QLocale().toString(row.item.dteDateAdded, QLocale::ShortFormat);
    default:
        return row.order;
    }
}

QVariant ItemListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole && section == OrderColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList titles = {u"Name"_s, u"Date Added"_s, u"Order"_s};
    return titles.value(section);
}

void ItemListModel::sortRows()
{
    const auto less = [this](const Row& a, const Row& b) {
        switch (m_sortBy) {
        case NameColumn:
            return compareNoCase(winpath::name(a.item.sRecentItem),
                                 winpath::name(b.item.sRecentItem)) < 0;
        case DateColumn:
            return a.item.dteDateAdded < b.item.dteDateAdded;
        default:
            return a.order < b.order;
        }
    };
    std::stable_sort(m_rows.begin(), m_rows.end(), [&](const Row& a, const Row& b) {
        return m_order == Qt::AscendingOrder ? less(a, b) : less(b, a);
    });
}

void ItemListModel::sort(int column, Qt::SortOrder order)
{
    m_sortBy = column;
    m_order = order;
    beginResetModel();
    sortRows();
    endResetModel();
}

} // namespace vt
