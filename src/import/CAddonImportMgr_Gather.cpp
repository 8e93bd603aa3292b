// What an import finds, family by family.
#include "import/CAddonImportMgr.h"
#include "platform/WinPath.h"
#include "simconfig/CMissionMgr.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/StockContent.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

MappedGroup mappedTo(ImportFamily family)
{
    switch (family) {
    case ImportFamily::Aircraft:
        return MappedGroup::Aircraft;
    case ImportFamily::Panels:
        return MappedGroup::Panel;
    case ImportFamily::Sounds:
        return MappedGroup::Sound;
    case ImportFamily::Scenery:
        return MappedGroup::Scenery;
    case ImportFamily::Missions:
        return MappedGroup::Missions;
    }
    Q_UNREACHABLE();
}

/// "Panel imported ..."
QString singularOf(ImportFamily family)
{
    switch (family) {
    case ImportFamily::Aircraft:
        return u"Aircraft"_s;
    case ImportFamily::Panels:
        return u"Panel"_s;
    case ImportFamily::Sounds:
        return u"Sound"_s;
    case ImportFamily::Scenery:
        return u"Scenery"_s;
    case ImportFamily::Missions:
        return u"Mission"_s;
    }
    Q_UNREACHABLE();
}

bool holdsScenery(const CAddon_ItemGroup& addon)
{
    return std::any_of(
        addon.colAddonItems().cbegin(), addon.colAddonItems().cend(), [](const CAddon_Item& item) {
            return item.enumAddonFileType == FileType::Scenery;
        });
}

} // namespace

QString importFamilyWord(ImportFamily family)
{
    switch (family) {
    case ImportFamily::Aircraft:
        return u"aircraft"_s;
    case ImportFamily::Panels:
        return u"panels"_s;
    case ImportFamily::Sounds:
        return u"sounds"_s;
    case ImportFamily::Scenery:
        return u"scenery"_s;
    case ImportFamily::Missions:
        return u"missions"_s;
    }
    Q_UNREACHABLE();
}

Result CAddonImportMgr::Addons_Import_GatherAddons(bool quietly)
{
    m_context.global.currentProcedure = u"Public Function Addons_Import_GatherAddons"_s;
    m_quietly = quietly;
    m_now = m_context.services.clock.now();
    m_groups.clear();
    m_remarks.clear();
    m_context.services.files.newOperation();
    m_files.emplace(m_context.services.files,
                    m_context.global.generation,
                    options.chkIncludeAllFoldersAndFiles);
    if (Result read = m_files->readRecords(m_database); !read)
        return read;
    using I = CAddonImportMgr;
    for (const auto& [wanted, get] : std::initializer_list<std::pair<bool, void (I::*)()>>{
             {options.chkImportAircraft, &I::Addons_Import_GatherAddons_GetAircraft},
             {options.chkImportPanels, &I::Addons_Import_GatherAddons_GetPanels},
             {options.chkImportSounds, &I::Addons_Import_GatherAddons_GetSounds},
             {options.chkImportScenery, &I::Addons_Import_GatherAddons_GetScenery},
             {options.chkImportMissions, &I::Addons_Import_GatherAddons_GetMissions}}) {
        if (m_context.services.status.cancelled()) {
            m_groups.clear();
            return Result::failure(u"The search for add-ons to import was stopped."_s,
                                   ErrorKind::Declined);
        }
        if (wanted)
            (this->*get)();
    }
    return Result::success();
}

void CAddonImportMgr::Addons_Import_GatherAddons_GetAircraft()
{
    status(u"Searching for addons to import (aircraft)..."_s);
    QSet<NoCase> seen;
    for (const ConfigIndex config : m_catalogue.configs(Catalogue::Kind::Aircraft)) {
        ImportGroup group;
        group.family = ImportFamily::Aircraft;
        group.folder = m_catalogue.folder(config);
        const NoCase folder{group.folder};
        if (seen.contains(folder)) // aircraft.cfg beside hidden.cfg
            continue;
        seen.insert(folder);
        const QList<quint32> variations = m_catalogue.variationsOf(config);
        if (variations.isEmpty() || !begin(group, m_catalogue.file(config)))
            continue;
        if (!group.addon.boolOriginal_Addon)
            group.addon.sAuthors = m_catalogue.variation(variations.first()).createdBy.toString();
        m_files->take(group.addon, group.folder, MappedGroup::Aircraft);
        offer(std::move(group), m_catalogue.label(config));
    }
    Addons_Import_GatherAddons_GetAircraft_Array_Sort(m_found);
    familyDone(u"No aircraft to import."_s);
}

