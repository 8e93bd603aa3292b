#include "simconfig/CFSCFGManager.h"

#include "platform/Processes.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Flying.h"
#include "simconfig/engine/ConfigNormalizer.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

constexpr QStringView configExtension = u"cfg";

QString detailsSection()
{
    return u"VT_FILE_DETAILS"_s;
}

QString descriptionKey()
{
    return u"Description"_s;
}

/// What the simulator begins with when the file does not say it.
QString flightOr(const QString& situation)
{
    return situation.isEmpty() ? u"FLIGHTS\\OTHER\\FLTSIM"_s : situation;
}

Result because(const QString& what, const Result& why)
{
    return Result::failure(what + u' ' + why.text, why.kind);
}

} // namespace

CFSCFGManager::CFSCFGManager(Context& context, const Processes& processes)
    : m_context(context), m_processes(processes), m_access(context.services)
{}

// --- where the files lie -----------------------------------------------------------------------

QString CFSCFGManager::folder() const
{
    return m_context.global.mainConfigFolder;
}

QString CFSCFGManager::pathOf(const QString& name) const
{
    return winpath::join(folder(), name);
}

QString CFSCFGManager::editionWord() const
{
    switch (m_context.global.generation) {
    case FS2002:
        return u"FS2002"_s;
    case FS2004:
        return u"FS9"_s;
    default:
        break;
    }
    // The Steam Edition calls its file so when it has a folder of its own.
    const QString steam = u"FSX_SE"_s;
    const bool ownFolder = equalNoCase(winpath::name(folder()), u"FSX-SE");
    return ownFolder && m_context.services.files.isFile(pathOf(steam + u".cfg"_s)) ? steam
                                                                                   : u"FSX"_s;
}

QString CFSCFGManager::GetPrimaryFSCFGFilespec() const
{
    return pathOf(editionWord() + u".cfg"_s);
}

QString CFSCFGManager::primaryBackup() const
{
    return pathOf(editionWord() + u".vtb"_s);
}

/// The primary file counts as it is: a damaged one must be replaceable.
bool CFSCFGManager::exists(const QString& name) const
{
    const std::optional<FileInfo> info =
        winpath::checkComponent(name) ? m_access.actions.info(pathOf(name)) : std::nullopt;
    if (!info || info->folder || !equalNoCase(winpath::extension(name), configExtension))
        return false;
    CFSCFGFile file;
    file.sPath = pathOf(name);
    return isPrimary(name) || read(file);
}

bool CFSCFGManager::isPrimary(const QString& name) const
{
    return equalNoCase(name, winpath::name(GetPrimaryFSCFGFilespec()));
}

// --- listing -----------------------------------------------------------------------------------

Result CFSCFGManager::GetFSCFGFiles()
{
    m_files.clear();
    if (Result known = folderIsKnown(); !known)
        return known;
    for (const FileInfo& info : m_context.services.files.list(folder())) {
        if (info.folder || !equalNoCase(winpath::extension(info.name), configExtension))
            continue;
        CFSCFGFile file;
        file.sName = info.name;
        file.sPath = pathOf(info.name);
        file.boolPrimary = isPrimary(info.name);
        if (read(file) || file.boolPrimary)
            m_files.push_back(file);
    }
    std::stable_partition(
        m_files.begin(), m_files.end(), [](const CFSCFGFile& file) { return file.boolPrimary; });
    if (m_files.isEmpty() || !m_files.constFirst().boolPrimary)
        return Result::success(u"Could not locate primary CFG file: '"_s +
                               GetPrimaryFSCFGFilespec() + u"'."_s);
    return Result::success();
}

/// False for what is no configuration file. One that is not edited (UTF-16, bare LF) is still read.
bool CFSCFGManager::read(CFSCFGFile& file) const
{
    const ResultOf<QByteArray> bytes = ini::File_ReadAllText(m_access.actions, file.sPath);
    if (!bytes)
        return false;
    const ResultOf<NormalizedConfig> normal = normalizeConfig(*bytes, m_access.ansi);
    if (!normal)
        return false;
    const LineArray lines = LineArray::ofBytes(normal->bytes, m_access.ansi);
    const auto value = [&](const QString& section, const QString& key, bool raw = false) {
        return ini::INI_Entry_Get(lines, section, key, raw).value_or(QString());
    };
    // A description may hold what looks like a comment.
    file.sDescription = value(detailsSection(), descriptionKey(), true);
    file.sDefaultFlight = flightOr(value(u"USERINTERFACE"_s, u"SITUATION"_s));
    file.boolMenuHidden = value(u"Main"_s, u"HideMenuNormal"_s) == u"1";
    return ini::INI_Section_GetFirst(lines).has_value();
}

