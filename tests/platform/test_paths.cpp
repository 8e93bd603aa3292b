#include "platform/DriveTable.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace vt;
using namespace Qt::StringLiterals;

class TestPaths : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void normalising_data();
    void normalising();
    void parts_data();
    void parts();
    void joining();
    void below_data();
    void below();
    void components_data();
    void components();
    void relativePaths_data();
    void relativePaths();
    void safeNamesPassTheCheck();

    void drivesBothWays_data();
    void drivesBothWays();
    void unknownDrivesHaveNoHostPath();
    void typedPaths_data();
    void typedPaths();

    void comparison();
    void sizes_data();
    void sizes();
};

void TestPaths::normalising_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("normal");
    QTest::addColumn<QString>("folder");
    QTest::newRow("empty") << u""_s << u""_s << u""_s;
    QTest::newRow("slashes") << u"c:/a//b\\\\c"_s << u"C:\\a\\b\\c"_s << u"C:\\a\\b\\c\\"_s;
    QTest::newRow("points") << u"C:\\a\\.\\b\\..\\c\\"_s << u"C:\\a\\c\\"_s << u"C:\\a\\c\\"_s;
    QTest::newRow("above the drive") << u"C:\\..\\..\\a"_s << u"C:\\a"_s << u"C:\\a\\"_s;
    QTest::newRow("relative") << u"a/../../b"_s << u"..\\b"_s << u"..\\b\\"_s;
    QTest::newRow("two above") << u"..\\..\\b"_s << u"..\\..\\b"_s << u"..\\..\\b\\"_s;
    QTest::newRow("drive") << u"d:"_s << u"D:\\"_s << u"D:\\"_s;
    QTest::newRow("share") << u"//pc/share/x"_s << u"\\\\pc\\share\\x"_s << u"\\\\pc\\share\\x\\"_s;
    QTest::newRow("names with points")
        << u"C:\\a.b\\...\\.c"_s << u"C:\\a.b\\...\\.c"_s << u"C:\\a.b\\...\\.c\\"_s;
}

void TestPaths::normalising()
{
    QFETCH(QString, path);
    QFETCH(QString, normal);
    QFETCH(QString, folder);
    QCOMPARE(winpath::normalised(path), normal);
    QCOMPARE(winpath::normalised(normal), normal);
    QCOMPARE(winpath::asFolder(path), folder);
}

void TestPaths::parts_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("extension");
    QTest::newRow("file") << u"C:\\a\\b.x.cfg"_s << u"C:\\a\\"_s << u"b.x.cfg"_s << u"b.x"_s
                          << u"cfg"_s;
    QTest::newRow("folder") << u"C:\\a\\b\\"_s << u"C:\\a\\"_s << u"b"_s << u"b"_s << u""_s;
    QTest::newRow("name alone") << u"b.TXT"_s << u""_s << u"b.TXT"_s << u"b"_s << u"TXT"_s;
    QTest::newRow("leading point")
        << u"a\\.hidden"_s << u"a\\"_s << u".hidden"_s << u".hidden"_s << u"hidden"_s;
    QTest::newRow("point in a folder") << u"a.b\\c"_s << u"a.b\\"_s << u"c"_s << u"c"_s << u""_s;
    QTest::newRow("below the drive") << u"C:\\a"_s << u"C:\\"_s << u"a"_s << u"a"_s << u""_s;
}

void TestPaths::parts()
{
    QFETCH(QString, path);
    QFETCH(QString, parent);
    QFETCH(QString, name);
    QFETCH(QString, base);
    QFETCH(QString, extension);
    QCOMPARE(winpath::parent(path), parent);
    QCOMPARE(winpath::name(path), name);
    QCOMPARE(winpath::baseName(path), base);
    QCOMPARE(winpath::extension(path), extension);
}

void TestPaths::joining()
{
    QCOMPARE(winpath::join(u"C:\\a", u"b"), u"C:\\a\\b"_s);
    QCOMPARE(winpath::join(u"C:\\a\\", u"\\b\\"), u"C:\\a\\b\\"_s);
    QCOMPARE(winpath::join(u"", u"b"), u"b"_s);
    QCOMPARE(winpath::withoutTrailing(u"C:\\"), u"C:\\"_s);
    QCOMPARE(winpath::withoutTrailing(u"C:\\a\\"), u"C:\\a"_s);
    QCOMPARE(winpath::components(u"C:\\a\\\\b\\"), (QStringList{u"C:"_s, u"a"_s, u"b"_s}));
}

