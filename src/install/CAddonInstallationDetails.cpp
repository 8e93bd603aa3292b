// Preparing: source, name, analysis, options. Decisions are in _Modify, checks in _Validate.
#include "install/CAddonInstallationDetails.h"

#include "install/Analysis.h"
#include "install/CDriveFreeSpace.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "simconfig/CSceneryCfgMgr.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 descriptionLimit = 64 << 10;
/// Archives keep times to two seconds.
constexpr qint64 sameTimeNs = 2'000'000'000;

} // namespace

namespace plantext {

QString notSelected()
{
    return u"*** Not Selected ***"_s;
}

QString sameFolderAsItem()
{
    return u"Same target folder as item"_s;
}

QString doNotInstall()
{
    return u"Do not install"_s;
}

} // namespace plantext

CAddonInstallationDetails::CAddonInstallationDetails(Context& context)
    : m_context(context), m_addon(std::make_unique<CAddon_ItemGroup>())
{}

CAddonInstallationDetails::~CAddonInstallationDetails() = default;

Result CAddonInstallationDetails::prepare(const QString& sourcePath, const InstallOptions& options)
{
    m_context.services.status.text(u"Primary"_s, u"Analyzing addon..."_s);
    m_context.services.files.newOperation();
    m_options = options;
    if (Result resolved = resolveOptionFolders(); !resolved)
        return resolved;
    auto source = AddonSource::open(m_context.services, sourcePath);
    if (!source)
        return source.error();
    m_source = std::move(*source);
    if (m_source->files() == 0) {
        return Result::failure(u"The add-on '"_s + m_source->path() +
                                   u"' holds no files, so there is nothing to install."_s,
                               ErrorKind::Surroundings);
    }
    AddonItemGroup_AnalyzeForWizard();
    applyOptions();
    return Result::success();
}

std::unique_ptr<CAddonInstallationDetails> CAddonInstallationDetails::Clone() const
{
    auto copy = std::make_unique<CAddonInstallationDetails>(m_context);
    copy->sVariantDataFilename = sVariantDataFilename;
    copy->m_source = m_source;
    copy->m_addon = m_addon->Clone();
    copy->m_options = m_options;
    copy->m_storageFolder = m_storageFolder;
    copy->m_remarks = m_remarks;
    std::copy(std::begin(m_groups), std::end(m_groups), std::begin(copy->m_groups));
    return copy;
}

const std::vector<InstallationGroup>& CAddonInstallationDetails::groups(MappedGroup family) const
{
    return m_groups[size_t(family)];
}

std::vector<InstallationGroup>& CAddonInstallationDetails::groups(MappedGroup family)
{
    return m_groups[size_t(family)];
}

// --- analysis ------------------------------------------------------------------------------------

void CAddonInstallationDetails::AddonItemGroup_AnalyzeForWizard()
{
    m_remarks.clear();
    for (std::vector<InstallationGroup>& family : m_groups)
        family.clear();
    AddonItemGroup_Create();
    nameAddon();
    AddonItemGroup_MapItemsToGroups();
    AddonItemGroup_InstallationGroups_Create();
    Texture_ChainDefaultGroupAircraftFolders();
}

void CAddonInstallationDetails::AddonItemGroup_Create()
{
    m_addon = std::make_unique<CAddon_ItemGroup>();
    m_source->fill(*m_addon);
    m_addon->AnalyzeTypes(m_context.global.generation);
    QList<qint32> fileIds;
    QList<qint32> documents;
    const bool warnAboutPrograms = m_context.settings.flag(SettingKey::WarnAboutProgramFiles);
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (warnAboutPrograms && item.enumAddonFileType == FileType::Other &&
            endsWithNoCase(item.sName, u".exe"))
            addRemark(
                item.lngKey,
                u"If the executable file is an installation program, use it to install the addon. After installation, use Vantrel to import the aircraft, panel, sound or scenery."_s,
                false);
        if (item.enumAddonFileType != FileType::Document)
            continue;
        if (equalNoCase(item.sName, u"file_id.diz"))
            fileIds.append(item.lngKey);
        if (endsWithNoCase(item.sName, u".txt") || endsWithNoCase(item.sName, u".diz"))
            documents.append(item.lngKey);
    }
    m_addon->Array_lngarrayFILE_IDAddonItemKeys_Set(fileIds);
    m_addon->Array_lngarrayDocumentationTextFiles_AddonItemKeys_Set(documents);
    for (const QString& remark : m_source->remarks())
        addRemark(0, remark, false);
}

