#include "platform/Processes.h"
#include "shell/Flying.h"
#include "shell/ShellFixture.h"
#include "simconfig/CFSCFGManager.h"
#include "support/Rows.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::Rows;

namespace {

const QByteArray primaryBytes = "[Main]\r\nHideMenuNormal=1 // off\r\n[USERINTERFACE]\r\n"
                                "SITUATION=C:\\Docs\\Evening\r\n";
const QByteArray lowBytes = "; mine\r\n[Vt_File_Details]\r\nDescription=It's low; // fast\r\n";

/// A simulator with its configuration folder. Its program tells its arguments in "FSX/started" and
/// then waits for the file "FSX/stop".
struct ConfigWorld : test::ShellFixture
{
    explicit ConfigWorld(const QString& edition = u"FSX"_s)
        : folder(u"Data/Microsoft/"_s + edition + u'/')
    {
        global.setSimulatorFolder(u"C:\\FSX\\"_s);
        // Other runs of these tests on the same host have other names, and so has a simulator that
        // ends a moment after its test.
        static int worlds = 0;
        global.simulatorExecutable =
            u"s%1-%2"_s.arg(QCoreApplication::applicationPid()).arg(++worlds);
        global.setConfigFolders(u"C:\\All\\"_s, u"C:\\Data\\"_s, u"C:\\Docs\\"_s, edition);
        gate.setRoot(RootId::UserConfig, global.mainConfigFolder);
        const QString program = u"FSX/"_s + global.simulatorExecutable;
        write(program,
              "#!/bin/sh\nprintf '<%s>' \"$@\" >part\nmv part started\n"
              "while [ -e \"$0\" ] && [ ! -e stop ]; do sleep 0.02; done\n");
        QFile::setPermissions(host(program), QFile::ReadOwner | QFile::ExeOwner);
        write(folder + u"fsx.CFG"_s, primaryBytes);
        write(folder + u"Low.cfg"_s, lowBytes);
    }

    ~ConfigWorld() { write(u"FSX/stop"_s); }

    [[nodiscard]] QByteArray config(const QString& name) const { return read(folder + name); }

    [[nodiscard]] QString path(const QString& name) const { return global.mainConfigFolder + name; }

    [[nodiscard]] QByteArray started()
    {
        if (!QTest::qWaitFor([&] { return exists(u"FSX/started"_s); }, 5'000))
            return "<not started>";
        return read(u"FSX/started"_s);
    }

    QString folder;
    Processes processes{files, Processes::Setup{{}, dir.path()}};
    CFSCFGManager manager{context, processes};
};

} // namespace

class TestConfigs : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void list_primaryFirst()
    {
        ConfigWorld world;
        world.write(world.folder + u"Alps.CFG"_s, "\xff\xfe[\0M\0]\0\r\0\n\0"_ba);
        world.write(world.folder + u"bare.cfg"_s, "[Main]\nx=1\n");
        world.write(world.folder + u"empty.cfg"_s, "");
        world.write(world.folder + u"prose.cfg"_s, "no section\r\n");
        world.write(world.folder + u"garbage.cfg"_s, QByteArray("\0\1[\0]", 5));
        world.write(world.folder + u"FSX.vtb"_s, primaryBytes);
        world.makeFolder(world.folder + u"folder.cfg"_s);
        QVERIFY(world.manager.GetFSCFGFiles().ok);
        QVERIFY(!world.manager.SwitchToFSCFGFile(u"garbage.cfg"_s).ok);
        QStringList names;
        for (const CFSCFGFile& file : world.manager.files())
            names.push_back(file.sName);
        QCOMPARE(names, (QStringList{u"fsx.CFG"_s, u"Alps.CFG"_s, u"bare.cfg"_s, u"Low.cfg"_s}));
        const CFSCFGFile& primary = world.manager.files().at(0);
        QVERIFY(primary.boolPrimary && primary.boolMenuHidden);
        QCOMPARE(primary.sDefaultFlight, u"C:\\Docs\\Evening"_s);
        const CFSCFGFile& low = world.manager.files().at(3);
        QVERIFY(!low.boolPrimary && !low.boolMenuHidden);
        QCOMPARE(low.sDescription, u"It's low; // fast"_s);
        QCOMPARE(low.sDefaultFlight, u"FLIGHTS\\OTHER\\FLTSIM"_s);
        QCOMPARE(world.manager.flightFile(low.sDefaultFlight),
                 u"C:\\FSX\\FLIGHTS\\OTHER\\FLTSIM.FLT"_s);
        world.global.setConfigFolders({}, {}, {}, u"FSX"_s);
        QCOMPARE(world.manager.GetFSCFGFiles().kind, ErrorKind::Surroundings);
    }

