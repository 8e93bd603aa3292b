#include "archive/forms/FolderModel.h"

#include "addondb/FileType.h"
#include "archive/CZIPFile.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/forms/Icons.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Files of unknown endings count as textures, which many numbered ones are; here they would only
/// be in the way.
bool isAddonFile(const QString& name, int generation)
{
    const FileType type = classify(name, generation);
    if (type != FileType::Texture)
        return type != FileType::Other;
    const QString ending = winpath::extension(name).toLower();
    return ending == u"dds" || ending == u"tga" || ending == u"r8";
}

} // namespace

FolderModel::FolderModel(const Files& files, int generation, QObject* parent)
    : OrderedTableModel(NameColumn, parent), m_files(files), m_generation(generation)
{}

void FolderModel::setFolder(const QString& folder)
{
    m_folder = winpath::asFolder(folder);
    read();
}

void FolderModel::setFilter(FolderFilter filter)
{
    m_filter = filter;
    read();
}

bool FolderModel::shows(const FileInfo& info) const
{
    if (info.folder || m_filter == FolderFilter::AllFiles || isArchiveName(info.name))
        return true;
    return m_filter == FolderFilter::AddonFiles && isAddonFile(info.name, m_generation);
}

void FolderModel::read()
{
    beginResetModel();
    m_rows = m_files.list(m_folder);
    const qsizetype all = m_rows.size();
    m_rows.removeIf([this](const FileInfo& info) { return !shows(info); });
    m_hidden = all - m_rows.size();
    setRowCount(m_rows.size());
    endResetModel();
}

QString FolderModel::path(const QModelIndex& index) const
{
    const FileInfo* one = info(index);
    if (!one)
        return {};
    const QString path = winpath::join(m_folder, one->name);
    return one->folder ? winpath::asFolder(path) : path;
}

const FileInfo* FolderModel::info(const QModelIndex& index) const
{
    return index.isValid() ? &m_rows.at(placeOf(index.row())) : nullptr;
}

int FolderModel::rowOf(const QString& name) const
{
    const auto found = std::find_if(m_rows.begin(), m_rows.end(), [&name](const FileInfo& info) {
        return equalNoCase(info.name, name);
    });
    return found == m_rows.end() ? -1 : rowOfPlace(found - m_rows.begin());
}

int FolderModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QString FolderModel::typeOf(const FileInfo& info) const
{
    if (info.folder)
        return u"Folder"_s;
    if (isArchiveName(info.name))
        return winpath::extension(info.name).toUpper() + u" Archive"_s;
    return fileTypeName(classify(info.name, m_generation));
}

QVariant FolderModel::data(const QModelIndex& index, int role) const
{
    const FileInfo* one = info(index);
    if (!one)
        return {};
    if (role == Qt::DecorationRole && index.column() == NameColumn)
        return icons::kind(one->folder                ? icons::Kind::Folder
                           : isArchiveName(one->name) ? icons::Kind::Archive
                                                      : icons::Kind::File);
    if (role == Qt::TextAlignmentRole && index.column() == SizeColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case NameColumn:
        return one->name;
    case SizeColumn:
        return one->folder ? QString() : sizeText(one->size);
    case DateColumn:
        return QLocale().toString(one->modified(), QLocale::ShortFormat);
    default:
        return typeOf(*one);
    }
}

QVariant FolderModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole && section == SizeColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList titles = {u"Name"_s, u"Size"_s, u"Date"_s, u"Type"_s};
    return titles.value(section);
}

QVariant FolderModel::sortKey(qsizetype place, int column) const
{
    const FileInfo& info = m_rows.at(place);
    switch (column) {
    case SizeColumn:
        return info.size;
    case DateColumn:
        return info.modifiedNs;
    case TypeColumn:
        return typeOf(info);
    default:
        return info.name;
    }
}

SortDataType FolderModel::sortType(int column) const
{
    return column == SizeColumn || column == DateColumn ? SortDataType::Number
                                                        : SortDataType::General;
}

bool FolderModel::leads(qsizetype place) const
{
    return m_rows.at(place).folder;
}

} // namespace vt
