#include "ShellFixture.h"
#include "shell/startup/CommandLine.h"
#include "shell/startup/ProgramFolder.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::Rows;
using vt::test::ShellFixture;

class TestGlobal : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void names_belongToTheGeneration()
    {
        const Rows<int, QString, QString, QString> rows = {
            {"5", FSX, u"FS X"_s, u"Microsoft Flight Simulator X"_s, u"fsx.exe"_s},
            {"4",
             FS2004,
             u"FS 2004"_s,
             u"Microsoft Flight Simulator 2004 - A Century of Flight"_s,
             u"fs9.exe"_s},
            {"2", FS2002, u"FS 2002"_s, u"Microsoft Flight Simulator 2002"_s, u"Fs2002.exe"_s},
        };
        GlobalRecord record;
        QCOMPARE(record.generation, 5);
        QCOMPARE(record.airportConverter, u"Aafconv.exe"_s);
        for (const auto& [generation, simShort, full, executable] : rows) {
            record.setGeneration(generation);
            QCOMPARE(record.names.simShort, simShort);
            QCOMPARE(record.names.productTitle, u"Vantrel for "_s + simShort);
            QCOMPARE(record.names.simFullTitle, full);
            QCOMPARE(record.simulatorExecutable, executable);
        }
    }

    void folders_belongToTheGeneration()
    {
        const auto recordOf = [](int generation) {
            GlobalRecord record;
            record.setGeneration(generation);
            record.setSimulatorFolder(u"D:/Sim"_s);
            record.setConfigFolders(u"C:\\All\\"_s, u"C:\\Own\\"_s, u"C:\\Docs\\"_s, u"FSX-SE"_s);
            return record;
        };
        const GlobalRecord fsx = recordOf(FSX);
        QCOMPARE(fsx.simulatorFolder, u"D:\\Sim\\"_s);
        QCOMPARE(fsx.aircraftTypeFolders,
                 (QStringList{u"D:\\Sim\\SimObjects\\Airplanes\\"_s,
                              u"D:\\Sim\\SimObjects\\Rotorcraft\\"_s}));
        QCOMPARE(fsx.aircraftFolder, fsx.aircraftTypeFolders.first());
        QCOMPARE(fsx.adventureSoundsFolder, u"D:\\Sim\\Adv\\Wav\\"_s);
        QCOMPARE(fsx.sceneryCfgFile, u"C:\\All\\Microsoft\\FSX-SE\\Scenery.cfg"_s);
        QCOMPARE(fsx.mainConfigFolder, u"C:\\Own\\Microsoft\\FSX-SE\\"_s);
        QCOMPARE(fsx.userDocumentsFolder, u"C:\\Docs\\Flight Simulator X Files\\"_s);
        const GlobalRecord older = recordOf(FS2004);
        QCOMPARE(older.simObjectsFolder, QString());
        QCOMPARE(older.aircraftFolder, u"D:\\Sim\\Aircraft\\"_s);
        QCOMPARE(older.aircraftTypeFolders, QStringList{u"D:\\Sim\\Aircraft\\"_s});
        QCOMPARE(older.sceneryCfgFile, u"D:\\Sim\\Scenery.cfg"_s);
        QCOMPARE(older.mainConfigFolder, u"C:\\Own\\Microsoft\\FS9\\"_s);
        QCOMPARE(older.userDocumentsFolder, u"C:\\Docs\\Flight Simulator Files\\"_s);
        QCOMPARE(recordOf(FS2002).mainConfigFolder, u"D:\\Sim\\"_s);
    }

    void programFolder_takesTheFirstSourceThatSpeaks()
    {
        ShellFixture shell;
        const QString root = shell.dir.path();
        ProgramFolderSearch search{u"opt"_s,
                                   u"/env"_s,
                                   root + u"/bin"_s,
                                   root + u"/xdg"_s,
                                   u"/home/p"_s,
                                   root + u"/here"_s};
        QCOMPARE(programFolder(shell.files, search), u"C:\\here\\opt\\"_s);
        search.option.clear();
        QCOMPARE(programFolder(shell.files, search), u"Z:\\env\\"_s);
        search.environment.clear();
        QCOMPARE(programFolder(shell.files, search), u"C:\\xdg\\vantrel\\"_s);
        shell.write(u"bin/Vantrel.exe"_s);
        QCOMPARE(programFolder(shell.files, search), u"C:\\bin\\"_s);
        search.programsFolder.clear();
        search.dataHome = u"relative"_s;
        QCOMPARE(programFolder(shell.files, search), u"Z:\\home\\p\\.local\\share\\vantrel\\"_s);
    }

    void fileToInstall_isTheRestOfTheLine()
    {
        const Rows<QStringList, QString> rows = {
            {"none", {u"--quiet"_s}, {}},
            {"quoted", {u"-file=\"C:\\a b\\c.zip\""_s}, u"C:\\a b\\c.zip"_s},
            {"split by the shell", {u"-file=C:\\a"_s, u"b\\c.zip"_s}, u"C:\\a b\\c.zip"_s},
            {"any one character", {u"-file:C:\\x.zip"_s}, u"C:\\x.zip"_s},
            {"after others", {u"--quiet"_s, u"-file=C:\\x.zip"_s}, u"C:\\x.zip"_s},
            {"empty", {u"-file=\"\""_s}, {}},
            {"bare", {u"-file"_s}, {}},
            {"not inside an option's value",
             {u"--home"_s, u"/data/my-file=x"_s, u"--sim=/a-file=b"_s},
             {}},
            {"host path", {u"-file=/tmp/x.zip"_s}, u"Z:\\tmp\\x.zip"_s},
            {"relative", {u"-file=x.zip"_s}, u"Z:\\work\\x.zip"_s},
        };
        for (const auto& [arguments, file] : rows) {
            DriveTable drives;
            QCOMPARE(fileToInstall(arguments, {u"--home"_s, u"--sim"_s}, drives, u"/work"_s), file);
        }
    }

    void startupFile_isTakenOnce()
    {
        ShellFixture shell;
        const QString file = u"C:\\Ordner \u00fc\\x.zip"_s;
        QVERIFY(writeStartupFile(shell.actions, shell.global, file));
        QCOMPARE(shell.read(u"Vantrel/Startup.txt"_s),
                 "[STARTUP]\r\nFileToInstall=" + file.toUtf8() + "\r\n");
        QCOMPARE(takeStartupFile(shell.files, shell.actions, shell.global), file);
        QVERIFY(!shell.exists(u"Vantrel/Startup.txt"_s));
        QCOMPARE(takeStartupFile(shell.files, shell.actions, shell.global), QString());
    }
};

VT_TEST_CLASS(TestGlobal)

#include "test_global.moc"
