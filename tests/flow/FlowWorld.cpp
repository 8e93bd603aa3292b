#include "flow/FlowWorld.h"

#include "addondb/JournalTable.h"
#include "demo/SampleAddons.h"
#include "platform/WinPath.h"
#include "shell/OuterLinks.h"
#include "shell/startup/Preparation.h"
#include "traffic/CTrafficTools.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt::test {

QString temporaryTemplate()
{
    const QFileInfo memory(u"/dev/shm"_s);
    const QString base = memory.isWritable() ? memory.filePath() : QDir::tempPath();
    return base + u"/vantrel-test-XXXXXX"_s;
}

FlowWorld::FlowWorld(const QString& folder)
{
    const QString prefix = folder + u"/prefix"_s;
    if (QFileInfo::exists(prefix)) {
        demo = demoSimulatorAt(prefix);
    } else {
        ResultOf<DemoSimulator> written = writeDemoSimulator(prefix);
        if (!written)
            qFatal("%s", qPrintable(written.text));
        demo = *written;
    }
    QDir().mkpath(folder + u"/program"_s);
    drives.set(u'C', prefix + u"/drive_c"_s);
    files.newOperation();
    global.generation = FSX;
    global.names = displayNames(FSX);
    global.setProgramFolder(winpath::asFolder(drives.toWindows(folder + u"/program"_s)));
    global.setSimulatorFolder(demo.simulatorFolder);
    global.sceneryCfgFile = demo.allUsersFolder + u"Scenery.cfg"_s;
    global.mainConfigFolder = demo.userDataFolder;
    gate.setRoot(RootId::Program, global.programFolder);
    gate.setRoot(RootId::Simulator, demo.simulatorFolder);
    gate.setRoot(RootId::AllUsersConfig, demo.allUsersFolder);
    gate.setRoot(RootId::UserConfig, demo.userDataFolder);
    gate.setRoot(RootId::Documents, demo.documentsFolder);
    (void)registry.load(files, registryFile(global));
    settings.Registry_LoadSettings();
    outerlinks::attach(gate, settings);
    (void)CTrafficTools(context).Tool_Find();
    for (const QString& own : {global.originalsFolder,
                               global.addonsFolder,
                               global.backupsFolder,
                               global.cabinetFolder,
                               global.settingsFolder,
                               global.tempFolder})
        QDir().mkpath(QString::fromUtf8(files.hostPath(own)));
    files.newOperation();
}

FlowWorld::~FlowWorld()
{
    stop();
}

Result FlowWorld::start()
{
    OpenedDatabase opened = files.isFile(global.databaseFile)
                                ? Connection::open(files, global.databaseFile, OpenMode::ReadWrite)
                                : Connection::create(gate, global.databaseFile);
    if (!opened.connection)
        return opened.result;
    database = std::move(opened.connection);
    JournalTable journal(*database, gate);
    ResultOf<QList<Recovery>> done = recover(journal, gate);
    if (!done)
        return done.error();
    recoveries = *done;
    return Result::success();
}

void FlowWorld::stop()
{
    if (database)
        (void)database->close();
    database.reset();
}

ResultOf<qint64> FlowWorld::install(const QString& hostSource, const InstallOptions& options)
{
    files.newOperation();
    CAddonInstallationDetails details(context);
    if (Result prepared = details.prepare(drives.toWindows(hostSource), options); !prepared)
        return prepared;
    CAddonInstaller installer(context, *database, details);
    const bool reached = installer.Install_Begin();
    results = installer.results();
    if (!reached)
        return installer.failure();
    return installer.masterKey();
}

Result FlowWorld::complete(qint64 key, const QString& hostSource, const QStringList& onlyFiles)
{
    files.newOperation();
    const ResultOf<RecordedAddon> recorded = RecordedAddon::load(*database, key);
    if (!recorded)
        return recorded.error();
    CAddonInstallationDetails details(context);
    if (Result prepared =
            details.prepareRest(*recorded, drives.toWindows(hostSource), {}, onlyFiles);
        !prepared)
        return prepared;
    CAddonInstaller installer(context, *database, details);
    const bool reached = installer.Install_Begin();
    results = installer.results();
    anyFailed = installer.failedFiles() > 0;
    return reached ? Result::success() : installer.failure();
}

