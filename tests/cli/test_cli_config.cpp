#include "CliFixture.h"
#include "demo/DemoSimulator.h"
#include "support/TestMain.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using vt::test::CliFixture;
using vt::test::Ran;

namespace {

/// A prefix with the demonstration simulator, its scenery library at hand.
struct SceneryWorld : CliFixture
{
    SceneryWorld()
    {
        const vt::ResultOf<vt::DemoSimulator> demo =
            vt::writeDemoSimulator(dir.filePath(u"prefix"_s));
        if (!demo)
            qFatal("%s", qPrintable(demo.text));
        const QDir top(dir.path());
        library = top.relativeFilePath(demo->allUsersHost + u"/Scenery.cfg"_s);
        configFolder = top.relativeFilePath(demo->userDataHost) + u'/';
        simulator = demo->simulatorHost;
    }

    [[nodiscard]] Ran json(const QStringList& arguments, const QString& answer = u"default"_s) const
    {
        return run(QStringList{u"--json"_s, u"--prefix"_s, u"prefix"_s, u"--answer"_s, answer} +
                   arguments);
    }

    [[nodiscard]] Ran scenery(const QStringList& arguments,
                              const QString& answer = u"default"_s) const
    {
        return json(QStringList{u"scenery"_s} + arguments, answer);
    }

    [[nodiscard]] Ran configs(const QStringList& arguments,
                              const QString& answer = u"default"_s) const
    {
        return json(QStringList{u"configs"_s} + arguments, answer);
    }

    [[nodiscard]] static QJsonObject lastArea(const Ran& ran)
    {
        return ran.object().value(u"areas"_s).toArray().last().toObject();
    }

    QString library;
    QString configFolder; ///< of fsx.cfg
    QString simulator;
};

} // namespace

class TestCliConfig : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ini_onOneFile();
    void ini_refusals_data();
    void ini_refusals();
    void ini_readsWhatItDoesNotEdit();
    void scenery_listReadsOnly();
    void scenery_addAndRemove_giveTheFileBack();
    void scenery_coveredFolder();
    void scenery_disableEnableRestore();
    void scenery_refusals_data();
    void scenery_refusals();
    void configs_wholeLife();
    void configs_refusals_data();
    void configs_refusals();
    void fly_andUseOnce();
};

void TestCliConfig::ini_onOneFile()
{
    const CliFixture cli;
    cli.write(u"a.cfg"_s, "; c\r\n[fltsim.0]\r\ntitle=Cub // x\r\n");
    QCOMPARE(cli.run({u"ini"_s, u"sections"_s, u"a.cfg"_s}).out, QByteArray("fltsim.0\n"));
    QCOMPARE(cli.run({u"ini"_s, u"get"_s, u"a.cfg"_s, u"FLTSIM.0"_s, u"Title"_s}).out,
             QByteArray("Cub\n"));
    const Ran set =
        cli.run({u"--json"_s, u"ini"_s, u"set"_s, u"a.cfg"_s, u"[New]"_s, u"key"_s, u"1"_s});
    QCOMPARE(set.status, 0);
    QCOMPARE(set.object(), (QJsonObject{{u"ok"_s, true}, {u"value"_s, u"1"_s}}));
    QCOMPARE(cli.read(u"a.cfg"_s),
             QByteArray("[New]\r\nkey=1\r\n; c\r\n[fltsim.0]\r\ntitle=Cub // x\r\n"));
    const QString windows = cli.windows(u"a.cfg"_s);
    QCOMPARE(cli.run({u"ini"_s, u"delete"_s, windows, u"new"_s, u"KEY"_s}).status, 0);
    QCOMPARE(cli.read(u"a.cfg"_s), QByteArray("[New]\r\n; c\r\n[fltsim.0]\r\ntitle=Cub // x\r\n"));
    QVERIFY(!cli.exists(u"home"_s));
}

