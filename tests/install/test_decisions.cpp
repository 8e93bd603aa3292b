// What a user decides about the groups of an add-on: every method of every family, and back; files
// that follow others; questions that belong to decisions.
#include "PlanWorld.h"
#include "demo/StandIns.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

/// Something of every family: an aircraft with its parts, a repaint of it, one of nobody's, panels,
/// sounds, scenery, textures and missions.
const SourceFiles everything = {
    {u"Kit/aircraft.cfg"_s, aircraftCfg("Kit", "kit")},
    {u"Kit/kit.air"_s, "x"},
    {u"Kit/panel/panel.cfg"_s, "p"},
    {u"Kit/sound/sound.cfg"_s, "s"},
    {u"Kit/texture/k.dds"_s, "t"},
    {u"more/texture.red/a.dds"_s, "t"},
    {u"North/scenery/n.bgl"_s, "b"},
    {u"North/texture/n.dds"_s, "t"},
    {u"Gauges/FSUIPC.dll"_s, "d"},
    {u"Gauges/g.gau"_s, "g"},
    {u"Sound/beep.wav"_s, "w"},
    {u"Effects/fx_a.fx"_s, "f"},
    {u"Texture/sky2.bmp"_s, "t"},
    {u"Missions/Tutorials/Mine/m.flt"_s, "[Main]\r\n"},
    {u"Missions/Tutorials/Mine/sound/m.wav"_s, "w"},
    {u"readme.txt"_s, "r"},
};

QString folderFor(MappedGroup family)
{
    switch (family) {
    case MappedGroup::Missions:
        return u"C:\\FSX\\Missions\\Racing\\Mine"_s;
    case MappedGroup::Scenery:
        return u"C:\\FSX\\Addon Scenery\\Mine"_s;
    default:
        return u"C:\\FSX\\SimObjects\\Airplanes\\Mine"_s;
    }
}

} // namespace

class TestDecisions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyMethod_placesTheGroup_andLeadsBack();
    void methods_data();
    void methods();
    void defaults_comeFromTheSettings();
    void repaint_getsAFreeFolder_andTheOthersFollowWhenAsked();
    void relatedAircraft_followWhenAsked_data();
    void relatedAircraft_followWhenAsked();
    void pictures_areMadeOrRefused();
    void files_followOthers();
    void failedChange_changesNothing();
    void renaming_asksWhereNamesMatter();
    void conflicts_areResolvedAsTheSettingsSay();
    void cabinet_andBack_keepsDecisions();
};

void TestDecisions::everyMethod_placesTheGroup_andLeadsBack()
{
    PlanWorld world;
    world.prompts.defaultsBeyondQueue = true; // repaints go with their aircraft
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"all.zip"_s, everything), {}).ok);
    const QStringList proposed = world.targets(details);
    int tried = 0;
    for (const MappedGroup family : ruledFamilies()) {
        for (size_t i = 0; i < details.groups(family).size(); ++i) {
            const InstallationMethod first = details.groups(family)[i].method;
            for (const MethodLabel& offered : methodLabels(family, world.global.names)) {
                const QString folder = offered.method == InstallationMethod::ChosenFolder
                                           ? folderFor(family)
                                       : offered.method == InstallationMethod::NewRepaint
                                           ? u"C:\\FSX\\SimObjects\\Airplanes\\B747"_s
                                           : QString();
                const Result changed = details.InstallationDetails_ModifyPerInstallationMethod(
                    family, int(i), offered.method, folder);
                QVERIFY2(changed.ok, qPrintable(offered.label + changed.text));
                ++tried;
                for (const qint32 key : details.groups(family)[i].items) {
                    const QString& target = details.addon().Search(key)->sFolder_Installation;
                    QVERIFY2(world.gate.place(target).ok(), qPrintable(offered.label));
                }
                QVERIFY(details
                            .InstallationDetails_ModifyPerInstallationMethod(
                                family, int(i), InstallationMethod::Determined)
                            .ok);
                QCOMPARE(world.targets(details), proposed);
                QVERIFY(details.groups(family)[i].method == InstallationMethod::Determined ||
                        first == InstallationMethod::NewRepaint);
            }
        }
    }
    QVERIFY2(tried > 30, qPrintable(QString::number(tried)));
    for (const CAddon_Item& item : details.addon().colAddonItems())
        (void)details.AddonItem_InstallationFolder_Set(item.lngKey, u"C:\\FSX\\Effects"_s);
    details.resetDecisions();
    QCOMPARE(world.targets(details), proposed);
}

