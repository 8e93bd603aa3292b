// Undoes one add-on's installation, or that of some of its files: they go, move to the File Cabinet
// or to a folder of the user's (or stay by the sharing rules), what they had replaced comes back,
// scenery areas and records go. Everything is decided first, and what is moved is written and
// compared; then all is committed with the journal and carried out. An interrupted removal is
// completed at the next start. The same steps copy an add-on.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Closing.h"
#include "addondb/Connection.h"
#include "addondb/FileCabinet.h"
#include "addondb/Originals.h"
#include "catalogue/Catalogue.h"
#include "platform/AppendFile.h"
#include "platform/FileTransaction.h"
#include "remove/PartReferences.h"
#include "remove/RemovalOptions.h"
#include "shell/Context.h"
#include "shell/Results.h"
#include "simconfig/CAircraft.h"

#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

namespace vt {

class CAFCAD;
class UsedFiles;

/// What became of one file.
enum class RemovalOutcome : quint8
{
    Removed,       ///< or moved, or copied, as the method has it
    KeptForOthers, ///< and copied, where the method moves
    Missing,
    Failed,
};

/// " was removed.", " was NOT removed because ...", as put behind the file's path. \a target: the
/// folder or zip file that the file goes to.
[[nodiscard]] QString
removalPhrase(RemovalMethod method, RemovalOutcome outcome, const QString& target);

/// Where a removal or copy with a folder of the user's is to put the add-on's files: a folder
/// (ending in "\\") or a zip file there that does not exist yet.
[[nodiscard]] QString
recreateTarget(const Files& files, const AddonRecord& addon, const RemovalOptions& options);

/// Whether installed aircraft, panels or sounds may use the file: it lies below the simulator and
/// is of a type that configuration files name.
[[nodiscard]] bool mayBeUsed(const GlobalRecord& global, const QString& path);

/// "Removal Results - '<add-on>'".
[[nodiscard]] QString removalResultsCaption(const QString& addon);

/// "Confirm Removal of Original <kind> Addon".
[[nodiscard]] Prompt confirmRemovalOfOriginal(const AddonRecord& addon, const QString& simulator);

class CAddonRemover
{
public:
    /// All must outlive this; \a database is open for writing.
    CAddonRemover(Context& context,
                  Connection& database,
                  qint64 masterKey,
                  const RemovalOptions& options = {});
    ~CAddonRemover();
    CAddonRemover(const CAddonRemover&) = delete;
    CAddonRemover& operator=(const CAddonRemover&) = delete;

    /// Whether the removal (or copy) ran to its end. False: nothing was changed, failure() says why
    /// (kind Declined after a No).
    bool Remove_Begin();

    [[nodiscard]] const Results& results() const { return m_results; }

    [[nodiscard]] const Result& failure() const { return m_failure; }

    /// Some file, area or record could not be dealt with although the rules wanted it.
    [[nodiscard]] bool anyFailed() const { return m_anyFailed; }

    [[nodiscard]] const AddonRecord& record() const { return m_record; }

    /// The File Cabinet's archive, the folder or the zip file that the files go to; empty for the
    /// methods that move nothing.
    [[nodiscard]] const QString& target() const { return m_target; }

private:
    struct File
    {
        DetailRecord detail;
        QString path; ///< full
        RemovalOutcome outcome = RemovalOutcome::Removed;
        bool mayBeUsed = false;     ///< by something else, going by its type and place
        bool editedInPlace = false; ///< our part went out of it, the file itself stays
    };

    struct VariantTold
    {
        QString file;
        QString title;
        bool removed = false;
    };

    /// A panel.cfg or sound.cfg that got another alias.
    struct RepointedFile
    {
        Catalogue::Kind kind;
        QString file;
        QString problem; ///< why it did not; empty when it did
    };

    // Remove_Begin's steps, in order.
    Result Preliminaries();
    Result AddonDatabase_Open();
    Result OriginalAddonWarning();
    Result AddonDetails_Open();
    Result FlightPlans_Remove();
    Result AircraftVariants_Remove();
    Result RemoveFiles();
    Result Remove_ProcessCabinetZip();
    Result References_Update();
    Result AirportFiles_Restore();
    Result SceneryLibrary_Update();
    Result Pictures_Delete();
    Result AddonMasterTable_Update();
    Result CustomFolders_Delete();
    Result AddonDescriptionRecord_Delete();
    Result AddonMasterRecord_Delete();
    Result AddonCabinetAndCustomFolders_Delete();
    Result Changes_Apply();
    void Remove_End();

    Result Remove_Sound_CheckSoundDependencies();
    Result Remove_Panel_CheckPanelDependencies();
    [[nodiscard]] QList<PartReference> Remove_Sound_GetSoundReferences() const;
    [[nodiscard]] QList<PartReference> Remove_Panel_GetPanelReferences() const;
    Result checkReferences(Catalogue::Kind kind, const QString& instead);
    Result askReferences(Catalogue::Kind kind, QList<PartReference>& references);
    Result assignReferences(Catalogue::Kind kind,
                            QList<PartReference>& references,
                            const QString& instead);
    static Catalogue::Kind kindOf(const PartReference& reference);
    Result repoint(Catalogue::Kind kind, const QString& file, const QString& alias);
    void tellReferences(const QList<StepFailure>& failures);

