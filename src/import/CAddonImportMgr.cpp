// Recording what was chosen, and the look at the start of the program.
#include "import/CAddonImportMgr.h"

#include "addondb/AddonDatabase.h"
#include "platform/Processes.h"
#include "platform/WinPath.h"
#include "shell/ErrorLog.h"
#include "shell/RunStep.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Category categoryOf(ImportFamily family)
{
    switch (family) {
    case ImportFamily::Aircraft:
        return Category::Aircraft;
    case ImportFamily::Panels:
        return Category::Panels;
    case ImportFamily::Sounds:
        return Category::Sounds;
    case ImportFamily::Scenery:
        return Category::Scenery;
    case ImportFamily::Missions:
        return Category::Missions;
    }
    Q_UNREACHABLE();
}

/// The flags that the files set; bitmaps set that of panels where they are a panel's only.
Categories categoriesOf(const ImportGroup& group)
{
    QStringList words;
    const TypeTally tally = group.addon.tallyTypes();
    for (int code = 1; code <= fileTypeCount; ++code) {
        const bool bitmap = FileType(code) == FileType::BitmapImage;
        if (tally[size_t(code)] > 0 && (!bitmap || group.family == ImportFamily::Panels))
            words.append(fileTypeName(code));
    }
    return categoriesOfFiles(words) | categoryOf(group.family);
}

AddonRecord recordOf(const ImportGroup& group)
{
    const CAddon_ItemGroup& addon = group.addon;
    AddonRecord record;
    record.key = addon.lngKey;
    record.name = addon.sGroupName;
    record.status = InstallationStatus::Imported;
    record.dateInstalled = addon.dteInstalled;
    record.categories = categoriesOf(group);
    record.original = addon.boolOriginal_Addon;
    record.authors = addon.sAuthors;
    record.sourceName = addon.sSource_Name;
    record.sourceSize = addon.lngSource_Size;
    record.sourceType = SourceType::Imported;
    record.sourceTotalFiles = addon.lngSource_Total_Files;
    record.description = addon.sGroupDescription;
    return record;
}

Prompt simulatorActive(const QString& simulator)
{
    return announcement(
        simulator + u" Active"_s,
        simulator +
            u" is active and could be locking files that are about to be imported. Please close "_s +
            simulator + u" before continuing."_s,
        Icon::Warning);
}

} // namespace

Prompt confirmImport(qsizetype count)
{
    return yesNo(u"Confirm Import of "_s + QString::number(count) + u" Addons"_s,
                 u"Are you sure you want to import "_s +
                     (count == 1 ? u"this addon?"_s : u"these addons?"_s),
                 Button::Yes);
}

CAddonImportMgr::CAddonImportMgr(Context& context, const Catalogue& catalogue, Connection* database)
    : options(ImportOptions_Load(context.settings)), m_context(context), m_catalogue(catalogue),
      m_database(database)
{}

void CAddonImportMgr::status(const QString& text)
{
    m_context.services.status.text(u"Primary"_s, text);
}

bool CAddonImportMgr::Addons_ImportAtStartup()
{
    if (!m_context.settings.flag(SettingKey::SearchForNewAddonsDuringStartup))
        return false;
    options = ImportOptions_Load(m_context.settings);
    options.chkDoNotImportPreviouslyImportedAddons = true;
    const Result gathered = runStep(m_context, u"Private Sub Addons_ImportAtStartup"_s, [this] {
        return Addons_Import_GatherAddons(true);
    });
    return gathered.ok && !m_groups.empty();
}

Result CAddonImportMgr::Addon_Install_ImportGroups(const Processes& processes)
{
    m_context.global.currentProcedure = u"Public Function Addon_Install_ImportGroups"_s;
    m_results = Results({importgroup::imported.toString(), importgroup::notImported.toString()});
    std::vector<ImportGroup*> chosen;
    for (ImportGroup& group : m_groups) {
        group.imported = false;
        group.cause.clear();
        if (group.boolProcess)
            chosen.push_back(&group);
    }
    if (chosen.empty())
        return Result::failure(u"No groups to import."_s);
    if (!m_database || m_database->readOnly())
        return Result::failure(u"Could not open the addon database."_s, ErrorKind::Surroundings);
    Services& services = m_context.services;
    if (processes.isRunning(m_context.global.simulatorExecutable))
        (void)services.prompts.ask(simulatorActive(m_context.global.names.simLong));
    if (services.prompts.ask(confirmImport(qsizetype(chosen.size()))) != Button::Yes)
        return Result::failure(u"Nothing was imported."_s, ErrorKind::Declined);

    services.files.newOperation();
    (void)m_log.open(services.gate, m_context.global.programFile(u"IMPORT.LOG"_s));
    m_log.line(u"Begin logging.");
    const Result committed = m_database->together([&] {
        qsizetype number = 0;
        for (ImportGroup* group : chosen) {
            services.status.progress(number, qint64(chosen.size()));
            if (services.status.cancelled())
                break;
            status(u"Importing "_s + group->addon.sGroupName + u" ("_s + QString::number(++number) +
                   u" of "_s + QString::number(chosen.size()) + u")..."_s);
            const Result done =
                runStep(m_context, u"Private Function Addon_Install_ImportGroup"_s, [&] {
                    return m_database->attempt([&] { return importGroup(*group); });
                });
            group->imported = done.ok;
            group->cause = done.text;
        }
        return Result::success();
    });
    qsizetype count = 0;
    for (ImportGroup* group : chosen) {
        group->imported = group->imported && committed.ok;
        count += group->imported ? 1 : 0;
        const QString text = group->addon.sGroupName +
                             (group->imported ? u" was imported."_s
                                              : u" was NOT properly imported due to an error."_s);
        m_log.line(text);
        if (!group->cause.isEmpty())
            m_log.line(QString(u"   "_s + group->cause));
        m_results.add(group->imported ? importgroup::imported : importgroup::notImported, text);
    }
    m_log.line(u"Finished importing addons.");
    m_log.line(u"End logging.");
    m_log.flush();
    services.status.progress(qint64(chosen.size()), qint64(chosen.size()));
    status(QString::number(count) + u" addon"_s + (count > 1 ? u"s"_s : QString()) +
           u" imported."_s);
    return committed;
}

