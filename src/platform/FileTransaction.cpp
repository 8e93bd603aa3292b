#include "platform/FileTransaction.h"

#include "platform/Hash.h"
#include "platform/StepRunner.h"
#include "platform/WinPath.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// From this many files on, one syncfs is cheaper than a sync for each.
constexpr qsizetype manyFiles = 200;

QString withoutTrailing(const QString& folder)
{
    return winpath::withoutTrailing(folder);
}

Fingerprint absent()
{
    return {};
}

Result refused(const QString& path, const char* doing, int error)
{
    return Result::failure(u"'"_s + path + u"' could not be "_s + QString::fromLatin1(doing) +
                               u": "_s + hostfile::errorText(error),
                           error == ENOSPC ? ErrorKind::DiskFull : ErrorKind::Failed);
}

} // namespace

FileTransaction::FileTransaction(Gate& gate, Journal& journal) : m_gate(gate), m_journal(journal) {}

FileTransaction::~FileTransaction()
{
    (void)abandon(); // who wants to tell calls it himself
}

Result FileTransaction::begin(OperationKind kind, const QString& label)
{
    Q_ASSERT(m_operation == 0);
    m_syncEach = !m_gate.breathing;
    // Its steps would meet what this one does.
    const ResultOf<QList<JournalOperation>> unfinished = m_journal.unfinished();
    if (!unfinished)
        return unfinished.error();
    if (!unfinished->isEmpty())
        return Result::failure(u"The work on '"_s + unfinished->first().label +
                               u"' has not ended yet; it is ended at the next start."_s);
    if (const int error = m_gate.fault("commit", "begin"))
        return Result::failure(hostfile::errorText(error));
    // Recovery must not take another simulator's folder for this one.
    JournalStep home;
    home.kind = StepKind::StagingFolder;
    home.target = {RootId::Simulator, {}};
    home.stagedName = m_gate.identity(RootId::Simulator);
    if (!home.stagedName.isEmpty())
        m_undo.push_back(home);
    const ResultOf<qint64> begun = m_journal.begin(kind, label, m_undo);
    if (!begun)
        return begun.error();
    m_operation = *begun;
    return Result::success();
}

