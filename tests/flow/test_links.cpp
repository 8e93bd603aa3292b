// Links of the user's own: single files that are links, which are kept and come back as links, and
// folders that lie elsewhere (on another disk where there is one), used once they are confirmed.
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
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

/// Permissions and time of an entry itself.
struct Marks
{
    mode_t mode = 0;
    qint64 modified = 0;

    friend bool operator==(const Marks&, const Marks&) = default;
};

Marks marksOf(const QString& host)
{
    struct stat st
    {};

    if (lstat(QFile::encodeName(host), &st) != 0)
        return {};
    return {st.st_mode, st.st_mtim.tv_sec * 1'000'000'000LL + st.st_mtim.tv_nsec};
}

void setTime(const QString& host, time_t modified)
{
    const timespec times[2] = {{modified, 0}, {modified, 987'654'321}};
    QCOMPARE(utimensat(AT_FDCWD, QFile::encodeName(host), times, AT_SYMLINK_NOFOLLOW), 0);
}

/// File systems that cannot give a second name: everything is copied.
int cannotLink(const char* action, const QByteArray&)
{
    return qstrcmp(action, "link") == 0 ? EXDEV : 0;
}

} // namespace

class TestLinks : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<QTemporaryDir> m_outside; ///< another file system than the simulator's, often
    std::unique_ptr<FlowWorld> m_world;

    void newWorld()
    {
        m_world.reset();
        m_world = std::make_unique<FlowWorld>(m_dir->filePath(u"world"_s));
        QVERIFY(m_world->start());
    }

    /// Two scenery areas and an effect; one file replaces one that is there.
    QString pack()
    {
        const QString path = m_dir->filePath(u"pack.zip"_s);
        ZipBuilder zip;
        zip.add("Addon Scenery/Lakeside/scenery/lakeside.bgl", "replaced");
        zip.add("Addon Scenery/Hills/scenery/hills.bgl", "hills");
        zip.add("Addon Scenery/Hills/texture/hills.bmp", "texture");
        zip.add("Effects/fx_new.fx", "effect");
        if (!zip.save(path))
            qFatal("the archive cannot be written");
        return path;
    }

    [[nodiscard]] QString sceneryHost() const { return m_world->hostPath(u"Addon Scenery"_s); }

    [[nodiscard]] QString behind() const { return m_outside->filePath(u"moved"_s); }

    /// A folder of the simulator moves out, a link takes its place.
    void moveOut(const QString& folder = u"Addon Scenery"_s)
    {
        const QString host = m_world->hostPath(folder);
        copyTree(host, behind());
        QVERIFY(QDir(host).removeRecursively());
        QVERIFY(QFile::link(behind(), host));
        m_world->files.newOperation();
    }

    InstallOptions replacing()
    {
        InstallOptions options;
        options.replace = ReplacePolicy::Yes;
        return options;
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_outside = std::make_unique<QTemporaryDir>();
        newWorld();
    }

    void cleanup()
    {
        m_world.reset();
        m_dir.reset();
        m_outside.reset();
    }

    void replacedLink_comesBackAsItWas_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("copied");
        QTest::newRow("to a file outside") << u"/mine"_s << false;
        QTest::newRow("relative") << u"../texture/lakeside_hut.bmp"_s << false;
        QTest::newRow("leading nowhere") << u"no such file"_s << false;
        QTest::newRow("kept by a copy") << u"../texture/lakeside_hut.bmp"_s << true;
    }

    void replacedLink_comesBackAsItWas()
    {
        QFETCH(QString, target);
        QFETCH(bool, copied);
        if (target.startsWith(u'/')) // made anew for each row
            target = m_outside->filePath(u"mine.bgl"_s);
        const QString outside = m_outside->filePath(u"mine.bgl"_s);
        QFile mine(outside);
        QVERIFY(mine.open(QIODevice::WriteOnly) && mine.write("mine") == 4);
        mine.close();
        const QString host = sceneryHost() + u"/Lakeside/scenery/lakeside.bgl"_s;
        QVERIFY(QFile::remove(host));
        QCOMPARE(symlink(QFile::encodeName(target), QFile::encodeName(host)), 0);
        setTime(host, 1'100'000'000);
        m_world->files.newOperation();
        const TreeSnapshot before = m_world->tree();
        const Marks marks = marksOf(host);

        if (copied)
            m_world->gate.faultHook = cannotLink;
        const ResultOf<qint64> key = m_world->install(pack(), replacing());
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(m_world->results.count(resultgroup::installed), 4);
        QVERIFY(!QFileInfo(host).isSymLink());
        QVERIFY(m_world->remove(*key));
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(differences(before, m_world->tree(), Backups::Ignore), QStringList());
        QCOMPARE(marksOf(host).modified, marks.modified);
        QVERIFY(mine.open(QIODevice::ReadOnly));
        QCOMPARE(mine.readAll(), QByteArray("mine"));
        QCOMPARE(m_world->files.filesBelow(m_world->global.originalsFolder), QStringList());
    }

    void originals_haveTheirPermissionsAndTimesAgain_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("copied");
        QTest::newRow("moved back") << 0640 << false;
        QTest::newRow("copied back") << 0640 << true;
        QTest::newRow("more than the mask allows") << 0666 << true;
        QTest::newRow("read-only") << 0444 << true;
    }

    void originals_haveTheirPermissionsAndTimesAgain()
    {
        QFETCH(int, mode);
        QFETCH(bool, copied);
        // The library among them, which is edited and not replaced.
        const QStringList hosts = {sceneryHost() + u"/Lakeside/scenery/lakeside.bgl"_s,
                                   m_world->drives.toHost(m_world->global.sceneryCfgFile)};
        for (const QString& host : hosts) {
            QCOMPARE(chmod(QFile::encodeName(host), mode_t(mode)), 0);
            setTime(host, 1'100'000'000);
        }
        if (copied)
            m_world->gate.faultHook = cannotLink;
        if (mode == 0444)
            m_world->prompts.expect(u"is marked read-only. Update it anyway?"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(pack(), replacing());
        QVERIFY2(key.ok(), qPrintable(key.text));
        QVERIFY(marksOf(hosts[1]).modified / 1'000'000'000 > 1'100'000'000);
        m_world->files.newOperation();
        QVERIFY(m_world->remove(*key));
        for (const QString& host : hosts) {
            QCOMPARE(marksOf(host).mode & 0777u, mode_t(mode));
            QCOMPARE(marksOf(host).modified, 1'100'000'000'987'654'321LL);
        }
    }

    void outerLink_isToldByThePlan_askedOnce_andUsed()
    {
        moveOut();
        const QString replaced = behind() + u"/Lakeside/scenery/lakeside.bgl"_s;
        QCOMPARE(chmod(QFile::encodeName(replaced), 0666), 0);
        setTime(replaced, 1'100'000'000);
        const Marks marks = marksOf(replaced);
        const TreeSnapshot simulator = m_world->tree();
        const TreeSnapshot scenery = hashTree(behind());
        {
            CAddonInstallationDetails details(m_world->context);
            QVERIFY(details.prepare(m_world->drives.toWindows(pack()), replacing()));
            const QList<PlanProblem> problems = details.problems();
            QCOMPARE(problems.size(), 1);
            QVERIFY(problems[0].text.contains(m_world->simulatorPath(u"Addon Scenery'"_s)));
            QVERIFY(problems[0].text.contains(m_world->drives.toWindows(behind()) + u"\\'"_s));
            QCOMPARE(details.closedFolders().size(), 3);
        }
        m_world->prompts.expect(u"Confirm Link"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(pack(), replacing());
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(m_world->results.count(resultgroup::installed), 4);
        QCOMPARE(strayStaging(hashTree(m_outside->path())), QStringList());
        QVERIFY(QFile::exists(behind() + u"/Hills/texture/hills.bmp"_s));

        newWorld(); // it is remembered: no question any more
        const ResultOf<qint64> again = m_world->install(pack(), replacing());
        QVERIFY2(again.ok(), qPrintable(again.text));
        newWorld();
        for (const qint64 each : {*key, *again}) {
            QVERIFY(m_world->remove(each));
            QVERIFY(!m_world->anyFailed);
        }
        QCOMPARE(differences(simulator, m_world->tree(), Backups::Ignore), QStringList());
        QCOMPARE(differences(scenery, hashTree(behind()), Backups::Ignore), QStringList());
        QVERIFY(marksOf(replaced) == marks); // copied back from another disk, where there is one
        QCOMPARE(m_world->files.filesBelow(m_world->global.originalsFolder), QStringList());
    }

    void outerLink_declinedOrLeadingNowhere_nothingIsWrittenBehindIt_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("nowhere");
        const QString scenery = u"Addon Scenery"_s;
        const QString hills = scenery + u"\\Hills\\scenery\\hills.bgl"_s;
        QTest::newRow("declined") << scenery << hills << false;
        QTest::newRow("nowhere") << scenery << hills << true;
        QTest::newRow("files right behind it") << u"Effects"_s << u"Effects\\fx_new.fx"_s << false;
    }

    void outerLink_declinedOrLeadingNowhere_nothingIsWrittenBehindIt()
    {
        QFETCH(QString, folder);
        QFETCH(QString, file);
        QFETCH(bool, nowhere);
        moveOut(folder);
        if (nowhere)
            QVERIFY(QDir().rename(behind(), behind() + u" unmounted"_s));
        else
            m_world->prompts.expect(u"Confirm Link"_s, Button::No);
        m_world->files.newOperation();
        const TreeSnapshot simulator = m_world->tree();
        const TreeSnapshot outside = hashTree(m_outside->path());
        QStringList touched;
        m_world->gate.faultHook = [&](const char*, const QByteArray&) {
            touched += differences(outside, hashTree(m_outside->path()), Backups::Compare);
            return 0;
        };
        const ResultOf<qint64> key = m_world->install(pack(), replacing());
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(touched, QStringList());
        QCOMPARE(differences(outside, hashTree(m_outside->path()), Backups::Compare),
                 QStringList());
        QCOMPARE(m_world->results.count(resultgroup::installed), folder == u"Effects" ? 3 : 1);
        const auto code = nowhere ? InstallCode::Error : InstallCode::ClientDeclined;
        QVERIFY(m_world->results.texts(resultgroup::notInstalled)
                    .contains(m_world->simulatorPath(file) + resultPhrase(code)));
        QVERIFY(m_world->results.texts(resultgroup::failedSpecialActions)
                    .join(u'\n')
                    .contains(m_world->simulatorPath(folder) + u'\''));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(differences(simulator, m_world->tree(), Backups::Ignore), QStringList());
    }

    void outerLink_thatLeadsElsewhereLater_isAskedAgain()
    {
        moveOut();
        m_world->prompts.expect(u"Confirm Link"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(pack(), replacing());
        QVERIFY2(key.ok(), qPrintable(key.text));
        const QString link = sceneryHost();
        const QString other = m_outside->filePath(u"other"_s);
        copyTree(behind(), other);
        const TreeSnapshot untouched = hashTree(other);
        QVERIFY(QFile::remove(link) && QFile::link(other, link));
        m_world->files.newOperation();
        m_world->prompts.expect(u"Confirm Link"_s, Button::No);
        QVERIFY(m_world->remove(*key));
        QVERIFY(m_world->anyFailed);
        QCOMPARE(differences(untouched, hashTree(other), Backups::Compare), QStringList());
        QCOMPARE(modDatabase_Addon::detailsOf(*m_world->database, *key)->size(), 3);
        QVERIFY(QFile::remove(link) && QFile::link(behind(), link));
        m_world->files.newOperation();
        QVERIFY(m_world->remove(*key));
        QVERIFY(!m_world->anyFailed);
        QVERIFY(!QFile::exists(behind() + u"/Hills"_s));
    }

    void interruptedWork_behindALink_waitsUntilItLeadsThereAgain()
    {
        moveOut();
        m_world->prompts.expect(u"Confirm Link"_s, Button::Yes);
        const ResultOf<qint64> first = m_world->install(pack(), replacing());
        QVERIFY(first.ok() && m_world->remove(*first));
        const TreeSnapshot before = hashTree(behind());
        m_world.reset();
        const QString archive = pack();
        const auto work = [&](FlowWorld& world) {
            world.files.newOperation();
            (void)world.install(archive, replacing());
        };
        int waited = 0;
        int undone = 0;
        int completed = 0;
        for (int n = 3; runAndEnd(m_dir->filePath(u"world"_s), n, work); n += 4) {
            QVERIFY(QDir().rename(behind(), behind() + u" unmounted"_s));
            newWorld();
            QCOMPARE(m_world->recoveries.size(), 1);
            const Recovery tried = m_world->recoveries[0];
            QVERIFY(tried.outcome != u"completed");
            if (tried.outcome == u"failed") {
                QVERIFY(tried.texts[0].contains(u"leads nowhere at present"));
                ++waited;
            } // else nothing had been staged behind the link yet
            QVERIFY(QDir().rename(behind() + u" unmounted"_s, behind()));
            newWorld();
            QCOMPARE(strayStaging(hashTree(m_outside->path())), QStringList());
            const auto addons = modDatabase_Addon::addons(*m_world->database);
            QVERIFY(addons.ok());
            addons->isEmpty() ? ++undone : ++completed;
            for (const AddonRecord& addon : *addons)
                QVERIFY(m_world->remove(addon.key));
            QCOMPARE(differences(before, hashTree(behind()), Backups::Ignore), QStringList());
            m_world.reset();
        }
        QVERIFY(waited > 0 && undone > 0 && completed > 0);
    }
};

VT_TEST_CLASS(TestLinks)
#include "test_links.moc"
