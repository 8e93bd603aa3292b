// Add-ons' lines go into the source files and come out again, exactly.
#include "platform/AnsiCodec.h"
#include "support/Rows.h"
#include "support/TestMain.h"
#include "traffic/CAIAircraft.h"
#include "traffic/TrafficSources.h"

#include <QRandomGenerator>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace vt;

namespace {

using K = TrafficKind;

/// A few aircraft, airports and plans that overlap with those of other add-ons.
TrafficSet randomSet(QRandomGenerator& random)
{
    TrafficSet set;
    const int count = random.bounded(1, 6);
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(random.bounded(1, 9));
        const QByteArray title = QByteArray::number(random.bounded(12));
        set.lines[int(K::Aircraft)] += "AC#" + number + ",450,\"Type " + title + "\"";
        set.lines[int(K::Airports)] += "K" + QByteArray::number(random.bounded(100, 120));
        set.lines[int(K::FlightPlans)] += "AC#" + number + ",N" + title + ",50%,WEEK,IFR";
        if (random.bounded(4) == 0)
            set.lines[int(K::FlightPlans)] += "// prose that is no plan";
    }
    return set;
}

QByteArray randomBase(QRandomGenerator& random, const QByteArray& beginning)
{
    QByteArray out;
    const int count = random.bounded(4);
    for (int i = 0; i < count; ++i) {
        out += beginning.isEmpty()
                   ? "KSE" + QByteArray::number(i)
                   : beginning + QByteArray::number(random.bounded(1, 9)) + ",own,5%,WEEK,IFR";
        out += random.bounded(2) ? "\r\n" : "\n";
    }
    if (random.bounded(2))
        out += "; \xe9 last without an end";
    return out;
}

/// As the next run of the program would find it: the record goes through its file.
void throughDisk(TrafficSources& sources)
{
    for (const K kind : trafficKinds)
        sources.files[int(kind)] = SourceLines::ofBytes(sources.files[int(kind)].joined());
    sources.record = TrafficRecord::ofBytes(sources.record.bytes());
}

} // namespace

class TestMerge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anyOrder_endsAtTheBeginning();
    void numbers_followTheirAircraft();
    void usersEdits_stay();
    void lines_keepTheirEnds();
    void record_numbersItsLines_andReadsOlderOnes();
};

void TestMerge::record_numbersItsLines_andReadsOlderOnes()
{
    const QByteArray older = "[12]\r\nName=A\r\nAirports=KSEA\r\nFlightPlans=AC#1,N1,5%\r\n"
                             "FlightPlans=AC#1,N2=3,5%\r\n";
    const QByteArray now = TrafficRecord::ofBytes(older).bytes();
    QVERIFY2(now.endsWith("[12]\r\nName=A\r\nAirports1=KSEA\r\nFlightPlans1=AC#1,N1,5%\r\n"
                          "FlightPlans2=AC#1,N2=3,5%\r\n"),
             now.constData());
    QCOMPARE(TrafficRecord::ofBytes(now).bytes(), now);
}

void TestMerge::anyOrder_endsAtTheBeginning()
{
    const AnsiCodec ansi;
    for (quint32 seed = 1; seed <= 300; ++seed) {
        QRandomGenerator random(seed);
        TrafficSources sources(ansi);
        QByteArray before[trafficKindCount];
        for (const K kind : trafficKinds) {
            before[int(kind)] = randomBase(random, kind == K::Airports ? "" : "AC#");
            sources.files[int(kind)] = SourceLines::ofBytes(before[int(kind)]);
        }
        QList<qint64> installed;
        for (qint64 key = 1; key <= 6; ++key) {
            sources.add(key, "Pack \xe9", {randomSet(random), randomSet(random)});
            installed.append(key);
            throughDisk(sources);
            if (random.bounded(3) == 0)
                sources.remove(installed.takeAt(random.bounded(installed.size())));
        }
        // Every plan that is there has an aircraft of its number, unless it is the user's own.
        QSet<qint64> numbers;
        for (const QByteArray& line : sources.files[int(K::Aircraft)].texts())
            numbers.insert(CAIAircraft::numberOf(ansi.decode(line)).value_or(-1));
        for (const TrafficRecord::Addon& addon : sources.record.addons) {
            for (const QByteArray& line : addon.lines[int(K::FlightPlans)])
                QVERIFY(numbers.contains(*CAIAircraft::numberOf(ansi.decode(line))));
        }
        std::shuffle(installed.begin(), installed.end(), random);
        for (const qint64 key : std::as_const(installed)) {
            throughDisk(sources);
            sources.remove(key);
        }
        for (const K kind : trafficKinds)
            QVERIFY2(sources.files[int(kind)].joined() == before[int(kind)],
                     qPrintable(u"seed %1, %2"_s.arg(seed).arg(trafficBaseName(kind))));
        QVERIFY(sources.record.bytes().isEmpty());
    }
}