void TestCliConfig::ini_refusals_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("cause");

    const QByteArray good = "[a]\r\nx=1\r\n";
    const QStringList set = {u"set"_s, u"a.cfg"_s, u"a"_s, u"x"_s, u"2"_s};
    QTest::newRow("bare LF") << QByteArray("[a]\nx=1\n") << set << 1 << QByteArray("LF alone");
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0", 4) << set << 1 << QByteArray("UTF-16");
    QTest::newRow("NUL") << QByteArray("[a]\0\r\n", 6) << set << 1 << QByteArray("NUL");
    QTest::newRow("empty file") << QByteArray() << set << 1 << QByteArray("no content");
    QTest::newRow("character") << good
                               << QStringList{u"set"_s, u"a.cfg"_s, u"a"_s, u"x"_s, u"\u4e2d"_s}
                               << 1 << QByteArray("\u4e2d");
    QTest::newRow("no such key") << good << QStringList{u"get"_s, u"a.cfg"_s, u"a"_s, u"y"_s} << 1
                                 << QByteArray("'y'");
    QTest::newRow("nothing to delete")
        << good << QStringList{u"delete"_s, u"a.cfg"_s, u"b"_s, u"x"_s} << 1 << QByteArray("'b'");
    for (const QString& section : {u"A]"_s, u"b;c"_s, u""_s})
        QTest::newRow("section") << good
                                 << QStringList{u"set"_s, u"a.cfg"_s, section, u"x"_s, u"2"_s} << 1
                                 << QByteArray("name of a section");
    for (const QString& key : {u"k=1"_s, u"k;1"_s, u"[k"_s, u" "_s})
        QTest::newRow("key") << good << QStringList{u"set"_s, u"a.cfg"_s, u"a"_s, key, u"2"_s} << 1
                             << QByteArray("name of an entry");
    QTest::newRow("folder") << good << QStringList{u"sections"_s, u"."_s} << 3
                            << QByteArray("is a folder");
    QTest::newRow("missing file") << good << QStringList{u"sections"_s, u"none.cfg"_s} << 3
                                  << QByteArray("none.cfg");
}

void TestCliConfig::ini_refusals()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, cause);
    const CliFixture cli;
    cli.write(u"a.cfg"_s, bytes);
    const Ran ran = cli.run(QStringList{u"ini"_s} + arguments);
    QCOMPARE(ran.status, status);
    QVERIFY2(ran.err.contains(cause), ran.err.constData());
    QCOMPARE(ran.err.count('\n'), 1);
    QCOMPARE(cli.read(u"a.cfg"_s), bytes);
    const Ran json = cli.run(QStringList{u"--json"_s, u"ini"_s} + arguments);
    QVERIFY(json.object().value(u"error"_s).toObject().value(u"text"_s).isString());
}

void TestCliConfig::ini_readsWhatItDoesNotEdit()
{
    const CliFixture cli;
    cli.write(u"a.cfg"_s, "[a]\nx=1 // c\n[b]\n");
    QCOMPARE(cli.run({u"ini"_s, u"get"_s, u"a.cfg"_s, u"a"_s, u"x"_s}).out, QByteArray("1\n"));
    QCOMPARE(cli.run({u"ini"_s, u"sections"_s, u"a.cfg"_s}).out, QByteArray("a\nb\n"));
}

void TestCliConfig::scenery_listReadsOnly()
{
    const SceneryWorld cli;
    const QByteArray before = cli.read(cli.library);
    const Ran listed = cli.scenery({u"list"_s});
    QCOMPARE(listed.status, 0);
    QCOMPARE(listed.object().value(u"file"_s).toString(),
             u"C:\\ProgramData\\Microsoft\\FSX\\Scenery.cfg"_s);
    const QJsonArray areas = listed.object().value(u"areas"_s).toArray();
    QVERIFY(areas.size() > 1);
    QCOMPARE(areas.first().toObject(),
             (QJsonObject{{u"area"_s, 1},
                          {u"layer"_s, 1},
                          {u"title"_s, u"World Base"_s},
                          {u"local"_s, u"Scenery\\World"_s},
                          {u"remote"_s, u""_s},
                          {u"active"_s, true},
                          {u"required"_s, true}}));
    QCOMPARE(cli.read(cli.library), before);
    QVERIFY(!cli.exists(u"home"_s));
}

