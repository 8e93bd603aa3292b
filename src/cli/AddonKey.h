// The keys of add-ons as typed: what is no number is wrong usage, a number that nobody recorded is
// a failure.
#pragma once

#include "platform/Result.h"

#include <QString>

namespace vt::cli {

/// A text of digits too long for any key counts as an unknown one.
[[nodiscard]] ResultOf<qint64> addonKey(const QString& typed);
[[nodiscard]] Result unknownAddon(const QString& key);

} // namespace vt::cli
