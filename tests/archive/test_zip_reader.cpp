// Reading entries: every method gives the bytes that went in, and nothing that lies gets through.
#include "archive/ZipReader.h"
#include "support/TestMain.h"
#include "support/ZipBuilder.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <zip.h>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ZipBuilder;
using vt::test::ZipOptions;

namespace {

constexpr qint64 wholeLimit = 32LL << 20;

/// Compresses to about half; the same for the same seed.
QByteArray someBytes(qsizetype size, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& c : bytes)
        c = char('a' + random.bounded(20));
    return bytes;
}

struct Opened
{
    explicit Opened(const QByteArray& bytes)
    {
        int code = 0;
        auto directory = ZipDirectory::open(makeMemorySource(bytes, u"C:\\a.zip"_s), code);
        problem = directory.text;
        if (directory)
            reader = std::make_unique<ZipReader>(*directory, std::make_shared<ZipScratch>());
    }

    Result read(int key, QByteArray& to) const
    {
        to.clear();
        return reader->read(key, [&](QByteArrayView piece) {
            to.append(piece);
            return true;
        });
    }

    QString problem;
    std::unique_ptr<ZipReader> reader;
};

} // namespace

class TestZipReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contents_data();
    void contents();
    void bzip2_throughTheLibrary();
    void manySmallEntries_inAnyOrder();
    void sinkThatRefuses_endsQuietly();
    void refused_data();
    void refused();
    void damagedOtherMethod();
    void anyFlippedByte_neverLiesAboutSizeOrCrc();
};

