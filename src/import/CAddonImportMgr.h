// Add-ons that reached the simulator without this program: found in its folders, shown as groups,
// and recorded as if they had been installed. Writes records only; nothing else on the disk changes
// but "IMPORT.LOG".
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/CAddon_ItemGroup.h"
#include "addondb/Connection.h"
#include "catalogue/Catalogue.h"
#include "import/ImportFiles.h"
#include "import/ImportOptions.h"
#include "platform/AppendFile.h"
#include "shell/Context.h"
#include "shell/Results.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace vt {

class Processes;

enum class ImportFamily
{
    Aircraft,
    Panels,
    Sounds,
    Scenery,
    Missions,
};

/// "aircraft", "panels", "sounds", "scenery", "missions".
[[nodiscard]] QString importFamilyWord(ImportFamily family);

/// Something that was found: an add-on to be.
struct ImportGroup
{
    ImportFamily family = ImportFamily::Aircraft;
    /// Name, maker and files that nobody recorded. lngKey: the add-on as which it was imported
    /// before, whose new files these are; 0: none.
    CAddon_ItemGroup addon;
    QString folder;                 ///< ends in "\"
    QList<SceneryAreaRecord> areas; ///< of the scenery library that show it
    bool boolProcess = true;        ///< chosen
    bool imported = false;          ///< by the last import
    QString cause;                  ///< why it was not
};

/// Names of the groups of results, as shown.
namespace importgroup {
inline constexpr QStringView imported = u"Imported";
inline constexpr QStringView notImported = u"Not Imported";
} // namespace importgroup

/// "Confirm Import of 3 Addons"
[[nodiscard]] Prompt confirmImport(qsizetype count);

class CAddonImportMgr
{
public:
    /// All must outlive this. \a database null: nothing is recorded yet, and nothing can be
    /// imported.
    CAddonImportMgr(Context& context, const Catalogue& catalogue, Connection* database);

    ImportOptions options;

    /// Finds what the options ask for, family after family, each sorted by name. A family of which
    /// nothing is found is told ("Import Error") unless \a quietly. Fails, with nothing found, when
    /// the records cannot be read or the user stops it (kind Declined).
    Result Addons_Import_GatherAddons(bool quietly = false);

    [[nodiscard]] std::vector<ImportGroup>& groups() { return m_groups; }

    /// What was left out, one sentence each.
    [[nodiscard]] const QStringList& remarks() const { return m_remarks; }

    /// Records the chosen groups, all in one commit; one that fails is left out. Fails when none is
    /// chosen, the user declines (kind Declined), or nothing can be written.
    Result Addon_Install_ImportGroups(const Processes& processes);

    /// "Imported" and "Not Imported", by add-on; of the last import.
    [[nodiscard]] const Results& results() const { return m_results; }

    /// At the start of the program: whether there is something new to be imported, by the setting
    /// that asks for this; groups() then holds it. Says nothing.
    [[nodiscard]] bool Addons_ImportAtStartup();

private:
    // CAddonImportMgr_Gather.cpp
    void Addons_Import_GatherAddons_GetAircraft();
    void Addons_Import_GatherAddons_GetAircraft_Array_Sort(std::vector<ImportGroup>& found) const;
    void Addons_Import_GatherAddons_GetPanels();
    void Addons_Import_GatherAddons_GetSounds();
    void Addons_Import_GatherAddons_GetScenery();
    void Addons_Import_GatherAddons_GetMissions();
    void getConfigs(Catalogue::Kind kind, ImportFamily family, bool standaloneOnly);
    void getLibraryAreas(QSet<NoCase>& covered);
    void getOtherScenery(const QSet<NoCase>& covered);
    [[nodiscard]] bool begin(ImportGroup& group, const QString& keyFile);
    void offer(ImportGroup group, const QString& properName);
    [[nodiscard]] QString nameOf(ImportFamily family, const QString& properName) const;
    void familyDone(const QString& noneFound);

    Result importGroup(ImportGroup& group);
    Result recordFiles(ImportGroup& group, const AddonRecord& record);
    Result recordFolders(const ImportGroup& group);
    void status(const QString& text);

    Context& m_context;
    const Catalogue& m_catalogue;
    Connection* m_database;
    std::optional<ImportFiles> m_files; ///< of the last gathering
    QDateTime m_now;
    bool m_quietly = false;
    std::vector<ImportGroup> m_found; ///< of the family in hand
    std::vector<ImportGroup> m_groups;
    QStringList m_remarks;
    Results m_results;
    AppendFile m_log;
};

} // namespace vt
