// The classification of names, and the fixed tables of types and families.
#include "addondb/FileType.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace vt::test {

class TestFileType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classify_followsTheRules_data();
    void classify_followsTheRules();
    void everyListedEnding_givesItsCode_data();
    void everyListedEnding_givesItsCode();
    void names_areFixed();
    void families_goByDisplayName();
    void modules_areComparedWithoutCase();
};

void TestFileType::classify_followsTheRules_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("generation");
    QTest::addColumn<int>("code");
    const auto row = [](const char* name, int code, int generation = 5) {
        QTest::addRow("%s (%d)", name, generation) << QString::fromUtf8(name) << generation << code;
    };
    row("readme.txt", 20);
    row("PANEL.CFG", 36); // the whole name comes last
    row("myplane.cfg", 20);
    row("Aircraft.Cfg", 34);
    row("hidden.cfg", 34);
    row("xaircraft.cfg", 20);
    row("aircraft.cfg.txt", 20);
    row("Thumbs.DB", 21);
    row("pspbrwse.jbf", 21);
    row("xthumbs.db", 27);
    row("foo.xyz", 27);
    row("clip.mpeg", 27); // four characters are compared, five never match
    row("clip.mpg", 38);
    row("show.html", 20);
    row("showhtml", 20); // that entry has no point
    row("read.me", 27);
    row(".me", 20);
    row("engine.fx", 28);
    row("lamp.ll", 29);
    row("x.WX", 30);
    row("x.dp", 31);
    row("x.cdp", 5);
    row("x.wt", 32);
    row("x.wtb", 26);
    row("plane.taf", 33);
    row("plane.0AF", 33);
    row("planetaf", 27);
    row("xaf", 27);
    row("mission.rwd", 42);
    row("mission.rwd", 27, 4);
    row("mission.rwd", 42, 2);
    row("README", 27);
    row("", 27);
    row("a", 27);
    row("b.Bgl", 17);
    row("soundai.CFG", 39);
    row("sim.cfg", 41);
}

void TestFileType::classify_followsTheRules()
{
    QFETCH(QString, name);
    QFETCH(int, generation);
    QTEST(int(classify(name, generation)), "code");
}

void TestFileType::everyListedEnding_givesItsCode_data()
{
    QTest::addColumn<QString>("endings");
    QTest::addColumn<int>("code");
    QTest::newRow("documents")
        << u".doc .txt .diz .wri .1st .rtf .wps .2nd .now .htm .hlp .pdf .cfg .log .css"_s << 20;
    QTest::newRow("other")
        << u".zip .rar .arc .arj .com .bat .exe .bas .ini .gif .tif .jpg .xls .mid .mp2 .pic .wk1 .lst .pcx .url .lnk .vtb .png"_s
        << 21;
    QTest::newRow("movies") << u".asf .avi .mov .mpg .wmv .flv .swf"_s << 38;
    QTest::newRow("sounds") << u".wav .mp3 .wma"_s << 18;
    QTest::newRow("videos") << u".vid .fsr"_s << 19;
    QTest::newRow("scenery") << u".bgl .xcl"_s << 17;
    const char* single[] = {"1.air",
                            "2.mpi",
                            "3.nmp",
                            "4.mdl",
                            "7.adv",
                            "8.fsp",
                            "9.bmp",
                            "10.brf",
                            "11.gau",
                            "12.stn",
                            "13.flt",
                            "14.pln",
                            "22.dll",
                            "23.ttf",
                            "24.cab",
                            "25.xml",
                            "27.dds"};
    for (const char* text : single) {
        const QByteArray row(text);
        const qsizetype point = row.indexOf('.');
        QTest::newRow(text) << QString::fromLatin1(row.sliced(point)) << row.first(point).toInt();
    }
}

void TestFileType::everyListedEnding_givesItsCode()
{
    QFETCH(QString, endings);
    QFETCH(int, code);
    for (const QString& ending : endings.split(u' ')) {
        QCOMPARE(int(classify(QString(u"name"_s + ending), 5)), code);
        QCOMPARE(int(classify(QString(u"NAME"_s + ending.toUpper()), 5)), code);
    }
}

void TestFileType::names_areFixed()
{
    QCOMPARE(fileTypeName(1), u"Aircraft"_s);
    QCOMPARE(fileTypeName(6), u"Global Campaign Information"_s);
    QCOMPARE(fileTypeName(27), u"Texture"_s);
    QCOMPARE(fileTypeName(39), u"Sound A.I. Configuration"_s);
    QCOMPARE(fileTypeName(42), u"Reward"_s);
    for (const int outside : {-1, 0, 43, 1000})
        QCOMPARE(fileTypeName(outside), u"(Unknown)"_s);
}

void TestFileType::families_goByDisplayName()
{
    QList<int> members[5];
    for (int code = 1; code <= fileTypeCount; ++code) {
        for (int family = 0; family < 5; ++family) {
            if (familiesOf(FileType(code)) & (1 << family))
                members[family].append(code);
        }
    }
    QCOMPARE(members[0], (QList<int>{1, 4, 28, 33, 34, 35, 41})); // aircraft
    QCOMPARE(members[1], (QList<int>{11, 24, 25, 36}));           // panel
    QCOMPARE(members[2], (QList<int>{9, 27, 33}));                // texture
    QCOMPARE(members[3], (QList<int>{17}));                       // scenery
    QCOMPARE(members[4], (QList<int>{18, 37}));                   // sound
    QCOMPARE(familyNames(familiesOf(FileType::AircraftTexture)),
             (QStringList{u"aircraft"_s, u"texture"_s}));
    QVERIFY(familyNames(familiesOf(FileType::Document)).isEmpty());
}

void TestFileType::modules_areComparedWithoutCase()
{
    QVERIFY(isSimulatorModule(u"fsuipc.DLL"));
    QVERIFY(isSimulatorModule(u"TCAS2v7.dll"));
    QVERIFY(!isSimulatorModule(u"mygauge.dll"));
    QVERIFY(!isSimulatorModule(u"FSUIPC.dll.bak"));
}

} // namespace vt::test

using vt::test::TestFileType;
VT_TEST_CLASS(TestFileType)

#include "test_filetype.moc"
