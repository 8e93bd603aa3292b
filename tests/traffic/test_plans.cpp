// Lines of the tool's files: what counts as a plan, how it is checked and told in words.
#include "platform/AnsiCodec.h"
#include "shell/ShellFixture.h"
#include "support/Rows.h"
#include "support/TestMain.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"

using namespace Qt::StringLiterals;
using namespace vt;
using test::Rows;

class TestPlans : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lines_thatArePlans();
    void times_asShown();
    void legs_closeTheCircle();
    void describe();
    void validate();
    void aircraftAndAirports();
    void files_byNameAndContent();
    void sets_byFolderAndSuffix();
    void airportName();
};

void TestPlans::lines_thatArePlans()
{
    const Rows<QString, bool> rows = {
        {"plain", u"AC#1,N1,50%,WEEK,IFR,0/06:00,0/07:00,350,F,12,KSEA"_s, true},
        {"lower case", u"ac#1,N1,50%,24Hr,vfr rules"_s, true},
        {"blanks", u"  AC#1 , N1 , 50% , 1Hr , IFR , "_s, true},
        {"no reference", u"1,N1,50%,WEEK,IFR"_s, false},
        {"no tail number", u"AC#1, ,50%,WEEK,IFR"_s, false},
        {"no percent sign", u"AC#1,N1,50,WEEK,IFR"_s, false},
        {"no period", u"AC#1,N1,50%,,IFR"_s, false},
        {"unknown rules", u"AC#1,N1,50%,WEEK,FR"_s, false},
        {"too short", u"AC#1,N1,50%,WEEK"_s, false},
        {"comment", u"//AC#1,N1,50%,WEEK,IFR"_s, false},
        {"nothing", QString(), false},
    };
    for (const auto& [line, isPlan] : rows)
        QCOMPARE(CAIFlightPlan::ofLine(line).has_value(), isPlan);
}

void TestPlans::times_asShown()
{
    const Rows<QString, QString, QString> rows = {
        {"day", u"3/08:15"_s, u"08:15"_s, u"Wednesday"_s},
        {"marks without a day", u"@08:15TNG"_s, u"08:15"_s, QString()},
        {"marks behind a day stay", u"3/@08:15TNG"_s, u"@08:15TNG"_s, u"Wednesday"_s},
        {"marks before a day go with it", u"@6/08:15:30"_s, u"08:15:30"_s, u"Saturday"_s},
        {"no such day", u"7/08:15"_s, u"08:15"_s, QString()},
        {"text before the mark", u"TNG@08:15"_s, u"08:15"_s, QString()},
    };
    for (const auto& [time, shown, day] : rows) {
        QCOMPARE(CAIFlightPlanLeg::shownTime(time), shown);
        QCOMPARE(CAIFlightPlanLeg::dayOf(time), day);
    }
}

void TestPlans::legs_closeTheCircle()
{
    const auto plan = CAIFlightPlan::ofLine(
        u"AC#1,N1,50%,24Hr,IFR,06:00,@07:00,350,F,12,KSEA,08:00,09:00,310,R,13,ksfo,10:00,11:00"_s);
    QVERIFY(plan);
    QCOMPARE(plan->colLegs.size(), 2); // the rest is no whole leg
    QCOMPARE(plan->colLegs[0].sDepartureAirport, u"ksfo"_s);
    QCOMPARE(plan->colLegs[1].sDepartureAirport, u"KSEA"_s);
    QCOMPARE(plan->sarrayAirports, (QStringList{u"KSEA"_s, u"ksfo"_s}));
    // Four letters alone make no airport.
    QCOMPARE(
        CAIFlightPlan::ofLine(u"AC#1,N1,50%,24Hr,IFR,06:00,07:00,3500,F,1234,X1"_s)->sarrayAirports,
        QStringList());
}

