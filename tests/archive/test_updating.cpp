// Adding to and deleting from archives: what comes out, what stays, and what happens to the old
// archive when something fails.
#include "ArchiveWorld.h"
#include "archive/ZipDirectory.h"
#include "archive/ZipWriter.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <csignal>
#include <sys/resource.h>
#include <zip.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

/// What another reader finds: contents by stored name. Empty when it finds a fault.
QMap<QByteArray, QByteArray> readByLibzip(const QString& host)
{
    QMap<QByteArray, QByteArray> all;
    int error = 0;
    zip_t* zip = zip_open(host.toUtf8().constData(), ZIP_RDONLY | ZIP_CHECKCONS, &error);
    if (!zip)
        return all;
    for (zip_int64_t i = 0; i < zip_get_num_entries(zip, 0); ++i) {
        zip_stat_t st;
        zip_stat_index(zip, zip_uint64_t(i), 0, &st);
        QByteArray bytes(qsizetype(st.size), 0);
        zip_file_t* file = zip_fopen_index(zip, zip_uint64_t(i), 0);
        const bool read = file && zip_fread(file, bytes.data(), st.size) == zip_int64_t(st.size);
        char more = 0;
        if (read && zip_fread(file, &more, 1) == 0 && zip_fclose(file) == 0)
            all[zip_get_name(zip, zip_uint64_t(i), 0)] = bytes;
    }
    zip_discard(zip);
    return all;
}

/// Header and packed bytes of each entry, as they lie in the archive.
QMap<QString, QByteArray> rawEntries(const QByteArray& archive)
{
    QMap<QString, QByteArray> all;
    int code = 0;
    const auto directory = ZipDirectory::open(makeMemorySource(archive, u"raw"_s), code);
    if (!directory)
        return all;
    for (const ZipEntry& entry : (*directory)->entries()) {
        const auto at = qsizetype(entry.headerOffset);
        const auto extra = uchar(archive[at + 28]) | uchar(archive[at + 29]) << 8;
        all[entry.folder + entry.name] =
            archive.sliced(at, 30 + entry.nameBytes + extra + entry.packed);
    }
    return all;
}

QByteArray randomBytes(QRandomGenerator& random, int size, int letters)
{
    QByteArray bytes(size, 0);
    for (char& c : bytes)
        c = char(random.bounded(letters));
    return bytes;
}

} // namespace

