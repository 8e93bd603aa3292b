// The manipulator over real files: listing with inner archives, testing, extraction.
#include "ArchiveWorld.h"
#include "support/TestMain.h"

#include <QSet>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

QStringList archives(const CZIP& zip)
{
    QStringList all;
    for (const CZIPFile& file : zip.colZIPContents)
        all += file.nestedPath;
    return all;
}

QByteArray nested(int depth)
{
    QByteArray bytes = ZipBuilder().add("deep.txt", "deep").build();
    for (int i = 0; i < depth; ++i)
        bytes = ZipBuilder().add("n.zip", bytes).build();
    return bytes;
}

} // namespace

class TestCZIP : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void getItems_fieldsAndTotals();
    void getItems_refusals_data();
    void getItems_refusals();
    void nested_depthFirstWithParents_data();
    void nested_depthFirstWithParents();
    void nested_invalidFolder();
    void nested_inMemoryCreatesNothing();
    void nested_largeOnesGoToATemporaryFile();
    void nested_damagedOneStaysAFile();
    void nested_limitOfDepth();
    void nested_limitOfEntriesOverAll();
    void nested_cancelled();
    void test_texts_data();
    void test_texts();
    void extract_whatIsNamed_data();
    void extract_whatIsNamed();
    void extract_bytesTimesAndFolders();
    void extract_unsafeNamesAreToldAndTheOthersGoOn();
    void extract_spellingsMeetInOneFolder();
    void extract_overwrite_data();
    void extract_overwrite();
    void extract_damagedEntryLeavesTheOldFile();
    void extract_cancelled();
    void entryExtract_underAnotherName();
    void entryBytes_limit();
    void errorBox_onlyWhenAsked();
};

void TestCZIP::getItems_fieldsAndTotals()
{
    ArchiveWorld w;
    ZipBuilder()
        .add("Sim/a.cfg", QByteArray(400, 'a'), {.attributes = 0x21})
        .add("Sim/", {})
        .add("h.txt", "12", {.level = 0, .stamp = 0, .attributes = 0x06})
        .add("e.txt", "34", {.encrypted = true})
        .add("IN.ZIP", "no archive")
        .save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
    QCOMPARE(zip.colZIPContents.size(), size_t(1));
    const CZIPFile& file = zip.colZIPContents[0];
    QCOMPARE(file.sFilename, u"a.zip"_s);
    QCOMPARE(file.sFolder, u"C:\\"_s);
    QVERIFY(file.sFilename_Parent.isEmpty());
    QVERIFY(file.boolHasImbeddedZIPs);
    QCOMPARE(file.lngTotal_Items, 5);
    QCOMPARE(file.lngTotal_SizeUncompressed, 400 + 2 + 2 + 10);
    const CZIPFileItem& cfg = *file.item(1);
    QCOMPARE(cfg.sPath, u"Sim\\"_s);
    QCOMPARE(cfg.sFilename, u"a.cfg"_s);
    QCOMPARE(cfg.dteDate, QDate(2024, 5, 18));
    QCOMPARE(cfg.dteTime, QTime(12, 0));
    QVERIFY(cfg.intRatio > 95 && cfg.intRatio < 100);
    QVERIFY(!cfg.boolMethodStore);
    QVERIFY(cfg.boolAttribute_Archive && cfg.boolAttribute_ReadOnly && !cfg.boolAttribute_Hidden);
    QVERIFY(file.item(2)->boolAttribute_Directory);
    const CZIPFileItem& hidden = *file.item(3);
    QVERIFY(hidden.boolMethodStore && hidden.boolAttribute_Hidden && hidden.boolAttribute_System);
    QCOMPARE(hidden.intRatio, 0);
    QVERIFY(hidden.dteDate.isNull() && hidden.dteTime.isNull());
    QVERIFY(file.item(4)->boolEncrypted);
    QVERIFY(!file.item(0) && !file.item(6));
    QCOMPARE(zip.ArchiveFiles_Count(), 5);
}

