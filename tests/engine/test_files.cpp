#include "engine/ConfigDisk.h"
#include "simconfig/engine/SaveProtocol.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/TestMain.h"

#include <QElapsedTimer>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modRoutines_INI;

namespace {

const QString cfgPath = u"C:\\FSX\\air\\aircraft.cfg"_s;

} // namespace

class TestFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readWrite_data();
    void readWrite();
    void write_withoutInnerBlankLines();
    void read_missingAndEmpty();
    void write_refuses_data();
    void write_refuses();
    void profile_values();
    void profile_write();

    void save_backsUpOnceAndLeavesNoTemporary();
    void save_afterAnotherChange_data();
    void save_afterAnotherChange();
    void save_failures_data();
    void save_failures();
    void load_onlyIfChanged();
    void restore_bringsTheFirstStateBack();
};

void TestFiles::readWrite_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    QTest::newRow("final line end") << "[a]\r\n\r\nx=\xe9\t;\r\n"_ba
                                    << "[a]\r\n\r\nx=\xe9\t;\r\n"_ba;
    QTest::newRow("gains a final line end") << "[a]\r\nx=1"_ba
                                            << "[a]\r\nx=1\r\n"_ba;
    QTest::newRow("blank lines at the end") << "a\r\n\r\n\r\n"_ba
                                            << "a\r\n\r\n\r\n"_ba;
    QTest::newRow("single CRs") << "a\rb\r\n"_ba
                                << "a\rb\r\n"_ba;
    QTest::newRow("empty") << ""_ba
                           << ""_ba;
}

void TestFiles::readWrite()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    test::ConfigDisk disk;
    disk.write(u"FSX/air/aircraft.cfg"_s, before);
    LineArray lines(disk.ansi);
    QVERIFY(INI_File_Read(disk.actions, cfgPath, lines).ok);
    QVERIFY(INI_File_Write(disk.actions, cfgPath, lines).ok);
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), after);
}

void TestFiles::write_withoutInnerBlankLines()
{
    test::ConfigDisk disk;
    const LineArray lines = disk.linesOf("\r\na\r\n\r\nb\r\n\r\n");
    QVERIFY(File_WriteLines(disk.actions, cfgPath, lines, false).ok);
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), "a\r\nb\r\n"_ba);
}

void TestFiles::read_missingAndEmpty()
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

void TestFiles::write_refuses_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("cause");

    QTest::newRow("bare LF") << "[a]\nx=1\n"_ba << u"LF alone"_s;
    QTest::newRow("mixed") << "[a]\nx=1\r\n[b]\r\n"_ba << u"LF alone"_s;
    QTest::newRow("UTF-16") << "\xff\xfe[\0a\0]\0"_ba << u"UTF-16"_s;
    QTest::newRow("UTF-16, other order") << "\xfe\xff\0[\0a\0]"_ba << u"UTF-16"_s;
    QTest::newRow("NUL") << "[a]\r\nx=\0\r\n"_ba << u"NUL"_s;
}

void TestFiles::write_refuses()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, cause);
    test::ConfigDisk disk;
    disk.write(u"FSX/air/aircraft.cfg"_s, bytes);
    LineArray lines(disk.ansi);
    QVERIFY(INI_File_Read(disk.actions, cfgPath, lines).ok);
    const Result written = INI_File_Write(disk.actions, cfgPath, lines);
    QVERIFY(!written.ok);
    QVERIFY2(written.text.contains(cause) && written.text.contains(cfgPath),
             qPrintable(written.text));
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), bytes);
}

void TestFiles::profile_values()
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

void TestFiles::profile_write()
{
    test::ConfigDisk disk;
    QVERIFY(
        INI_Profile_SetValue(disk.actions, disk.ansi, u"fltsim"_s, u"alias"_s, u"a\\b"_s, cfgPath)
            .ok);
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), "[fltsim]\r\nalias=a\\b\r\n"_ba);
    QVERIFY(!INI_Profile_SetValue(
                 disk.actions, disk.ansi, u"fltsim"_s, u"alias"_s, u"\u4e2d"_s, cfgPath)
                 .ok);
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), "[fltsim]\r\nalias=a\\b\r\n"_ba);
}

// --- save protocol -----------------------------------------------------------------------------

void TestFiles::save_backsUpOnceAndLeavesNoTemporary()
{
    test::ConfigDisk disk;
    disk.write(u"FSX/air/aircraft.cfg"_s, "first\r\n");
    SaveProtocol protocol(ConfigKind::Aircraft, cfgPath);
    LineArray lines(disk.ansi);
    QVERIFY(protocol.load(disk.access, lines, false).ok);
    for (const char* text : {"second", "third"}) {
        lines.lines[0] = text;
        const Result saved = protocol.save(disk.access, lines);
        QVERIFY2(saved.ok, qPrintable(saved.text));
    }
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), "third\r\n"_ba);
    QCOMPARE(disk.read(u"FSX/air/Aircraft.vtb"_s), "first\r\n"_ba);
    QVERIFY(!QFile::exists(disk.host(u"FSX/air/Temp.vtb"_s)));
    QVERIFY(disk.prompts.asked.isEmpty());
}

