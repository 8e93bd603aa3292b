// The installation details of one add-on: its source, its items with their proposed and chosen
// targets, the groups with their decisions, and the checks. Decides and reads; writes nothing.
#pragma once

#include "addondb/CAddon_ItemGroup.h"
#include "install/AddonSource.h"
#include "install/AircraftEdit.h"
#include "install/InstallOptions.h"
#include "install/InstallationGroup.h"
#include "install/PartAliases.h"
#include "install/RecordedAddon.h"
#include "platform/Result.h"
#include "platform/Text.h"
#include "shell/Context.h"
#include "simconfig/AddonVariations.h"
#include "simconfig/engine/LineArray.h"

#include <QHash>
#include <QList>
#include <QMultiHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace vt {

class CSceneryCfgMgr;
class Catalogue;

namespace plantext {
/// "*** Not Selected ***", "Same target folder as item".
[[nodiscard]] QString notSelected();
[[nodiscard]] QString sameFolderAsItem();
/// "Install" or "Do not install": whether a file is marked.
[[nodiscard]] QString installWord(bool install);
/// "A file you are installing does not have a valid target folder. ..."; \a folder may be empty.
[[nodiscard]] QString noValidTargetFolder(const QString& folder);
/// How a page tells why it cannot be left.
[[nodiscard]] Prompt addonFileProblem(const QString& text);
} // namespace plantext

/// Something that stands in the way of installing, or that the user should know.
struct PlanProblem
{
    qint32 item = 0; ///< key, or 0 for the add-on as a whole
    QString text;
    bool blocks = false; ///< the installation is refused until it is solved

    /// The text, with the file's name before it where it does not name the file itself.
    [[nodiscard]] QString sentence(const CAddon_ItemGroup& addon) const;
};

/// A scenery library area that the installation adds.
struct SceneryAreaToAdd
{
    QString title;
    QString folder;  ///< full Windows path, ends in "\"
    int group = -1;  ///< index into sceneries
    QString refusal; ///< why the library does not take it; empty when it does
};

/// What the installation does to the scenery library.
struct LibraryChanges
{
    QList<SceneryAreaToAdd> areas;
    ConfigChange change; ///< no lines when nothing changes
    QString problem;     ///< why the library as a whole stays as it is; empty when it does not
};

/// A variation as the plan tells it.
struct PlannedVariant
{
    QString title;
    QString variation;
    QString texture;  ///< suffix in the aircraft's folder
    QString aircraft; ///< folder, empty when it is not known
    QString file;     ///< the aircraft.cfg that gets the section
};

/// What a plan tells beyond its items.
struct PlanFacts
{
    LibraryChanges library;
    QList<AircraftEdit> aircraft; ///< of every aircraft.cfg that the add-on concerns
    QList<PartAlias> aliases;     ///< panels and sounds that are shared
    QList<ConfigChange> traffic;  ///< of the traffic tools' source files
    QList<PlanProblem> problems;

    /// The areas that are added.
    [[nodiscard]] QList<SceneryAreaToAdd> sceneryAreas() const;
    [[nodiscard]] QList<PlannedVariant> variants() const;
    /// The changes of all configuration files.
    [[nodiscard]] QList<ConfigChange> configChanges() const;
    /// The first blocking problem as a failure, or success.
    [[nodiscard]] Result installable(const CAddon_ItemGroup& addon) const;
};

/// A family whose page has to be seen again before anything is installed.
struct FamilyFailure
{
    MappedGroup family = MappedGroup::None;
    QString text; ///< "Correct the problem with the sound configuration and try again."
    QString why;
};

/// "Changing this item's name may cause the addon to function improperly."
[[nodiscard]] Prompt nameChangeWarning();

/// What a page changes about a group; what is not set stays.
struct GroupChange
{
    std::optional<bool> install; ///< every item, or none
    std::optional<InstallationMethod> method;
    QString folder; ///< with the method: the chosen folder, of repaints the aircraft's
    std::optional<bool> sceneryLibraryUpdate;
    std::optional<QString> sceneryTitle;
    std::optional<QList<VariantDetails>> variants;
    /// Of an aircraft whose folder changes: what else its aircraft.cfg is to define goes along.
    bool relatedFollow = true;
};

/// "Apply Change to all Related Aircraft?"
[[nodiscard]] Prompt applyChangeToRelated();

/// How the date of the file at an item's target compares with the item's own.
enum class DateOrder : quint8
{
    Unknown, ///< the item has none
    Same,    ///< as far as archives keep them
    ExistingIsNewer,
    ItemIsNewer,
};

