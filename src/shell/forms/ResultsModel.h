// The entries of a Results as a tree of two levels: its groups in their order, with counts, and
// their entries. Holds the entries once and nothing for each row but its number, so that tens of
// thousands of them stay fluent.
#pragma once

#include "shell/CReporting.h"
#include "shell/Results.h"

#include <QAbstractItemModel>

#include <vector>

namespace vt {

class ResultsModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column
    {
        FileColumn,
        ResultColumn,
        FolderColumn,
        ColumnCount,
    };

    enum Role
    {
        /// Of a group and of an entry that names no file: its one text takes the whole row.
        SpansRow = Qt::UserRole,
        /// The whole sentence.
        Sentence,
        /// The full path that an entry is about; empty where it names none.
        Path,
    };

    explicit ResultsModel(Results results, QObject* parent = nullptr);

    /// Entries that hold every word of \a words, without regard to case; \a problemsOnly: of the
    /// groups that tell of problems.
    void setFilter(const QString& words, bool problemsOnly);

    [[nodiscard]] qsizetype entryCount() const { return m_entryCount; }

    [[nodiscard]] qsizetype problemCount() const { return m_problemCount; }

    /// Entries that the filter lets through.
    [[nodiscard]] qsizetype shownCount() const { return m_shownCount; }

    /// Of all entries that name a file; for the width of its column.
    [[nodiscard]] QString longestResult() const;

    /// What is shown, for a report.
    [[nodiscard]] ReportList report(const QString& title) const;

    [[nodiscard]] QModelIndex
    index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    /// The entries of each group; -1: as they happened. Groups keep their order.
    void sort(int column, Qt::SortOrder order) override;

private:
    struct ShownGroup
    {
        size_t group = 0;             ///< in m_results
        std::vector<quint32> entries; ///< in the group
    };

    [[nodiscard]] const Results::Group& group(const ShownGroup& shown) const;
    void sortEntries(ShownGroup& shown) const;
    [[nodiscard]] QVariant groupData(const ShownGroup& shown, int column, int role) const;
    [[nodiscard]] QVariant
    entryData(const Results::Entry& entry, bool problem, int column, int role) const;

    Results m_results;
    std::vector<ShownGroup> m_shown;
    qsizetype m_entryCount = 0;
    qsizetype m_problemCount = 0;
    qsizetype m_shownCount = 0;
    int m_sortBy = -1;
    Qt::SortOrder m_order = Qt::AscendingOrder;
};

} // namespace vt
