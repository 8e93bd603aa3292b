// Planted faults are found, none is invented, and what has one remedy is mended.
#include "AircraftWorld.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QString kestrel = u"SimObjects/Airplanes/Kestrel_K2"_s;
const QString kestrelCfg = kestrel + u"/aircraft.cfg"_s;
const QString carrier = u"SimObjects/Airplanes/Northwind_Carrier"_s;

/// One fault in a sound aircraft.
struct Fault
{
    const char* name;
    QString section;
    void (*plant)(AircraftWorld& world);
    QString problem; ///< beginning of the line
    int mended;      ///< what Repair returns
};

QByteArray utf16(const QByteArray& text)
{
    QByteArray out = "\xff\xfe";
    for (const QChar c : QString::fromLatin1(text)) {
        out += char(c.unicode() & 0xff);
        out += char(c.unicode() >> 8);
    }
    return out;
}

const QList<Fault>& faults()
{
    static const QList<Fault> all = {
        {"no file",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(kestrelCfg); },
         u"- The aircraft configuration file does not exist. The file '"_s,
         0},
        {"no section",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.write(kestrelCfg, "[General]\r\natc_type=K\r\n"); },
         u"- The aircraft configuration file may lack an aircraft section (ie. 'fltsim.0')."_s,
         0},
        {"section without a number",
         u"fltsim.0"_s,
         [](AircraftWorld& w) {
             w.remove(kestrel + u"/texture.red"_s);
             w.remove(kestrel + u"/texture.ete"_s);
             QByteArray text = w.read(kestrelCfg);
             text = text.left(text.indexOf("[fltsim.1]"));
             w.write(kestrelCfg, text.replace("[fltsim.0]", "[fltsim.X]"));
         },
         u"- The aircraft configuration file may lack an aircraft section (ie. 'fltsim.0')."_s,
         1},
        {"no title",
         u"fltsim.1"_s,
         [](AircraftWorld& w) { w.replace(kestrelCfg, "title=Kestrel K2 Red", "title="); },
         u"- The aircraft configuration file does not specify a title."_s,
         0},
        {"no sim",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.replace(kestrelCfg, "sim=kestrel_k2", "sim="); },
         u"- The aircraft configuration file does not have a 'sim=' entry."_s,
         1},
        {"flight model missing, another one there",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.replace(kestrelCfg, "sim=kestrel_k2", "sim=kestrel"); },
         u"- The aircraft configuration file's 'sim=' entry points to a file that does not exist. The file '"_s,
         1},
        {"flight model missing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(kestrel + u"/kestrel_k2.air"_s); },
         u"- The aircraft configuration file's 'sim=' entry points to a file that does not exist. The file '"_s,
         0},
        {"model configuration missing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(kestrel + u"/model/model.cfg"_s); },
         u"- The aircraft's model configuration file does not exist. The file '"_s,
         1},
        {"model missing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(kestrel + u"/model/kestrel_k2.mdl"_s); },
         u"- The aircraft's model configuration file specifies a model file that does not exist. The file '"_s,
         0},
        {"model of another name",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.replace(kestrel + u"/model/model.cfg"_s, "kestrel_k2", "k2"); },
         u"- The aircraft's model configuration file specifies a model file that does not exist. The file '"_s,
         1},
        {"model alias that leads nowhere",
         u"fltsim.0"_s,
         [](AircraftWorld& w) {
             w.write(kestrel + u"/model/model.cfg"_s, "[fltsim]\r\nalias=Nobody\\model\r\n");
             w.remove(kestrel + u"/model/kestrel_k2.mdl"_s);
         },
         u"- The aircraft's model configuration file refers to another model configuration file but the referenced model configuration file does not exist."_s,
         0},
        {"model configuration that says nothing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) {
             w.write(kestrel + u"/model/model.cfg"_s, "[models]\r\ncrash=x\r\n");
         },
         u"- The aircraft's model configuration file does not specify a normal model file nor does it alias another model configuration file."_s,
         1},
        {"panel missing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(kestrel + u"/panel"_s); },
         u"- The aircraft's panel configuration file does not exist. The file '"_s,
         0},
        {"panel suffix that names nothing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.replace(kestrelCfg, "panel=\r\n", "panel=ifr\r\n"); },
         u"- The aircraft's panel configuration file does not exist. The file '"_s,
         1},
        {"sound in the only other folder",
         u"fltsim.0"_s,
         [](AircraftWorld& w) {
             QVERIFY(
                 QDir().rename(w.host(kestrel + u"/sound"_s), w.host(kestrel + u"/Sound.Own"_s)));
             w.files.newOperation();
         },
         u"- The aircraft's sound configuration file does not exist. The file '"_s,
         1},
        {"texture folder missing",
         u"fltsim.1"_s,
         [](AircraftWorld& w) { w.remove(kestrel + u"/texture.red"_s); },
         u"- The aircraft's texture folder does not exist. The folder '"_s,
         1},
        {"no textures",
         u"fltsim.1"_s,
         [](AircraftWorld& w) {
             w.remove(kestrel + u"/texture.red/kestrel_k2_t.bmp"_s);
             w.remove(kestrel + u"/texture.red/texture.cfg"_s);
         },
         u"- The aircraft's texture folder does not contain any textures. FS X will display a grey model."_s,
         0},
        {"checklist missing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(kestrel + u"/kestrel_k2_check.htm"_s); },
         u"- The aircraft's kneeboard checklist file does not exist. The file '"_s,
         1},
        {"reference of another name",
         u"fltsim.2"_s,
         [](AircraftWorld& w) {
             w.replace(kestrelCfg, "kb_reference=kestrel_k2_ref", "kb_reference=k_ref");
         },
         u"- The aircraft's kneeboard reference list does not exist. The file '"_s,
         1},
        {"effect missing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(u"Effects/fx_kestrel_smoke.fx"_s); },
         u"- One or more effects files specified in the aircraft configuration file are missing:\n\tfx_kestrel_smoke.fx"_s,
         0},
        {"effect's picture missing",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.remove(u"Effects/texture/fx_kestrel_light.bmp"_s); },
         u"- One or more texture files specified by an effects file are missing:\n\tfx_kestrel_light.bmp (used by fx_kestrel_light.fx)"_s,
         0},
        {"gap",
         u"fltsim.3"_s,
         [](AircraftWorld& w) { w.replace(kestrelCfg, "[fltsim.2]", "[fltsim.3]"); },
         u"- One or more aircraft sections are out of continuous order (fltsim.0->fltsim.1->fltsim.3). The out of order aircraft sections will not appear in FS X."_s,
         1},
        {"bare line feeds",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.replace(kestrelCfg, "\r\n", "\n"); },
         u"- The aircraft configuration file "_s,
         1},
        {"UTF-16",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.write(kestrelCfg, utf16(w.read(kestrelCfg))); },
         u"- The aircraft configuration file "_s,
         1},
        {"UTF-8 mark",
         u"fltsim.0"_s,
         [](AircraftWorld& w) {
             w.write(kestrelCfg, "\xef\xbb\xbf" + QString::fromLatin1(w.read(kestrelCfg)).toUtf8());
         },
         u"- The aircraft configuration file "_s,
         1},
        {"binary garbage",
         u"fltsim.0"_s,
         [](AircraftWorld& w) { w.write(kestrelCfg, QByteArray("[fltsim.0\0\1\2]\xff\0[", 16)); },
         u"- The aircraft configuration file may lack an aircraft section (ie. 'fltsim.0')."_s,
         0},
    };
    return all;
}

} // namespace

