#include "shell/startup/Locate.h"

#include "platform/AnsiCodec.h"
#include "platform/Gate.h"
#include "platform/WinPath.h"
#include "shell/CRegistry_Manipulation.h"

#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString simulatorKey()
{
    return u"Microsoft\\Microsoft Games\\Flight Simulator"_s;
}

QString versionOf(int generation)
{
    switch (generation) {
    case FS2002:
        return u"8.0"_s;
    case FS2004:
        return u"9.0"_s;
    default:
        return u"10.0"_s;
    }
}

QString pathValueOf(int generation)
{
    return generation == FSX ? u"SetupPath"_s : u"EXE Path"_s;
}

/// A registry's text as a folder. Installers leave "0" or "1" where no path is known, and some
/// texts go on behind a NUL.
QString registryFolder(QString text)
{
    if (const qsizetype nul = text.indexOf(QChar::Null); nul >= 0)
        text.truncate(nul);
    text = text.trimmed();
    if (text.isEmpty() || text == u"0" || text == u"1")
        return {};
    return winpath::asFolder(text);
}

Prompt unknownOverride(const DisplayNames& names, const QString& folder, const QString& file)
{
    return announcement(
        u"Unknown Version Detected"_s,
        names.productTitle + u" has been directed to work with "_s + names.simLong +
            u" located in:\n\n     "_s + folder +
            u"\n\nhowever this does not appear to be a valid version of "_s + names.simLong +
            u". Please specify a valid version in:\n\n     "_s + file +
            u"\n\nor delete this file to use the version specified in the registry."_s,
        Icon::Warning);
}

Prompt unknownVersion(const DisplayNames& names, int code)
{
    return announcement(
        u"Unknown Version Detected"_s,
        u"A version of "_s + names.simLong + u" was found that is not recognized by "_s +
            names.productTitle + u" (Error code = "_s + QString::number(code) + u"). "_s +
            names.productTitle + u" is designed to work only with "_s + names.simLong +
            u". It cannot and should not be used with earlier versions or with future versions."_s,
        Icon::Warning);
}

TextPrompt whereInstalled(const DisplayNames& names, int code, const QString& proposal)
{
    return {names.simLong + u" was not found"_s,
            names.productTitle + u" could not locate "_s + names.simLong + u" (Error code="_s +
                QString::number(code) + u").\n\nPlease enter the folder where "_s + names.simLong +
                u" is installed:"_s,
            proposal};
}

Prompt updateRegistry(const DisplayNames& names)
{
    return yesNo(u"Update Registry?"_s,
                 u"Would you like "_s + names.productTitle +
                     u" to update the Windows registry with the correct path to "_s +
                     names.simLong + u"?"_s,
                 Button::Yes);
}

QString standardFolder(int generation, const QString& systemDrive)
{
    const QString games = (systemDrive.isEmpty() ? u"C:\\"_s : winpath::asFolder(systemDrive)) +
                          u"Program Files\\Microsoft Games\\"_s;
    switch (generation) {
    case FS2002:
        return games + u"FS2002\\"_s;
    case FS2004:
        return games + u"Flight Simulator 9\\"_s;
    default:
        return games + u"Microsoft Flight Simulator X\\"_s;
    }
}

class Search
{
public:
    Search(Context& context,
           const CRegistry_Manipulation& registry,
           const SimulatorSearch& search,
           LocatedSimulator& located)
        : m_context(context), m_registry(registry), m_search(search), m_located(located),
          m_generation(context.global.generation)
    {}

    bool run()
    {
        if (m_search.option)
            return accept(*m_search.option, u"option"_s);
        return overrideFile() || registry() || laterKeys() || (m_search.interact && askUser());
    }

private:
    /// Makes the folder the chosen one when it is valid, and notes it as refused otherwise.
    bool accept(const QString& folder, const QString& foundBy, bool registryLacks = false)
    {
        if (folder.isEmpty())
            return false;
        const QString spelled = m_context.services.files.spelled(winpath::asFolder(folder));
        for (const SimulatorCandidate& seen : m_located.refused)
            if (winpath::same(seen.folder, spelled))
                return false;
        SimulatorCandidate candidate{
            spelled, foundBy, validateSimulator(m_context.services.files, spelled, m_generation)};
        if (!candidate.validation.valid()) {
            m_located.refused.append(candidate);
            return false;
        }
        m_located.chosen = candidate;
        m_located.registryLacks = registryLacks;
        return true;
    }

