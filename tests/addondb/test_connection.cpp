// Opening, closing and transactions of the one database file, whole, damaged and abandoned.
#include "addondb/DatabaseCare.h"
#include "addondb/DatabaseFixture.h"
#include "addondb/PageChecks.h"
#include "addondb/Recordset.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <csignal>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::DatabaseFixture;
using vt::test::Rows;

namespace {

/// Runs \a work in a process of its own that then dies without closing anything.
template <typename Work> void inDyingProcess(const Work& work)
{
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    int status = -1;
    QCOMPARE(waitpid(child, &status, 0), child);
    QCOMPARE(status, 0);
}

/// Acts as an ordinary user, whom permissions bind, for as long as it lives.
class OrdinaryUser
{
public:
    OrdinaryUser() : m_changed(geteuid() == 0 && seteuid(65534) == 0) {}

    ~OrdinaryUser()
    {
        if (m_changed && seteuid(0) != 0)
            std::abort();
    }

private:
    bool m_changed;
};

void setCounterTo(Connection& database, qint64 value)
{
    QVERIFY(modDatabase_Addon::setCounter(database, u"Test"_s, value));
}

qint64 counterOf(Connection& database)
{
    return modDatabase_Addon::counter(database, u"Test"_s);
}

} // namespace

class TestConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void create_makesOneFileAndRefusesToReplaceIt()
    {
        DatabaseFixture fixture;
        auto database = fixture.create();
        setCounterTo(*database, 7);
        QCOMPARE(database->structure(), 2);
        QVERIFY(database->close());
        QCOMPARE(fixture.namesOnDisk(), QStringList{u"Vantrel.mdb"_s});

        const OpenedDatabase second = Connection::create(fixture.gate, fixture.file);
        QVERIFY(!second.connection);
        QVERIFY(second.result.text.contains(fixture.file));
        QCOMPARE(counterOf(*fixture.open()), 7);
    }

    void open_tellsWhatIsWrong()
    {
        using Fault = DatabaseFault;
        const QByteArray jet = QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(4096, '\1');
        const QByteArray cut("SQLite format 3\0", 16);
        const Rows<QByteArray, Fault, QString> rows = {
            {"missing", {}, Fault::Missing, u"does not exist"_s},
            {"empty", "", Fault::Damaged, u"empty"_s},
            {"short", cut, Fault::Damaged, u"does not begin"_s},
            {"garbage", QByteArray(50'000, '\x5a'), Fault::Damaged, u"does not begin"_s},
            {"other program's", jet, Fault::Foreign, u"another database program"_s},
        };
        for (const auto& [content, fault, cause] : rows) {
            DatabaseFixture fixture;
            if (!content.isNull())
                fixture.put(content);
            const QStringList before = fixture.namesOnDisk();
            for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
                const OpenedDatabase opened = Connection::open(fixture.files, fixture.file, mode);
                QVERIFY(!opened.connection);
                QCOMPARE(int(opened.fault), int(fault));
                QVERIFY(opened.error.number != 0);
                QCOMPARE(opened.result.kind, ErrorKind::Surroundings);
                QVERIFY2(opened.result.text.contains(cause), qUtf8Printable(opened.result.text));
                QVERIFY(opened.result.text.contains(fixture.file));
            }
            QCOMPARE(fixture.namesOnDisk(), before);
            QVERIFY(content.isNull() || fixture.bytes() == content);
        }
    }

    void open_foreignDatabaseIsLeftAsItIs()
    {
        DatabaseFixture fixture;
        sqlite3* other = nullptr;
        QCOMPARE(sqlite3_open(fixture.host().toUtf8().constData(), &other), SQLITE_OK);
        QCOMPARE(sqlite3_exec(other, "CREATE TABLE t(a)", nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(other);
        const QByteArray before = fixture.bytes();

        const OpenedDatabase opened =
            Connection::open(fixture.files, fixture.file, OpenMode::ReadWrite);
        QCOMPARE(int(opened.fault), int(DatabaseFault::Foreign));
        QCOMPARE(fixture.bytes(), before);
    }

    void open_newerStructureIsRefused()
    {
        DatabaseFixture fixture;
        (void)fixture.create()->close();
        sqlite3* other = nullptr;
        QCOMPARE(sqlite3_open_v2(fixture.host().toUtf8().constData(),
                                 &other,
                                 SQLITE_OPEN_READWRITE,
                                 pagechecks::fileLayer()),
                 SQLITE_OK);
        sqlite3_exec(other, "PRAGMA user_version=99", nullptr, nullptr, nullptr);
        sqlite3_close(other);

        const OpenedDatabase opened =
            Connection::open(fixture.files, fixture.file, OpenMode::ReadWrite);
        QCOMPARE(int(opened.fault), int(DatabaseFault::Newer));
        QVERIFY(opened.result.text.contains(u"later version"_s));
    }

    void check_findsDamage()
    {
        DatabaseFixture fixture;
        {
            auto database = fixture.create();
            QList<DetailRecord> details;
            for (int i = 0; i < 3000; ++i)
                details.push_back(
                    DatabaseFixture::file_(u"C:\\FSX\\Effects\\"_s, QString::number(i) + u".fx"_s));
            fixture.addAddon(*database, u"Many"_s, details);
        }
        QVERIFY(databaseHealth(fixture.files, fixture.file, true).result);
        const QByteArray whole = fixture.bytes();
        QByteArray spoiled = whole;
        const qsizetype page = whole.size() / 16384 - 4; // a page of rows or of an index
        spoiled.replace(page * 16384, 16384, QByteArray(16384, '\x3c'));
        for (const QByteArray& bytes : {whole.first(whole.size() * 2 / 3), spoiled}) {
            fixture.put(bytes);
            const DatabaseHealth health = databaseHealth(fixture.files, fixture.file);
            QCOMPARE(int(health.fault), int(DatabaseFault::Damaged));
            QCOMPARE(health.error.number, SQLITE_CORRUPT);
            QVERIFY(!health.error.text.isEmpty());
            QCOMPARE(health.result.kind, ErrorKind::Surroundings);
            QVERIFY2(health.result.text.contains(u"damaged"_s), qUtf8Printable(health.result.text));
            QCOMPARE(health.bytes, bytes.size());
        }
    }

    void reading_createsNothing()
    {
        DatabaseFixture fixture;
        {
            auto database = fixture.create();
            setCounterTo(*database, 3);
        }
        const QByteArray before = fixture.bytes();
        auto reader = fixture.open(OpenMode::ReadOnly);
        QCOMPARE(counterOf(*reader), 3);
        QCOMPARE(fixture.namesOnDisk(), QStringList{u"Vantrel.mdb"_s});
        QVERIFY(!modDatabase_Addon::setCounter(*reader, u"Test"_s, 4));
        reader.reset();
        QCOMPARE(fixture.namesOnDisk(), QStringList{u"Vantrel.mdb"_s});
        QCOMPARE(fixture.bytes(), before);
    }

    void reading_seesCommitsOfARunningWriter()
    {
        DatabaseFixture fixture;
        auto writer = fixture.create();
        setCounterTo(*writer, 1);
        auto reader = fixture.open(OpenMode::ReadOnly);
        QCOMPARE(counterOf(*reader), 1);
        setCounterTo(*writer, 2);
        QCOMPARE(counterOf(*reader), 2);
        // A writer that ends while somebody reads takes nothing away from him.
        QVERIFY(writer->close());
        QCOMPARE(counterOf(*reader), 2);
        reader.reset();
        QCOMPARE(counterOf(*fixture.open()), 2);
        QCOMPARE(fixture.namesOnDisk(), QStringList{u"Vantrel.mdb"_s});
    }

    void reading_seesWhatADeadProcessCommitted()
    {
        const Rows<QString> rows = {
            {"log and its index", {}},
            {"log alone", u"Vantrel.mdb-shm"_s},
        };
        for (const auto& [lost] : rows) {
            DatabaseFixture fixture;
            (void)fixture.create()->close();
            inDyingProcess([&] {
                auto database = fixture.open();
                (void)modDatabase_Addon::setCounter(*database, u"Test"_s, 5);
                (void)database->begin();
                (void)modDatabase_Addon::setCounter(*database, u"Test"_s, 6);
                database.release(); // dies in the middle of a transaction
            });
            QVERIFY(QFile::exists(fixture.host(u"Vantrel.mdb-wal"_s)));
            if (!lost.isEmpty())
                QVERIFY(QFile::remove(fixture.host(lost)));
            const QStringList names = fixture.namesOnDisk();
            const QByteArray bytes = fixture.bytes();
            const QByteArray log = fixture.bytes(u"Vantrel.mdb-wal"_s);

            auto reader = fixture.open(OpenMode::ReadOnly);
            QCOMPARE(counterOf(*reader), 5);
            reader.reset();
            QCOMPARE(fixture.namesOnDisk(), names);
            QCOMPARE(fixture.bytes(), bytes);
            QCOMPARE(fixture.bytes(u"Vantrel.mdb-wal"_s), log);
        }
    }

    void writing_goesOnAfterADeadProcess()
    {
        DatabaseFixture fixture;
        (void)fixture.create()->close();
        inDyingProcess([&] {
            auto database = fixture.open();
            (void)modDatabase_Addon::setCounter(*database, u"Test"_s, 5);
            database.release();
        });
        auto database = fixture.open();
        QCOMPARE(counterOf(*database), 5);
        setCounterTo(*database, 6);
        QVERIFY(database->close());
        QCOMPARE(fixture.namesOnDisk(), QStringList{u"Vantrel.mdb"_s});
        QCOMPARE(counterOf(*fixture.open(OpenMode::ReadOnly)), 6);
    }

    void readOnlyFolder_isReadAndNotWritten()
    {
        DatabaseFixture fixture;
        {
            auto database = fixture.create();
            setCounterTo(*database, 3);
        }
        const QByteArray host = fixture.host({}).toUtf8();
        QCOMPARE(chmod(fixture.dir.path().toUtf8().constData(), 0755), 0);
        QCOMPARE(chmod(host.constData(), 0555), 0);
        QCOMPARE(chmod((host + "Vantrel.mdb").constData(), 0444), 0);
        {
            const OrdinaryUser user;
            QCOMPARE(counterOf(*fixture.open(OpenMode::ReadOnly)), 3);
            const OpenedDatabase opened =
                Connection::open(fixture.files, fixture.file, OpenMode::ReadWrite);
            QCOMPARE(int(opened.fault), int(DatabaseFault::Unreadable));
            QVERIFY2(opened.result.text.contains(fixture.file), qUtf8Printable(opened.result.text));
            const OpenedDatabase created =
                Connection::create(fixture.gate, fixture.folder + u"Other.mdb"_s);
            QCOMPARE(int(created.fault), int(DatabaseFault::Unreadable));
        }
        QCOMPARE(chmod(host.constData(), 0755), 0);
        QCOMPARE(fixture.namesOnDisk(), QStringList{u"Vantrel.mdb"_s});
    }

    void locked_isTold()
    {
        DatabaseFixture fixture;
        (void)fixture.create()->close();
        sqlite3* other = nullptr;
        QCOMPARE(sqlite3_open(fixture.host().toUtf8().constData(), &other), SQLITE_OK);
        QCOMPARE(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);

        const OpenedDatabase opened =
            Connection::open(fixture.files, fixture.file, OpenMode::ReadWrite);
        QCOMPARE(int(opened.fault), int(DatabaseFault::Busy));
        QVERIFY(opened.result.text.contains(u"in use"_s));
        sqlite3_close(other);
        setCounterTo(*fixture.open(), 1);
    }

    void transactions_commitAndRollBack()
    {
        DatabaseFixture fixture;
        auto database = fixture.create();
        {
            Transaction kept(*database);
            QVERIFY(kept.begin());
            setCounterTo(*database, 1);
            QVERIFY(kept.commit());
            Transaction dropped(*database);
            QVERIFY(dropped.begin());
            setCounterTo(*database, 2);
        }
        QVERIFY(!database->inTransaction());
        QCOMPARE(counterOf(*database), 1);
        for (const Result& end : {Result::failure(u"no"_s), Result::success()}) {
            const Result done = database->together([&] {
                setCounterTo(*database, 3); // takes part in the one that is open
                return end;
            });
            QCOMPARE(done.text, end.text);
            QCOMPARE(counterOf(*database), end.ok ? 3 : 1);
        }
    }

    void damagePrompt_saysErrorNumberAndText()
    {
        const Prompt prompt = databaseDamagePrompt(u"Vantrel for FS X"_s,
                                                   {11, u"database disk image is malformed"_s});
        QCOMPARE(prompt.caption, u"Database Error"_s);
        QVERIFY(prompt.text.startsWith(
            u"Vantrel for FS X's database appears to be damaged. This can happen when "_s));
        QVERIFY(prompt.text.contains(
            u"fix the problems?\nError #11: database disk image is malformed\n\nSelect Yes to "_s));
        QCOMPARE(prompt.buttons, (QList<Button>{Button::Yes, Button::No, Button::Cancel}));
    }
};

VT_TEST_CLASS(TestConnection)
#include "test_connection.moc"
