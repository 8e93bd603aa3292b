#include "CliFixture.h"
#include "demo/DemoSimulator.h"
#include "support/TestMain.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::CliFixture;
using vt::test::Ran;

class TestCliDoctor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutSimulator_preparesTheFolderAndSaysWhatIsMissing();
    void withSimulator_tellsEverything();
    void ofAPrefix_readsRegistryAndShellFolders();
    void wrongSimulator_isNamedWithTheCause();
    void damagedDatabase_isTold();
    void oldErrorLog_goesOnlyWhenSomethingWrites();
    void sdkFolder_isWrittenToTheRegistryWhenAnswered();
    void homeThatCannotBeMade_isNamed();
};

void TestCliDoctor::withoutSimulator_preparesTheFolderAndSaysWhatIsMissing()
{
    const CliFixture cli;
    const Ran ran = cli.run({u"doctor"_s, u"--json"_s});
    QCOMPARE(ran.status, 3);
    QCOMPARE(ran.err,
             QByteArray("Flight Simulator X was not found: no folder is known from the "
                        "registry; name its folder with --sim or in 'SimPath.txt'.\n"));
    const QJsonObject report = ran.object();
    QCOMPARE(report.value(u"home"_s).toString(), cli.windows(u"home"_s) + u'\\');
    const QJsonObject simulator = report.value(u"simulator"_s).toObject();
    QCOMPARE(simulator.value(u"valid"_s).toBool(true), false);
    QCOMPARE(simulator.value(u"folder"_s).toString(), QString());
    QVERIFY(report.value(u"database"_s).toObject().value(u"ok"_s).toBool());
    QCOMPARE(report.value(u"error"_s).toObject().value(u"kind"_s).toString(), u"surroundings"_s);
    QVERIFY(cli.exists(u"home/Temp/RA"_s) && cli.exists(u"home/Vantrel.mdb"_s));
}

void TestCliDoctor::withSimulator_tellsEverything()
{
    const CliFixture cli;
    cli.makeSimulator();
    cli.write(u"sim/terrain.cfg"_s, "[Texture]");
    QDir(cli.dir.path()).mkpath(u"sim/simobjects"_s);
    QDir(cli.dir.path()).mkpath(u"sim/SimObjects"_s);
    const Ran ran = cli.run({u"doctor"_s, u"--sim"_s, u"sim"_s, u"--json"_s});
    QCOMPARE(ran.err, QByteArray());
    QCOMPARE(ran.status, 0);
    const QJsonObject report = ran.object();
    QCOMPARE(report.value(u"simulator"_s).toObject(),
             (QJsonObject{{u"folder"_s, cli.windows(u"sim"_s) + u'\\'},
                          {u"generation"_s, 5},
                          {u"valid"_s, true},
                          {u"code"_s, 0},
                          {u"foundBy"_s, u"option"_s}}));
    const QJsonObject database = report.value(u"database"_s).toObject();
    QCOMPARE(database.value(u"path"_s).toString(), cli.windows(u"home"_s) + u"\\Vantrel.mdb"_s);
    QCOMPARE(database.value(u"structure"_s).toInt(), 2);
    QVERIFY(database.value(u"bytes"_s).toInt() > 0);
    QCOMPARE(report.value(u"interrupted"_s).toArray(), QJsonArray());
    QVERIFY(report.value(u"tools"_s).toObject().contains(u"launcher"_s));
    const QJsonArray twins = report.value(u"twins"_s).toArray();
    QCOMPARE(twins.size(), 1);
    QCOMPARE(twins.first().toObject().value(u"names"_s).toArray().size(), 2);
    QCOMPARE(cli.read(u"home/Originals/terrain.cfg"_s), QByteArray("[Texture]"));

    const Ran people = cli.run({u"doctor"_s, u"--sim"_s, u"sim"_s});
    QCOMPARE(people.status, 0);
    QVERIFY(people.out.contains("Simulator:      " + cli.windows(u"sim"_s).toUtf8() +
                                "\\ (valid, by option)\n"));
}

