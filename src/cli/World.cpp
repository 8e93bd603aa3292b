#include "cli/World.h"

#include "addondb/Connection.h"
#include "addondb/DatabaseCare.h"
#include "addondb/JournalTable.h"
#include "catalogue/Catalogue.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/TerminalPrompts.h"
#include "cli/TerminalStatus.h"
#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/Gate.h"
#include "platform/InstanceLock.h"
#include "platform/Prefix.h"
#include "platform/RegistryStore.h"
#include "platform/ShellFolders.h"
#include "platform/WinPath.h"
#include "platform/WineRegistry.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/ErrorLog.h"
#include "shell/OuterLinks.h"
#include "shell/Results.h"
#include "shell/Settings.h"
#include "shell/startup/Preparation.h"
#include "shell/startup/ProgramFolder.h"
#include "traffic/CTrafficTools.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace vt::cli {

QString operationWord(OperationKind kind)
{
    switch (kind) {
    case OperationKind::Installation:
        return u"installation"_s;
    case OperationKind::Removal:
        return u"removal"_s;
    case OperationKind::Repair:
        return u"repair"_s;
    case OperationKind::Configuration:
        break;
    }
    return u"configuration"_s;
}

namespace {

constexpr QStringView productName = u"Vantrel for Flight Simulator X";
constexpr qsizetype sayPiece = 64 * 1024;

/// "An interrupted installation of 'Harbour' was undone."
QString recoverySentence(const Recovery& recovery)
{
    QString text = u"An interrupted "_s + operationWord(recovery.operation.kind) + u" of '"_s +
                   recovery.operation.label + u"' was "_s + recovery.outcome;
    if (!recovery.texts.isEmpty())
        text += u"; "_s + recovery.texts.first();
    return text.endsWith(u'.') ? text : text + u'.';
}

QString kindName(ErrorKind kind)
{
    switch (kind) {
    case ErrorKind::Usage:
        return u"usage"_s;
    case ErrorKind::Surroundings:
    case ErrorKind::DiskFull:
    case ErrorKind::DiskFailed:
        return u"surroundings"_s;
    case ErrorKind::Declined:
        return u"declined"_s;
    case ErrorKind::None:
    case ErrorKind::Failed:
        break;
    }
    return u"failed"_s;
}

int exitOf(ErrorKind kind)
{
    switch (kind) {
    case ErrorKind::Usage:
        return WrongUsage;
    case ErrorKind::Surroundings:
    case ErrorKind::DiskFull:
    case ErrorKind::DiskFailed:
        return NotFit;
    case ErrorKind::Declined:
        return Declined;
    case ErrorKind::None:
    case ErrorKind::Failed:
        break;
    }
    return Partly;
}

Result unfit(const QString& text)
{
    return Result::failure(text, ErrorKind::Surroundings);
}

} // namespace

/// The objects, in the order of dependence; each is built by the step that first needs it.
struct World::Parts
{
    explicit Parts(GlobalOptions given)
        : options(std::move(given)), currentFolder(QDir::currentPath()),
          environment(QProcessEnvironment::systemEnvironment()),
          status(console::errorIsTerminal() && !options.quiet),
          prompts(console::inputIsTerminal() && console::errorIsTerminal(),
                  options.answer,
                  [this] { beforeOutput(); }),
          stream([this](QByteArrayView bytes) {
              if (options.json)
                  console::output(bytes);
          })
    {}

    void beforeOutput()
    {
        flushSaid();
        status.clear();
    }

    void flushSaid()
    {
        console::output(said);
        said.clear();
    }

    Result buildDrives();
    void buildFiles();
    void buildContext();
    Result locate(bool interact);
    void enterProgramFolder();
    Result openForWriting(bool fresh, bool repair);
    Result openDatabase(const WritingNeeds& needs, bool fresh);
    void optimizeWhenDue();
    Result finishInterrupted();
    [[nodiscard]] Result withCause(const Result& failure) const;

    GlobalOptions options;
    QString currentFolder;
    QProcessEnvironment environment;
    TerminalStatus status;
    TerminalPrompts prompts;
    Clock clock;
    JsonStream stream;
    QByteArray said;

    std::optional<Result> drivesResult;
    Prefix prefix;
    DriveTable drives;

