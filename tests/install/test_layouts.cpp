// What a pilot would have done by hand: one add-on in the likeness of each layout that is met, and
// where each of its files must go.
#include "PlanWorld.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

const QByteArray sectionText =
    "Hello pilots!\n\nCopy this into your aircraft.cfg:\n\n[fltsim.xx]\ntitle\t= B747 Intl / "
    "HS-TBA\nsim\t\t= b747\ntexture\t= intl\nui_variation\t= \"Intl\"\n\nEnjoy = fly!\n";

struct Row
{
    const char* name;
    const char* source; ///< name of the archive or folder
    /// "path", or "path|content" with a named content
    QStringList files;
    QStringList expected; ///< "source -> target" with "/" for brevity on both sides
};

QByteArray contentNamed(const QString& name)
{
    if (name == u"cfg"_s)
        return aircraftCfg("Northwind Carrier", "carrier");
    if (name == u"cfgLF"_s)
        return aircraftCfg("Northwind Carrier", "carrier").replace("\r\n", "\n");
    if (name == u"two"_s)
        return aircraftCfg("Northwind Carrier Red") +
               "[fltsim.1]\r\ntitle=Northwind Carrier Blue\r\ntexture=blue\r\n";
    if (name == u"heli"_s)
        return aircraftCfg("Dragon").replace("airplane", "Helicopter");
    if (name == u"empty"_s)
        return "[General]\r\natc_type=NORTHWIND\r\n";
    if (name == u"blue"_s)
        return "[fltsim.0]\r\ntitle=B747 Blue\r\nsim=b747\r\ntexture=blue\r\nui_variation=Blue\r\n";
    if (name == u"section"_s)
        return sectionText;
    if (name == u"gauge"_s)
        return "<Gauge Name=\"x\"/>";
    return name.toUtf8();
}

} // namespace

class TestLayouts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void targets_data();
    void targets();
    void nestedArchives_areOpenedAndNotInstalled();
    void nestedRepaints_goToTheAircraftOfTheAddon();
    void backslashNamesInAnyCase_meetTheExistingSpelling();
    void aiPack_keepsSubfoldersOfSuffixes();
    void existingFolderOfTheAircraft_isNotTakenByARepaint();
    void texturesThatAreNamedOrPresent_areNoNewVariation();
    void sameRepaintTwice_isInstalledOnce();
    void plainFile_isAnAddon();
    void patchFolder_goesOverTheMainFiles();
};