qsizetype CFSCFGManager::indexOf(const QString& name) const
{
    const auto found = std::find_if(m_files.cbegin(), m_files.cend(), [&](const auto& file) {
        return equalNoCase(file.sName, name);
    });
    return found == m_files.cend() ? -1 : std::distance(m_files.cbegin(), found);
}

QString CFSCFGManager::GetFSCFGFileDefaultFlight(const QString& name) const
{
    CFSCFGFile file;
    file.sPath = pathOf(name);
    (void)read(file);
    return file.sDefaultFlight;
}

QString CFSCFGManager::flightFile(const QString& flight) const
{
    if (flight.isEmpty())
        return {};
    const QString name =
        equalNoCase(winpath::extension(flight), u"flt") ? flight : flight + u".FLT"_s;
    if (winpath::isAbsolute(name))
        return name;
    const QString own = winpath::join(m_context.global.simulatorFolder, name);
    const QString users = winpath::join(m_context.global.userDocumentsFolder, name);
    const Files& files = m_context.services.files;
    return !files.isFile(own) && files.isFile(users) ? users : own;
}

// --- before a change ---------------------------------------------------------------------------

bool CFSCFGManager::IsFlightSimulatorRunning() const
{
    return isSimulatorRunning(m_context, m_processes);
}

Result CFSCFGManager::folderIsKnown() const
{
    if (winpath::isAbsolute(folder()))
        return Result::success();
    return Result::failure(
        u"The folder of "_s + m_context.global.names.simShort +
            u"'s configuration file is not known, because there is no drive C:; name the prefix that the simulator lives in, or the drive."_s,
        ErrorKind::Surroundings);
}

Result CFSCFGManager::mayChange() const
{
    if (Result known = folderIsKnown(); !known)
        return known;
    const QString& name = m_context.global.names.simShort;
    if (IsFlightSimulatorRunning())
        return Result::failure(name + u" is running. Please close "_s + name +
                               u" and try again."_s);
    return Result::success();
}

Result CFSCFGManager::ValidateItemName(const QString& oldName, const QString& newName)
{
    if (newName.trimmed().isEmpty())
        return Result::failure(u"Please enter a name for this item."_s);
    const QString extension = winpath::extension(oldName);
    if (!equalNoCase(winpath::extension(newName), extension))
        return Result::failure(u"The file's type ("_s + extension + u") may not be changed."_s);
    const bool hasStem = newName.trimmed().size() > extension.size() + 1;
    if (!hasStem || !winpath::checkComponent(newName))
        return Result::failure(u"Please enter a valid name for this item."_s);
    return Result::success();
}

// --- making, removing, naming ------------------------------------------------------------------

QString CFSCFGManager::proposedName() const
{
    const QString stem = u"New "_s + m_context.global.names.simShort;
    QString name = stem + u" configuration file.cfg"_s;
    for (int number = 2; m_context.services.files.exists(pathOf(name)); ++number)
        name = stem + u" configuration file "_s + QString::number(number) + u".cfg"_s;
    return name;
}

Result CFSCFGManager::CreateNewFSCFGFile(const QString& name, const QString& description)
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    const QString primary = GetPrimaryFSCFGFilespec();
    if (!exists(winpath::name(primary)))
        return Result::failure(u"Could not locate primary CFG file: '"_s + primary + u"'."_s,
                               ErrorKind::Surroundings);
    const bool typed = equalNoCase(winpath::extension(name), configExtension);
    const QString whole = typed || name.trimmed().isEmpty() ? name : name + u".cfg"_s;
    if (Result valid = ValidateItemName(winpath::name(primary), whole); !valid)
        return valid;
    const QString failed = u"Could not create CFG file: '"_s + pathOf(whole) + u"'."_s;
    if (m_access.actions.info(pathOf(whole)))
        return Result::failure(failed + u" There is a file of that name already."_s);
    const Result made = description.trimmed().isEmpty()
                            ? m_access.actions.copy(primary, pathOf(whole))
                            : writeDescribed(primary, pathOf(whole), description);
    if (!made)
        return because(failed, made);
    return Result::success(u"The file '"_s + whole + u"' was created."_s);
}

