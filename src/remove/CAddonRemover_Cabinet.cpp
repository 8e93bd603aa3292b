// What a removal moves, or a copy copies: into the File Cabinet, a folder or a zip file. Everything
// is written, read back and compared before the transaction that takes it out of the simulator is
// committed.
#include "addondb/AddonDatabase.h"
#include "addondb/Pictures.h"
#include "platform/Hash.h"
#include "platform/WinPath.h"
#include "remove/CAddonRemover.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"
#include "simconfig/AddonVariations.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// "name 2.zip", where the name is taken.
QString freeName(const Files& files, const QString& base, const QString& ending)
{
    QString path = base + ending;
    for (int n = 2; files.entry(path); ++n)
        path = base + u' ' + QString::number(n) + ending;
    return path;
}

} // namespace

QString removalActionText(RemovalMethod method, const QString& target)
{
    switch (method) {
    case RemovalMethod::FileCabinet:
    case RemovalMethod::Recreate:
        return u"Move to "_s + target;
    case RemovalMethod::RemoveRecords:
        return u"Remove records"_s;
    case RemovalMethod::Copy:
        return u"Copy to "_s + target;
    case RemovalMethod::Delete:
        break;
    }
    return u"Delete"_s;
}

QString recreateTarget(const Files& files, const AddonRecord& addon, const RemovalOptions& options)
{
    const QString base = options.toFolder + FileCabinet::targetName(addon.name, addon.key);
    return options.zip ? freeName(files, base, u".zip"_s) : freeName(files, base, {}) + u'\\';
}

/// Where the files go, and what of them lies in the File Cabinet already.
Result CAddonRemover::findTarget()
{
    Services& services = m_context.services;
    const FileCabinet cabinet(services, m_context.global);
    m_archive = cabinet.find(m_masterKey).value_or(QString());
    const bool recreates =
        m_options.method == RemovalMethod::Recreate || m_options.method == RemovalMethod::Copy;
    if (m_options.method == RemovalMethod::FileCabinet) {
        if (m_inCabinet)
            return Result::failure(u"'"_s + m_record.name +
                                   u"' is in the File Cabinet already; nothing was changed."_s);
        m_target = cabinet.archiveFor(m_record.name, m_masterKey);
    }
    if (!m_archive.isEmpty() && (m_inCabinet || recreates)) {
        m_stored = std::make_unique<CabinetArchive>(services);
        if (Result opened = m_stored->open(m_archive); !opened)
            return Result::failure(u"'"_s + m_archive + u"' cannot be read. "_s + opened.text,
                                   ErrorKind::Surroundings);
    }
    if (!recreates)
        return Result::success();
    const ResultOf<Place> place = services.gate.place(m_options.toFolder + u'x');
    if (m_options.toFolder.isEmpty() || !place || place->root != RootId::Chosen)
        return Result::failure(u"The files cannot go to '"_s + m_options.toFolder +
                                   u"': name a folder outside of those of the simulator and the "
                                   u"program."_s,
                               ErrorKind::Usage);
    m_target = recreateTarget(services.files, m_record, m_options);
    return Result::success();
}

/// Whether files go somewhere, instead of away or nowhere.
bool CAddonRemover::moves() const
{
    return !m_target.isEmpty();
}

/// Full path of the add-on's own version of the file: what lies in its place, or what an add-on
/// that was installed over it keeps of it. Empty when there is none.
QString CAddonRemover::ownVersion(const File& file, const std::optional<FileInfo>& now)
{
    const QString& path = file.path;
    for (const DetailRecord& other : m_sharers.at(path)) {
        if (other.key < file.detail.key)
            continue;
        const auto kept = modDatabase_Addon::originalOf(m_database, other.key);
        if (!kept || kept->keptFile.isEmpty())
            break; // it replaced nothing: it is the same file
        const QString keptPath = m_context.global.originalsFolder + kept->keptFile;
        return m_context.services.files.isFile(keptPath) ? keptPath : QString();
    }
    return now && m_context.services.files.isFile(path) ? path : QString();
}

/// Notes what goes along; into a folder it is copied at once.
Result CAddonRemover::collect(File& file, const QString& from)
{
    const QString& path = file.path;
    CabinetFile collected{path, from};
    if (m_options.method != RemovalMethod::FileCabinet && !m_options.zip)
        return recreate(collected);
    if (m_options.method == RemovalMethod::FileCabinet && m_whole) {
        // What the user changed is what the archive holds; the record has to say so.
        const auto info = m_context.services.files.info(from);
        const Fingerprint check = m_checks.value(file.detail.key);
        const ResultOf<Place> place = m_context.services.gate.place(path);
        if (info && place && check.size >= 0 &&
            !originals::isRecorded(m_context.services.files, from, *info, check)) {
            const ResultOf<Fingerprint> print = fingerprint(m_context.services.files, from);
            if (!print)
                return print.error();
            m_closing.edited.append({*place, file.detail.key, *print});
        }
    }
    m_collected.push_back(std::move(collected));
    return Result::success();
}

