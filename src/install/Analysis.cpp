// Recognising: which folder is what. Placing is in Analysis_Place.cpp.
#include "install/Analysis.h"

#include "platform/WinPath.h"
#include "shell/Settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using vt::foldernames::Anchor;

namespace vt {

namespace {

constexpr qint64 configurationLimit = 4 << 20;

bool isDocumentFolderName(QStringView name)
{
    for (const QStringView word : {QStringView(u"doc"),
                                   QStringView(u"manual"),
                                   QStringView(u"help"),
                                   QStringView(u"readme")}) {
        if (startsWithNoCase(name, word))
            return true;
    }
    return false;
}

} // namespace

CAddonInstallationDetails::Analysis::Analysis(CAddonInstallationDetails& owner)
    : d(owner), global(owner.m_context.global), files(owner.m_context.services.files),
      addon(*owner.m_addon)
{
    std::fill(std::begin(loose), std::end(loose), -1);
    skipBrowserFiles = owner.m_context.settings.flag(SettingKey::NeverInstallThumbnailBrowserFiles);
    skipSceneryDat = owner.m_context.settings.flag(SettingKey::NeverInstallSceneryDatFiles);
}

void CAddonInstallationDetails::Analysis::run()
{
    readConfigurations();
    tree.emplace(addon, cfgFacts);
    claims.resize(size_t(tree->count()));
    walk(0);
    addLooseTextures();
    resolveRepaints();
    resolveLoneParts();
    placeAll();
    nameStorageFolders();
    spellTargets();
}

void CAddonInstallationDetails::Analysis::readConfigurations()
{
    for (const CAddon_Item& item : addon.colAddonItems()) {
        if (item.lngKey_AssociatedZip > 0)
            openedArchives.insert(item.lngKey_AssociatedZip);
        if (typeGroupOf(item.enumAddonFileType) != TypeGroup::AircraftConfiguration)
            continue;
        const auto bytes = d.m_source->read(item, configurationLimit);
        if (!bytes)
            continue; // told when it is installed; here it only is no aircraft
        cfgFacts.insert(item.lngKey, aircraftFacts(decodedText(*bytes, d.m_context.services.ansi)));
    }
}

void CAddonInstallationDetails::Analysis::walk(int folder)
{
    const SourceFolder& here = tree->at(folder);
    if (here.unsafe)
        return;
    if (foldernames::isJunkFolder(here.name)) {
        claimTree(folder, Kind::Skip, {}, MappedGroup::None, -1);
        return;
    }
    if (folder != 0 && !here.archiveRoot && takeAnchor(folder))
        return;
    if (isAircraft(folder)) {
        claimAircraft(folder, aircraftTarget(folder));
        return;
    }
    if (isMission(folder)) {
        claimMission(folder, missionTarget(folder));
        return;
    }
    claimSceneryAt(folder);
    if (!claimRepaintAt(folder)) {
        if (here.facts & FactPanelCfg)
            claimPart(folder, MappedGroup::Panel);
        else if (here.facts & FactSoundCfg)
            claimPart(folder, MappedGroup::Sound);
        else
            claimGaugeFolder(folder);
    }
    for (const int child : here.children) {
        if (claims[size_t(child)].kind == Kind::Free)
            walk(child);
    }
}

bool CAddonInstallationDetails::Analysis::takeAnchor(int folder)
{
    const SourceFolder& here = tree->at(folder);
    switch (foldernames::anchorOf(here.name)) {
    case Anchor::SimObjects:
        claimSimObjects(folder);
        return true;
    case Anchor::AircraftType:
        if (global.simObjectsFolder.isEmpty() || isAircraft(folder) ||
            !(here.below & (FactAircraftCfg | FactAir | FactModel | FactSimCfg | FactTexture)))
            return false;
        claimTypeFolder(folder, global.simObjectsFolder + here.name + u'\\');
        return true;
    case Anchor::PreviousAircraft:
        if (isAircraft(folder) || here.children.empty())
            return false;
        claimTypeFolder(folder, global.aircraftFolder);
        return true;
    case Anchor::AddonScenery:
        claimAddonScenery(folder);
        return true;
    case Anchor::Scenery:
        for (const int child : here.children)
            claimSceneryBranch(child);
        return false;
    case Anchor::Texture:
        if (!hasStrongAnchorChild(here.parent))
            return false;
        claimTree(folder,
                  Kind::Texture,
                  global.textureFolder,
                  MappedGroup::Texture,
                  looseGroup(MappedGroup::Texture));
        return true;
    case Anchor::Effects:
        claimTree(folder, Kind::Effects, global.effectsFolder, MappedGroup::DocumentAndOther, -1);
        return true;
    case Anchor::Gauges:
        claimGauges(folder);
        return true;
    case Anchor::Sound:
        if (here.facts & FactSoundCfg)
            return false;
        claimTree(folder,
                  Kind::Sound,
                  global.soundFolder,
                  MappedGroup::Sound,
                  looseGroup(MappedGroup::Sound));
        return true;
    case Anchor::Fonts:
        claimTree(folder, Kind::SimFolder, global.fontsFolder, MappedGroup::DocumentAndOther, -1);
        return true;
    case Anchor::Modules:
        claimTree(folder, Kind::SimFolder, global.modulesFolder, MappedGroup::DocumentAndOther, -1);
        return true;
    case Anchor::Missions:
        claimMissionsFolder(folder);
        return true;
    case Anchor::Flights:
        claimTree(folder,
                  Kind::SimFolder,
                  simulatorHas(u"Flights"_s) ? global.simulatorFolder + u"Flights\\"_s
                                             : global.userDocumentsFolder,
                  MappedGroup::DocumentAndOther,
                  -1);
        return true;
    case Anchor::Weather:
    case Anchor::Autogen:
        claimTree(folder,
                  Kind::SimFolder,
                  global.simulatorFolder + here.name + u'\\',
                  MappedGroup::DocumentAndOther,
                  -1);
        return true;
    case Anchor::Panels:
        return false;
    case Anchor::None:
        break;
    }
    // A folder that stands in the simulator's own is taken as given.
    if (isDocumentFolderName(here.name) || !simulatorHas(here.name))
        return false;
    claimTree(folder,
              Kind::SimFolder,
              global.simulatorFolder + here.name + u'\\',
              MappedGroup::DocumentAndOther,
              -1);
    return true;
}

bool CAddonInstallationDetails::Analysis::isAircraft(int folder) const
{
    const SourceFolder& here = tree->at(folder);
    bool model = here.facts & FactModel;
    for (const int child : here.children) {
        if (foldernames::isPartFolder(tree->at(child).name, u"model"))
            model = model || (tree->at(child).below & FactModel);
    }
    if (here.facts & FactAircraftCfg)
        return model || (here.facts & FactAir);
    return (here.facts & FactSimCfg) && model;
}

bool CAddonInstallationDetails::Analysis::isMission(int folder) const
{
    const SourceFolder& here = tree->at(folder);
    if (!(here.facts & FactFlight))
        return false;
    if (here.facts & FactMissionFile)
        return true;
    if ((here.facts & FactPage) && hasBriefing(folder))
        return true;
    const int sound = tree->child(folder, u"sound");
    return sound >= 0 && (tree->at(sound).below & FactWave);
}

/// Whether a page is named after a flight: "Night.flt" and "Night_briefing.htm".
bool CAddonInstallationDetails::Analysis::hasBriefing(int folder) const
{
    const std::vector<CAddon_Item>& items = addon.colAddonItems();
    for (const qint32 flight : tree->itemsIn(folder)) {
        if (items[size_t(flight)].enumAddonFileType != FileType::Flight)
            continue;
        const QString stem = winpath::baseName(items[size_t(flight)].sName);
        for (const qint32 page : tree->itemsIn(folder)) {
            const QString& name = items[size_t(page)].sName;
            if (startsWithNoCase(name, stem) &&
                (endsWithNoCase(name, u".htm") || endsWithNoCase(name, u".html")))
                return true;
        }
    }
    return false;
}

bool CAddonInstallationDetails::Analysis::startsItsOwn(int folder) const
{
    const SourceFolder& here = tree->at(folder);
    if (!(here.below & FactOther))
        return true;
    if (here.below & (FactAircraftCfg | FactEmptyCfg | FactBgl | FactPanelCfg | FactSoundCfg |
                      FactFlight | FactEffect))
        return true;
    return std::any_of(here.children.begin(), here.children.end(), [this](int child) {
        const SourceFolder& below = tree->at(child);
        return below.archiveRoot || foldernames::isPartFolder(below.name, u"texture") ||
               foldernames::isStrongAnchor(foldernames::anchorOf(below.name)) ||
               startsItsOwn(child);
    });
}

bool CAddonInstallationDetails::Analysis::hasStrongAnchorChild(int folder) const
{
    const std::vector<int>& children = tree->at(folder).children;
    return std::any_of(children.begin(), children.end(), [this](int child) {
        return foldernames::isStrongAnchor(foldernames::anchorOf(tree->at(child).name));
    });
}

bool CAddonInstallationDetails::Analysis::simulatorHas(const QString& relativeFolder) const
{
    return !global.simulatorFolder.isEmpty() &&
           files.isFolder(global.simulatorFolder + relativeFolder);
}

QString CAddonInstallationDetails::Analysis::niceName(int folder) const
{
    for (; folder > 0; folder = tree->at(folder).parent) {
        const SourceFolder& here = tree->at(folder);
        const QString name = foldernames::withoutRepositoryEnding(
            here.archiveRoot ? winpath::baseName(here.name) : here.name);
        QString safe = winpath::safeName(name);
        if (!safe.isEmpty() && !foldernames::isGeneric(safe))
            return safe;
    }
    const QString name = winpath::safeName(addon.sGroupName);
    return name.isEmpty() ? u"Addon"_s : name;
}

void CAddonInstallationDetails::Analysis::claimOne(
    int folder, Kind kind, const QString& target, MappedGroup family, int group)
{
    Claim& claim = claims[size_t(folder)];
    claim.kind = kind;
    claim.target = target;
    claim.family = family;
    claim.group = group;
}

void CAddonInstallationDetails::Analysis::claimTree(
    int folder, Kind kind, const QString& target, MappedGroup family, int group)
{
    claimOne(folder, kind, target, family, group);
    for (const int child : tree->at(folder).children) {
        const SourceFolder& below = tree->at(child);
        if (foldernames::isJunkFolder(below.name))
            claimTree(child, Kind::Skip, {}, MappedGroup::None, -1);
        else if (kind == Kind::Effects && equalNoCase(below.name, u"texture"))
            claimTree(child, Kind::EffectsTexture, global.textureFolder, family, group);
        else if (kind == Kind::Gauges)
            claimTree(child, Kind::GaugeFolder, target + below.name + u'\\', family, group);
        else if (below.archiveRoot && kind != Kind::Skip)
            walk(child);
        else
            claimTree(child,
                      kind,
                      target.isEmpty() ? QString() : target + below.name + u'\\',
                      family,
                      group);
    }
}

int CAddonInstallationDetails::Analysis::newGroup(MappedGroup family,
                                                  const QString& name,
                                                  int folder,
                                                  const QString& target)
{
    InstallationGroup group;
    group.family = family;
    group.name = name;
    group.sourceFolder = tree->at(folder).path;
    group.targetFolder = target;
    group.proposedFolder = target;
    std::vector<InstallationGroup>& all = d.groups(family);
    all.push_back(std::move(group));
    return int(all.size()) - 1;
}

int CAddonInstallationDetails::Analysis::looseGroup(MappedGroup family)
{
    int& at = loose[size_t(family)];
    if (at >= 0)
        return at;
    QString name = addon.sGroupName;
    QString target;
    switch (family) {
    case MappedGroup::Panel:
        name = u"Gauges"_s;
        target = global.gaugesFolder;
        break;
    case MappedGroup::Sound:
        name = u"Sound"_s;
        target = global.soundFolder;
        break;
    case MappedGroup::Texture:
        name = u"Texture"_s;
        target = global.textureFolder;
        break;
    default:
        break;
    }
    at = newGroup(family, name, 0, target);
    return at;
}

} // namespace vt
