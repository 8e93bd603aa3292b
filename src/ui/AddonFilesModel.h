// The files of one recorded add-on beside what lies on the disk. A file is compared when its state
// is first shown or sorted by, so that an add-on of many files is there at once. Knows no window.
#pragma once

#include "addondb/AddonFacts.h"
#include "ui/OrderedTableModel.h"

#include <functional>
#include <optional>
#include <vector>

namespace vt {

class AddonFilesModel : public OrderedTableModel
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

    explicit AddonFilesModel(QObject* parent = nullptr) : OrderedTableModel(-1, parent) {}

    /// The small picture of a state, as Qt::DecorationRole gives it. Unset: none.
    std::function<QVariant(ItemState)> picture;

    /// \a compare must be good for as long as the files are shown.
    void setFiles(const QList<DetailRecord>& files, Compare compare);

    /// Full path of the file that a row shows.
    [[nodiscard]] QString path(int row) const;

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;

protected:
    [[nodiscard]] QVariant sortKey(qsizetype place, int column) const override;

private:
    [[nodiscard]] ItemState stateOf(qsizetype place) const;

    QList<DetailRecord> m_files;
    Compare m_compare;
    mutable std::vector<std::optional<ItemState>> m_states;
};

} // namespace vt