void TestLayouts::targets_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("expected");
    const Row rows[] = {
        {"full tree below wrappers",
         "pack.zip",
         {u"My Pack/FSX/Simobjects/AIRPLANES/Carrier/aircraft.cfg|cfg"_s,
          u"My Pack/FSX/Simobjects/AIRPLANES/Carrier/c.air"_s,
          u"My Pack/FSX/Simobjects/AIRPLANES/Carrier/model/c.mdl"_s,
          u"My Pack/FSX/Effects/fx_c.fx"_s,
          u"My Pack/FSX/effects/texture/fx_c.bmp"_s,
          u"My Pack/FSX/Gauges/C.cab"_s,
          u"My Pack/FSX/Sound/c.wav"_s,
          u"My Pack/FSX/Addon Scenery/Strip/scenery/s.bgl"_s,
          u"My Pack/FSX/Addon Scenery/Strip/texture/s.dds"_s,
          u"My Pack/readme.txt"_s},
         {u"Simobjects/AIRPLANES/Carrier/aircraft.cfg -> SIM/SimObjects/Airplanes/Carrier/aircraft.cfg"_s,
          u"Simobjects/AIRPLANES/Carrier/c.air -> SIM/SimObjects/Airplanes/Carrier/c.air"_s,
          u"Simobjects/AIRPLANES/Carrier/model/c.mdl -> SIM/SimObjects/Airplanes/Carrier/model/c.mdl"_s,
          u"Effects/fx_c.fx -> SIM/Effects/fx_c.fx"_s,
          u"effects/texture/fx_c.bmp -> SIM/Texture/fx_c.bmp"_s,
          u"Gauges/C.cab -> SIM/Gauges/C.cab"_s,
          u"Sound/c.wav -> SIM/Sound/c.wav"_s,
          u"Addon Scenery/Strip/scenery/s.bgl -> SIM/Addon Scenery/Strip/scenery/s.bgl"_s,
          u"Addon Scenery/Strip/texture/s.dds -> SIM/Addon Scenery/Strip/texture/s.dds"_s,
          u"My Pack/readme.txt -> STORE/readme.txt"_s}},
        {"aircraft folder of the previous generation",
         "pack.zip",
         {u"Aircraft/Carrier/aircraft.cfg|cfg"_s,
          u"Aircraft/Carrier/c.air"_s,
          u"Aircraft/Carrier/panel/panel.cfg"_s,
          u"Aircraft/Carrier/readme.txt"_s},
         {u"Aircraft/Carrier/aircraft.cfg -> SIM/SimObjects/Airplanes/Carrier/aircraft.cfg"_s,
          u"Aircraft/Carrier/c.air -> SIM/SimObjects/Airplanes/Carrier/c.air"_s,
          u"Aircraft/Carrier/panel/panel.cfg -> SIM/SimObjects/Airplanes/Carrier/panel/panel.cfg"_s,
          u"Aircraft/Carrier/readme.txt -> STORE/readme.txt"_s}},
        {"one folder that is the aircraft",
         "pack.zip",
         {u"Carrier V2/aircraft.cfg|cfg"_s,
          u"Carrier V2/c.air"_s,
          u"Carrier V2/texture.1/t.dds"_s,
          u"Carrier V2/texture.1/thumbnail.jpg"_s,
          u"Carrier V2/carrier_check.htm"_s},
         {u"aircraft.cfg -> SIM/SimObjects/Airplanes/Carrier V2/aircraft.cfg"_s,
          u"c.air -> SIM/SimObjects/Airplanes/Carrier V2/c.air"_s,
          u"texture.1/t.dds -> SIM/SimObjects/Airplanes/Carrier V2/texture.1/t.dds"_s,
          u"texture.1/thumbnail.jpg -> SIM/SimObjects/Airplanes/Carrier V2/texture.1/thumbnail.jpg"_s,
          u"carrier_check.htm -> SIM/SimObjects/Airplanes/Carrier V2/carrier_check.htm"_s}},
        {"download of a repository takes the aircraft's title",
         "carrier-master.zip",
         {u"carrier-master/aircraft.cfg|cfgLF"_s,
          u"carrier-master/c.air"_s,
          u"carrier-master/.gitignore"_s,
          u"carrier-master/LICENSE"_s,
          u"carrier-master/README.md"_s,
          u"carrier-master/texture/Thumbs.db"_s,
          u"carrier-master/texture/dds.bat"_s},
         {u"aircraft.cfg -> SIM/SimObjects/Airplanes/Northwind Carrier/aircraft.cfg"_s,
          u"c.air -> SIM/SimObjects/Airplanes/Northwind Carrier/c.air"_s,
          u".gitignore -> -"_s,
          u"carrier-master/LICENSE -> STORE/LICENSE"_s,
          u"carrier-master/README.md -> STORE/README.md"_s,
          u"Thumbs.db -> -"_s,
          u"dds.bat -> STORE/texture/dds.bat"_s}},
        {"loose aircraft with several variations takes manufacturer and type",
         "pack.zip",
         {u"Aircraft.CFG|two"_s,
          u"c.air"_s,
          u"model/c.mdl"_s,
          u"Sound/sound.cfg"_s,
          u"texture.blue/t.dds"_s,
          u"Effects/fx_c.fx"_s,
          u"Docs/manual.pdf"_s},
         {u"Aircraft.CFG -> SIM/SimObjects/Airplanes/Northwind Carrier/Aircraft.CFG"_s,
          u"c.air -> SIM/SimObjects/Airplanes/Northwind Carrier/c.air"_s,
          u"model/c.mdl -> SIM/SimObjects/Airplanes/Northwind Carrier/model/c.mdl"_s,
          u"Sound/sound.cfg -> SIM/SimObjects/Airplanes/Northwind Carrier/Sound/sound.cfg"_s,
          u"texture.blue/t.dds -> SIM/SimObjects/Airplanes/Northwind Carrier/texture.blue/t.dds"_s,
          u"Effects/fx_c.fx -> SIM/Effects/fx_c.fx"_s,
          u"Docs/manual.pdf -> STORE/manual.pdf"_s}},
        {"helicopter",
         "pack.zip",
         {u"Dragon X/aircraft.cfg|heli"_s, u"Dragon X/d.air"_s},
         {u"aircraft.cfg -> SIM/SimObjects/Rotorcraft/Dragon X/aircraft.cfg"_s,
          u"d.air -> SIM/SimObjects/Rotorcraft/Dragon X/d.air"_s}},
        {"repaint with a text",
         "intl.zip",
         {u"texture.intl/a.dds"_s,
          u"texture.intl/texture.cfg|[fltsim]"_s,
          u"install.txt|section"_s},
         {u"texture.intl/a.dds -> SIM/SimObjects/Airplanes/B747/texture.intl/a.dds"_s,
          u"texture.intl/texture.cfg -> SIM/SimObjects/Airplanes/B747/texture.intl/texture.cfg"_s,
          u"install.txt -> STORE/install.txt"_s}},
        {"repaint with a whole aircraft.cfg",
         "blue.zip",
         {u"Blue/texture.blue/a.dds"_s, u"Blue/aircraft.cfg|blue"_s},
         {u"texture.blue/a.dds -> SIM/SimObjects/Airplanes/B747/texture.blue/a.dds"_s,
          u"aircraft.cfg -> -"_s}},
        {"only a texture folder and a readme",
         "paint.zip",
         {u"texture/a.bmp"_s, u"README"_s},
         {u"texture/a.bmp -> ?"_s, u"README -> STORE/README"_s}},
        {"repaint in the tree of an installed aircraft",
         "paint.zip",
         {u"SimObjects/Airplanes/b747/texture.red/a.dds"_s,
          u"SimObjects/Airplanes/b747/aircraft.cfg|blue"_s},
         {u"texture.red/a.dds -> SIM/SimObjects/Airplanes/B747/texture.red/a.dds"_s,
          u"aircraft.cfg -> -"_s}},
        {"scenery and texture beside each other, several areas",
         "north.zip",
         {u"North/Alpha/scenery/a.bgl"_s,
          u"North/Alpha/Texture/a.dds"_s,
          u"North/Alpha/Texture/notes.txt"_s,
          u"North/Beta/Scenery/b.BGL"_s,
          u"North/manual.pdf"_s},
         {u"Alpha/scenery/a.bgl -> SIM/Addon Scenery/Alpha/scenery/a.bgl"_s,
          u"Alpha/Texture/a.dds -> SIM/Addon Scenery/Alpha/texture/a.dds"_s,
          u"Alpha/Texture/notes.txt -> STORE/Alpha/Texture/notes.txt"_s,
          u"Beta/Scenery/b.BGL -> SIM/Addon Scenery/Beta/scenery/b.BGL"_s,
          u"North/manual.pdf -> STORE/manual.pdf"_s}},
        {"scenery at the root takes the add-on's name",
         "Lake Field.zip",
         {u"scenery/a.bgl"_s, u"texture/a.bmp"_s},
         {u"scenery/a.bgl -> SIM/Addon Scenery/Lake Field/scenery/a.bgl"_s,
          u"texture/a.bmp -> SIM/Addon Scenery/Lake Field/texture/a.bmp"_s}},
        {"loose scenery files",
         "Lake Field.zip",
         {u"a.bgl"_s, u"a.dds"_s, u"a.xml"_s, u"readme.txt"_s},
         {u"a.bgl -> SIM/Addon Scenery/Lake Field/scenery/a.bgl"_s,
          u"a.dds -> SIM/Addon Scenery/Lake Field/texture/a.dds"_s,
          u"a.xml -> STORE/a.xml"_s,
          u"readme.txt -> STORE/readme.txt"_s}},
        {"the world's scenery, and a folder that the simulator has",
         "fix.zip",
         {u"Fix/Scenery/World/Scenery/x.bgl"_s,
          u"Fix/Scenery/world/texture/x.bmp"_s,
          u"Fix/Scenery/0601/SCENERY/y.bgl"_s,
          u"Fix/propdefs/mine.xml"_s},
         {u"World/Scenery/x.bgl -> SIM/Scenery/World/scenery/x.bgl"_s,
          u"world/texture/x.bmp -> SIM/Scenery/World/texture/x.bmp"_s,
          u"0601/SCENERY/y.bgl -> SIM/Scenery/0601/scenery/y.bgl"_s,
          u"propdefs/mine.xml -> SIM/PropDefs/mine.xml"_s}},
        {"an area beside the world's scenery in one folder",
         "Lake Field.zip",
         {u"Scenery/a.bgl"_s, u"Scenery/World/Scenery/w.bgl"_s, u"Scenery/0601/scenery/y.bgl"_s},
         {u"Scenery/a.bgl -> SIM/Addon Scenery/Lake Field/scenery/a.bgl"_s,
          u"World/Scenery/w.bgl -> SIM/Scenery/World/scenery/w.bgl"_s,
          u"0601/scenery/y.bgl -> SIM/Scenery/0601/scenery/y.bgl"_s}},
        {"the simulator's own textures beside its other folders",
         "sky.zip",
         {u"Sky/Texture/cloud.bmp"_s, u"Sky/Effects/fx_s.fx"_s, u"Sky/ShadersHLSL/x.fxh"_s},
         {u"Texture/cloud.bmp -> SIM/Texture/cloud.bmp"_s,
          u"Effects/fx_s.fx -> SIM/Effects/fx_s.fx"_s,
          u"ShadersHLSL/x.fxh -> STORE/x.fxh"_s}},
        {"a folder of a gauge stays together, modules go to their folder",
         "gauges.zip",
         {u"Glass Cockpit/main.xml|gauge"_s,
          u"Glass Cockpit/back.bmp"_s,
          u"Glass Cockpit/data.ini"_s,
          u"Glass Cockpit/img/n.bmp"_s,
          u"fsuipc.DLL"_s,
          u"My.gau"_s,
          u"Other.dll"_s},
         {u"Glass Cockpit/main.xml -> SIM/Gauges/Glass Cockpit/main.xml"_s,
          u"Glass Cockpit/back.bmp -> SIM/Gauges/Glass Cockpit/back.bmp"_s,
          u"Glass Cockpit/data.ini -> SIM/Gauges/Glass Cockpit/data.ini"_s,
          u"Glass Cockpit/img/n.bmp -> SIM/Gauges/Glass Cockpit/img/n.bmp"_s,
          u"fsuipc.DLL -> SIM/Modules/fsuipc.DLL"_s,
          u"My.gau -> SIM/Gauges/My.gau"_s,
          u"Other.dll -> SIM/Gauges/Other.dll"_s}},
        {"a mission keeps all its files",
         "mission.zip",
         {u"Night Mail/Night.FLT"_s,
          u"Night Mail/night.spb"_s,
          u"Night Mail/night.wx"_s,
          u"Night Mail/night.htm"_s,
          u"Night Mail/pic.jpg"_s,
          u"Night Mail/readme.txt"_s,
          u"Night Mail/Sound/a.wav"_s},
         {u"Night.FLT -> SIM/Missions/Night Mail/Night.FLT"_s,
          u"night.spb -> SIM/Missions/Night Mail/night.spb"_s,
          u"night.wx -> SIM/Missions/Night Mail/night.wx"_s,
          u"night.htm -> SIM/Missions/Night Mail/night.htm"_s,
          u"pic.jpg -> SIM/Missions/Night Mail/pic.jpg"_s,
          u"Night Mail/readme.txt -> SIM/Missions/Night Mail/readme.txt"_s,
          u"Sound/a.wav -> SIM/Missions/Night Mail/Sound/a.wav"_s}},
        {"a mission in its category",
         "mission.zip",
         {u"Missions/tutorials/Night/n.flt"_s, u"Missions/tutorials/Night/n.bgl"_s},
         {u"n.flt -> SIM/Missions/Tutorials/Night/n.flt"_s,
          u"n.bgl -> SIM/Missions/Tutorials/Night/n.bgl"_s}},
        {"a saved flight is no mission",
         "flight.zip",
         {u"evening.flt"_s, u"evening.wx"_s, u"route.pln"_s},
         {u"evening.flt -> DOCS/evening.flt"_s,
          u"evening.wx -> DOCS/evening.wx"_s,
          u"route.pln -> DOCS/route.pln"_s}},
        {"an aircraft with a flight and a page beside it is no mission",
         "tour.zip",
         {u"Tour/departure.flt"_s,
          u"Tour/index.html"_s,
          u"Tour/Tourer/aircraft.cfg|cfg"_s,
          u"Tour/Tourer/p.air"_s},
         {u"departure.flt -> DOCS/departure.flt"_s,
          u"index.html -> STORE/index.html"_s,
          u"Tourer/aircraft.cfg -> SIM/SimObjects/Airplanes/Tourer/aircraft.cfg"_s,
          u"Tourer/p.air -> SIM/SimObjects/Airplanes/Tourer/p.air"_s}},
        {"textures in the tree of an installed aircraft update it",
         "update.zip",
         {u"SimObjects/Airplanes/B747/Texture/a.dds"_s, u"Effects/fx_n.fx"_s},
         {u"Texture/a.dds -> SIM/SimObjects/Airplanes/B747/texture/a.dds"_s,
          u"Effects/fx_n.fx -> SIM/Effects/fx_n.fx"_s}},
        {"documents that look like configurations",
         "docs.zip",
         {u"aircraft.cfg.txt"_s, u"original configs/aircraft.cfg|empty"_s, u"a.ttf"_s},
         {u"aircraft.cfg.txt -> STORE/aircraft.cfg.txt"_s,
          u"original configs/aircraft.cfg -> STORE/original configs/aircraft.cfg"_s,
          u"a.ttf -> SIM/Fonts/a.ttf"_s}},
        {"types with a folder of their own",
         "misc.zip",
         {u"storm.wt"_s, u"storm.wtb"_s, u"a.wx"_s, u"movie.avi"_s, u"ding.wav"_s, u"old.mdl"_s},
         {u"storm.wt -> SIM/weather/themes/storm.wt"_s,
          u"storm.wtb -> SIM/weather/themes/storm.wtb"_s,
          u"a.wx -> SIM/weather/a.wx"_s,
          u"movie.avi -> STORE/movie.avi"_s,
          u"ding.wav -> SIM/Sound/ding.wav"_s,
          u"old.mdl -> STORE/old.mdl"_s}},
        {"a panel without an aircraft gets a folder of its own",
         "Wide Panel.zip",
         {u"panel/panel.cfg"_s, u"panel/wide.bmp"_s, u"panel/readme.txt"_s, u"panel/set.exe"_s},
         {u"panel/panel.cfg -> SIM/SimObjects/Airplanes/Wide Panel/panel/panel.cfg"_s,
          u"panel/wide.bmp -> SIM/SimObjects/Airplanes/Wide Panel/panel/wide.bmp"_s,
          u"panel/readme.txt -> STORE/readme.txt"_s,
          u"panel/set.exe -> STORE/set.exe"_s}},
        {"a set with step folders",
         "set.zip",
         {u"Set/main_patch/SimObjects/Airplanes/C/aircraft.cfg|cfg"_s,
          u"Set/main_patch/SimObjects/Airplanes/C/c.air"_s,
          u"Set/fonts/c.ttf"_s,
          u"Set/extras/Sound/x.wav"_s,
          u"__MACOSX/Set/._c"_s},
         {u"C/aircraft.cfg -> SIM/SimObjects/Airplanes/C/aircraft.cfg"_s,
          u"C/c.air -> SIM/SimObjects/Airplanes/C/c.air"_s,
          u"fonts/c.ttf -> SIM/Fonts/c.ttf"_s,
          u"Sound/x.wav -> SIM/Sound/x.wav"_s,
          u"._c -> -"_s}},
    };
    for (const Row& row : rows)
        QTest::newRow(row.name) << QString::fromLatin1(row.source) << row.files << row.expected;
}

