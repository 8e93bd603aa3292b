#include "ShellFixture.h"
#include "shell/startup/Locate.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ShellFixture;

class TestLocate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void validation_reportsTheLastFailingTest_data();
    void validation_reportsTheLastFailingTest();
    void validation_needsTheExecutable();
    void option_isTheOnlyFolderTried();
    void overrideFile_goesBeforeTheRegistry();
    void overrideFile_thatIsWrongIsWarnedAbout();
    void registry_ofTheGeneration_data();
    void registry_ofTheGeneration();
    void registry_skipsPlaceholdersAndCutsAtNul();
    void fallback_offersToCorrectTheRegistry();
    void user_isAskedUntilTheFolderIsValid();
    void user_whoGivesNothingEndsTheSearch();
    void failure_namesEveryFolderAndItsCause();
    void steamEdition_hasFoldersOfItsOwn();
    void found_simulatorMayBeWritten();
};

namespace {

const QString fsKey = u"Software\\Microsoft\\Microsoft Games\\Flight Simulator"_s;

struct Located
{
    explicit Located(ShellFixture& shell, std::optional<QString> option = {}, bool interact = false)
    {
        SimulatorSearch search;
        search.option = std::move(option);
        search.interact = interact;
        search.shell = {u"C:\\users\\p\\Documents\\"_s,
                        u"C:\\users\\p\\AppData\\Roaming\\"_s,
                        u"C:\\ProgramData\\"_s,
                        u"C:\\"_s};
        result = ConfigureFlightSimulator(shell.context, shell.registry, search, simulator);
    }

    Result result;
    LocatedSimulator simulator;
};

void machineValue(ShellFixture& shell, const QString& key, const QString& name, const QString& text)
{
    QVERIFY(shell.store.setValue(Hive::LocalMachine, key, name, text));
}

} // namespace

void TestLocate::validation_reportsTheLastFailingTest_data()
{
    // Entries: "name/" is a folder, "name" a file of one byte, "name:N" one of N bytes.
    QTest::addColumn<int>("generation");
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<bool>("passed");
    QTest::addColumn<int>("code");
    const QStringList fsx{u"ShadersHLSL/"_s, u"Missions/"_s};
    QTest::newRow("FSX") << 5 << fsx << true << 0;
    QTest::newRow("FSX, case") << 5 << QStringList{u"shadershlsl/"_s, u"MISSIONS/"_s} << true << 0;
    QTest::newRow("FSX without shaders") << 5 << QStringList{u"Missions/"_s} << false << 1;
    QTest::newRow("FSX without both") << 5 << QStringList() << false << 2;
    QTest::newRow("FSX, file as folder")
        << 5 << QStringList{u"ShadersHLSL/"_s, u"Missions"_s} << false << 2;
    QTest::newRow("FSX and FS 2002")
        << 5 << fsx + QStringList{u"Fs2002.exe:140001"_s} << false << 3;
    QTest::newRow("FSX and a small Fs2002.exe")
        << 5 << fsx + QStringList{u"Fs2002.exe:140000"_s} << true << 0;
    QTest::newRow("FSX and FS 2004") << 5 << fsx + QStringList{u"fs9.exe:400001"_s} << false << 4;
    QTest::newRow("FSX and a small fs9.exe")
        << 5 << fsx + QStringList{u"fs9.exe:400000"_s} << true << 0;
    QTest::newRow("first later program counts")
        << 5 << fsx + QStringList{u"fsxi.exe"_s, u"fs2009.exe"_s} << false << 6;
    QTest::newRow("last later program")
        << 5 << QStringList{u"fsxi.exe"_s, u"fs9.exe:400001"_s} << false << 9;
    QTest::newRow("FS 2004") << 4 << QStringList{u"Config/"_s} << true << 0;
    QTest::newRow("FS 2004 without Config") << 4 << QStringList() << false << 1;
    QTest::newRow("FS 2004 and FSX")
        << 4 << QStringList{u"fsx.exe"_s, u"Fs2002.exe:140001"_s} << false << 4;
    QTest::newRow("FS 2004 and a later one")
        << 4 << QStringList{u"Config/"_s, u"fs10.exe"_s} << false << 5;
    const QStringList fs2002{u"Scenery.cfg"_s, u"Fs2002.cfg"_s};
    QTest::newRow("FS 2002") << 2 << fs2002 << true << 0;
    QTest::newRow("FS 2002 without its cfg") << 2 << QStringList{u"Scenery.cfg"_s} << false << 0;
    QTest::newRow("FS 2002 and FS 2000")
        << 2 << fs2002 + QStringList{u"Fs2000.exe:150001"_s} << false << 0;
    QTest::newRow("FS 2002 and FS 2004")
        << 2 << fs2002 + QStringList{u"Fs2004.cfg"_s} << false << 0;
}

