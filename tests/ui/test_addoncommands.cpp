// The commands on selected add-ons, below every window: what is asked, told and left.
#include "addondb/AddonDatabase.h"
#include "shell/Settings.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"
#include "ui/CAddonPresentationManager.h"
#include "ui/WindowWorld.h"

using namespace Qt::StringLiterals;

namespace vt::test {

class TestAddonCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void oneThatFails_stopsNoOther()
    {
        WindowWorld world;
        const qint64 harbour = world.install(u"harbour-scenery"_s);
        const qint64 gauges = world.install(u"barograph-gauges"_s);
        world.prompts.expect(u"Are you sure you want to remove these addons?"_s, Button::Yes);
        world.prompts.expect(u"At least one addon was not removed properly."_s, Button::Ok);
        CAddonPresentationManager commands(*world.session);
        const AddonCommandEnd end = commands.Addons_Remove(
            {{harbour, u"Harbour"_s, {}}, {4711, u"Nobody's"_s, {}}, {gauges, u"Gauges"_s, {}}});
        QCOMPARE(end.changed, QList<qint64>({harbour, gauges}));
        QCOMPARE(world.prompts.asked[0].list,
                 QStringList({u"Harbour"_s, u"Nobody's"_s, u"Gauges"_s}));
        QCOMPARE(world.prompts.asked[0].defaultButton, Button::No);
        QVERIFY(world.prompts.asked[1].list.join(u' ').contains(u"4711"_s));
        const QStringList told = world.status.texts.filter(u"Removing "_s).filter(u" of 3..."_s);
        QCOMPARE(told,
                 QStringList({u"Primary|Removing 1 of 3..."_s,
                              u"Primary|Removing 2 of 3..."_s,
                              u"Primary|Removing 3 of 3..."_s}));
    }

    void declined_orWithoutQuestion()
    {
        WindowWorld world;
        const qint64 key = world.install(u"barograph-gauges"_s);
        CAddonPresentationManager commands(*world.session);
        world.prompts.expect(u"Are you sure you want to remove this addon?"_s, Button::No);
        QVERIFY(!commands.Addons_Remove({{key, u"Gauges"_s, {}}}).begun);
        QVERIFY(modDatabase_Addon::addon(world.database(), key));
        QVERIFY(world.context().settings.setFlag(SettingKey::RemovalConfirm, false));
        const AddonCommandEnd end = commands.Addons_Remove({{key, u"Gauges"_s, {}}});
        QVERIFY(end.good);
        QCOMPARE(world.status.texts.constLast(), u"Primary|The addon was removed."_s);
        QVERIFY(!modDatabase_Addon::addon(world.database(), key));
    }

    void validation_namesWhatIsAmiss()
    {
        WindowWorld world;
        const qint64 key = world.install(u"barograph-gauges"_s);
        CAddonPresentationManager commands(*world.session);
        QVERIFY(commands.Addons_Validate({key}).good);
        QVERIFY(QFile::remove(world.demo.simulatorHost + u"/Gauges/Turnrate.gau"_s));
        writeHostFile(world.demo.simulatorHost + u"/Gauges/Barograph.cab"_s, "other bytes");
        const AddonCommandEnd end = commands.Addons_Validate({key});
        QVERIFY(!end.good);
        QCOMPARE(end.results.count(u"Missing"), 1);
        QVERIFY(end.results.texts(u"Changed").value(0).contains(u"Barograph.cab"_s));
    }

    void reinstallation_bringsFilesBack()
    {
        WindowWorld world;
        const qint64 key = world.install(u"barograph-gauges"_s);
        const TreeSnapshot whole = hashTree(world.demo.simulatorHost);
        QVERIFY(QFile::remove(world.demo.simulatorHost + u"/Gauges/Turnrate.gau"_s));
        world.prompts.expect(u"Are you sure you want to reinstall this addon?"_s, Button::Yes);
        CAddonPresentationManager commands(*world.session);
        const AddonCommandEnd end = commands.Addons_Reinstall({key});
        QVERIFY2(end.good, qUtf8Printable(end.text));
        QCOMPARE(differences(whole, hashTree(world.demo.simulatorHost), Backups::Ignore),
                 QStringList());
    }
};

VT_TEST_CLASS(TestAddonCommands)

} // namespace vt::test

#include "test_addoncommands.moc"
