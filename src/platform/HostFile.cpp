#include "platform/HostFile.h"

#include "platform/Hash.h"
#include "platform/Text.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace vt {

Content Content::ofBytes(QByteArray bytes)
{
    Content content;
    content.size = bytes.size();
    content.transfer = [bytes = std::move(bytes)](const Sink& sink) {
        // A writer that refuses a piece reports its own reason.
        if (!bytes.isEmpty())
            (void)sink(bytes);
        return Result::success();
    };
    return content;
}

} // namespace vt

namespace vt::hostfile {

namespace {

/// Larger single writes were slower on ext4.
constexpr qsizetype writePiece = 64 * 1024;
constexpr qsizetype readPiece = 256 * 1024;

/// The end of a sentence: callers know the file by the name that the user knows.
Result failed(int error)
{
    return Result::failure(errorText(error),
                           error == ENOSPC || error == EDQUOT ? ErrorKind::DiskFull
                                                              : ErrorKind::Failed);
}

Result cannotRead(const QByteArray& host, int error)
{
    return Result::failure(u"'"_s + QString::fromUtf8(host) + u"' could not be read: "_s +
                           errorText(error));
}

bool writeAll(int fd, QByteArrayView bytes, int& error, const Breath& breath)
{
    while (!bytes.isEmpty()) {
        const ssize_t n = write(fd, bytes.data(), size_t(qMin(bytes.size(), writePiece)));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            error = errno;
            return false;
        }
        bytes = bytes.sliced(n);
        if (breath)
            breath();
    }
    return true;
}

/// Hashes what passes by; content that comes in one piece needs no state.
class PassingHash
{
public:
    explicit PassingHash(qint64 expected) : m_expected(expected) {}

    void add(QByteArrayView piece)
    {
        if (!m_state && m_total == 0 && piece.size() == m_expected) {
            m_whole = xxh3(piece);
        } else {
            if (!m_state)
                m_state.emplace();
            m_state->add(piece);
        }
        m_total += piece.size();
    }

    [[nodiscard]] qint64 total() const { return m_total; }

    [[nodiscard]] QByteArray result() const
    {
        if (m_state)
            return m_state->result();
        return m_total > 0 ? m_whole : xxh3({});
    }

private:
    qint64 m_expected;
    qint64 m_total = 0;
    QByteArray m_whole;
    std::optional<Xxh3> m_state;
};

timespec timeOf(qint64 ns)
{
    return {time_t(ns / 1'000'000'000), long(ns % 1'000'000'000)};
}

qint64 nsOf(const timespec& time)
{
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

QByteArray linkText(const QByteArray& host)
{
    char text[PATH_MAX];
    const ssize_t length = readlink(host.constData(), text, sizeof text);
    return length < 0 ? QByteArray() : QByteArray(text, length);
}

/// Of a link itself.
Fingerprint linkPrint(const QByteArray& text, const struct stat& st)
{
    return {st.st_size, nsOf(st.st_mtim), xxh3("link:" + text)};
}

/// Writes the content into the open file and names the failure, if any.
ResultOf<Fingerprint> fill(int fd, const Content& content, bool sync, const Breath& breath = {})
{
    PassingHash hash(content.size);
    int error = 0;
    bool tooMuch = false;
    const Content::Sink sink = [&](QByteArrayView piece) {
        if (content.size >= 0 && hash.total() + piece.size() > content.size) {
            tooMuch = true;
            return false;
        }
        hash.add(piece);
        return writeAll(fd, piece, error, breath);
    };
    const Result given = content.transfer(sink);
    if (error != 0)
        return failed(error);
    if (!given)
        return given;
    if (tooMuch || (content.size >= 0 && hash.total() != content.size))
        return Result::failure(u"it has not the announced size of "_s +
                               countText(content.size, u"byte"_s, u"bytes"_s) + u'.');
    Fingerprint print;
    print.size = hash.total();
    print.xxh3 = hash.result();
    // A file system without permissions of its own is no reason to fail.
    if (content.mode >= 0)
        (void)!fchmod(fd, mode_t(content.mode & 0777));
    if (content.modifiedNs >= 0) {
        const timespec times[2] = {timeOf(content.modifiedNs), timeOf(content.modifiedNs)};
        if (futimens(fd, times) != 0)
            return failed(errno);
        print.modifiedNs = content.modifiedNs;
    } else {
        struct stat st
        {};

        if (fstat(fd, &st) != 0)
            return failed(errno);
        print.modifiedNs = nsOf(st.st_mtim);
    }
    if (sync && fsync(fd) != 0)
        return notSynced(errno);
    return print;
}

/// syncfs of the file system that \a fd lies on, by a child; 0 or the error.
int syncInChild(int fd, const Breath& breath)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(syncfs(fd) == 0 ? 0 : errno);
    if (child < 0)
        return syncfs(fd) == 0 ? 0 : errno;
    constexpr timespec pause{0, 2'000'000};
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(child, &status, WNOHANG)) == 0 || (ended < 0 && errno == EINTR)) {
        breath();
        (void)nanosleep(&pause, nullptr);
    }
    if (ended == child && WIFEXITED(status))
        return WEXITSTATUS(status);
    return syncfs(fd) == 0 ? 0 : errno; // somebody ended the child
}

