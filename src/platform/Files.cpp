// Look-ups try the spelling as given first: one stat decides the common case. Only a miss asks for
// the folder's listing.
#include "platform/Files.h"

#include "platform/HostFile.h"
#include "platform/WinPath.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Names kept in listings before they are all forgotten.
constexpr qsizetype maxCachedNames = 400'000;
constexpr qsizetype maxCachedFolders = 100'000;
/// A folder changed this recently may change again without a new time stamp (coarse clocks).
constexpr qint64 settlingNs = 100'000'000;
/// A folder that is looked into this often is kept open: a look then takes its name alone, not the
/// way through all folders above it.
constexpr quint32 manyLooks = 4;
constexpr qsizetype maxOpenFolders = 64;

qint64 nanoseconds(const timespec& t)
{
    return qint64(t.tv_sec) * 1'000'000'000 + t.tv_nsec;
}

qint64 presentNs()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return nanoseconds(now);
}

QByteArray joinHost(const QByteArray& folder, const QByteArray& name)
{
    QByteArray out;
    out.reserve(folder.size() + name.size() + 1);
    out += folder;
    if (!out.endsWith('/'))
        out += '/';
    out += name;
    return out;
}

FileInfo infoOf(const struct stat& st, QString name)
{
    FileInfo info;
    info.name = std::move(name);
    info.folder = S_ISDIR(st.st_mode);
    info.readOnly = (st.st_mode & S_IWUSR) == 0;
    info.size = info.folder ? 0 : qint64(st.st_size);
    info.modifiedNs = nanoseconds(st.st_mtim);
    return info;
}

/// Calls \a take(name, type) for every entry but "." and "..".
template <typename Take> bool readFolder(const QByteArray& host, const Take& take)
{
    DIR* dir = opendir(host.isEmpty() ? "/" : host.constData());
    if (!dir)
        return false;
    while (const dirent* entry = readdir(dir)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            take(entry->d_name, entry->d_type);
    }
    closedir(dir);
    return true;
}

} // namespace

QDateTime FileInfo::modified() const
{
    return QDateTime::fromMSecsSinceEpoch(modifiedNs / 1'000'000);
}

Files::Files(const DriveTable& drives) : m_drives(drives) {}

const Files::Listing& Files::listing(const QByteArray& hostFolder) const
{
    Listing& cached = m_listings[hostFolder];
    if (cached.epoch == m_epoch)
        return cached;

    struct stat st
    {};

    if (stat(hostFolder.isEmpty() ? "/" : hostFolder.constData(), &st) != 0) {
        cached = {};
        cached.epoch = m_epoch;
        return cached;
    }
    const qint64 changed = nanoseconds(st.st_mtim);
    if (cached.settled && cached.changedNs == changed) {
        cached.epoch = m_epoch;
        return cached;
    }
    if (m_cachedNames > maxCachedNames) {
        m_listings.clear();
        m_cachedNames = 0;
        return listing(hostFolder);
    }
    m_cachedNames -= cached.names.size();
    cached = {};
    const bool settled = presentNs() - changed > settlingNs;
    readFolder(hostFolder, [&](const char* name, unsigned char) {
        cached.names[NoCase{QString::fromUtf8(name)}].push_back(QByteArray(name));
    });
    for (QList<QByteArray>& spellings : cached.names)
        std::sort(spellings.begin(), spellings.end());
    cached.changedNs = changed;
    cached.settled = settled;
    cached.epoch = m_epoch;
    m_cachedNames += cached.names.size();
    return cached;
}

QByteArray Files::spellingIn(const QByteArray& hostFolder, QStringView name) const
{
    const Listing& entries = listing(hostFolder);
    const auto it = entries.names.constFind(NoCase{name.toString()});
    return it == entries.names.cend() ? QByteArray() : it->first();
}

