// The operations of the data layer on add-ons, files, areas, pictures and history.
#include "addondb/DatabaseFixture.h"
#include "addondb/Recordset.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modDatabase_Addon;
using vt::test::DatabaseFixture;

class TestRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createAddon_writesFourRowsAndReadsBack();
    void masterKeys_areNeverUsedTwice();
    void reinstallation_getsADateOfItsOwn();
    void unknownKey_isNotLocated();
    void changes_areMirroredIntoTheHistoryOfTheSameDate();
    void failedOperation_leavesNothing_data();
    void failedOperation_leavesNothing();
    void isAlreadyIn_byNameOrSource();
    void details_keysAreConsecutiveAndNeverUsedTwice();
    void details_namesKeepTheirBlanks();
    void details_ownersAndSharers();
    void details_changeAndGoWithTheirChecks();
    void originals_belongToRows();
    void folders_areOneWithoutRegardToCase();
    void configBases_comeAndGo();
    void sceneryAreas_roundTrip();
    void pictures_havePrimaryOne();
    void itemDetails_keysAreLowerCase();
    void removal_keepsHistoryWithItsDate();
    void categories_fromFilesAndKept();
    void words_nameCategoriesInEveryForm();
    void errorPrompt_isTitled();
};

void TestRecords::createAddon_writesFourRowsAndReadsBack()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    AddonRecord addon;
    addon.name = u"  Lear 45 Grün "_s;
    addon.description = u"Two lines\nof text"_s;
    addon.dateInstalled = QDateTime(QDate(2024, 2, 3), QTime(4, 5, 6, 789));
    addon.categories = Category::Aircraft | Category::Movies;
    addon.authors = u"Ä. Uthor"_s;
    addon.rating = 4;
    addon.sourceName = u"lear45.zip"_s;
    addon.sourceSize = 6'000'000'000;
    addon.sourceType = SourceType::Zip;
    addon.sourceTotalFiles = 123;
    QVERIFY(createAddon(*database, addon));
    QCOMPARE(addon.key, 1);

    const auto read = modDatabase_Addon::addon(*database, addon.key);
    QVERIFY(read.ok());
    QCOMPARE(read->name, u"Lear 45 Grün"_s);
    QCOMPARE(read->description, addon.description);
    QCOMPARE(read->dateInstalled, QDateTime(QDate(2024, 2, 3), QTime(4, 5, 6)));
    QCOMPARE(read->categories, addon.categories);
    QCOMPARE(read->authors, addon.authors);
    QCOMPARE(read->rating, 4);
    QCOMPARE(read->sourceSize, 6'000'000'000);
    QCOMPARE(int(read->sourceType), int(SourceType::Zip));
    QCOMPARE(read->sourceTotalFiles, 123);
    QCOMPARE(int(read->status), int(InstallationStatus::Installed));

    const auto rows = history(*database);
    QVERIFY(rows.ok());
    QCOMPARE(rows->size(), 1);
    QCOMPARE(rows->front().addon.description, addon.description);
    QCOMPARE(rows->front().addon.categories, addon.categories);
    QVERIFY(!rows->front().dateUninstalled.isValid());
}

void TestRecords::masterKeys_areNeverUsedTwice()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    fixture.addAddon(*database, u"One"_s);
    const AddonRecord two = fixture.addAddon(*database, u"Two"_s);
    QVERIFY(deleteMaster(*database, two.key));
    QVERIFY(deleteHistory(*database, two.key, two.dateInstalled));
    QCOMPARE(fixture.addAddon(*database, u"Three"_s).key, 3);
    // A database without the counter, as an older one would be: the history counts as well.
    QVERIFY(setCounter(*database, u"Addon_Master_Key"_s, 0));
    QVERIFY(deleteMaster(*database, 3));
    QCOMPARE(fixture.addAddon(*database, u"Four"_s).key, 4);
}

