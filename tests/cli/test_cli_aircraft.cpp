// aircraft list and show on the demonstration simulator.
#include "CliFixture.h"
#include "demo/DemoSimulator.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace vt::test {

class TestCliAircraft : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void list_showsVariations();
    void show_followsAliases();
    void unknownAircraft_isTold();
    void readingLeavesNothing();

private:
    [[nodiscard]] static QJsonArray listed(const CliFixture& fixture, QStringList more = {})
    {
        return QJsonDocument::fromJson(
                   fixture.run(QStringList{u"aircraft"_s, u"list"_s, u"--json"_s} + more).out)
            .array();
    }

    struct Demo : CliFixture
    {
        Demo()
        {
            const auto demo = writeDemoSimulator(dir.filePath(u"prefix"_s));
            if (!demo)
                qFatal("%s", qPrintable(demo.text));
            places = *demo;
            environment.insert(u"WINEPREFIX"_s, demo->prefixHost);
        }

        DemoSimulator places;
    };
};

void TestCliAircraft::list_showsVariations()
{
    const Demo demo;
    const QJsonArray rows = listed(demo);
    QCOMPARE(rows.size(), 10);
    const QJsonObject row = rows[2].toObject();
    QCOMPARE(row[u"title"], u"Aurelia 700 Intl / HS-AUR"_s);
    QCOMPARE(row[u"file"],
             demo.places.simulatorFolder + u"SimObjects\\Airplanes\\Aurelia_700\\aircraft.cfg"_s);
    QCOMPARE(row[u"section"], u"fltsim.2"_s);
    QCOMPARE(row[u"texture"], u"2"_s);
    QCOMPARE(row[u"addonKey"], 0);
    const QByteArray people = demo.run({u"aircraft"_s, u"list"_s}).out;
    QVERIFY(people.contains("\nKestrel\n  K2 Trainer\n    Blue - Kestrel K2 Blue  ("));

    // A damaged file is told and hides no other.
    demo.write(u"prefix/drive_c/Program Files (x86)/Microsoft Games/Microsoft Flight Simulator X/"
               u"SimObjects/Airplanes/Odd/aircraft.cfg"_s,
               QByteArray("\x01\x00[fltsim.0]", 12));
    const Ran ran = demo.run({u"aircraft"_s, u"list"_s, u"--json"_s});
    QCOMPARE(ran.status, 0);
    QCOMPARE(QJsonDocument::fromJson(ran.out).array().size(), 10);
    QVERIFY2(ran.err.contains("Odd\\aircraft.cfg' was not read in full: it holds NUL"), ran.err);
}

void TestCliAircraft::show_followsAliases()
{
    const Demo demo;
    const QString file = demo.places.simulatorHost + u"/simobjects/airplanes/northwind_carrier"_s;
    for (const QString& typed :
         {u"SimObjects\\Airplanes\\Northwind_Carrier\\AIRCRAFT.CFG"_s, file}) {
        const Ran ran = demo.run({u"aircraft"_s, u"show"_s, typed, u"FLTSIM.1"_s, u"--json"_s});
        QCOMPARE(ran.err, QByteArray());
        const QJsonArray rows = QJsonDocument::fromJson(ran.out).array();
        QCOMPARE(rows.size(), 1);
        const QJsonObject panel = rows[0].toObject()[u"panelFile"].toObject();
        QVERIFY(panel[u"original"].toString().endsWith(u"Kestrel_K2\\panel\\panel.cfg"_s));
        QCOMPARE(panel[u"alias"], u"Kestrel_K2\\panel"_s);
        QCOMPARE(rows[0].toObject()[u"effects"].toArray().size(), 2);
    }
}

void TestCliAircraft::unknownAircraft_isTold()
{
    const Demo demo;
    const Ran file = demo.run({u"aircraft"_s, u"show"_s, u"prefix/user.reg"_s});
    QCOMPARE(file.status, 1);
    QVERIFY2(file.err.contains("'prefix/user.reg' is no aircraft.cfg"), file.err);
    const Ran section =
        demo.run({u"aircraft"_s, u"show"_s, u"SimObjects/Airplanes/Kestrel_K2"_s, u"fltsim.7"_s});
    QCOMPARE(section.status, 1);
    QVERIFY2(section.err.contains("has no section 'fltsim.7'"), section.err);
}

/// Reading calls make no cache; one that may write does, and all say the same.
void TestCliAircraft::readingLeavesNothing()
{
    const Demo demo;
    const auto before = hashTree(demo.dir.path());
    const QJsonArray first = listed(demo);
    QCOMPARE(differences(before, hashTree(demo.dir.path())), QStringList());
    const QJsonObject told = demo.run({u"doctor"_s, u"--json"_s}).object();
    QCOMPARE(told[u"aircraft"].toObject()[u"variations"], 10);
    QVERIFY(demo.exists(u"home/Catalogue.dat"_s));
    const QByteArray cache = demo.read(u"home/Catalogue.dat"_s);
    QCOMPARE(listed(demo), first);
    QCOMPARE(demo.read(u"home/Catalogue.dat"_s), cache);
}

} // namespace vt::test

using vt::test::TestCliAircraft;
VT_TEST_CLASS(TestCliAircraft)

#include "test_cli_aircraft.moc"
