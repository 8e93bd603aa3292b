// Folders of a transaction: those that receive files, new ones that are staged whole, those of kept
// files, those that go.
#include "platform/FileTransaction.h"
#include "platform/StepRunner.h"
#include "platform/WinPath.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// From this many files on, one syncfs is cheaper than a sync for each.
constexpr qsizetype manyFiles = 200;

} // namespace

Result FileTransaction::announce(const QStringList& targetFolders, qsizetype expectedFiles)
{
    // A sync of everything can be left to a child, one for each file cannot.
    m_syncEach = expectedFiles <= manyFiles && !m_gate.breathing;
    QList<JournalStep> steps;
    for (const QString& folder : targetFolders) {
        QString existing = winpath::withoutTrailing(folder);
        while (!existing.isEmpty() && !m_gate.files().isFolder(existing))
            existing = winpath::withoutTrailing(winpath::parent(existing));
        const ResultOf<Place> place = m_gate.place(existing);
        if (!place || !m_gate.hostFolder(existing) || m_told.contains(NoCase{existing}))
            continue; // what is refused here is refused again, with its text, when it is staged
        m_told.insert(NoCase{existing});
        JournalStep step;
        step.kind = StepKind::StagingFolder;
        step.target = *place;
        steps.push_back(step);
    }
    if (steps.isEmpty())
        return Result::success();
    if (const int error = m_gate.fault("commit", "extend"))
        return Result::failure(hostfile::errorText(error));
    if (Result told = m_journal.extend(m_operation, steps); !told)
        return told;
    m_undo += steps;
    return Result::success();
}

Result FileTransaction::announceKept(const QString& folder)
{
    const ResultOf<Place> place = m_gate.place(folder);
    if (!place)
        return place.error();
    JournalStep step;
    step.kind = StepKind::KeptFolder;
    step.target = *place;
    if (const int error = m_gate.fault("commit", "extend"))
        return Result::failure(hostfile::errorText(error));
    if (Result told = m_journal.extend(m_operation, {step}); !told)
        return told;
    m_undo.push_back(step);
    m_keptFolders.push_back(winpath::withoutTrailing(folder));
    return Result::success();
}

Result FileTransaction::tellStagingFolder(const QString& folder)
{
    if (m_told.contains(NoCase{folder}))
        return Result::success();
    const ResultOf<Place> place = m_gate.place(folder);
    if (!place)
        return place.error();
    JournalStep step;
    step.kind = StepKind::StagingFolder;
    step.target = *place;
    if (const int error = m_gate.fault("commit", "extend"))
        return Result::failure(hostfile::errorText(error));
    if (Result told = m_journal.extend(m_operation, {step}); !told)
        return told;
    m_told.insert(NoCase{folder});
    m_undo.push_back(step);
    return Result::success();
}

/// Neighbours ask for the same folder one after the other.
ResultOf<FileTransaction::Folder> FileTransaction::folderFor(const QString& folder)
{
    if (m_last.fd && folder == m_lastFolder)
        return m_last;
    ResultOf<Folder> found = openFolderFor(folder);
    if (found) {
        m_lastFolder = folder;
        m_last = *found;
    }
    return found;
}

ResultOf<FileTransaction::Folder> FileTransaction::openFolderFor(const QString& folder)
{
    if (const auto it = m_folders.constFind(NoCase{folder}); it != m_folders.cend())
        return *it;
    Q_ASSERT(m_operation != 0);
    const ResultOf<QByteArray> host = m_gate.hostFolder(folder);
    if (!host)
        return host.error();

    QString firstMissing;
    QString existing = folder;
    while (!existing.isEmpty() && !m_gate.files().isFolder(existing) &&
           !m_folders.contains(NoCase{existing})) {
        if (m_gate.files().exists(existing) || m_pending.find(existing))
            return hostfile::refused(folder, u"made", ENOTDIR);
        firstMissing = existing;
        existing = winpath::withoutTrailing(winpath::parent(existing));
    }
    const auto above = m_folders.constFind(NoCase{existing});
    if (!firstMissing.isEmpty() && above != m_folders.cend() && above->staged)
        return stagedFolder(folder, firstMissing);
    if (Result told = tellStagingFolder(existing); !told)
        return told;
    if (!firstMissing.isEmpty())
        return stagedFolder(folder, firstMissing);
    Folder entry;
    entry.host = *host;
    entry.fd = std::make_shared<hostfile::Descriptor>(hostfile::openFolder(*host));
    if (!entry.fd->valid())
        return hostfile::refused(folder, u"opened", errno);
    m_folders.insert(NoCase{folder}, entry);
    return entry;
}

