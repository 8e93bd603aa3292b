// The user's and the machine's standard folders, as Windows texts.
#pragma once

#include <QString>

namespace vt {

class Files;
class RegistryStore;

/// Each text ends in "\"; empty when nothing is known.
struct ShellFolders
{
    QString documents;    ///< "C:\users\pilot\Documents\"
    QString userData;     ///< "C:\users\pilot\AppData\Roaming\"
    QString allUsersData; ///< "C:\ProgramData\"
    QString systemDrive;  ///< "C:\"
};

/// By the registry first, else by what lies below the system drive's folder of users. Folders need
/// not exist. All empty without a drive C:.
[[nodiscard]] ShellFolders shellFolders(const RegistryStore& registry, const Files& files);

} // namespace vt
