// Options, decisions and checks over a prepared installation.
#include "PlanWorld.h"
#include "archive/CZIP.h"
#include "platform/TempFolder.h"
#include "platform/WinPath.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

const SourceFiles smallPack = {{u"North/scenery/n.bgl"_s, "scenery"},
                               {u"North/texture/n.dds"_s, "texture"},
                               {u"readme.txt"_s, "read me"}};

} // namespace

class TestPlan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void options_changeTheProposal();
    void name_comesFromTheDescriptionFile();
    void storageFolder_isUnique();
    void scenery_addsAreasThatAreNew();
    void cabinet_keepsTheProposal();
    void sources_thatCannotBeUsed_data();
    void sources_thatCannotBeUsed();
    void escapingNames_blockUntilLeftOut();
    void entriesThatCannotBeExtracted_areToldAndStayOut_data();
    void entriesThatCannotBeExtracted_areToldAndStayOut();
    void conflicts_blockWithTheirText();
    void fileAndFolderOfOneName_block_data();
    void fileAndFolderOfOneName_block();
    void repaint_withoutAircraft_blocks();
    void methods_moveTheGroup();
    void aircraftFolder_takesItsPartsAlong();
    void renaming_keepsTheType();
    void nothingMarked_isRefused();
    void folderSource_doesNotFollowLinksOut();
    void smartUnzip_extractsTheItemAlone();
    void replacePolicy_isTold();
    void program_isToldAndStored();
    void anySource_givesAWholeProposal();
};

void TestPlan::options_changeTheProposal()
{
    PlanWorld world;
    const QString source = world.makeSource(u"north.zip"_s, smallPack);
    InstallOptions options;
    options.name = u"My North"_s;
    options.rating = 4;
    options.skip = {u"*.DDS"_s};
    options.targets = {{u"readme.txt"_s, u"Docs\\My"_s},
                       {u"North/scenery/"_s, u"Addon Scenery/scenery"_s}};
    options.noSceneryLibrary = true;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, options).ok);
    QCOMPARE(world.targets(details),
             (QStringList{u"North\\scenery\\n.bgl -> SIM\\Addon Scenery\\scenery\\n.bgl"_s,
                          u"North\\texture\\n.dds -> -"_s,
                          u"readme.txt -> SIM\\Docs\\My\\readme.txt"_s}));
    QCOMPARE(details.addon().sGroupName, u"My North"_s);
    QCOMPARE(details.addon().lngRating, 4);
    QVERIFY(details.facts().sceneryAreas().isEmpty());
    QVERIFY(details.facts().configChanges().isEmpty());
    QCOMPARE(details.bytesNeeded(), qint64(14));
    QVERIFY(details.bytesFree() > 0);
    QVERIFY(details.installable().ok);

    // A folder of one's own choice is the area that the library gets.
    options.noSceneryLibrary = false;
    QVERIFY(details.prepare(source, options).ok);
    QVERIFY(details.facts().sceneryAreas().isEmpty()); // Addon Scenery itself is known
    options.targets = {{u"n.bgl"_s, u"Addon Scenery\\Mine\\scenery"_s}};
    QVERIFY(details.prepare(source, options).ok);
    QCOMPARE(details.facts().sceneryAreas().value(0).folder, u"C:\\FSX\\Addon Scenery\\Mine\\"_s);

    options.skip = {u"nobody.txt"_s};
    CAddonInstallationDetails typo(world.context);
    QVERIFY(typo.prepare(source, options).text.contains(u"nobody.txt"_s));
}

void TestPlan::name_comesFromTheDescriptionFile()
{
    PlanWorld world;
    SourceFiles files = smallPack;
    files.emplace_back(u"deep/File_ID.diz"_s, "wrong one");
    files.emplace_back(u"FILE_ID.DIZ"_s, " *****\r\n  Northern  Fields \r\nSecond line\r\n");
    const QString source = world.makeSource(u"north.zip"_s, files);
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QCOMPARE(details.addon().sGroupName, u"Northern Fields"_s);
    QVERIFY(details.addon().sGroupDescription.endsWith(u"Second line"_s));
    QCOMPARE(details.storageFolder(), u"C:\\Vantrel\\Addons\\Northern Fields\\"_s);
    QCOMPARE(details.addon().Array_lngarrayFILE_IDAddonItemKeys_Get().size(), 2);

    QVERIFY(world.settings.setFlag(SettingKey::NameAddonUsingFileIdDiz, false));
    QVERIFY(world.settings.setFlag(SettingKey::DescribeAddonUsingFileIdDiz, false));
    CAddonInstallationDetails plain(world.context);
    QVERIFY(plain.prepare(source, {}).ok);
    QCOMPARE(plain.addon().sGroupName, u"north"_s);
    QVERIFY(plain.addon().sGroupDescription.isEmpty());
}