class TestUpdating : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void anyOrderOfChanges_otherReadersAgreeAndTheRestStays()
    {
        for (quint32 seed = 1; seed <= 8; ++seed) {
            QRandomGenerator random(seed);
            ArchiveWorld w;
            ZipBuilder builder;
            builder.prefix(seed % 2 ? QByteArray("MZ a program") : QByteArray())
                .comment("said of it")
                .add("keep/descriptor.txt", "sizes follow", {.dataDescriptor = true})
                .add("keep/wide.txt", QByteArray(5000, 'w'), {.level = 9, .zip64 = true})
                .add("keep/dated.txt", "1999", {.stamp = 0x2721'0000, .attributes = 0x01})
                .add("gone.txt", "will be replaced");
            builder.save(w.host(u"a.zip"_s));
            const QMap<QString, QByteArray> before = rawEntries(w.bytes(u"a.zip"_s));
            QMap<QByteArray, QByteArray> model = readByLibzip(w.host(u"a.zip"_s));
            if (seed % 2) // libzip does not find the entries behind a prefix
                model = {{"keep/descriptor.txt", "sizes follow"},
                         {"keep/wide.txt", QByteArray(5000, 'w')},
                         {"keep/dated.txt", "1999"},
                         {"gone.txt", "will be replaced"}};
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.zip"_s;
            for (int step = 0; step < 12; ++step) {
                zip.typeCompressionLevel = random.bounded(10);
                const QString name =
                    u"D %1/ü%2.txt"_s.arg(random.bounded(2)).arg(random.bounded(4));
                if (step != 6 && model.contains(name.toUtf8()) && random.bounded(2) == 0) {
                    zip.varItemsToExtract = {name};
                    QVERIFY2(zip.Delete(), qPrintable(zip.resultText()));
                    model.remove(name.toUtf8());
                    continue;
                }
                const QByteArray bytes = randomBytes(
                    random, random.bounded(3) * random.bounded(9000), seed % 2 ? 256 : 5);
                zip.varItemsToExtract.clear();
                zip.colItemsToAdd = {{name, {}, Content::ofBytes(bytes)}};
                if (step == 6) {
                    w.write(u"gone.txt"_s, "new\n");
                    zip.varItemsToExtract = {u"C:\\GONE.TXT"_s};
                    model["gone.txt"] = "new\n";
                }
                QVERIFY2(zip.Add(), qPrintable(zip.resultText()));
                QVERIFY2(zip.Added_Verify(), qPrintable(zip.resultText()));
                model[name.toUtf8()] = bytes;
            }
            const QByteArray archive = w.bytes(u"a.zip"_s);
            QCOMPARE(readByLibzip(w.host(u"a.zip"_s)), model);
            QVERIFY(archive.endsWith("said of it"));
            QCOMPARE(archive.startsWith("MZ a program"), seed % 2 == 1);
            const QMap<QString, QByteArray> after = rawEntries(archive);
            for (const QString& name : before.keys()) {
                if (name.startsWith(u"keep"_s))
                    QCOMPARE(after[name], before[name]);
            }
            zip.boolImbeddedZIPs_Process = true;
            QVERIFY2(zip.Test(), qPrintable(zip.resultText()));
            const CZIPFileItem* dated = zip.entry({0, 3});
            QVERIFY(dated && dated->dteDate == QDate(1999, 9, 1) && dated->boolAttribute_ReadOnly);
            QCOMPARE(w.tree({}), (QStringList{u"a.zip"_s, u"gone.txt"_s}));
        }
    }

    void folders_comeWithTheirNamesTimesAndAttributes()
    {
        ArchiveWorld w;
        QVERIFY(QDir(w.dir.path()).mkpath(u"Pack/Sub"_s));
        w.write(u"Pack/a.txt"_s, "a");
        w.write(u"Pack/Sub/ß.txt"_s, "b");
        w.write(u"Pack/all.zip"_s, {});
        QFile file(w.host(u"Pack/a.txt"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.setFileTime(QDateTime(QDate(2011, 12, 13), QTime(14, 15, 17)),
                                 QFileDevice::FileModificationTime));
        QVERIFY(file.setPermissions(QFileDevice::ReadOwner));
        QVERIFY(QFile::remove(w.host(u"Pack/all.zip"_s)));
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\Pack\\all.zip"_s;
        zip.boolAdd_Create = true;
        zip.sAdd_Folder = u"In"_s;
        zip.varItemsToExtract = {u"C:\\pack\\"_s};
        zip.varStatusBar = &w.status;
        for (int round = 0; round < 2; ++round) { // the second time beside the archive itself
            QVERIFY2(zip.Add(), qPrintable(zip.resultText()));
            QCOMPARE(zip.resultText(), u"Files were added."_s);
            QCOMPARE(zip.ArchiveFiles_Count(), 2);
        }
        QCOMPARE(w.status.texts.first(), u"Primary|Updating zip file, please wait..."_s);
        QCOMPARE(w.status.texts.last(), u"Primary|Zipping 'ß.txt'..."_s);
        QVERIFY(zip.GetItems());
        const CZIPFile& listed = zip.colZIPContents[0];
        QCOMPARE(listed.varZIPItems.size(), 2);
        QCOMPARE(listed.item(1)->fullName(), u"In\\Pack\\a.txt"_s);
        QCOMPARE(listed.item(1)->dteTime, QTime(14, 15, 16));
        QVERIFY(listed.item(1)->boolAttribute_ReadOnly);
        QCOMPARE(listed.item(2)->fullName(), u"In\\Pack\\Sub\\ß.txt"_s);
        QVERIFY(zip.ZIP_Summary().contains(u"Total Entries:  2"_s));
        zip.colZIPContents[0].ZIPItems_Items_Selected_Set({2, 9});
        QStringList out;
        QVERIFY(zip.ZIP_Items_Selected_ExtractToTemporaryFolder(u"C:\\"_s, out));
        QCOMPARE(out.size(), 1);
        QVERIFY(out[0].startsWith(u"C:\\OPN"_s) && out[0].endsWith(u"\\In\\Pack\\Sub\\ß.txt"_s));
    }

    void largeFiles_areStreamed()
    {
        ArchiveWorld w;
        QRandomGenerator random(3);
        QByteArray noise(34 << 20, Qt::Uninitialized);
        random.fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        w.write(u"noise.bin"_s, noise);
        w.write(u"zeros.bin"_s, QByteArray(40 << 20, '\0'));
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.zip"_s;
        zip.boolAdd_Create = true;
        zip.varItemsToExtract = {u"C:\\noise.bin"_s, u"C:\\zeros.bin"_s};
        QVERIFY2(zip.Add(), qPrintable(zip.resultText()));
        QVERIFY2(zip.Added_Verify(), qPrintable(zip.resultText()));
        QVERIFY(zip.entry({0, 1})->boolMethodStore); // packing would only have cost time
        QVERIFY(zip.entry({0, 2})->lngSize_Compressed < 1 << 20);
        QCOMPARE(readByLibzip(w.host(u"a.zip"_s)).value("noise.bin"), noise);

        QVERIFY(QFile::resize(w.host(u"zeros.bin"_s), (40 << 20) - 1));
        zip.varItemsToExtract = {u"C:\\noise.bin"_s};
        zip.colItemsToAdd = {{u"z"_s, u"C:\\zeros.bin"_s, {}}};
        QVERIFY(zip.Add());
        w.write(u"zeros.bin"_s, QByteArray((40 << 20) - 1, '1'));
        QVERIFY(!zip.Added_Verify());
        QVERIFY2(zip.resultText().contains(u"'z'"_s), qPrintable(zip.resultText()));
    }

    void manyEntries_needZip64()
    {
        QByteArray archive;
        ZipWriter writer(
            [&](QByteArrayView bytes) {
                archive += bytes;
                return true;
            },
            6);
        for (int i = 0; i < 70'000; ++i)
            QVERIFY(writer.add(QString::number(i), Content::ofBytes({})));
        QVERIFY(writer.finish());
        ArchiveWorld w;
        w.write(u"a.zip"_s, archive);
        QCOMPARE(readByLibzip(w.host(u"a.zip"_s)).size(), 70'000);
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.zip"_s;
        QVERIFY(zip.GetItems());
        QCOMPARE(zip.ArchiveFiles_Count(), 70'000);
    }

    void whatGoesWrong_leavesTheOldArchive()
    {
        using Break = std::function<void(ArchiveWorld&, CZIP&)>;
        const auto failing = [](ArchiveWorld&, CZIP& zip) {
            Content content;
            content.size = 40 << 20;
            content.transfer = [](const Content::Sink& sink) {
                sink("the beginning");
                return Result::failure(u"its disk was pulled out."_s);
            };
            zip.colItemsToAdd.push_back({u"b.txt"_s, {}, content});
        };
        const Rows<Break, QString> rows = {
            {"the disk is full",
             [](ArchiveWorld& w, CZIP&) {
                 w.write(u"big.txt"_s, QByteArray(300'000, 'x'));
                 signal(SIGXFSZ, SIG_IGN);
                 const rlimit limit{10'000, RLIM_INFINITY};
                 setrlimit(RLIMIT_FSIZE, &limit);
             },
             u"Could not add file(s) to 'C:\\a.zip'. 'C:\\a.zip' could not be written: the file would be larger than allowed."_s},
            {"a file cannot be read to its end", failing, u"its disk was pulled out."_s},
            {"a file shrinks",
             [](ArchiveWorld& w, CZIP& zip) {
                 w.write(u"c.txt"_s, "123");
                 Content content = Content::ofBytes("12");
                 content.size = 3;
                 zip.colItemsToAdd.push_back({u"c.txt"_s, {}, content});
             },
             u"changed while it was read"_s},
            {"cancelled",
             [](ArchiveWorld& w, CZIP& zip) {
                 zip.varStatusBar = &w.status;
                 w.status.cancelAfter = 1;
             },
             u"the archive is as it was"_s},
            {"the archive is damaged",
             [](ArchiveWorld& w, CZIP&) { w.write(u"a.zip"_s, w.bytes(u"a.zip"_s).chopped(5)); },
             u"An error occurred during zipping. The archive 'C:\\a.zip'"_s},
            {"an entry that stays is damaged",
             [](ArchiveWorld& w, CZIP&) {
                 w.write(u"a.zip"_s, w.bytes(u"a.zip"_s).replace(0, 2, "xx"));
             },
             u"'old.txt' of the archive 'C:\\a.zip' is damaged"_s},
        };
        for (const auto& [breakIt, text] : rows) {
            ArchiveWorld w;
            ZipBuilder().add("old.txt", "old").save(w.host(u"a.zip"_s));
            w.write(u"big.txt"_s, QByteArray(300, 'x'));
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.zip"_s;
            zip.varItemsToExtract = {u"C:\\big.txt"_s};
            zip.typeCompressionLevel = 0;
            breakIt(w, zip);
            const QByteArray before = w.bytes(u"a.zip"_s);
            const QStringList tree = w.tree({});
            const bool added = zip.Add();
            const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &none);
            QVERIFY(!added);
            QVERIFY2(zip.resultText().contains(text), qPrintable(zip.resultText()));
            QCOMPARE(w.bytes(u"a.zip"_s), before);
            QCOMPARE(w.tree({}), tree);
            QCOMPARE(zip.ArchiveFiles_Count(), 0);
        }
    }

    void texts()
    {
        using Set = std::function<void(CZIP&)>;
        const auto paths = [](const QStringList& items) {
            return [items](CZIP& zip) { zip.varItemsToExtract = items; };
        };
        const auto named = [](const QString& name) {
            return [name](CZIP& zip) { zip.colItemsToAdd = {{name, u"C:\\a.txt"_s, {}}}; };
        };
        const auto on = [](const QString& archive) {
            return [archive](CZIP& zip) {
                zip.sZIPFile = archive;
                zip.varItemsToExtract = {u"C:\\a.txt"_s};
            };
        };
        const Rows<bool, Set, bool, QString> rows = {
            {"add nothing", true, paths({}), false, u"Nothing specified for zipping."_s},
            {"add to none",
             true,
             on(u"C:\\no.zip"_s),
             false,
             u"Zip file 'C:\\no.zip' does not exist."_s},
            {"add to RAR",
             true,
             on(u"C:\\x.rar"_s),
             false,
             u"Cannot add to RAR file 'C:\\x.rar'"_s},
            {"add to RAR under another name",
             true,
             on(u"C:\\y.zip"_s),
             false,
             u"Cannot add to RAR file 'C:\\y.zip'"_s},
            {"add one", true, paths({u"C:\\a.txt"_s}), true, u"File was added."_s},
            {"add a missing one",
             true,
             paths({u"C:\\a.txt"_s, u"C:\\no.txt"_s}),
             false,
             u"'C:\\no.txt' will not be added to C:\\a.zip because it was not found.\nFile was added."_s},
            {"out of the archive",
             true,
             named(u"..\\a.txt"_s),
             false,
             u"Could not resolve a proper filename for '..\\a.txt'."_s},
            {"below a file",
             true,
             named(u"D\\1.txt\\a.txt"_s),
             false,
             u"'D\\1.txt\\a.txt' will not be added to C:\\a.zip: 'D\\1.txt' is a file there."_s},
            {"in a folder's place",
             true,
             named(u"d"_s),
             false,
             u"'d' will not be added to C:\\a.zip: it is a folder there."_s},
            {"delete nothing", false, paths({}), false, u"Nothing specified for deletion."_s},
            {"delete from RAR",
             false,
             on(u"C:\\x.rar"_s),
             false,
             u"Cannot delete from RAR file 'C:\\x.rar'"_s},
            {"delete one", false, paths({u"d/1.TXT"_s}), true, u"File was deleted."_s},
            {"delete a folder", false, paths({u"D"_s}), true, u"Files were deleted."_s},
            {"delete what is not there",
             false,
             paths({u"D"_s, u"E"_s}),
             false,
             u"Could not delete 'E' from C:\\a.zip: it holds no such entry.\nFiles were deleted."_s},
            {"delete all, unconfirmed",
             false,
             paths({u"*.txt"_s}),
             false,
             u"Mass deletion specified but confirmation flag was not set."_s},
        };
        for (const auto& [adding, set, ok, text] : rows) {
            ArchiveWorld w;
            ZipBuilder()
                .add("D/1.txt", "1")
                .add("D/2.txt", "2")
                .add("3.txt", "3")
                .save(w.host(u"a.zip"_s));
            w.write(u"a.txt"_s, "a");
            w.write(u"x.rar"_s, "no RAR");
            w.write(u"y.zip"_s, QByteArray("Rar!\x1a\x07\x01\x00", 8));
            const QByteArray rar = w.bytes(u"y.zip"_s);
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.zip"_s;
            set(zip);
            QCOMPARE(adding ? zip.Add() : zip.Delete(), ok);
            QVERIFY2(zip.resultText().startsWith(text), qPrintable(zip.resultText()));
            QCOMPARE(w.bytes(u"y.zip"_s), rar);
        }
    }

    void deletingTheLastEntry_leavesAnEmptyArchive()
    {
        ArchiveWorld w;
        ZipBuilder().add("a", "1").add("b", "2").save(w.host(u"a.zip"_s));
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.zip"_s;
        zip.varItemsToExtract = {u"*"_s};
        zip.boolDelete_AllConfirmed = true;
        QVERIFY2(zip.Delete(), qPrintable(zip.resultText()));
        QCOMPARE(zip.ArchiveFiles_Count(), 2);
        QVERIFY(zip.GetItems());
        QVERIFY(zip.colZIPContents[0].varZIPItems.isEmpty());
        w.write(u"a"_s, "1");
        zip.varItemsToExtract = {u"C:\\a"_s};
        QVERIFY(zip.Add());
        QCOMPARE(readByLibzip(w.host(u"a.zip"_s)).value("a"), QByteArray("1"));
    }
};

VT_TEST_CLASS(TestUpdating)
#include "test_updating.moc"
