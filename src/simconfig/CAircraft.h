// One aircraft variation: an aircraft section ("fltsim.0") of an aircraft.cfg and the folder around
// it. Reads single values by the profile functions, edits the line array, saves by the protocol.
// Everything but verification and repair sees what a transaction has staged.
#pragma once

#include "platform/Prompt.h"
#include "platform/Text.h"
#include "simconfig/AircraftSections.h"
#include "simconfig/CTextureGroup.h"
#include "simconfig/RepairResult.h"
#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"
#include "simconfig/engine/SaveProtocol.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vt {

class AircraftChecks;
class Connection;
class Files;
class InstalledTitles;
struct GlobalRecord;

namespace profile {
class ProfileFile;
}

/// Against what a new title or variation name is checked; null leaves the check out.
struct NameChecks
{
    const InstalledTitles* installed = nullptr;
    const QList<NewVariation>* others = nullptr; ///< of the same installation
    QString exceptFile; ///< the variation itself, when it is one that is installed
    QString exceptSection;
};

/// The names of a new variation while they are asked for.
struct VariantNames
{
    QString title;
    QString variation;
    QString problem; ///< why the names given last cannot be taken
    QString warning; ///< what speaks against them; giving the same names again accepts it
};

/// Shows the names to the user, who may change them; false when the user cancelled.
using AskVariantNames = std::function<bool(VariantNames& names)>;

class CAircraft
{
public:
    /// What the state codes of State_Get() mean.
    enum State : int
    {
        Good = 0,
        NoTarget = 1,
        FileMissing = 2,
        NoHeaders = 3,
        NotUpdated = 4,
        NotRestored = 9,
    };

    explicit CAircraft(ConfigAccess access);
    [[nodiscard]] std::unique_ptr<CAircraft> Clone() const;

    // Identity, filled by Load(). Folder suffixes may be empty.
    QString sConfigurationFile;
    QString sSection;
    QString sTitle;
    QString sSIM; ///< base name of the flight model
    QString sModel;
    QString sPanel;
    QString sSound;
    QString sTexture;
    QString sKB_Checklists;
    QString sKB_Reference;

    // Derived by Load(); folders end in "\".
    QString sModelConfigurationFile;
    QString sPanelConfigurationFile;
    QString sSoundConfigurationFile;
    QString sKB_ChecklistFileAlt;
    QString sKB_ReferencelistFileAlt;
    QString sNotesFile;
    QString sFlightDynamicsCDPFile;
    QString sFlightDynamicsDPFile;

    // Filled by LoadManufacturerDetails().
    QString sManufacturer;
    QString sType;
    QString sVariation;
    QString sTypeRole;
    QString sCreatedBy;
    QString sCategory;

    // Filled by LoadExtraInfo(); in display form.
    QString sDescription;
    QString sATC_ID;
    QString sATC_Airline;
    QString sATC_FlightNumber;
    QString sPerformance;

    /// Key of the add-on that added this variation, 0 for none; filled by
    /// LoadVTTextureAddonMasterKey().
    qint64 lngVTTextureAddonMasterKey = 0;

    /// The whole file's lines while it is edited; filled by INILines_Load().
    LineArray sarrayINILines;

    /// False with state NoTarget (an argument is empty) or FileMissing (no such file, or no "sim"
    /// entry in the section).
    bool Load(const QString& configurationFile, const QString& section, bool onlyTitle = false);
    /// \a generation decides which entries exist (shell's generation codes).
    bool LoadManufacturerDetails(int generation);
    bool LoadExtraInfo();
    bool LoadVTTextureAddonMasterKey();

    /// Names of all sections in file order; state NoHeaders when there is none.
    [[nodiscard]] QStringList Headers_LoadAll(const QString& configurationFile);
    /// Only those that are "fltsim." and a number, order kept.
    [[nodiscard]] static QStringList Headers_ReturnOnlyAircraftHeaders(const QStringList& names);
    /// True when the section has no entry with a value, or does not exist.
    [[nodiscard]] bool IsHeaderSectionEmpty(const QString& section);

    [[nodiscard]] int State_Get() const { return m_state; }

    void State_Set(int state) { m_state = state; }

    /// The message of a state code; empty for Good.
    [[nodiscard]] static QString State_GetMessage(int state);
    /// The state and its cause, to be shown.
    [[nodiscard]] Prompt Error_Show() const;

    /// Why the last operation failed, beyond its state; may be empty.
    [[nodiscard]] const QString& sErrorText() const { return m_error; }

