// Pictures of strangers become small JPEG files in a helper program, or a clear refusal; whatever
// becomes of that program, this one goes on.
#include "addondb/AddonDatabase.h"
#include "addondb/Pictures.h"
#include "platform/GuardedChild.h"
#include "shell/ShellFixture.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QtEndian>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

/// A bitmap file of 24 bits a point that claims a size and holds as much of it as \a bytes.
QByteArray bitmap(qint32 width, qint32 height, qsizetype bytes)
{
    QByteArray out(54, 0);
    const auto put = [&out](qsizetype at, auto value) { qToLittleEndian(value, out.data() + at); };
    out[0] = 'B';
    out[1] = 'M';
    put(2, quint32(54 + bytes));
    put(10, quint32(54));
    put(14, quint32(40));
    put(18, width);
    put(22, height);
    put(26, quint16(1));
    put(28, quint16(24));
    for (qsizetype i = 0; i < bytes; ++i)
        out += char(i * 7);
    return out;
}

/// Width and height that a JPEG file tells; empty for none.
QSize jpegSize(const QByteArray& jpeg)
{
    for (qsizetype at = 2; jpeg.startsWith("\xFF\xD8") && at + 9 < jpeg.size();) {
        const auto* marker = reinterpret_cast<const uchar*>(jpeg.constData()) + at;
        if (marker[1] >= 0xC0 && marker[1] <= 0xC2)
            return {qFromBigEndian<quint16>(marker + 7), qFromBigEndian<quint16>(marker + 5)};
        at += 2 + qFromBigEndian<quint16>(marker + 2);
    }
    return {};
}

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void preview_fitsTheWidth_data()
    {
        QTest::addColumn<QSize>("has");
        QTest::addColumn<QSize>("gets");
        QTest::newRow("wide") << QSize(640, 480) << QSize(320, 240);
        QTest::newRow("small") << QSize(40, 30) << QSize(40, 30);
        QTest::newRow("a line") << QSize(6400, 1) << QSize(320, 1);
        QTest::newRow("tall") << QSize(4, 5120) << QSize(1, 1280);
    }

    void preview_fitsTheWidth()
    {
        QFETCH(const QSize, has);
        const qsizetype row = (has.width() * 3 + 3) / 4 * 4;
        const auto jpeg =
            pictures::preview(bitmap(has.width(), has.height(), row * has.height()), u"a.bmp"_s);
        QVERIFY2(jpeg.ok(), qPrintable(jpeg.text));
        QTEST(jpegSize(*jpeg), "gets");
    }

    void preview_refusesWhatIsNone_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("told");
        QTest::newRow("claims too much") << bitmap(60'000, 60'000, 0) << u"60,000 x 60,000"_s;
        QTest::newRow("claims less than nothing") << bitmap(-5, 5, 0) << u"cannot be used"_s;
        QTest::newRow("cut off") << bitmap(640, 480, 1000).first(30) << u"cannot be used"_s;
        QTest::newRow("text") << QByteArray("no picture at all") << u"no picture"_s;
        QTest::newRow("nothing") << QByteArray() << u"no picture"_s;
        QTest::newRow("begins like one")
            << QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16) << u"damaged"_s;
    }

    void preview_refusesWhatIsNone()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QString, told);
        const auto jpeg = pictures::preview(bytes, u"shot.bmp"_s);
        QVERIFY(!jpeg);
        QVERIFY2(jpeg.text.startsWith(u"The picture 'shot.bmp' cannot be used: "_s) &&
                     jpeg.text.contains(told),
                 qPrintable(jpeg.text));
    }

    void child_thatGoesWrong_endsInAResult_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("told");
        QTest::newRow("endless") << u"while :; do :; done"_s << u"took too long"_s;
        QTest::newRow("floods") << u"cat /dev/zero"_s << u"more than was expected"_s;
        QTest::newRow("falls") << u"kill -SEGV $$"_s << u"more time or memory"_s;
        QTest::newRow("says why") << u"echo its reason >&2; exit 1"_s << u"its reason"_s;
        QTest::newRow("does not listen") << u"exec <&-; exit 3"_s << u"cannot be understood"_s;
    }

    void child_thatGoesWrong_endsInAResult()
    {
        QFETCH(const QString, script);
        QFETCH(const QString, told);
        QElapsedTimer timer;
        timer.start();
        const auto done =
            runGuarded({u"/bin/sh"_s, {u"-c"_s, script}, QByteArray(1 << 20, 'x'), 1500, 1 << 20});
        QVERIFY(!done);
        QVERIFY2(done.text.contains(told), qPrintable(done.text));
        QVERIFY(timer.elapsed() < 15'000);
    }

    void addonPicture_isStoredReplacedAndDeleted()
    {
        ShellFixture world;
        world.makeFolder(u"Vantrel"_s);
        OpenedDatabase opened =
            Connection::create(world.gate, world.global.programFolder + u"Vantrel.mdb"_s);
        QVERIFY(opened.connection);
        Connection& database = *opened.connection;
        const QString stored = u"Vantrel/Images/Addons/7/Picture.jpg"_s;
        world.write(u"shot.bmp"_s, bitmap(400, 100, 120'000));
        QVERIFY(
            pictures::storeAddonPicture(world.context, database, 7, QString(u"C:\\shot.bmp"_s)));
        QCOMPARE(jpegSize(world.read(stored)), QSize(320, 80));
        QVERIFY(modDatabase_Addon::picturesOf(database, 7)->first().primary);
        const Result refused =
            pictures::storeAddonPicture(world.context, database, 7, "none", u"x.gif"_s);
        QCOMPARE(refused.text,
                 u"Could not setup a picture for the addon. The picture 'x.gif' cannot be used: "
                 u"it is no picture of a known form."_s);
        QCOMPARE(jpegSize(world.read(stored)), QSize(320, 80));
        QVERIFY(pictures::storeAddonPicture(
            world.context, database, 7, bitmap(20, 10, 600), u"y.bmp"_s));
        QCOMPARE(jpegSize(world.read(stored)), QSize(20, 10));
        QCOMPARE(modDatabase_Addon::picturesOf(database, 7)->size(), 1);
        QVERIFY(pictures::clearAddonPicture(world.context, database, 7));
        QVERIFY(!world.exists(u"Vantrel/Images/Addons/7"_s));
        QVERIFY(modDatabase_Addon::picturesOf(database, 7)->isEmpty());

        world.global.setSimulatorFolder(u"C:\\sim\\"_s);
        const QString cfg = u"C:\\sim\\SimObjects\\Airplanes\\Heron\\aircraft.cfg"_s;
        QVERIFY(pictures::storeItemThumbnail(world.context,
                                             database,
                                             ItemTable::Aircraft,
                                             cfg,
                                             u"fltsim.0"_s,
                                             bitmap(20, 10, 600),
                                             u"y.bmp"_s));
        QVERIFY(world.files.isFile(pictures::itemThumbnail(
            world.global, u"c:\\SIM\\SimObjects\\Airplanes\\Heron\\x.cfg"_s, u"fltsim.0"_s)));
        QVERIFY(modDatabase_Addon::itemDetail(database, ItemTable::Aircraft, cfg, u"fltsim.0"_s));
        QVERIFY(pictures::clearItemThumbnail(world.context, cfg, u"fltsim.0"_s));
        QVERIFY(!world.exists(u"Vantrel/Images/Items/SimObjects/Airplanes/Heron/fltsim.0"_s));
    }
};

VT_TEST_CLASS(TestPictures)
#include "test_pictures.moc"