void TestPlan::storageFolder_isUnique()
{
    PlanWorld world;
    world.write(u"Vantrel/Addons/NORTH/x.txt"_s);
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"north.zip"_s, smallPack), {}).ok);
    QCOMPARE(details.storageFolder(), u"C:\\Vantrel\\Addons\\north 2\\"_s);
}

void TestPlan::scenery_addsAreasThatAreNew()
{
    PlanWorld world;
    SourceFiles files = smallPack;
    files.emplace_back(u"Addon Scenery/Known/scenery/k.bgl"_s, "k");
    files.emplace_back(u"Addon Scenery/scenery/own.bgl"_s, "o");
    files.emplace_back(u"Scenery/World/Scenery/w2.bgl"_s, "w");
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"north.zip"_s, files), {}).ok);
    const QList<SceneryAreaToAdd> areas = details.facts().sceneryAreas();
    QCOMPARE(areas.size(), 1);
    QCOMPARE(areas.first().title, u"North"_s);
    QCOMPARE(areas.first().folder, u"C:\\FSX\\Addon Scenery\\North\\"_s);
    const QList<ConfigChange> changes = details.facts().configChanges();
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().file, world.global.sceneryCfgFile);
    QVERIFY(changes.first().lines.removed.isEmpty());
    QVERIFY(changes.first().lines.added.contains(u"Local=Addon Scenery\\North"_s));
    QVERIFY(changes.first().lines.added.contains(u"[Area.002]"_s));
    QVERIFY(details.installable().ok);
}

void TestPlan::cabinet_keepsTheProposal()
{
    PlanWorld world;
    InstallOptions options;
    options.to = InstallTo::Cabinet;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"north.zip"_s, smallPack), options).ok);
    const CAddon_Item* bgl = details.addon().SearchByName(u"n.bgl");
    QCOMPARE(bgl->sFolder_Installation, u"C:\\Vantrel\\Cabinet\\north\\North\\scenery\\"_s);
    QCOMPARE(bgl->sFolder_PreferredInstallation, u"C:\\FSX\\Addon Scenery\\North\\scenery\\"_s);
    QVERIFY(details.facts().sceneryAreas().isEmpty());
    QVERIFY(details.facts().configChanges().isEmpty());
    QVERIFY(details.installable().ok);
    details.AddonItemGroup_InstallationFolders_ProcessInstallToZipFolderEntryFolder();
    QCOMPARE(bgl->sFolder_Installation, bgl->sFolder_PreferredInstallation);
    QCOMPARE(details.facts().sceneryAreas().size(), 1);
}

void TestPlan::sources_thatCannotBeUsed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = PlanWorld::zipOf(smallPack);
    QTest::newRow("missing") << u"gone.zip"_s << QByteArray();
    QTest::newRow("no archive") << u"text.zip"_s << QByteArray("This is a text, not an archive.");
    QTest::newRow("truncated") << u"cut.zip"_s << good.first(good.size() / 2);
    QTest::newRow("empty") << u"empty.zip"_s << PlanWorld::zipOf({});
}

void TestPlan::sources_thatCannotBeUsed()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, bytes);
    PlanWorld world;
    if (!bytes.isEmpty())
        world.write(u"in/"_s + path, bytes);
    CAddonInstallationDetails details(world.context);
    const Result prepared = details.prepare(u"C:\\in\\"_s + path, {});
    QVERIFY(!prepared.ok);
    QCOMPARE(prepared.kind, ErrorKind::Surroundings);
    QVERIFY2(prepared.text.contains(path), qPrintable(prepared.text));
}