Result removeTreeAt(int above, const char* name)
{
    const int fd = openat(above, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT)
            return Result::success();
        if ((errno == ENOTDIR || errno == ELOOP) && unlinkat(above, name, 0) == 0)
            return Result::success();
        return failed(errno);
    }
    DIR* dir = fdopendir(fd);
    if (!dir) {
        close(fd);
        return failed(ENOMEM);
    }
    Result result = Result::success();
    while (const dirent* entry = readdir(dir)) {
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
            continue;
        if (entry->d_type != DT_DIR && entry->d_type != DT_UNKNOWN) {
            if (unlinkat(fd, entry->d_name, 0) != 0 && errno != ENOENT)
                result = failed(errno);
        } else if (Result inner = removeTreeAt(fd, entry->d_name); !inner) {
            result = inner;
        }
    }
    closedir(dir);
    if (result && unlinkat(above, name, AT_REMOVEDIR) != 0 && errno != ENOENT)
        result = failed(errno);
    return result;
}

} // namespace

Descriptor::~Descriptor()
{
    reset();
}

Descriptor::Descriptor(Descriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    if (this != &other) {
        reset();
        m_fd = std::exchange(other.m_fd, -1);
    }
    return *this;
}

void Descriptor::reset()
{
    if (m_fd >= 0)
        close(m_fd);
    m_fd = -1;
}

QString errorText(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return u"the disk is full."_s;
    case EACCES:
    case EPERM:
        return u"access is denied."_s;
    case EROFS:
        return u"the disk is read-only."_s;
    case ENOENT:
        return u"it does not exist."_s;
    case EFBIG:
        return u"the file would be larger than allowed."_s;
    default:
        return QString::fromLocal8Bit(std::strerror(error)) + u'.';
    }
}

QString withCause(const QString& what, const QString& why)
{
    const bool sentence = why.isEmpty() || !why.front().isLower();
    return what + (sentence ? u". "_s : u": "_s) + why;
}

Result refused(const QString& path, QStringView doing, int error)
{
    return Result::failure(u"'"_s + path + u"' could not be "_s + doing.toString() + u": "_s +
                               errorText(error),
                           error == ENOSPC ? ErrorKind::DiskFull : ErrorKind::Failed);
}

