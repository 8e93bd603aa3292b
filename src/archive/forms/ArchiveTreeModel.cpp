#include "archive/forms/ArchiveTreeModel.h"

#include <QDateTime>
#include <QFileIconProvider>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

ArchiveTreeModel::ArchiveTreeModel(QObject* parent) : QAbstractItemModel(parent)
{
    const QFileIconProvider icons;
    m_folderIcon = icons.icon(QFileIconProvider::Folder);
    m_fileIcon = icons.icon(QFileIconProvider::File);
    m_archiveIcon = QIcon::fromTheme(u"package-x-generic"_s, m_fileIcon);
    m_nodes.emplace_back();
}

void ArchiveTreeModel::setContents(const std::vector<CZIPFile>& contents)
{
    beginResetModel();
    m_nodes.clear();
    m_nodes.emplace_back();
    m_folders = {{NoCase{QString()}, 0}};
    m_files = 0;
    m_bytes = 0;
    // Inner archives first: their entries in the outer one become their folders.
    for (const CZIPFile& archive : contents)
        if (!archive.nestedPath.isEmpty())
            m_nodes[folderNode(archive.nestedPath)].kind = Kind::Archive;
    for (const CZIPFile& archive : contents)
        for (const CZIPFileItem& item : archive.varZIPItems)
            addFile(archive, item);
    // Children come after their parents.
    for (size_t i = m_nodes.size(); i-- > 1;)
        m_nodes[m_nodes[i].parent].bytes += m_nodes[i].bytes;
    m_bytes = m_nodes.front().bytes;
    sortNodes();
    endResetModel();
}

quint32 ArchiveTreeModel::add(const QString& name, quint32 parent, Kind kind)
{
    const auto number = quint32(m_nodes.size());
    Node& made = m_nodes.emplace_back();
    made.name = name;
    made.parent = parent;
    made.kind = kind;
    m_nodes[parent].children.push_back(number);
    return number;
}

/// \a path ends in "\"; made with everything above it when it is missing.
quint32 ArchiveTreeModel::folderNode(const QString& path)
{
    if (const auto found = m_folders.constFind(NoCase{path}); found != m_folders.constEnd())
        return *found;
    const qsizetype end = path.size() - 1;
    const qsizetype begin = path.lastIndexOf(u'\\', end - 1) + 1;
    const quint32 above = folderNode(path.left(begin));
    const quint32 made = add(path.mid(begin, end - begin), above, Kind::Folder);
    m_folders.insert(NoCase{path}, made);
    return made;
}

void ArchiveTreeModel::addFile(const CZIPFile& archive, const CZIPFileItem& item)
{
    const QString folder = archive.nestedPath + item.sPath;
    if (item.kind == EntryKind::Folder) {
        (void)folderNode(folder + item.sFilename + u'\\');
        return;
    }
    if (m_folders.contains(NoCase{folder + item.sFilename + u'\\'}))
        return; // an archive that was listed
    Node& file = m_nodes[add(item.sFilename, folderNode(folder), Kind::File)];
    file.bytes = item.lngSize_Uncompressed;
    file.encrypted = item.boolEncrypted;
    if (item.dteDate.isValid())
        file.modifiedNs = item.modifiedNs();
    ++m_files;
}

bool ArchiveTreeModel::less(const Node& a, const Node& b) const
{
    switch (m_sortBy) {
    case SizeColumn:
        return a.bytes < b.bytes;
    case DateColumn:
        return a.modifiedNs < b.modifiedNs;
    default:
        return compareNoCase(a.name, b.name) < 0;
    }
}

void ArchiveTreeModel::sortNodes()
{
    for (Node& parent : m_nodes) {
        std::stable_sort(
            parent.children.begin(), parent.children.end(), [this](quint32 a, quint32 b) {
                const Node& first = m_nodes[a];
                const Node& second = m_nodes[b];
                if ((first.kind == Kind::File) != (second.kind == Kind::File))
                    return second.kind == Kind::File;
                return m_order == Qt::AscendingOrder ? less(first, second) : less(second, first);
            });
        for (size_t row = 0; row < parent.children.size(); ++row)
            m_nodes[parent.children[row]].row = quint32(row);
    }
}

void ArchiveTreeModel::sort(int column, Qt::SortOrder order)
{
    m_sortBy = column;
    m_order = order;
    beginResetModel();
    sortNodes();
    endResetModel();
}

const ArchiveTreeModel::Node& ArchiveTreeModel::node(const QModelIndex& index) const
{
    return index.isValid() ? m_nodes[index.internalId()] : m_nodes.front();
}

QModelIndex ArchiveTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, quintptr(node(parent).children[size_t(row)]));
}

QModelIndex ArchiveTreeModel::parent(const QModelIndex& child) const
{
    const quint32 above = node(child).parent;
    return above == 0 ? QModelIndex() : createIndex(int(m_nodes[above].row), 0, quintptr(above));
}

int ArchiveTreeModel::rowCount(const QModelIndex& parent) const
{
    return parent.column() > 0 ? 0 : int(node(parent).children.size());
}

int ArchiveTreeModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant ArchiveTreeModel::text(const Node& node, int column) const
{
    switch (column) {
    case NameColumn:
        return node.encrypted ? QString(node.name + u" (encrypted)"_s) : node.name;
    case SizeColumn:
        return sizeText(node.bytes);
    default:
        return node.modifiedNs < 0
                   ? QString()
                   : QLocale().toString(QDateTime::fromMSecsSinceEpoch(node.modifiedNs / 1'000'000),
                                        QLocale::ShortFormat);
    }
}

QVariant ArchiveTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Node& one = node(index);
    if (role == Qt::DisplayRole)
        return text(one, index.column());
    if (role == Qt::DecorationRole && index.column() == NameColumn)
        return one.kind == Kind::File      ? m_fileIcon
               : one.kind == Kind::Archive ? m_archiveIcon
                                           : m_folderIcon;
    if (role == Qt::TextAlignmentRole && index.column() == SizeColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant ArchiveTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole && section == SizeColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList titles = {u"Name"_s, u"Size"_s, u"Date"_s};
    return titles.value(section);
}

} // namespace vt
