// What an installation writes into the scenery library and the records, and the moment in which
// everything takes effect.
#include "addondb/AddonDatabase.h"
#include "addondb/Closing.h"
#include "addondb/ConfigBases.h"
#include "addondb/SceneryNames.h"
#include "install/CAddonInstaller.h"
#include "platform/PathIndex.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/OuterLinks.h"
#include "shell/RunStep.h"
#include "simconfig/CSceneryCfgMgr.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct GroupFlag
{
    MappedGroup group;
    Category category;
};

/// Categories that no file type sets.
constexpr GroupFlag groupFlags[] = {
    {MappedGroup::Missions, Category::Missions},
    {MappedGroup::TrafficTools, Category::AI_Flight_Plans},
    {MappedGroup::Afcad, Category::Airport_Facilities_Data},
};

/// The file category of an item: the name of its type. Bitmaps would set the panel flag, but most
/// belong to sceneries, repaints and effects: only those of panels do.
QString fileCategoryOf(const CAddon_Item& item)
{
    if (item.enumAddonFileType == FileType::BitmapImage && !item.IsMappedToPanel())
        return {};
    return fileTypeName(item.enumAddonFileType);
}

QString areaNotAdded(const SceneryAreaToAdd& area)
{
    return u"A new scenery library area was NOT added for '"_s + area.title + u"' (Path '"_s +
           area.folder + u"') due to an error."_s;
}

} // namespace

Result CAddonInstaller::AddonMasterTable_UpdateRecord()
{
    QStringList words;
    for (const File& file : m_files) {
        if (file.code == InstallCode::Installed)
            words.push_back(fileCategoryOf(*file.item));
    }
    words.removeDuplicates();
    // What an add-on was recorded as it stays, though its groups are not made anew.
    if (!m_details.recorded())
        m_record.categories = {};
    m_record.categories |= categoriesOfFiles(words);
    for (const File& file : m_files) {
        if (file.code == InstallCode::Installed)
            m_record.categories |= categoriesOfSceneryName(file.item->sName);
    }
    for (const GroupFlag& flag : groupFlags) {
        if (m_details.holds(flag.group))
            m_record.categories |= flag.category;
    }
    for (const InstallationGroup& group : m_details.groups(MappedGroup::Texture))
        m_record.categories |=
            group.asRepaint() ? Category::Aircraft_Skins_And_Repaints : Category::Textures;
    return Result::success();
}

bool CAddonInstaller::anySceneryIn(const QString& folder) const
{
    return std::any_of(m_files.cbegin(), m_files.cend(), [&](const File& file) {
        return file.code == InstallCode::Installed &&
               file.item->enumAddonFileType == FileType::Scenery &&
               winpath::isBelow(file.item->sFolder_Installation, folder);
    });
}

Result CAddonInstaller::SceneryLibrary_Update()
{
    if (!m_details.inPlace() ||
        m_details.completes()) // what is recorded was wanted, whether its files were touched or not
        m_wantedAreas.removeIf(
            [this](const SceneryAreaToAdd& area) { return !anySceneryIn(area.folder); });
    if (m_wantedAreas.isEmpty())
        return Result::success();
    status(u"Updating scenery library..."_s);
    Result updated = updateLibrary();
    if (!updated)
        tellLibraryFailure(updated.text);
    return updated;
}

/// Each area is told once: those that fail alone leave m_wantedAreas at once.
Result CAddonInstaller::updateLibrary()
{
    Services& services = m_context.services;
    const QString file = m_context.global.sceneryCfgFile;
    CSceneryCfgMgr library(ConfigAccess(*m_actions, services.prompts, services.ansi),
                           file,
                           m_context.global.simulatorFolder);
    if (Result loaded = library.SceneryCfg_Load(); !loaded)
        return loaded;
    m_wantedAreas.removeIf([&](const SceneryAreaToAdd& wanted) {
        const CSceneryCfgMgr::AddResult added =
            library.SceneryCfg_AddArea(wanted.title, wanted.folder, true);
        if (added.added) {
            m_areas.push_back({wanted, added.area, added.layer});
            return false;
        }
        if (added.code == CSceneryCfgMgr::UserDeclined) {
            m_log.line(u"   The scenery library already covers the folder and was left as it is.");
            return true;
        }
        m_results.add(resultgroup::failedSpecialActions, areaNotAdded(wanted));
        m_results.addCause(wanted.folder, added.text);
        if (m_libraryCause.isEmpty())
            m_libraryCause = added.text;
        return true;
    });
    if (m_areas.isEmpty())
        return Result::success();
    ResultOf<ConfigBaseRecord> base =
        configbases::beforeEdit(m_database, services.gate, *m_actions, m_context.global, file);
    if (!base)
        return base.error();
    if (Result saved = library.SceneryCfg_Save(); !saved)
        return saved;
    m_closing.configBasesBefore.push_back(*base);
    if (Result noted = configbases::afterEdit(*m_actions, file, *base); !noted)
        return noted;
    m_configBases.push_back(*base);
    for (const AddedArea& area : std::as_const(m_areas))
        m_libraryResults.add(resultgroup::specialActions,
                             u"A new scenery library area was added to cover scenery in '"_s +
                                 area.wanted.folder + u'\'');
    m_libraryResults.add(resultgroup::specialActions, u"Scenery library was updated."_s);
    return Result::success();
}

