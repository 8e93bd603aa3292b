// What an installation writes into the scenery library and the records, and the moment in which
// everything takes effect.
#include "addondb/AddonDatabase.h"
#include "addondb/Closing.h"
#include "addondb/ConfigBases.h"
#include "install/CAddonInstaller.h"
#include "platform/WinPath.h"
#include "shell/RunStep.h"
#include "simconfig/CSceneryCfgMgr.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

using namespace modDatabase_Addon;

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

} // namespace

Result CAddonInstaller::AddonMasterTable_UpdateRecord()
{
    QStringList words;
    for (const File& file : m_files) {
        if (file.code == InstallCode::Installed)
            words.push_back(fileTypeName(file.item->enumAddonFileType));
    }
    words.removeDuplicates();
    m_record.categories = categoriesOfFiles(words);
    for (const GroupFlag& flag : groupFlags) {
        if (m_details.holds(flag.group))
            m_record.categories |= flag.category;
    }
    for (const InstallationGroup& group : m_details.groups(MappedGroup::Texture))
        m_record.categories |=
            group.needsAircraft ? Category::Aircraft_Skins_And_Repaints : Category::Textures;
    return Result::success();
}

Result CAddonInstaller::SceneryLibrary_Update()
{
    const QList<SceneryAreaToAdd> wanted = m_details.sceneryAreas();
    if (wanted.isEmpty())
        return Result::success();
    status(u"Updating scenery library..."_s);
    const auto failed = [&](const Result& why) {
        for (const SceneryAreaToAdd& area : wanted)
            m_results.add(resultgroup::failedSpecialActions,
                          u"A new scenery library area was NOT added for '"_s + area.title +
                              u"' (Path '"_s + area.folder + u"') due to an error."_s);
        m_results.add(resultgroup::failedSpecialActions,
                      u"Scenery library was NOT updated due to an error."_s);
        m_areas.clear();
        m_log.line(why.text);
        return why;
    };
    Services& services = m_context.services;
    const QString file = m_context.global.sceneryCfgFile;
    CSceneryCfgMgr library(ConfigAccess(*m_actions, services.prompts, services.ansi),
                           file,
                           m_context.global.simulatorFolder);
    if (Result loaded = library.SceneryCfg_Load(); !loaded)
        return failed(loaded);
    (void)addAreas(library); // each area's failure is told by itself
    if (m_areas.isEmpty())
        return Result::success();
    ResultOf<ConfigBaseRecord> base =
        configbases::beforeEdit(m_database, services.gate, *m_actions, m_context.global, file);
    if (!base)
        return failed(base.error());
    if (Result saved = library.SceneryCfg_Save(); !saved)
        return failed(saved);
    if (Result noted = configbases::afterEdit(*m_actions, file, *base); !noted)
        return failed(noted);
    m_configBases.push_back(*base);
    for (const AddedArea& area : std::as_const(m_areas))
        m_libraryResults.add(resultgroup::specialActions,
                             u"A new scenery library area was added to cover scenery in '"_s +
                                 area.wanted.folder + u'\'');
    m_libraryResults.add(resultgroup::specialActions, u"Scenery library was updated."_s);
    return Result::success();
}

Result CAddonInstaller::addAreas(CSceneryCfgMgr& library)
{
    Result last = Result::success();
    for (const SceneryAreaToAdd& wanted : m_details.sceneryAreas()) {
        const bool holdsFiles =
            std::any_of(m_files.cbegin(), m_files.cend(), [&](const File& file) {
                return file.code == InstallCode::Installed &&
                       file.item->enumAddonFileType == FileType::Scenery &&
                       winpath::isBelow(file.item->sFolder_Installation, wanted.folder);
            });
        if (!holdsFiles)
            continue; // none of its files was installed
        const CSceneryCfgMgr::AddResult added =
            library.SceneryCfg_AddArea(wanted.title, wanted.folder, true);
        if (added.added) {
            m_areas.push_back({wanted, added.area, added.layer});
        } else if (added.code == CSceneryCfgMgr::UserDeclined) {
            m_log.line(u"   The scenery library already covers the folder and was left as it is.");
        } else {
            m_results.add(resultgroup::failedSpecialActions,
                          u"A new scenery library area was NOT added for '"_s + wanted.title +
                              u"' (Path '"_s + wanted.folder + u"') due to an error."_s);
            last = Result::failure(added.text);
        }
    }
    return last;
}

