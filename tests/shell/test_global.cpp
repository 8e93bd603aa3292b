#include "ShellFixture.h"
#include "shell/startup/CommandLine.h"
#include "shell/startup/ProgramFolder.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ShellFixture;

class TestGlobal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names_belongToTheGeneration();
    void simulatorFolders_belongToTheGeneration();
    void configFolders_belongToTheGeneration();
    void programFolder_takesTheFirstSourceThatSpeaks();
    void fileToInstall_isTheRestOfTheLine_data();
    void fileToInstall_isTheRestOfTheLine();
    void startupFile_isTakenOnce();
};

void TestGlobal::names_belongToTheGeneration()
{
    GlobalRecord record;
    QCOMPARE(record.generation, 5);
    QCOMPARE(record.names.productTitle, u"Vantrel for FS X"_s);
    QCOMPARE(record.names.simFullTitle, u"Microsoft Flight Simulator X"_s);
    QCOMPARE(record.simulatorExecutable, u"fsx.exe"_s);
    QCOMPARE(record.airportConverter, u"Aafconv.exe"_s);
    record.setGeneration(FS2004);
    QCOMPARE(record.names.productTitle, u"Vantrel for FS 2004"_s);
    QCOMPARE(record.names.simFullTitle, u"Microsoft Flight Simulator 2004 - A Century of Flight"_s);
    QCOMPARE(record.simulatorExecutable, u"fs9.exe"_s);
    record.setGeneration(FS2002);
    QCOMPARE(record.names.simShort, u"FS 2002"_s);
    QCOMPARE(record.simulatorExecutable, u"Fs2002.exe"_s);
}

void TestGlobal::simulatorFolders_belongToTheGeneration()
{
    GlobalRecord record;
    record.setSimulatorFolder(u"D:/Sim"_s);
    QCOMPARE(record.simulatorFolder, u"D:\\Sim\\"_s);
    QCOMPARE(record.aircraftFolder, u"D:\\Sim\\SimObjects\\Airplanes\\"_s);
    QCOMPARE(record.aircraftTypeFolders,
             (QStringList{u"D:\\Sim\\SimObjects\\Airplanes\\"_s,
                          u"D:\\Sim\\SimObjects\\Rotorcraft\\"_s}));
    QCOMPARE(record.adventureSoundsFolder, u"D:\\Sim\\Adv\\Wav\\"_s);

    GlobalRecord older;
    older.setGeneration(FS2004);
    older.setSimulatorFolder(u"D:\\Sim\\"_s);
    QCOMPARE(older.simObjectsFolder, QString());
    QCOMPARE(older.aircraftFolder, u"D:\\Sim\\Aircraft\\"_s);
    QCOMPARE(older.aircraftTypeFolders, QStringList{u"D:\\Sim\\Aircraft\\"_s});
    QCOMPARE(older.sceneryCfgFile, u"D:\\Sim\\Scenery.cfg"_s);
}

void TestGlobal::configFolders_belongToTheGeneration()
{
    const auto recordOf = [](int generation) {
        GlobalRecord record;
        record.setGeneration(generation);
        record.setSimulatorFolder(u"D:\\Sim\\"_s);
        record.setConfigFolders(u"C:\\ProgramData\\"_s,
                                u"C:\\users\\p\\AppData\\Roaming\\"_s,
                                u"C:\\users\\p\\Documents\\"_s,
                                u"FSX-SE"_s);
        return record;
    };
    const GlobalRecord fsx = recordOf(FSX);
    QCOMPARE(fsx.sceneryCfgFile, u"C:\\ProgramData\\Microsoft\\FSX-SE\\Scenery.cfg"_s);
    QCOMPARE(fsx.mainConfigFolder, u"C:\\users\\p\\AppData\\Roaming\\Microsoft\\FSX-SE\\"_s);
    QCOMPARE(fsx.userDocumentsFolder, u"C:\\users\\p\\Documents\\Flight Simulator X Files\\"_s);
    const GlobalRecord fs2004 = recordOf(FS2004);
    QCOMPARE(fs2004.sceneryCfgFile, u"D:\\Sim\\Scenery.cfg"_s);
    QCOMPARE(fs2004.mainConfigFolder, u"C:\\users\\p\\AppData\\Roaming\\Microsoft\\FS9\\"_s);
    QCOMPARE(fs2004.userDocumentsFolder, u"C:\\users\\p\\Documents\\Flight Simulator Files\\"_s);
    QCOMPARE(recordOf(FS2002).mainConfigFolder, u"D:\\Sim\\"_s);
}

void TestGlobal::programFolder_takesTheFirstSourceThatSpeaks()
{
    ShellFixture shell;
    const QString root = shell.dir.path();
    ProgramFolderSearch search{
        u"opt"_s, u"/env"_s, root + u"/bin"_s, root + u"/xdg"_s, u"/home/p"_s, root + u"/here"_s};
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

void TestGlobal::fileToInstall_isTheRestOfTheLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("file");
    QTest::newRow("none") << QStringList{u"--quiet"_s} << QString();
    QTest::newRow("quoted") << QStringList{u"-file=\"C:\\a b\\c.zip\""_s} << u"C:\\a b\\c.zip"_s;
    QTest::newRow("split by the shell")
        << QStringList{u"-file=C:\\a"_s, u"b\\c.zip"_s} << u"C:\\a b\\c.zip"_s;
    QTest::newRow("any one character") << QStringList{u"-file:C:\\x.zip"_s} << u"C:\\x.zip"_s;
    QTest::newRow("after others") << QStringList{u"--quiet"_s, u"-file=C:\\x.zip"_s}
                                  << u"C:\\x.zip"_s;
    QTest::newRow("empty") << QStringList{u"-file=\"\""_s} << QString();
    QTest::newRow("bare") << QStringList{u"-file"_s} << QString();
    QTest::newRow("not inside an option's value")
        << QStringList{u"--home"_s, u"/data/my-file=x"_s, u"--sim=/a-file=b"_s} << QString();
    QTest::newRow("host path") << QStringList{u"-file=/tmp/x.zip"_s} << u"Z:\\tmp\\x.zip"_s;
    QTest::newRow("relative") << QStringList{u"-file=x.zip"_s} << u"Z:\\work\\x.zip"_s;
}

void TestGlobal::fileToInstall_isTheRestOfTheLine()
{
    QFETCH(QStringList, arguments);
    DriveTable drives;
    QTEST(fileToInstall(arguments, {u"--home"_s, u"--sim"_s}, drives, u"/work"_s), "file");
}

void TestGlobal::startupFile_isTakenOnce()
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

VT_TEST_CLASS(TestGlobal)

#include "test_global.moc"
