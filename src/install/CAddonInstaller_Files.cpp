// What an installation does with single files: decide and ask, keep what is replaced, stage.
#include "addondb/Originals.h"
#include "install/AircraftEdits.h"
#include "install/CAddonInstaller.h"
#include "platform/Hash.h"
#include "platform/WinPath.h"
#include "shell/ErrorLog.h"
#include "shell/OuterLinks.h"
#include "shell/Settings.h"
#include "simconfig/engine/ConfigNormalizer.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Largest configuration file that is looked at for line ends and code page.
constexpr qint64 configLimit = 16LL * 1024 * 1024;

QString fileFacts(qint64 size, const QDateTime& date)
{
    QString text = QLocale::c().toString(size) + (size == 1 ? u" byte"_s : u" bytes"_s);
    if (date.isValid())
        text += u", "_s + date.toString(u"yyyy-MM-dd HH:mm:ss"_s);
    return text;
}

} // namespace

QString resultPhrase(InstallCode code, bool again)
{
    if (again) {
        if (code == InstallCode::Installed)
            return u" was reinstalled."_s;
        QString phrase = resultPhrase(code);
        return phrase.replace(u" was NOT installed"_s, u" was NOT reinstalled"_s);
    }
    switch (code) {
    case InstallCode::Installed:
        return u" was installed."_s;
    case InstallCode::ExistingIsNewer:
        return u" was NOT installed because the existing file was more recent."_s;
    case InstallCode::ClientDeclined:
        return u" was NOT installed because the client decided not to install the file."_s;
    case InstallCode::NotExtracted:
        return u" was NOT installed because the file could not be extracted from the zip file."_s;
    case InstallCode::OthersVersion:
        return u" was NOT installed because an addon that was installed later has its version there."_s;
    case InstallCode::Cancelled:
    case InstallCode::Error:
        break;
    }
    return u" was NOT installed due to an error."_s;
}

Prompt confirmFileReplace(const ReplaceQuestion& question)
{
    Prompt prompt;
    prompt.caption = u"Confirm File Replace"_s;
    prompt.text = question.readOnly ? u"The following read-only file already exists"_s
                                    : u"The following file already exists"_s;
    prompt.text += u":\n\n"_s + question.target + u"\n\nExisting file: "_s +
                   fileFacts(question.existingSize, question.existingDate) + u"\nNew file: "_s +
                   fileFacts(question.newSize, question.newDate);
    if (question.changed)
        prompt.advice =
            u"The existing file was changed since it was installed; if you replace it, it is kept below Backups."_s;
    prompt.icon = Icon::Question;
    prompt.buttons = {Button::Yes, Button::YesToAll, Button::No, Button::NoToAll, Button::Cancel};
    // What is replaced is kept and comes back with the removal: Yes loses nothing.
    prompt.defaultButton = Button::Yes;
    prompt.buttonTexts = {u"Replace existing file."_s,
                          u"Replace existing file and all future existing files."_s,
                          u"Leave the original file intact."_s,
                          u"Leave the original file intact and all future existing files."_s,
                          u"Stop the installation; files before this one are installed."_s};
    prompt.replacing = question;
    return prompt;
}

QString CAddonInstaller::targetOf(const CAddon_Item& item)
{
    return item.sFolder_Installation + item.sName_Installation;
}

QString CAddonInstaller::sourceTextOf(const CAddon_Item& item) const
{
    return item.sFolder_Current + item.sName;
}

qint64 CAddonInstaller::sourceTimeMs(const CAddon_Item& item) const
{
    const ResultOf<Content> content = m_details.source().content(item);
    return content && content->modifiedNs > 0 ? content->modifiedNs / 1'000'000 : 0;
}

Result CAddonInstaller::InstallFiles()
{
    if (toCabinet()) {
        gatherForCabinet();
        return Install_AddToCabinetZip();
    }
    m_aircraftEdits = aircraftEdits(m_details, m_context, m_record.key);
    if (m_details.completes())
        prepareSetAside();
    decideAll();
    if (Result made = AddonAndCabinetFolders_Create(); !made)
        return made;
    return stageAll();
}

Result CAddonInstaller::AddonAndCabinetFolders_Create()
{
    const QString storage = m_details.storageFolder();
    const QString cabinet = m_context.global.cabinetFolder + winpath::name(storage) + u'\\';
    for (const QString& folder : {storage, cabinet}) {
        if (folder.isEmpty())
            continue;
        if (Result made = m_actions->makeFolder(folder); !made) {
            m_log.line(QString(u"Error creating:"_s + folder));
            return made;
        }
    }
    return Result::success();
}