void TestLocate::validation_reportsTheLastFailingTest()
{
    QFETCH(int, generation);
    QFETCH(QStringList, entries);
    ShellFixture shell(generation);
    shell.write(u"Sim/"_s + shell.global.simulatorExecutable);
    for (const QString& entry : entries) {
        if (entry.endsWith(u'/'))
            shell.makeFolder(u"Sim/"_s + entry);
        else
            shell.writeLong(u"Sim/"_s + entry.section(u':', 0, 0),
                            entry.contains(u':') ? entry.section(u':', 1).toLongLong() : 1);
    }
    const Validation validation = validateSimulator(shell.files, u"C:\\sim"_s, generation);
    QTEST(validation.passed, "passed");
    QTEST(validation.code, "code");
    QCOMPARE(validation.valid(), validation.passed);
}

void TestLocate::validation_needsTheExecutable()
{
    ShellFixture shell;
    shell.makeFolder(u"Sim/ShadersHLSL"_s);
    shell.makeFolder(u"Sim/Missions"_s);
    const Validation validation = validateSimulator(shell.files, u"C:\\Sim\\"_s, FSX);
    QVERIFY(validation.passed && !validation.valid());
    QCOMPARE(validationCause(validation, FSX), u"'fsx.exe' is missing"_s);
}

void TestLocate::option_isTheOnlyFolderTried()
{
    ShellFixture shell;
    shell.makeFsx(u"Games/FSX"_s);
    machineValue(shell, fsKey + u"\\10.0"_s, u"SetupPath"_s, u"C:\\Games\\FSX"_s);
    const Located wrong(shell, u"C:\\Elsewhere"_s);
    QVERIFY(!wrong.result && wrong.result.kind == ErrorKind::Surroundings);
    QVERIFY(wrong.result.text.contains(u"'C:\\Elsewhere\\' (named with --sim)"_s));
    QCOMPARE(wrong.simulator.chosen.folder, u"C:\\Elsewhere\\"_s);

    shell.makeFsx(u"Other"_s);
    const Located right(shell, u"C:\\OTHER"_s);
    QVERIFY2(right.result, qPrintable(right.result.text));
    QCOMPARE(right.simulator.chosen.folder, u"C:\\Other\\"_s);
    QCOMPARE(right.simulator.chosen.foundBy, u"option"_s);
    QCOMPARE(shell.global.effectsFolder, u"C:\\Other\\Effects\\"_s);
}

void TestLocate::overrideFile_goesBeforeTheRegistry()
{
    ShellFixture shell;
    shell.makeFsx(u"A"_s);
    shell.makeFsx(u"B"_s);
    machineValue(shell, fsKey + u"\\10.0"_s, u"SetupPath"_s, u"C:\\A\\"_s);
    shell.write(u"Vantrel/SimPath.txt"_s, "\r\n  \"C:\\B\"\r\nC:\\A\r\n");
    const Located located(shell);
    QVERIFY(located.result);
    QCOMPARE(located.simulator.chosen.folder, u"C:\\B\\"_s);
    QCOMPARE(located.simulator.chosen.foundBy, u"SimPath.txt"_s);
    QCOMPARE(shell.global.currentProcedure,
             u"Application_Startup : ConfigureFlightSimulator (END)"_s);
}

void TestLocate::overrideFile_thatIsWrongIsWarnedAbout()
{
    ShellFixture shell;
    shell.makeFsx(u"A"_s);
    machineValue(shell, fsKey + u"\\10.0"_s, u"SetupPath"_s, u"C:\\A"_s);
    shell.write(u"Vantrel/SimPath.txt"_s, "C:\\Gone");
    shell.prompts.expect(u"Unknown Version Detected"_s, Button::Ok);
    const Located located(shell, {}, true);
    QVERIFY(located.result);
    QCOMPARE(located.simulator.chosen.foundBy, u"registry"_s);
    QCOMPARE(
        shell.prompts.asked.first().text,
        u"Vantrel for FS X has been directed to work with Flight Simulator X located in:\n\n     C:\\Gone\\\n\nhowever this does not appear to be a valid version of Flight Simulator X. Please specify a valid version in:\n\n     C:\\Vantrel\\SimPath.txt\n\nor delete this file to use the version specified in the registry."_s);
}

