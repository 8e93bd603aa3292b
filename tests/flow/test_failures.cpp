// What fails in the middle: folders that come to life between staging and placing, disks that do
// not confirm what they were given or turn read-only, work that cannot be taken back at once.
#include "addondb/AddonDatabase.h"
#include "addondb/JournalTable.h"
#include "flow/FlowWorld.h"
#include "platform/WinPath.h"
#include "support/TestMain.h"
#include "support/ZipBuilder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

bool isCommit(const char* action, const QByteArray& host, const char* which)
{
    return qstrcmp(action, "commit") == 0 && host == which;
}

} // namespace

class TestFailures : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    TreeSnapshot m_beginning;

    [[nodiscard]] QString folder() const { return m_dir->filePath(u"world"_s); }

    void newWorld()
    {
        m_world.reset();
        m_world = std::make_unique<FlowWorld>(folder());
        QVERIFY(m_world->start());
    }

    /// A new aircraft, a neighbour of nearly its name, and an effect.
    QString pack()
    {
        const QString path = m_dir->filePath(u"pack.zip"_s);
        ZipBuilder zip;
        zip.add("SimObjects/Airplanes/Bird/aircraft.cfg", "[fltsim.0]\r\ntitle=Bird\r\n");
        zip.add("SimObjects/Airplanes/Bird/bird.air", "air");
        zip.add("SimObjects/Airplanes/Bird/model/model.cfg", "[models]\r\nnormal=bird\r\n");
        zip.add("SimObjects/Airplanes/Bird/model/bird.mdl", "mdl");
        zip.add("SimObjects/Airplanes/Bird2/bird2.air", "air");
        zip.add("Effects/fx_new.fx", "effect");
        if (!zip.save(path))
            qFatal("the archive cannot be written");
        return path;
    }

    /// Somebody else makes the aircraft's folder, in a spelling of his own.
    static void makeTheirFolder(FlowWorld& world)
    {
        const QString bird = world.hostPath(u"SimObjects\\Airplanes\\"_s) + u"/BIRD"_s;
        QDir().mkpath(bird + u"/Model"_s);
        for (const QString& name : {u"/Model/Model.cfg"_s, u"/mine.txt"_s}) {
            QFile file(bird + name);
            if (!file.open(QIODevice::WriteOnly) || file.write("theirs") != 6)
                qFatal("%s cannot be written", qPrintable(name));
        }
    }

    /// Everything of ours joined their folder, but for the one file that was there.
    void checkJoined()
    {
        const TreeSnapshot now = m_world->tree();
        QCOMPARE(strayStaging(now), QStringList());
        const QString airplanes = m_world->simulatorPath(u"SimObjects\\Airplanes\\"_s);
        QCOMPARE(m_world->files.twins(airplanes), QList<QStringList>());
        QCOMPARE(m_world->files.twins(airplanes + u"BIRD\\Model"_s), QList<QStringList>());
        QCOMPARE(m_world->files.read(airplanes + u"Bird\\model\\model.cfg"_s, 99).value,
                 QByteArray("theirs"));
        QVERIFY(m_world->files.isFile(airplanes + u"Bird\\model\\bird.mdl"_s));
        const auto addons = modDatabase_Addon::addons(*m_world->database);
        QVERIFY(addons.ok());
        QCOMPARE(addons->size(), 1);
        const auto rows = modDatabase_Addon::detailsOf(*m_world->database, addons->first().key);
        QVERIFY(rows.ok());
        QCOMPARE(rows->size(), 5);
        for (const DetailRecord& row : *rows)
            QVERIFY2(m_world->files.isFile(row.location + row.name), qPrintable(row.name));
        QVERIFY(m_world->remove(addons->first().key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore).size(), 4); // theirs
    }

    [[nodiscard]] QList<JournalOperation> unfinished()
    {
        return *JournalTable(*m_world->database, m_world->gate).unfinished();
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        newWorld();
        m_beginning = m_world->tree();
    }

    void cleanup()
    {
        m_world.reset();
        m_dir.reset();
    }

    void folderThatCameToLife_isJoined_data()
    {
        QTest::addColumn<int>("answer");
        QTest::newRow("usual file system") << 0;
        QTest::newRow("one without exclusive renames") << EINVAL;
        QTest::newRow("one that does not know the call") << ENOSYS;
    }

    void folderThatCameToLife_isJoined()
    {
        QFETCH(int, answer);
        m_world->gate.faultHook = [&](const char* action, const QByteArray& host) {
            if (isCommit(action, host, "apply"))
                makeTheirFolder(*m_world);
            return qstrcmp(action, "rename new") == 0 ? answer : 0;
        };
        const ResultOf<qint64> key = m_world->install(pack());
        m_world->gate.faultHook = {};
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(
            m_world->results.texts(resultgroup::notInstalled),
            QStringList({m_world->simulatorPath(
                u"SimObjects\\Airplanes\\Bird\\model\\model.cfg was NOT installed due to an error."_s)}));
        QCOMPARE(unfinished().size(), 0);
        checkJoined();
    }

    void folderThatCameToLife_endsAnywhere_andRecoversAnywhere()
    {
        m_world.reset();
        const QString base = m_dir->filePath(u"base"_s);
        copyTree(folder(), base);
        const QString archive = pack();
        int completed = 0;
        for (int n = 1; !QTest::currentTestFailed(); ++n) {
            QDir(folder()).removeRecursively();
            copyTree(base, folder());
            bool joined = false;
            const auto work = [&](FlowWorld& world) {
                world.gate.faultHook = [&, hook = world.gate.faultHook](const char* action,
                                                                        const QByteArray& host) {
                    if (isCommit(action, host, "apply"))
                        makeTheirFolder(world);
                    // Every other round on a file system without exclusive renames.
                    const int died = hook(action, host);
                    return n % 2 == 0 && qstrcmp(action, "rename new") == 0 ? EINVAL : died;
                };
                (void)world.install(archive);
            };
            if (!runAndEnd(folder(), n, work))
                break;
            for (int m = 1 + n % 3; startAndEnd(folder(), m); m += 2)
                ;
            newWorld();
            joined = !modDatabase_Addon::addons(*m_world->database)->isEmpty();
            completed += joined;
            if (joined)
                checkJoined();
            else
                QCOMPARE(strayStaging(m_world->tree()), QStringList());
            m_world.reset();
        }
        QVERIFY(completed > 10);
    }

    void diskThatFills_losesNothing_data()
    {
        QTest::addColumn<bool>("stored"); // before: in the File Cabinet
        QTest::addColumn<RemovalMethod>("method");
        QTest::addColumn<bool>("zip");
        QTest::newRow("into the cabinet") << false << RemovalMethod::FileCabinet << false;
        QTest::newRow("to a folder") << false << RemovalMethod::Recreate << false;
        QTest::newRow("to a zip file") << false << RemovalMethod::Recreate << true;
        QTest::newRow("records") << false << RemovalMethod::RemoveRecords << false;
        QTest::newRow("deleted") << false << RemovalMethod::Delete << false;
        QTest::newRow("copied") << false << RemovalMethod::Copy << true;
        QTest::newRow("from the cabinet to a folder") << true << RemovalMethod::Recreate << false;
        QTest::newRow("taken back") << true << RemovalMethod(0) << false;
    }

    /// The disk is full from each write on: all is as before or as after, and can be tried again.
    void diskThatFills_losesNothing()
    {
        QFETCH(bool, stored);
        QFETCH(RemovalMethod, method);
        QFETCH(bool, zip);
        InstallOptions into;
        into.to = stored ? InstallTo::Cabinet : InstallTo::Simulator;
        const ResultOf<qint64> key = m_world->install(pack(), into);
        QVERIFY2(key.ok(), qPrintable(key.text));
        const TreeSnapshot before = m_world->tree();
        m_world.reset();
        const QString base = m_dir->filePath(u"base"_s);
        copyTree(folder(), base);
        RemovalOptions options;
        options.method = method;
        options.zip = zip;
        const auto work = [&] {
            const QString chosen = m_dir->filePath(u"chosen"_s);
            QDir().mkpath(chosen);
            options.toFolder = winpath::asFolder(m_world->drives.toWindows(chosen));
            m_world->gate.setRoot(RootId::Chosen, options.toFolder);
            return method == RemovalMethod(0) ? m_world->reinstall(*key)
                                              : m_world->remove(*key, options);
        };
        int stopped = 0;
        for (int n = 1;; n += stride) {
            QDir(folder()).removeRecursively();
            copyTree(base, folder());
            newWorld();
            int left = n;
            m_world->gate.faultHook = [&](const char* action, const QByteArray& host) {
                const QByteArray what = action;
                const bool grows =
                    what == "stage" || what == "stage folder" || what == "place" ||
                    what == "folder" || what == "keep" ||
                    (what == "commit" && (host == "begin" || host == "extend" || host == "apply"));
                return grows && --left <= 0 ? ENOSPC : 0;
            };
            const Result first = work();
            const bool reached = left <= 0;
            newWorld();
            stopped += !first.ok;
            if (!first.ok) {
                QVERIFY2(first.text.contains(u"the disk is full"), qPrintable(first.text));
                QCOMPARE(differences(before, m_world->tree(), Backups::Ignore), QStringList());
                const Result again = work();
                QVERIFY2(again.ok, qPrintable(again.text));
            }
            QCOMPARE(strayStaging(m_world->tree()), QStringList());
            if (modDatabase_Addon::addon(*m_world->database, *key).ok())
                QVERIFY(m_world->remove(*key));
            if (method != RemovalMethod::RemoveRecords)
                QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
            QDir(m_dir->filePath(u"chosen"_s)).removeRecursively();
            if (!reached)
                break;
        }
        QVERIFY(stopped > 0);
    }

    void wholeFolderFails_andNothingElse()
    {
        m_world->gate.faultHook = [](const char* action, const QByteArray& host) {
            return qstrcmp(action, "carry out") == 0 && host.endsWith("/Bird") ? EROFS : 0;
        };
        const ResultOf<qint64> key = m_world->install(pack());
        m_world->gate.faultHook = {};
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(m_world->results.count(resultgroup::notInstalled), 4);
        QCOMPARE(m_world->results.count(resultgroup::installed), 2);
        const auto rows = modDatabase_Addon::detailsOf(*m_world->database, *key);
        QVERIFY(rows.ok());
        QCOMPARE(rows->size(), 2);
        QCOMPARE(strayStaging(m_world->tree()), QStringList());
        QVERIFY(m_world->remove(*key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void diskThatDoesNotConfirm_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("installed");
        QTest::newRow("a file") << QByteArray("sync") << EIO << false;
        QTest::newRow("a folder") << QByteArray("sync folder") << EIO << false;
        QTest::newRow("folders are not synced there")
            << QByteArray("sync folder") << EINVAL << true;
    }

    void diskThatDoesNotConfirm()
    {
        QFETCH(QByteArray, action);
        QFETCH(int, answer);
        QFETCH(bool, installed);
        m_world->gate.faultHook = [&](const char* asked, const QByteArray&) {
            return asked == action ? answer : 0;
        };
        const ResultOf<qint64> key = m_world->install(pack());
        QCOMPARE(key.ok(), installed);
        if (installed) {
            QVERIFY(m_world->remove(*key));
        } else {
            QVERIFY2(key.text.contains(u"the disk did not confirm"), qPrintable(key.text));
            QVERIFY2(key.text.contains(u"Nothing was "), qPrintable(key.text));
            m_world->gate.faultHook = {};
            newWorld(); // folders that cannot be synced cannot be cleaned for good either
            QCOMPARE(modDatabase_Addon::addons(*m_world->database)->size(), 0);
            QCOMPARE(unfinished().size(), 0);
        }
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void workThatCannotBeEnded_isToldAndEndedAtTheNextStart_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<bool>("filesFail");
        QTest::newRow("the disk does not confirm the renames")
            << QByteArray("sync folder") << false;
        QTest::newRow("what was not placed cannot be deleted") << QByteArray("undo") << true;
    }

    void workThatCannotBeEnded_isToldAndEndedAtTheNextStart()
    {
        QFETCH(QByteArray, action);
        QFETCH(bool, filesFail);
        bool committed = false;
        m_world->gate.faultHook = [&](const char* asked, const QByteArray& host) {
            committed = committed || isCommit(asked, host, "apply");
            if (filesFail && qstrcmp(asked, "carry out") == 0 && host.endsWith("/Bird"))
                return EROFS;
            return committed && asked == action ? EIO : 0;
        };
        const ResultOf<qint64> key = m_world->install(pack());
        QVERIFY2(key.ok(), qPrintable(key.text));
        QVERIFY(m_world->results.texts(resultgroup::failedSpecialActions)
                    .join(u'\n')
                    .contains(u"It is ended at the next start."));
        QCOMPARE(unfinished().size(), 1);
        m_world->gate.faultHook = {};
        const Result meanwhile = m_world->remove(*key); // its steps would get in the way
        QVERIFY(!meanwhile.ok && meanwhile.text.contains(u"has not ended yet"));
        newWorld();
        QCOMPARE(m_world->recoveries.size(), 1);
        QCOMPARE(m_world->recoveries[0].outcome, u"completed"_s);
        QCOMPARE(strayStaging(m_world->tree()), QStringList());
        QCOMPARE(modDatabase_Addon::detailsOf(*m_world->database, *key)->size(), filesFail ? 2 : 6);
        QVERIFY(m_world->remove(*key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void undoThatFails_isToldAndTriedAgain_data()
    {
        QTest::addColumn<bool>("removal");
        QTest::newRow("installation") << false;
        QTest::newRow("removal") << true;
    }

    void undoThatFails_isToldAndTriedAgain()
    {
        QFETCH(bool, removal);
        ResultOf<qint64> key = qint64(0);
        if (removal) {
            key = m_world->install(pack());
            QVERIFY(key.ok());
            // Set aside, so that there is something to take back.
            QVERIFY(
                m_world->actions.replace(m_world->simulatorPath(u"Effects\\fx_new.fx"_s), "me"));
        }
        const TreeSnapshot before = m_world->tree();
        m_world->gate.faultHook = [](const char* action, const QByteArray& host) {
            if (qstrcmp(action, "undo") == 0)
                return EACCES;
            return isCommit(action, host, "apply") ? ENOSPC : 0;
        };
        const Result failed = removal ? m_world->remove(*key) : m_world->install(pack()).error();
        m_world->gate.faultHook = {};
        QVERIFY(!failed.ok);
        QVERIFY2(failed.text.contains(u"could not be taken back"), qPrintable(failed.text));
        QVERIFY(failed.text.contains(u"access is denied"));
        QCOMPARE(unfinished().size(), 1);
        newWorld();
        QCOMPARE(m_world->recoveries[0].outcome, u"undone"_s);
        QCOMPARE(differences(before, m_world->tree(), Backups::Compare), QStringList());
        QCOMPARE(m_world->files.filesBelow(m_world->global.backupsFolder), QStringList());
    }
};

VT_TEST_CLASS(TestFailures)
#include "test_failures.moc"