void CAddonImportMgr::Addons_Import_GatherAddons_GetAircraft_Array_Sort(
    std::vector<ImportGroup>& found) const
{
    std::stable_sort(found.begin(), found.end(), [](const ImportGroup& a, const ImportGroup& b) {
        const int order = compareNoCase(a.addon.sGroupName, b.addon.sGroupName);
        return (order != 0 ? order : compareNoCase(a.folder, b.folder)) < 0;
    });
}

void CAddonImportMgr::Addons_Import_GatherAddons_GetPanels()
{
    status(u"Searching for addons to import (panels)..."_s);
    getConfigs(
        Catalogue::Kind::Panel, ImportFamily::Panels, options.chkImportPanels_StandaloneOnly);
    familyDone(u"No panels to import."_s);
}

void CAddonImportMgr::Addons_Import_GatherAddons_GetSounds()
{
    status(u"Searching for addons to import (sound packages)..."_s);
    getConfigs(
        Catalogue::Kind::Sound, ImportFamily::Sounds, options.chkImportSounds_StandaloneOnly);
    familyDone(u"No sounds to import."_s);
}

/// A panel or sound inside an aircraft's folder belongs to the aircraft; on its own it is found
/// when the aircraft is recorded without it, or not looked for.
void CAddonImportMgr::getConfigs(Catalogue::Kind kind, ImportFamily family, bool standaloneOnly)
{
    QSet<NoCase> aircraft;
    if (standaloneOnly) {
        for (const ConfigIndex config : m_catalogue.configs(Catalogue::Kind::Aircraft))
            aircraft.insert(NoCase{m_catalogue.folder(config)});
    }
    for (const ConfigIndex config : m_catalogue.configs(kind)) {
        const QString top = m_catalogue.folder(config);
        if (aircraft.contains(NoCase{top}))
            continue;
        ImportGroup group;
        group.family = family;
        group.folder = winpath::parent(m_catalogue.file(config));
        if (!begin(group, m_catalogue.file(config)))
            continue;
        m_files->take(group.addon, group.folder, mappedTo(family));
        // "Lear45 panel", "Lear45 panel.ifr"
        const QString part = winpath::relativeTo(group.folder, top);
        offer(std::move(group),
              winpath::name(top) + u' ' + winpath::withoutTrailing(part).toLower());
    }
}

void CAddonImportMgr::Addons_Import_GatherAddons_GetScenery()
{
    status(u"Searching for addons to import (scenery)..."_s);
    QSet<NoCase> covered;
    getLibraryAreas(covered);
    getOtherScenery(covered);
    familyDone(u"No scenery to import."_s);
}

/// One group for each folder that the scenery library shows. \a covered receives the folders.
void CAddonImportMgr::getLibraryAreas(QSet<NoCase>& covered)
{
    Services& services = m_context.services;
    const GlobalRecord& global = m_context.global;
    CSceneryCfgMgr library(ConfigAccess(services), global.sceneryCfgFile, global.simulatorFolder);
    if (const Result loaded = library.SceneryCfg_Load(); !loaded) {
        m_remarks.append(loaded.text);
        return;
    }
    QList<QString> folders;
    for (const CSceneryCfgItem& area : library.areas()) {
        const QString folder = library.folderOf(area);
        if (folder.isEmpty() || covered.contains(NoCase{folder}) ||
            !services.files.isFolder(folder))
            continue;
        covered.insert(NoCase{folder});
        folders.append(folder);
    }
    for (const QString& folder : std::as_const(folders)) {
        ImportGroup group;
        group.family = ImportFamily::Scenery;
        group.folder = services.files.spelled(folder);
        if (!begin(group, {}))
            continue;
        QSet<NoCase> others = covered;
        others.remove(NoCase{folder});
        const bool shared = winpath::same(folder, global.sceneryAddonFolder);
        if (shared) {
            // What lies beside these two are add-ons of their own.
            for (const QString& part : {u"scenery\\"_s, u"texture\\"_s})
                m_files->take(group.addon, group.folder + part, MappedGroup::Scenery, others);
        } else {
            m_files->take(group.addon, group.folder, MappedGroup::Scenery, others);
        }
        if (!holdsScenery(group.addon))
            continue;
        QString title;
        for (const qsizetype index : library.areasOfFolder(folder)) {
            const CSceneryCfgItem& area = library.areas()[index];
            title = area.sTitle;
            if (shared)
                continue; // the simulator's own, whoever puts files there
            SceneryAreaRecord row;
            row.area = area.intArea;
            row.layer = area.intLayer;
            row.enabled = area.boolActive;
            row.path = group.folder;
            row.title = area.sTitle;
            group.areas.append(row);
        }
        offer(std::move(group), title);
    }
}

