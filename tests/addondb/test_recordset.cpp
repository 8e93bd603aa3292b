// Rows found, walked, written and deleted through recordsets; texts without regard to case.
#include "addondb/Collation.h"
#include "addondb/DatabaseFixture.h"
#include "addondb/Recordset.h"
#include "platform/Text.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::DatabaseFixture;
using vt::test::OpenFixture;
using vt::test::Rows;

namespace {

qint64 addDetail(Recordset& rows, const DetailRecord& detail)
{
    rows.addNew();
    rows.set(Field::Addon_Master_Key, detail.masterKey);
    rows.set(Field::Installed_To_Location, detail.location);
    rows.set(Field::Installed_To_FileName, detail.name);
    rows.set(Field::Preferred_Install_To_Location, detail.preferredLocation);
    rows.set(Field::Preferred_Install_To_Filename, detail.preferredName);
    [&] { QVERIFY2(rows.update(), qUtf8Printable(rows.error().text)); }();
    return rows.lastKey();
}

QList<qint64> keysFrom(Recordset& rows, bool any)
{
    QList<qint64> keys;
    for (bool more = any; more; more = rows.moveNext())
        keys.push_back(rows.number(Field::Addon_Details_Key));
    return keys;
}

QString randomText(QRandomGenerator& random, const QStringList& letters)
{
    QString text;
    for (int i = random.bounded(9); i > 0; --i)
        text += letters[random.bounded(letters.size())];
    return text;
}

} // namespace

class TestRecordset : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<OpenFixture> m_world;