void TestPlans::describe()
{
    const auto aircraft = CAIAircraft::ofLine(u"AC#7,450,\"Aurelia 700, House\""_s);
    QVERIFY(aircraft);
    const auto weekly = CAIFlightPlan::ofLine(
        u"AC#7,HS-AUR,50%,WEEK,IFR,0/06:00,@0/07:30,350,F,701,KSEA,1/08:00,1/09:00,5,R,702,KSFO"_s);
    QCOMPARE(
        weekly->Describe(3, &*aircraft, u"Flight Simulator 2004"_s),
        u"Flight plan #3 appears when Flight Simulator 2004's A.I. traffic threshold is set to 50% or higher. Aurelia 700, House (AC#7, 450 knots, tail number HS-AUR) flies this route every WEEK and is designated an IFR flight.\n"
        u"Flight plan leg #1 calls for Aurelia 700, House to depart KSFO at 06:00 on Sunday. Flight number 701 will cruise at 35,000 feet and arrive at KSEA at 07:30. ATC will refer to this flight by airline and flight number.\n"
        u"Flight plan leg #2 calls for Aurelia 700, House to depart KSEA at 08:00 on Monday. Flight number 702 will cruise at 500 feet and arrive at KSFO at 09:00. ATC will refer to this flight by the aircraft's tail number."_s);
    const auto always = CAIFlightPlan::ofLine(u"AC#9,N9,100%,24Hr,VFR"_s);
    QCOMPARE(
        always->Describe(1, nullptr, u"FS"_s),
        u"Flight plan #1 appears when FS's A.I. traffic threshold is set to 100%. AC#9 (not listed, tail number N9) flies this route every 24Hr and is designated a VFR flight."_s);
}

void TestPlans::validate()
{
    test::ShellFixture world(FS2004);
    const CTrafficTools tools(world.context);
    const QByteArray known = "AC#1,N1,50%,24Hr,IFR,06:00,07:00,350,F,12,KSEA";
    const PlanSurroundings around = tools.surroundings(
        {"AC#1,450,\"Aurelia\""}, {"// all", "KSEA,N47* 26.94',W122* 18.56',433"}, {known});
    const auto problems = [&](const QString& line) {
        return CTrafficTools::FlightPlan_Validate(*CAIFlightPlan::ofLine(line), around);
    };
    QCOMPARE(problems(u"AC#1,N2,50%,24Hr,IFR,06:00,07:00,350,F,12,ksea"_s), QStringList());
    QCOMPARE(
        problems(u"AC#2,N2,50%,24Hr,IFR,06:00,07:00,350,F,12,KSFO,08:00,09:00,350,F,12,KLAX"_s),
        (QStringList{
            u"The aircraft 'AC#2' is not listed in Aircraft030528.txt. This flight plan will not be active until this aircraft is installed."_s,
            u"The following airport(s) are not listed in Airports030528.txt: KSFO, KLAX. This flight plan will not be active until the airport(s) are installed."_s}));
    QCOMPARE(
        problems(u"ac#1, N1,50%,24hr,IFR,06:00,07:00,350,F,12,KSEA"_s),
        (QStringList{
            u"This flight plan already exists: ac#1, N1,50%,24hr,IFR,06:00,07:00,350,F,12,KSEA"_s}));
    const PlanSurroundings everywhere = tools.surroundings({"AC#1,450,\"A\""}, {"*"}, {});
    QVERIFY(CTrafficTools::FlightPlan_Validate(*CAIFlightPlan::ofLine(QString::fromLatin1(known)),
                                               everywhere)
                .isEmpty());
}

void TestPlans::aircraftAndAirports()
{
    QCOMPARE(CAIAircraft::ofLine(u" ac#12 , 450 , \"A, B\""_s)->name(), u"A, B"_s);
    QCOMPARE(CAIAircraft::ofLine(u"AC#12,Piper"_s)->detail(), u"AC#12"_s);
    QVERIFY(!CAIAircraft::ofLine(u"AC#12"_s) && !CAIAircraft::ofLine(u"AC#x,450,A"_s));
    QCOMPARE(CAIAircraft::renumbered(" ac#12,450,\"AC#12\"", 7), " ac#7,450,\"AC#12\""_ba);
    const Rows<QString, QStringList> rows = {
        {"codes", u"KSEA, ksfo ,X01"_s, {u"KSEA"_s, u"KSFO"_s, u"X01"_s}},
        {"position", u"KSEA,N47* 26.94',W122* 18.56',1433"_s, {u"KSEA"_s}},
        {"prose", u"These are all airports"_s, {}},
        {"comment", u"//KSEA"_s, {}},
    };
    for (const auto& [line, codes] : rows)
        QCOMPARE(AirportList::codesOf(line), codes);
}

