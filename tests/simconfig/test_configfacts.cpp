// What the entries of configuration files name, where an alias leads, what is recorded about files.
#include "addondb/AddonDatabase.h"
#include "engine/ConfigDisk.h"
#include "shell/GlobalRecord.h"
#include "simconfig/AliasTarget.h"
#include "simconfig/CModel.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/StockContent.h"
#include "simconfig/Suppression.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

struct FactsDisk : ConfigDisk
{
    FactsDisk() { global.setSimulatorFolder(u"C:\\FSX\\"_s); }

    std::unique_ptr<Connection> makeDatabase()
    {
        auto made = Connection::create(gate, u"C:\\Vantrel\\Vantrel.mdb"_s);
        [&] { QVERIFY2(made.connection, qPrintable(made.result.text)); }();
        return std::move(made.connection);
    }

    GlobalRecord global;
};

} // namespace

class TestConfigFacts : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void sections_number()
    {
        using configfacts::aircraftSectionNumber;
        QCOMPARE(aircraftSectionNumber(u"fltsim.0"), 0);
        QCOMPARE(aircraftSectionNumber(u"FLTSIM.112"), 112);
        for (const QStringView other : {u"fltsim",
                                        u"fltsim.",
                                        u"fltsim.x",
                                        u"fltsim.1a",
                                        u"fltsim.99999999999",
                                        u"xfltsim.1"})
            QCOMPARE(aircraftSectionNumber(other), -1);
    }

    void effects()
    {
        const Rows<QString, QByteArray, QString> rows = {
            {"with place", u"LIGHTS"_s, "3, -8.0, 0, 5, fx_navred , // left", u"fx_navred"_s},
            {"name alone", u"Effects"_s, "fx_wake", u"fx_wake"_s},
            {"quoted path", u"effects"_s, "\"Effects\\Fx_Spray.FX\", 1", u"Fx_Spray"_s},
            {"numbers", u"SmokeSystem"_s, "-6.0, 1e3, +.5,fx smoke ;x", u"fx smoke"_s},
            {"none", u"lights"_s, "1, -2.5, 0", {}},
            {"another section", u"general"_s, "fx_wake", {}},
        };
        for (const auto& [section, value, effect] : rows) {
            QCOMPARE(configfacts::effectOf(section, QString::fromLatin1(value)).toString(), effect);
            if (configfacts::isEffectSection(section))
                QCOMPARE(QString::fromLatin1(configfacts::effectOf(QByteArrayView(value))), effect);
        }
    }

    void gauges()
    {
        // named: collection | gauge
        const Rows<QByteArray, QByteArray> rows = {
            {"plain", "Cessna!Airspeed, 10, 20", "Cessna|Airspeed"},
            {"quoted", "\"Big Jet.CAB\"!\"Main Lamp\", 1", "Big Jet|Main Lamp"},
            {"path", "..\\Other\\Radios!Com 1", "..\\Other\\Radios|Com 1"},
            {"remark", "Compass.xml, 3, 4 // old", "Compass|"},
            {"type alone", ".gau", ".gau|"},
            {"nothing", "", "|"},
        };
        for (const auto& [value, named] : rows) {
            const QString text = QString::fromLatin1(value);
            const auto ofText = configfacts::gaugeOf(QStringView(text));
            QCOMPARE(ofText.collection.toLatin1() + '|' + ofText.gauge.toLatin1(), named);
            const auto ofBytes = configfacts::gaugeOf(QByteArrayView(value));
            QCOMPARE(ofBytes.collection.toByteArray() + '|' + ofBytes.gauge.toByteArray(), named);
        }
    }

    void bitmapsAndWaves()
    {
        const Rows<QString, QString> bitmaps = {
            {"with type", u"Back.bmp"_s, u"Back.bmp"_s},
            {"quoted path", u" \"night/Back\" "_s, u"night\\Back.bmp"_s},
            {"point in a folder", u"v1.2\\Back"_s, u"v1.2\\Back.bmp"_s},
        };
        for (const auto& [value, file] : bitmaps)
            QCOMPARE(configfacts::bitmapOf(value), file);
        const Rows<QString, QString> waves = {
            {"without type", u"run"_s, u"run.wav"_s},
            {"path, remark", u"../Other\\run.MP3 ; loud"_s, u"..\\Other\\run.MP3"_s},
            {"no type of sounds", u"run.1"_s, u"run.1.wav"_s},
            {"nothing", u""_s, u""_s},
        };
        for (const auto& [value, file] : waves)
            QCOMPARE(configfacts::waveOf(value), file);
    }

    void effectTextures_anyLineEnds()
    {
        const QByteArray fx = "[ParticleAttributes.0]\r\nBlend Mode=2\r\nTexture=fx_1.bmp\r\n"
                              "[ParticleAttributes.1]\n\tTEXTURE = Fx_2 // lit\nTexture=FX_1.BMP\n"
                              "textureless=no.bmp\nTexture=\n";
        QCOMPARE(configfacts::effectTexturesOf(fx, AnsiCodec(1252)),
                 (QStringList{u"fx_1.bmp"_s, u"Fx_2.bmp"_s}));
    }

    void alias()
    {
        const QString cub = u"SimObjects\\Airplanes\\cub\\PANEL\\panel.cfg"_s;
        const QString heli = u"SimObjects\\Rotorcraft\\Heli\\panel.red\\Panel.cfg"_s;
        const QString gone = u"SimObjects\\Airplanes\\Gone\\panel\\Panel.cfg"_s;
        // file: below the simulator's folder
        const Rows<QString, QString, bool> rows = {
            {"airplane", u"Cub\\panel"_s, cub, true},
            {"rotorcraft", u"\"heli/Panel.red/\""_s, heli, true},
            {"below the simulator", u"SimObjects\\Airplanes\\Cub\\Panel"_s, cub, true},
            {"names the file", u"\\cub\\panel\\Panel.cfg"_s, cub, true},
            {"dangling", u"Gone\\panel"_s, gone, false},
            {"leads out", u"..\\..\\..\\panel"_s, {}, false},
            {"drive", u"C:\\FSX\\panel"_s, {}, false},
            {"nothing", u" "_s, {}, false},
        };
        FactsDisk disk;
        disk.write(u"FSX/SimObjects/Airplanes/cub/PANEL/panel.cfg"_s);
        disk.write(u"FSX/SimObjects/Rotorcraft/Heli/panel.red/Panel.cfg"_s);
        for (const auto& [text, file, exists] : rows) {
            const aliastarget::Target target =
                aliastarget::resolve(disk.files, disk.global, text, aliastarget::Kind::Panel);
            QCOMPARE(target.file, file.isEmpty() ? file : u"C:\\FSX\\"_s + file);
            QCOMPARE(target.exists, exists);
            QCOMPARE(target.problem.isEmpty(), !file.isEmpty());
        }
    }

    void model_namesItsShapes()
    {
        // shapes: below "C:\FSX\model\"
        const Rows<QByteArray, QStringList, QString> rows = {
            {"shapes",
             "[models]\r\nNormal=Plane ; shape\r\ncrash=wreck.MDL\r\n",
             {u"Plane.mdl"_s, u"wreck.MDL"_s},
             {}},
            {"bare LF, same shape twice",
             "[MODELS]\nnormal=plane\ninterior=inside\ncrash=PLANE\n",
             {u"plane.mdl"_s, u"inside.mdl"_s},
             {}},
            {"alias", "[fltsim]\r\nalias=Other\\model\r\n", {}, u"Other\\model"_s},
            {"nothing", "// empty\r\n", {}, {}},
        };
        FactsDisk disk;
        CModel model(disk.access);
        for (const auto& [text, shapes, alias] : rows) {
            disk.write(u"FSX/model/model.cfg"_s, text);
            QVERIFY(model.Load(u"C:\\FSX\\model\\model.cfg"_s));
            QStringList files = shapes;
            for (QString& file : files)
                file.prepend(u"C:\\FSX\\model\\"_s);
            QCOMPARE(model.ModelFiles_Get(), files);
            QCOMPARE(model.sAlias, alias);
            QCOMPARE(model.ModelFilename_Crash_Get().isEmpty(), model.sModelEntry_Crash.isEmpty());
        }
        model.sModelEntry_Normal = u"old"_s;
        QVERIFY(!model.Load(u"C:\\FSX\\model.cfg"_s));
        QVERIFY(model.ModelFilename_Normal_Get().isEmpty());
    }

    void suppression_holdsForTheFileThatWasMarked()
    {
        FactsDisk disk;
        const auto database = disk.makeDatabase();
        const QString cfg = u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\Panel\\panel.cfg"_s;
        const QString host = u"FSX/SimObjects/Airplanes/Cub/Panel/panel.cfg"_s;
        const auto mark = [&](bool on) {
            return suppression::setSuppressed(*database, disk.actions, ItemTable::Panel, cfg, on)
                .ok;
        };
        const auto marked = [&](const QString& path, ItemTable table = ItemTable::Panel) {
            return suppression::isSuppressed(*database, disk.actions, table, path);
        };
        QVERIFY(!mark(true)); // no such file
        disk.write(host, "[Window00]\r\n");
        ItemDetailRecord remark;
        remark.item = cfg;
        remark.custom[3] = u"mine"_s;
        QVERIFY(modDatabase_Addon::setItemDetail(*database, ItemTable::Panel, remark).ok);
        QVERIFY(mark(true));
        QVERIFY(marked(cfg) && marked(cfg.toUpper()) && !marked(cfg, ItemTable::Sound));
        disk.write(host, "[Window00]\r\nx=1\r\n");
        QVERIFY(!marked(cfg));
        QVERIFY(mark(true) && marked(cfg));
        QVERIFY(mark(false) && !marked(cfg));
        QCOMPARE(modDatabase_Addon::itemDetail(*database, ItemTable::Panel, cfg)->custom[3],
                 u"mine"_s);
    }

    void stockContent_isWhatNobodyRecorded()
    {
        FactsDisk disk;
        const auto database = disk.makeDatabase();
        AddonRecord addon;
        addon.name = u"Repaint"_s;
        QVERIFY(modDatabase_Addon::createAddon(*database, addon).ok);
        const QString liner = u"C:\\FSX\\SimObjects\\Airplanes\\b737_800\\"_s;
        QList<DetailRecord> rows(1);
        rows[0].location = liner + u"panel\\"_s;
        rows[0].name = u"Panel.cfg"_s;
        QVERIFY(modDatabase_Addon::addDetails(*database, addon.key, rows).ok());
        const auto original = [&](const QString& path) {
            return stockcontent::isOriginal(database.get(), disk.global, path);
        };
        QVERIFY(original(liner + u"aircraft.cfg"_s) && original(liner));
        QVERIFY(!original(liner + u"panel\\panel.cfg"_s));
        QVERIFY(!original(u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\aircraft.cfg"_s));
        QVERIFY(!original(u"C:\\FSX\\Gauges\\B737_800\\aircraft.cfg"_s));
    }
};

VT_TEST_CLASS(TestConfigFacts)

#include "test_configfacts.moc"
