// The folders of an add-on's source as a tree, with what lies in each and below. Spellings that
// differ only in case are one folder; the first spelling names it.
#pragma once

#include "addondb/CAddon_ItemGroup.h"
#include "install/AircraftFacts.h"

#include <QHash>
#include <QString>

#include <span>
#include <vector>

namespace vt {

/// What a folder holds, as bits.
enum FolderFact : quint32
{
    FactAircraftCfg = 1u << 0, ///< an aircraft.cfg with at least one aircraft section
    FactEmptyCfg = 1u << 1,    ///< one without any
    FactAir = 1u << 2,
    FactModel = 1u << 3, ///< .mdl or model.cfg
    FactSimCfg = 1u << 4,
    FactPanelCfg = 1u << 5,
    FactSoundCfg = 1u << 6,
    FactTextureCfg = 1u << 7,
    FactBgl = 1u << 8,
    FactFlight = 1u << 9,
    FactMissionFile = 1u << 10, ///< .spb, .rwd, .brf
    FactPage = 1u << 11,        ///< .htm
    FactGauge = 1u << 12,       ///< .gau, .cab, .dll
    FactXml = 1u << 13,
    FactBitmap = 1u << 14,
    FactTexture = 1u << 15, ///< a name that pictures of aircraft and scenery really have
    FactEffect = 1u << 16,
    FactWave = 1u << 17,
    FactPicture = 1u << 18, ///< .jpg, .png, ...
    FactText = 1u << 19,    ///< a text that may hold an aircraft section
    FactThumbnail = 1u << 20,
    FactOther = 1u << 21, ///< anything that is neither document nor left-over
};

struct SourceFolder
{
    QString path; ///< as in the items: ends in "\", empty for the root
    QString name;
    int parent = -1;
    std::vector<int> children;
    quint32 facts = 0;        ///< of its own files
    quint32 below = 0;        ///< with those of all folders below
    bool archiveRoot = false; ///< stands for an archive inside the source
    bool unsafe = false;      ///< a name that must not be created: "..", a drive, a device
};

class SourceTree
{
public:
    /// Items must be classified. \a cfgFacts: what was read from each aircraft.cfg, by item key.
    SourceTree(const CAddon_ItemGroup& addon, const QHash<qint32, AircraftFacts>& cfgFacts);

    [[nodiscard]] int count() const { return int(m_folders.size()); }

    [[nodiscard]] const SourceFolder& at(int folder) const { return m_folders[size_t(folder)]; }

    /// 0 is the root.
    [[nodiscard]] int folderOf(size_t itemPosition) const { return m_folderOfItem[itemPosition]; }

    /// Positions in the add-on's collection, ascending.
    [[nodiscard]] std::span<const qint32> itemsIn(int folder) const;
    /// Direct child of that name, -1 for none.
    [[nodiscard]] int child(int folder, QStringView name) const;
    /// First item directly in the folder with this name, or nullptr.
    [[nodiscard]] const CAddon_Item* file(int folder, QStringView name) const;

    /// Calls \a visit for the folder and every one below it, parents first.
    template <typename Visit> void forTree(int folder, const Visit& visit) const
    {
        visit(folder);
        for (const int child : at(folder).children)
            forTree(child, visit);
    }

    /// Whether \a folder is \a ancestor or lies below it.
    [[nodiscard]] bool isBelow(int folder, int ancestor) const;

private:
    int folderFor(const QString& path);
    void collectFacts(const QHash<qint32, AircraftFacts>& cfgFacts);

    const CAddon_ItemGroup& m_addon;
    std::vector<SourceFolder> m_folders;
    std::vector<int> m_folderOfItem;
    std::vector<qint32> m_items; ///< positions ordered by folder
    std::vector<qint32> m_firstItem;
    QHash<QString, int> m_byPath; ///< folded
};

} // namespace vt
