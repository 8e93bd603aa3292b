// Claiming aircraft, missions, gauges, and panels and sounds of their own.
#include "install/Analysis.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using vt::foldernames::isPartFolder;

namespace vt {

namespace {

constexpr qint64 flightFileLimit = 1 << 20;

/// The folder below SimObjects for a vehicle that is no aircraft, by its "category".
QString vehicleFolder(QStringView category)
{
    if (equalNoCase(category, u"boat"))
        return u"Boats"_s;
    if (equalNoCase(category, u"groundvehicle"))
        return u"GroundVehicles"_s;
    if (equalNoCase(category, u"animal"))
        return u"Animals"_s;
    return u"Misc"_s;
}

/// Value of a key in section [Main] of a flight file.
QString mainValue(QStringView text, QStringView key)
{
    bool inMain = false;
    for (const QStringView raw : text.split(u'\n')) {
        const QStringView line = raw.trimmed();
        if (line.startsWith(u'[')) {
            inMain = equalNoCase(line, u"[main]");
        } else if (inMain) {
            const qsizetype equals = line.indexOf(u'=');
            if (equals > 0 && equalNoCase(line.first(equals).trimmed(), key))
                return line.sliced(equals + 1).trimmed().toString();
        }
    }
    return {};
}

} // namespace

void CAddonInstallationDetails::Analysis::claimSimObjects(int folder)
{
    const QString target =
        global.simObjectsFolder.isEmpty() ? global.aircraftFolder : global.simObjectsFolder;
    claimOne(folder, Kind::SimFolder, target, MappedGroup::DocumentAndOther, -1);
    for (const int child : tree->at(folder).children) {
        if (tree->at(child).archiveRoot)
            walk(child);
        else if (isAircraft(child))
            claimContainer(child, global.aircraftFolder + tree->at(child).name + u'\\');
        else
            claimTypeFolder(child, target + tree->at(child).name + u'\\');
    }
}

void CAddonInstallationDetails::Analysis::claimTypeFolder(int folder, const QString& target)
{
    claimOne(folder, Kind::SimFolder, target, MappedGroup::DocumentAndOther, -1);
    for (const int child : tree->at(folder).children) {
        const SourceFolder& below = tree->at(child);
        if (below.archiveRoot || foldernames::isStrongAnchor(foldernames::anchorOf(below.name)))
            walk(child);
        else
            claimContainer(child, target + below.name + u'\\');
    }
}

void CAddonInstallationDetails::Analysis::claimContainer(int folder, const QString& target)
{
    const SourceFolder& here = tree->at(folder);
    if (foldernames::isJunkFolder(here.name)) {
        claimTree(folder, Kind::Skip, {}, MappedGroup::None, -1);
        return;
    }
    std::vector<int> parts;
    bool textures = false;
    for (const int child : here.children) {
        const QString& name = tree->at(child).name;
        const bool texture = isPartFolder(name, u"texture");
        textures = textures || texture;
        if (texture || isPartFolder(name, u"model") || isPartFolder(name, u"panel") ||
            isPartFolder(name, u"sound"))
            parts.push_back(child);
    }
    // Textures without flight model and shape are for an aircraft that the user has already.
    const bool repaint =
        textures && !isAircraft(folder) && !(here.below & (FactAir | FactModel | FactSimCfg));
    if (!repaint) {
        claimAircraft(folder, target);
        return;
    }
    Repaint found;
    found.folder = folder;
    found.parts = parts;
    found.givenAircraft = target;
    addRepaint(std::move(found));
    for (const int child : here.children) {
        if (claims[size_t(child)].kind == Kind::Free)
            walk(child);
    }
}

const AircraftFacts* CAddonInstallationDetails::Analysis::factsOf(int folder) const
{
    for (const qint32 position : tree->itemsIn(folder)) {
        const auto found = cfgFacts.constFind(addon.colAddonItems()[size_t(position)].lngKey);
        if (found != cfgFacts.constEnd())
            return &*found;
    }
    return nullptr;
}

QString CAddonInstallationDetails::Analysis::aircraftTarget(int folder) const
{
    const SourceFolder& here = tree->at(folder);
    const AircraftFacts* facts = factsOf(folder);
    QString base = global.aircraftFolder;
    if (!global.simObjectsFolder.isEmpty() && facts) {
        if (here.facts & FactSimCfg && !(here.facts & FactAircraftCfg))
            base = global.simObjectsFolder + vehicleFolder(facts->category) + u'\\';
        else if (startsWithNoCase(facts->category, u"helicopter"))
            base = global.simObjectsFolder + u"Rotorcraft\\"_s;
    }

    const bool sourceFolder = folder == 0 && d.m_source->type() == SourceType::Folder;
    const QString given = sourceFolder                      ? winpath::name(d.m_source->path())
                          : folder == 0 || here.archiveRoot ? QString()
                                                            : here.name;
    QString name = winpath::safeName(given);
    if (name.isEmpty() || foldernames::hasRepositoryEnding(name) || foldernames::isGeneric(name)) {
        name = facts ? facts->folderName() : QString();
        if (name.isEmpty())
            name = niceName(folder);
    }
    return base + name + u'\\';
}

void CAddonInstallationDetails::Analysis::claimAircraft(int folder, const QString& target)
{
    const SourceFolder& here = tree->at(folder);
    const AircraftFacts* facts = factsOf(folder);
    const QString title =
        facts && !facts->sections.isEmpty() ? facts->sections.first().title : QString();
    const int group = newGroup(
        MappedGroup::Aircraft, title.isEmpty() ? winpath::name(target) : title, folder, target);
    for (const qint32 position : tree->itemsIn(folder)) {
        const CAddon_Item& item = addon.colAddonItems()[size_t(position)];
        if (item.enumAddonFileType == FileType::Aircraft)
            d.groups(MappedGroup::Aircraft)[size_t(group)].simName = winpath::baseName(item.sName);
    }
    claimOne(folder, Kind::Aircraft, target, MappedGroup::Aircraft, group);

    for (const int child : here.children) {
        const SourceFolder& part = tree->at(child);
        const QString partTarget = target + part.name + u'\\';
        partNames.insert(NoCase{partTarget}, child);
        const bool panel = isPartFolder(part.name, u"panel");
        const bool sound = isPartFolder(part.name, u"sound") || isPartFolder(part.name, u"soundai");
        if (part.archiveRoot) {
            walk(child);
        } else if (panel || sound) {
            const MappedGroup family = panel ? MappedGroup::Panel : MappedGroup::Sound;
            const int own = newGroup(family, part.name, child, partTarget);
            d.groups(family)[size_t(own)].aircraftGroup = group;
            d.groups(family)[size_t(own)].aircraftFolder = target;
            claimTree(child, panel ? Kind::Panel : Kind::Sound, partTarget, family, own);
        } else if (isPartFolder(part.name, u"texture")) {
            claimTree(child, Kind::Texture, partTarget, MappedGroup::Aircraft, group);
        } else if (!isPartFolder(part.name, u"model") &&
                   (foldernames::isStrongAnchor(foldernames::anchorOf(part.name)) ||
                    startsItsOwn(child))) {
            walk(child);
        } else {
            claimTree(child, Kind::Aircraft, partTarget, MappedGroup::Aircraft, group);
        }
    }
}

QString CAddonInstallationDetails::Analysis::missionTarget(int folder) const
{
    QString category;
    const int parent = tree->at(folder).parent;
    if (parent > 0 && simulatorHas(u"Missions\\"_s + tree->at(parent).name))
        category = tree->at(parent).name;
    for (const qint32 position : tree->itemsIn(folder)) {
        const CAddon_Item& item = addon.colAddonItems()[size_t(position)];
        if (!category.isEmpty() || item.enumAddonFileType != FileType::Flight)
            continue;
        if (const auto bytes = d.m_source->read(item, flightFileLimit)) {
            const QString type = winpath::safeName(
                mainValue(decodedText(*bytes, d.m_context.services.ansi), u"MissionType"));
            if (!type.isEmpty() && simulatorHas(u"Missions\\"_s + type))
                category = type;
        }
        break;
    }
    const QString base =
        category.isEmpty() ? global.missionsFolder : global.missionsFolder + category + u'\\';
    return base + niceName(folder) + u'\\';
}

void CAddonInstallationDetails::Analysis::claimMission(int folder, const QString& target)
{
    const int group = newGroup(MappedGroup::Missions, winpath::name(target), folder, target);
    claimOne(folder, Kind::Mission, target, MappedGroup::Missions, group);
    for (const int child : tree->at(folder).children) {
        const SourceFolder& below = tree->at(child);
        if (below.archiveRoot || foldernames::isStrongAnchor(foldernames::anchorOf(below.name)) ||
            (below.below & (FactAircraftCfg | FactAir)))
            walk(child);
        else
            claimTree(
                child, Kind::Mission, target + below.name + u'\\', MappedGroup::Missions, group);
    }
}

void CAddonInstallationDetails::Analysis::claimMissionsFolder(int folder)
{
    claimTree(folder, Kind::Mission, global.missionsFolder, MappedGroup::Missions, -1);
    // Parents come first, so the topmost folder with a flight is the mission.
    tree->forTree(folder, [&](int below) {
        const SourceFolder& here = tree->at(below);
        Claim& claim = claims[size_t(below)];
        if (below == folder || claim.kind != Kind::Mission)
            return;
        const Claim& above = claims[size_t(here.parent)];
        if (above.kind == Kind::Mission && above.group >= 0)
            claim.group = above.group;
        else if (here.facts & FactFlight)
            claim.group = newGroup(MappedGroup::Missions, here.name, below, claim.target);
    });
}

void CAddonInstallationDetails::Analysis::claimGauges(int folder)
{
    claimTree(folder,
              Kind::Gauges,
              global.gaugesFolder,
              MappedGroup::Panel,
              looseGroup(MappedGroup::Panel));
}

bool CAddonInstallationDetails::Analysis::claimGaugeFolder(int folder)
{
    const SourceFolder& here = tree->at(folder);
    if (!(here.facts & FactXml) || !(here.facts & (FactBitmap | FactTexture | FactPicture)) ||
        (here.facts & (FactBgl | FactFlight)))
        return false;
    const QString target = global.gaugesFolder + niceName(folder) + u'\\';
    const int group = newGroup(MappedGroup::Panel, winpath::name(target), folder, target);
    claimOne(folder, Kind::GaugeFolder, target, MappedGroup::Panel, group);
    for (const int child : here.children) {
        if (!foldernames::isStrongAnchor(foldernames::anchorOf(tree->at(child).name)) &&
            !startsItsOwn(child))
            claimTree(child,
                      Kind::GaugeFolder,
                      target + tree->at(child).name + u'\\',
                      MappedGroup::Panel,
                      group);
    }
    return true;
}

void CAddonInstallationDetails::Analysis::claimPart(int folder, MappedGroup family)
{
    const SourceFolder& here = tree->at(folder);
    const Kind kind = family == MappedGroup::Panel ? Kind::Panel : Kind::Sound;
    LonePart part;
    part.folder = folder;
    part.family = family;
    part.group = newGroup(family, niceName(folder), folder, QString());
    claimOne(folder, kind, {}, family, part.group);
    for (const int child : here.children) {
        if (!foldernames::isStrongAnchor(foldernames::anchorOf(tree->at(child).name)) &&
            !startsItsOwn(child))
            claimTree(child, kind, {}, family, part.group);
    }
    loneParts.push_back(part);
}

void CAddonInstallationDetails::Analysis::resolveLoneParts()
{
    const std::vector<InstallationGroup>& aircraft = d.groups(MappedGroup::Aircraft);
    for (const LonePart& part : loneParts) {
        const bool panel = part.family == MappedGroup::Panel;
        const QString stem = panel ? u"panel"_s : u"sound"_s;
        const QString name = tree->at(part.folder).name;
        InstallationGroup& group = d.groups(part.family)[size_t(part.group)];
        QString home = d.m_options.aircraftFolder;
        if (home.isEmpty() && !aircraft.empty()) {
            home = aircraft.front().targetFolder;
            group.aircraftGroup = 0;
        }
        if (home.isEmpty()) {
            // Nothing to belong to: a folder of its own, for aircraft to share by an alias.
            group.targetFolder =
                d.lonePartFolder(part.family) + niceName(part.folder) + u'\\' + stem + u'\\';
        } else {
            const QString suffix = isPartFolder(name, stem) ? foldernames::partSuffix(name) : name;
            const QString own = winpath::safeName(suffix);
            group.aircraftFolder = home;
            group.targetFolder = freePartName(
                home,
                stem + u'.' + (own.isEmpty() ? winpath::safeName(addon.sGroupName) : own),
                part.folder);
        }
        group.proposedFolder = group.targetFolder;
        const qsizetype top = tree->at(part.folder).path.size();
        tree->forTree(part.folder, [&](int folder) {
            Claim& claim = claims[size_t(folder)];
            if (claim.family == part.family && claim.group == part.group && claim.target.isEmpty())
                claim.target = group.targetFolder + tree->at(folder).path.sliced(top);
        });
    }
}

} // namespace vt