void TestPlan::escapingNames_blockUntilLeftOut()
{
    PlanWorld world;
    SourceFiles files = smallPack;
    files.emplace_back(u"../../evil.dll"_s, "x");
    files.emplace_back(u"Gauges/aux.gau"_s, "x");
    files.emplace_back(u"Gauges/a:b.gau"_s, "x");
    const QString source = world.makeSource(u"evil.zip"_s, files);
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QCOMPARE(details.problems().size(), 3);
    QVERIFY(!details.installable().ok);
    QVERIFY(details.installable().text.contains(u"evil.dll"_s));
    for (const CAddon_Item& item : details.addon().colAddonItems())
        QVERIFY(!item.sFolder_Installation.contains(u".."_s));
    InstallOptions options;
    options.skip = {u"evil.dll"_s, u"aux.gau"_s, u"a:b.gau"_s};
    CAddonInstallationDetails cleaned(world.context);
    QVERIFY(cleaned.prepare(source, options).ok);
    QVERIFY2(cleaned.installable().ok, qPrintable(cleaned.installable().text));
}

void TestPlan::entriesThatCannotBeExtracted_areToldAndStayOut_data()
{
    QTest::addColumn<bool>("encrypted");
    QTest::addColumn<int>("method");
    QTest::addColumn<QString>("part");
    QTest::newRow("encrypted") << true << 8 << u"is encrypted"_s;
    QTest::newRow("encrypted by AES") << true << 99 << u"is encrypted"_s;
    QTest::newRow("marked as AES alone") << false << 99 << u"the method AES"_s;
    QTest::newRow("PPMd") << false << 98 << u"the method PPMd"_s;
}

void TestPlan::entriesThatCannotBeExtracted_areToldAndStayOut()
{
    QFETCH(bool, encrypted);
    QFETCH(int, method);
    QFETCH(QString, part);
    PlanWorld world;
    ZipOptions locked;
    locked.encrypted = encrypted;
    locked.method = quint16(method);
    ZipBuilder zip;
    zip.add("Far/scenery/a.bgl", "aa", locked).add("Gauges/b.gau", "b");
    zip.add("docs/inner.zip", PlanWorld::zipOf(smallPack), locked);
    world.write(u"in/locked.zip"_s, zip.build());
    CAddonInstallationDetails details(world.context);
    if (encrypted && method == 8)
        world.prompts.expectText(u"Files in the archive 'C:\\in\\locked.zip' are encrypted."_s, {});
    QVERIFY(details.prepare(u"C:\\in\\locked.zip"_s, {}).ok);
    const PlanFacts facts = details.facts();
    QCOMPARE(facts.problems.size(), 2); // the inner archive as well, and it only once
    for (const PlanProblem& problem : facts.problems)
        QVERIFY2(problem.text.contains(part), qPrintable(problem.text));
    QVERIFY(facts.installable(details.addon()).ok);
    QVERIFY(!details.willBeInstalled(*details.addon().SearchByName(u"a.bgl")));
    QVERIFY(details.willBeInstalled(*details.addon().SearchByName(u"b.gau")));
    QVERIFY(facts.sceneryAreas().isEmpty()); // nothing would lie in it
    QCOMPARE(details.bytesNeeded(), 1);
}