void TestCZIP::getItems_refusals_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing named") << QString() << u"Nothing specified for extraction."_s;
    QTest::newRow("missing")
        << u"C:\\no.zip"_s
        << u"An error occurred while reading zip file contents. The archive 'C:\\no.zip' cannot be read: it does not exist."_s;
    QTest::newRow("folder")
        << u"C:\\folder"_s
        << u"An error occurred while reading zip file contents. The archive 'C:\\folder' cannot be read: it is a folder."_s;
    QTest::newRow("no archive")
        << u"C:\\text.zip"_s
        << u"An error occurred while reading zip file contents. 'C:\\text.zip' is not a ZIP archive."_s;
    QTest::newRow("RAR 4 under any name")
        << u"C:\\rar4.zip"_s
        << u"An error occurred while reading zip file contents. The archive 'C:\\rar4.zip' cannot be read (Archive header broken): 'C:\\rar4.zip' is truncated: it ends before its last header."_s;
    QTest::newRow("RAR by name alone")
        << u"C:\\rar5.rar"_s
        << u"An error occurred while reading zip file contents. The archive 'C:\\rar5.rar' cannot be read (File is not RAR archive): it does not begin as one does."_s;
}

void TestCZIP::getItems_refusals()
{
    QFETCH(QString, path);
    QFETCH(QString, text);
    ArchiveWorld w;
    w.write(u"text.zip"_s, "just some text");
    w.write(u"rar4.zip"_s, QByteArray("Rar!\x1a\x07\x00more of it", 18));
    w.write(u"rar5.rar"_s, "no archive at all");
    QVERIFY(QDir(w.dir.path()).mkdir(u"folder"_s));
    CZIP zip(w.services);
    zip.sZIPFile = path;
    QVERIFY(!zip.GetItems());
    QCOMPARE(zip.resultText(), text);
    QCOMPARE(zip.result().kind, path.isEmpty() ? ErrorKind::Failed : ErrorKind::Surroundings);
    QVERIFY(zip.colZIPContents.empty());
}

void TestCZIP::nested_depthFirstWithParents_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("in memory") << QString();
    QTest::newRow("in a folder") << u"C:\\work\\"_s;
}

