#include "install/CDriveFreeSpace.h"

#include "platform/DiskSpace.h"

namespace vt {

qint64 CDriveFreeSpace::Compute() const
{
    const ResultOf<qint64> bytes = freeBytes(m_files, sDrive);
    return bytes ? *bytes : -1;
}

} // namespace vt
