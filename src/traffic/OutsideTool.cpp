#include "traffic/OutsideTool.h"

#include "platform/WinPath.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt::outsidetool {

namespace {

constexpr qsizetype longestOutput = 200;

/// The last line that a program printed, for its complaint.
QString lastWords(const QByteArray& output)
{
    const QList<QByteArray> lines = output.trimmed().split('\n');
    return QString::fromLocal8Bit(lines.constLast().trimmed().left(longestOutput));
}

/// A folder as a person writes it: the host's way, or that of Windows.
QString asTyped(const Files& files, QString typed)
{
    typed = typed.remove(u'"').trimmed();
    return typed.isEmpty() ? QString() : winpath::asFolder(files.drives().fromUser(typed, u"/"_s));
}

Prompt invalidConfiguration(const OutsideTool& tool, const QString& why)
{
    return announcement(
        u"Invalid Program Configuration"_s, tool.invalid + u"\n\n"_s + why, Icon::Warning);
}

} // namespace

Result check(const Files& files, const OutsideTool& tool, const QString& folder)
{
    for (const QString& program : tool.programs) {
        if (!files.isFile(folder + program))
            return Result::failure(tool.missing.isEmpty() ? folder + program + u" was not found."_s
                                                          : tool.missing);
    }
    return Result::success();
}

QString find(Context& context, const OutsideTool& tool)
{
    const Files& files = context.services.files;
    QString found = asTyped(files, context.settings.text(tool.setting));
    if (found.isEmpty()) {
        for (const QString& folder : tool.folders) {
            if (check(files, tool, folder)) {
                found = folder;
                break;
            }
        }
    }
    if (found.isEmpty() || !files.isFolder(found))
        return {};
    context.services.gate.setRoot(tool.root, found);
    return found;
}

ResultOf<QString> locate(Context& context, const OutsideTool& tool)
{
    QString folder = find(context, tool);
    const bool asks = folder.isEmpty();
    if (asks) {
        const auto answer =
            context.services.prompts.askText({tool.title, tool.question, tool.folders.value(0)});
        context.services.files.newOperation();
        folder = asTyped(context.services.files, answer.value_or(QString()));
        if (folder.isEmpty())
            return Result::failure(
                tool.title +
                    u" was not found; if it is installed, name its folder in the settings."_s,
                ErrorKind::Surroundings);
    }
    if (const Result whole = check(context.services.files, tool, folder); !whole) {
        context.services.prompts.ask(invalidConfiguration(tool, whole.text));
        return Result::failure(tool.invalid + u' ' + whole.text);
    }
    if (asks)
        (void)remember(context, tool, folder); // it serves this time in any case
    return folder;
}

Result remember(Context& context, const OutsideTool& tool, const QString& folder)
{
    context.services.gate.setRoot(tool.root, folder);
    if (context.settings.setText(tool.setting, folder))
        return Result::success();
    return Result::failure(u"The folder of "_s + tool.title +
                           u" could not be kept in the settings, so it will be asked for again."_s);
}

QString complaint(Context& context, const QString& program, const ProcessEnd& end)
{
    if (end.succeeded())
        return {};
    if (end.how != ProcessEnd::How::Exited) {
        if (end.how == ProcessEnd::How::Crashed)
            context.services.prompts.ask(
                announcement(u"Unexpected Error"_s, end.text, Icon::Critical));
        return end.text;
    }
    QString text = u"'"_s + program + u"' reported the error "_s + QString::number(end.exitCode);
    const QString words = lastWords(end.output);
    return text + (words.isEmpty() ? u"."_s : u": "_s + words);
}

} // namespace vt::outsidetool