void TestCZIP::nested_depthFirstWithParents()
{
    QFETCH(QString, folder);
    ArchiveWorld w;
    QVERIFY(QDir(w.dir.path()).mkdir(u"work"_s));
    const QByteArray b = ZipBuilder().add("b.txt", "in B").build();
    const QByteArray a = ZipBuilder().add("sub/B.zip", b).add("a.txt", "in A").build();
    const QByteArray c = ZipBuilder().add("c.txt", "in C").build();
    ZipBuilder()
        .add("x/A.zip", a, {.level = 0})
        .add("outer.txt", "o")
        .add("C.Zip", c)
        .save(w.host(u"outer.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\outer.zip"_s;
    zip.boolImbeddedZIPs_Process = true;
    zip.sImbeddedZIPs_ExtractionFolder = folder;
    zip.varStatusBar = &w.status;
    QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
    QCOMPARE(archives(zip),
             (QStringList{{}, u"x\\A.zip\\"_s, u"x\\A.zip\\sub\\B.zip\\"_s, u"C.Zip\\"_s}));
    const CZIPFile& inA = zip.colZIPContents[1];
    const CZIPFile& inB = zip.colZIPContents[2];
    QCOMPARE(inA.sFolder_Parent + inA.sFilename_Parent, u"C:\\outer.zip"_s);
    QCOMPARE(inA.inParent, (EntryRef{0, 1}));
    QCOMPARE(inB.sFolder_Parent + inB.sFilename_Parent, inA.fullName());
    QCOMPARE(inB.inParent, (EntryRef{1, 1}));
    QCOMPARE(zip.colZIPContents[3].sFilename_Parent, u"outer.zip"_s);
    QCOMPARE(inB.item(1)->sFilename, u"b.txt"_s);
    QCOMPARE(*zip.entryBytes({2, 1}, 100), QByteArray("in B"));
    QCOMPARE(*zip.entryBytes({3, 1}, 100), QByteArray("in C"));
    QCOMPARE(*zip.entryBytes({0, 2}, 100), QByteArray("o"));
    QCOMPARE(w.status.texts,
             (QStringList{u"Primary|Processing 'A.zip'..."_s,
                          u"Primary|Processing 'B.zip'..."_s,
                          u"Primary|Processing 'C.Zip'..."_s}));
    if (folder.isEmpty()) {
        QCOMPARE(inA.fullName(), u"C:\\outer.zip\\x\\A.zip"_s);
        QCOMPARE(inB.fullName(), u"C:\\outer.zip\\x\\A.zip\\sub\\B.zip"_s);
        return;
    }
    QSet<QString> folders;
    for (const CZIPFile& file : {inA, inB, zip.colZIPContents[3]}) {
        QVERIFY2(file.sFolder.startsWith(u"C:\\work\\IMB"_s), qPrintable(file.sFolder));
        QVERIFY(w.files.isFile(file.fullName()));
        folders += file.sFolder;
    }
    QCOMPARE(folders.size(), 3);
}

void TestCZIP::nested_invalidFolder()
{
    ArchiveWorld w;
    w.write(u"outer.zip"_s, nested(1));
    w.write(u"flat.zip"_s, nested(0));
    CZIP zip(w.services);
    zip.boolImbeddedZIPs_Process = true;
    zip.sImbeddedZIPs_ExtractionFolder = u"C:\\missing\\"_s;
    zip.sZIPFile = u"C:\\outer.zip"_s;
    QVERIFY(!zip.GetItems());
    QCOMPARE(zip.resultText(),
             u"Invalid extraction folder specified for extracting imbedded zip files."_s);
    QCOMPARE(zip.colZIPContents.size(), size_t(1)); // what was listed before stays
    zip.sZIPFile = u"C:\\flat.zip"_s;
    QVERIFY(zip.GetItems());
}

void TestCZIP::nested_inMemoryCreatesNothing()
{
    ArchiveWorld w;
    w.write(u"outer.zip"_s, nested(3));
    const QStringList before = w.tree({});
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\outer.zip"_s;
    zip.boolImbeddedZIPs_Process = true;
    QVERIFY(zip.GetItems());
    QCOMPARE(zip.colZIPContents.size(), size_t(4));
    w.files.newOperation();
    QCOMPARE(w.tree({}), before);
}

void TestCZIP::nested_largeOnesGoToATemporaryFile()
{
    ArchiveWorld w;
    const QByteArray half(33 << 20, 'h');
    ZipBuilder()
        .add("1.zip", ZipBuilder().add("a", half, {.level = 0}).build(), {.level = 1})
        .add("2.zip", ZipBuilder().add("b", half, {.level = 0}).build(), {.level = 1})
        .save(w.host(u"outer.zip"_s));
    QTemporaryDir temporary; // must stay empty: the file has no name
    qputenv("TMPDIR", temporary.path().toUtf8());
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\outer.zip"_s;
    zip.boolImbeddedZIPs_Process = true;
    const bool listed = zip.GetItems();
    qunsetenv("TMPDIR");
    QVERIFY2(listed, qPrintable(zip.resultText()));
    QVERIFY(QDir(temporary.path()).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot));
    QCOMPARE(zip.colZIPContents.size(), size_t(3));
    QVERIFY(*zip.entryBytes({1, 1}, half.size()) == half);
    QVERIFY(*zip.entryBytes({2, 1}, half.size()) == half);
}

void TestCZIP::nested_damagedOneStaysAFile()
{
    ArchiveWorld w;
    ZipBuilder()
        .add("bad.zip", "this is none")
        .add("crc.zip", nested(0), {.crc = 5})
        .add("secret.zip", nested(0), {.encrypted = true})
        .add("good.zip", nested(0))
        .save(w.host(u"outer.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\outer.zip"_s;
    zip.boolImbeddedZIPs_Process = true;
    QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
    QCOMPARE(archives(zip), (QStringList{{}, u"good.zip\\"_s}));
    QCOMPARE(zip.colZIPContents[0].lngTotal_Items, 4);
    QCOMPARE(zip.remarks().size(), 3);
    QVERIFY2(zip.remarks()[0].contains(u"'bad.zip' of 'C:\\outer.zip' stays an ordinary file"_s),
             qPrintable(zip.remarks()[0]));
    QVERIFY(zip.remarks()[1].contains(u"CRC"_s));
    QVERIFY(zip.remarks()[2].contains(u"encrypted"_s));
}

void TestCZIP::nested_limitOfDepth()
{
    ArchiveWorld w;
    w.write(u"8.zip"_s, nested(8));
    w.write(u"9.zip"_s, nested(9));
    CZIP zip(w.services);
    zip.boolImbeddedZIPs_Process = true;
    zip.sZIPFile = u"C:\\8.zip"_s;
    QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
    QCOMPARE(zip.colZIPContents.size(), size_t(9));
    zip.sZIPFile = u"C:\\9.zip"_s;
    QVERIFY(!zip.GetItems());
    QVERIFY2(zip.resultText().contains(u"limit of 8"_s), qPrintable(zip.resultText()));
    QCOMPARE(zip.result().kind, ErrorKind::Failed);
}

void TestCZIP::nested_limitOfEntriesOverAll()
{
    ArchiveWorld w;
    ZipBuilder inner;
    for (int i = 0; i < 50'000; ++i)
        inner.add(QByteArray::number(i), {});
    const QByteArray bytes = inner.build();
    ZipBuilder outer;
    for (int i = 0; i < 4; ++i)
        outer.add(QByteArray::number(i) + ".zip", bytes, {.level = 1});
    outer.save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.boolImbeddedZIPs_Process = true;
    zip.sZIPFile = u"C:\\a.zip"_s;
    QVERIFY(!zip.GetItems());
    QVERIFY2(zip.resultText().contains(u"limit of 200,000"_s), qPrintable(zip.resultText()));
}

void TestCZIP::nested_cancelled()
{
    ArchiveWorld w;
    ZipBuilder().add("1.zip", nested(0)).add("2.zip", nested(0)).save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.boolImbeddedZIPs_Process = true;
    zip.varStatusBar = &w.status;
    w.status.cancelAfter = 1;
    zip.sZIPFile = u"C:\\a.zip"_s;
    QVERIFY(!zip.GetItems());
    QCOMPARE(zip.result().kind, ErrorKind::Declined);
    QCOMPARE(zip.colZIPContents.size(), size_t(2));
}

void TestCZIP::test_texts_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QStringList>("parts");
    const QByteArray good =
        ZipBuilder().add("a", "1").add("n.zip", nested(1)).add("f/", {}).build();
    QTest::newRow("good") << good << true << QStringList{u"Zip file is OK."_s};
    QTest::newRow("CRC") << ZipBuilder().add("ok", "1").add("bad", "2", {.crc = 9}).build() << false
                         << QStringList{u"Zip file is NOT OK. The entry 'bad'"_s,
                                        u"  Zip error code: 7"_s};
    QTest::newRow("two") << ZipBuilder().add("x", "1", {.crc = 9}).add("y", "2", {.crc = 9}).build()
                         << false
                         << QStringList{u"Zip file is NOT OK. The entry 'x'"_s, u"(1 more"_s};
    QTest::newRow("encrypted") << ZipBuilder().add("e", "1", {.encrypted = true}).build() << false
                               << QStringList{u"NOT OK. "_s, u"  Zip warning code: 24"_s};
    QTest::newRow("damage inside an inner archive")
        << ZipBuilder().add("n.zip", ZipBuilder().add("bad", "2", {.crc = 9}).build()).build()
        << false << QStringList{u"Zip file is NOT OK. "_s, u"'C:\\a.zip\\n.zip'"_s, u"code: 7"_s};
    QTest::newRow("no archive") << QByteArray("text") << false
                                << QStringList{u"Zip file is NOT OK. "_s,
                                               u"not a ZIP archive"_s,
                                               u"  Zip error code: 19"_s};
}

void TestCZIP::test_texts()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, ok);
    QFETCH(QStringList, parts);
    ArchiveWorld w;
    w.write(u"a.zip"_s, bytes);
    CZIP zip(w.services);
    QVERIFY(!zip.Test());
    QCOMPARE(zip.resultText(), u"Nothing specified for testing."_s);
    zip.sZIPFile = u"C:\\no.zip"_s;
    QVERIFY(!zip.Test());
    QVERIFY2(zip.resultText().startsWith(u"Zip file could not be tested."_s),
             qPrintable(zip.resultText()));
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.boolImbeddedZIPs_Process = true;
    QCOMPARE(zip.Test(), ok);
    for (const QString& part : parts)
        QVERIFY2(zip.resultText().contains(part), qPrintable(zip.resultText()));
}

void TestCZIP::extract_whatIsNamed_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("text");
    const QString one = u"File was extracted."_s;
    const QString many = u"Files were extracted."_s;
    QTest::newRow("a name, any case")
        << QStringList{u"sim/FX/A.fx"_s} << QStringList{u"Sim\\fx\\a.fx"_s} << one;
    QTest::newRow("blanks around")
        << QStringList{u"  top.txt "_s} << QStringList{u"top.txt"_s} << one;
    QTest::newRow("a folder") << QStringList{u"Sim\\fx"_s}
                              << QStringList{u"Sim\\fx\\a.fx"_s, u"Sim\\fx\\b.fx"_s} << many;
    QTest::newRow("star") << QStringList{u"*.fx"_s}
                          << QStringList{u"Sim\\fx\\a.fx"_s, u"Sim\\fx\\b.fx"_s} << many;
    QTest::newRow("question mark") << QStringList{u"Sim/fx/?.fx"_s}
                                   << QStringList{u"Sim\\fx\\a.fx"_s, u"Sim\\fx\\b.fx"_s} << many;
    QTest::newRow("twice is once")
        << QStringList{u"top.txt"_s, u"top*"_s} << QStringList{u"top.txt"_s} << one;
    QTest::newRow("inside an inner archive")
        << QStringList{u"n.zip\\n.zip\\deep.txt"_s} << QStringList{u"deep.txt"_s} << one;
    QTest::newRow("unknown beside known")
        << QStringList{u"no.txt"_s, u"top.txt"_s} << QStringList{u"top.txt"_s}
        << u"Could not extract 'no.txt': the archive 'C:\\a.zip' holds no such entry."_s;
    QTest::newRow("no file name") << QStringList{u"a/../b"_s} << QStringList()
                                  << u"Could not resolve a proper filename for 'a/../b'."_s;
    QTest::newRow("nothing") << QStringList() << QStringList()
                             << u"Nothing specified for extraction."_s;
}

