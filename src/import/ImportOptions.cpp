#include "import/ImportOptions.h"

#include "shell/Settings.h"

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct ImportFlag
{
    SettingKey key;
    bool ImportOptions::*member;
};

constexpr std::array<ImportFlag, 9> importFlags{{
    {SettingKey::ImportAircraft, &ImportOptions::chkImportAircraft},
    {SettingKey::ImportPanels, &ImportOptions::chkImportPanels},
    {SettingKey::ImportOnlyStandalonePanels, &ImportOptions::chkImportPanels_StandaloneOnly},
    {SettingKey::ImportSounds, &ImportOptions::chkImportSounds},
    {SettingKey::ImportOnlyStandaloneSounds, &ImportOptions::chkImportSounds_StandaloneOnly},
    {SettingKey::ImportScenery, &ImportOptions::chkImportScenery},
    {SettingKey::ImportMissions, &ImportOptions::chkImportMissions},
    {SettingKey::DoNotIncludePreviouslyImportedAddons,
     &ImportOptions::chkDoNotImportPreviouslyImportedAddons},
    {SettingKey::IncludeAllFoldersAndFiles, &ImportOptions::chkIncludeAllFoldersAndFiles},
}};

} // namespace

ImportOptions ImportOptions_Load(Settings& settings)
{
    ImportOptions options;
    for (const ImportFlag& flag : importFlags)
        options.*flag.member = settings.flag(flag.key);
    options.optGroupNaming = ImportNaming(settings.number(SettingKey::GroupNamingOption));
    return options;
}

bool ImportOptions_Save(Settings& settings, const ImportOptions& options)
{
    bool saved = settings.setNumber(SettingKey::GroupNamingOption, qint32(options.optGroupNaming));
    for (const ImportFlag& flag : importFlags)
        saved = settings.setFlag(flag.key, options.*flag.member) && saved;
    return saved;
}

ImportOptions ImportOptions_LoadDefaults(int generation)
{
    const auto stored = [generation](SettingKey key) {
        return settingDefault(settingRow(key), generation);
    };
    ImportOptions options;
    for (const ImportFlag& flag : importFlags)
        options.*flag.member = stored(flag.key) == u"True";
    options.optGroupNaming = ImportNaming(stored(SettingKey::GroupNamingOption).toInt());
    return options;
}

QString importNamingExample(ImportNaming naming, const QString& dateAndTime)
{
    return naming == ImportNaming::ProperName ? u"Example:  Lear45 panel"_s
                                              : u"Example:  Panel imported "_s + dateAndTime;
}

} // namespace vt
