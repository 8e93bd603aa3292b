#include "remove/CRepairItemGroup.h"

#include "platform/WinPath.h"

#include <algorithm>

namespace vt {

void CRepairItem::chooseMostRecent()
{
    chosen = candidates.isEmpty() ? -1 : 0;
    for (qsizetype i = 1; i < candidates.size(); ++i) {
        const QDateTime& date = candidates[i].date;
        const QDateTime& best = candidates[chosen].date;
        if (date.isValid() && (!best.isValid() || date > best))
            chosen = i;
    }
}

bool CRepairItem::chooseFrom(QStringView folder)
{
    for (qsizetype i = 0; i < candidates.size(); ++i) {
        if (!winpath::same(candidates[i].folder, folder))
            continue;
        chosen = i;
        return true;
    }
    return false;
}

CRepairItem& CRepairItemGroup::Add(CRepairItem item)
{
    m_items.push_back(std::move(item));
    return m_items.back();
}

bool CRepairItemGroup::Remove(qint32 key)
{
    return std::erase_if(m_items, [&](const CRepairItem& one) { return one.item.lngKey == key; }) >
           0;
}

void CRepairItemGroup::Clear()
{
    m_items.clear();
}

CRepairItem* CRepairItemGroup::Search(qint32 key)
{
    return const_cast<CRepairItem*>(std::as_const(*this).Search(key));
}

const CRepairItem* CRepairItemGroup::Search(qint32 key) const
{
    const auto found = std::find_if(m_items.cbegin(), m_items.cend(), [&](const CRepairItem& one) {
        return one.item.lngKey == key;
    });
    return found == m_items.cend() ? nullptr : &*found;
}

bool CRepairItemGroup::IncludesAtLeastOneRepairableItem() const
{
    return std::any_of(m_items.cbegin(), m_items.cend(), [](const CRepairItem& one) {
        return !one.candidates.isEmpty();
    });
}

} // namespace vt