void TestRecords::reinstallation_getsADateOfItsOwn()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    AddonRecord addon = fixture.addAddon(*database, u"Again"_s);
    const QDateTime first = addon.dateInstalled;
    QVERIFY(deleteMaster(*database, addon.key));
    QVERIFY(deleteDescription(*database, addon.key));
    QVERIFY(createAddon(*database, addon));
    QCOMPARE(addon.key, 1);
    QCOMPARE(addon.dateInstalled, first.addSecs(1));
    QCOMPARE(history(*database)->size(), 2);
}

void TestRecords::unknownKey_isNotLocated()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const auto none = modDatabase_Addon::addon(*database, 9);
    QCOMPARE(none.text, u"Could not locate the addon master record."_s);
    QCOMPARE(none.kind, ErrorKind::Failed);
    QCOMPARE(setName(*database, 9, u"x"_s).text, u"Could not locate the addon master record."_s);
    QVERIFY(!database->inTransaction());
}

void TestRecords::changes_areMirroredIntoTheHistoryOfTheSameDate()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    AddonRecord addon = fixture.addAddon(*database, u"Old"_s);
    QVERIFY(setDateUninstalled(
        *database, addon.key, addon.dateInstalled, addon.dateInstalled.addDays(1)));
    QVERIFY(deleteMaster(*database, addon.key));
    QVERIFY(deleteDescription(*database, addon.key));
    addon.dateInstalled = addon.dateInstalled.addDays(2);
    QVERIFY(createAddon(*database, addon));

    QVERIFY(setName(*database, addon.key, u" New "_s));
    QVERIFY(setRating(*database, addon.key, 5));
    QVERIFY(setAuthors(*database, addon.key, u"Me"_s));
    QVERIFY(setDescription(*database, addon.key, u"Text"_s));
    QVERIFY(setStatus(*database, addon.key, InstallationStatus::FileCabinet));
    QVERIFY(setCategories(*database, addon.key, Category::Sounds));

    const auto now = modDatabase_Addon::addon(*database, addon.key);
    QCOMPARE(now->name, u"New"_s);
    QCOMPARE(now->rating, 5);
    QCOMPARE(now->authors, u"Me"_s);
    QCOMPARE(now->description, u"Text"_s);
    QCOMPARE(int(now->status), int(InstallationStatus::FileCabinet));
    const auto rows = history(*database);
    QCOMPARE(rows->size(), 2);
    QCOMPARE(rows->at(0).addon.name, u"Old"_s);
    QCOMPARE(rows->at(1).addon.name, u"New"_s);
    QCOMPARE(rows->at(1).addon.rating, 5);
    QCOMPARE(rows->at(1).addon.categories, Categories(Category::Sounds));
}

void TestRecords::failedOperation_leavesNothing_data()
{
    QTest::addColumn<int>("occupied");
    QTest::addColumn<QString>("text");

    QTest::newRow("master") << int(Table::Addon_Master)
                            << u"Could not create a master record for the addon."_s;
    QTest::newRow("description") << int(Table::Addon_Description)
                                 << u"Could not create a description record for the addon."_s;
    QTest::newRow("history description")
        << int(Table::Addon_History_Description)
        << u"Could not create a description record for the addon."_s;
}

void TestRecords::failedOperation_leavesNothing()
{
    QFETCH(const int, occupied);
    QFETCH(const QString, text);
    DatabaseFixture fixture;
    auto database = fixture.create();
    AddonRecord addon;
    addon.key = 5;
    addon.name = u"x"_s;
    addon.dateInstalled = QDateTime(QDate(2024, 1, 1), QTime(1, 1, 1));
    {
        Recordset rows(*database, Table(occupied)); // a stray row stands in the way
        rows.addNew();
        rows.set(Field::Addon_Master_Key, 5);
        if (columnOf(Table(occupied), Field::Date_Installed) >= 0)
            rows.set(Field::Date_Installed, addon.dateInstalled);
        QVERIFY(rows.update());
    }
    const Result refused = createAddon(*database, addon);
    QCOMPARE(refused.text, text);
    QCOMPARE(refused.kind, ErrorKind::Surroundings);
    QVERIFY(database->lastError().text.contains(u"UNIQUE"_s));
    for (const Table table : {Table::Addon_Master,
                              Table::Addon_Description,
                              Table::Addon_History,
                              Table::Addon_History_Description})
        QCOMPARE(Recordset(*database, table).count(), table == Table(occupied) ? 1 : 0);
}

