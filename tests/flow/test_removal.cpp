// The methods of removal: what becomes of the simulator is the same for all that take files away;
// what they move is whole in the File Cabinet, the folder or the zip file before anything goes.
#include "addondb/AddonDatabase.h"
#include "addondb/FileCabinet.h"
#include "addondb/Pictures.h"
#include "demo/OverlappingPacks.h"
#include "demo/SampleAddons.h"
#include "flow/FlowWorld.h"
#include "platform/WinPath.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

Q_DECLARE_METATYPE(vt::RemovalMethod)

namespace {

QByteArray bytesOf(const Content& content)
{
    QByteArray bytes;
    (void)content.transfer([&bytes](QByteArrayView piece) {
        bytes += piece;
        return true;
    });
    return bytes;
}

} // namespace

class TestRemoval : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    TreeSnapshot m_beginning;
    QList<OverlappingPack> m_packs = overlappingPacks(7);

    qint64 install(const QString& name, const DemoFiles& files)
    {
        const ResultOf<qint64> key =
            m_world->install(writePack(m_dir->filePath(u"packs"_s), name, files));
        return key ? *key : -1;
    }

    RemovalOptions by(RemovalMethod method, bool zip = false)
    {
        RemovalOptions options;
        options.method = method;
        options.zip = zip;
        if (method == RemovalMethod::Recreate || method == RemovalMethod::Copy)
            options.toFolder = m_world->choose(m_dir->filePath(u"chosen"_s));
        return options;
    }

    QStringList changes() { return differences(m_beginning, m_world->tree(), Backups::Ignore); }

    std::optional<QString> archive(qint64 key)
    {
        m_world->files.newOperation();
        return FileCabinet(m_world->services, m_world->global).find(key);
    }

    /// Every file that went somewhere, by what its path ends in.
    QMap<QString, QByteArray> gone(qint64 key)
    {
        QMap<QString, QByteArray> out;
        m_world->files.newOperation();
        QDir chosen(m_dir->filePath(u"chosen"_s));
        for (const QString& file : m_world->files.filesBelow(
                 winpath::asFolder(m_world->drives.toWindows(chosen.path())))) {
            const QString path = winpath::asFolder(m_world->drives.toWindows(chosen.path())) + file;
            if (!file.endsWith(u".zip")) {
                out.insert(foldCase(file.sliced(file.indexOf(u'\\') + 1)),
                           *m_world->files.read(path, 1 << 24));
                continue;
            }
            CZIP zip(m_world->services);
            zip.sZIPFile = path;
            if (!zip.GetItems())
                continue;
            for (const CZIPFileItem& item : zip.colZIPContents.front().varZIPItems)
                out.insert(foldCase(item.fullName()), *zip.entryBytes({0, item.lngKey}, 1 << 24));
        }
        if (const auto stored = archive(key)) {
            CabinetArchive opened(m_world->services);
            if (opened.open(*stored))
                for (const QString& path : opened.paths()) {
                    const QString entry = FileCabinet::entryName(m_world->gate, path);
                    const bool document = entry.startsWith(u'~'); // "~5\\Addons\\pack\\notes.txt"
                    out.insert(foldCase(document ? entry.section(u'\\', 3) : entry),
                               bytesOf(*opened.content(path)));
                }
        }
        return out;
    }

    std::optional<InstallationStatus> status(qint64 key)
    {
        const auto addon = modDatabase_Addon::addon(*m_world->database, key);
        return addon ? std::optional(addon->status) : std::nullopt;
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->filePath(u"world"_s));
        m_world->prompts.defaultsBeyondQueue = true;
        QVERIFY(m_world->start());
        m_beginning = m_world->tree();
    }

    void cleanup() { m_world.reset(); }

    void everyMethod_data()
    {
        QTest::addColumn<RemovalMethod>("method");
        QTest::addColumn<bool>("zip");
        QTest::newRow("cabinet") << RemovalMethod::FileCabinet << false;
        QTest::newRow("folder") << RemovalMethod::Recreate << false;
        QTest::newRow("zip") << RemovalMethod::Recreate << true;
        QTest::newRow("records") << RemovalMethod::RemoveRecords << false;
        QTest::newRow("copy") << RemovalMethod::Copy << false;
        QTest::newRow("copy to zip") << RemovalMethod::Copy << true;
    }

    /// The lower of two add-ons that share places: its own bytes go along, not those above it.
    void everyMethod()
    {
        QFETCH(RemovalMethod, method);
        QFETCH(bool, zip);
        const bool takesAway =
            method == RemovalMethod::FileCabinet || method == RemovalMethod::Recreate;
        const qint64 lower = install(u"lower.zip"_s, m_packs[0].files);
        const qint64 upper = install(u"upper.zip"_s, m_packs[1].files);
        QVERIFY(lower > 0 && upper > 0);
        const TreeSnapshot both = m_world->tree();

        QVERIFY(m_world->remove(lower, by(method, zip)));
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(m_world->results.count(resultgroup::failedSpecialActions), 0);
        if (method != RemovalMethod::RemoveRecords) {
            const QMap<QString, QByteArray> moved = gone(lower);
            for (const DemoFile& file : m_packs[0].files) {
                const QString name = foldCase(QString(file.path).replace(u'/', u'\\'));
                QVERIFY2(moved.value(name) == file.bytes, qPrintable(name));
            }
        }
        QCOMPARE(status(lower),
                 method == RemovalMethod::FileCabinet
                     ? std::optional(InstallationStatus::FileCabinet)
                 : method == RemovalMethod::Copy ? std::optional(InstallationStatus::Installed)
                                                 : std::nullopt);
        if (!takesAway) {
            QCOMPARE(differences(both, m_world->tree(), Backups::Compare), QStringList());
            return;
        }
        QVERIFY(m_world->remove(upper));
        QCOMPARE(changes(), QStringList());
    }

    void outOfTheCabinet_data()
    {
        QTest::addColumn<RemovalMethod>("method");
        QTest::addColumn<bool>("zip");
        QTest::newRow("deleted") << RemovalMethod::Delete << false;
        QTest::newRow("to a folder") << RemovalMethod::Recreate << false;
        QTest::newRow("to a zip file") << RemovalMethod::Recreate << true;
        QTest::newRow("records") << RemovalMethod::RemoveRecords << false;
        QTest::newRow("copied") << RemovalMethod::Copy << false;
        QTest::newRow("again") << RemovalMethod::FileCabinet << false;
    }

    void outOfTheCabinet()
    {
        QFETCH(RemovalMethod, method);
        QFETCH(bool, zip);
        const SampleAddon sample = sampleAddon(u"swift-aircraft"_s);
        const qint64 key = install(u"full.zip"_s, sample.files);
        QVERIFY(key > 0);
        QVERIFY(m_world->remove(key, by(RemovalMethod::FileCabinet)));
        QCOMPARE(changes(), QStringList());
        const QMap<QString, QByteArray> stored = gone(key);
        QVERIFY(stored.size() > 5);
        QVERIFY(archive(key));

        const Result removed = m_world->remove(key, by(method, zip));
        QCOMPARE(removed.ok, method != RemovalMethod::FileCabinet);
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(changes(), QStringList());
        const bool stays = method == RemovalMethod::Copy || method == RemovalMethod::FileCabinet;
        QCOMPARE(status(key).has_value(), stays);
        QCOMPARE(archive(key).has_value(), stays || method == RemovalMethod::RemoveRecords);
        if (method == RemovalMethod::Recreate || method == RemovalMethod::Copy) {
            QList<QByteArray> before = stored.values();
            QList<QByteArray> now = gone(0).values();
            std::sort(before.begin(), before.end());
            std::sort(now.begin(), now.end());
            QCOMPARE(now, before);
        }
    }

    void intoTheCabinetAndBack_data()
    {
        QTest::addColumn<QString>("name");
        for (const SampleAddon& sample : sampleAddons())
            QTest::newRow(qPrintable(sample.name)) << sample.name;
    }

    void intoTheCabinetAndBack()
    {
        QFETCH(QString, name);
        InstallOptions options;
        if (name == u"kestrel-repaint")
            options.aircraftFolder = u"Kestrel_K2"_s;
        const QString source =
            writePack(m_dir->filePath(u"packs"_s), name, sampleAddon(name).files);
        const ResultOf<qint64> key = m_world->install(source, options);
        QVERIFY2(key, qPrintable(key.text));
        const TreeSnapshot installed = m_world->tree();
        const QString picture = pictures::addonPicture(m_world->global, *key);
        QVERIFY(m_world->actions.replace(picture, "jpeg"));
        QVERIFY(m_world->remove(*key, by(RemovalMethod::FileCabinet)));
        QVERIFY(m_world->files.isFile(picture)); // the record stays
        QCOMPARE(changes(), QStringList());
        QVERIFY(QFile::remove(source)); // it is needed no more
        const Result back = m_world->reinstall(*key);
        QVERIFY2(back, qPrintable(back.text));
        QCOMPARE(differences(installed, m_world->tree(), Backups::Ignore), QStringList());
        QCOMPARE(status(*key), InstallationStatus::Installed);
        QVERIFY(m_world->remove(*key));
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(changes(), QStringList());
        QVERIFY(!archive(*key));
        QVERIFY(!m_world->files.exists(winpath::parent(picture)));
    }

    void fileThatOthersUse_isCopied_data()
    {
        everyMethod_data();
        QTest::newRow("deleted") << RemovalMethod::Delete << false;
    }

    void fileThatOthersUse_isCopied()
    {
        QFETCH(RemovalMethod, method);
        QFETCH(bool, zip);
        const qint64 key =
            install(u"fx.zip"_s,
                    {{u"Effects/fx_mine.fx"_s, "mine"}, {u"Effects/fx_nobody.fx"_s, "nobody"}});
        const QString cfg =
            m_world->simulatorPath(u"SimObjects\\Airplanes\\Kestrel_K2\\aircraft.cfg"_s);
        QByteArray lines = *m_world->files.read(cfg, 1 << 20);
        lines.replace("[EFFECTS]\r\n", "[EFFECTS]\r\ntouchdown=fx_mine, 1\r\n");
        QVERIFY(m_world->actions.replace(cfg, lines));
        QVERIFY(m_world->remove(key, by(method, zip)));
        QVERIFY(m_world->files.isFile(m_world->simulatorPath(u"Effects\\fx_mine.fx"_s)));
        if (method == RemovalMethod::FileCabinet || method == RemovalMethod::Recreate) {
            QVERIFY(!m_world->files.exists(m_world->simulatorPath(u"Effects\\fx_nobody.fx"_s)));
            QCOMPARE(gone(key).value(u"effects\\fx_mine.fx"_s), QByteArray("mine"));
            QVERIFY(m_world->results.texts(resultgroup::processed)
                        .join(u'|')
                        .contains(u" will be copied to "_s));
        }
    }

    /// Of two variations one goes with its textures; the rest follows, and nothing is left.
    void someFiles_data()
    {
        QTest::addColumn<RemovalMethod>("method");
        QTest::newRow("deleted") << RemovalMethod::Delete;
        QTest::newRow("cabinet") << RemovalMethod::FileCabinet;
    }

    void someFiles()
    {
        QFETCH(RemovalMethod, method);
        const qint64 key =
            install(u"two.zip"_s,
                    {{u"a.txt"_s,
                      "[fltsim.X]\r\ntitle=Blue\r\nsim=kestrel_k2\r\ntexture=blue\r\n\r\n"
                      "[fltsim.Y]\r\ntitle=Green\r\nsim=kestrel_k2\r\ntexture=green\r\n"},
                     {u"texture.blue/a.bmp"_s, "blue"},
                     {u"texture.green/a.bmp"_s, "green"}});
        QVERIFY(key > 0);
        const QString aircraft = m_world->simulatorPath(u"SimObjects\\Airplanes\\Kestrel_K2\\"_s);
        const auto cfg = [&] {
            return *m_world->files.read(aircraft + u"aircraft.cfg"_s, 1 << 20);
        };
        QVERIFY(cfg().contains("title=Blue") && cfg().contains("title=Green"));
        RemovalOptions options = by(method);
        options.files = {aircraft + u"texture.blue\\nosuch.bmp"_s};
        QVERIFY(!m_world->remove(key, options));
        options.files = {aircraft + u"Texture.Blue\\a.bmp"_s};
        QVERIFY(m_world->remove(key, options));
        QVERIFY(!cfg().contains("title=Blue") && cfg().contains("title=Green"));
        QVERIFY(!m_world->files.exists(aircraft + u"texture.blue"_s));
        QVERIFY(m_world->files.isFile(aircraft + u"texture.green\\a.bmp"_s));
        QCOMPARE(status(key), InstallationStatus::Installed);
        QCOMPARE(archive(key).has_value(), method == RemovalMethod::FileCabinet);
        QVERIFY(m_world->remove(key, by(method)));
        QCOMPARE(changes(), QStringList());
        if (method == RemovalMethod::FileCabinet) {
            const QList<QByteArray> all = gone(key).values();
            QVERIFY(all.contains("blue") && all.contains("green"));
        }
    }

    void archiveThatCannotBeWritten_changesNothing_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<bool>("told"); // after the commit, so the removal ran to its end
        QTest::newRow("not staged") << QByteArray("stage") << false;
        QTest::newRow("not put in its place") << QByteArray("carry out") << true;
    }

    void archiveThatCannotBeWritten_changesNothing()
    {
        QFETCH(QByteArray, action);
        QFETCH(bool, told);
        const qint64 key = install(u"lower.zip"_s, m_packs[0].files);
        const TreeSnapshot before = m_world->tree();
        m_world->gate.faultHook = [&](const char* what, const QByteArray& host) {
            return action == what && host.contains("/Cabinet") ? EIO : 0;
        };
        QCOMPARE(m_world->remove(key, by(RemovalMethod::FileCabinet)).ok, told);
        m_world->gate.faultHook = {};
        QVERIFY(m_world->results.texts(resultgroup::failedSpecialActions)
                    .contains(u"An error occurred moving files to the File Cabinet zip file."_s));
        QCOMPARE(differences(before, m_world->tree(), Backups::Compare), QStringList());
        QCOMPARE(status(key), InstallationStatus::Installed);
        QVERIFY(!archive(key));
        QVERIFY(m_world->remove(key)); // with all its records
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(changes(), QStringList());
    }

    /// Between the plan and its steps: what went is gone, what became something else stays.
    void filesThatTurnMeanwhile_areLeftAlone()
    {
        const qint64 key = install(u"turning.zip"_s,
                                   {{u"Effects/fx_a.fx"_s, "a"},
                                    {u"Effects/fx_b.fx"_s, "b"},
                                    {u"Effects/fx_c.fx"_s, "c"}});
        const QString folder = m_world->hostPath(u"Effects/fx_b.fx"_s);
        m_world->gate.faultHook = [&](const char*, const QByteArray& host) {
            if (host == "apply") {
                QFile::remove(m_world->hostPath(u"Effects/fx_a.fx"_s));
                QFile::remove(folder);
                QDir().mkdir(folder);
                QFile::rename(m_world->hostPath(u"Effects/fx_c.fx"_s),
                              m_world->hostPath(u"Effects/FX_C.fx"_s));
            }
            return 0;
        };
        QVERIFY(m_world->remove(key));
        m_world->gate.faultHook = {};
        QVERIFY(m_world->anyFailed);
        QVERIFY(m_world->results.texts(resultgroup::failedSpecialActions)
                    .join(u'\n')
                    .contains(u"was changed by another program meanwhile, so it was left alone."));
        QVERIFY(m_world->results.texts(resultgroup::notProcessed)
                    .join(u'\n')
                    .contains(u"fx_b.fx was NOT removed due to an error."));
        QVERIFY(QDir().rmdir(folder));
        QCOMPARE(changes(), QStringList());
    }

    void recreated_withItsPictureWhereTheSettingSaysSo()
    {
        for (const auto& [zip, wanted] : {std::pair{false, true}, {true, true}, {true, false}}) {
            const qint64 key = install(u"pictured.zip"_s, {{u"Effects/fx_a.fx"_s, "a"}});
            const QString picture = pictures::addonPicture(m_world->global, key);
            QVERIFY(m_world->actions.replace(picture, "the picture"));
            QVERIFY(m_world->settings.setFlag(SettingKey::RecreateIncludeAddonPictures, wanted));
            QVERIFY(m_world->remove(key, by(RemovalMethod::Recreate, zip)));
            QVERIFY(!m_world->anyFailed);
            QCOMPARE(gone(key).value(u"picture.jpg"_s),
                     wanted ? QByteArray("the picture") : QByteArray());
            QVERIFY(QDir(m_dir->filePath(u"chosen"_s)).removeRecursively());
        }
        QCOMPARE(changes(), QStringList());
    }

    void storageOfTheAddon_goesWithWhatTheUserPutThere()
    {
        const qint64 key = install(
            u"docs.zip"_s, {{u"Effects/fx_a.fx"_s, "a"}, {u"manual.txt"_s, "how to use it"}});
        const auto details = modDatabase_Addon::detailsOf(*m_world->database, key);
        QString storage;
        for (const DetailRecord& detail : *details)
            if (detail.name == u"manual.txt")
                storage = detail.location;
        QVERIFY(winpath::isBelow(storage, m_world->global.addonsFolder));
        QVERIFY(m_world->actions.replace(storage + u"Filelist.dat"_s, "list"));
        QVERIFY(m_world->actions.replace(storage + u"notes.txt"_s, "my notes"));
        QVERIFY(m_world->remove(key));
        QVERIFY(!m_world->files.exists(storage));
        QByteArray kept;
        for (const QString& file : m_world->files.filesBelow(m_world->global.backupsFolder))
            if (file.endsWith(u"notes.txt"))
                kept = *m_world->files.read(m_world->global.backupsFolder + file, 1 << 20);
        QCOMPARE(kept, QByteArray("my notes"));
    }
};

VT_TEST_CLASS(TestRemoval)
#include "test_removal.moc"