private Q_SLOTS:

    void init() { m_world = std::make_unique<OpenFixture>(); }

    void schema_isWholeAndNamedAsSpoken()
    {
        for (const TableInfo& table : allTables()) {
            Recordset rows(m_world->database, table.table);
            QVERIFY2(!rows.moveFirst() && rows.error(), table.name);
            QCOMPARE(rows.count(), 0);
        }
        for (const IndexInfo& index : allIndexes()) {
            Recordset rows(m_world->database, index.table);
            rows.setIndex(index.index);
            // Every key field is compared with a number or a text; none may be unknown.
            const bool two = index.fields.size() >= 2;
            QVERIFY2(!(two ? rows.seek({1, 1}) : rows.seek({1})) && rows.error(), index.name);
        }
        QCOMPARE(QByteArray(info(Field::Aircraft_Flag).name), QByteArray("Aircraft"));
        QCOMPARE(QByteArray(info(Index::Addon_Details_Installed_To).name),
                 QByteArray("Installed_To"));
    }

    void seek_findsPlacesWithoutRegardToCase()
    {
        const QString effects = u"C:\\FSX\\Effects\\"_s;
        const QString name = u"fx_Straße_ÄÖ.fx"_s;
        Recordset details(m_world->database, Table::Addon_Details);
        addDetail(details, DatabaseFixture::file_(effects, u"other.fx"_s));
        addDetail(details, DatabaseFixture::file_(effects, name));
        const Rows<QString, QString, bool> rows = {
            {"same", effects, name, true},
            {"ascii case", u"c:\\fsx\\EFFECTS\\"_s, u"FX_straße_ÄÖ.FX"_s, true},
            {"umlauts", effects, u"fx_Straße_äö.fx"_s, true},
            {"other folder", u"C:\\FSX\\Effect\\"_s, name, false},
            {"other name", effects, u"fx_Straße_ÄÖ.f"_s, false},
            {"border moved", u"C:\\FSX\\"_s, u"Effects\\fx_Straße_ÄÖ.fx"_s, false},
            {"folded to two letters", effects, u"fx_Strasse_ÄÖ.fx"_s, false},
        };
        for (const auto& [location, wanted, found] : rows) {
            for (const Index index :
                 {Index::Addon_Details_Installed_To, Index::Addon_Details_Preferred_Install_To}) {
                details.setIndex(index);
                QCOMPARE(details.seek({location, wanted}), found);
                QVERIFY(details.error());
                if (!found)
                    continue;
                QCOMPARE(details.text(Field::Installed_To_FileName), name);
                QVERIFY(!details.moveNext());
            }
        }
    }

    void seek_byPreferredPlaceMeetsBothKindsOfRows()
    {
        Recordset rows(m_world->database, Table::Addon_Details);
        const QString wanted = u"C:\\FSX\\Gauges\\"_s;
        const qint64 there = addDetail(rows, {0, 1, {}, wanted, u"a.gau"_s, wanted, u"a.gau"_s});
        const qint64 moved = addDetail(
            rows, {0, 1, {}, u"D:\\x\\"_s, u"b.gau"_s, u"c:\\fsx\\GAUGES\\"_s, u"A.gau"_s});
        addDetail(rows, {0, 1, {}, wanted, u"a.gau"_s, u"D:\\y\\"_s, u"a.gau"_s});
        addDetail(rows, {0, 1, {}, wanted, u"a.gau"_s, wanted, u"renamed.gau"_s});

        rows.setIndex(Index::Addon_Details_Preferred_Install_To);
        QCOMPARE(keysFrom(rows, rows.seek({wanted, u"a.gau"_s})), (QList<qint64>{there, moved}));
    }

    void seek_followsChangesOfPlaces()
    {
        Recordset rows(m_world->database, Table::Addon_Details);
        const qint64 key = addDetail(rows, DatabaseFixture::file_(u"C:\\a\\"_s, u"one.bgl"_s));
        QVERIFY(rows.seek({key}));
        rows.edit();
        rows.set(Field::Installed_To_Location, u"C:\\b\\"_s);
        QVERIFY(rows.update());

        const auto found = [&](Index index, const QString& location) {
            rows.setIndex(index);
            return rows.seek({location, u"one.bgl"_s});
        };
        QVERIFY(!found(Index::Addon_Details_Installed_To, u"C:\\a\\"_s));
        QVERIFY(found(Index::Addon_Details_Installed_To, u"C:\\b\\"_s));
        QVERIFY(found(Index::Addon_Details_Preferred_Install_To, u"C:\\a\\"_s));
        QVERIFY(rows.deleteRow());
        QVERIFY(!found(Index::Addon_Details_Installed_To, u"C:\\b\\"_s));
        QVERIFY(!found(Index::Addon_Details_Preferred_Install_To, u"C:\\a\\"_s));
        QVERIFY(m_world->database.check(true));
    }

    void seekFrom_startsAtTheFirstNotBefore()
    {
        Recordset rows(m_world->database, Table::Panel_Details);
        for (const QString& name : {u"bravo"_s, u"delta"_s, u"alpha"_s}) {
            rows.addNew();
            rows.set(Field::Panel, name);
            QVERIFY(rows.update());
        }
        QVERIFY(rows.seekFrom({u"BRAVO"_s}));
        QCOMPARE(rows.text(Field::Panel), u"bravo"_s);
        QVERIFY(rows.moveNext());
        QCOMPARE(rows.text(Field::Panel), u"delta"_s);
        QVERIFY(!rows.moveNext());
        QVERIFY(rows.eof());
        QVERIFY(rows.seekFrom({u"Charlie"_s}));
        QCOMPARE(rows.text(Field::Panel), u"delta"_s);
        QVERIFY(!rows.seekFrom({u"echo"_s}));
        QVERIFY(rows.error());
    }

    void moves_walkInTheOrderOfTheIndex()
    {
        Recordset rows(m_world->database, Table::Addon_History);
        const QDateTime day(QDate(2024, 1, 2), QTime(3, 4, 5));
        for (const auto& [key, date] : {std::pair(2, day),
                                        std::pair(1, day.addDays(9)),
                                        std::pair(1, day),
                                        std::pair(2, day.addSecs(-1))}) {
            rows.addNew();
            rows.set(Field::Addon_Master_Key, key);
            rows.set(Field::Date_Installed, date);
            QVERIFY(rows.update());
        }
        QStringList walked;
        for (bool more = rows.moveFirst(); more; more = rows.moveNext())
            walked += QString::number(rows.number(Field::Addon_Master_Key)) + u' ' +
                      rows.text(Field::Date_Installed);
        QCOMPARE(walked,
                 u"1 2024-01-02 03:04:05|1 2024-01-11 03:04:05|2 2024-01-02 03:04:04|"
                 "2 2024-01-02 03:04:05"_s.split(u'|'));
        QVERIFY(rows.moveLast());
        QCOMPARE(rows.date(Field::Date_Installed), day);
        QVERIFY(!rows.moveNext());
        QVERIFY(rows.seek({1}));
        QVERIFY(rows.moveNext());
        QVERIFY(!rows.moveNext()); // stays among the equal ones
    }

    void addNew_leavesUnsetFieldsEmpty()
    {
        Recordset rows(m_world->database, Table::Vantrel_ConfigBases);
        rows.addNew();
        rows.set(Field::Relative, u"first"_s);
        rows.set(Field::KeptFile, u"kept"_s);
        rows.set(Field::LastWrittenHash, QByteArray("\0\1", 2));
        rows.set(Field::Edits, 5);
        QVERIFY(rows.update());
        rows.addNew(); // nothing of the row before may stay
        rows.set(Field::Relative, QString());
        QVERIFY(rows.update());
        rows.addNew();
        rows.cancelUpdate();
        QCOMPARE(rows.count(), 2);

        QVERIFY(rows.seek({0, u"first"_s}));
        QCOMPARE(rows.blob(Field::LastWrittenHash), QByteArray("\0\1", 2));
        QVERIFY(rows.seek({0, QString()}));
        QCOMPARE(rows.text(Field::KeptFile), QString());
        QCOMPARE(rows.blob(Field::LastWrittenHash), QByteArray());
        QCOMPARE(rows.number(Field::Edits), 0);
    }

    void uniqueIndex_refusesASecondRow()
    {
        Recordset rows(m_world->database, Table::Vantrel_Folders);
        for (const auto& [relative, fits] :
             {std::pair(u"Ärger\\x"_s, true), std::pair(u"äRGER\\X"_s, false)}) {
            rows.addNew();
            rows.set(Field::Root, 1);
            rows.set(Field::Relative, relative);
            QCOMPARE(rows.update().ok, fits);
        }
        QCOMPARE(rows.error().kind, ErrorKind::Failed);
        QVERIFY(m_world->database.trouble().ok); // the file itself is well
        QCOMPARE(rows.count(), 1);
    }

    void deletingManyRows_takesOnlyThose()
    {
        Recordset rows(m_world->database, Table::Addon_Details);
        Recordset checks(m_world->database, Table::Vantrel_Checks);
        for (int i = 0; i < 30; ++i) {
            const qint64 key =
                addDetail(rows, {0, i % 3, {}, u"C:\\"_s, QString::number(i), {}, {}});
            QVERIFY(
                modDatabase_Addon::setCheck(m_world->database, key, {i, i, QByteArray(16, 'x')}));
        }
        rows.setIndex(Index::Addon_Details_Addon_Master_Key);
        const auto runs = rows.runsMatching({1});
        QVERIFY(runs.ok());
        QCOMPARE(runs->size(), 10); // every third row
        for (const RowRun& run : *runs) {
            QVERIFY(checks.seekRun(run));
            QVERIFY(!checks.moveNext());
            QVERIFY(checks.deleteRun(run));
        }
        QVERIFY(rows.deleteAllMatching({1}));
        QCOMPARE(rows.runsMatching({2})->size(), 10);
        QCOMPARE(rows.count(), 20);
        QCOMPARE(checks.count(), 20);
        QCOMPARE(rows.countMatching({1}), 0);
        QCOMPARE(rows.countMatching({2}), 10);
    }

    void collation_agreesWithCompareNoCase()
    {
        // K and the Kelvin sign, long s, Greek, Cyrillic, a letter beyond the first plane.
        QStringList letters{u"\U0001F600"_s};
        for (const QChar letter : u"aAbBkK\u212A\u017FsSäÄßωΩжЖ.\\_"_s)
            letters.push_back(letter);
        QRandomGenerator random(42);
        const auto sign = [](int order) { return order < 0 ? -1 : int(order > 0); };
        for (int i = 0; i < 20000; ++i) {
            const QString common = randomText(random, letters);
            const QString a = common + randomText(random, letters);
            const QString b = (i % 2 ? common : foldCase(common)) + randomText(random, letters);
            const int expected = sign(compareNoCase(a, b));
            QVERIFY2(sign(collation::compare(a.toUtf8(), b.toUtf8())) == expected,
                     qUtf8Printable(a + u" | "_s + b));
            if (expected == 0)
                QCOMPARE(collation::hash(a.toUtf8()), collation::hash(b.toUtf8()));
        }
    }

    void collation_hashIsFixed()
    {
        // Stands in every database: a change would lose places. Long texts take another way.
        QCOMPARE(collation::hash("C:\\FSX\\"), collation::hash("c:\\fsx\\"));
        QCOMPARE(collation::hash(""), 0x38d394c2u);
        const QByteArray longText(2000, 'X');
        QCOMPARE(collation::hash(longText), collation::hash(longText.toLower()));
        QVERIFY(collation::hash("a") != collation::hash("b"));
    }
};

VT_TEST_CLASS(TestRecordset)
#include "test_recordset.moc"
