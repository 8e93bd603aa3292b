// Decisions: methods, folders, names and flags, with everything that follows from them. One set of
// operations for all families; what differs between them stands in familyRules().
#include "install/CAddonInstallationDetails.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Prompt applyAircraftToAll()
{
    return yesNo(
        u"Apply Aircraft to all Unassigned Texture Groups?"_s,
        u"This addon includes several texture groups. Some of these texture groups have yet to be assigned to an aircraft. Would you like the unassigned textures groups to use the aircraft you selected?"_s +
            u"\n\n"_s +
            u"Choose Yes to apply the aircraft you selected to this texture group and to all unassigned texture groups. Press No to apply the aircraft only to the current texture group."_s,
        Button::Yes);
}

Result noSuchGroup()
{
    return Result::failure(u"There is no such group in this add-on."_s);
}

Result noSuchFile()
{
    return Result::failure(u"There is no such file in this add-on."_s);
}

Result noValidFolder()
{
    return Result::failure(u"Please select a valid folder first."_s);
}

} // namespace

Prompt nameChangeWarning()
{
    return yesNo(
        u"Name Change Warning"_s,
        u"Changing this item's name may cause the addon to function improperly. Continue anyway?"_s,
        Button::No,
        Icon::Warning);
}

void CAddonInstallationDetails::Options_UpdateInstallationClass(const InstallOptions& options)
{
    const InstallTo before = installTo();
    m_options = options;
    m_options.to = options.to.value_or(before);
    if (options.name)
        m_addon->sGroupName = options.name->trimmed();
    if (options.description)
        m_addon->sGroupDescription = *options.description;
    if (options.authors)
        m_addon->sAuthors = *options.authors;
    if (options.rating)
        m_addon->lngRating = *options.rating;
    if (installTo() != before)
        Options_InstallationDetails_ModifyInstallationMethod(installTo());
}

InstallTo CAddonInstallationDetails::Options_AddonInstallationMethod_Default_Get() const
{
    return m_context.settings.number(SettingKey::InstallTo) == 1 ? InstallTo::Cabinet
                                                                 : InstallTo::Simulator;
}

InstallationMethod
CAddonInstallationDetails::InstallationMethod_Default_Get(MappedGroup family) const
{
    const FamilyRules* rules = familyRules(family);
    if (!rules || !rules->defaultMethod)
        return InstallationMethod::Determined;
    const QList<MethodLabel> offered = methodLabels(family, m_context.global.names);
    const qint32 place = m_context.settings.number(*rules->defaultMethod);
    return place >= 0 && place < offered.size() ? offered.at(place).method
                                                : InstallationMethod::Determined;
}

InstallationMethod CAddonInstallationDetails::Missions_InstallationMethod_Default_Get() const
{
    return InstallationMethod_Default_Get(MappedGroup::Missions);
}

void CAddonInstallationDetails::applyDefaultMethods()
{
    for (const MappedGroup family : ruledFamilies()) {
        const InstallationMethod method = InstallationMethod_Default_Get(family);
        if (method == InstallationMethod::Determined)
            continue;
        for (size_t i = 0; i < groups(family).size(); ++i) {
            // What belongs to an aircraft stays with it; one that does not fit stays as it is.
            if (groups(family)[i].aircraftGroup < 0 && !groups(family)[i].repaint)
                (void)changeMethod(family, int(i), method, {});
        }
    }
}

void CAddonInstallationDetails::AddonItemGroup_InstallationFolders_ProcessInstallToStorage()
{
    if (m_simulatorFolders.isEmpty()) {
        for (const CAddon_Item& item : m_addon->colAddonItems())
            m_simulatorFolders.append(item.sFolder_Installation);
    }
    m_options.to = InstallTo::Cabinet;
    const QString top = m_context.global.cabinetFolder + winpath::name(m_storageFolder) + u'\\';
    for (CAddon_Item& item : m_addon->colAddonItems_Edit())
        item.setInstallation(top + item.sFolder_Current, item.sName_Installation);
}

void CAddonInstallationDetails::
    AddonItemGroup_InstallationFolders_ProcessInstallToZipFolderEntryFolder()
{
    m_options.to = InstallTo::Simulator;
    qsizetype at = 0;
    const QStringList folders = std::exchange(m_simulatorFolders, {});
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        if (at < folders.size())
            item.setInstallation(folders.at(at++), item.sName_Installation);
    }
}