void TestDecisions::methods_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("expected"); // among all targets
    const auto row = [](const char* family,
                        const char* method,
                        const QString& folder,
                        const QStringList& expected) {
        QTest::addRow("%s %s", family, method)
            << QString::fromLatin1(family) << QString::fromLatin1(method) << folder << expected;
    };
    row("aircraft",
        "folder",
        u"SimObjects\\Airplanes\\Kit 2"_s,
        {u"Kit\\kit.air -> SIM\\SimObjects\\Airplanes\\Kit 2\\kit.air"_s,
         u"Kit\\panel\\panel.cfg -> SIM\\SimObjects\\Airplanes\\Kit 2\\panel\\panel.cfg"_s,
         u"more\\texture.red\\a.dds -> SIM\\SimObjects\\Airplanes\\Kit 2\\texture.red\\a.dds"_s});
    row("panel",
        "folder",
        u"SimObjects\\Airplanes\\Shared"_s,
        {u"Kit\\panel\\panel.cfg -> SIM\\SimObjects\\Airplanes\\Kit\\panel\\panel.cfg"_s,
         u"Gauges\\g.gau -> SIM\\SimObjects\\Airplanes\\Shared\\g.gau"_s,
         u"Gauges\\FSUIPC.dll -> SIM\\Modules\\FSUIPC.dll"_s});
    row("sound", "adventures", {}, {u"Sound\\beep.wav -> SIM\\Adv\\Wav\\beep.wav"_s});
    row("texture",
        "world",
        {},
        {u"Texture\\sky2.bmp -> SIM\\Scenery\\World\\texture\\sky2.bmp"_s,
         u"more\\texture.red\\a.dds -> SIM\\SimObjects\\Airplanes\\Kit\\texture.red\\a.dds"_s});
    row("texture",
        "repaint",
        u"B747"_s,
        {u"Texture\\sky2.bmp -> SIM\\SimObjects\\Airplanes\\B747\\texture.all\\Texture\\sky2.bmp"_s,
         u"Kit\\texture\\k.dds -> SIM\\SimObjects\\Airplanes\\Kit\\texture\\k.dds"_s});
    row("scenery",
        "global",
        {},
        {u"North\\scenery\\n.bgl -> SIM\\Scenery\\Global\\scenery\\n.bgl"_s,
         u"North\\texture\\n.dds -> SIM\\Scenery\\Global\\texture\\n.dds"_s});
    row("mission",
        "folder",
        u"Missions\\Racing\\Mine"_s,
        {u"Missions\\Tutorials\\Mine\\m.flt -> SIM\\Missions\\Racing\\Mine\\m.flt"_s,
         u"Missions\\Tutorials\\Mine\\sound\\m.wav -> SIM\\Missions\\Racing\\Mine\\sound\\m.wav"_s});
}

void TestDecisions::methods()
{
    QFETCH(QString, family);
    QFETCH(QString, method);
    QFETCH(QString, folder);
    QFETCH(QStringList, expected);
    PlanWorld world;
    world.prompts.defaultsBeyondQueue = true; // repaints go with their aircraft
    InstallOptions options;
    for (const MappedGroup ruled : ruledFamilies()) {
        if (mappedGroupName(ruled) == family)
            options.methods = {{ruled, *methodOfWord(ruled, method), folder}};
    }
    CAddonInstallationDetails details(world.context);
    const Result prepared = details.prepare(world.makeSource(u"all.zip"_s, everything), options);
    QVERIFY2(prepared.ok, qPrintable(prepared.text));
    const QStringList targets = world.targets(details);
    for (const QString& wanted : expected)
        QVERIFY2(targets.contains(wanted), qPrintable(wanted + u'\n' + targets.join(u'\n')));
}