void TestPlan::conflicts_blockWithTheirText()
{
    PlanWorld world;
    const QString source = world.makeSource(u"two.zip"_s,
                                            {{u"Day/Gauges/g.gau"_s, "1"},
                                             {u"Night/Gauges/G.GAU"_s, "2"},
                                             {u"a/Gauges/h.gau"_s, "3"},
                                             {u"b/Gauges/h.gau"_s, "3"}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QCOMPARE(details.addon().Array_sarrayEliminatedDuplicateItems_Get(),
             QStringList{u"b\\Gauges\\h.gau"_s});
    const Result refused = details.InstallationFolders_Validate(MappedGroup::Panel);
    QVERIFY(!refused.ok);
    QVERIFY(refused.text.startsWith(
        u"A file you are installing has the same name and target folder as another file. You can resolve the problem in one of three ways:"_s));
    QVERIFY(refused.text.contains(u"2) Rename one of the files."_s));
    QVERIFY(!details.installable().ok);
    const qint32 key =
        details.addon().SearchByNameandFSZipFolder(u"g.gau", u"Night\\Gauges")->lngKey;
    world.prompts.expect(u"Name Change Warning"_s, Button::Yes);
    QVERIFY(details.AddonItem_Rename(key, u"night.gau"_s).ok);
    QVERIFY(details.installable().ok);
}

void TestPlan::fileAndFolderOfOneName_block_data()
{
    QTest::addColumn<QString>("standing"); // in the simulator
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("part");
    const QString none;
    QTest::newRow("folder for a file") << u"FSX/Gauges/a.gau/x"_s << u"Gauges/A.gau"_s << none
                                       << u"a folder of that name stands there"_s;
    QTest::newRow("file for a folder")
        << u"FSX/Addon Scenery/north"_s << u"North/scenery/n.bgl"_s << none
        << u"'C:\\FSX\\Addon Scenery\\North' stands in the way"_s;
    QTest::newRow("within the add-on") << none << u"Fonts/a.ttf"_s << u"Fonts/A.TTF/b/c.ttf"_s
                                       << u"would have to be a file and, for 'c.ttf', a folder"_s;
}

void TestPlan::fileAndFolderOfOneName_block()
{
    QFETCH(QString, standing);
    QFETCH(QString, entry);
    QFETCH(QString, other);
    QFETCH(QString, part);
    PlanWorld world;
    if (!standing.isEmpty())
        world.write(standing);
    SourceFiles files = {{entry, "1"}, {u"Gauges/b.gau"_s, "2"}};
    if (!other.isEmpty())
        files.emplace_back(other, "3");
    const QString source = world.makeSource(u"clash.zip"_s, files);
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    const Result refused = details.installable();
    QVERIFY(!refused.ok);
    QVERIFY2(refused.text.contains(part), qPrintable(refused.text));
    InstallOptions options;
    options.skip = {QString(entry).replace(u'/', u'\\')};
    QVERIFY(details.prepare(source, options).ok);
    QVERIFY2(details.installable().ok, qPrintable(details.installable().text));
}

void TestPlan::repaint_withoutAircraft_blocks()
{
    PlanWorld world;
    const QString source =
        world.makeSource(u"blue.zip"_s, {{u"texture.blue/a.dds"_s, "x"}, {u"readme.txt"_s, "r"}});
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    const QList<PlanProblem> problems = details.problems();
    QCOMPARE(problems.size(), 1);
    QVERIFY(problems.first().text.contains(u"No aircraft folder has been specified."_s));
    QVERIFY(problems.first().blocks);
    QVERIFY(details.InstallationChoices_Validate(MappedGroup::Texture)
                .text.startsWith(
                    u"There is a problem with the aircraft variant configuration related to "_s));
    QVERIFY(details
                .InstallationDetails_Modify(
                    MappedGroup::Texture, 0, u"C:\\FSX\\SimObjects\\Airplanes\\B747\\"_s)
                .ok);
    QVERIFY(details.installable().ok);
    QVERIFY(world.targets(details).contains(
        u"texture.blue\\a.dds -> SIM\\SimObjects\\Airplanes\\B747\\texture.blue\\a.dds"_s));

    const QString lost =
        world.makeSource(u"lost.zip"_s, {{u"SimObjects/Airplanes/Nobody/texture.x/a.dds"_s, "x"}});
    CAddonInstallationDetails nobody(world.context);
    QVERIFY(nobody.prepare(lost, {}).ok);
    QVERIFY(nobody.installable().text.contains(u"Could not locate base aircraft."_s));
}

void TestPlan::methods_moveTheGroup()
{
    PlanWorld world;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"north.zip"_s, smallPack), {}).ok);
    const auto bgl = [&] { return details.addon().SearchByName(u"n.bgl")->sFolder_Installation; };
    const auto dds = [&] { return details.addon().SearchByName(u"n.dds")->sFolder_Installation; };
    using Method = InstallationMethod;
    const auto change = [&](Method method, const QString& folder = {}) {
        return details
            .InstallationDetails_ModifyPerInstallationMethod(
                MappedGroup::Scenery, 0, method, folder)
            .ok;
    };
    QVERIFY(change(Method::SceneryWorld));
    QCOMPARE(bgl(), u"C:\\FSX\\Scenery\\World\\scenery\\"_s);
    QCOMPARE(dds(), u"C:\\FSX\\Scenery\\World\\texture\\"_s);
    QVERIFY(details.facts().sceneryAreas().isEmpty());
    QVERIFY(change(Method::ChosenFolder, u"C:\\FSX\\Addon Scenery\\Mine"_s));
    QCOMPARE(bgl(), u"C:\\FSX\\Addon Scenery\\Mine\\scenery\\"_s);
    QCOMPARE(details.facts().sceneryAreas().value(0).folder, u"C:\\FSX\\Addon Scenery\\Mine\\"_s);
    QVERIFY(!change(Method::ChosenFolder, u"D:\\Elsewhere"_s));
    QVERIFY(!change(Method::AdventureSounds));
    QVERIFY(change(Method::Determined));
    QCOMPARE(bgl(), u"C:\\FSX\\Addon Scenery\\North\\scenery\\"_s);
    details.Scenery_InstallationDetails_ModifyPerSceneryLibraryUpdateSelection(0, true, u" "_s);
    QVERIFY(details.InstallationChoices_Validate(MappedGroup::Scenery)
                .text.contains(u"Scenery library title is not specified."_s));
    details.Scenery_InstallationDetails_ModifyPerSceneryLibraryUpdateSelection(0, false, {});
    QVERIFY(details.facts().sceneryAreas().isEmpty());
}

