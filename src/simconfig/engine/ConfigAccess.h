// What the objects over configuration files need of the world: the actions to read and write
// through (direct, or journalled ones that see their own staging), the questions, the code page.
#pragma once

#include "platform/AnsiCodec.h"
#include "platform/FileActions.h"
#include "platform/Prompt.h"
#include "platform/Services.h"

namespace vt {

struct ConfigAccess
{
    FileActions& actions;
    Prompts& prompts;
    const AnsiCodec& ansi;

    ConfigAccess(FileActions& fileActions, Prompts& questions, const AnsiCodec& codePage)
        : actions(fileActions), prompts(questions), ansi(codePage)
    {}

    /// The direct actions of \a services.
    explicit ConfigAccess(Services& services)
        : ConfigAccess(services.actions, services.prompts, services.ansi)
    {}
};

/// No configuration file of the simulator comes near this; larger ones are refused.
inline constexpr qint64 configFileLimit = 64LL * 1024 * 1024;

} // namespace vt
