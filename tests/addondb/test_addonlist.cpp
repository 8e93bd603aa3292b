// What lists and reports show: filters, the derived status, files beside what lies on the disk.
#include "addondb/AddonColumns.h"
#include "addondb/DatabaseFixture.h"
#include "addondb/Recordset.h"
#include "platform/Hash.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::Rows;
using namespace vt::modDatabase_Addon;
using vt::test::DatabaseFixture;
using vt::test::OpenFixture;

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

private:
    std::unique_ptr<OpenFixture> m_world;

private Q_SLOTS:

    void init() { m_world = std::make_unique<OpenFixture>(); }

    /// Read in walks beside each other, each row is what it is alone; also where rows are missing.
    void manyRows_areEachAsAlone()
    {
        Connection& database = m_world->database;
        constexpr int many = 1100;
        const Result filled = database.together([&] {
            for (int i = 0; i < many; ++i) {
                QList<DetailRecord> details;
                for (int n = 0; n < i % 3; ++n)
                    details.append(DatabaseFixture::file_(u"C:\\a\\"_s, QString::number(n)));
                const AddonRecord made = m_world->addAddon(u"Addon"_s, details);
                if (const Result told =
                        setDescription(database, made.key, u"is "_s + QString::number(i));
                    !told)
                    return told;
            }
            return Result::success();
        });
        QVERIFY2(filled, qPrintable(filled.text));
        Recordset texts(database, Table::Addon_Description);
        QVERIFY(texts.seek({qint64(500)}) && texts.deleteRow());
        const auto rows = addonRows(database, {});
        QCOMPARE(rows->size(), many);
        for (const AddonRow& row : *rows) {
            const auto alone = addonRow(database, row.addon.key);
            QCOMPARE(row.files, alone->files);
            QCOMPARE(row.addon.description, alone->addon.description);
        }
    }

    void rows_passTheFilter()
    {
        Connection& database = m_world->database;
        const QString folder = u"C:\\a\\"_s;
        const AddonRecord jet = m_world->addAddon(
            u"Jet"_s,
            {DatabaseFixture::file_(folder, u"1"_s), DatabaseFixture::file_(folder, u"2"_s)});
        QVERIFY(setDescription(database, jet.key, u"flies über all"_s));
        const AddonRecord town = m_world->addAddon(u"Town"_s);
        QVERIFY(setCategories(database, town.key, Category::Scenery));
        QVERIFY(setStatus(database, town.key, InstallationStatus::Imported));
        const AddonRecord stored = m_world->addAddon(u"Stored"_s);
        QVERIFY(setStatus(database, stored.key, InstallationStatus::FileCabinet));

        using By = StatusFilter;
        const Rows<By, QString, QString, QStringList> rows = {
            {"all", By::All, {}, {}, {u"Jet"_s, u"Town"_s, u"Stored"_s}},
            {"installed or imported", By::Installed, {}, {}, {u"Jet"_s, u"Town"_s}},
            {"cabinet", By::FileCabinet, {}, {}, {u"Stored"_s}},
            {"removed are in the history", By::Removed, {}, {}, {}},
            {"category", By::All, u"Scenery"_s, {}, {u"Town"_s}},
            {"search in name", By::All, {}, u"TOW"_s, {u"Town"_s}},
            {"search in description", By::All, {}, u"ÜBER"_s, {u"Jet"_s}},
            {"search for nothing that is there", By::All, {}, u"boat"_s, {}},
        };
        for (const auto& [status, category, search, names] : rows) {
            std::optional<Category> wanted;
            if (!category.isEmpty())
                wanted = categoryOfWord(category);
            const auto found = addonRows(database, {status, wanted, search, {}});
            QCOMPARE(namesOf(found), names);
            for (const AddonRow& row : *found)
                QCOMPARE(row.files, row.addon.key == jet.key ? 2 : 0);

            SilentStatus silent;
            const auto shown = addonListRows(database, silent, {status, wanted, search, {}});
            QCOMPARE(shown->size(), found->size());
            for (qsizetype i = 0; i < shown->size(); ++i) {
                const AddonListRow& row = (*shown)[i];
                QCOMPARE(row.text(AddonColumn::AddonName, i), names[i]);
                QCOMPARE(row.text(AddonColumn::Order, i), QString::number(i + 1));
                QCOMPARE(row.text(AddonColumn::DateInstalled, i), u"2024-05-06 07:08"_s);
                QCOMPARE(row.text(AddonColumn::DateRemoved, i), QString());
                QCOMPARE(row.text(AddonColumn::Rating, i), u"(unrated)"_s);
                QCOMPARE(row.text(AddonColumn::Origin, i),
                         names[i] == u"Town"     ? u"Imported"_s
                         : names[i] == u"Stored" ? u"File Cabinet"_s
                                                 : u"Installed"_s);
                QCOMPARE(row.key(AddonColumn::Files, i).toLongLong(), (*found)[i].files);
                QCOMPARE(row.icon(), names[i] == u"Stored" ? AddonIcon::TrashCan : AddonIcon::Own);
            }
        }
    }

    void history_statusIsDerived()
    {
        m_world->addAddon(u"Here"_s);
        AddonRecord again = m_world->addAddon(u"Again"_s);
        const AddonRecord stored = m_world->addAddon(u"Stored"_s);
        // Removed and installed anew under its key; moved to the File Cabinet.
        QVERIFY(setDateUninstalled(
            m_world->database, again.key, again.dateInstalled, again.dateInstalled));
        QVERIFY(deleteMaster(m_world->database, again.key));
        QVERIFY(deleteDescription(m_world->database, again.key));
        again.dateInstalled = again.dateInstalled.addYears(1);
        QVERIFY(createAddon(m_world->database, again));
        QVERIFY(setDateUninstalled(
            m_world->database, stored.key, stored.dateInstalled, stored.dateInstalled));
        QVERIFY(setStatus(m_world->database, stored.key, InstallationStatus::FileCabinet));

        const auto words = [&](const ListFilter& filter) {
            QStringList words;
            const auto rows = historyRows(m_world->database, filter);
            for (const HistoryRecord& row : *rows)
                words += row.addon.name + u' ' + statusWord(row.addon.status);
            return words;
        };
        QCOMPARE(words({}),
                 u"Here installed|Again removed|Again installed|Stored cabinet"_s.split(u'|'));
        QCOMPARE(words({StatusFilter::Removed, {}, {}, {}}), QStringList{u"Again removed"_s});
        QCOMPARE(words({StatusFilter::All, {}, {}, again.dateInstalled}),
                 QStringList{u"Again installed"_s});
    }

    void items_areComparedWithTheDisk()
    {
        const AddonRecord addon = m_world->addAddon(u"A"_s);
        QList<DetailRecord> details;
        QList<Fingerprint> checks;
        for (const QString& name :
             u"whole|touched|edited|grown|gone|unchecked|folder"_s.split(u'|')) {
            m_world->put("12345", name);
            details.push_back(DatabaseFixture::file_(m_world->folder, name.toUpper()));
            const auto print = fingerprint(m_world->files, m_world->folder + name);
            checks.push_back(name == u"unchecked"_s ? Fingerprint() : *print);
        }
        checks[1].modifiedNs -= 1'000'000'000; // another time, the same bytes
        QVERIFY(addDetails(m_world->database, addon.key, details, checks).ok());
        QVERIFY(addOriginals(m_world->database, {{details[1].key, addon.key, u"x"_s}}));
        m_world->put("54321", u"edited"_s);
        checks[2].modifiedNs -= 1'000'000'000;
        QVERIFY(setCheck(m_world->database, details[2].key, checks[2]));
        m_world->put("123456", u"grown"_s);
        QVERIFY(QFile::remove(m_world->host(u"gone"_s)));
        QVERIFY(QFile::remove(m_world->host(u"folder"_s)));
        m_world->makeFolder(u"Vantrel/folder"_s);
        m_world->files.newOperation();

        const auto items = AddonItems::load(m_world->database, addon.key);
        QVERIFY(items.ok());
        QStringList states;
        for (const DetailRecord& detail : items->details())
            states += itemStateWord(items->state(m_world->database, m_world->gate, detail));
        QCOMPARE(states, u"ok|ok|changed|changed|missing|ok|missing"_s.split(u'|'));
        QVERIFY(!items->replacedOriginal(items->details()[0]));
        QVERIFY(items->replacedOriginal(items->details()[1]));
    }

    void items_underALaterAddonAreJudgedByIt()
    {
        const auto install = [&](const QString& name, const QByteArray& bytes) {
            const AddonRecord addon = m_world->addAddon(name);
            m_world->put(bytes, u"shared.fx"_s);
            QList<DetailRecord> details{DatabaseFixture::file_(m_world->folder, u"shared.fx"_s)};
            const auto print = fingerprint(m_world->files, m_world->folder + u"shared.fx"_s);
            [&] { QVERIFY(addDetails(m_world->database, addon.key, details, {*print}).ok()); }();
            return addon.key;
        };
        const qint64 lower = install(u"Lower"_s, "first version");
        const qint64 upper = install(u"Upper"_s, "second version!");
        const auto stateOf = [&](qint64 key) {
            const auto items = AddonItems::load(m_world->database, key);
            const DetailRecord detail = items->details().front();
            return itemStateWord(items->state(m_world->database, m_world->gate, detail)) + u' ' +
                   QString::number(items->coveredBy(detail));
        };
        QCOMPARE(stateOf(lower), u"ok "_s + QString::number(upper));
        QCOMPARE(stateOf(upper), u"ok 0"_s);
        m_world->put("first version", u"shared.fx"_s); // somebody put the older one back
        QCOMPARE(stateOf(lower), u"changed "_s + QString::number(upper));
        QCOMPARE(stateOf(upper), u"changed 0"_s);
        QVERIFY(setStatus(m_world->database, upper, InstallationStatus::FileCabinet));
        QCOMPARE(stateOf(lower), u"ok 0"_s);
    }

    void items_configurationFileAsLastWrittenIsOk()
    {
        const AddonRecord addon = m_world->addAddon(u"A"_s);
        m_world->put("[fltsim.0]\r\n", u"aircraft.cfg"_s);
        QList<DetailRecord> details{DatabaseFixture::file_(m_world->folder, u"aircraft.cfg"_s)};
        const QString path = m_world->folder + u"aircraft.cfg"_s;
        QVERIFY(
            addDetails(m_world->database, addon.key, details, {*fingerprint(m_world->files, path)})
                .ok());
        m_world->put("[fltsim.0]\r\n[fltsim.1]\r\n", u"aircraft.cfg"_s);
        const auto state = [&] {
            const auto items = AddonItems::load(m_world->database, addon.key);
            return itemStateWord(
                items->state(m_world->database, m_world->gate, items->details().front()));
        };
        QCOMPARE(state(), u"changed"_s);
        const Fingerprint written = *fingerprint(m_world->files, path);
        QVERIFY(
            setConfigBase(m_world->database,
                          {*m_world->gate.place(path), u"kept"_s, written.size, written.xxh3, 1}));
        QCOMPARE(state(), u"ok"_s);
        m_world->put("[fltsim.0]\r\n[fltsim.9]\r\n", u"aircraft.cfg"_s);
        QCOMPARE(state(), u"changed"_s);
    }
};

VT_TEST_CLASS(TestAddonList)
#include "test_addonlist.moc"
