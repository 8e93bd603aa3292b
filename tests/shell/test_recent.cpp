// The lists of recent and favourite items: who makes room, and what a text file keeps.
#include "shell/CFavoriteItemsMgr.h"
#include "shell/CRecentItemsManager.h"
#include "shell/RecentFolders.h"
#include "shell/ShellFixture.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QDateTime noon(QDate(2026, 3, 1), QTime(12, 0));

QStringList paths(const CRecentItemGroup& group)
{
    QStringList out;
    for (const CRecentItem& item : group.colRecentItems())
        out += item.sRecentItem;
    return out;
}

} // namespace

class TestRecent : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void oldestMakesRoom()
    {
        CRecentItemGroup group;
        QVERIFY(group.Add(u"C:\\b"_s, noon, 3));
        QVERIFY(group.Add(u"C:\\c"_s, noon, 3));
        QVERIFY(group.Add(u"C:\\a"_s, noon.addSecs(-1), 3));
        QVERIFY(!group.Add(u"c:\\B"_s, noon.addSecs(60), 3));
        QCOMPARE(group.Search(u"C:\\b"_s)->dteDateAdded, noon); // not refreshed
        QVERIFY(group.Add(u"C:\\d"_s, noon, 3));
        QCOMPARE(paths(group), (QStringList{u"C:\\b"_s, u"C:\\c"_s, u"C:\\d"_s}));
        QVERIFY(group.Add(u"C:\\e"_s, noon, 3)); // of equal dates the first goes
        QCOMPARE(paths(group), (QStringList{u"C:\\c"_s, u"C:\\d"_s, u"C:\\e"_s}));
        QVERIFY(group.Add(u"C:\\f"_s, noon, 1));
        QCOMPARE(paths(group), QStringList{u"C:\\f"_s});
    }

    void folders_latestFirst_eachWindowItsOwn()
    {
        ShellFixture world;
        const Section panel = Section::InstallConfigurePanel;
        QCOMPARE(recentfolders::list(world.context, panel), QStringList());
        for (int i = 0; i <= recentfolders::most; ++i) {
            world.clock.standing = noon.addSecs(i);
            QVERIFY(recentfolders::add(world.context, panel, u"C:\\%1\\"_s.arg(i)));
        }
        world.clock.standing = noon.addSecs(60);
        QVERIFY(recentfolders::add(world.context, panel, u"c:\\3\\"_s)); // once, and in front
        const QStringList folders = recentfolders::list(world.context, panel);
        QCOMPARE(folders.size(), recentfolders::most);
        QCOMPARE(folders.first(2), (QStringList{u"c:\\3\\"_s, u"C:\\10\\"_s}));
        QCOMPARE(folders.last(), u"C:\\1\\"_s); // the oldest made room
        QCOMPARE(recentfolders::list(world.context, Section::InstallConfigureSound), QStringList());
    }

    void manager_keepsFileAndMaximum()
    {
        ShellFixture world;
        const QByteArray kept = "\"C:\\Caf\xE9, 1.zip\",#2001-09-28 07:05:09#\r\n";
        const QByteArray other = "\"C:\\half\",#not a date#\r\nsomebody's note\r\n";
        world.write(u"Vantrel/Settings/ISF_SEL.RIL"_s,
                    other + kept + "\"C:\\q\"uote.zip\",#2002-01-01 00:00:00#");
        CRecentItemsManager manager(world.context, Section::SelectFSO);
        QVERIFY(manager.Build());
        QCOMPARE(paths(manager.items()), (QStringList{u"C:\\Café, 1.zip"_s, u"C:\\q\"uote.zip"_s}));
        QVERIFY(manager.Add(u"C:\\new.zip"_s));
        QCOMPARE(world.read(u"Vantrel/Settings/ISF_SEL.RIL"_s),
                 kept + "\"C:\\q\"uote.zip\",#2002-01-01 00:00:00#\r\n" +
                     "\"C:\\new.zip\",#2026-03-01 12:30:15#\r\n" + other);

        QVERIFY(manager.cboRecentItemsList_ItemsToRemember_Validate(u"1"_s));
        QCOMPARE(paths(manager.items()), QStringList{u"C:\\new.zip"_s});
        CRecentItemsManager again(world.context, Section::SelectFSO);
        QVERIFY(again.Build());
        QCOMPARE(again.lngMaximumItemsAllowed(), 1);
        QCOMPARE(again.ClearAll().text, u"All items were removed."_s);
        QCOMPARE(world.read(u"Vantrel/Settings/ISF_SEL.RIL"_s), QByteArray());
    }

    void maximum_isOneOfTheChoices_data()
    {
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("taken");
        QTest::newRow("choice") << 30 << 30;
        QTest::newRow("between") << 29 << 10;
        QTest::newRow("none") << -4 << 1;
        QTest::newRow("beyond") << 1000 << 50;
    }

    void maximum_isOneOfTheChoices()
    {
        QFETCH(const int, value);
        QTEST(int(CRecentItemsManager::MaximumItemsAllowed_Validate(value)), "taken");
    }

    void favourites_areKeptAndCleared()
    {
        ShellFixture world;
        world.write(u"packs/a.zip"_s);
        CFavoriteItemsMgr favourites(world.context);
        QVERIFY(favourites.Initialize());
        QCOMPARE(favourites.add(u"C:\\packs\\ü日.zip"_s).text, u"Item was added."_s);
        QCOMPARE(favourites.add(u"C:\\PACKS\\Ü日.zip"_s).text, u"Item was NOT added."_s);
        QVERIFY(favourites.add(u"C:\\gone\\b.zip"_s));
        QVERIFY(favourites.add(u"Q:\\"_s));
        QVERIFY(favourites.add(u"C:\\packs\\"_s));
        CFavoriteItemsMgr again(world.context);
        QVERIFY(again.Build());
        QCOMPARE(again.items().colRecentItems(), favourites.items().colRecentItems());
        QCOMPARE(again.sorted().first().sRecentItem, u"C:\\gone\\b.zip"_s);
        QCOMPARE(again.clearInvalid().text, u"Invalid items were removed."_s);
        QCOMPARE(paths(again.items()), (QStringList{u"C:\\packs\\ü日.zip"_s, u"C:\\packs\\"_s}));
        QCOMPARE(again.remove(u"C:\\packs\\"_s).text, u"Item was removed."_s);
        QCOMPARE(again.remove(u"C:\\packs\\"_s).text, u"Item was NOT removed."_s);
    }
};

VT_TEST_CLASS(TestRecent)
#include "test_recent.moc"
