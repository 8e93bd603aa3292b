// Where the files of a group go, worked out anew from what the analysis proposed whenever a method,
// a folder or an aircraft changes. The proposal itself is never changed.
#include "install/AircraftFacts.h"
#include "install/CAddonInstallationDetails.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "simconfig/ConfigFacts.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 aircraftCfgLimit = 4 << 20;

/// What is left of a folder from its last component "scenery" or "texture" on; empty without one.
QString fromSceneryPart(const QString& folder)
{
    for (QString up = folder; !up.isEmpty(); up = winpath::parent(up)) {
        const QString name = winpath::name(up);
        if (equalNoCase(name, u"scenery") || equalNoCase(name, u"texture"))
            return folder.sliced(winpath::parent(up).size());
    }
    return {};
}

} // namespace

void CAddonInstallationDetails::setFolder(CAddon_Item& item, const QString& folder)
{
    item.setInstallation(folder, item.sName_Installation);
    if (m_followers.isEmpty())
        return;
    const QList<qint32> followers = m_followers.values(item.lngKey);
    for (const qint32 key : followers) {
        if (CAddon_Item* follower = m_addon->edit(key))
            setFolder(*follower, folder);
    }
}

/// Simulator modules are found in the modules folder only, whatever else the group does.
QString CAddonInstallationDetails::moduleFolder(const CAddon_Item& item,
                                                const QString& folder) const
{
    const bool module = item.enumAddonFileType == FileType::DynamicLinkLibrary &&
                        isSimulatorModule(item.sName) && !containsNoCase(folder, u"Modules\\"_s);
    return module ? m_context.global.modulesFolder : folder;
}

QString CAddonInstallationDetails::determinedFolder(MappedGroup family, int index) const
{
    const InstallationGroup& group = groups(family)[size_t(index)];
    const QString proposed = m_analysed[size_t(family)][size_t(index)].proposedFolder;
    if (group.aircraftGroup < 0)
        return proposed;
    const size_t aircraft = size_t(group.aircraftGroup);
    const QString before = m_analysed[size_t(MappedGroup::Aircraft)][aircraft].proposedFolder;
    const QString now = groups(MappedGroup::Aircraft)[aircraft].targetFolder;
    return winpath::isBelow(proposed, before) ? now + proposed.sliced(before.size()) : proposed;
}

QString CAddonInstallationDetails::methodFolder(MappedGroup family,
                                                int index,
                                                InstallationMethod method) const
{
    const GlobalRecord& global = m_context.global;
    switch (method) {
    case InstallationMethod::GlobalFolder:
        return family == MappedGroup::Sound     ? global.soundFolder
               : family == MappedGroup::Texture ? global.textureFolder
                                                : global.sceneryFolder + u"Global\\"_s;
    case InstallationMethod::AdventureSounds:
        return global.adventureSoundsFolder;
    case InstallationMethod::AddonSceneryTexture:
        return global.sceneryAddonFolder + u"texture\\"_s;
    case InstallationMethod::SceneryWorldTexture:
        return global.sceneryFolder + u"World\\texture\\"_s;
    case InstallationMethod::SceneryWorld:
        return global.sceneryFolder + u"World\\"_s;
    case InstallationMethod::AddonScenery:
        return global.sceneryAddonFolder;
    case InstallationMethod::Determined:
    case InstallationMethod::ChosenFolder:
    case InstallationMethod::NewRepaint:
        break;
    }
    return determinedFolder(family, index);
}

/// The folder of one item by its group's decisions.
QString CAddonInstallationDetails::derivedFolder(const InstallationGroup& group,
                                                 const InstallationGroup& analysed,
                                                 const CAddon_Item& item) const
{
    const QString& proposed = item.sFolder_PreferredInstallation;
    if (group.family == MappedGroup::Texture && (analysed.repaint || group.asRepaint())) {
        const bool plain = !group.asRepaint();
        if (plain && typeGroupOf(item.enumAddonFileType) != TypeGroup::Texture)
            return proposed; // a model or a panel is no texture
        for (const AircraftPart& part : group.parts) {
            if (!startsWithNoCase(item.sFolder_Current, part.sourceFolder))
                continue;
            const QString rest = item.sFolder_Current.sliced(part.sourceFolder.size());
            if (plain)
                return group.targetFolder + rest;
            return group.aircraftFolder.isEmpty() ? QString()
                                                  : group.aircraftFolder + part.name + u'\\' + rest;
        }
        return proposed;
    }
    if (group.targetFolder.isEmpty() || group.targetFolder == analysed.proposedFolder)
        return moduleFolder(item, proposed);
    if (!analysed.proposedFolder.isEmpty() && winpath::isBelow(proposed, analysed.proposedFolder))
        return moduleFolder(item,
                            group.targetFolder + proposed.sliced(analysed.proposedFolder.size()));
    const QString rest =
        group.family == MappedGroup::Scenery ? fromSceneryPart(proposed) : QString();
    return rest.isEmpty() ? proposed : group.targetFolder + rest;
}

