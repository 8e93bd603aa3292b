#include "platform/Processes.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype outputLimit = 1024LL * 1024;
constexpr int waitSliceMs = 100;
/// How long a process may take to end after it was asked to.
constexpr int endingMs = 1000;

struct ProcessRow
{
    pid_t pid = 0;
    pid_t parent = 0;
    pid_t session = 0;
};

/// All processes of this host, from the system's process folder.
QList<ProcessRow> processTable()
{
    QList<ProcessRow> rows;
    const QStringList names = QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        bool ok = false;
        const pid_t pid = name.toInt(&ok);
        QFile file(u"/proc/"_s + name + u"/stat"_s);
        if (!ok || !file.open(QIODevice::ReadOnly))
            continue;
        // "pid (name) state parent group session ..."; the name may hold blanks and brackets.
        const QByteArray line = file.readAll();
        const QList<QByteArray> fields =
            line.sliced(line.lastIndexOf(')') + 1).simplified().split(' ');
        if (fields.size() > 3)
            rows.push_back({pid, fields[1].toInt(), fields[3].toInt()});
    }
    return rows;
}

/// The process, everything in its session and everything descended from it.
QList<pid_t> familyOf(pid_t leader)
{
    const QList<ProcessRow> rows = processTable();
    QList<pid_t> family = {leader};
    for (bool grown = true; grown;) {
        grown = false;
        for (const ProcessRow& row : rows) {
            if (family.contains(row.pid))
                continue;
            if (row.session == leader || family.contains(row.parent)) {
                family += row.pid;
                grown = true;
            }
        }
    }
    return family;
}

void endFamily(QProcess& process)
{
    const pid_t leader = pid_t(process.processId());
    if (leader <= 0)
        return;
    const QList<pid_t> family = familyOf(leader);
    for (const pid_t pid : family)
        kill(pid, SIGTERM);
    process.waitForFinished(endingMs);
    // The leader's session outlives it while members are left.
    for (const ProcessRow& row : processTable()) {
        if (row.session == leader || (family.contains(row.pid) && row.pid != leader))
            kill(row.pid, SIGKILL);
    }
    if (process.state() != QProcess::NotRunning) {
        kill(leader, SIGKILL);
        process.waitForFinished(endingMs);
    }
}

QString secondsText(int milliseconds)
{
    return milliseconds % 1000 == 0 ? countText(milliseconds / 1000, u"second"_s, u"seconds"_s)
                                    : QString::number(milliseconds) + u" milliseconds"_s;
}

} // namespace

QStringList splitWindowsCommandLine(QStringView commandLine)
{
    QStringList out;
    QString current;
    bool inQuotes = false;
    bool inArgument = false;
    qsizetype backslashes = 0;
    const auto flush = [&](qsizetype count) {
        current += QString(count, u'\\');
        backslashes = 0;
    };
    for (qsizetype i = 0; i < commandLine.size(); ++i) {
        const QChar c = commandLine[i];
        if (c == u'\\') {
            ++backslashes;
            inArgument = true;
        } else if (c == u'"') {
            // Backslashes count double before a quote; an odd one makes the quote a character.
            const bool literal = backslashes % 2 == 1;
            flush(backslashes / 2);
            inArgument = true;
            if (literal) {
                current += c;
            } else if (inQuotes && i + 1 < commandLine.size() && commandLine[i + 1] == u'"') {
                current += c;
                ++i;
            } else {
                inQuotes = !inQuotes;
            }
        } else if ((c == u' ' || c == u'\t') && !inQuotes) {
            flush(backslashes);
            if (inArgument)
                out += current;
            current.clear();
            inArgument = false;
        } else {
            flush(backslashes);
            current += c;
            inArgument = true;
        }
    }
    flush(backslashes);
    if (inArgument)
        out += current;
    return out;
}

bool Processes::isWindowsProgram(const QString& program) const
{
    QFile file(QFile::decodeName(m_files.hostPath(program)));
    const QByteArray begin = file.open(QIODevice::ReadOnly) ? file.read(4) : QByteArray();
    if (begin.startsWith("MZ"))
        return true;
    if (begin.startsWith("#!") || begin == "\x7f"
                                           "ELF")
        return false;
    const QString extension = winpath::extension(program);
    return equalNoCase(extension, u"exe") || equalNoCase(extension, u"com") ||
           equalNoCase(extension, u"bat") || equalNoCase(extension, u"cmd");
}

