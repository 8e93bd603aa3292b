#include "install/forms/SourceContentsModel.h"

#include "install/CAddonInstallationDetails.h"
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
    : FileTreeModel({u"Name"_s, u"Type"_s, u"Size"_s, u"Date"_s}, {SizeColumn, TypeColumn}, parent)
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
    if (column == NameColumn && role == Qt::DecorationRole)
        return icons::kind(icons::Kind::File);
    if (role != Qt::DisplayRole)
        return {};
    switch (column) {
    case TypeColumn:
        return fileTypeName(item.enumAddonFileType);
    case DateColumn:
        return QLocale().toString(dateOf(*m_details, item), QLocale::ShortFormat);
    default:
        return {};
    }
}

QVariant SourceContentsModel::sortKey(qint32 id, int column) const
{
    return column == DateColumn ? QVariant(dateOf(*m_details, *m_details->addon().Search(id)))
                                : fileData(id, column, Qt::DisplayRole);
}

} // namespace vt