class TestVerify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundSimulator_hasNoProblems();
    void fault_isFoundAndMended_data();
    void fault_isFoundAndMended();
    void everythingWrong_isToldInOrder();
    void sharedChecks_seeEachAircraft();
    void fallbackTextures_andAliasedModels();
    void report_endsWithItsSentence();
    void repair_thatCannotSave();
};

void TestVerify::soundSimulator_hasNoProblems()
{
    AircraftWorld world;
    AircraftChecks checks(world.access, world.files, world.global);
    const TreeSnapshot before = hashTree(world.demo.simulatorHost);
    int variations = 0;
    for (const QString& folder : {kestrel,
                                  carrier,
                                  u"SimObjects/Airplanes/Aurelia_700"_s,
                                  u"SimObjects/Rotorcraft/Dragonfly_R1"_s}) {
        for (CAircraft& aircraft : world.aircraft(folder, u"fltsim.0"_s).Variant_Details_GetAll()) {
            const QStringList problems = aircraft.Verify(checks);
            QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
            QCOMPARE(aircraft.Repair(checks).code, 1);
            ++variations;
        }
    }
    QCOMPARE(variations, 10);
    QVERIFY(differences(before, hashTree(world.demo.simulatorHost)).isEmpty());
}

void TestVerify::fault_isFoundAndMended_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < faults().size(); ++i)
        QTest::newRow(faults().at(i).name) << i;
}