    void primary_byEdition()
    {
        // file: one more in the folder
        const Rows<int, QString, QString, QString> rows = {
            {"plain", int(FSX), u"FSX"_s, u"FSX_SE.cfg"_s, u"FSX"_s},
            {"beside", int(FSX), u"FSX-SE"_s, u"fsx_se.CFG"_s, u"FSX_SE"_s},
            {"beside, old name", int(FSX), u"FSX-SE"_s, u"x.cfg"_s, u"FSX"_s},
            {"2004", int(FS2004), u"FS9"_s, u"x.cfg"_s, u"FS9"_s},
        };
        for (const auto& [generation, edition, file, primary] : rows) {
            ConfigWorld world(edition);
            world.write(world.folder + file, "[a]\r\n");
            world.global.setGeneration(generation);
            world.global.setConfigFolders({}, u"C:\\Data\\"_s, {}, edition);
            const QString stem = u"C:\\Data\\Microsoft\\"_s + edition + u'\\' + primary;
            QCOMPARE(world.manager.GetPrimaryFSCFGFilespec(), stem + u".cfg"_s);
            QCOMPARE(world.manager.primaryBackup(), stem + u".vtb"_s);
        }
    }

    void create()
    {
        ConfigWorld world;
        const QString proposed = world.manager.proposedName();
        QCOMPARE(proposed, u"New FS X configuration file.cfg"_s);
        QVERIFY(world.manager.CreateNewFSCFGFile(proposed).ok);
        QCOMPARE(world.config(proposed), primaryBytes);
        QCOMPARE(world.manager.proposedName(), u"New FS X configuration file 2.cfg"_s);
        QVERIFY(world.manager.CreateNewFSCFGFile(u"High"_s, u" Cruise "_s).ok);
        QCOMPARE(world.config(u"High.cfg"_s),
                 "[VT_FILE_DETAILS]\r\nDescription=Cruise\r\n" + primaryBytes);

        const QString taken =
            u"Could not create CFG file: '"_s + world.path(u"low.cfg"_s) + u"'."_s;
        QVERIFY(world.manager.CreateNewFSCFGFile(u"low"_s).text.startsWith(taken));
        QCOMPARE(world.config(u"Low.cfg"_s), lowBytes);
        QVERIFY(!world.manager.CreateNewFSCFGFile(u"..\\x.cfg"_s).ok);
        QVERIFY(!world.manager.CreateNewFSCFGFile(u"Odd"_s, u"\u4e2d"_s).ok);
        QVERIFY(!world.exists(world.folder + u"Odd.cfg"_s));
        QVERIFY(world.actions.remove(world.path(u"fsx.cfg"_s)).ok);
        QCOMPARE(world.manager.CreateNewFSCFGFile(u"n"_s).text,
                 u"Could not locate primary CFG file: '"_s + world.path(u"FSX.cfg"_s) + u"'."_s);
    }

    void describe_touchesItsLineOnly()
    {
        ConfigWorld world;
        QVERIFY(world.manager.GetFSCFGFiles().ok);
        world.manager.setDescription(0, u"The \u00dcsual"_s);
        world.manager.setDescription(1, u"New // one"_s);
        QCOMPARE(world.manager.SaveFSCFGFiles().text, u"Changes were saved."_s);
        QCOMPARE(world.config(u"fsx.CFG"_s),
                 "[VT_FILE_DETAILS]\r\nDescription=The \xdcsual\r\n" + primaryBytes);
        QCOMPARE(world.config(u"Low.cfg"_s),
                 "; mine\r\n[Vt_File_Details]\r\nDescription=New // one\r\n"_ba);
        world.write(world.folder + u"Low.cfg"_s, "[a]\n");
        const Result refused = world.manager.UpdateFSCFGFileDescription(u"Low.cfg"_s, u"x"_s);
        QVERIFY2(
            refused.text.startsWith(u"Could not update CFG file: '"_s + world.path(u"Low.cfg"_s)),
            qPrintable(refused.text));
        QCOMPARE(world.config(u"Low.cfg"_s), "[a]\n"_ba);
    }