Files::Resolved& Files::resolveFolder(QStringView folder) const
{
    const QString key = folder.toString();
    if (const auto it = m_folders.find(key); it != m_folders.end() && it->epoch == m_epoch)
        return *it;

    Resolved out;
    out.epoch = m_epoch;
    const qsizetype cut = folder.lastIndexOf(u'\\');
    if (cut < 0) { // "C:"
        const QString root =
            folder.size() == 2 && folder[1] == u':' ? m_drives.hostRoot(folder[0]) : QString();
        if (root.isNull()) { // no such drive: not cached, the host text stays null
            static Resolved unknown;
            return unknown;
        }
        out.host = root.isEmpty() ? QByteArray("") : root.toUtf8();
        out.exists = true;
    } else {
        Resolved& above = resolveFolder(folder.first(cut));
        if (above.host.isNull())
            return above;
        const QStringView name = folder.sliced(cut + 1);
        out.host = joinHost(above.host, name.toUtf8());
        if (above.exists) {
            struct stat st
            {};

            if (stat(out.host.constData(), &st) == 0) {
                out.exists = S_ISDIR(st.st_mode);
            } else if (const QByteArray own = spellingIn(above.host, name); !own.isEmpty()) {
                out.host = joinHost(above.host, own);
                out.exists = stat(out.host.constData(), &st) == 0 && S_ISDIR(st.st_mode);
            }
        }
    }
    if (m_folders.size() > maxCachedFolders)
        forgetFolders();
    m_missingFolders += out.exists ? 0 : 1;
    return *m_folders.insert(key, out);
}

int Files::openedFolder(QStringView folder, Resolved& resolved) const
{
    if (resolved.open)
        return resolved.open->get();
    if (++resolved.looks < manyLooks || m_openFolders.size() >= maxOpenFolders)
        return -1;
    auto opened = std::make_shared<hostfile::Descriptor>(hostfile::openFolder(resolved.host));
    if (!opened->valid())
        return -1;
    resolved.open = std::move(opened);
    m_openFolders.push_back(folder.toString());
    return resolved.open->get();
}

/// A folder that is given another name stays the same folder for who has it open.
void Files::closeFolders() const
{
    for (const QString& folder : std::as_const(m_openFolders)) {
        if (const auto known = m_folders.find(folder); known != m_folders.end())
            known->open.reset();
    }
    m_openFolders.clear();
}

void Files::forgetFolders() const
{
    m_folders.clear();
    m_openFolders.clear();
    m_missingFolders = 0;
}

std::optional<FileInfo> Files::lookAt(QStringView path, Look look) const
{
    if (path.endsWith(u'\\'))
        path.chop(1);
    const qsizetype cut = path.lastIndexOf(u'\\');
    if (cut < 0) {
        const Resolved& drive = resolveFolder(path);
        return drive.exists ? look(AT_FDCWD,
                                   drive.host.isEmpty() ? "/" : drive.host.constData(),
                                   path.toString())
                            : std::nullopt;
    }
    Resolved& above = resolveFolder(path.first(cut));
    if (!above.exists)
        return std::nullopt;
    const int open = openedFolder(path.first(cut), above);
    const auto lookFor = [&](const QByteArray& entry, const QString& name) {
        return open >= 0 ? look(open, entry.constData(), name)
                         : look(AT_FDCWD, joinHost(above.host, entry).constData(), name);
    };
    const QStringView name = path.sliced(cut + 1);
    const QByteArray exact = name.toUtf8();
    // A listing that holds already saves the look at a spelling that is not there.
    if (const auto held = m_listings.constFind(above.host);
        held != m_listings.cend() && held->epoch == m_epoch) {
        const auto spellings = held->names.constFind(NoCase{name.toString()});
        if (spellings != held->names.cend() && !spellings->contains(exact)) {
            const QByteArray& own = spellings->first();
            if (auto found = lookFor(own, QString::fromUtf8(own)))
                return found;
        }
    }
    if (auto found = lookFor(exact, name.toString()))
        return found;
    const QByteArray own = spellingIn(above.host, name);
    return own.isEmpty() ? std::nullopt : lookFor(own, QString::fromUtf8(own));
}

std::optional<FileInfo> Files::info(QStringView path) const
{
    return lookAt(path, [](int folder, const char* entry, const QString& name) {
        struct stat st
        {};

        return fstatat(folder, entry, &st, 0) == 0 ? std::optional(infoOf(st, name)) : std::nullopt;
    });
}

std::optional<FileInfo> Files::entry(QStringView path) const
{
    const auto look =
        [](int folder, const char* entry, const QString& name) -> std::optional<FileInfo> {
        struct stat st
        {};

        if (fstatat(folder, entry, &st, AT_SYMLINK_NOFOLLOW) != 0)
            return std::nullopt;
        FileInfo found = infoOf(st, name);
        found.link = S_ISLNK(st.st_mode);
        if (found.link)
            found.folder = fstatat(folder, entry, &st, 0) == 0 && S_ISDIR(st.st_mode);
        return found;
    };
    return lookAt(path, look);
}

