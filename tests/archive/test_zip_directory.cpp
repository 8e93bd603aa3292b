// The directory reader: what it tells of ordinary archives, and what it refuses of lying ones.
#include "archive/ZipDirectory.h"
#include "archive/ZipNames.h"
#include "support/TestMain.h"
#include "support/ZipBuilder.h"

#include <QtEndian>

#include <functional>
#include <zip.h>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ZipBuilder;

namespace {

using Directory = ResultOf<std::shared_ptr<const ZipDirectory>>;

Directory open(const QByteArray& bytes, int* codeOut = nullptr)
{
    int code = 0;
    Directory directory = ZipDirectory::open(makeMemorySource(bytes, u"C:\\a.zip"_s), code);
    if (codeOut)
        *codeOut = code;
    return directory;
}

QStringList names(const Directory& directory)
{
    QStringList all;
    for (const ZipEntry& entry : (*directory)->entries())
        all += entry.folder + entry.name;
    return all;
}

} // namespace

class TestZipDirectory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entryFields();
    void names_data();
    void names();
    void folderTextsAreShared();
    void unicodePath_onlyForItsOwnName();
    void stamps_data();
    void stamps();
    void kinds_data();
    void kinds();
    void tolerated_data();
    void tolerated();
    void refused_data();
    void refused();
    void limitOfEntries();
    void runOverCountIsAccepted();
    void everyTruncationIsRefused();
};

void TestZipDirectory::entryFields()
{
    const QByteArray data(1000, 'a');
    const Directory d = open(ZipBuilder()
                                 .add("a/b.txt", data)
                                 .add("s.bin", "xyz", {.level = 0})
                                 .add("e.bin", "secret", {.encrypted = true})
                                 .build());
    QVERIFY2(d.ok(), qPrintable(d.text));
    const ZipEntry& first = (*d)->entries()[0];
    QCOMPARE(first.folder, u"a\\"_s);
    QCOMPARE(first.name, u"b.txt"_s);
    QCOMPARE(first.size, 1000);
    QVERIFY(first.packed < 100);
    QCOMPARE(first.crc, ZipBuilder::crc32(data));
    QCOMPARE(first.method, 8);
    QCOMPARE((*d)->storedName(first), QByteArrayView("a/b.txt"));
    const ZipEntry& stored = (*d)->entries()[1];
    QCOMPARE(stored.method, 0);
    QCOMPARE(stored.packed, 3);
    QVERIFY(stored.folder.isEmpty());
    QVERIFY(!stored.encrypted());
    QVERIFY((*d)->entries()[2].encrypted());
}

void TestZipDirectory::names_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("madeBy");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QString>("full");
    QTest::newRow("backslashes") << QByteArray("A\\b\\c.cfg") << 20 << 0 << u"A\\b\\c.cfg"_s;
    QTest::newRow("mixed separators") << QByteArray("A/b\\c.cfg") << 20 << 0 << u"A\\b\\c.cfg"_s;
    QTest::newRow("point parts") << QByteArray("./A/./b//c.cfg") << 20 << 0 << u"A\\b\\c.cfg"_s;
    QTest::newRow("way out is kept") << QByteArray("../a.cfg") << 20 << 0 << u"..\\a.cfg"_s;
    QTest::newRow("root is kept") << QByteArray("/a.cfg") << 20 << 0 << u"\\a.cfg"_s;
    QTest::newRow("drive is kept") << QByteArray("C:/a.cfg") << 20 << 0 << u"C:\\a.cfg"_s;
    QTest::newRow("folder") << QByteArray("A/b/") << 20 << 0 << u"A\\b"_s;
    QTest::newRow("flagged") << QByteArray("M\xC3\xBCnchen") << 20 << 0x800 << u"München"_s;
    QTest::newRow("flag that lies") << QByteArray("M\x81nchen") << 20 << 0x800 << u"München"_s;
    QTest::newRow("DOS") << QByteArray("M\x81nchen\x9C") << 20 << 0 << u"München£"_s;
    QTest::newRow("DOS though valid UTF-8") << QByteArray("\xC3\xBC") << 20 << 0 << u"├╝"_s;
    QTest::newRow("Unix") << QByteArray("M\xC3\xBCnchen") << 0x0314 << 0 << u"München"_s;
    QTest::newRow("Unix, 1252") << QByteArray("M\xFCnchen\x80") << 0x0314 << 0 << u"München€"_s;
    QTest::newRow("NTFS") << QByteArray("M\xFCnchen") << 0x0A14 << 0 << u"München"_s;
    QTest::newRow("NTFS 5.0") << QByteArray("M\x81nchen") << 0x0A32 << 0 << u"München"_s;
}