    bool overrideFile()
    {
        const QString file = m_context.global.programFile(u"SimPath.txt"_s);
        const QString folder = overrideFolder(file);
        if (folder.isEmpty())
            return false;
        if (accept(folder, u"SimPath.txt"_s))
            return true;
        if (m_search.interact)
            m_context.services.prompts.ask(unknownOverride(m_context.global.names, folder, file));
        return false;
    }

    /// The first line with content, as a folder.
    QString overrideFolder(const QString& file) const
    {
        constexpr qint64 limit = 64 * 1024;
        const ResultOf<QByteArray> bytes = m_context.services.files.read(file, limit);
        if (!bytes)
            return {};
        QStringDecoder utf8(QStringDecoder::Utf8);
        QString text = utf8(*bytes);
        if (utf8.hasError())
            text = m_context.services.ansi.decode(*bytes);
        for (const QString& line : text.split(u'\n')) {
            const QString folder = QString(line).remove(u'"').trimmed();
            if (!folder.isEmpty())
                return winpath::asFolder(
                    m_context.services.files.drives().fromUser(folder, u"/"_s));
        }
        return {};
    }

    [[nodiscard]] QString
    machineValue(const QString& key, const QString& subkey, const QString& name) const
    {
        return registryFolder(m_registry.GetKey(Hive::LocalMachine, key, subkey, name));
    }

    bool registry()
    {
        const QString key = simulatorKey();
        const QString version = versionOf(m_generation);
        const QString name = pathValueOf(m_generation);
        if (accept(machineValue(key, version, name), u"registry"_s))
            return true;
        if (m_generation == FS2004) {
            const QString played = u"Microsoft\\DirectPlay\\Applications"_s;
            const QString game = u"Microsoft Flight Simulator 2004"_s;
            for (const QString& value : {u"Path"_s, u"CurrentDirectory"_s})
                if (accept(machineValue(played, game, value), u"registry (DirectPlay)"_s, true))
                    return true;
        }
        if (m_generation == FSX) {
            for (const QString& subkey : {version, QString()}) {
                QString folder = machineValue(key + u" X SDK"_s, subkey, name);
                folder.remove(u" SDK"_s);
                if (accept(folder, u"registry (SDK)"_s, true))
                    return true;
            }
        }
        return false;
    }

    /// Keys that later editions of the same simulator write instead.
    bool laterKeys()
    {
        if (m_generation != FSX)
            return false;
        const QString path = u"Install_Path"_s;
        const QString steam = u"registry (Steam Edition)"_s;
        const QString version = versionOf(m_generation);
        const QString steamKey = simulatorKey() + u" - Steam Edition"_s;
        if (accept(machineValue(u"Dovetail Games\\FSX"_s, version, path), steam) ||
            accept(machineValue(u"DovetailGames\\FSX"_s, version, path), steam) ||
            accept(machineValue(u"DovetailGames\\FSX"_s, {}, path), steam))
            return true;
        for (const Hive hive : {Hive::LocalMachine, Hive::CurrentUser})
            for (const QString& name : {u"SetupPath"_s, u"AppPath"_s})
                if (accept(registryFolder(m_registry.GetKey(hive, steamKey, version, name)), steam))
                    return true;
        return accept(registryFolder(m_registry.GetKey(
                          Hive::CurrentUser, simulatorKey(), version, u"AppPath"_s)),
                      u"registry"_s);
    }

    bool askUser()
    {
        m_context.global.currentProcedure =
            u"Application_Startup : ConfigureFlightSimulator_LocateFlightSimulator"_s;
        const bool found = ConfigureFlightSimulator_LocateFlightSimulator();
        m_context.global.currentProcedure += u" (END)"_s;
        return found;
    }

    bool ConfigureFlightSimulator_LocateFlightSimulator()
    {
        const DisplayNames& names = m_context.global.names;
        Prompts& prompts = m_context.services.prompts;
        QString proposal = standardFolder(m_generation, m_search.shell.systemDrive);
        int code = m_located.refused.isEmpty() ? 0 : m_located.refused.first().validation.code;
        for (;;) {
            const std::optional<QString> answer =
                prompts.askText(whereInstalled(names, code, proposal));
            const QString typed = answer.value_or(QString()).remove(u'"').trimmed();
            if (typed.isEmpty())
                return false;
            proposal = winpath::asFolder(m_context.services.files.drives().fromUser(typed, u"/"_s));
            m_context.services.files.newOperation();
            const QString spelled = m_context.services.files.spelled(proposal);
            const SimulatorCandidate candidate{
                spelled,
                u"user"_s,
                validateSimulator(m_context.services.files, spelled, m_generation)};
            code = candidate.validation.code;
            if (candidate.validation.valid()) {
                m_located.chosen = candidate;
                m_located.registryLacks = true;
                return true;
            }
            if (candidate.validation.hasExecutable)
                prompts.ask(unknownVersion(names, code));
        }
    }