    [[nodiscard]] bool allFlightPlansGo() const;
    [[nodiscard]] bool takesAway() const;
    [[nodiscard]] bool goesRow(qint64 detailKey) const;
    Result loadRecords();
    void sortByFolders();
    Result noteEdited(const DetailRecord& owner, const FileInfo& before);
    // CAddonRemover_Cabinet.cpp
    Result findTarget();
    [[nodiscard]] bool moves() const;
    [[nodiscard]] QString ownVersion(const File& file, const std::optional<FileInfo>& now);
    Result collect(File& file, const QString& from);
    Result collectStored(const QString& path);
    Result collectLeftovers();
    void collectPicture();
    Result recreate(const CabinetFile& file);
    [[nodiscard]] QString recreatedName(const QString& path);
    Result writeRecreateZip();
    Result fillCabinet();
    Result emptyCabinet();
    void discardRecreated();
    Result processStored(File& file);
    void tellFile(const File& file);

    void confirmLinks();
    Result restoreAirport(const CAFCAD& editor, const QString& name);
    void tellTraffic(const QList<StepFailure>& failures);
    [[nodiscard]] bool goesWithPart(const QString& file, const QString& texture) const;
    Result removeVariantsFrom(const QString& file);
    Result takeOut(const QString& file, const QStringList& sections);
    Result editKept(const DetailRecord& owner, const QStringList& sections);
    void forgetConfigBase(const QString& file);
    void dropConfigBase(const QString& file, bool othersStay);
    Result recordVariants();
    void tellVariants(const QList<StepFailure>& failures);
    void findUsers();
    [[nodiscard]] bool isUsedByOthers(const File& file) const;
    Result RemoveFile(File& file);
    void prepareRelease();
    Result releaseFile(File& file, const std::optional<FileInfo>& now);
    void tellRelease(const File& file, const originals::Release& release);
    bool otherSceneryFilesIn(const SceneryAreaRecord& area);
    Result updateLibrary(const QList<SceneryAreaRecord>& areas);
    bool removeArea(class CSceneryCfgMgr& library, const SceneryAreaRecord& area);
    void tellLibraryFailure(const QString& why);
    void cleanKeptFolders();
    [[nodiscard]] QStringList storageFolders() const;
    Result emptyStorage(const QString& folder);
    void leaveRecordsOnly();
    [[nodiscard]] QStringList emptiedFolders();
    [[nodiscard]] bool willBeEmpty(const QString& folder, const QSet<NoCase>& going);
    void tellFiles(const QList<StepFailure>& failures);
    void status(const QString& text);

    /// What becomes of the flight plans; told once everything is in its place.
    struct Traffic
    {
        bool wanted = false;
        QString problem;
        QStringList files; ///< that were to be changed
    };

    Context& m_context;
    Connection& m_database;
    qint64 m_masterKey;
    RemovalOptions m_options;
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<FileTransaction> m_actions;
    std::unique_ptr<originals::ReleaseContext> m_release;
    originals::Sharers m_sharers;
    AppendFile m_log;
    Results m_results;
    Results m_libraryResults;              ///< told once the library is in its place
    QList<SceneryAreaRecord> m_areasGoing; ///< out of the library
    Result m_failure;
    AddonRecord m_record;
    RemovalClosing m_closing;
    QList<DetailRecord> m_details; ///< all of the add-on's
    std::vector<File> m_files;     ///< those that are to go
    bool m_whole = true;           ///< all of them are
    bool m_inCabinet = false;
    QString m_target;
    QString m_archive; ///< of the add-on in the File Cabinet; empty: there is none
    std::unique_ptr<CabinetArchive> m_stored;
    std::vector<CabinetFile> m_collected; ///< what is moved or copied
    QSet<NoCase> m_recreatedNames;
    QStringList m_recreated; ///< files that were written to the user's folder
    QStringList m_itemsGone; ///< aircraft.cfg and panel.cfg files that go from the simulator
    bool m_areaStays = false;
    QHash<qint64, Fingerprint> m_checks;
    QHash<qint64, OriginalRecord> m_originals;
    Traffic m_traffic;
    QList<VariantTold> m_variantResults; ///< told once everything is in its place
    std::vector<std::pair<std::unique_ptr<CAircraft>, CAircraft::VariantsChanged>> m_variantsGone;
    partreferences::Going m_going;
    QList<PartReference> m_references;
    QList<RepointedFile> m_repointed;
    std::unique_ptr<Catalogue> m_catalogue;
    std::unique_ptr<UsedFiles> m_used; ///< null where no file's use matters
    QSet<NoCase> m_keptFolders;        ///< folders below Originals from which a kept file goes
    QList<OuterLink> m_closedLinks;    ///< nothing is changed behind them
    bool m_announcedSetAside = false;
    bool m_cancelled = false;
    bool m_anyFailed = false;
};

} // namespace vt
