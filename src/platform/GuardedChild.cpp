#include "platform/GuardedChild.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int sliceMs = 50;
constexpr qsizetype errorLimit = 4096;

} // namespace

QString helperProgram(const QString& name)
{
    return QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path() + u'/' + name;
}

ResultOf<QByteArray> runGuarded(const GuardedCall& call)
{
    QProcess process;
    process.setProgram(call.program);
    process.setArguments(call.arguments);
    process.start();
    if (!process.waitForStarted())
        return Result::failure(u"The helper program '"_s + call.program +
                                   u"' could not be started: "_s + process.errorString() + u'.',
                               ErrorKind::Surroundings);
    process.write(call.input);
    process.closeWriteChannel();
    QByteArray output;
    QByteArray errors;
    const auto end = [&process](const QString& why) {
        process.kill();
        process.waitForFinished(-1);
        return Result::failure(why);
    };
    const QDeadlineTimer deadline(call.timeoutMs);
    for (bool running = true; running;) {
        process.waitForFinished(sliceMs);
        running = process.state() != QProcess::NotRunning;
        output += process.readAllStandardOutput();
        errors += process.readAllStandardError().left(errorLimit - errors.size());
        if (output.size() > call.outputLimit)
            return end(u"it gave more than was expected of it"_s);
        if (running && deadline.hasExpired())
            return end(u"it took too long"_s);
    }
    if (process.exitStatus() != QProcess::NormalExit)
        return Result::failure(u"it needs more time or memory than is allowed"_s);
    if (process.exitCode() == 0)
        return output;
    const QString said = QString::fromUtf8(errors).section(u'\n', 0, 0).trimmed();
    return Result::failure(said.isEmpty() ? u"it cannot be understood"_s : said);
}

} // namespace vt
