#include "platform/AnsiCodec.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modRoutines_INI;

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
    void get_data();
    void get();
    void update_data();
    void update();
    void set_data();
    void set();
    void set_refusesWhatCannotBeWritten_data();
    void set_refusesWhatCannotBeWritten();
    void entryDelete_data();
    void entryDelete();
    void sectionLines_data();
    void sectionLines();
    void sectionDelete_data();
    void sectionDelete();
    void insertAfter_data();
    void insertAfter();
    void replace_data();
    void replace();
    void rename_data();
    void rename();
    void headerComments_data();
    void headerComments();
    void names_keepDuplicatesInOrder();
    void withoutContent_nothingHappens();
    void changes_data();
    void changes();
    void split_isExact();
};

void TestArray::get_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("raw");
    QTest::addColumn<QString>("value"); ///< null: not found

    const auto row = [](const char* name,
                        const QByteArray& lines,
                        const QString& section,
                        const QString& key,
                        bool raw,
                        const QString& value) {
        QTest::newRow(name) << lines << section << key << raw << value;
    };
    row("names without case", "[FLTSIM.0]|Title=A"_ba, u"fltsim.0"_s, u"tITLE"_s, false, u"A"_s);
    row("comment cut", "[a]|t=Cub // x"_ba, u"a"_s, u"t"_s, false, u"Cub"_s);
    row("raw keeps comment and tab",
        "[a]|t=Cub\tX // x"_ba,
        u"a"_s,
        u"t"_s,
        true,
        u"Cub\tX // x"_s);
    row("tab in a value is lost", "[a]|t=Cub\tX"_ba, u"a"_s, u"t"_s, false, u"CubX"_s);
    row("raw: header with blanks in front", " [a] ; x|t=1"_ba, u"a"_s, u"t"_s, true, u"1"_s);
    row("commented out", "[a]|;t=1|t=2"_ba, u"a"_s, u"t"_s, false, u"2"_s);
    row("first of two", "[a]|t=1|t=2"_ba, u"a"_s, u"t"_s, false, u"1"_s);
    row("other section", "[a]|t=1|[b]|t=2"_ba, u"b"_s, u"t"_s, false, u"2"_s);
    row("second section of the name", "[a]|x=1|[b]|y=1|[a]|t=2"_ba, u"a"_s, u"t"_s, false, u"2"_s);
    row("blanks in the key", "[a]|ui type=x"_ba, u"a"_s, u"uitype"_s, false, u"x"_s);
    row("blanks in the wanted key", "[a]|ui type=x"_ba, u"a"_s, u"ui type"_s, false, u"x"_s);
    row("before the first header", "t=1|[a]|t=2"_ba, u""_s, u"t"_s, false, u"1"_s);
    row("empty value", "[a]|t="_ba, u"a"_s, u"t"_s, false, u""_s);
    row("high bytes", "[\xc4]|\xd6=\xfc"_ba, u"ä"_s, u"ö"_s, false, u"ü"_s);
    row("missing key", "[a]|t=1"_ba, u"a"_s, u"u"_s, false, QString());
    row("missing section", "[a]|t=1"_ba, u"b"_s, u"t"_s, false, QString());
}

void TestArray::get()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(bool, raw);
    QFETCH(QString, value);
    const std::optional<QString> found = INI_Entry_Get(barred(lines), section, key, raw);
    QCOMPARE(found.has_value(), !value.isNull());
    QCOMPARE(found.value_or(QString()), value);
}

void TestArray::update_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("raw");
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](const char* name,
                        const QByteArray& lines,
                        const QString& section,
                        const QString& key,
                        bool raw,
                        const QByteArray& expected) {
        QTest::newRow(name) << lines << section << key << raw << expected;
    };
    row("empty value is appended to",
        "[a]|texture="_ba,
        u"a"_s,
        u"texture"_s,
        false,
        "[a]|texture=2"_ba);
    row("empty value keeps its spacing",
        "[a]| Tex ture =  "_ba,
        u"a"_s,
        u"texture"_s,
        false,
        "[a]| Tex ture =  2"_ba);
    row("empty value before a comment",
        "[a]|Texture= // none"_ba,
        u"a"_s,
        u"texture"_s,
        false,
        "[a]|Texture=2"_ba);
    row("value is replaced with its comment",
        "[a]|Texture = 1 ; old"_ba,
        u"a"_s,
        u"texture"_s,
        false,
        "[a]|Texture=2"_ba);
    row("raw: the comment is the value",
        "[a]|texture= // none"_ba,
        u"a"_s,
        u"texture"_s,
        true,
        "[a]|texture=2"_ba);
    row("new key behind the header",
        "[a]|x=1||[b]"_ba,
        u"A"_s,
        u"Texture"_s,
        false,
        "[a]|Texture=2|x=1||[b]"_ba);
    row("new key behind the first header",
        "[a]|x=1|[a]|y=1"_ba,
        u"a"_s,
        u"t"_s,
        false,
        "[a]|t=2|x=1|[a]|y=1"_ba);
    row("section missing", "; head|[a]|x=1"_ba, u"b"_s, u"t"_s, false, "; head|t=2|[a]|x=1"_ba);
    row("only the first match", "[a]|t=1|t=1"_ba, u"a"_s, u"t"_s, false, "[a]|t=2|t=1"_ba);
}

