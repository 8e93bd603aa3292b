#include "Disk.h"
#include "platform/Profile.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace vt;
using namespace vt::test;
using namespace vt::profile;
using namespace Qt::StringLiterals;

namespace {

const QByteArray sample = "; head\r\n"
                          "loose=1\r\n"
                          "[fltsim.0]\r\n"
                          "title = Cessna \"C172\" \r\n"
                          "Sim=\"quoted blanks \"\r\n"
                          "single='x'\r\n"
                          "title=second\r\n"
                          "novalue\r\n"
                          "=nokey\r\n"
                          "empty=\r\n"
                          ";title2=remark\r\n"
                          "path=C:\\a=b ; tail\r\n"
                          "\r\n"
                          "  [ General ] // after\r\n"
                          "Z\xfcrich=\x80\r\n"
                          "[FLTSIM.0]\r\n"
                          "late=here\r\n"
                          "[not closed\r\n"
                          "[]\r\n";

} // namespace

class TestProfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reading_data();
    void reading();
    void buffersCutTexts();
    void lists();
    void filesOfOtherForms();

    void manyQuestions_areAnsweredLikeOne();

    void writing_data();
    void writing();
    void refusedWritesLeaveTheFile_data();
    void refusedWritesLeaveTheFile();
    void newFileIsMade();
    void untouchedBytesStay();

private:
    AnsiCodec m_ansi;
};

void TestProfile::reading_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::newRow("first of two keys") << u"FLTSIM.0"_s << u"TITLE"_s << u"Cessna \"C172\""_s;
    QTest::newRow("quotes go, blanks in them stay")
        << u"fltsim.0"_s << u"sim"_s << u"quoted blanks "_s;
    QTest::newRow("single quotes") << u"fltsim.0"_s << u"single"_s << u"x"_s;
    QTest::newRow("without =") << u"fltsim.0"_s << u"novalue"_s << u"  default"_s;
    QTest::newRow("empty value") << u"fltsim.0"_s << u"empty"_s << u""_s;
    QTest::newRow("remark") << u"fltsim.0"_s << u";title2"_s << u"  default"_s;
    QTest::newRow("tail and second = stay") << u"fltsim.0"_s << u"path"_s << u"C:\\a=b ; tail"_s;
    QTest::newRow("only the first section") << u"fltsim.0"_s << u"late"_s << u"  default"_s;
    QTest::newRow("name with blanks and umlaut") << u"general"_s << u"ZÜRICH"_s << u"€"_s;
    QTest::newRow("outside any section") << u""_s << u"loose"_s << u"  default"_s;
    QTest::newRow("missing section") << u"fltsim.1"_s << u"title"_s << u"  default"_s;
    QTest::newRow("section not closed") << u"not closed"_s << u"x"_s << u"  default"_s;
}

void TestProfile::reading()
{
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    const ProfileFile file = ProfileFile::ofBytes(sample, m_ansi);
    for (int time = 0; time < 5; ++time) { // the later answers come from an index
        const Read read = file.value(section, key, u"  default  "_s);
        QCOMPARE(read.text, value);
        QCOMPARE(read.count, value.size());
    }
}

void TestProfile::manyQuestions_areAnsweredLikeOne()
{
    QRandomGenerator random(5);
    const QByteArrayList pieces = {"[a]\r\n",
                                   "[ B ]\n",
                                   "[a",
                                   "]",
                                   "\r\n",
                                   "\n",
                                   "k=1",
                                   "K =2",
                                   ";",
                                   " =",
                                   "\t",
                                   "x = [a]",
                                   "b=\"q\"",
                                   "\r",
                                   "\xef\xbb\xbf"};
    for (int round = 0; round < 500; ++round) {
        QByteArray bytes;
        for (int i = random.bounded(25); i > 0; --i)
            bytes += pieces.at(random.bounded(pieces.size()));
        ProfileFile asked = ProfileFile::ofBytes(bytes, m_ansi);
        for (int time = 0; time < 6; ++time) {
            const QString section = QStringList{u"A"_s, u"b"_s, u""_s}.at(random.bounded(3));
            const QString key = QStringList{u"k"_s, u"B "_s, u"x"_s, u""_s}.at(random.bounded(4));
            if (random.bounded(8) == 0)
                asked.setValue(section, key, QString::number(time));
            const auto fresh = [&] {
                return ProfileFile::ofBytes(*m_ansi.encode(asked.text()), m_ansi);
            };
            QCOMPARE(asked.value(section, key, u"-").text, fresh().value(section, key, u"-").text);
            QCOMPARE(asked.has(section, key), fresh().has(section, key));
            QCOMPARE(asked.hasSection(section), fresh().hasSection(section));
            QCOMPARE(asked.keys(section), fresh().keys(section));
        }
    }
}

void TestProfile::buffersCutTexts()
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

