// Placing: every file into the folder that its claimed folder, or else its type, asks for.
#include "install/Analysis.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace names = vt::foldernames;

namespace vt {

namespace {

bool hasEnding(QStringView name, std::initializer_list<QStringView> endings)
{
    for (const QStringView ending : endings) {
        if (endsWithNoCase(name, ending))
            return true;
    }
    return false;
}

/// Whether a name can stand on a Windows disk; cheap for the ordinary ones.
bool isSafeName(const QString& name)
{
    return winpath::checkComponent(name).ok;
}

} // namespace

void CAddonInstallationDetails::Analysis::placeAll()
{
    std::vector<CAddon_Item>& items = addon.colAddonItems_Edit();
    for (size_t i = 0; i < items.size(); ++i) {
        const int folder = tree->folderOf(i);
        AddonItem_InstallationFolder_DetermineFromZipFolderEntry(
            items[i], claims[size_t(folder)], folder);
    }
}

void CAddonInstallationDetails::Analysis::put(CAddon_Item& item,
                                              const QString& folder,
                                              MappedGroup family,
                                              int group)
{
    if (family == MappedGroup::None)
        family = MappedGroup::DocumentAndOther;
    if (group < 0)
        group = looseGroup(family);
    item.enumMappedGroup = family;
    item.groupIndex = group;
    item.setPreferred(folder, item.sName);
    d.groups(family)[size_t(group)].items.append(item.lngKey);
}

void CAddonInstallationDetails::Analysis::putInStorage(CAddon_Item& item)
{
    putInStorage(item, storedFamily(item));
}

void CAddonInstallationDetails::Analysis::putInStorage(CAddon_Item& item, MappedGroup family)
{
    put(item, QString(), family, -1);
    stored.push_back(qint32(&item - addon.colAddonItems().data()));
}

void CAddonInstallationDetails::Analysis::leaveOut(CAddon_Item& item)
{
    putInStorage(item, MappedGroup::DocumentAndOther);
    item.boolProcess = false;
}

bool CAddonInstallationDetails::Analysis::isLeftOver(const CAddon_Item& item) const
{
    if (skipBrowserFiles && isThumbnailBrowserFile(item.sName))
        return true;
    if (skipSceneryDat && equalNoCase(item.sName, u"scenery.dat"))
        return true;
    return names::isJunk(item.sName);
}

void CAddonInstallationDetails::Analysis::AddonItem_InstallationFolder_DetermineFromZipFolderEntry(
    CAddon_Item& item, const Claim& claim, int folder)
{
    const SourceFolder& here = tree->at(folder);
    if (here.unsafe || !isSafeName(item.sName)) {
        put(item, QString(), MappedGroup::DocumentAndOther, -1);
        d.addRemark(
            item.lngKey,
            u"'"_s + item.sFolder_Current + item.sName +
                u"' cannot be installed: its name leads out of the add-on or is not allowed on a Windows disk. Leave the file out, or have the add-on's author mend it."_s,
            true);
        return;
    }
    if (claim.kind == Kind::Skip || isLeftOver(item) || openedArchives.contains(item.lngKey)) {
        leaveOut(item);
        return;
    }
    if (!item.boolExtractable) {
        const QString why = d.m_source->readable(item).text;
        const QStringList& listing = d.m_source->remarks(); // tells inner archives already
        if (std::none_of(listing.cbegin(), listing.cend(), [&why](const QString& remark) {
                return remark.contains(why);
            }))
            d.addRemark(
                item.lngKey,
                why +
                    u" It will not be installed. Unpack the archive by other means and install the folder instead."_s,
                false);
    }
    if (claim.container && item.enumAddonFileType == FileType::AircraftConfiguration) {
        leaveOut(item);
        return;
    }
    if (goesToAirportEditor(item)) {
        putInStorage(item, MappedGroup::Afcad);
        return;
    }
    if (claim.kind == Kind::Free || (claim.container && claim.kind != Kind::Texture)) {
        placeFree(item, claim, folder);
    } else if (!claim.area.isEmpty() && item.enumAddonFileType == FileType::Scenery) {
        put(item, claim.area + u"scenery\\"_s, MappedGroup::Scenery, claim.areaGroup);
    } else if (!staysIn(claim.kind, item)) {
        putInStorage(item);
    } else if (claim.kind == Kind::GaugeFolder && item.enumAddonFileType != FileType::XmlFile &&
               typeGroupOf(item.enumAddonFileType) == TypeGroup::PanelFile) {
        // Compiled gauges are only found in the gauges folder itself.
        const bool module =
            item.enumAddonFileType == FileType::DynamicLinkLibrary && isSimulatorModule(item.sName);
        put(item, module ? global.modulesFolder : global.gaugesFolder, claim.family, claim.group);
    } else if (claim.kind == Kind::Gauges &&
               item.enumAddonFileType == FileType::DynamicLinkLibrary &&
               isSimulatorModule(item.sName)) {
        put(item, global.modulesFolder, claim.family, claim.group);
    } else {
        put(item, claim.target, claim.family, claim.group);
    }
}

bool CAddonInstallationDetails::Analysis::staysIn(Kind kind, const CAddon_Item& item) const
{
    if (kind == Kind::Mission)
        return true;
    const QString& name = item.sName;
    switch (typeGroupOf(item.enumAddonFileType)) {
    case TypeGroup::DocumentAndOther:
        break;
    case TypeGroup::AircraftConfiguration:
        // One without sections is no aircraft; it must not take the place of a real one.
        return kind != Kind::Free && (item.enumAddonFileType == FileType::SimConfiguration ||
                                      !cfgFacts.value(item.lngKey).sections.isEmpty());
    default:
        if (item.enumAddonFileType == FileType::Texture && names::isUntypedDocument(name))
            break;
        return kind == Kind::SimFolder || (item.enumAddonFileType != FileType::Movie &&
                                           item.enumAddonFileType != FileType::Video);
    }
    if (names::isProgramOrArchive(name))
        return false;
    const bool told = names::isReadme(name);
    switch (kind) {
    case Kind::Panel:
    case Kind::GaugeFolder:
    case Kind::SimFolder:
        return !told;
    case Kind::Sound:
        return !told && hasEnding(name, {u".cfg", u".ini", u".mid", u".mp2"});
    case Kind::Texture:
    case Kind::EffectsTexture:
    case Kind::SceneryTexture:
        return names::isPicture(name) || hasEnding(name, {u".cfg", u".ini"});
    case Kind::Aircraft:
        return equalNoCase(name, u"thumbnail.jpg") ||
               hasEnding(name, {u".cfg", u".ini", u".htm", u"html", u".css"});
    default:
        return equalNoCase(name, u"thumbnail.jpg") || hasEnding(name, {u".cfg", u".ini"});
    }
}

void CAddonInstallationDetails::Analysis::placeFree(CAddon_Item& item,
                                                    const Claim& claim,
                                                    int folder)
{
    const SourceFolder& here = tree->at(folder);
    const MappedGroup other = MappedGroup::DocumentAndOther;
    const bool besideFlight = here.facts & FactFlight;
    switch (item.enumAddonFileType) {
    case FileType::Scenery:
        Q_ASSERT(!claim.area.isEmpty());
        put(item, claim.area + u"scenery\\"_s, MappedGroup::Scenery, claim.areaGroup);
        return;
    case FileType::BitmapImage:
    case FileType::Texture:
    case FileType::AircraftTexture:
    case FileType::TextureConfiguration: {
        const bool texture = names::isRealTexture(item.sName) ||
                             item.enumAddonFileType == FileType::TextureConfiguration;
        if (texture && !claim.area.isEmpty())
            put(item, claim.area + u"texture\\"_s, MappedGroup::Scenery, claim.areaGroup);
        else if (texture && (here.facts & FactEffect))
            put(item, global.textureFolder, other, -1);
        else
            putInStorage(item);
        return;
    }
    case FileType::PanelGauge:
    case FileType::CabinetArchive:
        put(item, global.gaugesFolder, MappedGroup::Panel, -1);
        return;
    case FileType::DynamicLinkLibrary:
        put(item,
            isSimulatorModule(item.sName) ? global.modulesFolder : global.gaugesFolder,
            MappedGroup::Panel,
            -1);
        return;
    case FileType::XmlFile:
        if (!claim.area.isEmpty())
            putInStorage(item); // what a scenery was compiled from
        else
            put(item, global.gaugesFolder, MappedGroup::Panel, -1);
        return;
    case FileType::Sound:
        put(item, global.soundFolder, MappedGroup::Sound, -1);
        return;
    case FileType::Flight:
    case FileType::FlightPlan:
    case FileType::Situation:
        put(item, global.userDocumentsFolder, other, -1);
        return;
    case FileType::Adventure:
    case FileType::AdventureSource:
    case FileType::Briefing:
        put(item, global.adventuresFolder, other, -1);
        return;
    case FileType::Reward:
        put(item, global.simulatorFolder + u"Rewards\\"_s, other, -1);
        return;
    case FileType::Font:
        put(item, global.fontsFolder, other, -1);
        return;
    case FileType::Effects:
        put(item, global.effectsFolder, other, -1);
        return;
    case FileType::WeatherResource:
        put(item,
            besideFlight ? global.userDocumentsFolder : global.simulatorFolder + u"weather\\"_s,
            other,
            -1);
        return;
    case FileType::WeatherTheme:
    case FileType::WeatherThemeBinary:
        put(item, global.simulatorFolder + u"weather\\themes\\"_s, other, -1);
        return;
    default:
        putInStorage(item);
        return;
    }
}

void CAddonInstallationDetails::Analysis::nameStorageFolders()
{
    // What all stored files have above them in common says nothing.
    std::vector<CAddon_Item>& items = addon.colAddonItems_Edit();
    int common = -1;
    for (const qint32 position : stored) {
        if (!items[size_t(position)].boolProcess)
            continue;
        const int folder = tree->folderOf(size_t(position));
        if (common < 0)
            common = folder;
        while (common > 0 && !tree->isBelow(folder, common))
            common = tree->at(common).parent;
    }
    QHash<int, QString> folders;
    for (const qint32 position : stored) {
        const int folder = tree->folderOf(size_t(position));
        auto found = folders.constFind(folder);
        if (found == folders.constEnd())
            found = folders.insert(folder, d.m_storageFolder + relativePath(folder, common));
        items[size_t(position)].setPreferred(*found, items[size_t(position)].sName);
    }
}

/// The folder's path below \a top (from the root when it does not lie there), archives without
/// their endings.
QString CAddonInstallationDetails::Analysis::relativePath(int folder, int top) const
{
    QString path;
    for (; folder > 0 && folder != top; folder = tree->at(folder).parent) {
        const SourceFolder& here = tree->at(folder);
        path.prepend((here.archiveRoot ? winpath::baseName(here.name) : here.name) + u'\\');
    }
    return path;
}

namespace {

/// Folders in the spelling of the disk. Below a folder that does not exist nothing is looked for,
/// and each folder is looked up once.
class FolderSpelling
{
public:
    explicit FolderSpelling(const Files& files) : m_files(files) {}