ResultOf<FileTransaction::Folder> FileTransaction::stagedFolder(const QString& folder,
                                                                const QString& firstMissing)
{
    const QString above = winpath::withoutTrailing(winpath::parent(firstMissing));
    const ResultOf<Folder> parent = folderFor(above);
    if (!parent)
        return parent.error();
    QString name = winpath::name(firstMissing);
    if (!parent->staged) {
        const QString stagedName = nextStagedName(".dir"_L1);
        m_stagedRoots.insert(NoCase{firstMissing}, StagedRoot{firstMissing, stagedName});
        name = stagedName;
    }
    Folder entry;
    entry.staged = true;
    entry.host = parent->host + '/' + name.toUtf8();
    if (const int error = m_gate.fault("stage folder", entry.host))
        return hostfile::refused(firstMissing, u"made", error);
    if (mkdirat(parent->fd->get(), name.toUtf8().constData(), 0755) != 0 && errno != EEXIST)
        return hostfile::refused(firstMissing, u"made", errno);
    entry.fd = std::make_shared<hostfile::Descriptor>(hostfile::openFolder(entry.host));
    if (!entry.fd->valid())
        return hostfile::refused(firstMissing, u"made", errno);
    m_folders[NoCase{above}].holdsStaged = true;
    m_last = {};
    m_folders.insert(NoCase{firstMissing}, entry);
    m_stagedAny = true;
    if (firstMissing.size() == folder.size())
        return entry;
    const qsizetype next = folder.indexOf(u'\\', firstMissing.size() + 1);
    return stagedFolder(folder, next < 0 ? folder : folder.first(next));
}

ResultOf<FileTransaction::Folder> FileTransaction::keptFolderFor(const QString& from,
                                                                 const QString& to)
{
    const QString folder = winpath::withoutTrailing(winpath::parent(to));
    auto known = m_folders.constFind(NoCase{folder});
    if (known == m_folders.cend()) {
        if (Result made = openKeptFolder(from, to, folder); !made)
            return made;
        known = m_folders.constFind(NoCase{folder});
    }
    if (Result checked = winpath::checkComponent(winpath::name(to)); !checked)
        return checked;
    if (const int error = m_gate.fault("keep", known->host + '/' + winpath::name(to).toUtf8()))
        return hostfile::refused(from, u"kept", error);
    return *known;
}

Result
FileTransaction::openKeptFolder(const QString& from, const QString& to, const QString& folder)
{
    const bool announced =
        std::any_of(m_keptFolders.cbegin(), m_keptFolders.cend(), [&](const QString& kept) {
            return winpath::isBelow(to, kept);
        });
    Q_ASSERT(announced);
    if (!announced)
        return hostfile::refused(from, u"kept", EPERM);
    const ResultOf<QByteArray> target = m_gate.hostPath(to);
    if (!target)
        return target.error();
    Folder entry;
    entry.host = target->first(target->lastIndexOf('/'));
    Result synced = Result::success();
    const auto syncAbove = [&](const QByteArray& made) {
        const QByteArray above = made.first(qMax<qsizetype>(made.lastIndexOf('/'), 1));
        if (synced)
            synced = hostfile::syncFolder(above, m_gate.fault("sync folder", above));
    };
    if (Result made = hostfile::makeFolders(entry.host, syncAbove); !made)
        return Result::failure(u"The folder '"_s + folder + u"' could not be made: "_s + made.text,
                               made.kind);
    if (!synced) {
        m_syncFailure = Result::failure(
            u"The folder '"_s + folder + u"' could not be made: "_s + synced.text, synced.kind);
        return m_syncFailure;
    }
    m_gate.files().noteChanged(folder);
    entry.fd = std::make_shared<hostfile::Descriptor>(hostfile::openFolder(entry.host));
    if (!entry.fd->valid())
        return hostfile::refused(from, u"kept", errno);
    m_folders.insert(NoCase{folder}, entry);
    return Result::success();
}

Result FileTransaction::makeFolder(const QString& folder)
{
    const ResultOf<Folder> made = folderFor(winpath::withoutTrailing(folder));
    if (!made)
        return made.error();
    m_folders[NoCase{winpath::withoutTrailing(folder)}].wanted = true;
    m_last = {};
    return Result::success();
}

Result FileTransaction::removeEmptyFolder(const QString& folder)
{
    const ResultOf<Place> target = m_gate.place(folder);
    if (!target)
        return target.error();
    JournalStep step;
    step.kind = StepKind::RemoveFolder;
    step.target = *target;
    m_lastSteps.push_back(step);
    return Result::success();
}

/// Takes back the folders that were staged for files that could not be written.
void FileTransaction::dropUnusedFolders()
{
    QSet<NoCase> used;
    const auto use = [&used](QString folder) {
        while (!folder.isEmpty() && !used.contains(NoCase{folder})) {
            used.insert(NoCase{folder});
            folder = winpath::withoutTrailing(winpath::parent(folder));
        }
    };
    for (const QString& folder : m_pending.stagedFolders())
        use(folder);
    QStringList unused;
    for (auto it = m_folders.cbegin(); it != m_folders.cend(); ++it) {
        if (it->wanted)
            use(it.key().text);
        else if (it->staged)
            unused.push_back(it.key().text);
    }
    std::sort(unused.begin(), unused.end(), [](const QString& a, const QString& b) {
        return a.size() > b.size(); // the inner ones first
    });
    for (const QString& folder : std::as_const(unused)) {
        const NoCase key{folder};
        if (used.contains(key) || rmdir(m_folders.value(key).host.constData()) != 0)
            continue;
        m_folders.remove(key);
        m_last = {};
        m_stagedRoots.remove(key);
    }
}

} // namespace vt