void TestVerify::fault_isFoundAndMended()
{
    QFETCH(int, index);
    const Fault& fault = faults().at(index);
    AircraftWorld world;
    const QByteArray sound = world.read(kestrelCfg);
    fault.plant(world);
    const QByteArray damaged = world.read(kestrelCfg);
    const QByteArray damagedModel = world.read(kestrel + u"/model/model.cfg"_s);
    AircraftChecks checks(world.access, world.files, world.global);
    CAircraft aircraft = world.aircraft(kestrel, fault.section);
    const QStringList found = aircraft.Verify(checks);
    QVERIFY2(found.value(0).startsWith(fault.problem), qPrintable(found.join(u'\n')));
    QCOMPARE(found.size(), qstrcmp(fault.name, "binary garbage") == 0 ? 2 : 1);

    const CAircraft::RepairOutcome outcome = aircraft.Repair(checks);
    QCOMPARE(outcome.code, fault.mended);
    QCOMPARE(outcome.done.isEmpty(), fault.mended == 0);
    AircraftChecks fresh(world.access, world.files, world.global);
    CAircraft again = world.aircraft(kestrel, aircraft.sSection);
    const QStringList left = again.Verify(fresh);
    QCOMPARE(left.isEmpty(), fault.mended == 1);
    QCOMPARE(outcome.left.first(left.size()), left); // behind them why nothing could be done
    if (fault.mended == 0) {
        QCOMPARE(world.read(kestrelCfg), damaged);
        return;
    }
    const QByteArray now = world.read(kestrelCfg);
    if (now != damaged)
        QCOMPARE(world.read(kestrel + u"/Aircraft.vtb"_s), damaged);
    if (const QByteArray model = world.read(kestrel + u"/model/model.cfg"_s);
        model != damagedModel && damagedModel != "<missing>")
        QCOMPARE(world.read(kestrel + u"/model/Model.vtb"_s), damagedModel);
    if (QByteArray(fault.name).startsWith("UTF") || QByteArray(fault.name).startsWith("bare"))
        QCOMPARE(now, sound);
}

void TestVerify::everythingWrong_isToldInOrder()
{
    AircraftWorld world;
    world.write(kestrelCfg,
                "[fltsim.1]\nsim=none\nmodel=a\npanel=b\nsound=c\ntexture=d\nkb_checklists=e\n"
                "kb_reference=f\n[LIGHTS]\nlight.0=1,0,0,0,fx_none\n"
                "light.1=1,0,0,0,fx_kestrel_light // there\n[fltsim.3]\n");
    world.remove(u"Effects/texture/fx_kestrel_light.bmp"_s);
    AircraftChecks checks(world.access, world.files, world.global);
    const QStringList found = world.aircraft(kestrel, u"fltsim.1"_s).Verify(checks);
    const QStringList order = {u"specify a title"_s,
                               u"'sim=' entry points"_s,
                               u"model configuration file does not exist"_s,
                               u"panel configuration"_s,
                               u"sound configuration"_s,
                               u"texture folder does not exist"_s,
                               u"checklist"_s,
                               u"reference list"_s,
                               u"effects files"_s,
                               u"texture files specified by an effects file"_s,
                               u"continuous order (fltsim.1->fltsim.3)"_s,
                               u"CR LF"_s};
    QCOMPARE(found.size(), order.size());
    for (qsizetype i = 0; i < order.size(); ++i)
        QVERIFY2(found.at(i).startsWith(u"- "_s) && found.at(i).contains(order.at(i)),
                 qPrintable(found.at(i)));
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.1"_s);
    const CAircraft::RepairOutcome outcome = aircraft.Repair(checks);
    QCOMPARE(outcome.code, int(RepairResult::PartlyRepaired));
    QCOMPARE(aircraft.sSection, u"fltsim.0"_s);
    QCOMPARE(outcome.renamed.size(), 2);
    QCOMPARE(outcome.left.size(), 3); // no title, effect and picture are nowhere
}

