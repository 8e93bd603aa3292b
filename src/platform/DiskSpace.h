// Facts about the file systems that Windows paths lie on.
#pragma once

#include "platform/Result.h"

#include <QStringView>

namespace vt {

class Files;

/// Bytes that this user may still write where \a path lies, or where its nearest existing parent
/// does.
[[nodiscard]] ResultOf<qint64> freeBytes(const Files& files, QStringView path);

/// Whether both paths (or their nearest existing parents) lie on one file system, so that hard
/// links and renames between them work. False when that cannot be told.
[[nodiscard]] bool sameFileSystem(const Files& files, QStringView a, QStringView b);

} // namespace vt
