// The steps of a removal in their order; what concerns files and folders is in
// CAddonRemover_Files.cpp.
#include "remove/CAddonRemover.h"

#include "addondb/AddonDatabase.h"
#include "addondb/ConfigBases.h"
#include "addondb/JournalTable.h"
#include "addondb/Pictures.h"
#include "catalogue/UsedFiles.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/RunStep.h"
#include "shell/Settings.h"
#include "simconfig/CSceneryCfgMgr.h"

#include <algorithm>
#include <chrono>
#include <numeric>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 libraryLimit = 64LL * 1024 * 1024;
/// A removal of some thousand files is over before; a question in its middle takes longer.
constexpr std::chrono::seconds lookIsGoodFor{1};

QString areaSubject(const SceneryAreaRecord& area)
{
    return u"Scenery library area covering '"_s + area.title;
}

} // namespace

QString removalResultsCaption(const QString& addon)
{
    return u"Removal Results - '"_s + addon + u'\'';
}

Prompt confirmRemovalOfOriginal(const AddonRecord& addon, const QString& simulator)
{
    const QString kind = kindWord(addon.categories, u"simulator"_s);
    QString text = u"'"_s + addon.name + u"' is an original "_s + kind + u" addon. "_s;
    if (addon.categories & Category::Scenery)
        text +=
            u"This original scenery may be vital to the proper operation of "_s + simulator + u'.';
    text += u" Are you sure you want to remove it?"_s;
    return yesNo(
        u"Confirm Removal of Original "_s + kind + u" Addon"_s, text, Button::No, Icon::Warning);
}

CAddonRemover::CAddonRemover(Context& context,
                             Connection& database,
                             qint64 masterKey,
                             const RemovalOptions& options)
    : m_context(context), m_database(database), m_masterKey(masterKey), m_options(options),
      m_results(Results::forRemoval())
{}

CAddonRemover::~CAddonRemover()
{
    if (m_catalogue)
        (void)m_catalogue->save(m_context.services); // the next run reads what changed since
}

void CAddonRemover::status(const QString& text)
{
    m_context.services.status.text(u"Primary"_s, text);
}

bool CAddonRemover::Remove_Begin()
{
    m_context.global.currentProcedure = u"Public Function Remove_Begin"_s;
    const auto step = [this](const QString& name, Result (CAddonRemover::*run)()) {
        return runStep(m_context, name, [&] { return (this->*run)(); });
    };
    using R = CAddonRemover;
    m_failure = Result::success();
    for (const auto& [name, run] : std::initializer_list<std::pair<QString, Result (R::*)()>>{
             {u"Private Function Preliminaries"_s, &R::Preliminaries},
             {u"Private Function AddonDatabase_Open"_s, &R::AddonDatabase_Open},
             {u"Private Function OriginalAddonWarning"_s, &R::OriginalAddonWarning},
             {u"Private Function AddonDetails_Open"_s, &R::AddonDetails_Open}}) {
        m_failure = step(name, run);
        if (!m_failure || m_options.method == RemovalMethod::Copy)
            break;
    }
    // A step that fails tells it in the results, and the next one still runs; but a stop by the
    // user, a disk that fails, or a move that cannot be made safe ends everything while nothing has
    // changed.
    if (m_failure && takesAway()) {
        (void)step(u"Private Sub FlightPlans_Remove"_s, &R::FlightPlans_Remove);
        (void)step(u"Private Sub AircraftVariants_Remove"_s, &R::AircraftVariants_Remove);
    }
    if (m_failure) {
        const Result files = step(u"Private Sub RemoveFiles"_s, &R::RemoveFiles);
        if (m_cancelled || files.kind == ErrorKind::DiskFull || files.kind == ErrorKind::DiskFailed)
            m_failure = files;
    }
    if (m_failure)
        m_failure = step(u"Private Sub Remove_ProcessCabinetZip"_s, &R::Remove_ProcessCabinetZip);
    if (m_failure && m_options.method == RemovalMethod::Copy) {
        tellFiles({});
    } else if (m_failure) {
        if (takesAway()) {
            (void)step(u"Private Sub References_Update"_s, &R::References_Update);
            (void)step(u"Private Sub AirportFiles_Restore"_s, &R::AirportFiles_Restore);
            (void)step(u"Private Sub SceneryLibrary_Update"_s, &R::SceneryLibrary_Update);
        }
        (void)step(u"Private Sub Pictures_Delete"_s, &R::Pictures_Delete);
        (void)step(u"Private Sub AddonMasterTable_Update"_s, &R::AddonMasterTable_Update);
        (void)step(u"Private Sub CustomFolders_Delete"_s, &R::CustomFolders_Delete);
        (void)step(u"Private Sub AddonDescriptionRecord_Delete"_s,
                   &R::AddonDescriptionRecord_Delete);
        (void)step(u"Private Sub AddonMasterRecord_Delete"_s, &R::AddonMasterRecord_Delete);
        (void)step(u"Private Sub AddonCabinetAndCustomFolders_Delete"_s,
                   &R::AddonCabinetAndCustomFolders_Delete);
        m_failure = step(u"Private Sub Changes_Apply"_s, &R::Changes_Apply);
    }
    if (!m_failure)
        discardRecreated();
    Remove_End();
    return m_failure.ok;
}

