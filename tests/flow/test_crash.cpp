// The process ends at every file action and every commit of an installation and of a removal; the
// next start finds the tree as before or as after, and every original.
#include "addondb/AddonDatabase.h"
#include "demo/OverlappingPacks.h"
#include "flow/FlowWorld.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

Q_DECLARE_METATYPE(vt::RemovalMethod)

class TestCrash : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir{temporaryTemplate()};
    QString m_lower; ///< pack installed before, over which the other one goes
    QString m_upper;
    TreeSnapshot m_empty; ///< before anything was installed

    [[nodiscard]] QString base() const { return m_dir.filePath(u"base"_s); }

    /// A fresh copy of the base to be ruined.
    QString trial(const QString& from)
    {
        const QString folder = m_dir.filePath(u"trial"_s);
        QDir(folder).removeRecursively();
        copyTree(from, folder);
        return folder;
    }

    /// Ends \a work at each of its points, on copies of \a from: the next start finds the tree as
    /// before, or, with \a addonsAfter add-ons installed, as after. With all add-ons but the first
    /// \a staying ones taken out it is \a bottom.
    void endAnywhere(const QString& from,
                     const std::function<void(FlowWorld&)>& work,
                     qsizetype addonsAfter,
                     const TreeSnapshot& bottom,
                     qsizetype staying)
    {
        TreeSnapshot before;
        TreeSnapshot after;
        int points = 0;
        {
            FlowWorld world(trial(from));
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            before = world.tree();
            points = countPoints(world, work);
            after = world.tree();
        }
        QVERIFY(points > 10);
        QVERIFY(!differences(before, after, Backups::Ignore).isEmpty());
        int undone = 0;
        int completed = 0;
        for (int n = 1; n <= points; n += stride) {
            const QString folder = trial(from);
            QVERIFY2(runAndEnd(folder, n, work), qPrintable(u"point %1 was not reached"_s.arg(n)));
            if (n % 5 == 0) { // the repair may die as well
                for (int m = 1; m < 200 && startAndEnd(folder, m); m += 3)
                    ;
            }
            FlowWorld world(folder);
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            const TreeSnapshot now = world.tree();
            QCOMPARE(strayStaging(now), QStringList());
            const auto addons = modDatabase_Addon::addons(*world.database);
            QVERIFY(addons.ok());
            const auto installed =
                std::count_if(addons->cbegin(), addons->cend(), [](const AddonRecord& addon) {
                    return addon.status == InstallationStatus::Installed;
                });
            const bool done = installed == addonsAfter;
            const QStringList wrong = differences(done ? after : before, now, Backups::Ignore);
            QVERIFY2(wrong.isEmpty(), qPrintable(u"point %1: "_s.arg(n) + wrong.value(0)));
            done ? ++completed : ++undone;
            RemovalOptions plain;
            plain.soundInstead = u"Kestrel_K2\\sound"_s;
            for (const AddonRecord& addon : addons->sliced(qMin(staying, addons->size())))
                QVERIFY(world.remove(addon.key, plain));
            QCOMPARE(differences(bottom, world.tree(), Backups::Ignore), QStringList());
        }
        QVERIFY(undone > 0);
        QVERIFY(completed > 0);
    }

