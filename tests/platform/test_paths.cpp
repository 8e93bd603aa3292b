#include "platform/DriveTable.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace vt;
using vt::test::Rows;
using namespace Qt::StringLiterals;

class TestPaths : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void normalising()
    {
        const Rows<QString, QString, QString> rows = {
            {"empty", u""_s, u""_s, u""_s},
            {"slashes", u"c:/a//b\\\\c"_s, u"C:\\a\\b\\c"_s, u"C:\\a\\b\\c\\"_s},
            {"points", u"C:\\a\\.\\b\\..\\c\\"_s, u"C:\\a\\c\\"_s, u"C:\\a\\c\\"_s},
            {"above the drive", u"C:\\..\\..\\a"_s, u"C:\\a"_s, u"C:\\a\\"_s},
            {"relative", u"a/../../b"_s, u"..\\b"_s, u"..\\b\\"_s},
            {"two above", u"..\\..\\b"_s, u"..\\..\\b"_s, u"..\\..\\b\\"_s},
            {"drive", u"d:"_s, u"D:\\"_s, u"D:\\"_s},
            {"share", u"//pc/share/x"_s, u"\\\\pc\\share\\x"_s, u"\\\\pc\\share\\x\\"_s},
            {"names with points",
             u"C:\\a.b\\...\\.c"_s,
             u"C:\\a.b\\...\\.c"_s,
             u"C:\\a.b\\...\\.c\\"_s},
        };
        for (const auto& [path, normal, folder] : rows) {
            QCOMPARE(winpath::normalised(path), normal);
            QCOMPARE(winpath::normalised(normal), normal);
            QCOMPARE(winpath::asFolder(path), folder);
        }
    }

    void parts()
    {
        const Rows<QString, QString, QString, QString, QString> rows = {
            {"file", u"C:\\a\\b.x.cfg"_s, u"C:\\a\\"_s, u"b.x.cfg"_s, u"b.x"_s, u"cfg"_s},
            {"folder", u"C:\\a\\b\\"_s, u"C:\\a\\"_s, u"b"_s, u"b"_s, u""_s},
            {"name alone", u"b.TXT"_s, u""_s, u"b.TXT"_s, u"b"_s, u"TXT"_s},
            {"leading point", u"a\\.hidden"_s, u"a\\"_s, u".hidden"_s, u".hidden"_s, u"hidden"_s},
            {"point in a folder", u"a.b\\c"_s, u"a.b\\"_s, u"c"_s, u"c"_s, u""_s},
            {"below the drive", u"C:\\a"_s, u"C:\\"_s, u"a"_s, u"a"_s, u""_s},
        };
        for (const auto& [path, parent, name, base, extension] : rows) {
            QCOMPARE(winpath::parent(path), parent);
            QCOMPARE(winpath::name(path), name);
            QCOMPARE(winpath::baseName(path), base);
            QCOMPARE(winpath::extension(path), extension);
        }
    }

    void joining()
    {
        QCOMPARE(winpath::join(u"C:\\a", u"b"), u"C:\\a\\b"_s);
        QCOMPARE(winpath::join(u"C:\\a\\", u"\\b\\"), u"C:\\a\\b\\"_s);
        QCOMPARE(winpath::join(u"", u"b"), u"b"_s);
        QCOMPARE(winpath::withoutTrailing(u"C:\\"), u"C:\\"_s);
        QCOMPARE(winpath::withoutTrailing(u"C:\\a\\"), u"C:\\a"_s);
        QCOMPARE(winpath::components(u"C:\\a\\\\b\\"), (QStringList{u"C:"_s, u"a"_s, u"b"_s}));
    }

    void below()
    {
        const Rows<QString, QString, bool, QString> rows = {
            {"below", u"C:\\FSX\\Effects\\a.fx"_s, u"c:\\fsx\\"_s, true, u"Effects\\a.fx"_s},
            {"itself", u"C:\\FSX"_s, u"c:\\fsx\\"_s, true, u""_s},
            {"itself with end", u"C:\\FSX\\"_s, u"c:\\fsx"_s, true, u""_s},
            {"longer name", u"C:\\FSX2\\a"_s, u"C:\\FSX"_s, false, u"C:\\FSX2\\a"_s},
            {"above", u"C:\\"_s, u"C:\\FSX\\"_s, false, u"C:\\"_s},
            {"drive", u"C:\\a"_s, u"C:\\"_s, true, u"a"_s},
        };
        for (const auto& [path, folder, isBelow, relative] : rows) {
            QCOMPARE(winpath::isBelow(path, folder), isBelow);
            QCOMPARE(winpath::relativeTo(path, folder), relative);
            QCOMPARE(winpath::same(path, folder), isBelow && relative.isEmpty());
        }
    }

    void components()
    {
        QStringList allowed =
            u"a|texture.x|Zürich 東京|.hidden|...a|console|com|com10|con-x| leading|a;b'(c)[d]"_s
                .split(u'|');
        allowed += QString(255, u'x');
        QStringList refused =
            u"!.!..!. .! .. !...!a.!a !a\\b!a/b!c:!a:stream!a*!a?!a\"!a<!a|b!a\nb!a\u007f!CON!nul.txt!Com1!lpt9.a.b!aux .x"_s
                .split(u'!');
        refused += {QString(QChar(0)), QString(256, u'x')};
        for (const QString& name : std::as_const(allowed))
            QVERIFY2(winpath::checkComponent(name), qPrintable(name));
        for (const QString& name : std::as_const(refused)) {
            const Result checked = winpath::checkComponent(name);
            QVERIFY2(!checked && checked.text.contains(u"'"_s + name + u"'"_s), qPrintable(name));
        }
    }

    void relativePaths()
    {
        const Rows<QString, bool> rows = {
            {"file", u"Effects\\a.fx"_s, true},
            {"folder", u"Effects\\"_s, true},
            {"empty", u""_s, false},
            {"only a separator", u"\\"_s, false},
            {"absolute", u"C:\\a"_s, false},
            {"drive-relative", u"C:a"_s, false},
            {"rooted", u"\\a"_s, false},
            {"rooted by a slash", u"/a"_s, false},
            {"up", u"a\\..\\..\\b"_s, false},
            {"hidden up", u"a\\.. \\b"_s, false},
            {"slash inside", u"a/../../b"_s, false},
            {"empty part", u"a\\\\b"_s, false},
        };
        for (const auto& [path, allowed] : rows)
            QCOMPARE(winpath::checkRelative(path).ok, allowed);
    }

    void safeNamesPassTheCheck()
    {
        QCOMPARE(winpath::safeName(u" Boeing 747: \"Queen\" / v1.0. "),
                 u"Boeing 747 Queen  v1.0"_s);
        QRandomGenerator random(7);
        const QString alphabet = u"ab.. \\/:*?\"<>|\tcon1éЖ"_s;
        QStringList names = {
            u"con"_s, u"COM1.x"_s, QString(300, u'y'), QString(119, u'a') + u". b"_s};
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

    void drivesBothWays()
    {
        const Rows<QString, QString> rows = {
            {"file", u"C:\\FSX\\a b.cfg"_s, u"/home/p/.wine/drive_c/FSX/a b.cfg"_s},
            {"drive", u"C:\\"_s, u"/home/p/.wine/drive_c"_s},
            {"deeper drive wins", u"G:\\x"_s, u"/home/p/.wine/drive_c/games/x"_s},
            {"similar name", u"C:\\games2\\x"_s, u"/home/p/.wine/drive_c/games2/x"_s},
            {"rest of the host", u"Z:\\etc\\x"_s, u"/etc/x"_s},
            {"root", u"Z:\\"_s, u"/"_s},
        };
        for (const auto& [windows, host] : rows) {
            DriveTable drives;
            drives.set(u'c', u"/home/p/.wine/dosdevices/../drive_c/"_s);
            drives.set(u'G', u"/home/p/.wine/drive_c/games"_s);
            drives.set(u'Z', u"/never"_s);
            QCOMPARE(drives.toHost(windows), host);
            QCOMPARE(drives.toWindows(host), windows);
        }
    }

    void unknownDrivesHaveNoHostPath()
    {
        const DriveTable drives;
        for (const QString& path : {u"C:\\a"_s, u"a\\b"_s, u"\\\\pc\\share"_s, u""_s})
            QVERIFY2(drives.toHost(path).isNull(), qPrintable(path));
        QVERIFY(drives.hostRoot(u'C').isNull());
        QVERIFY(!drives.hostRoot(u'z').isNull());
    }

    void typedPaths()
    {
        const Rows<QString, QString> rows = {
            {"windows", u"c:/FSX/../a"_s, u"C:\\a"_s},
            {"host", u"/mnt/c/FSX/"_s, u"C:\\FSX\\"_s},
            {"host elsewhere", u"/tmp/a.zip"_s, u"Z:\\tmp\\a.zip"_s},
            {"relative", u"packs/a.zip"_s, u"C:\\here\\packs\\a.zip"_s},
            {"relative upwards", u"../a.zip"_s, u"C:\\a.zip"_s},
            {"this folder", u"."_s, u"C:\\here"_s},
            {"nothing", u""_s, u""_s},
        };
        for (const auto& [typed, path] : rows) {
            DriveTable drives;
            drives.set(u'C', u"/mnt/c"_s);
            QCOMPARE(drives.fromUser(typed, u"/mnt/c/here"_s), path);
        }
    }

    void comparison()
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

    void sizes()
    {
        const Rows<qint64, QString> rows = {
            {"none", 0, u"0 bytes"_s},
            {"last byte", 1023, u"1023 bytes"_s},
            {"first KB", 1024, u"1.0 KB"_s},
            {"MB", 12'345'678, u"11.8 MB"_s},
            {"three digits", 600 * 1024 * 1024, u"600 MB"_s},
            {"largest", std::numeric_limits<qint64>::max(), u"8388608 TB"_s},
        };
        for (const auto& [bytes, text] : rows)
            QCOMPARE(sizeText(bytes), text);
    }
};

VT_TEST_CLASS(TestPaths)
#include "test_paths.moc"
