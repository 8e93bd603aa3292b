// The steps of an installation in their order; what concerns single files is in
// CAddonInstaller_Files.cpp, what concerns records in CAddonInstaller_Records.cpp.
#include "install/CAddonInstaller.h"

#include "addondb/AddonDatabase.h"
#include "addondb/JournalTable.h"
#include "platform/Gate.h"
#include "platform/TempFolder.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/RunStep.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Prompt confirmArchiveOfSource(const QString& archive, const QString& folder)
{
    return yesNo(u"Confirm Archive of Source Zip File"_s,
                 u"Are you sure you want to move "_s + archive + u" to "_s + folder + u'?',
                 Button::Yes);
}

Prompt confirmDeleteOfSource(const QString& source, bool folder)
{
    const QString text = folder ? u"Are you sure you want to delete the addon source files?"_s
                                : QString(u"Are you sure you want to delete "_s + source + u'?');
    return yesNo(u"Confirm Delete Source Files"_s, text, Button::No);
}

Result moveFile(Services& services, const QString& from, const QString& to)
{
    const Result kept = services.actions.keep(from, to);
    return kept ? services.actions.remove(from) : kept;
}

/// Under a name of its own when there is one of that name already. Returns where it lies now.
ResultOf<QString> moveArchive(Services& services, const QString& archive, const QString& folder)
{
    QString target = folder + winpath::name(archive);
    for (int n = 2; services.files.exists(target); ++n)
        target = folder + winpath::baseName(archive) + u' ' + QString::number(n) +
                 winpath::name(archive).sliced(winpath::baseName(archive).size());
    const Result moved = moveFile(services, archive, target);
    return moved ? ResultOf<QString>(target) : ResultOf<QString>(moved);
}

/// Volumes find each other by their names, so when one is taken they all go to a new folder there.
/// Returns where the first one lies now.
ResultOf<QString> moveVolumes(Services& services, const QStringList& volumes, const QString& folder)
{
    const auto taken = [&](const QString& into) {
        return std::any_of(volumes.begin(), volumes.end(), [&](const QString& volume) {
            return services.files.exists(into + winpath::name(volume));
        });
    };
    QString into = folder;
    for (int n = 2; taken(into); ++n)
        into = folder + winpath::baseName(volumes.first()) + u' ' + QString::number(n) + u'\\';
    for (const QString& volume : volumes) {
        if (Result moved = moveFile(services, volume, into + winpath::name(volume)); !moved)
            return moved;
    }
    return into + winpath::name(volumes.first());
}

} // namespace

QString installationResultsCaption(const QString& addon)
{
    return u"Installation Results - '"_s + addon + u'\'';
}

Prompt playMovieQuestion()
{
    return yesNo(u"Play Movie?"_s,
                 u"This addon includes a movie. Would you like to play it now?"_s,
                 Button::No);
}

CAddonInstaller::CAddonInstaller(Context& context,
                                 Connection& database,
                                 CAddonInstallationDetails& details)
    : m_context(context), m_database(database), m_details(details),
      m_results(Results::forInstallation())
{}

CAddonInstaller::~CAddonInstaller() = default;

Result CAddonInstaller::outcome() const
{
    if (!m_failure)
        return m_failure;
    const QString& name = m_record.name;
    if (m_cancelled)
        return Result::failure(u"The installation of '"_s + name + u"' was ended early; "_s +
                                   countText(m_results.count(resultgroup::installed),
                                             u"file is installed and can be removed."_s,
                                             u"files are installed and can be removed."_s),
                               ErrorKind::Declined);
    if (m_failedFiles > 0)
        return Result::failure(countText(m_failedFiles, u"file"_s, u"files"_s) + u" of '"_s + name +
                               u"' could not be installed. "_s + cause());
    const QStringList failed = m_results.texts(resultgroup::failedSpecialActions);
    if (!failed.isEmpty())
        return Result::failure(u"'"_s + name + u"' was installed, but not whole. "_s +
                               failed.first() + (cause().isEmpty() ? QString() : u' ' + cause()));
    return Result::success();
}