QString CAddonInstallationDetails::fileIdText() const
{
    // The one nearest to the top speaks for the whole.
    const CAddon_Item* best = nullptr;
    qsizetype bestDepth = 0;
    for (const qint32 key : m_addon->Array_lngarrayFILE_IDAddonItemKeys_Get()) {
        const CAddon_Item* item = m_addon->Search(key);
        const qsizetype depth = item->sFolder_Current.count(u'\\');
        if (!best || depth < bestDepth) {
            best = item;
            bestDepth = depth;
        }
    }
    if (!best)
        return {};
    const auto bytes = m_source->read(*best, descriptionLimit);
    return bytes ? decodedText(*bytes, m_context.services.ansi).trimmed() : QString();
}

void CAddonInstallationDetails::nameAddon()
{
    Settings& settings = m_context.settings;
    const QString fileId = fileIdText();
    QString name;
    if (settings.flag(SettingKey::NameAddonUsingFileIdDiz)) {
        for (const QString& line : fileId.split(u'\n')) {
            name = line.simplified();
            if (std::any_of(
                    name.cbegin(), name.cend(), [](QChar c) { return c.isLetterOrNumber(); }))
                break;
            name.clear();
        }
    }
    if (name.isEmpty())
        name = m_source->plainName().simplified();
    m_addon->sGroupName = m_options.name.value_or(name).trimmed();
    m_addon->sGroupDescription = m_options.description.value_or(
        settings.flag(SettingKey::DescribeAddonUsingFileIdDiz) ? fileId : QString());
    m_addon->sAuthors = m_options.authors.value_or(QString());
    m_addon->lngRating = m_options.rating.value_or(0);

    QString safe = winpath::safeName(m_addon->sGroupName);
    if (safe.isEmpty())
        safe = u"Addon"_s;
    const QString& addons = m_context.global.addonsFolder;
    m_storageFolder = addons + safe + u'\\';
    for (int number = 2; m_context.services.files.exists(winpath::withoutTrailing(m_storageFolder));
         ++number)
        m_storageFolder = addons + safe + u' ' + QString::number(number) + u'\\';
}

void CAddonInstallationDetails::AddonItemGroup_MapItemsToGroups()
{
    Analysis(*this).run();
}

void CAddonInstallationDetails::AddonItemGroup_InstallationGroups_Create()
{
    // Documents speak for a folder only when nothing else in it does, so they come first.
    for (const bool documents : {true, false}) {
        const CAddon_Item* last = nullptr;
        for (const CAddon_Item& item : m_addon->colAddonItems()) {
            if (!item.boolProcess || item.IsMappedToDocumentGroup() != documents)
                continue;
            if (last && last->sFolder_Current.constData() == item.sFolder_Current.constData())
                continue;
            last = &item;
            m_addon->AddonItemZipFolderEntryMappingTable_Update(item.sFolder_Current,
                                                                item.sFolder_Installation);
        }
    }
}

void CAddonInstallationDetails::Texture_ChainDefaultGroupAircraftFolders()
{
    const std::vector<InstallationGroup>& aircraft = groups(MappedGroup::Aircraft);
    if (aircraft.empty())
        return;
    std::vector<InstallationGroup>& textures = groups(MappedGroup::Texture);
    for (size_t i = 0; i < textures.size(); ++i) {
        if (textures[i].needsAircraft && textures[i].aircraftFolder.isEmpty() &&
            !textures[i].baseMissing) {
            if (Texture_InstallationDetails_Modify(int(i), aircraft.front().targetFolder))
                textures[i].aircraftGroup = 0;
        }
    }
}