/// Whether files of the simulator are concerned, and with them its configuration.
bool CAddonRemover::takesAway() const
{
    return !m_inCabinet && m_options.method != RemovalMethod::RemoveRecords &&
           m_options.method != RemovalMethod::Copy;
}

Result CAddonRemover::Preliminaries()
{
    status(u"Preparing to remove..."_s);
    const ResultOf<AddonRecord> record = modDatabase_Addon::addon(m_database, m_masterKey);
    if (!record)
        return Result::failure(u"No add-on with the key "_s + QString::number(m_masterKey) +
                               u" is recorded; 'list' shows those that are."_s);
    m_record = *record;
    m_inCabinet = m_record.status == InstallationStatus::FileCabinet;
    m_context.services.files.newOperation();
    (void)m_log.open(m_context.services.gate, m_context.global.programFolder + u"REMOVE.LOG"_s);
    m_log.line(QString(u"Removing addon '"_s + m_record.name + u"' begin."_s));
    if (Result loaded = loadRecords(); !loaded)
        return loaded;
    if (Result found = findTarget(); !found)
        return found;
    if (!takesAway())
        return Result::success();
    findUsers();
    if (Result checked = Remove_Sound_CheckSoundDependencies(); !checked)
        return checked;
    return Remove_Panel_CheckPanelDependencies();
}

Result CAddonRemover::loadRecords()
{
    const ResultOf<QList<DetailRecord>> details =
        modDatabase_Addon::detailsOf(m_database, m_masterKey);
    const ResultOf<QList<OriginalRecord>> kept =
        modDatabase_Addon::originalsOf(m_database, m_masterKey);
    if (!details || !kept)
        return Result::failure(u"Could not open the addon details table."_s);
    const ResultOf<QHash<qint64, Fingerprint>> checks =
        modDatabase_Addon::checksOf(m_database, *details);
    if (!checks)
        return checks.error();
    const ResultOf<originals::Sharers> sharers = originals::Sharers::load(m_database, *details);
    if (!sharers)
        return sharers.error();
    m_sharers = *sharers;
    m_checks = *checks;
    for (const OriginalRecord& original : *kept)
        m_originals.insert(original.detailKey, original);
    m_details = *details;
    QSet<NoCase> wanted;
    for (const QString& path : std::as_const(m_options.files))
        wanted.insert(NoCase{path});
    m_files.reserve(size_t(m_details.size()));
    for (const DetailRecord& detail : *details) {
        const QString path = detail.location + detail.name;
        if (m_options.files.isEmpty() || wanted.remove(NoCase{path}))
            m_files.push_back({detail, path});
    }
    if (!wanted.isEmpty())
        return Result::failure(u"'"_s + wanted.cbegin()->text + u"' is no file of '"_s +
                               m_record.name + u"'; 'show' lists those that are."_s);
    m_whole = qsizetype(m_files.size()) == m_details.size();
    sortByFolders();
    return Result::success();
}

