#include "platform/ShellFolders.h"
#include "platform/WinPath.h"
#include "session/SessionParts.h"
#include "shell/OuterLinks.h"
#include "shell/startup/Preparation.h"
#include "shell/startup/ProgramFolder.h"
#include "traffic/CTrafficTools.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr QStringView productName = u"Vantrel for Flight Simulator X";

} // namespace

Session::Parts::Parts(const Session& session,
                      SessionOptions given,
                      Prompts& promptsGiven,
                      StatusSink& statusGiven)
    : owner(session), options(std::move(given)), prompts(promptsGiven), status(statusGiven),
      currentFolder(QDir::currentPath()), environment(QProcessEnvironment::systemEnvironment())
{}

Result Session::Parts::buildDrives()
{
    if (drivesResult)
        return *drivesResult;
    drivesResult = Result::success();
    const ResultOf<Prefix> found = findPrefix({options.prefix, environment, currentFolder});
    if (found)
        prefix = *found;
    else
        drivesResult = found.error();
    const ResultOf<DriveTable> table = driveTableOf(prefix, options.drives, currentFolder);
    if (table)
        drives = *table;
    else if (drivesResult->ok)
        drivesResult = table.error();
    return *drivesResult;
}

void Session::Parts::buildFiles()
{
    if (services)
        return;
    (void)buildDrives(); // its failure was told by prepare()
    files = std::make_unique<Files>(drives);
    gate = std::make_unique<Gate>(*files);
    actions = std::make_unique<DirectActions>(*gate);
    enterProgramFolder();
    wine = std::make_unique<WineRegistry>(prefix.hostFolder);
    registry = std::make_unique<RegistryStore>(wine.get());
    registryResult = registry->load(*files, registryFile(global));
    ansi = std::make_unique<AnsiCodec>(ansiCodePage(*registry));
    services = std::unique_ptr<Services>(
        new Services{*files, *gate, *actions, prompts, status, clock, *ansi});
}

void Session::Parts::enterProgramFolder()
{
    const QString executable = QFileInfo(u"/proc/self/exe"_s).symLinkTarget();
    global.setProgramFolder(programFolder(*files,
                                          {options.home,
                                           environment.value(u"VANTREL_HOME"_s),
                                           QFileInfo(executable).path(),
                                           environment.value(u"XDG_DATA_HOME"_s),
                                           QDir::homePath(),
                                           currentFolder}));
    gate->setRoot(RootId::Program, global.programFolder);
}

void Session::Parts::buildContext()
{
    if (context)
        return;
    buildFiles();
    registryClass =
        std::make_unique<CRegistry_Manipulation>(*registry, prompts, productName.toString());
    settings = std::make_unique<Settings>(*registryClass, global);
    errors = std::make_unique<ErrorLog>(*services, global);
    context = std::unique_ptr<Context>(new Context{*services, global, *settings, *errors});
    settings->Registry_LoadSettings();
    outerlinks::attach(*gate, *settings);
    if (status.breathes())
        gate->breathing = [this] { status.breathe(); };
    (void)CTrafficTools(*context).Tool_Find(); // its folder may hold interrupted work
}

/// A search without questions is repeated with them once they are allowed.
Result Session::Parts::locate(bool interact)
{
    buildContext();
    if (locateResult && (locateResult->ok || locateInteracted || !interact))
        return *locateResult;
    SimulatorSearch search;
    search.interact = interact;
    search.shell = shellFolders(*registry, *files);
    if (!options.sim.isEmpty())
        search.option = drives.fromUser(options.sim, currentFolder);
    locateResult = ConfigureFlightSimulator(*context, *registryClass, search, located);
    locateInteracted = interact;
    return *locateResult;
}

void Session::Parts::tell(const QString& sentence) const
{
    if (owner.remark)
        owner.remark(sentence);
}

Session::Session(SessionOptions options, Prompts& prompts, StatusSink& status)
    : m(std::make_unique<Parts>(*this, std::move(options), prompts, status))
{}

Session::~Session() = default;

Result Session::prepare()
{
    if (m->options.prefix.isEmpty() && m->options.drives.isEmpty())
        return Result::success();
    return m->buildDrives();
}

Services& Session::services()
{
    m->buildFiles();
    return *m->services;
}

Context& Session::context()
{
    m->buildContext();
    return *m->context;
}

Result Session::needSimulator()
{
    const Result found = m->locate(true);
    if (!found || !m->lock.held())
        return found;
    return offerRegistryUpdate(*m->context, *m->registryClass, m->located);
}

const LocatedSimulator& Session::located()
{
    (void)m->locate(false);
    return m->located;
}

RegistryStore& Session::registry()
{
    m->buildFiles();
    return *m->registry;
}

CRegistry_Manipulation& Session::registryClass()
{
    m->buildContext();
    return *m->registryClass;
}

Result Session::saveRegistry()
{
    if (!m->registry || !m->registry->changed())
        return Result::success();
    return m->registry->save(*m->actions);
}

Processes& Session::processes()
{
    m->buildFiles();
    if (!m->processes) {
        if (!QCoreApplication::instance()) {
            m->argumentTexts = {m->options.programName.data(), nullptr};
            m->application =
                std::make_unique<QCoreApplication>(m->argumentCount, m->argumentTexts.data());
        }
        Processes::Setup setup;
        setup.hostPrefix = m->prefix.hostFolder;
        setup.environment = m->environment;
        m->processes = std::make_unique<Processes>(*m->files, std::move(setup));
    }
    return *m->processes;
}

Catalogue& Session::catalogue()
{
    if (!m->catalogue) {
        m->status.text(u"Primary"_s, u"Looking at the installed aircraft..."_s);
        m->catalogue = std::make_unique<Catalogue>(context().global);
        m->catalogue->open(*m->services);
        m->status.progress(0, 0);
        m->status.text(u"Primary"_s, {});
    }
    return *m->catalogue;
}

QString Session::userPath(const QString& typed)
{
    (void)m->buildDrives();
    return m->drives.fromUser(typed, m->currentFolder);
}

QString Session::userRoot(const QString& typed)
{
    const QString folder = winpath::asFolder(userPath(typed));
    m->buildFiles();
    m->gate->setRoot(RootId::Chosen, folder);
    return folder;
}

} // namespace vt
