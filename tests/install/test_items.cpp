// The item model: keys, searches, duplicates, copies.
#include "addondb/CAddons_ItemGroups.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

CAddon_Item item(const QString& folder, const QString& name, const QString& target = {})
{
    CAddon_Item made;
    made.sFolder_Current = folder;
    made.sName = name;
    made.setPreferred(target, name);
    made.AnalyzeType(5);
    return made;
}

} // namespace

class TestItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void searches_findTheFirstWithoutCase();
    void searches_followChanges();
    void keys_areGivenAndKept();
    void namesDiffer_onlyWhenRenamed();
    void duplicates_areGroupedByTarget();
    void conflicts_equalBytesAreEliminated();
    void completeAircraft_needsConfigurationFlightModelAndModel();
    void groups_countWhatIsMarked();
    void clone_isIndependent();
    void compositeKey_hasKeyAndDate();
};

void TestItems::searches_findTheFirstWithoutCase()
{
    CAddon_ItemGroup group;
    group.Add(item(u"a\\"_s, u"One.txt"_s, u"C:\\x\\"_s));
    group.Add(item(u"b\\"_s, u"ONE.TXT"_s, u"C:\\y\\"_s));
    QCOMPARE(group.SearchByName(u"one.txt")->lngKey, 1);
    QCOMPARE(group.SearchByNameandFSZipFolder(u"one.TXT", u"B")->lngKey, 2);
    QCOMPARE(group.SearchByZipFolderEntry(u"B\\")->lngKey, 2);
    QCOMPARE(group.SearchByInstallationNameandInstallationFolder(u"one.txt", u"c:\\Y\\")->lngKey,
             2);
    QVERIFY(!group.SearchByName(u"two.txt"));
    QVERIFY(!group.Search(3));
    group.edit(2)->lngKey_AssociatedItem = 1;
    QCOMPARE(group.SearchByNameAndKey_AssociatedPanel(u"One.txt", 1)->lngKey, 1);
    QCOMPARE(group.SearchQuicklyForDuplicateFilenames(), (QList<QList<qint32>>{{1, 2}}));
}

void TestItems::searches_followChanges()
{
    CAddon_ItemGroup group;
    group.Add(item({}, u"a.txt"_s, u"C:\\x\\"_s));
    QVERIFY(group.SearchByInstallationNameandInstallationFolder(u"a.txt", u"C:\\x\\"));
    group.edit(1)->setInstallation(u"C:\\z\\"_s, u"b.txt"_s);
    QVERIFY(!group.SearchByInstallationNameandInstallationFolder(u"a.txt", u"C:\\x\\"));
    QVERIFY(group.SearchByInstallationNameandInstallationFolder(u"b.txt", u"C:\\z\\"));
    QVERIFY(group.edit(1)->Names_Differ());
    group.AddonItems_SetProcessFlagForAllItems(false);
    group.AddonItems_ResetNamesAndProcessFlag();
    QVERIFY(group.Search(1)->boolProcess);
    QCOMPARE(group.Search(1)->sFolder_Installation, u"C:\\x\\"_s);
    QVERIFY(group.Remove(1));
    QVERIFY(!group.SearchByName(u"a.txt"));
    QVERIFY(!group.Remove(1));
}

void TestItems::keys_areGivenAndKept()
{
    CAddon_ItemGroup group;
    CAddon_Item fixed = item({}, u"z"_s);
    fixed.lngKey = 10;
    QCOMPARE(group.Add(fixed).lngKey, 10);
    QCOMPARE(group.Add(item({}, u"y"_s)).lngKey, 11);
    fixed.lngKey = 4; // from here on keys do not ascend
    group.Add(fixed);
    QCOMPARE(group.Search(4)->sName, u"z"_s);
    QCOMPARE(group.Search(11)->sName, u"y"_s);
    QVERIFY(group.Remove(10));
    QCOMPARE(group.Search(4)->lngKey, 4);
}

void TestItems::namesDiffer_onlyWhenRenamed()
{
    CAddon_Item made = item({}, u"a.bgl"_s);
    QVERIFY(!made.Names_Differ());
    made.sName_Installation = u"b.bgl"_s;
    QVERIFY(made.Names_Differ());
}

void TestItems::duplicates_areGroupedByTarget()
{
    CAddon_ItemGroup group;
    group.Add(item(u"1\\"_s, u"a.dds"_s, u"C:\\t\\"_s));
    group.Add(item(u"2\\"_s, u"A.DDS"_s, u"c:\\T\\"_s));
    group.Add(item(u"3\\"_s, u"a.dds"_s, u"C:\\other\\"_s));
    group.Add(item(u"4\\"_s, u"a.dds"_s)); // without a target
    group.Add(item(u"5\\"_s, u"a.dds"_s));
    QCOMPARE(group.duplicateTargets(), (QList<QList<qint32>>{{1, 2}}));
    group.edit(1)->boolProcess = false;
    QVERIFY(group.duplicateTargets().isEmpty());
}

