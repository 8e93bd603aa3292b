#include "demo/DemoSimulator.h"

#include "demo/DemoAircraft.h"
#include "demo/FreshTree.h"
#include "demo/StandIns.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString windowsFolder(const QString& belowDriveC)
{
    return u"C:\\"_s + QString(belowDriveC).replace(u'/', u'\\') + u'\\';
}

QString registryText(const QString& windowsPath)
{
    return QString(windowsPath).replace(u'\\', u"\\\\"_s);
}

/// Registry, drives and shell folders: what makes a folder a prefix.
void writePrefix(FreshTree& tree, const DemoSimulator& places)
{
    tree.file(u"system.reg"_s,
              standins::textLf(uR"(WINE REGISTRY Version 2
;; All keys relative to \\Machine

#arch=win64

[Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders] 1161079200
#time=1c6f1d2a8c6a000
"Common AppData"="C:\\ProgramData"
"Common Desktop"="C:\\users\\Public\\Desktop"

[Software\\Wow6432Node\\Microsoft\\Microsoft Games\\Flight Simulator\\10.0] 1161079200
#time=1c6f1d2a8c6a000
"AppPath"=")"_s + registryText(places.simulatorFolder) +
                               uR"("
"SetupPath"=")"_s + registryText(places.simulatorFolder) +
                               uR"("
"Version"="10.0.0.0"

[System\\CurrentControlSet\\Control\\Nls\\CodePage] 1161079200
#time=1c6f1d2a8c6a000
"ACP"="1252"
"OEMCP"="850"
)"_s));
    const QString profile = u"C:\\\\users\\\\"_s + places.user;
    tree.file(u"user.reg"_s, standins::textLf(uR"(WINE REGISTRY Version 2
;; All keys relative to \\User\\S-1-5-21-0-0-0-1000

#arch=win64

[Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders] 1161079200
#time=1c6f1d2a8c6a000
"AppData"=")"_s + profile + uR"(\\AppData\\Roaming"
"Desktop"=")"_s + profile + uR"(\\Desktop"
"Personal"=")"_s + profile + uR"(\\Documents"
)"_s));
    tree.link(u"dosdevices/c:"_s, u"../drive_c"_s);
    tree.link(u"dosdevices/z:"_s, u"/"_s);
    tree.folder(u"drive_c/users/Public"_s);
    tree.folder(u"drive_c/windows/system32"_s);
}

DemoFiles demoAircraft()
{
    const DemoAircraft kestrel{u"SimObjects/Airplanes/Kestrel_K2"_s,
                               u"kestrel_k2"_s,
                               u"Kestrel"_s,
                               u"K2 Trainer"_s,
                               u"Single Engine Prop"_s,
                               u"Kestrel"_s,
                               {u"Airspeed"_s, u"Altimeter"_s, u"Compass"_s},
                               {},
                               u"fx_kestrel"_s,
                               {{u"Kestrel K2 Blue"_s, u"Blue"_s, {}},
                                {u"Kestrel K2 Red"_s, u"Red"_s, u"red"_s},
                                {u"Kestrel K2 Été"_s, u"Été"_s, u"ete"_s}}};
    const DemoAircraft carrier{u"SimObjects/Airplanes/Northwind_Carrier"_s,
                               u"nw_carrier"_s,
                               u"Northwind"_s,
                               u"Carrier"_s,
                               u"Twin Engine Prop"_s,
                               {},
                               {},
                               u"Kestrel_K2"_s,
                               u"fx_kestrel"_s,
                               {{u"Northwind Carrier"_s, u"House colours"_s, {}},
                                {u"Northwind Carrier Mail"_s, u"Mail"_s, u"mail"_s}}};
    const DemoAircraft liner{u"SimObjects/Airplanes/Aurelia_700"_s,
                             u"aurelia700"_s,
                             u"Aurelia"_s,
                             u"700"_s,
                             u"Commercial Airliner"_s,
                             u"Aurelia700"_s,
                             {u"PFD"_s, u"ND"_s, u"Engines"_s, u"Clock"_s},
                             {},
                             u"fx_aurelia"_s,
                             {{u"Aurelia 700 House"_s, u"House"_s, {}},
                              {u"Aurelia 700 Landor"_s, u"Landor"_s, u"1"_s},
                              {u"Aurelia 700 Intl / HS-AUR"_s, u"Intl / HS-AUR"_s, u"2"_s},
                              {u"Aurelia 700 Cargo"_s, u"Cargo"_s, u"cargo"_s}}};
    const DemoAircraft rotor{u"SimObjects/Rotorcraft/Dragonfly_R1"_s,
                             u"dragonfly"_s,
                             u"Dragonfly"_s,
                             u"R1"_s,
                             u"Rotorcraft"_s,
                             u"Kestrel"_s,
                             {u"Airspeed"_s, u"Altimeter"_s},
                             {},
                             u"fx_kestrel"_s,
                             {{u"Dragonfly R1"_s, u"Yellow"_s, {}}}};
    return aircraftFiles(kestrel) + aircraftFiles(carrier) + aircraftFiles(liner) +
           aircraftFiles(rotor);
}

DemoFiles demoMission()
{
    const QString top = u"Missions/Demonstration/First Circuit/"_s;
    return {{top + u"First Circuit.FLT"_s,
             standins::text(u"[Main]\nTitle=First Circuit\n"_s
                            u"Description=Once around the field.\nAppVersion=10.0.0.0\n\n"_s
                            u"[Sim.0]\nSim=Kestrel K2 Blue\n"_s)},
            {top + u"First Circuit.WX"_s, standins::noise(400, 41)},
            {top + u"First Circuit.SPB"_s, standins::noise(900, 42)},
            {top + u"First Circuit.htm"_s,
             standins::text(u"<html><body><h1>First Circuit</h1></body></html>\n"_s)},
            {top + u"images/overview.bmp"_s, standins::picture(48, 32, 43)},
            {top + u"Sound/briefing.wav"_s, standins::sound(150, 44)},
            {u"Missions/missions.txt"_s, standins::text(u"Missions stand in folders here.\n"_s)}};
}

/// Gauges, sounds, fonts, scenery and what else stands beside the aircraft.
DemoFiles demoCommonFiles()
{
    DemoFiles files{
        {u"Gauges/Kestrel.cab"_s, standins::marked("MSCF", 5000, 1)},
        {u"Gauges/Aurelia700.cab"_s, standins::marked("MSCF", 8000, 2)},
        {u"Gauges/Magnetic.gau"_s, standins::marked("MZ", 3000, 3)},
        {u"Gauges/Clock/Clock.xml"_s,
         standins::text(u"<Gauge Name=\"Clock\"><Image Name=\"face.bmp\"/></Gauge>\n"_s)},
        {u"Gauges/Clock/face.bmp"_s, standins::picture(32, 32, 4)},
        {u"Sound/gear_up.wav"_s, standins::sound(120, 5)},
        {u"Sound/stall.wav"_s, standins::sound(180, 6)},
        {u"Fonts/cockpit.ttf"_s, standins::marked(QByteArray("\0\1\0\0", 4), 2500, 7)},
        {u"Modules/traffic_view.dll"_s, standins::marked("MZ", 4000, 8)},
        {u"Texture/sky01.bmp"_s, standins::picture(64, 32, 9)},
        {u"Texture/runway.bmp"_s, standins::picture(64, 32, 10)},
        {u"weather/wxstationlist.bin"_s, standins::noise(1500, 11)},
        {u"weather/themes/clear.wt"_s, standins::noise(300, 12)},
        {u"ShadersHLSL/Terrain/ground.fxh"_s,
         standins::text(u"float4 ground(float2 at) { return float4(at, 0, 1); }\n"_s)},
        {u"Scenery/World/scenery/world_base.bgl"_s, standins::container("BGL ", 9000, 13)},
        {u"Scenery/World/scenery/airports.bgl"_s, standins::container("BGL ", 4000, 14)},
        {u"Scenery/World/texture/field.bmp"_s, standins::picture(64, 64, 15)},
        {u"Scenery/North/scenery/north_coast.bgl"_s, standins::container("BGL ", 3000, 16)},
        {u"Addon Scenery/scenery/"_s, {}},
        {u"Addon Scenery/texture/"_s, {}},
        {u"Addon Scenery/Lakeside/scenery/lakeside.bgl"_s, standins::container("BGL ", 2500, 17)},
        {u"Addon Scenery/Lakeside/texture/lakeside_hut.bmp"_s, standins::picture(64, 64, 18)},
        {u"terrain.cfg"_s,
         standins::text(u"[Texture.0]\nName=Grass\nColor=FF00A000\n\n"_s
                        u"[Texture.1]\nName=Lake\nColor=FF0000A0\n"_s)},
        {u"suneffect.cfg"_s, standins::text(u"[suneffect]\nPrimary=0\nGlare=1\n"_s)}};
    return files + effectFiles(u"fx_kestrel"_s) + effectFiles(u"fx_aurelia"_s);
}

const QString& sceneryLibrary()
{
    static const QString lines = uR"([General]
Title=World Scenery Library
Description=Scenery areas of the demonstration
Clean_on_Exit=TRUE

[Area.001]
Title=World Base
Texture_ID=1
Local=Scenery\World
Remote=
Active=TRUE
Layer=1
Required=TRUE

[Area.002]
Title=North Coast
Local=Scenery\North
Remote=
Active=TRUE
Layer=2
Required=FALSE

; The folder for single files
[Area.003]
Title=Addon Scenery
Local=Addon Scenery
Remote=
Active=TRUE
Layer=3
Required=FALSE

[Area.004]
Title=Lakeside
Local=Addon Scenery\Lakeside
Remote=
Active=FALSE
Layer=4
Required=FALSE

)"_s;
    return lines;
}

void writeSimulator(FreshTree& tree, const QString& simulator)
{
    tree.executable(simulator + u"/fsx.exe"_s,
                    standins::textLf(u"#!/bin/sh\n"_s
                                     u"# Stands in for the simulator's program.\n"_s
                                     u"echo \"This is the demonstration simulator.\"\n"_s));
    for (const DemoFile& file : demoAircraft() + demoMission() + demoCommonFiles()) {
        if (file.path.endsWith(u'/'))
            tree.folder(simulator + u'/' + file.path);
        else
            tree.file(simulator + u'/' + file.path, file.bytes);
    }
}

void writeConfiguration(FreshTree& tree, const DemoSimulator& places)
{
    const auto below = [&places](const QString& host, const QString& name) {
        return QDir(places.prefixHost).relativeFilePath(host) + u'/' + name;
    };
    tree.text(below(places.allUsersHost, u"Scenery.cfg"_s), sceneryLibrary());
    tree.text(below(places.userDataHost, u"fsx.cfg"_s),
              u"[Main]\nSimObjectPaths.0=SimObjects\\Airplanes\n"_s
              u"SimObjectPaths.1=SimObjects\\Rotorcraft\nProcSpeed=9000\n\n"_s
              u"[SOUND]\nSound=1\nSOUND_QUALITY=2\n\n[USERINTERFACE]\n"_s
              u"SITUATION=FLIGHTS\\OTHER\\Kestrel\n"_s);
    tree.text(below(places.userDataHost, u"Devices.cfg"_s),
              u"[Joystick_00]\nLocked=0\nBUTTON_DOWN_EVENT_00=BRAKES\n"_s);
    tree.text(below(places.documentsHost, u"Evening flight.FLT"_s),
              u"[Main]\nTitle=Evening flight\nDescription=Along the lake.\n"_s);
}

} // namespace