void TestPaths::below_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("isBelow");
    QTest::addColumn<QString>("relative");
    QTest::newRow("below") << u"C:\\FSX\\Effects\\a.fx"_s << u"c:\\fsx\\"_s << true
                           << u"Effects\\a.fx"_s;
    QTest::newRow("itself") << u"C:\\FSX"_s << u"c:\\fsx\\"_s << true << u""_s;
    QTest::newRow("itself with end") << u"C:\\FSX\\"_s << u"c:\\fsx"_s << true << u""_s;
    QTest::newRow("longer name") << u"C:\\FSX2\\a"_s << u"C:\\FSX"_s << false << u"C:\\FSX2\\a"_s;
    QTest::newRow("above") << u"C:\\"_s << u"C:\\FSX\\"_s << false << u"C:\\"_s;
    QTest::newRow("drive") << u"C:\\a"_s << u"C:\\"_s << true << u"a"_s;
}

void TestPaths::below()
{
    QFETCH(QString, path);
    QFETCH(QString, folder);
    QFETCH(bool, isBelow);
    QFETCH(QString, relative);
    QCOMPARE(winpath::isBelow(path, folder), isBelow);
    QCOMPARE(winpath::relativeTo(path, folder), relative);
    QCOMPARE(winpath::same(path, folder), isBelow && relative.isEmpty());
}

void TestPaths::components_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("allowed");
    for (const QString& name : {u"a"_s,
                                u"texture.x"_s,
                                u"Zürich 東京"_s,
                                u".hidden"_s,
                                u"...a"_s,
                                u"console"_s,
                                u"com"_s,
                                u"com10"_s,
                                u"con-x"_s,
                                u" leading"_s,
                                u"a;b'(c)[d]"_s,
                                QString(255, u'x')})
        QTest::newRow(qPrintable(name.left(20))) << name << true;
    for (const QString& name : {u""_s,
                                u"."_s,
                                u".."_s,
                                u". ."_s,
                                u" .. "_s,
                                u"..."_s,
                                u"a."_s,
                                u"a "_s,
                                u"a\\b"_s,
                                u"a/b"_s,
                                u"c:"_s,
                                u"a:stream"_s,
                                u"a*"_s,
                                u"a?"_s,
                                u"a\""_s,
                                u"a<"_s,
                                u"a|b"_s,
                                u"a\nb"_s,
                                u"a\u007f"_s,
                                u"CON"_s,
                                u"nul.txt"_s,
                                u"Com1"_s,
                                u"lpt9.a.b"_s,
                                u"aux .x"_s,
                                QString(QChar(0)),
                                QString(256, u'x')})
        QTest::newRow(qPrintable(u"refused "_s + name.left(20))) << name << false;
}

void TestPaths::components()
{
    QFETCH(QString, name);
    QFETCH(bool, allowed);
    const Result checked = winpath::checkComponent(name);
    QCOMPARE(checked.ok, allowed);
    QVERIFY(allowed || checked.text.contains(u"'"_s + name + u"'"_s));
}

void TestPaths::relativePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("file") << u"Effects\\a.fx"_s << true;
    QTest::newRow("folder") << u"Effects\\"_s << true;
    QTest::newRow("empty") << u""_s << false;
    QTest::newRow("only a separator") << u"\\"_s << false;
    QTest::newRow("absolute") << u"C:\\a"_s << false;
    QTest::newRow("drive-relative") << u"C:a"_s << false;
    QTest::newRow("rooted") << u"\\a"_s << false;
    QTest::newRow("rooted by a slash") << u"/a"_s << false;
    QTest::newRow("up") << u"a\\..\\..\\b"_s << false;
    QTest::newRow("hidden up") << u"a\\.. \\b"_s << false;
    QTest::newRow("slash inside") << u"a/../../b"_s << false;
    QTest::newRow("empty part") << u"a\\\\b"_s << false;
}

void TestPaths::relativePaths()
{
    QFETCH(QString, path);
    QFETCH(bool, allowed);
    QCOMPARE(winpath::checkRelative(path).ok, allowed);
}

void TestPaths::safeNamesPassTheCheck()
{
    QCOMPARE(winpath::safeName(u" Boeing 747: \"Queen\" / v1.0. "), u"Boeing 747 Queen  v1.0"_s);
    QRandomGenerator random(7);
    const QString alphabet = u"ab.. \\/:*?\"<>|\tcon1éЖ"_s;
    QStringList names = {u"con"_s, u"COM1.x"_s, QString(300, u'y'), QString(119, u'a') + u". b"_s};
    for (int i = 0; i < 500; ++i) {
        QString name;
        for (int n = int(random.bounded(8)); n >= 0; --n)
            name += alphabet[random.bounded(int(alphabet.size()))];
        names += name;
    }
    for (const QString& name : names) {
        const QString safe = winpath::safeName(name);
        const Result checked = winpath::checkComponent(safe);
        QVERIFY2(safe.isEmpty() || checked.ok, qPrintable(name + u" -> "_s + safe));
    }
}