void TestLocate::registry_ofTheGeneration_data()
{
    QTest::addColumn<int>("generation");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("foundBy");
    const QString played =
        u"Software\\Microsoft\\DirectPlay\\Applications\\Microsoft Flight Simulator 2004"_s;
    QTest::newRow("FSX") << 5 << fsKey + u"\\10.0"_s << u"SetupPath"_s << u" C:/Sim "_s
                         << u"registry"_s;
    QTest::newRow("FSX SDK") << 5 << fsKey + u" X SDK\\10.0"_s << u"SetupPath"_s
                             << u"C:\\Sim SDK\\"_s << u"registry (SDK)"_s;
    QTest::newRow("FSX SDK without version")
        << 5 << fsKey + u" X SDK"_s << u"SetupPath"_s << u"C:\\Sim SDK\\"_s << u"registry (SDK)"_s;
    QTest::newRow("Steam Edition") << 5 << u"Software\\DovetailGames\\FSX"_s << u"Install_Path"_s
                                   << u"C:\\Sim"_s << u"registry (Steam Edition)"_s;
    QTest::newRow("FS 2004") << 4 << fsKey + u"\\9.0"_s << u"EXE Path"_s << u"C:\\Sim"_s
                             << u"registry"_s;
    QTest::newRow("FS 2004, played")
        << 4 << played << u"Path"_s << u"C:\\Sim"_s << u"registry (DirectPlay)"_s;
    QTest::newRow("FS 2004, played in")
        << 4 << played << u"CurrentDirectory"_s << u"C:\\Sim"_s << u"registry (DirectPlay)"_s;
    QTest::newRow("FS 2002") << 2 << fsKey + u"\\8.0"_s << u"EXE Path"_s << u"C:\\Sim"_s
                             << u"registry"_s;
}

void TestLocate::registry_ofTheGeneration()
{
    QFETCH(int, generation);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, text);
    ShellFixture shell(generation);
    shell.write(u"Sim/"_s + shell.global.simulatorExecutable);
    for (const QString& folder : {u"ShadersHLSL"_s, u"Missions"_s, u"Config"_s})
        shell.makeFolder(u"Sim/"_s + folder);
    shell.write(u"Sim/Scenery.cfg"_s);
    shell.write(u"Sim/Fs2002.cfg"_s);
    QVERIFY(!Located(shell).result);
    machineValue(shell, key, value, text);
    const Located located(shell);
    QVERIFY2(located.result, qPrintable(located.result.text));
    QCOMPARE(located.simulator.chosen.folder, u"C:\\Sim\\"_s);
    QTEST(located.simulator.chosen.foundBy, "foundBy");
    QCOMPARE(located.simulator.generation, generation);
}

void TestLocate::registry_skipsPlaceholdersAndCutsAtNul()
{
    ShellFixture shell;
    shell.makeFsx(u"Sim"_s);
    machineValue(shell, fsKey + u"\\10.0"_s, u"SetupPath"_s, u"0"_s);
    machineValue(shell, u"Software\\DovetailGames\\FSX"_s, u"Install_Path"_s, u"1"_s);
    QVERIFY(shell.store.setValue(Hive::CurrentUser,
                                 fsKey + u" - Steam Edition\\10.0"_s,
                                 u"AppPath"_s,
                                 u"C:\\Sim"_s + QChar::Null + u"rest"_s));
    const Located located(shell);
    QVERIFY(located.result);
    QVERIFY(located.simulator.refused.isEmpty());
    QCOMPARE(located.simulator.chosen.foundBy, u"registry (Steam Edition)"_s);
}

void TestLocate::fallback_offersToCorrectTheRegistry()
{
    for (const Button answer : {Button::No, Button::Yes}) {
        ShellFixture shell;
        shell.makeFsx(u"Sim"_s);
        machineValue(shell, fsKey + u" X SDK\\10.0"_s, u"SetupPath"_s, u"C:\\Sim SDK"_s);
        Located located(shell);
        QVERIFY(located.simulator.registryLacks);
        shell.prompts.expect(
            u"Would you like Vantrel for FS X to update the Windows registry with the correct path to Flight Simulator X?"_s,
            answer);
        QVERIFY(offerRegistryUpdate(shell.context, shell.registry, located.simulator));
        QVERIFY(offerRegistryUpdate(shell.context, shell.registry, located.simulator));
        QCOMPARE(shell.prompts.asked.size(), 1);
        const std::optional<QString> written =
            shell.store.value(Hive::LocalMachine, fsKey + u"\\10.0"_s, u"SetupPath"_s);
        QCOMPARE(written.has_value(), answer == Button::Yes);
        QCOMPARE(Located(shell).simulator.chosen.foundBy,
                 answer == Button::Yes ? u"registry"_s : u"registry (SDK)"_s);
    }
}