void TestLayouts::targets()
{
    QFETCH(QString, source);
    QFETCH(QStringList, files);
    QFETCH(QStringList, expected);
    SourceFiles sourceFiles;
    for (const QString& file : files) {
        const qsizetype bar = file.indexOf(u'|');
        sourceFiles.emplace_back(file.left(bar < 0 ? file.size() : bar),
                                 bar < 0 ? file.toUtf8() : contentNamed(file.sliced(bar + 1)));
    }
    PlanWorld world;
    // An archive and a folder with the same files give the same proposal.
    for (const QString& name : {source, source.chopped(4)}) {
        CAddonInstallationDetails details(world.context);
        const Result prepared = details.prepare(world.makeSource(name, sourceFiles), {});
        QVERIFY2(prepared.ok, qPrintable(prepared.text));
        const bool loose = name != source && (files.first().startsWith(u"Aircraft.CFG"_s) ||
                                              files.first().startsWith(u"aircraft.cfg|"_s));
        if (loose)
            continue; // a folder's own name counts there
        const QStringList targets = world.targets(details);
        QCOMPARE(targets.size(), expected.size());
        for (QString line : expected) {
            line.replace(u'/', u'\\');
            const QString from = line.section(u" -> "_s, 0, 0);
            const QStringList found = targets.filter(from + u" -> "_s);
            QVERIFY2(!found.isEmpty(), qPrintable(from));
            QCOMPARE(found.first().section(u" -> "_s, 1), line.section(u" -> "_s, 1));
        }
    }
}

