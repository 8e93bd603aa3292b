// The operations of the data layer on add-ons, files, areas, pictures and history.
#include "addondb/DatabaseFixture.h"
#include "addondb/Recordset.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modDatabase_Addon;
using namespace vt::test;

namespace {

const QDateTime noon(QDate(2024, 2, 3), QTime(12, 0, 0));

/// Everything about an add-on but its keys.
QString said(const AddonRecord& addon)
{
    return QStringList{addon.name,
                       addon.description,
                       dateText(addon.dateInstalled),
                       categoryWords(addon.categories).join(u'+'),
                       addon.authors,
                       QString::number(addon.rating),
                       addon.sourceName,
                       QString::number(addon.sourceSize),
                       QString::number(int(addon.sourceType)),
                       QString::number(addon.sourceTotalFiles),
                       statusWord(addon.status)}
        .join(u'|');
}

} // namespace

class TestRecords : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<OpenFixture> m_world;
    Connection* m_database = nullptr;

    AddonRecord addAddon(const QString& name, const QList<DetailRecord>& details = {})
    {
        return m_world->addAddon(name, details);
    }

    /// Its master row goes, its history stays.
    void forget(const AddonRecord& addon)
    {
        QVERIFY(deleteMaster(*m_database, addon.key));
        QVERIFY(deleteDescription(*m_database, addon.key));
    }

