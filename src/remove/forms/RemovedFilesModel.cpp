#include "remove/forms/RemovedFilesModel.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/forms/Icons.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QIcon iconOf(RemovalFate fate)
{
    switch (fate) {
    case RemovalFate::ComesBack:
        return icons::state(icons::State::Replaces);
    case RemovalFate::Stays:
        return icons::state(icons::State::Same);
    case RemovalFate::Missing:
        return icons::state(icons::State::Missing);
    case RemovalFate::Goes:
        break;
    }
    return icons::state(icons::State::TrashCan);
}

} // namespace

void RemovedFilesModel::setFiles(const QList<PreviewedFile>& files)
{
    beginResetModel();
    m_files = files;
    endResetModel();
}

int RemovedFilesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_files.size());
}

int RemovedFilesModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QString RemovedFilesModel::cell(const PreviewedFile& file, int column)
{
    switch (column) {
    case NameColumn:
        return winpath::name(file.path);
    case FateColumn:
        return file.text;
    default:
        return winpath::parent(file.path);
    }
}

QVariant RemovedFilesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const PreviewedFile& file = m_files.at(index.row());
    if (role == Qt::DisplayRole)
        return cell(file, index.column());
    if (role == Qt::ToolTipRole)
        return QString(file.path + u' ' + file.text);
    if (role == Qt::DecorationRole && index.column() == NameColumn)
        return iconOf(file.fate);
    return {};
}

QVariant RemovedFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList titles = {u"Name"_s, u"What Happens"_s, u"Folder"_s};
    return titles.value(section);
}

void RemovedFilesModel::sort(int column, Qt::SortOrder order)
{
    beginResetModel();
    std::stable_sort(
        m_files.begin(), m_files.end(), [&](const PreviewedFile& a, const PreviewedFile& b) {
            const int which = compareNoCase(cell(a, column), cell(b, column));
            return order == Qt::AscendingOrder ? which < 0 : which > 0;
        });
    endResetModel();
}

} // namespace vt
