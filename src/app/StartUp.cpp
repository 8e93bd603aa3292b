#include "app/StartUp.h"

#include "addondb/DatabaseCare.h"
#include "app/Wiring.h"
#include "import/CAddonImportMgr.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"
#include "shell/forms/ControlStatusBar.h"
#include "shell/forms/SplashSound.h"
#include "shell/forms/frmSplashFSX.h"
#include "shell/startup/CommandLine.h"
#include "shell/startup/DesktopEntry.h"
#include "shell/startup/Preparation.h"
#include "ui/forms/PictureCommands.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFontDatabase>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace vt::app {

namespace {

constexpr int wrongUsage = 2;
constexpr int notFit = 3;
constexpr int afterOptimizingMs = 1000;
const QSize leastScreen(800, 600);

} // namespace

StartUp::StartUp(Options options) : m_options(std::move(options))
{
    screenSize = [] { return QGuiApplication::primaryScreen()->size(); };
}

StartUp::~StartUp() = default;

bool StartUp::end(int status)
{
    m_exit = status;
    return false;
}

bool StartUp::refuse(const QString& caption, const Result& why)
{
    m_prompts.ask(announcement(caption, why.text.trimmed(), Icon::Critical));
    return end(why.kind == ErrorKind::Usage ? wrongUsage : notFit);
}

void StartUp::leave()
{
    constexpr int triesAgainAfterMs = 200;
    if (m_status.working() || QApplication::activeModalWidget())
        QTimer::singleShot(triesAgainAfterMs, m_window.get(), [this] { leave(); });
    else
        m_window->close();
}

void StartUp::stage(const QString& name)
{
    m_session->context().global.currentProcedure = name;
}

bool StartUp::Main()
{
    m_session = std::make_unique<Session>(m_options.session, m_prompts, m_status);
    m_session->remark = [this](const QString& sentence) { m_remarks.append(sentence); };
    if (Result fit = m_session->prepare(); !fit)
        return refuse(u"Vantrel"_s, fit);
    stage(u"Sub Main"_s);
    GlobalRecord& global = m_session->context().global;
    global.fileToInstall = fileToInstall(m_options.arguments,
                                         optionsWithValue(),
                                         m_session->services().files.drives(),
                                         QDir::currentPath());
    return isOnlyInstance() && Application_Startup();
}

/// Otherwise the other one gets the file, and the keys that make it take it.
bool StartUp::isOnlyInstance()
{
    const Result held = m_session->hold();
    Services& services = m_session->services();
    const GlobalRecord& global = m_session->context().global;
    if (held) {
        (void)takeStartupFile(services.files, services.actions, global); // nobody waits for it
        listenForOthers();
        return true;
    }
    if (!services.files.isFolder(global.programFolder))
        return refuse(global.names.productTitle, held);
    Result written = Result::success();
    const bool handed = handOver(services.gate, [&] {
        if (!global.fileToInstall.isEmpty())
            written = writeStartupFile(services.actions, global, global.fileToInstall);
    });
    if (!written)
        return refuse(global.names.productTitle, written);
    return handed ? end(0) : refuse(global.names.productTitle, held);
}

void StartUp::listenForOthers()
{
    m_others = std::make_unique<SecondStart>();
    m_others->ready = [this] {
        return m_window && m_window->isVisible() && !m_status.working() &&
               !QApplication::activeModalWidget();
    };
    QObject::connect(m_others.get(), &SecondStart::activated, m_others.get(), [this] {
        m_window->bringForward();
    });
    QObject::connect(
        m_others.get(), &SecondStart::menuKey, m_others.get(), [this](QChar menu, QChar entry) {
            if (menu == u'f')
                m_window->chooseFromFileMenu(entry);
        });
    (void)m_others->listen(m_session->services().gate); // without it a second start says who runs
}

