#include "shell/forms/ControlMenu.h"

#include "shell/forms/Icons.h"

#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr MenuRow rows[] = {
    {"", "mnuFile", u"&File", true},
    {"mnuFile", "mnuFile_InstallAnAddon", u"&Install an Addon...", false, false, false, "install"},
    {"mnuFile", "mnuFile_RemoveAnAddon", u"&Remove an Addon...", false, false, false, "remove"},
    {"mnuFile", "mnuAddons_Import", u"Imp&ort Addons...", false, false, false, "import"},
    {"mnuFile", "mnuFile_FSO_Browse", u"&Browse Folders...", false, false, true, "browse"},
    {"mnuFile", "mnuFile_ProgramInfo", u"&Program Info...", false, false, true, "info"},
    {"mnuFile", "mnuToys", u"Toys", true},
    {"mnuFile", "mnuFile_MainExit", u"E&xit", false, false, true, "exit", "Ctrl+Q"},

    {"", "mnuOptions", u"&Options", true},
    {"mnuOptions", "mnuSettings", u"&Customize...", false, false, false, "customize"},

    {"", "mnuAddons", u"&Addons", true},
    {"mnuAddons", "mnuAddonWizard", u"Addon &Wizard..."},
    {"mnuAddons", "mnuWorkWithAllAddons", u"&All Addons...", false, false, true, "all-addons"},
    {"mnuAddons", "mnuInstalledAddons", u"&Installed Addons..."},
    {"mnuAddons", "mnuFileCabinet", u"&File Cabinet...", false, false, false, "cabinet"},
    {"mnuAddons", "mnuAddonHistory", u"Addo&n History", false, false, false, "history"},
    {"mnuAddons", "mnuAdventures", u"A&dventures...", false, false, true},
    {"mnuAddons", "mnuAddons_Aircraft", u"&Aircraft", true, false, false, "aircraft"},
    {"mnuAddons_Aircraft", "mnuAddons_WorkWithAircraftAddons", u"Work with Aircraft Addons..."},
    {"mnuAddons_Aircraft",
     "mnuAircraftSkinsAndRepaints",
     u"Work with Aircraft Skins and Repaints..."},
    {"mnuAddons_Aircraft", "mnuEditAircraft", u"Edit Aircraft..."},
    {"mnuAddons", "mnuAddons_AITraffic", u"A.I. T&raffic", true, false, false, "traffic"},
    {"mnuAddons_AITraffic", "mnuAIAirportAndFacilities", u"Airport and Facilities..."},
    {"mnuAddons_AITraffic", "mnuAIFlightPlans", u"Flight Plans..."},
    {"mnuAddons", "mnuWorkWithFlights", u"&Flights..."},
    {"mnuAddons", "mnuMissions", u"&Missions..."},
    {"mnuAddons", "mnuMovies", u"&Movies..."},
    {"mnuAddons", "mnuAddons_Panels", u"&Panels", true, false, false, "panels"},
    {"mnuAddons_Panels", "mnuWorkWithPanelAddons", u"Work with Panel Addons..."},
    {"mnuAddons_Panels", "mnuEditPanels", u"Edit Panels..."},
    {"mnuAddons", "mnuAddons_Scenery", u"&Scenery", true, false, false, "scenery"},
    {"mnuAddons_Scenery", "mnuSceneryWorkWith", u"Work with Scenery Addons..."},
    {"mnuAddons_Scenery", "mnuScenery", u"Edit Scenery"},
    {"mnuAddons", "mnuAddons_Sounds", u"S&ounds", true, false, false, "sounds"},
    {"mnuAddons_Sounds", "mnuWorkWithSoundAddons", u"Work with Sound Addons..."},
    {"mnuAddons_Sounds", "mnuEditSounds", u"Edit Sounds..."},
    {"mnuAddons", "mnuTextures", u"&Textures..."},
    {"mnuAddons", "mnuVideos", u"&Videos..."},

    {"", "mnuTools", u"&Tools", true},
    {"mnuTools", "mnuOptimizeDatabase", u"&Optimize Database...", false, false, false, "optimize"},
    {"mnuTools", "mnuFS9CFGManager", u"FS &Configuration Manager"},
    {"mnuTools", "mnuAITrafficManager", u"A.&I. Traffic Manager", false, false, true},
    {"mnuTools", "mnuRunAFCAD", u"Run &AFCAD"},
    {"mnuTools", "mnuTools_TrafficTools", u"&Traffic Tools", true},
    {"mnuTools_TrafficTools", "mnuTrafficTools_Run", u"Run &Traffic Tools"},
    {"mnuTools_TrafficTools", "mnuCompileAITraffic", u"Co&mpile A.I. Traffic", false, false, true},
    {"mnuTools_TrafficTools", "mnuDecompileAITraffic", u"&Decompile A.I. Traffic"},
    {"mnuTools_TrafficTools", "mnuCollectAirports", u"Co&llect Airports"},
    {"mnuTools_TrafficTools",
     "mnuEditTrafficToolsAircraftSource",
     u"Edit Aircraft.txt",
     false,
     false,
     true},
    {"mnuTools_TrafficTools", "mnuEditTrafficToolsAirportsSource", u"Edit Airports.txt"},
    {"mnuTools_TrafficTools", "mnuEditTrafficToolsFlightPlansSource", u"Edit FlightPlans.txt"},
    {"mnuTools_TrafficTools", "mnuEditTrafficToolsCollectAirportsSource", u"Edit Airports_FS200x"},
    {"mnuTools", "mnuClearDefaultPictures", u"Clear Default Addon Pictures", false, false, true},
    {"mnuTools", "mnuReloadDefaultPictures", u"&Reload Default Addon Pictures"},
    {"mnuTools", "mnuStartFlying", u"&Start Flying!", false, false, true, "start-flying"},

    {"", "mnuWindow", u"&Window", true},
    {"mnuWindow", "mnuCascade", u"&Cascade"},
    {"mnuWindow", "mnuTile", u"&Tile"},
    {"mnuWindow", "mnuCloseAll", u"Close &All"},
    {"mnuWindow", "mnuOpenMaximized", u"Always Open &Maximized", false, true, true},
    {"mnuWindow", "mnuToolbar", u"Toolbar", false, true},

    {"", "mnuHelp", u"&Help", true},
    {"mnuHelp", "mnuHelpTopics", u"&Help Topics", false, false, false, "help"},
    {"mnuHelp", "mnuHowToUseThisProgram", u"&How to use This Program"},
    {"mnuHelp", "mnuBugReport", u"Report a Bug", false, false, true},
    {"mnuHelp", "mnuWebSite", u"Vantrel Web Site", false, false, false, "web"},
    {"mnuHelp", "mnuFSWebSite", u"FSWS"},
    {"mnuHelp", "mnuAbout", u"&About Vantrel...", false, false, true, "info"},
};

} // namespace