/// As collect(), out of the add-on's archive in the File Cabinet.
Result CAddonRemover::collectStored(const QString& path)
{
    ResultOf<Content> content = m_stored->content(path);
    if (!content)
        return content.error();
    CabinetFile collected{path, {}, *content};
    if (!m_options.zip)
        return recreate(collected);
    m_collected.push_back(std::move(collected));
    return Result::success();
}

/// As people would pack it: paths from the simulator's folder, documents at the top.
QString CAddonRemover::recreatedName(const QString& path)
{
    const GlobalRecord& global = m_context.global;
    QString name;
    if (winpath::isBelow(path, global.imagesFolder)) {
        name = winpath::name(path);
    } else if (winpath::isBelow(path, global.addonsFolder)) {
        name = winpath::relativeTo(path, global.addonsFolder);
        name = name.sliced(name.indexOf(u'\\') + 1);
    } else if (const ResultOf<Place> place = m_context.services.gate.place(path)) {
        name = place->relative;
        if (place->root != RootId::Simulator)
            name.prepend(winpath::name(winpath::withoutTrailing(
                             m_context.services.gate.rootFolder(place->root))) +
                         u'\\');
    }
    const QString ending =
        winpath::extension(name).isEmpty() ? QString() : u'.' + winpath::extension(name);
    const QString stem = name.chopped(ending.size());
    for (int n = 2; m_recreatedNames.contains(NoCase{name}); ++n)
        name = stem + u' ' + QString::number(n) + ending;
    m_recreatedNames.insert(NoCase{name});
    return name;
}

Result CAddonRemover::recreate(const CabinetFile& file)
{
    Services& services = m_context.services;
    const QString to = m_target + recreatedName(file.path);
    if (file.from.isEmpty()) {
        const ResultOf<Fingerprint> placed = services.actions.place(to, file.content);
        if (!placed)
            return placed.error();
        m_recreated.append(to); // the transfer compared check sums
        return Result::success();
    }
    if (Result copied = services.actions.copy(file.from, to); !copied)
        return copied;
    m_recreated.append(to);
    const ResultOf<Fingerprint> original = fingerprint(services.files, file.from);
    const ResultOf<Fingerprint> copy = fingerprint(services.files, to);
    if (!original || !copy)
        return original ? copy.error() : original.error();
    if (original->xxh3 != copy->xxh3)
        return Result::failure(u"'"_s + to + u"' differs from '"_s + file.from + u"'."_s);
    return Result::success();
}

/// The add-on's picture goes along with the files that people get, if the settings say so. It is
/// none of the add-on's files: one that cannot be read is told and stops nothing.
void CAddonRemover::collectPicture()
{
    const QString picture = pictures::addonPicture(m_context.global, m_masterKey);
    const bool any = !m_collected.empty() || !m_recreated.isEmpty();
    if (!moves() || !m_whole || !any || !m_context.services.files.isFile(picture) ||
        !m_context.settings.flag(SettingKey::RecreateIncludeAddonPictures))
        return;
    const CabinetFile collected{picture, picture};
    if (m_options.zip)
        m_collected.push_back(collected);
    else if (const Result copied = recreate(collected); !copied)
        m_results.add(resultgroup::failedSpecialActions, copied.text);
}

Result CAddonRemover::Remove_ProcessCabinetZip()
{
    if (m_options.method == RemovalMethod::FileCabinet)
        return fillCabinet();
    collectPicture();
    if (moves() && m_options.zip) {
        if (Result written = writeRecreateZip(); !written)
            return written;
    }
    // What had been moved there file by file goes with the add-on.
    const bool emptied = m_inCabinet || m_whole;
    if (m_archive.isEmpty() || !emptied || m_options.method == RemovalMethod::Copy)
        return Result::success();
    if (m_options.method == RemovalMethod::RemoveRecords) {
        m_results.add(resultgroup::specialActions,
                      u"The files in '"_s + m_archive + u"' were left there."_s);
        return Result::success();
    }
    return emptyCabinet();
}

Result CAddonRemover::fillCabinet()
{
    if (m_collected.empty())
        return Result::failure(u"None of the files of '"_s + m_record.name +
                               u"' could be moved to the File Cabinet. "_s +
                               m_results.texts(resultgroup::failedSpecialActions).value(0));
    FileCabinet cabinet(m_context.services, m_context.global);
    const int level = int(m_context.settings.number(SettingKey::ZipCompressionLevel));
    const Result put = cabinet.put(*m_actions, m_target, m_collected, level);
    const ResultOf<Place> place = m_context.services.gate.place(m_target);
    if (!put || !place) {
        const Result why = put ? place.error() : put;
        m_results.add(resultgroup::failedSpecialActions,
                      u"An error occurred moving files to the File Cabinet zip file."_s);
        m_results.addCause(m_target, why.text);
        for (File& file : m_files) {
            file.outcome = RemovalOutcome::Failed;
            tellFile(file);
        }
        return Result::failure(why.text + u" Nothing was changed."_s, why.kind);
    }
    m_closing.archive = *place;
    m_closing.toCabinet = m_whole;
    return Result::success();
}

