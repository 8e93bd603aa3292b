#include "platform/ShellFolders.h"

#include "platform/Files.h"
#include "platform/RegistryStore.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Folders below the folder of users that belong to nobody in person.
constexpr std::array<QStringView, 8> sharedUsers = {u"Public",
                                                    u"All Users",
                                                    u"Default",
                                                    u"Default User",
                                                    u"Default.migrated",
                                                    u"LocalService",
                                                    u"NetworkService",
                                                    u"defaultuser0"};

struct Lookup
{
    const RegistryStore& registry;
    const Files& files;
    QString userProfile; ///< "C:\users\pilot\", may be empty
};

/// Where the simulator keeps a user's data, for telling users apart.
bool hasSimulatorData(const Files& files, const QString& userProfile)
{
    for (const QString& data : {u"AppData\\Roaming\\"_s, u"Application Data\\"_s}) {
        for (const QString& product : {u"FSX"_s, u"FSX-SE"_s}) {
            if (files.isFolder(userProfile + data + u"Microsoft\\"_s + product))
                return true;
        }
    }
    return false;
}

/// The one user's folder; empty when there is none or several are alike.
QString soleUserProfile(const Files& files, const QString& systemDrive)
{
    for (const QString& folder : {u"users\\"_s, u"Documents and Settings\\"_s}) {
        const QString users = files.spelled(systemDrive + folder);
        QStringList names;
        for (const FileInfo& entry : files.list(users)) {
            const auto isEntry = [&](QStringView name) { return equalNoCase(name, entry.name); };
            if (isEntry(u"steamuser") && entry.folder)
                return users + entry.name + u'\\';
            if (entry.folder && std::none_of(sharedUsers.begin(), sharedUsers.end(), isEntry))
                names += entry.name;
        }
        if (names.size() > 1)
            names.removeIf([&](const QString& name) {
                return !hasSimulatorData(files, users + name + u'\\');
            });
        if (names.size() == 1)
            return users + names.constFirst() + u'\\';
    }
    return {};
}

QString variable(const Lookup& lookup, const QString& name)
{
    for (const QString& key : {u"Volatile Environment"_s, u"Environment"_s}) {
        if (const auto text = lookup.registry.value(Hive::CurrentUser, key, name))
            return *text;
    }
    const auto machine =
        lookup.registry.value(Hive::LocalMachine,
                              u"System\\CurrentControlSet\\Control\\Session Manager\\Environment"_s,
                              name);
    if (machine)
        return *machine;
    if (equalNoCase(name, u"SystemDrive"))
        return u"C:"_s;
    if (equalNoCase(name, u"ProgramData") || equalNoCase(name, u"ALLUSERSPROFILE"))
        return u"C:\\ProgramData"_s;
    if (equalNoCase(name, u"USERPROFILE"))
        return winpath::withoutTrailing(lookup.userProfile);
    return {};
}

/// "%USERPROFILE%\Documents" with its variables put in; empty when one is not known.
QString expanded(const Lookup& lookup, const QString& text, int depth = 0)
{
    const qsizetype open = text.indexOf(u'%');
    const qsizetype close = open < 0 ? -1 : text.indexOf(u'%', open + 1);
    if (close < 0)
        return text;
    const QString value = variable(lookup, text.sliced(open + 1, close - open - 1));
    if (value.isEmpty() || depth > 8)
        return {};
    return expanded(lookup, text.first(open) + value + text.sliced(close + 1), depth + 1);
}

/// What the registry records under one name, as a folder text; empty when nothing usable.
QString recorded(const Lookup& lookup, Hive hive, const QString& name)
{
    const QString explorer = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\"_s;
    for (const QString& key : {u"Shell Folders"_s, u"User Shell Folders"_s}) {
        const auto text = lookup.registry.value(hive, explorer + key, name);
        const QString path = text ? expanded(lookup, *text) : QString();
        if (winpath::isAbsolute(path))
            return winpath::asFolder(path);
    }
    return {};
}

/// The recorded folder unless only the found one exists: a registry may stem from another disk.
QString better(const Files& files, const QString& recorded, const QString& found)
{
    if (recorded.isEmpty() || (!files.isFolder(recorded) && files.isFolder(found)))
        return found;
    return recorded;
}

/// The first of two folders below the user's that exists, else the first.
QString belowProfile(const Lookup& lookup, const QString& newer, const QString& older)
{
    if (lookup.userProfile.isEmpty())
        return {};
    const bool old = !lookup.files.isFolder(lookup.userProfile + newer) &&
                     lookup.files.isFolder(lookup.userProfile + older);
    return lookup.userProfile + (old ? older : newer);
}

} // namespace

ShellFolders shellFolders(const RegistryStore& registry, const Files& files)
{
    ShellFolders out;
    if (files.drives().hostRoot(u'C').isNull())
        return out;
    out.systemDrive = u"C:\\"_s;
    const Lookup lookup = {registry, files, soleUserProfile(files, out.systemDrive)};
    out.documents = better(files,
                           recorded(lookup, Hive::CurrentUser, u"Personal"_s),
                           belowProfile(lookup, u"Documents\\"_s, u"My Documents\\"_s));
    out.userData = better(files,
                          recorded(lookup, Hive::CurrentUser, u"AppData"_s),
                          belowProfile(lookup, u"AppData\\Roaming\\"_s, u"Application Data\\"_s));

    const QString oldData = u"C:\\Documents and Settings\\All Users\\Application Data\\"_s;
    const bool old = !files.isFolder(u"C:\\ProgramData\\"_s) && files.isFolder(oldData);
    out.allUsersData = better(files,
                              recorded(lookup, Hive::LocalMachine, u"Common AppData"_s),
                              old ? oldData : u"C:\\ProgramData\\"_s);
    return out;
}

} // namespace vt