void TestCliDoctor::ofAPrefix_readsRegistryAndShellFolders()
{
    const CliFixture cli;
    const ResultOf<DemoSimulator> demo = writeDemoSimulator(cli.dir.filePath(u"prefix"_s));
    QVERIFY2(demo, qPrintable(demo.text));
    const Ran ran = cli.run({u"doctor"_s, u"--prefix"_s, u"prefix"_s, u"--json"_s});
    QCOMPARE(ran.err, QByteArray());
    QCOMPARE(ran.status, 0);
    const QJsonObject simulator = ran.object().value(u"simulator"_s).toObject();
    QCOMPARE(simulator.value(u"folder"_s).toString(), demo->simulatorFolder);
    QCOMPARE(simulator.value(u"foundBy"_s).toString(), u"registry"_s);
    QFile library(demo->allUsersHost + u"/Scenery.cfg"_s);
    QVERIFY(library.open(QIODevice::ReadOnly));
    QCOMPARE(cli.read(u"home/Originals/Scenery.cfg"_s), library.readAll());
    QVERIFY(!cli.exists(u"home/Settings/Vantrel.reg"_s));
}

void TestCliDoctor::wrongSimulator_isNamedWithTheCause()
{
    const CliFixture cli;
    cli.makeSimulator();
    QFile program(cli.dir.filePath(u"sim/fsx.exe"_s));
    QVERIFY(program.remove());
    for (const auto& [folder, cause] : {std::pair{u"sim"_s, "'fsx.exe' is missing"},
                                        std::pair{u"gone"_s, "the folder does not exist"}}) {
        const Ran ran = cli.run({u"doctor"_s, u"--sim"_s, folder});
        QCOMPARE(ran.status, 3);
        QCOMPARE(ran.err,
                 "Flight Simulator X was not found: '" + cli.windows(folder).toUtf8() +
                     "\\' (named with --sim) is not valid because " + cause +
                     "; name the folder that holds 'fsx.exe'.\n");
    }
}

void TestCliDoctor::damagedDatabase_isTold()
{
    const CliFixture cli;
    cli.makeSimulator();
    cli.write(u"home/Vantrel.mdb"_s, QByteArray(8192, 'x'));
    const Ran ran = cli.run({u"doctor"_s, u"--sim"_s, u"sim"_s, u"--json"_s});
    QCOMPARE(ran.status, 3);
    QVERIFY(!ran.object().value(u"database"_s).toObject().value(u"ok"_s).toBool(true));
    QVERIFY2(ran.err.contains("Vantrel.mdb") && ran.err.count('\n') == 1, ran.err.constData());
    QCOMPARE(cli.read(u"home/Vantrel.mdb"_s), QByteArray(8192, 'x'));
}

void TestCliDoctor::oldErrorLog_goesOnlyWhenSomethingWrites()
{
    const CliFixture cli;
    cli.makeSimulator();
    cli.write(u"home/ERROR.LOG"_s, "old");
    QCOMPARE(cli.run({u"settings"_s, u"list"_s}).status, 0);
    QVERIFY(cli.exists(u"home/ERROR.LOG"_s));
    QCOMPARE(cli.run({u"doctor"_s, u"--sim"_s, u"sim"_s}).status, 0);
    QVERIFY(!cli.exists(u"home/ERROR.LOG"_s));
}

void TestCliDoctor::sdkFolder_isWrittenToTheRegistryWhenAnswered()
{
    const CliFixture cli;
    cli.makeSimulator();
    QVERIFY(cli.run({u"settings"_s, u"set"_s, u"Startup"_s, u"Open With"_s, u"1"_s}).status == 0);
    QFile own(cli.dir.filePath(u"home/Settings/Vantrel.reg"_s));
    QVERIFY(own.open(QIODevice::Append));
    own.write("\r\n[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Microsoft Games\\Flight Simulator X "
              "SDK\\10.0]\r\n\"SetupPath\"=\"" +
              cli.windows(u"sim"_s).replace(u'\\', u"\\\\"_s).toUtf8() + " SDK\"\r\n");
    own.close();
    const auto foundBy = [&cli](const QString& answer) {
        const Ran ran = cli.run({u"doctor"_s, u"--json"_s, u"--answer"_s, answer});
        return ran.object().value(u"simulator"_s).toObject().value(u"foundBy"_s).toString();
    };
    QCOMPARE(foundBy(u"no"_s), u"registry (SDK)"_s);
    QCOMPARE(foundBy(u"yes"_s), u"registry (SDK)"_s);
    QCOMPARE(foundBy(u"no"_s), u"registry"_s);
}

void TestCliDoctor::homeThatCannotBeMade_isNamed()
{
    const CliFixture cli;
    cli.write(u"file"_s);
    const Ran ran = cli.run({u"doctor"_s, u"--home"_s, u"file/home"_s});
    QCOMPARE(ran.status, 3);
    QVERIFY2(ran.err.contains("\\file\\home") && ran.err.count('\n') == 1, ran.err.constData());
}

VT_TEST_CLASS(TestCliDoctor)

#include "test_cli_doctor.moc"