void TestDecisions::defaults_comeFromTheSettings()
{
    PlanWorld world;
    QVERIFY(world.settings.setNumber(SettingKey::SceneryInstallationMethod, 2));
    QVERIFY(world.settings.setNumber(SettingKey::InstallTo, 1));
    const QString source = world.makeSource(u"all.zip"_s, everything);
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QCOMPARE(details.installTo(), InstallTo::Cabinet);
    QCOMPARE(details.simulatorFolderOf(*details.addon().SearchByName(u"n.bgl")),
             u"C:\\FSX\\Scenery\\World\\scenery\\"_s);
    InstallOptions options;
    options.to = InstallTo::Simulator;
    options.methods = {{MappedGroup::Scenery, InstallationMethod::Determined, {}}};
    QVERIFY(details.prepare(source, options).ok);
    QCOMPARE(details.addon().SearchByName(u"n.bgl")->sFolder_Installation,
             u"C:\\FSX\\Addon Scenery\\North\\scenery\\"_s);
}

void TestDecisions::repaint_getsAFreeFolder_andTheOthersFollowWhenAsked()
{
    PlanWorld world;
    world.writeInSimulator(u"SimObjects/Airplanes/B747/texture.red/old.dds"_s);
    const QString source = world.makeSource(u"paints.zip"_s,
                                            {{u"one/texture.red/a.dds"_s, "1"},
                                             {u"two/texture.red/b.dds"_s, "2"},
                                             {u"three/texture.blue/c.dds"_s, "3"}});
    for (const Button answer : {Button::Yes, Button::No}) {
        CAddonInstallationDetails details(world.context);
        QVERIFY(details.prepare(source, {}).ok);
        QCOMPARE(details.groups(MappedGroup::Texture).size(), size_t(3));
        world.prompts.expect(u"Apply Aircraft to all Unassigned Texture Groups?"_s, answer);
        QVERIFY(details
                    .InstallationDetails_Modify(
                        MappedGroup::Texture, 0, u"C:\\FSX\\SimObjects\\Airplanes\\B747"_s)
                    .ok);
        const QStringList targets = world.targets(details);
        const QString b747 = u" -> SIM\\SimObjects\\Airplanes\\B747\\"_s;
        const auto count = std::count_if(targets.cbegin(), targets.cend(), [&](const QString& t) {
            return t.contains(b747 + u"texture."_s);
        });
        QCOMPARE(count, answer == Button::Yes ? 3 : 1);
        QVERIFY(targets.filter(b747 + u"texture.red\\"_s).isEmpty()); // somebody else's
        QCOMPARE(targets.filter(b747 + u"texture.red 2\\"_s).size(), 1);
        QCOMPARE(details.variants().size(), count);
        if (answer == Button::Yes)
            QCOMPARE(details.variants().at(1).texture, u"red 3"_s);
    }
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    const auto refusal = [&](const QString& folder) {
        return details.InstallationDetails_Modify(MappedGroup::Texture, 0, folder).text;
    };
    QCOMPARE(refusal({}), u"No aircraft folder has been specified."_s);
    QCOMPARE(refusal(u"C:\\FSX\\SimObjects\\Airplanes\\No"_s),
             u"Could not locate base aircraft."_s);
    world.writeInSimulator(u"SimObjects/Airplanes/Empty/aircraft.cfg"_s, "[General]\r\n");
    QCOMPARE(refusal(u"C:\\FSX\\SimObjects\\Airplanes\\Empty"_s),
             u"Cound not determine new aircraft variant defaults."_s);
}

void TestDecisions::relatedAircraft_followWhenAsked_data()
{
    QTest::addColumn<bool>("byOption");
    QTest::addColumn<Button>("answer");
    for (const bool byOption : {false, true}) {
        const QByteArray way = byOption ? "option, " : "page, ";
        QTest::newRow(way + "yes") << byOption << Button::Yes;
        QTest::newRow(way + "no") << byOption << Button::No;
        QTest::newRow(way + "cancel") << byOption << Button::Cancel;
    }
}