void TestProfile::lists()
{
    const ProfileFile file = ProfileFile::ofBytes(sample, m_ansi);
    QCOMPARE(file.sections(), (QStringList{u"fltsim.0"_s, u"General"_s, u"FLTSIM.0"_s, u""_s}));
    QCOMPARE(file.keys(u"FltSim.0"),
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

void TestProfile::filesOfOtherForms()
{
    Disk disk;
    const QString wide = u"\ufeff[a]\r\nk=Ж\r\n"_s;
    disk.write(u"FSX/wide.cfg"_s,
               QByteArray(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2));
    disk.write(u"FSX/mark.cfg"_s, "\xef\xbb\xbf[a]\nk=1\n");
    const auto value = [&](const QString& name) {
        return getValue(disk.files, m_ansi, u"a", u"k", u"none", 100, u"C:\\FSX\\"_s + name).text;
    };
    QCOMPARE(value(u"wide.cfg"_s), u"Ж"_s);
    QCOMPARE(value(u"MARK.CFG"_s), u"1"_s);
    QCOMPARE(value(u"missing.cfg"_s), u"none"_s);
    QCOMPARE(getSectionNames(disk.files, m_ansi, u"C:\\FSX\\mark.cfg").text, u"a"_s + QChar(0));
}

void TestProfile::writing_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value"); // null: the key goes; key null: the section goes
    QTest::addColumn<QByteArray>("after");
    const QString none;
    QTest::newRow("replaced, spelling kept")
        << QByteArray("[A]\r\nKey = old ; x\r\nb=1") << u"a"_s << u"key"_s << u"new"_s
        << QByteArray("[A]\r\nKey =new\r\nb=1");
    QTest::newRow("only the first") << QByteArray("[a]\r\nk=1\r\nk=2\r\n") << u"a"_s << u"k"_s
                                    << u"3"_s << QByteArray("[a]\r\nk=3\r\nk=2\r\n");
    QTest::newRow("added before blank lines")
        << QByteArray("[a]\r\nx=1\r\n\r\n[b]\r\n") << u"a"_s << u"k"_s << u"2"_s
        << QByteArray("[a]\r\nx=1\r\nk=2\r\n\r\n[b]\r\n");
    QTest::newRow("added to an empty section") << QByteArray("[a]\r\n[b]\r\n") << u"a"_s << u"k"_s
                                               << u"2"_s << QByteArray("[a]\r\nk=2\r\n[b]\r\n");
    QTest::newRow("added at an open end") << QByteArray("[a]\r\nx=1") << u"a"_s << u"k"_s << u"2"_s
                                          << QByteArray("[a]\r\nx=1\r\nk=2\r\n");
    QTest::newRow("new section at an open end")
        << QByteArray("[a]\r\nx=1") << u"b"_s << u"k"_s << u"2"_s
        << QByteArray("[a]\r\nx=1\r\n[b]\r\nk=2\r\n");
    QTest::newRow("new section in an empty file")
        << QByteArray() << u"b"_s << u"k"_s << u""_s << QByteArray("[b]\r\nk=\r\n");
    QTest::newRow("bare line feeds stay")
        << QByteArray("[a]\nx=1\n") << u"a"_s << u"k"_s << u"2"_s << QByteArray("[a]\nx=1\nk=2\n");
    QTest::newRow("key removed") << QByteArray("[a]\r\nk=1\r\nk=2") << u"A"_s << u"K"_s << none
                                 << QByteArray("[a]\r\nk=2");
    QTest::newRow("missing key removed")
        << QByteArray("[a]\r\nk=1") << u"a"_s << u"x"_s << none << QByteArray("[a]\r\nk=1");
    QTest::newRow("section removed") << QByteArray(";\r\n[a]\r\nk=1\r\n\r\n[b]\r\n[a]\r\n")
                                     << u"a"_s << none << none << QByteArray(";\r\n[b]\r\n[a]\r\n");
    QTest::newRow("other page's bytes")
        << QByteArray("[a]\r\n\x81\x8d=\xff\r\nk=1\r\n") << u"a"_s << u"k"_s << u"é"_s
        << QByteArray("[a]\r\n\x81\x8d=\xff\r\nk=\xe9\r\n");
}

void TestProfile::writing()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QByteArray, after);
    Disk disk;
    disk.write(u"FSX/a.cfg"_s, before);
    const QString path = u"C:\\FSX\\A.CFG"_s;
    const Result written = key.isNull() ? removeSection(disk.actions, m_ansi, section, path)
                           : value.isNull()
                               ? removeKey(disk.actions, m_ansi, section, key, path)
                               : setValue(disk.actions, m_ansi, section, key, value, path);
    QVERIFY2(written.ok, qPrintable(written.text));
    QCOMPARE(disk.read(u"FSX/a.cfg"_s), after);
    if (!value.isNull())
        QCOMPARE(getValue(disk.files, m_ansi, section, key, u"?", 100, path).text, value);
}

void TestProfile::refusedWritesLeaveTheFile_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("told");
    const QByteArray plain = "[a]\r\nk=1\r\n";
    QTest::newRow("character") << plain << u"a"_s << u"k"_s << u"Ж"_s << u"'Ж'"_s;
    QTest::newRow("line break") << plain << u"a"_s << u"k"_s << u"1\r\n[b]"_s << u"line break"_s;
    QTest::newRow("section") << plain << u"a]b"_s << u"k"_s << u"1"_s << u"'a]b'"_s;
    QTest::newRow("key") << plain << u"a"_s << u"k=1"_s << u"1"_s << u"'k=1'"_s;
    QTest::newRow("utf-16") << QByteArray("\xff\xfe[\0", 4) << u"a"_s << u"k"_s << u"1"_s
                            << u"UTF-16"_s;
}

void TestProfile::refusedWritesLeaveTheFile()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, told);
    Disk disk;
    disk.write(u"FSX/a.cfg"_s, before);
    const Result written = setValue(disk.actions, m_ansi, section, key, value, u"C:\\FSX\\a.cfg"_s);
    QVERIFY(!written);
    QVERIFY2(written.text.contains(told), qPrintable(written.text));
    QCOMPARE(disk.read(u"FSX/a.cfg"_s), before);
}

void TestProfile::newFileIsMade()
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

void TestProfile::untouchedBytesStay()
{
    // Every byte value, mixed line ends, a double-byte page with half a character at a line's end.
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

VT_TEST_CLASS(TestProfile)
#include "test_profile.moc"
