// Facts about the file systems that Windows paths lie on.
#pragma once

#include "platform/Result.h"

#include <QStringView>

#include <optional>

namespace vt {

class Files;

/// Bytes that this user may still write where \a path lies, or where its nearest existing parent
/// does.
[[nodiscard]] ResultOf<qint64> freeBytes(const Files& files, QStringView path);

/// A number of the file system that \a path, or its nearest existing parent, lies on: hard links
/// and renames work where it is the same. Nothing when that cannot be told.
[[nodiscard]] std::optional<quint64> fileSystemOf(const Files& files, QStringView path);

} // namespace vt