    // Files and what stands on them.
    std::unique_ptr<Files> files;
    std::unique_ptr<Gate> gate;
    std::unique_ptr<DirectActions> actions;
    std::unique_ptr<WineRegistry> wine;
    std::unique_ptr<RegistryStore> registry;
    std::unique_ptr<AnsiCodec> ansi;
    std::unique_ptr<Services> services;
    GlobalRecord global;
    Result registryResult;

    std::unique_ptr<CRegistry_Manipulation> registryClass;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<ErrorLog> errors;
    std::unique_ptr<Context> context;

    std::optional<Result> locateResult;
    bool locateInteracted = false;
    LocatedSimulator located;

    InstanceLock lock;
    std::optional<Result> writingResult;
    std::unique_ptr<Connection> database;
    std::optional<Result> databaseResult;
    QList<Recovery> recoveries;
    std::optional<CareReport> care;
    std::unique_ptr<Catalogue> catalogue;

    std::unique_ptr<QCoreApplication> application;
    std::unique_ptr<Processes> processes;
};

Result World::Parts::buildDrives()
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

void World::Parts::buildFiles()
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

void World::Parts::enterProgramFolder()
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

void World::Parts::buildContext()
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
    (void)CTrafficTools(*context).Tool_Find(); // its folder may hold interrupted work
}

/// A search without questions is repeated with them once they are allowed.
Result World::Parts::locate(bool interact)
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

/// The database, made when the program folder is \a fresh.
Result World::Parts::openForWriting(bool fresh, bool repair)
{
    OpenedDatabase opened;
    if (files->isFile(global.databaseFile)) {
        opened = Connection::open(*files, global.databaseFile, OpenMode::ReadWrite);
        if (repair && opened.fault == DatabaseFault::Damaged) {
            care = DatabaseCare(*context).repair();
            if (!care->result)
                return unfit(care->result.text);
            opened = Connection::open(*files, global.databaseFile, OpenMode::ReadWrite);
        }
    } else if (fresh) {
        opened = Connection::create(*gate, global.databaseFile);
    } else {
        const Prompt missing = missingDatabase(global);
        return unfit(missing.text.trimmed());
    }
    if (!opened.connection)
        return unfit(opened.result.text);
    database = std::move(opened.connection);
    const qint64 bytes = files->info(global.databaseFile).value_or(FileInfo{}).size;
    if (const QString text = databaseSizeText(global.names, bytes); !text.isEmpty())
        prompts.ask(announcement(u"Database Warning"_s, text, Icon::Warning));
    return Result::success();
}

/// Interrupted work comes before the care for the file, which is written anew only when nothing is
/// left undone.
Result World::Parts::openDatabase(const WritingNeeds& needs, bool fresh)
{
    if (Result finished = DatabaseCare(*context).finishReplacement(); !finished)
        return unfit(finished.text);
    if (Result opened = openForWriting(fresh, needs.repair); !opened)
        return opened;
    Result finished = finishInterrupted();
    if (!finished && needs.repair && !care && database && !database->trouble()) {
        // The journal itself lies in what is damaged.
        database.reset();
        care = DatabaseCare(*context).repair();
        finished = care->result ? openForWriting(false, false) : care->result;
        if (finished)
            finished = finishInterrupted();
    }
    if (!finished)
        return withCause(finished);
    for (const Recovery& recovery : std::as_const(recoveries)) {
        if (needs.tellRecoveries)
            console::error(recoverySentence(recovery) + u'\n');
    }
    const ResultOf<QList<LackingPart>> lacking = database->lacking();
    if (!lacking)
        return unfit(lacking.text);
    if (lacking->isEmpty() && database->isPresentStructure())
        return Result::success();
    database.reset();
    const CareReport upgraded = DatabaseCare(*context).upgrade();
    if (!care)
        care = upgraded;
    if (!upgraded.result)
        return unfit(upgraded.result.text);
    return openForWriting(false, false);
}

/// When enough was changed since the last time.
void World::Parts::optimizeWhenDue()
{
    if (!database || database->readOnly() || !optimizationDue(*settings))
        return;
    database.reset();
    if (const CareReport report = DatabaseCare(*context).optimize(false); !report.result)
        console::error(report.result.text + u'\n');
}

