// What the platform offers to everything above it, passed by reference. No instance is global.
#pragma once

#include "platform/Clock.h"
#include "platform/FileActions.h"
#include "platform/Files.h"
#include "platform/Prompt.h"
#include "platform/Status.h"

namespace vt {

class AnsiCodec;
class Gate;

struct Services
{
    Files& files;
    Gate& gate;
    FileActions& actions; ///< direct: each call is carried out at once
    Prompts& prompts;
    StatusSink& status;
    Clock& clock;
    const AnsiCodec& ansi; ///< code page of the simulator's configuration files
};

} // namespace vt
