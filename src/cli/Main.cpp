// The command line of vantrelctl: the only file that knows the parsing library. The parser is built
// from the commands' tables; what they do is their own matter.
#include "cli/Commands.h"
#include "cli/Console.h"

#include <QHash>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <list>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

constexpr char literalMark = '\x01';

/// The library takes "[a,b]" apart. Such a word (a section's name, a file's) is marked and the mark
/// taken off again.
std::string marked(const char* word)
{
    return word[0] == '[' ? literalMark + std::string(word) : std::string(word);
}

QString unmarked(const std::string& word)
{
    const bool mark = !word.empty() && word.front() == literalMark;
    return QString::fromStdString(mark ? word.substr(1) : word);
}

/// Where the library puts what was typed for one option or positional.
struct Slot
{
    QString name;
    bool positional = false;
    bool many = false;
    std::string one;
    std::vector<std::string> all;
    CLI::Option* option = nullptr;
};

struct CommandParser
{
    const Command* command = nullptr;
    CLI::App* app = nullptr;
    std::list<Slot> slots;
};

Slot& addSlot(CommandParser& parser, const char* name, bool positional, bool many)
{
    Slot& slot = parser.slots.emplace_back();
    slot.name = QString::fromLatin1(name);
    slot.positional = positional;
    slot.many = many;
    return slot;
}

void addPositional(CommandParser& parser, const Positional& positional)
{
    Slot& slot = addSlot(parser, positional.name, true, positional.many);
    if (positional.many)
        slot.option = parser.app->add_option(positional.name, slot.all, positional.help);
    else
        slot.option = parser.app->add_option(positional.name, slot.one, positional.help);
    slot.option->required(positional.required);
    slot.option->type_name("");
}

void addOption(CommandParser& parser, const Option& option)
{
    Slot& slot = addSlot(parser, option.name, false, option.repeatable);
    if (!option.valueName) {
        slot.option = parser.app->add_flag(option.name, option.help);
        return;
    }
    if (option.repeatable) {
        // One value each time, so that a positional may follow.
        slot.option = parser.app->add_option(option.name, slot.all, option.help)->expected(1);
        slot.option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        slot.option->allow_extra_args(false);
    } else {
        slot.option = parser.app->add_option(option.name, slot.one, option.help);
    }
    slot.option->type_name(option.valueName);
    if (!option.choices.empty())
        slot.option->check(
            CLI::IsMember(std::vector<std::string>(option.choices.begin(), option.choices.end())));
}

Arguments typedArguments(const CommandParser& parser)
{
    Arguments arguments;
    for (const Slot& slot : parser.slots) {
        if (slot.option->count() == 0)
            continue;
        QStringList values;
        if (slot.many) {
            for (const std::string& value : slot.all)
                values.append(unmarked(value));
        } else {
            values.append(unmarked(slot.one));
        }
        (slot.positional ? arguments.positionals : arguments.options).insert(slot.name, values);
    }
    return arguments;
}

/// The parser of a command, below that of its first word when it has two.
CLI::App* commandApp(CLI::App& root, QHash<QString, CLI::App*>& groups, const Command& command)
{
    const QString name = QString::fromLatin1(command.name);
    const qsizetype blank = name.indexOf(u' ');
    if (blank < 0)
        return root.add_subcommand(command.name, command.help);
    const QString group = name.left(blank);
    const std::string second = name.mid(blank + 1).toStdString();
    CLI::App*& app = groups[group];
    if (!app) {
        app = root.add_subcommand(group.toStdString(), second);
        app->fallthrough();
        app->require_subcommand(1);
    } else {
        app->description(app->get_description() + ", " + second);
    }
    return app->add_subcommand(second, command.help);
}

void addGlobalOptions(CLI::App& app, GlobalOptions& options, std::vector<std::string>& drives)
{
    const auto text =
        [&app](const char* name, QString& target, const char* value, const char* help) {
            app.add_option_function<std::string>(
                   name, [&target](const std::string& typed) { target = unmarked(typed); }, help)
                ->type_name(value);
        };
    text("--home", options.session.home, "DIR", "program folder; made when missing");
    text("--sim", options.session.sim, "DIR", "simulator folder for this call");
    text("--prefix", options.session.prefix, "DIR", "Wine or Proton prefix to work with");
    app.add_option("--drive", drives, "a further drive letter; repeatable")
        ->type_name("X=DIR")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
    app.add_flag("--json", options.json, "print one JSON document");
    app.add_option_function<std::string>(
           "--answer",
           [&options](const std::string& typed) { options.answer = unmarked(typed); },
           "how questions are answered with nobody to ask")
        ->type_name("yes|no|default")
        ->check(CLI::IsMember({"yes", "no", "default"}));
    app.add_flag("--quiet", options.quiet, "no progress on standard error");
}