Result CAddonRemover::writeRecreateZip()
{
    if (m_collected.empty())
        return Result::success();
    CZIP zip(m_context.services);
    zip.sZIPFile = m_target;
    zip.boolAdd_Create = true;
    zip.typeCompressionLevel = int(m_context.settings.number(SettingKey::ZipCompressionLevel));
    zip.varStatusBar = &m_context.services.status;
    zip.CProgressBarEx = &m_context.services.status;
    for (const CabinetFile& file : m_collected)
        zip.colItemsToAdd.push_back({recreatedName(file.path), file.from, file.content});
    bool written = zip.Add(&m_context.services.actions);
    if (m_context.services.files.exists(m_target))
        m_recreated.append(m_target);
    written = written && zip.Added_Verify();
    if (written) {
        m_results.add(resultgroup::specialActions, u"Files were added to '"_s + m_target + u"'."_s);
        return Result::success();
    }
    const Result why = zip.result();
    m_results.add(resultgroup::failedSpecialActions,
                  u"Files were NOT added to '"_s + m_target + u"' due to an error."_s);
    m_results.addCause(m_target, why.text);
    for (File& file : m_files) {
        file.outcome = RemovalOutcome::Failed;
        tellFile(file);
    }
    return Result::failure(why.text + u" Nothing was changed."_s, why.kind);
}

Result CAddonRemover::emptyCabinet()
{
    status(u"Deleting file cabinet zip file..."_s);
    const bool failed = std::any_of(m_files.cbegin(), m_files.cend(), [](const File& file) {
        return file.outcome == RemovalOutcome::Failed;
    });
    if (m_whole && !failed)
        return m_actions->remove(m_archive);
    QStringList paths;
    for (const File& file : m_files) {
        if (file.outcome != RemovalOutcome::Failed)
            paths.append(file.path);
    }
    FileCabinet cabinet(m_context.services, m_context.global);
    return cabinet.takeOut(*m_actions, m_archive, paths);
}

/// A file of an add-on that is in the File Cabinet: the simulator is not concerned.
Result CAddonRemover::processStored(File& file)
{
    const QString& path = file.path;
    if (m_options.method == RemovalMethod::RemoveRecords)
        return Result::success();
    if (!m_stored || !m_stored->holds(path)) {
        file.outcome = RemovalOutcome::Missing;
        return Result::success();
    }
    return moves() ? collectStored(path) : Result::success();
}

/// What was copied for a removal that did not take place.
void CAddonRemover::discardRecreated()
{
    FileActions& actions = m_context.services.actions;
    QStringList folders;
    for (const QString& file : std::as_const(m_recreated)) {
        if (Result gone = actions.remove(file); !gone)
            m_results.add(resultgroup::failedSpecialActions, gone.text);
        for (QString up = winpath::parent(file);
             up.size() >= m_target.size() && !folders.contains(up);
             up = winpath::parent(up))
            folders.append(up);
    }
    std::sort(folders.begin(), folders.end(), [](const QString& a, const QString& b) {
        return a.size() > b.size();
    });
    for (const QString& folder : std::as_const(folders))
        (void)actions.removeEmptyFolder(folder);
    m_recreated.clear();
}

/// Of records that go while the files stay: what is kept to undo the installation is no use to it
/// any more, but is lost to nobody.
void CAddonRemover::leaveRecordsOnly()
{
    const ResultOf<QList<SceneryAreaRecord>> areas =
        modDatabase_Addon::sceneryAreasOf(m_database, m_masterKey);
    // The entries stay: the old bytes must not come back with another add-on's removal.
    if (!m_inCabinet && areas && !areas->isEmpty())
        dropConfigBase(m_context.global.sceneryCfgFile, true);
    const ConfigAccess access(*m_actions, m_context.services.prompts, m_context.services.ansi);
    for (const QString& file : addonvariations::files(access, m_details))
        dropConfigBase(file, true);
    for (const File& file : m_files) {
        const auto kept = m_originals.constFind(file.detail.key);
        if (kept != m_originals.cend() && !kept->keptFile.isEmpty())
            m_results.add(resultgroup::specialActions,
                          file.path,
                          u" had replaced a file, which is still kept as '"_s +
                              m_context.global.originalsFolder + kept->keptFile + u"'."_s);
    }
}

} // namespace vt
