// Carries out an installation that was configured before. All questions of all files come first,
// in the required order; then everything is staged, recorded in one commit and put into place.
// Until then the simulator's tree is untouched, and a failure before leaves it so.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Closing.h"
#include "addondb/Connection.h"
#include "addondb/Originals.h"
#include "install/AircraftEdit.h"
#include "install/CAddonInstallationDetails.h"
#include "install/InstallLog.h"
#include "platform/FileTransaction.h"
#include "shell/Context.h"
#include "shell/Results.h"

#include <QList>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace vt {

/// What became of one file; shown and stored nowhere else.
enum class InstallCode : qint8
{
    Installed = 0,
    ExistingIsNewer = 1,
    ClientDeclined = 2,
    Cancelled = 3, ///< the installation ends before this file
    NotExtracted = 4,
    Error = 5,
    OthersVersion = 6, ///< installed again, but another add-on's version lies on top
};

/// " was installed.", " was NOT installed because ...", as put behind the file's path; \a again:
/// "reinstalled".
[[nodiscard]] QString resultPhrase(InstallCode code, bool again = false);

/// "Installation Results - '<add-on>'".
[[nodiscard]] QString installationResultsCaption(const QString& addon);

/// "Reinstallation Results - '<add-on>'".
[[nodiscard]] QString reinstallationResultsCaption(const QString& addon);

/// Whether to go on although the simulator is running.
[[nodiscard]] Prompt reinstallWarning(const DisplayNames& names);

/// "Would you like to play it now?"
[[nodiscard]] Prompt playMovieQuestion();

/// The question of frmYesYesToAllNoNoToAllCancel as a plain prompt.
[[nodiscard]] Prompt confirmFileReplace(const ReplaceQuestion& question);

class Processes;

class CAddonInstaller
{
public:
    /// All must outlive this; \a database is open for writing, \a details are prepared.
    CAddonInstaller(Context& context, Connection& database, CAddonInstallationDetails& details);
    ~CAddonInstaller();
    CAddonInstaller(const CAddonInstaller&) = delete;
    CAddonInstaller& operator=(const CAddonInstaller&) = delete;

    /// For outside tools; without it none is run. Must outlive this.
    void setProcesses(const Processes* processes) { m_processes = processes; }

    /// Runs every step; of details that complete a recorded add-on, what is installed comes to its
    /// record. True when the source's handling (step 12) was reached: the add-on is
    /// recorded, and results() tells each file. False: nothing was installed, failure() says why.
    bool Install_Begin();

    /// The same for details that were prepared again: files in the simulator are replaced where
    /// they lie and their records updated; files in the File Cabinet are installed. False: nothing
    /// was changed.
    bool Reinstall_Begin();

    /// Asked by Reinstall_Begin() before it warns; without it no simulator counts as running.
    std::function<bool()> simulatorIsRunning;

    [[nodiscard]] const Results& results() const { return m_results; }

    [[nodiscard]] const Result& failure() const { return m_failure; }

    /// How the installation ended as a whole: a success, or the sentence that tells why it is not
    /// (or not whole) installed. Told beside results().
    [[nodiscard]] Result outcome() const;

    /// The user ended the installation at a question; files before it are installed.
    [[nodiscard]] bool wasCancelled() const { return m_cancelled; }

    /// Files that could not be installed although they were to be.
    [[nodiscard]] qsizetype failedFiles() const { return m_failedFiles; }

    /// Places in the source of the files that were to be installed and were not, whatever the
    /// reason; also of those that a cancellation left out.
    [[nodiscard]] QStringList notInstalled() const;

    /// Why the first of them was not, or the scenery library was not updated; may be empty.
    [[nodiscard]] QString cause() const;

    /// The one movie that was installed, when the user wants to see it; the front end plays it.
    [[nodiscard]] const QString& movieToPlay() const { return m_movieToPlay; }

    [[nodiscard]] qint64 masterKey() const { return m_record.key; }

