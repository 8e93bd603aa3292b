// RAR archives of both formats: what is listed, what comes out, what is said of those that are
// damaged, and that none of them harms.
#include "ArchiveWorld.h"
#include "archive/CUnRAR.h"
#include "archive/RarNames.h"
#include "archive/RarReader.h"
#include "support/RarMaker.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>

#include <sys/wait.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

constexpr int solidFlag(int format)
{
    return format == 4 ? 8 : 4;
}

QByteArray textOf(quint32 seed, int size)
{
    QRandomGenerator random(seed);
    QByteArray bytes((size + 3) / 4 * 4, Qt::Uninitialized);
    random.fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
    return bytes.first(size);
}

/// Stored, packed and, when asked for, packed with what is before.
QByteArray mixedArchive(int format, bool solid)
{
    RarMaker maker(format, solid ? solidFlag(format) : 0);
    maker.add("D", {}, {.folder = true});
    for (int i = 0; i < 5; ++i)
        maker.add("D/" + QByteArray::number(i),
                  textOf(quint32(i), 900 * i * i),
                  {.packed = i != 2, .solid = solid && i > 1 && i != 2});
    return maker.build();
}

} // namespace

class TestRar : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void listing_fields()
    {
        for (const int format : {4, 5}) {
            ArchiveWorld w;
            const auto july =
                quint32(QDateTime(QDate(2009, 7, 8), QTime(9, 10, 11)).toSecsSinceEpoch());
            // July 8th, 2009, 9:10:10, and one second in the further field.
            constexpr quint32 stamp = (29U << 9 | 7 << 5 | 8) << 16 | (9 << 11 | 10 << 5 | 5);
            RarMaker(format)
                .prefix("MZ a program")
                .comment("said of it")
                .add("Sim/Sub", {}, {.folder = true})
                .add("Sim/Sub/a.cfg",
                     QByteArray(400, 'a'),
                     {.exactTime = true, .attributes = 0x23, .stamp = stamp, .unixTime = july})
                .add("e.txt", "1234", {.encrypted = true, .stamp = 0})
                .add("u.txt", "u", {.unixHost = true, .attributes = 0100444})
                .add("link", "u.txt", {.unixHost = true, .attributes = 0120777})
                .add("in.zip", ZipBuilder().add("z.txt", "z").build())
                .save(w.host(u"a.rar"_s));
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.rar"_s;
            zip.boolImbeddedZIPs_Process = true;
            QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
            QCOMPARE(zip.colZIPContents.size(), size_t(2));
            const CZIPFile& file = zip.colZIPContents[0];
            QCOMPARE(file.varZIPItems.size(), 6);
            QVERIFY(file.item(1)->boolAttribute_Directory && file.boolHasImbeddedZIPs);
            const CZIPFileItem& cfg = *file.item(2);
            QCOMPARE(cfg.sPath, u"Sim\\Sub\\"_s);
            QCOMPARE(cfg.sFilename, u"a.cfg"_s);
            QCOMPARE(cfg.lngSize_Uncompressed, 400);
            QVERIFY(cfg.boolMethodStore && cfg.crc32Known);
            QVERIFY(cfg.boolAttribute_ReadOnly && cfg.boolAttribute_Hidden &&
                    cfg.boolAttribute_Archive);
            QCOMPARE(QDateTime(cfg.dteDate, cfg.dteTime),
                     QDateTime(QDate(2009, 7, 8), QTime(9, 10, 11)));
            QVERIFY(file.item(3)->boolEncrypted && file.item(3)->dteDate.isNull());
            QVERIFY(file.item(4)->boolAttribute_ReadOnly);
            if (format == 4)
                QCOMPARE(file.item(5)->kind, EntryKind::Link);
            QCOMPARE(*zip.entryBytes({0, 2}, 400), QByteArray(400, 'a'));
            QCOMPARE(*zip.entryBytes({1, 1}, 400), QByteArray("z"));
            const auto secret = zip.entryBytes({0, 3}, 400);
            QVERIFY(!secret && secret.text.contains(u"is encrypted"_s));

            QVERIFY(zip.ZIP_Summary().contains(u"Comment:  said of it"_s));

            CUnRAR rar(w.services);
            rar.sRARFile = u"C:\\a.rar"_s;
            QVERIFY(rar.List());
            QCOMPARE(rar.sarrayFilenames_Get().value(1), u"Sim\\Sub\\a.cfg"_s);
            QString comment;
            QVERIFY(rar.unrar().Comment(comment));
            QCOMPARE(comment, u"said of it"_s);
            QVERIFY(!rar.unrar().Comment(comment, 3));
            QCOMPARE(rar.unrar().strLastErrorMsg,
                     u"Buffer too small, comments not completely read"_s);
        }
        QCOMPARE(CTKUnrar::LongToUnsigned(-1), 0xFFFFFFFFLL);
        QVERIFY(CTKUnrar::RARFileTimeToVBDate(0).isNull());
    }

    void names_ofTheOldFormat()
    {
        // A page of 04 (Cyrillic); low bytes under it, a whole character, a run as it is, and a run
        // with a correction.
        const QByteArray packed("\x04\x56\x1f\x32\x3e\x20\x20\x00\x01"
                                "\xf0\x00\x80\x10",
                                13);
        const Rows<QByteArray, bool, int, QString> rows = {
            {"plain", "a b.txt", false, 2, u"a b.txt"_s},
            {"DOS page", "gr\x81n.txt", false, 2, u"grün.txt"_s},
            {"UTF-8 of a Unix tool", "gr\xc3\xbcn", false, 3, u"grün"_s},
            {"UTF-8, flagged", "\xe2\x82\xac.bgl", true, 2, u"€.bgl"_s},
            {"low bytes under the page",
             QByteArray("xyz\0\x04\x54\x1f\x32\x3e", 9),
             true,
             2,
             u"Пво"_s},
            {"whole characters", QByteArray("x\0\x04\x80\xac\x20", 6), true, 2, u"€"_s},
            {"a run of the plain name",
             QByteArray("abcdef.txt\0\x04\xc0\x08", 14),
             true,
             2,
             u"abcdef.txt"_s},
            {"a corrected run",
             QByteArray("abc\0\x04\xc0\x81\x10", 8),
             true,
             2,
             u"\u0471\u0472\u0473"_s},
            {"cut off", QByteArray("abc\0\x04\xc0", 6), true, 2, u""_s},
        };
        for (const auto& [field, unicode, host, name] : rows)
            QCOMPARE(rarnames::decode4(field, unicode, host), name);
    }

    void volumeNames()
    {
        const Rows<QString, bool, QString, QString> rows = {
            {"numbered",
             u"C:\\b737.part1.rar"_s,
             true,
             u"C:\\b737.part2.rar"_s,
             u"C:\\b737.part1.rar"_s},
            {"two digits", u"a.part09.rar"_s, true, u"a.part10.rar"_s, u"a.part01.rar"_s},
            {"one more digit", u"a.part9.rar"_s, true, u"a.part10.rar"_s, u"a.part1.rar"_s},
            {"self-extractor", u"a.part1.exe"_s, true, u"a.part2.rar"_s, u"a.part1.exe"_s},
            {"old names", u"a.2.rar"_s, false, u"a.2.r00"_s, u"a.2.rar"_s},
            {"later", u"a.r00"_s, false, u"a.r01"_s, u"a.rar"_s},
            {"over a hundred", u"a.r99"_s, false, u"a.s00"_s, u"a.rar"_s},
        };
        for (const auto& [path, numbered, next, first] : rows) {
            QCOMPARE(rarnames::nextVolume(path, numbered), next);
            QCOMPARE(rarnames::firstVolume(path, numbered), first);
        }
    }

    void contents_inAnyOrder()
    {
        for (const int format : {4, 5}) {
            for (const bool solid : {false, true}) {
                ArchiveWorld w;
                w.write(u"a.rar"_s, mixedArchive(format, solid));
                CZIP zip(w.services);
                zip.sZIPFile = u"C:\\a.rar"_s;
                QVERIFY2(zip.Test(), qPrintable(zip.resultText()));
                QCOMPARE(zip.resultText(), u"RAR file is OK."_s);
                for (const int i : {4, 1, 0, 3, 2, 4}) {
                    const auto bytes = zip.entryBytes({0, i + 2}, 1 << 20);
                    QVERIFY2(bytes, qPrintable(bytes.text));
                    QCOMPARE(*bytes, textOf(quint32(i), 900 * i * i));
                }
                zip.sExtract_Folder = u"C:\\out"_s;
                zip.varItemsToExtract = {u"D/3"_s};
                QVERIFY2(zip.Extract(), qPrintable(zip.resultText()));
                QCOMPARE(w.bytes(u"out/D/3"_s), textOf(3, 8100));
            }
        }
    }

    void large_areReadInPieces()
    {
        const QByteArray large = textOf(9, 33 << 20);
        for (const int format : {4, 5}) {
            ArchiveWorld w;
            RarMaker(format)
                .add("p", large, {.packed = true})
                .add("s", large, {.blake = format == 5})
                .save(w.host(u"a.rar"_s));
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.rar"_s;
            QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
            for (const int key : {1, 2}) {
                const auto bytes = zip.entryBytes({0, key}, large.size());
                QVERIFY2(bytes, qPrintable(bytes.text));
                QVERIFY(*bytes == large);
            }
        }
    }

    void volumes_areReadTogetherAndMissingOnesNamed()
    {
        for (const int format : {4, 5}) {
            for (const bool packed : {false, true}) {
                ArchiveWorld w;
                const QByteArray data = textOf(7, 50'000);
                int number = 0;
                for (const QByteArray& volume :
                     RarMaker::volumes(format, "D/v.bin", data, 3, packed))
                    w.write(u"Set.part%1.rar"_s.arg(++number), volume);
                CZIP zip(w.services);
                for (const int named : {1, 3}) {
                    zip.sZIPFile = u"C:\\set.PART%1.rar"_s.arg(named);
                    QVERIFY2(zip.Test(), qPrintable(zip.resultText()));
                    QCOMPARE(zip.colZIPContents[0].varZIPItems.size(), 1);
                    QCOMPARE(*zip.entryBytes({0, 1}, data.size()), data);
                }
                QVERIFY(QFile::remove(w.host(u"Set.part2.rar"_s)));
                QVERIFY(!zip.Test());
                const QString text = zip.resultText();
                QVERIFY2(text.startsWith(u"RAR file is NOT OK. "_s), qPrintable(text));
                QVERIFY2(text.contains(u"Volume open error"_s) &&
                             text.contains(u"'C:\\set.PART2.rar' is missing"_s),
                         qPrintable(text));
                QVERIFY(!zip.GetItems());
                QVERIFY(!zip.entryReadable({0, 1}));
                QVERIFY(QFile::remove(w.host(u"Set.part1.rar"_s)));
                QVERIFY(!zip.GetItems());
                QVERIFY2(zip.resultText().contains(u"its first volume"_s),
                         qPrintable(zip.resultText()));
            }
        }
    }

    void copies_haveTheBytesOfTheirModel()
    {
        ArchiveWorld w;
        RarMaker(5)
            .add("D/a", "some bytes", {.packed = true})
            .add("b", {}, {.copyOf = "D/a"})
            .add("c", {}, {.copyOf = "later"})
            .add("later", "x")
            .save(w.host(u"a.rar"_s));
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.rar"_s;
        QVERIFY(zip.GetItems());
        QCOMPARE(*zip.entryBytes({0, 2}, 99), QByteArray("some bytes"));
        QVERIFY(!zip.entryReadable({0, 3}));
    }

    void faults_haveTheirCodesAndTexts()
    {
        using Change = std::function<QByteArray(int)>;
        const auto with = [](const RarOptions& options) {
            return [options](int format) {
                return RarMaker(format)
                    .add("good", "good")
                    .add("bad", textOf(1, 500), options)
                    .build();
            };
        };
        const QByteArray wrong("1");
        const Rows<Change, RarCode, QString, QString> rows = {
            {"no archive",
             [](int) { return "text"; },
             RarCode::BadArchive,
             u"File is not RAR archive"_s,
             {}},
            {"stored, wrong sum", with({.crc = 1}), RarCode::BadData, u"CRC error"_s, u"'bad'"_s},
            {"packed, wrong sum",
             with({.packed = true, .crc = 1}),
             RarCode::BadData,
             u"CRC error"_s,
             u"'bad'"_s},
            {"packed, no such data",
             with({.packed = true, .raw = QByteArray(50, '\xff')}),
             RarCode::BadData,
             u"CRC error"_s,
             u"'bad'"_s},
            {"longer than announced",
             with({.packed = true, .size = 499}),
             RarCode::BadData,
             u"CRC error"_s,
             u"'bad'"_s},
            {"shorter than announced",
             with({.packed = true, .size = 501}),
             RarCode::BadData,
             u"CRC error"_s,
             u"'bad'"_s},
            {"stored, other size",
             with({.size = 3'000'000'000}),
             RarCode::BadData,
             u"CRC error"_s,
             u"'bad'"_s},
            {"encrypted",
             with({.encrypted = true}),
             RarCode::BadData,
             u"CRC error"_s,
             u"is encrypted"_s},
            {"no size",
             with({.packed = true, .unknownSize = true}),
             RarCode::UnknownFormat,
             u"Unknown archive format"_s,
             u"'bad'"_s},
            {"a size beyond all",
             with({.size = ~quint64(0) >> 1}),
             RarCode::BadData,
             u"Archive header broken"_s,
             u"impossible size"_s},
            {"data beyond the end",
             with({.packedSize = 3'000'000'000}),
             RarCode::BadData,
             u"Archive header broken"_s,
             u"'bad' are cut off"_s},
            {"names encrypted",
             [](int format) {
                 return format == 4 ? RarMaker(4, 0x80).build()
                                    : QByteArray("Rar!\x1a\x07\x01\x00", 8) +
                                          RarMaker(5).block(4, "abc").build().mid(8 + 8);
             },
             RarCode::BadData,
             u"Archive header broken"_s,
             u"names in it are encrypted"_s},
        };
        for (const auto& [make, code, text, detail] : rows) {
            for (const int format : {4, 5}) {
                ArchiveWorld w;
                w.write(u"a.rar"_s, make(format));
                CUnRAR rar(w.services);
                rar.sRARFile = u"C:\\a.rar"_s;
                QVERIFY(!rar.Test());
                QCOMPARE(rar.unrar().strLastErrorMsg, text);
                QCOMPARE(int(rar.unrar().code()), int(code));
                const QString said = rar.unrar().result().text;
                QVERIFY2(said.contains(detail) && said.contains(u"C:\\a.rar"_s), qPrintable(said));
                rar.unrar().sPassword = u"guess"_s;
                QVERIFY(!rar.Test());
                QCOMPARE(rar.unrar().strLastErrorMsg,
                         text == u"CRC error" ? u"CRC error - Wrong password?"_s : text);
                CZIP zip(w.services);
                zip.sZIPFile = u"C:\\a.rar"_s;
                QVERIFY(!zip.Test());
                QVERIFY2(zip.resultText().startsWith(u"RAR file is NOT OK. "_s) &&
                             zip.resultText().contains(text),
                         qPrintable(zip.resultText()));
            }
        }
    }

    void blake2sp_isCompared()
    {
        ArchiveWorld w;
        QByteArray bytes = RarMaker(5)
                               .add("a", "hashed", {.blake = true})
                               .add("b", "hashed", {.packed = true, .blake = true})
                               .build();
        w.write(u"a.rar"_s, bytes);
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.rar"_s;
        QVERIFY2(zip.Test(), qPrintable(zip.resultText()));
        QVERIFY(!zip.colZIPContents[0].item(1)->crc32Known);
        w.write(u"a.rar"_s, bytes.replace("hashed", "hushed"));
        QVERIFY(!zip.Test());
    }

    void truncated_anywhereIsTold()
    {
        for (const int format : {4, 5}) {
            const QByteArray whole = RarMaker(format)
                                         .add("one", "first")
                                         .add("two", textOf(2, 60), {.packed = true})
                                         .build();
            const QByteArray first = RarMaker(format).add("one", "first").build();
            ArchiveWorld w;
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.rar"_s;
            for (qsizetype bytes = 0; bytes < whole.size(); ++bytes) {
                w.write(u"a.rar"_s, whole.first(bytes));
                // Old archives had no end block, so one that ends behind an entry may be whole.
                const bool between = format == 4 && (bytes == whole.size() - 7 ||
                                                     bytes == first.size() - 7 || bytes == 20);
                QCOMPARE(zip.GetItems(), between);
                if (!between)
                    QVERIFY2(zip.resultText().contains(u"C:\\a.rar"_s),
                             qPrintable(zip.resultText()));
            }
        }
    }

    void endless_isEndedAndTheOthersCome()
    {
        ArchiveWorld w;
        RarMaker(5)
            .add("good.txt", textOf(7, 5000), {.packed = true})
            .add("endless.txt",
                 {},
                 {.packed = true, .size = 1 << 20, .raw = RarMaker::packEndless()})
            .add("last.txt", textOf(8, 5000), {.packed = true})
            .save(w.host(u"a.rar"_s));
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.rar"_s;
        QVERIFY(zip.GetItems());
        QCOMPARE(*zip.entryBytes({0, 1}, 5000), textOf(7, 5000));
        // A library that has the fault goes in circles, one without it refuses the filter.
        const auto endless = zip.entryBytes({0, 2}, 1 << 20);
        QVERIFY(!endless);
        QVERIFY2(endless.text.startsWith(u"The entry 'endless.txt' of the archive 'C:\\a.rar' is "
                                         "damaged: "_s),
                 qPrintable(endless.text));
        QCOMPARE(*zip.entryBytes({0, 3}, 5000), textOf(8, 5000));
    }

    void helper_isEndedWhateverItDoes()
    {
        const QString said = u"The entry 'a.txt' of the archive 'C:\\a.rar' "_s;
        const Rows<QByteArray, QString> rows = {
            {"hangs", "exec sleep 600", u"is damaged: unpacking it takes too long."_s},
            {"takes all and answers nothing",
             "exec cat > /dev/null",
             u"is damaged: unpacking it takes too long."_s},
            {"breaks down",
             "kill -SEGV $$",
             u"is damaged: unpacking it brings the helper program down."_s},
            {"stops in the middle of an answer",
             "printf '\\001\\000\\000'",
             u"is damaged: unpacking it brings the helper program down."_s},
            {"answers without end",
             "exec cat /dev/zero",
             u"is damaged: its unpacker answers what makes no sense."_s},
            {"answers anything",
             "exec yes",
             u"is damaged: its unpacker answers what makes no sense."_s},
            {"is missing", {}, u"could not be unpacked. The helper program '"_s},
        };
        for (const int format : {4, 5})
            for (const auto& [script, text] : rows) {
                ArchiveWorld w;
                RarMaker(format)
                    .add("a.txt", textOf(7, 300'000), {.packed = true})
                    .save(w.host(u"a.rar"_s));
                if (!script.isEmpty()) {
                    QFile file(w.host(u"helper"_s));
                    QVERIFY(file.open(QIODevice::WriteOnly));
                    file.write("#!/bin/sh\n" + script + '\n');
                    file.close();
                    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
                }
                auto directory = RarDirectory::open(w.services.files, u"C:\\a.rar"_s);
                QVERIFY(directory);
                RarReader reader(directory, {.program = w.host(u"helper"_s), .patienceMs = 200});
                QElapsedTimer time;
                time.start();
                const Result read = reader.read(1, [](QByteArrayView) { return true; });
                QVERIFY(!read);
                QVERIFY2(read.text.startsWith(said + text), qPrintable(read.text));
                QVERIFY(time.elapsed() < 10'000);
            }
        QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1); // no child is left behind
    }

    void unpackedEntries_areNotTakenForBombs()
    {
        // Each of these alone would be over the ratio; in a solid archive they may be alike.
        for (const bool solid : {false, true}) {
            ArchiveWorld w;
            RarMaker maker(5, solid ? 4 : 0);
            for (int i = 0; i < 6; ++i)
                maker.add(QByteArray::number(i),
                          "x",
                          {.packed = true, .solid = solid, .size = 100 << 20});
            maker.save(w.host(u"a.rar"_s));
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.rar"_s;
            QCOMPARE(zip.GetItems(), solid);
        }
    }

    void extract_wholeAndFaultsOfTheTarget()
    {
        ArchiveWorld w;
        w.write(u"a.rar"_s, mixedArchive(5, true));
        w.write(u"file"_s, "in the way");
        CUnRAR rar(w.services);
        rar.sRARFile = u"C:\\a.rar"_s;
        DirectActions actions(w.gate);
        QVERIFY2(rar.Extract(u"C:\\out\\"_s, actions), qPrintable(rar.unrar().result().text));
        QCOMPARE(w.tree(u"out"_s).size(), 5);
        QCOMPARE(w.bytes(u"out/D/4"_s), textOf(4, 14'400));
        QVERIFY(!rar.Extract({}, actions));
        QCOMPARE(rar.unrar().strLastErrorMsg, u"Bad extraction data"_s);
        QVERIFY(!rar.Extract(u"C:\\file\\"_s, actions));
        QCOMPARE(rar.unrar().strLastErrorMsg, u"Bad extraction path"_s);
        QVERIFY(QDir(w.dir.path()).mkpath(u"taken/D/1"_s));
        QVERIFY(!rar.Extract(u"C:\\taken"_s, actions));
        QCOMPARE(rar.unrar().strLastErrorMsg, u"Post exactraction file relocation error"_s);
        QCOMPARE(w.tree(u"taken"_s), QStringList{u"D\\0"_s});
        QVERIFY(!rar.unrar().run(MTKUnrar::Mode(7), rar.sRARFile, {}, nullptr));
        QCOMPARE(rar.unrar().strLastErrorMsg, u"Unknown extraction mode"_s);
        w.write(u"up.rar"_s, RarMaker(5).add("../up", "x").build());
        rar.sRARFile = u"C:\\up.rar"_s;
        QVERIFY(!rar.Extract(u"C:\\out"_s, actions));
        QCOMPARE(rar.unrar().strLastErrorMsg, u"File create error"_s);
    }

    /// Neither a crash nor a hang nor a wrong byte, whatever lies in the archive.
    void randomDamage_isTold()
    {
        QRandomGenerator random(20);
        ArchiveWorld w;
        for (const int format : {4, 5}) {
            for (const bool solid : {false, true}) {
                const QByteArray whole = mixedArchive(format, solid);
                for (int round = 0; round < 150; ++round) {
                    QByteArray bytes = whole;
                    const int changes = 1 + random.bounded(4);
                    // Half of them among the headers, which lie in front.
                    const auto most = random.bounded(2) ? qsizetype(120) : bytes.size();
                    for (int i = 0; i < changes; ++i)
                        bytes[random.bounded(int(most))] = char(random.bounded(256));
                    if (random.bounded(8) == 0)
                        bytes.truncate(random.bounded(int(bytes.size())));
                    w.write(u"a.rar"_s, bytes);
                    CZIP zip(w.services);
                    zip.sZIPFile = u"C:\\a.rar"_s;
                    const bool sound = zip.Test();
                    QVERIFY(sound || zip.resultText().size() > 30);
                    for (size_t a = 0; sound && a < zip.colZIPContents.size(); ++a) {
                        for (const CZIPFileItem& item : zip.colZIPContents[a].varZIPItems) {
                            if (item.kind == EntryKind::File && item.crc32Known)
                                QCOMPARE(ZipBuilder::crc32(
                                             *zip.entryBytes({int(a), item.lngKey}, 1 << 20)),
                                         item.crc32);
                        }
                    }
                }
            }
        }
    }
};

VT_TEST_CLASS(TestRar)
#include "test_rar.moc"
