// Look-ups without regard to case on real folders, the gate's refusals, direct actions.
#include "platform/DirectActions.h"
#include "platform/Files.h"
#include "platform/Gate.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vt;

class TestFiles : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    DriveTable m_drives;
    std::unique_ptr<Files> m_files;
    std::unique_ptr<Gate> m_gate;
    std::unique_ptr<DirectActions> m_actions;

    void write(const QString& relative, const QByteArray& bytes)
    {
        const QString path = m_dir->filePath(relative);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray bytesOf(const QString& relative)
    {
        QFile file(m_dir->filePath(relative));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QDir(m_dir->path()).mkpath(u"sim"_s);
        m_drives.set(u'C', m_dir->path());
        m_files = std::make_unique<Files>(m_drives);
        m_gate = std::make_unique<Gate>(*m_files);
        m_gate->setRoot(RootId::Simulator, u"C:\\sim\\"_s);
        m_actions = std::make_unique<DirectActions>(*m_gate);
    }

    void lookUp_findsAnySpelling()
    {
        write(u"sim/Simobjects/Airplanes/Zeta/aircraft.CFG"_s, "x");
        QVERIFY(m_files->isFile(u"C:\\SIM\\SimObjects\\airplanes\\ZETA\\Aircraft.cfg"_s));
        QVERIFY(m_files->isFolder(u"c:\\sim\\SIMOBJECTS\\"_s));
        QVERIFY(!m_files->exists(u"C:\\sim\\SimObjects\\Airplanes\\Zeta\\panel.cfg"_s));
        QVERIFY(!m_files->exists(u"Q:\\sim"_s));
        QCOMPARE(m_files->spelled(u"c:\\SIM\\simobjects\\New\\x.txt"_s),
                 u"c:\\sim\\Simobjects\\New\\x.txt"_s);
        write(u"sim/\u00c4ther/\u00dcber.txt"_s, "x");
        m_files->newOperation();
        QVERIFY(m_files->isFile(u"C:\\sim\\\u00e4THER\\\u00fcBER.TXT"_s));
    }

    void twins_exactSpellingWins_andAreTold()
    {
        write(u"sim/SimObjects/a.txt"_s, "one");
        write(u"sim/simobjects/a.txt"_s, "two");
        QCOMPARE(*m_files->read(u"C:\\sim\\simobjects\\a.txt"_s, 10), QByteArray("two"));
        QCOMPARE(*m_files->read(u"C:\\sim\\SimObjects\\a.txt"_s, 10), QByteArray("one"));
        QCOMPARE(m_files->twins(u"C:\\sim\\"_s),
                 QList<QStringList>({{u"SimObjects"_s, u"simobjects"_s}}));
    }

    void listings_noticeWhatOthersChange()
    {
        write(u"sim/Effects/a.fx"_s, "x");
        QVERIFY(!m_files->exists(u"C:\\sim\\effects\\B.FX"_s));
        write(u"sim/Effects/b.fx"_s, "x");
        m_files->newOperation();
        QVERIFY(m_files->exists(u"C:\\sim\\effects\\B.FX"_s));
        QVERIFY(QFile::remove(m_dir->filePath(u"sim/Effects/b.fx"_s)));
        m_files->newOperation();
        QVERIFY(!m_files->exists(u"C:\\sim\\effects\\B.FX"_s));
    }

    void newFolders_areSeenAtOnce_afterOwnChanges()
    {
        QVERIFY(!m_files->exists(u"C:\\sim\\New\\Deep\\a.txt"_s));
        QVERIFY(m_actions->replace(u"C:\\sim\\New\\Deep\\a.txt"_s, "x"));
        QVERIFY(m_files->exists(u"C:\\sim\\new\\DEEP\\A.TXT"_s));
        QVERIFY(m_actions->replace(u"C:\\sim\\NEW\\deep\\B.txt"_s, "y"));
        QCOMPARE(QDir(m_dir->filePath(u"sim"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({u"New"_s}));
    }

    void read_refusesTooLarge_andFolders()
    {
        write(u"sim/big"_s, QByteArray(100, 'x'));
        QVERIFY(!m_files->read(u"C:\\sim\\big"_s, 99));
        QVERIFY(m_files->read(u"C:\\sim\\big"_s, 100));
        QVERIFY(!m_files->read(u"C:\\sim"_s, 100));
    }

    void gate_refusesWhatLeadsOut_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("outside") << u"C:\\other\\a.txt"_s;
        QTest::newRow("dots") << u"C:\\sim\\..\\a.txt"_s;
        QTest::newRow("dots behind blanks") << u"C:\\sim\\.. \\a.txt"_s;
        QTest::newRow("colon") << u"C:\\sim\\a.txt:stream"_s;
        QTest::newRow("control character") << u"C:\\sim\\a\x01.txt"_s;
        QTest::newRow("nul") << u"C:\\sim\\a"_s + QChar(0) + u".txt"_s;
        QTest::newRow("device") << u"C:\\sim\\NUL.txt"_s;
        QTest::newRow("device with number") << u"C:\\sim\\Com1"_s;
        QTest::newRow("trailing point") << u"C:\\sim\\a."_s;
        QTest::newRow("trailing blank") << u"C:\\sim\\folder \\a.txt"_s;
        QTest::newRow("too long") << u"C:\\sim\\"_s + QString(256, u'x');
        QTest::newRow("link that leads out") << u"C:\\sim\\link\\a.txt"_s;
        QTest::newRow("link on the way") << u"C:\\sim\\link\\deep\\a.txt"_s;
    }

    void gate_refusesWhatLeadsOut()
    {
        QFETCH(QString, path);
        QDir(m_dir->path()).mkpath(u"outside"_s);
        QVERIFY(QFile::link(m_dir->filePath(u"outside"_s), m_dir->filePath(u"sim/link"_s)));
        const Result refused = m_actions->replace(path, "x");
        QVERIFY(!refused.ok);
        QVERIFY(!refused.text.isEmpty());
        QVERIFY(QDir(m_dir->filePath(u"outside"_s)).isEmpty());
        QVERIFY(!QFile::exists(m_dir->filePath(u"other/a.txt"_s)));
        QVERIFY(!QFile::exists(m_dir->filePath(u"a.txt"_s)));
    }

    void gate_allowsLinksInside()
    {
        QDir(m_dir->path()).mkpath(u"sim/real"_s);
        QVERIFY(QFile::link(m_dir->filePath(u"sim/real"_s), m_dir->filePath(u"sim/link"_s)));
        QVERIFY(m_actions->replace(u"C:\\sim\\link\\a.txt"_s, "x"));
        QCOMPARE(bytesOf(u"sim/real/a.txt"_s), QByteArray("x"));
    }

    void gate_followsConfirmedLinks_eachForItself()
    {
        for (const QString& folder : {u"outside/deep"_s, u"beyond"_s, u"sim"_s})
            QDir(m_dir->path()).mkpath(folder);
        QVERIFY(QFile::link(m_dir->filePath(u"outside"_s), m_dir->filePath(u"sim/Link"_s)));
        QVERIFY(QFile::link(m_dir->filePath(u"beyond"_s), m_dir->filePath(u"outside/next"_s)));
        QList<OuterLink> confirmed;
        m_gate->linkConfirmed = [&](const OuterLink& link) { return confirmed.contains(link); };
        const auto outer = m_gate->outerLink(u"C:\\sim\\link\\deep\\new\\");
        QVERIFY(outer.has_value());
        QCOMPARE(*outer, (OuterLink{u"C:\\sim\\Link"_s, u"C:\\outside\\"_s}));
        confirmed = {*outer};
        QVERIFY(m_actions->replace(u"C:\\sim\\link\\deep\\new\\a.txt"_s, "x"));
        QCOMPARE(bytesOf(u"outside/deep/new/a.txt"_s), QByteArray("x"));
        // Behind it is another one, which nobody confirmed.
        QVERIFY(!m_actions->replace(u"C:\\sim\\Link\\next\\a.txt"_s, "x"));
        QVERIFY(!m_gate->hostFolder(u"C:\\sim\\Link\\next"));
        // The link itself may be dealt with, it is not followed for that.
        QVERIFY(m_gate->hostPath(u"C:\\sim\\Link\\next").ok());
        // It leads elsewhere now: what was confirmed does not hold any more.
        QVERIFY(QFile::remove(m_dir->filePath(u"sim/Link"_s)));
        QVERIFY(QFile::link(m_dir->filePath(u"beyond"_s), m_dir->filePath(u"sim/Link"_s)));
        m_files->newOperation();
        QVERIFY(!m_actions->replace(u"C:\\sim\\link\\b.txt"_s, "x"));
        QVERIFY(QDir(m_dir->filePath(u"beyond"_s)).isEmpty());
    }

    void replace_keepsSpellingAndPermissions()
    {
        write(u"sim/Fsx.CFG"_s, "old");
        QVERIFY(chmod(QFile::encodeName(m_dir->filePath(u"sim/Fsx.CFG"_s)), 0640) == 0);
        QVERIFY(m_actions->replace(u"C:\\sim\\fsx.cfg"_s, "new"));
        QCOMPARE(bytesOf(u"sim/Fsx.CFG"_s), QByteArray("new"));

        struct stat st
        {};

        QVERIFY(stat(QFile::encodeName(m_dir->filePath(u"sim/Fsx.CFG"_s)), &st) == 0);
        QCOMPARE(st.st_mode & 0777u, 0640u);
        QCOMPARE(QDir(m_dir->filePath(u"sim"_s)).count(), 3u); // ".", ".." and the file
    }

    void failure_leavesTheOldFile_andNothingElse_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("the source fails") << 0;
        QTest::newRow("the source is too short") << 1;
        QTest::newRow("the source is too long") << 2;
        QTest::newRow("the disk is full") << 3;
    }

    void failure_leavesTheOldFile_andNothingElse()
    {
        QFETCH(int, how);
        write(u"sim/a.txt"_s, "old");
        Content content;
        content.size = 10;
        content.transfer = [how](const Content::Sink& sink) {
            (void)sink(QByteArray(how == 2 ? 11 : 5, 'x'));
            return how == 0 ? Result::failure(u"the source broke"_s) : Result::success();
        };
        if (how == 3)
            m_gate->faultHook = [](const char* action, const QByteArray&) {
                return qstrcmp(action, "place") == 0 ? ENOSPC : 0;
            };
        const ResultOf<Fingerprint> placed = m_actions->place(u"C:\\sim\\a.txt"_s, content);
        QVERIFY(!placed.ok());
        QVERIFY(placed.text.contains(u"a.txt"));
        QCOMPARE(bytesOf(u"sim/a.txt"_s), QByteArray("old"));
        QCOMPARE(QDir(m_dir->filePath(u"sim"_s)).count(), 3u);
    }

    void keep_isAFileOfItsOwn_afterTheOriginalIsReplaced()
    {
        write(u"sim/a.txt"_s, "old");
        QVERIFY(m_actions->keep(u"C:\\sim\\A.TXT"_s, u"C:\\sim\\kept\\a.txt"_s));
        QVERIFY(m_actions->replace(u"C:\\sim\\a.txt"_s, "new"));
        QCOMPARE(bytesOf(u"sim/kept/a.txt"_s), QByteArray("old"));
        QVERIFY(!m_actions->keep(u"C:\\sim\\a.txt"_s, u"C:\\sim\\kept\\a.txt"_s));
        QCOMPARE(bytesOf(u"sim/kept/a.txt"_s), QByteArray("old"));
    }
};

VT_TEST_CLASS(TestFiles)
#include "test_files.moc"
