// Single files of a transaction: reading through what is staged, staging, keeping, removing,
// moving.
#include "platform/FileTransaction.h"
#include "platform/StepRunner.h"
#include "platform/WinPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

QByteArray FileTransaction::hostOf(const QString& path, const PendingFile& pending) const
{
    const auto folder =
        m_folders.constFind(NoCase{winpath::withoutTrailing(winpath::parent(path))});
    Q_ASSERT(folder != m_folders.cend());
    const QString name = pending.step >= 0 ? m_steps[pending.step].stagedName : pending.info.name;
    return folder->host + '/' + name.toUtf8();
}

QString FileTransaction::nextStagedName(QLatin1StringView ending)
{
    return m_stagedStart + QString::number(++m_counter) + ending;
}

ResultOf<QByteArray> FileTransaction::read(const QString& path, qint64 limit)
{
    const PendingFile* const it = std::as_const(m_pending).find(path);
    if (!it)
        return m_gate.files().read(path, limit);
    if (it->fate == PendingFate::Removed)
        return hostfile::refused(path, u"read", ENOENT);
    if (it->info.size > limit)
        return hostfile::refused(path, u"read", EFBIG);
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
    if (const auto folder = m_folders.constFind(NoCase{winpath::withoutTrailing(path)});
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
        return hostfile::refused(path, u"written", EISDIR);
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
        return hostfile::refused(path, u"written", EISDIR);
    if (const int error = m_gate.fault("stage", folder->host))
        return hostfile::refused(path, u"written", error);

    unsigned mode = 0644;
    QString stagedName = name;
    const PendingFile* const earlier = std::as_const(m_pending).find(path);
    qsizetype step = earlier ? earlier->step : -1;
    if (earlier && earlier->fate == PendingFate::Staged)
        unlink(hostOf(path, *earlier).constData());
    if (!folder->staged) {
        stagedName = nextStagedName(".tmp"_L1);

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

/// The common case is a file spelled as asked for, on one file system with the kept folder: it gets
/// a second name there. Every other one goes by the paths.
Result FileTransaction::keepReplaced(const QString& from, const QString& to)
{
    const qsizetype cut = from.lastIndexOf(u'\\');
    const ResultOf<Folder> source = folderFor(from.first(cut));
    if (source && !source->staged) {
        const ResultOf<Folder> folder = keptFolderFor(from, to);
        if (!folder)
            return folder.error();
        const QByteArray name = from.sliced(cut + 1).toUtf8();
        const QByteArray keptName = winpath::name(to).toUtf8();
        m_stagedAny = true;
        if (m_gate.fault("link", folder->host + '/' + keptName) == 0 &&
            linkat(source->fd->get(), name.constData(), folder->fd->get(), keptName, 0) == 0)
            return Result::success();
    }
    return keep(from, to);
}

Result FileTransaction::copy(const QString& from, const QString& to)
{
    const PendingFile* const it = std::as_const(m_pending).find(from);
    if (it && it->fate == PendingFate::Removed)
        return hostfile::refused(from, u"copied", ENOENT);
    const bool staged = it != nullptr;
    if (!staged && !m_gate.files().isFile(from))
        return hostfile::refused(from, u"copied", ENOENT);
    const ResultOf<Fingerprint> placed =
        place(to, hostfile::contentOf(staged ? hostOf(from, *it) : m_gate.files().hostPath(from)));
    return placed ? Result::success() : placed.error();
}

Result FileTransaction::remove(const QString& path)
{
    const auto now = m_gate.files().entry(path);
    if (now && now->folder && !now->link)
        return hostfile::refused(path, u"deleted", EISDIR);
    return removeKnown(path, printOf(now));
}

qsizetype FileTransaction::removedIn(const QString& folder) const
{
    return m_pending.removedIn(winpath::withoutTrailing(folder));
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
        step.after = {};
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
    if (!m_believedUntil)
        m_believedUntil = QDeadlineTimer(m_believed);
    PendingFile pending;
    pending.fate = PendingFate::Removed;
    pending.step = m_steps.size();
    m_steps.push_back(step);
    m_pending.set(path, pending);
    return Result::success();
}

Result FileTransaction::move(const QString& from, const QString& to, const Fingerprint& before)
{
    const auto source = m_gate.files().entry(from);
    if (!source || (source->folder && !source->link))
        return hostfile::refused(from, u"moved", ENOENT);
    const QByteArray sourceHost = m_gate.files().hostPath(from);
    const QString folder = winpath::withoutTrailing(winpath::parent(to));

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
        return hostfile::refused(path, u"deleted", ENOENT);
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
        return hostfile::refused(path, u"written", ENOENT);
    m_steps[staged->step].kind = StepKind::PlaceFirst;
    return Result::success();
}

} // namespace vt
