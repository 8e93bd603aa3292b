#include "ui/AddonFilesModel.h"

using namespace Qt::StringLiterals;

namespace vt {

void AddonFilesModel::setFiles(const QList<DetailRecord>& files, Compare compare)
{
    beginResetModel();
    m_files = files;
    m_compare = std::move(compare);
    m_states.assign(size_t(files.size()), std::nullopt);
    setRowCount(files.size());
    endResetModel();
}

QString AddonFilesModel::path(int row) const
{
    const DetailRecord& file = m_files.at(placeOf(row));
    return file.location + file.name;
}

int AddonFilesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

ItemState AddonFilesModel::stateOf(qsizetype place) const
{
    std::optional<ItemState>& state = m_states[size_t(place)];
    if (!state)
        state = m_compare(m_files.at(place));
    return *state;
}

QVariant AddonFilesModel::sortKey(qsizetype place, int column) const
{
    const DetailRecord& file = m_files.at(place);
    if (column == FileColumn)
        return file.name;
    return column == FolderColumn ? file.location : itemStateWord(stateOf(place));
}

QVariant AddonFilesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const qsizetype place = placeOf(index.row());
    if (role == Qt::DisplayRole)
        return sortKey(place, index.column());
    if (role == Qt::DecorationRole && index.column() == StateColumn && picture)
        return picture(stateOf(place));
    return {};
}

QVariant AddonFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QStringList({u"File"_s, u"State"_s, u"Folder"_s}).value(section);
}

} // namespace vt
