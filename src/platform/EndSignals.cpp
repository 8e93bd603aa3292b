#include "platform/EndSignals.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace vt {

namespace {

/// A handler knows nothing but what is global.
volatile sig_atomic_t writeEnd = -1;

void handle(int)
{
    const int before = errno;
    const char byte = 1;
    if (writeEnd >= 0 && write(writeEnd, &byte, 1) != 1) {
        // The pipe is full: it has been told often enough.
    }
    errno = before;
}

void setHandler(void (*handler)(int))
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action = {};
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

EndSignals::EndSignals(std::function<void()> asked)
{
    if (pipe2(m_ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_ends[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(),
                     &QSocketNotifier::activated,
                     m_notifier.get(),
                     [end = m_ends[0], asked = std::move(asked)] {
                         char bytes[16];
                         while (read(end, bytes, sizeof bytes) > 0) {
                         }
                         asked();
                     });
    writeEnd = m_ends[1];
    setHandler(&handle);
}

EndSignals::~EndSignals()
{
    setHandler(SIG_DFL);
    writeEnd = -1;
    m_notifier.reset();
    for (const int end : m_ends)
        if (end >= 0)
            close(end);
}

} // namespace vt
