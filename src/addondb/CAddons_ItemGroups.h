// The add-ons that one operation handles together. Owns them.
#pragma once

#include "addondb/CAddon_ItemGroup.h"

#include <memory>
#include <vector>

namespace vt {

class CAddons_ItemGroups
{
public:
    /// The reference is good until the group is removed.
    CAddon_ItemGroup& Add(std::unique_ptr<CAddon_ItemGroup> group);
    /// Removes the first group with this key; false when there is none.
    bool Remove(qint32 key);

    void Clear() { m_groups.clear(); }

    [[nodiscard]] const std::vector<std::unique_ptr<CAddon_ItemGroup>>& colAddonItemGroups() const
    {
        return m_groups;
    }

    [[nodiscard]] CAddon_ItemGroup* search(qint32 key) const;

    /// Marked items over all groups.
    [[nodiscard]] qsizetype Items_TotalToProcess() const;

    /// Adds an item to the group with this key; false when there is no such group.
    bool Items_Add(qint32 groupKey, CAddon_Item item);
    bool Items_Remove(qint32 groupKey, qint32 itemKey);

    /// Counts the types of the given items of one group.
    [[nodiscard]] TypeTally Items_Selected_TallyTypes(qint32 groupKey,
                                                      const QList<qint32>& itemKeys) const;

private:
    std::vector<std::unique_ptr<CAddon_ItemGroup>> m_groups;
};

} // namespace vt
