// Where the program keeps everything of its own.
#pragma once

#include "platform/Files.h"

#include <QString>

namespace vt {

/// What the search goes by; host paths.
struct ProgramFolderSearch
{
    QString option;         ///< what "--home" says; empty: not given
    QString environment;    ///< VANTREL_HOME
    QString programsFolder; ///< folder of the running program
    QString dataHome;       ///< XDG_DATA_HOME
    QString home;           ///< the user's home folder, when dataHome is empty or relative
    QString currentFolder;  ///< for relative paths
};

/// The option; the environment; the folder of the program when it holds "Vantrel.exe"; "vantrel"
/// below the data folder. A Windows text that ends in "\"; the folder need not exist.
[[nodiscard]] QString programFolder(const Files& files, const ProgramFolderSearch& search);

} // namespace vt