void TestCZIP::extract_whatIsNamed()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, files);
    QFETCH(QString, text);
    ArchiveWorld w;
    ZipBuilder()
        .add("top.txt", "t")
        .add("Sim/fx/a.fx", "a")
        .add("Sim\\fx\\b.fx", "b")
        .add("Sim/other.cfg", "c")
        .add("n.zip", nested(1))
        .save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.sExtract_Folder = u"C:\\out\\"_s;
    zip.boolImbeddedZIPs_Process = true;
    zip.varItemsToExtract = names;
    const bool ok = zip.Extract();
    QCOMPARE(zip.resultText(), text);
    QCOMPARE(ok, text.endsWith(u"extracted."_s));
    QCOMPARE(w.tree(u"out"_s), files);
    QCOMPARE(zip.ArchiveFiles_Count(), int(files.size()));
}

void TestCZIP::extract_bytesTimesAndFolders()
{
    ArchiveWorld w;
    const QByteArray data(100'000, 'd');
    ZipBuilder()
        .add("empty/", {})
        .add("d/file.bin", data)
        .add("d/undated.bin", "u", {.stamp = 0})
        .add("d/later.bin", "l", {.stamp = 0x58B2'677D}) // 12:59:58
        .add("n.zip", nested(0))
        .save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.sExtract_Folder = u"C:\\out"_s;
    zip.boolExtract_All = true;
    zip.boolImbeddedZIPs_Process = true;
    zip.CProgressBarEx = &w.status;
    QVERIFY2(zip.Extract(), qPrintable(zip.resultText()));
    QCOMPARE(zip.ArchiveFiles_Count(), 4);
    QVERIFY(w.files.isFolder(u"C:\\out\\empty"_s));
    QVERIFY(w.bytes(u"out/d/file.bin"_s) == data);
    QCOMPARE(w.bytes(u"out/n.zip"_s), nested(0));
    QCOMPARE(w.files.info(u"C:\\out\\d\\file.bin")->modified(),
             QDateTime(QDate(2024, 5, 18), QTime(12, 0)));
    QCOMPARE(w.files.info(u"C:\\out\\d\\later.bin")->modified(),
             QDateTime(QDate(2024, 5, 18), QTime(12, 59, 58)));
    QVERIFY(
        w.files.info(u"C:\\out\\d\\undated.bin")->modified().secsTo(QDateTime::currentDateTime()) <
        600);
    QCOMPARE(w.status.last, (std::pair<qint64, qint64>{5, 5}));
}

void TestCZIP::extract_unsafeNamesAreToldAndTheOthersGoOn()
{
    ArchiveWorld w;
    const QList<QByteArray> evil = {"../up.txt",
                                    "a/../../up.txt",
                                    "..\\up.txt",
                                    "/abs.txt",
                                    "C:/drive.txt",
                                    "C:stream",
                                    "a/nul.txt",
                                    "com1",
                                    "a./b",
                                    "trail ",
                                    "d/...",
                                    "a/. ./b",
                                    "st:ream",
                                    "w<>.txt",
                                    QByteArray("nul\0byte", 8),
                                    "//server/share"};
    ZipBuilder zip;
    zip.add("first.txt", "1");
    for (const QByteArray& name : evil)
        zip.add(name, "evil", {.level = 0});
    zip.add("link", "../../target", {.level = 0, .madeBy = 0x0314, .attributes = 0xA1FFU << 16});
    zip.add("last.txt", "2").save(w.host(u"a.zip"_s));
    CZIP czip(w.services);
    czip.sZIPFile = u"C:\\a.zip"_s;
    czip.sExtract_Folder = u"C:\\deep\\out\\"_s;
    czip.boolExtract_All = true;
    QVERIFY(!czip.Extract());
    QCOMPARE(czip.result().kind, ErrorKind::Failed);
    QCOMPARE(czip.remarks().size(), evil.size() + 1);
    QVERIFY2(czip.remarks()[0].startsWith(u"Could not extract '..\\up.txt' from 'C:\\a.zip'."_s),
             qPrintable(czip.remarks()[0]));
    QCOMPARE(w.tree({}),
             (QStringList{u"a.zip"_s, u"deep\\out\\first.txt"_s, u"deep\\out\\last.txt"_s}));
}

void TestCZIP::extract_spellingsMeetInOneFolder()
{
    ArchiveWorld w;
    ZipBuilder()
        .add("SimObjects/a.cfg", "1")
        .add("Simobjects/b.cfg", "2")
        .add("SIMOBJECTS/A.CFG", "3")
        .add("SimObjects/\xC3\x84.txt", "4", {.flags = 0x800})
        .add("SimObjects/\xC3\xA4.TXT", "5", {.flags = 0x800})
        .save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.sExtract_Folder = u"C:\\out\\"_s;
    zip.boolExtract_All = true;
    QVERIFY2(zip.Extract(), qPrintable(zip.resultText()));
    QCOMPARE(w.tree(u"out"_s),
             (QStringList{u"SimObjects\\a.cfg"_s, u"SimObjects\\b.cfg"_s, u"SimObjects\\Ä.txt"_s}));
    QCOMPARE(w.bytes(u"out/SimObjects/a.cfg"_s), QByteArray("3"));
    QCOMPARE(w.bytes(u"out/SimObjects/Ä.txt"_s), QByteArray("5"));
}

void TestCZIP::extract_overwrite_data()
{
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<QList<int>>("answers");
    QTest::addColumn<QByteArray>("after"); // contents of 1, 2, 3
    QTest::addColumn<QString>("text");
    const auto row = [](const char* title,
                        bool confirm,
                        QList<Button> answers,
                        const char* after,
                        const QString& text) {
        QList<int> numbers;
        for (const Button button : answers)
            numbers += int(button);
        QTest::newRow(title) << confirm << numbers << QByteArray(after) << text;
    };
    const QString done = u"Files were extracted."_s;
    row("never asked", false, {}, "nnn", done);
    row("each", true, {Button::Yes, Button::No, Button::Yes}, "non", done);
    row("yes to all", true, {Button::No, Button::YesToAll}, "onn", done);
    row("no to all", true, {Button::Yes, Button::NoToAll}, "noo", u"File was extracted."_s);
    row("only no", true, {Button::NoToAll}, "ooo", u"No file was extracted."_s);
    row("cancel", true, {Button::Yes, Button::Cancel}, "noo", u"Extraction aborted."_s);
}

void TestCZIP::extract_overwrite()
{
    QFETCH(bool, confirm);
    QFETCH(QList<int>, answers);
    QFETCH(QByteArray, after);
    QFETCH(QString, text);
    ArchiveWorld w;
    ZipBuilder().add("1", "n").add("2", "n").add("3", "n").save(w.host(u"a.zip"_s));
    QVERIFY(QDir(w.dir.path()).mkdir(u"out"_s));
    for (const QString& name : {u"1"_s, u"2"_s, u"3"_s})
        w.write(u"out/"_s + name, "o");
    for (const int answer : answers)
        w.prompts.expect(u"already exists"_s, Button(answer));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.sExtract_Folder = u"C:\\out\\"_s;
    zip.boolExtract_All = true;
    zip.boolExtract_ConfirmOverwrite = confirm;
    zip.boolErrorMessages_Show = true; // an abort is no failure to be told
    QCOMPARE(zip.Extract(), !text.contains(u"aborted"_s));
    QCOMPARE(zip.resultText(), text);
    QCOMPARE(w.bytes(u"out/1"_s) + w.bytes(u"out/2"_s) + w.bytes(u"out/3"_s), after);
}

void TestCZIP::extract_damagedEntryLeavesTheOldFile()
{
    ArchiveWorld w;
    ZipBuilder()
        .add("bad.txt", "damaged", {.crc = 1})
        .add("good.txt", "new")
        .save(w.host(u"a.zip"_s));
    QVERIFY(QDir(w.dir.path()).mkdir(u"out"_s));
    w.write(u"out/bad.txt"_s, "old");
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.sExtract_Folder = u"C:\\out\\"_s;
    zip.boolExtract_All = true;
    QVERIFY(!zip.Extract());
    QCOMPARE(
        zip.resultText(),
        u"Could not extract 'bad.txt'. The entry 'bad.txt' of the archive 'C:\\a.zip' is damaged: its check sum (CRC) is wrong."_s);
    QCOMPARE(w.tree(u"out"_s), (QStringList{u"bad.txt"_s, u"good.txt"_s}));
    QCOMPARE(w.bytes(u"out/bad.txt"_s), QByteArray("old"));
    QCOMPARE(w.bytes(u"out/good.txt"_s), QByteArray("new"));
}

void TestCZIP::extract_cancelled()
{
    ArchiveWorld w;
    ZipBuilder().add("1", "n").add("2", "n").add("3", "n").save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.sExtract_Folder = u"C:\\out\\"_s;
    zip.boolExtract_All = true;
    zip.varStatusBar = &w.status;
    w.status.cancelAfter = 2;
    QVERIFY(!zip.Extract());
    QCOMPARE(zip.resultText(), u"Extraction aborted."_s);
    QCOMPARE(w.tree(u"out"_s), (QStringList{u"1"_s, u"2"_s}));
    QCOMPARE(w.status.texts.last(), u"Primary|Extracting '2'..."_s);
}

void TestCZIP::entryExtract_underAnotherName()
{
    ArchiveWorld w;
    w.write(u"a.zip"_s, nested(1));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    zip.boolImbeddedZIPs_Process = true;
    QVERIFY(zip.GetItems());
    QVERIFY(zip.Entry_Extract({1, 1}, u"C:\\out\\other.txt"_s));
    QCOMPARE(zip.resultText(), u"File was extracted."_s);
    QCOMPARE(w.bytes(u"out/other.txt"_s), QByteArray("deep"));
    QVERIFY(!zip.Entry_Extract({1, 2}, u"C:\\out\\none.txt"_s));

    // A folder in the target's place: the target's own fault, told under its own caption.
    QVERIFY(QDir(w.dir.path()).mkdir(u"taken"_s));
    zip.boolErrorMessages_Show = true;
    w.prompts.expect(u"An error occured renaming/copying temporary file."_s, Button::Ok);
    w.prompts.expect(u"Could not extract 'deep.txt'"_s, Button::Ok);
    QVERIFY(!zip.Entry_Extract({1, 1}, u"C:\\taken"_s));
    QCOMPARE(w.prompts.asked[0].caption, u"Extraction Error"_s);
    QCOMPARE(w.prompts.asked[1].caption, u"Zip Error"_s);
    QCOMPARE(w.tree({}), (QStringList{u"a.zip"_s, u"out\\other.txt"_s}));
}

void TestCZIP::entryBytes_limit()
{
    ArchiveWorld w;
    ZipBuilder().add("d/a.txt", "12345").save(w.host(u"a.zip"_s));
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\a.zip"_s;
    QVERIFY(zip.GetItems());
    QCOMPARE(*zip.entryBytes({0, 1}, 5), QByteArray("12345"));
    const ResultOf<QByteArray> tooLarge = zip.entryBytes({0, 1}, 4);
    QVERIFY(!tooLarge);
    QVERIFY2(tooLarge.text.contains(u"'d\\a.txt'"_s), qPrintable(tooLarge.text));
}

void TestCZIP::errorBox_onlyWhenAsked()
{
    ArchiveWorld w;
    CZIP zip(w.services);
    zip.sZIPFile = u"C:\\no.zip"_s;
    QVERIFY(!zip.GetItems());
    QVERIFY(w.prompts.asked.isEmpty());
    zip.boolErrorMessages_Show = true;
    w.prompts.expect(u"it does not exist"_s, Button::Ok);
    QVERIFY(!zip.GetItems());
    QCOMPARE(w.prompts.asked[0].caption, u"Zip Error"_s);
    w.prompts.expect(u"it does not exist"_s, Button::Ok);
    zip.Error_Show();
}

VT_TEST_CLASS(TestCZIP)
#include "test_czip.moc"
