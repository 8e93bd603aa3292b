// The files of a configure page as rows: what they are, whether and where they are installed, under
// which name, and what is wrong. Shows the details' items; a tick is the only thing it changes.
#pragma once

#include "install/CAddonInstallationDetails.h"
#include "install/PlannedFiles.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QList>

namespace vt {

class InstallItemModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        File,
        Install,
        TargetFolder,
        TargetName,
        ProblemDetails,
        ColumnCount,
    };

    explicit InstallItemModel(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

    /// Shows these items, by key; \a details must live until the next call. Null: shows nothing.
    void show(CAddonInstallationDetails* details, const QList<qint32>& keys, const Files& files);
    /// The same items, which were decided anew.
    void refresh(const Files& files);

    [[nodiscard]] qint32 keyAt(int row) const { return m_keys.value(row); }

    [[nodiscard]] int rowOf(qint32 key) const { return int(m_keys.indexOf(key)); }

    /// What an installation would do with the row's file now.
    [[nodiscard]] const PlannedFile* plannedAt(int row) const;

    [[nodiscard]] bool anyWithoutFolder() const { return m_anyWithoutFolder; }

    [[nodiscard]] bool anyTwice() const { return m_anyTwice; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    void sort(int column, Qt::SortOrder order) override;

Q_SIGNALS:
    /// A tick was set or taken by the user.
    void ticked(qint32 key, bool install);

private:
    [[nodiscard]] QString
    text(const CAddon_Item& item, const PlannedFile& planned, int column) const;
    [[nodiscard]] QVariant
    decoration(const CAddon_Item& item, const PlannedFile& planned, int column) const;
    void look(const Files& files);
    void sortKeys();

    CAddonInstallationDetails* m_details = nullptr;
    QList<qint32> m_keys;
    QHash<qint32, PlannedFile> m_planned;
    int m_sortColumn = File;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    bool m_anyWithoutFolder = false;
    bool m_anyTwice = false;
};

} // namespace vt
