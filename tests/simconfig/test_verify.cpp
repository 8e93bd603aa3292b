// Planted faults are found, none is invented, and what has one remedy is mended.
#include "AircraftWorld.h"
#include "support/Rows.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"

#include <functional>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QString carrier = u"SimObjects/Airplanes/Northwind_Carrier"_s;

/// Spoils a sound aircraft. Files are those below its folder, or effects.
using Fault = std::function<void(AircraftWorld& world)>;

QString placeOf(const char* file)
{
    const QString name = QLatin1StringView(file);
    return name.startsWith(u"Effects/") ? name : kestrel + u'/' + name;
}

Fault gone(std::initializer_list<const char*> files)
{
    return [files = std::vector(files)](AircraftWorld& world) {
        for (const char* file : files)
            world.remove(placeOf(file));
    };
}

Fault written(const char* file, const QByteArray& bytes)
{
    return [=](AircraftWorld& world) { world.write(placeOf(file), bytes); };
}

/// In the aircraft's configuration file.
Fault changed(const QByteArray& before, const QByteArray& after)
{
    return [=](AircraftWorld& world) { world.replace(kestrelCfg, before, after); };
}

Fault both(const Fault& one, const Fault& other)
{
    return [=](AircraftWorld& world) {
        one(world);
        other(world);
    };
}

/// The whole of the configuration file in another form.
Fault reformed(QByteArray (*form)(const QByteArray&))
{
    return [=](AircraftWorld& world) { world.write(kestrelCfg, form(world.read(kestrelCfg))); };
}

QByteArray markedUtf8(const QByteArray& latin1)
{
    return "\xef\xbb\xbf" + QString::fromLatin1(latin1).toUtf8();
}

QByteArray withoutNumbers(const QByteArray& text)
{
    return text.left(text.indexOf("[fltsim.1]")).replace("[fltsim.0]", "[fltsim.X]");
}

} // namespace

