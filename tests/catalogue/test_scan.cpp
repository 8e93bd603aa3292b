// Later scans: what changed is seen, what did not is not read again, a damaged cache harms nobody.
#include "CatalogueWorld.h"
#include "catalogue/CatalogueCache.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

void setTime(const QString& host, qint64 seconds)
{
    const timespec times[] = {{seconds, 0}, {seconds, 0}};
    QCOMPARE(utimensat(AT_FDCWD, qPrintable(host), times, 0), 0);
}

void fillSmall(CatalogueWorld& world)
{
    for (const QString& name : {u"Cub"_s, u"Otter"_s}) {
        world.airplane(name + u"/aircraft.cfg"_s, variationText(0, name.toLatin1()));
        world.airplane(name + u"/panel/panel.cfg"_s, "[Window00]\r\ngauge00=Set!Dial, 1\r\n");
        world.airplane(name + u"/sound/Sound.cfg"_s, "[fltsim]\r\nalias=Cub\\sound\r\n");
    }
    world.write(u"FSX/Effects/fx_nav.fx"_s, "Texture=nav.bmp\r\n");
}

} // namespace

class TestScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void unchanged_isNotReadAgain()
    {
        CatalogueWorld world;
        fillSmall(world);
        QTest::qWait(2200); // what was changed during the last moments is read again
        const auto first = world.opened();
        QVERIFY(!world.files.exists(u"C:\\Vantrel\\Catalogue.dat"_s));
        QVERIFY(first->save(world.services).ok);
        Catalogue second(world.global);
        second.open(world.services);
        QCOMPARE(CatalogueWorld::said(second), CatalogueWorld::said(*first));
        const catalogue::ScanCounts again = second.refresh(world.files, world.ansi);
        QCOMPARE(again.filesRead, 0);
        QCOMPARE(again.filesKept, 7);
        QVERIFY(!again.changed);

        // The same size and the same time, but other bytes.
        const QString cub = world.host(u"FSX/SimObjects/Airplanes/Cub/aircraft.cfg"_s);
        setTime(cub, 1'000'000'000);
        (void)second.refresh(world.files, world.ansi);
        world.airplane(u"Cub/aircraft.cfg"_s, variationText(0, "Bug"));
        setTime(cub, 1'000'000'000);
        QCOMPARE(second.refresh(world.files, world.ansi).filesRead, 1);
        QVERIFY(second.titleIsUsed(u"Bug"_s, {}, {}) && !second.titleIsUsed(u"Cub"_s, {}, {}));

        // The file is left alone when there is nothing new for it.
        QVERIFY(second.save(world.services).ok);
        QVERIFY(QFile::remove(world.host(u"Vantrel/Catalogue.dat"_s)));
        world.files.newOperation();
        QVERIFY(second.save(world.services).ok);
        QVERIFY(!world.files.exists(u"C:\\Vantrel\\Catalogue.dat"_s));
    }

    void changeWithinOneTick_isSeen()
    {
        CatalogueWorld world;
        for (int i = 0; i < 200; ++i) {
            const QByteArray title = "Cub " + QByteArray::number(100 + i);
            world.airplane(u"Cub/aircraft.cfg"_s, variationText(0, title));
            const auto catalogue = world.opened();
            QVERIFY2(catalogue->titleIsUsed(QString::fromLatin1(title), {}, {}), title.constData());
            QVERIFY(catalogue->save(world.services).ok);
        }
    }

    /// Whatever is done to the tree, a later scan says what a first one would.
    void anyChange_isSeen()
    {
        CatalogueWorld world;
        QRandomGenerator random(11);
        const QString top = world.host(u"FSX/SimObjects/Airplanes/"_s);
        const QStringList aircraft{u"Cub"_s, u"Otter"_s, u"Élan"_s};
        const QStringList files = u"aircraft.cfg|Aircraft.CFG|hidden.cfg|panel/panel.cfg|"
                                  "Panel.b/PANEL.cfg|panel/night/panel.cfg|sound/Sound.Cfg|"
                                  "soundai/soundai.cfg|model/model.cfg|texture/x.bmp"_s.split(u'|');
        // Everything counts as settled, so only stamps tell what changed; each change gets its own.
        const auto later = [] { return FolderReader::nowNs() + 10'000'000'000; };
        auto kept = world.opened();
        for (int round = 0; round < 300; ++round) {
            const QString folder = aircraft[random.bounded(3)];
            const QString file = folder + u'/' + files[random.bounded(int(files.size()))];
            const QByteArray number = QByteArray::number(round);
            QTest::qSleep(10);
            switch (random.bounded(6)) {
            case 0:
                QFile::remove(top + file);
                break;
            case 1:
                QDir(top + QFileInfo(file).path()).removeRecursively();
                break;
            case 2:
                QDir().mkpath(top + QFileInfo(file).path());
                break;
            case 3:
                QFile::rename(top + folder, top + aircraft[random.bounded(3)]);
                break;
            default:
                world.airplane(file,
                               variationText(0, "T" + number, round % 2 ? "panel=\\night" : "") +
                                   "[fltsim]\r\nalias=Cub\\panel\r\n[a]\r\nfilename=w" + number +
                                   "\r\ngauge00=g" + number + "!x,1\r\n");
            }
            if (round % 3 == 0)
                world.write(u"FSX/Effects/fx_"_s + QString::number(round % 5) + u".fx"_s,
                            "Texture=" + number + "\r\n");
            (void)kept->refresh(world.files, world.ansi, later());
            const QStringList expected = CatalogueWorld::said(*world.fresh());
            QCOMPARE(CatalogueWorld::said(*kept), expected);
            if (round % 10 == 0) {
                QVERIFY(kept->save(world.services).ok);
                kept = std::make_unique<Catalogue>(world.global);
                kept->open(world.services);
                QCOMPARE(CatalogueWorld::said(*kept), expected);
            }
        }
    }

    void damagedCache_isDiscarded()
    {
        CatalogueWorld world;
        fillSmall(world);
        const auto first = world.opened();
        QVERIFY(first->save(world.services).ok);
        const QByteArray good = world.read(u"Vantrel/Catalogue.dat"_s);
        const QString path = u"C:\\Vantrel\\Catalogue.dat"_s;
        const catalogue::CacheKey key{world.gate.identity(RootId::Simulator), 1252};
        catalogue::Store store;
        QVERIFY(catalogue::loadCache(world.files, path, key, store));
        QVERIFY(!catalogue::loadCache(world.files, path, {key.simulator, 1250}, store));
        QVERIFY(store.configs.empty());
        QRandomGenerator random(5);
        for (int round = 0; round < 300; ++round) {
            QByteArray bad = good;
            if (round % 3 == 0)
                bad.truncate(random.bounded(int(good.size())));
            else if (round % 3 == 1)
                bad[random.bounded(int(good.size()))] ^= char(1 << random.bounded(8));
            else
                bad.insert(random.bounded(int(good.size())), char(random.bounded(256)));
            world.write(u"Vantrel/Catalogue.dat"_s, bad);
            QVERIFY(!catalogue::loadCache(world.files, path, key, store));
            QVERIFY(store.configs.empty());
        }
        QCOMPARE(CatalogueWorld::said(*world.opened()), CatalogueWorld::said(*first));
    }

    void otherSimulator_hasItsOwn()
    {
        CatalogueWorld world;
        fillSmall(world);
        QVERIFY(world.opened()->save(world.services).ok);
        QVERIFY(QFile::rename(world.host(u"FSX"_s), world.host(u"Old"_s)));
        world.airplane(u"Cub/aircraft.cfg"_s, variationText(0, "Another"));
        QCOMPARE(world.opened()->variationCount(), 1u);
        QVERIFY(world.opened()->titleIsUsed(u"Another"_s, {}, {}));
    }

    void oddFiles_doNotBlock()
    {
        CatalogueWorld world;
        fillSmall(world);
        const QString top = world.host(u"FSX/SimObjects/Airplanes/"_s);
        QDir().mkpath(top + u"Pipe"_s);
        QCOMPARE(mkfifo(qPrintable(top + u"Pipe/aircraft.cfg"_s), 0600), 0);
        QDir().mkpath(top + u"Folder/aircraft.cfg"_s);
        QVERIFY(QFile::link(u"Loop"_s, top + u"Loop"_s));
        QVERIFY(QFile::link(u"nowhere"_s, top + u"Cub/panel.lost"_s));
        QVERIFY(QFile::link(top + u"Cub"_s, top + u"Linked"_s));
        const auto catalogue = world.opened();
        QCOMPARE(catalogue->variationCount(), 3u);
        QCOMPARE(catalogue->problems().size(), 1);
        QVERIFY(catalogue->problems().first().text.contains(u"Pipe\\aircraft.cfg"_s));
    }
};

} // namespace vt::test

using vt::test::TestScan;
VT_TEST_CLASS(TestScan)

#include "test_scan.moc"