    void rename()
    {
        const QString low = u"Low.cfg"_s;
        const auto renamed = [](const QString& to) {
            return u"The file 'Low.cfg' was renamed to '"_s + to + u"'."_s;
        };
        const QString type = u"The file's type (cfg) may not be changed."_s;
        const QString noName = u"Please enter a name for this item."_s;
        const QString notValid = u"Please enter a valid name for this item."_s;
        const QString taken = u"Could not rename 'Low.cfg'. There is a file 'Other.cfg' already."_s;
        const QString primary = u"Renaming the primary configuration file is not allowed."_s;
        // left: the name under which the file then lies
        const Rows<QString, QString, QString, QString> rows = {
            {"plain", low, u"High.cfg"_s, renamed(u"High.cfg"_s), u"High.cfg"_s},
            {"case", low, u"LOW.CFG"_s, renamed(u"LOW.CFG"_s), u"LOW.CFG"_s},
            {"unchanged", low, low, u"File was not changed."_s, low},
            {"empty", low, u" "_s, noName, low},
            {"other type", low, u"Low.txt"_s, type, low},
            {"not a name", low, u"a:b.cfg"_s, notValid, low},
            {"no stem", low, u".cfg"_s, notValid, low},
            {"taken", low, u"Other.cfg"_s, taken, low},
            {"primary", u"FSX.cfg"_s, u"x.cfg"_s, primary, low},
        };
        for (const auto& [name, newName, text, left] : rows) {
            ConfigWorld world;
            world.write(world.folder + u"Other.cfg"_s, "[o]\r\n");
            QCOMPARE(world.manager.RenameFSCFGFile(name, newName).text, text);
            QStringList expected = {u"Other.cfg"_s, u"fsx.CFG"_s, left};
            expected.sort(Qt::CaseInsensitive);
            QCOMPARE(world.names(world.folder), expected);
            QCOMPARE(world.config(left), lowBytes);
            if (name != low)
                continue;
            world.prompts.expectText(u"Enter a new name for this configuration file."_s,
                                     std::nullopt);
            QCOMPARE(world.manager.RenameFSCFGFile(left).text, u"Rename aborted."_s);
        }
    }

    void remove()
    {
        ConfigWorld world;
        QCOMPARE(world.manager.RemoveFSCFGFile(u"FSX.CFG"_s).text,
                 u"Removing the primary configuration file is not allowed."_s);
        QVERIFY(world.manager.RemoveFSCFGFile(u"gone.cfg"_s)
                    .text.startsWith(u"Could not remove 'gone.cfg'."_s));
        world.prompts.expect(u"Are you sure you want to remove 'Low.cfg'?"_s, Button::No);
        QCOMPARE(world.manager.RemoveFSCFGFile(u"Low.cfg"_s).kind, ErrorKind::Declined);
        QCOMPARE(world.prompts.asked.constLast().caption, u"Confirm Removal"_s);
        QVERIFY(world.exists(world.folder + u"Low.cfg"_s));
        world.prompts.expect(u"Confirm Removal"_s, Button::Yes);
        QCOMPARE(world.manager.RemoveFSCFGFile(u"Low.cfg"_s).text,
                 u"The file 'Low.cfg' was removed."_s);
        QVERIFY(!world.exists(world.folder + u"Low.cfg"_s));
    }

    void switch_keepsABackup()
    {
        ConfigWorld world;
        QCOMPARE(world.manager.SwitchToFSCFGFile(u"fsx.cfg"_s).text,
                 u"This is already the default configuration file."_s);
        QVERIFY(world.manager.SwitchToFSCFGFile(u"gone.cfg"_s)
                    .text.startsWith(u"Could not read '"_s + world.path(u"gone.cfg"_s) + u"'."_s));
        world.prompts.expect(u"Confirm New Configuration"_s, Button::No);
        QCOMPARE(world.manager.SwitchToFSCFGFile(u"Low.cfg"_s).kind, ErrorKind::Declined);
        QVERIFY(!world.exists(world.folder + u"FSX.vtb"_s));
        QCOMPARE(world.config(u"fsx.CFG"_s), primaryBytes);
        const Prompt asked = world.prompts.asked.constLast();
        QCOMPARE(
            asked.text,
            u"Are you sure you want to switch to 'Low.cfg'? The default configuration file, 'FSX.cfg', will be overwritten."_s);
        QCOMPARE(asked.defaultButton, Button::No);

        world.prompts.expect(u"Confirm New Configuration"_s, Button::Yes);
        QCOMPARE(world.manager.SwitchToFSCFGFile(u"Low.cfg"_s).text,
                 u"'Low.cfg' was copied to 'FSX.cfg' and is now the primary configuration file."_s);
        QCOMPARE(world.config(u"fsx.CFG"_s), lowBytes);
        QCOMPARE(world.config(u"Low.cfg"_s), lowBytes);
        QCOMPARE(world.config(u"FSX.vtb"_s), primaryBytes);
    }

