// Files in the tree of their folders; a folder that holds one other folder and nothing else stands
// in one row with it. What the columns show is the derived model's.
#pragma once

#include <QAbstractItemModel>
#include <QString>
#include <QStringList>

#include <vector>

namespace vt {

/// Trees of up to so many files begin with every folder open.
inline constexpr qsizetype expandsUpTo = 300;

class FileTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    /// One row; \a id means what the derived model wants.
    struct File
    {
        QString folder; ///< ends in "\"
        QString name;
        qint32 id = 0;
        qint64 size = 0; ///< bytes
    };

    enum Column
    {
        NameColumn, ///< the tree's; the other columns are the derived model's
        FirstOwnColumn,
    };

    enum Role
    {
        IdRole = Qt::UserRole, ///< of a file; 0 for folders
        FolderRole,            ///< the whole path of a folder's row
    };

    explicit FileTreeModel(const QStringList& headers, QObject* parent = nullptr);

    void setFiles(const std::vector<File>& files);

    [[nodiscard]] bool isFolder(const QModelIndex& index) const;

    /// Rows of files, all levels.
    [[nodiscard]] qsizetype fileCount() const { return m_fileCount; }

    /// The row of the first file whose id that is.
    [[nodiscard]] QModelIndex indexOf(qint32 id) const;

    [[nodiscard]] QModelIndex
    index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

protected:
    /// A file's own columns, and what its name has besides its text (icon, tool tip).
    [[nodiscard]] virtual QVariant fileData(qint32 id, int column, int role) const = 0;
    /// A folder's own columns; \a files and \a bytes of everything below.
    [[nodiscard]] virtual QVariant
    folderData(qsizetype files, qint64 bytes, int column, int role) const;

    /// What a file is sorted by in a column of its own: a number or a text.
    [[nodiscard]] virtual QVariant sortKey(qint32 id, int column) const;

private:
    struct Node
    {
        int parent = -1;
        int row = 0;
        bool folder = false;
        qint32 id = 0;
        qsizetype files = 0;
        qint64 bytes = 0;
        QString text;
        std::vector<int> children;
    };

    [[nodiscard]] const Node& node(const QModelIndex& index) const;
    void compact(int node);
    void sortChildren(int node);
    [[nodiscard]] QString pathOf(int node) const;
    [[nodiscard]] QModelIndex indexOfNode(int node, int column) const;

    QStringList m_headers;
    std::vector<Node> m_nodes; ///< 0 is the root, which has no row
    qsizetype m_fileCount = 0;
    int m_sortBy = NameColumn;
    Qt::SortOrder m_order = Qt::AscendingOrder;
};

} // namespace vt
