#include "platform/AnsiCodec.h"
#include "simconfig/engine/INI_Lines.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modRoutines_INI;
using vt::test::Rows;

class TestLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void stripComment()
    {
        const Rows<QString, QString, QString> rows = {
            {"none", u"title=Piper Cub"_s, u"title=Piper Cub"_s, u""_s},
            {"double slash", u"title=Piper Cub // stock"_s, u"title=Piper Cub"_s, u"// stock"_s},
            {"slash with a blank before", u"a=b /c"_s, u"a=b"_s, u"/c"_s},
            {"slash with a blank behind", u"a=b/ c"_s, u"a=b"_s, u"/ c"_s},
            {"slash with a tab before", u"a=b\t/c"_s, u"a=b"_s, u"/c"_s},
            {"slash in a path", u"path=C:/Sim/x.air"_s, u"path=C:/Sim/x.air"_s, u""_s},
            {"slash at the end", u"a=b/"_s, u"a=b/"_s, u""_s},
            {"path hides a later mark", u"texture=a/b ; old"_s, u"texture=a/b ; old"_s, u""_s},
            {"path hides a later slash", u"sim=../x // y"_s, u"sim=../x // y"_s, u""_s},
            {"semicolon", u"a=1;b"_s, u"a=1"_s, u";b"_s},
            {"semicolon before a path", u"a=1 ; x/y"_s, u"a=1"_s, u"; x/y"_s},
            {"first place", u"; whole"_s, u""_s, u"; whole"_s},
            {"slash in first place", u"/whole"_s, u""_s, u"/whole"_s},
            {"apostrophe in first place", u"'whole"_s, u""_s, u"'whole"_s},
            {"blank, then comment", u"  // whole"_s, u""_s, u"// whole"_s},
            {"apostrophe in a name", u"a=Pilot's choice"_s, u"a=Pilot's choice"_s, u""_s},
            {"apostrophe behind a space", u"atc_id=N123 'ident"_s, u"atc_id=N123"_s, u"'ident"_s},
            {"quoted piece", u"a='b' c"_s, u"a='b' c"_s, u""_s},
            {"quoted piece behind a space", u"a= 'b' c"_s, u"a= 'b' c"_s, u""_s},
            {"third one behind a space", u"a='b' 'c"_s, u"a='b' 'c"_s, u""_s},
            {"third one in a word, comment", u"a='b' c's 'd"_s, u"a='b' c's"_s, u"'d"_s},
            {"name, then a comment", u"a=Bob's x 'd"_s, u"a=Bob's x 'd"_s, u""_s},
            {"two names, then semicolon", u"a=Bo's, Al's ; c"_s, u"a=Bo's, Al's"_s, u"; c"_s},
            {"tab before apostrophe", u"a=b\t'c"_s, u"a=b'c"_s, u""_s},
            {"inner tabs go", u"ti\ttle=\tPiper\tCub\t"_s, u"title=PiperCub"_s, u""_s},
            {"CR goes after trimming", u"a=b \r"_s, u"a=b "_s, u""_s},
            {"empty", u""_s, u""_s, u""_s},
            {"only a slash", u"/"_s, u""_s, u"/"_s},
            {"only blanks", u" \t "_s, u""_s, u""_s},
        };
        for (const auto& [line, data, comment] : rows) {
            const StrippedLine stripped = INI_Line_StripComment(line, true);
            QCOMPARE(stripped.data, data);
            QCOMPARE(stripped.comment, comment);
            QCOMPARE(INI_Line_StripComment(line).comment, QString());
            const QByteArray bytes = line.toLatin1();
            QByteArray room;
            const StrippedView view = strippedView(bytes, room);
            QCOMPARE(QString::fromLatin1(view.data), data);
            QCOMPARE(view.hasComment, !comment.isEmpty());
        }
    }

    void sectionName()
    {
        // name: null: no header
        const Rows<QString, QString> rows = {
            {"plain", u"[fltsim.0]"_s, u"fltsim.0"_s},
            {"comment behind", u"[fltsim.0] ; comment"_s, u"fltsim.0"_s},
            {"blanks inside", u"[ Fltsim.0 ]"_s, u"Fltsim.0"_s},
            {"tabs inside", u"[\tflt\tsim.0\t]"_s, u"fltsim.0"_s},
            {"doubled bracket", u"[[a]]"_s, u"a"_s},
            {"empty name", u"[]"_s, u""_s},
            {"unclosed", u"[fltsim.0"_s, {}},
            {"blank in front", u" [fltsim.0]"_s, {}},
            {"closing first", u"]x["_s, {}},
            {"empty line", u""_s, {}},
        };
        for (const auto& [line, name] : rows) {
            const std::optional<QString> found = INI_Line_GetSectionName(line);
            QCOMPARE(found.has_value(), !name.isNull());
            QCOMPARE(found.value_or(QString()), name);
        }
    }

    void splitEntry()
    {
        // key: null: no entry
        const Rows<QString, QString, QString> rows = {
            {"plain", u"a=b"_s, u"a"_s, u"b"_s},
            {"blanks inside the key", u"ui type=x"_s, u"uitype"_s, u"x"_s},
            {"tabs before the sign", u"title\t\t= x "_s, u"title"_s, u"x"_s},
            {"second sign belongs to the value", u"a=b=c"_s, u"a"_s, u"b=c"_s},
            {"sign in first place", u"=a"_s, {}, {}},
            {"sign in first place, another later", u"=a=b"_s, u"=a"_s, u"b"_s},
            {"empty value", u"texture="_s, u"texture"_s, u""_s},
            {"no sign", u"texture"_s, {}, {}},
        };
        for (const auto& [line, key, value] : rows) {
            const std::optional<Entry> entry = INI_Line_SplitEntry(line);
            QCOMPARE(entry.has_value(), !key.isNull());
            const QByteArray bytes = line.toLatin1();
            const std::optional<EntryView> view = splitView(bytes);
            QCOMPARE(view.has_value(), !key.isNull());
            if (!entry)
                continue;
            QCOMPARE(entry->key, key);
            QCOMPARE(entry->value, value);
            QCOMPARE(QString::fromLatin1(keyBytes(view->key)), key);
            QCOMPARE(QString::fromLatin1(view->value), value);
        }
    }

    void headerOfWholeLine()
    {
        // name: null: no header
        const Rows<QByteArray, QString> rows = {
            {"blanks and tabs in front", "\t  [a]", u"a"_s},
            {"commented out", "//[a]", {}},
            {"comment inside the brackets", "[a ; b]", {}},
            {"slash inside the brackets", "[a/b]", u"a/b"_s},
            {"value in brackets", "x=[a]", {}},
            {"high bytes", "[\xc4rger]", u"Ärger"_s},
        };
        for (const auto& [line, name] : rows) {
            const AnsiCodec ansi(1252);
            const std::optional<QString> found = sectionOfLine(LineArray(ansi), line);
            QCOMPARE(found.has_value(), !name.isNull());
            QCOMPARE(found.value_or(QString()), name);
        }
    }

    void brackets_comeAndGo()
    {
        QCOMPARE(INI_Section_NameStrip(u"[[Area.001]"_s), u"Area.001"_s);
        QCOMPARE(INI_Section_NameBracket(u"GENERAL"_s), u"[GENERAL]"_s);
        QCOMPARE(INI_Section_NameBracket(u"[GENERAL]"_s), u"[GENERAL]"_s);
        QVERIFY(INI_Char_IsComment(u"'"_s) && INI_Char_IsComment(u"/"_s) &&
                INI_Char_IsComment(u";"_s));
        QVERIFY(!INI_Char_IsComment(u"#"_s) && !INI_Char_IsComment(u"//"_s));
    }

    void bytesAndTextAgree()
    {
        // The rules exist once, but run over bytes and over text: random lines of what they look
        // for.
        const QByteArray alphabet = "/;'[]= \t\rab.\xe9";
        quint32 seed = 12345;
        QByteArray room;
        for (int round = 0; round < 20'000; ++round) {
            QByteArray line;
            for (int length = round % 17; length > 0; --length) {
                seed = seed * 1664525 + 1013904223;
                line += alphabet.at((seed >> 16) % alphabet.size());
            }
            const QString text = QString::fromLatin1(line);
            QCOMPARE(QString::fromLatin1(strippedView(line, room).data),
                     INI_Line_StripComment(text).data);
            QCOMPARE(splitView(line).has_value(), INI_Line_SplitEntry(text).has_value());
        }
    }

    void doubleByteName_isNotCutAtItsTrailByte()
    {
        const AnsiCodec japanese(932);
        if (japanese.codePage() != 932)
            QFAIL("code page 932 is not available");
        // The second byte of this character (U+30BE, 83 5D) is a closing bracket.
        const QByteArray line = "[\x83\x5d"
                                "A]";
        QCOMPARE(sectionOfLine(LineArray(japanese), line).value_or(QString()), u"\u30beA"_s);
    }
};

VT_TEST_CLASS(TestLines)
#include "test_lines.moc"
