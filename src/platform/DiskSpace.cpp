#include "platform/DiskSpace.h"

#include "platform/Files.h"
#include "platform/HostFile.h"
#include "platform/WinPath.h"

#include <cerrno>
#include <sys/stat.h>
#include <sys/statvfs.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The path on the host, or that of its nearest existing parent; empty without a known drive.
QByteArray nearestExisting(const Files& files, QStringView path)
{
    QString at = winpath::normalised(path);
    while (!at.isEmpty()) {
        QByteArray host = files.hostPath(at);
        struct stat status = {};
        if (!host.isEmpty() && stat(host.constData(), &status) == 0)
            return host;
        const QString above = winpath::parent(at);
        if (above == at)
            break;
        at = above;
    }
    return {};
}

} // namespace

ResultOf<qint64> freeBytes(const Files& files, QStringView path)
{
    const auto fail = [&](const QString& why) {
        return Result::failure(u"The free space at '"_s + path.toString() + u"' is not known: "_s +
                               why);
    };
    const QByteArray host = nearestExisting(files, path);
    if (host.isEmpty())
        return fail(u"no such drive or folder."_s);
    struct statvfs status = {};
    if (statvfs(host.constData(), &status) != 0)
        return fail(hostfile::errorText(errno));
    return qint64(status.f_bavail) * qint64(status.f_frsize);
}

std::optional<quint64> fileSystemOf(const Files& files, QStringView path)
{
    const QByteArray host = nearestExisting(files, path);
    struct stat status = {};
    if (host.isEmpty() || stat(host.constData(), &status) != 0)
        return std::nullopt;
    return status.st_dev;
}

} // namespace vt
