// One command of vantrelctl: what it takes, and what it does. Declared in the cmd_*.cpp files and
// listed in Commands.cpp; only Main.cpp knows the library that parses the command line.
#pragma once

#include "cli/World.h"

#include <QJsonValue>
#include <QMap>
#include <QString>
#include <QStringList>

#include <vector>

namespace vt::cli {

struct Option
{
    const char* name;      ///< "--to"
    const char* valueName; ///< "DIR"; nullptr for a flag
    const char* help;
    bool repeatable = false;
    std::vector<const char*> choices = {}; ///< empty: any value
};

struct Positional
{
    const char* name; ///< "SOURCE"
    const char* help;
    bool required = true;
    bool many = false; ///< takes all that remain; only the last may
};

/// What was typed. A repeatable option holds all its values, a flag holds one empty text.
struct Arguments
{
    QMap<QString, QStringList> positionals;
    QMap<QString, QStringList> options;

    [[nodiscard]] QString one(const QString& positional) const
    {
        return positionals.value(positional).value(0);
    }

    [[nodiscard]] QStringList all(const QString& positional) const
    {
        return positionals.value(positional);
    }

    [[nodiscard]] bool has(const QString& option) const { return options.contains(option); }

    [[nodiscard]] QString value(const QString& option, const QString& fallback = {}) const
    {
        return options.contains(option) ? options.value(option).value(0) : fallback;
    }

    [[nodiscard]] QStringList values(const QString& option) const { return options.value(option); }
};

/// Exit statuses of cli.
enum Exit : int
{
    Done = 0,
    Partly = 1, ///< done in part, refused, or an unknown key
    WrongUsage = 2,
    NotFit = 3, ///< no valid simulator, database not usable, folder held, source unreadable
    Declined = 4,
};

/// A command with a second word ("archive list") has it in its name, separated by one blank.
struct Command
{
    const char* name;
    const char* help;
    std::vector<Positional> positionals;
    std::vector<Option> options;
    /// Does the work, writes through \a world.out(), returns the exit status.
    int (*run)(World& world, const Arguments& arguments);
};

/// The commands of one file; each cmd_*.cpp defines one such function.
[[nodiscard]] std::vector<Command> doctorCommands();
[[nodiscard]] std::vector<Command> settingsCommands();
[[nodiscard]] std::vector<Command> iniCommands();
[[nodiscard]] std::vector<Command> sceneryCommands();
[[nodiscard]] std::vector<Command> aircraftCommands();
[[nodiscard]] std::vector<Command> configCommands();  ///< configs, fly
[[nodiscard]] std::vector<Command> variantCommands(); ///< variant, aircraft hide, suppress
[[nodiscard]] std::vector<Command> archiveCommands();
[[nodiscard]] std::vector<Command> databaseCommands();
[[nodiscard]] std::vector<Command> addonCommands(); ///< list, show, owner, validate, history
[[nodiscard]] std::vector<Command> editCommands();
[[nodiscard]] std::vector<Command> planCommands(); ///< classify, plan
[[nodiscard]] std::vector<Command> installCommands();
[[nodiscard]] std::vector<Command> importCommands();
[[nodiscard]] std::vector<Command> removeCommands();
[[nodiscard]] std::vector<Command> repairCommands();
[[nodiscard]] std::vector<Command> verifyCommands();
[[nodiscard]] std::vector<Command> panelCommands(); ///< panel set, sound set
[[nodiscard]] std::vector<Command> missionCommands();
[[nodiscard]] std::vector<Command> pictureCommands();
[[nodiscard]] std::vector<Command> trafficCommands();

} // namespace vt::cli
