// The main window: its commands, its children and where they lie, work that takes a while.
#include "shell/Settings.h"
#include "shell/forms/ControlStatusBar.h"
#include "shell/forms/ControlToolbar.h"
#include "shell/forms/ToolWindow.h"
#include "shell/forms/frmControl.h"
#include "support/TestMain.h"
#include "ui/WindowWorld.h"

#include <QApplication>
#include <QDropEvent>
#include <QFontDatabase>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

/// A tool with one button, which may refuse to close.
class SmallTool : public ToolWindow
{
public:
    explicit SmallTool(Context& context, Section section = Section::AddonHistory)
        : ToolWindow(context, section), button(new QPushButton(u"Press"_s, this))
    {
        setWindowTitle(u"Small & Tool"_s);
        QObject::connect(button, &QPushButton::clicked, this, [this] { ++presses; });
    }

    bool mayClose() override { return closes; }

    void recordsChanged() override { ++told; }

    QPushButton* button;
    bool closes = true;
    int presses = 0;
    int told = 0;
};

struct Control
{
    Control()
    {
        window.showAtStart();
        window.resize(1000, 700);
        QApplication::processEvents();
    }

    SmallTool* open(const QString& key = u"small"_s, Section section = Section::AddonHistory)
    {
        return static_cast<SmallTool*>(
            window.openTool(key, u"Opening Small Tool..."_s, [&]() -> ToolWindow* {
                return new SmallTool(world.context(), section);
            }));
    }

    /// The child that holds the only tool.
    QMdiSubWindow* child()
    {
        return qobject_cast<QMdiSubWindow*>(window.tools().constFirst()->parentWidget());
    }

    QAction* entry(const QString& name) { return window.findChild<QAction*>(name); }

    WindowWorld world;
    QtStatus status{world.prompts};
    frmControl window{world.context(), status};
    ControlStatusBar* bar = window.findChild<ControlStatusBar*>();
};

/// "  name|caption" for each entry below a menu, one blank more for each level.
void listMenu(const QMenu* menu, const QString& indent, QStringList& lines)
{
    for (const QAction* action : menu->actions()) {
        if (action->isSeparator())
            continue;
        const QString name = action->menu() ? action->menu()->objectName() : action->objectName();
        lines.append(indent + name + u'|' + action->text());
        if (action->menu())
            listMenu(action->menu(), indent + u' ', lines);
    }
}

} // namespace

class TestControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void menu_isTheWholeTree();
    void entries_withoutHandlerAreDisabled();
    void openedMenu_leavesThePanels();
    void child_comesBackWhereItWas();
    void child_thatStaysKeepsTheWindowOpen();
    void toolbar_followsTheSettings();
    void children_areChangedAndClosedByKeyboard();
    void font_isTheSettingsWhereItIsInstalled();
    void work_takesNoOtherInput();
    void droppedFile_isInstalled();
    void flying_asksAndTells();
    void looks();
};