/// Folder by folder, in the order in which they were first installed to: archives often name a file
/// of one folder after a file of another, and neighbours are done at less cost.
void CAddonRemover::sortByFolders()
{
    std::vector<size_t> folderOf; // by file
    std::vector<size_t> first;    // by folder: how many files lie in it, then where they begin
    folderOf.reserve(m_files.size());
    QHash<QString, size_t> known;
    for (const File& file : m_files) {
        auto folder = known.constFind(file.detail.location);
        if (folder == known.cend()) {
            folder = known.insert(file.detail.location, first.size());
            first.push_back(0);
        }
        ++first[*folder];
        folderOf.push_back(*folder);
    }
    std::exclusive_scan(first.begin(), first.end(), first.begin(), size_t(0));
    std::vector<File> sorted(m_files.size());
    for (size_t i = 0; i < m_files.size(); ++i)
        sorted[first[folderOf[i]]++] = std::move(m_files[i]);
    m_files = std::move(sorted);
}

Result CAddonRemover::AddonDatabase_Open()
{
    if (m_database.readOnly())
        return Result::failure(u"Could not open the addon database."_s, ErrorKind::Surroundings);
    m_journal = std::make_unique<JournalTable>(m_database, m_context.services.gate);
    m_actions = std::make_unique<FileTransaction>(m_context.services.gate, *m_journal);
    m_actions->believeLooks(lookIsGoodFor);
    return Result::success();
}

Result CAddonRemover::OriginalAddonWarning()
{
    status(u"Confirming removal..."_s);
    if (!m_record.original)
        return Result::success();
    const Prompt question = confirmRemovalOfOriginal(m_record, m_context.global.names.simLong);
    if (m_context.services.prompts.ask(question) == Button::Yes)
        return Result::success();
    const QString text = u"'"_s + m_record.name + u"' was not removed."_s;
    m_results.add(resultgroup::notProcessed, text);
    return Result::failure(text, ErrorKind::Declined);
}

Result CAddonRemover::AddonDetails_Open()
{
    m_closing.masterKey = m_masterKey;
    return m_actions->begin(OperationKind::Removal, m_record.name);
}

Result CAddonRemover::SceneryLibrary_Update()
{
    ResultOf<QList<SceneryAreaRecord>> areas =
        modDatabase_Addon::sceneryAreasOf(m_database, m_masterKey);
    if (!areas)
        return areas.error();
    areas->removeIf([this](const SceneryAreaRecord& area) {
        return !m_whole && std::none_of(m_files.cbegin(), m_files.cend(), [&](const File& file) {
            return winpath::isBelow(file.detail.location, area.path);
        });
    });
    if (areas->isEmpty())
        return Result::success();
    status(u"Updating scenery library..."_s);
    Result updated = updateLibrary(*areas);
    if (!updated) {
        for (const SceneryAreaRecord& area : std::as_const(m_areasGoing))
            m_closing.sceneryAreasKept.push_back(area.detailKey);
        tellLibraryFailure(updated.text);
    }
    return updated;
}

