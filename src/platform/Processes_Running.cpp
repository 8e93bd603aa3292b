// Which programs run on this host, from the system's process folder. Reads only.
#include "platform/Processes.h"
#include "platform/Text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The system keeps no more of a program's name.
constexpr qsizetype shortNameLength = 15;

QByteArray processFile(const QString& folder, const QString& name)
{
    QFile file(folder + u'/' + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Of a host path or a Windows path.
QString programName(const QByteArray& argument)
{
    const QString path = QFile::decodeName(argument);
    return path.sliced(std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\')) + 1);
}

/// A program of Windows goes by its own name, or by that of the loader with the program behind it.
bool isNamed(const QString& folder, QStringView program)
{
    const QString shortName = QFile::decodeName(processFile(folder, u"comm"_s).trimmed());
    if (equalNoCase(shortName, program.left(shortNameLength)))
        return true;
    for (const QByteArray& argument : processFile(folder, u"cmdline"_s).split('\0')) {
        const QString name = programName(argument);
        if (equalNoCase(name, program))
            return true;
        if (!startsWithNoCase(name, u"wine"))
            return false;
    }
    return false;
}

/// A process that has ended stays in the table until its parent asks for it.
bool hasEnded(const QString& folder)
{
    const QByteArray line = processFile(folder, u"stat"_s);
    const qsizetype name = line.lastIndexOf(')');
    return name < 0 || line.mid(name + 2, 1) == "Z" || line.mid(name + 2, 1) == "X";
}

/// Whether the process says that it belongs to another prefix; one that says nothing, or may not be
/// asked, could belong to any.
bool hasOtherPrefix(const QString& folder, const QString& hostPrefix)
{
    constexpr QByteArrayView mark = "WINEPREFIX=";
    if (hostPrefix.isEmpty())
        return false;
    for (const QByteArray& variable : processFile(folder, u"environ"_s).split('\0')) {
        if (!variable.startsWith(mark))
            continue;
        const QFileInfo told(QFile::decodeName(variable.sliced(mark.size())));
        const QFileInfo own(hostPrefix);
        return told.exists() && own.exists() ? told.canonicalFilePath() != own.canonicalFilePath()
                                             : told.absoluteFilePath() != own.absoluteFilePath();
    }
    return false;
}

} // namespace

bool Processes::isRunning(QStringView program) const
{
    const QString own = QString::number(QCoreApplication::applicationPid());
    const QStringList names = QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return std::any_of(names.cbegin(), names.cend(), [&](const QString& name) {
        const QString folder = u"/proc/"_s + name;
        return name.front().isDigit() && name != own && isNamed(folder, program) &&
               !hasEnded(folder) && !hasOtherPrefix(folder, m_setup.hostPrefix);
    });
}

} // namespace vt
