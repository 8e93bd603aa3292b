#include "archive/forms/ItemListModel.h"

#include "platform/WinPath.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace vt {

void ItemListModel::setItems(const QList<CRecentItem>& items)
{
    beginResetModel();
    m_items = items;
    setRowCount(items.size());
    endResetModel();
}

QString ItemListModel::path(const QModelIndex& index) const
{
    return index.isValid() ? m_items.at(placeOf(index.row())).sRecentItem : QString();
}

int ItemListModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant ItemListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const qsizetype place = placeOf(index.row());
    const CRecentItem& item = m_items.at(place);
    if (role == Qt::ToolTipRole)
        return item.sRecentItem;
    if (role == Qt::TextAlignmentRole && index.column() == OrderColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case NameColumn:
        return winpath::name(item.sRecentItem);
    case DateColumn:
        return QLocale().toString(item.dteDateAdded, QLocale::ShortFormat);
    default:
        return place + 1;
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

QVariant ItemListModel::sortKey(qsizetype place, int column) const
{
    if (column == DateColumn)
        return m_items.at(place).dteDateAdded;
    return column == OrderColumn ? QVariant(place)
                                 : QVariant(winpath::name(m_items.at(place).sRecentItem));
}

SortDataType ItemListModel::sortType(int column) const
{
    return column == DateColumn    ? SortDataType::Date
           : column == OrderColumn ? SortDataType::Number
                                   : SortDataType::General;
}

} // namespace vt
