// Helper programs of our own that do what may end badly (decoding files of strangers): bytes in,
// bytes out, limited in time and output. Whatever becomes of the child, the caller goes on.
#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vt {

struct GuardedCall
{
    QString program; ///< full path on the host
    QStringList arguments;
    QByteArray input;                 ///< given to its standard input
    int timeoutMs = 20'000;           ///< then it is ended
    qsizetype outputLimit = 64 << 20; ///< bytes; then it is ended
};

/// Where a helper program of this name lies: beside the running program. A path on the host.
[[nodiscard]] QString helperProgram(const QString& name);

/// What it wrote on standard output when it ended well (exit status 0). A failure's text is the
/// first line of its standard error, or says how it ended; kind Surroundings when it could not be
/// started.
[[nodiscard]] ResultOf<QByteArray> runGuarded(const GuardedCall& call);

} // namespace vt
