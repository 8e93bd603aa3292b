// The files of one add-on with what a removal will do to each: name, what happens, folder. Shows a
// preview and decides nothing.
#pragma once

#include "remove/RemovalPreview.h"

#include <QAbstractTableModel>

namespace vt {

class RemovedFilesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        FateColumn,
        FolderColumn,
        ColumnCount,
    };

    using QAbstractTableModel::QAbstractTableModel;

    void setFiles(const QList<PreviewedFile>& files);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    [[nodiscard]] static QString cell(const PreviewedFile& file, int column);

    QList<PreviewedFile> m_files;
};

} // namespace vt
