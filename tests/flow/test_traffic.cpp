// Add-ons with flight plans and airport files, through whole installations and removals.
#include "addondb/AddonDatabase.h"
#include "flow/FlowWorld.h"
#include "support/StandInTool.h"
#include "support/TestMain.h"
#include "traffic/CTrafficTools.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

void asGeneration(FlowWorld& world, int generation)
{
    world.global.setGeneration(generation);
    world.global.setSimulatorFolder(world.demo.simulatorFolder);
    world.global.sceneryCfgFile = world.demo.allUsersFolder + u"Scenery.cfg"_s;
}

struct TrafficWorld
{
    explicit TrafficWorld(int generation = FS2004)
        : world(dir.path()), stamp(generation == FS2004 ? u"030528"_s : QString())
    {
        asGeneration(world, generation);
        if (!world.start())
            qFatal("the world does not start");
    }

    void putTools()
    {
        putTrafficTools(tools());
        writeHostFile(source(u"Aircraft"), "AC#1,450,\"Own\"\n; end");
        writeHostFile(source(u"Airports"), "KSEA\r\nKSFO\r\n");
        writeHostFile(source(u"FlightPlans"), "AC#1,N1,50%,WEEK,IFR\r\n");
        world.files.newOperation();
    }

    [[nodiscard]] QString tools() const { return dir.filePath(u"program/Traffic Tools"_s); }

    [[nodiscard]] QString source(QStringView base) const
    {
        return tools() + u"/"_s + base.toString() + stamp + u".txt"_s;
    }

    /// Two sets of plans, some of which other packs bring too.
    [[nodiscard]] QString pack(int number) const
    {
        const QByteArray n = QByteArray::number(number);
        const QString top = u"Pack"_s + QString::number(number) + u'/';
        return writePack(
            dir.filePath(u"packs"_s),
            u"Pack"_s + QString::number(number),
            {{top + u"AI/Aircraft_A.txt"_s, "AC#1,400,\"Type " + n + "\"\r\nAC#2,1,\"All\"\r\n"},
             {top + u"AI/FlightPlans_A.txt"_s,
              "// plans\r\nAC#1,N" + n + ",5%,WEEK,IFR\r\nAC#2,NA,5%,WEEK,VFR\r\n"},
             {top + u"AI/Airports_A.txt"_s, "KSEA\r\nKAA" + n + "\r\nKALL\r\n"},
             {top + u"AI/b/FlightPlans_B.txt"_s, "AC#1,B" + n + ",5%,WEEK,IFR\r\n"},
             {top + u"Aircraft.txt"_s, "Aircraft come from elsewhere.\r\n"},
             {top + u"readme.txt"_s, "Read me.\r\n"}});
    }

    QTemporaryDir dir{temporaryTemplate()};
    FlowWorld world;
    QString stamp; ///< in the names of the tool's source files
};

QByteArray plansIn(const TrafficWorld& w)
{
    return readHostFile(w.source(u"FlightPlans"));
}

} // namespace

class TestTraffic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anyOrder_endsAtTheBeginning_data();
    void anyOrder_endsAtTheBeginning();
    void cabinet_takesPlansAlong();
    void lastFileOfPlans_takesThemAlong();
    void plan_saysWhatIsAdded();
    void withoutTool_areDocuments();
    void failedSource_restIsInstalled();
    void ended_isBeforeOrAfter();
    void airports_goAndComeBack();
};

void TestTraffic::anyOrder_endsAtTheBeginning_data()
{
    QTest::addColumn<int>("generation");
    QTest::newRow("2004") << int(FS2004);
    QTest::newRow("X") << int(FSX);
}

void TestTraffic::anyOrder_endsAtTheBeginning()
{
    QFETCH(int, generation);
    TrafficWorld w(generation);
    w.putTools();
    const TreeSnapshot tree = w.world.tree();
    const TreeSnapshot before = hashTree(w.tools());
    QRandomGenerator random(7);
    QList<qint64> keys;
    for (int number = 1; number <= 4; ++number) {
        const ResultOf<qint64> key = w.world.install(w.pack(number));
        QVERIFY2(key.ok(), qPrintable(key.text));
        keys.append(*key);
        QCOMPARE(w.world.results.texts(resultgroup::specialActions).value(0),
                 u"The A.I. flight plans were incorporated into "_s + w.world.global.programFolder +
                     u"Traffic Tools\\FlightPlans"_s + w.stamp + u".txt"_s);
        QVERIFY(w.world.results.texts(resultgroup::failedSpecialActions).isEmpty());
    }
    QVERIFY(modDatabase_Addon::addon(*w.world.database, keys[0])->categories &
            Category::AI_Flight_Plans);
    const QByteArray plans = plansIn(w);
    QVERIFY2(plans.contains("AC#3,NA,") && plans.count('\n') == 10, plans.constData());
    // The first pack's aircraft became another number, and so did the plans' references.
    QVERIFY(!plans.contains("AC#1,N2") && plans.contains("AC#1,B2"));
    std::shuffle(keys.begin(), keys.end(), random);
    for (const qint64 key : std::as_const(keys)) {
        QVERIFY(w.world.remove(key).ok);
        QVERIFY(w.world.results.texts(resultgroup::specialActions)
                    .contains(u"The A.I. flight plans were removed."_s));
    }
    QVERIFY(!w.world.anyFailed);
    QCOMPARE(differences(before, hashTree(w.tools())), QStringList());
    QCOMPARE(differences(tree, w.world.tree()), QStringList());
}

