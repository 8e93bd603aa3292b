// Files in the tree of their folders; a folder that holds one other folder and nothing else stands
// in one row with it. Names, sizes and counts are the tree's, all other columns the derived
// model's.
#pragma once

#include "platform/Text.h"
#include "shell/forms/Icons.h"

#include <QAbstractItemModel>
#include <QHash>
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

    /// A folder that is more than the place of its files: empty, or an archive.
    struct Folder
    {
        QString path; ///< ends in "\"
        icons::Kind kind = icons::Kind::Folder;
    };

    /// Which columns besides the first one, the names, are the tree's; -1: there is none.
    struct Columns
    {
        int size = -1;  ///< of a folder: of everything below it
        int count = -1; ///< "12 files", in the rows of folders alone
    };

    enum Column
    {
        NameColumn,
        FirstOwnColumn,
    };

    enum Role
    {
        IdRole = Qt::UserRole, ///< of a file; 0 for folders
        FolderRole,            ///< the whole path of a folder's row
    };

    FileTreeModel(const QStringList& headers, Columns columns, QObject* parent = nullptr);

    /// \a folders: those about which there is more to say than the files do.
    void setFiles(const std::vector<File>& files, const std::vector<Folder>& folders = {});

    [[nodiscard]] bool isFolder(const QModelIndex& index) const;

    /// Rows of files, all levels.
    [[nodiscard]] qsizetype fileCount() const { return m_nodes.front().files; }

    /// Of all files.
    [[nodiscard]] qint64 bytes() const { return m_nodes.front().bytes; }

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
    /// What a file is sorted by in a column of its own: a number or a text.
    [[nodiscard]] virtual QVariant sortKey(qint32 id, int column) const;

private:
    struct Node
    {
        int parent = -1;
        int row = 0;
        bool folder = false;
        icons::Kind kind = icons::Kind::Folder; ///< of a folder
        qint32 id = 0;
        qsizetype files = 0;
        qint64 bytes = 0;
        QString text;
        std::vector<int> children;
    };

    using FolderNumbers = QHash<NoCase, int>;

    [[nodiscard]] const Node& node(const QModelIndex& index) const;
    int add(int parent, const QString& text);
    int folderNode(const QString& path, FolderNumbers& known);
    void sumUp();
    void compact(int node);
    void sortChildren(int node);
    [[nodiscard]] QVariant keyOf(const Node& node) const;
    [[nodiscard]] QVariant folderData(const QModelIndex& index, int role) const;
    [[nodiscard]] QString pathOf(int node) const;
    [[nodiscard]] QModelIndex indexOfNode(int node, int column) const;

    QStringList m_headers;
    Columns m_columns;
    std::vector<Node> m_nodes; ///< 0 is the root, which has no row
    int m_sortBy = NameColumn;
    Qt::SortOrder m_order = Qt::AscendingOrder;
};

} // namespace vt
