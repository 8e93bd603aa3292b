// The history of installations as a table, sorted by row numbers. Knows no window.
#pragma once

#include "addondb/AddonRecords.h"
#include "shell/CSuperSort.h"

#include <QAbstractTableModel>

#include <functional>
#include <vector>

namespace vt {

class HistoryTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        StatusColumn,
        InstalledColumn,
        RemovedColumn,
        GroupColumn,
        AuthorsColumn,
        SourceColumn,
        SizeColumn,
        FilesColumn,
        RatingColumn,
        ColumnCount,
    };

    using QAbstractTableModel::QAbstractTableModel;

    /// The small picture of a row, as Qt::DecorationRole gives it. Unset: none.
    std::function<QVariant(InstallationStatus)> picture;

    void setRows(QList<HistoryRecord> rows);

    /// \a row: as it is shown.
    [[nodiscard]] const HistoryRecord& at(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    void putInOrder();

    QList<HistoryRecord> m_rows;
    std::vector<qsizetype> m_order;
    int m_sortColumn = -1; ///< as they were given
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

/// "Installed", "File Cabinet", "Removed", "Imported": the word of a status for people.
[[nodiscard]] QString statusTitle(InstallationStatus status);

} // namespace vt