/// What an earlier run left in the journal is undone or completed.
Result World::Parts::finishInterrupted()
{
    JournalTable journal(*database, *gate);
    const ResultOf<QList<JournalOperation>> unfinished = journal.unfinished();
    if (!unfinished)
        return unfit(unfinished.text);
    if (unfinished->isEmpty())
        return Result::success();
    if (const Result simulator = locate(false); !simulator)
        return unfit(u"An interrupted "_s + operationWord(unfinished->first().kind) + u" of '"_s +
                     unfinished->first().label + u"' cannot be finished. "_s + simulator.text);
    QStringList folders;
    for (const JournalOperation& operation : *unfinished) {
        if (const ResultOf<QList<JournalStep>> steps = journal.steps(operation.id))
            folders += foldersOf(*gate, *steps);
    }
    (void)outerlinks::confirm(*context, folders); // work behind one that stays closed waits
    ResultOf<QList<Recovery>> done = recover(journal, *gate);
    if (!done)
        return unfit(done.text);
    recoveries = *done;
    files->newOperation();
    for (const Recovery& recovery : recoveries)
        for (const QString& text : recovery.texts)
            errors->report(u"Application_Startup : Recovery"_s, text);
    for (const Recovery& recovery : recoveries) {
        if (recovery.outcome == u"failed")
            return unfit(u"The interrupted "_s + operationWord(recovery.operation.kind) +
                         u" of '"_s + recovery.operation.label + u"' could not be finished. "_s +
                         recovery.texts.value(0));
    }
    return Result::success();
}

World::World(GlobalOptions options) : m(std::make_unique<Parts>(std::move(options))) {}

World::~World() = default;

const GlobalOptions& World::options() const
{
    return m->options;
}

Result World::prepare()
{
    if (m->options.prefix.isEmpty() && m->options.drives.isEmpty())
        return Result::success();
    return m->buildDrives();
}

Services& World::services()
{
    m->buildFiles();
    return *m->services;
}

Context& World::context()
{
    m->buildContext();
    return *m->context;
}

Result World::needSimulator()
{
    const Result found = m->locate(true);
    if (!found || !m->lock.held())
        return found;
    return offerRegistryUpdate(*m->context, *m->registryClass, m->located);
}

const LocatedSimulator& World::located()
{
    (void)m->locate(false);
    return m->located;
}

Result World::needWriting(const WritingNeeds& needs)
{
    if (m->writingResult)
        return *m->writingResult;
    const auto prepareWriting = [this, &needs]() -> Result {
        Context& all = context();
        if (!m->registryResult)
            return unfit(m->registryResult.text);
        if (Result made = m->actions->makeFolder(m->global.programFolder); !made)
            return unfit(made.text);
        if (Result held = m->lock.tryLock(*m->gate, m->global.programFolder); !held)
            return unfit(held.text);
        m->files->newOperation();
        (void)m->actions->remove(m->global.programFile(u"DEVTEST.LOG"_s));
        all.errors.startWriting();
        const bool fresh = programFolderIsFresh(*m->files, m->global);
        (void)m->locate(false); // a command that needs a simulator says so itself
        if (Result made = createProgramFolders(all); !made)
            return made;
        // Before the first copies: a folder that holds those without a database is a damaged one.
        if (Result opened = m->openDatabase(needs, fresh); !opened)
            return opened;
        (void)keepOriginals(all); // logged; no reason to refuse the command
        return m->located.valid() ? offerRegistryUpdate(all, *m->registryClass, m->located)
                                  : Result::success();
    };
    m->writingResult = prepareWriting();
    m->databaseResult = m->writingResult;
    if (!m->writingResult->ok)
        m->lock.release();
    return *m->writingResult;
}

Result World::needLock()
{
    (void)context();
    return m->files->isFolder(m->global.programFolder)
               ? m->lock.tryLock(*m->gate, m->global.programFolder)
               : Result::success();
}

Result World::needDatabase()
{
    if (m->databaseResult)
        return *m->databaseResult;
    (void)context();
    if (!m->files->isFile(m->global.databaseFile)) {
        m->databaseResult = Result::success();
        if (!programFolderIsFresh(*m->files, m->global)) {
            const Prompt missing = missingDatabase(m->global);
            m->databaseResult = unfit(missing.text.trimmed());
        }
        return *m->databaseResult;
    }
    OpenedDatabase opened = Connection::open(*m->files, m->global.databaseFile, OpenMode::ReadOnly);
    m->database = std::move(opened.connection);
    m->databaseResult = m->database ? Result::success() : unfit(opened.result.text);
    if (m->database && !m->database->isPresentStructure()) {
        const ResultOf<QList<LackingPart>> lacking = m->database->lacking();
        if (!lacking || !lacking->isEmpty())
            m->databaseResult = unfit(
                u"The add-on database '"_s + m->global.databaseFile +
                u"' was made by an earlier version and lacks what this one needs; 'vantrelctl database upgrade' adds it."_s);
    }
    return *m->databaseResult;
}