void CAddonInstallationDetails::AddonItems_UpdateTargetExists()
{
    const Files& files = m_context.services.files;

    // Most targets lie in folders that are new, and then nothing below has to be looked for.
    struct Known
    {
        bool exists = false;
        QSet<NoCase> names;
    };

    QHash<QString, Known> folders;
    QString lastText;
    const Known* last = nullptr;
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        item.boolTargetExists = false;
        if (item.sFolder_Installation.isEmpty())
            continue;
        if (!last || lastText.constData() != item.sFolder_Installation.constData()) {
            lastText = item.sFolder_Installation;
            auto found = folders.constFind(lastText);
            if (found == folders.constEnd()) {
                Known known;
                known.exists = files.isFolder(lastText);
                if (known.exists) {
                    for (const FileInfo& info : files.list(lastText)) {
                        if (!info.folder)
                            known.names.insert(NoCase{info.name});
                    }
                }
                found = folders.insert(lastText, known);
            }
            last = &*found;
        }
        item.boolTargetExists =
            last->exists && last->names.contains(NoCase{item.sName_Installation});
    }
}

// --- options -------------------------------------------------------------------------------------

QString CAddonInstallationDetails::chosenFolder(const QString& typed) const
{
    const GlobalRecord& global = m_context.global;
    if (winpath::isAbsolute(typed))
        return winpath::asFolder(typed);
    if (typed.startsWith(u'/'))
        return winpath::asFolder(m_context.services.files.drives().toWindows(typed));
    return winpath::asFolder(winpath::normalised(winpath::join(global.simulatorFolder, typed)));
}

Result CAddonInstallationDetails::resolveOptionFolders()
{
    const Files& files = m_context.services.files;
    for (TargetChoice& choice : m_options.targets)
        choice.folder = chosenFolder(choice.folder);
    if (m_options.aircraftFolder.isEmpty())
        return Result::success();
    const QString typed = m_options.aircraftFolder;
    QStringList candidates = {chosenFolder(typed)};
    if (!winpath::isAbsolute(typed) && !typed.startsWith(u'/')) {
        for (const QString& folder : m_context.global.aircraftTypeFolders)
            candidates.append(winpath::asFolder(winpath::normalised(winpath::join(folder, typed))));
    }
    for (const QString& candidate : std::as_const(candidates)) {
        if (files.isFile(candidate + u"aircraft.cfg"_s)) {
            m_options.aircraftFolder = files.spelled(candidate);
            return Result::success();
        }
    }
    return Result::failure(u"Could not locate base aircraft. There is no aircraft.cfg in '"_s +
                           candidates.first() + u"'; name the folder of an installed aircraft."_s);
}

void CAddonInstallationDetails::applyOptions()
{
    applySkips();
    applyTargets();
    resolveConflicts();
    if (m_options.to == InstallTo::Cabinet)
        AddonItemGroup_InstallationFolders_ProcessInstallToStorage();
    AddonItems_UpdateTargetExists();
}

namespace {

/// Whether an item is meant by a name, a source path, a source folder ("x\") or "*.ext".
class ItemPattern
{
public:
    explicit ItemPattern(const QString& typed) : m_text(typed)
    {
        m_text.replace(u'/', u'\\');
        while (m_text.startsWith(u'\\'))
            m_text.remove(0, 1);
    }

    [[nodiscard]] bool matches(const CAddon_Item& item) const
    {
        if (m_text.startsWith(u'*'))
            return endsWithNoCase(item.sName, QStringView(m_text).sliced(1));
        if (m_text.endsWith(u'\\'))
            return startsWithNoCase(item.sFolder_Current, m_text) ||
                   containsNoCase(item.sFolder_Current, u'\\' + m_text);
        const qsizetype cut = m_text.lastIndexOf(u'\\');
        if (!equalNoCase(item.sName, QStringView(m_text).sliced(cut + 1)))
            return false;
        const QStringView folder = QStringView(m_text).first(cut + 1);
        return folder.isEmpty() || equalNoCase(item.sFolder_Current, folder) ||
               endsWithNoCase(item.sFolder_Current, u'\\' + folder.toString());
    }