    /// "Piper Cub Blue", from manufacturer, type and variation; else the title, else the folder's
    /// name.
    [[nodiscard]] QString Name_Get() const;
    /// Whether the simulator does not show the variation because it was hidden.
    [[nodiscard]] bool IsHidden() const;

    // --- titles and variation names ---

    /// Fails for an empty title and one that another has.
    [[nodiscard]] Result Title_Validate(const QString& title, const NameChecks& checks) const;
    /// Fails for an empty name. One that another has is a success with the warning as its text.
    [[nodiscard]] Result Variation_Validate(const QString& variation,
                                            const NameChecks& checks) const;
    /// The title, or the title with the first free number behind it ("Cub 2").
    [[nodiscard]] QString Title_FixDuplicate(const QString& title, const NameChecks& checks) const;

    // --- folders and files ---

    [[nodiscard]] QString Folder_Aircraft_Get() const;
    /// \a parent + \a name, or with the first number behind it that no file or folder has.
    [[nodiscard]] QString Folder_Aircraft_Unique_Get(const QString& parent,
                                                     const QString& name) const;
    [[nodiscard]] QString Folder_AircraftModel_Get() const;
    [[nodiscard]] QString Folder_AircraftPanel_Get() const;
    [[nodiscard]] QString Folder_AircraftSound_Get() const;
    [[nodiscard]] QString Folder_AircraftTexture_Get() const;
    /// Texture folders of all variations of the file, each once, whether they exist or not.
    [[nodiscard]] QStringList Folder_AircraftTexture_LoadAll() const;
    /// Folder of the sounds that others hear.
    [[nodiscard]] QString Folder_SoundAI_Get() const;
    /// Path of the flight model (".air").
    [[nodiscard]] QString SIMFilename_Get() const;
    /// "Model" and a value of the file as the name of the folder below \a aircraftFolder.
    [[nodiscard]] static QString
    folderFor(const QString& aircraftFolder, const QString& stem, const QString& value);

    // Full paths of files on the disk, sorted.

    /// Everything below the aircraft's folder.
    [[nodiscard]] QStringList AircraftFiles_Get(const Files& files) const;
    /// Only what lies directly in it.
    [[nodiscard]] QStringList AircraftFiles_RootLevelFiles_Get(const Files& files) const;
    /// Everything below this variation's texture folder.
    [[nodiscard]] QStringList AircraftFiles_TextureFiles_Get(const Files& files) const;

    /// The panel.cfg or sound.cfg of the variation, and where it leads.
    struct PartDetails
    {
        QString configurationFile;
        bool exists = false;
        QString alias;      ///< as it stands in the file; empty for an original
        QString targetFile; ///< the configuration file that the alias names
        bool targetExists = false;
    };

    [[nodiscard]] PartDetails Panel_Details_Get(const Files& files,
                                                const GlobalRecord& global) const;
    [[nodiscard]] PartDetails Sound_Details_Get(const Files& files,
                                                const GlobalRecord& global) const;

    /// Where the parts of this aircraft go when it is installed into a folder.
    struct DefaultFolders
    {
        QString aircraft;
        QString model;
        QString panel;
        QString sound;
        QString soundAI;
        QString texture;
    };

    DefaultFolders InstallationFolders; ///< set by InstallationDetails_SetDefaultFolders()
    void InstallationDetails_SetDefaultFolders(const QString& aircraftFolder);

    // --- effects ---

    /// Names of the effects files, without ".fx", that the file's lights, effects and smoke systems
    /// name; each once.
    [[nodiscard]] QStringList Load_GetEffects() const;
    /// The pictures that one of them names.
    [[nodiscard]] QStringList Load_GetEffectsTextures(const QString& effect,
                                                      const GlobalRecord& global) const;
    /// All of them with their pictures, to be shown.
    [[nodiscard]] Prompt Effects_View(const GlobalRecord& global) const;

    enum class Performance
    {
        FileToDisplay,
        DisplayToFile,
    };

    /// Between the escapes of the file ("\n", "\/", "\t", "\s") and what is shown.
    [[nodiscard]] static QString PerformanceData_Translate(const QString& text, Performance way);

    /// Reads sarrayINILines; with \a onlyIfChanged lines that still fit the file are kept.
    bool INILines_Load(bool onlyIfChanged = true);
    /// Writes sarrayINILines by the save protocol; state NotUpdated and sErrorText() on failure,
    /// the file then stands as it was.
    [[nodiscard]] Result Save();
    enum class Alias
    {
        Panel,
        Sound,
    };
    /// Changes the section's "panel" or "sound" value and saves.
    [[nodiscard]] Result PanelOrSound_Entry_Update(Alias which, const QString& suffix);

