// What a removal does with single files.
#include "addondb/AddonDatabase.h"
#include "addondb/FileType.h"
#include "catalogue/UsedFiles.h"
#include "platform/PathIndex.h"
#include "platform/WinPath.h"
#include "remove/CAddonRemover.h"
#include "shell/ErrorLog.h"
#include "shell/OuterLinks.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype progressEvery = 64;

} // namespace

bool mayBeUsed(const GlobalRecord& global, const QString& path)
{
    if (!winpath::isBelow(path, global.simulatorFolder))
        return false;
    switch (classify(winpath::name(path), global.generation)) {
    case FileType::BitmapImage:
    case FileType::Effects:
    case FileType::PanelGauge:
    case FileType::CabinetArchive:
    case FileType::XmlFile:
    case FileType::Sound:
        return true;
    default:
        return false;
    }
}

QString removalPhrase(RemovalMethod method, RemovalOutcome outcome, const QString& target)
{
    const bool cabinet = method == RemovalMethod::FileCabinet;
    const bool copies = method == RemovalMethod::Copy;
    const bool moves = method == RemovalMethod::Recreate;
    switch (outcome) {
    case RemovalOutcome::Removed:
        if (method == RemovalMethod::RemoveRecords)
            return u" was left installed."_s;
        return cabinet  ? u" will be moved to the File Cabinet."_s
               : moves  ? u" will be moved to "_s + target + u'.'
               : copies ? u" will be copied to "_s + target + u'.'
                        : u" was removed."_s;
    case RemovalOutcome::KeptForOthers:
        return cabinet
                   ? u" will be copied to the File Cabinet. Because another addon depends on this file, it was left installed."_s
               : moves ? u" will be copied to "_s + target + u'.'
                       : u" was NOT removed because another addon depends on it."_s;
    case RemovalOutcome::Missing:
        return cabinet  ? u" was NOT moved to the File Cabinet because it no longer exists."_s
               : moves  ? u" was NOT moved to "_s + target + u" because it no longer exists."_s
               : copies ? u" was NOT copied to "_s + target + u" because it no longer exists."_s
                        : u" was NOT removed because it no longer exists."_s;
    case RemovalOutcome::Failed:
        break;
    }
    return cabinet  ? u" may NOT be moved to the File Cabinet due to an error."_s
           : moves  ? u" may NOT be moved to "_s + target + u" due to an error."_s
           : copies ? u" may NOT be copied to "_s + target + u" due to an error."_s
                    : u" was NOT removed due to an error."_s;
}

Result CAddonRemover::RemoveFiles()
{
    status(u"Processing addon files..."_s);
    if (m_actions)
        prepareRelease();
    StatusSink& sink = m_context.services.status;
    for (size_t i = 0; i < m_files.size(); ++i) {
        if (sink.cancelled()) {
            m_cancelled = true;
            return Result::failure(u"The removal of '"_s + m_record.name +
                                       u"' was stopped; nothing was changed."_s,
                                   ErrorKind::Declined);
        }
        if (i % progressEvery == 0)
            sink.progress(qint64(i), qint64(m_files.size()));
        File& file = m_files[i];
        if (Result removed = RemoveFile(file); !removed) {
            if (removed.kind == ErrorKind::DiskFull || removed.kind == ErrorKind::DiskFailed)
                return Result::failure(removed.text + u" Nothing was removed."_s, removed.kind);
            file.outcome = RemovalOutcome::Failed;
            m_anyFailed = true;
            const QString& path = file.path;
            m_context.errors.report(u"Private Sub RemoveFile"_s, path + u": "_s + removed.text);
            m_results.addCause(path, removed.text);
            if (const ResultOf<Place> place = m_context.services.gate.place(path))
                m_closing.failed.push_back(*place);
        }
    }
    return collectLeftovers();
}

/// Files that were moved to the File Cabinet one by one go where the others go.
Result CAddonRemover::collectLeftovers()
{
    if (!m_stored || !m_whole || !moves())
        return Result::success();
    QSet<NoCase> recorded;
    for (const DetailRecord& detail : std::as_const(m_details))
        recorded.insert(NoCase{detail.location + detail.name});
    for (const QString& path : m_stored->paths()) {
        if (recorded.contains(NoCase{path}) && m_inCabinet)
            continue;
        if (Result collected = collectStored(path); !collected)
            return Result::failure(collected.text + u" Nothing was changed."_s,
                                   ErrorKind::DiskFailed);
    }
    return Result::success();
}

