#include "shell/forms/Desktop.h"

#include "platform/WinPath.h"

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace vt::desktop {

namespace {

bool open(const Files& files, const QString& path)
{
    const QByteArray host = files.hostPath(path);
    return !host.isEmpty() &&
           QDesktopServices::openUrl(QUrl::fromLocalFile(QFile::decodeName(host)));
}

} // namespace

bool openFolder(const Files& files, const QString& path)
{
    QString folder = files.isFolder(path) ? winpath::asFolder(path) : winpath::parent(path);
    while (!files.isFolder(folder)) {
        const QString above = winpath::parent(folder);
        if (above.isEmpty() || above == folder)
            return false;
        folder = above;
    }
    return open(files, folder);
}

bool openFile(const Files& files, const QString& path)
{
    return files.isFile(path) && open(files, path);
}

} // namespace vt::desktop
