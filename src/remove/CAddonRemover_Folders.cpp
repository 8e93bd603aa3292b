// What a removal does with folders: those that are empty afterwards go, and the add-on's own below
// "Addons\" with whatever lies in them.
#include "addondb/AddonDatabase.h"
#include "platform/WinPath.h"
#include "remove/CAddonRemover.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

bool isBackup(const QString& name)
{
    return endsWithNoCase(name, u".vtb") || endsWithNoCase(name, u".vt2");
}

/// Deepest first: a longer path cannot lie above a shorter one.
QStringList deepestFirst(const QSet<NoCase>& folders)
{
    QStringList out;
    for (const NoCase& folder : folders)
        out.push_back(folder.text);
    std::sort(out.begin(), out.end(), [](const QString& a, const QString& b) {
        return a.size() != b.size() ? a.size() > b.size() : a < b;
    });
    return out;
}

} // namespace

Result CAddonRemover::CustomFolders_Delete()
{
    status(u"Deleting custom folders..."_s);
    if (m_options.method == RemovalMethod::RemoveRecords) {
        leaveRecordsOnly();
        return Result::success();
    }
    for (const QString& folder : m_whole ? storageFolders() : QStringList()) {
        if (Result emptied = emptyStorage(folder); !emptied)
            return emptied;
    }
    for (const QString& folder : emptiedFolders()) {
        const ResultOf<Place> place = m_context.services.gate.place(folder);
        if (!place)
            continue;
        if (Result removed = m_actions->removeEmptyFolder(folder); !removed)
            return removed;
        m_closing.foldersGone.push_back(*place);
    }
    return Result::success();
}

/// The folders below "Addons\\" that hold files of the add-on.
QStringList CAddonRemover::storageFolders() const
{
    const QString top = m_context.global.addonsFolder;
    QStringList out;
    for (const DetailRecord& detail : m_details) {
        if (!winpath::isBelow(detail.location, top) || winpath::same(detail.location, top))
            continue;
        const QString rest = winpath::relativeTo(detail.location, top);
        const QString folder = top + rest.first(qMax<qsizetype>(rest.indexOf(u'\\'), 1)) + u'\\';
        if (!out.contains(folder, Qt::CaseInsensitive))
            out.append(folder);
    }
    return out;
}

/// Everything else in the folder goes too: its list of files for good, what the user put there is
/// set aside, what another add-on has there stays.
Result CAddonRemover::emptyStorage(const QString& folder)
{
    for (const QString& name : m_context.services.files.filesBelow(folder)) {
        const QString path = folder + name;
        if (!m_actions->info(path) || isBackup(name))
            continue;
        if (equalNoCase(name, u"Filelist.dat")) {
            if (Result gone = m_actions->remove(path); !gone)
                return gone;
            continue;
        }
        const ResultOf<QList<DetailRecord>> owners =
            modDatabase_Addon::ownersOf(m_database, winpath::parent(path), winpath::name(path));
        if (!owners || !owners->isEmpty())
            continue;
        const ResultOf<QString> aside = originals::setAside(*m_release, path, path);
        if (!aside)
            return aside.error();
        if (Result gone = m_actions->remove(path); !gone)
            return gone;
        m_results.add(resultgroup::specialActions,
                      path,
                      u" was no file of the addon; it was kept as '"_s + *aside + u"'."_s);
    }
    return Result::success();
}

Result CAddonRemover::AddonCabinetAndCustomFolders_Delete()
{
    // The add-on's own folders are among those that CustomFolders_Delete found; what is left are
    // the folders of the files that it had kept.
    status(u"Deleting addon custom and cabinet folders..."_s);
    cleanKeptFolders();
    return Result::success();
}

QStringList CAddonRemover::emptiedFolders()
{
    const ResultOf<QList<Place>> own = modDatabase_Addon::ownFolders(m_database);
    if (!own || own->isEmpty())
        return {};
    QSet<NoCase> ownPaths;
    QSet<NoCase> candidates;
    const auto isStorage = [this](const QString& name) {
        QString own = winpath::safeName(m_record.name);
        if (own.isEmpty())
            own = u"Addon"_s;
        if (equalNoCase(name, own))
            return true;
        bool numbered = false; // "<name> 2", where the name was taken
        if (startsWithNoCase(name, QString(own + u' ')))
            (void)QStringView(name).sliced(own.size() + 1).toInt(&numbered);
        return numbered;
    };
    for (const Place& place : *own) {
        const QString path = m_context.services.gate.path(place) + u'\\';
        ownPaths.insert(NoCase{path});
        // The add-on's own folders below "Addons\" and "Cabinet\" may never have held a file.
        const QString above = winpath::parent(path);
        if ((winpath::same(above, m_context.global.addonsFolder) ||
             winpath::same(above, m_context.global.cabinetFolder)) &&
            isStorage(winpath::name(path)))
            candidates.insert(NoCase{path});
    }
    QSet<NoCase> seen;
    for (const File& file : m_files) {
        for (QString up = file.detail.location; !up.isEmpty() && !seen.contains(NoCase{up});
             up = winpath::parent(up)) {
            seen.insert(NoCase{up});
            if (ownPaths.contains(NoCase{up}))
                candidates.insert(NoCase{up});
        }
    }
    QStringList going;
    QSet<NoCase> goingSet;
    for (const QString& folder : deepestFirst(candidates)) {
        if (willBeEmpty(folder, goingSet)) {
            goingSet.insert(NoCase{folder});
            going.push_back(folder);
        }
    }
    return going;
}

bool CAddonRemover::willBeEmpty(const QString& folder, const QSet<NoCase>& going)
{
    const QStringList names = m_context.services.files.names(folder);
    if (names.size() == m_actions->removedIn(folder))
        return true; // each of those was seen there
    QStringList backups;
    for (const QString& name : names) {
        const QString path = folder + name;
        if (isBackup(name) && m_context.services.files.isFile(path))
            backups.push_back(path);
        else if (m_actions->info(path) && !going.contains(NoCase{path + u'\\'}))
            return false;
    }
    for (const QString& backup : std::as_const(backups))
        (void)m_actions->remove(backup); // one that stays keeps its folder
    return true;
}

void CAddonRemover::cleanKeptFolders()
{
    const QString top = m_context.global.originalsFolder;
    QSet<NoCase> all;
    for (const NoCase& folder : std::as_const(m_keptFolders)) {
        for (QString up = folder.text; up.size() > top.size() && winpath::isBelow(up, top);
             up = winpath::parent(up))
            all.insert(NoCase{up});
    }
    for (const QString& folder : deepestFirst(all))
        (void)m_actions->removeEmptyFolder(folder); // one that is still used is not empty
}

} // namespace vt
