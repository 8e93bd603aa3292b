// Folders that were chosen before in a window's folder box, the latest first: at most ten for each
// window, kept in a small text file in the settings folder. Folders that do not exist yet are kept
// too: an installation makes them.
#pragma once

#include "platform/Result.h"
#include "shell/Context.h"
#include "shell/SettingsTable.h"

#include <QStringList>

namespace vt::recentfolders {

inline constexpr qsizetype most = 10;

/// Of the window with that section; an unreadable list is an empty one.
[[nodiscard]] QStringList list(Context& context, Section window);
/// \a folder goes to the front.
Result add(Context& context, Section window, const QString& folder);

} // namespace vt::recentfolders