void TestLocate::user_isAskedUntilTheFolderIsValid()
{
    ShellFixture shell;
    shell.makeFsx(u"Good"_s);
    shell.makeFolder(u"Empty"_s);
    shell.makeFsx(u"Mixed"_s);
    shell.writeLong(u"Mixed/fs9.exe"_s, 400'001);
    shell.prompts.expectText(u"Flight Simulator X was not found"_s, u"C:\\Empty"_s);
    shell.prompts.expectText(u"(Error code=2)"_s, u"\"C:\\Mixed\""_s);
    shell.prompts.expect(
        u"A version of Flight Simulator X was found that is not recognized by Vantrel for FS X (Error code = 4)."_s,
        Button::Ok);
    shell.prompts.expectText(u"(Error code=4)"_s, u"c:\\good"_s);
    const Located located(shell, {}, true);
    QVERIFY(located.result);
    QCOMPARE(located.simulator.chosen.folder, u"C:\\Good\\"_s);
    QCOMPARE(located.simulator.chosen.foundBy, u"user"_s);
}

void TestLocate::user_whoGivesNothingEndsTheSearch()
{
    ShellFixture shell;
    shell.prompts.expectText(u"(Error code=0)"_s, u"  "_s);
    const Located located(shell, {}, true);
    QVERIFY(!located.result);
    QCOMPARE(
        located.result.text,
        u"Flight Simulator X was not found: no folder is known from the registry; name its folder with --sim or in 'SimPath.txt'."_s);
}

void TestLocate::failure_namesEveryFolderAndItsCause()
{
    ShellFixture shell;
    shell.write(u"A/fsx.exe"_s);
    shell.makeFolder(u"A/Missions"_s);
    machineValue(shell, fsKey + u"\\10.0"_s, u"SetupPath"_s, u"C:\\A"_s);
    machineValue(shell, u"Software\\DovetailGames\\FSX"_s, u"Install_Path"_s, u"C:\\B"_s);
    const Located located(shell);
    QCOMPARE(
        located.result.text,
        u"Flight Simulator X was not found: 'C:\\A\\' (registry) is not valid because the folder 'ShadersHLSL' is missing (error code 1); 'C:\\B\\' (registry (Steam Edition)) is not valid because the folder does not exist; name its folder with --sim or in 'SimPath.txt'."_s);
    QCOMPARE(located.simulator.chosen.validation.code, 1);
}

void TestLocate::steamEdition_hasFoldersOfItsOwn()
{
    ShellFixture shell;
    const ShellFolders folders{u"C:\\d\\"_s, u"C:\\r\\"_s, u"C:\\a\\"_s, u"C:\\"_s};
    QCOMPARE(editionFolder(shell.files, folders, true), u"FSX"_s);
    shell.makeFolder(u"a/Microsoft/FSX-SE"_s);
    QCOMPARE(editionFolder(shell.files, folders, false), u"FSX-SE"_s);
    shell.makeFolder(u"r/Microsoft/FSX"_s);
    QCOMPARE(editionFolder(shell.files, folders, false), u"FSX"_s);
    QCOMPARE(editionFolder(shell.files, folders, true), u"FSX-SE"_s);
}

void TestLocate::found_simulatorMayBeWritten()
{
    ShellFixture shell;
    shell.makeFsx(u"Sim"_s);
    QVERIFY(!shell.gate.place(u"C:\\Sim\\Effects\\a.fx"));
    QVERIFY(Located(shell, u"C:\\Sim"_s).result);
    for (const QString& path : {u"C:\\Sim\\Effects\\a.fx"_s,
                                shell.global.sceneryCfgFile,
                                shell.global.mainConfigFolder + u"fsx.cfg"_s,
                                shell.global.userDocumentsFolder + u"a.flt"_s})
        QVERIFY2(shell.gate.place(path), qPrintable(path));
    QVERIFY(!shell.gate.place(u"C:\\ProgramData\\other.txt"));
}

VT_TEST_CLASS(TestLocate)

#include "test_locate.moc"
