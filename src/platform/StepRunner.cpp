#include "platform/StepRunner.h"

#include "platform/WinPath.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Folders kept open at a time.
constexpr qsizetype maxOpenFolders = 128;

QByteArray folderOf(const QByteArray& host)
{
    return host.first(qMax<qsizetype>(host.lastIndexOf('/'), 1));
}

/// What lies under a name of a folder: its facts, or nothing. A link stands for itself.
std::optional<struct stat> entryAt(int folder, const QByteArray& name)
{
    struct stat st
    {};

    if (fstatat(folder, name.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return st;
}

/// Calls \a take(name) for every entry but "." and ".."; 0 or the error.
template <typename Take> int eachEntry(const QByteArray& folder, const Take& take)
{
    DIR* dir = opendir(folder.constData());
    if (!dir)
        return errno;
    while (const dirent* entry = readdir(dir)) {
        const QByteArrayView name(entry->d_name);
        if (name != "." && name != "..")
            take(name);
    }
    closedir(dir);
    return 0;
}

/// Whether the file is the one described. Size and time decide; a hash decides where they differ
/// in time alone.
template <std::invocable Host>
bool isTheFile(const std::optional<struct stat>& st, const Host& host, const Fingerprint& print)
{
    if (!st)
        return print.size < 0;
    if (print.size < 0 || st->st_size != print.size)
        return false;
    if (qint64(st->st_mtim.tv_sec) * 1'000'000'000 + st->st_mtim.tv_nsec == print.modifiedNs)
        return true;
    if (print.xxh3.isEmpty())
        return false;
    const ResultOf<Fingerprint> now = hostfile::fingerprint(host());
    return now && now->xxh3 == print.xxh3;
}

Result changedMeanwhile()
{
    return Result::failure(u"it was changed by another program meanwhile, so it was left alone."_s);
}

Result systemFailure(int error)
{
    return Result::failure(hostfile::errorText(error));
}

/// Deletes the entries of a folder whose names begin with \a prefix.
Result removeStaged(const QByteArray& folder, const QByteArray& prefix)
{
    QList<QByteArray> names;
    const int error = eachEntry(folder, [&](QByteArrayView name) {
        if (name.startsWith(prefix))
            names.push_back(name.toByteArray());
    });
    if (error != 0)
        return error == ENOENT ? Result::success() : systemFailure(error);
    Result result = Result::success();
    for (const QByteArray& name : names) {
        if (Result removed = hostfile::removeTree(folder + '/' + name); !removed)
            result = removed;
    }
    return result;
}

} // namespace

bool StepRunner::Target::is(const Fingerprint& print) const
{
    return isTheFile(
        now, [this] { return host(); }, print);
}

QByteArray stagedPrefix(qint64 operation)
{
    return "~vt" + QByteArray::number(operation) + '-';
}

QList<JournalStep> stagingSteps(const QList<JournalStep>& steps)
{
    QList<JournalStep> out;
    for (const JournalStep& step : steps) {
        if (step.kind == StepKind::StagingFolder)
            out.push_back(step);
    }
    return out;
}

StepRunner::Completion StepRunner::complete(Journal& journal, const QList<JournalStep>& steps)
{
    // What others made since the steps were planned is to be seen.
    m_gate.files().newOperation();
    for (const JournalStep& step : steps) {
        m_gate.breathe();
        const Result done = carryOut(step);
        if (done)
            continue;
        failed(m_gate.path(step.target), done.text);
        if (step.kind == StepKind::PlaceFirst) {
            leaveOthers(steps, step);
            break;
        }
    }
    Completion out;
    out.failures = m_failures;
    if (Result synced = syncFolders(); !synced) {
        out.unfinished = synced.text;
        return out;
    }
    QList<Place> failedPlaces;
    for (const StepFailure& failure : std::as_const(m_failures)) {
        if (const ResultOf<Place> place = m_gate.place(failure.path))
            failedPlaces.push_back(*place);
    }
    // What was not placed is deleted only once the records say so: a run that dies in between
    // could not tell any more which files of a folder were its own.
    const bool clean = m_failures.isEmpty() && !m_merged;
    const QList<JournalStep> rest = clean ? QList<JournalStep>() : stagingSteps(steps);
    const int error = m_gate.fault("commit", "end");
    Result ended = error != 0 ? systemFailure(error) : journal.end(m_operation, failedPlaces, rest);
    if (ended && !rest.isEmpty()) {
        const QStringList left = undo(rest);
        const int fault = m_gate.fault("commit", "forget");
        ended = !left.isEmpty() ? Result::failure(left.first())
                : fault != 0    ? systemFailure(fault)
                                : journal.forget(m_operation);
    }
    if (!ended)
        out.unfinished = ended.text;
    return out;
}

/// Tells every target that nothing was done for it, because the first one failed.
void StepRunner::leaveOthers(const QList<JournalStep>& steps, const JournalStep& first)
{
    const QString why = u"it was left alone, because '"_s + m_gate.path(first.target) +
                        u"' could not be written."_s;
    for (const JournalStep& step : steps) {
        const bool changes = step.kind != StepKind::StagingFolder &&
                             step.kind != StepKind::KeptFolder &&
                             step.kind != StepKind::RemoveFolder;
        if (changes && step != first)
            failed(m_gate.path(step.target), why);
    }
}

QString StepRunner::obstacle(const QList<JournalStep>& steps) const
{
    for (const QString& folder : foldersOf(m_gate, steps)) {
        if (const ResultOf<QByteArray> entered = m_gate.hostFolder(folder); !entered)
            return entered.text;
    }
    return {};
}

ResultOf<StepRunner::Target> StepRunner::locate(const Place& place)
{
    const qsizetype cut = place.relative.lastIndexOf(u'\\');
    const QStringView name = QStringView(place.relative).sliced(cut + 1);
    const QStringView above = QStringView(place.relative).first(qMax<qsizetype>(cut, 0));
    Target target;
    target.name = name.toUtf8();
    if (!m_last || place.root != m_lastRoot || above != m_lastFolder) {
        m_lastRoot = place.root;
        m_lastFolder = above.toString();
        m_last = m_folders.value(QChar(char16_t(place.root)) + m_lastFolder);
    }
    if (m_last) {
        // The gate looks at the whole path once a folder, at the name alone for its neighbours.
        if (Result checked = winpath::checkComponent(name); !checked)
            return checked;
        target.in = m_last;
    } else {
        const ResultOf<QByteArray> host = m_gate.hostPath(place);
        if (!host)
            return host.error();
        target.in = std::make_shared<Folder>();
        target.in->host = folderOf(*host);
        target.in->fd = hostfile::openFolder(target.in->host);
        if (m_folders.size() >= maxOpenFolders)
            m_folders.clear();
        if (target.in->fd.valid()) {
            m_last = target.in;
            m_folders.insert(QChar(char16_t(place.root)) + m_lastFolder, m_last);
        }
    }
    target.folder = target.in->fd.get();
    return target;
}

void StepRunner::look(Target& target, const Place& place) const
{
    target.now = entryAt(target.folder, target.name);
    if (target.folder >= 0 && !target.now) {
        const QByteArray own = m_gate.files().hostPath(m_gate.path(place));
        target.name = own.sliced(own.lastIndexOf('/') + 1);
        target.now = entryAt(target.folder, target.name);
    }
}

void StepRunner::noteChanged(const Target& target)
{
    if (!std::exchange(target.in->changed, true))
        m_changedFolders.insert(target.in->host);
}

Result StepRunner::carryOut(const JournalStep& step)
{
    if (step.kind == StepKind::StagingFolder || step.kind == StepKind::KeptFolder)
        return Result::success();
    ResultOf<Target> target = locate(step.target);
    if (!target)
        return target.error();
    const bool believed = step.kind == StepKind::RemoveFile && !m_believed.hasExpired();
    if (!believed)
        look(*target, step.target);
    if (const int error = m_gate.fault("carry out", [&] { return target->host(); }))
        return systemFailure(error);
    if (believed) {
        if (unlinkat(target->folder, target->name.constData(), 0) == 0) {
            noteChanged(*target);
            return Result::success();
        }
        look(*target, step.target);
    }
    switch (step.kind) {
    case StepKind::PlaceFile:
    case StepKind::PlaceFirst:
        return placeFile(step, *target);
    case StepKind::PlaceFolder:
        return placeFolder(step, *target);
    case StepKind::Move:
        return move(step, *target);
    case StepKind::RemoveFile:
        return removeFile(step, *target);
    case StepKind::RemoveFolder:
        removeFolder(*target);
        return Result::success();
    case StepKind::RemoveSource:
        return removeSource(step, *target);
    case StepKind::StagingFolder:
    case StepKind::KeptFolder:
        break;
    }
    return Result::success();
}

Result StepRunner::placeFile(const JournalStep& step, const Target& target)
{
    const QByteArray staged = step.stagedName.toUtf8();
    int error = 0;
    if (target.is(step.before)) {
        if (renameat(target.folder, staged.constData(), target.folder, target.name.constData()) !=
            0)
            error = errno;
        else
            noteChanged(target);
        if (error == 0)
            return Result::success();
    }
    if (!entryAt(target.folder, staged)) {
        noteChanged(target); // done before, but perhaps not on the disk yet
        return target.is(step.after) ? Result::success() : changedMeanwhile();
    }
    unlinkat(target.folder, staged.constData(), 0);
    return error != 0 ? systemFailure(error) : changedMeanwhile();
}

Result StepRunner::placeFolder(const JournalStep& step, const Target& target)
{
    const QByteArray staged = step.stagedName.toUtf8();
    const int at = target.folder;
    noteChanged(target);
    if (!entryAt(at, staged))
        return target.now ? Result::success() : changedMeanwhile();
    const int error =
        target.now
            ? EEXIST
            : hostfile::renameNew(at, staged, at, target.name, m_gate.fault("rename new", [&] {
                  return target.host();
              }));
    if (error != EEXIST && error != ENOTEMPTY)
        return error == 0 ? Result::success() : systemFailure(error);
    // The folder came to life meanwhile: its files keep their place, ours join them.
    m_merged = true;
    m_gate.files().newOperation();
    merge(target.in->host + '/' + staged, m_gate.path(step.target));
    return Result::success(); // each file that found no place is told by itself
}

void StepRunner::merge(const QByteArray& staged, const QString& folder)
{
    const ResultOf<QByteArray> into = m_gate.hostFolder(folder);
    if (!into)
        return failed(folder, into.text);
    QHash<NoCase, QByteArray> there;
    int error = eachEntry(*into, [&](QByteArrayView name) {
        there.insert(NoCase{QString::fromUtf8(name)}, name.toByteArray());
    });
    QList<QByteArray> ours;
    if (error == 0)
        error = eachEntry(staged, [&](QByteArrayView name) { ours.push_back(name.toByteArray()); });
    if (error != 0)
        return failed(folder, hostfile::errorText(error));
    m_changedFolders.insert(*into);
    for (const QByteArray& name : std::as_const(ours)) {
        const QString path = folder + u'\\' + QString::fromUtf8(name);
        const auto known = there.constFind(NoCase{QString::fromUtf8(name)});
        const QByteArray from = staged + '/' + name;
        const QByteArray to = *into + '/' + (known == there.cend() ? name : *known);
        error = m_gate.fault("merge", to);
        if (error == 0)
            error = known != there.cend()
                        ? EEXIST
                        : hostfile::renameNew(
                              AT_FDCWD, from, AT_FDCWD, to, m_gate.fault("rename new", to));
        if (error == EEXIST || error == ENOTEMPTY)
            mergeEntry(from, to, path);
        else if (error != 0)
            failed(path, hostfile::errorText(error));
    }
}

void StepRunner::mergeEntry(const QByteArray& from, const QByteArray& to, const QString& path)
{
    const auto ours = entryAt(AT_FDCWD, from);
    const auto theirs = entryAt(AT_FDCWD, to);
    if (ours && S_ISDIR(ours->st_mode)) {
        struct stat st
        {};

        if (stat(to.constData(), &st) == 0 && S_ISDIR(st.st_mode))
            return merge(from, path);
    } else if (ours && theirs && ours->st_dev == theirs->st_dev && ours->st_ino == theirs->st_ino) {
        // An earlier run ended between giving the second name and taking the first.
        if (unlink(from.constData()) != 0)
            failed(path, hostfile::errorText(errno));
        return;
    }
    failed(path, changedMeanwhile().text);
}

Result StepRunner::move(const JournalStep& step, const Target& target)
{
    const ResultOf<QByteArray> source = m_gate.hostPath(step.source);
    if (!source)
        return source.error();
    noteChanged(target);
    m_changedFolders.insert(folderOf(*source));
    if (!entryAt(AT_FDCWD, *source))
        return target.is(step.after) ? Result::success() : changedMeanwhile();
    if (!target.is(step.before))
        return changedMeanwhile();
    if (renameat(AT_FDCWD, source->constData(), target.folder, target.name.constData()) != 0)
        return systemFailure(errno);
    return Result::success();
}

Result StepRunner::removeFile(const JournalStep& step, const Target& target)
{
    noteChanged(target);
    if (!target.now)
        return Result::success();
    if (!target.is(step.before))
        return changedMeanwhile();
    if (unlinkat(target.folder, target.name.constData(), 0) != 0 && errno != ENOENT)
        return systemFailure(errno);
    return Result::success();
}

Result StepRunner::removeSource(const JournalStep& step, const Target& target)
{
    const ResultOf<QByteArray> source = m_gate.hostPath(step.source);
    if (!source)
        return source.error();
    m_changedFolders.insert(folderOf(*source));
    const auto now = entryAt(AT_FDCWD, *source);
    if (!now)
        return Result::success();
    if (!target.is(step.after) || !isTheFile(
                                      now, [&] { return *source; }, step.before))
        return Result::failure(
            u"what was kept for it stays, because the file is not in its place."_s);
    if (unlink(source->constData()) != 0 && errno != ENOENT)
        return systemFailure(errno);
    return Result::success();
}

void StepRunner::removeFolder(const Target& target)
{
    // One that stays, for whatever reason, is no failure: it is tried again with the next removal.
    if (target.folder >= 0 &&
        (unlinkat(target.folder, target.name.constData(), AT_REMOVEDIR) == 0 || errno == ENOENT))
        noteChanged(target);
}

Result StepRunner::syncFolders()
{
    constexpr qsizetype oneByOne = 64;
    const bool each = m_changedFolders.size() <= oneByOne && !m_gate.breathing;
    QSet<dev_t> seen;
    Result first = Result::success();
    for (const QByteArray& folder : std::as_const(m_changedFolders)) {
        struct stat st
        {};

        if (!each && (stat(folder.constData(), &st) != 0 || seen.contains(st.st_dev)))
            continue;
        seen.insert(st.st_dev);
        const int fault = m_gate.fault("sync folder", folder);
        Result synced = each ? hostfile::syncFolder(folder, fault)
                             : hostfile::syncFileSystem(folder, fault, m_gate.breathing);
        if (!synced && first)
            first =
                Result::failure(u"what was changed in '"_s +
                                    m_gate.files().drives().toWindows(QString::fromUtf8(folder)) +
                                    u"' is not safe: "_s + synced.text,
                                synced.kind);
    }
    m_changedFolders.clear();
    return first;
}

QStringList StepRunner::undo(const QList<JournalStep>& steps)
{
    QStringList texts;
    for (const JournalStep& step : steps) {
        if (step.kind != StepKind::StagingFolder && step.kind != StepKind::KeptFolder)
            continue;
        const bool kept = step.kind == StepKind::KeptFolder;
        const QString folder = m_gate.path(step.target);
        const ResultOf<QByteArray> host =
            kept ? m_gate.hostPath(folder) : m_gate.hostFolder(folder);
        if (!host) {
            texts.push_back(host.text);
            continue;
        }
        const int fault = m_gate.fault("undo", *host);
        Result done = fault != 0 ? systemFailure(fault)
                      : kept     ? hostfile::removeTree(*host)
                                 : removeStaged(*host, stagedPrefix(m_operation));
        // Gone for good before the journal forgets it.
        const QByteArray changed = kept ? folderOf(*host) : *host;
        if (done)
            done = hostfile::syncFolder(changed, m_gate.fault("sync folder", changed));
        if (!done)
            texts.push_back(u"What was left in '"_s + folder + u"' could not be deleted: "_s +
                            done.text);
    }
    return texts;
}

bool StepRunner::anyStaged(const QList<JournalStep>& steps) const
{
    const QString prefix = QString::fromLatin1(stagedPrefix(m_operation));
    for (const JournalStep& step : steps) {
        if (step.kind != StepKind::StagingFolder)
            continue;
        for (const QString& name : m_gate.files().names(m_gate.path(step.target))) {
            if (name.startsWith(prefix))
                return true;
        }
    }
    return false;
}

} // namespace vt
