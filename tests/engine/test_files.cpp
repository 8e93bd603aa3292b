#include "engine/ConfigDisk.h"
#include "simconfig/engine/ConfigNormalizer.h"
#include "simconfig/engine/SaveProtocol.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modRoutines_INI;
using vt::test::Rows;

namespace {

const QString cfgPath = u"C:\\FSX\\air\\aircraft.cfg"_s;

/// A configuration file and what loads and saves it.
struct Config : test::ConfigDisk
{
    explicit Config(const QByteArray& bytes) { store(bytes); }

    void store(const QByteArray& bytes) { write(u"FSX/air/aircraft.cfg"_s, bytes); }

    [[nodiscard]] QByteArray stored() const { return read(u"FSX/air/aircraft.cfg"_s); }

    Result load(bool onlyIfChanged = false) { return protocol.load(access, lines, onlyIfChanged); }

    Result save(const QByteArray& firstLine)
    {
        lines.lines[0] = firstLine;
        return protocol.save(access, lines);
    }

    LineArray lines{ansi};
    SaveProtocol protocol{ConfigKind::Aircraft, cfgPath};
};

} // namespace

class TestFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void readWrite()
    {
        const Rows<QByteArray, QByteArray> rows = {
            {"final line end", "[a]\r\n\r\nx=\xe9\t;\r\n", "[a]\r\n\r\nx=\xe9\t;\r\n"},
            {"gains a final line end", "[a]\r\nx=1", "[a]\r\nx=1\r\n"},
            {"blank lines at the end", "a\r\n\r\n\r\n", "a\r\n\r\n\r\n"},
            {"single CRs", "a\rb\r\n", "a\rb\r\n"},
            {"empty", "", ""},
        };
        for (const auto& [before, after] : rows) {
            Config config(before);
            QVERIFY(INI_File_Read(config.actions, cfgPath, config.lines).ok);
            QVERIFY(INI_File_Write(config.actions, cfgPath, config.lines).ok);
            QCOMPARE(config.stored(), after);
        }
    }

    void write_withoutInnerBlankLines()
    {
        test::ConfigDisk disk;
        const LineArray lines = disk.linesOf("\r\na\r\n\r\nb\r\n\r\n");
        QVERIFY(File_WriteLines(disk.actions, cfgPath, lines, false).ok);
        QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), "a\r\nb\r\n"_ba);
    }

    void read_missingAndEmpty()
    {
        test::ConfigDisk disk;
        LineArray lines = disk.linesOf("old\r\ncontent");
        QVERIFY(!INI_File_Read(disk.actions, cfgPath, lines).ok);
        QVERIFY(!lines.hasContent());
        disk.write(u"FSX/air/aircraft.cfg"_s, "");
        QVERIFY(INI_File_Read(disk.actions, cfgPath, lines).ok);
        QVERIFY(!lines.hasContent());
        const ResultOf<QByteArray> text = File_ReadAllText(disk.actions, cfgPath);
        QVERIFY(text.ok() && text.value->isEmpty());
    }

    void write_refuses()
    {
        const Rows<QByteArray, QString> rows = {
            {"bare LF", "[a]\nx=1\n", u"LF alone"_s},
            {"mixed", "[a]\nx=1\r\n[b]\r\n", u"LF alone"_s},
            {"UTF-16", "\xff\xfe[\0a\0]\0"_ba, u"UTF-16"_s},
            {"UTF-16, other order", "\xfe\xff\0[\0a\0]"_ba, u"UTF-16"_s},
            {"NUL", "[a]\r\nx=\0\r\n"_ba, u"NUL"_s},
        };
        for (const auto& [bytes, cause] : rows) {
            Config config(bytes);
            QVERIFY(INI_File_Read(config.actions, cfgPath, config.lines).ok);
            const Result written = INI_File_Write(config.actions, cfgPath, config.lines);
            QVERIFY(!written.ok);
            QVERIFY2(written.text.contains(cause) && written.text.contains(cfgPath),
                     qPrintable(written.text));
            QCOMPARE(config.stored(), bytes);
        }
    }

    void profile_values()
    {
        test::ConfigDisk disk;
        disk.write(u"FSX/air/aircraft.cfg"_s,
                   "[fltsim.0]\r\ntitle=Cub // x\r\nlong=" + QByteArray(400, 'a') +
                       "\r\n[General]\r\nperformance=a\\/b;c\r\n");
        const auto value = [&](const QString& section, const QString& key, qsizetype size) {
            return INI_Profile_GetValue(
                disk.actions, disk.ansi, section, key, u"none // x"_s, size, cfgPath);
        };
        QCOMPARE(value(u"FLTSIM.0"_s, u"Title"_s, 255).value, u"Cub"_s);
        QCOMPARE(value(u"fltsim.0"_s, u"title"_s, 255).count, qsizetype(8));
        QCOMPARE(value(u"fltsim.0"_s, u"long"_s, 255).value.size(), qsizetype(254));
        QCOMPARE(value(u"fltsim.1"_s, u"title"_s, 255).value, u"none"_s);
        const profile::ProfileFile file = profileOf(disk.actions, disk.ansi, cfgPath);
        QCOMPARE(INI_Profile_GetValue(file, u"general"_s, u"performance"_s, u""_s, 255, true).value,
                 u"a\\/b;c"_s);
        QStringList names = {u"kept"_s};
        INI_Profile_GetSectionNames(disk.actions, disk.ansi, cfgPath, names);
        QCOMPARE(names, (QStringList{u"kept"_s, u"fltsim.0"_s, u"General"_s}));
    }

    void save_backsUpOnceAndLeavesNoTemporary()
    {
        Config config("first\r\n");
        QVERIFY(config.load());
        for (const char* text : {"second", "third"}) {
            const Result saved = config.save(text);
            QVERIFY2(saved.ok, qPrintable(saved.text));
        }
        QCOMPARE(config.stored(), "third\r\n"_ba);
        QCOMPARE(config.read(u"FSX/air/Aircraft.vtb"_s), "first\r\n"_ba);
        QCOMPARE(config.names(u"FSX/air"_s).size(), 2);
        QVERIFY(config.prompts.asked.isEmpty());
    }

    void save_afterAnotherChange()
    {
        const Rows<ConfigKind, QString, bool> rows = {
            {"aircraft, no", ConfigKind::Aircraft, u"aircraft"_s, false},
            {"aircraft, yes", ConfigKind::Aircraft, u"aircraft"_s, true},
            {"panel, no", ConfigKind::Panel, u"panel"_s, false},
            {"sound, no", ConfigKind::Sound, u"sound"_s, false},
        };
        for (const auto& [kind, word, yes] : rows) {
            Config config("first\r\n");
            config.protocol = SaveProtocol(kind, cfgPath);
            QVERIFY(config.load());
            config.store("other\r\n!");
            config.prompts.expect(u"File Changed. Update Anyway?"_s,
                                  yes ? Button::Yes : Button::No);
            const Result saved = config.save("mine");
            QCOMPARE(saved.ok, yes);
            QCOMPARE(config.stored(), yes ? "mine\r\n"_ba : "other\r\n!"_ba);
            const Prompt asked = config.prompts.asked.constFirst();
            QCOMPARE(asked.defaultButton, Button::No);
            QVERIFY(asked.text.startsWith(u"Another process has modified the "_s + word +
                                          u" configuration file."_s));
            if (yes)
                continue;
            QCOMPARE(saved.kind, ErrorKind::Declined);
            QCOMPARE(saved.text, u"Could not update the "_s + word + u" configuration file."_s);
        }
    }

    void save_failures()
    {
        const Rows<QByteArray, QString, bool> rows = {
            {"persistent backup", "Aircraft.vtb", u"Error backup up "_s, false},
            {"temporary backup", "Temp.vtb", u"Error backup up "_s, false},
            {"writing", "aircraft.cfg", u"Error writing "_s, true},
        };
        for (const auto& [failing, text, temporaryStays] : rows) {
            Config config("first\r\n");
            QVERIFY(config.load());
            config.failOnce(failing);
            const Result saved = config.save("second");
            QVERIFY(!saved.ok);
            QVERIFY2(saved.text.startsWith(text + cfgPath), qPrintable(saved.text));
            QCOMPARE(config.stored(), "first\r\n"_ba);
            QCOMPARE(config.exists(u"FSX/air/Temp.vtb"_s), temporaryStays);
        }
    }

    void load_onlyIfChanged()
    {
        Config config("first\r\n");
        QVERIFY(config.load(true));
        config.lines.lines[0] = "edited";
        QVERIFY(config.load(true));
        QCOMPARE(config.lines.lines.constFirst(), "edited"_ba);
        config.store("longer than first\r\n");
        QVERIFY(config.load(true));
        QCOMPARE(config.lines.lines.constFirst(), "longer than first"_ba);
    }

    void restore_bringsTheFirstStateBack()
    {
        Config config("first\r\n");
        QVERIFY(!config.protocol.restore(config.access));
        QVERIFY(config.load());
        QVERIFY(config.save("second"));
        QVERIFY(config.protocol.restore(config.access));
        QCOMPARE(config.stored(), "first\r\n"_ba);
        QVERIFY(!config.exists(u"FSX/air/Aircraft.vtb"_s));
        QCOMPARE(config.protocol.restore(config.access).text,
                 u"Error restoring backup configuration file."_s);
    }

    void normalizing_makesAnsiWithCrLf()
    {
        const QByteArray wanted = "[a]\r\nb=\xe9\r\n";
        const QByteArray wide = test::utf16(wanted);
        QByteArray swapped = test::utf16("[a]\nb=\xe9\n");
        for (qsizetype i = 0; i < swapped.size(); i += 2)
            std::swap(swapped[i], swapped[i + 1]);
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
            {"UTF-16 little", wide, wanted, true},
            {"UTF-16 big", swapped, wanted, true},
            {"UTF-16 without mark", wide.sliced(2), wanted, true},
        };
        const AnsiCodec ansi;
        for (const auto& [in, out, changed] : rows) {
            const auto result = normalizeConfig(in, ansi);
            QVERIFY2(result.ok(), qPrintable(result.text));
            QCOMPARE(result->bytes, out);
            QCOMPARE(result->changed, changed);
            QCOMPARE(result->done.isEmpty(), !result->changed);
            const auto again = normalizeConfig(result->bytes, ansi);
            QVERIFY(again.ok() && !again->changed);
        }
        const auto kanji = normalizeConfig("\xef\xbb\xbf=\xe6\x97\xa5\n", ansi);
        QVERIFY(!kanji.ok() && kanji.text.contains(u'日'));
        QVERIFY(!normalizeConfig(QByteArray("a\0b\0\0\0c", 7), ansi).ok());
    }
};

VT_TEST_CLASS(TestFiles)
#include "test_files.moc"
