#include "shell/forms/frmControl.h"

#include "platform/Processes.h"
#include "shell/Flying.h"
#include "shell/Settings.h"
#include "shell/forms/ControlArea.h"
#include "shell/forms/ControlStatusBar.h"
#include "shell/forms/ControlToolbar.h"
#include "shell/forms/Icons.h"
#include "shell/forms/ToolWindow.h"
#include "shell/forms/frmProcessResults.h"

#include <QApplication>
#include <QFontDatabase>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace vt {

frmControl::frmControl(Context& context, QtStatus& status)
    : m_context(context), m_status(status), m_area(new ControlArea),
      m_desktopFont(QApplication::font())
{
    setObjectName(u"frmControl"_s);
    setWindowTitle(context.global.names.productTitle);
    setWindowIcon(icons::program());
    setAcceptDrops(true);
    setCentralWidget(m_area);
    buildBars();
    buildOwnCommands();
    applySettings();
    connect(&status, &QtStatus::panelChanged, m_bar, &ControlStatusBar::setPanel);
    connect(&status, &QtStatus::progressChanged, this, [this](qint64 done, qint64 total) {
        m_bar->showProgress(done, total, m_status.timeLeft());
    });
    connect(&status, &QtStatus::idle, m_bar, &ControlStatusBar::hideProgress);
    connect(m_bar, &ControlStatusBar::cancelClicked, &status, &QtStatus::requestCancel);
    qApp->installEventFilter(this);
}

frmControl::~frmControl()
{
    qApp->removeEventFilter(this);
    if (QApplication::font() != m_desktopFont)
        QApplication::setFont(m_desktopFont);
}

void frmControl::buildBars()
{
    m_menu = buildMenu(menuBar());
    menuBar()->setObjectName(u"ControlMenuBar"_s);
    for (QAction* action : std::as_const(m_menu.actions))
        connect(action, &QAction::triggered, this, [this, name = action->objectName()] {
            if (const auto run = m_commands.value(name))
                run();
        });
    connect(m_menu.menus[u"mnuWindow"_s], &QMenu::aboutToShow, this, &frmControl::listChildren);
    m_toolbar = new ControlToolbar(m_menu, this);
    addToolBar(m_toolbar);
    m_bar = new ControlStatusBar(this);
    setStatusBar(m_bar);
    setToys({});
}

void frmControl::buildOwnCommands()
{
    setCommand(u"mnuFile_MainExit"_s, [this] { close(); });
    setCommand(u"mnuStartFlying"_s, [this] { startFlying(); });
    setCommand(u"mnuCascade"_s, [this] { m_area->cascadeSubWindows(); });
    setCommand(u"mnuTile"_s, [this] { m_area->tileSubWindows(); });
    setCommand(u"mnuCloseAll"_s, [this] { m_area->closeAllSubWindows(); });
    setCommand(u"mnuOpenMaximized"_s, [this] {
        toggle(SettingKey::MDIOpenMaximized, m_menu.actions[u"mnuOpenMaximized"_s]->isChecked());
    });
    setCommand(u"mnuToolbar"_s, [this] {
        toggle(SettingKey::ToolbarOn, m_menu.actions[u"mnuToolbar"_s]->isChecked());
    });
}

void frmControl::toggle(SettingKey key, bool on)
{
    (void)m_context.settings.setFlag(key, on); // a setting that cannot be kept holds for this run
    applySettings();
}

void frmControl::applySettings()
{
    Settings& settings = m_context.settings;
    m_menu.actions[u"mnuOpenMaximized"_s]->setChecked(settings.flag(SettingKey::MDIOpenMaximized));
    const bool toolbar = settings.flag(SettingKey::ToolbarOn);
    m_menu.actions[u"mnuToolbar"_s]->setChecked(toolbar);
    m_toolbar->setVisible(toolbar);
    m_toolbar->setRaised(settings.number(SettingKey::StandardToolbarStyle) == 1);
    m_toolbar->setCaptions(settings.flag(SettingKey::ToolbarCaptions));
    m_toolbar->setSubmenus(settings.flag(SettingKey::ShowToolbarSubmenus));
    const qint32 colour = settings.colour(SettingKey::MDIBackgroundColor);
    const QString standard =
        settingDefault(settingRow(SettingKey::MDIBackgroundColor), m_context.global.generation);
    m_area->setGround(QColor(colour & 0xff, (colour >> 8) & 0xff, (colour >> 16) & 0xff),
                      standard == QString::number(colour));
    applyFont();
}

