#include "ui/HistoryTableModel.h"

#include "addondb/AddonColumns.h"
#include "platform/Text.h"

#include <QLocale>

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct ColumnAbout
{
    const char16_t* title;
    SortDataType type;
};

constexpr std::array<ColumnAbout, HistoryTableModel::ColumnCount> columnsAbout{{
    {u"Addon Name", SortDataType::General},
    {u"Status", SortDataType::General},
    {u"Date Installed", SortDataType::Date},
    {u"Date Removed", SortDataType::Date},
    {u"Group", SortDataType::General},
    {u"Author(s)", SortDataType::General},
    {u"Source Name", SortDataType::General},
    {u"Size", SortDataType::Number},
    {u"Files", SortDataType::Number},
    {u"Rating", SortDataType::Number},
}};

QVariant historyKey(const HistoryRecord& record, int column)
{
    const AddonRecord& addon = record.addon;
    switch (column) {
    case HistoryTableModel::NameColumn:
        return addon.name;
    case HistoryTableModel::StatusColumn:
        return statusTitle(addon.status);
    case HistoryTableModel::InstalledColumn:
        return addon.dateInstalled;
    case HistoryTableModel::RemovedColumn:
        return record.dateUninstalled;
    case HistoryTableModel::GroupColumn:
        return categoryWords(addon.categories).join(u", "_s);
    case HistoryTableModel::AuthorsColumn:
        return addon.authors;
    case HistoryTableModel::SourceColumn:
        return addon.sourceName;
    case HistoryTableModel::SizeColumn:
        return addon.sourceSize;
    case HistoryTableModel::FilesColumn:
        return addon.sourceTotalFiles;
    case HistoryTableModel::RatingColumn:
        return addon.rating;
    default:
        return {};
    }
}

QVariant historyText(const HistoryRecord& record, int column)
{
    const QVariant key = historyKey(record, column);
    if (columnsAbout[size_t(column)].type == SortDataType::Date) {
        const QDateTime date = key.toDateTime();
        return date.isValid() ? QLocale().toString(date, QLocale::ShortFormat) : QString();
    }
    if (column == HistoryTableModel::SizeColumn)
        return sizeText(key.toLongLong());
    return column == HistoryTableModel::RatingColumn ? ratingText(key.toLongLong())
                                                     : key.toString();
}

bool alignsRight(int column)
{
    return column == HistoryTableModel::SizeColumn || column == HistoryTableModel::FilesColumn;
}

} // namespace

QString statusTitle(InstallationStatus status)
{
    switch (status) {
    case InstallationStatus::Installed:
        return u"Installed"_s;
    case InstallationStatus::FileCabinet:
        return u"File Cabinet"_s;
    case InstallationStatus::Removed:
        return u"Removed"_s;
    case InstallationStatus::Imported:
        return u"Imported"_s;
    }
    Q_UNREACHABLE();
}

void HistoryTableModel::setRows(QList<HistoryRecord> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    setRowCount(m_rows.size());
    endResetModel();
}

QVariant HistoryTableModel::sortKey(qsizetype place, int column) const
{
    return historyKey(m_rows.at(place), column);
}

SortDataType HistoryTableModel::sortType(int column) const
{
    return columnsAbout[size_t(column)].type;
}

const HistoryRecord& HistoryTableModel::at(int row) const
{
    return m_rows.at(placeOf(row));
}

int HistoryTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant HistoryTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole)
        return historyText(at(index.row()), index.column());
    if (role == Qt::DecorationRole && index.column() == NameColumn && picture)
        return picture(at(index.row()).addon.status);
    if (role == Qt::TextAlignmentRole && alignsRight(index.column()))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant HistoryTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::DisplayRole)
        return QStringView(columnsAbout[size_t(section)].title).toString();
    if (role == Qt::TextAlignmentRole)
        return int((alignsRight(section) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    return {};
}

} // namespace vt
