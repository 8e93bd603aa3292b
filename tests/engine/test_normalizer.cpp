#include "simconfig/engine/ConfigNormalizer.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace vt::test {

class TestNormalizer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void config_becomesAnsiWithCrLf_data();
    void config_becomesAnsiWithCrLf();
    void config_isRefusedWithItsCause();
};

void TestNormalizer::config_becomesAnsiWithCrLf_data()
{
    QTest::addColumn<QByteArray>("in");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<bool>("changed");
    const auto utf16 = [](const QString& text, bool big) {
        QByteArray bytes;
        for (const QChar c : text) {
            const char high = char(c.unicode() >> 8);
            const char low = char(c.unicode() & 0xff);
            bytes += big ? high : low;
            bytes += big ? low : high;
        }
        return bytes;
    };
    const QByteArray wanted = "[a]\r\nb=\xe9\r\n";
    QTest::newRow("as it should be") << wanted << wanted << false;
    QTest::newRow("no last line end")
        << QByteArray("[a]\r\nb=1") << QByteArray("[a]\r\nb=1") << false;
    QTest::newRow("empty") << QByteArray() << QByteArray() << false;
    QTest::newRow("bare LF") << QByteArray("[a]\nb=\xe9\n") << wanted << true;
    QTest::newRow("bare CR") << QByteArray("[a]\rb=\xe9\r") << wanted << true;
    QTest::newRow("mixed") << QByteArray("[a]\nb=\xe9\r\n") << wanted << true;
    QTest::newRow("CR before CR LF") << QByteArray("a\r\r\nb") << QByteArray("a\r\n\r\nb") << true;
    QTest::newRow("UTF-8 with mark")
        << QByteArray("\xef\xbb\xbf[a]\nb=\xc3\xa9\n") << wanted << true;
    QTest::newRow("only a mark") << QByteArray("\xef\xbb\xbf") << QByteArray() << true;
    QTest::newRow("UTF-16 little")
        << QByteArray("\xff\xfe") + utf16(u"[a]\r\nb=é\r\n"_s, false) << wanted << true;
    QTest::newRow("UTF-16 big") << QByteArray("\xfe\xff") + utf16(u"[a]\nb=é\n"_s, true) << wanted
                                << true;
    QTest::newRow("UTF-16 without mark") << utf16(u"[a]\r\nb=é\r\n"_s, false) << wanted << true;
}

void TestNormalizer::config_becomesAnsiWithCrLf()
{
    QFETCH(QByteArray, in);
    const AnsiCodec ansi;
    const auto result = normalizeConfig(in, ansi);
    QVERIFY2(result.ok(), qPrintable(result.text));
    QTEST(result->bytes, "out");
    QTEST(result->changed, "changed");
    QCOMPARE(result->done.isEmpty(), !result->changed);
    const auto again = normalizeConfig(result->bytes, ansi);
    QVERIFY(again.ok() && !again->changed);
}

void TestNormalizer::config_isRefusedWithItsCause()
{
    const AnsiCodec ansi;
    const auto kanji = normalizeConfig("\xef\xbb\xbf"
                                       "title=\xe6\x97\xa5\n",
                                       ansi);
    QVERIFY(!kanji.ok());
    QVERIFY(kanji.text.contains(u'日'));
    QVERIFY(!normalizeConfig(QByteArray("a\0b\0\0\0c", 7), ansi).ok());
}

} // namespace vt::test

using vt::test::TestNormalizer;
VT_TEST_CLASS(TestNormalizer)

#include "test_normalizer.moc"
