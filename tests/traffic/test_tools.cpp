// The outside tools as real processes: found, asked for, run, and ended when they hang.
#include "shell/ShellFixture.h"
#include "support/Rows.h"
#include "support/StandInTool.h"
#include "support/TestMain.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"
#include "traffic/OutsideTool.h"

#include <csignal>

using namespace Qt::StringLiterals;
using namespace vt;
using test::Rows;

namespace {

constexpr int quickMs = 700;

struct ToolWorld : test::ShellFixture
{
    explicit ToolWorld(int generation = FS2004) : ShellFixture(generation)
    {
        global.setSimulatorFolder(u"C:\\FS\\"_s);
        gate.setRoot(RootId::Simulator, global.simulatorFolder);
        tools.createTimeoutMs = quickMs;
    }

    void putTools() { test::putTrafficTools(dir.filePath(u"Vantrel/Traffic Tools"_s)); }

    void putSources()
    {
        const QString end = (global.generation == FS2004 ? u"030528"_s : QString()) + u".txt"_s;
        write(top + u"Aircraft"_s + end, "AC#1,450,\"A\"\r\n");
        write(top + u"Airports"_s + end, "KSEA\r\n");
        write(top + u"FlightPlans"_s + end, "AC#1,N1,50%,WEEK,IFR\r\n");
    }

    void order(const QByteArray& lines) { write(top + u"standin.txt"_s, lines); }

    const QString top = u"Vantrel/Traffic Tools/"_s;
    const Processes processes{files, Processes::Setup{{}, dir.path()}};
    CTrafficTools tools{context, &processes};
};

} // namespace

class TestTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void locate();
    void run_argumentsByGeneration();
    void run_failures();
    void hanging_leavesNoChild();
    void create_readsBack();
    void collect_asksForTheLonger();
    void sources_missingAndChanged();
    void sources_writtenAllOrNone();
    void airports_areHandedOver();
};

void TestTools::locate()
{
    ToolWorld world;
    world.prompts.expectText(u"Please specify the location where Traffic Tools is installed."_s,
                             std::nullopt);
    QCOMPARE(world.tools.Tool_Locate().kind, ErrorKind::Surroundings);

    // A version that is too old, or another folder.
    world.write(u"Old/TTools.exe"_s);
    world.prompts.expectText(u"Please specify"_s, u"C:\\old"_s);
    world.prompts.expect(u"Traffic Tools version 2.02 or higher is required."_s, Button::Ok);
    const Result old = world.tools.Tool_Locate();
    QVERIFY(!old.ok && world.tools.folder().isEmpty());
    QCOMPARE(world.prompts.asked.constLast().caption, u"Invalid Program Configuration"_s);
    QVERIFY(world.settings.text(SettingKey::TrafficToolsFolder).isEmpty());

    test::putTrafficTools(world.dir.filePath(u"Elsewhere"_s));
    world.files.newOperation();
    world.prompts.expectText(u"Please specify"_s, world.dir.filePath(u"Elsewhere"_s));
    QVERIFY(world.tools.Tool_Locate().ok);
    QCOMPARE(CTrafficTools(world.context).Tool_Find(), true); // from the settings, unasked
    QVERIFY(world.gate.place(u"C:\\Elsewhere\\a.txt"_s).ok());

    // Unpacked into the simulator's own folder: that stays the simulator's.
    Gate gate(world.files);
    gate.setRoot(RootId::Tools, u"C:\\FS"_s);
    gate.setRoot(RootId::Simulator, u"C:\\FS\\"_s);
    QCOMPARE(gate.place(u"C:\\FS\\a.txt"_s)->root, RootId::Simulator);

    ToolWorld usual;
    usual.putTools();
    QVERIFY(usual.tools.Tool_Locate().ok);
    QCOMPARE(usual.tools.folder(), u"C:\\Vantrel\\Traffic Tools\\"_s);
}