void CAddonInstallationDetails::Options_InstallationDetails_ModifyInstallationMethod(InstallTo to)
{
    if (to == InstallTo::Cabinet)
        AddonItemGroup_InstallationFolders_ProcessInstallToStorage();
    else
        AddonItemGroup_InstallationFolders_ProcessInstallToZipFolderEntryFolder();
    AddonItems_UpdateTargetExists();
}

QString CAddonInstallationDetails::simulatorFolderOf(const CAddon_Item& item) const
{
    const qsizetype at = &item - m_addon->colAddonItems().data();
    return m_simulatorFolders.isEmpty() ? item.sFolder_Installation : m_simulatorFolders.value(at);
}

void CAddonInstallationDetails::resetDecisions()
{
    m_addon->AddonItems_ResetNamesAndProcessFlag();
    m_followers.clear();
    m_simulatorFolders.clear();
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        item.lngKey_AssociatedItem = 0;
        item.boolProcess = !m_leftOut.contains(item.lngKey);
    }
    std::copy(std::begin(m_analysed), std::end(m_analysed), std::begin(m_groups));
    applyDefaultMethods();
    AddonItems_UpdateTargetExists();
}

bool CAddonInstallationDetails::hasGroup(MappedGroup family, int index) const
{
    return index >= 0 && index < int(groups(family).size());
}

Result CAddonInstallationDetails::changeMethod(MappedGroup family,
                                               int index,
                                               InstallationMethod method,
                                               const QString& folder)
{
    if (!hasGroup(family, index))
        return noSuchGroup();
    InstallationGroup& group = groups(family)[size_t(index)];
    const QList<MethodLabel> offered = methodLabels(family, m_context.global.names);
    if (std::none_of(offered.cbegin(), offered.cend(), [method](const MethodLabel& label) {
            return label.method == method;
        }))
        return Result::failure(u"The files of '"_s + group.name +
                               u"' cannot be installed by this method."_s);
    if (method == InstallationMethod::NewRepaint)
        return changeAircraft(index, folder.isEmpty() ? group.aircraftFolder : folder);
    if (method == InstallationMethod::ChosenFolder)
        return changeFolder(family, index, folder.isEmpty() ? group.targetFolder : folder);
    group.method = method;
    if (family == MappedGroup::Texture && group.asRepaint())
        return changeAircraft(index, determinedFolder(family, index));
    group.targetFolder = methodFolder(family, index, method);
    if (method != InstallationMethod::Determined)
        group.targetFolder = m_context.services.files.spelled(group.targetFolder);
    deriveFolders(family, index);
    if (family == MappedGroup::Aircraft)
        followAircraft(index);
    return Result::success();
}

Result CAddonInstallationDetails::changeFolder(MappedGroup family, int index, const QString& folder)
{
    const FamilyRules* rules = familyRules(family);
    if (!rules || !usableFolder(folder))
        return noValidFolder();
    const QString target = m_context.services.files.spelled(winpath::asFolder(folder));
    if (rules->folderBelowMissions && !winpath::isBelow(target, m_context.global.missionsFolder))
        return Result::failure(u"Select a folder under the Missions folder."_s);
    InstallationGroup& group = groups(family)[size_t(index)];
    group.method = InstallationMethod::ChosenFolder;
    group.targetFolder = target;
    deriveFolders(family, index);
    if (family == MappedGroup::Aircraft)
        followAircraft(index);
    return Result::success();
}

Result CAddonInstallationDetails::changeAircraft(int index, const QString& aircraftFolder)
{
    InstallationGroup& group = groups(MappedGroup::Texture)[size_t(index)];
    group.method = InstallationMethod::NewRepaint;
    if (aircraftFolder.isEmpty()) { // to be chosen yet; a problem until then
        group.aircraftFolder.clear();
        group.targetFolder.clear();
        group.aircraftGroup = -1;
        group.baseMissing = m_analysed[size_t(MappedGroup::Texture)][size_t(index)].baseMissing;
        adaptRepaint(index);
        deriveFolders(MappedGroup::Texture, index);
        return Result::success();
    }
    if (!usableFolder(aircraftFolder))
        return Result::failure(u"No aircraft folder has been specified."_s);
    const QString aircraft = m_context.services.files.spelled(winpath::asFolder(aircraftFolder));
    if (Result base = checkBaseAircraft(aircraft); !base)
        return base;
    group.aircraftFolder = aircraft;
    group.targetFolder = aircraft;
    group.baseMissing = false;
    group.aircraftGroup = -1;
    const std::vector<InstallationGroup>& own = groups(MappedGroup::Aircraft);
    for (size_t i = 0; i < own.size(); ++i) {
        if (winpath::same(own[i].targetFolder, aircraft))
            group.aircraftGroup = int(i);
    }
    adaptRepaint(index);
    deriveFolders(MappedGroup::Texture, index);
    return Result::success();
}