    /// Path of the persistent backup.
    [[nodiscard]] QString AircraftMasterSourceTextFile_BackupFile() const;
    /// The persistent backup goes back over the file and is deleted; else state NotRestored.
    [[nodiscard]] Result BackupConfigurationFile_Restore();

    struct SectionOrder
    {
        bool good = true;
        QStringList sorted; ///< aircraft sections by ascending number
        QString chain;      ///< "fltsim.0->fltsim.2"; empty when good

        /// The line of a verification report; empty when good.
        [[nodiscard]] QString problem(const QString& simulatorName) const;
    };

    /// Whether the aircraft sections among \a names are fltsim.0, 1, 2, ... without a gap. None at
    /// all is not good, with an empty chain.
    [[nodiscard]] static SectionOrder sectionOrder(const QStringList& names);

    // --- verification and repair ---

    /// One text for each problem, in a fixed order; those about several files have a line for each
    /// behind the first. Empty for a sound aircraft. The aircraft need not have loaded well.
    [[nodiscard]] QStringList Verify(AircraftChecks& checks);

    [[nodiscard]] static QString Verify_Report_Title()
    {
        return QStringLiteral("Aircraft Configuration Report");
    }

    /// The whole report as text.
    [[nodiscard]] QString Verify_Report(const QStringList& problems,
                                        const QString& simulatorName) const;
    /// The closing sentence of a report.
    [[nodiscard]] static QString Verify_Report_GetFinalSummaryMessage(const QStringList& problems);
    /// What is to be known beside the problems (a hidden aircraft); may be empty.
    [[nodiscard]] QString Verify_Report_GetStateSummaryMessage(const QString& simulatorName) const;

    struct RepairOutcome : RepairResult
    {
        /// Sections of the file that bear other names now; this one's is in sSection.
        aircraftsections::Renames renamed;
    };

    /// Mends what can be mended without inventing anything. A changed file has its backup beside
    /// it.
    [[nodiscard]] RepairOutcome Repair(AircraftChecks& checks);

    // --- records ---

    [[nodiscard]] bool SuppressionStatus_Load(Connection& database) const;
    Result SuppressionStatus_Save(Connection& database, bool suppressed) const;
    /// Key of the add-on that this variation belongs to: the one that added the section, else the
    /// last one that recorded the file. Nothing when there is none.
    [[nodiscard]] std::optional<qint64> Database_AircraftIsInDatabase(Connection& database);

    // --- variations ---
    // The operations on the file work on all sections at once, with one load and one save. The
    // records follow in a call of their own, which may stand in another transaction.

    /// Brings the sections of sarrayINILines into continuous order; saved by the caller.
    [[nodiscard]] ResultOf<aircraftsections::Renames> AircraftMasterSourceTextFile_Reorder();
    /// Pictures that are named after sections get the new names.
    Result
    AircraftMasterSourceTextFile_Reorder_ProcessPictures(const aircraftsections::Renames& renames,
                                                         const GlobalRecord& global);

    /// The lines of a section of sarrayINILines, to be copied.
    [[nodiscard]] std::optional<LineArray> Variant_Section_Get(const QString& section) const;
    /// Every variation of the file, hidden ones included, in file order. What cannot be loaded has
    /// its section and title only.
    [[nodiscard]] std::vector<CAircraft> Variant_Details_GetAll() const;
    /// Sections whose "vt_texture_addon_master_key" is the key, hidden ones included.
    [[nodiscard]] QStringList Variant_SearchByVTTextureAddonMasterKey(qint64 masterKey) const;

    struct VariantSwitches
    {
        AskVariantNames askNames; ///< not set: nobody is asked
        NameChecks nameChecks;
        bool write = true; ///< false: sarrayINILines is edited and not saved
    };

    struct VariantsChanged
    {
        QStringList sections; ///< added (in the order of the groups) or removed ones
        QStringList titles;
        aircraftsections::Renames renamed; ///< others that bear new names now
    };

    /// A new section for each group, all or none; the groups receive the names and suffixes chosen.
    ResultOf<VariantsChanged> Variant_Add(QList<CTextureGroup>& groups,
                                          const VariantSwitches& switches,
                                          const GlobalRecord& global);

