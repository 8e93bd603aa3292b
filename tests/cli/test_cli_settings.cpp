#include "CliFixture.h"
#include "support/TestMain.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using vt::test::CliFixture;
using vt::test::Ran;

class TestCliSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reading_createsNothing();
    void set_isReadBackAndSpelledAsTheTableHasIt();
    void set_ofAWindowsLayoutIsListed();
    void set_refusals_data();
    void set_refusals();
    void set_waitsForNobodyWhenTheFolderIsHeld();
    void set_inAFolderWithoutItsDatabaseIsRefused();
};

void TestCliSettings::reading_createsNothing()
{
    const CliFixture cli;
    const Ran got = cli.run({u"settings"_s, u"get"_s, u"display"_s, u"font"_s});
    QCOMPARE(got.status, 0);
    QCOMPARE(got.out, QByteArray("Tahoma\n"));
    QCOMPARE(got.err, QByteArray());
    const Ran listed = cli.run({u"settings"_s, u"list"_s, u"--json"_s});
    const QJsonArray all = QJsonDocument::fromJson(listed.out).array();
    QVERIFY(all.size() > 90);
    const QJsonObject first = all.first().toObject();
    QCOMPARE(first.value(u"section"_s).toString(), u"Addon Installation"_s);
    QCOMPARE(first.value(u"name"_s).toString(), u"Delete Source Files After Installation"_s);
    QCOMPARE(first.value(u"value"_s).toString(), u"False"_s);
    QVERIFY(!cli.exists(u"home"_s));
}

void TestCliSettings::set_isReadBackAndSpelledAsTheTableHasIt()
{
    const CliFixture cli;
    const Ran set = cli.run(
        {u"--json"_s, u"settings"_s, u"set"_s, u"database"_s, u"auto optimize"_s, u"FALSE"_s});
    QCOMPARE(set.status, 0);
    QCOMPARE(set.object().value(u"value"_s).toString(), u"False"_s);
    QCOMPARE(set.object().value(u"name"_s).toString(), u"Auto Optimize"_s);
    QVERIFY(cli.read(u"home/Settings/Vantrel.reg"_s).contains("\"Auto Optimize\"=\"False\""));
    QCOMPARE(cli.run({u"settings"_s, u"get"_s, u"Database"_s, u"Auto Optimize"_s}).out,
             QByteArray("False\n"));
}

void TestCliSettings::set_ofAWindowsLayoutIsListed()
{
    const CliFixture cli;
    const QByteArray line = "Work With Zip / Zip - Sort By = 2\n";
    QVERIFY(!cli.run({u"settings"_s, u"list"_s}).out.contains(line));
    QCOMPARE(
        cli.run({u"settings"_s, u"set"_s, u"Work With Zip"_s, u"zip - sort by"_s, u"2"_s}).status,
        0);
    QCOMPARE(cli.run({u"settings"_s, u"list"_s}).out.count(line), 1);
}

void TestCliSettings::set_refusals_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("section")
        << QStringList{u"Databases"_s, u"History"_s, u"1"_s}
        << QByteArray(
               "There is no section 'Databases' in the settings; 'settings list' shows them.\n");
    QTest::newRow("name") << QStringList{u"Database"_s, u"Window State"_s, u"1"_s}
                          << QByteArray(
                                 "There is no setting 'Window State' in the section 'Database'; "
                                 "'settings list' shows them.\n");
    QTest::newRow("boolean")
        << QStringList{u"Database"_s, u"Auto Optimize"_s, u"yes"_s}
        << QByteArray("'yes' is no value for 'Auto Optimize': it takes True or False.\n");
    QTest::newRow("number") << QStringList{u"Database"_s, u"History"_s, u"many"_s}
                            << QByteArray(
                                   "'many' is no value for 'History': it takes a whole number "
                                   "from 0 to 32767.\n");
    QTest::newRow("out of range") << QStringList{u"Database"_s, u"Optimization Factor"_s, u"7"_s}
                                  << QByteArray("'7' is no value for 'Optimization Factor': it "
                                                "takes a whole number from 0 to 3.\n");
}

void TestCliSettings::set_refusals()
{
    QFETCH(QStringList, words);
    const CliFixture cli;
    const Ran ran = cli.run(QStringList{u"settings"_s, u"set"_s} + words);
    QCOMPARE(ran.status, 1);
    QTEST(ran.err, "said");
    QVERIFY(!cli.exists(u"home"_s));
}

void TestCliSettings::set_waitsForNobodyWhenTheFolderIsHeld()
{
    const CliFixture cli;
    const QStringList set{u"settings"_s, u"set"_s, u"Startup"_s, u"Open With"_s, u"3"_s};
    QCOMPARE(cli.run(set).status, 0);
    // The lock is the system's own: held by another program on the same file.
    QProcess holder;
    const QStringList locks =
        QDir(cli.dir.filePath(u"home"_s)).entryList({u"*lock*"_s}, QDir::Files | QDir::Hidden);
    QCOMPARE(locks.size(), 1);
    holder.start(u"flock"_s,
                 {u"-n"_s,
                  cli.dir.filePath(u"home/"_s + locks.first()),
                  u"sh"_s,
                  u"-c"_s,
                  u"echo held; read end"_s});
    QVERIFY(holder.waitForReadyRead());
    const Ran refused = cli.run(set);
    QCOMPARE(refused.status, 3);
    QVERIFY2(refused.err.contains(cli.windows(u"home"_s).toUtf8()) && refused.err.count('\n') == 1,
             refused.err.constData());
    QCOMPARE(cli.run({u"settings"_s, u"get"_s, u"Startup"_s, u"Open With"_s}).status, 0);
    holder.write("\n");
    QVERIFY(holder.waitForFinished());
    QCOMPARE(cli.run(set).status, 0);
}

void TestCliSettings::set_inAFolderWithoutItsDatabaseIsRefused()
{
    const CliFixture cli;
    cli.write(u"home/Originals/terrain.cfg"_s);
    const Ran ran = cli.run({u"settings"_s, u"set"_s, u"Startup"_s, u"Open With"_s, u"3"_s});
    QCOMPARE(ran.status, 3);
    QCOMPARE(ran.err,
             "The addon database, '" + cli.windows(u"home"_s).toUtf8() +
                 "\\Vantrel.mdb', could not be loaded. The file itself is missing or the database "
                 "is corrupt.\n");
    QVERIFY(!cli.exists(u"home/Vantrel.mdb"_s));
}

VT_TEST_CLASS(TestCliSettings)

#include "test_cli_settings.moc"
