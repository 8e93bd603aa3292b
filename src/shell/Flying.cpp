#include "shell/Flying.h"

#include "platform/Processes.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt {

bool isSimulatorRunning(const Context& context, const Processes& processes)
{
    return processes.isRunning(context.global.simulatorExecutable);
}

Result
launchSimulator(const Context& context, const Processes& processes, const QStringList& arguments)
{
    ProcessCall call;
    call.program =
        winpath::join(context.global.simulatorFolder, context.global.simulatorExecutable);
    call.arguments = arguments;
    return processes.startDetached(call);
}

Result startFlying(Context& context, const Processes& processes, const QString& file)
{
    const DisplayNames& names = context.global.names;
    if (isSimulatorRunning(context, processes))
        return Result::failure(names.simLong + u" is running already."_s);
    if (!file.isEmpty() && !context.services.files.isFile(file))
        return Result::failure(names.simLong + u" was not started: the file '"_s + file +
                               u"' was not found."_s);
    if (context.settings.flag(SettingKey::ConfirmStart)) {
        const Prompt sure = yesNo(u"Confirm Start"_s,
                                  u"Are you sure you want to start "_s + names.simLong + u" now?"_s,
                                  Button::Yes);
        if (context.services.prompts.ask(sure) != Button::Yes)
            return Result::failure(names.simLong + u" was not started."_s, ErrorKind::Declined);
    }
    const Result launched =
        launchSimulator(context, processes, file.isEmpty() ? QStringList() : QStringList{file});
    return launched ? Result::success(names.simLong + u" was started."_s) : launched;
}

Prompt restartNotice(const DisplayNames& names)
{
    return announcement(u"Please Restart "_s + names.simLong,
                        u"The addon(s) you last installed or removed may not take effect until "_s +
                            names.simLong + u" is restarted. "_s,
                        Icon::Information);
}

} // namespace vt
