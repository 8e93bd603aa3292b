// install, plan and remove of the real program: the JSON of a whole life of an add-on, and every
// kind of unfit source or surroundings, each with its exit status, one sentence and no trace.
#include "cli/CliFixture.h"
#include "demo/DemoSimulator.h"
#include "demo/SampleAddons.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"
#include "support/ZipBuilder.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <functional>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

/// A demonstration simulator at "prefix" and a sample to install.
struct InstallWorld : CliFixture
{
    InstallWorld()
    {
        const ResultOf<DemoSimulator> written = writeDemoSimulator(dir.filePath(u"prefix"_s));
        [&] { QVERIFY2(written.ok(), qPrintable(written.text)); }();
        simulator = written->simulatorHost;
        environment.insert(u"WINEPREFIX"_s, dir.filePath(u"prefix"_s));
        write(u"pack.zip"_s, sampleAddon(u"harbour-scenery"_s).archive());
        before = tree();
    }

    [[nodiscard]] TreeSnapshot tree() const { return hashTree(dir.filePath(u"prefix"_s)); }

    [[nodiscard]] QStringList changes() const
    {
        return differences(before, tree(), Backups::Ignore);
    }

    [[nodiscard]] QJsonDocument json(const QStringList& arguments, int status = 0) const
    {
        const Ran ran = run(QStringList{u"--json"_s} + arguments);
        [&] { QVERIFY2(ran.status == status, ran.out + ran.err); }();
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(ran.out, &error);
        [&] { QCOMPARE(error.error, QJsonParseError::NoError); }();
        return document;
    }

    QString simulator;
    TreeSnapshot before;
};

using Prepare = std::function<void(InstallWorld&)>;

} // namespace

Q_DECLARE_METATYPE(Prepare)

