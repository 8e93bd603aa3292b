#include "platform/AnsiCodec.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace vt;
using namespace Qt::StringLiterals;

class TestAnsiCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyByteStringComesBack_data();
    void everyByteStringComesBack();
    void knownTexts_data();
    void knownTexts();
    void unknownPagesFallBack();
    void missingCharacterIsNamed_data();
    void missingCharacterIsNamed();
    void foreignFilesAreRecognised_data();
    void foreignFilesAreRecognised();
};

void TestAnsiCodec::everyByteStringComesBack_data()
{
    QTest::addColumn<int>("page");
    for (const int page : {1250,
                           1251,
                           1252,
                           1253,
                           1255,
                           1257,
                           437,
                           850,
                           852,
                           857,
                           874,
                           932,
                           936,
                           949,
                           950,
                           65001,
                           99999})
        QTest::addRow("%d", page) << page;
}

void TestAnsiCodec::everyByteStringComesBack()
{
    QFETCH(int, page);
    const AnsiCodec codec(page);
    QByteArray all;
    for (int lead = 0; lead < 256; ++lead) {
        all += char(lead);
        for (int trail = 0; trail < 256; trail += 5) {
            all += char(lead);
            all += char(trail);
        }
    }
    QRandomGenerator random(quint32(page) + 1);
    QList<QByteArray> samples = {all, QByteArray("\x81"), QByteArray("\xe9 \xff"), QByteArray()};
    for (int i = 0; i < 200; ++i) {
        QByteArray bytes(random.bounded(60), Qt::Uninitialized);
        for (char& byte : bytes)
            byte = char(random.bounded(256));
        samples += bytes;
    }
    for (const QByteArray& bytes : samples) {
        const QString text = codec.decode(bytes);
        const ResultOf<QByteArray> back = codec.encode(text);
        QVERIFY2(back.ok(), qPrintable(back.text));
        QCOMPARE(*back, bytes);
        // Texts are kept in a database as UTF-8 between reading and writing.
        QCOMPARE(QString::fromUtf8(text.toUtf8()), text);
    }
}

void TestAnsiCodec::knownTexts_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("western") << 1252 << QByteArray("Z\xfcrich \x80 \x99") << u"Zürich € ™"_s;
    QTest::newRow("cyrillic") << 1251 << QByteArray("\xcc\xee\xf1\xea\xe2\xe0") << u"Москва"_s;
    QTest::newRow("greek") << 1253 << QByteArray("\xc1\xe8\xde\xed\xe1") << u"Αθήνα"_s;
    QTest::newRow("thai") << 874 << QByteArray("\xa1") << u"\u0e01"_s;
    QTest::newRow("controls in an IBM page")
        << 850 << QByteArray("\x1a\x1c\x7f\x82") << u"\u001a\u001c\u007f\u00e9"_s;
    QTest::newRow("japanese") << 932 << QByteArray("\x93\x8c\x8b\x9e \xb1\\") << u"東京 ｱ\\"_s;
    QTest::newRow("chinese") << 936 << QByteArray("\xb1\xb1\xbe\xa9") << u"北京"_s;
    QTest::newRow("korean") << 949 << QByteArray("\xbc\xad\xbf\xef") << u"서울"_s;
    QTest::newRow("taiwanese") << 950 << QByteArray("\xa5_\xa5\xab") << u"北市"_s;
}

void TestAnsiCodec::knownTexts()
{
    QFETCH(int, page);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    const AnsiCodec codec(page);
    QCOMPARE(codec.codePage(), page);
    QCOMPARE(codec.decode(bytes), text);
    QCOMPARE(*codec.encode(text), bytes);
}

void TestAnsiCodec::unknownPagesFallBack()
{
    for (const int page : {0, -1, 65001, 1361, 12345}) {
        const AnsiCodec codec(page);
        QCOMPARE(codec.codePage(), 1252);
        QCOMPARE(codec.decode("\xe9"), u"é"_s);
    }
}

void TestAnsiCodec::missingCharacterIsNamed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("named");
    QTest::newRow("letter") << u"title=Ж-1"_s << u"'Ж' (U+0416)"_s;
    QTest::newRow("beyond the first plane") << u"x 😀"_s << u"'😀' (U+1F600)"_s;
    QTest::newRow("escape of another page") << u"\uf8e9"_s << u"(U+F8E9)"_s;
}

void TestAnsiCodec::missingCharacterIsNamed()
{
    QFETCH(QString, text);
    QFETCH(QString, named);
    const ResultOf<QByteArray> encoded = AnsiCodec().encode(text);
    QVERIFY(!encoded.ok());
    QVERIFY2(encoded.text.contains(named), qPrintable(encoded.text));
}

void TestAnsiCodec::foreignFilesAreRecognised_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("foreign");
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("ansi") << QByteArray("[fltsim.0]\r\n\xff\xfe=1") << false;
    QTest::newRow("utf-8 mark") << QByteArray("\xef\xbb\xbf[fltsim.0]") << false;
    QTest::newRow("little endian mark") << QByteArray("\xff\xfe[\0", 4) << true;
    QTest::newRow("only a mark") << QByteArray("\xfe\xff") << true;
    QTest::newRow("NUL late") << QByteArray(5000, 'x') + QByteArray(1, '\0') << true;
}

void TestAnsiCodec::foreignFilesAreRecognised()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, foreign);
    QCOMPARE(AnsiCodec::looksLikeUtf16OrBinary(bytes), foreign);
}

VT_TEST_CLASS(TestAnsiCodec)
#include "test_ansicodec.moc"