void TestArray::update()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(bool, raw);
    QFETCH(QByteArray, expected);
    LineArray array = barred(lines);
    QVERIFY(INI_Entry_Update(array, section, key, u"2"_s, raw).ok);
    QCOMPARE(shown(array), expected);
}

void TestArray::set_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("new section at the very top") << "; head|[a]|x=1"_ba
                                                 << "[b]|t=2|; head|[a]|x=1"_ba;
    QTest::newRow("section there") << "[a]|[B]|x=1"_ba
                                   << "[a]|[B]|t=2|x=1"_ba;
    QTest::newRow("entry there") << "[b]|t=1"_ba
                                 << "[b]|t=2"_ba;
}

void TestArray::set()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArray, expected);
    LineArray array = barred(lines);
    QVERIFY(INI_Entry_Set(array, u"b"_s, u"t"_s, u"2"_s).ok);
    QCOMPARE(shown(array), expected);
}

void TestArray::set_refusesWhatCannotBeWritten_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("named"); ///< what the text must hold

    QTest::newRow("character outside the page") << u"a"_s << u"t"_s << u"x\u4e2d"_s << u"\u4e2d"_s;
    QTest::newRow("line break in the value")
        << u"a"_s << u"t"_s << u"1\r\n[b]"_s << u"line break"_s;
    QTest::newRow("NUL in the value") << u"a"_s << u"t"_s << u"1"_s + QChar(0) << u"NUL"_s;
    QTest::newRow("sign in the key") << u"a"_s << u"t=u"_s << u"1"_s << u"t=u"_s;
    QTest::newRow("key that is a comment") << u"a"_s << u";t"_s << u"1"_s << u";t"_s;
    QTest::newRow("no key") << u"a"_s << u" "_s << u"1"_s << u"' '"_s;
    QTest::newRow("section with a bracket") << u"a]b"_s << u"t"_s << u"1"_s << u"a]b"_s;
    QTest::newRow("section with a comment") << u"a ; b"_s << u"t"_s << u"1"_s << u"a ; b"_s;
    QTest::newRow("section outside the page") << u"\u4e2d"_s << u"t"_s << u"1"_s << u"\u4e2d"_s;
}

void TestArray::set_refusesWhatCannotBeWritten()
{
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, named);
    LineArray array = barred("[a]|x=1"_ba);
    const Result result = INI_Entry_Set(array, section, key, value);
    QVERIFY(!result.ok);
    QVERIFY2(result.text.contains(named), qPrintable(result.text));
    QCOMPARE(shown(array), "[a]|x=1"_ba);
}

void TestArray::entryDelete_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<bool>("done");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("first match") << "[a]|t=1|t=2"_ba << true << "[a]|t=2"_ba;
    QTest::newRow("comments stay") << "[a]|;t=1| T = 2 // x|;"_ba << true << "[a]|;t=1|;"_ba;
    QTest::newRow("missing") << "[a]|x=1|[b]|t=1"_ba << false << "[a]|x=1|[b]|t=1"_ba;
}

void TestArray::entryDelete()
{
    QFETCH(QByteArray, lines);
    QFETCH(bool, done);
    QFETCH(QByteArray, expected);
    LineArray array = barred(lines);
    QCOMPARE(INI_Entry_Delete(array, u"A"_s, u"t"_s), done);
    QCOMPARE(shown(array), expected);
    QVERIFY(!INI_Entry_Delete(array, u""_s, u"t"_s));
    QVERIFY(!INI_Entry_Delete(array, u"a"_s, u""_s));
}

