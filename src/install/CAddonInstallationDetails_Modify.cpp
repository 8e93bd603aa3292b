// Decisions: methods, folders, names and flags, with everything that follows from them.
#include "install/CAddonInstallationDetails.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

void CAddonInstallationDetails::Options_UpdateInstallationClass(const InstallOptions& options)
{
    m_options = options;
    if (options.name)
        m_addon->sGroupName = options.name->trimmed();
    if (options.description)
        m_addon->sGroupDescription = *options.description;
    if (options.authors)
        m_addon->sAuthors = *options.authors;
    if (options.rating)
        m_addon->lngRating = *options.rating;
}

InstallationMethod CAddonInstallationDetails::Options_AddonInstallationMethod_Default_Get() const
{
    return InstallationMethod::Determined;
}

InstallationMethod CAddonInstallationDetails::Missions_InstallationMethod_Default_Get() const
{
    return InstallationMethod::Determined;
}

void CAddonInstallationDetails::setFolder(CAddon_Item& item, const QString& folder)
{
    item.setInstallation(folder, item.sName_Installation);
}

void CAddonInstallationDetails::moveGroup(MappedGroup family, int index, const QString& folder)
{
    InstallationGroup& group = groups(family)[size_t(index)];
    const QString from = group.targetFolder;
    for (const qint32 key : std::as_const(group.items)) {
        CAddon_Item* item = m_addon->edit(key);
        if (!from.isEmpty() && winpath::isBelow(item->sFolder_Installation, from))
            setFolder(*item, folder + item->sFolder_Installation.sliced(from.size()));
    }
    group.targetFolder = folder;
}

void CAddonInstallationDetails::AddonItemGroup_InstallationFolders_ProcessInstallToStorage()
{
    m_options.to = InstallTo::Cabinet;
    const QString top = m_context.global.cabinetFolder + winpath::name(m_storageFolder) + u'\\';
    for (CAddon_Item& item : m_addon->colAddonItems_Edit())
        setFolder(item, top + item.sFolder_Current);
}

void CAddonInstallationDetails::
    AddonItemGroup_InstallationFolders_ProcessInstallToZipFolderEntryFolder()
{
    m_options.to = InstallTo::Simulator;
    for (CAddon_Item& item : m_addon->colAddonItems_Edit())
        setFolder(item, item.sFolder_PreferredInstallation);
    for (std::vector<InstallationGroup>& family : m_groups) {
        for (InstallationGroup& group : family) {
            group.targetFolder = group.proposedFolder;
            group.method = group.needsAircraft ? InstallationMethod::NewRepaint
                                               : InstallationMethod::Determined;
        }
    }
}