void TestTraffic::cabinet_takesPlansAlong()
{
    TrafficWorld w;
    w.putTools();
    const TreeSnapshot before = hashTree(w.tools());
    const ResultOf<qint64> key = w.world.install(w.pack(1));
    QVERIFY(key.ok());
    const QByteArray plans = plansIn(w);
    QVERIFY(w.world.remove(*key, {RemovalMethod::FileCabinet}).ok && !w.world.anyFailed);
    QCOMPARE(differences(before, hashTree(w.tools())), QStringList());
    const auto again = w.world.reinstall(*key);
    QVERIFY2(again.ok, qPrintable(again.text));
    QCOMPARE(plansIn(w), plans);
    QVERIFY(w.world.reinstall(*key).ok); // in place: they are there already
    QCOMPARE(plansIn(w), plans);
    QVERIFY(w.world.remove(*key).ok && !w.world.anyFailed);
    QCOMPARE(differences(before, hashTree(w.tools())), QStringList());
}

void TestTraffic::lastFileOfPlans_takesThemAlong()
{
    TrafficWorld w;
    w.putTools();
    const TreeSnapshot before = hashTree(w.tools());
    const ResultOf<qint64> key = w.world.install(w.pack(1));
    QVERIFY(key.ok());
    const QByteArray plans = plansIn(w);
    for (const QString& name : {u"readme.txt"_s, u"FlightPlans_A.txt"_s, u"FlightPlans_B.txt"_s}) {
        QCOMPARE(plansIn(w), plans);
        const auto details = modDatabase_Addon::detailsOf(*w.world.database, *key);
        const auto file =
            std::find_if(details->begin(), details->end(), [&name](const DetailRecord& detail) {
                return detail.name == name;
            });
        QVERIFY2(file != details->end(), qPrintable(name));
        RemovalOptions options;
        options.files = {file->location + file->name};
        QVERIFY(w.world.remove(*key, options).ok && !w.world.anyFailed);
    }
    QVERIFY(w.world.results.texts(resultgroup::specialActions)
                .contains(u"The A.I. flight plans were removed."_s));
    QCOMPARE(differences(before, hashTree(w.tools())), QStringList());
    QVERIFY(w.world.remove(*key).ok && !w.world.anyFailed);
}

void TestTraffic::plan_saysWhatIsAdded()
{
    TrafficWorld w;
    w.putTools();
    CAddonInstallationDetails details(w.world.context);
    QVERIFY(details.prepare(w.world.drives.toWindows(w.pack(1)), {}).ok);
    const QList<ConfigChange> changes = details.facts().configChanges();
    QStringList told;
    for (const ConfigChange& change : changes)
        told += change.lines.added;
    QCOMPARE(told,
             (QStringList{u"AC#2,400,\"Type 1\""_s,
                          u"AC#3,1,\"All\""_s,
                          u"KAA1"_s,
                          u"KALL"_s,
                          u"AC#2,N1,5%,WEEK,IFR"_s,
                          u"AC#3,NA,5%,WEEK,VFR"_s,
                          u"AC#1,B1,5%,WEEK,IFR"_s}));
    QVERIFY(w.world.install(w.pack(1)).ok());
    const QByteArray plans = plansIn(w);
    for (const QString& line : std::as_const(told).mid(4))
        QVERIFY(plans.contains(line.toLatin1()));
}

void TestTraffic::withoutTool_areDocuments()
{
    for (const int generation : {int(FS2004), int(FSX)}) {
        TrafficWorld w(generation);
        w.world.prompts.expectText(u"Please specify the location"_s, std::nullopt);
        const TreeSnapshot tree = w.world.tree();
        const ResultOf<qint64> key = w.world.install(w.pack(1));
        QVERIFY2(key.ok(), qPrintable(key.text));
        const QStringList told = w.world.results.texts(resultgroup::specialActions);
        QCOMPARE(told.value(0),
                 u"The A.I. flight plans were NOT incorporated into "_s +
                     w.world.global.names.simLong);
        QVERIFY2(told.value(1).contains(u"kept as documents in"_s), qPrintable(told.value(1)));
        QVERIFY(w.world.results.texts(resultgroup::failedSpecialActions).isEmpty());
        QCOMPARE(w.world.results.count(resultgroup::installed), 6);
        QCOMPARE(differences(tree, w.world.tree()), QStringList());
        QVERIFY(w.world.remove(*key).ok && !w.world.anyFailed);
        QVERIFY(w.world.results.texts(resultgroup::specialActions).isEmpty());
    }
}

