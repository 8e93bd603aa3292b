// The recorded add-ons as a table: the columns of the add-on list over the rows themselves. Sorting
// and filtering move row numbers, never rows, and no proxy stands between. Knows no window.
#pragma once

#include "addondb/AddonColumns.h"
#include "addondb/AddonEdit.h"

#include <QAbstractTableModel>
#include <QSet>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace vt {

struct AddonTotals
{
    int addons = 0;
    qint64 files = 0;
    qint64 bytes = 0; ///< of the sources
};

/// "240 add-ons, 9.1 GB"
[[nodiscard]] QString totalsText(const AddonTotals& totals);

class AddonTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    /// The small picture of a row, as Qt::DecorationRole gives it. Unset: none.
    std::function<QVariant(AddonIcon)> picture;
    /// Asked once for a row when its folder date is to be shown or sorted by.
    std::function<QDateTime(qint64 masterKey)> folderDate;
    /// Carries out an edit of a cell; false leaves it as it is. Unset: nothing can be edited.
    std::function<bool(qint64 masterKey, const AddonChanges&)> change;

    /// Rows with what searching them needs.
    struct Ready
    {
        QList<AddonListRow> rows;
        /// Their texts behind each other, in UTF-8, and where each begins: one walk through memory
        /// finds every row that holds a text.
        std::string searched;
        std::vector<size_t> begins;
    };

    /// The longer part of setRows(), which touches nothing that is shown. \a breathe is called
    /// often.
    [[nodiscard]] static Ready ready(QList<AddonListRow> rows,
                                     const std::function<void()>& breathe = {});
    /// Takes the place of all rows; filter and sorting stay.
    void setRows(Ready ready);

    void setRows(QList<AddonListRow> rows) { setRows(ready(std::move(rows))); }

    /// Rows that do not pass are left out.
    void setFilter(const ListFilter& filter);

    [[nodiscard]] const ListFilter& filter() const { return m_filter; }

    /// Leaves these out until the rows are set anew.
    void leaveOut(const QList<qint64>& masterKeys);

    /// Of all rows, whether shown or not.
    [[nodiscard]] int total() const { return int(m_rows.size()); }

    /// \a row: of the table as it is shown.
    [[nodiscard]] const AddonListRow& at(int row) const;
    /// The row that shows the add-on; -1 when none does.
    [[nodiscard]] int rowOf(qint64 masterKey) const;
    /// Of what is shown.
    [[nodiscard]] AddonTotals totals() const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    void sort(int column, Qt::SortOrder order) override;

private:
    using Places = std::vector<int>; ///< of m_rows

    [[nodiscard]] QString shownText(int row, AddonColumn column) const;
    [[nodiscard]] AddonListRow& withFolderDate(int place) const;
    const Places& ascending(AddonColumn column);
    /// Places of the rows that pass the filter, in the order of the sorting.
    [[nodiscard]] Places passing();
    void showPassing();
    void passWithoutSearch();
    void passSearch(std::vector<char>& passes) const;
    [[nodiscard]] Places inOrder(const std::vector<char>& passes);

    mutable std::vector<AddonListRow> m_rows; ///< folder dates are added when they are asked for
    mutable std::vector<bool> m_dated;
    std::string m_searched; ///< as Ready has them
    std::vector<size_t> m_searchedBegins;
    std::vector<char> m_passing;                                ///< by place, without the search
    std::array<Places, size_t(AddonColumn::Count)> m_ascending; ///< empty until asked for
    Places m_shown;
    QSet<qint64> m_leftOut;
    ListFilter m_filter;
    AddonColumn m_sortColumn = AddonColumn::Order;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

} // namespace vt
