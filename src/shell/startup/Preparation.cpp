#include "shell/startup/Preparation.h"

#include "platform/WinPath.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/RunStep.h"

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 sizeReaching = 950'000'000;
constexpr qint64 sizeFull = 990'000'000;

/// By the value of "Open With"; the one of the configuration file manager holds its title.
constexpr std::array openWithTexts = {
    u"Opening the Addon Wizard...",
    u"Opening Install An Addon...",
    u"Opening Remove An Addon...",
    u"Opening Work With All Addons...",
    u"Opening Work With Installed Addons...",
    u"Opening File Cabinet...",
    u"Opening Edit Aircraft...",
    u"Opening Edit Panels...",
    u"Opening Edit Sounds...",
    u"Opening Edit Scenery...",
    u"Opening Addon History...",
    u"Opening ",
    u"Opening A.I. Traffic Manager...",
};
constexpr int openWithConfigFiles = 11;
constexpr int openWithTraffic = 12;
static_assert(openWithTexts.size() == openWithTraffic + 1);

/// Type of the files with an extension ("CompressedFolder" for ".zip"), or the extension itself
/// where none is registered.
QString fileTypeKey(const CRegistry_Manipulation& registry, const QString& extension)
{
    const QString type = registry.GetKeyDirect(Hive::ClassesRoot, extension, u"*"_s).trimmed();
    return type.isEmpty() ? extension : type;
}

/// Keys of the verb, one for each kind of archive.
QStringList verbKeys(const CRegistry_Manipulation& registry, const GlobalRecord& global)
{
    const QString verb = u"\\shell\\"_s + explorerVerb(global);
    return {fileTypeKey(registry, u".zip"_s) + verb, fileTypeKey(registry, u".rar"_s) + verb};
}

} // namespace

Result createProgramFolders(Context& context)
{
    const GlobalRecord& global = context.global;
    for (const QString& folder : {global.programFolder,
                                  global.originalsFolder,
                                  global.addonsFolder,
                                  global.backupsFolder,
                                  global.cabinetFolder,
                                  global.imagesFolder,
                                  global.settingsFolder,
                                  global.tempFolder,
                                  global.tempGfoFolder,
                                  global.tempIfoFolder,
                                  global.tempInaFolder,
                                  global.tempRaFolder}) {
        if (context.services.files.isFolder(folder))
            continue;
        if (Result made = context.services.actions.makeFolder(folder); !made)
            return Result::failure(made.text, ErrorKind::Surroundings);
    }
    return Result::success();
}

Result keepOriginals(Context& context)
{
    const GlobalRecord& global = context.global;
    if (global.generation == FS2002 || global.simulatorFolder.isEmpty())
        return Result::success();
    const Files& files = context.services.files;
    QString failed;
    for (const QString& source : {global.simulatorFolder + u"suneffect.cfg"_s,
                                  global.simulatorFolder + u"terrain.cfg"_s,
                                  global.mainConfigFolder + u"Devices.cfg"_s,
                                  global.sceneryCfgFile}) {
        const QString kept = global.originalsFolder + winpath::name(source);
        if (!files.isFile(source) || files.exists(kept))
            continue;
        const Result copied = runStep(context, u"Application_Startup : KeepOriginals"_s, [&] {
            return context.services.actions.copy(source, kept);
        });
        if (!copied && failed.isEmpty())
            failed = copied.text;
    }
    return failed.isEmpty() ? Result::success() : Result::failure(failed);
}

bool programFolderIsFresh(const Files& files, const GlobalRecord& global)
{
    return !files.isFile(global.databaseFile) && !files.isFile(registryFile(global)) &&
           files.list(global.originalsFolder).isEmpty();
}

Prompt missingDatabase(const GlobalRecord& global)
{
    return announcement(
        global.names.productTitle + u" Database File Error"_s,
        u"The addon database, '"_s + global.databaseFile +
            u"', could not be loaded. The file itself is missing or the database is corrupt. "_s,
        Icon::Critical);
}

QString databaseSizeText(const DisplayNames& names, qint64 bytes)
{
    if (bytes < sizeReaching)
        return {};
    const QString text = names.productTitle + u"'s database "_s;
    if (bytes <= sizeFull)
        return text +
               u"is reaching its maximum size of 1 GB. Optimizing should reduce the database size."_s;
    return text +
           u"is at its maximum size of 1 GB. You may experience errors if you install more addons. Try optimizing to reduce the database size. You can also remove some addons and addon history records to further shrink the database."_s;
}

std::optional<Prompt> databaseSizePrompt(const DisplayNames& names, qint64 bytes)
{
    if (bytes < sizeReaching)
        return std::nullopt;
    const QString caption = u"Database Warning"_s;
    const QString text = databaseSizeText(names, bytes);
    if (bytes == sizeReaching)
        return announcement(caption, text, Icon::Information);
    return yesNoCancel(
        caption,
        text +
            u"\nSelect Yes to attempt to optimize the database to shrink it (recommended). Select No to continue loading Vantrel. Select Cancel to quit the program."_s,
        Button::Yes,
        Icon::Warning);
}

Prompt smallScreen(const DisplayNames& names)
{
    return yesNo(
        u"Warning:  Small Screen Resolution"_s,
        u"Your Windows screen resolution is less than optimal. Some of "_s + names.productTitle +
            u"'s screens will not display properly. Increasing your screen resolution to 800x600 or better will solve this problem. Would you like more information?\nPress Yes to read more about the problem, or press No to continue."_s,
        Button::No,
        Icon::Warning);
}

QString openWithStatus(int value, int generation, const QString& configTitle)
{
    if (value < 0 || value >= static_cast<int>(openWithTexts.size()) ||
        (value == openWithTraffic && generation != FS2004))
        return {};
    const QString text = QString::fromUtf16(openWithTexts[static_cast<size_t>(value)]);
    return value == openWithConfigFiles ? text + configTitle + u"..."_s : text;
}

QString welcomeText(const DisplayNames& names)
{
    return u"Welcome to "_s + names.productTitle +
           u"! Need some help? Just press the Help button or pull down the Help menu."_s;
}

QString explorerVerb(const GlobalRecord& global)
{
    const QString edition = global.generation == FSX ? u"FSX"_s : global.names.simShort;
    return u"Install to "_s + edition + u" using Vantrel"_s;
}

bool registerExplorerVerbs(CRegistry_Manipulation& registry, const GlobalRecord& global)
{
    const QString command = global.programFolder + u"Vantrel.exe -file=\"%1\""_s;
    bool ok = true;
    for (const QString& key : verbKeys(registry, global))
        ok = registry.SaveKeyDirect(Hive::ClassesRoot, key + u"\\command"_s, u"*"_s, command) && ok;
    return ok;
}

bool removeExplorerVerbs(CRegistry_Manipulation& registry, const GlobalRecord& global)
{
    bool ok = true;
    for (const QString& key : verbKeys(registry, global))
        ok = registry.DeleteKeyAndSubKeys(Hive::ClassesRoot, key) && ok;
    return ok;
}

QString registryFile(const GlobalRecord& global)
{
    return global.settingsFolder + u"Vantrel.reg"_s;
}

} // namespace vt