void CAddonInstaller::tellLibraryFailure(const QString& why)
{
    m_libraryResults = Results();
    m_areas.clear();
    for (const SceneryAreaToAdd& area : std::as_const(m_wantedAreas))
        m_results.add(resultgroup::failedSpecialActions, areaNotAdded(area));
    m_results.add(resultgroup::failedSpecialActions,
                  u"Scenery library was NOT updated due to an error."_s);
    m_libraryCause = textAbout(m_context.global.sceneryCfgFile, why);
    m_results.addCause(m_context.global.sceneryCfgFile, why);
    m_log.line(why);
}

Result CAddonInstaller::nothingInstalled() const
{
    if (m_cancelled)
        return Result::failure(u"The installation was ended before anything was installed."_s,
                               ErrorKind::Declined);
    QString text = u"Nothing was installed: none of the files of '"_s + m_details.source().path() +
                   u"' could be, or was to be, installed."_s;
    if (!m_closedLinks.isEmpty())
        return Result::failure(text + u' ' + outerlinks::closedText(m_closedLinks.first()),
                               ErrorKind::Declined);
    if (const QString why = cause(); !why.isEmpty())
        text += u' ' + why;
    return Result::failure(text);
}

Result CAddonInstaller::Changes_Apply()
{
    const bool any = std::any_of(m_files.cbegin(), m_files.cend(), [](const File& file) {
        return file.code == InstallCode::Installed;
    });
    if (!any && (!m_details.inPlace() || m_details.completes())) {
        tellFiles();
        return nothingInstalled();
    }
    // Rows of files that fail in place stay: what they recorded is still there.
    m_closing.masterKey = m_details.inPlace() ? 0 : m_record.key;
    if (m_details.inPlace())
        noteChecksBefore();
    if (const auto library = m_context.services.gate.place(m_context.global.sceneryCfgFile);
        library && !m_areas.isEmpty())
        m_closing.library = *library;
    const ResultOf<QList<StepFailure>> applied =
        m_actions->apply(packClosing(m_closing), [this] { return recordAddon(); });
    if (!applied)
        return applied.error();
    if (toCabinet() && !applied->isEmpty())
        return forgetStored(applied->first().text);
    applyFailures(*applied);
    if (m_details.inPlace())
        forgetFailed();
    if (m_actions->closingFailure().isEmpty()) {
        dropNeedlessOriginals();
        dropNeedlessBases(*applied);
    }
    tellFiles();
    if (toCabinet())
        m_results.add(resultgroup::specialActions,
                      u"The addon is kept in the File Cabinet as '"_s + m_archive + u"'."_s);
    tellAliases();
    tellVariants();
    tellTraffic(*applied);
    m_results.append(std::move(m_libraryResults));
    if (!m_actions->closingFailure().isEmpty())
        m_results.add(resultgroup::failedSpecialActions, m_actions->closingFailure());
    return Result::success();
}

Result CAddonInstaller::recordAddon()
{
    if (m_details.recorded())
        return recordAgain();
    if (!modDatabase_Addon::createAddon(m_database, m_record))
        return Result::failure(u"Could not create a master record for the addon."_s);
    if (Result recorded = recordFiles(); !recorded)
        return recorded;
    return recordAircraft();
}

