// Remembered files and folders (recent ones, favourites) as a list: name, date, order. Shows what
// its owner gives it.
#pragma once

#include "shell/CRecentItem.h"

#include <QAbstractTableModel>
#include <QList>

namespace vt {

class ItemListModel : public QAbstractTableModel
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

    using QAbstractTableModel::QAbstractTableModel;

    /// In the order of the list, which "Order" counts from 1.
    void setItems(const QList<CRecentItem>& items);

    /// Empty for no row.
    [[nodiscard]] QString path(const QModelIndex& index) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    struct Row
    {
        CRecentItem item;
        int order = 0;
    };

    void sortRows();

    QList<Row> m_rows;
    int m_sortBy = NameColumn;
    Qt::SortOrder m_order = Qt::AscendingOrder;
};

} // namespace vt