class CAddonInstallationDetails
{
public:
    /// \a context must outlive this.
    explicit CAddonInstallationDetails(Context& context);
    ~CAddonInstallationDetails();
    CAddonInstallationDetails(const CAddonInstallationDetails&) = delete;
    CAddonInstallationDetails& operator=(const CAddonInstallationDetails&) = delete;

    /// Name under which the variations' data file is installed.
    QString sVariantDataFilename = addonvariations::dataFilename();

    /// Lists the source, analyses it and applies the options: the whole proposal. A failure says
    /// why the source cannot be used; problems of single items are in problems().
    [[nodiscard]] Result prepare(const QString& sourcePath, const InstallOptions& options);

    /// As prepare(), for an add-on that is recorded: each file of the source goes where the record
    /// has it, and nothing else is decided anew. missingFiles() tells what the source lacks.
    [[nodiscard]] Result prepareAgain(const RecordedAddon& recorded,
                                      const QString& sourcePath,
                                      const InstallOptions& options);

    /// As prepare(), for what a recorded add-on in the simulator lacks of its source: marked is
    /// what has no record yet, or of it \a onlyFiles (places in the source) when there are some.
    /// What is installed then comes to that record.
    [[nodiscard]] Result prepareRest(const RecordedAddon& recorded,
                                     const QString& sourcePath,
                                     const InstallOptions& options,
                                     const QStringList& onlyFiles = {});

    /// The details as they are now, sharing the source; for going back in the wizard.
    [[nodiscard]] std::unique_ptr<CAddonInstallationDetails> Clone() const;

    // What was found and decided.

    [[nodiscard]] CAddon_ItemGroup& addon() { return *m_addon; }

    [[nodiscard]] const CAddon_ItemGroup& addon() const { return *m_addon; }

    [[nodiscard]] const AddonSource& source() const { return *m_source; }

    [[nodiscard]] const InstallOptions& options() const { return m_options; }

    [[nodiscard]] const std::vector<InstallationGroup>& groups(MappedGroup family) const;
    [[nodiscard]] std::vector<InstallationGroup>& groups(MappedGroup family);

    /// What is installed, read when it is first asked for.
    [[nodiscard]] Catalogue& catalogue() const;
    /// Keeps what was read of it for later runs; only for whoever holds the program folder's lock.
    Result saveCatalogue() const;

    /// Where panels or sounds without an aircraft get a folder of their own.
    [[nodiscard]] QString lonePartFolder(MappedGroup family) const;

    /// Folder below "Addons\" for documents and other files; unique, not made yet.
    [[nodiscard]] const QString& storageFolder() const { return m_storageFolder; }

    /// Problems, areas and configuration changes as things are now; worked out anew at each call.
    [[nodiscard]] PlanFacts facts() const;

    [[nodiscard]] QList<PlanProblem> problems() const { return facts().problems; }

    [[nodiscard]] Result installable() const { return facts().installable(*m_addon); }

    [[nodiscard]] QList<PlannedVariant> variants() const { return facts().variants(); }

    /// Set when the add-on is recorded already.
    [[nodiscard]] const RecordedAddon* recorded() const { return m_recorded.get(); }

    /// prepareRest() made them: a recorded add-on gets what it lacks.
    [[nodiscard]] bool completes() const { return m_completes; }

    /// Row of the file that the completed add-on recorded at the item's target; 0: none.
    [[nodiscard]] qint64 recordedRow(const CAddon_Item& item) const;
    /// Gives each item its recordedRow() as its detailKey.
    void noteRecordedRows();
    /// Whether the completed add-on has the variation of that group in its aircraft.cfg already.
    [[nodiscard]] bool hasVariation(const InstallationGroup& repaint,
                                    const VariantDetails& variant) const;

    /// Recorded and in the simulator: its files are replaced in place.
    [[nodiscard]] bool inPlace() const { return m_recorded && !m_recorded->isStored(); }

    /// The variations that the add-on had when it was installed.
    [[nodiscard]] const QList<addonvariations::Variation>& recordedVariations() const
    {
        return m_recordedVariations;
    }

    [[nodiscard]] const QList<DetailRecord>& missingFiles() const { return m_missingFiles; }

    /// Whether the item's sections come into an aircraft.cfg that stands there and is another's.
    [[nodiscard]] bool mergesInto(const CAddon_Item& item) const;
    /// Whether the item is an aircraft.cfg of this very add-on that is installed again.
    [[nodiscard]] bool replacesOwn(const CAddon_Item& item) const;