void TestTools::run_argumentsByGeneration()
{
    const Rows<int, QByteArray> rows = {
        {"2004",
         FS2004,
         "TTools.exe|/fp|/t4|/co030528\nTTools.exe|/fp|/t4|/de030528\nCollectAirports.exe|/c4\n"},
        {"X", FSX, "TTools.exe|/fp|/co\nTTools.exe|/fp|/de\nCollectAirports.exe\n"},
    };
    for (const auto& [generation, log] : rows) {
        ToolWorld world(generation);
        world.putTools();
        world.putSources();
        world.order("mode=silent\n");
        QVERIFY(world.tools.Tool_Locate().ok);
        QVERIFY(world.tools.Sources_Compile().ok);
        const Result created = world.tools.Sources_Create();
        QVERIFY(!created);
        QVERIFY2(created.text.startsWith(u"Could not create source files. Traffic Tools ended"_s),
                 qPrintable(created.text));
        // Only for one generation is it known what must come of it.
        QCOMPARE(world.tools.Airports_Collect().ok, generation != FS2004);
        QCOMPARE(world.read(world.top + u"standin.log"_s), log);
    }
    QCOMPARE(compileArguments(TrafficNames::of(FS2004)), u" /fp /t4 /co030528"_s);
    QCOMPARE(decompileArguments(TrafficNames::of(FSX)), u" /fp /de"_s);
}

void TestTools::run_failures()
{
    const Rows<QByteArray, QString, bool> rows = {
        {"error", "mode=fail\n", u"reported the error 7: The disk is round."_s, false},
        {"crash", "mode=crash\n", u"ended by a fault of its own"_s, true},
        {"hang", "mode=hang\n", u"had not finished after 700 milliseconds"_s, false},
    };
    for (const auto& [order, cause, announced] : rows) {
        ToolWorld world;
        world.putTools();
        world.putSources();
        world.order(order);
        if (announced)
            world.prompts.expect(u"Unexpected Error"_s, Button::Ok);
        QVERIFY(world.tools.Tool_Locate().ok);
        const Result failed = world.tools.Sources_Create();
        QVERIFY2(failed.text.startsWith(u"Could not create source files. "_s) &&
                     failed.text.contains(cause),
                 qPrintable(failed.text));
    }
    ToolWorld world;
    world.putTools();
    QVERIFY(world.tools.Tool_Locate().ok);
    QVERIFY(world.tools.Sources_Compile().text.contains(u"Aircraft030528.txt' was not found."_s));
    QVERIFY(QFile::remove(world.dir.filePath(world.top + u"CollectAirports.exe"_s)));
    world.files.newOperation();
    QVERIFY(world.tools.Airports_Collect().text.contains(u"CollectAirports.exe' was not found."_s));
}

void TestTools::hanging_leavesNoChild()
{
    ToolWorld world;
    world.putTools();
    world.order("mode=hang\n");
    QVERIFY(world.tools.Tool_Locate().ok);
    QVERIFY(!world.tools.Sources_Create().ok);
    const QList<QByteArray> pids =
        world.read(world.top + u"standin.pids"_s).simplified().split(' ');
    QCOMPARE(pids.size(), 2);
    for (const QByteArray& pid : pids)
        QVERIFY(QTest::qWaitFor([&] { return kill(pid.toInt(), 0) != 0; }, 5000));
}

void TestTools::create_readsBack()
{
    ToolWorld world;
    world.tools.createTimeoutMs = 60'000;
    world.putTools();
    world.putSources();
    QVERIFY(world.tools.Tool_Locate().ok);
    QVERIFY(world.tools.Sources_Compile().ok);
    QVERIFY(world.exists(world.top + u"traffic_030528.bgl"_s));
    world.write(world.top + u"FlightPlans030528.txt"_s, "lost");
    QVERIFY(world.tools.Sources_Create().ok);
    QCOMPARE(world.read(world.top + u"FlightPlans030528.txt"_s), "AC#1,N1,50%,WEEK,IFR\r\n"_ba);
}