class TestCliInstall : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void complete_installsWhatTheRecordLacks()
    {
        InstallWorld world;
        (void)world.json({u"install"_s, u"pack.zip"_s, u"--skip"_s, u"*.bgl"_s});
        const auto shown = [&] {
            return world.json({u"show"_s, u"1"_s}).object()[u"items"].toArray().size();
        };
        const qsizetype before = shown();
        const QStringList rest = {u"pack.zip"_s, u"--complete"_s, u"1"_s};
        QStringList planned;
        const QJsonObject plan = world.json(QStringList{u"plan"_s} + rest).object();
        for (const QJsonValue& item : plan[u"items"].toArray()) {
            if (item[u"install"].toBool())
                planned += item[u"targetName"].toString();
        }
        QVERIFY(!planned.isEmpty());
        QCOMPARE(planned.filter(u".bgl"_s), planned);
        const QJsonObject done = world.json(QStringList{u"install"_s} + rest).object();
        QCOMPARE(done[u"key"].toInt(), 1);
        QCOMPARE(done[u"results"][u"Installed"].toArray().size(), planned.size());
        QCOMPARE(shown(), before + planned.size());
        QCOMPARE(world.json({u"list"_s}).array().size(), 1);
        QCOMPARE(world.json({u"validate"_s, u"1"_s}).object()[u"key"].toInt(), 1);
        const QJsonObject none = world.json(QStringList{u"install"_s} + rest, 1).object();
        QVERIFY(none[u"error"][u"text"].toString().contains(u"has everything that"_s));
        (void)world.json({u"remove"_s, u"1"_s});
        QCOMPARE(world.changes(), QStringList());
    }

    void wholeLife_isToldInJson()
    {
        InstallWorld world;
        const QJsonObject plan = world.json({u"plan"_s, u"pack.zip"_s}).object();
        for (const char* key : {"addon",
                                "source",
                                "items",
                                "variants",
                                "sceneryAreas",
                                "configChanges",
                                "problems",
                                "bytesNeeded",
                                "bytesFree"})
            QVERIFY2(plan.contains(QLatin1StringView(key)), key);
        QVERIFY(!world.exists(u"home"_s)); // planning made nothing
        QStringList planned;
        for (const QJsonValue& item : plan[u"items"].toArray()) {
            if (item[u"install"].toBool())
                planned += item[u"targetFolder"].toString() + item[u"targetName"].toString();
        }
        QVERIFY(!planned.isEmpty());

        const QJsonObject installed = world.json({u"install"_s, u"pack.zip"_s}).object();
        const QString key = QString::number(installed[u"key"].toInt());
        QCOMPARE(installed[u"status"].toString(), u"installed"_s);
        QStringList done;
        for (const QJsonValue& text : installed[u"results"][u"Installed"].toArray())
            done += text.toString().chopped(qsizetype(qstrlen(" was installed.")));
        QCOMPARE(done, planned);

        QStringList shown;
        for (const QJsonValue& item : world.json({u"show"_s, key}).object()[u"items"].toArray()) {
            shown += item[u"location"].toString() + item[u"name"].toString();
            QCOMPARE(item[u"state"].toString(), u"ok"_s);
        }
        QCOMPARE(shown, planned);
        const QJsonArray owners = world.json({u"owner"_s, planned.first()}).array();
        QCOMPARE(owners.size(), 1);
        QCOMPARE(QString::number(owners[0][u"key"].toInt()), key);
        QCOMPARE(world.json({u"list"_s}).array().size(), 1);

        // A changed file is told, and the removal sets it aside.
        const QString changed = world.simulator + u"/Addon Scenery/"_s +
                                QDir(world.simulator + u"/Addon Scenery"_s)
                                    .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                                    .filter(QRegularExpression(u"arbour"_s))
                                    .value(0);
        QVERIFY(QFileInfo(changed).isDir());
        QCOMPARE(world.run({u"validate"_s, key}).status, 0);
        const QString file = QDir(world.dir.filePath(u"prefix"_s)).filePath(u"drive_c/"_s) +
                             QString(planned.first()).sliced(3).replace(u'\\', u'/');
        QFile edited(file);
        QVERIFY2(edited.open(QIODevice::WriteOnly | QIODevice::Append), qPrintable(file));
        edited.write("by hand");
        edited.close();
        const QJsonObject verdict = world.json({u"validate"_s, key}, 1).object();
        int changedItems = 0;
        for (const QJsonValue& item : verdict[u"items"].toArray())
            changedItems += item[u"state"].toString() == u"changed" ? 1 : 0;
        QCOMPARE(changedItems, 1);

        const QJsonArray removed = world.json({u"remove"_s, key}).array();
        QCOMPARE(removed.size(), 1);
        QVERIFY(removed[0][u"ok"].toBool());
        QCOMPARE(world.changes(), QStringList());
        QCOMPARE(world.json({u"list"_s}).array().size(), 0);
        QCOMPARE(world.json({u"history"_s}).array().size(), 1);
    }

    void cabinetAndBack_isToldInJson()
    {
        InstallWorld world;
        const QString key =
            QString::number(world.json({u"install"_s, u"pack.zip"_s}).object()[u"key"].toInt());
        const auto states = [&] {
            QSet<QString> all;
            for (const QJsonValue& item : world.json({u"show"_s, key}).object()[u"items"].toArray())
                all.insert(item[u"state"].toString());
            return all;
        };
        const QStringList remove = {u"remove"_s, key, u"--method"_s};
        QCOMPARE(world.run({u"copy"_s, key}).status, 2); // where to?
        const QJsonValue copied = world.json({u"copy"_s, key, u"--to"_s, u"copies"_s}).array()[0];
        QVERIFY(copied[u"ok"].toBool());
        QCOMPARE(copied[u"results"][u"Processed"].toArray().size(), 11);
        QVERIFY(!world.changes().isEmpty());

        const QJsonValue moved = world.json(remove + QStringList{u"cabinet"_s}).array()[0];
        QVERIFY(moved[u"results"][u"Special Actions"].toArray().contains(
            u"Files were moved to the File Cabinet."_s));
        QCOMPARE(world.changes(), QStringList());
        const QJsonArray listed = world.json({u"list"_s, u"--filter"_s, u"cabinet"_s}).array();
        QCOMPARE(listed.size(), 1);
        QCOMPARE(listed[0][u"status"].toString(), u"cabinet"_s);
        QCOMPARE(states(), QSet<QString>{u"ok"_s});
        QCOMPARE(world.run({u"validate"_s, key}).status, 0);

        QCOMPARE(world.run(remove + QStringList{u"recreate"_s, u"--zip"_s}).status, 2);
        const QJsonValue out =
            world.json(remove + QStringList{u"recreate"_s, u"--zip"_s, u"--to"_s, u"copies"_s})
                .array()[0];
        QVERIFY(out[u"ok"].toBool());
        QVERIFY(out[u"target"].toString().endsWith(u" - "_s + key + u".zip"_s));
        QCOMPARE(world.json({u"list"_s}).array().size(), 0);
        QCOMPARE(world.json({u"history"_s}).array().size(), 1);
        // What came out can be installed again.
        const QString zip = QDir(world.dir.filePath(u"copies"_s)).entryList({u"*.zip"_s}).value(0);
        const QJsonObject again = world.json({u"install"_s, u"copies/"_s + zip}).object();
        QCOMPARE(again[u"results"][u"Installed"].toArray().size(), 11);
    }

    void options_doWhatThePlanSays_data()
    {
        QTest::addColumn<QStringList>("options");
        const auto row = [](const QStringList& options) {
            QTest::newRow(qPrintable(options.join(u' '))) << options;
        };
        row({u"--method"_s, u"scenery=world"_s});
        row({u"--method"_s, u"scenery=folder:Addon Scenery\\Mine"_s});
        row({u"--target"_s, u"*.txt=@*.bgl"_s, u"--scenery-title"_s, u"My harbour"_s});
        row({u"--rename"_s, u"*.txt=notes.txt"_s, u"--replace"_s, u"no"_s});
        row({u"--skip"_s, u"*.bgl"_s, u"--no-scenery-library"_s});
        row({u"--to"_s, u"cabinet"_s});
    }

    void options_doWhatThePlanSays()
    {
        QFETCH(QStringList, options);
        InstallWorld world;
        const QJsonObject plan =
            world.json(QStringList{u"plan"_s, u"pack.zip"_s} + options).object();
        QStringList planned;
        for (const QJsonValue& item : plan[u"items"].toArray()) {
            if (item[u"install"].toBool())
                planned += item[u"targetFolder"].toString() + item[u"targetName"].toString();
        }
        const QJsonObject installed =
            world.json(QStringList{u"install"_s, u"pack.zip"_s} + options).object();
        QStringList done;
        for (const QJsonValue& text : installed[u"results"][u"Installed"].toArray())
            done += text.toString().chopped(qsizetype(qstrlen(" was installed.")));
        QCOMPARE(done, planned);
        const QString key = QString::number(installed[u"key"].toInt());
        const bool cabinet = options.contains(u"cabinet"_s);
        QCOMPARE(installed[u"status"].toString(), cabinet ? u"cabinet"_s : u"installed"_s);
        QCOMPARE(world.changes().isEmpty(), cabinet);

        const QJsonObject again = world.json({u"reinstall"_s, key}).object();
        QCOMPARE(again[u"status"].toString(), u"installed"_s);
        QCOMPARE(again[u"results"][u"Installed"].toArray().size(), planned.size());
        QCOMPARE(world.run({u"validate"_s, key}).status, 0);
        QCOMPARE(world.run({u"remove"_s, key}).status, 0);
        QCOMPARE(world.changes(), QStringList());
    }

    void sceneryBehindALink_isUsedOnceConfirmed()
    {
        InstallWorld world;
        const QString scenery = world.simulator + u"/Addon Scenery"_s;
        const QString outside = world.dir.filePath(u"big disk"_s);
        QVERIFY(QDir().rename(scenery, outside) && QFile::link(outside, scenery));
        const TreeSnapshot before = hashTree(outside);
        const QStringList plan = {u"plan"_s, u"pack.zip"_s};
        const QStringList install = {u"install"_s, u"pack.zip"_s};
        const QStringList yes = {u"--answer"_s, u"yes"_s};
        const auto planned = [&](const QStringList& call) {
            int count = 0;
            for (const QJsonValue& item : world.json(call).object()[u"items"].toArray())
                count += item[u"install"].toBool();
            return count;
        };
        const QJsonArray problems = world.json(plan).object()[u"problems"].toArray();
        QCOMPARE(problems.size(), 1);
        QVERIFY(problems[0][u"text"].toString().contains(world.windows(u"big disk"_s) + u"\\'"_s));
        QCOMPARE(planned(plan), 1);
        QCOMPARE(planned(plan + yes), 11);

        const QJsonObject declined = world.json(install, 1).object();
        QCOMPARE(declined[u"results"][u"Installed"].toArray().size(), 1);
        QCOMPARE(differences(before, hashTree(outside), Backups::Compare), QStringList());
        const QJsonObject done = world.json(install + yes).object();
        QCOMPARE(done[u"results"][u"Installed"].toArray().size(), 11);
        QCOMPARE(planned(plan), 11); // it is remembered
        for (const QJsonObject& each : {done, declined})
            QCOMPARE(world.run({u"remove"_s, QString::number(each[u"key"].toInt())}).status, 0);
        QCOMPARE(differences(before, hashTree(outside), Backups::Compare), QStringList());
    }

    void unfit_isOneSentence_andLeavesNoTrace_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<Prepare>("prepare");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("names");
        const auto row = [](const char* name,
                            const QStringList& arguments,
                            int status,
                            const QString& names,
                            const Prepare& prepare) {
            QTest::newRow(name) << arguments << prepare << status << names;
        };
        const auto zip = [](const std::function<void(ZipBuilder&)>& fill) -> Prepare {
            return [fill](InstallWorld& world) {
                ZipBuilder builder;
                fill(builder);
                world.write(u"pack.zip"_s, builder.build());
            };
        };
        const QStringList install = {u"install"_s, u"pack.zip"_s};
        row("no such source", {u"install"_s, u"gone.zip"_s}, 3, u"gone.zip"_s, {});
        row("not an archive", install, 3, u"pack.zip"_s, [](InstallWorld& world) {
            world.write(u"pack.zip"_s, QByteArray(4000, 'x'));
        });
        row("cut short", install, 3, u"pack.zip"_s, [](InstallWorld& world) {
            const QByteArray whole = world.read(u"pack.zip"_s);
            world.write(u"pack.zip"_s, whole.first(whole.size() / 2));
        });
        row("a path that leads out", install, 1, u"evil"_s, zip([](ZipBuilder& builder) {
                builder.add("Effects/../../../../evil.fx", "x");
            }));
        row("an encrypted archive", install, 1, u"secret"_s, zip([](ZipBuilder& builder) {
                ZipOptions options;
                options.encrypted = true;
                builder.add("Effects/secret.fx", "x", options);
            }));
        row("more entries than allowed", install, 1, u"200,000"_s, zip([](ZipBuilder& builder) {
                ZipOptions options;
                options.level = 0;
                for (int i = 0; i < 200'001; ++i)
                    builder.add("a/" + QByteArray::number(i), "", options);
                builder.zip64End();
            }));
        row("a simulator without its program",
            {u"--sim"_s, u"sim"_s, u"install"_s, u"pack.zip"_s},
            3,
            u"fsx.exe"_s,
            [](InstallWorld& world) {
                world.makeSimulator();
                QFile::remove(world.dir.filePath(u"sim/fsx.exe"_s));
            });
        row("no simulator",
            {u"--sim"_s, u"nowhere"_s, u"install"_s, u"pack.zip"_s},
            3,
            u"nowhere"_s,
            {});
        row("a damaged database", install, 3, u"Vantrel.mdb"_s, [](InstallWorld& world) {
            world.write(u"home/Vantrel.mdb"_s, QByteArray(9000, 'x'));
        });
        row("a missing database", install, 3, u"Vantrel.mdb"_s, [](InstallWorld& world) {
            world.write(u"home/Originals/terrain.cfg"_s, "kept");
        });
        row("an unknown key", {u"remove"_s, u"77"_s}, 1, u"77"_s, {});
        row("the rest of an unknown key",
            install + QStringList{u"--complete"_s, u"77"_s},
            1,
            u"77"_s,
            {});
        for (const QString& command : {u"remove"_s, u"show"_s, u"validate"_s})
            row("a key that is none", {command, u"many"_s}, 2, u"many"_s, {});
        for (const QString& command : {u"plan"_s, u"install"_s}) {
            row("nothing to skip",
                {command, u"pack.zip"_s, u"--skip"_s, u"x.y"_s},
                1,
                u"x.y"_s,
                {});
            row("nothing to place",
                {command, u"pack.zip"_s, u"--target"_s, u"x.y=Effects"_s},
                1,
                u"x.y"_s,
                {});
        }
        row("a lost source", {u"reinstall"_s, u"1"_s}, 3, u"--from"_s, [](InstallWorld& world) {
            QCOMPARE(world.run({u"install"_s, u"pack.zip"_s}).status, 0);
            QVERIFY(QFile::remove(world.dir.filePath(u"pack.zip"_s)));
            world.before = world.tree();
        });
        row("an unknown key again", {u"reinstall"_s, u"77"_s}, 1, u"77"_s, {});
        for (const QString& method : {u"scenery"_s, u"gauge=gauge"_s, u"scenery=adventures"_s})
            row(qPrintable(u"a wrong method, "_s + method),
                {u"plan"_s, u"pack.zip"_s, u"--method"_s, method},
                2,
                method.section(u'=', -1),
                {});
        row("a wrong rating", {u"install"_s, u"pack.zip"_s, u"--rating"_s, u"6"_s}, 2, u"6"_s, {});
        row("a folder to be archived",
            {u"install"_s, u"unpacked"_s, u"--archive-source"_s, u"drawer"_s},
            2,
            u"unpacked"_s,
            [](InstallWorld& world) { world.write(u"unpacked/Effects/fx_a.fx"_s); });
        row("a wrong word",
            {u"install"_s, u"pack.zip"_s, u"--replace"_s, u"maybe"_s},
            2,
            u"maybe"_s,
            {});
    }

    void unfit_isOneSentence_andLeavesNoTrace()
    {
        QFETCH(QStringList, arguments);
        QFETCH(Prepare, prepare);
        QFETCH(int, status);
        QFETCH(QString, names);
        InstallWorld world;
        if (prepare)
            prepare(world);
        const Ran ran = world.run(arguments);
        QVERIFY2(ran.status == status, ran.out + ran.err);
        const QString said = QString::fromUtf8(ran.err).trimmed();
        QVERIFY2(said.contains(names), ran.err);
        QCOMPARE(said.count(u'\n'), 0);
        QVERIFY2(said.endsWith(u'.') || said.endsWith(u'\''), ran.err);
        QCOMPARE(world.changes(), QStringList());
        const Ran again = world.run(QStringList{u"--json"_s} + arguments);
        QCOMPARE(again.status, status);
        if (status != 2) {
            const QJsonDocument document = QJsonDocument::fromJson(again.out);
            QVERIFY2(!document.isNull(), again.out);
            if (document.isObject()) {
                QVERIFY(!document.object()[u"error"][u"text"].toString().isEmpty());
                QVERIFY(!document.object()[u"error"][u"kind"].toString().isEmpty());
            }
        }
        QCOMPARE(world.changes(), QStringList());
    }

    void removingSeveral_tellsEachFailure()
    {
        InstallWorld world;
        QCOMPARE(world.run({u"install"_s, u"pack.zip"_s}).status, 0);
        const Ran ran = world.run({u"--json"_s, u"remove"_s, u"98"_s, u"1"_s, u"99"_s});
        QCOMPARE(ran.status, 1);
        QCOMPARE(ran.err.count('\n'), 2);
        QVERIFY2(ran.err.contains("key 98;") && ran.err.contains("key 99;"), ran.err);
        const QJsonArray elements = QJsonDocument::fromJson(ran.out).array();
        QCOMPARE(elements.size(), 3);
        for (const QJsonValue& element : elements) {
            const bool removed = element[u"key"].toInt() == 1;
            QCOMPARE(element[u"ok"].toBool(), removed);
            QCOMPARE(element[u"error"][u"text"].isString(), !removed);
        }
        QCOMPARE(world.changes(), QStringList());
    }

    void damagedDatabase_isRepaired_andWorkGoesOn()
    {
        InstallWorld world;
        QCOMPARE(world.run({u"install"_s, u"pack.zip"_s}).status, 0);
        const TreeSnapshot with = world.tree();
        QByteArray damaged = world.read(u"home/Vantrel.mdb"_s);
        const qsizetype letter = damaged.indexOf("scenery\\");
        QVERIFY(letter > 0);
        damaged[letter] = 'S';
        damaged.replace(0, 16, QByteArray(16, 'x'));
        world.write(u"home/Vantrel.mdb"_s, damaged);
        for (const QStringList& arguments :
             {QStringList{u"database"_s, u"check"_s}, {u"list"_s}, {u"remove"_s, u"1"_s}}) {
            const Ran ran = world.run(arguments);
            QCOMPARE(ran.status, 3);
            QVERIFY2(ran.err.contains("'vantrelctl database check --repair'"), ran.err);
        }
        QCOMPARE(world.read(u"home/Vantrel.mdb"_s), damaged);
        QCOMPARE(differences(with, world.tree()), QStringList());

        const QJsonObject repaired =
            world.json({u"database"_s, u"check"_s, u"--repair"_s}).object();
        QVERIFY(repaired[u"ok"].toBool());
        QVERIFY(repaired[u"salvage"][u"rows"].toInt() > 10);
        QVERIFY(world.json({u"database"_s, u"check"_s}).object()[u"ok"].toBool());
        QCOMPARE(world.run({u"remove"_s, u"1"_s}).status, 0);
        QCOMPARE(world.changes(), QStringList());
        QVERIFY(world.json({u"database"_s, u"optimize"_s, u"--repair"_s}).object()[u"ok"].toBool());
        QVERIFY(world.json({u"database"_s, u"upgrade"_s}).object()[u"ok"].toBool());
    }

    void enoughChanges_optimizeTheDatabaseAtTheEnd()
    {
        InstallWorld world;
        const auto set = [&](const QString& name, const QString& value) {
            QCOMPARE(world.run({u"settings"_s, u"set"_s, u"Database"_s, name, value}).status, 0);
        };
        const auto history = [&] {
            return world.run({u"settings"_s, u"get"_s, u"Database"_s, u"History"_s}).out;
        };
        set(u"Optimization Factor"_s, u"3"_s);
        for (const char* counted : {"1\n", "2\n", "0\n"}) { // the third one optimises
            QCOMPARE(world.run({u"install"_s, u"pack.zip"_s}).status, 0);
            const QString key =
                QString::number(world.json({u"list"_s}).array().first()[u"key"].toInt());
            QCOMPARE(world.run({u"remove"_s, key}).status, 0);
            QCOMPARE(history(), QByteArray(counted));
        }
        QVERIFY(world.json({u"database"_s, u"check"_s}).object()[u"ok"].toBool());
    }

    void heldProgramFolder_isExit3_butReadingGoesOn()
    {
        InstallWorld world;
        QCOMPARE(world.run({u"install"_s, u"pack.zip"_s}).status, 0);
        const TreeSnapshot with = world.tree();
        QFile lock(world.dir.filePath(u"home/Vantrel.lock"_s));
        QVERIFY(lock.open(QIODevice::ReadWrite));
        QVERIFY(flock(lock.handle(), LOCK_EX | LOCK_NB) == 0);
        const Ran held = world.run({u"remove"_s, u"1"_s});
        QCOMPARE(held.status, 3);
        QVERIFY2(!held.err.isEmpty(), held.out);
        QCOMPARE(differences(with, world.tree()), QStringList());
        QCOMPARE(world.run({u"list"_s}).status, 0);
        QCOMPARE(world.run({u"plan"_s, u"pack.zip"_s}).status, 0);
        world.write(u"a.cfg"_s, "[a]\r\nx=1\r\n");
        QCOMPARE(world.run({u"ini"_s, u"set"_s, u"a.cfg"_s, u"a"_s, u"x"_s, u"2"_s}).status, 3);
        flock(lock.handle(), LOCK_UN);
        QCOMPARE(world.run({u"remove"_s, u"1"_s}).status, 0);
        QCOMPARE(world.changes(), QStringList());
    }
};

VT_TEST_CLASS(TestCliInstall)
#include "test_cli_install.moc"
