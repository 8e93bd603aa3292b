#include "platform/AnsiCodec.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace vt;
using vt::test::Rows;
using namespace Qt::StringLiterals;

class TestAnsiCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void everyByteStringComesBack()
    {
        for (const QString& number :
             u"1250 1251 1252 1253 1255 1257 437 850 852 857 874 932 936 949 950 65001 99999"_s
                 .split(u' ')) {
            const int page = number.toInt();
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
            QList<QByteArray> samples = {
                all, QByteArray("\x81"), QByteArray("\xe9 \xff"), QByteArray()};
            for (int i = 0; i < 200; ++i) {
                QByteArray bytes(random.bounded(60), Qt::Uninitialized);
                for (char& byte : bytes)
                    byte = char(random.bounded(256));
                samples += bytes;
            }
            for (const QByteArray& bytes : samples) {
                const QString text = codec.decode(bytes);
                const ResultOf<QByteArray> back = codec.encode(text);
                QVERIFY2(back.ok(), qPrintable(QString::number(page) + back.text));
                QCOMPARE(*back, bytes);
                // Texts are kept in a database as UTF-8 between reading and writing.
                QCOMPARE(QString::fromUtf8(text.toUtf8()), text);
            }
        }
    }

    void knownTexts()
    {
        const Rows<int, QByteArray, QString> rows = {
            {"western", 1252, "Z\xfcrich \x80 \x99", u"Zürich € ™"_s},
            {"cyrillic", 1251, "\xcc\xee\xf1\xea\xe2\xe0", u"Москва"_s},
            {"greek", 1253, "\xc1\xe8\xde\xed\xe1", u"Αθήνα"_s},
            {"thai", 874, "\xa1", u"\u0e01"_s},
            {"controls in an IBM page", 850, "\x1a\x1c\x7f\x82", u"\u001a\u001c\u007f\u00e9"_s},
            {"japanese", 932, "\x93\x8c\x8b\x9e \xb1\\", u"東京 ｱ\\"_s},
            {"chinese", 936, "\xb1\xb1\xbe\xa9", u"北京"_s},
            {"korean", 949, "\xbc\xad\xbf\xef", u"서울"_s},
            {"taiwanese", 950, "\xa5_\xa5\xab", u"北市"_s},
        };
        for (const auto& [page, bytes, text] : rows) {
            const AnsiCodec codec(page);
            QCOMPARE(codec.codePage(), page);
            QCOMPARE(codec.decode(bytes), text);
            QCOMPARE(*codec.encode(text), bytes);
        }
    }

    void unknownPagesFallBack()
    {
        for (const int page : {0, -1, 65001, 1361, 12345}) {
            const AnsiCodec codec(page);
            QCOMPARE(codec.codePage(), 1252);
            QCOMPARE(codec.decode("\xe9"), u"é"_s);
        }
    }

    void missingCharacterIsNamed()
    {
        const Rows<QString, QString> rows = {
            {"letter", u"title=Ж-1"_s, u"'Ж' (U+0416)"_s},
            {"beyond the first plane", u"x 😀"_s, u"'😀' (U+1F600)"_s},
            {"escape of another page", u"\uf8e9"_s, u"(U+F8E9)"_s},
        };
        for (const auto& [text, named] : rows) {
            const ResultOf<QByteArray> encoded = AnsiCodec().encode(text);
            QVERIFY(!encoded.ok());
            QVERIFY2(encoded.text.contains(named), qPrintable(encoded.text));
        }
    }

    void foreignFilesAreRecognised()
    {
        const Rows<QByteArray, bool> rows = {
            {"empty", {}, false},
            {"ansi", "[fltsim.0]\r\n\xff\xfe=1", false},
            {"utf-8 mark", "\xef\xbb\xbf[fltsim.0]", false},
            {"little endian mark", QByteArray("\xff\xfe[\0", 4), true},
            {"only a mark", "\xfe\xff", true},
            {"NUL late", QByteArray(5000, 'x') + QByteArray(1, '\0'), true},
        };
        for (const auto& [bytes, foreign] : rows)
            QCOMPARE(AnsiCodec::looksLikeUtf16OrBinary(bytes), foreign);
    }
};

VT_TEST_CLASS(TestAnsiCodec)
#include "test_ansicodec.moc"
