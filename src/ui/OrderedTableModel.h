// A table whose rows are put in the order of one of its columns. What the rows hold stays where it
// is; numbers are sorted, and selections follow their rows. Knows no window.
#pragma once

#include "shell/CSuperSort.h"

#include <QAbstractTableModel>

#include <vector>

namespace vt {

class OrderedTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    void sort(int column, Qt::SortOrder order) override;

protected:
    /// \a sortColumn: until somebody sorts; -1: the order in which the rows were given.
    explicit OrderedTableModel(int sortColumn, QObject* parent = nullptr)
        : QAbstractTableModel(parent), m_sortColumn(sortColumn)
    {}

    /// So many rows, in order; to be called within a reset of the model.
    void setRowCount(qsizetype rows);

    /// Where what a row shows stands among what was given.
    [[nodiscard]] qsizetype placeOf(int row) const { return m_order[size_t(row)]; }

    /// The row that shows it.
    [[nodiscard]] int rowOfPlace(qsizetype place) const;

    [[nodiscard]] virtual QVariant sortKey(qsizetype place, int column) const = 0;

    [[nodiscard]] virtual SortDataType sortType(int) const { return SortDataType::General; }

    /// Rows that stand before all others, whatever is sorted by.
    [[nodiscard]] virtual bool leads(qsizetype) const { return false; }

private:
    void putInOrder();

    std::vector<qsizetype> m_order; ///< by row: its place
    int m_sortColumn;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

} // namespace vt
