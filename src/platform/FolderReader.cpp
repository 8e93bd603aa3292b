#include "platform/FolderReader.h"

#include "platform/HostFile.h"
#include "platform/Text.h"

#include <QStringDecoder>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The coarsest time stamps in use (FAT) are two seconds apart.
constexpr qint64 coarsestTickNs = 2'100'000'000;

qint64 nsOf(const timespec& t)
{
    return qint64(t.tv_sec) * 1'000'000'000 + t.tv_nsec;
}

DiskStamp stampOf(const struct stat& st)
{
    return {S_ISDIR(st.st_mode) ? 0 : qint64(st.st_size), nsOf(st.st_mtim), nsOf(st.st_ctim)};
}

/// A name as the ...at calls take it; empty text for one that no file can have.
class HostName
{
public:
    explicit HostName(QByteArrayView name)
    {
        if (name.isEmpty()) {
            m_text[0] = '.';
            m_text[1] = '\0';
            return;
        }
        append(name);
    }

    HostName(QByteArrayView folder, QStringView name)
    {
        if (folder.isEmpty() && name.isEmpty())
            append(".");
        append(folder);
        if (!folder.isEmpty() && !name.isEmpty())
            append("\\");
        const bool ascii =
            std::all_of(name.begin(), name.end(), [](QChar c) { return c.unicode() < 0x80; });
        if (!ascii) {
            append(name.toUtf8());
        } else if (m_size + name.size() >= qsizetype(sizeof m_text)) {
            refuse();
        } else { // which is nearly every name: no text of its own
            for (const QChar c : name)
                m_text[m_size++] = hostByte(char(c.unicode()));
            m_text[m_size] = '\0';
        }
    }

    [[nodiscard]] const char* text() const { return m_text; }

private:
    static char hostByte(char c) { return c == '\\' ? '/' : c; }

    void refuse()
    {
        m_size = sizeof m_text; // whatever follows is refused, too
        m_text[0] = '\0';
    }

    void append(QByteArrayView part)
    {
        if (m_size + part.size() >= qsizetype(sizeof m_text))
            return refuse();
        for (const char c : part)
            m_text[m_size++] = hostByte(c);
        m_text[m_size] = '\0';
    }

    char m_text[PATH_MAX];
    qsizetype m_size = 0;
};

bool isUtf8(const char* name)
{
    for (const char* c = name; *c; ++c) {
        if (quint8(*c) >= 0x80)
            return QByteArrayView(name).isValidUtf8();
    }
    return true;
}

} // namespace

bool DiskStamp::settledAt(qint64 readNs) const
{
    return readNs - qMax(modifiedNs, changedNs) > coarsestTickNs;
}

FolderReader::FolderReader(const Files& files, QStringView folder)
{
    const QByteArray host = files.hostPath(folder);
    if (!host.isEmpty())
        m_fd = open(host.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

FolderReader::~FolderReader()
{
    if (m_fd >= 0)
        close(m_fd);
}

qint64 FolderReader::nowNs()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return nsOf(now);
}

DiskStamp FolderReader::stamp(QByteArrayView name) const
{
    struct stat st;
    if (fstatat(m_fd, HostName(name).text(), &st, 0) != 0)
        return {};
    return stampOf(st);
}

std::vector<FolderReader::Found> FolderReader::stamps(std::span<const Wanted> wanted) const
{
    constexpr size_t share = 256; // worth waking a thread for
    constexpr size_t mostThreads = 4;
    std::vector<Found> out(wanted.size());
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        for (size_t from = next.fetch_add(share); from < out.size(); from = next.fetch_add(share)) {
            for (size_t i = from; i < std::min(from + share, out.size()); ++i) {
                struct stat st;
                if (fstatat(m_fd, HostName(wanted[i].folder, wanted[i].name).text(), &st, 0) == 0)
                    out[i] = {stampOf(st), S_ISDIR(st.st_mode)};
            }
        }
    };
    std::vector<std::jthread> others;
    const size_t threads = std::min<size_t>(mostThreads, std::thread::hardware_concurrency());
    try {
        while (others.size() + 1 < std::min(threads, out.size() / share))
            others.emplace_back(work);
    } catch (const std::system_error&) {
        // As many as there are do the same work.
    }
    work();
    others.clear(); // joins them
    return out;
}

FolderReader::Listing FolderReader::list(QByteArrayView name) const
{
    Listing out;
    const hostfile::Descriptor dir(
        openat(m_fd, HostName(name).text(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));

    struct stat st
    {};

    if (!dir.valid() || fstat(dir.get(), &st) != 0)
        return out;
    out.stamp = stampOf(st);
    alignas(dirent64) char buffer[32 * 1024];
    for (;;) {
        const ssize_t got = getdents64(dir.get(), buffer, sizeof buffer);
        if (got <= 0)
            break;
        for (ssize_t at = 0; at < got;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
            at += entry->d_reclen;
            const char* found = entry->d_name;
            if (std::strcmp(found, ".") == 0 || std::strcmp(found, "..") == 0)
                continue;
            if (!isUtf8(found) || std::strchr(found, '\\')) {
                out.unreadableNames = true;
                continue;
            }
            bool folder = entry->d_type == DT_DIR;
            if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
                if (fstatat(dir.get(), found, &st, 0) != 0)
                    continue;
                folder = S_ISDIR(st.st_mode);
            }
            out.entries.push_back({QByteArray(found), folder});
        }
    }
    return out;
}

FolderReader::Read FolderReader::read(QByteArrayView name, qint64 limit)
{
    Read out;
    // A pipe that bears the name of a file must not be waited for.
    const hostfile::Descriptor file(
        openat(m_fd, HostName(name).text(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));

    struct stat st
    {};

    if (!file.valid() || fstat(file.get(), &st) != 0) {
        const int error = errno;
        if (error != ENOENT)
            out.stamp = stamp(name);
        if (out.stamp.exists())
            out.problem = u"it cannot be read: "_s + hostfile::errorText(error) + u'.';
        return out;
    }
    out.stamp = stampOf(st);
    if (!S_ISREG(st.st_mode)) {
        out.problem = u"it is no ordinary file."_s;
        return out;
    }
    if (st.st_size > limit) {
        out.problem = u"it is larger than "_s + sizeText(limit) + u'.';
        return out;
    }
    if (m_buffer.size() < st.st_size)
        m_buffer = QByteArray(qMax<qsizetype>(st.st_size, 256 * 1024), Qt::Uninitialized);
    qsizetype got = 0;
    while (got < st.st_size) {
        const ssize_t n = ::read(file.get(), m_buffer.data() + got, size_t(st.st_size - got));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            out.problem = u"it cannot be read: "_s + hostfile::errorText(errno) + u'.';
            return out;
        }
        if (n == 0)
            break;
        got += n;
    }
    out.bytes = QByteArrayView(m_buffer).first(got);
    return out;
}

} // namespace vt