/// The repaint in "everything" adds its section to the aircraft's configuration file.
void TestDecisions::relatedAircraft_followWhenAsked()
{
    QFETCH(const bool, byOption);
    QFETCH(const Button, answer);
    PlanWorld world;
    const QString mine = u"C:\\FSX\\SimObjects\\Airplanes\\Mine"_s;
    const QString source = world.makeSource(u"all.zip"_s, everything);
    CAddonInstallationDetails details(world.context);
    InstallOptions options;
    if (byOption)
        options.methods = {{MappedGroup::Aircraft, InstallationMethod::ChosenFolder, mine}};
    else
        QVERIFY(details.prepare(source, {}).ok);
    const QStringList before = byOption ? QStringList() : world.targets(details);
    world.prompts.expect(u"Apply Change to all Related Aircraft?"_s, answer);
    const Result changed = byOption
                               ? details.prepare(source, options)
                               : details.InstallationDetails_Modify(MappedGroup::Aircraft, 0, mine);
    QCOMPARE(changed.kind, answer == Button::Cancel ? ErrorKind::Declined : ErrorKind::None);
    if (answer == Button::Cancel) {
        if (!byOption)
            QCOMPARE(world.targets(details), before);
        return;
    }
    const QString painted = details.addon().SearchByName(u"a.dds")->sFolder_Installation;
    QCOMPARE(painted.startsWith(mine + u'\\'), answer == Button::Yes);
    QCOMPARE(details.addon().SearchByName(u"kit.air")->sFolder_Installation, mine + u'\\');
    // The aircraft that the repaint stayed with comes to nobody's simulator.
    QCOMPARE(details.InstallationChoices_Validate(MappedGroup::Texture).ok, answer == Button::Yes);
    QVERIFY(details.InstallationDetails_Modify(MappedGroup::Texture, 0, mine).ok);
    QVERIFY(details.InstallationChoices_Validate(MappedGroup::Texture).ok);
}

void TestDecisions::pictures_areMadeOrRefused()
{
    PlanWorld world;
    SourceFiles files = everything;
    files.push_back({u"Kit/panel.alias/panel.cfg"_s, "[fltsim]\r\nalias=Other\\panel\r\n"});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"all.zip"_s, files), {}).ok);
    int alias = 0;
    while (details.groups(MappedGroup::Panel)[size_t(alias)].name != u"panel.alias")
        ++alias;
    const QByteArray picture = standins::picture(400, 100, 7);
    world.write(u"shot.bmp"_s, picture);
    QCOMPARE(details.Picture_SetFromFile(MappedGroup::Aircraft, 0, u"C:\\shot.bmp"_s).text,
             u"Other picture assigned to aircraft."_s);
    QVERIFY(details.groups(MappedGroup::Aircraft)[0].picture.jpeg.startsWith("\xFF\xD8"));
    QCOMPARE(details.Picture_SetFromClipboard(MappedGroup::Panel, alias, picture).text,
             u"Clipboard picture assigned to panel.alias"_s);
    QVERIFY(!details.Picture_SetFromClipboard(MappedGroup::Panel, alias, "none").ok);
    QCOMPARE(details.Picture_Clear(MappedGroup::Panel, alias).text,
             u"You can only clear the pictures of original panel definitions."_s);
    QVERIFY(!details.groups(MappedGroup::Panel)[size_t(alias)].picture.jpeg.isEmpty());
    QCOMPARE(details.Picture_Clear(MappedGroup::Aircraft, 0).text, u"Picture was cleared."_s);
    QVERIFY(!details.Picture_SetFromClipboard(MappedGroup::Sound, 0, picture).ok);
}

void TestDecisions::files_followOthers()
{
    PlanWorld world;
    InstallOptions options;
    options.targets = {{u"readme.txt"_s, u"@n.bgl"_s}};
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"all.zip"_s, everything), options).ok);
    const qint32 readme = details.addon().SearchByName(u"readme.txt")->lngKey;
    const qint32 bgl = details.addon().SearchByName(u"n.bgl")->lngKey;
    const qint32 gauge = details.addon().SearchByName(u"g.gau")->lngKey;
    const auto folder = [&](qint32 key) {
        return details.addon().Search(key)->sFolder_Installation;
    };
    QCOMPARE(folder(readme), folder(bgl));
    QVERIFY(details.AddonItem_InstallationFolder_Follow(gauge, readme).ok);
    QVERIFY(!details.AddonItem_InstallationFolder_Follow(bgl, gauge).ok); // in a circle
    QVERIFY(details
                .InstallationDetails_ModifyPerInstallationMethod(
                    MappedGroup::Scenery, 0, InstallationMethod::SceneryWorld)
                .ok);
    QCOMPARE(folder(gauge), u"C:\\FSX\\Scenery\\World\\scenery\\"_s);
    const auto copied = details.AddonItem_CopyFolderToClipboard(bgl);
    QVERIFY(details.AddonItem_PasteFolderFromClipboard({readme}, u"C:\\FSX\\Fonts "_s).ok);
    QCOMPARE(folder(gauge), u"C:\\FSX\\Fonts\\"_s);
    QVERIFY(details.AddonItem_PasteFolderFromClipboard({gauge}, *copied).ok);
    QCOMPARE(folder(gauge), folder(bgl));
    QCOMPARE(folder(readme), u"C:\\FSX\\Fonts\\"_s);
    QVERIFY(!details.AddonItem_PasteFolderFromClipboard({gauge}, u"not a folder"_s).ok);
}

