// What a plan tells beyond the items: space, areas, configuration changes, variations.
#include "install/CAddonInstallationDetails.h"
#include "install/CDriveFreeSpace.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "simconfig/CSceneryCfgMgr.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Archives keep times to two seconds.
constexpr qint64 sameTimeNs = 2'000'000'000;

} // namespace

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

QString CAddonInstallationDetails::spaceProblem() const
{
    const qint64 needed = bytesNeeded();
    const qint64 available = bytesFree();
    if (available < 0 || needed <= available)
        return {};
    return u"'"_s + m_addon->sGroupName + u"' needs "_s + sizeText(needed) + u", but only "_s +
           sizeText(available) + u" are free on the disk. Make room and try again."_s;
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
    QSet<NoCase> taken;
    for (size_t i = 0; i < sceneries.size(); ++i) {
        if (!sceneries[i].sceneryLibraryUpdate)
            continue;
        for (const QString& folder : areaFolders(sceneries[i])) {
            Result loaded;
            if (!library)
                library = sceneryLibrary(loaded);
            const bool known =
                taken.contains(NoCase{folder}) || !library->areasOfFolder(folder).isEmpty();
            taken.insert(NoCase{folder});
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