    void switch_failed_leavesAllAsItWas()
    {
        const QString noBackup = u"Could not create backup file "_s;
        const QString noSwitch = u"'Low.cfg' could not be copied to "_s;
        // backup: of an earlier switch; empty for none
        const Rows<QByteArray, QByteArray, QString> rows = {
            {"backup", "FSX.vtb", "", noBackup},
            {"second backup", "FSX.vtb", "old", noBackup},
            {"primary", "fsx.CFG", "", noSwitch},
            {"primary, second time", "fsx.CFG", "old", noSwitch},
        };
        for (const auto& [failing, backup, text] : rows) {
            ConfigWorld world;
            if (!backup.isEmpty())
                world.write(world.folder + u"FSX.vtb"_s, backup);
            const test::TreeSnapshot before = test::hashTree(world.dir.filePath(world.folder));
            world.gate.faultHook = [&](const char*, const QByteArray& host) {
                return host.endsWith('/' + failing) ? ENOSPC : 0;
            };
            world.prompts.expect(u"Confirm New Configuration"_s, Button::Yes);
            const Result switched = world.manager.SwitchToFSCFGFile(u"Low.cfg"_s);
            QVERIFY2(switched.text.startsWith(text), qPrintable(switched.text));
            QCOMPARE(test::differences(before, test::hashTree(world.dir.filePath(world.folder))),
                     QStringList());
        }
    }

    void useOnce()
    {
        ConfigWorld world;
        world.write(u"FSX/stop"_s);
        QCOMPARE(world.manager.UseFSCFGFileOnce(u"Low.cfg"_s).text,
                 u"Launching FS X using 'Low.cfg'."_s);
        QCOMPARE(world.started(), "</CFG:C:\\Data\\Microsoft\\FSX\\Low.cfg>"_ba);
    }

    void flights_areAskedForAndChecked()
    {
        ConfigWorld world;
        world.write(u"Docs/a.flt"_s);
        world.prompts.expect(u"Are you sure you want to start Flight Simulator X now?"_s,
                             Button::No);
        QCOMPARE(startFlying(world.context, world.processes, u"C:\\Docs\\a.flt"_s).kind,
                 ErrorKind::Declined);
        QVERIFY(!startFlying(world.context, world.processes, u"C:\\gone.flt"_s).ok);
    }

    void running_changesNothing()
    {
        ConfigWorld world;
        QVERIFY(world.manager.GetFSCFGFiles().ok);
        QCOMPARE(world.manager.UseFSCFGFileOnce(u"fsx.cfg"_s).text,
                 u"Launching FS X using default configuration."_s);
        QCOMPARE(world.started(), "<>"_ba);
        QVERIFY(world.manager.IsFlightSimulatorRunning());
        const QString folder = world.dir.filePath(world.folder);
        const test::TreeSnapshot before = test::hashTree(folder);
        const QString low = u"Low.cfg"_s;
        world.manager.setDescription(1, u"new"_s);
        for (const Result& refused : {world.manager.CreateNewFSCFGFile(u"x"_s),
                                      world.manager.RemoveFSCFGFile(low),
                                      world.manager.RenameFSCFGFile(low),
                                      world.manager.RenameFSCFGFile(low, u"x.cfg"_s),
                                      world.manager.UpdateFSCFGFileDescription(low, u"x"_s),
                                      world.manager.SaveFSCFGFiles(),
                                      world.manager.SwitchToFSCFGFile(low),
                                      world.manager.UseFSCFGFileOnce(low)})
            QCOMPARE(refused.text, u"FS X is running. Please close FS X and try again."_s);
        QCOMPARE(test::differences(before, test::hashTree(folder)), QStringList());
        QCOMPARE(startFlying(world.context, world.processes).text,
                 u"Flight Simulator X is running already."_s);
    }
};

VT_TEST_CLASS(TestConfigs)
#include "test_configs.moc"