void CAddonInstaller::status(const QString& text)
{
    m_context.services.status.text(u"Primary"_s, text);
}

/// The steps of which each must succeed, and what follows them in installing once or again.
bool CAddonInstaller::runSteps(
    const QList<std::pair<QString, Result (CAddonInstaller::*)()>>& steps)
{
    const auto step = [this](const QString& name, Result (CAddonInstaller::*run)()) {
        return runStep(m_context, name, [&] { return (this->*run)(); });
    };
    using I = CAddonInstaller;
    m_failure = Result::success();
    for (const auto& [name, run] : steps) {
        m_failure = step(name, run);
        if (!m_failure)
            break;
    }
    if (m_failure) {
        // A failure of these is told in the results; the files are installed all the same.
        (void)step(u"Private Sub PartAliases_Create"_s, &I::PartAliases_Create);
        (void)step(u"Private Sub FlightPlans_Incorporate"_s, &I::FlightPlans_Incorporate);
        (void)step(u"Private Sub AircraftVariants_Create"_s, &I::AircraftVariants_Create);
        (void)step(u"Private Sub AddonMasterTable_UpdateRecord"_s,
                   &I::AddonMasterTable_UpdateRecord);
        (void)step(u"Private Sub SceneryLibrary_Update"_s, &I::SceneryLibrary_Update);
        m_failure = step(u"Private Sub Changes_Apply"_s, &I::Changes_Apply);
    }
    const bool reached = m_failure.ok;
    if (reached) {
        (void)step(u"Private Sub AirportFiles_Install"_s, &I::AirportFiles_Install);
        (void)step(u"Private Sub Picture_Store"_s, &I::Picture_Store);
        (void)step(u"Private Sub ItemPictures_Store"_s, &I::ItemPictures_Store);
        (void)step(u"Private Sub SourceZipFile_Archive"_s, &I::SourceZipFile_Archive);
        (void)step(u"Private Sub SourceFiles_Delete"_s, &I::SourceFiles_Delete);
    }
    return reached;
}

bool CAddonInstaller::Install_Begin()
{
    m_context.global.currentProcedure = u"Public Function Install_Begin"_s;
    using I = CAddonInstaller;
    using Step = std::pair<QString, Result (I::*)()>;
    const bool reached = runSteps(
        {{u"Private Function Install_Preliminaries"_s, &I::Install_Preliminaries},
         {u"Private Function AddonDatabase_Open"_s, &I::AddonDatabase_Open},
         {u"Private Function AddonMasterTable_OpenTable"_s, &I::AddonMasterTable_OpenTable},
         m_details.completes() ? Step{u"Private Function AddonMasterTable_OpenAddonRecord"_s,
                                      &I::AddonMasterTable_OpenAddonRecord}
                               : Step{u"Private Function AddonMasterTable_CreateAddonRecord"_s,
                                      &I::AddonMasterTable_CreateAddonRecord},
         {u"Private Sub InstallFiles"_s, &I::InstallFiles}});
    Install_End();
    return reached;
}

Result CAddonInstaller::Install_Preliminaries()
{
    m_replaceAll = false;
    m_replaceNone = false;
    m_log.open(m_context.services.gate, m_context.global.programFolder + u"INSTALL.LOG"_s);
    m_log.line(u"Installing addon ...begin.");
    status(u"Installing addon..."_s);
    if (m_details.completes() && toCabinet())
        return Result::failure(
            u"'"_s + m_details.recorded()->record.name +
            u"' is in the simulator, and so is what completes it: choose the simulator, not the File Cabinet."_s);
    if (const QString space = m_details.spaceProblem(); !space.isEmpty())
        return Result::failure(space, ErrorKind::Surroundings);
    PlanFacts facts = m_details.facts();
    if (Result fit = facts.installable(m_details.addon()); !fit)
        return fit;
    const bool anyClosed = !m_details.closedFolders().isEmpty();
    confirmLinks();
    if (anyClosed)
        facts = m_details.facts(); // areas behind links that are open now
    m_wantedAreas = facts.library.areas;
    openSourceFolders();
    return Result::success();
}