/// Before the questions about single files: a link that stays closed answers for all behind it.
void CAddonInstaller::confirmLinks()
{
    QStringList folders = {m_details.storageFolder(),
                           m_context.global.originalsFolder,
                           m_context.global.cabinetFolder};
    for (const CAddon_Item& item : m_details.addon().colAddonItems()) {
        if (item.boolProcess && item.sFolder_Installation != folders.last())
            folders.push_back(item.sFolder_Installation);
    }
    m_closedLinks = outerlinks::confirm(m_context, folders);
    for (const OuterLink& link : std::as_const(m_closedLinks)) {
        const QString text = outerlinks::closedText(link);
        m_results.add(resultgroup::failedSpecialActions, text);
        m_log.line(QString(u"   "_s + text));
    }
}

void CAddonInstaller::decideAll()
{
    const Files& files = m_context.services.files;
    const CAddon_ItemGroup& addon = m_details.addon();
    m_files.reserve(addon.colAddonItems().size());

    struct Folder
    {
        bool exists = false;
        std::optional<OuterLink> closed;
    };

    QHash<QString, Folder> folders;
    for (const CAddon_Item& item : addon.colAddonItems()) {
        if (!item.boolProcess)
            continue;
        File file;
        file.item = &item;
        if (!item.boolExtractable) // no question is asked about a file that cannot come anyway
            file.code = InstallCode::NotExtracted;
        if (replacesOwn(item) && isCovered(item))
            file.code = InstallCode::OthersVersion;
        auto folder = folders.constFind(item.sFolder_Installation);
        if (folder == folders.cend()) {
            Folder found{files.isFolder(item.sFolder_Installation), {}};
            if (!m_closedLinks.isEmpty())
                found.closed = m_context.services.gate.outerLink(item.sFolder_Installation);
            folder = folders.insert(item.sFolder_Installation, found);
        }
        if (const auto& closed = folder->closed) {
            file.code = closed->target.isEmpty() ? InstallCode::Error : InstallCode::ClientDeclined;
            m_files.push_back(std::move(file));
            continue;
        }
        const auto existing = folder->exists ? files.entry(targetOf(item)) : std::nullopt;
        if (existing && replacesOwn(item)) {
            decideAgain(file, *existing);
            m_cancelled = file.code == InstallCode::Cancelled;
            if (m_cancelled)
                return;
        } else if (existing && !decide(file, *existing)) {
            m_cancelled = true;
            return;
        }
        m_files.push_back(std::move(file));
    }
}

bool CAddonInstaller::decide(File& file, const FileInfo& entry)
{
    LogLines log;
    const CAddon_Item& item = *file.item;
    file.exists = true;
    file.before = printOf(entry);
    // Of a link the user knows what it leads to.
    const FileInfo existing =
        entry.link ? m_context.services.files.info(targetOf(item)).value_or(entry) : entry;
    log.line(u"   File already exists.");
    if (item.size == existing.size) {
        log.line(u"   Sizes are the same.");
        log.line(m_details.compareDates(item, existing) == DateOrder::Same
                     ? u"   Dates are the same, too. Should be OK to install on top of it."
                     : u"   Dates are different!");
    } else {
        log.line(u"   Sizes are different!");
    }
    const AircraftEdit* edit = editOf(item);
    if (edit && edit->merged) {
        // Nothing is lost, so nobody is asked.
        log.line(u"   Its aircraft sections stay; those that it lacks are added.");
        if (!edit->problem.isEmpty())
            file.code = InstallCode::Error;
    } else {
        if (file.code == InstallCode::Installed)
            file.code = existing.folder ? InstallCode::Error : askReplace(file, existing, log);
        if (file.code == InstallCode::Installed && m_details.moreRecentIsKept(item, existing))
            file.code = InstallCode::ExistingIsNewer;
    }
    file.decisions = log.bytes();
    return file.code != InstallCode::Cancelled;
}