void TestLayouts::nestedArchives_areOpenedAndNotInstalled()
{
    PlanWorld world;
    const QByteArray deep = PlanWorld::zipOf({{u"Gauges/Deep.gau"_s, "g"}});
    const QByteArray middle =
        PlanWorld::zipOf({{u"deep.zip"_s, deep}, {u"Effects/fx_m.fx"_s, "f"}});
    const QString source = world.makeSource(u"set.zip"_s,
                                            {{u"extras/middle.zip"_s, middle},
                                             {u"extras/broken.zip"_s, "no archive"},
                                             {u"readme.txt"_s, "r"}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QCOMPARE(
        world.targets(details),
        (QStringList{u"extras\\broken.zip -> STORE\\extras\\broken.zip"_s,
                     u"extras\\middle.zip -> -"_s,
                     u"extras\\middle.zip\\Effects\\fx_m.fx -> SIM\\Effects\\fx_m.fx"_s,
                     u"extras\\middle.zip\\deep.zip -> -"_s,
                     u"extras\\middle.zip\\deep.zip\\Gauges\\Deep.gau -> SIM\\Gauges\\Deep.gau"_s,
                     u"readme.txt -> STORE\\readme.txt"_s}));
    const CAddon_Item* gauge = details.addon().SearchByName(u"deep.GAU");
    QVERIFY(gauge);
    QCOMPARE(gauge->GetAssociatedZipFileItemDetails(details.addon()).name, u"deep.zip"_s);
    const auto bytes = details.source().read(*gauge, 100);
    QVERIFY(bytes);
    QCOMPARE(*bytes, QByteArray("g"));
    QVERIFY(details.installable().ok);
    QCOMPARE(details.problems().size(), 1); // the broken archive is told
}

void TestLayouts::nestedRepaints_goToTheAircraftOfTheAddon()
{
    PlanWorld world;
    const QByteArray red = PlanWorld::zipOf(
        {{u"texture.red/a.dds"_s, "a"},
         {u"txt.txt"_s, "[fltsim.x]\ntitle=Other Red\nsim=second\ntexture=red\n"}});
    const QByteArray green = PlanWorld::zipOf({{u"texture.green/a.dds"_s, "b"}});
    const QString source = world.makeSource(
        u"set.zip"_s,
        {{u"SimObjects/Airplanes/One/aircraft.cfg"_s, aircraftCfg("One", "first")},
         {u"SimObjects/Airplanes/One/first.air"_s, "1"},
         {u"SimObjects/Airplanes/Two/aircraft.cfg"_s, aircraftCfg("Two", "second")},
         {u"SimObjects/Airplanes/Two/second.air"_s, "2"},
         {u"extras/Repaints/red.zip"_s, red},
         {u"extras/Repaints/green.zip"_s, green}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY2(details.installable().ok, qPrintable(details.installable().text));
    const QStringList targets = world.targets(details).filter(u"a.dds"_s);
    QCOMPARE(targets.size(), 2);
    QVERIFY(targets.at(0).endsWith(u"SIM\\SimObjects\\Airplanes\\One\\texture.green\\a.dds"_s));
    QVERIFY(targets.at(1).endsWith(u"SIM\\SimObjects\\Airplanes\\Two\\texture.red\\a.dds"_s));
    const QList<PlannedVariant> variants = details.variants();
    QCOMPARE(variants.size(), 2);
    QCOMPARE(variants.at(1).title, u"Other Red"_s);
    QCOMPARE(variants.at(1).texture, u"red"_s);
    QCOMPARE(variants.at(1).file, u"C:\\FSX\\SimObjects\\Airplanes\\Two\\aircraft.cfg"_s);
    QCOMPARE(variants.at(0).texture, u"green"_s);
    QVERIFY(!variants.at(0).title.isEmpty());
}

void TestLayouts::backslashNamesInAnyCase_meetTheExistingSpelling()
{
    PlanWorld world;
    const QString source =
        world.makeSource(u"old.zip"_s,
                         {{u"SIMOBJECTS\\airplanes\\New\\AIRCRAFT.CFG"_s, aircraftCfg("New", "n")},
                          {u"simobjects\\AIRPLANES\\NEW\\N.AIR"_s, "x"},
                          {u"EFFECTS\\FX_OLD.FX"_s, "x"}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QCOMPARE(
        world.targets(details),
        (QStringList{
            u"EFFECTS\\FX_OLD.FX -> SIM\\Effects\\FX_OLD.FX"_s,
            u"SIMOBJECTS\\airplanes\\New\\AIRCRAFT.CFG -> SIM\\SimObjects\\Airplanes\\New\\AIRCRAFT.CFG"_s,
            u"simobjects\\AIRPLANES\\NEW\\N.AIR -> SIM\\SimObjects\\Airplanes\\New\\N.AIR"_s}));
    QVERIFY(details.addon().SearchByName(u"fx_old.fx")->boolTargetExists);
    QVERIFY(!details.addon().SearchByName(u"n.air")->boolTargetExists);
}

void TestLayouts::aiPack_keepsSubfoldersOfSuffixes()
{
    PlanWorld world;
    SourceFiles files;
    for (int i = 0; i < 30; ++i) {
        const QString folder = u"AI Pack/Jet "_s + QString::number(i) + u'/';
        files.emplace_back(folder + u"aircraft.cfg"_s,
                           "[fltsim.0]\ntitle=J\nsim=j\ntexture=Landor\\G-CIVB\n");
        files.emplace_back(folder + u"j.air"_s, "x");
        files.emplace_back(folder + u"soundai/SOUNDAI.CFG"_s, "x");
        files.emplace_back(folder + u"texture.Landor/G-CIVB/t.dds"_s, "x");
    }
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"ai.zip"_s, files), {}).ok);
    QCOMPARE(details.groups(MappedGroup::Aircraft).size(), size_t(30));
    QVERIFY(details.variants().isEmpty());
    QVERIFY(world.targets(details).contains(
        u"AI Pack\\Jet 7\\texture.Landor\\G-CIVB\\t.dds -> SIM\\SimObjects\\Airplanes\\Jet 7\\texture.Landor\\G-CIVB\\t.dds"_s));

    // The same as a repaint: the suffix of the variation keeps its sub-folder.
    const QString repaint =
        world.makeSource(u"livery.zip"_s,
                         {{u"texture.Landor/G-CIVB/t.dds"_s, "x"},
                          {u"add.txt"_s, "[fltsim.x]\ntitle=L\ntexture=Landor/G-CIVB\n"}});
    InstallOptions options;
    options.aircraftFolder = u"B747"_s;
    CAddonInstallationDetails livery(world.context);
    QVERIFY(livery.prepare(repaint, options).ok);
    QVERIFY(world.targets(livery).contains(
        u"texture.Landor\\G-CIVB\\t.dds -> SIM\\SimObjects\\Airplanes\\B747\\texture.Landor\\G-CIVB\\t.dds"_s));
    QCOMPARE(livery.variants().value(0).texture, u"Landor\\G-CIVB"_s);
}

void TestLayouts::existingFolderOfTheAircraft_isNotTakenByARepaint()
{
    PlanWorld world;
    world.writeInSimulator(u"SimObjects/Airplanes/B747/texture.intl/a.dds"_s);
    const QString source = world.makeSource(
        u"intl.zip"_s, {{u"texture.intl/a.dds"_s, "new"}, {u"install.txt"_s, sectionText}});
    InstallOptions options;
    options.aircraftFolder = u"C:\\fsx\\simobjects\\airplanes\\b747"_s;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, options).ok);
    QVERIFY(world.targets(details).contains(
        u"texture.intl\\a.dds -> SIM\\SimObjects\\Airplanes\\B747\\texture.intl 2\\a.dds"_s));
    const QList<PlannedVariant> variants = details.variants();
    QCOMPARE(variants.size(), 1);
    QCOMPARE(variants.first().title, u"B747 Intl / HS-TBA"_s);
    QCOMPARE(variants.first().variation, u"Intl"_s);
    QCOMPARE(variants.first().texture, u"intl 2"_s);
    QVERIFY(details.installable().ok);

    options.aircraftFolder = u"Nowhere"_s;
    CAddonInstallationDetails lost(world.context);
    const Result refused = lost.prepare(source, options);
    QVERIFY(!refused.ok);
    QVERIFY(refused.text.contains(u"Could not locate base aircraft."_s));
}

void TestLayouts::texturesThatAreNamedOrPresent_areNoNewVariation()
{
    PlanWorld world;
    world.writeInSimulator(u"SimObjects/Airplanes/B747/texture.old/a.dds"_s);
    const QString tree = u"SimObjects/Airplanes/"_s;
    const QString source = world.makeSource(
        u"set.zip"_s,
        {{tree + u"B747/texture.old/a.dds"_s, "present in the simulator"},
         {tree + u"B747/texture.new/a.dds"_s, "new"},
         {tree + u"C/aircraft.cfg"_s,
          aircraftCfg("C", "c") + "[fltsim.1]\r\ntitle=C 2\r\nsim=c\r\ntexture=two\r\n"},
         {tree + u"C/c.air"_s, "x"},
         {u"extras/"_s + tree + u"C/texture.two/a.dds"_s, "named by the aircraft"}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY2(details.installable().ok, qPrintable(details.installable().text));
    QVERIFY(world.targets(details).contains(
        u"extras\\SimObjects\\Airplanes\\C\\texture.two\\a.dds -> SIM\\SimObjects\\Airplanes\\C\\texture.two\\a.dds"_s));
    const QList<PlannedVariant> variants = details.variants();
    QCOMPARE(variants.size(), 1);
    QCOMPARE(variants.first().texture, u"new"_s);
    QCOMPARE(variants.first().aircraft, u"C:\\FSX\\SimObjects\\Airplanes\\B747\\"_s);
}

void TestLayouts::sameRepaintTwice_isInstalledOnce()
{
    PlanWorld world;
    const QByteArray paint = PlanWorld::zipOf({{u"texture.red/a.dds"_s, "same"}});
    const QString source =
        world.makeSource(u"set.zip"_s, {{u"a/red.zip"_s, paint}, {u"all/red.zip"_s, paint}});
    InstallOptions options;
    options.aircraftFolder = u"B747"_s;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, options).ok);
    QVERIFY2(details.installable().ok, qPrintable(details.installable().text));
    QCOMPARE(details.addon().Array_sarrayEliminatedDuplicateItems_Get(),
             QStringList{u"all\\red.zip\\texture.red\\a.dds"_s});
    QCOMPARE(details.variants().size(), 1);
}

void TestLayouts::plainFile_isAnAddon()
{
    PlanWorld world;
    world.write(u"in/Sea Wall.bgl"_s);
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(u"C:\\in\\Sea Wall.bgl"_s, {}).ok);
    QCOMPARE(world.targets(details),
             QStringList{u"Sea Wall.bgl -> SIM\\Addon Scenery\\Sea Wall\\scenery\\Sea Wall.bgl"_s});
    QCOMPARE(details.addon().sGroupName, u"Sea Wall"_s);
}

void TestLayouts::patchFolder_goesOverTheMainFiles()
{
    PlanWorld world;
    const QString source = world.makeSource(
        u"set.zip"_s,
        {{u"1 main/SimObjects/Airplanes/C/aircraft.cfg"_s, aircraftCfg("C", "c")},
         {u"1 main/SimObjects/Airplanes/C/c.air"_s, "old"},
         {u"2 patch/SimObjects/Airplanes/C/c.air"_s, "new!"},
         {u"2 patch/SimObjects/Airplanes/C/aircraft.cfg"_s, aircraftCfg("C", "c")}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY2(details.installable().ok, qPrintable(details.installable().text));
    const QStringList targets = world.targets(details);
    QVERIFY(targets.contains(u"1 main\\SimObjects\\Airplanes\\C\\c.air -> -"_s));
    QVERIFY(targets.contains(
        u"2 patch\\SimObjects\\Airplanes\\C\\c.air -> SIM\\SimObjects\\Airplanes\\C\\c.air"_s));
    QCOMPARE(details.addon().Array_sarrayEliminatedDuplicateItems_Get().size(), 2);
}

} // namespace vt::test

using vt::test::TestLayouts;
VT_TEST_CLASS(TestLayouts)

#include "test_layouts.moc"