void TestZipDirectory::names()
{
    QFETCH(QByteArray, stored);
    QFETCH(int, madeBy);
    QFETCH(int, flags);
    QFETCH(QString, full);
    const Directory d =
        open(ZipBuilder()
                 .add(stored, "x", {.madeBy = quint16(madeBy), .flags = quint16(flags)})
                 .build());
    QVERIFY2(d.ok(), qPrintable(d.text));
    QCOMPARE(::names(d), QStringList{full});
}

void TestZipDirectory::folderTextsAreShared()
{
    ZipBuilder zip;
    for (int i = 0; i < 6; ++i)
        zip.add("a/" + QByteArray(i % 2 ? "x/" : "y/") + QByteArray::number(i), "1");
    const Directory d = open(zip.build());
    QVERIFY(d.ok());
    const auto text = [&](size_t i) { return (*d)->entries()[i].folder.constData(); };
    QCOMPARE(text(0), text(2));
    QCOMPARE(text(0), text(4));
    QCOMPARE(text(1), text(5));
    QVERIFY(text(0) != text(1));
}

void TestZipDirectory::unicodePath_onlyForItsOwnName()
{
    const QByteArray extra = ZipBuilder::unicodePathExtra("d/_.txt", u"d/日.txt"_s);
    const Directory d = open(ZipBuilder()
                                 .add("d/_.txt", "1", {.extra = extra})
                                 .add("renamed.txt", "2", {.extra = extra})
                                 .build());
    QVERIFY(d.ok());
    QCOMPARE(::names(d), (QStringList{u"d\\日.txt"_s, u"renamed.txt"_s}));
}

void TestZipDirectory::stamps_data()
{
    QTest::addColumn<quint32>("stamp");
    QTest::addColumn<QDateTime>("expected");
    const auto stamp = [](int y, int mo, int d, int h, int mi, int s) {
        return quint32((y - 1980) << 9 | mo << 5 | d) << 16 | quint32(h << 11 | mi << 5 | s / 2);
    };
    QTest::newRow("ordinary") << stamp(2006, 10, 17, 13, 45, 58)
                              << QDateTime(QDate(2006, 10, 17), QTime(13, 45, 58));
    QTest::newRow("leap day") << stamp(2024, 2, 29, 0, 0, 0)
                              << QDateTime(QDate(2024, 2, 29), QTime(0, 0));
    QTest::newRow("zero") << quint32(0) << QDateTime();
    QTest::newRow("no leap day") << stamp(2023, 2, 29, 12, 0, 0) << QDateTime();
    QTest::newRow("month 13") << stamp(2023, 13, 1, 12, 0, 0) << QDateTime();
    QTest::newRow("hour 24") << stamp(2023, 1, 1, 24, 0, 0) << QDateTime();
    QTest::newRow("second 60") << stamp(2023, 1, 1, 1, 0, 60) << QDateTime();
}

void TestZipDirectory::stamps()
{
    QFETCH(quint32, stamp);
    QFETCH(QDateTime, expected);
    CZIPFileItem item;
    zipnames::stampOf(stamp, item.dteDate, item.dteTime);
    QCOMPARE(item.dteDate, expected.date());
    QCOMPARE(item.dteTime, expected.time());
    QCOMPARE(item.modifiedNs(),
             expected.isValid() ? expected.toMSecsSinceEpoch() * 1'000'000 : qint64(-1));
}

void TestZipDirectory::kinds_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("madeBy");
    QTest::addColumn<quint32>("attributes");
    QTest::addColumn<int>("kind");
    const auto row =
        [](const char* title, QByteArray name, int madeBy, quint32 attr, EntryKind kind) {
            QTest::newRow(title) << name << madeBy << attr << int(kind);
        };
    row("file", "a", 20, 0x20, EntryKind::File);
    row("folder by name", "a/", 20, 0, EntryKind::Folder);
    row("folder by backslash", "a\\", 20, 0, EntryKind::Folder);
    row("folder by attribute", "a", 20, 0x10, EntryKind::Folder);
    row("Unix folder", "a", 0x0314, 0x41EDU << 16, EntryKind::Folder);
    row("Unix file", "a", 0x0314, 0x81A4U << 16, EntryKind::File);
    row("Unix link", "a", 0x0314, 0xA1FFU << 16, EntryKind::Link);
    row("Unix link named as folder", "a/", 0x0314, 0xA1FFU << 16, EntryKind::Link);
    row("Unix pipe", "a", 0x0314, 0x11A4U << 16, EntryKind::Device);
    row("Unix device", "a", 0x0314, 0x61A4U << 16, EntryKind::Device);
    row("volume label", "a", 20, 0x08, EntryKind::Device);
    row("mode bits of DOS mean nothing", "a", 20, 0xA1FFU << 16, EntryKind::File);
}

