// The files and folders of one place as a list: name, size, date, type; folders before files. Reads
// one folder at a time and opens no file.
#pragma once

#include "platform/Files.h"
#include "ui/OrderedTableModel.h"

#include <QString>

#include <optional>

namespace vt {

/// Which files are listed; folders always are. Stored: never renumber.
enum class FolderFilter
{
    AddonFiles, ///< archives, and files of the types that add-ons consist of
    Archives,
    AllFiles,
};

class FolderModel : public OrderedTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        SizeColumn,
        DateColumn,
        TypeColumn,
        ColumnCount,
    };

    /// \a files must outlive this. \a generation: the simulator's, for the types of files.
    FolderModel(const Files& files, int generation, QObject* parent = nullptr);

    /// Reads a Windows folder; one that does not exist is an empty place.
    void setFolder(const QString& folder);

    [[nodiscard]] const QString& folder() const { return m_folder; }

    void setFilter(FolderFilter filter);

    /// Full path of a row, that of a folder ending in "\"; empty for no row.
    [[nodiscard]] QString path(const QModelIndex& index) const;
    [[nodiscard]] const FileInfo* info(const QModelIndex& index) const;
    /// The row of that name; -1 when it is not shown.
    [[nodiscard]] int rowOf(const QString& name) const;

    /// Entries of the folder that the filter leaves out.
    [[nodiscard]] qsizetype hiddenCount() const { return m_hidden; }

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;

protected:
    [[nodiscard]] QVariant sortKey(qsizetype place, int column) const override;
    [[nodiscard]] SortDataType sortType(int column) const override;
    [[nodiscard]] bool leads(qsizetype place) const override;

private:
    [[nodiscard]] bool shows(const FileInfo& info) const;
    [[nodiscard]] QString typeOf(const FileInfo& info) const;
    void read();

    const Files& m_files;
    int m_generation;
    QString m_folder;
    FolderFilter m_filter = FolderFilter::AddonFiles;
    QList<FileInfo> m_rows;
    qsizetype m_hidden = 0;
};

} // namespace vt