    [[nodiscard]] DateOrder compareDates(const CAddon_Item& item, const FileInfo& existing) const;
    /// Whether only more recent files may replace existing ones, and this one is not.
    [[nodiscard]] bool moreRecentIsKept(const CAddon_Item& item, const FileInfo& existing) const;
    /// Whether the replace policy leaves the existing file at this item's target alone. A policy
    /// that asks counts as leave to replace.
    [[nodiscard]] bool existingIsKept(const CAddon_Item& item) const;
    /// Installation folders behind links that lead out of their root (or nowhere) and that are not
    /// to be used, by the answers given so far.
    [[nodiscard]] QSet<QString> closedFolders() const;
    /// Marked, can be extracted, and nothing that is kept stands at its target. Whether a link on
    /// the way there may be used is not asked here.
    [[nodiscard]] bool willBeInstalled(const CAddon_Item& item) const;
    /// willBeInstalled(), and its folder is not one of \a closed, which closedFolders() gave.
    [[nodiscard]] bool willBePlaced(const CAddon_Item& item, const QSet<QString>& closed) const;
    /// Bytes of all items that will be installed.
    [[nodiscard]] qint64 bytesNeeded() const;
    /// Free bytes on the target drive; -1 when it cannot be told.
    [[nodiscard]] qint64 bytesFree() const;

    /// One sentence when the add-on does not fit on the disk, or on one of the disks; else empty.
    [[nodiscard]] QString spaceProblem() const;

    /// Whether the add-on holds files of that kind; categories that no file type sets come from it.
    [[nodiscard]] bool holds(MappedGroup family) const { return !groups(family).empty(); }

    // Analysis, in this order.

    void AddonItemGroup_AnalyzeForWizard();
    void AddonItemGroup_Create();
    void AddonItemGroup_MapItemsToGroups();
    void AddonItemGroup_InstallationGroups_Create();
    /// Textures without aircraft belong to the aircraft of the default group.
    void Texture_ChainDefaultGroupAircraftFolders();
    /// Marks for every item whether its target exists now.
    void AddonItems_UpdateTargetExists();

    // Decisions. The operations of all families share their code; a family's own are named
    // "<prefix>_..." with the prefix of familyRules().

    void Options_UpdateInstallationClass(const InstallOptions& options);
    /// Where add-ons go unless the options say otherwise, by the settings.
    [[nodiscard]] InstallTo Options_AddonInstallationMethod_Default_Get() const;
    /// The method that a family's groups begin with, by the settings.
    [[nodiscard]] InstallationMethod InstallationMethod_Default_Get(MappedGroup family) const;
    [[nodiscard]] InstallationMethod Missions_InstallationMethod_Default_Get() const;

    [[nodiscard]] InstallTo installTo() const
    {
        return m_options.to.value_or(InstallTo::Simulator);
    }

    /// To the simulator or to the File Cabinet, with the items' folders.
    void Options_InstallationDetails_ModifyInstallationMethod(InstallTo to);
    /// All items into the File Cabinet's folder of this add-on, in their source folders.
    void AddonItemGroup_InstallationFolders_ProcessInstallToStorage();
    /// Back to the folders in the simulator that were decided before.
    void AddonItemGroup_InstallationFolders_ProcessInstallToZipFolderEntryFolder();
    /// The folder in the simulator, also while the add-on goes to the File Cabinet.
    [[nodiscard]] QString simulatorFolderOf(const CAddon_Item& item) const;
    /// Back to what the analysis proposed, names, flags and groups.
    void resetDecisions();

    /// Everything that a page decides about a group, at once: what follows from it moves along
    /// (panels, sounds and repaints with their aircraft). A failure says why, and then nothing has
    /// changed.
    Result UpdateInstallationClass(MappedGroup family, int group, const GroupChange& change);
    /// A new method and, where it wants one, a folder (of repaints: the aircraft's).
    Result InstallationDetails_ModifyPerInstallationMethod(MappedGroup family,
                                                           int group,
                                                           InstallationMethod method,
                                                           const QString& folder = {});
    /// A folder of the user's choice; of a repaint: the aircraft, after which the user is asked
    /// whether other repaints without an aircraft belong to it as well. Where the aircraft.cfg that
    /// is concerned defines other aircraft, it is asked first whether they go along (kind Declined
    /// after Cancel).
    Result InstallationDetails_Modify(MappedGroup family, int group, const QString& folder);
    void Scenery_InstallationDetails_ModifyPerSceneryLibraryUpdateSelection(int group,
                                                                            bool update,
                                                                            const QString& title);
    /// Install or do not install every item of a group.
    void InstallationStatus_Modify(MappedGroup family, int group, bool install);
    /// The same for single files.
    void AddonItems_InstallationStatus_Modify(const QList<qint32>& keys, bool install);

