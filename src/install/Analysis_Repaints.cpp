// Claiming textures for aircraft, and finding the aircraft that they are for. A repaint is never
// installed as an aircraft: its aircraft.cfg is read and stays out of the simulator.
#include "catalogue/Catalogue.h"
#include "install/Analysis.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using vt::foldernames::isPartFolder;

namespace vt {

namespace {

constexpr qint64 sectionTextLimit = 256 << 10;
constexpr qint64 installedConfigurationLimit = 4 << 20;

QString withoutComponent(const QString& suffix)
{
    QStringList parts;
    for (const QString& part : winpath::components(suffix)) {
        const QString safe = winpath::safeName(part);
        if (!safe.isEmpty())
            parts.append(safe);
    }
    return parts.join(u'\\');
}

} // namespace

bool CAddonInstallationDetails::Analysis::claimRepaintAt(int folder)
{
    const SourceFolder& here = tree->at(folder);
    Repaint repaint;
    repaint.folder = folder;
    bool suffixed = false;
    bool textures = false;
    for (const int child : here.children) {
        const SourceFolder& part = tree->at(child);
        if (claims[size_t(child)].kind != Kind::Free || part.archiveRoot || part.unsafe)
            continue;
        const bool texture = isPartFolder(part.name, u"texture");
        if (!texture && !isPartFolder(part.name, u"model") && !isPartFolder(part.name, u"panel") &&
            !isPartFolder(part.name, u"sound"))
            continue;
        textures = textures || texture;
        suffixed = suffixed || (texture && part.name.contains(u'.'));
        repaint.parts.push_back(child);
    }
    if (!textures)
        return false;
    // A plain "texture" beside the simulator's other folders is the simulator's own.
    if (!suffixed && !(here.facts & FactAircraftCfg) && hasStrongAnchorChild(folder))
        return false;
    addRepaint(std::move(repaint));
    return true;
}

void CAddonInstallationDetails::Analysis::addRepaint(Repaint repaint)
{
    findSections(repaint);
    QString name;
    if (!repaint.facts.sections.isEmpty())
        name = repaint.facts.sections.first().title;
    if (name.isEmpty())
        name = niceName(repaint.folder);
    repaint.group = newGroup(MappedGroup::Texture, name, repaint.folder, QString());
    InstallationGroup& group = d.groups(MappedGroup::Texture)[size_t(repaint.group)];
    group.method = InstallationMethod::NewRepaint;
    group.repaint = true;
    if (!repaint.facts.sections.isEmpty())
        group.simName = repaint.facts.sections.first().sim;
    claims[size_t(repaint.folder)].container = true;
    for (const int part : repaint.parts) {
        const QString& partName = tree->at(part).name;
        const Kind kind = isPartFolder(partName, u"panel")   ? Kind::Panel
                          : isPartFolder(partName, u"sound") ? Kind::Sound
                          : isPartFolder(partName, u"model") ? Kind::Aircraft
                                                             : Kind::Texture;
        claimTree(part, kind, {}, MappedGroup::Texture, repaint.group);
    }
    if (repaint.loose)
        claimOne(repaint.folder, Kind::Texture, {}, MappedGroup::Texture, repaint.group);
    repaints.push_back(std::move(repaint));
}

bool CAddonInstallationDetails::Analysis::sectionsIn(int folder, Repaint& repaint) const
{
    for (const qint32 position : tree->itemsIn(folder)) {
        const CAddon_Item& item = addon.colAddonItems()[size_t(position)];
        const bool text = item.enumAddonFileType == FileType::Document ||
                          (item.enumAddonFileType == FileType::Texture &&
                           foldernames::isUntypedDocument(item.sName));
        if (!text || item.size > sectionTextLimit || !item.boolExtractable)
            continue;
        const auto bytes = d.m_source->read(item, sectionTextLimit);
        if (!bytes || !bytes->contains('['))
            continue;
        AircraftFacts facts = aircraftFacts(decodedText(*bytes, d.m_context.services.ansi));
        if (facts.sections.isEmpty())
            continue;
        repaint.facts = std::move(facts);
        repaint.factsItem = item.lngKey;
        return true;
    }
    return false;
}

void CAddonInstallationDetails::Analysis::findSections(Repaint& repaint) const
{
    for (const qint32 position : tree->itemsIn(repaint.folder)) {
        const qint32 key = addon.colAddonItems()[size_t(position)].lngKey;
        const auto found = cfgFacts.constFind(key);
        if (found != cfgFacts.constEnd() && !found->sections.isEmpty()) {
            repaint.facts = *found;
            repaint.factsItem = key;
            return;
        }
    }
    if (sectionsIn(repaint.folder, repaint))
        return;
    for (const int part : repaint.parts) {
        if (isPartFolder(tree->at(part).name, u"texture") && sectionsIn(part, repaint))
            return;
    }
    const int parent = tree->at(repaint.folder).parent;
    if (parent >= 0 && sectionsIn(parent, repaint))
        return;
}

void CAddonInstallationDetails::Analysis::addLooseTextures()
{
    bool anything = !repaints.empty() || !loneParts.empty();
    for (int family = 0; family < mappedGroupCount; ++family)
        anything = anything || !d.m_groups[family].empty();
    for (int folder = 0; folder < tree->count(); ++folder) {
        const SourceFolder& here = tree->at(folder);
        const Claim& claim = claims[size_t(folder)];
        if (claim.kind != Kind::Free || !claim.area.isEmpty() || claim.container || here.unsafe ||
            !(here.facts & FactTexture) || (here.facts & FactEffect))
            continue;
        Repaint repaint;
        repaint.folder = folder;
        repaint.loose = true;
        const bool evidence = (here.facts & (FactTextureCfg | FactThumbnail)) ||
                              sectionsIn(folder, repaint) || !d.m_options.aircraftFolder.isEmpty();
        if (evidence || !anything)
            addRepaint(std::move(repaint));
    }
}

int CAddonInstallationDetails::Analysis::aircraftGroupFor(const Repaint& repaint) const
{
    const std::vector<InstallationGroup>& aircraft = d.groups(MappedGroup::Aircraft);
    for (size_t i = 0; i < aircraft.size(); ++i) {
        if (!repaint.givenAircraft.isEmpty()) {
            if (winpath::same(aircraft[i].targetFolder, repaint.givenAircraft))
                return int(i);
            continue;
        }
        for (const AircraftSection& section : repaint.facts.sections) {
            if (!section.sim.isEmpty() && equalNoCase(section.sim, aircraft[i].simName))
                return int(i);
        }
    }
    return -1;
}

/// The one installed aircraft with the flight model that the repaint's sections name.
QString CAddonInstallationDetails::Analysis::installedWithFlightModel(const Repaint& repaint) const
{
    QSet<NoCase> models;
    for (const AircraftSection& section : repaint.facts.sections) {
        if (!section.sim.isEmpty())
            models.insert(NoCase{section.sim});
    }
    if (models.isEmpty())
        return {};
    const Catalogue& catalogue = d.catalogue();
    QString found;
    for (quint32 i = 0; i < catalogue.variationCount(); ++i) {
        const CatalogueVariation variation = catalogue.variation(i);
        if (!models.contains(NoCase{variation.sim.toString()}))
            continue;
        const QString folder = winpath::parent(catalogue.file(variation.config));
        if (!found.isEmpty() && !winpath::same(found, folder))
            return {}; // several: the user chooses
        found = folder;
    }
    return found;
}

void CAddonInstallationDetails::Analysis::resolveRepaints()
{
    for (Repaint& repaint : repaints)
        resolveRepaint(repaint);
}

void CAddonInstallationDetails::Analysis::resolveRepaint(Repaint& repaint)
{
    InstallationGroup& group = d.groups(MappedGroup::Texture)[size_t(repaint.group)];
    QString aircraft;
    group.aircraftGroup = aircraftGroupFor(repaint);
    if (group.aircraftGroup >= 0) {
        aircraft = d.groups(MappedGroup::Aircraft)[size_t(group.aircraftGroup)].targetFolder;
    } else if (!repaint.givenAircraft.isEmpty() &&
               files.isFile(repaint.givenAircraft + u"aircraft.cfg"_s)) {
        aircraft = repaint.givenAircraft;
    } else if (!d.m_options.aircraftFolder.isEmpty()) {
        aircraft = d.m_options.aircraftFolder;
    } else if (!repaint.givenAircraft.isEmpty()) {
        group.baseMissing = true;
    } else if (const QString same = installedWithFlightModel(repaint);
               d.groups(MappedGroup::Aircraft).empty() && !same.isEmpty()) {
        aircraft = same;
    } else {
        // Chained to the aircraft of the default group, when the add-on brings one.
        const std::vector<InstallationGroup>& all = d.groups(MappedGroup::Aircraft);
        if (!all.empty()) {
            group.aircraftGroup = 0;
            aircraft = all.front().targetFolder;
        }
    }
    group.aircraftFolder = aircraft;
    placeParts(repaint, aircraft);
}

bool CAddonInstallationDetails::Analysis::holdSameFiles(int a, int b) const
{
    const auto first = tree->itemsIn(a);
    const auto second = tree->itemsIn(b);
    if (first.size() != second.size() || first.empty())
        return false;
    return std::all_of(first.begin(), first.end(), [&](qint32 position) {
        const CAddon_Item& item = addon.colAddonItems()[size_t(position)];
        const CAddon_Item* other = tree->file(b, item.sName);
        return other && d.m_source->sameBytes(item, *other);
    });
}

QString CAddonInstallationDetails::Analysis::freePartName(const QString& aircraft,
                                                          const QString& wanted,
                                                          int part,
                                                          bool* same)
{
    QString folder = aircraft + wanted + u'\\';
    for (int number = 2;; ++number) {
        const auto taken = partNames.constFind(NoCase{folder});
        if (taken != partNames.constEnd() && same && holdSameFiles(part, *taken)) {
            *same = true;
            return folder;
        }
        if (taken == partNames.constEnd() && !files.isFolder(folder))
            break;
        folder = aircraft + wanted + u' ' + QString::number(number) + u'\\';
    }
    partNames.insert(NoCase{folder}, part);
    return folder;
}

void CAddonInstallationDetails::Analysis::placeParts(Repaint& repaint, const QString& aircraft)
{
    std::vector<int> parts = repaint.parts;
    if (repaint.loose)
        parts.push_back(repaint.folder);
    const bool asGiven =
        !repaint.givenAircraft.isEmpty() && winpath::same(aircraft, repaint.givenAircraft);
    QHash<int, QString> suffixes;
    for (const int part : parts) {
        const QString& name = tree->at(part).name;
        const bool texture = repaint.loose || isPartFolder(name, u"texture");
        QString suffix = repaint.loose ? niceName(part) : foldernames::partSuffix(name);
        QString wanted = repaint.loose ? u"texture."_s + suffix : name;
        if (!asGiven && suffix.isEmpty()) {
            // A plain name would take the place of the aircraft's own.
            const AircraftSection section = repaint.facts.sections.value(0);
            suffix = winpath::safeName(section.variation);
            if (suffix.isEmpty())
                suffix = niceName(repaint.folder);
            wanted = name + u'.' + suffix;
        }
        QString folder;
        bool same = false; // a second copy of textures that this add-on brings already
        if (!aircraft.isEmpty())
            folder =
                asGiven ? aircraft + wanted + u'\\' : freePartName(aircraft, wanted, part, &same);
        const QString& top = tree->at(part).path;
        const auto placeFolder = [&](int below) {
            Claim& claim = claims[size_t(below)];
            if (claim.group == repaint.group && claim.family == MappedGroup::Texture &&
                !folder.isEmpty())
                claim.target = folder + tree->at(below).path.sliced(top.size());
        };
        if (repaint.loose)
            placeFolder(part);
        else
            tree->forTree(part, placeFolder);
        d.groups(MappedGroup::Texture)[size_t(repaint.group)].parts.append(
            {top, folder.isEmpty() ? wanted : winpath::name(folder), wanted});
        // Textures for a folder that the aircraft has already are no new variation.
        const bool update = asGiven && files.isFolder(folder);
        if (texture && !same && !update)
            suffixes.insert(
                part, folder.isEmpty() ? suffix : foldernames::partSuffix(winpath::name(folder)));
    }
    InstallationGroup& group = d.groups(MappedGroup::Texture)[size_t(repaint.group)];
    group.targetFolder = aircraft;
    group.proposedFolder = aircraft;
    makeVariants(repaint, suffixes);
}

bool CAddonInstallationDetails::Analysis::aircraftNames(const InstallationGroup& repaint,
                                                        const QString& suffix) const
{
    AircraftFacts facts;
    if (repaint.aircraftGroup >= 0) {
        const QString& source =
            d.groups(MappedGroup::Aircraft)[size_t(repaint.aircraftGroup)].sourceFolder;
        const CAddon_Item* cfg = addon.SearchByNameandFSZipFolder(u"aircraft.cfg", source);
        facts = cfg ? cfgFacts.value(cfg->lngKey) : AircraftFacts();
    } else if (!repaint.aircraftFolder.isEmpty()) {
        const auto bytes =
            files.read(repaint.aircraftFolder + u"aircraft.cfg"_s, installedConfigurationLimit);
        if (bytes)
            facts = aircraftFacts(decodedText(*bytes, d.m_context.services.ansi));
    }
    return std::any_of(
        facts.sections.cbegin(), facts.sections.cend(), [&suffix](const AircraftSection& section) {
            return equalNoCase(section.texture, suffix);
        });
}

void CAddonInstallationDetails::Analysis::makeVariants(Repaint& repaint,
                                                       const QHash<int, QString>& suffixes)
{
    InstallationGroup& group = d.groups(MappedGroup::Texture)[size_t(repaint.group)];
    QList<int> parts = suffixes.keys();
    std::sort(parts.begin(), parts.end());
    for (const int part : std::as_const(parts)) {
        if (aircraftNames(group, suffixes.value(part)))
            continue;
        const QString original =
            repaint.loose ? QString() : foldernames::partSuffix(tree->at(part).name);
        bool told = false;
        for (const AircraftSection& section : std::as_const(repaint.facts.sections)) {
            // "Landor\G-CIVB" names a sub-folder of the folder "texture.Landor".
            const QString value = withoutComponent(section.texture);
            const QString first = value.section(u'\\', 0, 0);
            const bool only = parts.size() == 1 && repaint.facts.sections.size() == 1;
            if (!only && !equalNoCase(first, original))
                continue;
            VariantDetails variant;
            variant.title = section.title;
            variant.variation = section.variation;
            variant.texture = suffixes.value(part);
            if (equalNoCase(first, original) && value.contains(u'\\'))
                variant.texture += value.sliced(first.size());
            variant.sourceSection = section.section;
            variant.sourceItem = repaint.factsItem;
            if (variant.variation.isEmpty())
                variant.variation = variant.texture;
            if (variant.title.isEmpty())
                variant.title = group.name;
            group.variants.append(variant);
            told = true;
        }
        if (told)
            continue;
        VariantDetails variant;
        variant.texture = suffixes.value(part);
        variant.variation = variant.texture;
        const QString base = winpath::name(group.aircraftFolder);
        variant.title =
            (base.isEmpty() ? niceName(repaint.folder) : base) + u' ' + variant.variation;
        group.variants.append(variant);
    }
}

} // namespace vt