Result CAddonInstaller::recordFiles()
{
    QList<DetailRecord> details;
    QList<Fingerprint> checks;
    QList<qint64> rowOf(qsizetype(m_files.size()), -1);
    details.reserve(qsizetype(m_files.size()));
    checks.reserve(qsizetype(m_files.size()));
    for (size_t i = 0; i < m_files.size(); ++i) {
        const File& file = m_files[i];
        if (file.code != InstallCode::Installed || replacesOwn(*file.item))
            continue;
        rowOf[qsizetype(i)] = details.size();
        DetailRecord row;
        row.filename = file.item->sName;
        row.location = m_details.simulatorFolderOf(*file.item);
        row.name = file.item->sName_Installation;
        row.preferredLocation = file.item->sFolder_PreferredInstallation;
        row.preferredName = file.item->sName_PreferredInstallation;
        details.push_back(row);
        checks.push_back(file.after);
    }
    for (const StagedAlias& staged : std::as_const(m_aliases)) {
        if (!staged.alias.problem.isEmpty())
            continue;
        DetailRecord row;
        row.filename = row.name = row.preferredName = winpath::name(staged.alias.file);
        row.location = row.preferredLocation = winpath::parent(staged.alias.file);
        details.push_back(row);
        checks.push_back(staged.check);
    }
    if (m_variantData && !m_details.inPlace()) {
        details.push_back(variantDataRow());
        checks.push_back(*m_variantData);
    }
    const ResultOf<qint64> first =
        details.isEmpty()
            ? ResultOf<qint64>(0)
            : modDatabase_Addon::addDetails(m_database, m_record.key, details, checks);
    if (!first)
        return first.error();

    QList<OriginalRecord> originals;
    for (OriginalRecord original : std::as_const(m_originals)) {
        const qint64 row = rowOf[original.detailKey];
        if (row < 0)
            continue; // its file was not installed after all
        original.detailKey = *first + row;
        originals.push_back(original);
    }
    if (Result added = modDatabase_Addon::addOriginals(m_database, originals); !added)
        return added;

    if (Result recorded = recordMadeFolders(); !recorded)
        return recorded;
    if (toCabinet())
        return recordStoredAreas(details);
    return m_details.recorded() ? recordAreasAgain(details) : recordAreas(details);
}

DetailRecord CAddonInstaller::variantDataRow() const
{
    DetailRecord row;
    row.filename = row.name = row.preferredName = m_details.sVariantDataFilename;
    row.location = row.preferredLocation = m_details.storageFolder();
    return row;
}

/// Folders that came to be, and what is known of edited configuration files.
Result CAddonInstaller::recordMadeFolders()
{
    QList<Place> folders;
    for (const QString& folder : m_actions->madeFolders()) {
        if (const ResultOf<Place> place = m_context.services.gate.place(folder))
            folders.push_back(*place);
    }
    if (Result added = modDatabase_Addon::addFolders(m_database, folders); !added)
        return added;
    for (const ConfigBaseRecord& base : std::as_const(m_configBases)) {
        if (Result written = modDatabase_Addon::setConfigBase(m_database, base); !written)
            return written;
    }
    return Result::success();
}

Result CAddonInstaller::recordAreas(const QList<DetailRecord>& details)
{
    QList<SceneryAreaRecord> rows;
    for (const AddedArea& area : std::as_const(m_areas)) {
        SceneryAreaRecord row;
        row.masterKey = m_record.key;
        row.area = area.area;
        row.layer = area.layer;
        row.path = area.wanted.folder;
        row.title = area.wanted.title;
        for (const DetailRecord& detail : details) {
            if (winpath::isBelow(detail.location, area.wanted.folder)) {
                row.detailKey = detail.key;
                break;
            }
        }
        rows.push_back(row);
    }
    return rows.isEmpty() ? Result::success()
                          : modDatabase_Addon::addSceneryAreas(m_database, rows);
}

/// Of an add-on that goes to the File Cabinet: the areas that it is to get when it comes out.
Result CAddonInstaller::recordStoredAreas(const QList<DetailRecord>& details)
{
    const auto there = m_details.Clone();
    there->Options_InstallationDetails_ModifyInstallationMethod(InstallTo::Simulator);
    const QList<SceneryAreaToAdd> areas = there->facts().library.areas;
    QList<SceneryAreaRecord> rows;
    for (const SceneryAreaToAdd& area : areas) {
        SceneryAreaRecord row;
        row.masterKey = m_record.key;
        row.path = area.folder;
        row.title = area.title;
        const auto inside = [&](const DetailRecord& detail) {
            return winpath::isBelow(detail.location, row.path);
        };
        const auto first = std::find_if(details.cbegin(), details.cend(), inside);
        if (first == details.cend())
            continue;
        row.detailKey = first->key;
        rows.push_back(row);
    }
    return rows.isEmpty() ? Result::success()
                          : modDatabase_Addon::addSceneryAreas(m_database, rows);
}

