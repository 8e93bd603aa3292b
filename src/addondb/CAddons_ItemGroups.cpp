#include "addondb/CAddons_ItemGroups.h"

#include <algorithm>

namespace vt {

CAddon_ItemGroup& CAddons_ItemGroups::Add(std::unique_ptr<CAddon_ItemGroup> group)
{
    m_groups.push_back(std::move(group));
    return *m_groups.back();
}

bool CAddons_ItemGroups::Remove(qint32 key)
{
    const auto at = std::find_if(m_groups.begin(), m_groups.end(), [key](const auto& group) {
        return group->lngKey == key;
    });
    if (at == m_groups.end())
        return false;
    m_groups.erase(at);
    return true;
}

CAddon_ItemGroup* CAddons_ItemGroups::search(qint32 key) const
{
    for (const auto& group : m_groups) {
        if (group->lngKey == key)
            return group.get();
    }
    return nullptr;
}

qsizetype CAddons_ItemGroups::Items_TotalToProcess() const
{
    qsizetype total = 0;
    for (const auto& group : m_groups) {
        total += std::count_if(group->colAddonItems().begin(),
                               group->colAddonItems().end(),
                               [](const CAddon_Item& item) { return item.boolProcess; });
    }
    return total;
}

bool CAddons_ItemGroups::Items_Add(qint32 groupKey, CAddon_Item item)
{
    CAddon_ItemGroup* group = search(groupKey);
    if (!group)
        return false;
    group->Add(std::move(item));
    return true;
}

bool CAddons_ItemGroups::Items_Remove(qint32 groupKey, qint32 itemKey)
{
    CAddon_ItemGroup* group = search(groupKey);
    return group && group->Remove(itemKey);
}

TypeTally CAddons_ItemGroups::Items_Selected_TallyTypes(qint32 groupKey,
                                                        const QList<qint32>& itemKeys) const
{
    TypeTally tally{};
    const CAddon_ItemGroup* group = search(groupKey);
    for (const qint32 key : itemKeys) {
        if (const CAddon_Item* item = group ? group->Search(key) : nullptr)
            item->Item_TallyTypes(tally);
    }
    return tally;
}

} // namespace vt