/// Where the source is moved or deleted afterwards, because the user chose so.
void CAddonInstaller::openSourceFolders()
{
    const InstallOptions& options = m_details.options();
    if (!options.deleteSource && options.archiveSourceFolder.isEmpty())
        return;
    const QString source = m_details.source().path();
    Gate& gate = m_context.services.gate;
    gate.setRoot(RootId::Chosen, source.endsWith(u'\\') ? source : winpath::parent(source));
    if (!options.archiveSourceFolder.isEmpty())
        gate.setRoot(RootId::Chosen, winpath::asFolder(options.archiveSourceFolder));
}

Result CAddonInstaller::AddonDatabase_Open()
{
    if (m_database.readOnly())
        return Result::failure(u"Could not open the addon database."_s, ErrorKind::Surroundings);
    m_journal = std::make_unique<JournalTable>(m_database, m_context.services.gate);
    return Result::success();
}

Result CAddonInstaller::AddonMasterTable_OpenTable()
{
    const ResultOf<QList<JournalOperation>> unfinished = m_journal->unfinished();
    if (!unfinished)
        return Result::failure(u"Could not open the addon master table."_s,
                               ErrorKind::Surroundings);
    m_actions = std::make_unique<FileTransaction>(m_context.services.gate, *m_journal);
    return Result::success();
}

Result CAddonInstaller::AddonMasterTable_CreateAddonRecord()
{
    const CAddon_ItemGroup& addon = m_details.addon();
    const ResultOf<qint64> key = modDatabase_Addon::newMasterKey(m_database);
    if (!key)
        return Result::failure(u"Could not create a master record for the addon."_s);
    m_record.key = *key;
    m_record.name = addon.sGroupName;
    m_record.description = addon.sGroupDescription;
    m_record.authors = addon.sAuthors;
    m_record.rating = addon.lngRating;
    m_record.status = toCabinet() ? InstallationStatus::FileCabinet : InstallationStatus::Installed;
    m_record.dateInstalled = m_context.services.clock.now();
    m_record.sourceName = addon.sSource_Name;
    m_record.sourceSize = addon.lngSource_Size;
    m_record.sourceType = vt::SourceType(addon.lngSource_Type);
    m_record.sourceTotalFiles = addon.lngSource_Total_Files;
    return m_actions->begin(OperationKind::Installation, m_record.name);
}

/// The record of the add-on that is completed: its key, its history and its source stay.
Result CAddonInstaller::AddonMasterTable_OpenAddonRecord()
{
    const CAddon_ItemGroup& addon = m_details.addon();
    m_record = m_details.recorded()->record;
    m_record.name = addon.sGroupName;
    m_record.description = addon.sGroupDescription;
    m_record.authors = addon.sAuthors;
    m_record.rating = addon.lngRating;
    m_details.noteRecordedRows();
    return m_actions->begin(OperationKind::Installation, m_record.name);
}

Result CAddonInstaller::SourceZipFile_Archive()
{
    const InstallOptions& options = m_details.options();
    const QString archive = m_details.source().path();
    if (options.archiveSourceFolder.isEmpty())
        return Result::success();
    status(u"Archiving source files..."_s);
    Services& services = m_context.services;
    if (options.confirmSourceHandling && services.prompts.ask(confirmArchiveOfSource(
                                             archive, options.archiveSourceFolder)) != Button::Yes)
        return Result::success();
    if (Result made = services.actions.makeFolder(options.archiveSourceFolder); !made) {
        m_results.add(resultgroup::failedSpecialActions,
                      u"Could not create addon zip archive folder."_s);
        m_results.addCause(options.archiveSourceFolder, made.text);
        return made;
    }
    const QString folder = winpath::asFolder(options.archiveSourceFolder);
    const QStringList volumes = m_details.source().sourceFiles();
    const ResultOf<QString> moved = volumes.size() > 1 ? moveVolumes(services, volumes, folder)
                                                       : moveArchive(services, archive, folder);
    if (!moved) {
        m_results.add(resultgroup::failedSpecialActions,
                      u"Could not move addon zip source file."_s);
        m_results.addCause(archive, moved.text);
        return moved.error();
    }
    m_results.add(resultgroup::specialActions, u"Source zip file was archived to "_s + folder);
    m_record.sourceName = *moved; // where a reinstallation finds it
    return modDatabase_Addon::updateAddon(m_database, m_record);
}

