// What an archive holds, as a tree: its folders, and the archives inside it as folders of their
// own. Built once from a listing; holds names, sizes and dates, and reads nothing.
#pragma once

#include "archive/CZIPFile.h"
#include "platform/Text.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>

#include <vector>

namespace vt {

class ArchiveTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        SizeColumn,
        DateColumn,
        ColumnCount,
    };

    explicit ArchiveTreeModel(QObject* parent = nullptr);

    /// The archive itself first, as CZIP lists it; none: an empty tree.
    void setContents(const std::vector<CZIPFile>& contents);

    /// Files in it, those of inner archives included; the inner archives themselves are none.
    [[nodiscard]] qsizetype fileCount() const { return m_files; }

    [[nodiscard]] qint64 bytes() const { return m_bytes; } ///< of these files, unpacked

    [[nodiscard]] QModelIndex
    index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    enum class Kind : quint8
    {
        Folder,
        Archive,
        File,
    };

    /// Node 0 is the archive itself and is not shown.
    struct Node
    {
        QString name;
        quint32 parent = 0;
        quint32 row = 0; ///< in its parent
        Kind kind = Kind::Folder;
        bool encrypted = false;
        qint64 bytes = 0; ///< of a folder: all below it
        qint64 modifiedNs = -1;
        std::vector<quint32> children;
    };

    quint32 folderNode(const QString& path);
    quint32 add(const QString& name, quint32 parent, Kind kind);
    void addFile(const CZIPFile& archive, const CZIPFileItem& item);
    void sortNodes();
    [[nodiscard]] bool less(const Node& a, const Node& b) const;
    [[nodiscard]] const Node& node(const QModelIndex& index) const;
    [[nodiscard]] QVariant text(const Node& node, int column) const;

    std::vector<Node> m_nodes;
    QHash<NoCase, quint32> m_folders; ///< by path with inner archives' places, ends in "\"
    qsizetype m_files = 0;
    qint64 m_bytes = 0;
    int m_sortBy = NameColumn;
    Qt::SortOrder m_order = Qt::AscendingOrder;
    QIcon m_folderIcon;
    QIcon m_fileIcon;
    QIcon m_archiveIcon;
};

} // namespace vt
