// The advisory lock that lets one writing process at a time work in a program folder. The lock is
// the system's, not the file: a file left behind by a dead process blocks nobody.
#pragma once

#include "platform/Result.h"

#include <QString>

namespace vt {

class Gate;

class InstanceLock
{
public:
    InstanceLock() = default;
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Takes the lock of \a programFolder (a Windows text below one of the gate's roots, existing)
    /// without waiting. Failures are of the kind Surroundings and tell which process holds it.
    [[nodiscard]] Result tryLock(const Gate& gate, const QString& programFolder);

    [[nodiscard]] bool held() const { return m_descriptor >= 0; }

    void release();

    /// Name of the lock file.
    [[nodiscard]] static QString fileName();

private:
    int m_descriptor = -1;
};

} // namespace vt