Result CAddonRemover::updateLibrary(const QList<SceneryAreaRecord>& areas)
{
    // Until the library was read, nothing is known but that all of them were to go.
    m_areasGoing = areas;
    Services& services = m_context.services;
    const QString file = m_context.global.sceneryCfgFile;
    CSceneryCfgMgr library(ConfigAccess(*m_actions, services.prompts, services.ansi),
                           file,
                           m_context.global.simulatorFolder);
    if (Result loaded = library.SceneryCfg_Load(); !loaded)
        return loaded;
    const ResultOf<QByteArray> before = m_actions->read(file, libraryLimit);
    if (!before)
        return before.error();
    const ResultOf<QList<SceneryAreaRecord>> everyArea =
        modDatabase_Addon::sceneryAreas(m_database);
    m_areasGoing.removeIf(
        [&](const SceneryAreaRecord& area) { return !removeArea(library, area); });
    // An area that stays must not go with the old bytes.
    const bool last = everyArea && everyArea->size() == areas.size() && !m_areaStays;
    if (m_areasGoing.isEmpty())
        return Result::success(); // what was told stands: nothing is to be written
    if (Result saved = library.SceneryCfg_Save(); !saved)
        return saved;
    const ResultOf<configbases::Undone> undone =
        configbases::afterRemoval(m_database,
                                  services.gate,
                                  *m_actions,
                                  m_context.global,
                                  file,
                                  *before,
                                  last,
                                  m_record.status != InstallationStatus::Imported);
    if (!undone)
        return undone.error();
    const ResultOf<Place> place = services.gate.place(file);
    if (undone->record)
        m_closing.configBases.push_back(*undone->record);
    if (undone->forgotten && place)
        m_closing.configBasesGone.push_back(*place);
    if (place)
        m_closing.library = *place;
    for (const SceneryAreaRecord& area : std::as_const(m_areasGoing))
        m_libraryResults.add(resultgroup::specialActions,
                             areaSubject(area),
                             u"' was removed from the scenery library."_s);
    m_libraryResults.add(resultgroup::specialActions, u"Scenery library was updated."_s);
    return Result::success();
}

/// Whether the area goes; one that stays is told, and its record goes all the same.
bool CAddonRemover::removeArea(CSceneryCfgMgr& library, const SceneryAreaRecord& area)
{
    QString stays;
    const bool others = otherSceneryFilesIn(area);
    m_areaStays = m_areaStays || others;
    if (!others && !m_whole)
        m_closing.sceneryAreasGone.push_back(area.detailKey);
    if (others)
        stays =
            u"' was not removed from the scenery library because there are additional scenery files in that folder."_s;
    else if (!library.SceneryCfg_RemoveArea(library.areaForFolder(area.path, area.area)))
        stays = u"' was not removed from the scenery library because the area was not found."_s;
    if (!stays.isEmpty())
        m_results.add(resultgroup::specialActions, areaSubject(area), stays);
    return stays.isEmpty();
}

/// The areas that were to go stay, in the library and in the records, so that the removal can be
/// tried again.
void CAddonRemover::tellLibraryFailure(const QString& why)
{
    m_anyFailed = true;
    m_libraryResults = Results();
    for (const SceneryAreaRecord& area : std::as_const(m_areasGoing))
        m_results.add(resultgroup::failedSpecialActions,
                      areaSubject(area),
                      u"' was not removed from the scenery library."_s);
    m_results.add(resultgroup::failedSpecialActions, u"Scenery library was NOT updated."_s);
    m_results.addCause(m_context.global.sceneryCfgFile, why);
}

bool CAddonRemover::otherSceneryFilesIn(const SceneryAreaRecord& area)
{
    const QString folder = winpath::asFolder(area.path) + u"Scenery\\"_s;
    const QStringList names = m_context.services.files.names(folder);
    if (names.size() == m_actions->removedIn(folder))
        return false; // each of those was seen there
    bool any = false;
    for (const QString& name : names) {
        if (!endsWithNoCase(name, u".bgl") || !m_actions->info(folder + name))
            continue;
        any = true;
        // The area now belongs to the add-on whose scenery it shows, and goes with that one.
        const ResultOf<QList<DetailRecord>> owners =
            modDatabase_Addon::ownersOf(m_database, folder, name);
        if (!owners)
            continue;
        for (const DetailRecord& owner : *owners) {
            if (owner.masterKey == m_masterKey && goesRow(owner.key))
                continue;
            // One of the add-on's own that stays: the area stays with it.
            if (owner.masterKey == m_masterKey && !goesRow(area.detailKey))
                return true;
            SceneryAreaRecord passed = area;
            passed.masterKey = owner.masterKey;
            passed.detailKey = owner.key;
            m_closing.areasPassedOn.push_back(passed);
            return true;
        }
    }
    return any;
}

