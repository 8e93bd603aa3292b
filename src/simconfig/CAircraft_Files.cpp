// The files of an aircraft: its folders, what lies in them, its panel, sound and effects.
#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"
#include "simconfig/AircraftChecks.h"
#include "simconfig/AliasTarget.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

constexpr qsizetype aliasBuffer = 32767;

QStringList pathsBelow(const Files& files, const QString& folder)
{
    QStringList paths = files.filesBelow(folder);
    for (QString& path : paths)
        path.prepend(folder);
    return paths;
}

CAircraft::PartDetails partDetails(const ConfigAccess& access,
                                   const Files& files,
                                   const GlobalRecord& global,
                                   const QString& file,
                                   aliastarget::Kind kind)
{
    CAircraft::PartDetails details;
    details.configurationFile = file;
    details.exists = access.actions.info(file).has_value();
    details.alias = ini::INI_Profile_GetValue(
                        access.actions, access.ansi, u"fltsim"_s, u"alias"_s, {}, aliasBuffer, file)
                        .value;
    if (details.alias.isEmpty())
        return details;
    const aliastarget::Target target = aliastarget::resolve(files, global, details.alias, kind);
    details.targetFile = target.file;
    details.targetExists = target.exists;
    return details;
}

} // namespace

std::unique_ptr<CAircraft> CAircraft::Clone() const
{
    return std::make_unique<CAircraft>(*this);
}

// --- folders -----------------------------------------------------------------------------------

QString CAircraft::Folder_Aircraft_Unique_Get(const QString& parent, const QString& name) const
{
    const QString stem = winpath::join(parent, name);
    QString folder = stem;
    for (int number = 2; m_access.actions.info(folder); ++number)
        folder = stem + u' ' + QString::number(number);
    return winpath::asFolder(folder);
}

QStringList CAircraft::Folder_AircraftTexture_LoadAll() const
{
    const profile::ProfileFile file =
        ini::profileOf(m_access.actions, m_access.ansi, sConfigurationFile);
    QStringList folders;
    QSet<NoCase> met;
    for (const QString& section : file.sections()) {
        if (configfacts::aircraftSectionNumber(section) < 0 &&
            configfacts::hiddenSectionNumber(section) < 0)
            continue;
        const QString value =
            ini::INI_Profile_GetValue(file, section, u"texture"_s, {}, aliasBuffer).value;
        const QString folder = folderFor(Folder_Aircraft_Get(), u"Texture"_s, value);
        if (met.contains(NoCase{folder}))
            continue;
        met.insert(NoCase{folder});
        folders.append(folder);
    }
    return folders;
}

QString CAircraft::Folder_SoundAI_Get() const
{
    return Folder_Aircraft_Get() + u"SoundAI\\"_s;
}

void CAircraft::InstallationDetails_SetDefaultFolders(const QString& aircraftFolder)
{
    const QString top = winpath::asFolder(aircraftFolder);
    InstallationFolders = {top,
                           folderFor(top, u"Model"_s, sModel),
                           folderFor(top, u"Panel"_s, sPanel),
                           folderFor(top, u"Sound"_s, sSound),
                           top + u"SoundAI\\"_s,
                           folderFor(top, u"Texture"_s, sTexture)};
}

// --- files -------------------------------------------------------------------------------------

QStringList CAircraft::AircraftFiles_Get(const Files& files) const
{
    return pathsBelow(files, Folder_Aircraft_Get());
}

QStringList CAircraft::AircraftFiles_RootLevelFiles_Get(const Files& files) const
{
    QStringList paths;
    for (const FileInfo& info : files.list(Folder_Aircraft_Get())) {
        if (!info.folder)
            paths.append(Folder_Aircraft_Get() + info.name);
    }
    return paths;
}

QStringList CAircraft::AircraftFiles_TextureFiles_Get(const Files& files) const
{
    return pathsBelow(files, Folder_AircraftTexture_Get());
}

CAircraft::PartDetails CAircraft::Panel_Details_Get(const Files& files,
                                                    const GlobalRecord& global) const
{
    return partDetails(m_access, files, global, sPanelConfigurationFile, aliastarget::Kind::Panel);
}

CAircraft::PartDetails CAircraft::Sound_Details_Get(const Files& files,
                                                    const GlobalRecord& global) const
{
    return partDetails(m_access, files, global, sSoundConfigurationFile, aliastarget::Kind::Sound);
}

// --- effects -----------------------------------------------------------------------------------

QStringList CAircraft::Load_GetEffects() const
{
    return AircraftChecks::effectsIn(
        ini::profileOf(m_access.actions, m_access.ansi, sConfigurationFile));
}

QStringList CAircraft::Load_GetEffectsTextures(const QString& effect,
                                               const GlobalRecord& global) const
{
    return AircraftChecks::texturesIn(m_access, AircraftChecks::effectFile(global, effect));
}

Prompt CAircraft::Effects_View(const GlobalRecord& global) const
{
    QStringList lines;
    for (const QString& effect : Load_GetEffects()) {
        const bool exists =
            m_access.actions.info(AircraftChecks::effectFile(global, effect)).has_value();
        lines.append(effect + u".fx"_s + (exists ? QString() : u" (missing)"_s));
        for (const QString& texture : Load_GetEffectsTextures(effect, global))
            lines.append(u'\t' + texture);
    }
    if (lines.isEmpty())
        lines.append(u"The aircraft uses no effects."_s);
    return announcement(u"Effects"_s, lines.join(u'\n'), Icon::Information);
}

} // namespace vt