private Q_SLOTS:

    void init()
    {
        m_world = std::make_unique<OpenFixture>();
        m_database = &m_world->database;
    }

    void createAddon_writesFourRowsAndReadsBack()
    {
        AddonRecord addon;
        addon.name = u"  Lear 45 Grün "_s;
        addon.description = u"Two lines\nof text"_s;
        addon.dateInstalled = noon.addMSecs(789);
        addon.categories = Category::Aircraft | Category::Movies;
        addon.authors = u"Ä. Uthor"_s;
        addon.rating = 4;
        addon.sourceName = u"lear45.zip"_s;
        addon.sourceSize = 6'000'000'000;
        addon.sourceType = SourceType::Zip;
        addon.sourceTotalFiles = 123;
        QVERIFY(createAddon(*m_database, addon));
        QCOMPARE(addon.key, 1);
        const auto read = modDatabase_Addon::addon(*m_database, addon.key);
        QVERIFY(read.ok());
        QCOMPARE(said(*read),
                 u"Lear 45 Grün|Two lines\nof text|2024-02-03 12:00:00|Aircraft+Movies|Ä. Uthor|4|"
                 "lear45.zip|6000000000|1|123|installed"_s);
        const auto rows = history(*m_database);
        QVERIFY(rows.ok());
        QCOMPARE(rows->size(), 1);
        QCOMPARE(rows->front().addon.description, addon.description);
        QCOMPARE(rows->front().addon.categories, addon.categories);
        QVERIFY(!rows->front().dateUninstalled.isValid());
    }

    void masterKeys_areNeverUsedTwice()
    {
        addAddon(u"One"_s);
        const AddonRecord two = addAddon(u"Two"_s);
        QVERIFY(deleteMaster(*m_database, two.key));
        QVERIFY(deleteHistory(*m_database, two.key, two.dateInstalled));
        QCOMPARE(addAddon(u"Three"_s).key, 3);
        // A database without the counter, as an older one would be: the history counts as well.
        QVERIFY(setCounter(*m_database, u"Addon_Master_Key"_s, 0));
        QVERIFY(deleteMaster(*m_database, 3));
        QCOMPARE(addAddon(u"Four"_s).key, 4);
    }

    void reinstallation_getsADateOfItsOwn()
    {
        AddonRecord addon = addAddon(u"Again"_s);
        const QDateTime first = addon.dateInstalled;
        forget(addon);
        QVERIFY(createAddon(*m_database, addon));
        QCOMPARE(addon.key, 1);
        QCOMPARE(addon.dateInstalled, first.addSecs(1));
        QCOMPARE(history(*m_database)->size(), 2);
    }

    void unknownKeys_areTold()
    {
        const QString lost = u"Could not locate the addon master record."_s;
        const auto none = modDatabase_Addon::addon(*m_database, 9);
        QCOMPARE(none.text, lost);
        QCOMPARE(none.kind, ErrorKind::Failed);
        QCOMPARE(setName(*m_database, 9, u"x"_s).text, lost);
        QCOMPARE(updateDetail(*m_database, {77, 1, {}, {}, {}, {}, {}}).text,
                 u"Could not update the addon details record."_s);
        QCOMPARE(setDateUninstalled(*m_database, 9, noon, noon).text,
                 u"Could not update the addon history header."_s);
        QVERIFY(!m_database->inTransaction());
        const Prompt prompt = addonDatabaseError(lost);
        QCOMPARE(prompt.caption, u"Addon Database Error"_s);
        QCOMPARE(prompt.icon, Icon::Critical);
        QCOMPARE(prompt.text, lost);
    }

    void changes_areMirroredIntoTheHistoryOfTheSameDate()
    {
        AddonRecord addon = addAddon(u"Old"_s);
        const QDateTime first = addon.dateInstalled;
        QVERIFY(setDateUninstalled(*m_database, addon.key, first, first.addDays(1)));
        forget(addon);
        addon.dateInstalled = first.addDays(2);
        QVERIFY(createAddon(*m_database, addon));

        QVERIFY(setName(*m_database, addon.key, u" New "_s));
        QVERIFY(setRating(*m_database, addon.key, 5));
        QVERIFY(setAuthors(*m_database, addon.key, u"Me"_s));
        QVERIFY(setDescription(*m_database, addon.key, u"Text"_s));
        QVERIFY(setStatus(*m_database, addon.key, InstallationStatus::FileCabinet));
        QVERIFY(setCategories(*m_database, addon.key, Category::Sounds));
        const QString now = u"New|Text|2024-05-08 07:08:09|Sounds|Me|5||0|0|0|"_s;
        QCOMPARE(said(*modDatabase_Addon::addon(*m_database, addon.key)), now + u"cabinet"_s);
        const auto rows = history(*m_database);
        QCOMPARE(rows->size(), 2);
        QCOMPARE(rows->at(0).addon.name, u"Old"_s);
        QCOMPARE(rows->at(1).addon.name, u"New"_s);
        QCOMPARE(rows->at(1).addon.rating, 5);
        QCOMPARE(rows->at(1).addon.categories, Categories(Category::Sounds));
    }

    void failedOperation_leavesNothing()
    {
        const QString master = u"Could not create a master record for the addon."_s;
        const QString description = u"Could not create a description record for the addon."_s;
        // occupied: the table in which a stray row stands in the way
        const Rows<Table, QString> rows = {
            {"master", Table::Addon_Master, master},
            {"description", Table::Addon_Description, description},
            {"history description", Table::Addon_History_Description, description},
        };
        for (const auto& [occupied, text] : rows) {
            OpenFixture world;
            AddonRecord addon;
            addon.key = 5;
            addon.name = u"x"_s;
            addon.dateInstalled = noon;
            {
                Recordset stray(world.database, occupied);
                stray.addNew();
                stray.set(Field::Addon_Master_Key, 5);
                if (columnOf(occupied, Field::Date_Installed) >= 0)
                    stray.set(Field::Date_Installed, noon);
                QVERIFY(stray.update());
            }
            const Result refused = createAddon(world.database, addon);
            QCOMPARE(refused.text, text);
            QCOMPARE(refused.kind, ErrorKind::Surroundings);
            QVERIFY(world.database.lastError().text.contains(u"UNIQUE"_s));
            for (const Table table : {Table::Addon_Master,
                                      Table::Addon_Description,
                                      Table::Addon_History,
                                      Table::Addon_History_Description})
                QCOMPARE(Recordset(world.database, table).count(), table == occupied ? 1 : 0);
        }
    }

    void isAlreadyIn_byNameOrSource()
    {
        AddonRecord addon;
        addon.name = u"Großer Airbus"_s;
        addon.sourceName = u"A320.ZIP"_s;
        addon.sourceSize = 99;
        addon.dateInstalled = noon;
        QVERIFY(createAddon(*m_database, addon));
        const Rows<QString, QString, int, bool> rows = {
            {"name", u"großer airbus "_s, {}, 0, true},
            {"neither", u"Another"_s, {}, 0, false},
            {"source of another size", u"Another"_s, u"a320.zip"_s, 0, false},
            {"source", u"Another"_s, u"a320.zip"_s, 99, true},
        };
        for (const auto& [name, source, size, found] : rows) {
            AddonRecord other;
            other.name = name;
            other.sourceName = source;
            other.sourceSize = size;
            QCOMPARE(Addon_Database_IsAlreadyIn(*m_database, other),
                     found ? std::optional(addon.key) : std::nullopt);
        }
    }

    void details_keysAreConsecutiveAndNeverUsedTwice()
    {
        const AddonRecord addon = addAddon(u"A"_s);
        QList<DetailRecord> details{DatabaseFixture::file_(u"C:\\a\\"_s, u"1"_s),
                                    DatabaseFixture::file_(u"C:\\a\\"_s, u"2"_s),
                                    DatabaseFixture::file_(u"C:\\b\\"_s, u" 3"_s)};
        const QList<Fingerprint> checks{
            {10, 20, QByteArray(16, 'a')}, {}, {30, 40, QByteArray(16, 'b')}};
        QCOMPARE(*addDetails(*m_database, addon.key, details, checks), 1);
        QCOMPARE(details.back().key, 3);
        QCOMPARE(details.back().masterKey, addon.key);
        QVERIFY(deleteDetailsOf(*m_database, addon.key));
        QCOMPARE(*addDetails(*m_database, addon.key, details, checks), 4);

        const auto read = detailsOf(*m_database, addon.key);
        QCOMPARE(read->size(), 3);
        QCOMPARE(read->at(2).location + read->at(2).filename, u"C:\\b\\ 3"_s);
        const auto stored = checksOf(*m_database, *read);
        QCOMPARE(stored->size(), 2);
        QCOMPARE(stored->value(6), checks.at(2));
        QCOMPARE(checkOf(*m_database, 5), std::nullopt);
        QCOMPARE(ownersOf(*m_database, u"C:\\B\\"_s, u" 3"_s)->size(), 1);
        QCOMPARE(ownersOf(*m_database, u"C:\\b\\"_s, u"3"_s)->size(), 0);

        DetailRecord changed = *detail(*m_database, 4);
        changed.location = u"C:\\new\\"_s;
        QVERIFY(updateDetail(*m_database, changed));
        QCOMPARE(ownersOf(*m_database, u"C:\\new\\"_s, u"1"_s)->size(), 1);
        QVERIFY(setCheck(*m_database, 4, checks.at(2)));
        QCOMPARE(checkOf(*m_database, 4), checks.at(2));
        QVERIFY(deleteDetail(*m_database, 4));
        QCOMPARE(checkOf(*m_database, 4), std::nullopt);
        QCOMPARE(detailsOf(*m_database, addon.key)->size(), 2);
    }

    void details_ownersAndSharers()
    {
        const QString effects = u"C:\\FSX\\Effects\\"_s;
        const auto file = DatabaseFixture::file_;
        const AddonRecord one =
            addAddon(u"One"_s, {file(effects, u"smoke.fx"_s), file(effects, u"only1.fx"_s)});
        const AddonRecord two = addAddon(
            u"Two"_s, {file(effects, u"only2.fx"_s), file(effects.toUpper(), u"SMOKE.fx"_s)});
        const AddonRecord three = addAddon(u"Three"_s, {file(effects, u"Smoke.FX"_s)});

        const auto owners = ownersOf(*m_database, effects, u"smoke.fx"_s);
        QCOMPARE(owners->size(), 3);
        QCOMPARE(owners->at(0).masterKey, one.key);
        QCOMPARE(owners->at(2).masterKey, three.key);
        QCOMPARE(byInstalledName(*m_database, u"SMOKE.FX"_s)->size(), 3);
        QCOMPARE(byPreferredPlace(*m_database, effects, u"only2.fx"_s)->size(), 1);

        const auto sharers = sharersOf(*m_database, *detailsOf(*m_database, two.key));
        QCOMPARE(sharers->size(), 2);
        QCOMPARE(sharers->at(0).masterKey, one.key);
        QCOMPARE(sharers->at(1).masterKey, three.key);
        QCOMPARE(sharers->at(1).name, u"Smoke.FX"_s);

        // Many files of one folder, recorded before and after those of another add-on.
        const QString gauges = u"C:\\FSX\\Gauges\\"_s;
        QList<DetailRecord> first = {file(gauges.toLower(), u"G7.GAU"_s)};
        QList<DetailRecord> rest;
        for (int i = 0; i < 40; ++i)
            rest += file(gauges, u'g' + QString::number(i) + u".gau"_s);
        QVERIFY(addDetails(*m_database, two.key, first).ok());
        const AddonRecord four = addAddon(u"Four"_s, {file(gauges, u"other.gau"_s)});
        QVERIFY(addDetails(*m_database, two.key, rest).ok());
        QList<DetailRecord> last = {file(gauges.toUpper(), u"G39.gau"_s)};
        QVERIFY(addDetails(*m_database, four.key, last).ok());
        const auto now = sharersOf(*m_database, *detailsOf(*m_database, two.key));
        QCOMPARE(now->size(), 3);
        QCOMPARE(now->at(2).key, last.front().key);
        QCOMPARE(sharersOf(*m_database, *detailsOf(*m_database, four.key))->size(), 1);
    }

    void originals_belongToRows()
    {
        const OriginalRecord kept{4, 2, u"Replaced\\2\\Effects\\a.fx"_s};
        QVERIFY(addOriginals(*m_database, {kept, {5, 2, QString()}}));
        QVERIFY(!addOriginals(*m_database, {{6, 2, {}}, kept})); // one is there: none added
        QCOMPARE(originalsOf(*m_database, 2)->size(), 2);
        QCOMPARE(originalOf(*m_database, 4)->keptFile, kept.keptFile);
        QVERIFY(setOriginal(*m_database, {4, 3, u"elsewhere"_s}));
        QCOMPARE(originalOf(*m_database, 4)->masterKey, 3);
        QVERIFY(deleteOriginal(*m_database, 4));
        QCOMPARE(originalOf(*m_database, 4), std::nullopt);
        QVERIFY(deleteOriginalsOf(*m_database, 2));
        QCOMPARE(originalsOf(*m_database, 2)->size(), 0);
    }

    void placesOfFoldersAndConfigurations_haveNoCase()
    {
        const Place made{RootId::Simulator, u"Addon Scenery\\Müritz"_s};
        const Place other{RootId::Program, made.relative};
        QVERIFY(addFolders(*m_database, {made, {made.root, u"ADDON SCENERY\\MÜRITZ"_s}}));
        QVERIFY(addFolders(*m_database, {other, made}));
        QCOMPARE(ownFolders(*m_database)->size(), 2);
        QVERIFY(isOwnFolder(*m_database, {made.root, u"addon scenery\\müritz"_s}));
        QVERIFY(!isOwnFolder(*m_database, {made.root, u"addon scenery"_s}));
        QVERIFY(deleteFolders(*m_database, {made}));
        QCOMPARE(*ownFolders(*m_database), QList<Place>{other});

        ConfigBaseRecord base{{RootId::AllUsersConfig, u"Scenery.cfg"_s},
                              u"Configs\\1"_s,
                              500,
                              QByteArray(16, 'c'),
                              1};
        QVERIFY(setConfigBase(*m_database, base));
        base.edits = 2;
        base.file.relative = u"SCENERY.CFG"_s;
        QVERIFY(setConfigBase(*m_database, base));
        const auto read = configBase(*m_database, {RootId::AllUsersConfig, u"scenery.cfg"_s});
        QCOMPARE(read->edits, 2);
        QCOMPARE(read->lastWrittenHash, base.lastWrittenHash);
        QCOMPARE(configBase(*m_database, {RootId::UserConfig, u"Scenery.cfg"_s}), std::nullopt);
        QVERIFY(deleteConfigBase(*m_database, base.file));
        QCOMPARE(configBase(*m_database, base.file), std::nullopt);
    }

    void sceneryAreas_roundTrip()
    {
        const SceneryAreaRecord area{
            1, 5, 118, false, 42, u" Addon Scenery\\X "_s, u"X"_s, u" a b "_s};
        QVERIFY(addSceneryAreas(*m_database, {area, {2, 6, 119, true, 43, u"Y"_s, u"Y"_s, {}}}));
        const auto read = sceneryAreasOf(*m_database, 1);
        QCOMPARE(read->size(), 1);
        QCOMPARE(read->front().area, 118);
        QCOMPARE(read->front().layer, 42);
        QCOMPARE(read->front().enabled, false);
        QCOMPARE(read->front().path, u"Addon Scenery\\X"_s);
        QCOMPARE(read->front().parameters, u" a b "_s);
        QCOMPARE(sceneryAreas(*m_database)->size(), 2);
        QVERIFY(deleteSceneryArea(*m_database, area));
        QVERIFY(deleteSceneryAreasOf(*m_database, 2));
        QCOMPARE(sceneryAreas(*m_database)->size(), 0);
    }

    void pictures_havePrimaryOne()
    {
        QVERIFY(addPicture(*m_database, {1, 10, AddonTypeCategory::Aircraft, true}));
        QVERIFY(addPicture(*m_database, {1, 11, AddonTypeCategory::Panel, false}));
        QVERIFY(addPicture(*m_database, {2, 12, AddonTypeCategory::Addon, true}));
        QVERIFY(addPicture(*m_database, {1, 11, AddonTypeCategory::Panel, true}));
        const auto pictures = picturesOf(*m_database, 1);
        QCOMPARE(pictures->size(), 2);
        QCOMPARE(pictures->at(0).primary, false);
        QCOMPARE(pictures->at(1).primary, true);
        QVERIFY(picturesOf(*m_database, 2)->front().primary);
        QVERIFY(deletePicturesOf(*m_database, 1));
        QCOMPARE(picturesOf(*m_database, 1)->size(), 0);
    }

    void itemDetails_keysAreLowerCase()
    {
        ItemDetailRecord record;
        record.item = u"C:\\FSX\\SimObjects\\Airplanes\\Ähnlich"_s;
        record.section = u" FltSim.0 "_s;
        record.suppressErrors = true;
        record.suppressCfgFileDateTime = noon;
        record.suppressCfgFileSize = 1234;
        record.custom[0] = u"first"_s;
        for (const ItemTable table : {ItemTable::Aircraft, ItemTable::Panel, ItemTable::Sound}) {
            for (int time = 0; time < 2; ++time) {
                record.custom[9] += u"!"_s;
                QVERIFY(setItemDetail(*m_database, table, record));
            }
            const auto read = itemDetail(*m_database, table, record.item.toUpper(), u"FLTSIM.0"_s);
            QVERIFY(read && read->suppressErrors);
            QCOMPARE(read->item, record.item.toLower());
            QCOMPARE(read->section, table == ItemTable::Aircraft ? u"fltsim.0"_s : QString());
            QCOMPARE(read->suppressCfgFileDateTime, noon);
            QCOMPARE(read->suppressCfgFileSize, 1234);
            QCOMPARE(read->custom, record.custom);
            QVERIFY(deleteItemDetail(*m_database, table, record.item, record.section));
            QVERIFY(!itemDetail(*m_database, table, record.item, record.section));
        }
    }

    void removal_keepsHistoryWithItsDate()
    {
        const AddonRecord addon =
            addAddon(u"Gone"_s, {DatabaseFixture::file_(u"C:\\a\\"_s, u"1"_s)});
        const QDateTime when = addon.dateInstalled.addDays(3);
        QVERIFY(deleteDetailsOf(*m_database, addon.key));
        forget(addon);
        QVERIFY(setDateUninstalled(*m_database, addon.key, addon.dateInstalled, when));
        QVERIFY(addons(*m_database)->isEmpty());
        const auto rows = history(*m_database);
        QCOMPARE(rows->size(), 1);
        QCOMPARE(rows->front().dateUninstalled, when);
        QCOMPARE(int(rows->front().addon.status), int(InstallationStatus::Removed));
    }

    void categories_fromFilesAndWords()
    {
        using C = Category;
        const Rows<QString, Categories> rows = {
            {"parts", u"Panel Gauge|Document|Sim Configuration|Font"_s, C::Panels | C::Aircraft},
            {"films",
             u"Global Campaign Information|Movie|Video"_s,
             C::Missions | C::Movies | C::Videos},
            {"none of them", u"Landing Lights Source|Dynamic Link Library|Other"_s, {}},
        };
        for (const auto& [types, categories] : rows)
            QCOMPARE(categoriesOfFiles(types.split(u'|')), categories);
        QCOMPARE(recomputedCategories(C::Textures | C::Missions | C::Scenery | C::AI_Flight_Plans,
                                      {u"Sound"_s}),
                 C::Textures | C::Missions | C::AI_Flight_Plans | C::Sounds);

        QCOMPARE(categoryWords(C::Movies | C::Airport_Facilities_Data).join(u'|'),
                 u"Airport Facilities Data|Movies"_s);
        for (const QString& word : u"aircraft_skins_and_repaints|Aircraft Skins And Repaints|"
                                   "aircraft skins/repaints"_s.split(u'|'))
            QCOMPARE(categoryOfWord(word), std::optional(C::Aircraft_Skins_And_Repaints));
        QCOMPARE(categoryOfWord(u"A.I. Flight Plans"_s), std::optional(C::AI_Flight_Plans));
        QCOMPARE(categoryOfWord(u"Boats"_s), std::nullopt);
    }
};

VT_TEST_CLASS(TestRecords)
#include "test_records.moc"
