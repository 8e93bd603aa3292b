#include "platform/Hash.h"
#include "support/Disk.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace vt;
using namespace vt::test;
using namespace Qt::StringLiterals;

class TestHash : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void knownValues()
    {
        const Rows<QByteArray, QByteArray, quint32> rows = {
            {"empty", {}, "99aa06d3014798d86001c324468d497f", 0u},
            {"digits", "123456789", "33119477ede5dcd5e9716427681d5860", 0xcbf43926u},
        };
        for (const auto& [bytes, xxh, crc] : rows) {
            QCOMPARE(xxh3(bytes).toHex(), xxh);
            QCOMPARE(crc32(bytes), crc);
        }
    }

    void piecesGiveTheSame()
    {
        QByteArray bytes;
        for (int i = 0; i < 300'000; ++i)
            bytes += char(i * 7 + i / 251);
        Xxh3 hash;
        quint32 crc = 0;
        for (qsizetype at = 0; at < bytes.size(); at += 70'001) {
            const QByteArrayView piece =
                QByteArrayView(bytes).sliced(at, qMin<qsizetype>(70'001, bytes.size() - at));
            hash.add(piece);
            crc = crc32(piece, crc);
        }
        QCOMPARE(hash.result(), xxh3(bytes));
        QCOMPARE(crc, crc32(bytes));
        hash.reset();
        QCOMPARE(hash.result(), xxh3(QByteArray()));
    }

    void fingerprints()
    {
        Disk disk;
        const QByteArray large(3 * 1024 * 1024 + 1, 'x'); // several pieces
        disk.write(u"FSX/Large.bgl"_s, large);
        disk.write(u"FSX/empty"_s, "");
        const ResultOf<Fingerprint> print = fingerprint(disk.files, u"c:\\fsx\\LARGE.BGL");
        QVERIFY2(print.ok(), qPrintable(print.text));
        QCOMPARE(print->size, large.size());
        QCOMPARE(print->xxh3, xxh3(large));
        QCOMPARE(print->modifiedNs, disk.files.info(u"C:\\FSX\\Large.bgl")->modifiedNs);
        QCOMPARE(fingerprint(disk.files, u"C:\\FSX\\empty")->xxh3, xxh3(QByteArray()));
        for (const QString& path : {u"C:\\FSX\\none"_s, u"C:\\FSX"_s, u"Q:\\x"_s}) {
            const ResultOf<Fingerprint> none = fingerprint(disk.files, path);
            QVERIFY(!none.ok());
            QVERIFY2(none.text.contains(path), qPrintable(none.text));
        }
    }
};

VT_TEST_CLASS(TestHash)
#include "test_hash.moc"