void TestPaths::drivesBothWays_data()
{
    QTest::addColumn<QString>("windows");
    QTest::addColumn<QString>("host");
    QTest::newRow("file") << u"C:\\FSX\\a b.cfg"_s << u"/home/p/.wine/drive_c/FSX/a b.cfg"_s;
    QTest::newRow("drive") << u"C:\\"_s << u"/home/p/.wine/drive_c"_s;
    QTest::newRow("deeper drive wins") << u"G:\\x"_s << u"/home/p/.wine/drive_c/games/x"_s;
    QTest::newRow("similar name") << u"C:\\games2\\x"_s << u"/home/p/.wine/drive_c/games2/x"_s;
    QTest::newRow("rest of the host") << u"Z:\\etc\\x"_s << u"/etc/x"_s;
    QTest::newRow("root") << u"Z:\\"_s << u"/"_s;
}

void TestPaths::drivesBothWays()
{
    QFETCH(QString, windows);
    QFETCH(QString, host);
    DriveTable drives;
    drives.set(u'c', u"/home/p/.wine/dosdevices/../drive_c/"_s);
    drives.set(u'G', u"/home/p/.wine/drive_c/games"_s);
    drives.set(u'Z', u"/never"_s);
    QCOMPARE(drives.toHost(windows), host);
    QCOMPARE(drives.toWindows(host), windows);
}

void TestPaths::unknownDrivesHaveNoHostPath()
{
    const DriveTable drives;
    for (const QString& path : {u"C:\\a"_s, u"a\\b"_s, u"\\\\pc\\share"_s, u""_s})
        QVERIFY2(drives.toHost(path).isNull(), qPrintable(path));
    QVERIFY(drives.hostRoot(u'C').isNull());
    QVERIFY(!drives.hostRoot(u'z').isNull());
}

void TestPaths::typedPaths_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("path");
    QTest::newRow("windows") << u"c:/FSX/../a"_s << u"C:\\a"_s;
    QTest::newRow("host") << u"/mnt/c/FSX/"_s << u"C:\\FSX\\"_s;
    QTest::newRow("host elsewhere") << u"/tmp/a.zip"_s << u"Z:\\tmp\\a.zip"_s;
    QTest::newRow("relative") << u"packs/a.zip"_s << u"C:\\here\\packs\\a.zip"_s;
    QTest::newRow("relative upwards") << u"../a.zip"_s << u"C:\\a.zip"_s;
    QTest::newRow("this folder") << u"."_s << u"C:\\here"_s;
    QTest::newRow("nothing") << u""_s << u""_s;
}

void TestPaths::typedPaths()
{
    QFETCH(QString, typed);
    QFETCH(QString, path);
    DriveTable drives;
    drives.set(u'C', u"/mnt/c"_s);
    QCOMPARE(drives.fromUser(typed, u"/mnt/c/here"_s), path);
}

void TestPaths::comparison()
{
    QVERIFY(equalNoCase(u"ÄÖÜ Ж σ", u"äöü ж Σ"));
    QVERIFY(!equalNoCase(u"ß", u"ss"));
    QVERIFY(!equalNoCase(u"a", u"ab"));
    QVERIFY(compareNoCase(u"a", u"B") < 0);
    QVERIFY(compareNoCase(u"ab", u"A") > 0);
    QCOMPARE(hashNoCase(u"TextÜre.X"), hashNoCase(u"tEXTüRE.x"));
    QCOMPARE(foldCase(u"TextÜre"), u"textüre"_s);
    QVERIFY(startsWithNoCase(u"FltSim.0", u"fLTSIM."));
    QVERIFY(endsWithNoCase(u"a.CFG", u".cfg") && !endsWithNoCase(u"g", u".cfg"));
    QCOMPARE(indexOfNoCase(u"xABab", u"ab", 2), 3);
    QCOMPARE(indexOfNoCase(u"x", u"xx"), -1);
    QCOMPARE(indexOfNoCase(u"x", u""), 0);
    QVERIFY(containsNoCase(u"Boeing", u"EIN"));

    QHash<NoCase, int> counts;
    ++counts[{u"Gauges"_s}];
    ++counts[{u"GAUGES"_s}];
    QCOMPARE(counts.size(), 1);
}

void TestPaths::sizes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << qint64(0) << u"0 bytes"_s;
    QTest::newRow("last byte") << qint64(1023) << u"1023 bytes"_s;
    QTest::newRow("first KB") << qint64(1024) << u"1.0 KB"_s;
    QTest::newRow("MB") << qint64(12'345'678) << u"11.8 MB"_s;
    QTest::newRow("three digits") << qint64(600) * 1024 * 1024 << u"600 MB"_s;
    QTest::newRow("largest") << std::numeric_limits<qint64>::max() << u"8388608 TB"_s;
}

void TestPaths::sizes()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    QCOMPARE(sizeText(bytes), text);
}

VT_TEST_CLASS(TestPaths)
#include "test_paths.moc"
