#include "simconfig/engine/ConfigNormalizer.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace vt::test {

class TestNormalizer : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void config_becomesAnsiWithCrLf()
    {
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
        const Rows<QByteArray, QByteArray, bool> rows = {
            {"as it should be", wanted, wanted, false},
            {"no last line end", "[a]\r\nb=1", "[a]\r\nb=1", false},
            {"empty", {}, {}, false},
            {"bare LF", "[a]\nb=\xe9\n", wanted, true},
            {"bare CR", "[a]\rb=\xe9\r", wanted, true},
            {"mixed", "[a]\nb=\xe9\r\n", wanted, true},
            {"CR before CR LF", "a\r\r\nb", "a\r\n\r\nb", true},
            {"UTF-8 with mark", "\xef\xbb\xbf[a]\nb=\xc3\xa9\n", wanted, true},
            {"only a mark", "\xef\xbb\xbf", {}, true},
            {"UTF-16 little", "\xff\xfe" + utf16(u"[a]\r\nb=é\r\n"_s, false), wanted, true},
            {"UTF-16 big", "\xfe\xff" + utf16(u"[a]\nb=é\n"_s, true), wanted, true},
            {"UTF-16 without mark", utf16(u"[a]\r\nb=é\r\n"_s, false), wanted, true},
        };
        for (const auto& [in, out, changed] : rows) {
            const AnsiCodec ansi;
            const auto result = normalizeConfig(in, ansi);
            QVERIFY2(result.ok(), qPrintable(result.text));
            QCOMPARE(result->bytes, out);
            QCOMPARE(result->changed, changed);
            QCOMPARE(result->done.isEmpty(), !result->changed);
            const auto again = normalizeConfig(result->bytes, ansi);
            QVERIFY(again.ok() && !again->changed);
        }
    }

    void config_isRefusedWithItsCause()
    {
        const AnsiCodec ansi;
        const auto kanji = normalizeConfig("\xef\xbb\xbf"
                                           "title=\xe6\x97\xa5\n",
                                           ansi);
        QVERIFY(!kanji.ok());
        QVERIFY(kanji.text.contains(u'日'));
        QVERIFY(!normalizeConfig(QByteArray("a\0b\0\0\0c", 7), ansi).ok());
    }
};

} // namespace vt::test

using vt::test::TestNormalizer;
VT_TEST_CLASS(TestNormalizer)

#include "test_normalizer.moc"