void TestRecords::isAlreadyIn_byNameOrSource()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    AddonRecord addon;
    addon.name = u"Großer Airbus"_s;
    addon.sourceName = u"A320.ZIP"_s;
    addon.sourceSize = 99;
    addon.dateInstalled = QDateTime::currentDateTime();
    QVERIFY(createAddon(*database, addon));

    AddonRecord other;
    other.name = u"großer airbus "_s;
    QCOMPARE(Addon_Database_IsAlreadyIn(*database, other), addon.key);
    other.name = u"Another"_s;
    QCOMPARE(Addon_Database_IsAlreadyIn(*database, other), std::nullopt);
    other.sourceName = u"a320.zip"_s;
    QCOMPARE(Addon_Database_IsAlreadyIn(*database, other), std::nullopt);
    other.sourceSize = 99;
    QCOMPARE(Addon_Database_IsAlreadyIn(*database, other), addon.key);
}

void TestRecords::details_keysAreConsecutiveAndNeverUsedTwice()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const AddonRecord addon = fixture.addAddon(*database, u"A"_s);
    QList<DetailRecord> details{DatabaseFixture::file_(u"C:\\a\\"_s, u"1"_s),
                                DatabaseFixture::file_(u"C:\\a\\"_s, u"2"_s),
                                DatabaseFixture::file_(u"C:\\b\\"_s, u"3"_s)};
    const QList<Fingerprint> checks{
        {10, 20, QByteArray(16, 'a')}, {}, {30, 40, QByteArray(16, 'b')}};
    const auto first = addDetails(*database, addon.key, details, checks);
    QCOMPARE(*first, 1);
    QCOMPARE(details.back().key, 3);
    QCOMPARE(details.back().masterKey, addon.key);
    QVERIFY(deleteDetailsOf(*database, addon.key));
    QCOMPARE(*addDetails(*database, addon.key, details, checks), 4);

    const auto read = detailsOf(*database, addon.key);
    QCOMPARE(read->size(), 3);
    QCOMPARE(read->at(2).location, u"C:\\b\\"_s);
    QCOMPARE(read->at(2).filename, u"3"_s);
    const auto stored = checksOf(*database, addon.key);
    QCOMPARE(stored->size(), 2);
    QCOMPARE(stored->value(6), checks.at(2));
    QCOMPARE(checkOf(*database, 5), std::nullopt);
}

void TestRecords::details_namesKeepTheirBlanks()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const AddonRecord addon = fixture.addAddon(
        *database, u"A"_s, {DatabaseFixture::file_(u"C:\\a\\"_s, u" readme.txt"_s)});
    QCOMPARE(detailsOf(*database, addon.key)->front().name, u" readme.txt"_s);
    QCOMPARE(ownersOf(*database, u"C:\\A\\"_s, u" README.txt"_s)->size(), 1);
    QCOMPARE(ownersOf(*database, u"C:\\a\\"_s, u"readme.txt"_s)->size(), 0);
}

