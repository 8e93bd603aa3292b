// What the menus do without a window of their own: default pictures, outside tools, web addresses.
#include "addondb/Pictures.h"
#include "app/StartUp.h"
#include "demo/StandIns.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "shell/forms/ControlStatusBar.h"
#include "shell/forms/frmHelp.h"
#include "support/StandInTool.h"
#include "support/TestMain.h"
#include "ui/AccessKeys.h"
#include "ui/WiredWindow.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

/// An aircraft and scenery of the simulator's own, with pictures, in a world without them.
void addStockContent(const WindowWorld& world)
{
    const QString airplanes = world.demo.simulatorHost + u"/SimObjects/Airplanes/"_s;
    writeHostFile(airplanes + u"C172/aircraft.cfg"_s,
                  "[fltsim.0]\r\ntitle=Stock One\r\nsim=c172\r\ntexture=\r\npanel=\r\n\r\n"
                  "[fltsim.1]\r\ntitle=Stock Two\r\nsim=c172\r\ntexture=2\r\npanel=\r\n\r\n"
                  "[fltsim.2]\r\ntitle=Repaint\r\nsim=c172\r\ntexture=2\r\npanel=\r\n"
                  "vt_texture_addon_master_key=77\r\n");
    writeHostFile(airplanes + u"C172/texture/thumbnail.jpg"_s, standins::picture(400, 200, 1));
    writeHostFile(airplanes + u"C172/Texture.2/Thumbnail.jpg"_s, standins::picture(64, 32, 2));
    writeHostFile(airplanes + u"C172/panel/panel.cfg"_s,
                  "[Window Titles]\r\nWindow00=Main\r\n[Window00]\r\nfile=gone.bmp\r\n"
                  "[Window01]\r\nfile=main.bmp\r\n");
    writeHostFile(airplanes + u"C172/panel/main.bmp"_s, standins::picture(64, 48, 3));
    writeHostFile(world.demo.simulatorHost + u"/Scenery/World/preview.png"_s,
                  standins::picture(32, 32, 4));
}

/// Takes what is handed to the desktop.
class Opened : public QObject
{
    Q_OBJECT

public:
    Opened() { QDesktopServices::setUrlHandler(u"https"_s, this, "take"); }

    ~Opened() override { QDesktopServices::unsetUrlHandler(u"https"_s); }

    QStringList addresses;

public Q_SLOTS:

    void take(const QUrl& url) { addresses += url.toString(); }
};

} // namespace

class TestMenuCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    /// At the first start, by the menu away and back again; the user's own and an add-on's stay.
    void defaultPictures_ofTheSimulatorsOwn()
    {
        WindowWorld world;
        addStockContent(world);
        const GlobalRecord global = world.context().global;
        const QString cfg = global.aircraftFolder + u"C172\\aircraft.cfg"_s;
        const auto host = [&](const QString& thumbnail) {
            return world.host(
                u"home/"_s +
                winpath::relativeTo(thumbnail, global.programFolder).replace(u'\\', u'/'));
        };
        const QString first = host(pictures::itemThumbnail(global, cfg, u"fltsim.0"_s));
        const QString second = host(pictures::itemThumbnail(global, cfg, u"fltsim.1"_s));
        const QString repaint = host(pictures::itemThumbnail(global, cfg, u"fltsim.2"_s));
        const QString panel = host(pictures::itemThumbnail(
            global, global.aircraftFolder + u"C172\\panel\\panel.cfg"_s, {}));
        const QString scenery =
            host(pictures::sceneryThumbnail(global, global.sceneryFolder + u"World\\"_s));
        writeHostFile(second, "the user's own");
        world.session->close();
        world.session.reset();

        app::Options options;
        options.session.home = world.host(u"home"_s);
        options.session.prefix = world.host(u"prefix"_s);
        app::StartUp program(options);
        program.screenSize = [] { return QSize(1280, 800); }; // whatever the scale
        QVERIFY(program.Main());
        const QStringList assigned{first, panel, scenery};
        for (const QString& file : assigned)
            QVERIFY2(pictures::isDefault(readHostFile(file)), qPrintable(file));
        QCOMPARE(QImage(first).size(), QSize(320, 160)); // the remark harms no reader
        QCOMPARE(readHostFile(second), QByteArray("the user's own"));
        QVERIFY(!QFile::exists(repaint));

        frmControl* window = program.window();
        auto* bar = window->findChild<ControlStatusBar*>();
        window->command(u"mnuClearDefaultPictures"_s);
        QCOMPARE(bar->panel(u"Primary"_s),
                 u"3 default pictures were cleared; 1 picture of your own choice stayed."_s);
        for (const QString& file : assigned)
            QVERIFY2(!QFile::exists(file), qPrintable(file));
        QVERIFY(QFile::exists(second));
    }

    void reloading_isAskedAbout()
    {
        WiredWindow wired;
        addStockContent(wired.world);
        wired.world.prompts.expect(
            u"Pictures assigned to third-party addons will not be affected.\nAre you sure you want to reload default addon pictures?"_s,
            Button::No);
        wired.window.command(u"mnuReloadDefaultPictures"_s);
        QVERIFY(!QFile::exists(wired.world.host(u"home/Images/Items"_s)));
        // One that cannot be read is told, the others come.
        writeHostFile(wired.world.demo.simulatorHost + u"/Scenery/World/preview.png"_s,
                      "no picture");
        wired.world.prompts.expect(u"Are you sure"_s, Button::Yes);
        wired.world.prompts.expect(u"preview.png"_s, Button::Ok);
        wired.window.command(u"mnuReloadDefaultPictures"_s);
        QVERIFY(wired.world.prompts.asked.constLast().text.startsWith(
            u"3 default pictures were assigned"_s));
    }

    void webSites_areTheSettings()
    {
        WiredWindow wired;
        Opened opened;
        Settings& settings = wired.world.context().settings;
        wired.window.command(u"mnuBugReport"_s);
        auto* help = qobject_cast<frmHelp*>(wired.window.tool(u"help"_s));
        QVERIFY(help);
        QCOMPARE(help->shownTopic(), u"report"_s);
        QVERIFY(settings.setText(SettingKey::WebSite, u"https://example.org/vantrel"_s));
        wired.window.command(u"mnuWebSite"_s);
        QCOMPARE(opened.addresses, QStringList{u"https://example.org/vantrel"_s});
        // Nothing that could start a program.
        QVERIFY(settings.setText(SettingKey::SimulatorWebSite, u"file:///usr/bin/true"_s));
        wired.world.prompts.expect(u"must begin with https:"_s, Button::Ok);
        wired.window.command(u"mnuFSWebSite"_s);
        QCOMPARE(opened.addresses.size(), 1);
    }

    void outsideTools_areRunOrMissed()
    {
        WiredWindow wired;
        WindowWorld& world = wired.world;
        Settings& settings = world.context().settings;
        QVERIFY(settings.setText(SettingKey::AFCADFolder, u"C:\\AFCAD2\\"_s));
        world.prompts.expect(u"C:\\AFCAD2\\AFCAD.exe not found."_s, Button::Ok);
        wired.window.command(u"mnuRunAFCAD"_s);
        // Not known yet, and not named: no box after the question.
        world.prompts.expectText(u"Please specify the location where Traffic Tools"_s, {});
        wired.window.command(u"mnuCollectAirports"_s);

        putTrafficTools(world.host(u"prefix/drive_c/TT"_s));
        QVERIFY(settings.setText(SettingKey::TrafficToolsFolder, u"C:\\TT\\"_s));
        wired.window.command(u"mnuTrafficTools_Run"_s);
        world.prompts.expect(u"'C:\\TT\\Aircraft.txt' was not found."_s, Button::Ok);
        wired.window.command(u"mnuEditTrafficToolsAircraftSource"_s);
        world.prompts.expect(u"keeps no list of collected airports for"_s, Button::Ok);
        wired.window.command(u"mnuEditTrafficToolsCollectAirportsSource"_s);
        QVERIFY(world.status.texts.contains(u"Primary|Waiting for Traffic Tools to finish..."_s));
    }

    /// Alt and a letter opens a menu, or presses one button: never both, never two.
    void accessKeys_leaveTheMenusAlone()
    {
        WiredWindow wired;
        wired.window.resize(1280, 800);
        (void)wired.world.install(u"swift-aircraft"_s);
        QStringList clashes;
        for (const QString& entry : {u"mnuWorkWithAllAddons"_s,
                                     u"mnuAddonHistory"_s,
                                     u"mnuFile_FSO_Browse"_s,
                                     u"mnuFile_ProgramInfo"_s,
                                     u"mnuHelpTopics"_s}) {
            wired.window.command(entry);
            QApplication::processEvents();
            clashes += accessKeyClashes(*wired.window.tools().constFirst());
            wired.window.command(u"mnuCloseAll"_s);
            QTRY_VERIFY(wired.window.tools().isEmpty());
        }
        wired.window.showResults(u"Results"_s, Results({u"Installed"_s}));
        QApplication::processEvents();
        clashes += accessKeyClashes(*wired.window.tools().constFirst());
        QVERIFY2(clashes.isEmpty(), qPrintable(clashes.join(u'\n')));
    }

    /// Every entry does something, or its window comes later.
    void entries_areEnabledButThoseOfLaterWindows()
    {
        WiredWindow wired;
        QStringList disabled;
        for (const MenuRow& row : menuRows())
            if (!row.menu && !wired.window.hasCommand(QString::fromLatin1(row.name)))
                disabled += QString::fromLatin1(row.name);
        const QStringList later{u"mnuAddons_Import"_s,
                                u"mnuSettings"_s,
                                u"mnuAddonWizard"_s,
                                u"mnuEditAircraft"_s,
                                u"mnuEditPanels"_s,
                                u"mnuScenery"_s,
                                u"mnuEditSounds"_s,
                                u"mnuFS9CFGManager"_s,
                                u"mnuAITrafficManager"_s};
        QCOMPARE(disabled, later);
    }
};

} // namespace vt::test

using vt::test::TestMenuCommands;
VT_TEST_CLASS(TestMenuCommands)

#include "test_menucommands.moc"