    Context& m_context;
    const CRegistry_Manipulation& m_registry;
    const SimulatorSearch& m_search;
    LocatedSimulator& m_located;
    int m_generation;
};

QString refusedText(const LocatedSimulator& located, const GlobalRecord& global)
{
    const bool named = !located.refused.isEmpty() && located.refused.first().foundBy == u"option";
    const QString advice = named ? u"; name the folder that holds '"_s +
                                       simulatorExecutable(located.generation) + u"'."_s
                                 : u"; name its folder with --sim or in 'SimPath.txt'."_s;
    if (located.refused.isEmpty())
        return global.names.simLong + u" was not found: no folder is known from the registry"_s +
               advice;
    QString text = global.names.simLong + u" was not found: "_s;
    for (qsizetype i = 0; i < located.refused.size(); ++i) {
        const SimulatorCandidate& candidate = located.refused[i];
        if (i > 0)
            text += u"; "_s;
        text += u"'"_s + candidate.folder + u"' "_s +
                (candidate.foundBy == u"option" ? u"(named with --sim)"_s
                                                : u"("_s + candidate.foundBy + u')') +
                u" is not valid because "_s +
                validationCause(candidate.validation, located.generation);
        if (candidate.validation.hasFolder && candidate.validation.code != 0)
            text += u" (error code "_s + QString::number(candidate.validation.code) + u")"_s;
    }
    return text + advice;
}

void enterSimulator(Context& context,
                    const SimulatorSearch& search,
                    const LocatedSimulator& located)
{
    GlobalRecord& global = context.global;
    const bool steam = located.chosen.foundBy.contains(u"Steam"_s);
    global.setSimulatorFolder(located.chosen.folder);
    global.setConfigFolders(search.shell.allUsersData,
                            search.shell.userData,
                            search.shell.documents,
                            editionFolder(context.services.files, search.shell, steam));
    Gate& gate = context.services.gate;
    gate.setRoot(RootId::Simulator, global.simulatorFolder);
    if (!search.shell.allUsersData.isEmpty() && global.generation == FSX)
        gate.setRoot(RootId::AllUsersConfig, winpath::parent(global.sceneryCfgFile));
    if (!search.shell.userData.isEmpty() && global.generation != FS2002)
        gate.setRoot(RootId::UserConfig, global.mainConfigFolder);
    if (!search.shell.documents.isEmpty())
        gate.setRoot(RootId::Documents, global.userDocumentsFolder);
}

} // namespace

QString editionFolder(const Files& files, const ShellFolders& shell, bool steamEdition)
{
    const QString own = u"FSX"_s;
    const QString steam = u"FSX-SE"_s;
    const auto exists = [&](const QString& name) {
        const QString below = u"Microsoft\\"_s + name;
        return (!shell.allUsersData.isEmpty() && files.isFolder(shell.allUsersData + below)) ||
               (!shell.userData.isEmpty() && files.isFolder(shell.userData + below));
    };
    // The Steam Edition uses the old name when it is alone, and a name of its own beside the other.
    if (!exists(steam))
        return own;
    return steamEdition || !exists(own) ? steam : own;
}

Result ConfigureFlightSimulator(Context& context,
                                const CRegistry_Manipulation& registry,
                                const SimulatorSearch& search,
                                LocatedSimulator& located)
{
    const QString procedure = u"Application_Startup : ConfigureFlightSimulator"_s;
    context.global.currentProcedure = procedure;
    located = {};
    located.generation = context.global.generation;
    const bool found = Search(context, registry, search, located).run();
    context.global.currentProcedure = procedure + u" (END)"_s;
    if (!found) {
        if (!located.refused.isEmpty())
            located.chosen = located.refused.first();
        return Result::failure(refusedText(located, context.global), ErrorKind::Surroundings);
    }
    enterSimulator(context, search, located);
    return Result::success();
}

Result
offerRegistryUpdate(Context& context, CRegistry_Manipulation& registry, LocatedSimulator& located)
{
    if (!located.valid() || !located.registryLacks)
        return Result::success();
    located.registryLacks = false;
    if (context.services.prompts.ask(updateRegistry(context.global.names)) != Button::Yes)
        return Result::success();
    if (!registry.SaveKey(Hive::LocalMachine,
                          simulatorKey(),
                          versionOf(located.generation),
                          pathValueOf(located.generation),
                          located.chosen.folder))
        return Result::failure(u"The simulator's folder could not be written to the registry."_s);
    return Result::success();
}

} // namespace vt
