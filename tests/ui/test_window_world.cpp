// The ground that every test of a window stands on.
#include "addondb/AddonDatabase.h"
#include "support/TestMain.h"
#include "ui/WindowWorld.h"

#include <QImage>
#include <QLabel>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::WindowWorld;

class TestWindowWorld : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void restart_keepsWhatWasInstalled();
    void screenshot_showsBothLooks();
};

void TestWindowWorld::restart_keepsWhatWasInstalled()
{
    WindowWorld world;
    const qint64 key = world.install(u"kestrel-repaint"_s);
    QVERIFY(key > 0);
    world.restart();
    QVERIFY(modDatabase_Addon::addon(world.database(), key));
}

void TestWindowWorld::screenshot_showsBothLooks()
{
    QLabel label(u"Vantrel"_s);
    label.setAutoFillBackground(true);
    const QPalette before = label.palette();
    const QStringList files = test::screenshot(label, u"label"_s, {320, 200});
    QCOMPARE(files.size(), 2);
    const QImage light(files[0]);
    const QImage dark(files[1]);
    QCOMPARE(test::sizeOf(files[0]), QSize(320, 200));
    QVERIFY(light.pixelColor(1, 1).lightness() > 200);
    QVERIFY(dark.pixelColor(1, 1).lightness() < 80);
    QCOMPARE(label.palette(), before);
}

VT_TEST_CLASS(TestWindowWorld)

#include "test_window_world.moc"