void CAddonInstaller::applyFailures(const QList<StepFailure>& failures)
{
    if (failures.isEmpty())
        return;
    PathIndex failed;
    for (const StepFailure& failure : failures) {
        const QString why = textAbout(failure.path, failure.text);
        m_context.errors.report(u"Private Sub Changes_Apply"_s, why);
        failed.insert(failure.path, why);
        if (winpath::same(failure.path, m_context.global.sceneryCfgFile))
            tellLibraryFailure(failure.text);
    }
    for (AircraftEdit& edit : m_aircraftEdits) {
        if (const QString* why = failed.find(edit.file))
            edit.problem = *why;
    }
    for (StagedAlias& staged : m_aliases) {
        if (const QString* why = failed.find(staged.alias.file))
            staged.alias.problem = *why;
    }
    for (File& file : m_files) {
        if (file.code != InstallCode::Installed)
            continue;
        if (const QString* why = failed.find(targetOf(*file.item))) {
            file.code = InstallCode::Error;
            file.cause = *why;
        }
    }
}

/// What was kept of files that were not replaced after all; the records know nothing of it.
void CAddonInstaller::dropNeedlessOriginals()
{
    for (const OriginalRecord& original : std::as_const(m_originals)) {
        if (m_files[size_t(original.detailKey)].code == InstallCode::Installed)
            continue;
        const QString kept = m_context.global.originalsFolder + original.keptFile;
        if (Result gone = m_context.services.actions.remove(kept); !gone)
            m_results.add(resultgroup::failedSpecialActions, gone.text);
    }
}

/// What was kept of configuration files that were not edited after all.
void CAddonInstaller::dropNeedlessBases(const QList<StepFailure>& failures)
{
    FileActions& actions = m_context.services.actions;
    for (const ConfigBaseRecord& before : std::as_const(m_closing.configBasesBefore)) {
        const QString file = m_context.services.gate.path(before.file);
        const bool failed = std::any_of(failures.cbegin(), failures.cend(), [&](const auto& one) {
            return winpath::same(one.path, file);
        });
        if (!failed || before.edits > 0 || before.keptFile.isEmpty())
            continue;
        const QString kept = m_context.global.originalsFolder + before.keptFile;
        Result gone = actions.remove(kept);
        if (gone)
            gone = actions.removeEmptyFolder(winpath::parent(kept));
        if (!gone)
            m_results.add(resultgroup::failedSpecialActions, gone.text);
    }
}

QString CAddonInstaller::cause() const
{
    const auto first = std::find_if(
        m_files.cbegin(), m_files.cend(), [](const File& file) { return !file.cause.isEmpty(); });
    if (first != m_files.cend())
        return first->cause;
    const auto edit =
        std::find_if(m_aircraftEdits.cbegin(), m_aircraftEdits.cend(), [](const AircraftEdit& one) {
            return !one.added.isEmpty() && !one.problem.isEmpty();
        });
    return edit == m_aircraftEdits.cend() ? m_libraryCause : edit->problem;
}

QStringList CAddonInstaller::notInstalled() const
{
    QSet<const CAddon_Item*> installed; // after a cancellation the others are not in m_files
    for (const File& file : m_files) {
        if (file.code == InstallCode::Installed)
            installed.insert(file.item);
    }
    QStringList places;
    const QSet<QString> closed = m_details.closedFolders();
    for (const CAddon_Item& item : m_details.addon().colAddonItems()) {
        if (!installed.contains(&item) && m_details.willBePlaced(item, closed))
            places.append(item.sFolder_Current + item.sName);
    }
    return places;
}

void CAddonInstaller::tellFiles()
{
    const bool again = isAgain();
    for (const File& file : m_files) {
        const bool installed = file.code == InstallCode::Installed;
        const QString target = targetOf(*file.item);
        m_failedFiles += file.code == InstallCode::Error || file.code == InstallCode::NotExtracted;
        m_results.add(installed ? resultgroup::installed : resultgroup::notInstalled,
                      target,
                      resultPhrase(file.code, again));
        if (!file.cause.isEmpty())
            m_results.addCause(target, file.cause);
    }
    if (again)
        tellMissing();
}

} // namespace vt
