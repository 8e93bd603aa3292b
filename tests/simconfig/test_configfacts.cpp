// What the entries of configuration files name, and where an alias leads.
#include "simconfig/AliasTarget.h"
#include "simconfig/ConfigFacts.h"
#include "support/Disk.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace vt::test {

class TestConfigFacts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sections_number();
    void values_data();
    void values();
    void effectTextures_anyLineEnds();
    void alias_data();
    void alias();
};

void TestConfigFacts::sections_number()
{
    using configfacts::aircraftSectionNumber;
    QCOMPARE(aircraftSectionNumber(u"fltsim.0"), 0);
    QCOMPARE(aircraftSectionNumber(u"FLTSIM.112"), 112);
    for (const QStringView other :
         {u"fltsim", u"fltsim.", u"fltsim.x", u"fltsim.1a", u"fltsim.99999999999", u"xfltsim.1"})
        QCOMPARE(aircraftSectionNumber(other), -1);
}

void TestConfigFacts::values_data()
{
    QTest::addColumn<QString>("rule");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* rule, const char* value, const char* expected) {
        QTest::addRow("%s %s", rule, value)
            << QString::fromLatin1(rule) << QString::fromLatin1(value)
            << QString::fromLatin1(expected);
    };
    row("LIGHTS", "3, -8.0, 0, 5, fx_navred , // left", "fx_navred");
    row("Effects", "fx_wake", "fx_wake");
    row("effects", "\"Effects\\Fx_Spray.FX\", 1", "Fx_Spray");
    row("SmokeSystem", "-6.0, 1e3, +.5,fx smoke ;x", "fx smoke");
    row("lights", "1, -2.5, 0", "");
    row("general", "fx_wake", "");
    row("gauge", "Cessna!Airspeed, 10, 20", "Cessna|Airspeed");
    row("gauge", "\"Big Jet.CAB\"!\"Main Lamp\", 1", "Big Jet|Main Lamp");
    row("gauge", "..\\Other\\Radios!Com 1", "..\\Other\\Radios|Com 1");
    row("gauge", "Compass.xml, 3, 4 // old", "Compass|");
    row("gauge", ".gau", ".gau|");
    row("gauge", "", "|");
    row("bitmap", "Back.bmp", "Back.bmp");
    row("bitmap", " \"night/Back\" ", "night\\Back.bmp");
    row("bitmap", "v1.2\\Back", "v1.2\\Back.bmp");
    row("wave", "run", "run.wav");
    row("wave", "../Other\\run.MP3 ; loud", "..\\Other\\run.MP3");
    row("wave", "run.1", "run.1.wav");
    row("wave", "", "");
}

void TestConfigFacts::values()
{
    QFETCH(QString, rule);
    QFETCH(QString, value);
    const QByteArray bytes = value.toLatin1();
    if (rule == u"gauge") {
        const auto text = configfacts::gaugeOf(value);
        QTEST(text.collection.toString() + u'|' + text.gauge.toString(), "expected");
        const auto raw = configfacts::gaugeOf(QByteArrayView(bytes));
        QTEST(QString::fromLatin1(raw.collection) + u'|' + QString::fromLatin1(raw.gauge),
              "expected");
    } else if (rule == u"bitmap") {
        QTEST(configfacts::bitmapOf(value), "expected");
    } else if (rule == u"wave") {
        QTEST(configfacts::waveOf(value), "expected");
    } else {
        QTEST(configfacts::effectOf(rule, value).toString(), "expected");
        if (configfacts::isEffectSection(rule))
            QTEST(QString::fromLatin1(configfacts::effectOf(bytes)), "expected");
    }
}

void TestConfigFacts::effectTextures_anyLineEnds()
{
    const QByteArray fx = "[ParticleAttributes.0]\r\nBlend Mode=2\r\nTexture=fx_1.bmp\r\n"
                          "[ParticleAttributes.1]\n\tTEXTURE = Fx_2 // lit\nTexture=FX_1.BMP\n"
                          "textureless=no.bmp\nTexture=\n";
    QCOMPARE(configfacts::effectTexturesOf(fx, AnsiCodec(1252)),
             (QStringList{u"fx_1.bmp"_s, u"Fx_2.bmp"_s}));
}

void TestConfigFacts::alias_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("file"); ///< below the simulator's folder
    QTest::addColumn<bool>("exists");
    QTest::newRow("airplane") << u"Cub\\panel"_s
                              << u"SimObjects\\Airplanes\\cub\\PANEL\\panel.cfg"_s << true;
    QTest::newRow("rotorcraft") << u"\"heli/Panel.red/\""_s
                                << u"SimObjects\\Rotorcraft\\Heli\\panel.red\\Panel.cfg"_s << true;
    QTest::newRow("below the simulator")
        << u"SimObjects\\Airplanes\\Cub\\Panel"_s
        << u"SimObjects\\Airplanes\\cub\\PANEL\\panel.cfg"_s << true;
    QTest::newRow("names the file") << u"\\cub\\panel\\Panel.cfg"_s
                                    << u"SimObjects\\Airplanes\\cub\\PANEL\\panel.cfg"_s << true;
    QTest::newRow("dangling") << u"Gone\\panel"_s
                              << u"SimObjects\\Airplanes\\Gone\\panel\\Panel.cfg"_s << false;
    QTest::newRow("leads out") << u"..\\..\\..\\panel"_s << QString() << false;
    QTest::newRow("drive") << u"C:\\FSX\\panel"_s << QString() << false;
    QTest::newRow("nothing") << u" "_s << QString() << false;
}

void TestConfigFacts::alias()
{
    QFETCH(QString, text);
    QFETCH(QString, file);
    Disk disk;
    disk.write(u"FSX/SimObjects/Airplanes/cub/PANEL/panel.cfg"_s, {});
    disk.write(u"FSX/SimObjects/Rotorcraft/Heli/panel.red/Panel.cfg"_s, {});
    GlobalRecord global;
    global.setSimulatorFolder(u"C:\\FSX\\"_s);
    const aliastarget::Target target =
        aliastarget::resolve(disk.files, global, text, aliastarget::Kind::Panel);
    QCOMPARE(target.file, file.isEmpty() ? file : u"C:\\FSX\\"_s + file);
    QTEST(target.exists, "exists");
    QCOMPARE(target.problem.isEmpty(), !file.isEmpty());
}

} // namespace vt::test

using vt::test::TestConfigFacts;
VT_TEST_CLASS(TestConfigFacts)

#include "test_configfacts.moc"