void TestControl::menu_isTheWholeTree()
{
    Control control;
    QStringList lines;
    for (const QAction* action : control.window.menuBar()->actions()) {
        lines.append(action->text());
        listMenu(action->menu(), u" "_s, lines);
    }
    const QStringList expected = QString::fromLatin1(R"(&File
 mnuFile_InstallAnAddon|&Install an Addon...
 mnuFile_RemoveAnAddon|&Remove an Addon...
 mnuAddons_Import|Imp&ort Addons...
 mnuFile_FSO_Browse|&Browse Folders...
 mnuFile_ProgramInfo|&Program Info...
 mnuToys|Toys
 mnuFile_MainExit|E&xit
&Options
 mnuSettings|&Customize...
&Addons
 mnuAddonWizard|Addon &Wizard...
 mnuWorkWithAllAddons|&All Addons...
 mnuInstalledAddons|&Installed Addons...
 mnuFileCabinet|&File Cabinet...
 mnuAddonHistory|Addo&n History
 mnuAdventures|A&dventures...
 mnuAddons_Aircraft|&Aircraft
  mnuAddons_WorkWithAircraftAddons|Work with Aircraft Addons...
  mnuAircraftSkinsAndRepaints|Work with Aircraft Skins and Repaints...
  mnuEditAircraft|Edit Aircraft...
 mnuAddons_AITraffic|A.I. T&raffic
  mnuAIAirportAndFacilities|Airport and Facilities...
  mnuAIFlightPlans|Flight Plans...
 mnuWorkWithFlights|&Flights...
 mnuMissions|&Missions...
 mnuMovies|&Movies...
 mnuAddons_Panels|&Panels
  mnuWorkWithPanelAddons|Work with Panel Addons...
  mnuEditPanels|Edit Panels...
 mnuAddons_Scenery|&Scenery
  mnuSceneryWorkWith|Work with Scenery Addons...
  mnuScenery|Edit Scenery
 mnuAddons_Sounds|S&ounds
  mnuWorkWithSoundAddons|Work with Sound Addons...
  mnuEditSounds|Edit Sounds...
 mnuTextures|&Textures...
 mnuVideos|&Videos...
&Tools
 mnuOptimizeDatabase|&Optimize Database...
 mnuFS9CFGManager|FS &Configuration Manager
 mnuAITrafficManager|A.&I. Traffic Manager
 mnuRunAFCAD|Run &AFCAD
 mnuTools_TrafficTools|&Traffic Tools
  mnuTrafficTools_Run|Run &Traffic Tools
  mnuCompileAITraffic|Co&mpile A.I. Traffic
  mnuDecompileAITraffic|&Decompile A.I. Traffic
  mnuCollectAirports|Co&llect Airports
  mnuEditTrafficToolsAircraftSource|Edit Aircraft.txt
  mnuEditTrafficToolsAirportsSource|Edit Airports.txt
  mnuEditTrafficToolsFlightPlansSource|Edit FlightPlans.txt
  mnuEditTrafficToolsCollectAirportsSource|Edit Airports_FS200x
 mnuClearDefaultPictures|Clear Default Addon Pictures
 mnuReloadDefaultPictures|&Reload Default Addon Pictures
 mnuStartFlying|&Start Flying!
&Window
 mnuCascade|&Cascade
 mnuTile|&Tile
 mnuCloseAll|Close &All
 mnuOpenMaximized|Always Open &Maximized
 mnuToolbar|Toolbar
&Help
 mnuHelpTopics|&Help Topics
 mnuHowToUseThisProgram|&How to use This Program
 mnuBugReport|Report a Bug
 mnuWebSite|Vantrel Web Site
 mnuFSWebSite|FSWS
 mnuAbout|&About Vantrel...)")
                                     .split(u'\n');
    QCOMPARE(lines, expected);
}

void TestControl::entries_withoutHandlerAreDisabled()
{
    Control control;
    QAction* install = control.entry(u"mnuFile_InstallAnAddon"_s);
    auto* toolbar = control.window.findChild<ControlToolbar*>();
    QAction* tool = toolbar->actions().first();
    QVERIFY(!install->isEnabled() && !tool->isEnabled());
    QVERIFY(!control.window.findChild<QMenu*>(u"mnuToys"_s)->menuAction()->isEnabled());
    int run = 0;
    control.window.setCommand(u"mnuFile_InstallAnAddon"_s, [&run] { ++run; });
    QVERIFY(install->isEnabled() && tool->isEnabled());
    tool->trigger();
    control.window.command(u"mnuFile_InstallAnAddon"_s);
    control.window.chooseFromFileMenu(u'i');
    QCOMPARE(run, 3);
}

void TestControl::openedMenu_leavesThePanels()
{
    Control control;
    control.status.text(u"Primary"_s, u"Ready"_s);
    control.status.text(u"Secondary"_s, u"240 add-ons, 9.1 GB"_s);
    QMenuBar* bar = control.window.menuBar();
    auto* file = control.window.findChild<QMenu*>(u"mnuFile"_s);
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(file->menuAction()).center());
    QTRY_VERIFY(file->isVisible());
    QTest::keyClick(file, Qt::Key_Down);
    QTest::keyClick(file, Qt::Key_Escape);
    QTRY_VERIFY(!file->isVisible());
    QCOMPARE(control.bar->panel(u"Primary"_s), u"Ready"_s);
    QCOMPARE(control.bar->panel(u"Secondary"_s), u"240 add-ons, 9.1 GB"_s);
    auto* secondary = control.window.findChild<QLabel*>(u"Secondary"_s);
    QVERIFY(secondary->isVisible());
    QTRY_VERIFY(secondary->width() >= secondary->sizeHint().width());
    QVERIFY(control.bar->currentMessage().isEmpty());
}