Result CAddonImportMgr::importGroup(ImportGroup& group)
{
    AddonRecord record = recordOf(group);
    const bool known = record.key != 0;
    if (!known) {
        if (Result created = modDatabase_Addon::createAddon(*m_database, record); !created)
            return created;
        const QString note = u"Addon imported "_s + record.dateInstalled.toString(u"yyyy-MM-dd"_s);
        if (Result noted = modDatabase_Addon::setHistoryDescription(
                *m_database, record.key, record.dateInstalled, note);
            !noted)
            return noted;
    }
    if (Result files = recordFiles(group, record); !files)
        return files;
    if (Result folders = recordFolders(group); !folders)
        return folders;
    group.addon.lngKey = qint32(record.key);
    return Result::success();
}

Result CAddonImportMgr::recordFiles(ImportGroup& group, const AddonRecord& record)
{
    QList<DetailRecord> details;
    QList<Fingerprint> checks;
    for (const CAddon_Item& item : group.addon.colAddonItems()) {
        if (!item.boolProcess)
            continue;
        const QString path = item.sFolder_Installation + item.sName_Installation;
        m_log.line(QString(44, u'-'));
        m_log.line(QString(u"Processing file '"_s + item.sName + u"'..."_s));
        const std::optional<FileInfo> now = m_context.services.files.entry(path);
        if (!now || now->folder) {
            m_log.line(u"   It is no longer there.");
        } else {
            DetailRecord row;
            row.filename = item.sName;
            row.location = row.preferredLocation = item.sFolder_Installation;
            row.name = row.preferredName = item.sName_Installation;
            details.append(row);
            // Reading every byte would take minutes. A file that add-ons wrote into goes back to
            // older bytes with them: nothing is known of it.
            const ResultOf<Place> place = m_context.services.gate.place(path);
            const bool edited = isSimulatorConfiguration(item.enumAddonFileType) && place &&
                                modDatabase_Addon::configBase(*m_database, *place);
            checks.append(edited ? Fingerprint() : printOf(now));
        }
        m_log.line(QString(136, u'-'));
    }
    if (details.isEmpty() && group.addon.colAddonItems().empty())
        return Result::success(); // imported before, and nothing came since
    if (details.isEmpty())
        return Result::failure(u"None of the files of '"_s + record.name +
                               u"' is still there; look for add-ons again."_s);
    const ResultOf<qint64> first =
        modDatabase_Addon::addDetails(*m_database, record.key, details, checks);
    if (!first)
        return first.error();
    for (SceneryAreaRecord& area : group.areas) {
        area.masterKey = record.key;
        area.detailKey = *first;
    }
    return modDatabase_Addon::addSceneryAreas(*m_database, group.areas);
}

/// The folders that hold the add-on's files, up to its own: they go with it once they are empty.
Result CAddonImportMgr::recordFolders(const ImportGroup& group)
{
    const bool shared = winpath::same(group.folder, m_context.global.sceneryAddonFolder);
    QSet<NoCase> seen;
    QList<Place> folders;
    for (const CAddon_Item& item : group.addon.colAddonItems()) {
        for (QString up = item.sFolder_Installation;
             winpath::isBelow(up, group.folder) && !seen.contains(NoCase{up});
             up = winpath::parent(up)) {
            seen.insert(NoCase{up});
            if (shared)
                break; // the simulator's own folders
            if (const ResultOf<Place> place = m_context.services.gate.place(up))
                folders.append(*place);
        }
    }
    return modDatabase_Addon::addFolders(*m_database, folders);
}

} // namespace vt
