#include "platform/FolderListing.h"

#include "platform/HostFile.h"
#include "platform/Text.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct DirCloser
{
    void operator()(DIR* dir) const { closedir(dir); }
};

using Dir = std::unique_ptr<DIR, DirCloser>;

QByteArray realPath(const QByteArray& host)
{
    char buffer[PATH_MAX];
    return realpath(host.constData(), buffer) ? QByteArray(buffer) : QByteArray();
}

/// One walk over a folder; keeps what every level needs.
class FolderWalk
{
public:
    FolderWalk(const QString& folder, const QByteArray& host, qsizetype limit)
        : m_folder(folder), m_host(host), m_realTop(realPath(host)), m_limit(limit)
    {}

    Result run(FolderListing& out)
    {
        std::vector<std::pair<QByteArray, QString>> waiting = {{m_host, QString()}};
        while (!waiting.empty()) {
            const auto [host, relative] = std::move(waiting.back());
            waiting.pop_back();
            const Dir dir(opendir(host.constData()));
            if (!dir) {
                const QString text = u"The folder '"_s + m_folder + relative +
                                     u"' cannot be read: "_s + hostfile::errorText(errno);
                if (relative.isEmpty())
                    return Result::failure(text, ErrorKind::Surroundings);
                out.passedOver.append(text);
                continue;
            }
            while (const dirent* entry = readdir(dir.get())) {
                if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
                    take(host, relative, entry->d_name, out, waiting);
            }
            if (qsizetype(out.files.size()) > m_limit) {
                return Result::failure(u"The folder '"_s + m_folder + u"' holds more than "_s +
                                       QString::number(m_limit) +
                                       u" files, the most that one add-on may have."_s);
            }
        }
        return Result::success();
    }

private:
    void take(const QByteArray& host,
              const QString& relative,
              const char* rawName,
              FolderListing& out,
              std::vector<std::pair<QByteArray, QString>>& waiting)
    {
        const QByteArray full = host + '/' + rawName;
        const QString name = QString::fromUtf8(rawName);
        const QString shown = m_folder + relative + name;
        if (name.toUtf8() != rawName) {
            out.passedOver.append(u"'"_s + shown +
                                  u"' is left out: its name is not in a readable encoding."_s);
            return;
        }

        struct stat st
        {};

        if (lstat(full.constData(), &st) != 0)
            return;
        if (S_ISLNK(st.st_mode)) {
            const QByteArray real = realPath(full);
            if (real.isEmpty() || stat(full.constData(), &st) != 0 || S_ISDIR(st.st_mode) ||
                !real.startsWith(m_realTop + '/')) {
                out.passedOver.append(u"'"_s + shown +
                                      u"' is left out: it is a link that leads elsewhere."_s);
                return;
            }
        }
        if (S_ISDIR(st.st_mode)) {
            waiting.emplace_back(full, relative + name + u'\\');
        } else if (S_ISREG(st.st_mode)) {
            out.files.push_back({relative,
                                 name,
                                 qint64(st.st_size),
                                 qint64(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec});
        } else {
            out.passedOver.append(u"'"_s + shown + u"' is left out: it is no ordinary file."_s);
        }
    }

    QString m_folder;
    QByteArray m_host;
    QByteArray m_realTop;
    qsizetype m_limit;
};

} // namespace

ResultOf<FolderListing> listFolder(const Files& files, const QString& folder, qsizetype limit)
{
    FolderListing listing;
    FolderWalk walk(folder, files.hostPath(folder), limit);
    if (const Result walked = walk.run(listing); !walked.ok)
        return walked;
    std::sort(
        listing.files.begin(), listing.files.end(), [](const ListedFile& a, const ListedFile& b) {
            if (a.folder.constData() != b.folder.constData()) {
                const int order = compareNoCase(a.folder, b.folder);
                if (order != 0)
                    return order < 0;
                if (a.folder != b.folder)
                    return a.folder < b.folder;
            }
            const int order = compareNoCase(a.name, b.name);
            return order != 0 ? order < 0 : a.name < b.name;
        });
    listing.passedOver.sort();
    return listing;
}

Content contentOfFile(const Files& files, const QString& path, const ListedFile& file)
{
    Content content = hostfile::contentOf(files.hostPath(path));
    content.size = file.size;
    content.modifiedNs = file.modifiedNs;
    return content;
}

} // namespace vt
