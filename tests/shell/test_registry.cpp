#include "ShellFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ScriptedPrompts;
using vt::test::ShellFixture;

class TestRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void productName_missingIsWarnedAboutOnce();
    void keys_areAddressedBelowSoftware();
    void getKey_readsForeignHivesAsLocalMachine();
    void star_isTheDefaultValue();
    void delete_takesValuesAndWholeKeys();
};

void TestRegistry::productName_missingIsWarnedAboutOnce()
{
    RegistryStore store;
    ScriptedPrompts prompts;
    CRegistry_Manipulation registry(store, prompts, {});
    prompts.expect(u"Registry functions will assume 'TEST APPLICATION'."_s, Button::Ok);
    QVERIFY(registry.SaveSetting(u"Toolbar"_s, u"On"_s, u"False"_s));
    QCOMPARE(registry.GetSetting(u"Toolbar"_s, u"On"_s), u"False"_s);
    QCOMPARE(prompts.asked.size(), 1);
    QCOMPARE(prompts.asked.first().caption, u"Registry Class Warning"_s);
    QCOMPARE(registry.GetKey(Hive::CurrentUser, u"TEST APPLICATION"_s, u"Toolbar"_s, u"On"_s),
             u"False"_s);
    registry.AppName(u"Other"_s);
    QCOMPARE(registry.GetSetting(u"Toolbar"_s, u"On"_s, u"none"_s), u"none"_s);
}

void TestRegistry::keys_areAddressedBelowSoftware()
{
    ShellFixture shell;
    QVERIFY(shell.registry.SaveKey(
        Hive::LocalMachine, u"Maker\\Game"_s, u"10.0"_s, u"Path"_s, u"C:\\G"_s));
    QVERIFY(
        shell.registry.SaveKey(Hive::LocalMachine, u"Maker\\Game"_s, {}, u"Path"_s, u"C:\\H"_s));
    const CRegistry_Manipulation& registry = shell.registry;
    QCOMPARE(registry.GetKeyDirect(Hive::LocalMachine, u"Software\\Maker\\Game\\10.0"_s, u"path"_s),
             u"C:\\G"_s);
    QCOMPARE(registry.GetKeyDirect(Hive::LocalMachine, u"Software\\Maker\\Game"_s, u"Path"_s),
             u"C:\\H"_s);
    QCOMPARE(registry.GetKey(Hive::CurrentUser, u"Maker\\Game"_s, {}, u"Path"_s), QString());
    QCOMPARE(registry.EnumerateSubKeys(Hive::LocalMachine, u"Software\\Maker\\Game"_s),
             QStringList{u"10.0"_s});
}

void TestRegistry::getKey_readsForeignHivesAsLocalMachine()
{
    ShellFixture shell;
    QVERIFY(shell.registry.SaveKey(Hive::LocalMachine, u"Maker"_s, {}, u"Path"_s, u"here"_s));
    QCOMPARE(shell.registry.GetKey(static_cast<Hive>(77), u"Maker"_s, {}, u"Path"_s), u"here"_s);
}

void TestRegistry::star_isTheDefaultValue()
{
    ShellFixture shell;
    QVERIFY(shell.registry.SaveKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s, u"ZipFile"_s));
    QCOMPARE(shell.store.value(Hive::ClassesRoot, u".zip"_s, u""_s), u"ZipFile"_s);
    QCOMPARE(shell.registry.GetKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s), u"ZipFile"_s);
    QVERIFY(shell.registry.DeleteKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s));
    QCOMPARE(shell.registry.GetKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s), QString());
}

void TestRegistry::delete_takesValuesAndWholeKeys()
{
    ShellFixture shell;
    CRegistry_Manipulation& registry = shell.registry;
    QVERIFY(registry.SaveSetting(u"Edit Panels"_s, u"Sort By"_s, u"2"_s));
    QVERIFY(registry.SaveSetting(u"Edit Panels"_s, u"Flip Bar"_s, u"True"_s));
    QVERIFY(registry.DeleteSetting(u"Edit Panels"_s, u"Sort By"_s));
    QCOMPARE(registry.GetSetting(u"Edit Panels"_s, u"Sort By"_s, u"0"_s), u"0"_s);
    QCOMPARE(registry.GetSetting(u"Edit Panels"_s, u"Flip Bar"_s), u"True"_s);
    QVERIFY(registry.DeleteKeyAndSubKeys(Hive::CurrentUser, u"Software\\"_s + registry.AppName()));
    QCOMPARE(registry.GetSetting(u"Edit Panels"_s, u"Flip Bar"_s), QString());
}

VT_TEST_CLASS(TestRegistry)

#include "test_registry.moc"
