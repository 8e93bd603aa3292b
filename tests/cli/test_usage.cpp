#include "CliFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using vt::test::CliFixture;
using vt::test::Ran;

class TestUsage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wrongUsage_exits2WithOneSentence_data();
    void wrongUsage_exits2WithOneSentence();
    void wrongUsage_isAJsonDocumentToo();
    void help_andVersionGoToStandardOutput_data();
    void help_andVersionGoToStandardOutput();
    void globalOptions_mayStandOnEitherSide();
    void prefix_thatIsNoneIsRefused();
    void words_inBracketsStayWhole();
};

void TestUsage::wrongUsage_exits2WithOneSentence_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("nothing") << QStringList() << QByteArray();
    QTest::newRow("unknown command")
        << QStringList{u"frobnicate"_s} << QByteArray("There is no command 'frobnicate'; see");
    QTest::newRow("unknown option")
        << QStringList{u"doctor"_s, u"--frob"_s} << QByteArray("--frob");
    QTest::newRow("missing argument")
        << QStringList{u"settings"_s, u"get"_s, u"Database"_s} << QByteArray("NAME");
    QTest::newRow("too many arguments")
        << QStringList{u"doctor"_s, u"more"_s} << QByteArray("more");
    QTest::newRow("half a command") << QStringList{u"settings"_s} << QByteArray();
    QTest::newRow("unknown second word")
        << QStringList{u"settings"_s, u"frob"_s} << QByteArray("There is no command 'frob'");
    QTest::newRow("value not offered")
        << QStringList{u"--answer"_s, u"perhaps"_s, u"doctor"_s} << QByteArray("perhaps");
    QTest::newRow("option without value")
        << QStringList{u"doctor"_s, u"--home"_s} << QByteArray("--home");
}

void TestUsage::wrongUsage_exits2WithOneSentence()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, said);
    const CliFixture cli;
    const Ran ran = cli.run(arguments);
    QCOMPARE(ran.status, 2);
    QCOMPARE(ran.out, QByteArray());
    QVERIFY2(ran.err.endsWith("; see 'vantrelctl --help'.\n") && ran.err.count('\n') == 1,
             ran.err.constData());
    QVERIFY2(ran.err.contains(said), ran.err.constData());
    QVERIFY(!cli.exists(u"home"_s));
}

void TestUsage::wrongUsage_isAJsonDocumentToo()
{
    const CliFixture cli;
    const Ran ran = cli.run({u"doctor"_s, u"--frob"_s, u"--json"_s});
    QCOMPARE(ran.status, 2);
    const QJsonObject error = ran.object().value(u"error"_s).toObject();
    QCOMPARE(error.value(u"kind"_s).toString(), u"usage"_s);
    QCOMPARE(error.value(u"text"_s).toString().toUtf8() + '\n', ran.err);
}

void TestUsage::help_andVersionGoToStandardOutput_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("help") << QStringList{u"--help"_s} << QByteArray("doctor");
    QTest::newRow("help of a command")
        << QStringList{u"doctor"_s, u"--help"_s} << QByteArray("interrupted work");
    QTest::newRow("help of a group")
        << QStringList{u"settings"_s, u"--help"_s} << QByteArray("stores a value");
    QTest::newRow("help of a second word")
        << QStringList{u"settings"_s, u"set"_s, u"--help"_s} << QByteArray("SECTION");
    QTest::newRow("version") << QStringList{u"--version"_s} << QByteArray("vantrelctl 0.");
    QTest::newRow("version of a command")
        << QStringList{u"doctor"_s, u"--version"_s} << QByteArray("vantrelctl 0.");
}

void TestUsage::help_andVersionGoToStandardOutput()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, said);
    const CliFixture cli;
    const Ran ran = cli.run(arguments);
    QCOMPARE(ran.status, 0);
    QVERIFY2(ran.out.contains(said), ran.out.constData());
    QCOMPARE(ran.err, QByteArray());
    QVERIFY(!cli.exists(u"home"_s));
}

void TestUsage::globalOptions_mayStandOnEitherSide()
{
    const CliFixture cli;
    const QStringList get{u"settings"_s, u"get"_s, u"Database"_s, u"Optimization Factor"_s};
    const QByteArray before = cli.run(QStringList{u"--json"_s, u"--home"_s, u"a"_s} + get).out;
    const QByteArray after = cli.run(get + QStringList{u"--home=a"_s, u"--json"_s}).out;
    QVERIFY(before.contains("\"value\":\"1\""));
    QCOMPARE(after, before);
}

void TestUsage::prefix_thatIsNoneIsRefused()
{
    const CliFixture cli;
    const Ran ran = cli.run({u"--prefix"_s, u"nowhere"_s, u"settings"_s, u"list"_s});
    QCOMPARE(ran.status, 3);
    QVERIFY2(ran.err.contains("nowhere") && ran.err.count('\n') == 1, ran.err.constData());
    QCOMPARE(cli.run({u"--drive"_s, u"QQ=x"_s, u"settings"_s, u"list"_s}).status, 2);
    QCOMPARE(cli.run({u"--drive"_s, u"Q=gone"_s, u"settings"_s, u"list"_s}).status, 3);
}

void TestUsage::words_inBracketsStayWhole()
{
    const CliFixture cli;
    const Ran ran = cli.run({u"settings"_s, u"get"_s, u"[a,b]"_s, u"[c]"_s});
    QCOMPARE(ran.status, 1);
    QVERIFY2(ran.err.contains("'[a,b]'"), ran.err.constData());
}

VT_TEST_CLASS(TestUsage)

#include "test_usage.moc"
