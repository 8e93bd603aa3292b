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

/// What lies under a name of a folder: its facts, or nothing.
std::optional<struct stat> entryAt(int folder, const QByteArray& name)
{
    struct stat st
    {};

    if (fstatat(folder, name.constData(), &st, 0) != 0)
        return std::nullopt;
    return st;
}

/// Whether the file is the one described. Size and time decide; a hash decides where they differ
/// in time alone.
bool isTheFile(const std::optional<struct stat>& st,
               const QByteArray& host,
               const Fingerprint& print)
{
    if (!st)
        return print.size < 0;
    if (print.size < 0 || st->st_size != print.size)
        return false;
    if (qint64(st->st_mtim.tv_sec) * 1'000'000'000 + st->st_mtim.tv_nsec == print.modifiedNs)
        return true;
    if (print.xxh3.isEmpty())
        return false;
    const ResultOf<Fingerprint> now = hostfile::fingerprint(host);
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
    DIR* dir = opendir(folder.constData());
    if (!dir)
        return errno == ENOENT ? Result::success() : systemFailure(errno);
    QList<QByteArray> names;
    while (const dirent* entry = readdir(dir)) {
        if (QByteArrayView(entry->d_name).startsWith(prefix))
            names.push_back(entry->d_name);
    }
    closedir(dir);
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
    return isTheFile(now, host(), print);
}

QByteArray stagedPrefix(qint64 operation)
{
    return "~vt" + QByteArray::number(operation) + '-';
}

QList<StepFailure> StepRunner::carryOut(const QList<JournalStep>& steps)
{
    QList<StepFailure> failures;
    for (const JournalStep& step : steps) {
        if (Result done = carryOut(step); !done)
            failures.push_back({m_gate.path(step.target), done.text});
    }
    return failures;
}

ResultOf<StepRunner::Target> StepRunner::locate(const Place& place)
{
    const qsizetype cut = place.relative.lastIndexOf(u'\\');
    const QStringView name = QStringView(place.relative).sliced(cut + 1);
    const QString key = QChar(char16_t(place.root)) + place.relative.first(qMax<qsizetype>(cut, 0));
    Target target;
    target.name = name.toUtf8();
    if (const auto known = m_folders.constFind(key); known != m_folders.cend()) {
        // The gate looks at the whole path once a folder, at the name alone for its neighbours.
        if (Result checked = winpath::checkComponent(name); !checked)
            return checked;
        target.in = *known;
    } else {
        const ResultOf<QByteArray> host = m_gate.hostPath(place);
        if (!host)
            return host.error();
        target.in = std::make_shared<Folder>();
        target.in->host = folderOf(*host);
        target.in->fd = hostfile::openFolder(target.in->host);
        if (m_folders.size() >= maxOpenFolders)
            m_folders.clear();
        if (target.in->fd.valid())
            m_folders.insert(key, target.in);
    }
    target.folder = target.in->fd.get();
    target.now = entryAt(target.folder, target.name);
    if (target.folder >= 0 && !target.now) {
        const QByteArray own = m_gate.files().hostPath(m_gate.path(place));
        target.name = own.sliced(own.lastIndexOf('/') + 1);
        target.now = entryAt(target.folder, target.name);
    }
    return target;
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
    const ResultOf<Target> target = locate(step.target);
    if (!target)
        return target.error();
    if (const int error = m_gate.fault("carry out", target->host()))
        return systemFailure(error);
    switch (step.kind) {
    case StepKind::PlaceFile:
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
    if (!entryAt(target.folder, staged))
        return target.is(step.after) ? Result::success() : changedMeanwhile();
    if (!target.is(step.before)) {
        unlinkat(target.folder, staged.constData(), 0);
        return changedMeanwhile();
    }
    if (renameat(target.folder, staged.constData(), target.folder, target.name.constData()) != 0) {
        const int error = errno;
        unlinkat(target.folder, staged.constData(), 0);
        return systemFailure(error);
    }
    noteChanged(target);
    return Result::success();
}

Result StepRunner::placeFolder(const JournalStep& step, const Target& target)
{
    const QByteArray staged = step.stagedName.toUtf8();
    const int at = target.folder;
    if (!entryAt(at, staged))
        return target.now ? Result::success() : changedMeanwhile();
    noteChanged(target);
    if (renameat2(at, staged.constData(), at, target.name.constData(), RENAME_NOREPLACE) == 0)
        return Result::success();
    if (errno == EINVAL && !target.now &&
        renameat(at, staged.constData(), at, target.name.constData()) == 0)
        return Result::success(); // a file system without the flag
    if (errno != EEXIST && errno != ENOTEMPTY)
        return systemFailure(errno);
    // The folder came to life meanwhile: its files keep their place, ours join them.
    const QByteArray stagedHost = target.in->host + '/' + staged;
    Result merged = merge(stagedHost, target.host());
    if (merged)
        (void)hostfile::removeTree(stagedHost);
    return merged;
}

Result StepRunner::merge(const QByteArray& staged, const QByteArray& target)
{
    DIR* dir = opendir(staged.constData());
    if (!dir)
        return systemFailure(errno);
    Result result = Result::success();
    while (const dirent* entry = readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        const QByteArray from = staged + '/' + name;
        const QByteArray to = target + '/' + name;
        if (renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
            continue;

        struct stat st
        {};

        if (lstat(from.constData(), &st) == 0 && S_ISDIR(st.st_mode)) {
            if (Result inner = merge(from, to); !inner)
                result = inner;
        } else {
            result = changedMeanwhile();
        }
    }
    closedir(dir);
    m_changedFolders.insert(target);
    return result;
}

Result StepRunner::move(const JournalStep& step, const Target& target)
{
    const ResultOf<QByteArray> source = m_gate.hostPath(step.source);
    if (!source)
        return source.error();
    if (!entryAt(AT_FDCWD, *source))
        return target.is(step.after) ? Result::success() : changedMeanwhile();
    if (!target.is(step.before))
        return changedMeanwhile();
    if (renameat(AT_FDCWD, source->constData(), target.folder, target.name.constData()) != 0)
        return systemFailure(errno);
    noteChanged(target);
    m_changedFolders.insert(folderOf(*source));
    return Result::success();
}

Result StepRunner::removeFile(const JournalStep& step, const Target& target)
{
    if (!target.now)
        return Result::success();
    if (!target.is(step.before))
        return changedMeanwhile();
    if (unlinkat(target.folder, target.name.constData(), 0) != 0 && errno != ENOENT)
        return systemFailure(errno);
    noteChanged(target);
    return Result::success();
}

Result StepRunner::removeSource(const JournalStep& step, const Target& target)
{
    const ResultOf<QByteArray> source = m_gate.hostPath(step.source);
    if (!source)
        return source.error();
    const auto now = entryAt(AT_FDCWD, *source);
    if (!now)
        return Result::success();
    if (!target.is(step.after) || !isTheFile(now, *source, step.before))
        return Result::failure(
            u"what was kept for it stays, because the file is not in its place."_s);
    if (unlink(source->constData()) != 0 && errno != ENOENT)
        return systemFailure(errno);
    m_changedFolders.insert(folderOf(*source));
    return Result::success();
}

void StepRunner::removeFolder(const Target& target)
{
    // One that stays, for whatever reason, is no failure: it is tried again with the next removal.
    if (target.folder >= 0 && unlinkat(target.folder, target.name.constData(), AT_REMOVEDIR) == 0)
        noteChanged(target);
}

void StepRunner::syncFolders()
{
    constexpr qsizetype oneByOne = 64;
    if (m_changedFolders.size() <= oneByOne) {
        for (const QByteArray& folder : std::as_const(m_changedFolders))
            hostfile::syncFolder(folder);
    } else {
        QSet<dev_t> seen;
        for (const QByteArray& folder : std::as_const(m_changedFolders)) {
            struct stat st
            {};

            if (stat(folder.constData(), &st) == 0 && !seen.contains(st.st_dev)) {
                seen.insert(st.st_dev);
                (void)hostfile::syncFileSystem(folder); // the journal still holds the steps
            }
        }
    }
    m_changedFolders.clear();
}

QStringList StepRunner::undo(const QList<JournalStep>& steps)
{
    QStringList texts;
    for (const JournalStep& step : steps) {
        if (step.kind != StepKind::StagingFolder && step.kind != StepKind::KeptFolder)
            continue;
        const ResultOf<QByteArray> host = m_gate.hostPath(step.target);
        if (!host) {
            texts.push_back(host.text);
            continue;
        }
        if (const int error = m_gate.fault("undo", *host)) {
            texts.push_back(hostfile::errorText(error));
            continue;
        }
        const Result removed = step.kind == StepKind::KeptFolder
                                   ? hostfile::removeTree(*host)
                                   : removeStaged(*host, stagedPrefix(m_operation));
        // Gone for good before the journal forgets it.
        hostfile::syncFolder(step.kind == StepKind::KeptFolder ? folderOf(*host) : *host);
        if (!removed)
            texts.push_back(u"What was left in '"_s + m_gate.path(step.target) +
                            u"' could not be deleted: "_s + removed.text);
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