Result FlowWorld::reinstall(qint64 key, const InstallOptions& options, const QString& hostSource)
{
    files.newOperation();
    ResultOf<RecordedAddon> recorded = RecordedAddon::load(*database, key);
    if (!recorded)
        return recorded.error();
    const ResultOf<QString> source = reinstallationSource(
        context, *recorded, hostSource.isEmpty() ? QString() : drives.toWindows(hostSource));
    if (!source)
        return source.error();
    CAddonInstallationDetails details(context);
    if (Result prepared = details.prepareAgain(*recorded, *source, options); !prepared)
        return prepared;
    CAddonInstaller installer(context, *database, details);
    installer.simulatorIsRunning = [this] { return simulatorRuns; };
    const bool reached = installer.Reinstall_Begin();
    results = installer.results();
    anyFailed = installer.failedFiles() > 0;
    return reached ? Result::success() : installer.failure();
}

Result FlowWorld::remove(qint64 key, const RemovalOptions& options)
{
    CAddonRemover remover(context, *database, key, options);
    const bool reached = remover.Remove_Begin();
    results = remover.results();
    anyFailed = remover.anyFailed();
    return reached ? Result::success() : remover.failure();
}

QString FlowWorld::choose(const QString& hostFolder)
{
    QDir().mkpath(hostFolder);
    files.newOperation();
    const QString folder = winpath::asFolder(drives.toWindows(hostFolder));
    gate.setRoot(RootId::Chosen, folder);
    return folder;
}

TreeSnapshot FlowWorld::tree() const
{
    return hashTree(demo.prefixHost);
}

QString FlowWorld::simulatorPath(const QString& relative) const
{
    return demo.simulatorFolder + relative;
}

QString FlowWorld::hostPath(const QString& relative) const
{
    return QString::fromUtf8(files.hostPath(demo.simulatorFolder + relative));
}

int countPoints(FlowWorld& world, const std::function<void(FlowWorld&)>& work)
{
    int points = 0;
    world.gate.faultHook = [&](const char*, const QByteArray&) {
        ++points;
        return 0;
    };
    work(world);
    world.gate.faultHook = {};
    return points;
}

bool runAndEnd(const QString& folder,
               int n,
               const std::function<void(FlowWorld&)>& work,
               const std::function<void(const char*)>& before)
{
    const pid_t child = fork();
    if (child == 0) {
        FlowWorld world(folder);
        world.prompts.defaultsBeyondQueue = true;
        if (!world.start())
            _exit(3);
        world.gate.faultHook = [&, left = n](const char* action, const QByteArray&) mutable {
            if (before)
                before(action);
            if (--left == 0)
                _exit(9);
            return 0;
        };
        work(world);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 9)
        return true;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        qFatal("the child process failed");
    return false;
}

bool startAndEnd(const QString& folder, int n)
{
    const pid_t child = fork();
    if (child == 0) {
        FlowWorld world(folder);
        world.gate.faultHook = [left = n](const char*, const QByteArray&) mutable {
            if (--left == 0)
                _exit(9);
            return 0;
        };
        _exit(world.start() ? 0 : 3);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 9;
}

QStringList strayStaging(const TreeSnapshot& tree)
{
    QStringList out;
    for (auto it = tree.cbegin(); it != tree.cend(); ++it) {
        if (it.key().contains(u"~vt"))
            out.push_back(it.key());
    }
    return out;
}

QString writePack(const QString& hostFolder, const QString& name, const DemoFiles& files)
{
    QDir().mkpath(hostFolder);
    const QString path = hostFolder + u'/' + name + u".zip"_s;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("%s cannot be written", qPrintable(path));
    file.write(SampleAddon{name, {}, files}.archive());
    return path;
}

void copyTree(const QString& from, const QString& to)
{
    if (QProcess::execute(u"cp"_s, {u"-a"_s, from, to}) != 0)
        qFatal("%s cannot be copied", qPrintable(from));
}

} // namespace vt::test
