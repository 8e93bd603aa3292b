#include "install/forms/PlannedFilesModel.h"

#include "install/forms/PlannedIcons.h"
#include "platform/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

PlannedFilesModel::PlannedFilesModel(QObject* parent)
    : FileTreeModel({u"Target Name"_s,
                     u"State"_s,
                     u"Install"_s,
                     u"Group"_s,
                     u"Size"_s,
                     u"Source"_s,
                     u"Target Folder"_s,
                     u"Problem Details"_s},
                    {SizeColumn, StateColumn},
                    parent)
{}

void PlannedFilesModel::setPlan(const CAddonInstallationDetails* details,
                                std::vector<PlannedFile> files)
{
    m_details = details;
    m_files = std::move(files);
    m_byKey.clear();
    m_byKey.reserve(qsizetype(m_files.size()));
    for (size_t i = 0; i < m_files.size(); ++i)
        m_byKey.insert(m_files[i].item, i);
    rebuild();
}

void PlannedFilesModel::setFilter(PlannedFilter filter)
{
    m_filter = filter;
    rebuild();
}

bool PlannedFilesModel::passes(const PlannedFile& file) const
{
    switch (m_filter) {
    case PlannedFilter::All:
        break;
    case PlannedFilter::Replaced:
        return file.state == PlannedState::Replaces;
    case PlannedFilter::Changed:
        return file.state == PlannedState::Merges;
    case PlannedFilter::Problems:
        return file.state == PlannedState::Problem ||
               (file.state != PlannedState::Skipped && !file.remark.isEmpty());
    }
    return true;
}

void PlannedFilesModel::rebuild()
{
    std::vector<File> rows;
    for (const PlannedFile& file : m_files) {
        if (!passes(file))
            continue;
        const CAddon_Item& item = *m_details->addon().Search(file.item);
        const QString& folder = item.sFolder_Installation;
        rows.push_back({folder.isEmpty() ? plantext::notSelected() + u'\\' : folder,
                        item.sName_Installation,
                        item.lngKey,
                        item.size});
    }
    setFiles(rows);
}

qsizetype PlannedFilesModel::count(PlannedState state) const
{
    return std::count_if(m_files.begin(), m_files.end(), [state](const PlannedFile& file) {
        return file.state == state;
    });
}

QString PlannedFilesModel::groupOf(const CAddon_Item& item) const
{
    const QString family = mappedGroupName(item.enumMappedGroup);
    const std::vector<InstallationGroup>& groups = m_details->groups(item.enumMappedGroup);
    if (item.groupIndex < 0 || size_t(item.groupIndex) >= groups.size())
        return family;
    return family + u": "_s + groups[size_t(item.groupIndex)].name;
}

QVariant PlannedFilesModel::fileData(qint32 id, int column, int role) const
{
    const PlannedFile& file = m_files[m_byKey.value(id)];
    const CAddon_Item& item = *m_details->addon().Search(id);
    if (column == StateColumn && role == Qt::DecorationRole)
        return plannedIcon(file.state);
    if (role == Qt::ToolTipRole && column == RemarkColumn)
        return file.remark;
    if (role == Qt::ToolTipRole && column == NameColumn)
        return QString(item.sFolder_Installation + item.sName_Installation);
    if (role != Qt::DisplayRole)
        return {};
    switch (column) {
    case StateColumn:
        return plannedStateWord(file.state);
    case InstallColumn:
        return plantext::installWord(item.boolProcess);
    case GroupColumn:
        return groupOf(item);
    case SourceColumn:
        return QString(item.sFolder_Current + item.sName);
    case FolderColumn:
        return item.sFolder_Installation.isEmpty() ? plantext::notSelected()
                                                   : item.sFolder_Installation;
    case RemarkColumn:
        return QString(file.remark).replace(u'\n', u' ');
    default:
        return {};
    }
}

QVariant PlannedFilesModel::sortKey(qint32 id, int column) const
{
    if (column == StateColumn)
        return int(m_files[m_byKey.value(id)].state);
    return fileData(id, column, Qt::DisplayRole);
}

} // namespace vt