void TestRecords::details_ownersAndSharers()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const QString effects = u"C:\\FSX\\Effects\\"_s;
    const AddonRecord one = fixture.addAddon(*database,
                                             u"One"_s,
                                             {DatabaseFixture::file_(effects, u"smoke.fx"_s),
                                              DatabaseFixture::file_(effects, u"only1.fx"_s)});
    const AddonRecord two =
        fixture.addAddon(*database,
                         u"Two"_s,
                         {DatabaseFixture::file_(effects, u"only2.fx"_s),
                          DatabaseFixture::file_(effects.toUpper(), u"SMOKE.fx"_s)});
    const AddonRecord three =
        fixture.addAddon(*database, u"Three"_s, {DatabaseFixture::file_(effects, u"Smoke.FX"_s)});

    const auto owners = ownersOf(*database, effects, u"smoke.fx"_s);
    QCOMPARE(owners->size(), 3);
    QCOMPARE(owners->at(0).masterKey, one.key);
    QCOMPARE(owners->at(2).masterKey, three.key);
    QCOMPARE(byInstalledName(*database, u"SMOKE.FX"_s)->size(), 3);
    QCOMPARE(byPreferredPlace(*database, effects, u"only2.fx"_s)->size(), 1);

    const auto sharers = sharersOf(*database, two.key);
    QCOMPARE(sharers->size(), 2);
    QCOMPARE(sharers->at(0).masterKey, one.key);
    QCOMPARE(sharers->at(1).masterKey, three.key);
    QCOMPARE(sharers->at(1).name, u"Smoke.FX"_s);
}

void TestRecords::details_changeAndGoWithTheirChecks()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const AddonRecord addon = fixture.addAddon(*database,
                                               u"A"_s,
                                               {DatabaseFixture::file_(u"C:\\a\\"_s, u"1"_s),
                                                DatabaseFixture::file_(u"C:\\a\\"_s, u"2"_s)});
    DetailRecord changed = *detail(*database, 1);
    changed.location = u"C:\\new\\"_s;
    QVERIFY(updateDetail(*database, changed));
    QVERIFY(setCheck(*database, 1, {1, 2, QByteArray(16, 'x')}));
    QVERIFY(setCheck(*database, 1, {3, 4, QByteArray(16, 'y')}));
    QCOMPARE(checkOf(*database, 1), (Fingerprint{3, 4, QByteArray(16, 'y')}));
    QCOMPARE(ownersOf(*database, u"C:\\new\\"_s, u"1"_s)->size(), 1);
    QVERIFY(deleteDetail(*database, 1));
    QCOMPARE(checkOf(*database, 1), std::nullopt);
    QCOMPARE(detailsOf(*database, addon.key)->size(), 1);
    changed.key = 77;
    QCOMPARE(updateDetail(*database, changed).text,
             u"Could not update the addon details record."_s);
}

void TestRecords::originals_belongToRows()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const OriginalRecord kept{4, 2, u"Replaced\\2\\Effects\\a.fx"_s, 77, QByteArray(16, 'h')};
    QVERIFY(addOriginals(*database, {kept, {5, 2, QString(), 0, {}}}));
    QVERIFY(!addOriginals(*database, {{6, 2, {}, 0, {}}, kept})); // one is there: none is added
    QCOMPARE(originalsOf(*database, 2)->size(), 2);
    QCOMPARE(originalOf(*database, 4)->keptFile, kept.keptFile);
    QCOMPARE(originalOf(*database, 4)->hash, kept.hash);
    QVERIFY(setOriginal(*database, {4, 3, u"elsewhere"_s, 1, {}}));
    QCOMPARE(originalOf(*database, 4)->masterKey, 3);
    QVERIFY(deleteOriginal(*database, 4));
    QCOMPARE(originalOf(*database, 4), std::nullopt);
    QVERIFY(deleteOriginalsOf(*database, 2));
    QCOMPARE(originalsOf(*database, 2)->size(), 0);
}

void TestRecords::folders_areOneWithoutRegardToCase()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const Place made{RootId::Simulator, u"Addon Scenery\\Müritz"_s};
    QVERIFY(addFolders(*database, {made, {RootId::Simulator, u"ADDON SCENERY\\MÜRITZ"_s}}));
    QVERIFY(addFolders(*database, {{RootId::Program, made.relative}, made}));
    QCOMPARE(ownFolders(*database)->size(), 2);
    QVERIFY(isOwnFolder(*database, {RootId::Simulator, u"addon scenery\\müritz"_s}));
    QVERIFY(!isOwnFolder(*database, {RootId::Simulator, u"addon scenery"_s}));
    QVERIFY(deleteFolders(*database, {made}));
    QCOMPARE(*ownFolders(*database), (QList<Place>{{RootId::Program, made.relative}}));
}