Result CAddonInstaller::SourceFiles_Delete()
{
    const InstallOptions& options = m_details.options();
    if (!options.deleteSource)
        return Result::success();
    status(u"Deleting source files..."_s);
    Services& services = m_context.services;
    const QString source = m_details.source().path();
    const bool folder = source.endsWith(u'\\');
    // A source that was not installed whole is the only copy of the rest.
    if (m_results.count(resultgroup::notInstalled) > 0 || m_cancelled) {
        m_results.add(resultgroup::failedSpecialActions,
                      source,
                      u" was NOT deleted because not everything in it was installed."_s);
        return Result::success();
    }
    // A folder that was unpacked in its very place is the add-on now.
    for (const File& file : m_files) {
        if (winpath::isBelow(targetOf(*file.item), source)) {
            m_results.add(resultgroup::specialActions,
                          source,
                          u" was not deleted because the addon was installed there."_s);
            return Result::success();
        }
    }
    if (options.confirmSourceHandling &&
        services.prompts.ask(confirmDeleteOfSource(source, folder)) != Button::Yes)
        return Result::success();
    Result deleted = Result::success();
    if (!folder) {
        for (const QString& file : m_details.source().sourceFiles()) {
            if (Result gone = services.actions.remove(file); !gone)
                deleted = gone;
        }
    } else {
        QSet<QString> folders;
        for (const QString& file : services.files.filesBelow(source)) {
            if (Result gone = services.actions.remove(source + file); !gone)
                deleted = gone;
            for (QString up = winpath::parent(source + file); up.size() >= source.size();
                 up = winpath::parent(up))
                folders.insert(up);
        }
        QStringList deepestFirst(folders.cbegin(), folders.cend());
        std::sort(deepestFirst.begin(), deepestFirst.end(), [](const QString& a, const QString& b) {
            return a.size() > b.size();
        });
        for (const QString& up : std::as_const(deepestFirst))
            (void)services.actions.removeEmptyFolder(up);
    }
    if (!deleted) {
        m_results.addCause(source, deleted.text);
        return deleted;
    }
    m_results.add(resultgroup::specialActions,
                  folder ? u"Source files were deleted."_s : u"Source zip file was deleted."_s);
    return Result::success();
}

void CAddonInstaller::Install_End()
{
    m_context.global.currentProcedure = u"Private Sub Install_End"_s;
    cleanUp();
    m_log.line(u"Installing addon ...end.");
    m_log.flush();
    if (m_failure)
        askForMovie();
}

void CAddonInstaller::cleanUp()
{
    status(u"Cleaning up..."_s);
    const Result undone = m_actions ? m_actions->abandon() : Result::success();
    if (!undone) {
        m_failure.text += u' ' + undone.text;
        m_results.add(resultgroup::failedSpecialActions, undone.text);
        m_context.errors.report(m_context.global.currentProcedure, undone.text);
    }
    m_actions.reset();
    (void)m_details.saveCatalogue(); // the next run then reads what changed since
    const TempFolder temporary(m_context.services.gate, m_context.global.tempFolder);
    for (const QString& folder : {m_context.global.tempInaFolder, m_context.global.tempIfoFolder}) {
        if (m_context.services.files.isFolder(folder))
            (void)temporary.empty(folder); // tried again after the next installation
    }
    if (!m_failure)
        m_log.line(QString(u"   "_s + m_failure.text));
}

void CAddonInstaller::askForMovie()
{
    QString movie;
    for (const File& file : m_files) {
        if (file.code != InstallCode::Installed || file.item->enumAddonFileType != FileType::Movie)
            continue;
        if (!movie.isEmpty())
            return; // several: no question
        movie = targetOf(*file.item);
    }
    if (!movie.isEmpty() && m_context.services.prompts.ask(playMovieQuestion()) == Button::Yes)
        m_movieToPlay = movie;
}

} // namespace vt
