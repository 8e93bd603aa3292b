// Names are checked as text first, then the folders on the way are compared with the root on the
// host, so that a link planted inside the tree cannot carry a write out of it. A confirmed link is
// compared with where it led when it was confirmed.
#include "platform/Gate.h"

#include "platform/Hash.h"
#include "platform/WinPath.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>
#include <tuple>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype maxPlacedFolders = 4096;

/// The folder with all links resolved; null when it does not exist.
QByteArray canonicalFolder(const QByteArray& host)
{
    char* real = realpath(host.constData(), nullptr);
    if (!real)
        return {};
    QByteArray out(real);
    std::free(real);
    return out;
}

bool liesBelow(const QByteArray& path, const QByteArray& folder)
{
    return folder == "/" || path == folder ||
           (path.size() > folder.size() && path.startsWith(folder) && path[folder.size()] == '/');
}

Result refusal(const QString& path, const OuterLink& out, const QString& root)
{
    const QString link = u"' was refused: the link '"_s + out.link;
    return Result::failure(
        out.target.isEmpty()
            ? QString(u"'"_s + path + link + u"' on the way leads nowhere at present."_s)
            : QString(u"'"_s + path + link + u"' on the way leads out of '"_s + root +
                      u"', to '"_s + out.target + u"', and was not confirmed."_s));
}

Result refusedName(QStringView path, const Result& why)
{
    return Result::failure(u"'"_s + path.toString() + u"' was refused. "_s + why.text);
}

} // namespace

void Gate::setRoot(RootId id, const QString& folder)
{
    const QString clean = winpath::asFolder(folder);
    if (clean.isEmpty())
        return;
    m_insideFolders.clear();
    m_realRoots.clear();
    m_placedFolders.clear();
    m_lastFolder.clear();
    m_lastPath.clear();
    if (id != RootId::Chosen) {
        for (Root& root : m_roots) {
            if (root.id == id) {
                root.folder = clean;
                return;
            }
        }
    }
    m_roots.push_back({id, clean});
}

QString Gate::rootFolder(RootId id) const
{
    for (const Root& root : m_roots) {
        if (root.id == id)
            return root.folder;
    }
    return {};
}

const Gate::Root* Gate::covering(QStringView path) const
{
    // What is named for one call never stands before a root that lasts: its places are not stored.
    const auto lasts = [](const Root& root) { return root.id != RootId::Chosen; };
    const Root* best = nullptr;
    for (const Root& root : m_roots) {
        if (!winpath::isBelow(path, root.folder))
            continue;
        // Of two names for one folder (a tool that was unpacked into the simulator's own) the
        // lower.
        const auto rank = [&lasts](const Root& one) {
            return std::tuple(lasts(one), one.folder.size(), -int(one.id));
        };
        if (!best || rank(root) > rank(*best))
            best = &root;
    }
    return best;
}

ResultOf<Place> Gate::place(QStringView path) const
{
    // One file is asked about several times in a row.
    if (path == m_lastPath && !m_lastPath.isEmpty())
        return m_lastFound;
    // Of a second file in one folder only the name is new.
    const qsizetype cut = path.lastIndexOf(u'\\');
    const QStringView folder = path.first(cut + 1);
    const QStringView name = path.sliced(cut + 1);
    if (folder != m_lastFolder || m_lastFolder.isEmpty()) {
        m_lastFolder = folder.toString();
        m_lastPlace = m_placedFolders.value(m_lastFolder);
    }
    if (!name.isEmpty() && m_lastPlace.root != RootId::None) {
        if (Result checked = winpath::checkComponent(name); !checked)
            return refusedName(path, checked);
        m_lastPath = path.toString();
        m_lastFound = m_lastPlace;
        m_lastFound.relative.reserve(m_lastPlace.relative.size() + name.size());
        m_lastFound.relative += name;
        return m_lastFound;
    }
    ResultOf<Place> found = placeAnew(path);
    const auto liesBelowFolder = [&folder](const Root& root) {
        return root.folder.size() > folder.size() && winpath::isBelow(root.folder, folder);
    };
    if (found && !name.isEmpty() &&
        std::none_of(m_roots.cbegin(), m_roots.cend(), liesBelowFolder)) {
        if (m_placedFolders.size() >= maxPlacedFolders)
            m_placedFolders.clear();
        m_lastPlace = {found->root, found->relative.chopped(name.size())};
        m_placedFolders.insert(m_lastFolder, m_lastPlace);
    }
    return found;
}

ResultOf<Place> Gate::placeAnew(QStringView path) const
{
    const Root* root = covering(path);
    if (!root)
        return Result::failure(
            u"'"_s + path.toString() +
            u"' was left alone: it lies outside the folders that may be changed."_s);
    QString relative = winpath::relativeTo(path, root->folder);
    if (relative.endsWith(u'\\'))
        relative.chop(1);
    if (!relative.isEmpty()) {
        if (Result checked = winpath::checkRelative(relative); !checked)
            return refusedName(path, checked);
    }
    return Place{root->id, relative};
}