void TestRecords::configBases_comeAndGo()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    ConfigBaseRecord base{
        {RootId::AllUsersConfig, u"Scenery.cfg"_s}, u"Configs\\1"_s, 500, QByteArray(16, 'c'), 1};
    QVERIFY(setConfigBase(*database, base));
    base.edits = 2;
    base.file.relative = u"SCENERY.CFG"_s;
    QVERIFY(setConfigBase(*database, base));
    const auto read = configBase(*database, {RootId::AllUsersConfig, u"scenery.cfg"_s});
    QCOMPARE(read->edits, 2);
    QCOMPARE(read->lastWrittenHash, base.lastWrittenHash);
    QCOMPARE(configBase(*database, {RootId::UserConfig, u"Scenery.cfg"_s}), std::nullopt);
    QVERIFY(deleteConfigBase(*database, base.file));
    QCOMPARE(configBase(*database, base.file), std::nullopt);
}

void TestRecords::sceneryAreas_roundTrip()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const SceneryAreaRecord area{1, 5, 118, false, 42, u" Addon Scenery\\X "_s, u"X"_s, u" a b "_s};
    QVERIFY(addSceneryAreas(*database, {area, {2, 6, 119, true, 43, u"Y"_s, u"Y"_s, {}}}));
    const auto read = sceneryAreasOf(*database, 1);
    QCOMPARE(read->size(), 1);
    QCOMPARE(read->front().area, 118);
    QCOMPARE(read->front().layer, 42);
    QCOMPARE(read->front().enabled, false);
    QCOMPARE(read->front().path, u"Addon Scenery\\X"_s);
    QCOMPARE(read->front().parameters, u" a b "_s);
    QCOMPARE(sceneryAreas(*database)->size(), 2);
    QVERIFY(deleteSceneryArea(*database, area));
    QVERIFY(deleteSceneryAreasOf(*database, 2));
    QCOMPARE(sceneryAreas(*database)->size(), 0);
}

void TestRecords::pictures_havePrimaryOne()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    QVERIFY(addPicture(*database, {1, 10, AddonTypeCategory::Aircraft, true}));
    QVERIFY(addPicture(*database, {1, 11, AddonTypeCategory::Panel, false}));
    QVERIFY(addPicture(*database, {2, 12, AddonTypeCategory::Addon, true}));
    QVERIFY(addPicture(*database, {1, 11, AddonTypeCategory::Panel, true}));
    const auto pictures = picturesOf(*database, 1);
    QCOMPARE(pictures->size(), 2);
    QCOMPARE(pictures->at(0).primary, false);
    QCOMPARE(pictures->at(1).primary, true);
    QVERIFY(picturesOf(*database, 2)->front().primary);
    QVERIFY(deletePicturesOf(*database, 1));
    QCOMPARE(picturesOf(*database, 1)->size(), 0);
}

void TestRecords::itemDetails_keysAreLowerCase()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    ItemDetailRecord record;
    record.item = u"C:\\FSX\\SimObjects\\Airplanes\\Ähnlich"_s;
    record.section = u" FltSim.0 "_s;
    record.suppressErrors = true;
    record.suppressCfgFileDateTime = QDateTime(QDate(2020, 2, 2), QTime(2, 2, 2));
    record.suppressCfgFileSize = 1234;
    record.custom[0] = u"first"_s;
    record.custom[9] = u"tenth"_s;
    for (const ItemTable table : {ItemTable::Aircraft, ItemTable::Panel, ItemTable::Sound}) {
        QVERIFY(setItemDetail(*database, table, record));
        record.custom[9] += u"!"_s;
        QVERIFY(setItemDetail(*database, table, record));
        const auto read = itemDetail(*database, table, record.item.toUpper(), u"FLTSIM.0"_s);
        QVERIFY(read);
        QCOMPARE(read->item, record.item.toLower());
        QCOMPARE(read->section, table == ItemTable::Aircraft ? u"fltsim.0"_s : QString());
        QVERIFY(read->suppressErrors);
        QCOMPARE(read->suppressCfgFileDateTime, record.suppressCfgFileDateTime);
        QCOMPARE(read->suppressCfgFileSize, 1234);
        QCOMPARE(read->custom, record.custom);
        QVERIFY(deleteItemDetail(*database, table, record.item, record.section));
        QVERIFY(!itemDetail(*database, table, record.item, record.section));
    }
}

