#include "platform/AnsiCodec.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modRoutines_INI;
using vt::test::Rows;

namespace {

const AnsiCodec& page()
{
    static const AnsiCodec codec(1252);
    return codec;
}

LineArray of(const QByteArray& text)
{
    return LineArray::ofBytes(text, page());
}

/// Lines with "|" between them instead of line ends.
QByteArray shown(const LineArray& lines)
{
    return lines.lines.join('|');
}

LineArray barred(const QByteArray& text)
{
    LineArray lines(page());
    lines.lines = text.split('|');
    return lines;
}

} // namespace

class TestArray : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void get()
    {
        // value: null: not found
        const Rows<QByteArray, QString, QString, bool, QString> rows = {
            {"names without case", "[FLTSIM.0]|Title=A", u"fltsim.0"_s, u"tITLE"_s, false, u"A"_s},
            {"comment cut", "[a]|t=Cub // x", u"a"_s, u"t"_s, false, u"Cub"_s},
            {"raw keeps comment", "[a]|t=C\tX // x", u"a"_s, u"t"_s, true, u"C\tX // x"_s},
            {"tab in a value is lost", "[a]|t=Cub\tX", u"a"_s, u"t"_s, false, u"CubX"_s},
            {"raw: header with blanks in front", " [a] ; x|t=1", u"a"_s, u"t"_s, true, u"1"_s},
            {"commented out", "[a]|;t=1|t=2", u"a"_s, u"t"_s, false, u"2"_s},
            {"first of two", "[a]|t=1|t=2", u"a"_s, u"t"_s, false, u"1"_s},
            {"other section", "[a]|t=1|[b]|t=2", u"b"_s, u"t"_s, false, u"2"_s},
            {"second of its name", "[a]|x=1|[b]|[a]|t=2", u"a"_s, u"t"_s, false, u"2"_s},
            {"blanks in the key", "[a]|ui type=x", u"a"_s, u"uitype"_s, false, u"x"_s},
            {"blanks in the wanted key", "[a]|ui type=x", u"a"_s, u"ui type"_s, false, u"x"_s},
            {"before the first header", "t=1|[a]|t=2", u""_s, u"t"_s, false, u"1"_s},
            {"empty value", "[a]|t=", u"a"_s, u"t"_s, false, u""_s},
            {"high bytes", "[\xc4]|\xd6=\xfc", u"ä"_s, u"ö"_s, false, u"ü"_s},
            {"missing key", "[a]|t=1", u"a"_s, u"u"_s, false, {}},
            {"missing section", "[a]|t=1", u"b"_s, u"t"_s, false, {}},
        };
        for (const auto& [lines, section, key, raw, value] : rows) {
            const std::optional<QString> found = INI_Entry_Get(barred(lines), section, key, raw);
            QCOMPARE(found.has_value(), !value.isNull());
            QCOMPARE(found.value_or(QString()), value);
        }
    }

    void update()
    {
        const Rows<QByteArray, QString, bool, QByteArray> rows = {
            {"empty value is appended to", "[a]|TX=", u"a"_s, false, "[a]|TX=2"},
            {"empty value keeps its spacing", "[a]| T x =  ", u"a"_s, false, "[a]| T x =  2"},
            {"empty value before a comment", "[a]|TX= // none", u"a"_s, false, "[a]|TX=2"},
            {"value goes with its comment", "[a]|TX = 1 ; old", u"a"_s, false, "[a]|TX=2"},
            {"raw: the comment is the value", "[a]|TX= // none", u"a"_s, true, "[a]|TX=2"},
            {"new key behind the header", "[a]|x=1||[b]", u"A"_s, false, "[a]|tx=2|x=1||[b]"},
            {"new key behind the first", "[a]|x|[a]|y", u"a"_s, false, "[a]|tx=2|x|[a]|y"},
            {"section missing", "; head|[a]|x=1", u"b"_s, false, "; head|tx=2|[a]|x=1"},
            {"only the first match", "[a]|tx=1|tx=1", u"a"_s, false, "[a]|tx=2|tx=1"},
        };
        for (const auto& [lines, section, raw, expected] : rows) {
            LineArray array = barred(lines);
            QVERIFY(INI_Entry_Update(array, section, u"tx"_s, u"2"_s, raw).ok);
            QCOMPARE(shown(array), expected);
        }
    }

    void set()
    {
        const Rows<QByteArray, QByteArray> rows = {
            {"new section at the very top", "; head|[a]|x=1", "[b]|t=2|; head|[a]|x=1"},
            {"section there", "[a]|[B]|x=1", "[a]|[B]|t=2|x=1"},
            {"entry there", "[b]|t=1", "[b]|t=2"},
        };
        for (const auto& [lines, expected] : rows) {
            LineArray array = barred(lines);
            QVERIFY(INI_Entry_Set(array, u"b"_s, u"t"_s, u"2"_s).ok);
            QCOMPARE(shown(array), expected);
        }
    }

    void set_refusesWhatCannotBeWritten()
    {
        // named: what the text must hold
        const Rows<QString, QString, QString, QString> rows = {
            {"character outside the page", u"a"_s, u"t"_s, u"x\u4e2d"_s, u"\u4e2d"_s},
            {"line break in the value", u"a"_s, u"t"_s, u"1\r\n[b]"_s, u"line break"_s},
            {"NUL in the value", u"a"_s, u"t"_s, u"1"_s + QChar(0), u"NUL"_s},
            {"sign in the key", u"a"_s, u"t=u"_s, u"1"_s, u"t=u"_s},
            {"key that is a comment", u"a"_s, u";t"_s, u"1"_s, u";t"_s},
            {"no key", u"a"_s, u" "_s, u"1"_s, u"' '"_s},
            {"section with a bracket", u"a]b"_s, u"t"_s, u"1"_s, u"a]b"_s},
            {"section with a comment", u"a ; b"_s, u"t"_s, u"1"_s, u"a ; b"_s},
            {"section outside the page", u"\u4e2d"_s, u"t"_s, u"1"_s, u"\u4e2d"_s},
        };
        for (const auto& [section, key, value, named] : rows) {
            LineArray array = barred("[a]|x=1"_ba);
            const Result result = INI_Entry_Set(array, section, key, value);
            QVERIFY(!result.ok);
            QVERIFY2(result.text.contains(named), qPrintable(result.text));
            QCOMPARE(shown(array), "[a]|x=1"_ba);
        }
    }

    void entryDelete()
    {
        const Rows<QByteArray, bool, QByteArray> rows = {
            {"first match", "[a]|t=1|t=2", true, "[a]|t=2"},
            {"comments stay", "[a]|;t=1| T = 2 // x|;", true, "[a]|;t=1|;"},
            {"missing", "[a]|x=1|[b]|t=1", false, "[a]|x=1|[b]|t=1"},
        };
        for (const auto& [lines, done, expected] : rows) {
            LineArray array = barred(lines);
            QCOMPARE(INI_Entry_Delete(array, u"A"_s, u"t"_s), done);
            QCOMPARE(shown(array), expected);
            QVERIFY(!INI_Entry_Delete(array, u""_s, u"t"_s));
            QVERIFY(!INI_Entry_Delete(array, u"a"_s, u""_s));
        }
    }

    void sectionLines()
    {
        // expected: null: not found
        const Rows<QByteArray, QByteArray> rows = {
            {"to the next header", "x|[a] ; c| t = 1||[b]|u=1", "[a] ; c| t = 1|"},
            {"last", "[b]|[A]|t=1|", "[A]|t=1|"},
            {"header of the same name goes on", "[a]|t=1|[A]|u=1|[b]", "[a]|t=1|[A]|u=1"},
            {"only the first", "[a]|t=1|[b]|[a]|u=1", "[a]|t=1"},
            {"missing", "[b]|a=1", {}},
        };
        for (const auto& [lines, expected] : rows) {
            const std::optional<LineArray> found = INI_Section_GetLines(barred(lines), u"a"_s);
            QCOMPARE(found.has_value(), !expected.isNull());
            if (found)
                QCOMPARE(shown(*found), expected);
            QVERIFY(!INI_Section_GetLines(barred(lines), u""_s));
        }
    }

    void sectionDelete()
    {
        const Rows<QByteArray, bool, QByteArray> rows = {
            {"every one", "h|[a]|1|[b]|2|[A]|3", true, "h|[b]|2"},
            {"nothing left", "[a]|1", true, ""},
            {"missing", "[b]|1", false, "[b]|1"},
        };
        for (const auto& [lines, done, expected] : rows) {
            LineArray array = barred(lines);
            QCOMPARE(INI_Section_Delete(array, u"a"_s), done);
            QCOMPARE(shown(array), expected);
            QVERIFY(!INI_Section_Delete(array, u""_s));
        }
    }

    void insertAfter()
    {
        const Rows<QByteArray, QString, QByteArray> rows = {
            {"between", "[a]|1|[b]|2", u"A"_s, "[a]|1|N|[b]|2"},
            {"at the top", "h|[a]|1", u""_s, "N|h|[a]|1"},
            {"last section: nothing", "[a]|1|[b]|2", u"b"_s, "[a]|1|[b]|2"},
            {"missing: nothing", "[a]|1|[b]|2", u"c"_s, "[a]|1|[b]|2"},
            {"once", "[a]|1|[b]|[a]|2|[c]", u"a"_s, "[a]|1|N|[b]|[a]|2|[c]"},
            {"before one of the same name", "[a]|1|[a]|2|[c]", u"a"_s, "[a]|1|N|[a]|2|[c]"},
        };
        for (const auto& [lines, after, expected] : rows) {
            LineArray array = barred(lines);
            QCOMPARE(INI_Section_InsertAfter(array, barred("N"_ba), after), lines != expected);
            QCOMPARE(shown(array), expected);
        }
    }

    void replace()
    {
        // expected: null: not found
        const Rows<QByteArray, QByteArray> rows = {
            {"between", "[x]|1|[a]|2|[y]|3", "[x]|1|N|[y]|3"},
            {"first goes to the top", "h|[a]|2|[y]|3", "N|h|[y]|3"},
            {"last is appended", "[x]|1|[a]|2|", "[x]|1|N"},
            {"the only one", "[a]|2", "N"},
            {"others of the name go", "[x]|[a]|2|[y]|[A]|3", "[x]|N|[y]"},
            {"neighbour has a twin", "[x]|1|[y]|[x]|2|[a]|3|[z]", "[x]|1|[y]|[x]|2|N|[z]"},
            {"missing", "[x]|1", {}},
        };
        for (const auto& [lines, expected] : rows) {
            LineArray array = barred(lines);
            QCOMPARE(INI_Section_Replace(array, u"a"_s, barred("N"_ba)), !expected.isNull());
            QCOMPARE(shown(array), expected.isNull() ? lines : expected);
        }
    }

    void rename()
    {
        const Rows<QByteArray, QString, QString, bool, QByteArray> rows = {
            {"first of two", "[A]|a=1|[a]", u"a"_s, u"b"_s, true, "[b]|a=1|[a]"},
            {"rest of the header", "[ ab ] ; was AB", u"Ab"_s, u"c"_s, true, "[ c ] ; was c"},
            {"tab inside", "[flt\tsim.0] ; x", u"fltsim.0"_s, u"b"_s, true, "[b] ; x"},
            {"equal", "[A]", u"A"_s, u"a"_s, true, "[A]"},
            {"no new name", "[A]", u"A"_s, u""_s, false, "[A]"},
            {"missing", "[A]", u"b"_s, u"c"_s, false, "[A]"},
            {"new name grows by the old", "[a]", u"a"_s, u"aa"_s, true, "[aa]"},
        };
        for (const auto& [lines, oldName, newName, done, expected] : rows) {
            LineArray array = barred(lines);
            QCOMPARE(INI_Section_Rename(array, oldName, newName).ok, done);
            QCOMPARE(shown(array), expected);
        }
    }

    void headerComments()
    {
        const Rows<QByteArray, QByteArray> rows = {
            {"others are skipped", "; a||x=1| // b|[a]|; c", "; a|| // b"},
            {"none", "[a]|; c", ""},
            {"no header at all", "'x|y", "'x"},
        };
        for (const auto& [lines, expected] : rows)
            QCOMPARE(shown(INI_Header_GetComments(barred(lines))), expected);
    }

    void names_keepDuplicatesInOrder()
    {
        const LineArray lines = barred("x|[b]|[A] ; c|t=[z]|//[q]|[b]"_ba);
        QCOMPARE(INI_Sections_GetNames(lines), (QStringList{u"b"_s, u"A"_s, u"b"_s}));
        QCOMPARE(INI_Section_GetFirst(lines), std::optional(u"b"_s));
        QVERIFY(!INI_Section_GetFirst(barred("x"_ba)));
    }

    void withoutContent_nothingHappens()
    {
        LineArray lines(page());
        QVERIFY(!lines.hasContent());
        QVERIFY(!INI_Entry_Get(lines, u"a"_s, u"t"_s));
        QVERIFY(!INI_Entry_Update(lines, u"a"_s, u"t"_s, u"1"_s).ok);
        QVERIFY(!INI_Entry_Set(lines, u"a"_s, u"t"_s, u"1"_s).ok);
        QVERIFY(!INI_Section_InsertAfter(lines, barred("N"_ba), u""_s));
        QVERIFY(!INI_Section_Rename(lines, u"a"_s, u"a"_s).ok);
        QVERIFY(INI_Sections_GetNames(lines).isEmpty());
        QCOMPARE(lines.lines, QList<QByteArray>{QByteArray()});
        QVERIFY(of("\r\n").hasContent());
    }

    void changes()
    {
        const Rows<QByteArray, QByteArray, QByteArray, QByteArray> rows = {
            {"equal", "a|b|", "a|b|", "", ""},
            {"appended", "a|", "a|b|c|", "b|c", ""},
            {"from an empty file", "", "a|b|", "a|b", ""},
            {"only a line end", "a", "a|", "", ""},
            {"changed", "a|b|c", "a|B|c", "B", "b"},
            {"two places", "a|b|c|d|e", "a|x|b|c|e|y", "x|y", "d"},
        };
        for (const auto& [before, after, added, removed] : rows) {
            const LineChanges found = lineChanges(barred(before), barred(after));
            QCOMPARE(found.added.join(u'|').toLatin1(), added);
            QCOMPARE(found.removed.join(u'|').toLatin1(), removed);
        }
    }

    void split_isExact()
    {
        QCOMPARE(of("a\r\nb\r\n").lines, (QList<QByteArray>{"a", "b", ""}));
        QCOMPARE(of("a\nb\n").lines, (QList<QByteArray>{"a\nb\n"}));
        QCOMPARE(of("a\r\r\nb\r").lines, (QList<QByteArray>{"a\r", "b\r"}));
        QCOMPARE(of("").lines, (QList<QByteArray>{""}));
    }
};

VT_TEST_CLASS(TestArray)
#include "test_array.moc"
