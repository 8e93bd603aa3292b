// The files of one recorded add-on beside what lies on the disk. A file is compared when its state
// is first shown or sorted by, so that an add-on of many files is there at once. Knows no window.
#pragma once

#include "addondb/AddonFacts.h"

#include <QAbstractTableModel>

#include <functional>
#include <optional>
#include <vector>

namespace vt {

class AddonFilesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        FileColumn,
        StateColumn,
        FolderColumn,
        ColumnCount,
    };

    using Compare = std::function<ItemState(const DetailRecord&)>;

    using QAbstractTableModel::QAbstractTableModel;

    /// The small picture of a state, as Qt::DecorationRole gives it. Unset: none.
    std::function<QVariant(ItemState)> picture;

    /// \a compare must be good for as long as the files are shown.
    void setFiles(const QList<DetailRecord>& files, Compare compare);

    /// Full path of the file that a row shows.
    [[nodiscard]] QString path(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    [[nodiscard]] ItemState stateOf(int place) const;
    [[nodiscard]] QVariant key(int place, int column) const;
    void putInOrder();

    QList<DetailRecord> m_files;
    Compare m_compare;
    mutable std::vector<std::optional<ItemState>> m_states;
    std::vector<qsizetype> m_order;
    int m_sortColumn = -1; ///< as recorded
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

} // namespace vt