void CAddonRemover::prepareRelease()
{
    const QString folder =
        originals::setAsideFolder(m_context.services.files, m_context.global, m_record);
    m_release = std::make_unique<originals::ReleaseContext>(originals::ReleaseContext{
        m_context.services.gate, *m_actions, m_database, m_context.global, folder, [this, folder] {
            if (std::exchange(m_announcedSetAside, true))
                return Result::success();
            return m_actions->announceKept(folder);
        }});
}

void CAddonRemover::confirmLinks()
{
    QStringList folders = {m_context.global.originalsFolder};
    for (const File& file : m_files) {
        if (file.detail.location != folders.last())
            folders.push_back(file.detail.location);
    }
    m_closedLinks = outerlinks::confirm(m_context, folders);
    for (const OuterLink& link : std::as_const(m_closedLinks))
        m_results.add(resultgroup::failedSpecialActions, outerlinks::closedText(link));
}

/// Reads what the installed aircraft, panels and sounds use, where the add-on has files that they
/// may use. What the add-on brought itself does not count.
void CAddonRemover::findUsers()
{
    QStringList asked;
    m_going.masterKey = m_masterKey;
    m_going.files.reserve(qsizetype(m_files.size()));
    for (File& file : m_files) {
        const QString& path = file.path;
        m_going.files.insert(NoCase{path});
        file.mayBeUsed = mayBeUsed(m_context.global, path);
        if (file.mayBeUsed)
            asked.append(path);
        const TypeGroup type = typeGroupOf(classify(file.detail.name, m_context.global.generation));
        const bool part =
            type == TypeGroup::PanelConfiguration || type == TypeGroup::SoundConfiguration;
        // What another add-on has there, or had, stays or comes back.
        if (part && winpath::isBelow(path, m_context.global.simulatorFolder) &&
            !m_originals.contains(file.detail.key) && m_sharers.at(path).isEmpty())
            m_going.parts.insert(NoCase{path});
    }
    if (asked.isEmpty() && m_going.parts.isEmpty())
        return;
    m_catalogue = std::make_unique<Catalogue>(m_context.global);
    status(u"Determining effects dependencies..."_s);
    m_catalogue->open(m_context.services);
    status(u"Determining gauge dependencies..."_s);
    status(u"Determining sound dependencies..."_s);
    m_used = std::make_unique<UsedFiles>(*m_catalogue, m_going.files, asked);
}

bool CAddonRemover::isUsedByOthers(const File& file) const
{
    return m_used && file.mayBeUsed && m_used->isUsed(file.path);
}

Result CAddonRemover::RemoveFile(File& file)
{
    const QString& path = file.path;
    status(u"Processing '"_s + file.detail.name + u"'..."_s);
    m_log.line(
        {u"Removing file ", path, u" using method ", QString::number(int(m_options.method))});
    if (m_inCabinet)
        return processStored(file);
    if (m_options.method == RemovalMethod::RemoveRecords)
        return Result::success();
    if (!m_closedLinks.isEmpty()) {
        const auto closed = m_context.services.gate.outerLink(file.detail.location);
        if (closed)
            return Result::failure(outerlinks::closedText(*closed));
    }
    // Below a program folder that has moved since, for one.
    if (const ResultOf<Place> place = m_context.services.gate.place(path); !place)
        return place.error();
    const auto now = m_context.services.files.entry(path);
    if (now && now->folder && !now->link)
        return Result::failure(u"a folder of that name lies there now."_s);
    bool missing = false;
    if (moves()) {
        const QString own = ownVersion(file, now);
        missing = own.isEmpty();
        if (!missing) {
            if (Result collected = collect(file, own); !collected)
                return collected;
        }
    }
    if (takesAway()) {
        if (Result released = releaseFile(file, now); !released)
            return released;
    }
    if (missing)
        file.outcome = RemovalOutcome::Missing;
    return Result::success();
}