void TestPlan::aircraftFolder_takesItsPartsAlong()
{
    PlanWorld world;
    world.prompts.defaultsBeyondQueue = true; // repaints go with their aircraft
    CAddonInstallationDetails details(world.context);
    const QString source = world.makeSource(u"c.zip"_s,
                                            {{u"C/aircraft.cfg"_s, aircraftCfg("C", "c")},
                                             {u"C/c.air"_s, "x"},
                                             {u"C/panel/panel.cfg"_s, "p"},
                                             {u"extra/texture.red/a.dds"_s, "t"}});
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY(details
                .InstallationDetails_Modify(
                    MappedGroup::Aircraft, 0, u"C:\\FSX\\SimObjects\\Airplanes\\D"_s)
                .ok);
    QCOMPARE(
        world.targets(details),
        (QStringList{
            u"C\\aircraft.cfg -> SIM\\SimObjects\\Airplanes\\D\\aircraft.cfg"_s,
            u"C\\c.air -> SIM\\SimObjects\\Airplanes\\D\\c.air"_s,
            u"C\\panel\\panel.cfg -> SIM\\SimObjects\\Airplanes\\D\\panel\\panel.cfg"_s,
            u"extra\\texture.red\\a.dds -> SIM\\SimObjects\\Airplanes\\D\\texture.red\\a.dds"_s}));
    const auto copy = details.Clone();
    details.InstallationStatus_Modify(MappedGroup::Aircraft, 0, false);
    QVERIFY(!details.addon().SearchByName(u"c.air")->boolProcess);
    QVERIFY(copy->addon().SearchByName(u"c.air")->boolProcess);
}

void TestPlan::renaming_keepsTheType()
{
    PlanWorld world;
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"north.zip"_s, smallPack), {}).ok);
    const qint32 key = details.addon().SearchByName(u"n.bgl")->lngKey;
    QCOMPARE(details.AddonItem_Rename(key, u" "_s).text, u"Please enter a name for this item."_s);
    QCOMPARE(details.AddonItem_Rename(key, u"a?.bgl"_s).text,
             u"Please enter a valid name for this item."_s);
    QCOMPARE(details.AddonItem_Rename(key, u"n.txt"_s).text,
             u"The file's type (Scenery) may not be changed."_s);
    QCOMPARE(details.AddonItem_Rename(key, u"m.bgl"_s).text, u"Filename was updated."_s);
    QVERIFY(details.addon().Search(key)->Names_Differ());
}

void TestPlan::nothingMarked_isRefused()
{
    PlanWorld world;
    InstallOptions options;
    options.skip = {u"*"_s};
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(world.makeSource(u"north.zip"_s, smallPack), options).ok);
    QVERIFY(!details.AddonItemGroup_IsAnythingMarkedForInstall());
    QCOMPARE(details.installable().text,
             u"Nothing to install. All addon files are marked 'Do Not Install'."_s);
    options = {};
    options.name = u"  "_s;
    QVERIFY(details.prepare(world.makeSource(u"north.zip"_s, smallPack), options).ok);
    QCOMPARE(details.Options_InstallationChoices_Validate().text,
             u"Enter a name for this addon."_s);
}

