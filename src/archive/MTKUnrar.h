// Declarations behind CTKUnrar: the modes in which an archive is gone through, and the tables that
// turn the codes of failures into texts, one for each step.
#pragma once

#include "archive/RarDirectory.h"

#include <QDateTime>
#include <QString>

namespace vt::MTKUnrar {

enum class Mode : int
{
    List = 0,
    Test = 1,
    Extract = 2,
};

[[nodiscard]] QString openingText(RarCode code);
[[nodiscard]] QString commentText(RarCode code);
/// \a password: whether one was set.
[[nodiscard]] QString processingText(RarCode code, bool password);

} // namespace vt::MTKUnrar
