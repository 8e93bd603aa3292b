// What the catalogue tells of installed files: variations, groups, titles, references.
#include "CatalogueWorld.h"
#include "catalogue/UsedFiles.h"
#include "demo/DemoSimulator.h"
#include "platform/Profile.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace vt::test {

class TestCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void demonstration_isWhole();
    void variations_agreeWithProfileFunctions();
    void titles_data();
    void titles();
    void groups_showSomethingForMissingNames();
    void aliases_leadToUsers();
    void usedFiles_data();
    void usedFiles();
    void unreadable_data();
    void unreadable();
};

void TestCatalogue::demonstration_isWhole()
{
    QTemporaryDir folder;
    const auto demo = writeDemoSimulator(folder.filePath(u"prefix"_s));
    QVERIFY2(demo.ok(), qPrintable(demo.text));
    CatalogueWorld world;
    world.drives.set(u'S', demo->simulatorHost);
    world.global.setSimulatorFolder(u"S:\\"_s);
    const auto catalogue = world.fresh();
    QVERIFY(catalogue->problems().isEmpty());
    QStringList titles;
    for (quint32 number = 0; number < catalogue->variationCount(); ++number) {
        const CatalogueVariation one = catalogue->variation(number);
        titles += one.title.toString();
        CAircraft aircraft(world.access);
        QVERIFY(aircraft.Load(catalogue->file(one.config), one.section.toString()));
        QCOMPARE(one.sim.toString(), aircraft.sSIM);
        QCOMPARE(one.texture.toString(), aircraft.sTexture);
        for (const auto& [kind, file] :
             {std::pair{Catalogue::Kind::Panel, aircraft.sPanelConfigurationFile},
              {Catalogue::Kind::Sound, aircraft.sSoundConfigurationFile},
              {Catalogue::Kind::Model, aircraft.sModelConfigurationFile}}) {
            const auto config = catalogue->configOf(number, kind);
            QVERIFY2(config && winpath::same(catalogue->file(*config), file), qPrintable(file));
            QCOMPARE(catalogue->alias(*config).isEmpty(), !catalogue->aliasTarget(*config));
        }
    }
    QCOMPARE(titles.size(), 10);
    QVERIFY(titles.contains(u"Aurelia 700 Intl / HS-AUR"_s));
}

/// Random files: the one pass finds what the profile functions find one by one.
void TestCatalogue::variations_agreeWithProfileFunctions()
{
    QRandomGenerator random(20);
    const QByteArray pieces[] = {"[fltsim.0]",
                                 "[FLTSIM.1]",
                                 "[ fltsim.2 ] ; x",
                                 "[fltsim.00]",
                                 "[General]",
                                 "[fltsim.x",
                                 "title=",
                                 "Title\t= ",
                                 " panel =",
                                 "texture",
                                 "sound=alt",
                                 "ui_type=\"Red\"",
                                 " // old",
                                 "; note",
                                 "a/b",
                                 "Cub \xe9",
                                 "'",
                                 "\t",
                                 "[LIGHTS]",
                                 "vt_texture_addon_master_key=7",
                                 "Category=air",
                                 "=",
                                 "title=One\r\n",
                                 "\r\n",
                                 "\n",
                                 "\r\n\r\n"};
    CatalogueWorld world;
    for (int round = 0; round < 400; ++round) {
        QByteArray text = round % 7 == 0 ? QByteArray("\xef\xbb\xbf") : QByteArray();
        for (int i = 0; i < 60; ++i)
            text += pieces[random.bounded(int(std::size(pieces)))];
        world.airplane(u"Cub/aircraft.cfg"_s, text);
        const auto catalogue = world.fresh();
        const auto file = profile::ProfileFile::ofBytes(text, world.ansi);
        QStringList expected;
        QStringList seen;
        for (const QString& section : file.sections()) {
            if (!configfacts::isAircraftSection(section) ||
                seen.contains(section, Qt::CaseInsensitive))
                continue;
            seen += section;
            expected += section;
            for (const QString& key : {u"title"_s, u"panel"_s, u"sound"_s, u"ui_type"_s}) {
                const QString value =
                    modRoutines_INI::INI_Profile_GetValue(file, section, key, {}, 255, true).value;
                expected.last() += u'|' + configfacts::plainValue(value).toString();
            }
        }
        QStringList found;
        for (quint32 number = 0; number < catalogue->variationCount(); ++number) {
            const CatalogueVariation one = catalogue->variation(number);
            found += one.section.toString() + u'|' + one.title.toString() + u'|' +
                     one.panel.toString() + u'|' + one.sound.toString() + u'|' +
                     one.type.toString();
        }
        QVERIFY2(found == expected,
                 qPrintable(found.join(u'\n') + u"\n--- instead of\n"_s + expected.join(u'\n') +
                            u"\n--- of\n"_s + QString::fromLatin1(text)));
    }
}

