// What a removal does with files and folders.
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

QString removalPhrase(RemovalOutcome outcome)
{
    switch (outcome) {
    case RemovalOutcome::Removed:
        return u" was removed."_s;
    case RemovalOutcome::KeptForOthers:
        return u" was NOT removed because another addon depends on it."_s;
    case RemovalOutcome::Missing:
        return u" was NOT removed because it no longer exists."_s;
    case RemovalOutcome::Failed:
        break;
    }
    return u" was NOT removed due to an error."_s;
}

Result CAddonRemover::RemoveFiles()
{
    status(u"Processing addon files..."_s);
    const QString setAsideFolder =
        originals::setAsideFolder(m_context.services.files, m_context.global, m_record);
    m_release = std::make_unique<originals::ReleaseContext>(
        originals::ReleaseContext{m_context.services.gate,
                                  *m_actions,
                                  m_database,
                                  m_context.global,
                                  setAsideFolder,
                                  [this, setAsideFolder] {
                                      if (std::exchange(m_announcedSetAside, true))
                                          return Result::success();
                                      return m_actions->announceKept(setAsideFolder);
                                  }});
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
            const QString path = file.detail.location + file.detail.name;
            m_context.errors.report(u"Private Sub RemoveFile"_s, path + u": "_s + removed.text);
            m_results.addCause(path, removed.text);
            if (const ResultOf<Place> place = m_context.services.gate.place(path))
                m_closing.failed.push_back(*place);
        }
    }
    return Result::success();
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
    bool matters = false;
    m_going.masterKey = m_masterKey;
    for (const File& file : m_files) {
        const QString path = file.detail.location + file.detail.name;
        m_going.files.insert(NoCase{path});
        matters = matters || mayBeUsed(path);
        const TypeGroup type = typeGroupOf(classify(file.detail.name, m_context.global.generation));
        const bool part =
            type == TypeGroup::PanelConfiguration || type == TypeGroup::SoundConfiguration;
        // What another add-on has there, or had, stays or comes back.
        if (part && winpath::isBelow(path, m_context.global.simulatorFolder) &&
            !m_originals.contains(file.detail.key) && m_sharers.at(path).isEmpty())
            m_going.parts.insert(NoCase{path});
    }
    if (!matters && m_going.parts.isEmpty())
        return;
    m_catalogue = std::make_unique<Catalogue>(m_context.global);
    status(u"Determining effects dependencies..."_s);
    m_catalogue->open(m_context.services);
    status(u"Determining gauge dependencies..."_s);
    status(u"Determining sound dependencies..."_s);
    m_used = std::make_unique<UsedFiles>(*m_catalogue, m_going.files);
}

/// Files below the simulator of the types that configuration files name.
bool CAddonRemover::mayBeUsed(const QString& path) const
{
    if (!winpath::isBelow(path, m_context.global.simulatorFolder))
        return false;
    switch (classify(winpath::name(path), m_context.global.generation)) {
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

bool CAddonRemover::isUsedByOthers(const QString& path) const
{
    return m_used && mayBeUsed(path) && m_used->isUsed(path);
}

Result CAddonRemover::RemoveFile(File& file)
{
    const DetailRecord& detail = file.detail;
    const QString path = detail.location + detail.name;
    status(u"Processing '"_s + detail.name + u"'..."_s);
    m_log.line(QString(u"Removing file "_s + path + u" using method "_s +
                       QString::number(int(m_options.method))));
    if (!m_closedLinks.isEmpty()) {
        const auto closed = m_context.services.gate.outerLink(detail.location);
        if (closed)
            return Result::failure(outerlinks::closedText(*closed));
    }
    const auto now = m_context.services.files.entry(path);
    if (now && now->folder && !now->link)
        return Result::failure(u"a folder of that name lies there now."_s);
    const auto kept = m_originals.constFind(detail.key);
    if (file.editedInPlace) {
        const QString keptPath = m_context.global.originalsFolder + kept->keptFile;
        m_keptFolders.insert(NoCase{winpath::parent(keptPath)});
        return m_actions->remove(keptPath);
    }
    if (now && kept == m_originals.cend() && isUsedByOthers(path)) {
        m_log.line(QString(u"   "_s + path + u" has another addon(s) that depend on it"_s));
        file.outcome = RemovalOutcome::KeptForOthers;
        return Result::success();
    }
    const auto original = kept == m_originals.cend() ? std::nullopt : std::optional(*kept);
    const ResultOf<originals::Release> release = originals::release(
        *m_release, detail, m_checks.value(detail.key), original, m_sharers.at(path), now);
    if (!release)
        return release.error();
    if (release->shared)
        file.outcome = RemovalOutcome::KeptForOthers;
    else if (!now)
        file.outcome = RemovalOutcome::Missing;
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
    const QString path = file.detail.location + file.detail.name;
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

Result CAddonRemover::CustomFolders_Delete()
{
    status(u"Deleting custom folders..."_s);
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
    QStringList backups;
    for (const QString& name : m_context.services.files.names(folder)) {
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
        const QString path = file.detail.location + file.detail.name;
        if (const QString* why = failed.find(path)) {
            file.outcome = RemovalOutcome::Failed;
            m_results.addCause(path, *why);
        }
        m_anyFailed = m_anyFailed || file.outcome == RemovalOutcome::Failed;
        m_results.add(file.outcome == RemovalOutcome::Removed ? resultgroup::processed
                                                              : resultgroup::notProcessed,
                      path,
                      removalPhrase(file.outcome));
    }
    if (const QString* why = failed.find(m_context.global.sceneryCfgFile))
        tellLibraryFailure(*why);
    m_results.append(std::move(m_libraryResults));
}

} // namespace vt
