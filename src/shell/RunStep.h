// One step of a long operation: named as the current procedure, its failures logged under that
// name. What follows a failed step is the caller's choice.
#pragma once

#include "platform/Result.h"
#include "shell/Context.h"
#include "shell/ErrorLog.h"

#include <exception>
#include <new>
#include <type_traits>

namespace vt {

/// Runs \a step, which returns Result or nothing. A failure and a caught std::exception both go to
/// the error log under \a name; an exception comes back as a failure.
template <typename Step> Result runStep(Context& context, const QString& name, Step&& step)
{
    context.global.currentProcedure = name;
    Result result;
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Step>>)
            step();
        else
            result = step();
    } catch (const std::bad_alloc&) {
        result = Result::failure(QStringLiteral("There is not enough memory for this step."));
    } catch (const std::exception& thrown) {
        result = Result::failure(QString::fromLocal8Bit(thrown.what()));
    }
    if (!result.ok)
        context.errors.report(name, result.text);
    return result;
}

} // namespace vt