void TestCatalogue::titles_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("exceptFile");
    QTest::addColumn<QString>("exceptSection");
    QTest::addColumn<bool>("used");
    const QString cub = u"c:\\fsx\\simobjects\\airplanes\\CUB\\Aircraft.cfg"_s;
    QTest::newRow("other case") << u"cub intl / hs-tba"_s << QString() << QString() << true;
    QTest::newRow("quoted, with remark")
        << u"\"Cub Red\" // new"_s << QString() << QString() << true;
    QTest::newRow("own section") << u"Cub Red"_s << cub << u"FLTSIM.1"_s << false;
    QTest::newRow("another section") << u"Cub Red"_s << cub << u"fltsim.0"_s << true;
    QTest::newRow("twice in one file") << u"Twin"_s << cub << u"fltsim.2"_s << true;
    QTest::newRow("rotorcraft") << u"Heli"_s << QString() << QString() << true;
    QTest::newRow("hidden") << u"secret"_s << QString() << QString() << true;
    QTest::newRow("beginning only") << u"Cub"_s << QString() << QString() << false;
    QTest::newRow("nothing") << QString() << QString() << QString() << false;
}

void TestCatalogue::titles()
{
    QFETCH(QString, title);
    QFETCH(QString, exceptFile);
    QFETCH(QString, exceptSection);
    CatalogueWorld world;
    world.airplane(u"Cub/aircraft.cfg"_s,
                   variationText(0, "Cub Intl / HS-TBA ; stock") +
                       variationText(1, "\"Cub Red\"", "ui_variation=Red") +
                       variationText(2, "Twin") + variationText(3, "twin") + variationText(4, "") +
                       "[Hidden.fltsim.5]\r\ntitle=Secret\r\n");
    world.write(u"FSX/SimObjects/Rotorcraft/Heli/AIRCRAFT.CFG"_s, variationText(0, "Heli"));
    const auto catalogue = world.fresh();
    QTEST(catalogue->titleIsUsed(title, exceptFile, exceptSection), "used");
    QVERIFY(catalogue->variationIsUsed(u"red"_s, {}, {}));
    QVERIFY(!catalogue->variationIsUsed(u"Cub Red"_s, {}, {}));
}

void TestCatalogue::groups_showSomethingForMissingNames()
{
    CatalogueWorld world;
    world.airplane(
        u"a/aircraft.cfg"_s,
        variationText(0, "B2", "ui_manufacturer=\"birch\"\r\nui_type=S2\r\n") +
            variationText(1, "B1", "ui_manufacturer=Birch\r\nui_type=s2\r\nui_variation=A") +
            variationText(2, "Lone") + variationText(3, ""));
    const auto catalogue = world.fresh();
    QStringList shown;
    for (const ManufacturerGroup& manufacturer : catalogue->grouped()) {
        for (const AircraftTypeGroup& type : manufacturer.types) {
            QString line = manufacturer.manufacturer + u'/' + type.type + u':';
            for (const quint32 number : type.variations)
                line += u' ' + catalogue->variation(number).shownVariation();
            shown += line;
        }
    }
    QCOMPARE(shown,
             (QStringList{u"Birch/s2: A B2"_s,
                          u"Unknown Manufacturer/fltsim.3: fltsim.3"_s,
                          u"Unknown Manufacturer/Lone: Lone"_s}));
}