Result CAddonInstallationDetails::modifyMethod(MappedGroup family,
                                               int index,
                                               InstallationMethod method,
                                               const QString& folder)
{
    const GlobalRecord& global = m_context.global;
    const QList<MethodLabel> offered = methodLabels(family, global.names);
    if (index < 0 || index >= int(groups(family).size()))
        return Result::failure(u"There is no such group in this add-on."_s);
    InstallationGroup& group = groups(family)[size_t(index)];
    if (std::none_of(offered.cbegin(), offered.cend(), [method](const MethodLabel& label) {
            return label.method == method;
        }))
        return Result::failure(u"The files of '"_s + group.name +
                               u"' cannot be installed by this method."_s);

    QString target;
    switch (method) {
    case InstallationMethod::Determined:
        target = group.proposedFolder;
        break;
    case InstallationMethod::ChosenFolder:
        if (!usableFolder(folder))
            return Result::failure(u"Please select a valid folder first."_s);
        target = winpath::asFolder(folder);
        break;
    case InstallationMethod::GlobalFolder:
        target = family == MappedGroup::Sound     ? global.soundFolder
                 : family == MappedGroup::Texture ? global.textureFolder
                                                  : global.sceneryFolder + u"Global\\"_s;
        break;
    case InstallationMethod::AdventureSounds:
        target = global.adventureSoundsFolder;
        break;
    case InstallationMethod::AddonSceneryTexture:
        target = global.sceneryAddonFolder + u"texture\\"_s;
        break;
    case InstallationMethod::SceneryWorldTexture:
        target = global.sceneryFolder + u"World\\texture\\"_s;
        break;
    case InstallationMethod::NewRepaint:
        group.method = method;
        return folder.isEmpty() ? Result::success()
                                : Texture_InstallationDetails_Modify(index, folder);
    case InstallationMethod::SceneryWorld:
        target = global.sceneryFolder + u"World\\"_s;
        break;
    case InstallationMethod::AddonScenery:
        target = global.sceneryAddonFolder;
        break;
    }
    group.method = method;
    if (family == MappedGroup::Texture && method != InstallationMethod::Determined) {
        // Plain textures: they lose the folders that an aircraft would have given them.
        group.needsAircraft = false;
        for (const qint32 key : std::as_const(group.items))
            setFolder(*m_addon->edit(key), target);
        group.targetFolder = target;
    } else if (!target.isEmpty()) {
        moveGroup(family, index, m_context.services.files.spelled(target));
    }
    AddonItems_UpdateTargetExists();
    return Result::success();
}

Result CAddonInstallationDetails::Panel_InstallationDetails_ModifyPerInstallationMethod(
    int group, InstallationMethod method, const QString& folder)
{
    return modifyMethod(MappedGroup::Panel, group, method, folder);
}

Result CAddonInstallationDetails::Sound_InstallationDetails_ModifyPerInstallationMethod(
    int group, InstallationMethod method, const QString& folder)
{
    return modifyMethod(MappedGroup::Sound, group, method, folder);
}

Result CAddonInstallationDetails::Texture_InstallationDetails_ModifyPerInstallationMethod(
    int group, InstallationMethod method, const QString& folder)
{
    return modifyMethod(MappedGroup::Texture, group, method, folder);
}

Result CAddonInstallationDetails::Scenery_InstallationDetails_ModifyPerInstallationMethod(
    int group, InstallationMethod method, const QString& folder)
{
    return modifyMethod(MappedGroup::Scenery, group, method, folder);
}

Result CAddonInstallationDetails::Missions_InstallationDetails_ModifyPerInstallationMethod(
    int group, InstallationMethod method, const QString& folder)
{
    return modifyMethod(MappedGroup::Missions, group, method, folder);
}

Result CAddonInstallationDetails::Aircraft_InstallationDetails_Modify(int index,
                                                                      const QString& folder)
{
    if (index < 0 || index >= int(groups(MappedGroup::Aircraft).size()))
        return Result::failure(u"There is no such group in this add-on."_s);
    if (!usableFolder(folder))
        return Result::failure(u"Please select a valid folder first."_s);
    const QString target = m_context.services.files.spelled(winpath::asFolder(folder));
    const QString before = groups(MappedGroup::Aircraft)[size_t(index)].targetFolder;
    moveGroup(MappedGroup::Aircraft, index, target);
    for (const MappedGroup family : {MappedGroup::Panel, MappedGroup::Sound}) {
        for (size_t i = 0; i < groups(family).size(); ++i) {
            InstallationGroup& part = groups(family)[i];
            if (part.aircraftGroup != index || !winpath::isBelow(part.targetFolder, before))
                continue;
            part.aircraftFolder = target;
            moveGroup(family, int(i), target + part.targetFolder.sliced(before.size()));
        }
    }
    for (size_t i = 0; i < groups(MappedGroup::Texture).size(); ++i) {
        if (groups(MappedGroup::Texture)[i].aircraftGroup == index) {
            if (Result moved = Texture_InstallationDetails_Modify(int(i), target); !moved)
                return moved;
            groups(MappedGroup::Texture)[i].aircraftGroup = index;
        }
    }
    AddonItems_UpdateTargetExists();
    return Result::success();
}