void TestDecisions::failedChange_changesNothing()
{
    PlanWorld world;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"all.zip"_s, everything), {}).ok);
    const QStringList before = world.targets(details);
    GroupChange change;
    change.install = false;
    change.method = InstallationMethod::ChosenFolder;
    change.folder = u"C:\\FSX\\Effects"_s; // no place for missions
    QCOMPARE(details.UpdateInstallationClass(MappedGroup::Missions, 0, change).text,
             u"Select a folder under the Missions folder."_s);
    change.folder = u"D:\\Elsewhere"_s;
    for (const MappedGroup family : {MappedGroup::Aircraft, MappedGroup::Sound})
        QVERIFY(!details.UpdateInstallationClass(family, 0, change));
    QCOMPARE(world.targets(details), before);
}

void TestDecisions::renaming_asksWhereNamesMatter()
{
    PlanWorld world;
    InstallOptions options;
    options.renamings = {{u"readme.txt"_s, u"Kit.txt"_s}}; // no question
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"all.zip"_s, everything), options).ok);
    const qint32 gauge = details.addon().SearchByName(u"g.gau")->lngKey;
    world.prompts.expect(nameChangeWarning().caption, Button::No);
    QCOMPARE(details.AddonItem_Rename(gauge, u"h.gau"_s).kind, ErrorKind::Declined);
    world.prompts.expect(nameChangeWarning().caption, Button::Yes);
    QVERIFY(details.AddonItem_Rename(gauge, u"h.gau"_s).ok);
    const QStringList targets = world.targets(details);
    QVERIFY(targets.contains(u"Gauges\\g.gau -> SIM\\Gauges\\h.gau"_s));
    QCOMPARE(targets.filter(u"Kit.txt"_s).size(), 1);
}

void TestDecisions::conflicts_areResolvedAsTheSettingsSay()
{
    PlanWorld world;
    const QString source = world.makeSource(
        u"two.zip"_s,
        {{u"a/Gauges/same.gau"_s, "1"}, {u"b/Gauges/same.gau"_s, "1"}, {u"a/readme.txt"_s, "a"}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY(details.installable().ok);
    QVERIFY(world.settings.setFlag(SettingKey::DropIdenticalFiles, false));
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY(!details.installable().ok);
    const auto bytes = [](const char* text) { return QByteArray(text); };
    const QString sceneries = world.makeSource(u"north.zip"_s,
                                               {{u"Addon Scenery/scenery/n.bgl"_s, bytes("1")},
                                                {u"x/Addon Scenery/scenery/n.bgl"_s, bytes("2")}});
    QVERIFY(details.prepare(sceneries, {}).ok);
    QVERIFY(!details.installable().ok);
    QVERIFY(world.settings.setFlag(SettingKey::AutomaticallyRename, true));
    QVERIFY(details.prepare(sceneries, {}).ok);
    QVERIFY2(details.installable().ok, qPrintable(details.installable().text));
}

void TestDecisions::cabinet_andBack_keepsDecisions()
{
    PlanWorld world;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"all.zip"_s, everything), {}).ok);
    QVERIFY(details
                .InstallationDetails_ModifyPerInstallationMethod(
                    MappedGroup::Scenery, 0, InstallationMethod::SceneryWorld)
                .ok);
    const QStringList decided = world.targets(details);
    details.Options_InstallationDetails_ModifyInstallationMethod(InstallTo::Cabinet);
    for (const CAddon_Item& item : details.addon().colAddonItems())
        QVERIFY(item.sFolder_Installation.startsWith(world.global.cabinetFolder));
    const auto copy = details.Clone();
    details.Options_InstallationDetails_ModifyInstallationMethod(InstallTo::Simulator);
    QCOMPARE(world.targets(details), decided);
    copy->Options_InstallationDetails_ModifyInstallationMethod(InstallTo::Simulator);
    QCOMPARE(world.targets(*copy), decided);
}

} // namespace vt::test

using vt::test::TestDecisions;
VT_TEST_CLASS(TestDecisions)

#include "test_decisions.moc"
