// The files of one add-on with what a removal will do to each: name, what happens, folder. Shows a
// preview and decides nothing.
#pragma once

#include "remove/RemovalPreview.h"
#include "ui/OrderedTableModel.h"

namespace vt {

class RemovedFilesModel : public OrderedTableModel
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

    explicit RemovedFilesModel(QObject* parent = nullptr) : OrderedTableModel(-1, parent) {}

    void setFiles(const QList<PreviewedFile>& files);

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;

protected:
    [[nodiscard]] QVariant sortKey(qsizetype place, int column) const override
    {
        return cell(m_files.at(place), column);
    }

private:
    [[nodiscard]] static QString cell(const PreviewedFile& file, int column);

    QList<PreviewedFile> m_files;
};

} // namespace vt
