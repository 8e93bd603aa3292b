// What lists and reports show: filters, the derived status, files beside what lies on the disk.
#include "addondb/AddonList.h"
#include "addondb/DatabaseFixture.h"
#include "platform/Hash.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modDatabase_Addon;
using vt::test::DatabaseFixture;

namespace {

QStringList namesOf(const ResultOf<QList<AddonRow>>& rows)
{
    QStringList names;
    for (const AddonRow& row : *rows)
        names.push_back(row.addon.name);
    return names;
}

} // namespace

class TestAddonList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rows_passTheFilter_data();
    void rows_passTheFilter();
    void history_statusIsDerived();
    void items_areComparedWithTheDisk();
    void items_underALaterAddonAreJudgedByIt();
    void items_configurationFileAsLastWrittenIsOk();
};

void TestAddonList::rows_passTheFilter_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("category");
    QTest::addColumn<QString>("search");
    QTest::addColumn<QStringList>("names");

    const int all = int(StatusFilter::All);
    QTest::newRow("all") << all << QString() << QString()
                         << QStringList{u"Jet"_s, u"Town"_s, u"Stored"_s};
    QTest::newRow("installed or imported") << int(StatusFilter::Installed) << QString() << QString()
                                           << QStringList{u"Jet"_s, u"Town"_s};
    QTest::newRow("cabinet") << int(StatusFilter::FileCabinet) << QString() << QString()
                             << QStringList{u"Stored"_s};
    QTest::newRow("removed are in the history")
        << int(StatusFilter::Removed) << QString() << QString() << QStringList{};
    QTest::newRow("category") << all << u"Scenery"_s << QString() << QStringList{u"Town"_s};
    QTest::newRow("search in name") << all << QString() << u"TOW"_s << QStringList{u"Town"_s};
    QTest::newRow("search in description")
        << all << QString() << u"ÜBER"_s << QStringList{u"Jet"_s};
    QTest::newRow("search for nothing that is there")
        << all << QString() << u"boat"_s << QStringList{};
}

void TestAddonList::rows_passTheFilter()
{
    QFETCH(const int, status);
    QFETCH(const QString, category);
    QFETCH(const QString, search);
    QFETCH(const QStringList, names);
    DatabaseFixture fixture;
    auto database = fixture.create();
    const AddonRecord jet = fixture.addAddon(*database,
                                             u"Jet"_s,
                                             {DatabaseFixture::file_(u"C:\\a\\"_s, u"1"_s),
                                              DatabaseFixture::file_(u"C:\\a\\"_s, u"2"_s)});
    QVERIFY(setDescription(*database, jet.key, u"flies über all"_s));
    const AddonRecord town = fixture.addAddon(*database, u"Town"_s);
    QVERIFY(setCategories(*database, town.key, Category::Scenery));
    QVERIFY(setStatus(*database, town.key, InstallationStatus::Imported));
    const AddonRecord stored = fixture.addAddon(*database, u"Stored"_s);
    QVERIFY(setStatus(*database, stored.key, InstallationStatus::FileCabinet));

    const auto rows = addonRows(*database,
                                {StatusFilter(status),
                                 category.isEmpty() ? std::nullopt : categoryOfWord(category),
                                 search,
                                 {}});
    QCOMPARE(namesOf(rows), names);
    for (const AddonRow& row : *rows)
        QCOMPARE(row.files, row.addon.key == jet.key ? 2 : 0);
}

void TestAddonList::history_statusIsDerived()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    fixture.addAddon(*database, u"Here"_s);
    AddonRecord again = fixture.addAddon(*database, u"Again"_s);
    const AddonRecord stored = fixture.addAddon(*database, u"Stored"_s);
    // Removed and installed anew under its key; moved to the File Cabinet.
    QVERIFY(setDateUninstalled(*database, again.key, again.dateInstalled, again.dateInstalled));
    QVERIFY(deleteMaster(*database, again.key));
    QVERIFY(deleteDescription(*database, again.key));
    again.dateInstalled = again.dateInstalled.addYears(1);
    QVERIFY(createAddon(*database, again));
    QVERIFY(setDateUninstalled(*database, stored.key, stored.dateInstalled, stored.dateInstalled));
    QVERIFY(setStatus(*database, stored.key, InstallationStatus::FileCabinet));

    const auto words = [&](const ListFilter& filter) {
        QStringList words;
        const auto rows = historyRows(*database, filter);
        for (const HistoryRecord& row : *rows)
            words += row.addon.name + u' ' + statusWord(row.addon.status);
        return words;
    };
    QCOMPARE(
        words({}),
        (QStringList{
            u"Here installed"_s, u"Again removed"_s, u"Again installed"_s, u"Stored cabinet"_s}));
    QCOMPARE(words({StatusFilter::Removed, {}, {}, {}}), QStringList{u"Again removed"_s});
    QCOMPARE(words({StatusFilter::All, {}, {}, again.dateInstalled}),
             QStringList{u"Again installed"_s});
}