    /// Renames on installation; refused for an empty or impossible name and for another type. Asks
    /// where a file's name matters (kind Declined after a No).
    Result AddonItem_Rename(qint32 key, const QString& name);
    /// Asks for the name.
    Result AddonItem_Rename(qint32 key);
    Result AddonItem_InstallationFolder_Set(qint32 key, const QString& folder);
    /// "Same target folder as item": from now on the file goes where \a leader goes.
    Result AddonItem_InstallationFolder_Follow(qint32 key, qint32 leader);
    /// The item's folder, for the clipboard.
    ResultOf<QString> AddonItem_CopyFolderToClipboard(qint32 key);
    Result AddonItem_PasteFolderFromClipboard(const QList<qint32>& keys, const QString& clipboard);

    // Pictures of groups. A success carries the text for the status.

    Result Picture_Clear(MappedGroup family, int group);
    /// \a file: full path.
    Result Picture_SetFromFile(MappedGroup family, int group, const QString& file);
    /// Gives groups without a picture one out of the add-on, as the settings "Auto Assign Pictures
    /// To ..." say: the group's thumbnail, a picture beside its files or, where the add-on is all
    /// about that group, one among its other files. What cannot be decoded is passed over.
    void Pictures_AutoAssign();
    /// \a picture in any form that a picture file may have.
    Result Picture_SetFromClipboard(MappedGroup family, int group, const QByteArray& picture);

    // Checks.

    /// Whether a repaint may bring variations of these names: each of its title for itself alone. A
    /// success may carry a warning. \a problem: index of the one that is refused.
    [[nodiscard]] Result VariantDetails_Validate(int group,
                                                 const QList<VariantDetails>& variants,
                                                 qsizetype* problem = nullptr) const;
    /// Folders of aircraft that repaints may be for, with what they are called: installed ones, and
    /// those of this add-on.
    [[nodiscard]] QList<std::pair<QString, QString>> aircraftToChooseFrom() const;

    /// Whether the folder is that of the outside tool which takes the family's files: Traffic Tools
    /// (TrafficTools) or the airport editor (Afcad).
    [[nodiscard]] Result AI_InstallationChoices_ValidateFolder(MappedGroup family,
                                                               const QString& folder) const;
    [[nodiscard]] static Result ValidateItemName(const QString& name);
    /// Whether another name may keep a file of that type from being found.
    [[nodiscard]] static bool renamingMayHarm(FileType type);
    [[nodiscard]] Result Options_InstallationChoices_Validate() const;
    /// Every marked item of the family has a folder that may be written, and no two the same name.
    [[nodiscard]] Result InstallationFolders_Validate(MappedGroup family) const;
    [[nodiscard]] Result AI_InstallationFolders_Validate() const;
    /// InstallationFolders_Validate(), and what else a family's page wants: the aircraft and
    /// variations of repaints, the titles of scenery areas.
    [[nodiscard]] Result InstallationChoices_Validate(MappedGroup family) const;
    /// The families whose choices keep the add-on from being installed, in the order of their
    /// pages. While it goes to the File Cabinet, its folders in the simulator count.
    [[nodiscard]] QList<FamilyFailure> invalidFamilies() const;
    /// Gives documents whose names clash a folder each, below the add-on's storage.
    void DocumentAndOther_AutomaticallyResolveProblems();
    [[nodiscard]] bool AddonItemGroup_IsAnythingMarkedForInstall() const;

private:
    struct Analysis;
    friend struct Analysis;

    /// What may be done about files with one target without asking.
    struct AutoResolve
    {
        ConflictRules rules;
        bool separateDocuments = true;
        bool rename = false;
    };