std::span<const MenuRow> menuRows()
{
    return rows;
}

ControlMenu buildMenu(QMenuBar* bar)
{
    ControlMenu made;
    for (const MenuRow& row : rows) {
        const QString name = QString::fromLatin1(row.name);
        const QString caption = QString::fromUtf16(row.caption);
        QMenu* parent = made.menus.value(QString::fromLatin1(row.parent));
        if (parent && row.separator)
            parent->addSeparator();
        const QIcon icon = *row.icon ? icons::command(QString::fromLatin1(row.icon)) : QIcon();
        if (row.menu) {
            QMenu* menu = parent ? parent->addMenu(caption) : bar->addMenu(caption);
            menu->setObjectName(name);
            menu->setIcon(icon);
            made.menus.insert(name, menu);
            continue;
        }
        QAction* action = parent->addAction(icon, caption);
        action->setObjectName(name);
        action->setCheckable(row.checkable);
        action->setEnabled(false);
        action->setMenuRole(QAction::NoRole);
        if (*row.keys)
            action->setShortcut(QKeySequence(QString::fromLatin1(row.keys)));
        made.actions.insert(name, action);
    }
    return made;
}

QString plainCaption(const QString& caption)
{
    QString plain = caption;
    plain.remove(u'&');
    while (plain.endsWith(u'.'))
        plain.chop(1);
    return plain;
}

} // namespace vt