void TestTools::collect_asksForTheLonger()
{
    for (const Button answer : {Button::No, Button::Yes}) {
        ToolWorld world;
        world.putTools();
        world.putSources();
        QVERIFY(world.tools.Tool_Locate().ok);
        QVERIFY(world.tools.Sources_Read(world.actions, CTrafficTools::Missing::Ask).ok);
        QStringList told;
        TrafficSet set;
        set.lines[int(TrafficKind::Airports)] = {"K105,N47* 26.94',W122* 18.56',433"};
        set.lines[int(TrafficKind::FlightPlans)] = {"AC#1,N2,50%,WEEK,IFR"};
        world.tools.FlightPlans_Add(3, u"Pack"_s, {set}, told);
        QVERIFY(world.tools.Sources_Write(world.actions).ok);
        world.prompts.expect(u"You can opt to overwrite your 'C:\\Vantrel"_s, answer);
        QVERIFY(world.tools.Airports_Collect().ok);
        QVERIFY(world.prompts.asked.constLast().caption.startsWith(u"Overwrite "_s));
        const bool replaced = answer == Button::Yes;
        QCOMPARE(world.read(world.top + u"Airports030528.txt"_s) ==
                     world.read(world.top + u"Airports_FS2004.txt"_s),
                 replaced);
        // What the collector listed is no add-on's, though one had brought the same line.
        QVERIFY(world.tools.Sources_Read(world.actions, CTrafficTools::Missing::Ask).ok);
        world.tools.FlightPlans_Remove(3, told);
        QVERIFY(world.tools.Sources_Write(world.actions).ok);
        QCOMPARE(world.read(world.top + u"Airports030528.txt"_s).contains("K105"), replaced);
        QCOMPARE(world.read(world.top + u"FlightPlans030528.txt"_s), "AC#1,N1,50%,WEEK,IFR\r\n"_ba);
        QVERIFY(!world.exists(world.top + u"VT A.I. Flight Plans Data File.txt"_s));
    }
}

void TestTools::sources_missingAndChanged()
{
    ToolWorld world;
    world.putTools();
    world.putSources();
    const QString plans = world.top + u"FlightPlans030528.txt"_s;
    QVERIFY(QFile::remove(world.dir.filePath(plans)));
    world.files.newOperation();
    QVERIFY(world.tools.Tool_Locate().ok);
    const QString question =
        u"C:\\Vantrel\\Traffic Tools\\FlightPlans030528.txt was not found. Create it now?"_s;
    world.prompts.expect(question, Button::No);
    QCOMPARE(world.tools.Sources_Read(world.actions, CTrafficTools::Missing::Ask).kind,
             ErrorKind::Declined);
    world.prompts.expect(question, Button::Yes);
    QVERIFY(world.tools.Sources_Read(world.actions, CTrafficTools::Missing::Ask).ok);
    QStringList told;
    TrafficSet set;
    set.lines[int(TrafficKind::FlightPlans)] = {"AC#1,N2,50%,WEEK,IFR"};
    world.tools.FlightPlans_Add(3, u"Pack"_s, {set}, told);
    QCOMPARE(
        told,
        (QStringList{u"Nothing to add to 'C:\\Vantrel\\Traffic Tools\\Aircraft030528.txt'."_s,
                     u"Nothing to add to 'C:\\Vantrel\\Traffic Tools\\Airports030528.txt'."_s}));
    world.write(plans, "somebody's\r\n");
    world.prompts.expect(u" was modified since it was last read. Continue anyway?"_s, Button::No);
    QCOMPARE(world.tools.Sources_Write(world.actions).kind, ErrorKind::Declined);
    QCOMPARE(world.read(plans), "somebody's\r\n"_ba);
    QVERIFY(!world.exists(world.top + u"VT A.I. Flight Plans Data File.txt"_s));

    QVERIFY(QFile::remove(world.dir.filePath(plans)));
    world.files.newOperation();
    QVERIFY(world.tools.Sources_Write(world.actions).ok);
    QCOMPARE(world.read(plans), "AC#1,N2,50%,WEEK,IFR\r\n"_ba);
    // The file that was made for the add-on goes with it.
    QVERIFY(world.tools.Sources_Read(world.actions, CTrafficTools::Missing::Ignore).ok);
    world.tools.FlightPlans_Remove(3, told);
    QVERIFY(world.tools.Sources_Write(world.actions).ok);
    QVERIFY(!world.exists(plans));

    world.write(plans, "\xff\xfe A");
    QVERIFY(world.tools.Sources_Read(world.actions, CTrafficTools::Missing::Ask)
                .text.startsWith(u"Could not read source file 'C:\\Vantrel"_s));
    ToolWorld newer(FSX);
    newer.putTools();
    QVERIFY(newer.tools.Tool_Locate().ok);
    newer.prompts.expect(u"\\Aircraft.txt was not found. Create it now?"_s, Button::No);
    QVERIFY(!newer.tools.Sources_Read(newer.actions, CTrafficTools::Missing::Ask).ok);
}

