#include "archive/CZIPFile.h"

#include "platform/Text.h"

#include <algorithm>

namespace vt {

const CZIPFileItem* CZIPFile::item(int key) const
{
    return key >= 1 && key <= varZIPItems.size() ? &varZIPItems[key - 1] : nullptr;
}

bool CZIPFile::ZIP_Item_FilenameAndFolder_GetUsingKey(int key,
                                                      QString& filename,
                                                      QString& folder) const
{
    const CZIPFileItem* found = item(key);
    if (!found)
        return false;
    filename = found->sFilename;
    folder = found->sPath;
    return true;
}

QList<int> CZIPFile::ZIPItems_Items_Selected_Get() const
{
    QList<int> keys(selected.begin(), selected.end());
    std::sort(keys.begin(), keys.end());
    return keys;
}

void CZIPFile::ZIPItems_Items_Selected_Set(const QList<int>& keys)
{
    selected.clear();
    for (const int key : keys) {
        if (item(key))
            selected.insert(key);
    }
}

void CZIPFile::ZIPItems_Items_Selected_SetAll()
{
    for (const CZIPFileItem& item : varZIPItems)
        selected.insert(item.lngKey);
}

void CZIPFile::ZIPItems_Items_Selected_SetNone()
{
    selected.clear();
}

void CZIPFile::Zip_Items_ImbeddedZips_SelectOrDeselectAll(bool select)
{
    for (const CZIPFileItem& item : varZIPItems) {
        if (!isImbeddedZip(item))
            continue;
        if (select)
            selected.insert(item.lngKey);
        else
            selected.remove(item.lngKey);
    }
}

bool isArchiveName(QStringView name)
{
    return endsWithNoCase(name, u".zip") || endsWithNoCase(name, u".rar");
}

bool isImbeddedZip(const CZIPFileItem& item)
{
    return item.kind == EntryKind::File && endsWithNoCase(item.sFilename, u".zip");
}

} // namespace vt
