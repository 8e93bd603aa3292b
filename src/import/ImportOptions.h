// What an import looks for and how it names what it finds, as the settings keep it.
#pragma once

#include <QString>

namespace vt {

class Settings;

/// Stored: never renumber.
enum class ImportNaming
{
    DateAndTime = 0, ///< "Panel imported 2026-03-01 18:30:00"
    ProperName = 1,  ///< "Lear45 panel" where there is one
};

struct ImportOptions
{
    bool chkImportAircraft = true;
    bool chkImportPanels = true;
    bool chkImportPanels_StandaloneOnly = true; ///< only those outside aircraft's folders
    bool chkImportSounds = true;
    bool chkImportSounds_StandaloneOnly = true;
    bool chkImportScenery = true;
    bool chkImportMissions = true;
    bool chkDoNotImportPreviouslyImportedAddons = true;
    bool chkIncludeAllFoldersAndFiles = true; ///< files that the add-on does not need to work, too
    ImportNaming optGroupNaming = ImportNaming::DateAndTime;

    friend bool operator==(const ImportOptions&, const ImportOptions&) = default;
};

[[nodiscard]] ImportOptions ImportOptions_Load(Settings& settings);
/// False when a write failed.
bool ImportOptions_Save(Settings& settings, const ImportOptions& options);
/// The settings' defaults; what is stored stays.
[[nodiscard]] ImportOptions ImportOptions_LoadDefaults(int generation);

/// What a name by date and time looks like ("Example:  Panel imported ...") and one after the
/// add-on ("Example:  Lear45 panel").
[[nodiscard]] QString importNamingExample(ImportNaming naming, const QString& dateAndTime);

} // namespace vt