Result CAddonInstaller::Changes_Apply()
{
    const bool any = std::any_of(m_files.cbegin(), m_files.cend(), [](const File& file) {
        return file.code == InstallCode::Installed;
    });
    if (!any) {
        tellFiles();
        return m_cancelled
                   ? Result::failure(u"The installation was ended before anything was installed."_s,
                                     ErrorKind::Declined)
                   : Result::failure(
                         u"Nothing was installed: none of the files could be, or was to be, installed."_s);
    }
    InstallationClosing closing{m_record.key, {}};
    if (!m_configBases.isEmpty())
        closing.library = m_configBases.first().file;
    const ResultOf<QList<StepFailure>> applied =
        m_actions->apply(packClosing(closing), [this] { return recordAddon(); });
    if (!applied)
        return applied.error();
    applyFailures(*applied);
    tellFiles();
    m_results.append(std::move(m_libraryResults));
    if (!m_actions->closingFailure().isEmpty())
        m_results.add(resultgroup::failedSpecialActions, m_actions->closingFailure());
    return Result::success();
}

Result CAddonInstaller::recordAddon()
{
    if (!createAddon(m_database, m_record))
        return Result::failure(u"Could not create a master record for the addon."_s);
    return recordFiles();
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
        if (file.code != InstallCode::Installed)
            continue;
        rowOf[qsizetype(i)] = details.size();
        DetailRecord row;
        row.filename = file.item->sName;
        row.location = file.item->sFolder_Installation;
        row.name = file.item->sName_Installation;
        row.preferredLocation = file.item->sFolder_PreferredInstallation;
        row.preferredName = file.item->sName_PreferredInstallation;
        details.push_back(row);
        checks.push_back(file.after);
    }
    const ResultOf<qint64> first = addDetails(m_database, m_record.key, details, checks);
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
    if (Result added = addOriginals(m_database, originals); !added)
        return added;

    QList<Place> folders;
    for (const QString& folder : m_actions->madeFolders()) {
        if (const ResultOf<Place> place = m_context.services.gate.place(folder))
            folders.push_back(*place);
    }
    if (Result added = addFolders(m_database, folders); !added)
        return added;
    for (const ConfigBaseRecord& base : std::as_const(m_configBases)) {
        if (Result written = setConfigBase(m_database, base); !written)
            return written;
    }
    return recordAreas(details);
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
    return rows.isEmpty() ? Result::success() : addSceneryAreas(m_database, rows);
}

void CAddonInstaller::applyFailures(const QList<StepFailure>& failures)
{
    for (const StepFailure& failure : failures) {
        m_context.errors.report(u"Private Sub Changes_Apply"_s,
                                failure.path + u": "_s + failure.text);
        for (File& file : m_files) {
            if (file.code == InstallCode::Installed &&
                winpath::isBelow(targetOf(*file.item), failure.path))
                file.code = InstallCode::Error;
        }
        if (m_cause.isEmpty())
            m_cause = u"'"_s + failure.path + u"': "_s + failure.text;
        if (winpath::same(failure.path, m_context.global.sceneryCfgFile)) {
            m_libraryResults = Results();
            m_results.add(resultgroup::failedSpecialActions,
                          u"Scenery library was NOT updated due to an error."_s);
        }
    }
}

void CAddonInstaller::tellFiles()
{
    for (const File& file : m_files) {
        const bool installed = file.code == InstallCode::Installed;
        m_failedFiles += file.code == InstallCode::Error || file.code == InstallCode::NotExtracted;
        m_results.add(installed ? resultgroup::installed : resultgroup::notInstalled,
                      targetOf(*file.item),
                      resultPhrase(file.code));
    }
}

} // namespace vt
