#include "install/forms/SourceContentsModel.h"

#include "install/CAddonInstallationDetails.h"
#include "platform/Text.h"
#include "shell/forms/Icons.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QDateTime dateOf(const CAddonInstallationDetails& details, const CAddon_Item& item)
{
    const ResultOf<Content> content = details.source().content(item);
    return content && content->modifiedNs > 0
               ? QDateTime::fromMSecsSinceEpoch(content->modifiedNs / 1'000'000)
               : QDateTime();
}

} // namespace

SourceContentsModel::SourceContentsModel(QObject* parent)
    : FileTreeModel({u"Name"_s, u"Type"_s, u"Size"_s, u"Date"_s}, parent)
{}

void SourceContentsModel::setDetails(const CAddonInstallationDetails* details)
{
    m_details = details;
    std::vector<File> files;
    if (details) {
        files.reserve(details->addon().colAddonItems().size());
        for (const CAddon_Item& item : details->addon().colAddonItems())
            files.push_back({item.sFolder_Current, item.sName, item.lngKey, item.size});
    }
    setFiles(files);
}

QVariant SourceContentsModel::fileData(qint32 id, int column, int role) const
{
    const CAddon_Item& item = *m_details->addon().Search(id);
    if (column == SizeColumn && role == Qt::TextAlignmentRole)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (column == NameColumn && role == Qt::DecorationRole)
        return icons::kind(icons::Kind::File);
    if (role != Qt::DisplayRole)
        return {};
    switch (column) {
    case TypeColumn:
        return fileTypeName(item.enumAddonFileType);
    case SizeColumn:
        return sizeText(item.size);
    case DateColumn:
        return QLocale().toString(dateOf(*m_details, item), QLocale::ShortFormat);
    default:
        return {};
    }
}

QVariant SourceContentsModel::folderData(qsizetype files, qint64 bytes, int column, int role) const
{
    if (column == SizeColumn && role == Qt::TextAlignmentRole)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (column == NameColumn && role == Qt::DecorationRole)
        return icons::kind(icons::Kind::Folder);
    if (role != Qt::DisplayRole)
        return {};
    if (column == TypeColumn)
        return countText(files, u"file"_s, u"files"_s);
    return column == SizeColumn ? QVariant(sizeText(bytes)) : QVariant();
}

QVariant SourceContentsModel::sortKey(qint32 id, int column) const
{
    const CAddon_Item& item = *m_details->addon().Search(id);
    if (column == SizeColumn)
        return item.size;
    return column == DateColumn ? QVariant(dateOf(*m_details, item))
                                : fileData(id, column, Qt::DisplayRole);
}

} // namespace vt