void TestArray::sectionLines_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("expected"); ///< null: not found

    QTest::newRow("to the next header") << "x|[a] ; c| t = 1||[b]|u=1"_ba
                                        << "[a] ; c| t = 1|"_ba;
    QTest::newRow("last") << "[b]|[A]|t=1|"_ba
                          << "[A]|t=1|"_ba;
    QTest::newRow("header of the same name goes on") << "[a]|t=1|[A]|u=1|[b]"_ba
                                                     << "[a]|t=1|[A]|u=1"_ba;
    QTest::newRow("only the first") << "[a]|t=1|[b]|[a]|u=1"_ba
                                    << "[a]|t=1"_ba;
    QTest::newRow("missing") << "[b]|a=1"_ba << QByteArray();
}

void TestArray::sectionLines()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArray, expected);
    const std::optional<LineArray> found = INI_Section_GetLines(barred(lines), u"a"_s);
    QCOMPARE(found.has_value(), !expected.isNull());
    if (found)
        QCOMPARE(shown(*found), expected);
    QVERIFY(!INI_Section_GetLines(barred(lines), u""_s));
}

void TestArray::sectionDelete_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<bool>("done");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("every one") << "h|[a]|1|[b]|2|[A]|3"_ba << true << "h|[b]|2"_ba;
    QTest::newRow("nothing left") << "[a]|1"_ba << true << ""_ba;
    QTest::newRow("missing") << "[b]|1"_ba << false << "[b]|1"_ba;
}

void TestArray::sectionDelete()
{
    QFETCH(QByteArray, lines);
    QFETCH(bool, done);
    QFETCH(QByteArray, expected);
    LineArray array = barred(lines);
    QCOMPARE(INI_Section_Delete(array, u"a"_s), done);
    QCOMPARE(shown(array), expected);
    QVERIFY(!INI_Section_Delete(array, u""_s));
}

void TestArray::insertAfter_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("between") << "[a]|1|[b]|2"_ba << u"A"_s << "[a]|1|N|[b]|2"_ba;
    QTest::newRow("at the top") << "h|[a]|1"_ba << u""_s << "N|h|[a]|1"_ba;
    QTest::newRow("last section: nothing") << "[a]|1|[b]|2"_ba << u"b"_s << "[a]|1|[b]|2"_ba;
    QTest::newRow("missing: nothing") << "[a]|1|[b]|2"_ba << u"c"_s << "[a]|1|[b]|2"_ba;
    QTest::newRow("once") << "[a]|1|[b]|[a]|2|[c]"_ba << u"a"_s << "[a]|1|N|[b]|[a]|2|[c]"_ba;
    QTest::newRow("before one of the same name")
        << "[a]|1|[a]|2|[c]"_ba << u"a"_s << "[a]|1|N|[a]|2|[c]"_ba;
}

void TestArray::insertAfter()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, after);
    QFETCH(QByteArray, expected);
    LineArray array = barred(lines);
    QCOMPARE(INI_Section_InsertAfter(array, barred("N"_ba), after), lines != expected);
    QCOMPARE(shown(array), expected);
}

void TestArray::replace_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("expected"); ///< null: not found

    QTest::newRow("between") << "[x]|1|[a]|2|[y]|3"_ba
                             << "[x]|1|N|[y]|3"_ba;
    QTest::newRow("first goes to the top") << "h|[a]|2|[y]|3"_ba
                                           << "N|h|[y]|3"_ba;
    QTest::newRow("last is appended") << "[x]|1|[a]|2|"_ba
                                      << "[x]|1|N"_ba;
    QTest::newRow("the only one") << "[a]|2"_ba
                                  << "N"_ba;
    QTest::newRow("others of the name go") << "[x]|[a]|2|[y]|[A]|3"_ba
                                           << "[x]|N|[y]"_ba;
    QTest::newRow("in place although its neighbour has a twin") << "[x]|1|[y]|[x]|2|[a]|3|[z]"_ba
                                                                << "[x]|1|[y]|[x]|2|N|[z]"_ba;
    QTest::newRow("missing") << "[x]|1"_ba << QByteArray();
}

void TestArray::replace()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArray, expected);
    LineArray array = barred(lines);
    QCOMPARE(INI_Section_Replace(array, u"a"_s, barred("N"_ba)), !expected.isNull());
    QCOMPARE(shown(array), expected.isNull() ? lines : expected);
}