bool Files::exists(QStringView path) const
{
    return info(path).has_value();
}

bool Files::isFile(QStringView path) const
{
    const auto found = info(path);
    return found && !found->folder;
}

bool Files::isFolder(QStringView path) const
{
    const auto found = info(path);
    return found && found->folder;
}

QList<FileInfo> Files::list(QStringView folder) const
{
    QList<FileInfo> out;
    if (folder.endsWith(u'\\'))
        folder.chop(1);
    const Resolved& resolved = resolveFolder(folder);
    if (!resolved.exists)
        return out;
    readFolder(resolved.host, [&](const char* name, unsigned char) {
        struct stat st
        {};
        const QByteArray full = joinHost(resolved.host, name);
        if (stat(full.constData(), &st) == 0 || lstat(full.constData(), &st) == 0)
            out.push_back(infoOf(st, QString::fromUtf8(name)));
    });
    std::sort(out.begin(), out.end(), [](const FileInfo& a, const FileInfo& b) {
        const int order = compareNoCase(a.name, b.name);
        return order != 0 ? order < 0 : a.name < b.name;
    });
    return out;
}

QStringList Files::names(QStringView folder) const
{
    QStringList out;
    if (folder.endsWith(u'\\'))
        folder.chop(1);
    const Resolved& resolved = resolveFolder(folder);
    if (resolved.exists)
        readFolder(resolved.host, [&](const char* name, unsigned char) {
            out.push_back(QString::fromUtf8(name));
        });
    return out;
}

QList<std::pair<QString, bool>> Files::namesAndKinds(QStringView folder) const
{
    QList<std::pair<QString, bool>> out;
    if (folder.endsWith(u'\\'))
        folder.chop(1);
    const Resolved& resolved = resolveFolder(folder);
    if (!resolved.exists)
        return out;
    readFolder(resolved.host, [&](const char* name, unsigned char type) {
        struct stat st
        {};
        bool isFolder = type == DT_DIR;
        if ((type == DT_LNK || type == DT_UNKNOWN) &&
            stat(joinHost(resolved.host, name).constData(), &st) == 0)
            isFolder = S_ISDIR(st.st_mode);
        out.push_back({QString::fromUtf8(name), isFolder});
    });
    return out;
}

QStringList Files::filesBelow(QStringView folder, qsizetype limit) const
{
    QStringList out;
    if (folder.endsWith(u'\\'))
        folder.chop(1);
    const Resolved& top = resolveFolder(folder);
    if (!top.exists)
        return out;
    QList<std::pair<QByteArray, QString>> waiting = {{top.host, QString()}};
    while (!waiting.isEmpty() && out.size() < limit) {
        const auto [host, relative] = waiting.takeLast();
        readFolder(host, [&](const char* name, unsigned char type) {
            const QByteArray full = joinHost(host, name);
            struct stat st
            {};
            if (type == DT_UNKNOWN && lstat(full.constData(), &st) == 0)
                type = S_ISDIR(st.st_mode) ? DT_DIR : (S_ISREG(st.st_mode) ? DT_REG : DT_LNK);
            const QString path = relative + QString::fromUtf8(name);
            if (type == DT_DIR)
                waiting.push_back({full, path + u'\\'});
            else if (type == DT_REG)
                out.push_back(path);
            else if (type == DT_LNK && stat(full.constData(), &st) == 0 && S_ISREG(st.st_mode))
                out.push_back(path);
        });
    }
    if (out.size() > limit)
        out.resize(limit);
    std::sort(out.begin(), out.end(), [](const QString& a, const QString& b) {
        const int order = compareNoCase(a, b);
        return order != 0 ? order < 0 : a < b;
    });
    return out;
}

QString Files::spelled(QStringView path) const
{
    const bool folder = path.endsWith(u'\\');
    QStringList parts = winpath::components(path);
    if (parts.size() < 2 || !winpath::isAbsolute(path))
        return path.toString();
    QString out = parts.first();
    bool known = true;
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const QString next = out + u'\\' + parts[i];
        if (known) {
            const auto found = info(next);
            known = found.has_value();
            out += u'\\' + (known ? found->name : parts[i]);
        } else {
            out = next;
        }
    }
    if (folder)
        out += u'\\';
    return out;
}