bool StartUp::Application_Startup()
{
    const QString title = m_session->context().global.names.productTitle;
    Settings& settings = m_session->context().settings;
    settings.fontInstalled = [](const QString& family) { return QFontDatabase::hasFamily(family); };
    settings.Registry_LoadSettings();
    m_window = std::make_unique<frmControl>(m_session->context(), m_status);
    wire(*m_window, *m_session);
    stage(u"Application_Startup : ConfigureFlightSimulator"_s);
    if (Result found = m_session->needSimulator(); !found)
        return end(notFit); // the user was asked, and gave no folder
    stage(u"Application_Startup : ConfigureFlightSimulator (END)"_s);
    if (Result made = m_session->prepareFolders(); !made)
        return refuse(title, made);
    if (!openDatabase())
        return false;
    showWindow();
    if (!databaseHealth())
        return false;
    tellRemarks();
    importAtStartup();
    screenResolution();
    firstWindow();
    fileManagerEntry();
    defaultPictures();
    return true;
}

/// Verbs in the program's registry; entries of the user's desktop only for the program folder that
/// a start without options takes: so file managers start it.
void StartUp::fileManagerEntry()
{
    stage(u"Application_Startup : Explorer commands"_s);
    Context& context = m_session->context();
    const bool on = context.settings.flag(SettingKey::WindowsExplorerContextMenuOn);
    CRegistry_Manipulation& registry = m_session->registryClass();
    if (!(on ? registerExplorerVerbs(registry, context.global)
             : removeExplorerVerbs(registry, context.global)))
        context.errors.report(u"Application_Startup : Explorer commands"_s,
                              u"The registry did not take the commands for archives."_s);
    if (!m_options.session.home.isEmpty())
        return;
    QFile icon(u":/vantrel/icons/vantrel.svg"_s);
    const bool opened = icon.open(QIODevice::ReadOnly);
    const desktopentry::Surroundings surroundings{
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
        QCoreApplication::applicationFilePath(),
        opened ? icon.readAll() : QByteArray()};
    const ResultOf<bool> kept = desktopentry::apply(context, surroundings);
    if (!kept)
        context.errors.report(u"Application_Startup : Desktop entry"_s, kept.text);
    else if (*kept) // desktops that keep a list of types; the others look for themselves
        QProcess::startDetached(u"update-desktop-database"_s,
                                {u"-q"_s, surroundings.dataHome + u"/applications"_s});
}

/// What the first window said is still there to be read afterwards.
void StartUp::defaultPictures()
{
    const QString said = m_window->findChild<ControlStatusBar*>()->panel(u"Primary"_s);
    assignDefaultPicturesOnce(*m_window, *m_session);
    m_status.text(u"Primary"_s, said);
}

bool StartUp::openDatabase()
{
    stage(u"Application_Startup : Open database"_s);
    const GlobalRecord& global = m_session->context().global;
    const Result opened = m_session->openDatabase();
    if (opened)
        return true;
    if (!m_session->services().files.isFile(global.databaseFile)) {
        m_prompts.ask(missingDatabase(global));
        return end(notFit);
    }
    return refuse(global.names.productTitle, opened);
}

void StartUp::showWindow()
{
    m_prompts.setMainWindow(m_window.get());
    m_window->hooks.beforeExit = [this] {
        m_session->close();
        tellRemarks();
    };
    m_window->showAtStart();
    Context& context = m_session->context();
    if (context.settings.flag(SettingKey::ShowSplashScreen)) {
        frmSplashFSX::showOver(m_window.get(), context);
        if (context.settings.flag(SettingKey::PlaySplashSound))
            splashsound::play(context);
    }
    QCoreApplication::processEvents(); // painted before anything else is looked at
}

bool StartUp::databaseHealth()
{
    stage(u"Application_Startup : Database health"_s);
    if (!damageCheck() || (m_session->database() && !sizeCheck()))
        return false;
    if (Result ready = m_session->bringUpToDate(); !ready)
        return refuse(m_session->context().global.names.productTitle, ready);
    return true;
}