    /// Suffixes that sections of sarrayINILines have.
    struct SuffixesTaken
    {
        QSet<NoCase> texture;
        QSet<NoCase> panel;
        QSet<NoCase> sound;
    };

    [[nodiscard]] SuffixesTaken suffixesTaken() const;
    /// Suffixes as CTextureGroup tells them, made valid, " 2" and so on behind one that a folder or
    /// a section has; noted in \a taken. Nothing: the block's own value stays.
    [[nodiscard]] std::optional<QString>
    Variant_Add_DetermineNewTexture(const CTextureGroup& group, SuffixesTaken& taken) const;
    [[nodiscard]] std::optional<QString> Variant_Add_DetermineNewPanel(const CTextureGroup& group,
                                                                       SuffixesTaken& taken) const;
    [[nodiscard]] std::optional<QString> Variant_Add_DetermineNewSound(const CTextureGroup& group,
                                                                       SuffixesTaken& taken) const;
    /// Asks until the names can be taken; kind Declined when the user cancelled.
    Result Variant_Add_PromptForDetails(CTextureGroup& group,
                                        const VariantSwitches& switches) const;
    /// Sets and removes the entries of a new block.
    [[nodiscard]] Result Variant_Add_UpdateINILines(LineArray& block,
                                                    const QString& section,
                                                    const CTextureGroup& group);
    Result Variant_Add_UpdateDatabase(Connection& database, const VariantsChanged& added) const;

    struct VariantRemoval
    {
        bool ask = false;
        bool original = false; ///< the aircraft came with the simulator
        QString simulatorName;
    };

    /// Removes this variation.
    ResultOf<VariantsChanged> Variant_Remove(const VariantRemoval& removal,
                                             const GlobalRecord& global);
    /// Removes several variations of this file.
    ResultOf<VariantsChanged> Variant_Remove_All(const QStringList& sections,
                                                 const GlobalRecord& global);
    /// To be called after the section went: deletes the texture folder, and panel and sound folders
    /// that hold an alias alone, where no other variation uses them. Files of add-ons (\a
    /// isRecorded) stay. Tells what was deleted and what was not.
    [[nodiscard]] QStringList
    Variant_Remove_DeleteCfgFilesAndFolder(const Files& files,
                                           const std::function<bool(const QString&)>& isRecorded);
    Result Variant_Remove_UpdateDatabase(Connection& database,
                                         const VariantsChanged& removed) const;

    /// For what a repair or hiding renamed.
    Result Variants_Renamed_UpdateDatabase(Connection& database,
                                           const aircraftsections::Renames& renames) const;

    /// The simulator does not show the variation any more, or shows it again. sSection follows.
    ResultOf<VariantsChanged> Hide(const GlobalRecord& global);
    ResultOf<VariantsChanged> ShowAgain(const GlobalRecord& global);

private:
    void readValues(const profile::ProfileFile& file);
    using Exists = std::function<bool(const QString& file)>;
    void deriveFiles(const Exists& exists);
    [[nodiscard]] QString kneeboardFile(const QString& value, const Exists& exists) const;
    void verifySection(AircraftChecks& checks, QStringList& problems);
    Result repairForm(RepairOutcome& outcome);
    Result repairEntries(AircraftChecks& checks, RepairOutcome& outcome);
    Result failed(int state, const Result& why);
    SaveProtocol& protocol();
    bool loaded();

    [[nodiscard]] QString newSuffix(const QString& stem,
                                    const QString& source,
                                    const QString& variation,
                                    QSet<NoCase>& taken) const;
    Result addBlocks(QList<CTextureGroup>& groups,
                     const VariantSwitches& switches,
                     qsizetype firstNumber,
                     QList<LineArray>& blocks,
                     VariantsChanged& added);
    Result finishGroup(CTextureGroup& group,
                       const VariantSwitches& switches,
                       const LineArray& block,
                       SuffixesTaken& taken) const;
    [[nodiscard]] Result deleteVariantFolder(const Files& files,
                                             const QString& folder,
                                             const std::function<bool(const QString&)>& isRecorded,
                                             QStringList& told);
    Result loadForEdit();
    Result saveVariants(const aircraftsections::Renames& renames, const GlobalRecord& global);
    ResultOf<VariantsChanged> changeVisibility(bool visible, const GlobalRecord& global);

    ConfigAccess m_access;
    std::optional<SaveProtocol> m_protocol;
    int m_state = Good;
    QString m_error;
};

} // namespace vt