QByteArray Files::hostPath(QStringView path) const
{
    if (path.endsWith(u'\\'))
        path.chop(1);
    const qsizetype cut = path.lastIndexOf(u'\\');
    if (cut < 0) {
        const Resolved& drive = resolveFolder(path);
        return drive.host.isNull() ? QByteArray() : (drive.host.isEmpty() ? "/" : drive.host);
    }
    const Resolved& above = resolveFolder(path.first(cut));
    if (above.host.isNull())
        return {};
    const QStringView name = path.sliced(cut + 1);
    const QByteArray exact = joinHost(above.host, name.toUtf8());
    if (!above.exists)
        return exact;

    struct stat st
    {};

    if (lstat(exact.constData(), &st) == 0)
        return exact;
    const QByteArray own = spellingIn(above.host, name);
    return own.isEmpty() ? exact : joinHost(above.host, own);
}

ResultOf<QByteArray> Files::read(QStringView path, qint64 limit) const
{
    const auto fail = [&](const QString& why) {
        return Result::failure(u"'"_s + path.toString() + u"' could not be read: "_s + why);
    };
    const QByteArray host = hostPath(path);
    if (host.isEmpty())
        return fail(u"its drive is not known."_s);
    const int fd = open(host.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)) + u'.');

    struct stat st
    {};

    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return fail(u"it is not a file."_s);
    }
    if (st.st_size > limit) {
        close(fd);
        return fail(u"it is larger than "_s + sizeText(limit) + u'.');
    }
    QByteArray bytes(qsizetype(st.st_size), Qt::Uninitialized);
    qsizetype got = 0;
    while (got < bytes.size()) {
        const ssize_t n = ::read(fd, bytes.data() + got, size_t(bytes.size() - got));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const int error = errno;
            close(fd);
            return fail(QString::fromLocal8Bit(std::strerror(error)) + u'.');
        }
        if (n == 0)
            break;
        got += n;
    }
    close(fd);
    bytes.truncate(got);
    return bytes;
}

QList<QStringList> Files::twins(QStringView folder) const
{
    QList<QStringList> out;
    if (folder.endsWith(u'\\'))
        folder.chop(1);
    const Resolved& resolved = resolveFolder(folder);
    if (!resolved.exists)
        return out;
    for (const QList<QByteArray>& spellings : listing(resolved.host).names) {
        if (spellings.size() < 2)
            continue;
        QStringList group;
        for (const QByteArray& name : spellings)
            group.push_back(QString::fromUtf8(name));
        out.push_back(group);
    }
    std::sort(out.begin(), out.end(), [](const QStringList& a, const QStringList& b) {
        return a.first() < b.first();
    });
    return out;
}

void Files::newOperation()
{
    ++m_epoch;
    closeFolders();
}

void Files::noteChanged(QStringView path)
{
    if (path.endsWith(u'\\'))
        path.chop(1);
    const qsizetype cut = path.lastIndexOf(u'\\');
    if (cut < 0)
        return;
    closeFolders();
    const auto above = m_folders.constFind(path.first(cut).toString());
    // A folder that was remembered as missing, in whatever spelling, may have come to life.
    if (m_missingFolders > 0 || above == m_folders.cend()) {
        forgetFolders();
        m_listings.clear();
        m_cachedNames = 0;
        return;
    }
    updateListing(above->host, path.sliced(cut + 1));
    m_folders.remove(path.toString());
}

/// Corrects one name in a cached listing: reading a folder anew for each file written into it would
/// take a square of time.
void Files::updateListing(const QByteArray& hostFolder, QStringView name)
{
    const auto cached = m_listings.find(hostFolder);
    if (cached == m_listings.end())
        return;
    m_cachedNames -= cached->names.size();
    if (cached->epoch != m_epoch) {
        m_listings.erase(cached);
        return;
    }
    const NoCase key{name.toString()};
    QList<QByteArray> spellings = cached->names.take(key);
    if (const QByteArray given = name.toUtf8(); !spellings.contains(given))
        spellings.push_back(given);

    struct stat st
    {};

    spellings.removeIf([&](const QByteArray& spelling) {
        return lstat(joinHost(hostFolder, spelling).constData(), &st) != 0;
    });
    std::sort(spellings.begin(), spellings.end());
    if (!spellings.isEmpty())
        cached->names.insert(key, spellings);
    m_cachedNames += cached->names.size();
}

} // namespace vt
