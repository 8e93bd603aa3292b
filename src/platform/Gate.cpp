// Names are checked as text first, then the folders on the way are compared with the root on the
// host, so that a link planted inside the tree cannot carry a write out of it.
#include "platform/Gate.h"

#include "platform/Hash.h"
#include "platform/WinPath.h"

#include <climits>
#include <cstdlib>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

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

} // namespace

void Gate::setRoot(RootId id, const QString& folder)
{
    const QString clean = winpath::asFolder(folder);
    if (clean.isEmpty())
        return;
    m_insideFolders.clear();
    if (id != RootId::Tools && id != RootId::Chosen) {
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
        if (!best || (lasts(root) && !lasts(*best)) ||
            (lasts(root) == lasts(*best) && root.folder.size() > best->folder.size()))
            best = &root;
    }
    return best;
}

ResultOf<Place> Gate::place(QStringView path) const
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
            return Result::failure(u"'"_s + path.toString() + u"' was refused. "_s + checked.text);
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

    // The nearest existing folder above decides where the path really leads.
    QByteArray folder = host.first(qMax<qsizetype>(host.lastIndexOf('/'), 0));
    if (checked->relative.isEmpty() || m_insideFolders.contains(folder))
        return host;
    QByteArray existing = folder;
    QByteArray real = canonicalFolder(existing.isEmpty() ? "/" : existing);
    while (real.isNull() && !existing.isEmpty()) {
        existing.truncate(qMax<qsizetype>(existing.lastIndexOf('/'), 0));
        real = canonicalFolder(existing.isEmpty() ? "/" : existing);
    }
    const QByteArray realRoot = canonicalFolder(m_files.hostPath(root->folder));
    // A root that is yet to be made has nothing inside that could lead out.
    if (!realRoot.isNull() && !liesBelow(real, realRoot))
        return Result::failure(u"'"_s + path.toString() +
                               u"' was refused: a link on the way leads out of '"_s + root->folder +
                               u"'."_s);
    if (existing == folder)
        m_insideFolders.insert(folder);
    return host;
}

QString Gate::identity(RootId id) const
{
    const QString folder = rootFolder(id);
    const QByteArray real =
        folder.isEmpty() ? QByteArray() : canonicalFolder(m_files.hostPath(folder));
    return real.isEmpty() ? QString() : QString::fromLatin1(xxh3(real).toHex());
}

} // namespace vt
