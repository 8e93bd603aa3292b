#include "shell/forms/FileTreeModel.h"

#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

FileTreeModel::FileTreeModel(const QStringList& headers, Columns columns, QObject* parent)
    : QAbstractItemModel(parent), m_headers(headers), m_columns(columns), m_nodes(1)
{}

// The tree.

int FileTreeModel::add(int parent, const QString& text)
{
    const int number = int(m_nodes.size());
    Node made;
    made.parent = parent;
    made.text = text;
    m_nodes.push_back(std::move(made));
    m_nodes[size_t(parent)].children.push_back(number);
    return number;
}

/// Made with everything above it when it is not \a known.
int FileTreeModel::folderNode(const QString& path, FolderNumbers& known)
{
    int at = 0;
    QString above;
    for (const QString& part : winpath::components(path)) {
        above += part + u'\\';
        const auto found = known.constFind(NoCase{above});
        if (found != known.constEnd()) {
            at = *found;
            continue;
        }
        at = add(at, part);
        m_nodes[size_t(at)].folder = true;
        known.insert(NoCase{above}, at);
    }
    return at;
}

void FileTreeModel::setFiles(const std::vector<File>& files, const std::vector<Folder>& folders)
{
    beginResetModel();
    m_nodes.assign(1, {});
    m_nodes.reserve(files.size() + files.size() / 4 + 1);
    FolderNumbers known;
    for (const Folder& folder : folders) {
        const int number = folderNode(folder.path, known);
        if (folder.kind != icons::Kind::Folder)
            m_nodes[size_t(number)].kind = folder.kind;
    }
    QString last;
    int lastNode = 0;
    for (const File& file : files) {
        if (file.folder != last) {
            last = file.folder;
            lastNode = folderNode(file.folder, known);
        }
        Node& made = m_nodes[size_t(add(lastNode, file.name))];
        made.id = file.id;
        made.bytes = file.size;
        made.files = 1;
    }
    sumUp();
    compact(0);
    sortChildren(0);
    endResetModel();
}

void FileTreeModel::sumUp()
{
    // Parents stand before their children.
    for (size_t i = m_nodes.size(); i-- > 1;) {
        Node& above = m_nodes[size_t(m_nodes[i].parent)];
        above.files += m_nodes[i].files;
        above.bytes += m_nodes[i].bytes;
    }
}

/// Joins folders that hold but one folder with it. An archive stays a row of its own.
void FileTreeModel::compact(int number)
{
    for (size_t i = 0; i < m_nodes[size_t(number)].children.size(); ++i) {
        int child = m_nodes[size_t(number)].children[i];
        QString text = m_nodes[size_t(child)].text;
        while (m_nodes[size_t(child)].folder &&
               m_nodes[size_t(child)].kind == icons::Kind::Folder &&
               m_nodes[size_t(child)].children.size() == 1 &&
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

/// What the sorted column holds, empty where it tells nothing: each is asked for once.
QVariant FileTreeModel::keyOf(const Node& node) const
{
    if (m_sortBy == m_columns.size)
        return node.bytes;
    return node.folder || m_sortBy == NameColumn ? QVariant() : sortKey(node.id, m_sortBy);
}

void FileTreeModel::sortChildren(int number)
{
    std::vector<int>& children = m_nodes[size_t(number)].children;
    const bool descending = m_order == Qt::DescendingOrder;
    std::vector<std::pair<QVariant, int>> rows;
    rows.reserve(children.size());
    for (const int child : children)
        rows.emplace_back(keyOf(m_nodes[size_t(child)]), child);
    std::stable_sort(rows.begin(), rows.end(), [&](const auto& first, const auto& second) {
        const Node& a = m_nodes[size_t(first.second)];
        const Node& b = m_nodes[size_t(second.second)];
        if (a.folder != b.folder)
            return a.folder;
        const QPartialOrdering order = QVariant::compare(first.first, second.first);
        if (order == QPartialOrdering::Less || order == QPartialOrdering::Greater)
            return (order == QPartialOrdering::Less) != descending;
        const int names = compareNoCase(a.text, b.text);
        return descending && m_sortBy == NameColumn && !a.folder ? names > 0 : names < 0;
    });
    for (size_t row = 0; row < rows.size(); ++row) {
        const int child = rows[row].second;
        children[row] = child;
        m_nodes[size_t(child)].row = int(row);
        if (m_nodes[size_t(child)].folder)
            sortChildren(child);
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
    const int column = index.column();
    if (role == IdRole)
        return shown.id;
    if (role == FolderRole)
        return shown.folder ? pathOf(int(index.internalId())) : QString();
    if (column == NameColumn && role == Qt::DisplayRole)
        return shown.text;
    if (column == m_columns.size && role == Qt::DisplayRole)
        return sizeText(shown.bytes);
    if (column == m_columns.size && role == Qt::TextAlignmentRole)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return shown.folder ? folderData(index, role) : fileData(shown.id, column, role);
}

QVariant FileTreeModel::folderData(const QModelIndex& index, int role) const
{
    const Node& shown = node(index);
    if (index.column() == NameColumn && role == Qt::ToolTipRole)
        return pathOf(int(index.internalId()));
    if (index.column() == NameColumn && role == Qt::DecorationRole)
        return icons::kind(shown.kind);
    if (index.column() == m_columns.count && role == Qt::DisplayRole)
        return countText(shown.files, u"file"_s, u"files"_s);
    return {};
}

QVariant FileTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_headers.value(section);
    if (section == m_columns.size && role == Qt::TextAlignmentRole)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

} // namespace vt