void TestCliConfig::scenery_addAndRemove_giveTheFileBack()
{
    const SceneryWorld cli;
    const QByteArray before = cli.read(cli.library);
    QDir(cli.simulator).mkpath(u"Addon Scenery/New"_s);
    // Meant from the simulator's folder, and by a host path.
    const Ran one = cli.scenery({u"add"_s, u"addon scenery/New"_s, u"--title"_s, u"A / B"_s});
    QCOMPARE(one.status, 0);
    QCOMPARE(SceneryWorld::lastArea(one).value(u"title"_s).toString(), u"A / B"_s);
    QCOMPARE(SceneryWorld::lastArea(one).value(u"local"_s).toString(), u"addon scenery\\New"_s);
    const Ran two = cli.scenery({u"add"_s, cli.dir.filePath(u"Elsewhere"_s)});
    QCOMPARE(SceneryWorld::lastArea(two).value(u"title"_s).toString(), u"Elsewhere"_s);
    QCOMPARE(SceneryWorld::lastArea(two).value(u"local"_s).toString(), cli.windows(u"Elsewhere"_s));
    const int first = SceneryWorld::lastArea(one).value(u"area"_s).toInt();
    QCOMPARE(cli.scenery({u"remove"_s, QString::number(first)}).status, 0);
    QCOMPARE(cli.scenery({u"remove"_s, QString::number(first + 1)}).status, 0);
    QCOMPARE(cli.read(cli.library), before);
}

void TestCliConfig::scenery_coveredFolder()
{
    const SceneryWorld cli;
    const QByteArray before = cli.read(cli.library);
    const Ran declined = cli.scenery({u"add"_s, u"SCENERY/WORLD"_s, u"--title"_s, u"W"_s});
    QCOMPARE(declined.status, 4);
    QCOMPARE(cli.read(cli.library), before);
    QCOMPARE(cli.scenery({u"add"_s, u"Scenery/World"_s, u"--title"_s, u"W"_s}, u"yes"_s).status, 0);
    QVERIFY(cli.read(cli.library).startsWith(before));
}

void TestCliConfig::scenery_disableEnableRestore()
{
    const SceneryWorld cli;
    const QByteArray before = cli.read(cli.library);
    const Ran off = cli.scenery({u"disable"_s, u"1"_s});
    QCOMPARE(off.status, 0);
    const QJsonObject first = off.object().value(u"areas"_s).toArray().first().toObject();
    QCOMPARE(first.value(u"active"_s).toBool(true), false);
    QVERIFY(cli.read(cli.library).contains("Title=World Base\r\nActive=FALSE\r\nLayer=1\r\n"));
    QCOMPARE(cli.scenery({u"restore"_s}, u"no"_s).status, 4);
    QCOMPARE(cli.scenery({u"restore"_s}).status, 0);
    QCOMPARE(cli.read(cli.library), before);
    QCOMPARE(cli.scenery({u"enable"_s, u"1"_s}).status, 0);
    QCOMPARE(cli.read(cli.library), before);
}

void TestCliConfig::scenery_refusals_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("cause");

    QTest::newRow("no such area") << QStringList{u"remove"_s, u"99"_s} << 1 << QByteArray("99");
    QTest::newRow("no number") << QStringList{u"enable"_s, u"x"_s} << 2 << QByteArray("'x'");
    QTest::newRow("no backup") << QStringList{u"restore"_s} << 1
                               << QByteArray("could NOT be restored");
    QTest::newRow("title outside the page")
        << QStringList{u"add"_s, u"x"_s, u"--title"_s, u"\u4e2d"_s} << 1 << QByteArray("\u4e2d");
}

void TestCliConfig::scenery_refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, cause);
    const SceneryWorld cli;
    const QByteArray before = cli.read(cli.library);
    const Ran ran = cli.scenery(arguments);
    QCOMPARE(ran.status, status);
    QVERIFY2(ran.err.contains(cause), ran.err.constData());
    QVERIFY(ran.object().contains(u"error"_s));
    QCOMPARE(cli.read(cli.library), before);
}