private Q_SLOTS:

    void initTestCase()
    {
        const QList<OverlappingPack> packs = overlappingPacks(7);
        m_lower = writePack(m_dir.filePath(u"packs"_s), packs[0].name, packs[0].files);
        m_upper = writePack(m_dir.filePath(u"packs"_s), packs[1].name, packs[1].files);
        FlowWorld world(base());
        world.prompts.defaultsBeyondQueue = true;
        QVERIFY(world.start());
        m_empty = world.tree();
        QVERIFY(world.install(m_lower));
    }

    void installation_endsAnywhere_isUndoneOrCompleted()
    {
        TreeSnapshot before;
        {
            FlowWorld world(trial(base()));
            QVERIFY(world.start());
            before = world.tree();
        }
        // Every original is there: taking the add-on out gives the old tree back.
        endAnywhere(
            base(), [this](FlowWorld& world) { (void)world.install(m_upper); }, 2, before, 1);
    }

    void storingAndReinstalling_endAnywhere_areUndoneOrCompleted_data()
    {
        QTest::addColumn<bool>("stored"); // before: in the File Cabinet
        QTest::addColumn<bool>("again");
        QTest::newRow("into the File Cabinet") << false << false;
        QTest::newRow("again in place") << false << true;
        QTest::newRow("out of the File Cabinet") << true << true;
    }

    void storingAndReinstalling_endAnywhere_areUndoneOrCompleted()
    {
        QFETCH(bool, stored);
        QFETCH(bool, again);
        const QString from = m_dir.filePath(u"again"_s);
        QDir(from).removeRecursively();
        copyTree(base(), from);
        InstallOptions cabinet;
        cabinet.to = InstallTo::Cabinet;
        qint64 key = 0;
        {
            FlowWorld world(from);
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            key = stored ? *world.install(m_upper, cabinet)
                         : modDatabase_Addon::addons(*world.database)->first().key;
            const auto rows = modDatabase_Addon::detailsOf(*world.database, key);
            for (const DetailRecord& row : *rows) {
                const QString path = row.location + row.name;
                if (again && !stored &&
                    world.gate.place(path)) // not what lies in the base's folder
                    QVERIFY(world.actions.replace(path, "damaged"));
            }
        }
        const auto work = [&](FlowWorld& world) {
            if (again)
                (void)world.reinstall(key);
            else
                (void)world.install(m_upper, cabinet);
        };
        TreeSnapshot before;
        TreeSnapshot after;
        TreeSnapshot empty;
        int points = 0;
        {
            FlowWorld world(trial(from));
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            before = world.tree();
            points = countPoints(world, work);
            after = world.tree();
            QCOMPARE(differences(before, after, Backups::Ignore).isEmpty(), !again);
        }
        for (int n = 1; n <= points; n += stride) {
            const QString folder = trial(from);
            QVERIFY2(runAndEnd(folder, n, work), qPrintable(u"point %1 was not reached"_s.arg(n)));
            FlowWorld world(folder);
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            const TreeSnapshot now = world.tree();
            const QStringList wrong = differences(after, now, Backups::Ignore);
            QVERIFY2(wrong.isEmpty() || differences(before, now, Backups::Ignore).isEmpty(),
                     qPrintable(u"point %1: "_s.arg(n) + wrong.value(0)));
            // Whichever it was: all can be had again, and goes without a trace.
            const auto addons = modDatabase_Addon::addons(*world.database);
            for (const AddonRecord& addon : *addons)
                QVERIFY2(world.reinstall(addon.key).ok, qPrintable(addon.name));
            for (const AddonRecord& addon : *addons)
                QVERIFY(world.remove(addon.key));
            if (n == 1)
                empty = world.tree();
            QCOMPARE(differences(empty, world.tree(), Backups::Ignore), QStringList());
        }
    }

    void removal_endsAnywhere_isUndoneOrCompleted_data()
    {
        QTest::addColumn<RemovalMethod>("method");
        QTest::newRow("deleted") << RemovalMethod::Delete;
        QTest::newRow("moved to the File Cabinet") << RemovalMethod::FileCabinet;
        QTest::newRow("moved to a zip file") << RemovalMethod::Recreate;
    }

    void removal_endsAnywhere_isUndoneOrCompleted()
    {
        QFETCH(RemovalMethod, method);
        // The lower add-on is removed, so that what it had kept must pass to the upper one.
        const QString both = m_dir.filePath(u"both%1"_s.arg(int(method)));
        copyTree(base(), both);
        qint64 lowerKey = 0;
        {
            FlowWorld world(both);
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            lowerKey = modDatabase_Addon::addons(*world.database)->first().key;
            QVERIFY(world.install(m_upper));
        }
        RemovalOptions options;
        options.method = method;
        options.zip = true;
        const QString chosen = m_dir.filePath(u"chosen"_s);
        endAnywhere(
            both,
            [&](FlowWorld& world) {
                if (method == RemovalMethod::Recreate)
                    options.toFolder = world.choose(chosen);
                (void)world.remove(lowerKey, options);
            },
            1,
            m_empty,
            0);
        if (method == RemovalMethod::Recreate) // written whole before anything went
            QVERIFY(!QDir(chosen).entryList({u"*.zip"_s}).isEmpty());
    }

    void configurationEdits_endAnywhere_data()
    {
        QTest::addColumn<int>("which");
        QTest::newRow("a repaint comes") << 0;
        QTest::newRow("a repaint goes") << 1;
        QTest::newRow("a sound goes, another takes its place") << 2;
    }

    void configurationEdits_endAnywhere()
    {
        QFETCH(int, which);
        const QString from = m_dir.filePath(u"edits%1"_s.arg(which));
        const QString owner = writePack(
            m_dir.filePath(u"packs"_s),
            u"owl.zip"_s,
            {{u"SimObjects/Airplanes/Owl/sound/sound.cfg"_s, "[STARTER.1]\r\nfilename=owl.wav\r\n"},
             {u"SimObjects/Airplanes/Owl/sound/owl.wav"_s, "RIFF"}});
        const QString user = writePack(
            m_dir.filePath(u"packs"_s),
            u"wren.zip"_s,
            {{u"SimObjects/Airplanes/Wren/sound/sound.cfg"_s, "[fltsim]\r\nalias=Owl\\sound\r\n"}});
        const QString repaint =
            writePack(m_dir.filePath(u"packs"_s),
                      u"repaint.zip"_s,
                      {{u"a.txt"_s, "[fltsim.X]\ntitle=Blue\nsim=kestrel_k2\ntexture=blue\n"},
                       {u"texture.blue/a.bmp"_s, "a"}});
        qint64 key = 0;
        TreeSnapshot empty;
        {
            FlowWorld world(from);
            QVERIFY(world.start());
            empty = world.tree();
            if (which == 1)
                key = *world.install(repaint);
            if (which == 2) {
                key = *world.install(owner);
                QVERIFY(world.install(user));
            }
        }
        RemovalOptions options;
        options.soundInstead = u"Kestrel_K2\\sound"_s;
        endAnywhere(
            from,
            [&](FlowWorld& world) {
                which == 0 ? (void)world.install(repaint) : (void)world.remove(key, options);
            },
            which == 1 ? 0 : 1,
            empty,
            0);
    }
};

VT_TEST_CLASS(TestCrash)
#include "test_crash.moc"
