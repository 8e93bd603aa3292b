// What is read from aircraft files on their way in.
#include "install/AircraftFacts.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace vt::test {

class TestFacts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void facts_areReadBetweenProse();
    void facts_giveAFolderName_data();
    void facts_giveAFolderName();
};

void TestFacts::facts_areReadBetweenProse()
{
    const AircraftFacts facts = aircraftFacts(
        u"Copy = paste this:\r\n[fltsim.X]  // here\n\ttitle\t=\tIntl / HS-TBA ; best\n"
        u"sim=plane // same\ntexture= Landor/G-CIVB\nui_variation=\"Two, tone\"\n"
        u"title=second one is ignored\n[General]\ncategory = Helicopter\n[fltsim]\ntitle=no\n");
    QCOMPARE(facts.sections.size(), 1);
    QCOMPARE(facts.sections.first().section, u"fltsim.X"_s);
    QCOMPARE(facts.sections.first().title, u"Intl / HS-TBA"_s);
    QCOMPARE(facts.sections.first().sim, u"plane"_s);
    QCOMPARE(facts.sections.first().texture, u"Landor\\G-CIVB"_s);
    QCOMPARE(facts.sections.first().variation, u"Two, tone"_s);
    QCOMPARE(facts.category, u"Helicopter"_s);
}

void TestFacts::facts_giveAFolderName_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::newRow("one variation")
        << u"[fltsim.0]\ntitle=Carrier: Red\nui_type=C\n"_s << u"Carrier Red"_s;
    QTest::newRow("several") << u"[fltsim.0]\ntitle=A\nui_manufacturer=Northwind\nui_type=C2\n"
                                u"[fltsim.1]\ntitle=B\n"_s
                             << u"Northwind C2"_s;
    QTest::newRow("maker in the type")
        << u"[fltsim.0]\ntitle=A\nui_manufacturer=Northwind\nui_type=northwind C2\n[fltsim.1]\n"_s
        << u"northwind C2"_s;
    QTest::newRow("slashes in the title")
        << u"[fltsim.0]\ntitle=Air//Sea // comment\n"_s << u"AirSea"_s;
    QTest::newRow("nothing told") << u"[fltsim.0]\nsim=a\n"_s << QString();
}

void TestFacts::facts_giveAFolderName()
{
    QFETCH(QString, text);
    QTEST(aircraftFacts(text).folderName(), "name");
}

} // namespace vt::test

using vt::test::TestFacts;
VT_TEST_CLASS(TestFacts)

#include "test_facts.moc"