Result CFSCFGManager::RemoveFSCFGFile(const QString& name)
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    if (isPrimary(name))
        return Result::failure(u"Removing the primary configuration file is not allowed."_s);
    const QString failed = u"Could not remove '"_s + name + u"'."_s;
    if (!exists(name))
        return Result::failure(failed + u" There is no such file."_s);
    const Prompt sure = yesNo(
        u"Confirm Removal"_s, u"Are you sure you want to remove '"_s + name + u"'?"_s, Button::Yes);
    if (m_access.prompts.ask(sure) != Button::Yes)
        return Result::failure(u"File was not changed."_s, ErrorKind::Declined);
    if (const Result removed = m_access.actions.remove(pathOf(name)); !removed)
        return because(failed, removed);
    return Result::success(u"The file '"_s + name + u"' was removed."_s);
}

Result CFSCFGManager::RenameFSCFGFile(const QString& name)
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    if (isPrimary(name))
        return Result::failure(u"Renaming the primary configuration file is not allowed."_s);
    const std::optional<QString> typed = m_access.prompts.askText(
        {u"Rename Configuration File"_s, u"Enter a new name for this configuration file."_s, name});
    if (!typed)
        return Result::failure(u"Rename aborted."_s, ErrorKind::Declined);
    return RenameFSCFGFile(name, *typed);
}

Result CFSCFGManager::RenameFSCFGFile(const QString& name, const QString& newName)
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    if (isPrimary(name))
        return Result::failure(u"Renaming the primary configuration file is not allowed."_s);
    const QString failed = u"Could not rename '"_s + name + u"'."_s;
    if (!exists(name))
        return Result::failure(failed + u" There is no such file."_s);
    if (Result valid = ValidateItemName(name, newName); !valid)
        return valid;
    if (newName == name)
        return Result::success(u"File was not changed."_s);
    if (const Result moved =
            equalNoCase(name, newName) ? respell(name, newName) : move(name, newName);
        !moved)
        return because(failed, moved);
    return Result::success(u"The file '"_s + name + u"' was renamed to '"_s + newName + u"'."_s);
}

/// The file is never without a name: a crash between the two leaves both.
Result CFSCFGManager::move(const QString& from, const QString& to)
{
    FileActions& actions = m_access.actions;
    if (actions.info(pathOf(to)))
        return Result::failure(u"There is a file '"_s + to + u"' already."_s);
    if (Result kept = actions.keep(pathOf(from), pathOf(to)); !kept)
        return kept;
    const Result removed = actions.remove(pathOf(from));
    if (!removed)
        (void)actions.remove(pathOf(to));
    return removed;
}

/// Both spellings find the same file, so that a third name must come between.
Result CFSCFGManager::respell(const QString& from, const QString& to)
{
    const QString between = winpath::baseName(from) + u"~.cfg"_s;
    if (Result moved = move(from, between); !moved)
        return moved;
    const Result moved = move(between, to);
    if (!moved)
        (void)move(between, from);
    return moved;
}

// --- descriptions ------------------------------------------------------------------------------

Result CFSCFGManager::UpdateFSCFGFileDescription(const QString& name, const QString& description)
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    return writeDescription(name, description);
}

Result CFSCFGManager::writeDescription(const QString& name, const QString& description)
{
    const QString path = pathOf(name);
    if (!exists(name))
        return Result::failure(u"Could not locate CFG file: '"_s + path + u"'."_s);
    const Result written = writeDescribed(path, path, description);
    return written ? written : because(u"Could not update CFG file: '"_s + path + u"'."_s, written);
}