void CAddonInstallationDetails::deriveFolders(MappedGroup family, int index)
{
    const InstallationGroup& group = groups(family)[size_t(index)];
    const InstallationGroup& analysed = m_analysed[size_t(family)][size_t(index)];
    for (const qint32 key : group.items) {
        CAddon_Item* item = m_addon->edit(key);
        if (item->lngKey_AssociatedItem == 0)
            setFolder(*item, derivedFolder(group, analysed, *item));
    }
}

/// Whether the folder \a name of \a aircraft is there already, or another repaint gets it.
bool CAddonInstallationDetails::partIsTaken(int index,
                                            const QString& aircraft,
                                            const QString& name) const
{
    if (m_context.services.files.exists(aircraft + name))
        return true;
    const std::vector<InstallationGroup>& textures = groups(MappedGroup::Texture);
    for (size_t i = 0; i < textures.size(); ++i) {
        if (int(i) == index || !textures[i].asRepaint() ||
            !winpath::same(textures[i].aircraftFolder, aircraft))
            continue;
        for (const AircraftPart& part : textures[i].parts) {
            if (equalNoCase(part.name, name))
                return true;
        }
    }
    return false;
}

/// Names of the repaint's folders and its variations for the aircraft that it has now.
void CAddonInstallationDetails::adaptRepaint(int index)
{
    InstallationGroup& group = groups(MappedGroup::Texture)[size_t(index)];
    const InstallationGroup& analysed = m_analysed[size_t(MappedGroup::Texture)][size_t(index)];
    group.parts = analysed.parts;
    group.variants = analysed.variants;
    if (analysed.repaint && winpath::same(group.aircraftFolder, analysed.proposedFolder))
        return;
    if (group.parts.isEmpty())
        makeDefaultVariant(group);
    for (AircraftPart& part : group.parts) {
        const QString before = configfacts::partSuffix(part.name);
        part.name = part.wanted;
        for (int number = 2; partIsTaken(index, group.aircraftFolder, part.name); ++number)
            part.name = part.wanted + u' ' + QString::number(number);
        if (!configfacts::isPartFolder(part.name, u"texture"))
            continue;
        const QString now = configfacts::partSuffix(part.name);
        for (VariantDetails& variant : group.variants) {
            if (equalNoCase(variant.texture.section(u'\\', 0, 0), before))
                variant.texture = now + variant.texture.sliced(before.size());
        }
    }
}

/// Plain textures that become a skin: one folder, one variation, named after what they are.
void CAddonInstallationDetails::makeDefaultVariant(InstallationGroup& group) const
{
    QString suffix = winpath::safeName(m_addon->sGroupName);
    if (suffix.isEmpty())
        suffix = u"Addon"_s;
    const QString folder = u"texture."_s + suffix;
    group.parts = {{group.sourceFolder, folder, folder}};
    VariantDetails variant;
    variant.title = winpath::name(group.aircraftFolder) + u' ' + suffix;
    variant.variation = suffix;
    variant.texture = suffix;
    group.variants = {variant};
}

/// Why no skin can be made for the aircraft in this folder.
Result CAddonInstallationDetails::checkBaseAircraft(const QString& aircraft) const
{
    for (const InstallationGroup& own : groups(MappedGroup::Aircraft)) {
        if (winpath::same(own.targetFolder, aircraft))
            return Result::success();
    }
    const auto bytes =
        m_context.services.files.read(aircraft + u"aircraft.cfg"_s, aircraftCfgLimit);
    if (!bytes)
        return Result::failure(u"Could not locate base aircraft."_s);
    if (aircraftFacts(decodedText(*bytes, m_context.services.ansi)).sections.isEmpty())
        return Result::failure(u"Cound not determine new aircraft variant defaults."_s);
    return Result::success();
}

/// The parts of an aircraft follow it to its new folder, as far as they are where the program put
/// them.
void CAddonInstallationDetails::followAircraft(int aircraft)
{
    const QString target = groups(MappedGroup::Aircraft)[size_t(aircraft)].targetFolder;
    for (const MappedGroup family :
         {MappedGroup::Panel, MappedGroup::Sound, MappedGroup::Texture}) {
        for (size_t i = 0; i < groups(family).size(); ++i) {
            InstallationGroup& part = groups(family)[i];
            if (part.aircraftGroup != aircraft)
                continue;
            if (family == MappedGroup::Texture && part.asRepaint()) {
                part.aircraftFolder = target;
                part.targetFolder = target;
            } else if (part.method != InstallationMethod::Determined) {
                continue;
            } else {
                part.aircraftFolder = target;
                part.targetFolder = determinedFolder(family, int(i));
            }
            deriveFolders(family, int(i));
        }
    }
}

} // namespace vt