Result CAddonInstallationDetails::InstallationDetails_ModifyPerInstallationMethod(
    MappedGroup family, int group, InstallationMethod method, const QString& folder)
{
    GroupChange change;
    change.method = method;
    change.folder = folder;
    if (Result asked = askRelated(family, group, change); !asked)
        return asked;
    return UpdateInstallationClass(family, group, change);
}

Result CAddonInstallationDetails::InstallationDetails_Modify(MappedGroup family,
                                                             int group,
                                                             const QString& folder)
{
    const bool texture = family == MappedGroup::Texture && hasGroup(family, group) &&
                         groups(family)[size_t(group)].asRepaint();
    GroupChange change;
    change.method = texture ? InstallationMethod::NewRepaint : InstallationMethod::ChosenFolder;
    change.folder = folder;
    if (texture && folder.isEmpty())
        return Result::failure(u"No aircraft folder has been specified."_s);
    if (Result asked = askRelated(family, group, change); !asked)
        return asked;
    if (Result changed = UpdateInstallationClass(family, group, change); !changed || !texture)
        return changed;
    QList<int> unassigned;
    const std::vector<InstallationGroup>& textures = groups(family);
    for (size_t i = 0; i < textures.size(); ++i) {
        if (textures[i].asRepaint() && textures[i].aircraftFolder.isEmpty())
            unassigned.append(int(i));
    }
    if (unassigned.isEmpty() || m_context.services.prompts.ask(applyAircraftToAll()) != Button::Yes)
        return Result::success();
    for (const int other : std::as_const(unassigned)) {
        if (Result changed = UpdateInstallationClass(family, other, change); !changed)
            return changed;
    }
    return Result::success();
}

Result CAddonInstallationDetails::UpdateInstallationClass(MappedGroup family,
                                                          int index,
                                                          const GroupChange& change)
{
    const FamilyRules* rules = familyRules(family);
    if (!rules || !hasGroup(family, index))
        return noSuchGroup();
    m_context.global.currentProcedure =
        u"Public Function "_s + rules->prefix.toString() + u"_UpdateInstallationClass"_s;
    const std::vector<CAddon_Item> itemsBefore = m_addon->Clone_colAddonItems();
    std::vector<InstallationGroup> groupsBefore[mappedGroupCount];
    std::copy(std::begin(m_groups), std::end(m_groups), std::begin(groupsBefore));
    const Result changed = change.method ? changeRelated(family, index, change) : Result::success();
    if (!changed) {
        m_addon->colAddonItems_Edit() = itemsBefore;
        std::copy(std::begin(groupsBefore), std::end(groupsBefore), std::begin(m_groups));
        return changed;
    }
    InstallationGroup& group = groups(family)[size_t(index)];
    if (change.sceneryLibraryUpdate)
        group.sceneryLibraryUpdate = *change.sceneryLibraryUpdate;
    if (change.sceneryTitle)
        group.sceneryTitle = change.sceneryTitle->trimmed();
    if (change.variants)
        group.variants = *change.variants;
    if (change.install)
        InstallationStatus_Modify(family, index, *change.install);
    AddonItems_UpdateTargetExists();
    return Result::success();
}

void CAddonInstallationDetails::Scenery_InstallationDetails_ModifyPerSceneryLibraryUpdateSelection(
    int group, bool update, const QString& title)
{
    GroupChange change;
    change.sceneryLibraryUpdate = update;
    change.sceneryTitle = title;
    (void)UpdateInstallationClass(MappedGroup::Scenery, group, change);
}

void CAddonInstallationDetails::InstallationStatus_Modify(MappedGroup family,
                                                          int group,
                                                          bool install)
{
    if (!hasGroup(family, group))
        return;
    for (const qint32 key : std::as_const(groups(family)[size_t(group)].items))
        m_addon->edit(key)->boolProcess = install;
}

