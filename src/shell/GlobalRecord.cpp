#include "shell/GlobalRecord.h"

#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

DisplayNames displayNames(int generation)
{
    switch (generation) {
    case FS2002:
        return {u"Vantrel for FS 2002"_s,
                u"Vantrel"_s,
                u"FS 2002"_s,
                u"Flight Simulator 2002"_s,
                u"FS"_s,
                u"Flight Simulator"_s,
                u"Microsoft Flight Simulator 2002"_s};
    case FS2004:
        return {u"Vantrel for FS 2004"_s,
                u"Vantrel"_s,
                u"FS 2004"_s,
                u"Flight Simulator 2004"_s,
                u"FS"_s,
                u"Flight Simulator"_s,
                u"Microsoft Flight Simulator 2004 - A Century of Flight"_s};
    default:
        return {u"Vantrel for FS X"_s,
                u"Vantrel"_s,
                u"FS X"_s,
                u"Flight Simulator X"_s,
                u"FS"_s,
                u"Flight Simulator"_s,
                u"Microsoft Flight Simulator X"_s};
    }
}

QString simulatorExecutable(int generation)
{
    switch (generation) {
    case FS2002:
        return u"Fs2002.exe"_s;
    case FS2004:
        return u"fs9.exe"_s;
    default:
        return u"fsx.exe"_s;
    }
}

GlobalRecord::GlobalRecord()
{
    setGeneration(FSX);
}

void GlobalRecord::setGeneration(int code)
{
    generation = code;
    names = displayNames(code);
    simulatorExecutable = vt::simulatorExecutable(code);
}

void GlobalRecord::setProgramFolder(const QString& folder)
{
    programFolder = winpath::asFolder(folder);
    originalsFolder = programFolder + u"Originals\\"_s;
    addonsFolder = programFolder + u"Addons\\"_s;
    backupsFolder = programFolder + u"Backups\\"_s;
    cabinetFolder = programFolder + u"Cabinet\\"_s;
    imagesFolder = programFolder + u"Images\\"_s;
    settingsFolder = programFolder + u"Settings\\"_s;
    tempFolder = programFolder + u"Temp\\"_s;
    tempGfoFolder = tempFolder + u"GFO\\"_s;
    tempIfoFolder = tempFolder + u"IFO\\"_s;
    tempInaFolder = tempFolder + u"INA\\"_s;
    tempRaFolder = tempFolder + u"RA\\"_s;
    databaseFile = programFolder + u"Vantrel.mdb"_s;
    helpFile = programFolder + u"VANTREL.CHM"_s;
}

void GlobalRecord::setSimulatorFolder(const QString& folder)
{
    simulatorFolder = winpath::asFolder(folder);
    if (generation == FSX) {
        simObjectsFolder = simulatorFolder + u"SimObjects\\"_s;
        aircraftFolder = simObjectsFolder + u"Airplanes\\"_s;
        aircraftTypeFolders = {aircraftFolder, simObjectsFolder + u"Rotorcraft\\"_s};
    } else {
        simObjectsFolder.clear();
        aircraftFolder = simulatorFolder + u"Aircraft\\"_s;
        aircraftTypeFolders = {aircraftFolder};
    }
    sceneryAddonFolder = simulatorFolder + u"Addon Scenery\\"_s;
    adventuresFolder = simulatorFolder + u"Adv\\"_s;
    adventureSoundsFolder = adventuresFolder + u"Wav\\"_s;
    effectsFolder = simulatorFolder + u"Effects\\"_s;
    gaugesFolder = simulatorFolder + u"Gauges\\"_s;
    fontsFolder = simulatorFolder + u"Fonts\\"_s;
    modulesFolder = simulatorFolder + u"Modules\\"_s;
    missionsFolder = simulatorFolder + u"Missions\\"_s;
    sceneryFolder = simulatorFolder + u"Scenery\\"_s;
    soundFolder = simulatorFolder + u"Sound\\"_s;
    textureFolder = simulatorFolder + u"Texture\\"_s;
    if (generation != FSX)
        sceneryCfgFile = simulatorFolder + u"Scenery.cfg"_s;
    if (generation == FS2002)
        mainConfigFolder = simulatorFolder;
}

void GlobalRecord::setConfigFolders(const QString& allUsersData,
                                    const QString& userData,
                                    const QString& documents,
                                    const QString& editionFolder)
{
    userDocumentsFolder = winpath::join(documents,
                                        generation == FSX ? u"Flight Simulator X Files\\"_s
                                                          : u"Flight Simulator Files\\"_s);
    if (generation == FSX) {
        sceneryCfgFile =
            winpath::asFolder(allUsersData) + u"Microsoft\\"_s + editionFolder + u"\\Scenery.cfg"_s;
        mainConfigFolder = winpath::asFolder(userData) + u"Microsoft\\"_s + editionFolder + u"\\"_s;
    } else if (generation == FS2004) {
        mainConfigFolder = winpath::asFolder(userData) + u"Microsoft\\FS9\\"_s;
    }
}

QString GlobalRecord::programFile(const QString& name) const
{
    return programFolder + name;
}

} // namespace vt
