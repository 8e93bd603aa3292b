#include "ShellFixture.h"
#include "shell/startup/Locate.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::Rows;
using vt::test::ShellFixture;

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

class TestLocate : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void validation_reportsTheLastFailingTest()
    {
        // entries: "name/" is a folder, "name" a file of one byte, "name:N" one of N bytes
        const Rows<int, QString, bool, int> rows = {
            {"FSX", 5, u"ShadersHLSL/ Missions/"_s, true, 0},
            {"FSX, case", 5, u"shadershlsl/ MISSIONS/"_s, true, 0},
            {"FSX without shaders", 5, u"Missions/"_s, false, 1},
            {"FSX without both", 5, u""_s, false, 2},
            {"FSX, file as folder", 5, u"ShadersHLSL/ Missions"_s, false, 2},
            {"and FS 2002", 5, u"ShadersHLSL/ Missions/ Fs2002.exe:140001"_s, false, 3},
            {"small Fs2002.exe", 5, u"ShadersHLSL/ Missions/ Fs2002.exe:140000"_s, true, 0},
            {"and FS 2004", 5, u"ShadersHLSL/ Missions/ fs9.exe:400001"_s, false, 4},
            {"small fs9.exe", 5, u"ShadersHLSL/ Missions/ fs9.exe:400000"_s, true, 0},
            {"first later one counts",
             5,
             u"ShadersHLSL/ Missions/ fsxi.exe fs2009.exe"_s,
             false,
             6},
            {"last later program", 5, u"fsxi.exe fs9.exe:400001"_s, false, 9},
            {"FS 2004", 4, u"Config/"_s, true, 0},
            {"FS 2004 without Config", 4, u""_s, false, 1},
            {"FS 2004 and FSX", 4, u"fsx.exe Fs2002.exe:140001"_s, false, 4},
            {"FS 2004 and a later one", 4, u"Config/ fs10.exe"_s, false, 5},
            {"FS 2002", 2, u"Scenery.cfg Fs2002.cfg"_s, true, 0},
            {"FS 2002 without its cfg", 2, u"Scenery.cfg"_s, false, 0},
            {"and FS 2000", 2, u"Scenery.cfg Fs2002.cfg Fs2000.exe:150001"_s, false, 0},
            {"FS 2002 and FS 2004", 2, u"Scenery.cfg Fs2002.cfg Fs2004.cfg"_s, false, 0},
        };
        for (const auto& [generation, entries, passed, code] : rows) {
            ShellFixture shell(generation);
            shell.write(u"Sim/"_s + shell.global.simulatorExecutable);
            for (const QString& entry : entries.split(u' ', Qt::SkipEmptyParts)) {
                const QStringList parts = entry.split(u':');
                if (entry.endsWith(u'/'))
                    shell.makeFolder(u"Sim/"_s + entry);
                else
                    shell.writeLong(u"Sim/"_s + parts[0], parts.value(1, u"1"_s).toLongLong());
            }
            const Validation validation = validateSimulator(shell.files, u"C:\\sim"_s, generation);
            QCOMPARE(validation.passed, passed);
            QCOMPARE(validation.code, code);
            QCOMPARE(validation.valid(), validation.passed);
        }
    }

    void validation_needsTheExecutable()
    {
        ShellFixture shell;
        shell.makeFolder(u"Sim/ShadersHLSL"_s);
        shell.makeFolder(u"Sim/Missions"_s);
        const Validation validation = validateSimulator(shell.files, u"C:\\Sim\\"_s, FSX);
        QVERIFY(validation.passed && !validation.valid());
        QCOMPARE(validationCause(validation, FSX), u"'fsx.exe' is missing"_s);
    }

    void option_isTheOnlyFolderTried()
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

    void overrideFile_goesBeforeTheRegistry()
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

    void overrideFile_thatIsWrongIsWarnedAbout()
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

    void registry_ofTheGeneration()
    {
        const QString setup = u"SetupPath"_s;
        const QString exe = u"EXE Path"_s;
        const QString sdk = u"C:\\Sim SDK\\"_s;
        const QString sim = u"C:\\Sim"_s;
        const QString steam = u"Software\\DovetailGames\\FSX"_s;
        const QString played =
            u"Software\\Microsoft\\DirectPlay\\Applications\\Microsoft Flight Simulator 2004"_s;
        // by: in brackets behind "registry"
        const Rows<int, QString, QString, QString, QString> rows = {
            {"FSX", 5, fsKey + u"\\10.0"_s, setup, u" C:/Sim "_s, {}},
            {"FSX SDK", 5, fsKey + u" X SDK\\10.0"_s, setup, sdk, u" (SDK)"_s},
            {"FSX SDK without version", 5, fsKey + u" X SDK"_s, setup, sdk, u" (SDK)"_s},
            {"Steam Edition", 5, steam, u"Install_Path"_s, sim, u" (Steam Edition)"_s},
            {"FS 2004", 4, fsKey + u"\\9.0"_s, exe, sim, {}},
            {"FS 2004, played", 4, played, u"Path"_s, sim, u" (DirectPlay)"_s},
            {"FS 2004, played in", 4, played, u"CurrentDirectory"_s, sim, u" (DirectPlay)"_s},
            {"FS 2002", 2, fsKey + u"\\8.0"_s, exe, sim, {}},
        };
        for (const auto& [generation, key, value, text, by] : rows) {
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
            QCOMPARE(located.simulator.chosen.foundBy, u"registry"_s + by);
            QCOMPARE(located.simulator.generation, generation);
        }
    }

    void registry_skipsPlaceholdersAndCutsAtNul()
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

    void fallback_offersToCorrectTheRegistry()
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

    void user_isAskedUntilTheFolderIsValid()
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

    void user_whoGivesNothingEndsTheSearch()
    {
        ShellFixture shell;
        shell.prompts.expectText(u"(Error code=0)"_s, u"  "_s);
        const Located located(shell, {}, true);
        QVERIFY(!located.result);
        QCOMPARE(
            located.result.text,
            u"Flight Simulator X was not found: no folder is known from the registry; name its folder with --sim or in 'SimPath.txt'."_s);
    }

    void failure_namesEveryFolderAndItsCause()
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

    void steamEdition_hasFoldersOfItsOwn()
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

    void found_simulatorMayBeWritten()
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
};

VT_TEST_CLASS(TestLocate)

#include "test_locate.moc"
