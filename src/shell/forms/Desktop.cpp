#include "shell/forms/Desktop.h"

#include "platform/WinPath.h"

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

using namespace Qt::StringLiterals;

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

Result openAddress(const QString& address)
{
    const QUrl url(address.trimmed(), QUrl::StrictMode);
    const QString scheme = url.scheme();
    if (scheme != "https"_L1 && scheme != "http"_L1 && scheme != "mailto"_L1)
        return Result::failure(
            u"'"_s + address +
            u"' is not opened: an address in the settings must begin with https:, http: or mailto:."_s);
    if (!QDesktopServices::openUrl(url))
        return Result::failure(u"The desktop has no program that opens '"_s + address + u"'."_s);
    return Result::success();
}

} // namespace vt::desktop