    QString of(const QString& folder) { return known(folder).text; }

private:
    struct Known
    {
        QString text;
        bool exists = false;
    };

    const Known& known(const QString& folder)
    {
        const auto found = m_known.constFind(folder);
        if (found != m_known.constEnd())
            return *found;
        Known result;
        const QStringView plain = QStringView(folder).chopped(folder.endsWith(u'\\') ? 1 : 0);
        const qsizetype cut = plain.lastIndexOf(u'\\');
        if (cut < 0) {
            result = {folder, true}; // a drive
        } else {
            const Known parent = known(folder.left(cut + 1));
            const QString path = parent.text + plain.sliced(cut + 1).toString();
            const auto info = parent.exists ? m_files.info(path) : std::nullopt;
            result.exists = info && info->folder;
            result.text = (result.exists ? parent.text + info->name : path) + u'\\';
        }
        return *m_known.insert(folder, result);
    }

    const Files& m_files;
    QHash<QString, Known> m_known;
};

} // namespace

void CAddonInstallationDetails::Analysis::spellTargets()
{
    FolderSpelling spelling(files);
    QString lastText;
    QString lastFolder;
    for (CAddon_Item& item : addon.colAddonItems_Edit()) {
        if (item.sFolder_Installation.isEmpty())
            continue;
        if (lastText.constData() != item.sFolder_Installation.constData()) {
            lastText = item.sFolder_Installation;
            lastFolder = spelling.of(lastText);
        }
        item.setPreferred(lastFolder, item.sName);
    }
    for (std::vector<InstallationGroup>& family : d.m_groups) {
        for (InstallationGroup& group : family) {
            if (!group.targetFolder.isEmpty())
                group.targetFolder = spelling.of(group.targetFolder);
            if (!group.aircraftFolder.isEmpty())
                group.aircraftFolder = spelling.of(group.aircraftFolder);
            group.proposedFolder = group.targetFolder;
        }
    }
}

} // namespace vt