void TestTools::sources_writtenAllOrNone()
{
    ToolWorld world;
    world.putTools();
    world.putSources();
    QVERIFY(world.tools.Tool_Locate().ok);
    QVERIFY(world.tools.Sources_Read(world.actions, CTrafficTools::Missing::Ask).ok);
    TrafficSet set;
    set.lines[int(TrafficKind::Aircraft)] = {"AC#2,450,\"B\""};
    set.lines[int(TrafficKind::FlightPlans)] = {"AC#2,N2,50%,WEEK,IFR"};
    QStringList told;
    world.tools.FlightPlans_Add(3, u"Pack"_s, {set}, told);
    world.gate.faultHook = [](const char*, const QByteArray& host) {
        return host.endsWith("/FlightPlans030528.txt") ? ENOSPC : 0;
    };
    const Result failed = world.tools.Sources_Write(world.actions);
    QVERIFY2(failed.text.contains(u"FlightPlans030528.txt' could not be modified."_s),
             qPrintable(failed.text));
    QCOMPARE(world.read(world.top + u"Aircraft030528.txt"_s), "AC#1,450,\"A\"\r\n"_ba);
    QVERIFY(!world.exists(world.top + u"VT A.I. Flight Plans Data File.txt"_s));
}

void TestTools::airports_areHandedOver()
{
    ToolWorld world;
    CAFCAD editor(world.context, &world.processes);
    QVERIFY(!editor.isOfUse() && !editor.Tool_Find());
    world.write(u"AFCAD2/AFCAD.exe"_s);
    world.settings.setText(SettingKey::AFCADFolder, u"C:\\AFCAD2"_s);
    world.prompts.expect(
        u"AFCAD program configuration is not valid.\n\nC:\\AFCAD2\\AFInstaller.exe was not found."_s,
        Button::Ok);
    QVERIFY(!editor.Tool_Locate().ok);
    world.settings.setText(SettingKey::AFCADFolder, QString()); // then the usual places
    test::putStandIns(world.dir.filePath(u"FS/AFCAD2"_s), {u"AFCAD.exe"_s, u"AFInstaller.exe"_s});
    const QString scenery = u"FS/SCENEDB/AFDFILES/SCENERY/"_s;
    world.write(scenery + u"AF2_KSEA.bgl"_s, "old");
    world.write(u"Vantrel/Addons/Pack/AF2_KSEA.bgl"_s, "new");
    world.write(u"FS/AFCAD2/standin.txt"_s,
                "C=" + world.dir.path().toUtf8() + "\nsim=" + world.dir.filePath(u"FS"_s).toUtf8());
    QVERIFY(editor.isOfUse() && editor.Tool_Locate().ok);
    const Result installed =
        editor.AirportFiles_Install({u"C:\\Vantrel\\Addons\\Pack\\AF2_KSEA.bgl"_s});
    QVERIFY2(installed.ok, qPrintable(installed.text));
    QCOMPARE(world.read(u"FS/AFCAD2/standin.log"_s),
             "AFInstaller.exe|C:\\FS\\AFCAD2\\VTListFile.lst|/W\n"_ba);
    QVERIFY(!world.exists(u"FS/AFCAD2/VTListFile.lst"_s));
    QCOMPARE(world.read(scenery + u"AF2_KSEA.bgl"_s), "new"_ba);
    QCOMPARE(world.read(scenery + u"AF2_KSEA.bgl.ORIGINAL"_s), "old"_ba);
    QVERIFY(!CAFCADMetaGroup::isAirportFile(u"airport.bgl") &&
            !CAFCADMetaGroup::isAirportFile(u"AF2_KSEA.txt"));
}

VT_TEST_CLASS(TestTools)
#include "test_tools.moc"