void TestControl::child_comesBackWhereItWas()
{
    Control control;
    SmallTool* tool = control.open();
    QCOMPARE(control.bar->panel(u"Primary"_s), u"Opening Small Tool..."_s);
    QCOMPARE(control.open(), tool); // one of each
    auto* area = control.window.findChild<QMdiArea*>();
    const QRect place(60, 40, 500, 320);
    control.child()->setGeometry(place);
    control.child()->close();
    QTRY_VERIFY(control.window.tools().isEmpty());
    control.open();
    QCOMPARE(control.child()->geometry(), place);
    // A smaller main window shows all of it.
    control.child()->close();
    QTRY_VERIFY(control.window.tools().isEmpty());
    control.window.resize(500, 400);
    QApplication::processEvents();
    control.open();
    QVERIFY(area->viewport()->rect().contains(control.child()->geometry()));
    // Maximised, then closed with the program.
    control.child()->showMaximized();
    QVERIFY(control.window.close());
    QCOMPARE(control.world.context().settings.layoutText(Section::AddonHistory,
                                                         LayoutValue::WindowState),
             u"2"_s);
}

void TestControl::child_thatStaysKeepsTheWindowOpen()
{
    Control control;
    bool left = false;
    control.window.hooks.beforeExit = [&left] { left = true; };
    SmallTool* tool = control.open();
    control.open(u"other"_s, Section::AddonWizard);
    control.window.recordsChanged();
    QCOMPARE(tool->told, 1);
    tool->closes = false;
    QVERIFY(!control.window.close());
    QVERIFY(control.window.isVisible() && !left);
    tool->closes = true;
    QVERIFY(control.window.close());
    QVERIFY(left);
    QCOMPARE(control.world.context().settings.text(SettingKey::MainWindowPlace).count(u','), 3);
}

void TestControl::toolbar_followsTheSettings()
{
    Control control;
    auto* toolbar = control.window.findChild<ControlToolbar*>();
    QVERIFY(toolbar->isVisible());
    QCOMPARE(toolbar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    control.entry(u"mnuToolbar"_s)->trigger();
    QVERIFY(!toolbar->isVisible());
    QVERIFY(!control.world.context().settings.flag(SettingKey::ToolbarOn));
    control.entry(u"mnuToolbar"_s)->trigger();
    QVERIFY(toolbar->isVisible());
    // At the least size nothing hides behind the toolbar's end.
    control.window.resize(800, 600);
    QApplication::processEvents();
    for (QAction* action : toolbar->actions())
        if (!action->isSeparator())
            QVERIFY2(toolbar->widgetForAction(action)->isVisible(), qPrintable(action->text()));
    control.entry(u"mnuOpenMaximized"_s)->trigger();
    QVERIFY(control.world.context().settings.flag(SettingKey::MDIOpenMaximized));
    control.window.showAtStart();
    QVERIFY(control.window.isMaximized());
}

void TestControl::children_areChangedAndClosedByKeyboard()
{
    Control control;
    const SmallTool* first = control.open();
    auto* area = control.window.findChild<QMdiArea*>();
    control.open(u"another"_s);
    QApplication::setActiveWindow(&control.window);
    const auto press = [&](Qt::Key key) {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : area, key, Qt::ControlModifier);
    };
    press(Qt::Key_Tab);
    QTest::keyRelease(area, Qt::Key_Control);
    QTRY_COMPARE(area->currentSubWindow()->widget(), first);
    press(Qt::Key_F4);
    QTRY_COMPARE(control.window.tools().size(), 1);
    press(Qt::Key_W);
    QTRY_VERIFY(control.window.tools().isEmpty());
}

void TestControl::font_isTheSettingsWhereItIsInstalled()
{
    Control control;
    Settings& settings = control.world.context().settings;
    const QFont desktop = QApplication::font();
    QString other;
    for (const QString& family : QFontDatabase::families())
        if (family != desktop.family() && other.isEmpty())
            other = family;
    QVERIFY(!other.isEmpty());
    QVERIFY(settings.setText(SettingKey::Font, other));
    QVERIFY(settings.setNumber(SettingKey::StandardToolbarStyle, 1));
    control.window.applySettings();
    QCOMPARE(QApplication::font().family(), other);
    QCOMPARE(QApplication::font().pointSizeF(), desktop.pointSizeF());
    QTRY_COMPARE(control.bar->font().family(), other);
    const auto* toolbar = control.window.findChild<ControlToolbar*>();
    const auto* button =
        qobject_cast<QToolButton*>(toolbar->widgetForAction(toolbar->actions().constFirst()));
    QVERIFY(!button->autoRaise());
    QVERIFY(settings.setText(SettingKey::Font, u"No Such Face"_s));
    QVERIFY(settings.setNumber(SettingKey::StandardToolbarStyle, 0));
    control.window.applySettings();
    QCOMPARE(QApplication::font(), desktop);
    QVERIFY(button->autoRaise());
}

