// The missions that the simulator brought itself, known by the ends of their folders' paths.
#pragma once

#include <QStringView>

#include <span>

namespace vt::defaultmissions {

/// Folders relative to the Missions folder ("Tutorials\Tutorial01\"), 110 in a fixed order.
[[nodiscard]] std::span<const QStringView> folders();

/// Whether the path of a mission's folder, which ends in "\", ends in one of folders(). Letter by
/// letter: case counts, and nothing is asked of what stands before.
[[nodiscard]] bool isDefault(QStringView folder);

} // namespace vt::defaultmissions
