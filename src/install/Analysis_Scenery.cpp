// Claiming scenery: areas (a folder with "scenery" and perhaps "texture" in it), loose scenery
// files, and what belongs to the simulator's own scenery folders.
#include "install/Analysis.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt {

/// A child of a folder "Scenery" that is no part of an area: the world's scenery, a folder that the
/// simulator has, or an area of its own. True when it was claimed.
bool CAddonInstallationDetails::Analysis::claimSceneryBranch(int child)
{
    const SourceFolder& here = tree->at(child);
    if (claims[size_t(child)].kind != Kind::Free || here.unsafe || here.archiveRoot)
        return false;
    const bool part = equalNoCase(here.name, u"scenery") || equalNoCase(here.name, u"texture");
    const bool world = equalNoCase(here.name, u"world");
    if (part || (!world && !simulatorHas(u"Scenery\\"_s + here.name)))
        return false;
    claimTree(child,
              Kind::Scenery,
              global.sceneryFolder + (world ? u"World"_s : here.name) + u'\\',
              MappedGroup::Scenery,
              looseGroup(MappedGroup::Scenery));
    return true;
}

void CAddonInstallationDetails::Analysis::claimSceneryAt(int folder)
{
    const SourceFolder& here = tree->at(folder);
    const int scenery = tree->child(folder, u"scenery");
    std::vector<int> own;
    quint32 ownFacts = 0;
    if (scenery >= 0 && claims[size_t(scenery)].kind == Kind::Free) {
        ownFacts = tree->at(scenery).facts;
        for (const int child : tree->at(scenery).children) {
            if (claimSceneryBranch(child) || tree->child(child, u"scenery") >= 0 ||
                tree->at(child).archiveRoot)
                continue;
            ownFacts |= tree->at(child).below;
            own.push_back(child);
        }
    }
    const bool area = ownFacts & FactBgl;
    if (!area && !(here.facts & FactBgl))
        return;

    const QString target = areaTarget(folder);
    const int group = areaGroup(folder, target);
    if (area) {
        const QString sceneryFolder = target + u"scenery\\"_s;
        claimOne(scenery, Kind::Scenery, sceneryFolder, MappedGroup::Scenery, group);
        for (const int child : own)
            claimTree(child,
                      Kind::Scenery,
                      sceneryFolder + tree->at(child).name + u'\\',
                      MappedGroup::Scenery,
                      group);
        for (const int child : tree->at(scenery).children) {
            if (claims[size_t(child)].kind == Kind::Free)
                walk(child);
        }
    }
    const int texture = tree->child(folder, u"texture");
    if (texture >= 0 && claims[size_t(texture)].kind == Kind::Free)
        claimTree(
            texture, Kind::SceneryTexture, target + u"texture\\"_s, MappedGroup::Scenery, group);
    if (here.facts & FactBgl) {
        claims[size_t(folder)].area = target;
        claims[size_t(folder)].areaGroup = group;
    }
}

QString CAddonInstallationDetails::Analysis::areaTarget(int folder)
{
    Settings& settings = d.m_context.settings;
    if (!settings.flag(SettingKey::AutoPlaceSceneryInFolder))
        return global.sceneryAddonFolder;
    QString base = global.sceneryAddonFolder;
    const QString common = winpath::safeName(settings.text(SettingKey::AutoPlaceSceneryFolderName));
    if (!common.isEmpty())
        base += common + u'\\';

    QString name = niceName(folder);
    if (areaNames.contains(NoCase{name}) && folder > 0) {
        const QString parent = niceName(tree->at(folder).parent);
        if (!equalNoCase(parent, name))
            name = winpath::safeName(parent + u' ' + name);
    }
    const QString stem = name;
    for (int number = 2; areaNames.contains(NoCase{name}); ++number)
        name = stem + u' ' + QString::number(number);
    areaNames.insert(NoCase{name});
    return base + name + u'\\';
}

int CAddonInstallationDetails::Analysis::areaGroup(int folder, const QString& target)
{
    const QString name = winpath::name(target);
    const int at = newGroup(MappedGroup::Scenery, name, folder, target);
    InstallationGroup& group = d.groups(MappedGroup::Scenery)[size_t(at)];
    group.sceneryTitle = name;
    // The simulator's own add-on area has always been in its library.
    group.sceneryLibraryUpdate =
        !d.m_options.noSceneryLibrary && !winpath::same(target, global.sceneryAddonFolder);
    return at;
}

void CAddonInstallationDetails::Analysis::claimAddonScenery(int folder)
{
    const QString top = global.sceneryAddonFolder;
    claimTree(folder, Kind::Scenery, top, MappedGroup::Scenery, -1);
    tree->forTree(folder, [&](int below) {
        const SourceFolder& here = tree->at(below);
        if (below == folder || here.parent == folder ||
            claims[size_t(below)].kind != Kind::Scenery || claims[size_t(below)].group >= 0 ||
            !equalNoCase(here.name, u"scenery") || !(here.below & FactBgl))
            return;
        // Everything below the area's folder belongs to it.
        const int group = areaGroup(here.parent, claims[size_t(here.parent)].target);
        areaNames.insert(NoCase{tree->at(here.parent).name});
        tree->forTree(here.parent, [&](int member) {
            Claim& part = claims[size_t(member)];
            if (part.kind == Kind::Scenery && part.group < 0)
                part.group = group;
        });
    });
    tree->forTree(folder, [&](int below) {
        const SourceFolder& here = tree->at(below);
        Claim& claim = claims[size_t(below)];
        if (claim.kind != Kind::Scenery)
            return;
        if (equalNoCase(here.name, u"texture"))
            claim.kind = Kind::SceneryTexture;
        if (claim.group >= 0)
            return;
        // Scenery files of a folder without "scenery": the simulator only reads them from one.
        if ((here.facts & FactBgl) && here.parent == folder &&
            !equalNoCase(here.name, u"scenery")) {
            claim.group = areaGroup(below, claim.target);
            claim.area = claim.target;
            claim.areaGroup = claim.group;
        } else {
            claim.group = looseGroup(MappedGroup::Scenery);
        }
    });
}

} // namespace vt
