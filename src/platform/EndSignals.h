// The wish of the system that this program ends (SIGTERM and SIGHUP at a log-off, SIGINT from a
// terminal), told in the event loop, where windows can be closed and work be finished.
#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace vt {

class EndSignals
{
public:
    /// From now on \a asked is called for each such signal. One at a time in a process.
    explicit EndSignals(std::function<void()> asked);
    /// From now on these signals end the process again.
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

private:
    int m_ends[2] = {-1, -1}; ///< of a pipe that the handler writes to
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vt