    /// The item's folder below a matched source folder.
    [[nodiscard]] QString below(const CAddon_Item& item) const
    {
        if (!m_text.endsWith(u'\\'))
            return {};
        const qsizetype at = startsWithNoCase(item.sFolder_Current, m_text)
                                 ? 0
                                 : indexOfNoCase(item.sFolder_Current, u'\\' + m_text) + 1;
        return item.sFolder_Current.sliced(at + m_text.size());
    }

private:
    QString m_text;
};

} // namespace

void CAddonInstallationDetails::applySkips()
{
    for (const QString& name : std::as_const(m_options.skip)) {
        const ItemPattern pattern(name);
        bool found = false;
        for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
            if (!pattern.matches(item))
                continue;
            found = true;
            item.boolProcess = false;
        }
        if (!found) {
            addRemark(
                0, u"There is no '"_s + name + u"' in the add-on that could be left out."_s, true);
        }
    }
}

void CAddonInstallationDetails::applyTargets()
{
    for (const TargetChoice& choice : std::as_const(m_options.targets)) {
        const ItemPattern pattern(choice.name);
        bool found = false;
        const QString spelled = m_context.services.files.spelled(choice.folder);
        for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
            if (!pattern.matches(item))
                continue;
            found = true;
            setFolder(item, spelled + pattern.below(item));
        }
        if (!found) {
            addRemark(0,
                      u"There is no '"_s + choice.name +
                          u"' in the add-on that could go to another folder."_s,
                      true);
        }
    }
}

void CAddonInstallationDetails::resolveConflicts()
{
    const auto same = [this](const CAddon_Item& a, const CAddon_Item& b) {
        return m_source->sameBytes(a, b);
    };
    if (m_addon->AutomaticallyResolveConflicts(same).isEmpty())
        return;
    DocumentAndOther_AutomaticallyResolveProblems();
}

void CAddonInstallationDetails::addRemark(qint32 item, const QString& text, bool blocks)
{
    m_remarks.append({item, text, blocks});
}

bool CAddonInstallationDetails::existingIsKept(const CAddon_Item& item) const
{
    if (!item.boolTargetExists || m_options.replace == ReplacePolicy::Yes)
        return false;
    if (m_options.replace == ReplacePolicy::No)
        return true;
    const bool newerOnly = m_options.replace == ReplacePolicy::Newer ||
                           m_context.settings.number(SettingKey::YesFileReplacementMethod) == 1;
    if (!newerOnly)
        return false;
    const auto existing =
        m_context.services.files.info(item.sFolder_Installation + item.sName_Installation);
    const auto content = m_source->content(item);
    return existing && content && content->modifiedNs > 0 &&
           existing->modifiedNs > content->modifiedNs + sameTimeNs;
}

// --- facts ---------------------------------------------------------------------------------------

qint64 CAddonInstallationDetails::bytesNeeded() const
{
    qint64 bytes = 0;
    for (const CAddon_Item& item : m_addon->colAddonItems())
        bytes += item.boolProcess ? item.size : 0;
    return bytes;
}

qint64 CAddonInstallationDetails::bytesFree() const
{
    CDriveFreeSpace space(m_context.services.files);
    space.sDrive = m_options.to == InstallTo::Cabinet ? m_context.global.programFolder
                                                      : m_context.global.simulatorFolder;
    return space.Compute();
}

QString CAddonInstallationDetails::lonePartFolder(MappedGroup family) const
{
    Settings& settings = m_context.settings;
    const bool panel = family == MappedGroup::Panel;
    const bool below = settings.flag(panel ? SettingKey::AutoPlacePanelsInSubfolder
                                           : SettingKey::AutoPlaceSoundsInSubfolder);
    if (!below)
        return m_context.global.aircraftFolder;
    QString name = winpath::safeName(settings.text(panel ? SettingKey::AutoPlacePanelsFolderName
                                                         : SettingKey::AutoPlaceSoundsFolderName));
    if (name.isEmpty())
        name = winpath::safeName(m_addon->sGroupName);
    return m_context.global.aircraftFolder + name + u'\\';
}