void TestZipDirectory::kinds()
{
    QFETCH(QByteArray, name);
    QFETCH(int, madeBy);
    QFETCH(quint32, attributes);
    QFETCH(int, kind);
    const Directory d =
        open(ZipBuilder()
                 .add(name, {}, {.level = 0, .madeBy = quint16(madeBy), .attributes = attributes})
                 .build());
    QVERIFY2(d.ok(), qPrintable(d.text));
    QCOMPARE(int((*d)->entries()[0].kind), kind);
}

void TestZipDirectory::tolerated_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("expected");
    const QStringList two{u"a.txt"_s, u"b\\c.txt"_s};
    const auto filled = [](ZipBuilder& zip, bool zip64 = false) -> ZipBuilder& {
        return zip.add("a.txt", "one", {.zip64 = zip64}).add("b/c.txt", "two", {.zip64 = zip64});
    };
    const auto row = [&](const char* title, const std::function<QByteArray(ZipBuilder&)>& make) {
        ZipBuilder zip;
        filled(zip);
        QTest::newRow(title) << make(zip) << two;
    };
    QTest::newRow("no entries") << ZipBuilder().build() << QStringList();
    row("comment", [](ZipBuilder& z) { return z.comment("a comment").build(); });
    row("comment that looks like an end record",
        [](ZipBuilder& z) { return z.comment("PK\x05\x06" + QByteArray(30, 'x')).build(); });
    row("bytes behind the end", [](ZipBuilder& z) { return z.build() + QByteArray(100, '\0'); });
    row("prefix", [](ZipBuilder& z) { return z.prefix("MZ" + QByteArray(70000, 'p')).build(); });
    row("ZIP64 end", [](ZipBuilder& z) { return z.zip64End().build(); });
    row("ZIP64 end and prefix",
        [](ZipBuilder& z) { return z.zip64End().prefix(QByteArray(500, 'p')).build(); });
    ZipBuilder zip64;
    QTest::newRow("ZIP64 entries") << filled(zip64, true).zip64End().build() << two;
    ZipBuilder adjusted;
    adjusted.add("a.txt", "one");
    QByteArray bytes = adjusted.build();
    const qsizetype at = bytes.lastIndexOf("PK\x05\x06");
    bytes.insert(at, QByteArray(40, 's')); // as a signature record stands there
    QTest::newRow("something before the end record") << bytes << QStringList{u"a.txt"_s};
}

void TestZipDirectory::tolerated()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, expected);
    const Directory d = open(bytes);
    QVERIFY2(d.ok(), qPrintable(d.text));
    QCOMPARE(::names(d), expected);
}