QString Gate::path(const Place& place) const
{
    return rootFolder(place.root) + place.relative;
}

ResultOf<QByteArray> Gate::hostPath(const Place& place) const
{
    return hostPath(path(place));
}

ResultOf<QByteArray> Gate::hostPath(QStringView path) const
{
    const Root* root = covering(path);
    const ResultOf<Place> checked = this->place(path);
    if (!checked)
        return checked.error();
    const QByteArray host = m_files.hostPath(path);
    if (host.isEmpty())
        return Result::failure(u"'"_s + path.toString() +
                               u"' was refused: its drive is not known."_s);

    if (checked->relative.isEmpty())
        return host;
    const QByteArray above = host.first(qMax<qsizetype>(host.lastIndexOf('/'), 0));
    QStringView folder = path.endsWith(u'\\') ? path.chopped(1) : path;
    folder.truncate(qMax<qsizetype>(folder.lastIndexOf(u'\\'), 0));
    const auto out = linkOut(*root, folder, above);
    return out ? ResultOf<QByteArray>(refusal(path.toString(), *out, root->folder)) : host;
}

ResultOf<QByteArray> Gate::hostFolder(QStringView folder) const
{
    ResultOf<QByteArray> host = hostPath(folder);
    if (!host)
        return host;
    const Root* root = covering(folder);
    const auto out = linkOut(*root, folder, *host);
    return out ? ResultOf<QByteArray>(refusal(folder.toString(), *out, root->folder)) : host;
}

std::optional<OuterLink> Gate::outerLink(QStringView folder) const
{
    const Root* root = covering(folder);
    return root ? linkOut(*root, folder, m_files.hostPath(folder)) : std::nullopt;
}

std::optional<OuterLink>
Gate::linkOut(const Root& root, QStringView folder, const QByteArray& host) const
{
    // What was seen holds for one operation: links may be set anew between two.
    if (std::exchange(m_insideEpoch, m_files.epoch()) != m_files.epoch()) {
        m_insideFolders.clear();
        m_realRoots.clear();
    }
    if (m_insideFolders.contains(host))
        return std::nullopt;
    if (m_insideFolders.contains(host.first(qMax<qsizetype>(host.lastIndexOf('/'), 0)))) {
        struct stat st
        {};

        if (lstat(host.constData(), &st) == 0 && S_ISDIR(st.st_mode)) {
            m_insideFolders.insert(host);
            return std::nullopt;
        }
    }
    QByteArray& realRoot = m_realRoots[root.folder];
    if (realRoot.isNull())
        realRoot = canonicalFolder(m_files.hostPath(root.folder));
    if (realRoot.isNull())
        return std::nullopt; // yet to be made: nothing inside could lead out
    const QByteArray real = canonicalFolder(host.isEmpty() ? "/" : host);
    if (!real.isNull() && liesBelow(real, realRoot)) {
        m_insideFolders.insert(host);
        return std::nullopt;
    }
    QByteArray inside = realRoot; // where the way has led so far
    QString way = winpath::withoutTrailing(root.folder);
    for (const QString& part : winpath::components(winpath::relativeTo(folder, root.folder))) {
        const QByteArray at = m_files.hostPath(way + u'\\' + part);
        way += u'\\' + QString::fromUtf8(at.sliced(at.lastIndexOf('/') + 1)); // as it is spelled

        struct stat st
        {};

        if (lstat(at.constData(), &st) != 0)
            return std::nullopt; // the rest is new
        if (!S_ISLNK(st.st_mode))
            continue;
        const QByteArray target = canonicalFolder(at);
        if (!target.isNull() && (liesBelow(target, inside) || liesBelow(target, realRoot)))
            continue;
        OuterLink link{way, {}};
        if (!target.isNull())
            link.target = winpath::asFolder(m_files.drives().toWindows(QString::fromUtf8(target)));
        if (target.isNull() || !linkConfirmed || !linkConfirmed(link))
            return link;
        inside = target;
    }
    if (!real.isNull() && !liesBelow(real, inside))
        return OuterLink{winpath::withoutTrailing(folder), {}}; // changed under our eyes
    m_insideFolders.insert(host);
    return std::nullopt;
}

QString Gate::identity(RootId id) const
{
    const QString folder = rootFolder(id);
    const QByteArray real =
        folder.isEmpty() ? QByteArray() : canonicalFolder(m_files.hostPath(folder));
    return real.isEmpty() ? QString() : QString::fromLatin1(xxh3(real).toHex());
}

} // namespace vt