    [[nodiscard]] const AddonRecord& record() const { return m_record; }

private:
    /// One file that is marked for installation.
    struct File
    {
        const CAddon_Item* item = nullptr;
        InstallCode code = InstallCode::Installed;
        bool exists = false;
        bool changed = false; ///< in place: not what was recorded
        Fingerprint before;   ///< what lies at the target
        Fingerprint after;    ///< what was staged
        QByteArray decisions; ///< lines for the log
        QString cause;        ///< why it failed
    };

    /// A panel or sound that is to refer to an installed one.
    struct StagedAlias
    {
        PartAlias alias;
        Fingerprint check;
    };

    /// An area that was staged in the scenery library.
    struct AddedArea
    {
        SceneryAreaToAdd wanted;
        int area = 0;
        int layer = 0;
    };

    // Install_Begin's steps, in order.
    Result Install_Preliminaries();
    void openSourceFolders();
    Result AddonDatabase_Open();
    Result AddonMasterTable_OpenTable();
    Result AddonMasterTable_CreateAddonRecord();
    Result AddonMasterTable_OpenAddonRecord();
    Result InstallFiles();
    Result PartAliases_Create();
    Result FlightPlans_Incorporate();
    Result AircraftVariants_Create();
    Result AddonMasterTable_UpdateRecord();
    Result SceneryLibrary_Update();
    Result Changes_Apply();
    Result AirportFiles_Install();
    Result Picture_Store();
    Result ItemPictures_Store();
    Result storePicture(const InstallationGroup& group);
    [[nodiscard]] QStringList sectionsOf(const InstallationGroup& group, QString& file) const;
    Result SourceZipFile_Archive();
    Result SourceFiles_Delete();
    void Install_End();
    void cleanUp();
    void askForMovie();

    // Reinstall_Begin's own steps.
    Result Reinstall_Preliminaries();
    Result Reinstall_OpenRecord();
    Result ReinstallFiles();
    void Reinstall_End();
    void decideAgain(File& file, const FileInfo& entry);
    [[nodiscard]] bool isCovered(const CAddon_Item& item) const;
    Result setAsideChanged(const QString& target);
    Result recordAgain();
    Result recordMissing();
    Result recordPanelPictures();
    void prepareSetAside();
    void noteChecksBefore();
    Result recordInPlace();
    Result recordVariantData();
    void forgetFailed();
    Result recordAreasAgain(const QList<DetailRecord>& added);
    void tellMissing();
    bool runSteps(const QList<std::pair<QString, Result (CAddonInstaller::*)()>>& steps);

    // Installing into the File Cabinet.
    void gatherForCabinet();
    Result Install_AddToCabinetZip();
    [[nodiscard]] QByteArray storedVariantData() const;
    [[nodiscard]] QString placeOf(const CAddon_Item& item) const;
    Result forgetStored(const QString& why);
    void Cabinet_TakeOut();

    [[nodiscard]] bool toCabinet() const { return m_details.installTo() == InstallTo::Cabinet; }

    /// The add-on was recorded before and is installed again, not completed.
    [[nodiscard]] bool isAgain() const { return m_details.recorded() && !m_details.completes(); }

    /// In the simulator under a row that it had before.
    [[nodiscard]] bool replacesOwn(const CAddon_Item& item) const
    {
        return m_details.inPlace() && item.detailKey != 0;
    }

    // Parts of InstallFiles.
    Result AddonAndCabinetFolders_Create();
    void confirmLinks();
    void decideAll();
    [[nodiscard]] bool decide(File& file, const FileInfo& entry);
    [[nodiscard]] InstallCode askReplace(const File& file, const FileInfo& existing, LogLines& log);
    Result stageAll();
    void InstallFiles_Initialize(const File& file);
    Result installOne(File& file);
    Result InstallSceneryFile(File& file);
    Result InstallAircraftConfigurationFile(File& file);
    Result InstallPanelConfigurationFile(File& file);
    Result InstallSoundConfigurationFile(File& file);
    Result InstallFileFrontEnd(File& file);
    Result InstallFile(File& file);
    [[nodiscard]] QString keptFolder();
    Result keepOriginal(File& file, const QString& target);
    [[nodiscard]] ResultOf<Content> contentOf(const File& file, bool& sourceFailed);

