// All add-ons with their files, each to be ticked: an add-on whole, or single files of it. An
// add-on's files are read when it is opened or ticked in part.
#pragma once

#include "addondb/AddonList.h"
#include "remove/forms/RemovalChoices.h"

#include <QAbstractItemModel>
#include <QSet>

#include <vector>

namespace vt {

class AddonSelectionModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        FilesColumn,
        DateColumn,
        StatusColumn,
        ColumnCount,
    };

    explicit AddonSelectionModel(Connection& database, QObject* parent = nullptr);

    /// Reads the add-ons anew; ticks of those that are still there stay. A failure leaves none.
    Result load();
    /// Shows add-ons with this in their names; the others keep their ticks.
    void setSearch(const QString& text);

    [[nodiscard]] QList<SelectedAddon> selection() const;
    void setSelection(const QList<SelectedAddon>& selection);
    /// Ticks or unticks every add-on that is shown.
    void tickShown(bool ticked);

    [[nodiscard]] qsizetype addonCount() const { return qsizetype(m_addons.size()); }

    [[nodiscard]] QModelIndex
    index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

Q_SIGNALS:
    void ticksChanged();

private:
    struct Addon
    {
        AddonRow row;
        bool read = false; ///< its files were
        QList<DetailRecord> files = {};
        QSet<qint64> ticked = {}; ///< keys of files; all of them stand for the whole add-on
        bool whole = false;       ///< ticked as a whole, its files read or not
    };

    void readFiles(Addon& addon);
    void show();
    [[nodiscard]] bool less(const Addon& a, const Addon& b) const;
    [[nodiscard]] Qt::CheckState stateOf(const Addon& addon) const;
    [[nodiscard]] QVariant addonData(const Addon& addon, int column, int role) const;
    [[nodiscard]] QVariant fileData(const Addon& addon, int row, int column, int role) const;
    void tick(Addon& addon, bool ticked);
    void tickFile(Addon& addon, qint64 detailKey, bool ticked);
    void tellTicks(const QModelIndex& addon);

    Connection& m_database;
    std::vector<Addon> m_addons;
    std::vector<size_t> m_shown; ///< in m_addons
    QString m_search;
    int m_sortBy = NameColumn;
    Qt::SortOrder m_order = Qt::AscendingOrder;
};

} // namespace vt
