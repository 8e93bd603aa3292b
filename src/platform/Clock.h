// The present time as a seam, so that tests can stand still.
#pragma once

#include <QDateTime>

namespace vt {

class Clock
{
public:
    virtual ~Clock() = default;

    /// Local time.
    [[nodiscard]] virtual QDateTime now() const { return QDateTime::currentDateTime(); }
};

} // namespace vt
