// One aircraft variation: an aircraft section ("fltsim.0") of an aircraft.cfg and the folder around
// it. Reads single values by the profile functions, edits the line array, saves by the protocol.
// Knows files only; which add-on brought it is joined by others.
#pragma once

#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"
#include "simconfig/engine/SaveProtocol.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace vt {

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
    int lngVTTextureAddonMasterKey = 0;

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

    /// Why the last operation failed, beyond its state; may be empty.
    [[nodiscard]] const QString& sErrorText() const { return m_error; }

    [[nodiscard]] QString Folder_Aircraft_Get() const;
    [[nodiscard]] QString Folder_AircraftModel_Get() const;
    [[nodiscard]] QString Folder_AircraftPanel_Get() const;
    [[nodiscard]] QString Folder_AircraftSound_Get() const;
    [[nodiscard]] QString Folder_AircraftTexture_Get() const;
    /// Path of the flight model (".air").
    [[nodiscard]] QString SIMFilename_Get() const;
    /// "Model" and a value of the file as the name of the folder below \a aircraftFolder.
    [[nodiscard]] static QString
    folderFor(const QString& aircraftFolder, const QString& stem, const QString& value);

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

private:
    void deriveFiles();
    [[nodiscard]] QString kneeboardFile(const QString& value);
    Result failed(int state, const Result& why);
    SaveProtocol& protocol();
    bool loaded();

    ConfigAccess m_access;
    std::unique_ptr<SaveProtocol> m_protocol;
    int m_state = Good;
    QString m_error;
};

} // namespace vt
