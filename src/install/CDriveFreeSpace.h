// Free space of the drive that a folder lies on.
#pragma once

#include "platform/Files.h"

#include <QString>

namespace vt {

class CDriveFreeSpace
{
public:
    /// \a files must outlive this.
    explicit CDriveFreeSpace(const Files& files) : m_files(files) {}

    QString sDrive; ///< "C:", or any folder on the drive

    /// Bytes that may still be written there; -1 when it cannot be told.
    [[nodiscard]] qint64 Compute() const;

private:
    const Files& m_files;
};

} // namespace vt