/// Takes the file out of the simulator, by the rules of sharing.
Result CAddonRemover::releaseFile(File& file, const std::optional<FileInfo>& now)
{
    const DetailRecord& detail = file.detail;
    const QString& path = file.path;
    const auto kept = m_originals.constFind(detail.key);
    if (file.editedInPlace) {
        const QString keptPath = m_context.global.originalsFolder + kept->keptFile;
        m_keptFolders.insert(NoCase{winpath::parent(keptPath)});
        return m_actions->remove(keptPath);
    }
    const auto logDependence = [&] {
        m_log.line({u"   ", path, u" has another addon(s) that depend on it"});
    };
    if (now && kept == m_originals.cend() && isUsedByOthers(file)) {
        logDependence();
        file.outcome = RemovalOutcome::KeptForOthers;
        return Result::success();
    }
    const auto original = kept == m_originals.cend() ? std::nullopt : std::optional(*kept);
    const ResultOf<originals::Release> release = originals::release(
        *m_release, detail, m_checks.value(detail.key), original, m_sharers.at(path), now);
    if (!release)
        return release.error();
    if (release->shared) {
        logDependence();
        file.outcome = RemovalOutcome::KeptForOthers;
    } else if (!now) {
        file.outcome = RemovalOutcome::Missing;
    }
    tellRelease(file, *release);
    if (release->passedOn.detailKey != 0)
        m_closing.passedOn.push_back(release->passedOn);
    if (release->aboveForgets != 0)
        m_closing.originalsGone.push_back(release->aboveForgets);
    if (!release->keptGone.isEmpty())
        m_keptFolders.insert(NoCase{winpath::parent(release->keptGone)});
    return Result::success();
}

void CAddonRemover::tellRelease(const File& file, const originals::Release& release)
{
    const QString& path = file.path;
    if (release.fate == originals::Fate::Restored) {
        m_log.line(u"Moving back Original file that this file replaced.");
        if (release.shared)
            m_results.add(resultgroup::specialActions,
                          path,
                          u" has again the version of the addon that was installed before."_s);
        else if (file.outcome == RemovalOutcome::Missing)
            m_results.add(
                resultgroup::specialActions, path, u" was put back as it had been before."_s);
    }
    if (!release.setAside.isEmpty())
        m_results.add(
            resultgroup::specialActions,
            path,
            u" had been changed since it was installed; the changed file was kept as '"_s +
                release.setAside + u"'."_s);
}

void CAddonRemover::tellFile(const File& file)
{
    const QString& path = file.path;
    const bool kept = file.outcome == RemovalOutcome::KeptForOthers;
    m_anyFailed = m_anyFailed || file.outcome == RemovalOutcome::Failed;
    const RemovalMethod method = m_options.method;
    const bool done = file.outcome == RemovalOutcome::Removed || (kept && moves());
    m_results.add(done ? resultgroup::processed : resultgroup::notProcessed,
                  path,
                  removalPhrase(method, file.outcome, m_target));
    if (kept && method == RemovalMethod::Recreate)
        m_results.add(
            resultgroup::notProcessed,
            path,
            u" was left in "_s + file.detail.location +
                u". Because another addon depends on this file, it was left installed."_s);
}

void CAddonRemover::tellFiles(const QList<StepFailure>& failures)
{
    PathIndex failed;
    for (const StepFailure& failure : failures) {
        failed.insert(failure.path, failure.text);
        m_anyFailed = true;
        m_context.errors.report(u"Private Sub Changes_Apply"_s,
                                failure.path + u": "_s + failure.text);
    }
    for (File& file : m_files) {
        const QString& path = file.path;
        if (const QString* why = failed.find(path)) {
            file.outcome = RemovalOutcome::Failed;
            m_results.addCause(path, *why);
        }
        tellFile(file);
    }
    if (m_closing.archive.root != RootId::None) {
        const bool written = !failed.find(m_target);
        m_results.add(written ? resultgroup::specialActions : resultgroup::failedSpecialActions,
                      written ? u"Files were moved to the File Cabinet."_s
                              : u"An error occurred moving files to the File Cabinet zip file."_s);
    }
    if (const QString* why = failed.find(m_context.global.sceneryCfgFile))
        tellLibraryFailure(*why);
    m_results.append(std::move(m_libraryResults));
}

} // namespace vt
