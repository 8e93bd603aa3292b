// The one place where folders and program-wide facts are read. Filled at start, then only read;
// every folder text ends in "\".
#pragma once

#include <QString>
#include <QStringList>

namespace vt {

/// Simulator generation codes; code that differs by generation asks for them by name.
enum Generation
{
    FS2002 = 2,
    FS2004 = 4,
    FSX = 5,
};

/// Names used in messages, by generation.
struct DisplayNames
{
    QString productTitle;   ///< "Vantrel for FS X"
    QString productName;    ///< "Vantrel"
    QString simShort;       ///< "FS X"
    QString simLong;        ///< "Flight Simulator X"
    QString simGeneric;     ///< "FS"
    QString simGenericLong; ///< "Flight Simulator"
    QString simFullTitle;   ///< "Microsoft Flight Simulator X"
};

[[nodiscard]] DisplayNames displayNames(int generation);
/// "Fs2002.exe", "fs9.exe" or "fsx.exe".
[[nodiscard]] QString simulatorExecutable(int generation);

struct GlobalRecord
{
    GlobalRecord();

    int generation = FSX;
    DisplayNames names;

    // The simulator. Empty where the generation has no such folder.
    QString simulatorFolder;
    QString simulatorExecutable; ///< file name, "fsx.exe"
    QString airportConverter = QStringLiteral("Aafconv.exe");
    QString simObjectsFolder;
    QString aircraftFolder;
    QStringList
        aircraftTypeFolders; ///< folders that hold aircraft ("...\Airplanes\", "...\Rotorcraft\")
    QString sceneryAddonFolder; ///< "...\Addon Scenery\"
    QString adventuresFolder;
    QString adventureSoundsFolder;
    QString effectsFolder;
    QString gaugesFolder;
    QString fontsFolder;
    QString modulesFolder;
    QString missionsFolder;
    QString sceneryFolder;
    QString soundFolder;
    QString textureFolder;
    QString userDocumentsFolder; ///< "...\Flight Simulator X Files\"
    QString sceneryCfgFile;      ///< the scenery library
    QString mainConfigFolder;    ///< folder of the simulator's main configuration file (fsx.cfg)

    // The program's own.
    QString programFolder;
    QString originalsFolder;
    QString addonsFolder;
    QString backupsFolder;
    QString cabinetFolder;
    QString imagesFolder;
    QString settingsFolder;
    QString tempFolder;
    QString tempGfoFolder;
    QString tempIfoFolder;
    QString tempInaFolder;
    QString tempRaFolder;
    QString databaseFile;
    QString helpFile;
    QString fileToInstall;
    QString currentProcedure; ///< the stage or routine now running, named by error reports

    /// Sets the generation with its names and executable; folders are set again afterwards.
    void setGeneration(int code);
    /// Sets every member of the program's own folders.
    void setProgramFolder(const QString& folder);
    /// Sets every member that lies below the simulator's folder, by generation.
    void setSimulatorFolder(const QString& folder);
    /// Sets what lies in the shell's folders (all-users data, user data, documents), by generation.
    /// \a editionFolder: "FSX" or "FSX-SE", generation 5 only.
    void setConfigFolders(const QString& allUsersData,
                          const QString& userData,
                          const QString& documents,
                          const QString& editionFolder);
    /// A file directly in the program folder: "ERROR.LOG", "SimPath.txt".
    [[nodiscard]] QString programFile(const QString& name) const;
};

} // namespace vt