InstallCode CAddonInstaller::askReplace(const File& file, const FileInfo& existing, LogLines& log)
{
    const ReplacePolicy policy = m_details.options().replace;
    if (policy == ReplacePolicy::Yes || policy == ReplacePolicy::Newer) {
        log.line(
            u"   Don't ask user if file should be replaced. Interaction suppressed--no message given.");
        return InstallCode::Installed;
    }
    if (m_replaceAll)
        return InstallCode::Installed;
    if (m_replaceNone || policy == ReplacePolicy::No) {
        log.line(u"   User opted to NOT install this file.");
        return InstallCode::ClientDeclined;
    }
    log.line(u"   Ask user if file should be replaced-show ConfirmFileReplace dialog.");
    const CAddon_Item& item = *file.item;
    ReplaceQuestion question;
    question.target = targetOf(item);
    question.readOnly = existing.readOnly;
    question.changed = file.changed;
    question.existingSize = existing.size;
    question.existingDate = existing.modified();
    question.newSize = item.size;
    if (const qint64 newMs = sourceTimeMs(item); newMs > 0)
        question.newDate = QDateTime::fromMSecsSinceEpoch(newMs);
    const Button answer = m_context.services.prompts.ask(confirmFileReplace(question));
    switch (answer) {
    case Button::YesToAll:
        m_replaceAll = true;
        m_replaceNone = false;
        [[fallthrough]];
    case Button::Yes:
        log.line(u"   User opted to install this file.");
        return InstallCode::Installed;
    case Button::NoToAll:
        m_replaceNone = true;
        m_replaceAll = false;
        [[fallthrough]];
    case Button::No:
        log.line(u"   User opted to NOT install this file.");
        return InstallCode::ClientDeclined;
    default:
        return InstallCode::Cancelled;
    }
}

Result CAddonInstaller::stageAll()
{
    QStringList folders;
    qsizetype expected = 0;
    qint64 bytes = 0;
    bool replaces = false;
    for (const File& file : m_files) {
        if (file.code != InstallCode::Installed)
            continue;
        ++expected;
        bytes += file.item->size;
        replaces = replaces || (file.exists && !replacesOwn(*file.item));
        // Neighbours share their folder; the journal takes each folder once anyway.
        if (folders.isEmpty() || folders.last() != file.item->sFolder_Installation)
            folders.push_back(file.item->sFolder_Installation);
    }
    folders.removeDuplicates();
    if (Result told = m_actions->announce(folders, expected); !told)
        return told;
    if (replaces) {
        const QString kept = m_context.global.originalsFolder + keptFolder();
        if (Result told = m_actions->announceKept(kept); !told)
            return told;
    }
    StatusSink& sink = m_context.services.status;
    qint64 done = 0;
    for (size_t i = 0; i < m_files.size(); ++i) {
        if (sink.cancelled()) {
            m_files.resize(i);
            m_cancelled = true;
            break;
        }
        InstallFiles_Initialize(m_files[i]);
        sink.progress(done, bytes);
        done += m_files[i].code == InstallCode::Installed ? m_files[i].item->size : 0;
        const Result installed = installOne(m_files[i]);
        if (!installed && installed.kind == ErrorKind::DiskFull)
            return Result::failure(installed.text +
                                       u" Nothing was installed; make room and try again."_s,
                                   ErrorKind::Surroundings);
        if (!installed && installed.kind == ErrorKind::DiskFailed)
            return Result::failure(installed.text + u" Nothing was installed."_s, installed.kind);
    }
    sink.progress(bytes, bytes);
    return Result::success();
}

void CAddonInstaller::InstallFiles_Initialize(const File& file)
{
    status(u"Installing '"_s + file.item->sName_Installation + u"'..."_s);
}

Result CAddonInstaller::installOne(File& file)
{
    switch (file.item->enumAddonFileType) {
    case FileType::Scenery:
        return InstallSceneryFile(file);
    case FileType::AircraftConfiguration:
    case FileType::SimConfiguration:
        return InstallAircraftConfigurationFile(file);
    case FileType::PanelConfiguration:
        return InstallPanelConfigurationFile(file);
    case FileType::SoundConfiguration:
        return InstallSoundConfigurationFile(file);
    default:
        return InstallFileFrontEnd(file);
    }
}

Result CAddonInstaller::InstallSceneryFile(File& file)
{
    return InstallFileFrontEnd(file);
}

Result CAddonInstaller::InstallAircraftConfigurationFile(File& file)
{
    return InstallFileFrontEnd(file);
}

Result CAddonInstaller::InstallPanelConfigurationFile(File& file)
{
    return InstallFileFrontEnd(file);
}

Result CAddonInstaller::InstallSoundConfigurationFile(File& file)
{
    return InstallFileFrontEnd(file);
}

Result CAddonInstaller::InstallFileFrontEnd(File& file)
{
    const CAddon_Item& item = *file.item;
    m_log.fileBegin(item.sName_Installation, sourceTextOf(item), targetOf(item));
    Result installed = InstallFile(file);
    if (!installed) {
        m_log.line(QString(u"   "_s + installed.text));
        file.cause = installed.text;
        m_context.errors.report(u"Private Function InstallFile"_s, installed.text);
    }
    m_log.fileEnd();
    return installed;
}

