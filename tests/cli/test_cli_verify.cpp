// verify, panel set and sound set as a process, on the demonstration simulator with planted faults.
#include "CliFixture.h"
#include "demo/DemoSimulator.h"
#include "support/TestMain.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using vt::test::CliFixture;
using vt::test::Ran;

namespace {

struct PartsWorld : CliFixture
{
    PartsWorld()
    {
        const vt::ResultOf<vt::DemoSimulator> demo =
            vt::writeDemoSimulator(dir.filePath(u"prefix"_s));
        if (!demo)
            qFatal("%s", qPrintable(demo.text));
        simulator = QDir(dir.path()).relativeFilePath(demo->simulatorHost);
    }

    [[nodiscard]] QString airplane(const QString& path) const
    {
        return simulator + u"/SimObjects/Airplanes/"_s + path;
    }

    [[nodiscard]] Ran vantrel(const QStringList& arguments) const
    {
        return run(QStringList{u"--json"_s, u"--prefix"_s, u"prefix"_s} + arguments);
    }

    [[nodiscard]] Ran verify(const QString& what, const QStringList& more = {}) const
    {
        return vantrel(QStringList{u"verify"_s, what} + more);
    }

    static QStringList titles(const Ran& ran, const QString& group)
    {
        QStringList titles;
        for (const QJsonValue& value : ran.object().value(group).toArray())
            titles.append(value.isObject() ? value.toObject().value(u"title"_s).toString()
                                           : value.toString());
        return titles;
    }

    QString simulator;
};

} // namespace

class TestCliVerify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeSimulator_hasNoFaults();
    void faults_areMendedOnce();
    void aircraft_followTheirSections();
    void oneOfMany_byItsPath();
    void set_pointsAnAircraftElsewhere();
};

void TestCliVerify::wholeSimulator_hasNoFaults()
{
    const PartsWorld world;
    for (const QString& what : {u"aircraft"_s, u"panels"_s, u"sounds"_s, u"scenery"_s}) {
        const Ran ran = world.verify(what);
        QVERIFY2(ran.status == 0, ran.out.constData());
        QCOMPARE(world.titles(ran, u"Healthy"_s).size(), what == u"aircraft" ? 10 : 4);
        QCOMPARE(ran.object().keys().size(), 5);
    }
    QVERIFY(!world.exists(u"home"_s));
}

void TestCliVerify::faults_areMendedOnce()
{
    const PartsWorld world;
    const QString kestrel = world.airplane(u"Kestrel_K2/panel/panel.cfg"_s);
    const QString carrier = world.airplane(u"Northwind_Carrier/panel/panel.cfg"_s);
    const QString liner = world.airplane(u"Aurelia_700/panel/"_s);
    const QByteArray bareLf = world.read(kestrel).replace("\r\n", "\n");
    world.write(kestrel, bareLf);
    world.write(carrier, "[fltsim]\r\nalias=Kestrel K2\\panel\r\n");
    QVERIFY(QFile::remove(world.dir.filePath(liner + u"aurelia700_radio.bmp"_s)));
    QVERIFY(QFile::remove(world.dir.filePath(world.simulator + u"/Gauges/Aurelia700.cab"_s)));
    world.write(liner + u"spare/aurelia700_radio.bmp"_s);

    const Ran found = world.verify(u"panels"_s);
    QCOMPARE(found.status, 1);
    QCOMPARE(world.titles(found, u"Damaged"_s),
             (QStringList{
                 u"Aurelia_700\\panel"_s, u"Kestrel_K2\\panel"_s, u"Northwind_Carrier\\panel"_s}));
    QVERIFY(world.titles(found, u"Not Repaired"_s).isEmpty());
    QCOMPARE(world.read(kestrel), bareLf);
    QVERIFY(!world.exists(u"home"_s));

    const Ran mended =
        world.verify(u"panels"_s, {u"--repair"_s, u"--report"_s, u"out/Report.htm"_s});
    QCOMPARE(mended.status, 1);
    QCOMPARE(world.titles(mended, u"Repaired"_s),
             (QStringList{u"Aurelia_700\\panel (partial)"_s,
                          u"Kestrel_K2\\panel"_s,
                          u"Northwind_Carrier\\panel"_s}));
    QCOMPARE(world.titles(mended, u"Healthy"_s), QStringList{u"Dragonfly_R1\\panel"_s});
    const QByteArray report = world.read(u"out/Report.htm"_s);
    QVERIFY2(report.contains("<h2>Repair Summary Report for 4 Panels</h2>"), report.constData());
    QVERIFY(report.indexOf(">Healthy<") < report.indexOf(">Repaired<"));
    QVERIFY(!report.contains("Not Repaired") && report.contains("Aurelia700!PFD"));
    QCOMPARE(world.read(carrier), QByteArray("[fltsim]\r\nalias=Kestrel_K2\\panel\r\n"));
    QCOMPARE(world.read(world.airplane(u"Kestrel_K2/panel/Panel.vtb"_s)), bareLf);

    const Ran again = world.verify(u"panels"_s, {u"--repair"_s});
    QCOMPARE(world.titles(again, u"Not Repaired"_s), QStringList{u"Aurelia_700\\panel"_s});
    QCOMPARE(world.titles(again, u"Healthy"_s).size(), 3);
    QCOMPARE(world.vantrel({u"suppress"_s, u"panel"_s, liner + u"panel.cfg"_s, u"on"_s}).status, 0);
    const Ran silenced = world.verify(u"panels"_s, {u"--repair"_s});
    QCOMPARE(silenced.status, 0);
    QCOMPARE(world.titles(silenced, u"Skipped (suppressed)"_s),
             QStringList{u"Aurelia_700\\panel"_s});
}

