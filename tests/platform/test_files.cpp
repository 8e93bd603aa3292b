// Look-ups without regard to case on real folders, the gate's refusals, direct actions.
#include "platform/Hash.h"
#include "support/Disk.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <cerrno>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

class TestFiles : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Disk> m_disk;

private Q_SLOTS:

    void init() { m_disk = std::make_unique<Disk>(); }

    void lookUp_findsAnySpelling()
    {
        m_disk->write(u"FSX/Simobjects/Airplanes/Zeta/aircraft.CFG"_s, "x");
        QVERIFY(m_disk->files.isFile(u"C:\\fsx\\SimObjects\\airplanes\\ZETA\\Aircraft.cfg"_s));
        QVERIFY(m_disk->files.isFolder(u"c:\\FSX\\SIMOBJECTS\\"_s));
        QVERIFY(!m_disk->files.exists(u"C:\\FSX\\SimObjects\\Airplanes\\Zeta\\panel.cfg"_s));
        QVERIFY(!m_disk->files.exists(u"Q:\\sim"_s));
        QCOMPARE(m_disk->files.spelled(u"c:\\fsx\\simobjects\\New\\x.txt"_s),
                 u"c:\\FSX\\Simobjects\\New\\x.txt"_s);
        m_disk->write(u"FSX/\u00c4ther/\u00dcber.txt"_s, "x");
        QVERIFY(m_disk->files.isFile(u"C:\\FSX\\\u00e4THER\\\u00fcBER.TXT"_s));
    }

    void twins_exactSpellingWins_andAreTold()
    {
        m_disk->write(u"FSX/SimObjects/a.txt"_s, "one");
        m_disk->write(u"FSX/simobjects/a.txt"_s, "two");
        QCOMPARE(*m_disk->files.read(u"C:\\FSX\\simobjects\\a.txt"_s, 10), QByteArray("two"));
        QCOMPARE(*m_disk->files.read(u"C:\\FSX\\SimObjects\\a.txt"_s, 10), QByteArray("one"));
        QCOMPARE(m_disk->files.twins(u"C:\\FSX\\"_s),
                 QList<QStringList>({{u"SimObjects"_s, u"simobjects"_s}}));
    }

    void listings_noticeWhatOthersChange()
    {
        m_disk->write(u"FSX/Effects/a.fx"_s, "x");
        QVERIFY(!m_disk->files.exists(u"C:\\FSX\\effects\\B.FX"_s));
        m_disk->write(u"FSX/Effects/b.fx"_s, "x");
        QVERIFY(m_disk->files.exists(u"C:\\FSX\\effects\\B.FX"_s));
        QVERIFY(QFile::remove(m_disk->host(u"FSX/Effects/b.fx"_s)));
        m_disk->files.newOperation();
        QVERIFY(!m_disk->files.exists(u"C:\\FSX\\effects\\B.FX"_s));
    }

    void newFolders_areSeenAtOnce_afterOwnChanges()
    {
        QVERIFY(!m_disk->files.exists(u"C:\\FSX\\New\\Deep\\a.txt"_s));
        QVERIFY(m_disk->actions.replace(u"C:\\FSX\\New\\Deep\\a.txt"_s, "x"));
        QVERIFY(m_disk->files.exists(u"C:\\FSX\\new\\DEEP\\A.TXT"_s));
        QVERIFY(m_disk->actions.replace(u"C:\\FSX\\NEW\\deep\\B.txt"_s, "y"));
        QCOMPARE(m_disk->names(u"FSX"_s), QStringList{u"New"_s});
    }

    void read_refusesTooLarge_andFolders()
    {
        m_disk->write(u"FSX/big"_s, QByteArray(100, 'x'));
        QVERIFY(!m_disk->files.read(u"C:\\FSX\\big"_s, 99));
        QVERIFY(m_disk->files.read(u"C:\\FSX\\big"_s, 100));
        QVERIFY(!m_disk->files.read(u"C:\\FSX"_s, 100));
    }

    void gate_refusesWhatLeadsOut()
    {
        m_disk->makeFolder(u"outside"_s);
        QVERIFY(QFile::link(m_disk->host(u"outside"_s), m_disk->host(u"FSX/link"_s)));
        const Rows<QString> rows = {
            {"outside", u"C:\\other\\a.txt"_s},
            {"dots", u"C:\\FSX\\..\\a.txt"_s},
            {"dots behind blanks", u"C:\\FSX\\.. \\a.txt"_s},
            {"colon", u"C:\\FSX\\a.txt:stream"_s},
            {"nul", u"C:\\FSX\\a"_s + QChar(0) + u".txt"_s},
            {"device", u"C:\\FSX\\NUL.txt"_s},
            {"trailing point", u"C:\\FSX\\a."_s},
            {"link that leads out", u"C:\\FSX\\link\\a.txt"_s},
            {"link on the way", u"C:\\FSX\\link\\deep\\a.txt"_s},
        };
        for (const auto& [path] : rows) {
            const Result refused = m_disk->actions.replace(path, "x");
            QVERIFY(!refused.ok && !refused.text.isEmpty());
            QCOMPARE(m_disk->names(u"outside"_s), QStringList());
            QCOMPARE(m_disk->names(), (QStringList{u"FSX"_s, u"outside"_s, u"Vantrel"_s}));
        }
    }

    void gate_allowsLinksInside()
    {
        m_disk->makeFolder(u"FSX/real"_s);
        QVERIFY(QFile::link(m_disk->host(u"FSX/real"_s), m_disk->host(u"FSX/link"_s)));
        QVERIFY(m_disk->actions.replace(u"C:\\FSX\\link\\a.txt"_s, "x"));
        QCOMPARE(m_disk->read(u"FSX/real/a.txt"_s), QByteArray("x"));
    }

    void gate_followsConfirmedLinks_eachForItself()
    {
        for (const QString& folder : {u"outside/deep"_s, u"beyond"_s})
            m_disk->makeFolder(folder);
        QVERIFY(QFile::link(m_disk->host(u"outside"_s), m_disk->host(u"FSX/Link"_s)));
        QVERIFY(QFile::link(m_disk->host(u"beyond"_s), m_disk->host(u"outside/next"_s)));
        QList<OuterLink> confirmed;
        m_disk->gate.linkConfirmed = [&](const OuterLink& link) {
            return confirmed.contains(link);
        };
        const auto outer = m_disk->gate.outerLink(u"C:\\FSX\\link\\deep\\new\\");
        QVERIFY(outer.has_value());
        QCOMPARE(*outer, (OuterLink{u"C:\\FSX\\Link"_s, u"C:\\outside\\"_s}));
        confirmed = {*outer};
        QVERIFY(m_disk->actions.replace(u"C:\\FSX\\link\\deep\\new\\a.txt"_s, "x"));
        QCOMPARE(m_disk->read(u"outside/deep/new/a.txt"_s), QByteArray("x"));
        // Behind it is another one, which nobody confirmed.
        QVERIFY(!m_disk->actions.replace(u"C:\\FSX\\Link\\next\\a.txt"_s, "x"));
        QVERIFY(!m_disk->gate.hostFolder(u"C:\\FSX\\Link\\next"));
        // The link itself may be dealt with, it is not followed for that.
        QVERIFY(m_disk->gate.hostPath(u"C:\\FSX\\Link\\next").ok());
        // It leads elsewhere now: what was confirmed does not hold any more.
        QVERIFY(QFile::remove(m_disk->host(u"FSX/Link"_s)));
        QVERIFY(QFile::link(m_disk->host(u"beyond"_s), m_disk->host(u"FSX/Link"_s)));
        m_disk->files.newOperation();
        QVERIFY(!m_disk->actions.replace(u"C:\\FSX\\link\\b.txt"_s, "x"));
        QVERIFY(QDir(m_disk->host(u"beyond"_s)).isEmpty());
    }

    void replace_keepsSpellingAndPermissions()
    {
        m_disk->write(u"FSX/Fsx.CFG"_s, "old");
        QVERIFY(chmod(QFile::encodeName(m_disk->host(u"FSX/Fsx.CFG"_s)), 0640) == 0);
        QVERIFY(m_disk->actions.replace(u"C:\\FSX\\fsx.cfg"_s, "new"));
        QCOMPARE(m_disk->read(u"FSX/Fsx.CFG"_s), QByteArray("new"));
        QCOMPARE(QFileInfo(m_disk->host(u"FSX/Fsx.CFG"_s)).permissions() & 0x77,
                 QFile::ReadGroup); // for those besides the owner
        QCOMPARE(m_disk->names(u"FSX"_s).size(), 1);
    }

    void failure_leavesTheOldFile_andNothingElse()
    {
        const Rows<int> rows = {
            {"the source fails", 0},
            {"the source is too short", 1},
            {"the source is too long", 2},
            {"the disk is full", 3},
        };
        for (const auto& [how] : rows) {
            m_disk->write(u"FSX/a.txt"_s, "old");
            Content content;
            content.size = 10;
            content.transfer = [how](const Content::Sink& sink) {
                (void)sink(QByteArray(how == 2 ? 11 : 5, 'x'));
                return how == 0 ? Result::failure(u"the source broke"_s) : Result::success();
            };
            if (how == 3)
                m_disk->gate.faultHook = [](const char* action, const QByteArray&) {
                    return qstrcmp(action, "place") == 0 ? ENOSPC : 0;
                };
            const ResultOf<Fingerprint> placed =
                m_disk->actions.place(u"C:\\FSX\\a.txt"_s, content);
            QVERIFY(!placed.ok());
            QVERIFY(placed.text.contains(u"a.txt"));
            QCOMPARE(m_disk->read(u"FSX/a.txt"_s), QByteArray("old"));
            QCOMPARE(m_disk->names(u"FSX"_s).size(), 1);
        }
    }

    void keep_isAFileOfItsOwn_afterTheOriginalIsReplaced()
    {
        m_disk->write(u"FSX/a.txt"_s, "old");
        QVERIFY(m_disk->actions.keep(u"C:\\FSX\\A.TXT"_s, u"C:\\FSX\\kept\\a.txt"_s));
        QVERIFY(m_disk->actions.replace(u"C:\\FSX\\a.txt"_s, "new"));
        QCOMPARE(m_disk->read(u"FSX/kept/a.txt"_s), QByteArray("old"));
        QVERIFY(!m_disk->actions.keep(u"C:\\FSX\\a.txt"_s, u"C:\\FSX\\kept\\a.txt"_s));
        QCOMPARE(m_disk->read(u"FSX/kept/a.txt"_s), QByteArray("old"));
    }

    void knownValues()
    {
        const Rows<QByteArray, QByteArray, quint32> rows = {
            {"empty", {}, "99aa06d3014798d86001c324468d497f", 0u},
            {"digits", "123456789", "33119477ede5dcd5e9716427681d5860", 0xcbf43926u},
        };
        for (const auto& [bytes, xxh, crc] : rows) {
            QCOMPARE(xxh3(bytes).toHex(), xxh);
            QCOMPARE(crc32(bytes), crc);
        }
    }

    void piecesGiveTheSame()
    {
        QByteArray bytes;
        for (int i = 0; i < 300'000; ++i)
            bytes += char(i * 7 + i / 251);
        Xxh3 hash;
        quint32 crc = 0;
        for (qsizetype at = 0; at < bytes.size(); at += 70'001) {
            const QByteArrayView piece =
                QByteArrayView(bytes).sliced(at, qMin<qsizetype>(70'001, bytes.size() - at));
            hash.add(piece);
            crc = crc32(piece, crc);
        }
        QCOMPARE(hash.result(), xxh3(bytes));
        QCOMPARE(crc, crc32(bytes));
        hash.reset();
        QCOMPARE(hash.result(), xxh3(QByteArray()));
    }

    void fingerprints()
    {
        const QByteArray large(3 * 1024 * 1024 + 1, 'x'); // several pieces
        m_disk->write(u"FSX/Large.bgl"_s, large);
        m_disk->write(u"FSX/empty"_s, "");
        const ResultOf<Fingerprint> print = fingerprint(m_disk->files, u"c:\\fsx\\LARGE.BGL");
        QVERIFY2(print.ok(), qPrintable(print.text));
        QCOMPARE(print->size, large.size());
        QCOMPARE(print->xxh3, xxh3(large));
        QCOMPARE(print->modifiedNs, m_disk->files.info(u"C:\\FSX\\Large.bgl")->modifiedNs);
        QCOMPARE(fingerprint(m_disk->files, u"C:\\FSX\\empty")->xxh3, xxh3(QByteArray()));
        for (const QString& path : {u"C:\\FSX\\none"_s, u"C:\\FSX"_s, u"Q:\\x"_s}) {
            const ResultOf<Fingerprint> none = fingerprint(m_disk->files, path);
            QVERIFY(!none.ok());
            QVERIFY2(none.text.contains(path), qPrintable(none.text));
        }
    }
};

VT_TEST_CLASS(TestFiles)
#include "test_files.moc"