void TestFiles::save_afterAnotherChange_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<Button>("answer");

    QTest::newRow("aircraft, no") << int(ConfigKind::Aircraft) << Button::No;
    QTest::newRow("aircraft, yes") << int(ConfigKind::Aircraft) << Button::Yes;
    QTest::newRow("panel, no") << int(ConfigKind::Panel) << Button::No;
    QTest::newRow("sound, no") << int(ConfigKind::Sound) << Button::No;
}

void TestFiles::save_afterAnotherChange()
{
    QFETCH(int, kind);
    QFETCH(Button, answer);
    const char* const words[] = {"aircraft", "panel", "sound"};
    const QString word = QString::fromLatin1(words[kind]);
    test::ConfigDisk disk;
    disk.write(u"FSX/air/aircraft.cfg"_s, "first\r\n");
    SaveProtocol protocol(ConfigKind(kind), cfgPath);
    LineArray lines(disk.ansi);
    QVERIFY(protocol.load(disk.access, lines, false).ok);
    disk.write(u"FSX/air/aircraft.cfg"_s, "other\r\n!");
    lines.lines[0] = "mine";
    disk.prompts.expect(u"File Changed. Update Anyway?"_s, answer);
    const Result saved = protocol.save(disk.access, lines);
    QCOMPARE(saved.ok, answer == Button::Yes);
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s),
             answer == Button::Yes ? "mine\r\n"_ba : "other\r\n!"_ba);
    const Prompt asked = disk.prompts.asked.constFirst();
    QCOMPARE(asked.defaultButton, Button::No);
    QVERIFY(asked.text.startsWith(u"Another process has modified the "_s + word +
                                  u" configuration file."_s));
    if (answer == Button::No) {
        QCOMPARE(saved.kind, ErrorKind::Declined);
        QCOMPARE(saved.text, u"Could not update the "_s + word + u" configuration file."_s);
    }
}

void TestFiles::save_failures_data()
{
    QTest::addColumn<QString>("failReplace");
    QTest::addColumn<QString>("failCopyTo");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("temporaryStays");

    QTest::newRow("persistent backup")
        << QString() << u"C:\\FSX\\air\\Aircraft.vtb"_s << u"Error backup up "_s << false;
    QTest::newRow("temporary backup")
        << QString() << u"C:\\FSX\\air\\Temp.vtb"_s << u"Error backup up "_s << false;
    QTest::newRow("writing") << cfgPath << QString() << u"Error writing "_s << true;
}

void TestFiles::save_failures()
{
    QFETCH(QString, failReplace);
    QFETCH(QString, failCopyTo);
    QFETCH(QString, text);
    QFETCH(bool, temporaryStays);
    test::ConfigDisk disk;
    disk.write(u"FSX/air/aircraft.cfg"_s, "first\r\n");
    test::FailingActions failing(disk.actions);
    failing.failReplace = failReplace;
    failing.failCopyTo = failCopyTo;
    const ConfigAccess access(failing, disk.prompts, disk.ansi);
    SaveProtocol protocol(ConfigKind::Aircraft, cfgPath);
    LineArray lines(disk.ansi);
    QVERIFY(protocol.load(access, lines, false).ok);
    lines.lines[0] = "second";
    const Result saved = protocol.save(access, lines);
    QVERIFY(!saved.ok);
    QVERIFY2(saved.text.startsWith(text + cfgPath), qPrintable(saved.text));
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), "first\r\n"_ba);
    QCOMPARE(QFile::exists(disk.host(u"FSX/air/Temp.vtb"_s)), temporaryStays);
}

void TestFiles::load_onlyIfChanged()
{
    test::ConfigDisk disk;
    disk.write(u"FSX/air/aircraft.cfg"_s, "first\r\n");
    SaveProtocol protocol(ConfigKind::Aircraft, cfgPath);
    LineArray lines(disk.ansi);
    QVERIFY(protocol.load(disk.access, lines, true).ok);
    lines.lines[0] = "edited";
    QVERIFY(protocol.load(disk.access, lines, true).ok);
    QCOMPARE(lines.lines.constFirst(), "edited"_ba);
    disk.write(u"FSX/air/aircraft.cfg"_s, "longer than first\r\n");
    QVERIFY(protocol.load(disk.access, lines, true).ok);
    QCOMPARE(lines.lines.constFirst(), "longer than first"_ba);
}

void TestFiles::restore_bringsTheFirstStateBack()
{
    test::ConfigDisk disk;
    disk.write(u"FSX/air/aircraft.cfg"_s, "first\r\n");
    SaveProtocol protocol(ConfigKind::Aircraft, cfgPath);
    LineArray lines(disk.ansi);
    QVERIFY(!protocol.restore(disk.access).ok);
    QVERIFY(protocol.load(disk.access, lines, false).ok);
    lines.lines[0] = "second";
    QVERIFY(protocol.save(disk.access, lines).ok);
    QVERIFY(protocol.restore(disk.access).ok);
    QCOMPARE(disk.read(u"FSX/air/aircraft.cfg"_s), "first\r\n"_ba);
    QVERIFY(!QFile::exists(disk.host(u"FSX/air/Aircraft.vtb"_s)));
    const Result again = protocol.restore(disk.access);
    QCOMPARE(again.text, u"Error restoring backup configuration file."_s);
}

VT_TEST_CLASS(TestFiles)
#include "test_files.moc"