void CAddonInstallationDetails::AddonItems_InstallationStatus_Modify(const QList<qint32>& keys,
                                                                     bool install)
{
    for (const qint32 key : keys) {
        if (CAddon_Item* item = m_addon->edit(key))
            item->boolProcess = install;
    }
}

Result CAddonInstallationDetails::AddonItem_Rename(qint32 key, const QString& name)
{
    CAddon_Item* item = m_addon->edit(key);
    if (!item)
        return noSuchFile();
    if (Result valid = ValidateItemName(name); !valid)
        return valid;
    if (classify(name, m_context.global.generation) != item->enumAddonFileType)
        return Result::failure(u"The file's type ("_s + fileTypeName(item->enumAddonFileType) +
                               u") may not be changed."_s);
    if (name != item->sName_Installation && renamingMayHarm(item->enumAddonFileType) &&
        m_context.services.prompts.ask(nameChangeWarning()) != Button::Yes)
        return Result::failure(u"'"_s + item->sName_Installation + u"' keeps its name."_s,
                               ErrorKind::Declined);
    item->sName_Installation = name;
    AddonItems_UpdateTargetExists();
    return Result::success(u"Filename was updated."_s);
}

Result CAddonInstallationDetails::AddonItem_Rename(qint32 key)
{
    const CAddon_Item* item = m_addon->Search(key);
    if (!item)
        return noSuchFile();
    const auto name = m_context.services.prompts.askText(
        {u"Rename File"_s, u"Enter a new name for this file below."_s, item->sName_Installation});
    return name ? AddonItem_Rename(key, *name)
                : Result::failure(u"'"_s + item->sName_Installation + u"' keeps its name."_s,
                                  ErrorKind::Declined);
}

void CAddonInstallationDetails::unfollow(CAddon_Item& item)
{
    m_followers.remove(item.lngKey_AssociatedItem, item.lngKey);
    item.lngKey_AssociatedItem = 0;
}

Result CAddonInstallationDetails::AddonItem_InstallationFolder_Set(qint32 key,
                                                                   const QString& folder)
{
    CAddon_Item* item = m_addon->edit(key);
    if (!item)
        return noSuchFile();
    if (!usableFolder(folder))
        return noValidFolder();
    unfollow(*item);
    setFolder(*item,
              moduleFolder(*item, m_context.services.files.spelled(winpath::asFolder(folder))));
    AddonItems_UpdateTargetExists();
    return Result::success();
}

Result CAddonInstallationDetails::AddonItem_InstallationFolder_Follow(qint32 key, qint32 leader)
{
    CAddon_Item* item = m_addon->edit(key);
    const CAddon_Item* other = m_addon->Search(leader);
    if (!item || !other)
        return noSuchFile();
    for (const CAddon_Item* up = other; up; up = m_addon->Search(up->lngKey_AssociatedItem)) {
        if (up->lngKey == key)
            return Result::failure(u"'"_s + item->sName + u"' cannot follow '"_s + other->sName +
                                   u"', which follows it already."_s);
    }
    unfollow(*item);
    item->lngKey_AssociatedItem = leader;
    m_followers.insert(leader, key);
    setFolder(*item, other->sFolder_Installation);
    AddonItems_UpdateTargetExists();
    return Result::success();
}

ResultOf<QString> CAddonInstallationDetails::AddonItem_CopyFolderToClipboard(qint32 key)
{
    const CAddon_Item* item = m_addon->Search(key);
    if (!item)
        return noSuchFile();
    if (item->sFolder_Installation.isEmpty())
        return noValidFolder();
    m_context.services.status.text(
        u"Primary"_s, u"'"_s + item->sFolder_Installation + u"' copied to clipboard."_s);
    return item->sFolder_Installation;
}

Result CAddonInstallationDetails::AddonItem_PasteFolderFromClipboard(const QList<qint32>& keys,
                                                                     const QString& clipboard)
{
    const QString folder = clipboard.trimmed();
    if (!usableFolder(folder))
        return noValidFolder();
    for (const qint32 key : keys) {
        if (Result set = AddonItem_InstallationFolder_Set(key, folder); !set)
            return set;
    }
    return Result::success();
}

} // namespace vt