void TestMerge::numbers_followTheirAircraft()
{
    const AnsiCodec ansi;
    TrafficSources sources(ansi);
    sources.files[int(K::Aircraft)] =
        SourceLines::ofBytes("AC#1,450,\"Mine\"\nAC#4,300,\"Shared\"\n");
    TrafficSet set;
    set.lines[int(K::Aircraft)] = {
        "AC#1,450,\"Theirs\"", "AC#2,250,\"shared\"", "AC#3,99,\"New\"", "not one"};
    set.lines[int(K::FlightPlans)] = {"AC#1,N1,5%,WEEK,IFR",
                                      "ac#2,N2,5%,WEEK,IFR",
                                      "AC#3,N3,5%,WEEK,IFR",
                                      "AC#1,N4,5%,WEEK",
                                      "AC#9,N5,5%,WEEK,VFR"};
    const TrafficSources::Change change = sources.add(1, "Pack", {set});
    QCOMPARE(sources.files[int(K::Aircraft)].joined(),
             "AC#1,450,\"Mine\"\nAC#4,300,\"Shared\"\nAC#5,450,\"Theirs\"\nAC#3,99,\"New\"\n"_ba);
    QCOMPARE(sources.files[int(K::FlightPlans)].joined(),
             "AC#5,N1,5%,WEEK,IFR\r\nac#4,N2,5%,WEEK,IFR\r\nAC#3,N3,5%,WEEK,IFR\r\n"
             "AC#9,N5,5%,WEEK,VFR\r\n"_ba);
    QCOMPARE(change.remarks,
             (QStringList{u"'Theirs' became AC#5, because AC#1 is another aircraft already."_s}));
    QVERIFY(sources.add(2, "Same", {set}).isEmpty());
    sources.remove(1);
    QVERIFY(sources.remove(7).isEmpty());
    QVERIFY(sources.files[int(K::FlightPlans)].joined().contains("AC#5,N1")); // the other's too
}

void TestMerge::usersEdits_stay()
{
    const AnsiCodec ansi;
    TrafficSources sources(ansi);
    sources.files[int(K::Airports)] = SourceLines::ofBytes("KAAA");
    TrafficSet set;
    set.lines[int(K::Airports)] = {"KBBB", "KCCC"};
    sources.add(1, "Pack", {set});
    QCOMPARE(sources.files[int(K::Airports)].joined(), "KAAA\r\nKBBB\r\nKCCC\r\n"_ba);
    sources.files[int(K::Airports)] =
        SourceLines::ofBytes("; mine\r\nKAAA\r\nKCCC\r\nKDDD\r\nKBBB \r\n");
    sources.remove(1);
    QCOMPARE(sources.files[int(K::Airports)].joined(), "; mine\r\nKAAA\r\nKDDD\r\nKBBB \r\n"_ba);
}

void TestMerge::lines_keepTheirEnds()
{
    for (const QByteArray& bytes :
         {""_ba, "a"_ba, "a\n\nb\r\n"_ba, "\r\r\n\r"_ba, "a\r\nb\xff\nc"_ba, "\n"_ba})
        QCOMPARE(SourceLines::ofBytes(bytes).joined(), bytes);
}

VT_TEST_CLASS(TestMerge)
#include "test_merge.moc"