void TestTraffic::failedSource_restIsInstalled()
{
    TrafficWorld w;
    w.putTools();
    writeHostFile(w.tools() + u"/Airports030528.txt"_s, "\xff\xfe K");
    const TreeSnapshot before = hashTree(w.tools());
    const ResultOf<qint64> key = w.world.install(w.pack(1));
    QVERIFY(key.ok());
    const QStringList failed = w.world.results.texts(resultgroup::failedSpecialActions);
    QVERIFY(failed.value(0).startsWith(u"The A.I. flight plans were NOT incorporated into "_s));
    QVERIFY2(failed.value(1).startsWith(u"Could not read source file '"_s),
             qPrintable(failed.value(1)));
    QCOMPARE(differences(before, hashTree(w.tools())), QStringList());
    QCOMPARE(w.world.results.count(resultgroup::installed), 6);
}

void TestTraffic::ended_isBeforeOrAfter()
{
    // The whole folder is copied for each end, so that every one meets the same beginning.
    TrafficWorld w;
    w.putTools();
    const QString pack = w.pack(1);
    w.world.stop();
    const QString base = w.dir.filePath(u"base"_s);
    QVERIFY(QDir().mkpath(base));
    for (const QString& part : {u"prefix"_s, u"program"_s})
        copyTree(w.dir.filePath(part), base);
    const TreeSnapshot before = hashTree(w.tools());
    const auto work = [&](FlowWorld& world) {
        asGeneration(world, FS2004);
        (void)world.install(pack);
    };
    TreeSnapshot after;
    bool sawBefore = false;
    for (int n = 1;; ++n) {
        QTemporaryDir dir(temporaryTemplate());
        for (const QString& part : {u"prefix"_s, u"program"_s})
            copyTree(base + u'/' + part, dir.path());
        const bool ended = runAndEnd(dir.path(), n, work);
        FlowWorld world(dir.path());
        QVERIFY2(world.start().ok, qPrintable(QString::number(n)));
        const TreeSnapshot now = hashTree(dir.filePath(u"program/Traffic Tools"_s));
        const bool recorded = modDatabase_Addon::addons(*world.database)->size() == 1;
        if (!recorded) {
            sawBefore = true;
            QVERIFY2(differences(before, now).isEmpty(), qPrintable(QString::number(n)));
        } else if (after.isEmpty()) {
            after = now;
            QVERIFY(differences(before, now).size() == 4);
        } else {
            QVERIFY2(differences(after, now).isEmpty(), qPrintable(QString::number(n)));
        }
        if (!ended)
            break;
    }
    QVERIFY(sawBefore && !after.isEmpty());
}

void TestTraffic::airports_goAndComeBack()
{
    TrafficWorld w;
    const QString simulator = w.world.hostPath({});
    const QString scenery = simulator + u"/SCENEDB/AFDFILES/SCENERY/"_s;
    writeHostFile(scenery + u"AF2_KSEA.bgl"_s, "old");
    putStandIns(w.dir.filePath(u"program/AFCAD2"_s), {u"AFCAD.exe"_s, u"AFInstaller.exe"_s});
    // The program folder lies on drive Z:, which is the host's own root.
    writeHostFile(w.dir.filePath(u"program/AFCAD2/standin.txt"_s),
                  "C=\nsim=" + simulator.toUtf8() + '\n');
    w.world.files.newOperation();
    const TreeSnapshot tree = w.world.tree();
    const QString pack =
        writePack(w.dir.filePath(u"packs"_s),
                  u"Airports"_s,
                  {{u"Pack/AF2_KSEA.bgl"_s, "; x\r\n;Flight Simulator Airport (Lake View)\r\n"},
                   {u"Pack/AF2_KNEW.bgl"_s, "new airport"}});
    CAddonInstallationDetails details(w.world.context);
    QVERIFY(details.prepare(w.world.drives.toWindows(pack), {}).ok);
    const Processes processes(w.world.files, Processes::Setup{{}, w.dir.path()});
    CAddonInstaller installer(w.world.context, *w.world.database, details);
    installer.setProcesses(&processes);
    QVERIFY(installer.Install_Begin());
    QCOMPARE(
        installer.results().texts(resultgroup::specialActions),
        (QStringList{
            u"The airport and facilities data files were incorporated into Flight Simulator 2004"_s}));
    QVERIFY(readHostFile(scenery + u"AF2_KSEA.bgl"_s).contains("Lake View"));
    QVERIFY(w.world.remove(installer.masterKey()).ok);
    QCOMPARE(w.world.results.texts(resultgroup::specialActions),
             (QStringList{u"The airport and facilities data for 'Lake View' were restored."_s}));
    // What replaced nothing has no saved copy, stays, and is told.
    QCOMPARE(w.world.results.texts(resultgroup::failedSpecialActions).value(0),
             u"The airport and facilities data for 'AF2_KNEW.bgl' were NOT restored."_s);
    const QStringList left = differences(tree, w.world.tree());
    QVERIFY2(left.size() == 1 && left.first().endsWith(u"AF2_KNEW.bgl"_s),
             qPrintable(left.join(u'\n')));
}

VT_TEST_CLASS(TestTraffic)
#include "test_traffic.moc"