void TestRecords::removal_keepsHistoryWithItsDate()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const AddonRecord addon =
        fixture.addAddon(*database, u"Gone"_s, {DatabaseFixture::file_(u"C:\\a\\"_s, u"1"_s)});
    const QDateTime when = addon.dateInstalled.addDays(3);
    QVERIFY(database->together([&]() -> Result {
        for (const Result& step :
             {deleteDetailsOf(*database, addon.key),
              deleteDescription(*database, addon.key),
              deleteMaster(*database, addon.key),
              setDateUninstalled(*database, addon.key, addon.dateInstalled, when)}) {
            if (!step)
                return step;
        }
        return Result::success();
    }));
    QVERIFY(addons(*database)->isEmpty());
    const auto rows = history(*database);
    QCOMPARE(rows->size(), 1);
    QCOMPARE(rows->front().dateUninstalled, when);
    QCOMPARE(int(rows->front().addon.status), int(InstallationStatus::Removed));
    QCOMPARE(setDateUninstalled(*database, 9, when, when).text,
             u"Could not update the addon history header."_s);
}

void TestRecords::categories_fromFilesAndKept()
{
    QCOMPARE(
        categoriesOfFiles({u"Panel Gauge"_s, u"Document"_s, u"Sim Configuration"_s, u"Font"_s}),
        Category::Panels | Category::Aircraft);
    QCOMPARE(categoriesOfFiles({u"Global Campaign Information"_s, u"Movie"_s, u"Video"_s}),
             Category::Missions | Category::Movies | Category::Videos);
    QCOMPARE(categoriesOfFiles({u"Landing Lights Source"_s, u"Dynamic Link Library"_s, u"Other"_s}),
             Categories());
    const Categories before =
        Category::Textures | Category::Missions | Category::Scenery | Category::AI_Flight_Plans;
    QCOMPARE(recomputedCategories(before, {u"Sound"_s}),
             Category::Textures | Category::Missions | Category::AI_Flight_Plans |
                 Category::Sounds);
}

void TestRecords::words_nameCategoriesInEveryForm()
{
    QCOMPARE(categoryWords(Category::Movies | Category::Airport_Facilities_Data),
             (QStringList{u"Airport Facilities Data"_s, u"Movies"_s}));
    const auto skins = std::optional(Category::Aircraft_Skins_And_Repaints);
    QCOMPARE(categoryOfWord(u"aircraft_skins_and_repaints"_s), skins);
    QCOMPARE(categoryOfWord(u"Aircraft Skins And Repaints"_s), skins);
    QCOMPARE(categoryOfWord(u"aircraft skins/repaints"_s), skins);
    QCOMPARE(categoryOfWord(u"A.I. Flight Plans"_s), std::optional(Category::AI_Flight_Plans));
    QCOMPARE(categoryOfWord(u"Boats"_s), std::nullopt);
}

void TestRecords::errorPrompt_isTitled()
{
    const Prompt prompt = addonDatabaseError(u"Could not open the addon database."_s);
    QCOMPARE(prompt.caption, u"Addon Database Error"_s);
    QCOMPARE(prompt.icon, Icon::Critical);
    QCOMPARE(prompt.text, u"Could not open the addon database."_s);
}

VT_TEST_CLASS(TestRecords)
#include "test_records.moc"
