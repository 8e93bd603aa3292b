#include "addondb/AddonDatabase.h"
#include "engine/ConfigDisk.h"
#include "simconfig/Suppression.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;

class TestSuppression : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void suppression_holdsForTheFileThatWasMarked();
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

VT_TEST_CLASS(TestSuppression)

#include "test_suppression.moc"
