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

class TestCrash : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir{temporaryTemplate()};
    QString m_lower; ///< pack installed before, over which the other one goes
    QString m_upper;

    [[nodiscard]] QString base() const { return m_dir.filePath(u"base"_s); }

    /// A fresh copy of the base to be ruined.
    QString trial(const QString& from)
    {
        const QString folder = m_dir.filePath(u"trial"_s);
        QDir(folder).removeRecursively();
        copyTree(from, folder);
        return folder;
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
        QVERIFY(world.install(m_lower));
    }

    void installation_endsAnywhere_isUndoneOrCompleted()
    {
        const auto work = [this](FlowWorld& world) { (void)world.install(m_upper); };
        TreeSnapshot before;
        TreeSnapshot after;
        int points = 0;
        {
            FlowWorld world(trial(base()));
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            before = world.tree();
            points = countPoints(world, work);
            after = world.tree();
        }
        QVERIFY(points > 20);
        QVERIFY(!differences(before, after, Backups::Ignore).isEmpty());
        int undone = 0;
        int completed = 0;
        for (int n = 1; n <= points; ++n) {
            const QString folder = trial(base());
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
            const bool recorded = addons->size() == 2;
            const QStringList wrong = differences(recorded ? after : before, now, Backups::Ignore);
            QVERIFY2(wrong.isEmpty(), qPrintable(u"point %1: "_s.arg(n) + wrong.value(0)));
            recorded ? ++completed : ++undone;
            if (!recorded)
                continue;
            // Every original is there: taking the add-on out gives the old tree back.
            QVERIFY(world.remove(addons->last().key));
            QCOMPARE(differences(before, world.tree(), Backups::Ignore), QStringList());
        }
        QVERIFY(undone > 0);
        QVERIFY(completed > 0);
    }

    void removal_endsAnywhere_isUndoneOrCompleted()
    {
        // The lower add-on is removed, so that what it had kept must pass to the upper one.
        QString both = m_dir.filePath(u"both"_s);
        copyTree(base(), both);
        qint64 lowerKey = 0;
        {
            FlowWorld world(both);
            world.prompts.defaultsBeyondQueue = true;
            QVERIFY(world.start());
            lowerKey = modDatabase_Addon::addons(*world.database)->first().key;
            QVERIFY(world.install(m_upper));
        }
        TreeSnapshot empty;
        {
            FlowWorld world(trial(both));
            QVERIFY(world.start());
            const auto addons = modDatabase_Addon::addons(*world.database);
            QVERIFY(addons.ok());
            for (const AddonRecord& addon : *addons)
                QVERIFY(world.remove(addon.key));
            empty = world.tree();
        }
        const auto work = [&](FlowWorld& world) { (void)world.remove(lowerKey); };
        TreeSnapshot before;
        TreeSnapshot after;
        int points = 0;
        {
            FlowWorld world(trial(both));
            QVERIFY(world.start());
            before = world.tree();
            points = countPoints(world, work);
            after = world.tree();
        }
        QVERIFY(points > 10);
        int undone = 0;
        int completed = 0;
        for (int n = 1; n <= points; ++n) {
            const QString folder = trial(both);
            QVERIFY2(runAndEnd(folder, n, work), qPrintable(u"point %1 was not reached"_s.arg(n)));
            FlowWorld world(folder);
            QVERIFY(world.start());
            const auto addons = modDatabase_Addon::addons(*world.database);
            QVERIFY(addons.ok());
            const bool removed = addons->size() == 1;
            const QStringList wrong =
                differences(removed ? after : before, world.tree(), Backups::Ignore);
            QVERIFY2(wrong.isEmpty(), qPrintable(u"point %1: "_s.arg(n) + wrong.value(0)));
            removed ? ++completed : ++undone;
            for (const AddonRecord& addon : *addons)
                QVERIFY(world.remove(addon.key));
            QCOMPARE(differences(empty, world.tree(), Backups::Ignore), QStringList());
        }
        QVERIFY(undone > 0);
        QVERIFY(completed > 0);
    }
};

VT_TEST_CLASS(TestCrash)
#include "test_crash.moc"