/// Folders of scenery that the library does not show.
void CAddonImportMgr::getOtherScenery(const QSet<NoCase>& covered)
{
    const Files& files = m_context.services.files;
    const QString& top = m_context.global.sceneryAddonFolder;
    for (const QString& name : files.names(top)) {
        const QString folder = top + name + u'\\';
        if (equalNoCase(name, u"scenery") || equalNoCase(name, u"texture") ||
            covered.contains(NoCase{folder}) || !files.isFolder(folder))
            continue;
        ImportGroup group;
        group.family = ImportFamily::Scenery;
        group.folder = folder;
        if (!begin(group, {}))
            continue;
        m_files->take(group.addon, folder, MappedGroup::Scenery, covered);
        if (holdsScenery(group.addon))
            offer(std::move(group), name);
    }
}

void CAddonImportMgr::Addons_Import_GatherAddons_GetMissions()
{
    status(u"Searching for addons to import (missions)..."_s);
    const CMissionMgr manager(m_context);
    const CMissionsMetaGroup missions = manager.Missions_Get();
    for (const CMissionGroup& mission : missions.colMissionGroups()) {
        ImportGroup group;
        group.family = ImportFamily::Missions;
        group.folder = mission.sFolder;
        if (!begin(group, mission.sFolder + mission.sFlightFile))
            continue;
        const qint32 key = group.addon.lngKey;
        group.addon = manager.ItemGroup_Get(mission);
        group.addon.lngKey = key;
        m_files->takeOnly(group.addon);
        offer(std::move(group), mission.name());
    }
    familyDone(u"No missions to import."_s);
}

/// False for what is not to be offered: it is recorded (\a keyFile is), or lies where nothing may
/// be changed later.
bool CAddonImportMgr::begin(ImportGroup& group, const QString& keyFile)
{
    if (!m_context.services.gate.place(group.folder)) {
        m_remarks.append(
            u"'"_s + group.folder +
            u"' was left out: it lies outside the simulator's folders, where nothing could be removed later."_s);
        return false;
    }
    CAddon_ItemGroup& addon = group.addon;
    if (!keyFile.isEmpty()) {
        qint64 key = 0;
        const ImportFiles::Owner owner = m_files->ownerOf(keyFile, &key);
        if (owner == ImportFiles::Owner::Installed ||
            (owner == ImportFiles::Owner::Imported &&
             options.chkDoNotImportPreviouslyImportedAddons))
            return false;
        addon.lngKey = qint32(key);
    }
    addon.sSource_Name = CMissionMgr(m_context).ImportNote();
    addon.lngSource_Type = qint32(SourceType::Imported);
    addon.lngInstallation_Status = qint32(InstallationStatus::Imported);
    addon.dteInstalled = m_now;
    addon.boolOriginal_Addon =
        group.family == ImportFamily::Scenery
            ? stockcontent::isStockScenery(m_context.global, group.folder)
            : stockcontent::isOriginal(nullptr, m_context.global, group.folder);
    if (addon.boolOriginal_Addon)
        addon.sAuthors = u"Microsoft"_s;
    return true;
}

void CAddonImportMgr::offer(ImportGroup group, const QString& properName)
{
    if (group.addon.colAddonItems().empty() && group.addon.lngKey == 0)
        return;
    group.addon.sGroupName = nameOf(group.family, properName);
    group.boolProcess = group.addon.lngKey == 0;
    m_found.push_back(std::move(group));
}

QString CAddonImportMgr::nameOf(ImportFamily family, const QString& properName) const
{
    const QString name = properName.trimmed();
    if (options.optGroupNaming == ImportNaming::ProperName && !name.isEmpty())
        return name;
    return singularOf(family) + u" imported "_s + m_now.toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

/// The family's groups join the others, names that repeat themselves numbered.
void CAddonImportMgr::familyDone(const QString& noneFound)
{
    Addons_Import_GatherAddons_GetAircraft_Array_Sort(m_found);
    QHash<NoCase, int> used;
    for (ImportGroup& group : m_found) {
        const int number = ++used[NoCase{group.addon.sGroupName}];
        if (number > 1)
            group.addon.sGroupName += u" ("_s + QString::number(number) + u')';
        m_groups.push_back(std::move(group));
    }
    if (m_found.empty() && !m_quietly)
        (void)m_context.services.prompts.ask(
            announcement(u"Import Error"_s, noneFound, Icon::Information));
    m_found.clear();
}

} // namespace vt