/// \a to becomes \a from with the description; nothing is written when it has that one already.
Result
CFSCFGManager::writeDescribed(const QString& from, const QString& to, const QString& description)
{
    LineArray lines(m_access.ansi);
    if (Result loaded = ini::INI_File_Read(m_access.actions, from, lines); !loaded)
        return loaded;
    if (Result editable = ini::checkEditable(lines, from); !editable)
        return editable;
    const QString text = description.trimmed();
    if (from == to && ini::INI_Entry_Get(lines, detailsSection(), descriptionKey(), true) == text)
        return Result::success();
    if (Result set = ini::INI_Entry_Set(lines, detailsSection(), descriptionKey(), text, true);
        !set)
        return set;
    return ini::INI_File_Write(m_access.actions, to, lines);
}

void CFSCFGManager::setDescription(qsizetype index, const QString& description)
{
    CFSCFGFile& file = m_files[index];
    file.boolChanged = file.boolChanged || file.sDescription != description;
    file.sDescription = description;
}

Result CFSCFGManager::SaveFSCFGFiles()
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    QStringList failures;
    for (CFSCFGFile& file : m_files) {
        if (!file.boolChanged)
            continue;
        if (const Result written = writeDescription(file.sName, file.sDescription); !written)
            failures.push_back(written.text);
        else
            file.boolChanged = false;
    }
    return failures.isEmpty() ? Result::success(u"Changes were saved."_s)
                              : Result::failure(failures.join(u' '));
}

// --- using -------------------------------------------------------------------------------------

Prompt CFSCFGManager::confirmSwitch(const QString& name) const
{
    return yesNo(u"Confirm New Configuration"_s,
                 u"Are you sure you want to switch to '"_s + name +
                     u"'? The default configuration file, '"_s +
                     winpath::name(GetPrimaryFSCFGFilespec()) + u"', will be overwritten."_s,
                 Button::No);
}

Result CFSCFGManager::SwitchToFSCFGFile(const QString& name)
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    if (isPrimary(name))
        return Result::failure(u"This is already the default configuration file."_s);
    if (!exists(name))
        return Result::failure(u"Could not read '"_s + pathOf(name) +
                               u"'. It is missing, or no configuration file."_s);
    if (m_access.prompts.ask(confirmSwitch(name)) != Button::Yes)
        return Result::failure(u"File was not changed."_s, ErrorKind::Declined);
    if (Result done = overwritePrimary(name); !done)
        return done;
    return Result::success(u"'"_s + name + u"' was copied to '"_s +
                           winpath::name(GetPrimaryFSCFGFilespec()) +
                           u"' and is now the primary configuration file."_s);
}

/// The backup of an earlier switch comes back when this one fails.
Result CFSCFGManager::overwritePrimary(const QString& from)
{
    FileActions& actions = m_access.actions;
    const QString primary = GetPrimaryFSCFGFilespec();
    const QString backup = primaryBackup();
    const bool hasPrimary = actions.info(primary).has_value();
    const bool hadBackup = actions.info(backup).has_value();
    const ResultOf<QByteArray> older =
        hadBackup ? ini::File_ReadAllText(actions, backup) : ResultOf<QByteArray>(QByteArray());
    const QString noBackup = u"Could not create backup file '"_s + backup + u"'."_s;
    if (!older)
        return because(noBackup, older.error());
    if (hasPrimary) {
        if (const Result kept = actions.copy(primary, backup); !kept)
            return because(noBackup, kept);
    }
    const Result copied = actions.copy(pathOf(from), primary);
    if (copied)
        return copied;
    if (hasPrimary)
        (void)(hadBackup ? actions.replace(backup, *older) : actions.remove(backup));
    return because(u"'"_s + from + u"' could not be copied to '"_s + primary + u"'."_s, copied);
}

Result CFSCFGManager::UseFSCFGFileOnce(const QString& name)
{
    if (Result allowed = mayChange(); !allowed)
        return allowed;
    if (!exists(name))
        return Result::failure(u"Could not locate CFG file: '"_s + pathOf(name) + u"'."_s);
    const bool primary = isPrimary(name);
    const QString launching = u"Launching "_s + m_context.global.names.simShort + u" using"_s +
                              (primary ? u" default configuration."_s : u" '"_s + name + u"'."_s);
    m_context.services.status.text(u"Primary"_s, launching);
    const QStringList arguments = primary ? QStringList() : QStringList{u"/CFG:"_s + pathOf(name)};
    if (const Result launched = launchSimulator(m_context, m_processes, arguments); !launched)
        return launched;
    return Result::success(launching);
}

} // namespace vt
