// A helper program of our own with which one goes on speaking: bytes in and bytes out, waited for
// no longer than was allowed. Whatever becomes of the child, the caller goes on.
#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <sys/types.h>

namespace vt {

class GuardedStream
{
public:
    /// Fills in up to so many bytes and tells how many; 0 at the end, -1 when there is no going on.
    using Source = std::function<qint64(char* to, qint64 bytes)>;

    /// \a program: full path on the host. \a file: an open file that becomes the child's number 3;
    /// -1 for none. A failure has the kind Surroundings.
    [[nodiscard]] static ResultOf<std::unique_ptr<GuardedStream>> start(const QString& program,
                                                                        int file = -1);
    /// Ends the child, whatever it is doing.
    ~GuardedStream();
    GuardedStream(const GuardedStream&) = delete;
    GuardedStream& operator=(const GuardedStream&) = delete;

    /// What it is given from now on, as far as it takes it while its answers are read.
    void give(QByteArray head, Source source);

    /// For how long it may be waited from now on, all waits together.
    void allow(qint64 ms) { m_allowedMs = ms; }

    /// Exactly \a bytes of what it answers; false when there will be no more: see problem().
    [[nodiscard]] bool read(char* to, qint64 bytes);
    /// Waits until it has taken everything.
    [[nodiscard]] bool finishGiving();

    /// How it ended, to follow what was to be done: "takes too long"; "" while it goes on.
    [[nodiscard]] const QString& problem() const { return m_problem; }

private:
    GuardedStream(pid_t child, int socket) : m_child(child), m_socket(socket) {}

    [[nodiscard]] bool wantsToGive();
    bool wait(bool forAnswer);
    bool send();
    bool fail(const QString& why);

    pid_t m_child;
    int m_socket;
    qint64 m_allowedMs = 0;
    QByteArray m_waiting; ///< to be given, from m_given on
    qsizetype m_given = 0;
    Source m_source;
    QString m_problem;
};

} // namespace vt
