#include "simconfig/CMissionMgr.h"

#include "addondb/AddonRecords.h"
#include "platform/WinPath.h"
#include "simconfig/DefaultMissions.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Of a value of a flight file; what lies behind a comment sign belongs to the text.
QString mainValue(const profile::ProfileFile& flight, const QString& key)
{
    return modRoutines_INI::INI_Profile_GetValue(
               flight, u"Main"_s, key, {}, profile::maxBuffer, true)
        .value;
}

} // namespace

CMissionsMetaGroup CMissionMgr::Missions_Get() const
{
    Services& services = m_context.services;
    const QString top = services.files.spelled(m_context.global.missionsFolder);
    QList<MissionFile> files;
    for (const QString& file : services.files.filesBelow(top))
        files.append({winpath::parent(top + file), winpath::name(file)});
    CMissionsMetaGroup missions = CMissionsMetaGroup::ofFiles(files, top);
    for (CMissionGroup& mission : missions.colMissionGroups()) {
        const profile::ProfileFile flight = modRoutines_INI::profileOf(
            services.actions, services.ansi, mission.sFolder + mission.sFlightFile);
        mission.sTitle = mainValue(flight, u"Title"_s);
        mission.sDescription = mainValue(flight, u"Description"_s);
    }
    return missions;
}

bool CMissionMgr::Mission_IsDefault(QStringView folder)
{
    return defaultmissions::isDefault(folder);
}

QString CMissionMgr::ImportNote() const
{
    return m_context.global.names.productName + u" addon imported "_s +
           m_context.services.clock.now().toString(u"yyyy-MM-dd"_s);
}

CAddon_ItemGroup CMissionMgr::ItemGroup_Get(const CMissionGroup& mission) const
{
    CAddon_ItemGroup addon;
    addon.sGroupName = mission.name();
    addon.sGroupDescription = mission.sDescription;
    addon.sSource_Name = ImportNote();
    addon.lngSource_Type = qint32(SourceType::Imported);
    addon.lngInstallation_Status = qint32(InstallationStatus::Imported);
    addon.dteInstalled = m_context.services.clock.now();
    if (mission.boolDefault) {
        addon.sAuthors = u"Microsoft"_s;
        addon.boolOriginal_Addon = true;
    }
    addon.reserve(mission.sarrayFiles.size());
    for (const QString& path : mission.sarrayFiles) {
        CAddon_Item item;
        item.sName = winpath::name(path);
        item.sFolder_Current = winpath::parent(path);
        item.setPreferred(item.sFolder_Current, item.sName);
        item.enumMappedGroup = MappedGroup::Missions;
        item.groupIndex = 0;
        const auto info = m_context.services.files.info(path);
        item.size = info ? info->size : 0;
        addon.lngSource_Size += item.size;
        addon.Add(std::move(item));
    }
    addon.lngSource_Total_Files = qint32(mission.sarrayFiles.size());
    addon.AnalyzeTypes(m_context.global.generation);
    return addon;
}

std::vector<CAddon_ItemGroup> CMissionMgr::ItemGroups_Get() const
{
    std::vector<CAddon_ItemGroup> addons;
    const CMissionsMetaGroup missions = Missions_Get();
    for (const CMissionGroup& mission : missions.colMissionGroups())
        addons.push_back(ItemGroup_Get(mission));
    return addons;
}

} // namespace vt