void TestZipReader::contents_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("special"); // ZIP64 fields, data descriptor, prefix
    for (const qint64 size : {qint64(0), qint64(1), qint64(70'000), wholeLimit, wholeLimit + 1}) {
        for (const int level : {0, 1}) {
            QTest::addRow("%lld at level %d", size, level) << size << level << false;
        }
    }
    QTest::newRow("special") << qint64(70'000) << 6 << true;
    QTest::newRow("special and large") << wholeLimit + 5 << 1 << true;
}

void TestZipReader::contents()
{
    QFETCH(qint64, size);
    QFETCH(int, level);
    QFETCH(bool, special);
    // Runs of 64, so that the large rows are quickly made.
    QByteArray data;
    QRandomGenerator random(1);
    while (data.size() < size)
        data.append(64, char(random.bounded(256)));
    data.resize(size);
    ZipBuilder zip;
    zip.add("before", "b");
    zip.add("d/entry", data, {.level = level, .zip64 = special, .dataDescriptor = special});
    if (special)
        zip.prefix(QByteArray(1234, 'p'));
    const Opened opened(zip.build());
    QVERIFY2(opened.reader, qPrintable(opened.problem));
    QByteArray got;
    const Result r = opened.read(2, got);
    QVERIFY2(r.ok, qPrintable(r.text));
    QVERIFY(got == data);
    QVERIFY(opened.read(1, got).ok);
    QCOMPARE(got, QByteArray("b"));
}

void TestZipReader::bzip2_throughTheLibrary()
{
    QTemporaryDir dir;
    const QByteArray path = dir.filePath(u"a.zip"_s).toUtf8();
    const QByteArray data = someBytes(700'000, 3);
    zip_t* zip = zip_open(path.constData(), ZIP_CREATE, nullptr);
    QVERIFY(zip);
    zip_source_t* source = zip_source_buffer(zip, data.constData(), zip_uint64_t(data.size()), 0);
    const zip_int64_t index = zip_file_add(zip, "e.bin", source, 0);
    QCOMPARE(zip_set_file_compression(zip, zip_uint64_t(index), ZIP_CM_BZIP2, 0), 0);
    QCOMPARE(zip_close(zip), 0);
    QFile file(dir.filePath(u"a.zip"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));

    const Opened opened(file.readAll());
    QVERIFY2(opened.reader, qPrintable(opened.problem));
    QCOMPARE(int(opened.reader->directory().entries()[0].method), ZIP_CM_BZIP2);
    QByteArray got;
    const Result r = opened.read(1, got);
    QVERIFY2(r.ok, qPrintable(r.text));
    QVERIFY(got == data);
}

void TestZipReader::manySmallEntries_inAnyOrder()
{
    ZipBuilder zip;
    QList<QByteArray> contents;
    QRandomGenerator random(7);
    for (int i = 0; i < 3000; ++i) {
        contents +=
            someBytes(random.bounded(100) == 0 ? 200'000 : random.bounded(3000), quint32(i));
        zip.add("f/" + QByteArray::number(i), contents.back(), {.level = i % 2});
    }
    const Opened opened(zip.build());
    QVERIFY(opened.reader);
    QByteArray got;
    for (int i = 0; i < 3000; ++i) {
        QVERIFY(opened.read(i + 1, got).ok);
        QVERIFY2(got == contents[i], qPrintable(QString::number(i)));
    }
    for (int n = 0; n < 3000; ++n) {
        const int i = random.bounded(3000);
        QVERIFY(opened.read(i + 1, got).ok);
        QVERIFY2(got == contents[i], qPrintable(QString::number(i)));
    }
}

void TestZipReader::sinkThatRefuses_endsQuietly()
{
    const Opened opened(ZipBuilder().add("a", someBytes(wholeLimit + 10, 1), {.level = 0}).build());
    QVERIFY(opened.reader);
    int pieces = 0;
    const Result r = opened.reader->read(1, [&](QByteArrayView) { return ++pieces < 3; });
    QVERIFY(r.ok);
    QCOMPARE(pieces, 3);
}

void TestZipReader::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("part");
    const auto row = [](const char* title,
                        const QByteArray& data,
                        const ZipOptions& options,
                        int code,
                        const char* part) {
        QTest::newRow(title) << ZipBuilder().add("d/e.txt", data, options).build() << code
                             << QString::fromUtf8(part);
    };
    const QByteArray small = someBytes(5000, 1);
    const QByteArray large(wholeLimit + 100, 'x');
    row("encrypted", small, {.encrypted = true}, ZIP_ER_ENCRNOTSUPP, "is encrypted");
    row("wrong CRC", small, {.crc = 1}, ZIP_ER_CRC, "its check sum (CRC) is wrong");
    row("wrong CRC, stored", small, {.level = 0, .crc = 1}, ZIP_ER_CRC, "(CRC) is wrong");
    row("wrong CRC, large", large, {.level = 1, .crc = 1}, ZIP_ER_CRC, "(CRC) is wrong");
    row("wrong CRC, large stored", large, {.level = 0, .crc = 1}, ZIP_ER_CRC, "(CRC) is wrong");
    row("grows past its size", small, {.size = 4999}, ZIP_ER_INCONS, "not the size");
    row("shorter than its size", small, {.size = 5001}, ZIP_ER_INCONS, "not the size");
    row("large grows past its size",
        large,
        {.level = 1, .size = wholeLimit + 1},
        ZIP_ER_INCONS,
        "is damaged");
    row("no deflate data",
        small,
        {.raw = QByteArray(3000, '\xFF')},
        ZIP_ER_COMPRESSED_DATA,
        "cannot be unpacked");
    row("other local name",
        small,
        {.localName = QByteArray("d/x.txt")},
        ZIP_ER_INCONS,
        "name it differently");
    row("longer local name",
        small,
        {.localName = QByteArray("d/e.txt.exe")},
        ZIP_ER_INCONS,
        "name it differently");
    row("other local method", small, {.localMethod = quint16(0)}, ZIP_ER_INCONS, "contradicts");
    row("unknown method", small, {.method = quint16(9)}, ZIP_ER_COMPNOTSUPP, "Deflate64");
    row("link",
        "../../etc/passwd",
        {.level = 0, .madeBy = 0x0314, .attributes = 0xA1FFU << 16},
        ZIP_ER_OPNOTSUPP,
        "is a link");
    row("device",
        {},
        {.madeBy = 0x0314, .attributes = 0x61A4U << 16},
        ZIP_ER_OPNOTSUPP,
        "is no file");
    row("no header at its offset",
        small,
        {.level = 0, .size = 4000, .packed = 4000, .offset = 50},
        ZIP_ER_INCONS,
        "header is missing");
}

void TestZipReader::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, code);
    QFETCH(QString, part);
    const Opened opened(bytes);
    QVERIFY2(opened.reader, qPrintable(opened.problem));
    const qint64 declared = opened.reader->directory().entries()[0].size;
    QByteArray got;
    const Result r = opened.read(1, got);
    QVERIFY(!r.ok);
    QVERIFY2(r.text.contains(part), qPrintable(r.text));
    QVERIFY2(r.text.contains(u"'d\\e.txt'"_s) && r.text.contains(u"'C:\\a.zip'"_s),
             qPrintable(r.text));
    QCOMPARE(opened.reader->lastCode(), code);
    QVERIFY(got.size() <= declared);
}

void TestZipReader::damagedOtherMethod()
{
    const Opened opened(
        ZipBuilder().add("b.bin", "junk", {.method = quint16(ZIP_CM_BZIP2)}).build());
    QVERIFY(opened.reader);
    QByteArray got;
    const Result r = opened.read(1, got);
    QVERIFY(!r.ok);
    QVERIFY2(r.text.contains(u"'b.bin'"_s), qPrintable(r.text));
    QVERIFY(opened.reader->lastCode() != 0);
}

void TestZipReader::anyFlippedByte_neverLiesAboutSizeOrCrc()
{
    const QByteArray whole = ZipBuilder()
                                 .add("a/b.txt", someBytes(200, 1))
                                 .add("c", "stored", {.level = 0})
                                 .add("z", someBytes(50, 2), {.zip64 = true})
                                 .zip64End()
                                 .build();
    int readable = 0;
    for (qsizetype at = 0; at < whole.size(); ++at) {
        for (const int bit : {0x01, 0x80, 0xFF}) {
            QByteArray bytes = whole;
            bytes[at] = char(bytes[at] ^ bit);
            const Opened opened(bytes);
            if (!opened.reader)
                continue;
            const auto& entries = opened.reader->directory().entries();
            for (size_t i = 0; i < entries.size(); ++i) {
                QByteArray got;
                if (!opened.read(int(i) + 1, got).ok || entries[i].kind == EntryKind::Folder)
                    continue;
                ++readable;
                QCOMPARE(got.size(), entries[i].size);
                QCOMPARE(ZipBuilder::crc32(got), entries[i].crc);
            }
        }
    }
    QVERIFY(readable > 500);
}

VT_TEST_CLASS(TestZipReader)
#include "test_zip_reader.moc"