    // Parts of FlightPlans_Incorporate and AirportFiles_Install.
    [[nodiscard]] bool isInstalled(const CAddon_Item& item) const;
    void tellTraffic(const QList<StepFailure>& failures);

    // Parts of AircraftVariants_Create.
    [[nodiscard]] const AircraftEdit* editOf(const CAddon_Item& item) const;
    Result createAlias(StagedAlias& staged);
    void tellAliases();
    Result writeAircraftEdit(const AircraftEdit& edit);
    Result noteOwner(const QString& file);
    [[nodiscard]] bool variantDataIsLost() const;
    Result writeVariantData();
    Result recordAircraft();
    void tellVariants();

    // Parts of SceneryLibrary_Update and Changes_Apply.
    [[nodiscard]] bool anySceneryIn(const QString& folder) const;
    Result updateLibrary();
    void tellLibraryFailure(const QString& why);
    Result recordAddon();
    Result recordFiles();
    Result recordMadeFolders();
    [[nodiscard]] DetailRecord variantDataRow() const;
    Result recordAreas(const QList<DetailRecord>& details);
    Result recordStoredAreas(const QList<DetailRecord>& details);
    void applyFailures(const QList<StepFailure>& failures);
    [[nodiscard]] Result nothingInstalled() const;
    void dropNeedlessOriginals();
    void dropNeedlessBases(const QList<StepFailure>& failures);
    void tellFiles();

    void status(const QString& text);
    [[nodiscard]] static QString targetOf(const CAddon_Item& item);
    /// Time of the item in its source, milliseconds since 1970 UTC; 0 when it has none.
    [[nodiscard]] qint64 sourceTimeMs(const CAddon_Item& item) const;
    [[nodiscard]] QString sourceTextOf(const CAddon_Item& item) const;

    /// What became of the flight plans; told once everything is in its place.
    struct Traffic
    {
        bool wanted = false;   ///< the add-on brings some
        bool optional = false; ///< that they were left out is no failure
        QString target;
        QString problem;
        QStringList files; ///< that were to be changed
        QStringList told;
    };

    Context& m_context;
    Connection& m_database;
    CAddonInstallationDetails& m_details;
    const Processes* m_processes = nullptr;
    Traffic m_traffic;
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<FileTransaction> m_actions;
    InstallLog m_log;
    Results m_results;
    Results m_libraryResults; ///< told once the library is in its place
    qsizetype m_failedFiles = 0;
    Result m_failure;
    AddonRecord m_record;
    std::vector<File> m_files;
    std::unique_ptr<originals::ReleaseContext> m_release; ///< for what is set aside
    bool m_announcedSetAside = false;
    QList<OriginalRecord> m_originals; ///< detailKey: index into m_files until recorded
    QString m_libraryCause;            ///< why an area, or the library, could not be written
    QList<SceneryAreaToAdd> m_wantedAreas;
    QList<AddedArea> m_areas;
    QList<ConfigBaseRecord> m_configBases;
    InstallationClosing m_closing;
    QList<AircraftEdit> m_aircraftEdits;
    QList<StagedAlias> m_aliases;
    QList<std::pair<qint64, Fingerprint>> m_newChecks; ///< detail keys of files that we edited
    std::optional<Fingerprint> m_variantData;          ///< the data file, when it was written
    QString m_movieToPlay;
    QString m_archive;              ///< in the File Cabinet, when the add-on goes there
    QString m_keptFolder;           ///< below Originals
    QSet<QString> m_filledFolders;  ///< they exist or are staged: files went there
    QList<OuterLink> m_closedLinks; ///< nothing is written behind them
    bool m_cancelled = false;
    bool m_replaceAll = false;
    bool m_replaceNone = false;
};

} // namespace vt
