#include "simconfig/CMissionsMetaGroup.h"

#include "addondb/CAddon_ItemGroup.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"
#include "simconfig/DefaultMissions.h"

#include <QHash>

namespace vt {

namespace {

bool isFlight(QStringView name)
{
    return equalNoCase(winpath::extension(name), u"flt");
}

} // namespace

QString CMissionGroup::name() const
{
    return sTitle.isEmpty() ? winpath::name(sFolder) : sTitle;
}

const CMissionGroup* CMissionsMetaGroup::Search(QStringView folder) const
{
    for (const CMissionGroup& group : m_groups) {
        if (winpath::same(group.sFolder, folder))
            return &group;
    }
    return nullptr;
}

QStringList CMissionsMetaGroup::Categories() const
{
    QStringList categories;
    for (const CMissionGroup& group : m_groups) {
        if (!group.sCategory.isEmpty() &&
            !categories.contains(group.sCategory, Qt::CaseInsensitive))
            categories.append(group.sCategory);
    }
    return categories;
}

CMissionsMetaGroup CMissionsMetaGroup::ofFiles(const QList<MissionFile>& files,
                                               const QString& missionsFolder)
{
    CMissionsMetaGroup out;
    QHash<NoCase, size_t> byFolder;
    for (const MissionFile& file : files) {
        if (!isFlight(file.name) || byFolder.contains(NoCase{file.folder}) ||
            winpath::same(file.folder, missionsFolder))
            continue;
        CMissionGroup group;
        group.sFolder = file.folder;
        group.sFlightFile = file.name;
        group.boolDefault = defaultmissions::isDefault(file.folder);
        const QString above = winpath::parent(file.folder);
        if (winpath::isBelow(above, missionsFolder))
            group.sCategory = winpath::withoutTrailing(winpath::relativeTo(above, missionsFolder));
        byFolder.insert(NoCase{file.folder}, out.m_groups.size());
        out.m_groups.push_back(std::move(group));
    }
    for (const MissionFile& file : files) {
        for (QString up = file.folder; !up.isEmpty(); up = winpath::parent(up)) {
            const auto found = byFolder.constFind(NoCase{up});
            if (found == byFolder.cend())
                continue;
            out.m_groups[*found].sarrayFiles.append(file.folder + file.name);
            if (file.itemKey)
                out.m_groups[*found].lngarrayAddonItemKeys.append(file.itemKey);
            break;
        }
    }
    return out;
}

CMissionsMetaGroup CMissionsMetaGroup::ofAddon(const CAddon_ItemGroup& addon,
                                               const GlobalRecord& global)
{
    QList<MissionFile> files;
    for (const CAddon_Item& item : addon.colAddonItems()) {
        if (item.boolProcess && item.IsMappedToMissionsGroup())
            files.append({item.sFolder_Installation, item.sName_Installation, item.lngKey});
    }
    return ofFiles(files, global.missionsFolder);
}

} // namespace vt
