#include "install/forms/FileTreeModel.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

FileTreeModel::FileTreeModel(const QStringList& headers, QObject* parent)
    : QAbstractItemModel(parent), m_headers(headers), m_nodes(1)
{}

// The tree.

void FileTreeModel::setFiles(const std::vector<File>& files)
{
    beginResetModel();
    m_nodes.assign(1, {});
    m_nodes.reserve(files.size() + files.size() / 4 + 1);
    m_fileCount = qsizetype(files.size());
    QHash<NoCase, int> folders;
    folders.insert(NoCase{}, 0);
    const auto add = [this](int parent, const QString& text) {
        const int number = int(m_nodes.size());
        Node made;
        made.parent = parent;
        made.text = text;
        m_nodes.push_back(std::move(made));
        m_nodes[size_t(parent)].children.push_back(number);
        return number;
    };
    const auto folderNode = [&](const QString& folder) {
        int at = 0;
        QString path;
        for (const QString& part : winpath::components(folder)) {
            path += part + u'\\';
            const auto known = folders.constFind(NoCase{path});
            if (known != folders.constEnd()) {
                at = *known;
                continue;
            }
            at = add(at, part);
            m_nodes[size_t(at)].folder = true;
            folders.insert(NoCase{path}, at);
        }
        return at;
    };
    QString last;
    int lastNode = 0;
    for (const File& file : files) {
        if (file.folder != last) {
            last = file.folder;
            lastNode = folderNode(file.folder);
        }
        Node& made = m_nodes[size_t(add(lastNode, file.name))];
        made.id = file.id;
        made.bytes = file.size;
        made.files = 1;
    }
    // Parents stand before their children.
    for (size_t i = m_nodes.size(); i-- > 1;) {
        Node& above = m_nodes[size_t(m_nodes[i].parent)];
        above.files += m_nodes[i].files;
        above.bytes += m_nodes[i].bytes;
    }
    compact(0);
    sortChildren(0);
    endResetModel();
}

/// Joins folders that hold but one folder with it.
void FileTreeModel::compact(int number)
{
    for (size_t i = 0; i < m_nodes[size_t(number)].children.size(); ++i) {
        int child = m_nodes[size_t(number)].children[i];
        QString text = m_nodes[size_t(child)].text;
        while (m_nodes[size_t(child)].folder && m_nodes[size_t(child)].children.size() == 1 &&
               m_nodes[size_t(m_nodes[size_t(child)].children.front())].folder) {
            child = m_nodes[size_t(child)].children.front();
            text += u'\\' + m_nodes[size_t(child)].text;
        }
        m_nodes[size_t(child)].text = text;
        m_nodes[size_t(child)].parent = number;
        m_nodes[size_t(number)].children[i] = child;
        compact(child);
    }
}

void FileTreeModel::sortChildren(int number)
{
    std::vector<int>& children = m_nodes[size_t(number)].children;
    const bool descending = m_order == Qt::DescendingOrder;
    const auto byName = [this](int a, int b) {
        return compareNoCase(m_nodes[size_t(a)].text, m_nodes[size_t(b)].text);
    };
    QHash<int, QVariant> keys;
    if (m_sortBy != NameColumn) {
        for (const int child : children) {
            if (!m_nodes[size_t(child)].folder)
                keys.insert(child, sortKey(m_nodes[size_t(child)].id, m_sortBy));
        }
    }
    std::stable_sort(children.begin(), children.end(), [&](int a, int b) {
        const bool folderA = m_nodes[size_t(a)].folder;
        if (folderA != m_nodes[size_t(b)].folder)
            return folderA;
        int order = 0;
        if (!folderA && m_sortBy != NameColumn) {
            const QPartialOrdering compared = QVariant::compare(keys.value(a), keys.value(b));
            order = compared == QPartialOrdering::Less      ? -1
                    : compared == QPartialOrdering::Greater ? 1
                                                            : 0;
        }
        if (order == 0)
            return (folderA || m_sortBy != NameColumn) ? byName(a, b) < 0
                   : descending                        ? byName(a, b) > 0
                                                       : byName(a, b) < 0;
        return descending ? order > 0 : order < 0;
    });
    for (size_t row = 0; row < children.size(); ++row) {
        m_nodes[size_t(children[row])].row = int(row);
        if (m_nodes[size_t(children[row])].folder)
            sortChildren(children[row]);
    }
}

void FileTreeModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || (column == m_sortBy && order == m_order))
        return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    m_sortBy = column;
    m_order = order;
    sortChildren(0);
    const QModelIndexList before = persistentIndexList();
    for (const QModelIndex& old : before)
        changePersistentIndex(old, indexOfNode(int(old.internalId()), old.column()));
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

QVariant FileTreeModel::sortKey(qint32 id, int column) const
{
    return fileData(id, column, Qt::DisplayRole);
}

QString FileTreeModel::pathOf(int number) const
{
    QString path;
    for (; number > 0; number = m_nodes[size_t(number)].parent)
        path = m_nodes[size_t(number)].text + u'\\' + path;
    return path;
}

// The model.

const FileTreeModel::Node& FileTreeModel::node(const QModelIndex& index) const
{
    return m_nodes[index.isValid() ? size_t(index.internalId()) : 0];
}

QModelIndex FileTreeModel::indexOfNode(int number, int column) const
{
    return number > 0 ? createIndex(m_nodes[size_t(number)].row, column, quintptr(number))
                      : QModelIndex();
}

bool FileTreeModel::isFolder(const QModelIndex& index) const
{
    return node(index).folder;
}

QModelIndex FileTreeModel::indexOf(qint32 id) const
{
    for (size_t i = 1; i < m_nodes.size(); ++i) {
        if (!m_nodes[i].folder && m_nodes[i].id == id)
            return indexOfNode(int(i), NameColumn);
    }
    return {};
}

QModelIndex FileTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    return hasIndex(row, column, parent) ? indexOfNode(node(parent).children[size_t(row)], column)
                                         : QModelIndex();
}

QModelIndex FileTreeModel::parent(const QModelIndex& child) const
{
    return child.isValid() ? indexOfNode(node(child).parent, NameColumn) : QModelIndex();
}

int FileTreeModel::rowCount(const QModelIndex& parent) const
{
    return parent.column() > 0 ? 0 : int(node(parent).children.size());
}

int FileTreeModel::columnCount(const QModelIndex&) const
{
    return int(m_headers.size());
}

QVariant FileTreeModel::data(const QModelIndex& index, int role) const
{
    const Node& shown = node(index);
    if (role == IdRole)
        return shown.id;
    if (role == FolderRole)
        return shown.folder ? pathOf(int(index.internalId())) : QString();
    if (index.column() == NameColumn && role == Qt::DisplayRole)
        return shown.text;
    if (shown.folder && index.column() == NameColumn && role == Qt::ToolTipRole)
        return pathOf(int(index.internalId()));
    return shown.folder ? folderData(shown.files, shown.bytes, index.column(), role)
                        : fileData(shown.id, index.column(), role);
}

QVariant FileTreeModel::folderData(qsizetype, qint64, int, int) const
{
    return {};
}

QVariant FileTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_headers.value(section);
    return {};
}

} // namespace vt