void TestCatalogue::aliases_leadToUsers()
{
    CatalogueWorld world;
    world.airplane(u"Cub/aircraft.cfg"_s,
                   variationText(0, "Own") + variationText(1, "Far", "panel=far\r\nsound=\\night"));
    world.airplane(u"Cub/Panel/Panel.cfg"_s, "[Window00]\r\nfile=back\r\n");
    world.airplane(u"Cub/panel.FAR/panel.cfg"_s, "[fltsim]\r\nalias=Otter\\panel.b\r\n");
    world.airplane(u"Cub/Sound/Night/sound.cfg"_s, "[a]\r\nfilename=x\r\n");
    world.airplane(u"Cub/soundai/SoundAI.cfg"_s, "[fltsim]\r\nalias=..\\out\r\n");
    world.airplane(u"Otter/panel.b/panel.cfg"_s, "[FLTSIM]\nalias = \"cub/PANEL\" // there\n");
    world.airplane(u"Loop/panel/panel.cfg"_s, "[fltsim]\r\nalias=Loop\\panel\r\n");
    const auto catalogue = world.fresh();
    const QString top = u"C:\\FSX\\SimObjects\\Airplanes\\"_s;
    const auto own = catalogue->find(top + u"Cub\\panel\\panel.cfg"_s);
    const auto far = catalogue->find(top + u"Cub\\panel.far\\panel.cfg"_s);
    const auto middle = catalogue->find(top + u"Otter\\panel.b\\panel.cfg"_s);
    const auto loop = catalogue->find(top + u"Loop\\panel\\panel.cfg"_s);
    const auto ai = catalogue->find(top + u"Cub\\soundai\\soundai.cfg"_s);
    const auto night = catalogue->find(top + u"Cub\\sound\\night\\sound.cfg"_s);
    QVERIFY(own && far && middle && loop && ai && night);
    QCOMPARE(catalogue->aliasTarget(*far), middle);
    QCOMPARE(catalogue->aliasTarget(*middle), own);
    QCOMPARE(catalogue->aliasesOf(*own), QList<ConfigIndex>{*middle});
    QCOMPARE(catalogue->usersOf(*own), (QList<quint32>{0, 1}));
    QCOMPARE(catalogue->usersOf(*middle), QList<quint32>{1});
    QCOMPARE(catalogue->usersOf(*night), QList<quint32>{1});
    QCOMPARE(catalogue->usersOf(*ai), (QList<quint32>{0, 1}));
    QCOMPARE(catalogue->usersOf(*loop), QList<quint32>());
    QVERIFY(!catalogue->aliasTarget(*ai));
    QCOMPARE(catalogue->label(*far), u"Cub (panel.FAR)"_s);
}

void TestCatalogue::usedFiles_data()
{
    QTest::addColumn<QString>("path"); ///< below the simulator's folder
    QTest::addColumn<QString>("users");
    QTest::newRow("effect") << u"effects\\FX_Nav.fx"_s << u"aircraft.cfg"_s;
    QTest::newRow("effect of nobody") << u"Effects\\fx_none.fx"_s << QString();
    QTest::newRow("picture of an effect") << u"Effects\\texture\\nav.bmp"_s << u"fx_nav.fx"_s;
    QTest::newRow("gauge") << u"Gauges\\Set.GAU"_s << u"panel.cfg"_s;
    QTest::newRow("cabinet in the panel")
        << u"SimObjects\\Airplanes\\Cub\\panel\\set.cab"_s << u"panel.cfg"_s;
    QTest::newRow("picture of a gauge that is a folder")
        << u"SimObjects\\Airplanes\\Cub\\panel\\set\\dial\\1.bmp"_s << u"panel.cfg"_s;
    QTest::newRow("gauge of another panel")
        << u"SimObjects\\Airplanes\\Otter\\panel\\set.cab"_s << QString();
    QTest::newRow("gauge's name, another file") << u"Gauges\\set.txt"_s << QString();
    QTest::newRow("picture") << u"SimObjects\\Airplanes\\Cub\\Panel\\Back.BMP"_s << u"panel.cfg"_s;
    QTest::newRow("audio file") << u"SimObjects\\Airplanes\\Cub\\sound\\run.wav"_s
                                << u"sound.cfg"_s;
    QTest::newRow("audio file elsewhere")
        << u"SimObjects\\Airplanes\\Otter\\sound\\far.wav"_s << u"sound.cfg"_s;
    QTest::newRow("common audio file") << u"Sound\\run.wav"_s << u"sound.cfg"_s;
}