/// One sentence: what the library says may have several lines and no full stop.
Result wrongUsage(const std::string& said)
{
    QString text = QString::fromStdString(said).simplified().remove(QLatin1Char(literalMark));
    while (text.endsWith(u'.'))
        text.chop(1);
    return Result::failure(text + u"; see 'vantrelctl --help'."_s, ErrorKind::Usage);
}

class Program
{
public:
    Program() : m_commands(allCommands())
    {
        m_app.name("vantrelctl");
        m_options.session.programName = "vantrelctl";
        m_app.require_subcommand(1);
        m_app.set_version_flag("--version", "vantrelctl " VANTREL_VERSION);
        addGlobalOptions(m_app, m_options, m_drives);
        m_app.get_formatter()->column_width(34);
        for (const Command& command : m_commands) {
            CommandParser& parser = m_parsers.emplace_back();
            parser.command = &command;
            parser.app = commandApp(m_app, m_groups, command);
            parser.app->fallthrough();
            parser.app->footer("Global options: see 'vantrelctl --help'.");
            parser.app->set_version_flag("--version", "vantrelctl " VANTREL_VERSION);
            for (const Positional& positional : command.positionals)
                addPositional(parser, positional);
            for (const Option& option : command.options)
                addOption(parser, option);
        }
    }

    int run(int argc, char** argv)
    {
        std::vector<std::string> words; // the library takes them from the back
        for (int i = argc - 1; i > 0; --i)
            words.push_back(marked(argv[i]));
        try {
            m_app.parse(std::move(words));
        } catch (const CLI::Success& asked) {
            return m_app.exit(asked); // --help, --version
        } catch (const CLI::ParseError& error) {
            // The library may have given up before it came to --json.
            for (int i = 1; i < argc; ++i)
                m_options.json = m_options.json || qstrcmp(argv[i], "--json") == 0;
            return refuse(wrongUsage(explained(error)));
        }
        for (const std::string& drive : m_drives)
            m_options.session.drives.append(unmarked(drive));
        for (const CommandParser& parser : m_parsers)
            if (parser.app->parsed())
                return runCommand(*parser.command, typedArguments(parser));
        return refuse(wrongUsage("A command is required"));
    }

private:
    /// The library complains of a missing command where an unknown one was typed.
    [[nodiscard]] std::string explained(const CLI::ParseError& error) const
    {
        const std::vector<std::string> left = m_app.remaining(true);
        if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::RequiredError) ||
            left.empty() || !error.get_name().starts_with("Required") || hasCommand())
            return error.what();
        return "There is no command '" + left.front() + "'";
    }

    [[nodiscard]] bool hasCommand() const
    {
        return std::any_of(m_parsers.begin(), m_parsers.end(), [](const CommandParser& parser) {
            return parser.app->parsed();
        });
    }

    int refuse(const Result& why)
    {
        World world(m_options);
        const int status = world.fail(why);
        world.finish();
        return status;
    }

    int runCommand(const Command& command, const Arguments& arguments)
    {
        World world(m_options);
        int status = Done;
        if (Result fit = world.prepare(); !fit)
            status = world.fail(fit);
        else
            status = command.run(world, arguments);
        world.finish();
        return status;
    }

    CLI::App m_app{"Vantrel: add-ons for Flight Simulator X, installed, kept and removed whole"};
    GlobalOptions m_options;
    std::vector<std::string> m_drives;
    std::vector<Command> m_commands;
    std::list<CommandParser> m_parsers;
    QHash<QString, CLI::App*> m_groups;
};

} // namespace

} // namespace vt::cli

int main(int argc, char** argv)
{
    vt::cli::console::installSignals();
    // Remarks of the libraries do not belong between a command's own sentences.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg || type == QtCriticalMsg)
            vt::cli::console::error(text + u'\n');
    });
    vt::cli::Program program;
    return program.run(argc, argv);
}