void TestZipDirectory::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("limit");
    QTest::addColumn<QString>("part");
    const auto row = [](const char* title, const QByteArray& bytes, int code, const char* part) {
        QTest::newRow(title) << bytes << code << false << QString::fromUtf8(part);
    };
    const QByteArray plain = ZipBuilder().add("a.txt", "hello").add("b.txt", "world").build();
    row("empty", {}, ZIP_ER_NOZIP, "'C:\\a.zip' is empty");
    row("text", "this is no archive", ZIP_ER_NOZIP, "is not a ZIP archive");
    row("cut", plain.chopped(10), ZIP_ER_NOZIP, "truncated");
    row("comment cut",
        ZipBuilder().add("a", "b").comment("long comment").build().chopped(3),
        ZIP_ER_INCONS,
        "comment is cut off");
    row("beginning lost", plain.sliced(60), ZIP_ER_INCONS, "does not lie where");
    row("split", ZipBuilder().add("a", "b").disk(3).build(), ZIP_ER_INCONS, "split over several");
    row("count",
        ZipBuilder().add("a", "b").claimedEntries(7).build(),
        ZIP_ER_INCONS,
        "holds 1 entry, its end record says 7");
    row("count 0",
        ZipBuilder().add("a", "b").claimedEntries(0).build(),
        ZIP_ER_INCONS,
        "holds 1 entry");
    row("offset outside",
        ZipBuilder().add("a", "b", {.offset = 5000}).build(),
        ZIP_ER_INCONS,
        "outside of the archive");
    row("huge offset",
        ZipBuilder().add("a", "b", {.zip64 = true, .offset = ~0ULL}).build(),
        ZIP_ER_INCONS,
        "impossible size");
    row("packed size outside",
        ZipBuilder().add("a", "b", {.packed = 5000}).build(),
        ZIP_ER_INCONS,
        "outside of the archive");
    row("stored with two sizes",
        ZipBuilder().add("a", "bc", {.level = 0, .size = 9}).build(),
        ZIP_ER_INCONS,
        "a size that its data cannot have");
    row("deflate beyond what deflate can",
        ZipBuilder().add("a", "bc", {.zip64 = true, .size = 900'000'000}).build(),
        ZIP_ER_INCONS,
        "a size that its data cannot have");
    row("shared data",
        ZipBuilder().add("a", "one").add("b", "two", {.offset = 0}).build(),
        ZIP_ER_INCONS,
        "overlaps");
    row("shared data, out of order",
        ZipBuilder().add("a", "1").add("b", "2").add("c", "3", {.offset = 0}).build(),
        ZIP_ER_INCONS,
        "overlaps");
    ZipBuilder bomb;
    for (int i = 0; i < 20; ++i)
        bomb.add(QByteArray::number(i),
                 {},
                 {.size = 100'000'000, .packed = 100'000, .raw = QByteArray(100'000, 'b')});
    QTest::newRow("ratio") << bomb.build() << int(ZIP_ER_INCONS) << true
                           << u"more than 200 times its size"_s;
    ZipBuilder padded;
    padded.add("pad", QByteArray(3'000'000, 'p'), {.level = 0});
    for (int i = 0; i < 9; ++i)
        padded.add(QByteArray::number(i),
                   {},
                   {.size = 100'000'000, .packed = 100'000, .raw = QByteArray(100'000, 'b')});
    QTest::newRow("ratio of padded entries") << padded.build() << int(ZIP_ER_INCONS) << true
                                             << u"more than 200 times their packed size"_s;
}

void TestZipDirectory::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, code);
    QFETCH(bool, limit);
    QFETCH(QString, part);
    int got = 0;
    const Directory d = open(bytes, &got);
    QVERIFY(!d.ok());
    QVERIFY2(d.text.contains(part), qPrintable(d.text));
    QVERIFY2(d.text.contains(u"C:\\a.zip"_s), qPrintable(d.text));
    QCOMPARE(d.kind, limit ? ErrorKind::Failed : ErrorKind::Surroundings);
    QCOMPARE(got, code);
}

void TestZipDirectory::limitOfEntries()
{
    ZipBuilder zip;
    for (int i = 0; i < 200'000; ++i)
        zip.add(QByteArray::number(i), {});
    zip.zip64End();
    const Directory most = open(zip.build());
    QVERIFY2(most.ok(), qPrintable(most.text));
    QCOMPARE((*most)->entries().size(), size_t(200'000));
    const Directory more = open(zip.add("x", {}).build());
    QVERIFY(!more.ok());
    QVERIFY2(more.text.contains(u"limit of 200,000"_s), qPrintable(more.text));
}

void TestZipDirectory::runOverCountIsAccepted()
{
    ZipBuilder zip;
    for (int i = 0; i < 65'540; ++i)
        zip.add(QByteArray::number(i), {});
    const Directory d = open(zip.build()); // the end record says 4
    QVERIFY2(d.ok(), qPrintable(d.text));
    QCOMPARE((*d)->entries().size(), size_t(65'540));
}

void TestZipDirectory::everyTruncationIsRefused()
{
    const QByteArray whole =
        ZipBuilder().add("a/b.txt", QByteArray(300, 'x')).add("c", "d").build();
    for (qsizetype n = 0; n < whole.size(); ++n) {
        const Directory d = open(whole.first(n));
        QVERIFY2(!d.ok(), qPrintable(QString::number(n)));
        QCOMPARE(d.kind, ErrorKind::Surroundings);
    }
}

VT_TEST_CLASS(TestZipDirectory)
#include "test_zip_directory.moc"