Descriptor openFolder(const QByteArray& host)
{
    return Descriptor(open(host.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

ResultOf<Fingerprint> create(int folder,
                             const QByteArray& name,
                             const Content& content,
                             bool sync,
                             unsigned mode,
                             const Breath& breath)
{
    const Descriptor fd(openat(
        folder, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!fd.valid())
        return failed(errno);
    if (content.mode < 0 && mode != 0644)
        (void)!fchmod(fd.get(), mode); // what is replaced had it in spite of the mask
    ResultOf<Fingerprint> print = fill(fd.get(), content, sync, breath);
    if (!print)
        unlinkat(folder, name.constData(), 0);
    return print;
}

Result makeFolders(const QByteArray& host, const std::function<void(const QByteArray&)>& made)
{
    if (host.isEmpty() || mkdir(host.constData(), 0755) == 0) {
        if (!host.isEmpty() && made)
            made(host);
        return Result::success();
    }
    if (errno == EEXIST) {
        struct stat st
        {};

        if (stat(host.constData(), &st) == 0 && S_ISDIR(st.st_mode))
            return Result::success();
        return failed(ENOTDIR);
    }
    if (errno != ENOENT)
        return failed(errno);
    if (Result above = makeFolders(host.first(qMax<qsizetype>(host.lastIndexOf('/'), 0)), made);
        !above)
        return above;
    if (mkdir(host.constData(), 0755) != 0 && errno != EEXIST)
        return failed(errno);
    if (made)
        made(host);
    return Result::success();
}

Content contentOf(const QByteArray& host)
{
    Content content;

    struct stat st
    {};

    if (stat(host.constData(), &st) == 0) {
        content.size = st.st_size;
        content.modifiedNs = nsOf(st.st_mtim);
    }
    content.transfer = [host](const Content::Sink& sink) {
        const Descriptor fd(open(host.constData(), O_RDONLY | O_CLOEXEC));
        if (!fd.valid())
            return cannotRead(host, errno);
        QByteArray buffer(readPiece, Qt::Uninitialized);
        for (;;) {
            const ssize_t n = read(fd.get(), buffer.data(), size_t(buffer.size()));
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                return cannotRead(host, errno);
            if (n == 0)
                return Result::success();
            if (!sink(QByteArrayView(buffer.constData(), n)))
                return Result::success(); // the writer knows why
        }
    };
    return content;
}

ResultOf<Fingerprint>
copyTo(int folder, const QByteArray& name, const QByteArray& from, Links links, bool sync)
{
    struct stat st
    {};

    const bool link =
        links == Links::Keep && lstat(from.constData(), &st) == 0 && S_ISLNK(st.st_mode);
    if (!link) {
        Content content = contentOf(from);
        if (stat(from.constData(), &st) == 0)
            content.mode = int(st.st_mode & 0777);
        return create(folder, name, content, sync);
    }
    const QByteArray text = linkText(from);
    if (text.isEmpty() || symlinkat(text.constData(), folder, name.constData()) != 0)
        return failed(errno);
    const timespec times[2] = {st.st_atim, st.st_mtim};
    // Where a link's time cannot be set, it has that of now.
    (void)!utimensat(folder, name.constData(), times, AT_SYMLINK_NOFOLLOW);
    if (fstatat(folder, name.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return failed(errno);
    return linkPrint(text, st);
}

Result linkOrCopy(const QByteArray& from, const QByteArray& to, Links links, bool sync, int fault)
{
    const int follow = links == Links::Follow ? AT_SYMLINK_FOLLOW : 0;
    const int error = fault != 0 ? fault
                      : linkat(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), follow) == 0
                          ? 0
                          : errno;
    if (error == 0)
        return Result::success();
    if (error == EEXIST || error == ENOENT || error == ENOSPC || error == EROFS)
        return failed(error);
    const qsizetype cut = to.lastIndexOf('/');
    const Descriptor folder = openFolder(to.first(qMax<qsizetype>(cut, 1)));
    if (!folder.valid())
        return failed(errno);
    const ResultOf<Fingerprint> copied =
        copyTo(folder.get(), to.sliced(cut + 1), from, links, sync);
    return copied ? Result::success() : copied.error();
}

int renameNew(int folder, const QByteArray& from, int toFolder, const QByteArray& to, int fault)
{
    const char* oldName = from.constData();
    const char* newName = to.constData();
    if (fault == 0) {
        if (renameat2(folder, oldName, toFolder, newName, RENAME_NOREPLACE) == 0)
            return 0;
        fault = errno;
    }
    if (fault != EINVAL && fault != ENOSYS && fault != ENOTSUP)
        return fault;

    struct stat st
    {};

    if (fstatat(folder, oldName, &st, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    if (!S_ISDIR(st.st_mode)) {
        if (linkat(folder, oldName, toFolder, newName, 0) == 0)
            return unlinkat(folder, oldName, 0) == 0 ? 0 : errno;
        if (errno == EEXIST)
            return EEXIST;
    }
    // Folders, and files where there are no second names. A folder takes the place of an empty one
    // at most, should one come to life at this very moment.
    if (fstatat(toFolder, newName, &st, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    return renameat(folder, oldName, toFolder, newName) == 0 ? 0 : errno;
}

Result removeTree(const QByteArray& host)
{
    const qsizetype cut = host.lastIndexOf('/');
    const Descriptor above = openFolder(host.first(qMax<qsizetype>(cut, 1)));
    if (!above.valid())
        return errno == ENOENT ? Result::success() : failed(errno);
    return removeTreeAt(above.get(), host.sliced(cut + 1).constData());
}

// The content may be whole in memory, but nobody knows what the disk will hold.
Result notSynced(int error)
{
    if (error == ENOSPC || error == EDQUOT)
        return failed(error);
    return Result::failure(u"the disk did not confirm the writing: "_s + errorText(error),
                           ErrorKind::DiskFailed);
}

Result syncFolder(const QByteArray& host, int fault)
{
    const Descriptor fd = openFolder(host);
    if (!fd.valid())
        return errno == ENOENT ? Result::success() : notSynced(errno);
    return syncFolder(fd.get(), fault);
}

Result syncFolder(int folder, int fault)
{
    const int error = fault != 0 ? fault : fsync(folder) == 0 ? 0 : errno;
    // Answers of file systems that know no sync of folders, or are not there to be written.
    const bool unknown = error == EINVAL || error == ENOTSUP || error == ENOSYS;
    return error == 0 || unknown ? Result::success() : notSynced(error);
}

Result syncFileSystem(const QByteArray& host, int fault, const Breath& breath)
{
    const Descriptor fd = openFolder(host);
    if (!fd.valid())
        return errno == ENOENT ? Result::success() : notSynced(errno);
    if (fault == 0)
        fault = breath ? syncInChild(fd.get(), breath) : (syncfs(fd.get()) == 0 ? 0 : errno);
    return fault == 0 ? Result::success() : notSynced(fault);
}

ResultOf<Fingerprint> fingerprint(const QByteArray& host)
{
    struct stat st
    {};

    if (lstat(host.constData(), &st) == 0 && S_ISLNK(st.st_mode))
        return linkPrint(linkText(host), st);
    const Content content = contentOf(host);
    Fingerprint print;
    Xxh3 hash;
    qint64 total = 0;
    const Result read = content.transfer([&](QByteArrayView piece) {
        hash.add(piece);
        total += piece.size();
        return true;
    });
    if (!read)
        return read;
    print.size = total;
    print.modifiedNs = content.modifiedNs;
    print.xxh3 = hash.result();
    return print;
}

} // namespace vt::hostfile
