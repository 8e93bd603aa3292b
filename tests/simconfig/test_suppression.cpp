#include "addondb/AddonDatabase.h"
#include "engine/ConfigDisk.h"
#include "shell/GlobalRecord.h"
#include "simconfig/StockContent.h"
#include "simconfig/Suppression.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;

class TestSuppression : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void suppression_holdsForTheFileThatWasMarked();
    void stockContent_isWhatNobodyRecorded();
};

void TestSuppression::suppression_holdsForTheFileThatWasMarked()
{
    test::ConfigDisk disk;
    const QString cfg = u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\Panel\\panel.cfg"_s;
    const QString host = u"FSX/SimObjects/Airplanes/Cub/Panel/panel.cfg"_s;
    const auto database = Connection::create(disk.gate, u"C:\\Vantrel\\Vantrel.mdb"_s).connection;
    QVERIFY(database);
    const auto mark = [&](bool on) {
        return suppression::setSuppressed(*database, disk.actions, ItemTable::Panel, cfg, on);
    };
    const auto marked = [&](const QString& path) {
        return suppression::isSuppressed(*database, disk.actions, ItemTable::Panel, path);
    };
    QVERIFY(!mark(true).ok); // no such file
    disk.write(host, "[Window00]\r\n");
    ItemDetailRecord remark;
    remark.item = cfg;
    remark.custom[3] = u"mine"_s;
    QVERIFY(modDatabase_Addon::setItemDetail(*database, ItemTable::Panel, remark).ok);
    QVERIFY(mark(true).ok);
    QVERIFY(marked(cfg) && marked(cfg.toUpper()));
    QVERIFY(!suppression::isSuppressed(*database, disk.actions, ItemTable::Sound, cfg));
    disk.write(host, "[Window00]\r\nx=1\r\n");
    QVERIFY(!marked(cfg));
    QVERIFY(mark(true).ok && marked(cfg));
    QVERIFY(mark(false).ok && !marked(cfg));
    QCOMPARE(modDatabase_Addon::itemDetail(*database, ItemTable::Panel, cfg)->custom[3], u"mine"_s);
}

void TestSuppression::stockContent_isWhatNobodyRecorded()
{
    test::ConfigDisk disk;
    GlobalRecord global;
    global.setSimulatorFolder(u"C:\\FSX\\"_s);
    const auto database = Connection::create(disk.gate, u"C:\\Vantrel\\Vantrel.mdb"_s).connection;
    QVERIFY(database);
    AddonRecord addon;
    addon.name = u"Repaint"_s;
    QVERIFY(modDatabase_Addon::createAddon(*database, addon).ok);
    const QString liner = u"C:\\FSX\\SimObjects\\Airplanes\\b737_800\\"_s;
    QList<DetailRecord> rows(1);
    rows[0].location = liner + u"panel\\"_s;
    rows[0].name = u"Panel.cfg"_s;
    QVERIFY(modDatabase_Addon::addDetails(*database, addon.key, rows).ok());
    const auto original = [&](const QString& path) {
        return stockcontent::isOriginal(database.get(), global, path);
    };
    QVERIFY(original(liner + u"aircraft.cfg"_s));
    QVERIFY(original(liner));
    QVERIFY(!original(liner + u"panel\\panel.cfg"_s));
    QVERIFY(!original(u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\aircraft.cfg"_s));
    QVERIFY(!original(u"C:\\FSX\\Gauges\\B737_800\\aircraft.cfg"_s));
}

VT_TEST_CLASS(TestSuppression)

#include "test_suppression.moc"