void TestVerify::sharedChecks_seeEachAircraft()
{
    AircraftWorld world;
    AircraftChecks checks(world.access, world.files, world.global);
    world.remove(carrier + u"/nw_carrier.air"_s);
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(world.aircraft(carrier, u"fltsim.1"_s).Verify(checks).size(), 1);
        QVERIFY(world.aircraft(kestrel, u"fltsim.1"_s).Verify(checks).isEmpty());
    }
    world.remove(kestrel + u"/texture.red"_s);
    world.replace(kestrelCfg, "texture=ete", "texture=nowhere");
    checks.forget();
    QCOMPARE(world.aircraft(kestrel, u"fltsim.2"_s).Verify(checks).size(), 1);
    QCOMPARE(world.aircraft(kestrel, u"fltsim.1"_s).Verify(checks).size(), 1);
}

void TestVerify::fallbackTextures_andAliasedModels()
{
    AircraftWorld world;
    world.remove(kestrel +
                 u"/texture.red/kestrel_k2_t.bmp"_s); // its texture.cfg leads to "texture"
    world.remove(carrier + u"/model/nw_carrier.mdl"_s);
    world.write(carrier + u"/model/model.cfg"_s, "[fltsim]\nalias=Kestrel_K2\\model\n");
    AircraftChecks checks(world.access, world.files, world.global);
    QCOMPARE(world.aircraft(kestrel, u"fltsim.1"_s).Verify(checks), QStringList());
    QCOMPARE(world.aircraft(carrier, u"fltsim.0"_s).Verify(checks), QStringList());
}

void TestVerify::report_endsWithItsSentence()
{
    AircraftWorld world;
    AircraftChecks checks(world.access, world.files, world.global);
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.0"_s);
    QVERIFY(aircraft.LoadManufacturerDetails(FSX));
    const QString clean = aircraft.Verify_Report(aircraft.Verify(checks), u"FS X"_s);
    QVERIFY(clean.startsWith(u"Aircraft Configuration Report\n\nKestrel K2 Trainer Blue ("_s));
    QVERIFY(clean.endsWith(u"\nNo aircraft configuration problems were detected. "_s));
    QVERIFY(aircraft.Hide(world.global).ok());
    world.remove(kestrel + u"/kestrel_k2.air"_s);
    checks.forget();
    const QString hidden = aircraft.Verify_Report(aircraft.Verify(checks), u"FS X"_s);
    QVERIFY(hidden.contains(u"\nUse Repair to attempt to fix aircraft issues.\n"_s));
    QVERIFY(hidden.endsWith(
        u"NOTE: This aircraft is hidden and therefore not available in FS X. To reveal it, right click in the Aircraft list then select Show."_s));
    QCOMPARE(hidden.count(u"\n- "_s), 1);
}

void TestVerify::repair_thatCannotSave()
{
    AircraftWorld world;
    world.replace(kestrelCfg, "sim=kestrel_k2", "sim=");
    const QByteArray damaged = world.read(kestrelCfg);
    world.gate.faultHook = [](const char* action, const QByteArray&) {
        return qstrcmp(action, "place") == 0 ? ENOSPC : 0;
    };
    AircraftChecks checks(world.access, world.files, world.global);
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.0"_s);
    const CAircraft::RepairOutcome outcome = aircraft.Repair(checks);
    QCOMPARE(outcome.code, 0);
    QVERIFY(outcome.done.isEmpty());
    QVERIFY2(outcome.left.value(1).contains(u"aircraft.cfg"_s),
             qPrintable(outcome.left.join(u'\n')));
    QCOMPARE(world.read(kestrelCfg), damaged);
}

VT_TEST_CLASS(TestVerify)
#include "test_verify.moc"