void TestCliVerify::aircraft_followTheirSections()
{
    const PartsWorld world;
    const QString config = world.airplane(u"Kestrel_K2/aircraft.cfg"_s);
    const QByteArray whole = world.read(config);
    world.write(config, QByteArray(whole).replace("[fltsim.1]", "[fltsim.5]"));
    const Ran found = world.verify(u"aircraft"_s, {config});
    QCOMPARE(world.titles(found, u"Damaged"_s).size(), 3);
    const Ran mended = world.verify(u"aircraft"_s, {u"--repair"_s, config});
    QVERIFY2(mended.status == 0, mended.out.constData());
    QCOMPARE(world.titles(mended, u"Repaired"_s), QStringList{u"Kestrel K2 Blue"_s});
    QCOMPARE(world.titles(mended, u"Healthy"_s),
             (QStringList{u"Kestrel K2 Red"_s, u"Kestrel K2 Été"_s}));
    QCOMPARE(world.verify(u"aircraft"_s).status, 0);
}

void TestCliVerify::oneOfMany_byItsPath()
{
    const PartsWorld world;
    QVERIFY(QFile::remove(
        world.dir.filePath(world.airplane(u"Kestrel_K2/sound/kestrel_k2_run.wav"_s))));
    const QString kestrel = world.airplane(u"Kestrel_K2"_s);
    const Ran one = world.verify(u"sounds"_s, {kestrel});
    QCOMPARE(one.status, 1);
    const QJsonObject damage = one.object().value(u"Damaged"_s).toArray().first().toObject();
    QCOMPARE(
        damage.value(u"problems"_s).toArray().first().toString(),
        u"- One or more audio files specified in the sound configuration file are missing:\n\tkestrel_k2_run.wav"_s);
    QCOMPARE(world.verify(u"sounds"_s, {world.airplane(u"Aurelia_700/sound/SOUND.cfg"_s)}).status,
             0);
    const Ran none = world.verify(u"sounds"_s, {world.simulator + u"/Gauges"_s});
    QCOMPARE(none.status, 1);
    QVERIFY2(none.err.startsWith("There is no sound configuration file"), none.err.constData());
}

void TestCliVerify::set_pointsAnAircraftElsewhere()
{
    const PartsWorld world;
    const QString config = world.airplane(u"Aurelia_700/aircraft.cfg"_s);
    const QString panel = world.airplane(u"Aurelia_700/panel/panel.cfg"_s);
    const QByteArray whole = world.read(panel);
    const Ran set = world.vantrel(
        {u"panel"_s, u"set"_s, config, u"fltsim.0"_s, world.airplane(u"Kestrel_K2/panel"_s)});
    QVERIFY2(set.status == 0, set.err.constData());
    QVERIFY(set.object().value(u"text"_s).toString().contains(
        u"refers to 'Kestrel_K2\\panel'. So do 3 other variations"_s));
    QCOMPARE(world.read(panel), QByteArray("[fltsim]\r\nalias=Kestrel_K2\\panel\r\n"));
    QCOMPARE(world.read(world.airplane(u"Aurelia_700/panel/Panel.vtb"_s)), whole);

    const Ran sound =
        world.vantrel({u"sound"_s, u"set"_s, config, u"fltsim.0"_s, u"Kestrel_K2/sound"_s});
    QCOMPARE(sound.status, 1);
    QCOMPARE(
        sound.object().value(u"error"_s).toObject().value(u"text"_s).toString(),
        u"The sound configuration was not changed. It is a complete sound definition, not simply an alias."_s);
    QCOMPARE(world.vantrel({u"panel"_s, u"set"_s, config, u"fltsim.9"_s, u"x"_s}).status, 1);
    const QString nowhere = world.dir.filePath(world.airplane(u"Nowhere"_s));
    for (const QStringList& typed : {QStringList{config, u"fltsim.0"_s, nowhere},
                                     QStringList{nowhere, u"fltsim.0"_s, u"Kestrel_K2"_s}}) {
        const Ran missing = world.vantrel(QStringList{u"panel"_s, u"set"_s} + typed);
        QCOMPARE(missing.status, 3);
        QVERIFY(missing.err.contains("Nowhere") && missing.err.contains("was not found."));
    }
}

VT_TEST_CLASS(TestCliVerify)

#include "test_cli_verify.moc"
