#include "install/SourceTree.h"

#include "install/FolderNames.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype deepestFolder = 64;

quint32 factOfTextureLike(QStringView name)
{
    if (endsWithNoCase(name, u".spb"))
        return FactMissionFile | FactOther;
    if (foldernames::isRealTexture(name))
        return FactTexture | FactOther;
    return foldernames::isUntypedDocument(name) ? FactText : FactOther;
}

quint32 factOf(const CAddon_Item& item, const QHash<qint32, AircraftFacts>& cfgFacts)
{
    const QString& name = item.sName;
    switch (item.enumAddonFileType) {
    case FileType::AircraftConfiguration: {
        const bool sections = !cfgFacts.value(item.lngKey).sections.isEmpty();
        return sections ? FactAircraftCfg | FactOther : quint32(FactEmptyCfg);
    }
    case FileType::Aircraft:
        return FactAir | FactOther;
    case FileType::AircraftModel:
    case FileType::ModelConfiguration:
        return FactModel | FactOther;
    case FileType::SimConfiguration:
        return FactSimCfg | FactOther;
    case FileType::PanelConfiguration:
        return FactPanelCfg | FactOther;
    case FileType::SoundConfiguration:
    case FileType::SoundAIConfiguration:
        return FactSoundCfg | FactOther;
    case FileType::TextureConfiguration:
        return FactTextureCfg | FactOther;
    case FileType::Scenery:
        return FactBgl | FactOther;
    case FileType::Flight:
        return FactFlight | FactOther;
    case FileType::Reward:
    case FileType::Briefing:
        return FactMissionFile | FactOther;
    case FileType::PanelGauge:
    case FileType::CabinetArchive:
    case FileType::DynamicLinkLibrary:
        return FactGauge | FactOther;
    case FileType::XmlFile:
        return FactXml | FactOther;
    case FileType::BitmapImage:
        return FactBitmap | FactTexture | FactOther;
    case FileType::AircraftTexture:
        return FactTexture | FactOther;
    case FileType::Texture:
        return factOfTextureLike(name);
    case FileType::Effects:
        return FactEffect | FactOther;
    case FileType::Sound:
        return FactWave | FactOther;
    case FileType::Document:
        if (endsWithNoCase(name, u".htm") || endsWithNoCase(name, u"html"))
            return FactPage;
        return endsWithNoCase(name, u".txt") || endsWithNoCase(name, u".cfg") ? quint32(FactText)
                                                                              : 0u;
    case FileType::Other:
        if (equalNoCase(name, u"thumbnail.jpg"))
            return FactThumbnail | FactPicture;
        return foldernames::isPicture(name) ? quint32(FactPicture) : 0u;
    default:
        return FactOther;
    }
}

} // namespace

SourceTree::SourceTree(const CAddon_ItemGroup& addon, const QHash<qint32, AircraftFacts>& cfgFacts)
    : m_addon(addon)
{
    const std::vector<CAddon_Item>& items = addon.colAddonItems();
    m_folders.push_back({});
    m_byPath.insert(QString(), 0);
    m_folderOfItem.reserve(items.size());
    const QChar* lastText = nullptr;
    int lastFolder = 0;
    qint32 lastArchive = 0;
    for (const CAddon_Item& item : items) {
        if (item.sFolder_Current.constData() != lastText) {
            lastText = item.sFolder_Current.constData();
            lastFolder = folderFor(item.sFolder_Current);
        }
        if (item.lngKey_AssociatedZip != lastArchive) {
            lastArchive = item.lngKey_AssociatedZip;
            if (const CAddon_Item* archive = addon.Search(lastArchive)) {
                const int root = folderFor(archive->sFolder_Current + archive->sName + u'\\');
                m_folders[size_t(root)].archiveRoot = true;
            }
        }
        m_folderOfItem.push_back(lastFolder);
    }

    m_firstItem.assign(m_folders.size() + 1, 0);
    for (const int folder : m_folderOfItem)
        ++m_firstItem[size_t(folder) + 1];
    for (size_t i = 1; i < m_firstItem.size(); ++i)
        m_firstItem[i] += m_firstItem[i - 1];
    std::vector<qint32> next(m_firstItem.begin(), m_firstItem.end() - 1);
    m_items.resize(items.size());
    for (size_t i = 0; i < items.size(); ++i)
        m_items[size_t(next[size_t(m_folderOfItem[i])]++)] = qint32(i);
    collectFacts(cfgFacts);
}

int SourceTree::folderFor(const QString& path)
{
    const QString key = foldCase(path);
    const auto found = m_byPath.constFind(key);
    if (found != m_byPath.constEnd())
        return *found;
    SourceFolder folder;
    folder.path = path;
    // Nothing real is this deep; taken apart, such a path would cost memory by its square.
    if (path.count(u'\\') > deepestFolder) {
        folder.parent = 0;
        folder.name = path;
        folder.unsafe = true;
    } else {
        const QStringView shortened = QStringView(path).chopped(path.endsWith(u'\\') ? 1 : 0);
        const qsizetype cut = shortened.lastIndexOf(u'\\');
        folder.parent = folderFor(path.left(cut + 1));
        folder.name = shortened.sliced(cut + 1).toString();
        folder.unsafe =
            m_folders[size_t(folder.parent)].unsafe || !winpath::checkComponent(folder.name).ok;
    }
    const int at = int(m_folders.size());
    m_folders[size_t(folder.parent)].children.push_back(at);
    m_folders.push_back(std::move(folder));
    m_byPath.insert(key, at);
    return at;
}

void SourceTree::collectFacts(const QHash<qint32, AircraftFacts>& cfgFacts)
{
    const std::vector<CAddon_Item>& items = m_addon.colAddonItems();
    for (size_t i = 0; i < items.size(); ++i)
        m_folders[size_t(m_folderOfItem[i])].facts |= factOf(items[i], cfgFacts);
    // A folder stands behind its parent, so one way back carries everything up.
    for (size_t i = m_folders.size(); i-- > 0;) {
        SourceFolder& folder = m_folders[i];
        folder.below |= folder.facts;
        if (folder.parent >= 0)
            m_folders[size_t(folder.parent)].below |= folder.below;
    }
}

std::span<const qint32> SourceTree::itemsIn(int folder) const
{
    const size_t first = size_t(m_firstItem[size_t(folder)]);
    return std::span(m_items).subspan(first, size_t(m_firstItem[size_t(folder) + 1]) - first);
}

int SourceTree::child(int folder, QStringView name) const
{
    for (const int child : at(folder).children) {
        if (equalNoCase(at(child).name, name))
            return child;
    }
    return -1;
}

const CAddon_Item* SourceTree::file(int folder, QStringView name) const
{
    for (const qint32 position : itemsIn(folder)) {
        const CAddon_Item& item = m_addon.colAddonItems()[size_t(position)];
        if (equalNoCase(item.sName, name))
            return &item;
    }
    return nullptr;
}

bool SourceTree::isBelow(int folder, int ancestor) const
{
    while (folder > ancestor)
        folder = at(folder).parent;
    return folder == ancestor;
}

} // namespace vt