Result FileTransaction::announce(const QStringList& targetFolders, qsizetype expectedFiles)
{
    // A sync of everything can be left to a child, one for each file cannot.
    m_syncEach = expectedFiles <= manyFiles && !m_gate.breathing;
    QList<JournalStep> steps;
    for (const QString& folder : targetFolders) {
        QString existing = withoutTrailing(folder);
        while (!existing.isEmpty() && !m_gate.files().isFolder(existing))
            existing = withoutTrailing(winpath::parent(existing));
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
    m_keptFolders.push_back(withoutTrailing(folder));
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

QString FileTransaction::nextStagedName(const char* ending)
{
    return QString::fromLatin1(stagedPrefix(m_operation) + QByteArray::number(++m_counter) +
                               ending);
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
            return refused(folder, "made", ENOTDIR);
        firstMissing = existing;
        existing = withoutTrailing(winpath::parent(existing));
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
        return refused(folder, "opened", errno);
    m_folders.insert(NoCase{folder}, entry);
    return entry;
}

ResultOf<FileTransaction::Folder> FileTransaction::stagedFolder(const QString& folder,
                                                                const QString& firstMissing)
{
    const QString above = withoutTrailing(winpath::parent(firstMissing));
    const ResultOf<Folder> parent = folderFor(above);
    if (!parent)
        return parent.error();
    QString name = winpath::name(firstMissing);
    if (!parent->staged) {
        const QString stagedName = nextStagedName(".dir");
        m_stagedRoots.insert(NoCase{firstMissing}, StagedRoot{firstMissing, stagedName});
        name = stagedName;
    }
    Folder entry;
    entry.staged = true;
    entry.host = parent->host + '/' + name.toUtf8();
    if (const int error = m_gate.fault("stage folder", entry.host))
        return refused(firstMissing, "made", error);
    if (mkdirat(parent->fd->get(), name.toUtf8().constData(), 0755) != 0 && errno != EEXIST)
        return refused(firstMissing, "made", errno);
    entry.fd = std::make_shared<hostfile::Descriptor>(hostfile::openFolder(entry.host));
    if (!entry.fd->valid())
        return refused(firstMissing, "made", errno);
    m_folders[NoCase{above}].holdsStaged = true;
    m_last = {};
    m_folders.insert(NoCase{firstMissing}, entry);
    m_stagedAny = true;
    if (firstMissing.size() == folder.size())
        return entry;
    const qsizetype next = folder.indexOf(u'\\', firstMissing.size() + 1);
    return stagedFolder(folder, next < 0 ? folder : folder.first(next));
}

QByteArray FileTransaction::hostOf(const QString& path, const PendingFile& pending) const
{
    const auto folder = m_folders.constFind(NoCase{withoutTrailing(winpath::parent(path))});
    Q_ASSERT(folder != m_folders.cend());
    const QString name = pending.step >= 0 ? m_steps[pending.step].stagedName : pending.info.name;
    return folder->host + '/' + name.toUtf8();
}

ResultOf<QByteArray> FileTransaction::read(const QString& path, qint64 limit)
{
    const PendingFile* const it = std::as_const(m_pending).find(path);
    if (!it)
        return m_gate.files().read(path, limit);
    if (it->fate == PendingFate::Removed)
        return refused(path, "read", ENOENT);
    if (it->info.size > limit)
        return refused(path, "read", EFBIG);
    QByteArray bytes;
    const Result read = hostfile::contentOf(hostOf(path, *it)).transfer([&](QByteArrayView piece) {
        bytes += piece;
        return true;
    });
    if (!read)
        return read;
    return bytes;
}

std::optional<FileInfo> FileTransaction::info(const QString& path)
{
    if (const PendingFile* const it = std::as_const(m_pending).find(path))
        return it->fate == PendingFate::Removed ? std::nullopt : std::optional(it->info);
    if (const auto folder = m_folders.constFind(NoCase{withoutTrailing(path)});
        folder != m_folders.cend() && folder->staged) {
        FileInfo info;
        info.name = winpath::name(path);
        info.folder = true;
        return info;
    }
    return m_gate.files().info(path);
}

Result FileTransaction::replace(const QString& path, const QByteArray& bytes)
{
    const ResultOf<Fingerprint> placed = place(path, Content::ofBytes(bytes));
    return placed ? Result::success() : placed.error();
}

ResultOf<Fingerprint> FileTransaction::place(const QString& path, const Content& content)
{
    const auto now = m_gate.files().entry(path);
    if (now && now->folder)
        return refused(path, "written", EISDIR);
    return placeOver(path, content, printOf(now));
}

ResultOf<Fingerprint>
FileTransaction::placeOver(const QString& path, const Content& content, const Fingerprint& before)
{
    return stage(path, before, [&](int folder, const QByteArray& name, unsigned mode) {
        return hostfile::create(folder, name, content, m_syncEach, mode, m_gate.breathing);
    });
}

ResultOf<Fingerprint>
FileTransaction::stage(const QString& path, const Fingerprint& before, const Write& write)
{
    const qsizetype cut = path.lastIndexOf(u'\\');
    QString name = path.sliced(cut + 1);
    if (Result checked = winpath::checkComponent(name); !checked)
        return Result::failure(u"'"_s + path + u"' was refused. "_s + checked.text);
    const ResultOf<Folder> folder = folderFor(path.first(cut));
    if (!folder)
        return folder.error();
    if (folder->holdsStaged && m_folders.contains(NoCase{path}))
        return refused(path, "written", EISDIR);
    if (const int error = m_gate.fault("stage", folder->host))
        return refused(path, "written", error);

    unsigned mode = 0644;
    QString stagedName = name;
    const PendingFile* const earlier = std::as_const(m_pending).find(path);
    qsizetype step = earlier ? earlier->step : -1;
    if (earlier && earlier->fate == PendingFate::Staged)
        unlink(hostOf(path, *earlier).constData());
    if (!folder->staged) {
        stagedName = nextStagedName(".tmp");

        struct stat st
        {};

        if (before.size >= 0) {
            if (fstatat(folder->fd->get(), name.toUtf8().constData(), &st, 0) == 0) {
                mode = st.st_mode & 0777;
            } else if (const auto now = m_gate.files().entry(path)) {
                name = now->name; // spelled in another way, or a link that leads nowhere
                if (fstatat(folder->fd->get(), name.toUtf8().constData(), &st, 0) == 0)
                    mode = st.st_mode & 0777;
            }
        }
        if (step < 0) {
            JournalStep planned;
            planned.kind = StepKind::PlaceFile;
            planned.before = before;
            const ResultOf<Place> target = m_gate.place(path);
            if (!target)
                return target.error();
            planned.target = *target;
            step = m_steps.size();
            m_steps.push_back(planned);
        }
        m_steps[step].kind = StepKind::PlaceFile;
        m_steps[step].stagedName = stagedName;
    }
    ResultOf<Fingerprint> print = write(folder->fd->get(), stagedName.toUtf8(), mode | 0200);
    const int fault = print && m_syncEach ? m_gate.fault("sync", folder->host) : 0;
    if (fault != 0) {
        unlinkat(folder->fd->get(), stagedName.toUtf8().constData(), 0);
        print = hostfile::notSynced(fault);
    }
    if (!print) {
        if (print.kind == ErrorKind::DiskFailed)
            m_syncFailure = print.error();
        m_refusedAny = true;
        if (step >= 0)
            m_steps[step].target.root = RootId::None;
        m_pending.remove(path);
        return Result::failure(
            hostfile::withCause(u"'"_s + path + u"' could not be written"_s, print.text),
            print.kind);
    }
    m_stagedAny = true;
    if (step >= 0)
        m_steps[step].after = *print;
    PendingFile pending;
    pending.step = step;
    pending.info.name = name;
    pending.info.size = print->size;
    pending.info.modifiedNs = print->modifiedNs;
    m_pending.set(path, pending);
    return print;
}

ResultOf<FileTransaction::Folder> FileTransaction::keptFolderFor(const QString& from,
                                                                 const QString& to)
{
    const QString folder = withoutTrailing(winpath::parent(to));
    auto known = m_folders.constFind(NoCase{folder});
    if (known == m_folders.cend()) {
        if (Result made = openKeptFolder(from, to, folder); !made)
            return made;
        known = m_folders.constFind(NoCase{folder});
    }
    if (Result checked = winpath::checkComponent(winpath::name(to)); !checked)
        return checked;
    if (const int error = m_gate.fault("keep", known->host + '/' + winpath::name(to).toUtf8()))
        return refused(from, "kept", error);
    return *known;
}

Result FileTransaction::keep(const QString& from, const QString& to)
{
    const ResultOf<Folder> folder = keptFolderFor(from, to);
    if (!folder)
        return folder.error();
    const QByteArray target = folder->host + '/' + winpath::name(to).toUtf8();
    m_stagedAny = true;
    const Result kept = hostfile::linkOrCopy(m_gate.files().hostPath(from),
                                             target,
                                             hostfile::Links::Keep,
                                             m_syncEach,
                                             m_gate.fault("link", target));
    if (kept)
        return kept;
    const Result failed = Result::failure(
        hostfile::withCause(u"'"_s + from + u"' could not be kept"_s, kept.text), kept.kind);
    if (failed.kind == ErrorKind::DiskFailed)
        m_syncFailure = failed;
    return failed;
}

/// The common case is a file spelled as asked for, on one file system with the kept folder; every
/// other one goes by the paths.
ResultOf<Fingerprint> FileTransaction::keepPrinted(const QString& from, const QString& to)
{
    const ResultOf<Folder> source = folderFor(withoutTrailing(winpath::parent(from)));
    const QByteArray name = winpath::name(from).toUtf8();
    std::optional<Fingerprint> print;
    if (source && !source->staged)
        print = hostfile::fingerprintAt(source->fd->get(), name, m_gate.breathing);
    if (print) {
        const ResultOf<Folder> folder = keptFolderFor(from, to);
        if (!folder)
            return folder.error();
        const QByteArray keptName = winpath::name(to).toUtf8();
        m_stagedAny = true;
        if (m_gate.fault("link", folder->host + '/' + keptName) == 0 &&
            linkat(source->fd->get(), name.constData(), folder->fd->get(), keptName, 0) == 0)
            return *print;
    }
    const ResultOf<Fingerprint> read = fingerprint(m_gate.files(), from);
    if (!read)
        return read;
    if (Result kept = keep(from, to); !kept)
        return kept;
    return read;
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
        return refused(from, "kept", EPERM);
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
        return refused(from, "kept", errno);
    m_folders.insert(NoCase{folder}, entry);
    return Result::success();
}

Result FileTransaction::copy(const QString& from, const QString& to)
{
    const PendingFile* const it = std::as_const(m_pending).find(from);
    if (it && it->fate == PendingFate::Removed)
        return refused(from, "copied", ENOENT);
    const bool staged = it != nullptr;
    if (!staged && !m_gate.files().isFile(from))
        return refused(from, "copied", ENOENT);
    const ResultOf<Fingerprint> placed =
        place(to, hostfile::contentOf(staged ? hostOf(from, *it) : m_gate.files().hostPath(from)));
    return placed ? Result::success() : placed.error();
}

Result FileTransaction::remove(const QString& path)
{
    const auto now = m_gate.files().entry(path);
    if (now && now->folder && !now->link)
        return refused(path, "deleted", EISDIR);
    return removeKnown(path, printOf(now));
}

Result FileTransaction::removeKnown(const QString& path, const Fingerprint& before)
{
    if (PendingFile* const earlier = m_pending.find(path)) {
        if (earlier->fate == PendingFate::Staged)
            unlink(hostOf(path, *earlier).constData());
        if (earlier->step < 0) { // inside a folder that is new anyway
            m_pending.remove(path);
            return Result::success();
        }
        JournalStep& step = m_steps[earlier->step];
        if (step.before.size < 0) { // nothing was there before, nothing is to be
            step.target.root = RootId::None;
            m_pending.remove(path);
            return Result::success();
        }
        step.kind = StepKind::RemoveFile;
        step.stagedName.clear();
        step.after = absent();
        earlier->fate = PendingFate::Removed;
        return Result::success();
    }
    const ResultOf<Place> target = m_gate.place(path);
    if (!target)
        return target.error();
    JournalStep step;
    step.kind = StepKind::RemoveFile;
    step.target = *target;
    step.before = before;
    PendingFile pending;
    pending.fate = PendingFate::Removed;
    pending.step = m_steps.size();
    m_steps.push_back(step);
    m_pending.set(path, pending);
    return Result::success();
}

Result FileTransaction::makeFolder(const QString& folder)
{
    const ResultOf<Folder> made = folderFor(withoutTrailing(folder));
    if (!made)
        return made.error();
    m_folders[NoCase{withoutTrailing(folder)}].wanted = true;
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

Result FileTransaction::move(const QString& from, const QString& to, const Fingerprint& before)
{
    const auto source = m_gate.files().entry(from);
    if (!source || (source->folder && !source->link))
        return refused(from, "moved", ENOENT);
    const QByteArray sourceHost = m_gate.files().hostPath(from);
    const QString folder = withoutTrailing(winpath::parent(to));

    struct stat a
    {};

    struct stat b
    {};

    const bool renames = m_gate.files().isFolder(folder) && m_gate.fault("link", sourceHost) == 0 &&
                         lstat(sourceHost.constData(), &a) == 0 &&
                         stat(m_gate.files().hostPath(folder).constData(), &b) == 0 &&
                         a.st_dev == b.st_dev;
    if (!renames) {
        const ResultOf<Fingerprint> placed =
            stage(to, before, [&](int into, const QByteArray& name, unsigned) {
                return hostfile::copyTo(into, name, sourceHost, hostfile::Links::Keep, m_syncEach);
            });
        return placed ? removeOnce(from, to) : placed.error();
    }
    const ResultOf<Place> sourcePlace = m_gate.place(from);
    const ResultOf<Place> target = m_gate.place(to);
    if (!sourcePlace)
        return sourcePlace.error();
    if (!target)
        return target.error();
    JournalStep step;
    step.kind = StepKind::Move;
    step.target = *target;
    step.source = *sourcePlace;
    step.before = before;
    step.after = printOf(source);
    if (const PendingFile* const staged = std::as_const(m_pending).find(to)) {
        if (staged->fate == PendingFate::Staged)
            unlink(hostOf(to, *staged).constData());
        if (staged->step >= 0)
            m_steps[staged->step].target.root = RootId::None;
        m_pending.remove(to);
    }
    m_steps.push_back(step);
    return Result::success();
}

Result FileTransaction::removeOnce(const QString& path, const QString& target)
{
    const PendingFile* const staged = std::as_const(m_pending).find(target);
    const auto now = m_gate.files().entry(path);
    if (!now || !staged || staged->fate != PendingFate::Staged)
        return refused(path, "deleted", ENOENT);
    const ResultOf<Place> source = m_gate.place(path);
    const ResultOf<Place> place = m_gate.place(target);
    if (!source)
        return source.error();
    if (!place)
        return place.error();
    JournalStep step;
    step.kind = StepKind::RemoveSource;
    step.source = *source;
    step.target = *place;
    step.before = printOf(now);
    step.after.size = staged->info.size;
    step.after.modifiedNs = staged->info.modifiedNs;
    m_steps.push_back(step);
    return Result::success();
}

QString FileTransaction::stagedPath(const QString& path) const
{
    const PendingFile* const staged = std::as_const(m_pending).find(path);
    if (!staged || staged->fate != PendingFate::Staged)
        return {};
    return m_gate.files().drives().toWindows(QString::fromUtf8(hostOf(path, *staged)));
}

Result FileTransaction::require(const QString& path)
{
    const PendingFile* const staged = std::as_const(m_pending).find(path);
    if (!staged || staged->fate != PendingFate::Staged || staged->step < 0)
        return refused(path, "written", ENOENT);
    m_steps[staged->step].kind = StepKind::PlaceFirst;
    return Result::success();
}

/// Takes back the folders that were staged for files that could not be written.
void FileTransaction::dropUnusedFolders()
{
    QSet<NoCase> used;
    const auto use = [&used](QString folder) {
        while (!folder.isEmpty() && !used.contains(NoCase{folder})) {
            used.insert(NoCase{folder});
            folder = withoutTrailing(winpath::parent(folder));
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

ResultOf<QList<StepFailure>> FileTransaction::apply(const QByteArray& closing,
                                                    const std::function<Result()>& records)
{
    Q_ASSERT(m_operation != 0);
    if (m_refusedAny)
        dropUnusedFolders();
    QList<JournalStep> steps;
    steps.reserve(m_steps.size() + m_stagedRoots.size() + m_lastSteps.size() + m_undo.size());
    for (const JournalStep& step : std::as_const(m_steps)) {
        if (step.target.root != RootId::None && step.kind == StepKind::PlaceFirst)
            steps.push_back(step);
    }
    for (const StagedRoot& root : std::as_const(m_stagedRoots)) {
        const ResultOf<Place> target = m_gate.place(root.path);
        if (!target)
            return target.error();
        JournalStep step;
        step.kind = StepKind::PlaceFolder;
        step.target = *target;
        step.stagedName = root.stagedName;
        steps.push_back(step);
    }
    for (const JournalStep& step : std::as_const(m_steps)) {
        if (step.target.root != RootId::None && step.kind != StepKind::PlaceFirst)
            steps.push_back(step);
    }
    steps += m_lastSteps;
    for (const JournalStep& step : std::as_const(m_undo)) {
        if (step.kind == StepKind::StagingFolder)
            steps.push_back(step);
    }
    for (auto it = m_folders.cbegin(); it != m_folders.cend(); ++it) {
        if (it->staged)
            m_madeFolders.push_back(it.key().text + u'\\');
    }
    std::sort(m_madeFolders.begin(), m_madeFolders.end(), [](const QString& a, const QString& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });

    if (Result synced = syncStaged(); !synced)
        return Result::failure(synced.text + u" Nothing was changed."_s, synced.kind);
    if (const int error = m_gate.fault("commit", "apply"))
        return Result::failure(hostfile::errorText(error));
    if (Result applied = m_journal.apply(m_operation, steps, closing, records); !applied)
        return applied;

    // From here on the operation is completed, now or by recover().
    const qint64 operation = std::exchange(m_operation, 0);
    m_folders.clear();
    m_last = {};
    m_pending.clear();
    const StepRunner::Completion done = StepRunner(m_gate, operation).complete(m_journal, steps);
    m_gate.files().newOperation();
    if (!done.unfinished.isEmpty())
        m_closingFailure = u"The files were changed, but the work could not be ended: "_s +
                           done.unfinished + u" It is ended at the next start."_s;
    return done.failures;
}

Result FileTransaction::syncStaged()
{
    if (!m_stagedAny || !m_syncFailure)
        return m_syncFailure;
    QSet<dev_t> seen;
    for (auto it = m_folders.cbegin(); it != m_folders.cend(); ++it) {
        const Folder& folder = *it;

        struct stat st
        {};

        if (!m_syncEach && (fstat(folder.fd->get(), &st) != 0 || seen.contains(st.st_dev)))
            continue;
        seen.insert(st.st_dev);
        const int fault = m_gate.fault("sync folder", folder.host);
        const Result synced = m_syncEach
                                  ? hostfile::syncFolder(folder.fd->get(), fault)
                                  : hostfile::syncFileSystem(folder.host, fault, m_gate.breathing);
        if (!synced)
            return Result::failure(u"What was prepared in '"_s + it.key().text +
                                       u"' is not safe: "_s + synced.text,
                                   synced.kind);
    }
    return Result::success();
}

Result FileTransaction::abandon()
{
    if (m_operation == 0)
        return Result::success();
    m_folders.clear();
    m_last = {};
    m_pending.clear();
    StepRunner runner(m_gate, m_operation);
    const QStringList left = runner.undo(m_undo);
    m_gate.files().newOperation();
    const int fault = m_gate.fault("commit", "forget");
    Result done = !left.isEmpty() ? Result::failure(left.first())
                  : fault != 0    ? Result::failure(hostfile::errorText(fault))
                                  : m_journal.forget(m_operation);
    m_operation = 0;
    if (!done)
        done.text = u"What had been prepared could not be taken back: "_s + done.text +
                    u" It is taken back at the next start."_s;
    return done;
}

} // namespace vt
