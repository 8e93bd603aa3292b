// Manages the summary's list of add-ons (lvwAddonRemovalDetails): order, name, and what happens to
// each.
#pragma once

#include "remove/RemovalPreview.h"
#include "shell/forms/ColumnView.h"

#include <QAbstractTableModel>

namespace vt {

class CControlMgr_lvwAddonRmvDtls : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        OrderColumn,
        NameColumn,
        ActionColumn,
        ColumnCount,
    };

    /// Takes \a list over: its model, columns and context menu.
    explicit CControlMgr_lvwAddonRmvDtls(ColumnView& list);

    void setPreviews(const QList<RemovalPreview>& previews);

    /// The add-on under the cursor; null when there is none.
    [[nodiscard]] const RemovalPreview* current() const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

Q_SIGNALS:
    void currentChanged();

private:
    struct Row
    {
        RemovalPreview preview;
        int order = 0; ///< in which the add-ons are removed, from 1
    };

    [[nodiscard]] bool less(const Row& a, const Row& b, int column) const;

    ColumnView& m_list;
    QList<Row> m_rows;
};

} // namespace vt