void TestPlan::folderSource_doesNotFollowLinksOut()
{
    PlanWorld world;
    const QString source = world.makeSource(u"north"_s, smallPack);
    world.write(u"secret/passwords.txt"_s);
    QVERIFY(QFile::link(world.dir.filePath(u"secret"_s), world.dir.filePath(u"in/north/more"_s)));
    QVERIFY(QFile::link(world.dir.filePath(u"secret/passwords.txt"_s),
                        world.dir.filePath(u"in/north/p.txt"_s)));
    QVERIFY(QFile::link(world.dir.filePath(u"in/north/readme.txt"_s),
                        world.dir.filePath(u"in/north/own.txt"_s)));
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY(!details.addon().SearchByName(u"passwords.txt"));
    QVERIFY(!details.addon().SearchByName(u"p.txt"));
    QVERIFY(details.addon().SearchByName(u"own.txt"));
    QCOMPARE(details.problems().size(), 2);
    QVERIFY(details.installable().ok);
}

void TestPlan::smartUnzip_extractsTheItemAlone()
{
    PlanWorld world;
    SourceFiles files = smallPack;
    files.emplace_back(u"inner.zip"_s, PlanWorld::zipOf({{u"a/n.txt"_s, "inside"}}));
    const QString source = world.makeSource(u"north.zip"_s, files);
    CAddonInstallationDetails details(world.context);
    QVERIFY(details.prepare(source, {}).ok);
    const QString base = world.global.tempIfoFolder;
    QVERIFY(world.actions.makeFolder(base).ok);
    CZIP archive(world.services);
    details.addon().Addon_ConfigureZipClass(archive);
    QVERIFY(archive.GetItems());
    const TempFolder temporary(world.gate, world.global.tempFolder);
    const CAddon_Item* item = details.addon().SearchByName(u"n.txt");
    const auto file = item->SmartUnzip(archive, temporary, base);
    QVERIFY2(file.ok(), qPrintable(file.text));
    QVERIFY(winpath::name(winpath::parent(*file)).startsWith(u"OPN"_s));
    QCOMPARE(*world.files.read(*file, 100), QByteArray("inside"));

    CAddon_Item lost = *item;
    lost.entry.key = 99;
    QVERIFY(!lost.SmartUnzip(archive, temporary, base));
    QCOMPARE(world.files.list(base).size(), 1);
}

void TestPlan::replacePolicy_isTold()
{
    PlanWorld world;
    const QString source =
        world.makeSource(u"fix.zip"_s, {{u"Gauges/Old.gau"_s, "2024"}, {u"Gauges/New.gau"_s, "n"}});
    const auto kept = [&](ReplacePolicy policy, const char16_t* name) {
        InstallOptions options;
        options.replace = policy;
        CAddonInstallationDetails details(world.context);
        return details.prepare(source, options).ok &&
               details.existingIsKept(*details.addon().SearchByName(QString::fromUtf16(name)));
    };
    QVERIFY(!kept(ReplacePolicy::Yes, u"old.gau"));
    QVERIFY(!kept(ReplacePolicy::Ask, u"old.gau"));
    QVERIFY(kept(ReplacePolicy::No, u"old.gau"));
    QVERIFY(!kept(ReplacePolicy::No, u"new.gau"));
    QVERIFY(kept(ReplacePolicy::Newer, u"old.gau")); // written just now, the archive is of 2024
    QFile file(world.dir.filePath(u"FSX/Gauges/Old.gau"_s));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime(QDate(2020, 1, 1), QTime(0, 0)),
                             QFileDevice::FileModificationTime));
    file.close();
    QVERIFY(!kept(ReplacePolicy::Newer, u"old.gau"));
}