void TestCatalogue::usedFiles()
{
    QFETCH(QString, path);
    CatalogueWorld world;
    world.airplane(u"Cub/aircraft.cfg"_s,
                   variationText(0, "Cub") + "[Lights]\r\nlight.0=1, 2.0, fx_nav // left\r\n");
    world.airplane(u"Cub/panel/panel.cfg"_s,
                   "[Window00]\r\nfile = back\r\ngauge00=Set!Dial, 1, 2\r\nGauge01=set!Lamp;,\r\n"
                   "// gauge02=Old!Dial, 1\r\n");
    world.airplane(
        u"Cub/sound/sound.cfg"_s,
        "[A]\r\nfilename=run // loop\r\n[B]\r\nfilename=..\\..\\Otter/sound\\far.wav\r\n");
    world.write(u"FSX/Effects/fx_nav.fx"_s, "[ParticleAttributes.0]\r\nTexture=nav.bmp\r\n");
    const auto catalogue = world.fresh();
    const UsedFiles used(*catalogue);
    QStringList users;
    QSet<NoCase> left;
    for (const ConfigIndex config : used.usersOf(u"C:\\FSX\\"_s + path)) {
        users += winpath::name(catalogue->file(config));
        left.insert(NoCase{catalogue->file(config).toUpper()});
    }
    QTEST(users.join(u','), "users");
    QVERIFY(!UsedFiles(*catalogue, left).isUsed(u"C:\\FSX\\"_s + path));
}

void TestCatalogue::unreadable_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<quint32>("variations");
    QTest::addColumn<QString>("why"); ///< empty: no problem
    QRandomGenerator random(3);
    QByteArray noise(50'000, '\0');
    for (char& c : noise)
        c = char(random.bounded(256));
    const QByteArray good = variationText(0, "Cub");
    QTest::newRow("binary") << noise << 0u << u"NUL"_s;
    QTest::newRow("one NUL") << good + '\0' << 0u << u"NUL"_s;
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0f\0", 6) << 0u << u"UTF-16"_s;
    QTest::newRow("nothing in it") << QByteArray() << 0u << u"no aircraft section"_s;
    QTest::newRow("bare LF") << QByteArray(good).replace("\r\n", "\n") << 1u << QString();
    QTest::newRow("bracket unclosed") << "[fltsim.0\r\ntitle=x\r\n" + good << 1u << QString();
    QTest::newRow("long line") << good + "sim=" + QByteArray(10'000'000, 'x') << 1u << QString();
    QTest::newRow("brackets") << good + QByteArray(10'000'000, '[') << 1u << QString();
    QTest::newRow("apostrophes") << good + "[LIGHTS]\r\na=" + QByteArray(3'000'000, '\'') << 1u
                                 << QString();
    QByteArray sections;
    for (int i = 0; i < 1'000'000; ++i)
        sections += "[fltsim." + QByteArray::number(i) + "]\n";
    QTest::newRow("a million sections") << sections << 10'000u << u"10000"_s;
    QTest::newRow("too large") << QByteArray(17 << 20, ' ') << 0u << u"larger than 16.0 MB"_s;
}

void TestCatalogue::unreadable()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, why);
    CatalogueWorld world;
    world.airplane(u"Cub/aircraft.cfg"_s, bytes);
    world.airplane(u"Cub/panel/panel.cfg"_s, bytes);
    world.airplane(u"Otter/aircraft.cfg"_s, variationText(0, "Otter"));
    const auto catalogue = world.fresh();
    QTEST(catalogue->variationCount() - 1, "variations");
    QVERIFY(catalogue->titleIsUsed(u"Otter"_s, {}, {}));
    const QString problem = catalogue->problems().value(0).text;
    QVERIFY2(problem.isEmpty() == why.isEmpty() && problem.contains(why), qPrintable(problem));
    QVERIFY(problem.isEmpty() || problem.contains(u"Airplanes\\Cub\\aircraft.cfg"_s));
}

} // namespace vt::test

using vt::test::TestCatalogue;
VT_TEST_CLASS(TestCatalogue)

#include "test_catalogue.moc"
