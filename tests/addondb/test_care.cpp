// Care for a whole database file: damage noticed, rows saved, structure brought up to date, the
// file written anew, all of it again after a run that died.
#include "addondb/DatabaseCare.h"
#include "addondb/DatabaseFixture.h"
#include "addondb/JournalTable.h"
#include "addondb/PageChecks.h"
#include "addondb/Recordset.h"
#include "addondb/Schema.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

constexpr qsizetype pageSize = schema::pageSize;

struct CareFixture : DatabaseFixture
{
    CareFixture()
    {
        for (const QString& made : {global.tempFolder, global.imagesFolder})
            (void)actions.makeFolder(made);
    }

    explicit CareFixture(const QByteArray& content) : CareFixture() { put(content); }

    static void addAddons(Connection& database, int addons, int filesEach)
    {
        const Result added = database.together([&] {
            for (int i = 1; i <= addons; ++i) {
                AddonRecord addon;
                addon.name = u"Add-on "_s + QString::number(i);
                addon.description = QString(i == 3 ? 40'000 : 20, u'd'); // one beyond its page
                addon.dateInstalled = QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9));
                if (Result made = modDatabase_Addon::createAddon(database, addon); !made)
                    return made;
                QList<DetailRecord> details;
                QList<Fingerprint> checks;
                for (int f = 0; f < filesEach; ++f) {
                    const QString folder =
                        u"C:\\FSX\\Addon Scenery\\Area "_s + QString::number(i) + u"\\scenery\\"_s;
                    const QString name = u"object_"_s + QString::number(f) + u".bgl"_s;
                    details.push_back({0, 0, name, folder, name, folder, name});
                    checks.push_back({f, i, QByteArray(16, char(f))});
                }
                const auto written =
                    modDatabase_Addon::addDetails(database, addon.key, details, checks);
                if (!written)
                    return written.error();
            }
            return Result::success();
        });
        QVERIFY2(added, qUtf8Printable(added.text));
    }

    [[nodiscard]] DatabaseHealth health()
    {
        files.newOperation();
        return databaseHealth(files, global.databaseFile, true);
    }
};

qint64 allRows(Connection& database)
{
    qint64 rows = 0;
    for (const TableInfo& table : allTables())
        rows += Recordset(database, table.table).count();
    return rows;
}

/// Every file by its key: add-on and place.
QHash<qint64, QString> placesOf(Connection& database)
{
    QHash<qint64, QString> places;
    Recordset rows(database, Table::Addon_Details);
    for (bool more = rows.moveFirst(); more; more = rows.moveNext())
        places.insert(rows.number(Field::Addon_Details_Key),
                      QString::number(rows.number(Field::Addon_Master_Key)) + u' ' +
                          rows.text(Field::Installed_To_Location) +
                          rows.text(Field::Installed_To_FileName));
    return places;
}

/// The same numbers in each run.
QRandomGenerator& chance()
{
    static QRandomGenerator generator(20'250'101);
    return generator;
}

QByteArray random(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    chance().fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
    return bytes;
}

/// Number (1-based) of the first page that holds the text.
qsizetype pageWith(const QByteArray& file, const QByteArray& text)
{
    return file.indexOf(text) / pageSize + 1;
}

} // namespace

