#include "addondb/AddonRecords.h"
#include "shell/ShellFixture.h"
#include "simconfig/CMissionMgr.h"
#include "simconfig/DefaultMissions.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;

class TestMissions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void default_byTheExactEnd();
    void list_asFoldersHaveIt();
    void group_isAnAddon();
    void addon_byItsFlights();
};

void TestMissions::default_byTheExactEnd()
{
    const test::Rows<QString, bool> rows = {
        {"own", u"C:\\FSX\\Missions\\Tutorials\\Tutorial01\\"_s, true},
        {"other case", u"C:\\FSX\\Missions\\Tutorials\\tutorial01\\"_s, false},
        {"longer name", u"C:\\FSX\\Missions\\Tutorials\\Tutorial011\\"_s, false},
        {"below", u"C:\\FSX\\Missions\\Tutorials\\Tutorial01\\Sound\\"_s, false},
        {"the end alone counts", u"D:\\MyTutorials\\Tutorial01\\"_s, true},
        {"without its end", u"C:\\FSX\\Missions\\Tutorials\\Tutorial01"_s, false},
        {"last", u"Tutorials\\Tutorial11\\"_s, true},
        {"category alone", u"C:\\FSX\\Missions\\Tutorials\\"_s, false},
    };
    for (const auto& [folder, own] : rows)
        QCOMPARE(CMissionMgr::Mission_IsDefault(folder), own);
    QCOMPARE(defaultmissions::folders().size(), size_t(110));
    QCOMPARE(defaultmissions::folders()[54].toString(), u"Pilot for Hire\\Vinyard\\"_s);
}

void TestMissions::list_asFoldersHaveIt()
{
    test::ShellFixture world;
    world.global.setSimulatorFolder(u"C:\\FSX\\"_s);
    const QString top = u"FSX/missions/"_s; // spelled in its own way
    world.write(top + u"missions.txt"_s);
    world.write(top + u"loose.flt"_s, "[Main]\r\nTitle=No folder of its own\r\n");
    world.write(top + u"Tutorials/Tutorial01/b.FLT"_s, "[Main]\r\nTitle=Second\r\n");
    world.write(top + u"Tutorials/Tutorial01/A.flt"_s,
                "[main]\r\ntitle=It's first; // really\r\nDescription=Fly a / b\r\n");
    world.write(top + u"Tutorials/Tutorial01/Sound/one.wav"_s);
    world.write(top + u"Bush/Alaska/Deep/deep.flt"_s, "[Main]\nTitle=Bare lines\n");
    world.write(top + u"Bush/Alaska/pictures/p.jpg"_s);
    world.write(top + u"Alone/x.flt"_s, "no section");
    const CMissionsMetaGroup missions = CMissionMgr(world.context).Missions_Get();
    QStringList told;
    for (const CMissionGroup& mission : missions.colMissionGroups())
        told.append(mission.sCategory + u'|' + mission.sFlightFile + u'|' + mission.name() + u'|' +
                    mission.sDescription + u'|' + QString::number(mission.sarrayFiles.size()) +
                    (mission.boolDefault ? u"|own"_s : QString()));
    QCOMPARE(told,
             (QStringList{u"|x.flt|Alone||1"_s,
                          u"Bush\\Alaska|deep.flt|Bare lines||1"_s,
                          u"Tutorials|A.flt|It's first; // really|Fly a / b|3|own"_s}));
    QCOMPARE(missions.Categories(), (QStringList{u"Bush\\Alaska"_s, u"Tutorials"_s}));
    QVERIFY(missions.Search(u"c:/fsx/Missions/ALONE"));
}

void TestMissions::group_isAnAddon()
{
    test::ShellFixture world;
    world.global.setSimulatorFolder(u"C:\\FSX\\"_s);
    world.write(u"FSX/Missions/Tutorials/Tutorial02/t.flt"_s,
                "[Main]\r\nTitle=Climb\r\nDescription=High.\r\n");
    world.write(u"FSX/Missions/Tutorials/Tutorial02/Sound/a.wav"_s, "12345");
    world.write(u"FSX/Missions/Mine/Own/o.flt"_s, "");
    const std::vector<CAddon_ItemGroup> addons = CMissionMgr(world.context).ItemGroups_Get();
    QCOMPARE(addons.size(), size_t(2));
    QVERIFY(!addons[0].boolOriginal_Addon && addons[0].sAuthors.isEmpty());
    QCOMPARE(addons[0].sGroupName, u"Own"_s);
    const CAddon_ItemGroup& own = addons[1];
    QVERIFY(own.boolOriginal_Addon && own.ContainsAMission());
    QCOMPARE(own.sAuthors, u"Microsoft"_s);
    QCOMPARE(own.sGroupName, u"Climb"_s);
    QCOMPARE(own.sGroupDescription, u"High."_s);
    QCOMPARE(own.sSource_Name, u"Vantrel addon imported 2026-03-01"_s);
    QCOMPARE(own.lngInstallation_Status, qint32(InstallationStatus::Imported));
    const CAddon_Item* wav = own.SearchByName(u"a.wav");
    QVERIFY(wav);
    QCOMPARE(wav->sFolder_Installation, u"C:\\FSX\\Missions\\Tutorials\\Tutorial02\\Sound\\"_s);
    QCOMPARE(wav->enumAddonFileType, FileType::Sound);
    QCOMPARE(wav->size, 5);
}

void TestMissions::addon_byItsFlights()
{
    test::ShellFixture world;
    world.global.setSimulatorFolder(u"C:\\FSX\\"_s);
    CAddon_ItemGroup addon;
    const auto add = [&](const QString& folder, const QString& name, MappedGroup group) {
        CAddon_Item item;
        item.sName = name;
        item.setPreferred(u"C:\\FSX\\Missions\\"_s + folder, name);
        item.enumMappedGroup = group;
        return addon.Add(item).lngKey;
    };
    add(u"Race\\One\\"_s, u"r.flt"_s, MappedGroup::Missions);
    add(u"Race\\Two\\"_s, u"readme.txt"_s, MappedGroup::DocumentAndOther);
    const qint32 sound = add(u"Race\\one\\Sound\\"_s, u"s.wav"_s, MappedGroup::Missions);
    add(u"Race\\Stray\\"_s, u"p.bmp"_s, MappedGroup::Missions);
    add(u"Race\\Out\\"_s, u"o.flt"_s, MappedGroup::Missions);
    addon.colAddonItems_Edit().back().boolProcess = false;
    const CMissionsMetaGroup missions = CMissionsMetaGroup::ofAddon(addon, world.global);
    QCOMPARE(missions.colMissionGroups().size(), size_t(1));
    QCOMPARE(missions.colMissionGroups()[0].lngarrayAddonItemKeys, (QList<qint32>{1, sound}));
}

VT_TEST_CLASS(TestMissions)
#include "test_missions.moc"