/// The default stands for the desktop's own font. The size is the desktop's in any case.
void frmControl::applyFont()
{
    const QString family = m_context.settings.text(SettingKey::Font);
    QFont font = m_desktopFont;
    if (family != settingDefault(settingRow(SettingKey::Font), m_context.global.generation) &&
        QFontDatabase::hasFamily(family))
        font.setFamily(family);
    if (QApplication::font() != font)
        QApplication::setFont(font);
}

void frmControl::setCommand(const QString& controlName, std::function<void()> run)
{
    QAction* action = m_menu.actions.value(controlName);
    Q_ASSERT_X(action, "frmControl::setCommand", qPrintable(controlName));
    action->setEnabled(static_cast<bool>(run));
    m_commands.insert(controlName, std::move(run));
}

bool frmControl::hasCommand(const QString& controlName) const
{
    return static_cast<bool>(m_commands.value(controlName));
}

void frmControl::setToys(const QList<std::pair<QString, std::function<void()>>>& toys)
{
    QMenu* menu = m_menu.menus[u"mnuToys"_s];
    menu->clear();
    for (const auto& [name, run] : toys)
        menu->addAction(QString(name).replace(u'&', u"&&"_s), this, run);
    menu->menuAction()->setEnabled(!toys.isEmpty());
}

QMenu* frmControl::createPopupMenu()
{
    auto* menu = new QMenu(this);
    QAction* captions = menu->addAction(u"Show &Captions"_s);
    captions->setCheckable(true);
    captions->setChecked(m_context.settings.flag(SettingKey::ToolbarCaptions));
    connect(captions, &QAction::toggled, this, [this](bool on) {
        toggle(SettingKey::ToolbarCaptions, on);
    });
    menu->addAction(m_menu.actions[u"mnuToolbar"_s]);
    return menu;
}

void frmControl::command(const QString& controlName)
{
    if (QAction* action = m_menu.actions.value(controlName))
        action->trigger();
}

void frmControl::installAddon(const QString& source, const InstallationRest& rest)
{
    if (hooks.installAddon)
        hooks.installAddon(source, rest);
}

void frmControl::removeAddons(const QList<qint64>& masterKeys)
{
    if (hooks.removeAddons)
        hooks.removeAddons(masterKeys);
}

void frmControl::workWithAddons(const QList<qint64>& masterKeys)
{
    if (hooks.workWithAddons)
        hooks.workWithAddons(masterKeys);
}

void frmControl::showHelp(const QString& topic)
{
    if (hooks.showHelp)
        hooks.showHelp(topic);
}

void frmControl::showResults(const QString& caption,
                             const Results& results,
                             const AfterResults& after)
{
    const QString key = u"results "_s + QString::number(++m_results);
    openTool(key, {}, [&] {
        QList<NextStep> steps;
        if (after.tryAgain)
            steps.append({u"tryAgain"_s, u"&Try Failed Again"_s, after.tryAgain, true});
        steps.append({u"startFlying"_s, u"Start Fl&ying"_s, [this] { startFlying(); }});
        steps.append({u"showAddons"_s, u"Show A&ddons"_s, [this, addons = after.addons] {
                          workWithAddons(addons);
                      }});
        return new frmProcessResults(m_context, caption, results, steps);
    });
}

void frmControl::startFlying(const QString& file, bool afterChange)
{
    if (!hooks.processes)
        return;
    const Processes& processes = hooks.processes();
    Prompts& prompts = m_context.services.prompts;
    if (afterChange && isSimulatorRunning(m_context, processes)) {
        prompts.ask(restartNotice(m_context.global.names));
        return;
    }
    const Result started = vt::startFlying(m_context, processes, file);
    if (started)
        m_status.text(u"Primary"_s, started.text);
    else if (started.kind != ErrorKind::Declined)
        prompts.ask(announcement(m_context.global.names.productTitle, started.text, Icon::Warning));
}

void frmControl::recordsChanged()
{
    for (ToolWindow* open : tools())
        open->recordsChanged();
}

} // namespace vt
