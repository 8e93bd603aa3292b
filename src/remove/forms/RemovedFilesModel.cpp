#include "remove/forms/RemovedFilesModel.h"

#include "platform/WinPath.h"
#include "shell/forms/Icons.h"

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
    setRowCount(m_files.size());
    endResetModel();
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
    const PreviewedFile& file = m_files.at(placeOf(index.row()));
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

} // namespace vt
