#include "platform/InstanceLock.h"

#include "platform/Gate.h"
#include "platform/HostFile.h"
#include "platform/WinPath.h"

#include <QDateTime>
#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// What the holder wrote about itself; empty when nothing can be read.
QString holderText(int descriptor)
{
    char buffer[512];
    const ssize_t n = pread(descriptor, buffer, sizeof buffer, 0);
    return n > 0 ? QString::fromUtf8(buffer, qsizetype(n)).simplified() : QString();
}

void writeHolder(int descriptor)
{
    QFile name(u"/proc/self/comm"_s); // "vantrel" or "vantrelctl"
    const QByteArray program =
        name.open(QIODevice::ReadOnly) ? name.readAll().trimmed() + ", " : QByteArray();
    const QByteArray text =
        program + "process " + QByteArray::number(qint64(getpid())) + " on " +
        QSysInfo::machineHostName().toUtf8() + " since " +
        QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH:mm:ss"_s).toUtf8() + '\n';
    // Only for people to read: the lock holds without it.
    if (ftruncate(descriptor, 0) == 0 &&
        pwrite(descriptor, text.data(), size_t(text.size()), 0) < 0)
        errno = 0;
}

} // namespace

InstanceLock::~InstanceLock()
{
    release();
}

QString InstanceLock::fileName()
{
    return u"Vantrel.lock"_s;
}

Result InstanceLock::tryLock(const Gate& gate, const QString& programFolder)
{
    if (held())
        return Result::success();
    const auto refuse = [&](const QString& why) {
        return Result::failure(u"The program folder '"_s + programFolder + why,
                               ErrorKind::Surroundings);
    };
    const ResultOf<QByteArray> host = gate.hostPath(winpath::join(programFolder, fileName()));
    if (!host)
        return Result::failure(host.text, ErrorKind::Surroundings);
    const int fd = open(host->constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
    if (fd < 0)
        return refuse(u"' could not be locked: "_s + hostfile::errorText(errno));
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        const QString holder = holderText(fd);
        close(fd);
        if (error != EWOULDBLOCK)
            return refuse(u"' could not be locked: "_s + hostfile::errorText(error));
        return refuse(u"' is in use by another Vantrel"_s +
                      (holder.isEmpty() ? QString() : u" ("_s + holder + u')') +
                      u". Please close that one first."_s);
    }
    m_descriptor = fd;
    writeHolder(fd);
    gate.files().noteChanged(winpath::join(programFolder, fileName()));
    return Result::success();
}

void InstanceLock::release()
{
    // The file stays: deleting it would let two others each lock a file of that name.
    if (m_descriptor >= 0)
        close(std::exchange(m_descriptor, -1));
}

} // namespace vt