DemoSimulator demoSimulatorAt(const QString& hostFolder)
{
    const QString simulator = u"Program Files (x86)/Microsoft Games/Microsoft Flight Simulator X"_s;
    DemoSimulator places;
    places.prefixHost = QDir::cleanPath(QFileInfo(hostFolder).absoluteFilePath());
    places.user = u"pilot"_s;
    const QString driveC = places.prefixHost + u"/drive_c/"_s;
    const QString profile = u"users/"_s + places.user;
    const QString allUsers = u"ProgramData/Microsoft/FSX"_s;
    const QString userData = profile + u"/AppData/Roaming/Microsoft/FSX"_s;
    const QString documents = profile + u"/Documents/Flight Simulator X Files"_s;
    places.simulatorHost = driveC + simulator;
    places.simulatorFolder = windowsFolder(simulator);
    places.allUsersHost = driveC + allUsers;
    places.allUsersFolder = windowsFolder(allUsers);
    places.userDataHost = driveC + userData;
    places.userDataFolder = windowsFolder(userData);
    places.documentsHost = driveC + documents;
    places.documentsFolder = windowsFolder(documents);
    return places;
}

ResultOf<DemoSimulator> writeDemoSimulator(const QString& hostFolder)
{
    const DemoSimulator places = demoSimulatorAt(hostFolder);
    QDir prefix(places.prefixHost);
    const bool existed = prefix.exists();
    if (existed && !prefix.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
        return Result::failure(
            u"The folder '"_s + places.prefixHost +
            u"' is not empty, so no demonstration simulator was written there; name a new folder."_s);
    FreshTree tree(places.prefixHost);
    writePrefix(tree, places);
    writeSimulator(tree, prefix.relativeFilePath(places.simulatorHost));
    writeConfiguration(tree, places);
    if (!tree.result()) {
        prefix.removeRecursively();
        if (existed)
            prefix.mkpath(u"."_s);
        return tree.result();
    }
    return places;
}

} // namespace vt
