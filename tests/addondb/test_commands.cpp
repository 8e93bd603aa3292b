// list, show, owner, validate, history and database check of the real program, on a database that
// was filled directly.
#include "addondb/AddonDatabase.h"
#include "cli/CliFixture.h"
#include "platform/Hash.h"
#include "support/Rows.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::CliFixture;
using vt::test::Ran;
using vt::test::Rows;

namespace {

/// Two add-ons over files that really lie below "sim".
struct FilledWorld : CliFixture
{
    FilledWorld() : files(drives), gate(files)
    {
        makeSimulator();
        write(u"home/keep"_s);
        gate.setRoot(RootId::Program, windows(u"home"_s));
        OpenedDatabase opened = Connection::create(gate, windows(u"home/Vantrel.mdb"_s));
        [&] { QVERIFY2(opened.connection, qUtf8Printable(opened.result.text)); }();
        jet = record(*opened.connection, u"Jet"_s, {u"a.mdl"_s, u"b.bmp"_s});
        town = record(*opened.connection, u"Ümlaut Town"_s, {u"t.bgl"_s});
        [&] {
            QVERIFY(modDatabase_Addon::addSceneryAreas(
                *opened.connection,
                {{town, 3, 120, true, 121, u"Addon Scenery\\Town"_s, u"Town"_s, {}}}));
            QVERIFY(modDatabase_Addon::addOriginals(*opened.connection, {{2, jet, u"k"_s}}));
        }();
    }

    qint64 record(Connection& database, const QString& name, const QStringList& names)
    {
        AddonRecord addon;
        addon.name = name;
        addon.dateInstalled = QDateTime(QDate(2024, 3, 4), QTime(5, 6, 7));
        addon.categories = name == u"Jet"_s ? Category::Aircraft : Category::Scenery;
        addon.sourceType = SourceType::Zip;
        addon.sourceSize = 5'000'000'000;
        QList<DetailRecord> details;
        QList<Fingerprint> checks;
        for (const QString& file : names) {
            write(u"sim/"_s + file, file.toUtf8());
            details.push_back({0, 0, file, windows(u"sim/"_s), file, windows(u"sim/"_s), file});
            checks.push_back(*fingerprint(files, windows(u"sim/"_s) + file));
        }
        [&] {
            QVERIFY(modDatabase_Addon::createAddon(database, addon));
            QVERIFY(modDatabase_Addon::addDetails(database, addon.key, details, checks).ok());
        }();
        return addon.key;
    }

    [[nodiscard]] Ran json(QStringList arguments) const
    {
        arguments.prepend(u"--json"_s);
        return run(arguments);
    }

    DriveTable drives;
    Files files;
    Gate gate;
    qint64 jet = 0;
    qint64 town = 0;
};

QJsonArray arrayOf(const Ran& ran)
{
    return QJsonDocument::fromJson(ran.out).array();
}

QStringList namesIn(const QJsonArray& rows)
{
    QStringList names;
    for (const QJsonValue& row : rows)
        names.push_back(row[u"name"].toString());
    return names;
}

} // namespace

class TestCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void list_showsRowsUnderItsFilters()
    {
        const FilledWorld world;
        const QJsonArray rows = arrayOf(world.json({u"list"_s}));
        QCOMPARE(namesIn(rows), (QStringList{u"Jet"_s, u"Ümlaut Town"_s}));
        const QJsonObject jet = rows[0].toObject();
        QCOMPARE(jet[u"key"_s], QJsonValue(world.jet));
        QCOMPARE(jet[u"status"_s], QJsonValue(u"installed"_s));
        QCOMPARE(jet[u"dateInstalled"_s], QJsonValue(u"2024-03-04T05:06:07"_s));
        QCOMPARE(jet[u"categories"_s], QJsonValue(QJsonArray{u"Aircraft"_s}));
        QCOMPARE(jet[u"sourceSize"_s].toInteger(), 5'000'000'000);
        QCOMPARE(jet[u"sourceType"_s], QJsonValue(u"zip"_s));
        QCOMPARE(jet[u"files"_s], QJsonValue(2));
        for (const char16_t* field : {u"authors", u"rating", u"sourceName"})
            QVERIFY(jet.contains(QStringView(field)));

        const auto listed = [&](const QStringList& options) {
            return namesIn(arrayOf(world.json(QStringList{u"list"_s} + options)));
        };
        QCOMPARE(listed({u"--search"_s, u"üMLAUT"_s}), QStringList{u"Ümlaut Town"_s});
        QCOMPARE(listed({u"--category"_s, u"aircraft"_s}), QStringList{u"Jet"_s});
        QCOMPARE(listed({u"--filter"_s, u"cabinet"_s}), QStringList{});
        QVERIFY(world.run({u"list"_s})
                    .out.contains("Ümlaut Town  (installed 2024-03-04 05:06, 1 file)"));
    }

    void show_hasFilesAreasAndStates()
    {
        const FilledWorld world;
        QVERIFY(QFile::remove(world.dir.filePath(u"sim/a.mdl"_s)));
        const Ran ran = world.json({u"show"_s, QString::number(world.jet)});
        QCOMPARE(ran.status, 0);
        const QJsonArray items = ran.object()[u"items"_s].toArray();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[0][u"name"], QJsonValue(u"a.mdl"_s));
        QCOMPARE(items[0][u"location"], QJsonValue(world.windows(u"sim/"_s)));
        QCOMPARE(items[0][u"state"], QJsonValue(u"missing"_s));
        QCOMPARE(items[0][u"replacedOriginal"], QJsonValue(false));
        QCOMPARE(items[1][u"state"], QJsonValue(u"ok"_s));
        QCOMPARE(items[1][u"replacedOriginal"], QJsonValue(true));
        const QJsonObject town = world.json({u"show"_s, QString::number(world.town)}).object();
        const QJsonValue area = town[u"sceneryAreas"_s].toArray().first();
        QCOMPARE(area[u"area"], QJsonValue(120));
        QCOMPARE(area[u"layer"], QJsonValue(121));
        QCOMPARE(area[u"path"], QJsonValue(u"Addon Scenery\\Town"_s));
        QCOMPARE(area[u"enabled"], QJsonValue(true));
        QVERIFY(town[u"variants"_s].isArray());

        const Ran unknown = world.json({u"show"_s, u"77"_s});
        QCOMPARE(unknown.status, 1);
        QVERIFY(unknown.object()[u"error"_s][u"text"].toString().contains(u"77"_s));
        QCOMPARE(unknown.err.count('\n'), 1);
    }

    void owner_findsTheFileInAnySpelling()
    {
        const FilledWorld world;
        for (const QString& path : {world.dir.filePath(u"sim/b.bmp"_s),
                                    world.windows(u"sim/b.bmp"_s).toUpper(),
                                    u"sim/B.bmp"_s}) {
            const QJsonArray owners = arrayOf(world.json({u"owner"_s, path}));
            QCOMPARE(owners.size(), 1);
            QCOMPARE(owners[0][u"key"], QJsonValue(world.jet));
            QCOMPARE(owners[0][u"name"], QJsonValue(u"Jet"_s));
            QCOMPARE(owners[0][u"detailKey"], QJsonValue(2));
        }
        QCOMPARE(world.json({u"owner"_s, u"sim/fsx.exe"_s}).out.trimmed(), QByteArray("[]"));
    }

    void history_showsWhatWasInstalled()
    {
        const FilledWorld world;
        const QJsonArray rows = arrayOf(world.json({u"history"_s}));
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows[0][u"dateInstalled"], QJsonValue(u"2024-03-04T05:06:07"_s));
        QVERIFY(rows[0].toObject().contains(u"dateUninstalled"_s));
        QVERIFY(rows[0][u"dateUninstalled"].isNull());
        QCOMPARE(arrayOf(world.json({u"history"_s, u"--since"_s, u"2024-03-05"_s})).size(), 0);
        QCOMPARE(arrayOf(world.json({u"history"_s, u"--since"_s, u"2024-03-04"_s})).size(), 2);
        QCOMPARE(arrayOf(world.json({u"history"_s, u"--status"_s, u"removed"_s})).size(), 0);
    }

    void reading_leavesTheProgramFolderAsItIs()
    {
        const FilledWorld world;
        const auto before = test::hashTree(world.dir.path());
        const QString key = QString::number(world.jet);
        for (const QStringList& arguments : {QStringList{u"list"_s},
                                             QStringList{u"show"_s, key},
                                             QStringList{u"validate"_s, key},
                                             QStringList{u"owner"_s, u"x"_s},
                                             QStringList{u"history"_s},
                                             QStringList{u"database"_s, u"check"_s}})
            QCOMPARE(world.run(arguments).status, 0);
        QCOMPARE(test::differences(before, test::hashTree(world.dir.path())), QStringList());
    }

    void databaseCheck_tellsDamage()
    {
        const FilledWorld world;
        const Ran whole = world.json({u"database"_s, u"check"_s});
        QCOMPARE(whole.status, 0);
        QCOMPARE(whole.object()[u"ok"_s], QJsonValue(true));
        const QByteArray bytes = world.read(u"home/Vantrel.mdb"_s);
        QCOMPARE(whole.object()[u"bytesBefore"_s], QJsonValue(bytes.size()));

        for (const QByteArray& spoiled : {bytes.first(bytes.size() / 2), QByteArray(5000, 'x')}) {
            world.write(u"home/Vantrel.mdb"_s, spoiled);
            const Ran damaged = world.json({u"database"_s, u"check"_s});
            QCOMPARE(damaged.status, 3);
            QCOMPARE(damaged.object()[u"ok"_s], QJsonValue(false));
            QVERIFY(damaged.object()[u"error"_s][u"text"].toString().contains(u"damaged"_s));
            QCOMPARE(world.json({u"list"_s}).status, 3);
            QCOMPARE(world.read(u"home/Vantrel.mdb"_s), spoiled);
        }
    }

    void edit_changesTheRecordAndItsPicture()
    {
        const FilledWorld world;
        // One red point.
        world.write(u"shot.bmp"_s,
                    QByteArray::fromHex("424d3a0000000000000036000000280000000100000001000000010018"
                                        "00000000000400000000000000000000000000000000000000"
                                        "0000ff00"));
        const QStringList edit = {u"edit"_s, u"1"_s};
        const Ran ran = world.json(edit + QStringList{u"--name"_s,
                                                      u"Jet 2"_s,
                                                      u"--rating"_s,
                                                      u"4"_s,
                                                      u"--authors"_s,
                                                      u"A / B"_s,
                                                      u"--picture"_s,
                                                      u"shot.bmp"_s});
        QVERIFY2(ran.status == 0, ran.err.constData());
        QCOMPARE(ran.object()[u"name"_s], QJsonValue(u"Jet 2"_s));
        QCOMPARE(ran.object()[u"rating"_s], QJsonValue(4));
        QCOMPARE(ran.object()[u"authors"_s], QJsonValue(u"A / B"_s));
        QVERIFY(world.read(u"home/Images/Addons/1/Picture.jpg"_s).startsWith("\xFF\xD8"));

        const Ran refused =
            world.json(edit + QStringList{u"--name"_s, u"X"_s, u"--picture"_s, u"sim/a.mdl"_s});
        QCOMPARE(refused.status, 1);
        QVERIFY(refused.err.startsWith("Could not setup a picture for the addon. "));
        QCOMPARE(world.json({u"show"_s, u"1"_s}).object()[u"name"_s], QJsonValue(u"Jet 2"_s));
        QCOMPARE(world.json(edit + QStringList{u"--rating"_s, u"6"_s}).status, 2);
        QCOMPARE(world.json(edit + QStringList{u"--picture"_s, u"none"_s}).status, 0);
        QVERIFY(!world.exists(u"home/Images/Addons/1"_s));
    }

    void wrongArguments_areTold()
    {
        const Rows<QStringList> rows = {
            {"key that is no number", {u"show"_s, u"Jet"_s}},
            {"unknown category", {u"list"_s, u"--category"_s, u"boats"_s}},
            {"no date", {u"history"_s, u"--since"_s, u"yesterday"_s}},
            {"unknown status", {u"history"_s, u"--status"_s, u"lost"_s}},
        };
        for (const auto& [arguments] : rows) {
            const CliFixture world;
            const Ran ran = world.run(arguments);
            QCOMPARE(ran.status, 2);
            QCOMPARE(ran.err.count('\n'), 1);
            QVERIFY(ran.err.contains(arguments.last().toUtf8()));
        }
    }
};

VT_TEST_CLASS(TestCommands)
#include "test_commands.moc"