bool StartUp::damageCheck()
{
    Context& context = m_session->context();
    const DatabaseHealth health =
        vt::databaseHealth(context.services.files, context.global.databaseFile);
    if (health.fault != DatabaseFault::Damaged)
        return true;
    const Button answer =
        m_prompts.ask(databaseDamagePrompt(context.global.names.productTitle, health.error));
    if (answer == Button::Cancel)
        return end(0);
    if (answer != Button::Yes)
        return true;
    const bool opened = m_session->database() != nullptr;
    const CareReport report = [&] {
        const Working working(*m_window);
        return m_session->careForDatabase(
            [opened](DatabaseCare& care) { return opened ? care.optimize(true) : care.repair(); });
    }();
    if (!report.result)
        return refuse(context.global.names.productTitle, report.result);
    if (Result finished = m_session->openDatabase(); !finished)
        return refuse(context.global.names.productTitle, finished);
    return true;
}

bool StartUp::sizeCheck()
{
    Context& context = m_session->context();
    const qint64 bytes =
        context.services.files.info(context.global.databaseFile).value_or(FileInfo{}).size;
    const std::optional<Prompt> prompt = databaseSizePrompt(context.global.names, bytes);
    if (!prompt)
        return true;
    const Button answer = m_prompts.ask(*prompt);
    if (answer == Button::Cancel)
        return end(0);
    if (answer != Button::Yes)
        return true;
    const CareReport report = [&] {
        const Working working(*m_window);
        return m_session->careForDatabase([](DatabaseCare& care) { return care.optimize(false); });
    }();
    if (!report.result)
        m_prompts.ask(announcement(
            context.global.names.productTitle, report.result.text.trimmed(), Icon::Warning));
    pauseAfterOptimizing();
    return true;
}

/// The window is drawn and can be moved meanwhile, but no command begins before the start is over;
/// there is nothing to cancel either, so that no button offers it.
void StartUp::pauseAfterOptimizing()
{
    m_status.beginWork();
    QEventLoop pause;
    QTimer::singleShot(afterOptimizingMs, Qt::PreciseTimer, &pause, &QEventLoop::quit);
    pause.exec();
    m_status.endWork();
}

/// What was done without being asked for.
void StartUp::tellRemarks()
{
    if (m_remarks.isEmpty())
        return;
    const QString text = m_remarks.join(u"\n\n"_s);
    m_remarks.clear();
    m_prompts.ask(
        announcement(m_session->context().global.names.productTitle, text, Icon::Information));
}

void StartUp::importAtStartup()
{
    Context& context = m_session->context();
    if (!context.settings.flag(SettingKey::SearchForNewAddonsDuringStartup))
        return;
    CAddonImportMgr import(context, m_session->catalogue(), m_session->database());
    if (!import.Addons_ImportAtStartup())
        return;
    const Working working(*m_window);
    const Result imported = import.Addon_Install_ImportGroups(m_session->processes());
    if (imported || imported.kind != ErrorKind::Declined)
        m_window->showResults(u"Import Results"_s, import.results());
    m_window->recordsChanged();
}

void StartUp::screenResolution()
{
    Context& context = m_session->context();
    const QSize screen = screenSize();
    if (!context.settings.flag(SettingKey::CheckScreenRes) ||
        (screen.width() >= leastScreen.width() && screen.height() >= leastScreen.height()))
        return;
    if (m_prompts.ask(smallScreen(context.global.names)) == Button::Yes)
        m_window->showHelp(u"screen"_s);
}

void StartUp::firstWindow()
{
    Context& context = m_session->context();
    const QString file = context.global.fileToInstall;
    if (!file.isEmpty()) {
        m_window->installAddon(file);
        return;
    }
    openFirst(*m_window, *m_session, context.settings.number(SettingKey::OpenWith));
}

} // namespace vt::app