void TestCliConfig::configs_wholeLife()
{
    const SceneryWorld cli;
    const QByteArray primary = cli.read(cli.configFolder + u"fsx.cfg"_s);
    const Ran listed = cli.configs({u"list"_s});
    QVERIFY(!cli.exists(u"home"_s));
    QCOMPARE(listed.status, 0);
    const QJsonObject first = QJsonDocument::fromJson(listed.out).array().first().toObject();
    QCOMPARE(first.value(u"name"_s).toString(), u"fsx.cfg"_s);
    QCOMPARE(first.value(u"primary"_s).toBool(), true);
    QCOMPARE(first.value(u"description"_s).toString(), QString());
    QCOMPARE(first.value(u"defaultFlight"_s).toString(), u"FLIGHTS\\OTHER\\Kestrel"_s);

    QCOMPARE(cli.configs({u"create"_s}).status, 0);
    const QString created = u"New FS X configuration file.cfg"_s;
    QCOMPARE(cli.read(cli.configFolder + created), primary);
    QCOMPARE(cli.configs({u"rename"_s, created.toUpper(), u"Low.cfg"_s}).status, 0);
    QCOMPARE(cli.configs({u"describe"_s, u"low"_s, u"Few trees; no cars"_s}).status, 0);
    const QByteArray low = cli.read(cli.configFolder + u"Low.cfg"_s);
    QCOMPARE(low, "[VT_FILE_DETAILS]\r\nDescription=Few trees; no cars\r\n" + primary);
    QCOMPARE(cli.configs({u"switch"_s, u"low.cfg"_s}).status, 4);
    QCOMPARE(cli.read(cli.configFolder + u"fsx.cfg"_s), primary);
    QCOMPARE(cli.configs({u"switch"_s, u"low.cfg"_s}, u"yes"_s).status, 0);
    QCOMPARE(cli.read(cli.configFolder + u"fsx.cfg"_s), low);
    QCOMPARE(cli.read(cli.configFolder + u"FSX.vtb"_s), primary);
    QCOMPARE(cli.configs({u"remove"_s, u"Low"_s}, u"no"_s).status, 4);
    QCOMPARE(cli.configs({u"remove"_s, u"Low"_s}).status, 0);
    QVERIFY(!cli.exists(cli.configFolder + u"Low.cfg"_s));
}

void TestCliConfig::configs_refusals_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("cause");

    QTest::newRow("remove the primary")
        << QStringList{u"remove"_s, u"fsx"_s} << QByteArray("is not allowed");
    QTest::newRow("rename to another type")
        << QStringList{u"rename"_s, u"Devices.cfg"_s, u"Devices.txt"_s} << QByteArray("(cfg)");
    QTest::newRow("no such file") << QStringList{u"describe"_s, u"none"_s, u"x"_s}
                                  << QByteArray("Could not locate CFG file: '");
    QTest::newRow("outside the folder")
        << QStringList{u"create"_s, u"../x.cfg"_s} << QByteArray("valid name");
}

void TestCliConfig::configs_refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, cause);
    const SceneryWorld cli;
    const Ran ran = cli.configs(arguments, u"yes"_s);
    QCOMPARE(ran.status, 1);
    QVERIFY2(ran.err.contains(cause), ran.err.constData());
    QVERIFY(ran.object().contains(u"error"_s));
}

void TestCliConfig::fly_andUseOnce()
{
    const SceneryWorld cli;
    const QString folder = QDir(cli.dir.path()).relativeFilePath(cli.simulator);
    const QString started = folder + u"/started"_s;
    cli.write(folder + u"/fsx.exe"_s, "#!/bin/sh\nprintf %s \"$*\" >part\nmv part started\n");
    const auto arguments = [&] {
        if (!QTest::qWaitFor([&] { return cli.exists(started); }, 5'000))
            return QByteArray("<not started>");
        const QByteArray told = cli.read(started);
        QFile::remove(cli.dir.filePath(started));
        return told;
    };
    cli.write(u"a.flt"_s);
    QCOMPARE(cli.json({u"fly"_s, u"a.flt"_s}, u"no"_s).status, 4);
    const Ran flown = cli.json({u"fly"_s, u"a.flt"_s});
    QCOMPARE(flown.object(),
             (QJsonObject{{u"ok"_s, true}, {u"text"_s, u"Flight Simulator X was started."_s}}));
    QCOMPARE(arguments(), cli.windows(u"a.flt"_s).toUtf8());
    // The first one may not have ended yet.
    Ran used;
    const auto accepted = [&] {
        used = cli.configs({u"use-once"_s, u"devices"_s});
        return used.status == 0;
    };
    QVERIFY2(QTest::qWaitFor(accepted, 20'000), used.err.constData());
    QCOMPARE(arguments(),
             "/CFG:C:\\users\\pilot\\AppData\\Roaming\\Microsoft\\FSX\\Devices.cfg"_ba);
    QVERIFY(!cli.exists(u"home"_s));
}

VT_TEST_CLASS(TestCliConfig)
#include "test_cli_config.moc"
