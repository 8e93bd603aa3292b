#include "platform/Profile.h"
#include "support/Disk.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace vt;
using namespace vt::test;
using namespace vt::profile;
using namespace Qt::StringLiterals;

namespace {

const QByteArray sample =
    crlf("; head|loose=1|"
         "[fltsim.0]|title = Cessna \"C172\" |Sim=\"quoted blanks \"|single='x'|title=second|"
         "novalue|=nokey|empty=|;title2=remark|path=C:\\a=b ; tail||"
         "  [ General ] // after|Z\xfcrich=\x80|"
         "[FLTSIM.0]|late=here|"
         "[not closed|[]|");

} // namespace

class TestProfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void reading()
    {
        const Rows<QString, QString, QString> rows = {
            {"first of two keys", u"FLTSIM.0"_s, u"TITLE"_s, u"Cessna \"C172\""_s},
            {"quotes go, blanks in them stay", u"fltsim.0"_s, u"sim"_s, u"quoted blanks "_s},
            {"single quotes", u"fltsim.0"_s, u"single"_s, u"x"_s},
            {"without =", u"fltsim.0"_s, u"novalue"_s, u"  default"_s},
            {"empty value", u"fltsim.0"_s, u"empty"_s, u""_s},
            {"remark", u"fltsim.0"_s, u";title2"_s, u"  default"_s},
            {"tail and second = stay", u"fltsim.0"_s, u"path"_s, u"C:\\a=b ; tail"_s},
            {"only the first section", u"fltsim.0"_s, u"late"_s, u"  default"_s},
            {"name with blanks and umlaut", u"general"_s, u"ZÜRICH"_s, u"€"_s},
            {"outside any section", u""_s, u"loose"_s, u"  default"_s},
            {"missing section", u"fltsim.1"_s, u"title"_s, u"  default"_s},
            {"section not closed", u"not closed"_s, u"x"_s, u"  default"_s},
        };
        for (const auto& [section, key, value] : rows) {
            const ProfileFile file = ProfileFile::ofBytes(sample, m_ansi);
            for (int time = 0; time < 5; ++time) { // the later answers come from an index
                const Read read = file.value(section, key, u"  default  "_s);
                QCOMPARE(read.text, value);
                QCOMPARE(read.count, value.size());
            }
        }
    }

    void buffersCutTexts()
    {
        const ProfileFile file = ProfileFile::ofBytes("[a]\r\nkey=12345\r\nlonger=1\r\n", m_ansi);
        QCOMPARE(file.value(u"a", u"key", u"", 6).text, u"12345"_s);
        QCOMPARE(file.value(u"a", u"key", u"", 5).text, u"1234"_s);
        QCOMPARE(file.value(u"a", u"none", u"default", 4).count, 3);
        QCOMPARE(file.value(u"a", u"key", u"", 1).count, 0);
        QCOMPARE(file.value(u"a", u"key", u"", 0).count, 0);

        // "key", NUL, "longer", NUL and the closing NUL fill 12 characters.
        QCOMPARE(file.keyNames(u"a", 12).count, 11);
        const Read cut = file.keyNames(u"a", 11);
        QCOMPARE(cut.text, u"key"_s + QChar(0) + u"longe"_s);
        QCOMPARE(cut.count, 9);
    }

    void lists()
    {
        const ProfileFile file = ProfileFile::ofBytes(sample, m_ansi);
        QCOMPARE(file.sections(), (QStringList{u"fltsim.0"_s, u"General"_s, u"FLTSIM.0"_s, u""_s}));
        QCOMPARE(
            file.keys(u"FltSim.0"),
            (QStringList{u"title"_s, u"Sim"_s, u"single"_s, u"title"_s, u"empty"_s, u"path"_s}));
        QCOMPARE(file.keyNames(u"general").text, u"Zürich"_s + QChar(0));
        QVERIFY(file.keys(u"none").isEmpty());
        QCOMPARE(ProfileFile().sectionNames().count, 0);

        QByteArray many;
        for (int i = 0; i < 5000; ++i)
            many += "[section " + QByteArray::number(i) + "]\n";
        const Read cut = ProfileFile::ofBytes(many, m_ansi).sectionNames();
        QCOMPARE(cut.count, maxBuffer - 2);
        QCOMPARE(cut.text.size(), cut.count);
    }

    void filesOfOtherForms()
    {
        Disk disk;
        const QString wide = u"\ufeff[a]\r\nk=Ж\r\n"_s;
        disk.write(u"FSX/wide.cfg"_s,
                   QByteArray(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2));
        disk.write(u"FSX/mark.cfg"_s, "\xef\xbb\xbf[a]\nk=1\n");
        const auto value = [&](const QString& name) {
            return getValue(disk.files, m_ansi, u"a", u"k", u"none", 100, u"C:\\FSX\\"_s + name)
                .text;
        };
        QCOMPARE(value(u"wide.cfg"_s), u"Ж"_s);
        QCOMPARE(value(u"MARK.CFG"_s), u"1"_s);
        QCOMPARE(value(u"missing.cfg"_s), u"none"_s);
        QCOMPARE(getSectionNames(disk.files, m_ansi, u"C:\\FSX\\mark.cfg").text, u"a"_s + QChar(0));
    }

    void manyQuestions_areAnsweredLikeOne()
    {
        QRandomGenerator random(5);
        const QByteArrayList pieces =
            QByteArray(
                "[a]\r\n|[ B ]\n|[a|]|\r\n|\n|k=1|K =2|;| =|\t|x = [a]|b=\"q\"|\r|\xef\xbb\xbf")
                .split('|');
        for (int round = 0; round < 500; ++round) {
            QByteArray bytes;
            for (int i = random.bounded(25); i > 0; --i)
                bytes += pieces.at(random.bounded(pieces.size()));
            ProfileFile asked = ProfileFile::ofBytes(bytes, m_ansi);
            for (int time = 0; time < 6; ++time) {
                const QString section = QStringList{u"A"_s, u"b"_s, u""_s}.at(random.bounded(3));
                const QString key =
                    QStringList{u"k"_s, u"B "_s, u"x"_s, u""_s}.at(random.bounded(4));
                if (random.bounded(8) == 0)
                    asked.setValue(section, key, QString::number(time));
                const auto fresh = [&] {
                    return ProfileFile::ofBytes(*m_ansi.encode(asked.text()), m_ansi);
                };
                QCOMPARE(asked.value(section, key, u"-").text,
                         fresh().value(section, key, u"-").text);
                QCOMPARE(asked.has(section, key), fresh().has(section, key));
                QCOMPARE(asked.hasSection(section), fresh().hasSection(section));
                QCOMPARE(asked.keys(section), fresh().keys(section));
            }
        }
    }

    void writing()
    {
        const QString a = u"a"_s;
        const QString k = u"k"_s;
        const QString none;
        // value: null: the key goes; key null: the section goes
        const Rows<QByteArray, QString, QString, QString, QByteArray> rows = {
            {"replaced", "[A]|Key = old ; x|b=1", a, u"key"_s, u"new"_s, "[A]|Key =new|b=1"},
            {"only the first", "[a]|k=1|k=2|", a, k, u"3"_s, "[a]|k=3|k=2|"},
            {"added before blank lines", "[a]|x=1||[b]|", a, k, u"2"_s, "[a]|x=1|k=2||[b]|"},
            {"added to an empty section", "[a]|[b]|", a, k, u"2"_s, "[a]|k=2|[b]|"},
            {"added at an open end", "[a]|x=1", a, k, u"2"_s, "[a]|x=1|k=2|"},
            {"new section at an open end", "[a]|x=1", u"b"_s, k, u"2"_s, "[a]|x=1|[b]|k=2|"},
            {"new section in an empty file", "", u"b"_s, k, u""_s, "[b]|k=|"},
            {"bare line feeds stay", "[a]\nx=1\n", a, k, u"2"_s, "[a]\nx=1\nk=2\n"},
            {"key removed", "[a]|k=1|k=2", u"A"_s, u"K"_s, none, "[a]|k=2"},
            {"missing key removed", "[a]|k=1", a, u"x"_s, none, "[a]|k=1"},
            {"section removed", ";|[a]|k=1||[b]|[a]|", a, none, none, ";|[b]|[a]|"},
            {"other page's bytes",
             "[a]|\x81\x8d=\xff|k=1|",
             a,
             k,
             u"é"_s,
             "[a]|\x81\x8d=\xff|k=\xe9|"},
        };
        for (const auto& [before, section, key, value, after] : rows) {
            Disk disk;
            disk.write(u"FSX/a.cfg"_s, crlf(before));
            const QString path = u"C:\\FSX\\A.CFG"_s;
            const Result written = key.isNull() ? removeSection(disk.actions, m_ansi, section, path)
                                   : value.isNull()
                                       ? removeKey(disk.actions, m_ansi, section, key, path)
                                       : setValue(disk.actions, m_ansi, section, key, value, path);
            QVERIFY2(written.ok, qPrintable(written.text));
            QCOMPARE(disk.read(u"FSX/a.cfg"_s), crlf(after));
            if (!value.isNull())
                QCOMPARE(getValue(disk.files, m_ansi, section, key, u"?", 100, path).text, value);
        }
    }

    void refusedWritesLeaveTheFile()
    {
        const QByteArray plain = "[a]\r\nk=1\r\n";
        const Rows<QByteArray, QString, QString, QString, QString> rows = {
            {"character", plain, u"a"_s, u"k"_s, u"Ж"_s, u"'Ж'"_s},
            {"line break", plain, u"a"_s, u"k"_s, u"1\r\n[b]"_s, u"line break"_s},
            {"section", plain, u"a]b"_s, u"k"_s, u"1"_s, u"'a]b'"_s},
            {"key", plain, u"a"_s, u"k=1"_s, u"1"_s, u"'k=1'"_s},
            {"utf-16", QByteArray("\xff\xfe[\0", 4), u"a"_s, u"k"_s, u"1"_s, u"UTF-16"_s},
        };
        for (const auto& [before, section, key, value, told] : rows) {
            Disk disk;
            disk.write(u"FSX/a.cfg"_s, before);
            const Result written =
                setValue(disk.actions, m_ansi, section, key, value, u"C:\\FSX\\a.cfg"_s);
            QVERIFY(!written);
            QVERIFY2(written.text.contains(told), qPrintable(written.text));
            QCOMPARE(disk.read(u"FSX/a.cfg"_s), before);
        }
    }

    void newFileIsMade()
    {
        Disk disk;
        QVERIFY(setValue(disk.actions,
                         m_ansi,
                         u"STARTUP",
                         u"FileToInstall",
                         u"C:\\x.zip",
                         u"C:\\Vantrel\\Startup.txt"_s));
        QCOMPARE(disk.read(u"Vantrel/Startup.txt"_s),
                 QByteArray("[STARTUP]\r\nFileToInstall=C:\\x.zip\r\n"));
        QVERIFY(removeKey(disk.actions, m_ansi, u"a", u"b", u"C:\\Vantrel\\none.txt"_s));
        QVERIFY(!QFile::exists(disk.host(u"Vantrel/none.txt"_s)));
    }

    void untouchedBytesStay()
    {
        // Every byte value, mixed line ends, a double-byte page with half a character at a line's
        // end.
        QByteArray bytes = "[a]\r\n";
        for (int i = 1; i < 256; ++i)
            bytes += QByteArray("x") + char(i) + (i % 3 ? "\r\n" : "\n");
        for (const int page : {1252, 932}) {
            const AnsiCodec ansi(page);
            Disk disk;
            disk.write(u"FSX/a.cfg"_s, bytes + "[z]\r\nk=1\r\n\x82");
            QVERIFY(setValue(disk.actions, ansi, u"z", u"k", u"22", u"C:\\FSX\\a.cfg"_s));
            QCOMPARE(disk.read(u"FSX/a.cfg"_s), bytes + "[z]\r\nk=22\r\n\x82");
        }
    }

private:
    AnsiCodec m_ansi;
};

VT_TEST_CLASS(TestProfile)
#include "test_profile.moc"
