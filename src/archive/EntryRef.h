// What names an archive's entry to everything above: not an item, only where the entry lies.
#pragma once

namespace vt {

struct EntryRef
{
    int archive = -1; ///< 0 the source itself, then nested archives in the order met; -1 none
    int key = 0;      ///< CZIPFileItem::lngKey, from 1

    [[nodiscard]] bool isNull() const { return archive < 0 || key <= 0; }

    friend bool operator==(const EntryRef&, const EntryRef&) = default;
};

} // namespace vt
