#include "platform/DirectActions.h"

#include "platform/HostFile.h"
#include "platform/WinPath.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QByteArray hostParent(const QByteArray& host)
{
    return host.first(qMax<qsizetype>(host.lastIndexOf('/'), 1));
}

} // namespace

ResultOf<QByteArray> DirectActions::read(const QString& path, qint64 limit)
{
    return m_gate.files().read(path, limit);
}

std::optional<FileInfo> DirectActions::info(const QString& path)
{
    return m_gate.files().info(path);
}

Result DirectActions::replace(const QString& path, const QByteArray& bytes)
{
    const ResultOf<Fingerprint> placed = place(path, Content::ofBytes(bytes));
    return placed ? Result::success() : placed.error();
}

ResultOf<Fingerprint> DirectActions::place(const QString& path, const Content& content)
{
    if (Result made = makeFolder(winpath::parent(path)); !made)
        return made;
    const ResultOf<QByteArray> host = m_gate.hostPath(path);
    if (!host)
        return host.error();
    if (const int error = m_gate.fault("place", *host))
        return hostfile::refused(path, u"written", error);

    struct stat st
    {};

    const bool exists = lstat(host->constData(), &st) == 0;
    if (exists && S_ISDIR(st.st_mode))
        return hostfile::refused(path, u"written", EISDIR);

    const QByteArray folderHost = hostParent(*host);
    const hostfile::Descriptor folder = hostfile::openFolder(folderHost);
    if (!folder.valid())
        return hostfile::refused(path, u"written", errno);
    const QByteArray temporary =
        "~vtd" + QByteArray::number(getpid()) + '-' + QByteArray::number(++m_counter) + ".tmp";
    unlinkat(folder.get(), temporary.constData(), 0); // left by a dead process of the same number
    unsigned mode = exists && S_ISREG(st.st_mode) ? st.st_mode & 0777 : 0644;
    if (content.writable)
        mode |= 0200;
    ResultOf<Fingerprint> print = hostfile::create(
        folder.get(), temporary, content, m_sync == Sync::Each, mode, m_gate.breathing);
    if (!print)
        return Result::failure(
            hostfile::withCause(u"'"_s + path + u"' could not be written"_s, print.text),
            print.kind);
    const QByteArray name = host->sliced(host->lastIndexOf('/') + 1);
    if (renameat(folder.get(), temporary.constData(), folder.get(), name.constData()) != 0) {
        const int error = errno;
        unlinkat(folder.get(), temporary.constData(), 0);
        return hostfile::refused(path, u"written", error);
    }
    m_gate.files().noteChanged(path);
    if (m_sync == Sync::Each) {
        const int fault = m_gate.fault("sync folder", folderHost);
        if (const Result synced = hostfile::syncFolder(folder.get(), fault); !synced)
            return Result::failure(u"'"_s + path + u"' was written, but "_s + synced.text,
                                   synced.kind);
    }
    return print;
}

Result DirectActions::keep(const QString& from, const QString& to)
{
    if (Result made = makeFolder(winpath::parent(to)); !made)
        return made;
    const QByteArray source = m_gate.files().hostPath(from);
    const ResultOf<QByteArray> target = m_gate.hostPath(to);
    if (!target)
        return target.error();
    if (const int error = m_gate.fault("keep", *target))
        return hostfile::refused(from, u"kept", error);
    const Result kept = hostfile::linkOrCopy(
        source, *target, hostfile::Links::Follow, true, m_gate.fault("link", *target));
    m_gate.files().noteChanged(to);
    return kept ? kept
                : Result::failure(
                      hostfile::withCause(u"'"_s + from + u"' could not be kept"_s, kept.text),
                      kept.kind);
}

Result DirectActions::copy(const QString& from, const QString& to)
{
    const QByteArray source = m_gate.files().hostPath(from);
    if (!m_gate.files().isFile(from))
        return hostfile::refused(from, u"copied", ENOENT);
    const ResultOf<Fingerprint> placed = place(to, hostfile::contentOf(source));
    return placed ? Result::success() : placed.error();
}

Result DirectActions::remove(const QString& path)
{
    const ResultOf<QByteArray> host = m_gate.hostPath(path);
    if (!host)
        return host.error();
    if (const int error = m_gate.fault("remove", *host))
        return hostfile::refused(path, u"deleted", error);
    if (unlink(host->constData()) != 0 && errno != ENOENT)
        return hostfile::refused(path, u"deleted", errno);
    m_gate.files().noteChanged(path);
    return Result::success();
}

Result DirectActions::makeFolder(const QString& folder)
{
    if (m_gate.files().isFolder(folder))
        return Result::success();
    const ResultOf<QByteArray> host = m_gate.hostPath(folder);
    if (!host)
        return host.error();
    if (const int error = m_gate.fault("folder", *host))
        return hostfile::refused(folder, u"made", error);
    if (Result made = hostfile::makeFolders(*host); !made)
        return Result::failure(u"The folder '"_s + folder + u"' could not be made: "_s + made.text,
                               made.kind);
    m_gate.files().noteChanged(folder);
    return Result::success();
}

Result DirectActions::moveOver(const QString& from, const QString& to)
{
    const ResultOf<QByteArray> source = m_gate.hostPath(from);
    const ResultOf<QByteArray> target = m_gate.hostPath(to);
    if (!source || !target)
        return source ? target.error() : source.error();
    if (const int error = m_gate.fault("rename", *target))
        return hostfile::refused(to, u"replaced", error);
    if (rename(source->constData(), target->constData()) != 0)
        return hostfile::refused(to, u"replaced", errno);
    if (const hostfile::Descriptor folder = hostfile::openFolder(hostParent(*target));
        folder.valid() && m_sync == Sync::Each)
        fsync(folder.get());
    m_gate.files().noteChanged(from);
    m_gate.files().noteChanged(to);
    return Result::success();
}

Result DirectActions::removeEmptyFolder(const QString& folder)
{
    const ResultOf<QByteArray> host = m_gate.hostPath(folder);
    if (!host)
        return host.error();
    if (const int error = m_gate.fault("remove folder", *host))
        return hostfile::refused(folder, u"deleted", error);
    if (rmdir(host->constData()) != 0 && errno != ENOENT && errno != ENOTEMPTY && errno != EEXIST)
        return hostfile::refused(folder, u"deleted", errno);
    m_gate.files().noteChanged(folder);
    return Result::success();
}

} // namespace vt