class TestVerify : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void soundSimulator_hasNoProblems()
    {
        AircraftWorld world;
        AircraftChecks checks(world.access, world.files, world.global);
        const TreeSnapshot before = hashTree(world.demo.simulatorHost);
        int variations = 0;
        for (const QString& folder : {kestrel,
                                      carrier,
                                      u"SimObjects/Airplanes/Aurelia_700"_s,
                                      u"SimObjects/Rotorcraft/Dragonfly_R1"_s}) {
            for (CAircraft& aircraft :
                 world.aircraft(folder, u"fltsim.0"_s).Variant_Details_GetAll()) {
                QCOMPARE(aircraft.Verify(checks), QStringList());
                QCOMPARE(aircraft.Repair(checks).code, 1);
                ++variations;
            }
        }
        QCOMPARE(variations, 10);
        QVERIFY(differences(before, hashTree(world.demo.simulatorHost)).isEmpty());
    }

    void fault_isFoundAndMended()
    {
        const QString noFile = u"- The aircraft configuration file does not exist. The file '"_s;
        const QString noSection =
            u"- The aircraft configuration file may lack an aircraft section (ie. 'fltsim.0')."_s;
        const QString noTitle = u"- The aircraft configuration file does not specify a title."_s;
        const QString noSim = u"- The aircraft configuration file does not have a 'sim=' entry."_s;
        const QString lostSim =
            u"- The aircraft configuration file's 'sim=' entry points to a file that does not exist. The file '"_s;
        const QString noModelCfg =
            u"- The aircraft's model configuration file does not exist. The file '"_s;
        const QString noModel =
            u"- The aircraft's model configuration file specifies a model file that does not exist. The file '"_s;
        const QString lostModel =
            u"- The aircraft's model configuration file refers to another model configuration file but the referenced model configuration file does not exist."_s;
        const QString emptyModel =
            u"- The aircraft's model configuration file does not specify a normal model file nor does it alias another model configuration file."_s;
        const QString noPanel =
            u"- The aircraft's panel configuration file does not exist. The file '"_s;
        const QString noSound =
            u"- The aircraft's sound configuration file does not exist. The file '"_s;
        const QString noFolder = u"- The aircraft's texture folder does not exist. The folder '"_s;
        const QString noTextures =
            u"- The aircraft's texture folder does not contain any textures. FS X will display a grey model."_s;
        const QString noChecklist =
            u"- The aircraft's kneeboard checklist file does not exist. The file '"_s;
        const QString noReference =
            u"- The aircraft's kneeboard reference list does not exist. The file '"_s;
        const QString noEffect =
            u"- One or more effects files specified in the aircraft configuration file are missing:\n\tfx_kestrel_smoke.fx"_s;
        const QString noPicture =
            u"- One or more texture files specified by an effects file are missing:\n\tfx_kestrel_light.bmp (used by fx_kestrel_light.fx)"_s;
        const QString gap =
            u"- One or more aircraft sections are out of continuous order (fltsim.0->fltsim.1->fltsim.3). The out of order aircraft sections will not appear in FS X."_s;
        const QString form = u"- The aircraft configuration file "_s;
        const Fault lostShape = gone({"model/kestrel_k2.mdl"});
        const char* const model = "model/model.cfg";
        const Fault aliasOfNobody =
            both(written(model, "[fltsim]\r\nalias=Nobody\\model\r\n"), lostShape);
        const Fault otherShape = written(model, "[models]\r\nnormal=k2\r\n");
        const Fault noShape = written(model, "[models]\r\ncrash=x\r\n");
        const Fault noNumbers =
            both(gone({"texture.red", "texture.ete"}), reformed(withoutNumbers));
        const Fault movedSound = [](AircraftWorld& world) {
            const QString folder = world.host(kestrel);
            QVERIFY(QDir().rename(folder + u"/sound"_s, folder + u"/Sound.Own"_s));
            world.files.newOperation();
        };
        const Fault emptyTexture =
            gone({"texture.red/kestrel_k2_t.bmp", "texture.red/texture.cfg"});
        const Fault otherReference = changed("kb_reference=kestrel_k2_ref", "kb_reference=k_ref");
        const QByteArray binary("[fltsim.0\0\1\2]\xff\0[", 16);
        // section, mended: what Repair returns; the problem: beginning of the line
        const Rows<int, Fault, QString, int> rows = {
            {"no file", 0, gone({"aircraft.cfg"}), noFile, 0},
            {"no section", 0, written("aircraft.cfg", "[General]\r\natc_type=K\r\n"), noSection, 0},
            {"section without a number", 0, noNumbers, noSection, 1},
            {"no title", 1, changed("title=Kestrel K2 Red", "title="), noTitle, 0},
            {"no sim", 0, changed("sim=kestrel_k2", "sim="), noSim, 1},
            {"another flight model there", 0, changed("sim=kestrel_k2", "sim=kestrel"), lostSim, 1},
            {"flight model missing", 0, gone({"kestrel_k2.air"}), lostSim, 0},
            {"model configuration missing", 0, gone({model}), noModelCfg, 1},
            {"model missing", 0, lostShape, noModel, 0},
            {"model of another name", 0, otherShape, noModel, 1},
            {"model alias that leads nowhere", 0, aliasOfNobody, lostModel, 0},
            {"model configuration that says nothing", 0, noShape, emptyModel, 1},
            {"panel missing", 0, gone({"panel"}), noPanel, 0},
            {"panel suffix that names nothing",
             0,
             changed("panel=\r\n", "panel=ifr\r\n"),
             noPanel,
             1},
            {"sound in the only other folder", 0, movedSound, noSound, 1},
            {"texture folder missing", 1, gone({"texture.red"}), noFolder, 1},
            {"no textures", 1, emptyTexture, noTextures, 0},
            {"checklist missing", 0, gone({"kestrel_k2_check.htm"}), noChecklist, 1},
            {"reference of another name", 2, otherReference, noReference, 1},
            {"effect missing", 0, gone({"Effects/fx_kestrel_smoke.fx"}), noEffect, 0},
            {"effect's picture missing",
             0,
             gone({"Effects/texture/fx_kestrel_light.bmp"}),
             noPicture,
             0},
            {"gap", 3, changed("[fltsim.2]", "[fltsim.3]"), gap, 1},
            {"bare line feeds", 0, changed("\r\n", "\n"), form, 1},
            {"UTF-16", 0, reformed(utf16), form, 1},
            {"UTF-8 mark", 0, reformed(markedUtf8), form, 1},
            {"binary garbage", 0, written("aircraft.cfg", binary), noSection, 0},
        };
        for (const auto& [section, plant, problem, mended] : rows) {
            AircraftWorld world;
            const QByteArray sound = world.read(kestrelCfg);
            plant(world);
            const QByteArray damaged = world.read(kestrelCfg);
            const QByteArray damagedModel = world.read(placeOf(model));
            const bool hadModel = world.exists(placeOf(model));
            AircraftChecks checks(world.access, world.files, world.global);
            CAircraft aircraft = world.aircraft(kestrel, u"fltsim."_s + QString::number(section));
            const QStringList found = aircraft.Verify(checks);
            QVERIFY2(found.value(0).startsWith(problem), qPrintable(found.join(u'\n')));
            QCOMPARE(found.size(), damaged == binary ? 2 : 1);

            const CAircraft::RepairOutcome outcome = aircraft.Repair(checks);
            QCOMPARE(outcome.code, mended);
            QCOMPARE(outcome.done.isEmpty(), mended == 0);
            AircraftChecks fresh(world.access, world.files, world.global);
            CAircraft again = world.aircraft(kestrel, aircraft.sSection);
            const QStringList left = again.Verify(fresh);
            QCOMPARE(left.isEmpty(), mended == 1);
            QCOMPARE(outcome.left.first(left.size()), left); // behind them why nothing was done
            const QByteArray now = world.read(kestrelCfg);
            if (mended == 0)
                QCOMPARE(now, damaged);
            if (now != damaged)
                QCOMPARE(world.read(kestrel + u"/Aircraft.vtb"_s), damaged);
            if (hadModel && world.read(placeOf(model)) != damagedModel)
                QCOMPARE(world.read(kestrel + u"/model/Model.vtb"_s), damagedModel);
            if (problem == form)
                QCOMPARE(now, sound);
        }
    }

    void everythingWrong_isToldInOrder()
    {
        AircraftWorld world;
        world.write(kestrelCfg,
                    "[fltsim.1]\nsim=none\nmodel=a\npanel=b\nsound=c\ntexture=d\nkb_checklists=e\n"
                    "kb_reference=f\n[LIGHTS]\nlight.0=1,0,0,0,fx_none\n"
                    "light.1=1,0,0,0,fx_kestrel_light // there\n[fltsim.3]\n");
        world.remove(u"Effects/texture/fx_kestrel_light.bmp"_s);
        AircraftChecks checks(world.access, world.files, world.global);
        const QStringList found = world.aircraft(kestrel, u"fltsim.1"_s).Verify(checks);
        const QStringList order = u"specify a title|'sim=' entry points|"
                                  "model configuration file does not exist|panel configuration|"
                                  "sound configuration|texture folder does not exist|checklist|"
                                  "reference list|effects files|"
                                  "texture files specified by an effects file|"
                                  "continuous order (fltsim.1->fltsim.3)|CR LF"_s.split(u'|');
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

    void sharedChecks_seeEachAircraft()
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

    void fallbackTextures_andAliasedModels()
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

    void report_endsWithItsSentence()
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

    void repair_thatCannotSave()
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
};

VT_TEST_CLASS(TestVerify)
#include "test_verify.moc"
