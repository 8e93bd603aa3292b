#include "addondb/AddonColumns.h"

#include "addondb/AddonDatabase.h"
#include "addondb/DatabaseSteps.h"
#include "platform/Text.h"

#include <QHash>

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct ColumnInfo
{
    AddonColumn column;
    const char16_t* title;
    SortDataType type;
};

constexpr std::array<ColumnInfo, size_t(AddonColumn::Count)> columnTable{{
    {AddonColumn::Order, u"Order", SortDataType::Number},
    {AddonColumn::AddonName, u"Addon Name", SortDataType::General},
    {AddonColumn::DateInstalled, u"Date Installed", SortDataType::Date},
    {AddonColumn::DateRemoved, u"Date Removed", SortDataType::Date},
    {AddonColumn::FolderDate, u"Folder Date", SortDataType::Date},
    {AddonColumn::ReferenceNumber, u"Reference #", SortDataType::Number},
    {AddonColumn::Group, u"Group", SortDataType::General},
    {AddonColumn::Authors, u"Author(s)", SortDataType::General},
    {AddonColumn::SourceName, u"Source Name", SortDataType::General},
    {AddonColumn::Size, u"Size", SortDataType::Number},
    {AddonColumn::Files, u"Files", SortDataType::Number},
    {AddonColumn::Origin, u"Origin", SortDataType::General},
    {AddonColumn::Rating, u"Rating", SortDataType::Number},
}};

const ColumnInfo& infoOf(AddonColumn column)
{
    const ColumnInfo& info = columnTable[size_t(column)];
    Q_ASSERT(info.column == column);
    return info;
}

QString shownDate(const QDateTime& time)
{
    return time.isValid() ? time.toString(u"yyyy-MM-dd HH:mm"_s) : QString();
}

} // namespace

QString addonColumnTitle(AddonColumn column)
{
    return QStringView(infoOf(column).title).toString();
}

SortDataType addonColumnDataType(AddonColumn column)
{
    return infoOf(column).type;
}

QString originWord(const AddonRecord& addon)
{
    if (addon.original)
        return u"Flight Simulator"_s;
    if (addon.status == InstallationStatus::FileCabinet)
        return u"File Cabinet"_s;
    if (addon.sourceType == SourceType::Imported || addon.status == InstallationStatus::Imported)
        return u"Imported"_s;
    return u"Installed"_s;
}

QString ratingText(qint64 rating)
{
    return rating == 0 ? u"(unrated)"_s : QString::number(rating);
}

AddonIcon AddonListRow::icon() const
{
    if (addon.status == InstallationStatus::FileCabinet ||
        addon.status == InstallationStatus::Removed)
        return AddonIcon::TrashCan;
    return addon.original ? AddonIcon::Simulator : AddonIcon::Own;
}

QString AddonListRow::text(AddonColumn column, qsizetype position) const
{
    switch (column) {
    case AddonColumn::DateInstalled:
    case AddonColumn::DateRemoved:
    case AddonColumn::FolderDate:
        return shownDate(key(column, position).toDateTime());
    case AddonColumn::Size:
        return sizeText(addon.sourceSize);
    case AddonColumn::Rating:
        return ratingText(addon.rating);
    default:
        return key(column, position).toString();
    }
}

QVariant AddonListRow::key(AddonColumn column, qsizetype position) const
{
    switch (column) {
    case AddonColumn::Order:
        return position + 1;
    case AddonColumn::AddonName:
        return addon.name;
    case AddonColumn::DateInstalled:
        return addon.dateInstalled;
    case AddonColumn::DateRemoved:
        return dateRemoved;
    case AddonColumn::FolderDate:
        return folderDate;
    case AddonColumn::ReferenceNumber:
        return addon.key;
    case AddonColumn::Group:
        return categoryWords(addon.categories).join(u", "_s);
    case AddonColumn::Authors:
        return addon.authors;
    case AddonColumn::SourceName:
        return addon.sourceName;
    case AddonColumn::Size:
        return addon.sourceSize;
    case AddonColumn::Files:
        return files;
    case AddonColumn::Origin:
        return originWord(addon);
    case AddonColumn::Rating:
        return addon.rating;
    case AddonColumn::Count:
        break;
    }
    return {};
}

ResultOf<QList<AddonListRow>>
addonListRows(Connection& database, StatusSink& status, const ListFilter& filter)
{
    status.text(u"Primary"_s, u"Building display..."_s);
    const ResultOf<QList<AddonRow>> addons = addonRows(database, filter);
    if (!addons)
        return addons.error();
    QHash<std::pair<qint64, QDateTime>, QDateTime> removed;
    Recordset history(database, Table::Addon_History);
    for (bool more = history.moveFirst(); more; more = history.moveNext())
        if (const QDateTime date = history.date(Field::Date_Uninstalled); date.isValid())
            removed.insert(
                {history.number(Field::Addon_Master_Key), history.date(Field::Date_Installed)},
                date);
    if (!history.error())
        return databaseFailure(u"Could not open the addon history table."_s);
    QList<AddonListRow> rows;
    rows.reserve(addons->size());
    for (const AddonRow& row : *addons)
        rows.append(
            {row.addon, row.files, removed.value({row.addon.key, row.addon.dateInstalled}), {}});
    return rows;
}

QDateTime newestInFolder(Connection& database, const Files& files, qint64 masterKey)
{
    Recordset details(database, Table::Addon_Details);
    details.setIndex(Index::Addon_Details_Addon_Master_Key);
    QDateTime newest;
    if (!details.seek({masterKey}))
        return newest;
    for (const FileInfo& file : files.list(details.text(Field::Installed_To_Location)))
        if (!file.folder && (!newest.isValid() || file.modified() > newest))
            newest = file.modified();
    return newest;
}

} // namespace vt
