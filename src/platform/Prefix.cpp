#include "platform/Prefix.h"

#include "platform/RegistryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The Steam Edition's number, which names its prefix.
constexpr QStringView steamPrefix = u"/steamapps/compatdata/314160/pfx";

/// Where Steam keeps its data, below the home folder: links first, then packages of other makers.
constexpr QStringView steamRoots[] = {
    u"/.steam/steam",
    u"/.steam/root",
    u"/.local/share/Steam",
    u"/.var/app/com.valvesoftware.Steam/.local/share/Steam",
    u"/.var/app/com.valvesoftware.Steam/data/Steam",
    u"/snap/steam/common/.local/share/Steam",
};

bool isPrefix(const QString& folder)
{
    return QFileInfo(folder + u"/dosdevices"_s).isDir() ||
           QFileInfo(folder + u"/drive_c"_s).isDir() ||
           QFileInfo(folder + u"/system.reg"_s).isFile();
}

/// The folder itself, or the "pfx" that Proton keeps inside; empty when neither is a prefix.
QString prefixAt(const QString& folder)
{
    if (isPrefix(folder))
        return QDir::cleanPath(folder);
    return isPrefix(folder + u"/pfx"_s) ? QDir::cleanPath(folder + u"/pfx"_s) : QString();
}

QString absoluteHost(const QString& typed, const QString& currentFolder, const QString& home)
{
    if (typed == u"~" || typed.startsWith(u"~/"))
        return QDir::cleanPath(home + typed.sliced(1));
    return QDir::cleanPath(QDir(currentFolder).absoluteFilePath(typed));
}

/// The libraries that "steamapps/libraryfolders.vdf" names on lines such as: "path"  "/games/Steam"
QStringList furtherLibraries(const QString& steamRoot)
{
    QFile file(steamRoot + u"/steamapps/libraryfolders.vdf"_s);
    if (!file.open(QIODevice::ReadOnly) || file.size() > 1024LL * 1024)
        return {};
    static const QRegularExpression pathLine(u"^\\s*\"path\"\\s*\"((?:[^\"\\\\]|\\\\.)*)\""_s,
                                             QRegularExpression::MultilineOption |
                                                 QRegularExpression::CaseInsensitiveOption);
    QStringList out;
    static const QRegularExpression escape(u"\\\\(.)"_s);
    auto matches = pathLine.globalMatch(QString::fromUtf8(file.readAll()));
    while (matches.hasNext())
        out += matches.next().captured(1).replace(escape, u"\\1"_s);
    return out;
}

/// "c:" names drive C; "c::" is a device, "com1" a port.
QChar driveLetter(const QString& linkName)
{
    const bool drive = linkName.size() == 2 && linkName[1] == u':' && linkName[0].isLetter() &&
                       linkName[0].unicode() < 0x80;
    return drive ? linkName[0].toUpper() : QChar();
}

void addPrefixDrives(const Prefix& prefix, DriveTable& table)
{
    table.set(u'C', prefix.hostFolder + u"/drive_c"_s);
    QString folder = prefix.hostFolder + u"/dosdevices"_s;
    if (QFileInfo(folder).isSymLink())
        folder = QFileInfo(folder).canonicalFilePath();
    const QFileInfoList entries =
        QDir(folder).entryInfoList(QDir::Dirs | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        const QChar letter = driveLetter(entry.fileName());
        if (letter.isNull() || !entry.isDir())
            continue;
        table.set(letter, entry.isSymLink() ? entry.symLinkTarget() : entry.filePath());
    }
}

Result addTypedDrive(const QString& typed, const QString& currentFolder, DriveTable& table)
{
    const auto refuse = [&](const QString& why) {
        return Result::failure(u"The drive '"_s + typed + u"' cannot be used: "_s + why,
                               ErrorKind::Usage);
    };
    const qsizetype equals = typed.indexOf(u'=');
    QString letterText = typed.left(qMax<qsizetype>(equals, 0)).trimmed();
    if (!letterText.endsWith(u':'))
        letterText += u':';
    const QChar letter = driveLetter(letterText);
    const QString folder = typed.sliced(equals + 1);
    if (equals < 0 || letter.isNull() || folder.isEmpty())
        return refuse(u"write a letter, '=' and a folder, such as D=/mnt/games."_s);
    if (letter == u'Z')
        return refuse(u"Z: always stands for the whole disk of this computer."_s);
    const QString host = absoluteHost(folder, currentFolder, QDir::homePath());
    if (!QFileInfo(host).isDir())
        return Result::failure(u"The drive '"_s + typed + u"' cannot be used: the folder '"_s +
                                   host + u"' does not exist."_s,
                               ErrorKind::Surroundings);
    table.set(letter, host);
    return Result::success();
}

} // namespace

QStringList steamLibraries(const QString& hostHome)
{
    QStringList out;
    QStringList seen;
    const auto add = [&](const QString& folder) {
        const QString real = QFileInfo(folder).canonicalFilePath();
        if (real.isEmpty() || seen.contains(real))
            return;
        seen += real;
        out += folder;
    };
    for (const QStringView root : steamRoots) {
        const QString folder = hostHome + root.toString();
        add(folder);
        for (const QString& library : furtherLibraries(folder))
            add(library);
    }
    return out;
}

ResultOf<Prefix> findPrefix(const PrefixSearch& search)
{
    const QString home = search.environment.value(u"HOME"_s);
    if (!search.explicitFolder.isEmpty()) {
        const QString folder = absoluteHost(search.explicitFolder, search.currentFolder, home);
        const QString found = prefixAt(folder);
        if (found.isEmpty())
            return Result::failure(
                u"'"_s + folder +
                    u"' is no Wine or Proton prefix: it has neither 'dosdevices', 'drive_c' nor 'system.reg'. Please name the folder that holds them."_s,
                ErrorKind::Surroundings);
        return Prefix{found, u"option"_s};
    }
    const QString fromEnvironment = search.environment.value(u"WINEPREFIX"_s);
    if (!fromEnvironment.isEmpty()) {
        const QString found = prefixAt(absoluteHost(fromEnvironment, search.currentFolder, home));
        return found.isEmpty() ? Prefix{} : Prefix{found, u"WINEPREFIX"_s};
    }
    if (home.isEmpty())
        return Prefix{};
    if (const QString found = prefixAt(home + u"/.wine"_s); !found.isEmpty())
        return Prefix{found, u"home"_s};
    for (const QString& library : steamLibraries(home)) {
        if (const QString found = prefixAt(library + steamPrefix.toString()); !found.isEmpty())
            return Prefix{found, u"Steam"_s};
    }
    return Prefix{};
}

ResultOf<DriveTable>
driveTableOf(const Prefix& prefix, const QStringList& extraDrives, const QString& currentFolder)
{
    DriveTable table;
    if (prefix.exists())
        addPrefixDrives(prefix, table);
    for (const QString& drive : extraDrives) {
        if (Result added = addTypedDrive(drive, currentFolder, table); !added)
            return added;
    }
    return table;
}

int ansiCodePage(const RegistryStore& registry)
{
    for (const QString& set : {u"CurrentControlSet"_s, u"ControlSet001"_s}) {
        const auto text = registry.value(
            Hive::LocalMachine, u"System\\"_s + set + u"\\Control\\Nls\\CodePage"_s, u"ACP"_s);
        const int page = text ? text->trimmed().toInt() : 0;
        if (page > 0)
            return page;
    }
    return 1252;
}

} // namespace vt