CareReport World::careForDatabase(const std::function<CareReport(DatabaseCare&)>& work)
{
    m->database.reset();
    DatabaseCare care(*m->context);
    CareReport report = work(care);
    if (Result opened = m->openForWriting(false, false); !opened && report.result)
        report.result = opened;
    return report;
}

const std::optional<CareReport>& World::careTaken() const
{
    return m->care;
}

Connection* World::database()
{
    return m->database.get();
}

const QList<Recovery>& World::recoveries() const
{
    return m->recoveries;
}

RegistryStore& World::registry()
{
    m->buildFiles();
    return *m->registry;
}

CRegistry_Manipulation& World::registryClass()
{
    m->buildContext();
    return *m->registryClass;
}

Result World::saveRegistry()
{
    if (!m->registry || !m->registry->changed())
        return Result::success();
    return m->registry->save(*m->actions);
}

Processes& World::processes()
{
    m->buildFiles();
    if (!m->processes) {
        static int count = 1;
        static char name[] = "vantrelctl";
        static char* arguments[] = {name, nullptr};
        m->application = std::make_unique<QCoreApplication>(count, arguments);
        Processes::Setup setup;
        setup.hostPrefix = m->prefix.hostFolder;
        setup.environment = m->environment;
        m->processes = std::make_unique<Processes>(*m->files, std::move(setup));
    }
    return *m->processes;
}

Catalogue& World::catalogue()
{
    if (!m->catalogue) {
        m->status.text(u"Primary"_s, u"Looking at the installed aircraft..."_s);
        m->catalogue = std::make_unique<Catalogue>(context().global);
        m->catalogue->open(*m->services);
        m->status.clear();
    }
    return *m->catalogue;
}

QString World::userPath(const QString& typed)
{
    (void)m->buildDrives();
    return m->drives.fromUser(typed, m->currentFolder);
}

QString World::userRoot(const QString& typed)
{
    const QString folder = winpath::asFolder(userPath(typed));
    m->buildFiles();
    m->gate->setRoot(RootId::Chosen, folder);
    return folder;
}

JsonStream& World::out()
{
    return m->stream;
}

void World::json(const QJsonValue& document)
{
    if (m->options.json)
        m->stream.value(document);
}

void World::say(const QString& line)
{
    if (m->options.json)
        return;
    m->said += line.toUtf8() + '\n';
    if (m->said.size() >= sayPiece)
        m->beforeOutput();
}

void World::say(const Results& results)
{
    for (const Results::Group& group : results.groups()) {
        if (group.entries.empty())
            continue;
        say(group.name + u':');
        for (const Results::Entry& entry : group.entries)
            say(u"  "_s + entry.text());
    }
}

/// The stated texts of the data layer do not say what is wrong with the database itself.
Result World::Parts::withCause(const Result& failure) const
{
    if (!database || database->trouble() || failure.text.contains(database->trouble().text))
        return failure;
    const QString text = failure.text.trimmed();
    return Result::failure(text + u' ' + database->trouble().text, database->trouble().kind);
}

int World::failElement(const Result& failed)
{
    const Result failure = m->withCause(failed);
    m->beforeOutput();
    console::error(failure.text + u'\n');
    m->stream.error(failure.text, kindName(failure.kind));
    return exitOf(failure.kind);
}

int World::fail(const Result& failed, const QJsonObject& done)
{
    const Result failure = m->withCause(failed);
    m->beforeOutput();
    console::error(failure.text + u'\n');
    if (m->stream.begun()) {
        m->stream.close(failure.text, kindName(failure.kind));
    } else {
        QJsonObject document = done;
        document.insert(
            u"error"_s,
            QJsonObject{{u"text"_s, failure.text}, {u"kind"_s, kindName(failure.kind)}});
        json(document);
    }
    return exitOf(failure.kind);
}

void World::finish()
{
    m->beforeOutput();
    if (m->options.json && !m->stream.begun())
        m->stream.value(QJsonValue(QJsonObject()));
    m->stream.close();
    m->stream.flush();
    if (m->lock.held()) {
        m->optimizeWhenDue();
        if (m->catalogue)
            (void)m->catalogue->save(*m->services);
        (void)saveRegistry();
    }
    if (m->errors)
        m->errors->flush();
    m->beforeOutput();
}

} // namespace vt::cli