void TestArray::rename_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("oldName");
    QTest::addColumn<QString>("newName");
    QTest::addColumn<bool>("done");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("first of two") << "[A]|a=1|[a]"_ba << u"a"_s << u"b"_s << true
                                  << "[b]|a=1|[a]"_ba;
    QTest::newRow("rest of the header stays")
        << "[ fltsim.0 ] ; was FLTSIM.0"_ba << u"Fltsim.0"_s << u"fltsim.3"_s << true
        << "[ fltsim.3 ] ; was fltsim.3"_ba;
    QTest::newRow("tab inside") << "[flt\tsim.0] ; x"_ba << u"fltsim.0"_s << u"b"_s << true
                                << "[b] ; x"_ba;
    QTest::newRow("equal") << "[A]"_ba << u"A"_s << u"a"_s << true << "[A]"_ba;
    QTest::newRow("no new name") << "[A]"_ba << u"A"_s << u""_s << false << "[A]"_ba;
    QTest::newRow("missing") << "[A]"_ba << u"b"_s << u"c"_s << false << "[A]"_ba;
    QTest::newRow("new name grows by the old")
        << "[a]"_ba << u"a"_s << u"aa"_s << true << "[aa]"_ba;
}

void TestArray::rename()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, oldName);
    QFETCH(QString, newName);
    QFETCH(bool, done);
    QFETCH(QByteArray, expected);
    LineArray array = barred(lines);
    QCOMPARE(INI_Section_Rename(array, oldName, newName).ok, done);
    QCOMPARE(shown(array), expected);
}

void TestArray::headerComments_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("others are skipped") << "; a||x=1| // b|[a]|; c"_ba
                                        << "; a|| // b"_ba;
    QTest::newRow("none") << "[a]|; c"_ba
                          << ""_ba;
    QTest::newRow("no header at all") << "'x|y"_ba
                                      << "'x"_ba;
}

void TestArray::headerComments()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArray, expected);
    QCOMPARE(shown(INI_Header_GetComments(barred(lines))), expected);
}

void TestArray::names_keepDuplicatesInOrder()
{
    const LineArray lines = barred("x|[b]|[A] ; c|t=[z]|//[q]|[b]"_ba);
    QCOMPARE(INI_Sections_GetNames(lines), (QStringList{u"b"_s, u"A"_s, u"b"_s}));
    QCOMPARE(INI_Section_GetFirst(lines), std::optional(u"b"_s));
    QVERIFY(!INI_Section_GetFirst(barred("x"_ba)));
}

void TestArray::withoutContent_nothingHappens()
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

void TestArray::changes_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QByteArray>("added");
    QTest::addColumn<QByteArray>("removed");

    QTest::newRow("equal") << "a|b|"_ba
                           << "a|b|"_ba
                           << ""_ba
                           << ""_ba;
    QTest::newRow("appended") << "a|"_ba
                              << "a|b|c|"_ba
                              << "b|c"_ba
                              << ""_ba;
    QTest::newRow("from an empty file") << ""_ba
                                        << "a|b|"_ba
                                        << "a|b"_ba
                                        << ""_ba;
    QTest::newRow("only a line end") << "a"_ba
                                     << "a|"_ba
                                     << ""_ba
                                     << ""_ba;
    QTest::newRow("changed") << "a|b|c"_ba
                             << "a|B|c"_ba
                             << "B"_ba
                             << "b"_ba;
    QTest::newRow("two places") << "a|b|c|d|e"_ba
                                << "a|x|b|c|e|y"_ba
                                << "x|y"_ba
                                << "d"_ba;
}

void TestArray::changes()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QByteArray, added);
    QFETCH(QByteArray, removed);
    const LineChanges found = lineChanges(barred(before), barred(after));
    QCOMPARE(found.added.join(u'|').toLatin1(), added);
    QCOMPARE(found.removed.join(u'|').toLatin1(), removed);
}

void TestArray::split_isExact()
{
    QCOMPARE(of("a\r\nb\r\n").lines, (QList<QByteArray>{"a", "b", ""}));
    QCOMPARE(of("a\nb\n").lines, (QList<QByteArray>{"a\nb\n"}));
    QCOMPARE(of("a\r\r\nb\r").lines, (QList<QByteArray>{"a\r", "b\r"}));
    QCOMPARE(of("").lines, (QList<QByteArray>{""}));
}

VT_TEST_CLASS(TestArray)
#include "test_array.moc"
