// Everything an operation needs around it, passed by reference from main() or a test's fixture.
#pragma once

#include "platform/Services.h"
#include "shell/GlobalRecord.h"

namespace vt {

class Settings;
class ErrorLog;

struct Context
{
    Services& services;
    GlobalRecord& global;
    Settings& settings;
    ErrorLog& errors; ///< appends to "ERROR.LOG" under the current procedure's name
};

} // namespace vt