class TestCare : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase()
    {
        CareFixture fixture;
        auto database = fixture.create();
        CareFixture::addAddons(*database, 2000, 25);
        m_rows = allRows(*database);
        m_places = placesOf(*database);
        QVERIFY(database->close());
        m_big = fixture.bytes();
        QVERIFY2(m_big.size() / pageSize > 650, QByteArray::number(m_big.size() / pageSize));
    }

    void damage_isAlwaysNoticed()
    {
        CareFixture fixture(m_big);
        QVERIFY(fixture.health().result);
        QFile file(fixture.host());
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        const auto change = [&](qsizetype at, const QByteArray& bytes) {
            [&] { QVERIFY(file.seek(at) && file.write(bytes) == bytes.size()); }();
        };
        for (int i = 0; i < 200; ++i) {
            qsizetype at = 0;
            QByteArray damage;
            switch (i % 6) {
            case 0: // a page
                at = chance().bounded(int(m_big.size() / pageSize)) * pageSize;
                damage = random(pageSize);
                break;
            case 1:
                at = chance().bounded(int(m_big.size() / pageSize)) * pageSize;
                damage = QByteArray(pageSize, '\0');
                break;
            case 2: // a bit
            case 3: // of the header
            case 4: // of the list of tables
                at = chance().bounded(i % 6 == 2   ? int(m_big.size())
                                      : i % 6 == 3 ? 100
                                                   : int(pageSize));
                damage = QByteArray(1, char(m_big[at] ^ (1 << chance().bounded(8))));
                break;
            default: // cut short
                at = chance().bounded(1, int(m_big.size()));
                QVERIFY(file.resize(at));
            }
            change(at, damage);
            QVERIFY2(fixture.health().fault == DatabaseFault::Damaged,
                     qUtf8Printable(u"damage %1 at %2"_s.arg(i).arg(at)));
            if (i % 6 == 5)
                change(at, m_big.sliced(at));
            else
                change(at, m_big.sliced(at, damage.size()));
        }
        QVERIFY(fixture.health().result);
    }

    void repair_savesNearlyAll()
    {
        const auto kindPage = [this](char kind) {
            for (qsizetype page = 2;; ++page) {
                if (m_big[(page - 1) * pageSize] == kind)
                    return page;
            }
        };
        // bytes: how many of the page
        const Rows<qsizetype, qsizetype, double> rows = {
            {"the list of tables", qsizetype(1), pageSize, 0.9999},
            {"the header alone", qsizetype(1), qsizetype(16), 0.9999},
            {"a page above others", kindPage(0x05), pageSize, 0.9999},
            {"a page of an index", kindPage(0x0a), pageSize, 0.9999},
            {"names of add-ons", pageWith(m_big, "Add-on 1000"), pageSize, 0.99},
            {"files", pageWith(m_big, "Area 900\\"), pageSize, 0.99},
            {"a letter of a file", pageWith(m_big, "Area 900\\"), qsizetype(1), 0.9999},
        };
        for (const auto& [page, bytes, least] : rows) {
            QByteArray damaged = m_big;
            if (bytes == 1)
                damaged[damaged.indexOf("Area 900\\")] = 'B';
            else
                damaged.replace((page - 1) * pageSize, bytes, random(bytes));
            CareFixture fixture(damaged);

            const CareReport report = DatabaseCare(fixture.context).repair();
            QVERIFY2(report.result, qUtf8Printable(report.result.text));
            QVERIFY(report.changed && report.salvage);
            QVERIFY(fixture.health().result);
            QCOMPARE(fixture.bytes(report.damagedFile.section(u'\\', -1)), damaged);
            QCOMPARE(QDir(fixture.host(u"Temp"_s)).entryList({u"DB*"_s}), QStringList());

            auto database = fixture.open();
            const double share = double(allRows(*database)) / double(m_rows);
            QVERIFY2(share >= least, qPrintable(QString::number(share)));
            const QHash<qint64, QString> places = placesOf(*database);
            for (auto place = places.cbegin(); place != places.cend(); ++place)
                QCOMPARE(place.value(), m_places.value(place.key()));
            // Whoever has files is listed, by its history if need be.
            const ResultOf<QList<AddonRecord>> addons = modDatabase_Addon::addons(*database);
            QCOMPARE(addons->size(), 2000);
            QCOMPARE((*addons)[999].name, u"Add-on 1000"_s);
            // No number is given again.
            QVERIFY(*modDatabase_Addon::newMasterKey(*database) > 2000);
        }
    }

    void repair_takesTheLogAndTheJournalAlong()
    {
        CareFixture fixture;
        CareFixture::addAddons(*fixture.create(), 5, 5);
        const pid_t child = fork();
        if (child == 0) {
            auto database = fixture.open();
            JournalTable journal(*database, fixture.gate);
            const bool begun =
                journal.begin(OperationKind::Removal, u"Harbour"_s, QList<JournalStep>(5000)).ok();
            _exit(begun ? 0 : 1); // everything of it stands in the log alone
        }
        int status = -1;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QByteArray damaged = fixture.bytes();
        damaged.replace(0, 3000, QByteArray(3000, 'x'));
        fixture.put(damaged);

        const CareReport report = DatabaseCare(fixture.context).repair();
        QVERIFY2(report.result, qUtf8Printable(report.result.text));
        QVERIFY(report.salvage->journal);
        QVERIFY(!fixture.exists(u"Vantrel/Vantrel.mdb-wal"_s));
        auto database = fixture.open();
        JournalTable journal(*database, fixture.gate);
        const ResultOf<QList<JournalOperation>> unfinished = journal.unfinished();
        QCOMPARE(unfinished->size(), 1);
        QCOMPARE(unfinished->first().label, u"Harbour"_s);
        QCOMPARE(journal.steps(unfinished->first().id)->size(), 5000);
        QCOMPARE(placesOf(*database).size(), 25);
    }

    void repair_isNeverEmpty()
    {
        const QByteArray garbage = random(10 * pageSize);
        CareFixture fixture(garbage);
        const CareReport report = DatabaseCare(fixture.context).repair();
        QVERIFY(!report.result && !report.changed);
        QVERIFY2(report.result.text.contains(u"Vantrel.mdb"_s), qUtf8Printable(report.result.text));
        QCOMPARE(fixture.bytes(), garbage);
    }

    void optimize_closesTheGaps()
    {
        CareFixture fixture;
        {
            auto database = fixture.create();
            CareFixture::addAddons(*database, 20, 500);
            for (qint64 key = 1; key < 20; ++key)
                QVERIFY(modDatabase_Addon::deleteDetailsOf(*database, key));
        }
        fixture.settings.setNumber(SettingKey::DatabaseHistory, 9);
        const CareReport report = DatabaseCare(fixture.context).optimize(false);
        QCOMPARE(report.result.text, u"The database was optimized."_s);
        QVERIFY(report.bytesAfter * 2 < report.bytesBefore);
        QCOMPARE(report.bytesAfter, fixture.bytes().size());
        QCOMPARE(fixture.settings.number(SettingKey::DatabaseHistory), 0);
        QVERIFY(fixture.health().result);
        QCOMPARE(placesOf(*fixture.open(OpenMode::ReadOnly)).size(), 500);
        QCOMPARE(DatabaseCare(fixture.context).optimize(true).result.text,
                 u"The database was repaired and optimized."_s);
    }

    void optimize_tellsTheStepThatFailed()
    {
        CareFixture fixture;
        CareFixture::addAddons(*fixture.create(), 5, 5);
        const QByteArray before = fixture.bytes();
        fixture.settings.setNumber(SettingKey::DatabaseHistory, 9);
        fixture.gate.faultHook = [](const char* action, const QByteArray& host) {
            return qstrcmp(action, "place") == 0 && host.contains("Vantrel.mdb") ? ENOSPC : 0;
        };
        const CareReport report = DatabaseCare(fixture.context).optimize(false);
        fixture.gate.faultHook = {};
        QCOMPARE(report.errorCode, 3);
        QVERIFY2(report.result.text.startsWith(
                     u"An error occurred during optimization. Error code: 3. "_s),
                 qUtf8Printable(report.result.text));
        QCOMPARE(fixture.bytes(), before);
        QCOMPARE(fixture.settings.number(SettingKey::DatabaseHistory), 9);
        QCOMPARE(QDir(fixture.host({})).entryList(QDir::Files), QStringList{u"Vantrel.mdb"_s});

        QByteArray damaged = before;
        damaged[5 * pageSize + 100] = char(damaged[5 * pageSize + 100] ^ 1);
        fixture.put(damaged);
        QCOMPARE(DatabaseCare(fixture.context).optimize(false).errorCode, 2);
        QCOMPARE(fixture.bytes(), damaged);
    }

    void optimize_waitsForUnfinishedWork()
    {
        CareFixture fixture;
        {
            auto database = fixture.create();
            JournalTable journal(*database, fixture.gate);
            QVERIFY(journal.begin(OperationKind::Installation, u"Harbour"_s, {}).ok());
        }
        const QByteArray before = fixture.bytes();
        const CareReport report = DatabaseCare(fixture.context).optimize(false);
        QVERIFY2(!report.result && report.result.text.contains(u"'Harbour'"_s),
                 qUtf8Printable(report.result.text));
        QCOMPARE(fixture.bytes(), before);
    }

    void due()
    {
        const Rows<int, int, bool> rows = {
            {"never", 0, 1000, false},
            {"13 of 14", 1, 13, false},
            {"14 of 14", 1, 14, true},
            {"9 of 9", 2, 9, true},
            {"second of 3", 3, 2, false},
            {"third of 3", 3, 3, true},
        };
        for (const auto& [factor, changes, due] : rows) {
            ShellFixture fixture;
            fixture.settings.setNumber(SettingKey::OptimizationFactor, factor);
            fixture.settings.setNumber(SettingKey::DatabaseHistory, changes);
            QCOMPARE(optimizationDue(fixture.settings), due);
            fixture.settings.setFlag(SettingKey::AutoOptimize, false);
            QVERIFY(!optimizationDue(fixture.settings));
        }
    }

    void upgrade_addsAndFillsWhatLacks()
    {
        CareFixture fixture;
        {
            // As an early version made it: without checksums, and lacking what came later.
            sqlite3* old = nullptr;
            QCOMPARE(sqlite3_open(fixture.host().toUtf8().constData(), &old), SQLITE_OK);
            const auto run = [&](const QByteArray& sql) {
                return sqlite3_exec(old, sql.constData(), nullptr, nullptr, nullptr);
            };
            for (const QByteArray& sql : schema::creation()) {
                if (!sql.contains("INDEX") && !sql.contains("Addon_Details_Picture"))
                    run(QByteArray(sql).replace("COLLATE VANTREL_NOCASE", ""));
            }
            for (const char* field : {"Airport_Facilities_Data", "AI_Flight_Plans", "Movies"}) {
                for (const char* table : {"Addon_Master", "Addon_History"})
                    QCOMPARE(run(QByteArray("ALTER TABLE ") + table + " DROP COLUMN " + field),
                             SQLITE_OK);
            }
            QCOMPARE(run("PRAGMA user_version=1;"
                         "INSERT INTO Addon_Master(Addon_Master_Key, Addon_Name, Date_Installed)"
                         " VALUES(7, 'Old', '2010-01-02 03:04:05');"
                         "INSERT INTO Addon_History(Addon_Master_Key, Date_Installed)"
                         " VALUES(7, '2010-01-02 03:04:05');"
                         "INSERT INTO Addon_Details(Addon_Master_Key, Filename) VALUES"
                         "(7, 'intro.avi'), (7, 'TrafficOld.bgl'), (7, 'readme.txt');"),
                     SQLITE_OK);
            sqlite3_close(old);
            fixture.write(u"Vantrel/Images/7.jpg"_s);
            fixture.write(u"Vantrel/Images/8.jpg"_s);
        }
        fixture.prompts.expect(u"Database Optimization Required"_s, Button::Ok);
        const CareReport report = DatabaseCare(fixture.context).upgrade();
        QVERIFY2(report.result, qUtf8Printable(report.result.text));
        QVERIFY(report.added.contains(u"the table Addon_Details_Picture"_s));
        QVERIFY(report.added.contains(u"the field Movies of Addon_History"_s));
        QVERIFY(report.added.contains(u"the index Addon_Details_Installed_To_FileName"_s));
        QVERIFY(fixture.health().result);
        {
            auto database = fixture.open();
            QVERIFY(database->isPresentStructure() && database->lacking()->isEmpty());
            const ResultOf<AddonRecord> addon = modDatabase_Addon::addon(*database, 7);
            QCOMPARE(addon->categories, Category::Movies | Category::AI_Flight_Plans);
            QCOMPARE(modDatabase_Addon::history(*database)->first().addon.categories,
                     addon->categories);
            QCOMPARE(modDatabase_Addon::picturesOf(*database, 7)->size(), 1);
            QCOMPARE(modDatabase_Addon::byInstalledName(*database, {})->size(), 3);
            AddonRecord fresh;
            fresh.name = u"New"_s;
            QVERIFY(
                modDatabase_Addon::createAddon(*database, fresh)); // fields stand in another order
        }
        // A second one has nothing to do, and asks nothing.
        const CareReport again = DatabaseCare(fixture.context).upgrade();
        QVERIFY(again.result && !again.changed);
    }

    void death_atAnyPointIsCompleted()
    {
        CareFixture small;
        CareFixture::addAddons(*small.create(), 5, 40);
        const QByteArray whole = small.bytes();
        QByteArray damaged = whole;
        damaged.replace(0, 50, QByteArray(50, 'x'));
        for (const bool repair : {false, true}) {
            int points = 0;
            for (bool ended = true; ended; ++points) {
                CareFixture fixture(repair ? damaged : whole);
                const pid_t child = fork();
                if (child == 0) {
                    fixture.gate.faultHook = [left = points](const char*,
                                                             const QByteArray&) mutable {
                        if (left-- == 0)
                            _exit(9);
                        return 0;
                    };
                    _exit(DatabaseCare(fixture.context).optimize(repair).result ? 0 : 1);
                }
                int status = -1;
                QCOMPARE(waitpid(child, &status, 0), child);
                QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) != 1);
                ended = WEXITSTATUS(status) == 9;

                DatabaseCare care(fixture.context);
                fixture.files.newOperation();
                QVERIFY(care.finishReplacement());
                const CareReport report = care.repair();
                QVERIFY2(report.result, qUtf8Printable(report.result.text));
                QCOMPARE(placesOf(*fixture.open()).size(), 200);
                QVERIFY(!fixture.exists(u"Vantrel/Vantrel.mdb.next"_s));
                QCOMPARE(QDir(fixture.host(u"Temp"_s)).entryList({u"DB*"_s}), QStringList());
            }
            QVERIFY2(points > 4, QByteArray::number(points));
        }
    }

private:
    QByteArray m_big;
    qint64 m_rows = 0;
    QHash<qint64, QString> m_places;
};

VT_TEST_CLASS(TestCare)
#include "test_care.moc"