void TestControl::work_takesNoOtherInput()
{
    Control control;
    SmallTool* tool = control.open();
    auto* progress = control.window.findChild<QProgressBar*>(u"picControlProgressBar"_s);
    auto* cancel = control.window.findChild<QToolButton*>(u"cancelWork"_s);
    QVERIFY(!progress->isVisible());
    {
        const Working working(control.window);
        QVERIFY(!control.window.menuBar()->isEnabled());
        QTest::mouseClick(tool->button, Qt::LeftButton);
        QVERIFY(!control.window.close());
        control.world.prompts.expect(u"Do you really want to abort?"_s, Button::No);
        QVERIFY(!control.status.cancelled());
        QTRY_VERIFY((control.status.progress(30, 120), progress->isVisible()));
        QCOMPARE(progress->value() * 4, progress->maximum());
        QCOMPARE(cancel->text(), u"Click here to cancel."_s);
        QTest::mouseClick(cancel, Qt::LeftButton);
        control.world.prompts.expect(u"Confirm Abort"_s, Button::Yes);
        QVERIFY(control.status.cancelled());
    }
    QVERIFY(control.window.menuBar()->isEnabled() && !progress->isVisible());
    QCOMPARE(tool->presses, 0);
    QTest::mouseClick(tool->button, Qt::LeftButton);
    QCOMPARE(tool->presses, 1);
}

void TestControl::droppedFile_isInstalled()
{
    Control control;
    QStringList sources;
    control.window.hooks.installAddon = [&](const QString& source, const InstallationRest&) {
        sources += source;
    };
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(control.world.host(u"prefix/drive_c/swift.zip"_s))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&control.window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop({10.0, 10.0}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&control.window, &drop);
    QVERIFY(sources.isEmpty()); // the drop itself is over first
    QTRY_COMPARE(sources, QStringList{u"C:\\swift.zip"_s});
    QMimeData text;
    text.setText(u"swift.zip"_s);
    QDragEnterEvent other({10, 10}, Qt::CopyAction, &text, Qt::LeftButton, {});
    other.ignore();
    QApplication::sendEvent(&control.window, &other);
    QVERIFY(!other.isAccepted());
}

void TestControl::flying_asksAndTells()
{
    Control control;
    control.window.hooks.processes = [&]() -> const Processes& {
        return control.world.session->processes();
    };
    control.world.prompts.expect(u"Are you sure you want to start Flight Simulator X now?"_s,
                                 Button::No);
    control.entry(u"mnuStartFlying"_s)->trigger();
    QCOMPARE(control.world.prompts.asked.size(), 1);
    // A file that is not there is told, and nothing starts.
    control.world.prompts.expect(u"'C:\\none.flt' was not found"_s, Button::Ok);
    control.window.startFlying(u"C:\\none.flt"_s);
}

void TestControl::looks()
{
    Control control;
    for (const MenuRow& row : menuRows())
        if (!row.menu)
            control.window.setCommand(QString::fromLatin1(row.name), [] {});
    control.status.text(u"Secondary"_s, u"240 add-ons, 9.1 GB"_s);
    control.status.text(u"Primary"_s, u"Ready"_s);
    screenshot(control.window, u"control-empty-1280x800"_s, {1280, 800});
    control.open();
    control.bar->offerCancel(true);
    control.bar->showProgress(300, 1000, u"about 40 seconds left"_s);
    control.bar->setPanel(
        u"Primary"_s,
        u"Installing C:\\Program Files (x86)\\Microsoft Games\\Microsoft Flight Simulator X\\SimObjects\\Airplanes\\Zeta 5\\texture\\zeta_t.bmp"_s);
    const QStringList files = screenshot(control.window, u"control-800x600"_s, {800, 600});
    QCOMPARE(sizeOf(files.value(0)), QSize(800, 600));
}

} // namespace vt::test

using vt::test::TestControl;
VT_TEST_CLASS(TestControl)

#include "test_control.moc"
