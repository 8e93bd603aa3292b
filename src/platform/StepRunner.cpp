#include "platform/StepRunner.h"

#include "platform/HostFile.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QByteArray folderOf(const QByteArray& host)
{
    return host.first(qMax<qsizetype>(host.lastIndexOf('/'), 1));
}

bool existsOnHost(const QByteArray& host)
{
    struct stat st
    {};

    return lstat(host.constData(), &st) == 0;
}

/// Whether the file is the one described. Size and time decide; a hash decides where they differ
/// in time alone.
bool matches(const QByteArray& host, const Fingerprint& print)
{
    struct stat st
    {};

    if (lstat(host.constData(), &st) != 0)
        return print.size < 0;
    if (print.size < 0 || st.st_size != print.size)
        return false;
    if (qint64(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec == print.modifiedNs)
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

Result StepRunner::carryOut(const JournalStep& step)
{
    if (step.kind == StepKind::StagingFolder || step.kind == StepKind::KeptFolder)
        return Result::success();
    const ResultOf<QByteArray> target = m_gate.hostPath(step.target);
    if (!target)
        return target.error();
    if (const int error = m_gate.fault("carry out", *target))
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
        return removeFolder(*target);
    case StepKind::StagingFolder:
    case StepKind::KeptFolder:
        break;
    }
    return Result::success();
}

Result StepRunner::placeFile(const JournalStep& step, const QByteArray& target)
{
    const QByteArray folder = folderOf(target);
    const QByteArray staged = folder + '/' + step.stagedName.toUtf8();
    if (!existsOnHost(staged))
        return matches(target, step.after) ? Result::success() : changedMeanwhile();
    if (!matches(target, step.before)) {
        unlink(staged.constData());
        return changedMeanwhile();
    }
    if (rename(staged.constData(), target.constData()) != 0) {
        const int error = errno;
        unlink(staged.constData());
        return systemFailure(error);
    }
    m_changedFolders.insert(folder);
    return Result::success();
}

Result StepRunner::placeFolder(const JournalStep& step, const QByteArray& target)
{
    const QByteArray folder = folderOf(target);
    const QByteArray staged = folder + '/' + step.stagedName.toUtf8();
    if (!existsOnHost(staged))
        return existsOnHost(target) ? Result::success() : changedMeanwhile();
    m_changedFolders.insert(folder);
    if (renameat2(AT_FDCWD, staged.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) ==
        0)
        return Result::success();
    if (errno == EINVAL && !existsOnHost(target) &&
        rename(staged.constData(), target.constData()) == 0)
        return Result::success(); // a file system without the flag
    if (errno != EEXIST && errno != ENOTEMPTY)
        return systemFailure(errno);
    // The folder came to life meanwhile: its files keep their place, ours join them.
    Result merged = merge(staged, target);
    if (merged)
        (void)hostfile::removeTree(staged);
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

Result StepRunner::move(const JournalStep& step, const QByteArray& target)
{
    const ResultOf<QByteArray> source = m_gate.hostPath(step.source);
    if (!source)
        return source.error();
    if (!existsOnHost(*source))
        return matches(target, step.after) ? Result::success() : changedMeanwhile();
    if (!matches(target, step.before))
        return changedMeanwhile();
    if (rename(source->constData(), target.constData()) != 0)
        return systemFailure(errno);
    m_changedFolders.insert(folderOf(target));
    m_changedFolders.insert(folderOf(*source));
    return Result::success();
}

Result StepRunner::removeFile(const JournalStep& step, const QByteArray& target)
{
    if (!existsOnHost(target))
        return Result::success();
    if (!matches(target, step.before))
        return changedMeanwhile();
    if (unlink(target.constData()) != 0 && errno != ENOENT)
        return systemFailure(errno);
    m_changedFolders.insert(folderOf(target));
    return Result::success();
}

Result StepRunner::removeFolder(const QByteArray& target)
{
    if (rmdir(target.constData()) != 0 && errno != ENOENT && errno != ENOTEMPTY && errno != EEXIST)
        return systemFailure(errno);
    return Result::success();
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
        if (!removed)
            texts.push_back(u"What was left in '"_s + m_gate.path(step.target) +
                            u"' could not be deleted: "_s + removed.text);
    }
    return texts;
}

} // namespace vt