Result CAddonInstaller::InstallFile(File& file)
{
    const CAddon_Item& item = *file.item;
    const QString target = targetOf(item);
    if (!file.exists)
        m_log.line(u"   Destination file does not exist. Install this one straightaway.");
    else
        m_log.raw(file.decisions);
    if (file.code == InstallCode::NotExtracted)
        return m_details.source().readable(item);
    const AircraftEdit* edit = editOf(item);
    if (file.code == InstallCode::Error && edit && !edit->problem.isEmpty())
        return Result::failure(edit->problem);
    if (file.code == InstallCode::Error && file.exists)
        return Result::failure(u"'"_s + target +
                               u"' could not be written: a folder of that name lies there."_s);
    if (file.code != InstallCode::Installed)
        return Result::success();

    bool sourceFailed = false;
    const ResultOf<Content> content = contentOf(file, sourceFailed);
    if (!content) {
        file.code = InstallCode::NotExtracted;
        return content.error();
    }
    const bool keeps = file.exists && !replacesOwn(item);
    if (keeps || file.changed) {
        if (Result kept = keeps ? keepOriginal(file, target) : setAsideChanged(target); !kept) {
            file.code = InstallCode::Error;
            return kept;
        }
    }
    m_log.line(u"   Copy source file to destination.");
    if (!file.exists && !m_filledFolders.contains(item.sFolder_Installation) &&
        !m_actions->info(item.sFolder_Installation))
        m_log.line(QString(u"      Creating destination folder "_s + item.sFolder_Installation));
    const ResultOf<Fingerprint> placed = m_actions->placeOver(target, *content, file.before);
    if (!placed) {
        if (keeps) { // what was kept for it is not needed; it goes with the other changes
            const QString kept = m_context.global.originalsFolder + m_originals.takeLast().keptFile;
            if (Result gone = m_actions->remove(kept); !gone)
                m_log.line(QString(u"   "_s + gone.text));
        }
        file.code = sourceFailed ? InstallCode::NotExtracted : InstallCode::Error;
        return placed.error();
    }
    file.after = *placed;
    m_filledFolders.insert(item.sFolder_Installation);
    return Result::success();
}

/// A folder of this operation alone: an earlier one of the same add-on may have left files there.
QString CAddonInstaller::keptFolder()
{
    const QString& top = m_context.global.originalsFolder;
    for (int number = 1; m_keptFolder.isEmpty(); ++number) {
        const QString folder = originals::keptFolder(m_record.key, number);
        if (!m_context.services.files.exists(top + winpath::withoutTrailing(folder)))
            m_keptFolder = folder;
    }
    return m_keptFolder;
}

Result CAddonInstaller::keepOriginal(File& file, const QString& target)
{
    m_log.line(u"   Copy file to Originals.");
    OriginalRecord original;
    original.detailKey = &file - m_files.data();
    original.masterKey = m_record.key;
    original.keptFile = originals::keptName(m_context.services.gate, keptFolder(), target);
    const QString& top = m_context.global.originalsFolder;
    if (Result kept = m_actions->keepReplaced(target, top + original.keptFile); !kept)
        return kept;
    m_originals.push_back(original);
    return Result::success();
}

ResultOf<Content> CAddonInstaller::contentOf(const File& file, bool& sourceFailed)
{
    const AddonSource& source = m_details.source();
    const CAddon_Item& item = *file.item;
    ResultOf<Content> content = source.content(item);
    if (!content)
        return content;
    if (isSimulatorConfiguration(item.enumAddonFileType) && item.size <= configLimit &&
        m_context.settings.flag(SettingKey::RepairConfigurationLineEnds)) {
        const ResultOf<QByteArray> bytes = source.read(item, configLimit);
        if (!bytes)
            return bytes.error();
        const ResultOf<NormalizedConfig> normal = normalizeConfig(*bytes, m_context.services.ansi);
        if (!normal) {
            m_results.add(resultgroup::failedSpecialActions,
                          targetOf(item),
                          u" was installed as it is. "_s + normal.text);
        } else if (normal->changed) {
            m_results.add(
                resultgroup::specialActions, targetOf(item), u": "_s + normal->done + u'.');
            const qint64 modified = content->modifiedNs;
            const AircraftEdit* edit = editOf(item);
            content = Content::ofBytes(edit && edit->changesItem() ? edit->bytes : normal->bytes);
            content->modifiedNs = modified;
            return content;
        }
    }
    if (const AircraftEdit* edit = editOf(item); edit && edit->changesItem()) {
        const qint64 modified = content->modifiedNs;
        content = Content::ofBytes(edit->bytes);
        content->modifiedNs = modified;
        return content;
    }
    const auto transfer = content->transfer;
    content->transfer = [transfer, &sourceFailed](const Content::Sink& sink) {
        Result given = transfer(sink);
        sourceFailed = !given.ok;
        return given;
    };
    return content;
}

} // namespace vt
