// Variations over the real program: added with textures, removed, hidden, silenced.
#include "CliFixture.h"
#include "demo/DemoSimulator.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using namespace vt::test;

namespace {

struct VariantCli : CliFixture
{
    VariantCli()
    {
        const vt::ResultOf<vt::DemoSimulator> demo =
            vt::writeDemoSimulator(dir.filePath(u"prefix"_s));
        if (!demo)
            qFatal("%s", qPrintable(demo.text));
        simulator = demo->simulatorHost;
    }

    [[nodiscard]] Ran json(const QStringList& arguments) const
    {
        return run(QStringList{u"--json"_s, u"--prefix"_s, u"prefix"_s} + arguments);
    }

    [[nodiscard]] QStringList changesSince(const TreeSnapshot& before) const
    {
        return differences(before, hashTree(simulator), Backups::Ignore);
    }

    const QString kestrel = u"SimObjects\\Airplanes\\Kestrel_K2"_s;
    QString simulator;
};

} // namespace

class TestCliVariants : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addedAndRemoved_leavesTheTree();
    void add_refusals_data();
    void add_refusals();
    void hiddenAndShown_leavesTheTree();
    void suppress_byKind();
};

void TestCliVariants::addedAndRemoved_leavesTheTree()
{
    const VariantCli cli;
    cli.write(u"texture.neu/body.bmp"_s);
    cli.write(u"texture.neu/night/body.bmp"_s);
    const TreeSnapshot before = hashTree(cli.simulator);
    const Ran added = cli.json({u"variant"_s,
                                u"add"_s,
                                cli.kestrel,
                                u"--from"_s,
                                u"fltsim.1"_s,
                                u"--title"_s,
                                u"Kestrel Neu"_s,
                                u"--variation"_s,
                                u"Red"_s,
                                u"--texture-from"_s,
                                u"texture.neu"_s});
    QVERIFY2(added.status == 0, added.err.constData());
    QCOMPARE(added.object().value(u"section"_s).toString(), u"fltsim.3"_s);
    QVERIFY(
        added.object().value(u"notes"_s).toArray().first().toString().startsWith(u"Warning: "_s));
    QCOMPARE(cli.changesSince(before).size(), 5); // the file, two folders, two textures
    const Ran removed =
        cli.json({u"variant"_s, u"remove"_s, cli.kestrel + u"\\aircraft.cfg"_s, u"[fltsim.3]"_s});
    QVERIFY2(removed.status == 0, removed.err.constData());
    QCOMPARE(cli.changesSince(before), QStringList());
}

void TestCliVariants::add_refusals_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    const QStringList add = {u"variant"_s, u"add"_s, VariantCli().kestrel};
    const QStringList names = {u"--title"_s, u"New"_s, u"--variation"_s, u"New"_s};
    const QStringList from = {u"--from"_s, u"fltsim.0"_s};
    QTest::newRow("title taken")
        << add + from + QStringList{u"--title"_s, u"kestrel k2 RED"_s, u"--variation"_s, u"x"_s}
        << 1 << u"Specified title is used by another aircraft."_s;
    QTest::newRow("no names") << add + from << 2 << u"needs --title and --variation"_s;
    QTest::newRow("no source") << add + names << 2 << u"--from"_s;
    QTest::newRow("unknown section")
        << add + names + QStringList{u"--from"_s, u"fltsim.8"_s} << 1 << u"'fltsim.8'"_s;
    QTest::newRow("no textures") << add + names + from +
                                        QStringList{u"--texture-from"_s, u"nowhere"_s}
                                 << 3 << u"nowhere"_s;
    QTest::newRow("no aircraft") << QStringList{u"variant"_s, u"add"_s, u"none"_s} + names + from
                                 << 3 << u"none' was not found"_s;
    QTest::newRow("outside of the code page")
        << add + from + QStringList{u"--title"_s, u"\u65e5"_s, u"--variation"_s, u"x"_s} << 1
        << u"\u65e5"_s;
}

void TestCliVariants::add_refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, text);
    const VariantCli cli;
    const TreeSnapshot before = hashTree(cli.simulator);
    const Ran ran = cli.json(arguments);
    QCOMPARE(ran.status, status);
    QVERIFY2(QString::fromUtf8(ran.err).contains(text), ran.err.constData());
    QVERIFY(!ran.object().value(u"error"_s).toObject().isEmpty());
    QCOMPARE(differences(before, hashTree(cli.simulator)), QStringList()); // no backup either
}

void TestCliVariants::hiddenAndShown_leavesTheTree()
{
    const VariantCli cli;
    const TreeSnapshot before = hashTree(cli.simulator);
    for (int i = 0; i < 2; ++i) // the second is the one behind, which took the number over
        QCOMPARE(cli.json({u"aircraft"_s, u"hide"_s, cli.kestrel, u"fltsim.1"_s}).status, 0);
    QVERIFY(!cli.changesSince(before).isEmpty());
    QCOMPARE(cli.json({u"aircraft"_s, u"hide"_s, cli.kestrel, u"fltsim.1"_s}).status, 1);
    const Ran shown = cli.json({u"aircraft"_s, u"show-again"_s, cli.kestrel, u"fltsim.2"_s});
    QVERIFY(shown.object().value(u"ok"_s).toBool());
    QCOMPARE(shown.object().value(u"section"_s).toString(), u"fltsim.1"_s);
    QCOMPARE(cli.json({u"aircraft"_s, u"show-again"_s, cli.kestrel, u"hidden.fltsim.1"_s}).status,
             0);
    QCOMPARE(cli.changesSince(before), QStringList());
}

void TestCliVariants::suppress_byKind()
{
    const VariantCli cli;
    const auto suppress = [&](const QStringList& rest) {
        return cli.json(QStringList{u"suppress"_s} + rest).status;
    };
    QCOMPARE(suppress({u"aircraft"_s, cli.kestrel, u"on"_s}), 0);
    QCOMPARE(suppress({u"aircraft"_s, cli.kestrel, u"off"_s, u"--section"_s, u"fltsim.9"_s}), 1);
    QCOMPARE(suppress({u"panel"_s, cli.kestrel + u"\\panel"_s, u"on"_s}), 0);
    QCOMPARE(suppress({u"sound"_s, cli.kestrel + u"\\nothing"_s, u"on"_s}), 3);
    QCOMPARE(suppress({u"engine"_s, cli.kestrel, u"on"_s}), 2);
    QCOMPARE(suppress({u"aircraft"_s, cli.kestrel, u"perhaps"_s}), 2);
}

VT_TEST_CLASS(TestCliVariants)
#include "test_cli_variants.moc"