    void nameAddon();
    void chooseStorageFolder();
    [[nodiscard]] QString fileIdText() const;
    Result applyOptions();
    Result propose(const QString& sourcePath, const InstallOptions& options);
    Result resolveOptionFolders();
    Result resolveShared(aliastarget::Kind kind, QString& typed) const;
    [[nodiscard]] QString chosenFolder(const QString& typed) const;
    Result applySkips();
    [[nodiscard]] ResultOf<QString> aircraftFolder(const QString& typed) const;
    Result applyTargets();
    Result applyTarget(const TargetChoice& choice);
    void AutoResolveAddonFileProblems_SaveDefaultConfigurationFromRegistry();
    void resolveConflicts();
    [[nodiscard]] QList<int> groupsMeant(MappedGroup family) const;
    Result applyMethods();
    Result applyRenamings();
    void applyDefaultMethods();
    void recordedStorageFolder();
    void readRecordedVariations();
    [[nodiscard]] bool
    isStanding(const QString& file, const QString& title, const QString& texture) const;
    void recordedVariants();
    [[nodiscard]] QString standingAircraft() const;
    [[nodiscard]] bool followRecorded();
    void markRest(const QStringList& onlyFiles);
    void recordedAreas();
    void recordedTraffic();
    void storedAreas();
    void addTargetProblems(QList<PlanProblem>& out) const;
    [[nodiscard]] bool hasGroup(MappedGroup family, int index) const;
    void setFolder(CAddon_Item& item, const QString& folder);
    void unfollow(CAddon_Item& item);
    [[nodiscard]] QString moduleFolder(const CAddon_Item& item, const QString& folder) const;
    [[nodiscard]] QString determinedFolder(MappedGroup family, int index) const;
    [[nodiscard]] QString
    methodFolder(MappedGroup family, int index, InstallationMethod method) const;
    [[nodiscard]] QString derivedFolder(const InstallationGroup& group,
                                        const InstallationGroup& analysed,
                                        const CAddon_Item& item) const;
    void deriveFolders(MappedGroup family, int index);
    [[nodiscard]] bool partIsTaken(int index, const QString& aircraft, const QString& name) const;
    void adaptRepaint(int index);
    void makeDefaultVariant(InstallationGroup& group) const;
    [[nodiscard]] Result checkBaseAircraft(const QString& aircraft) const;
    void followAircraft(int aircraft);
    [[nodiscard]] QList<int> relatedRepaints(MappedGroup family, int group) const;
    [[nodiscard]] Result askRelated(MappedGroup family, int group, GroupChange& change);
    void leaveBehind(int repaint, const QString& aircraft);
    [[nodiscard]] bool isOriginalPanel(const InstallationGroup& group) const;
    Result applyPictures();
    Result
    changeMethod(MappedGroup family, int index, InstallationMethod method, const QString& folder);
    Result changeRelated(MappedGroup family, int index, const GroupChange& change);
    Result changeFolder(MappedGroup family, int index, const QString& folder);
    Result changeAircraft(int index, const QString& aircraftFolder);
    [[nodiscard]] bool usableFolder(const QString& folder) const;
    [[nodiscard]] bool anyMarked(const InstallationGroup& group) const;
    /// The first item in each installation folder that anything is installed into.
    [[nodiscard]] QList<const CAddon_Item*> firstInFolders() const;
    void addLinkProblems(QList<PlanProblem>& out) const;
    [[nodiscard]] QStringList areaFolders(const InstallationGroup& group) const;
    [[nodiscard]] LibraryChanges libraryChanges() const;
    void addSharedProblems(PlanFacts& facts) const;
    void addTextureProblems(QList<PlanProblem>& out) const;
    void addFolderProblems(QList<PlanProblem>& out) const;
    void addClashProblems(QList<PlanProblem>& out) const;
    void addRemark(qint32 item, const QString& text, bool blocks);

    Context& m_context;
    mutable std::shared_ptr<Catalogue> m_catalogue;
    [[nodiscard]] QList<const CAddon_Item*> picturesFor(const InstallationGroup& group) const;

    /// Of the source so far, so that nobody is asked twice.
    [[nodiscard]] QStringList passwords() const;

    std::shared_ptr<AddonSource> m_source;
    std::unique_ptr<CAddon_ItemGroup> m_addon;
    InstallOptions m_options;
    QString m_storageFolder;
    AutoResolve m_resolve;
    std::vector<InstallationGroup> m_groups[mappedGroupCount];
    std::vector<InstallationGroup> m_analysed[mappedGroupCount]; ///< as the analysis made them
    QSet<qint32> m_leftOut;                 ///< items that the analysis does not mark
    QMultiHash<qint32, qint32> m_followers; ///< items by the item whose folder they follow
    QStringList m_simulatorFolders;         ///< by item, while the add-on goes to the cabinet
    std::shared_ptr<const RecordedAddon> m_recorded;
    bool m_completes = false;
    QHash<NoCase, qint64> m_recordedRows; ///< detail keys by path; of an add-on that is completed
    QList<addonvariations::Variation> m_recordedVariations;
    QList<addonvariations::Variation> m_standingVariations; ///< those that are found in the files
    QList<DetailRecord> m_missingFiles;                     ///< recorded ones that the source lacks
    QList<PlanProblem> m_remarks; ///< found by the analysis; checks add theirs when asked
};

} // namespace vt
