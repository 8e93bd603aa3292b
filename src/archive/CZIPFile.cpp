#include "archive/CZIPFile.h"

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

} // namespace vt