void TestAddonList::items_areComparedWithTheDisk()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const AddonRecord addon = fixture.addAddon(*database, u"A"_s);
    QList<DetailRecord> details;
    QList<Fingerprint> checks;
    for (const QString& name : {u"whole"_s,
                                u"touched"_s,
                                u"edited"_s,
                                u"grown"_s,
                                u"gone"_s,
                                u"unchecked"_s,
                                u"folder"_s}) {
        fixture.write("12345", name);
        details.push_back(DatabaseFixture::file_(fixture.folder, name.toUpper()));
        const auto print = fingerprint(fixture.files, fixture.folder + name);
        checks.push_back(name == u"unchecked"_s ? Fingerprint() : *print);
    }
    checks[1].modifiedNs -= 1'000'000'000; // another time, the same bytes
    QVERIFY(addDetails(*database, addon.key, details, checks).ok());
    QVERIFY(addOriginals(*database, {{details[1].key, addon.key, u"x"_s, 1, {}}}));
    fixture.write("54321", u"edited"_s);
    checks[2].modifiedNs -= 1'000'000'000;
    QVERIFY(setCheck(*database, details[2].key, checks[2]));
    fixture.write("123456", u"grown"_s);
    QVERIFY(QFile::remove(fixture.host(u"gone"_s)));
    QVERIFY(QFile::remove(fixture.host(u"folder"_s)));
    QVERIFY(QDir(fixture.disk.path()).mkdir(u"folder"_s));
    fixture.files.newOperation();

    const auto items = AddonItems::load(*database, addon.key);
    QVERIFY(items.ok());
    QStringList states;
    for (const DetailRecord& detail : items->details())
        states += itemStateWord(items->state(*database, fixture.gate, detail));
    QCOMPARE(
        states,
        (QStringList{
            u"ok"_s, u"ok"_s, u"changed"_s, u"changed"_s, u"missing"_s, u"ok"_s, u"missing"_s}));
    QVERIFY(!items->replacedOriginal(items->details()[0]));
    QVERIFY(items->replacedOriginal(items->details()[1]));
}

void TestAddonList::items_underALaterAddonAreJudgedByIt()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const auto install = [&](const QString& name, const QByteArray& bytes) {
        const AddonRecord addon = fixture.addAddon(*database, name);
        fixture.write(bytes, u"shared.fx"_s);
        QList<DetailRecord> details{DatabaseFixture::file_(fixture.folder, u"shared.fx"_s)};
        const auto print = fingerprint(fixture.files, fixture.folder + u"shared.fx"_s);
        [&] { QVERIFY(addDetails(*database, addon.key, details, {*print}).ok()); }();
        return addon.key;
    };
    const qint64 lower = install(u"Lower"_s, "first version");
    const qint64 upper = install(u"Upper"_s, "second version!");
    const auto stateOf = [&](qint64 key) {
        const auto items = AddonItems::load(*database, key);
        const DetailRecord detail = items->details().front();
        return itemStateWord(items->state(*database, fixture.gate, detail)) + u' ' +
               QString::number(items->coveredBy(detail));
    };
    QCOMPARE(stateOf(lower), u"ok "_s + QString::number(upper));
    QCOMPARE(stateOf(upper), u"ok 0"_s);
    fixture.write("first version", u"shared.fx"_s); // somebody put the older one back
    QCOMPARE(stateOf(lower), u"changed "_s + QString::number(upper));
    QCOMPARE(stateOf(upper), u"changed 0"_s);
    QVERIFY(setStatus(*database, upper, InstallationStatus::FileCabinet));
    QCOMPARE(stateOf(lower), u"ok 0"_s);
}

void TestAddonList::items_configurationFileAsLastWrittenIsOk()
{
    DatabaseFixture fixture;
    auto database = fixture.create();
    const AddonRecord addon = fixture.addAddon(*database, u"A"_s);
    fixture.write("[fltsim.0]\r\n", u"aircraft.cfg"_s);
    QList<DetailRecord> details{DatabaseFixture::file_(fixture.folder, u"aircraft.cfg"_s)};
    const QString path = fixture.folder + u"aircraft.cfg"_s;
    QVERIFY(addDetails(*database, addon.key, details, {*fingerprint(fixture.files, path)}).ok());
    fixture.write("[fltsim.0]\r\n[fltsim.1]\r\n", u"aircraft.cfg"_s);
    const auto state = [&] {
        const auto items = AddonItems::load(*database, addon.key);
        return itemStateWord(items->state(*database, fixture.gate, items->details().front()));
    };
    QCOMPARE(state(), u"changed"_s);
    const Fingerprint written = *fingerprint(fixture.files, path);
    QVERIFY(setConfigBase(*database,
                          {*fixture.gate.place(path), u"kept"_s, written.size, written.xxh3, 1}));
    QCOMPARE(state(), u"ok"_s);
    fixture.write("[fltsim.0]\r\n[fltsim.9]\r\n", u"aircraft.cfg"_s);
    QCOMPARE(state(), u"changed"_s);
}

VT_TEST_CLASS(TestAddonList)
#include "test_addonlist.moc"
