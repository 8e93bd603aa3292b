// The history of installations as a table, sorted by row numbers. Knows no window.
#pragma once

#include "addondb/AddonRecords.h"
#include "ui/OrderedTableModel.h"

#include <functional>

namespace vt {

class HistoryTableModel : public OrderedTableModel
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

    explicit HistoryTableModel(QObject* parent = nullptr) : OrderedTableModel(-1, parent) {}

    /// The small picture of a row, as Qt::DecorationRole gives it. Unset: none.
    std::function<QVariant(InstallationStatus)> picture;

    void setRows(QList<HistoryRecord> rows);

    /// \a row: as it is shown.
    [[nodiscard]] const HistoryRecord& at(int row) const;

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;

protected:
    [[nodiscard]] QVariant sortKey(qsizetype place, int column) const override;
    [[nodiscard]] SortDataType sortType(int column) const override;

private:
    QList<HistoryRecord> m_rows;
};

/// "Installed", "File Cabinet", "Removed", "Imported": the word of a status for people.
[[nodiscard]] QString statusTitle(InstallationStatus status);

} // namespace vt