void TestPlan::program_isToldAndStored()
{
    PlanWorld world;
    SourceFiles files = smallPack;
    files.emplace_back(u"North/scenery/Setup.EXE"_s, "MZ");
    CAddonInstallationDetails details(world.context);
    const QString source = world.makeSource(u"north.zip"_s, files);
    QVERIFY(details.prepare(source, {}).ok);
    QCOMPARE(details.problems().size(), 1);
    QVERIFY(details.problems().first().text.startsWith(
        u"If the executable file is an installation program, use it to install the addon."_s));
    QVERIFY(details.installable().ok);
    QVERIFY(world.targets(details).contains(
        u"North\\scenery\\Setup.EXE -> STORE\\North\\scenery\\Setup.EXE"_s));
    QVERIFY(world.settings.setFlag(SettingKey::WarnAboutProgramFiles, false));
    QVERIFY(details.prepare(source, {}).ok);
    QVERIFY(details.problems().isEmpty());
}

void TestPlan::anySource_givesAWholeProposal()
{
    // Folders and files drawn from what add-ons are made of, put together without sense.
    const QStringList folders = {
        u"SimObjects"_s, u"Airplanes"_s,    u"Aircraft"_s, u"B747"_s,          u"Scenery"_s,
        u"texture"_s,    u"texture.red"_s,  u"World"_s,    u"Gauges"_s,        u"Effects"_s,
        u"Missions"_s,   u"panel"_s,        u"sound"_s,    u"Addon Scenery"_s, u"docs"_s,
        u"model"_s,      u"My Pack-main"_s, u"Fonts"_s,    u"0601"_s,          u"__MACOSX"_s,
        u"Flights"_s};
    const QStringList names = {
        u"aircraft.cfg"_s, u"a.air"_s,     u"a.mdl"_s,       u"model.cfg"_s, u"panel.cfg"_s,
        u"sound.cfg"_s,    u"a.bgl"_s,     u"a.dds"_s,       u"a.bmp"_s,     u"a.xml"_s,
        u"a.gau"_s,        u"a.flt"_s,     u"a.spb"_s,       u"a.wav"_s,     u"readme.txt"_s,
        u"README"_s,       u"Thumbs.db"_s, u"texture.cfg"_s, u"a.fx"_s,      u"b.exe"_s,
        u"sim.cfg"_s,      u"a.jpg"_s,     u".gitignore"_s,  u"FSUIPC.dll"_s};
    QRandomGenerator random(20260301);
    PlanWorld world;
    int wholeOnes = 0;
    for (int round = 0; round < 250; ++round) {
        QMap<QString, QByteArray> files;
        for (int i = random.bounded(1, 25); i > 0; --i) {
            QString path;
            for (int depth = random.bounded(0, 5); depth > 0; --depth)
                path += folders.at(random.bounded(folders.size())) + u'/';
            path += names.at(random.bounded(names.size()));
            files.insert(path,
                         path.endsWith(u".cfg"_s) && random.bounded(3) > 0
                             ? aircraftCfg("T" + QByteArray::number(i))
                             : QByteArray::number(random.bounded(3)));
        }
        SourceFiles list;
        for (auto file = files.cbegin(); file != files.cend(); ++file)
            list.emplace_back(file.key(), file.value());
        CAddonInstallationDetails details(world.context);
        QVERIFY(details.prepare(world.makeSource(u"any.zip"_s, list), {}).ok);
        QCOMPARE(details.addon().colAddonItems().size(), list.size());
        const bool installable = details.installable().ok;
        wholeOnes += installable;
        QSet<NoCase> taken;
        for (const CAddon_Item& item : details.addon().colAddonItems()) {
            QVERIFY(item.enumMappedGroup != MappedGroup::None);
            const std::vector<InstallationGroup>& family = details.groups(item.enumMappedGroup);
            QVERIFY(item.groupIndex >= 0 && size_t(item.groupIndex) < family.size());
            QVERIFY(family[size_t(item.groupIndex)].items.contains(item.lngKey));
            if (!item.boolProcess || !installable)
                continue;
            const QString target = item.sFolder_Installation + item.sName_Installation;
            QVERIFY2(world.gate.place(target).ok(), qPrintable(target));
            QVERIFY2(!taken.contains(NoCase{target}), qPrintable(target));
            taken.insert(NoCase{target});
        }
    }
    QVERIFY2(wholeOnes > 100, qPrintable(QString::number(wholeOnes))); // the rest need a decision
}

} // namespace vt::test

using vt::test::TestPlan;
VT_TEST_CLASS(TestPlan)

#include "test_plan.moc"