void TestItems::conflicts_equalBytesAreEliminated()
{
    CAddon_ItemGroup group;
    for (const char16_t* folder : {u"main\\", u"copy\\", u"other\\"})
        group.Add(item(QString::fromUtf16(folder), u"a.dds"_s, u"C:\\t\\"_s));
    const auto sameButOther = [](const CAddon_Item& a, const CAddon_Item& b) {
        return a.sFolder_Current != u"other\\"_s && b.sFolder_Current != u"other\\"_s;
    };
    QCOMPARE(group.AutomaticallyResolveConflicts(sameButOther), (QList<QList<qint32>>{{1, 3}}));
    QCOMPARE(group.Array_sarrayEliminatedDuplicateItems_Get(), QStringList{u"copy\\a.dds"_s});
    QVERIFY(!group.Search(2)->boolProcess);
    // A patch goes over what it patches; "despatch" is none.
    group.edit(3)->sFolder_Current = u"set\\despatch\\"_s;
    const auto never = [](const CAddon_Item&, const CAddon_Item&) { return false; };
    QCOMPARE(group.AutomaticallyResolveConflicts(never).size(), 1);
    group.edit(3)->sFolder_Current = u"set\\main_patch\\"_s;
    QVERIFY(group.AutomaticallyResolveConflicts(never).isEmpty());
    QVERIFY(!group.Search(1)->boolProcess);
    QVERIFY(group.Search(3)->boolProcess);
}

void TestItems::completeAircraft_needsConfigurationFlightModelAndModel()
{
    CAddon_ItemGroup group;
    group.Add(item(u"p\\"_s, u"aircraft.CFG"_s));
    group.Add(item(u"p\\"_s, u"p.air"_s));
    QVERIFY(!group.ContainsACompleteAircraft());
    group.Add(item(u"P\\Model\\"_s, u"p.mdl"_s));
    QVERIFY(group.ContainsACompleteAircraft());
    QVERIFY(!group.ContainsAMission());
}

void TestItems::groups_countWhatIsMarked()
{
    CAddons_ItemGroups groups;
    QCOMPARE(groups.Items_TotalToProcess(), 0);
    auto& group = groups.Add(std::make_unique<CAddon_ItemGroup>());
    group.lngKey = 7;
    QCOMPARE(groups.Items_TotalToProcess(), 0);
    QVERIFY(groups.Items_Add(7, item({}, u"a.bgl"_s)));
    QVERIFY(groups.Items_Add(7, item({}, u"b.bgl"_s)));
    QVERIFY(!groups.Items_Add(8, item({}, u"c.bgl"_s)));
    group.edit(1)->boolProcess = false;
    QCOMPARE(groups.Items_TotalToProcess(), 1);
    QCOMPARE(groups.Items_Selected_TallyTypes(7, {1, 2, 99})[17], 2);
    QVERIFY(groups.Remove(7));
    QCOMPARE(groups.Items_TotalToProcess(), 0);
}

void TestItems::clone_isIndependent()
{
    CAddon_ItemGroup group;
    group.sGroupName = u"Name"_s;
    group.Add(item({}, u"a.bgl"_s));
    group.AddonItemZipFolderEntryMappingTable_Update(u"In\\"_s, u"C:\\out\\"_s);
    const auto copy = group.Clone();
    group.edit(1)->boolProcess = false;
    QVERIFY(copy->Search(1)->boolProcess);
    QCOMPARE(copy->sGroupName, u"Name"_s);
    QCOMPARE(copy->AddonItemZipFolderEntryMappingTable_Search(u"IN"), u"C:\\out\\"_s);
    copy->AddonItemZipFolderEntryMappingTable_Update(u"in"_s, u"C:\\new\\"_s);
    QCOMPARE(copy->Array_sarrayAddonItemMappingTables_Print(), QStringList{u"In\\ -> C:\\new\\"_s});
    QCOMPARE(group.AddonItemZipFolderEntryMappingTable_Search(u"in\\"), u"C:\\out\\"_s);
}

void TestItems::compositeKey_hasKeyAndDate()
{
    CAddon_ItemGroup group;
    group.lngKey = 12;
    group.dteInstalled = QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5));
    QCOMPARE(group.Key_lngKeydteInstalled_CompositeKey_Get(), u"12|2026-01-02 03:04:05"_s);
}

} // namespace vt::test

using vt::test::TestItems;
VT_TEST_CLASS(TestItems)

#include "test_items.moc"
