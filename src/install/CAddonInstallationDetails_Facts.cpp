// What a plan tells beyond the items: space, areas, configuration changes, variations.
#include "install/AircraftEdits.h"
#include "install/CAddonInstallationDetails.h"
#include "install/CDriveFreeSpace.h"
#include "platform/DiskSpace.h"
#include "platform/Gate.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "simconfig/CSceneryCfgMgr.h"

#include <QMap>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Archives keep times in steps of two seconds.
constexpr qint64 sameDateNs = 2'000'000'000;

} // namespace

DateOrder CAddonInstallationDetails::compareDates(const CAddon_Item& item,
                                                  const FileInfo& existing) const
{
    const auto content = m_source->content(item);
    if (!content || content->modifiedNs <= 0)
        return DateOrder::Unknown;
    const qint64 later = existing.modifiedNs - content->modifiedNs;
    if (qAbs(later) <= sameDateNs)
        return DateOrder::Same;
    return later > 0 ? DateOrder::ExistingIsNewer : DateOrder::ItemIsNewer;
}

bool CAddonInstallationDetails::moreRecentIsKept(const CAddon_Item& item,
                                                 const FileInfo& existing) const
{
    const bool newerOnly = m_options.replace == ReplacePolicy::Newer ||
                           (m_options.replace == ReplacePolicy::Ask &&
                            m_context.settings.number(SettingKey::YesFileReplacementMethod) == 1);
    return newerOnly && compareDates(item, existing) == DateOrder::ExistingIsNewer;
}

bool CAddonInstallationDetails::existingIsKept(const CAddon_Item& item) const
{
    if (!item.boolTargetExists || m_options.replace == ReplacePolicy::Yes)
        return false;
    if (mergesInto(item))
        return false;
    if (m_options.replace == ReplacePolicy::No)
        return true;
    const auto existing =
        m_context.services.files.info(item.sFolder_Installation + item.sName_Installation);
    return existing && moreRecentIsKept(item, *existing);
}

bool CAddonInstallationDetails::willBeInstalled(const CAddon_Item& item) const
{
    return item.boolProcess && item.boolExtractable && !existingIsKept(item);
}

bool CAddonInstallationDetails::willBePlaced(const CAddon_Item& item,
                                             const QSet<QString>& closed) const
{
    return willBeInstalled(item) &&
           (closed.isEmpty() || !closed.contains(item.sFolder_Installation));
}

qint64 CAddonInstallationDetails::bytesNeeded() const
{
    qint64 bytes = 0;
    for (const CAddon_Item& item : m_addon->colAddonItems())
        bytes += willBeInstalled(item) ? item.size : 0;
    return bytes;
}

qint64 CAddonInstallationDetails::bytesFree() const
{
    CDriveFreeSpace space(m_context.services.files);
    space.sDrive = installTo() == InstallTo::Cabinet ? m_context.global.programFolder
                                                     : m_context.global.simulatorFolder;
    return space.Compute();
}

QList<const CAddon_Item*> CAddonInstallationDetails::firstInFolders() const
{
    QList<const CAddon_Item*> out;
    QSet<QString> seen;
    const CAddon_Item* last = nullptr;
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        const QString& folder = item.sFolder_Installation;
        // Neighbours share their folder's text.
        if (!item.boolProcess || folder.isEmpty() ||
            (last && last->sFolder_Installation.constData() == folder.constData()))
            continue;
        last = &item;
        if (!seen.contains(folder)) {
            seen.insert(folder);
            out.push_back(&item);
        }
    }
    return out;
}

QSet<QString> CAddonInstallationDetails::closedFolders() const
{
    QSet<QString> out;
    for (const CAddon_Item* item : firstInFolders()) {
        const auto link = m_context.services.gate.outerLink(item->sFolder_Installation);
        if (link && (link->target.isEmpty() || !m_options.linksConfirmed))
            out.insert(item->sFolder_Installation);
    }
    return out;
}

QString CAddonInstallationDetails::spaceProblem() const
{
    // The simulator's folder may lie on several disks, by links.
    const Files& files = m_context.services.files;
    QHash<QString, quint64> diskOf;
    for (const CAddon_Item* item : firstInFolders())
        diskOf.insert(item->sFolder_Installation,
                      fileSystemOf(files, item->sFolder_Installation).value_or(0));

    struct Disk
    {
        qint64 needed = 0;
        QString folder;
    };

    QMap<quint64, Disk> disks;
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (item.sFolder_Installation.isEmpty() || !willBeInstalled(item))
            continue;
        Disk& disk = disks[diskOf.value(item.sFolder_Installation)];
        disk.needed += item.size;
        if (disk.folder.isEmpty())
            disk.folder = item.sFolder_Installation;
    }
    for (const Disk& disk : std::as_const(disks)) {
        CDriveFreeSpace space(files);
        space.sDrive = disk.folder;
        const qint64 available = space.Compute();
        if (available >= 0 && disk.needed > available)
            return u"'"_s + m_addon->sGroupName + u"' needs "_s + sizeText(disk.needed) +
                   u", but only "_s + sizeText(available) +
                   u" are free on the disk. Make room and try again."_s;
    }
    return {};
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

QStringList CAddonInstallationDetails::areaFolders(const InstallationGroup& group) const
{
    if (group.recorded)
        return {group.targetFolder};
    QStringList folders;
    QString last;
    for (const qint32 key : group.items) {
        const CAddon_Item* item = m_addon->Search(key);
        if (item->enumAddonFileType != FileType::Scenery || !willBeInstalled(*item))
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

LibraryChanges CAddonInstallationDetails::libraryChanges() const
{
    LibraryChanges out;
    if (installTo() == InstallTo::Cabinet)
        return out;
    const std::vector<InstallationGroup>& sceneries = groups(MappedGroup::Scenery);
    QSet<NoCase> taken;
    const QSet<QString> closed = closedFolders();
    for (size_t i = 0; i < sceneries.size(); ++i) {
        if (!sceneries[i].sceneryLibraryUpdate)
            continue;
        for (const QString& folder : areaFolders(sceneries[i])) {
            if (taken.contains(NoCase{folder}))
                continue;
            taken.insert(NoCase{folder});
            const bool open =
                std::none_of(closed.cbegin(), closed.cend(), [&](const QString& behind) {
                    return winpath::isBelow(behind, folder);
                });
            if (open)
                out.areas.append({sceneries[i].sceneryTitle, folder, int(i), {}});
        }
    }
    if (out.areas.isEmpty())
        return out;

    CSceneryCfgMgr library(ConfigAccess(m_context.services),
                           m_context.global.sceneryCfgFile,
                           m_context.global.simulatorFolder);
    if (Result loaded = library.SceneryCfg_Load(); !loaded)
        out.problem = loaded.text;
    out.areas.removeIf([&](const SceneryAreaToAdd& area) {
        return out.problem.isEmpty() && !library.areasOfFolder(area.folder).isEmpty();
    });
    const auto file = m_context.services.files.info(library.file());
    if (!out.areas.isEmpty() && file && file->readOnly && !m_options.updateReadOnlyLibrary)
        out.problem =
            u"'"_s + library.file() +
            u"' is marked read-only: the scenery library is updated only when the question about that is answered with Yes."_s;
    for (SceneryAreaToAdd& area : out.areas) {
        area.refusal = out.problem;
        if (area.refusal.isEmpty())
            area.refusal = library.SceneryCfg_AddArea(area.title, area.folder, false).text;
    }
    if (out.problem.isEmpty())
        out.change = library.changes();
    return out;
}

} // namespace vt
