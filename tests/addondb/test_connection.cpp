// Opening, closing and transactions of the one database file, whole, damaged and abandoned.
#include "addondb/DatabaseCare.h"
#include "addondb/DatabaseFixture.h"
#include "addondb/PageChecks.h"
#include "addondb/Recordset.h"
#include "support/TestMain.h"

#include <csignal>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::DatabaseFixture;

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
    void create_makesOneFileAndRefusesToReplaceIt();
    void open_tellsWhatIsWrong_data();
    void open_tellsWhatIsWrong();
    void open_foreignDatabaseIsLeftAsItIs();
    void open_newerStructureIsRefused();
    void open_cutShortIsDamaged();
    void check_findsASpoiledPage();
    void reading_createsNothing();
    void reading_seesCommitsOfARunningWriter();
    void reading_seesWhatADeadProcessCommitted_data();
    void reading_seesWhatADeadProcessCommitted();
    void writing_goesOnAfterADeadProcess();
    void readOnlyFolder_isReadAndNotWritten();
    void locked_isTold();
    void transactions_commitAndRollBack();
    void together_isOneTransaction();
    void damagePrompt_saysErrorNumberAndText();
};

void TestConnection::create_makesOneFileAndRefusesToReplaceIt()
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

void TestConnection::open_tellsWhatIsWrong_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("fault");
    QTest::addColumn<QString>("cause");

    const QByteArray missing;
    QTest::newRow("missing") << missing << int(DatabaseFault::Missing) << u"does not exist"_s;
    QTest::newRow("empty") << QByteArray("") << int(DatabaseFault::Damaged) << u"empty"_s;
    QTest::newRow("short") << QByteArray("SQLite format 3\0", 16) << int(DatabaseFault::Damaged)
                           << u"does not begin"_s;
    QTest::newRow("garbage") << QByteArray(50000, '\x5a') << int(DatabaseFault::Damaged)
                             << u"does not begin"_s;
    QTest::newRow("other program's")
        << QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(4096, '\1')
        << int(DatabaseFault::Foreign) << u"another database program"_s;
}

void TestConnection::open_tellsWhatIsWrong()
{
    QFETCH(const QByteArray, content);
    QFETCH(const int, fault);
    QFETCH(const QString, cause);
    DatabaseFixture fixture;
    if (!content.isNull())
        fixture.write(content);
    const QStringList before = fixture.namesOnDisk();

    for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
        const OpenedDatabase opened = Connection::open(fixture.files, fixture.file, mode);
        QVERIFY(!opened.connection);
        QCOMPARE(int(opened.fault), fault);
        QVERIFY(opened.error.number != 0);
        QCOMPARE(opened.result.kind, ErrorKind::Surroundings);
        QVERIFY2(opened.result.text.contains(cause), qUtf8Printable(opened.result.text));
        QVERIFY(opened.result.text.contains(fixture.file));
    }
    QCOMPARE(fixture.namesOnDisk(), before);
    QCOMPARE(fixture.bytes(), content);
}

void TestConnection::open_foreignDatabaseIsLeftAsItIs()
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

void TestConnection::open_newerStructureIsRefused()
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

void TestConnection::open_cutShortIsDamaged()
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
    fixture.write(fixture.bytes().first(fixture.bytes().size() * 2 / 3));

    const DatabaseHealth health = databaseHealth(fixture.files, fixture.file);
    QCOMPARE(int(health.fault), int(DatabaseFault::Damaged));
    QCOMPARE(health.error.number, SQLITE_CORRUPT);
    QVERIFY(!health.error.text.isEmpty());
    QCOMPARE(health.result.kind, ErrorKind::Surroundings);
}

void TestConnection::check_findsASpoiledPage()
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
    QByteArray bytes = fixture.bytes();
    const qsizetype page = bytes.size() / 16384 - 4; // a page of rows or of an index
    bytes.replace(page * 16384, 16384, QByteArray(16384, '\x3c'));
    fixture.write(bytes);

    const DatabaseHealth health = databaseHealth(fixture.files, fixture.file);
    QCOMPARE(int(health.fault), int(DatabaseFault::Damaged));
    QVERIFY2(health.result.text.contains(u"damaged"_s), qUtf8Printable(health.result.text));
    QCOMPARE(health.bytes, bytes.size());
}

void TestConnection::reading_createsNothing()
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

void TestConnection::reading_seesCommitsOfARunningWriter()
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

void TestConnection::reading_seesWhatADeadProcessCommitted_data()
{
    QTest::addColumn<QString>("lost");
    QTest::newRow("log and its index") << QString();
    QTest::newRow("log alone") << u"Vantrel.mdb-shm"_s;
}

void TestConnection::reading_seesWhatADeadProcessCommitted()
{
    QFETCH(const QString, lost);
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

void TestConnection::writing_goesOnAfterADeadProcess()
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

void TestConnection::readOnlyFolder_isReadAndNotWritten()
{
    DatabaseFixture fixture;
    {
        auto database = fixture.create();
        setCounterTo(*database, 3);
    }
    const QByteArray host = fixture.disk.path().toUtf8();
    QCOMPARE(chmod(host.constData(), 0555), 0);
    QCOMPARE(chmod((host + "/Vantrel.mdb").constData(), 0444), 0);
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

void TestConnection::locked_isTold()
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

void TestConnection::transactions_commitAndRollBack()
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
}

void TestConnection::together_isOneTransaction()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const Result refused = database->together([&] {
        setCounterTo(*database, 1); // takes part in the one that is open
        return Result::failure(u"no"_s);
    });
    QCOMPARE(refused.text, u"no"_s);
    QCOMPARE(counterOf(*database), 0);
    QVERIFY(database->together([&] {
        setCounterTo(*database, 2);
        return Result::success();
    }));
    QCOMPARE(counterOf(*database), 2);
}

void TestConnection::damagePrompt_saysErrorNumberAndText()
{
    const Prompt prompt =
        databaseDamagePrompt(u"Vantrel for FS X"_s, {11, u"database disk image is malformed"_s});
    QCOMPARE(prompt.caption, u"Database Error"_s);
    QVERIFY(prompt.text.startsWith(
        u"Vantrel for FS X's database appears to be damaged. This can happen when "_s));
    QVERIFY(prompt.text.contains(
        u"fix the problems?\nError #11: database disk image is malformed\n\nSelect Yes to "_s));
    QCOMPARE(prompt.buttons, (QList<Button>{Button::Yes, Button::No, Button::Cancel}));
}

VT_TEST_CLASS(TestConnection)
#include "test_connection.moc"
