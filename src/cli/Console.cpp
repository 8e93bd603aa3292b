#include "cli/Console.h"

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace vt::cli::console {

namespace {

volatile std::sig_atomic_t stopSignals = 0;

void noteStop(int number)
{
    stopSignals = stopSignals + 1;
    if (stopSignals > 1) {
        std::signal(number, SIG_DFL);
        std::raise(number);
    }
}

void writeAll(int fd, const char* bytes, qsizetype size)
{
    while (size > 0) {
        const ssize_t written = write(fd, bytes, static_cast<size_t>(size));
        if (written <= 0) {
            if (written < 0 && errno == EINTR)
                continue;
            return;
        }
        bytes += written;
        size -= written;
    }
}

} // namespace

bool inputIsTerminal()
{
    return isatty(STDIN_FILENO) == 1;
}

bool errorIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

void output(QByteArrayView bytes)
{
    writeAll(STDOUT_FILENO, bytes.data(), bytes.size());
}

void error(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    writeAll(STDERR_FILENO, bytes.constData(), bytes.size());
}

void installSignals()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGINT, noteStop);
    std::signal(SIGTERM, noteStop);
}

bool stopRequested()
{
    return stopSignals > 0;
}

} // namespace vt::cli::console
