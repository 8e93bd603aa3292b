// Remembered files and folders (recent ones, favourites) as a list: name, date, order. Shows what
// its owner gives it.
#pragma once

#include "shell/CRecentItem.h"
#include "ui/OrderedTableModel.h"

#include <QList>

namespace vt {

class ItemListModel : public OrderedTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        DateColumn,
        OrderColumn,
        ColumnCount,
    };

    explicit ItemListModel(QObject* parent = nullptr) : OrderedTableModel(NameColumn, parent) {}

    /// In the order of the list, which "Order" counts from 1.
    void setItems(const QList<CRecentItem>& items);

    /// Empty for no row.
    [[nodiscard]] QString path(const QModelIndex& index) const;

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;

protected:
    [[nodiscard]] QVariant sortKey(qsizetype place, int column) const override;
    [[nodiscard]] SortDataType sortType(int column) const override;

private:
    QList<CRecentItem> m_items;
};

} // namespace vt