ResultOf<Processes::Prepared> Processes::prepare(const ProcessCall& call) const
{
    const auto refuse = [&](const QString& why) {
        return Result::failure(u"'"_s + call.program + u"' could not be started: "_s + why);
    };
    if (!m_files.isFile(call.program))
        return refuse(u"the file does not exist."_s);
    Prepared out;
    out.program = QFile::decodeName(m_files.hostPath(call.program));
    out.arguments = call.arguments + splitWindowsCommandLine(call.commandLine);
    const QString folder =
        call.workingFolder.isEmpty() ? winpath::parent(call.program) : call.workingFolder;
    if (!m_files.isFolder(folder))
        return refuse(u"its working folder '"_s + folder + u"' does not exist."_s);
    out.folder = QFile::decodeName(m_files.hostPath(folder));
    out.environment = m_setup.environment;
    if (!m_setup.hostPrefix.isEmpty())
        out.environment.insert(u"WINEPREFIX"_s, m_setup.hostPrefix);
    for (auto it = call.environment.cbegin(); it != call.environment.cend(); ++it)
        out.environment.insert(it.key(), it.value());
    if (!isWindowsProgram(call.program)) {
        if (!QFileInfo(out.program).isExecutable())
            return refuse(
                u"it is neither a Windows program nor allowed to run on this computer."_s);
        return out;
    }
    if (m_setup.launcher.isEmpty())
        return out;
    const QStringList paths =
        out.environment.value(u"PATH"_s).split(QDir::listSeparator(), Qt::SkipEmptyParts);
    const QString launcher = QStandardPaths::findExecutable(m_setup.launcher.constFirst(), paths);
    if (launcher.isEmpty())
        return refuse(u"it is a Windows program, and '"_s + m_setup.launcher.constFirst() +
                      u"', which runs such programs, was not found. Please install it."_s);
    out.arguments = m_setup.launcher.sliced(1) + QStringList{out.program} + out.arguments;
    out.program = launcher;
    return out;
}

ProcessEnd Processes::run(const ProcessCall& call) const
{
    ProcessEnd end;
    const ResultOf<Prepared> prepared = prepare(call);
    if (!prepared) {
        end.text = prepared.text;
        return end;
    }
    QProcess process;
    process.setProgram(prepared->program);
    process.setArguments(prepared->arguments);
    process.setWorkingDirectory(prepared->folder);
    process.setProcessEnvironment(prepared->environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { setsid(); });
    process.start();
    if (!process.waitForStarted()) {
        end.text = u"'"_s + call.program + u"' could not be started: "_s + process.errorString();
        return end;
    }
    wait(process, call, end);
    return end;
}

void Processes::wait(QProcess& process, const ProcessCall& call, ProcessEnd& end) const
{
    const auto takeOutput = [&] {
        const QByteArray piece = process.readAll();
        end.output += piece.left(outputLimit - end.output.size());
    };
    const QDeadlineTimer deadline = call.timeoutMs < 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                                                       : QDeadlineTimer(call.timeoutMs);
    while (process.state() != QProcess::NotRunning) {
        const qint64 left = deadline.isForever() ? waitSliceMs : deadline.remainingTime();
        process.waitForFinished(int(qMin<qint64>(left, waitSliceMs)));
        takeOutput();
        if (process.state() == QProcess::NotRunning)
            break;
        const bool cancelled = call.keepWaiting && !call.keepWaiting();
        if (!cancelled && !deadline.hasExpired())
            continue;
        endFamily(process);
        takeOutput();
        end.how = cancelled ? ProcessEnd::How::Cancelled : ProcessEnd::How::TimedOut;
        end.text = cancelled
                       ? u"'"_s + call.program + u"' was ended because you cancelled."_s
                       : u"'"_s + call.program + u"' was ended: it had not finished after "_s +
                             secondsText(call.timeoutMs) + u'.';
        return;
    }
    takeOutput();
    end.exitCode = process.exitCode();
    end.how = process.exitStatus() == QProcess::NormalExit ? ProcessEnd::How::Exited
                                                           : ProcessEnd::How::Crashed;
    if (end.how == ProcessEnd::How::Crashed)
        end.text = u"'"_s + call.program + u"' ended by a fault of its own (signal "_s +
                   QString::number(end.exitCode) + u")."_s;
}

Result Processes::startDetached(const ProcessCall& call) const
{
    const ResultOf<Prepared> prepared = prepare(call);
    if (!prepared)
        return prepared.error();
    QProcess process;
    process.setProgram(prepared->program);
    process.setArguments(prepared->arguments);
    process.setWorkingDirectory(prepared->folder);
    process.setProcessEnvironment(prepared->environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (process.startDetached())
        return Result::success();
    return Result::failure(u"'"_s + call.program + u"' could not be started: "_s +
                           process.errorString());
}

} // namespace vt