Result CAddonInstallationDetails::Texture_InstallationDetails_Modify(int index,
                                                                     const QString& aircraftFolder)
{
    if (index < 0 || index >= int(groups(MappedGroup::Texture).size()))
        return Result::failure(u"There is no such group in this add-on."_s);
    if (!usableFolder(aircraftFolder))
        return Result::failure(u"No aircraft folder has been specified."_s);
    InstallationGroup& group = groups(MappedGroup::Texture)[size_t(index)];
    const QString aircraft = winpath::asFolder(aircraftFolder);
    group.aircraftFolder = aircraft;
    group.targetFolder = aircraft;
    group.baseMissing = false;
    group.aircraftGroup = -1;
    for (const AircraftPart& part : std::as_const(group.parts)) {
        for (const qint32 key : std::as_const(group.items)) {
            CAddon_Item* item = m_addon->edit(key);
            if (startsWithNoCase(item->sFolder_Current, part.sourceFolder))
                setFolder(*item,
                          aircraft + part.name + u'\\' +
                              item->sFolder_Current.sliced(part.sourceFolder.size()));
        }
    }
    AddonItems_UpdateTargetExists();
    return Result::success();
}

void CAddonInstallationDetails::Scenery_InstallationDetails_ModifyPerSceneryLibraryUpdateSelection(
    int group, bool update, const QString& title)
{
    if (group < 0 || group >= int(groups(MappedGroup::Scenery).size()))
        return;
    groups(MappedGroup::Scenery)[size_t(group)].sceneryLibraryUpdate = update;
    groups(MappedGroup::Scenery)[size_t(group)].sceneryTitle = title.trimmed();
}

void CAddonInstallationDetails::Group_InstallationStatus_Modify(MappedGroup family,
                                                                int group,
                                                                bool install)
{
    if (group < 0 || group >= int(groups(family).size()))
        return;
    for (const qint32 key : std::as_const(groups(family)[size_t(group)].items))
        m_addon->edit(key)->boolProcess = install;
}

Result CAddonInstallationDetails::AddonItem_Rename(qint32 key, const QString& name)
{
    CAddon_Item* item = m_addon->edit(key);
    if (!item)
        return Result::failure(u"There is no such file in this add-on."_s);
    if (Result valid = ValidateItemName(name); !valid)
        return valid;
    if (classify(name, m_context.global.generation) != item->enumAddonFileType)
        return Result::failure(u"The file's type ("_s + fileTypeName(item->enumAddonFileType) +
                               u") may not be changed."_s);
    item->sName_Installation = name;
    AddonItems_UpdateTargetExists();
    return Result::success(u"Filename was updated."_s);
}

Result CAddonInstallationDetails::AddonItem_InstallationFolder_Set(qint32 key,
                                                                   const QString& folder)
{
    CAddon_Item* item = m_addon->edit(key);
    if (!item)
        return Result::failure(u"There is no such file in this add-on."_s);
    if (!usableFolder(folder))
        return Result::failure(u"Please select a valid folder first."_s);
    setFolder(*item, m_context.services.files.spelled(winpath::asFolder(folder)));
    AddonItems_UpdateTargetExists();
    return Result::success();
}

void CAddonInstallationDetails::DocumentAndOther_AutomaticallyResolveProblems()
{
    for (const QList<qint32>& keys : m_addon->duplicateTargets()) {
        for (qsizetype i = 1; i < keys.size(); ++i) {
            CAddon_Item* item = m_addon->edit(keys.at(i));
            if (!item->IsMappedToDocumentGroup() ||
                !winpath::isBelow(item->sFolder_Installation, m_storageFolder))
                continue;
            setFolder(*item, item->sFolder_Installation + QString::number(i + 1) + u'\\');
        }
    }
}

} // namespace vt