bool CAddonRemover::goesRow(qint64 detailKey) const
{
    return std::any_of(m_files.cbegin(), m_files.cend(), [detailKey](const File& file) {
        return file.detail.key == detailKey;
    });
}

/// They go with the record; one that stays, in the File Cabinet or because something failed, keeps
/// them. Those of aircraft and panels go with these.
Result CAddonRemover::Pictures_Delete()
{
    for (const File& file : m_files) {
        const QString& path = file.path;
        if (takesAway() && file.outcome == RemovalOutcome::Removed &&
            (equalNoCase(file.detail.name, u"aircraft.cfg") ||
             equalNoCase(file.detail.name, u"panel.cfg")) &&
            !m_actions->info(path))
            m_itemsGone.append(path);
    }
    if (m_closing.toCabinet)
        return Result::success();
    for (const QString& path : std::as_const(m_itemsGone)) {
        if (Result gone = pictures::deleteItemThumbnails(
                *m_actions, m_context.services.files, m_context.global, path);
            !gone)
            return gone;
    }
    if (!m_whole || !m_closing.failed.isEmpty())
        return Result::success();
    return pictures::deleteAddonPictures(
        *m_actions, m_context.services.files, m_context.global, m_masterKey);
}

Result CAddonRemover::AddonMasterTable_Update()
{
    status(u"Updating addon master record..."_s);
    m_closing.dateInstalled = m_record.dateInstalled;
    m_closing.dateUninstalled = m_context.services.clock.now();
    return Result::success();
}

Result CAddonRemover::AddonDescriptionRecord_Delete()
{
    // The rows themselves go at the end, in one commit with the journal: see Closing.
    status(u"Deleting addon description record..."_s);
    return Result::success();
}

Result CAddonRemover::AddonMasterRecord_Delete()
{
    status(u"Deleting addon master record..."_s);
    m_closing.whole = m_whole;
    if (!m_whole) {
        for (const File& file : m_files)
            m_closing.detailKeys.push_back(file.detail.key);
    }
    return Result::success();
}

Result CAddonRemover::Changes_Apply()
{
    status(m_closing.toCabinet ? u"Updating detail record..."_s : u"Removing detail records..."_s);
    const ResultOf<QList<StepFailure>> applied =
        m_actions->apply(packClosing(m_closing), [this] { return recordVariants(); });
    if (!applied)
        return applied.error();
    tellTraffic(*applied);
    tellVariants(*applied);
    tellReferences(*applied);
    tellFiles(*applied);
    if (!m_actions->closingFailure().isEmpty()) {
        m_anyFailed = true;
        m_results.add(resultgroup::failedSpecialActions, m_actions->closingFailure());
    }
    Settings& settings = m_context.settings;
    if (settings.flag(SettingKey::AutoOptimize))
        settings.setNumber(SettingKey::DatabaseHistory,
                           settings.number(SettingKey::DatabaseHistory) + 1);
    return Result::success();
}

void CAddonRemover::Remove_End()
{
    m_context.global.currentProcedure = u"Private Sub Remove_End"_s;
    const Result undone = m_actions ? m_actions->abandon() : Result::success();
    if (!undone) {
        m_failure.text += u' ' + undone.text;
        m_results.add(resultgroup::failedSpecialActions, undone.text);
        m_context.errors.report(u"Private Sub Remove_End"_s, undone.text);
    }
    m_actions.reset();
    if (!m_failure)
        m_log.line(QString(u"   "_s + m_failure.text));
    m_log.line(u"Removing addon ...end.");
    m_log.flush();
    status(u"Removing addon ...end."_s);
}

} // namespace vt
