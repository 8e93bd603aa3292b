// The repair items of one add-on, by the keys of their add-on items. Owns them.
#pragma once

#include "remove/CRepairItem.h"

#include <vector>

namespace vt {

class CRepairItemGroup
{
public:
    /// The reference is good until the next change of the collection.
    CRepairItem& Add(CRepairItem item);
    /// False when there is no such item.
    bool Remove(qint32 key);
    void Clear();
    /// Null when there is no such item.
    [[nodiscard]] CRepairItem* Search(qint32 key);
    [[nodiscard]] const CRepairItem* Search(qint32 key) const;

    /// At least one item has at least one candidate.
    [[nodiscard]] bool IncludesAtLeastOneRepairableItem() const;

    [[nodiscard]] const std::vector<CRepairItem>& colRepairItems() const { return m_items; }

    /// For changing items; their keys stay.
    [[nodiscard]] std::vector<CRepairItem>& colRepairItems_Edit() { return m_items; }

private:
    std::vector<CRepairItem> m_items;
};

} // namespace vt
