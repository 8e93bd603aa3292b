#include "cli/Commands.h"

#include <iterator>

namespace vt::cli {

std::vector<Command> allCommands()
{
    using Group = std::vector<Command> (*)();
    constexpr Group groups[] = {
        doctorCommands,  settingsCommands, iniCommands,     aircraftCommands, sceneryCommands,
        configCommands,  variantCommands,  archiveCommands, databaseCommands, addonCommands,
        editCommands,    planCommands,     installCommands, importCommands,   removeCommands,
        repairCommands,  verifyCommands,   panelCommands,   missionCommands,  trafficCommands,
        pictureCommands,
    };
    std::vector<Command> all;
    for (const Group group : groups) {
        std::vector<Command> commands = group();
        std::move(commands.begin(), commands.end(), std::back_inserter(all));
    }
    return all;
}

} // namespace vt::cli
