#include "platform/GuardedStream.h"

#include <QElapsedTimer>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 pieceBytes = 256LL * 1024;
constexpr int inheritedFile = 3;

int spawn(pid_t& child, const QByteArray& program, int socket, int file)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, socket, STDOUT_FILENO);
    // Libraries tell their own about every fault, where only our sentences belong.
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    if (file >= 0)
        posix_spawn_file_actions_adddup2(&actions, file, inheritedFile);
    QByteArray name = program;
    char* const arguments[] = {name.data(), nullptr};
    const int error =
        posix_spawn(&child, program.constData(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

ResultOf<std::unique_ptr<GuardedStream>> GuardedStream::start(const QString& program, int file)
{
    int ends[2];
    pid_t child = -1;
    int error = 0;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        error = errno;
    } else {
        error = spawn(child, program.toLocal8Bit(), ends[1], file);
        close(ends[1]);
        if (error != 0)
            close(ends[0]);
    }
    if (error != 0)
        return Result::failure(u"The helper program '"_s + program + u"' could not be started: "_s +
                                   QString::fromLocal8Bit(std::strerror(error)) + u'.',
                               ErrorKind::Surroundings);
    return std::unique_ptr<GuardedStream>(new GuardedStream(child, ends[0]));
}

GuardedStream::~GuardedStream()
{
    close(m_socket);
    kill(m_child, SIGKILL);
    while (waitpid(m_child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void GuardedStream::give(QByteArray head, Source source)
{
    m_waiting = std::move(head);
    m_given = 0;
    m_source = std::move(source);
}

bool GuardedStream::fail(const QString& why)
{
    m_problem = why;
    return false;
}

bool GuardedStream::wantsToGive()
{
    if (m_given < m_waiting.size())
        return true;
    if (!m_source)
        return false;
    m_given = 0;
    m_waiting.resize(pieceBytes);
    const qint64 n = m_source(m_waiting.data(), pieceBytes);
    m_waiting.resize(qMax<qint64>(n, 0));
    if (n <= 0)
        m_source = nullptr;
    if (n < 0)
        return fail(u"needs what cannot be read"_s);
    return n > 0;
}

/// As much as it takes at once.
bool GuardedStream::send()
{
    const ssize_t n = ::send(m_socket,
                             m_waiting.constData() + m_given,
                             size_t(m_waiting.size() - m_given),
                             MSG_NOSIGNAL | MSG_DONTWAIT);
    if (n > 0)
        m_given += n;
    else if (errno != EINTR && errno != EAGAIN)
        return fail(u"brings the helper program down"_s);
    return true;
}

/// Until there is an answer, or it takes more of what is given.
bool GuardedStream::wait(bool forAnswer)
{
    const bool giving = wantsToGive();
    if (!m_problem.isEmpty())
        return false;
    if (!giving && !forAnswer)
        return true;
    pollfd state{m_socket, short((forAnswer ? POLLIN : 0) | (giving ? POLLOUT : 0)), 0};
    QElapsedTimer waited;
    waited.start();
    const int ready = poll(&state, 1, int(qBound(qint64(0), m_allowedMs, qint64(1'000'000))));
    m_allowedMs -= waited.elapsed();
    if (ready == 0)
        return fail(u"takes too long"_s);
    if (ready < 0)
        return errno == EINTR || fail(u"ends: "_s + QString::fromLocal8Bit(std::strerror(errno)));
    return (state.revents & POLLOUT) == 0 || send();
}

bool GuardedStream::read(char* to, qint64 bytes)
{
    while (bytes > 0 && m_problem.isEmpty()) {
        const ssize_t n = recv(m_socket, to, size_t(bytes), MSG_DONTWAIT);
        if (n > 0) {
            to += n;
            bytes -= n;
        } else if (n == 0 || (errno != EINTR && errno != EAGAIN)) {
            return fail(u"brings the helper program down"_s);
        } else if (!wait(true)) {
            return false;
        }
    }
    return m_problem.isEmpty();
}

bool GuardedStream::finishGiving()
{
    while (m_problem.isEmpty() && wantsToGive())
        if (!wait(false))
            return false;
    return m_problem.isEmpty();
}

} // namespace vt