void TestPlans::files_byNameAndContent()
{
    const QByteArray plans = "//header\r\nAC#1,N1,5%,WEEK,IFR\r\n\r\nAC#2,N1,5%,WEEK,IFR\nrest\n";
    const QByteArray aircraft = "AC#1,450,\"A\"\nAC#2,450,\"B\"";
    const QByteArray airports = "KSEA,N47* 26.94',W122* 18.56',433\r\nKSFO\r\nplus a remark\r\n";
    const Rows<QString, QByteArray, bool> rows = {
        {"plans", u"flightplans_AUR.TXT"_s, plans, true},
        {"aircraft", u"Aircraft.txt"_s, aircraft, true},
        {"airports", u"Airports030528.txt"_s, airports, true},
        {"another name", u"My FlightPlans.txt"_s, plans, true},
        {"plans named as aircraft", u"Aircraft.txt"_s, plans, true},
        {"plans that break rules", u"a.txt"_s, "ac#1,,5%,WEEK\r\nAC#2,N,5%\r\nrest\r\n", true},
        {"plans without percentages", u"FlightPlans.txt"_s, "AC#1,N1,5,WEEK,IFR\r\n", false},
        {"prose about plans",
         u"readme.txt"_s,
         "Add this line:\nAC#1,N1,5%,WEEK,IFR\nand save.\n",
         false},
        {"another ending", u"FlightPlans.doc"_s, plans, false},
        {"prose", u"Aircraft.txt"_s, "Aircraft in this package:\r\n- a glider\r\n", false},
        {"another kind", u"Airports.txt"_s, aircraft, false},
        {"empty", u"FlightPlans.txt"_s, "", false},
        {"UTF-16", u"FlightPlans.txt"_s, "\xff\xfe" + plans, false},
    };
    const AnsiCodec ansi;
    for (const auto& [name, bytes, traffic] : rows) {
        TrafficKind kind{};
        QCOMPARE(isTrafficFile(name, bytes, ansi, kind), traffic);
    }
}

void TestPlans::sets_byFolderAndSuffix()
{
    using K = TrafficKind;
    const QList<TrafficSet> sets =
        trafficSets({{K::FlightPlans, u"a\\"_s, u"FlightPlans_1.txt"_s, "p1"},
                     {K::FlightPlans, u"a\\"_s, u"FlightPlans_2.txt"_s, "p2"},
                     {K::Aircraft, u"A\\"_s, u"aircraft_1.txt"_s, "a1"},
                     {K::FlightPlans, u"b\\"_s, u"FlightPlans.txt"_s, "p3"}});
    QCOMPARE(sets.size(), 3);
    QCOMPARE(sets[0].of(K::Aircraft), (QList<QByteArray>{"a1"}));
    QCOMPARE(sets[1].of(K::Aircraft), (QList<QByteArray>{"a1"})); // the only one there
    QVERIFY(sets[2].of(K::Aircraft).isEmpty());
}

void TestPlans::airportName()
{
    test::ShellFixture world(FS2004);
    const CAFCAD editor(world.context);
    const Rows<QByteArray, QString> rows = {
        {"airport",
         "; HomeFile (x.bgl)\r\n;Flight Simulator Airport (Lake View) 3\r\n",
         u"Lake View"_s},
        {"file", ";x\r\n;HomeFile AF2_KSEA.bgl\r\n", u"AF2_KSEA.bgl"_s},
        {"a blank before", " ;Flight Simulator Airport (Lake View)\r\n", QString()},
        {"no comment", "Flight Simulator Airport (Lake View)\r\n", QString()},
        {"open bracket", ";Flight Simulator Airport (Lake View \r\n", u"Lake View"_s},
    };
    for (const auto& [bytes, name] : rows)
        QCOMPARE(editor.AirportName_Get(bytes), name);
}

VT_TEST_CLASS(TestPlans)
#include "test_plans.moc"