bool CAddonInstallationDetails::anyMarked(const InstallationGroup& group) const
{
    return std::any_of(group.items.cbegin(), group.items.cend(), [this](qint32 key) {
        return m_addon->Search(key)->boolProcess;
    });
}

std::unique_ptr<CSceneryCfgMgr> CAddonInstallationDetails::sceneryLibrary(Result& loaded) const
{
    auto library = std::make_unique<CSceneryCfgMgr>(ConfigAccess(m_context.services),
                                                    m_context.global.sceneryCfgFile,
                                                    m_context.global.simulatorFolder);
    loaded = library->SceneryCfg_Load();
    return library;
}

QStringList CAddonInstallationDetails::areaFolders(const InstallationGroup& group) const
{
    QStringList folders;
    QString last;
    for (const qint32 key : group.items) {
        const CAddon_Item* item = m_addon->Search(key);
        if (!item->boolProcess || item->enumAddonFileType != FileType::Scenery)
            continue;
        const QString& folder = item->sFolder_Installation;
        if (folder.constData() == last.constData())
            continue;
        last = folder;
        QString area;
        if (!group.targetFolder.isEmpty() && winpath::isBelow(folder, group.targetFolder))
            area = group.targetFolder;
        else if (equalNoCase(winpath::name(folder), u"scenery"))
            area = winpath::parent(winpath::withoutTrailing(folder)); // the user's own choice
        // What lies in the simulator's own scenery is in its library already.
        if (area.isEmpty() || winpath::isBelow(area, m_context.global.sceneryFolder) ||
            winpath::same(area, m_context.global.sceneryAddonFolder) ||
            winpath::same(area, m_context.global.simulatorFolder))
            continue;
        if (!folders.contains(area, Qt::CaseInsensitive))
            folders.append(area);
    }
    return folders;
}

QList<SceneryAreaToAdd> CAddonInstallationDetails::sceneryAreas() const
{
    QList<SceneryAreaToAdd> areas;
    if (m_options.to == InstallTo::Cabinet)
        return areas;
    const std::vector<InstallationGroup>& sceneries = groups(MappedGroup::Scenery);
    std::unique_ptr<CSceneryCfgMgr> library;
    for (size_t i = 0; i < sceneries.size(); ++i) {
        if (!sceneries[i].sceneryLibraryUpdate)
            continue;
        for (const QString& folder : areaFolders(sceneries[i])) {
            Result loaded;
            if (!library)
                library = sceneryLibrary(loaded);
            const bool known = !library->areasOfFolder(folder).isEmpty() ||
                               std::any_of(areas.cbegin(), areas.cend(), [&](const auto& area) {
                                   return winpath::same(area.folder, folder);
                               });
            if (!known)
                areas.append({sceneries[i].sceneryTitle, folder, int(i)});
        }
    }
    return areas;
}

QList<ConfigChange> CAddonInstallationDetails::configChanges() const
{
    const QList<SceneryAreaToAdd> areas = sceneryAreas();
    if (areas.isEmpty())
        return {};
    Result loaded;
    const std::unique_ptr<CSceneryCfgMgr> library = sceneryLibrary(loaded);
    if (!loaded.ok)
        return {};
    for (const SceneryAreaToAdd& area : areas)
        library->SceneryCfg_AddArea(area.title, area.folder, false);
    ConfigChange change = library->changes();
    if (change.lines.isEmpty())
        return {};
    return {change};
}

QList<PlannedVariant> CAddonInstallationDetails::variants() const
{
    QList<PlannedVariant> out;
    if (m_options.to == InstallTo::Cabinet)
        return out;
    for (const InstallationGroup& group : groups(MappedGroup::Texture)) {
        if (!anyMarked(group))
            continue;
        for (const VariantDetails& variant : group.variants) {
            out.append({variant.title,
                        variant.variation,
                        variant.texture,
                        group.aircraftFolder,
                        group.aircraftFolder.isEmpty() ? QString()
                                                       : group.aircraftFolder + u"aircraft.cfg"_s});
        }
    }
    return out;
}

} // namespace vt
