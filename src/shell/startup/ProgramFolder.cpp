#include "shell/startup/ProgramFolder.h"

#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

QString programFolder(const Files& files, const ProgramFolderSearch& search)
{
    const DriveTable& drives = files.drives();
    for (const QString& named : {search.option, search.environment})
        if (!named.isEmpty())
            return winpath::asFolder(drives.fromUser(named, search.currentFolder));
    if (!search.programsFolder.isEmpty()) {
        const QString own = winpath::asFolder(drives.toWindows(search.programsFolder));
        if (files.isFile(own + u"Vantrel.exe"_s))
            return own;
    }
    const QString data =
        search.dataHome.startsWith(u'/') ? search.dataHome : search.home + u"/.local/share"_s;
    return winpath::asFolder(drives.toWindows(data + u"/vantrel"_s));
}

} // namespace vt
