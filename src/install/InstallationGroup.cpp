#include "install/InstallationGroup.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr FamilyRules familyTable[] = {
    {MappedGroup::Aircraft, u"Aircraft", u"aircraft", std::nullopt, false},
    {MappedGroup::Panel, u"Panel", u"panel", SettingKey::PanelInstallationMethod, false},
    {MappedGroup::Sound, u"Sound", u"sound", SettingKey::SoundInstallationMethod, false},
    {MappedGroup::Missions, u"Missions", u"mission", SettingKey::MissionInstallationMethod, true},
    {MappedGroup::Scenery, u"Scenery", u"scenery", SettingKey::SceneryInstallationMethod, false},
    {MappedGroup::Texture, u"Texture", u"texture", SettingKey::TextureInstallationMethod, false},
    {MappedGroup::DocumentAndOther, u"DocumentAndOther", u"other files", std::nullopt, false},
};

} // namespace

const FamilyRules* familyRules(MappedGroup family)
{
    for (const FamilyRules& rules : familyTable) {
        if (rules.family == family)
            return &rules;
    }
    return nullptr;
}

QList<MappedGroup> ruledFamilies()
{
    QList<MappedGroup> out;
    for (const FamilyRules& rules : familyTable)
        out.append(rules.family);
    return out;
}

QList<MappedGroup> pageFamilies()
{
    return {MappedGroup::Aircraft,
            MappedGroup::Panel,
            MappedGroup::Sound,
            MappedGroup::Missions,
            MappedGroup::Scenery,
            MappedGroup::Texture,
            MappedGroup::TrafficTools,
            MappedGroup::DocumentAndOther};
}

QString problemWord(MappedGroup family)
{
    const FamilyRules* rules = familyRules(family);
    return rules ? rules->problemWord.toString() : u"A.I. traffic"_s;
}

bool takesPicture(MappedGroup family)
{
    return family == MappedGroup::Aircraft || family == MappedGroup::Panel ||
           family == MappedGroup::Texture || family == MappedGroup::Scenery;
}

QString methodWord(InstallationMethod method)
{
    switch (method) {
    case InstallationMethod::Determined:
        break;
    case InstallationMethod::ChosenFolder:
        return u"folder"_s;
    case InstallationMethod::GlobalFolder:
        return u"global"_s;
    case InstallationMethod::AdventureSounds:
        return u"adventures"_s;
    case InstallationMethod::AddonSceneryTexture:
    case InstallationMethod::AddonScenery:
        return u"addon-scenery"_s;
    case InstallationMethod::SceneryWorldTexture:
    case InstallationMethod::SceneryWorld:
        return u"world"_s;
    case InstallationMethod::NewRepaint:
        return u"repaint"_s;
    }
    return u"determined"_s;
}

std::optional<InstallationMethod> methodOfWord(MappedGroup family, const QString& word)
{
    for (const MethodLabel& offered : methodLabels(family, {})) {
        if (methodWord(offered.method) == word)
            return offered.method;
    }
    return std::nullopt;
}

QList<MethodLabel> methodLabels(MappedGroup family, const DisplayNames& names)
{
    using Method = InstallationMethod;
    const MethodLabel determined = {Method::Determined,
                                    u"The folders determined by "_s + names.productName};
    const QString sim = names.simLong;
    switch (family) {
    case MappedGroup::Sound:
        return {determined,
                {Method::ChosenFolder, u"An existing or new sound folder"_s},
                {Method::GlobalFolder, sim + u"'s global sound folder"_s},
                {Method::AdventureSounds, sim + u"'s adventure sound folder"_s}};
    case MappedGroup::Texture:
        return {determined,
                {Method::ChosenFolder, u"An existing or new texture folder"_s},
                {Method::GlobalFolder, sim + u"'s global texture folder"_s},
                {Method::AddonSceneryTexture, sim + u"'s addon scenery texture folder"_s},
                {Method::SceneryWorldTexture, sim + u"'s scenery world texture folder"_s},
                {Method::NewRepaint,
                 u"Install the texture files as a new skin/repaint for an existing aircraft."_s}};
    case MappedGroup::Scenery:
        return {determined,
                {Method::ChosenFolder, u"An existing or new scenery folder"_s},
                {Method::SceneryWorld, sim + u"'s Scenery\\World\\Scenery folder"_s},
                {Method::GlobalFolder, sim + u"'s global scenery folder"_s},
                {Method::AddonScenery, sim + u"'s addon scenery folder"_s}};
    case MappedGroup::Panel:
        return {determined, {Method::ChosenFolder, u"An existing or new panel folder"_s}};
    case MappedGroup::Missions:
        return {{Method::Determined, u"The default folders determined by "_s + names.productName},
                {Method::ChosenFolder, u"An existing or new mission folder"_s}};
    case MappedGroup::Aircraft:
        return {determined,
                {Method::ChosenFolder, u"Change Folder to create an installation folder."_s}};
    default:
        return {determined};
    }
}

QString folderHint(MappedGroup family, const DisplayNames& names, int generation)
{
    const QString beginning = u"Select a folder beneath "_s + names.simLong;
    switch (family) {
    case MappedGroup::Sound:
        // The transposed letters have always been there.
        return beginning +
               (generation == FSX ? u"'s SimOjbects folder."_s : u"'s Aircraft folder."_s);
    case MappedGroup::Aircraft:
    case MappedGroup::Panel:
    case MappedGroup::Texture:
        return beginning +
               (generation == FSX ? u"'s SimObjects folder."_s : u"'s Aircraft folder."_s);
    default:
        return {};
    }
}

} // namespace vt
