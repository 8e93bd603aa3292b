// traffic and missions on the command line, and what doctor says about the outside tools.
#include "cli/CliFixture.h"
#include "support/StandInTool.h"
#include "support/TestMain.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using namespace vt::test;

class TestCliTraffic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plans();
    void tool();
    void missions();
};

void TestCliTraffic::plans()
{
    const CliFixture cli;
    cli.write(u"p/FlightPlans_A.txt"_s,
              "// two plans\nAC#1,N1,50%,WEEK,IFR,0/06:00,0/07:30,350,F,701,KSEA\n"
              "AC#1,N1,50%,24Hr,VFR\nno plan\n");
    cli.write(u"p/Aircraft_A.txt"_s, "AC#1,450,\"Aurelia\"\n");
    cli.write(u"p/Airports_A.txt"_s, "KSFO\n");
    for (const QString& verb : {u"read"_s, u"validate"_s, u"describe"_s}) {
        const Ran ran = cli.run({u"--json"_s, u"traffic"_s, verb, u"p/FlightPlans_A.txt"_s});
        QCOMPARE(ran.status, verb == u"validate" ? 1 : 0);
        const QJsonArray plans = ran.object()[u"plans"].toArray();
        QCOMPARE(plans.size(), 2);
        QCOMPARE(plans[0][u"tail"], u"N1"_s);
        QCOMPARE(plans[0][u"legs"][0][u"day"], u"Sunday"_s);
        QCOMPARE(plans[0][u"problems"].toArray().size(), 1);
        QVERIFY(plans[1][u"problems"].toArray().isEmpty());
        QVERIFY(plans[1][u"description"].toString().startsWith(
            u"Flight plan #2 appears when Flight Simulator X's A.I. traffic threshold"_s));
    }
    const Ran none = cli.run({u"traffic"_s, u"validate"_s, u"p/Aircraft_A.txt"_s});
    QCOMPARE(none.status, 1);
    QVERIFY(none.err.contains("There are no flight plans to validate."));
    QCOMPARE(cli.run({u"traffic"_s, u"read"_s, u"p/none.txt"_s}).status, 3);
    QVERIFY(!cli.exists(u"home"_s)); // reading makes nothing
}

void TestCliTraffic::tool()
{
    const CliFixture cli;
    cli.makeSimulator();
    QCOMPARE(cli.run({u"traffic"_s, u"compile"_s}).status, 3);
    putTrafficTools(cli.dir.filePath(u"home/Traffic Tools"_s));
    const Ran without = cli.run({u"traffic"_s, u"compile"_s});
    QCOMPARE(without.status, 1);
    QVERIFY(without.err.contains("Aircraft.txt' was not found."));
    for (const QString& source : {u"FlightPlans.txt"_s, u"Aircraft.txt"_s, u"Airports.txt"_s})
        cli.write(u"home/Traffic Tools/"_s + source, "");
    const Ran ran = cli.run({u"--json"_s, u"traffic"_s, u"compile"_s});
    QCOMPARE(ran.status, 0);
    QVERIFY(ran.object()[u"ok"].toBool() && ran.object()[u"plans"].isArray());
    QCOMPARE(cli.read(u"home/Traffic Tools/standin.log"_s), "TTools.exe|/fp|/co\n"_ba);
    cli.write(u"home/Traffic Tools/standin.txt"_s, "mode=fail\n");
    const Ran failed = cli.run({u"traffic"_s, u"decompile"_s});
    QCOMPARE(failed.status, 1);
    QVERIFY(failed.err.contains("Could not create source files. ") &&
            failed.err.contains("The disk is round."));
    const QJsonObject tools =
        cli.run({u"--json"_s, u"--sim"_s, u"sim"_s, u"doctor"_s}).object()[u"tools"].toObject();
    QVERIFY(tools[u"trafficTools"][u"found"].toBool());
    QVERIFY(!tools[u"airportEditor"][u"found"].toBool());
    QVERIFY(QFile::remove(cli.dir.filePath(u"home/Traffic Tools/TCompiler.exe"_s)));
    QCOMPARE(cli.run({u"traffic"_s, u"collect"_s}).status, 3); // an old version is none
}

void TestCliTraffic::missions()
{
    const CliFixture cli;
    cli.makeSimulator();
    cli.write(u"sim/Missions/Tutorials/Tutorial01/t.flt"_s, "[Main]\r\nTitle=First solo\r\n");
    const Ran ran = cli.run({u"--json"_s, u"--sim"_s, u"sim"_s, u"missions"_s, u"list"_s});
    QCOMPARE(ran.status, 0);
    const QJsonObject mission = QJsonDocument::fromJson(ran.out).array()[0].toObject();
    QCOMPARE(mission[u"title"], u"First solo"_s);
    QVERIFY(mission[u"default"].toBool());
}

VT_TEST_CLASS(TestCliTraffic)
#include "test_cli_traffic.moc"
