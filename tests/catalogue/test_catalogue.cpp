// What the catalogue tells of installed files: variations, groups, titles, references.
#include "CatalogueWorld.h"
#include "catalogue/UsedFiles.h"
#include "demo/DemoSimulator.h"
#include "platform/Profile.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace vt::test {

class TestCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void demonstration_isWhole()
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
    void variations_agreeWithProfileFunctions()
    {
        QRandomGenerator random(20);
        const QByteArrayList pieces =
            QByteArray("[fltsim.0]|[FLTSIM.1]|[ fltsim.2 ] ; x|[fltsim.00]|[General]|[fltsim.x|"
                       "title=|Title\t= | panel =|texture|sound=alt|ui_type=\"Red\"| // old|; note|"
                       "a/b|Cub \xe9|'|\t|[LIGHTS]|vt_texture_addon_master_key=7|Category=air|=|"
                       "title=One\r\n|\r\n|\n|\r\n\r\n")
                .split('|');
        CatalogueWorld world;
        for (int round = 0; round < 400; ++round) {
            QByteArray text = round % 7 == 0 ? QByteArray("\xef\xbb\xbf") : QByteArray();
            for (int i = 0; i < 60; ++i)
                text += pieces.at(random.bounded(pieces.size()));
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
                        modRoutines_INI::INI_Profile_GetValue(file, section, key, {}, 255, true)
                            .value;
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

    void titles()
    {
        CatalogueWorld world;
        world.airplane(u"Cub/aircraft.cfg"_s,
                       variationText(0, "Cub Intl / HS-TBA ; stock") +
                           variationText(1, "\"Cub Red\"", "ui_variation=Red") +
                           variationText(2, "Twin") + variationText(3, "twin") +
                           variationText(4, "'Cub Blue'") +
                           "[Hidden.fltsim.5]\r\ntitle=Secret\r\n");
        world.write(u"FSX/SimObjects/Rotorcraft/Heli/AIRCRAFT.CFG"_s, variationText(0, "Heli"));
        const auto catalogue = world.fresh();
        const QString cub = u"c:\\fsx\\simobjects\\airplanes\\CUB\\Aircraft.cfg"_s;
        const Rows<QString, QString, QString, bool> rows = {
            {"other case", u"cub intl / hs-tba"_s, {}, {}, true},
            {"quoted, with remark", u"\"Cub Red\" // new"_s, {}, {}, true},
            {"in single quotes", u"Cub Blue"_s, {}, {}, true},
            {"own section", u"Cub Red"_s, cub, u"FLTSIM.1"_s, false},
            {"another section", u"Cub Red"_s, cub, u"fltsim.0"_s, true},
            {"twice in one file", u"Twin"_s, cub, u"fltsim.2"_s, true},
            {"rotorcraft", u"Heli"_s, {}, {}, true},
            {"hidden", u"secret"_s, {}, {}, true},
            {"beginning only", u"Cub"_s, {}, {}, false},
            {"nothing", {}, {}, {}, false},
        };
        for (const auto& [title, exceptFile, exceptSection, used] : rows)
            QCOMPARE(catalogue->titleIsUsed(title, exceptFile, exceptSection), used);
        QVERIFY(catalogue->variationIsUsed(u"red"_s, {}, {}));
        QVERIFY(!catalogue->variationIsUsed(u"Cub Red"_s, {}, {}));
    }

    void groups_showSomethingForMissingNames()
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

    void aliases_leadToUsers()
    {
        CatalogueWorld world;
        world.airplane(u"Cub/aircraft.cfg"_s,
                       variationText(0, "Own") +
                           variationText(1, "Far", "panel=far\r\nsound=\\night"));
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

    void usedFiles()
    {
        CatalogueWorld world;
        world.airplane(u"Cub/aircraft.cfg"_s,
                       variationText(0, "Cub") + "[Lights]\r\nlight.0=1, 2.0, fx_nav // left\r\n");
        world.airplane(u"Cub/panel/panel.cfg"_s,
                       crlf("[Window00]|file = back|gauge00=Set!Dial, 1, 2|Gauge01=set!Lamp;,|"
                            "// gauge02=Old!Dial, 1|"));
        world.airplane(u"Cub/sound/sound.cfg"_s,
                       crlf("[A]|filename=run // loop|[B]|filename=..\\..\\Otter/sound\\far.wav|"));
        world.write(u"FSX/Effects/fx_nav.fx"_s, "[ParticleAttributes.0]\r\nTexture=nav.bmp\r\n");
        const auto catalogue = world.fresh();
        const UsedFiles used(*catalogue);
        const QString aircraft = u"SimObjects\\Airplanes\\"_s;
        const QString panel = u"panel.cfg"_s;
        const QString sound = u"sound.cfg"_s;
        // path: below the simulator's folder; by: the only user
        const Rows<QString, QString> rows = {
            {"effect", u"effects\\FX_Nav.fx"_s, u"aircraft.cfg"_s},
            {"effect of nobody", u"Effects\\fx_none.fx"_s, {}},
            {"picture of an effect", u"Effects\\texture\\nav.bmp"_s, u"fx_nav.fx"_s},
            {"gauge", u"Gauges\\Set.GAU"_s, panel},
            {"cabinet in the panel", aircraft + u"Cub\\panel\\set.cab"_s, panel},
            {"picture in a gauge's folder", aircraft + u"Cub\\panel\\set\\dial\\1.bmp"_s, panel},
            {"gauge of another panel", aircraft + u"Otter\\panel\\set.cab"_s, {}},
            {"gauge's name, another file", u"Gauges\\set.txt"_s, {}},
            {"picture", aircraft + u"Cub\\Panel\\Back.BMP"_s, panel},
            {"audio file", aircraft + u"Cub\\sound\\run.wav"_s, sound},
            {"audio file elsewhere", aircraft + u"Otter\\sound\\far.wav"_s, sound},
            {"common audio file", u"Sound\\run.wav"_s, sound},
        };
        for (const auto& [path, by] : rows) {
            QStringList users;
            QSet<NoCase> left;
            for (const ConfigIndex config : used.usersOf(u"C:\\FSX\\"_s + path)) {
                users += winpath::name(catalogue->file(config));
                left.insert(NoCase{catalogue->file(config).toUpper()});
            }
            QCOMPARE(users.join(u','), by);
            const QString full = u"C:\\FSX\\"_s + path;
            QCOMPARE(UsedFiles(*catalogue, {}, {full}).usersOf(full), used.usersOf(full));
            QVERIFY(!UsedFiles(*catalogue, left).isUsed(u"C:\\FSX\\"_s + path));
        }
    }

    void unreadable()
    {
        QRandomGenerator random(3);
        QByteArray noise(50'000, '\0');
        for (char& c : noise)
            c = char(random.bounded(256));
        QByteArray sections;
        for (int i = 0; i < 1'000'000; ++i)
            sections += "[fltsim." + QByteArray::number(i) + "]\n";
        const QByteArray good = variationText(0, "Cub");
        const QByteArray quotes(3'000'000, '\'');
        // why: empty: no problem
        const Rows<QByteArray, quint32, QString> rows = {
            {"binary", noise, 0, u"NUL"_s},
            {"one NUL", good + '\0', 0, u"NUL"_s},
            {"UTF-16", utf16("[f]").chopped(2), 0, u"UTF-16"_s},
            {"nothing in it", "", 0, u"no aircraft section"_s},
            {"bare LF", QByteArray(good).replace("\r\n", "\n"), 1, {}},
            {"bracket unclosed", "[fltsim.0\r\ntitle=x\r\n" + good, 1, {}},
            {"long line", good + "sim=" + QByteArray(10'000'000, 'x'), 1, {}},
            {"brackets", good + QByteArray(10'000'000, '['), 1, {}},
            {"apostrophes", good + "[LIGHTS]\r\na=" + quotes, 1, {}},
            {"a million sections", sections, 10'000, u"10000"_s},
            {"too large", QByteArray(17 << 20, ' '), 0, u"larger than 16.0 MB"_s},
        };
        for (const auto& [bytes, variations, why] : rows) {
            CatalogueWorld world;
            world.airplane(u"Cub/aircraft.cfg"_s, bytes);
            world.airplane(u"Cub/panel/panel.cfg"_s, bytes);
            world.airplane(u"Otter/aircraft.cfg"_s, variationText(0, "Otter"));
            const auto catalogue = world.fresh();
            QCOMPARE(catalogue->variationCount() - 1, variations);
            QVERIFY(catalogue->titleIsUsed(u"Otter"_s, {}, {}));
            const QString problem = catalogue->problems().value(0).text;
            QCOMPARE(problem.isEmpty(), why.isEmpty());
            QVERIFY2(problem.contains(why), qPrintable(problem));
            QVERIFY(problem.isEmpty() || problem.contains(u"Airplanes\\Cub\\aircraft.cfg"_s));
        }
    }
};

} // namespace vt::test

using vt::test::TestCatalogue;
VT_TEST_CLASS(TestCatalogue)

#include "test_catalogue.moc"
