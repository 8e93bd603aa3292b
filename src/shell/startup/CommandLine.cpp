#include "shell/startup/CommandLine.h"

#include "platform/Text.h"
#include "shell/GlobalRecord.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString fileKey()
{
    return u"FileToInstall="_s;
}

QString startupFile(const GlobalRecord& global)
{
    return global.programFile(u"Startup.txt"_s);
}

} // namespace

QString fileToInstall(const QStringList& arguments,
                      const QStringList& optionsWithValue,
                      const DriveTable& drives,
                      const QString& currentFolder)
{
    QStringList searched;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (optionsWithValue.contains(arguments[i])) {
            ++i;
            continue;
        }
        const QString name = arguments[i].section(u'=', 0, 0);
        if (name == arguments[i] || !optionsWithValue.contains(name))
            searched.append(arguments[i]);
    }
    const QString line = searched.join(u' ');
    constexpr QStringView word = u"-file";
    const qsizetype at = indexOfNoCase(line, word);
    if (at < 0)
        return {};
    const QString value = line.mid(at + word.size() + 1).remove(u'"').trimmed();
    return value.isEmpty() ? QString() : drives.fromUser(value, currentFolder);
}

Result writeStartupFile(FileActions& actions, const GlobalRecord& global, const QString& file)
{
    const QString text = u"[STARTUP]\r\n"_s + fileKey() + file + u"\r\n"_s;
    return actions.replace(startupFile(global), text.toUtf8());
}

QString takeStartupFile(const Files& files, FileActions& actions, const GlobalRecord& global)
{
    constexpr qint64 limit = 64 * 1024;
    const ResultOf<QByteArray> bytes = files.read(startupFile(global), limit);
    if (!bytes)
        return {};
    const QStringList lines = QString::fromUtf8(*bytes).split(u'\n');
    if (!actions.remove(startupFile(global)))
        return {};
    for (const QString& line : lines)
        if (startsWithNoCase(line, fileKey()))
            return line.mid(fileKey().size()).trimmed();
    return {};
}

} // namespace vt
