// Installing a recorded add-on again: what was damaged comes back, what others and the user put
// there stays, and a later removal still gives the tree from before the first installation.
#include "addondb/AddonDatabase.h"
#include "demo/OverlappingPacks.h"
#include "demo/SampleAddons.h"
#include "demo/StandIns.h"
#include "flow/FlowWorld.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "support/Disk.h"
#include "support/TestMain.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

class TestReinstall : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    TreeSnapshot m_beginning;
    QByteArray m_library; ///< before any installation

    QStringList since(const TreeSnapshot& before)
    {
        return differences(before, m_world->tree(), Backups::Ignore);
    }

    QStringList recordedFiles(qint64 key)
    {
        QStringList out;
        const auto rows = modDatabase_Addon::detailsOf(*m_world->database, key);
        for (const DetailRecord& row : *rows)
            out += row.location + row.name;
        return out;
    }

    void damage(const QString& path, QRandomGenerator& random)
    {
        if (random.bounded(2) == 0)
            QVERIFY(m_world->actions.remove(path));
        else if (random.bounded(2) == 0)
            QVERIFY(m_world->actions.replace(path, "changed by hand"));
    }

    QStringList titlesOf(const QString& cfg)
    {
        CAircraft aircraft{ConfigAccess(m_world->services)};
        aircraft.sConfigurationFile = cfg;
        QStringList out;
        for (const CAircraft& variation : aircraft.Variant_Details_GetAll())
            out.append(variation.sTitle);
        return out;
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->filePath(u"world"_s));
        m_world->prompts.defaultsBeyondQueue = true;
        QVERIFY(m_world->start());
        m_beginning = m_world->tree();
        m_library = *m_world->files.read(m_world->global.sceneryCfgFile, 1 << 20);
    }

    void cleanup() { m_world.reset(); }

    void damagedSamples_areWholeAgain_data()
    {
        QTest::addColumn<QString>("name");
        for (const SampleAddon& sample : sampleAddons())
            QTest::newRow(qPrintable(sample.name)) << sample.name;
    }

    void damagedSamples_areWholeAgain()
    {
        QFETCH(QString, name);
        const QString archive = writePack(m_dir->path(), name, sampleAddon(name).files);
        InstallOptions options;
        if (name == u"kestrel-repaint")
            options.aircraftFolder =
                m_world->files.list(m_world->global.aircraftFolder).first().name;
        const ResultOf<qint64> key = m_world->install(archive, options);
        QVERIFY2(key.ok(), qPrintable(key.text));
        const TreeSnapshot whole = m_world->tree();
        const auto rows = modDatabase_Addon::detailsOf(*m_world->database, *key);
        QVERIFY(m_world->reinstall(*key)); // of what is whole nothing changes
        QCOMPARE(since(whole), QStringList());

        QRandomGenerator random(5);
        for (int round = 0; round < 3; ++round) {
            for (const QString& path : recordedFiles(*key))
                damage(path, random);
            if (round == 1)
                QVERIFY(m_world->actions.replace(m_world->global.sceneryCfgFile, m_library));
            m_world->files.newOperation();
            const Result again = m_world->reinstall(*key);
            QVERIFY2(again.ok, qPrintable(again.text));
            QVERIFY(!m_world->anyFailed);
            QCOMPARE(m_world->results.count(resultgroup::failedSpecialActions), 0);
            QCOMPARE(since(whole), QStringList());
        }
        // The records are those of before, and the way back is open.
        const auto now = modDatabase_Addon::detailsOf(*m_world->database, *key);
        QCOMPARE(now->size(), rows->size());
        for (qsizetype i = 0; i < now->size(); ++i)
            QCOMPARE(now->at(i).key, rows->at(i).key);
        QVERIFY(m_world->remove(*key));
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(since(m_beginning), QStringList());
    }

    void samples_comeOutOfTheFileCabinet_data() { damagedSamples_areWholeAgain_data(); }

    void samples_comeOutOfTheFileCabinet()
    {
        QFETCH(QString, name);
        const QString archive = writePack(m_dir->path(), name, sampleAddon(name).files);
        InstallOptions options;
        if (name == u"kestrel-repaint")
            options.aircraftFolder =
                m_world->files.list(m_world->global.aircraftFolder).first().name;
        const ResultOf<qint64> direct = m_world->install(archive, options);
        const TreeSnapshot whole = m_world->tree();
        const QStringList places = recordedFiles(*direct);
        QVERIFY(m_world->remove(*direct));

        options.to = InstallTo::Cabinet;
        const ResultOf<qint64> key = m_world->install(archive, options);
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(since(m_beginning), QStringList());
        QCOMPARE(modDatabase_Addon::addon(*m_world->database, *key)->status,
                 InstallationStatus::FileCabinet);
        QCOMPARE(recordedFiles(*key), places);
        QCOMPARE(m_world->files.names(m_world->global.cabinetFolder).size(), 1);
        QVERIFY(QFile::remove(archive));

        const Result again = m_world->reinstall(*key);
        QVERIFY2(again.ok, qPrintable(again.text));
        QCOMPARE(m_world->results.count(resultgroup::failedSpecialActions), 0);
        QStringList other = since(whole);
        other.removeIf([](const QString& line) { // the key of the add-on stands in it
            return line.endsWith(u"aircraft.cfg"_s, Qt::CaseInsensitive);
        });
        QCOMPARE(other, QStringList());
        QCOMPARE(recordedFiles(*key), places);
        QCOMPARE(m_world->files.names(m_world->global.cabinetFolder).filter(u".zip"_s),
                 QStringList());
        QVERIFY(m_world->remove(*key));
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(since(m_beginning), QStringList());
    }

    /// What the user gave an add-on survives the File Cabinet; what the installation gave the
    /// simulator's lists goes with the aircraft.
    void picturesAndTitles_surviveTheFileCabinet()
    {
        using namespace modDatabase_Addon;
        const QString shot = m_dir->filePath(u"shot.bmp"_s);
        writeHostFile(shot, standins::picture(400, 100, 7));
        DemoFiles files = sampleAddon(u"heron-h2-main"_s).files;
        for (const DemoFile& file : sampleAddon(u"harbour-scenery"_s).files)
            files += DemoFile{u"Scenery of it/"_s + file.path, file.bytes};
        InstallOptions options;
        options.sceneryTitle = u"My own title"_s;
        const QString picture = m_world->drives.toWindows(shot);
        options.pictures = {{MappedGroup::Aircraft, picture}, {MappedGroup::Panel, picture}};
        const auto key = m_world->install(writePack(m_dir->path(), u"heron"_s, files), options);
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(m_world->results.texts(resultgroup::failedSpecialActions), QStringList());
        const QString images = m_world->global.imagesFolder;
        const QStringList pictured = m_world->files.filesBelow(images);
        QCOMPARE(pictured.size(), 4); // the add-on's, two variations, a panel
        QVERIFY(picturesOf(*m_world->database, *key)->first().primary);
        const auto titles = [&] {
            QStringList out;
            const auto areas = sceneryAreasOf(*m_world->database, *key);
            for (const SceneryAreaRecord& area : *areas)
                out.append(area.title);
            return out;
        };
        QCOMPARE(titles().count(u"My own title"_s), 2);

        RemovalOptions toCabinet;
        toCabinet.method = RemovalMethod::FileCabinet;
        QVERIFY(m_world->remove(*key, toCabinet));
        QCOMPARE(since(m_beginning), QStringList());
        QVERIFY(sceneryAreas(*m_world->database)->isEmpty()); // none is in the library
        QVERIFY(m_world->reinstall(*key));
        QCOMPARE(titles(), (QStringList{u"My own title"_s, u"My own title"_s}));
        QVERIFY(m_world->files.read(m_world->global.sceneryCfgFile, 1 << 20)
                    ->contains("Title=My own title"));
        QCOMPARE(picturesOf(*m_world->database, *key)->size(), 1);
        QCOMPARE(m_world->files.filesBelow(images), pictured);
        QVERIFY(m_world->remove(*key));
        QCOMPARE(since(m_beginning), QStringList());
        QCOMPARE(m_world->files.filesBelow(images), QStringList());
    }

    void picturesInTheAddon_areTakenAsTheSettingsSay()
    {
        using namespace modDatabase_Addon;
        DemoFiles files;
        for (const DemoFile& file : sampleAddon(u"heron-h2-main"_s).files)
            if (!file.path.endsWith(".jpg"_L1))
                files += file;
        files += {u"Pictures/no picture.jpg"_s, "text"};
        files += {u"Pictures/Heron in flight.jpg"_s, standins::picture(400, 100, 7)};
        const QString pack = writePack(m_dir->path(), u"heron"_s, files);
        const auto stored = [&](bool aircraft, bool panels) {
            m_world->settings.setFlag(SettingKey::AutoAssignPicturesToAircraft, aircraft);
            m_world->settings.setFlag(SettingKey::AutoAssignPicturesToPanels, panels);
            const auto key = m_world->install(pack);
            const qsizetype count = m_world->files.filesBelow(m_world->global.imagesFolder).size();
            const bool clean =
                key && m_world->results.texts(resultgroup::failedSpecialActions).isEmpty();
            return clean && m_world->remove(*key) && since(m_beginning).isEmpty() ? count : -1;
        };
        QCOMPARE(stored(false, false), 0);
        QCOMPARE(stored(true, false), 3); // the add-on's, two variations
        QCOMPARE(stored(false, true), 2); // the add-on's, a panel
        QCOMPARE(m_world->files.filesBelow(m_world->global.imagesFolder), QStringList());
    }

    void changedFile_isAskedAbout_andKept()
    {
        const SampleAddon sample = sampleAddon(u"harbour-scenery"_s);
        const ResultOf<qint64> key =
            m_world->install(writePack(m_dir->path(), sample.name, sample.files));
        QVERIFY(key.ok());
        const TreeSnapshot whole = m_world->tree();
        const QString place = recordedFiles(*key).first();
        QVERIFY(m_world->actions.replace(place, "my own"));
        m_world->prompts.defaultsBeyondQueue = false;
        m_world->prompts.expect(u"was changed since it was installed"_s, Button::No);
        QVERIFY(m_world->reinstall(*key));
        QCOMPARE(*m_world->files.read(place, 100), QByteArray("my own"));
        m_world->prompts.expect(place, Button::Yes);
        QVERIFY(m_world->reinstall(*key));
        QCOMPARE(since(whole), QStringList());
        const QStringList told = m_world->results.texts(resultgroup::specialActions);
        const QString aside = told.value(0).section(u'\'', 1, 1);
        QCOMPARE(*m_world->files.read(aside, 100), QByteArray("my own"));
    }

    void coveredFiles_stayTheOthers()
    {
        const QList<OverlappingPack> packs = overlappingPacks(3);
        QList<qint64> keys;
        for (const OverlappingPack& pack : packs) {
            const auto key = m_world->install(writePack(m_dir->path(), pack.name, pack.files));
            QVERIFY(key.ok());
            keys.append(*key);
        }
        const TreeSnapshot all = m_world->tree();
        for (const qint64 key : std::as_const(keys)) {
            QVERIFY(m_world->reinstall(key));
            QCOMPARE(m_world->results.texts(resultgroup::notInstalled)
                         .filter(u"an addon that was installed later"_s)
                         .isEmpty(),
                     key == keys.last());
            QCOMPARE(since(all), QStringList());
        }
        for (const qint64 key : {keys[2], keys[0], keys[4], keys[1], keys[3]})
            QVERIFY(m_world->remove(key));
        QCOMPARE(since(m_beginning), QStringList());
    }

    void aircraftCfg_keepsWhatOthersAdded()
    {
        const QString folder = u"SimObjects/Airplanes/Solo/"_s;
        const QByteArray cfg = "[fltsim.0]\r\ntitle=Solo One\r\nsim=solo\r\ntexture=\r\n"
                               "ui_variation=One\r\n\r\n[General]\r\natc_type=S\r\n";
        const auto aircraft = m_world->install(writePack(m_dir->path(),
                                                         u"solo"_s,
                                                         {{folder + u"aircraft.cfg"_s, cfg},
                                                          {folder + u"solo.air"_s, "air"},
                                                          {folder + u"texture/a.bmp"_s, "a"}}));
        const auto repaint = m_world->install(writePack(
            m_dir->path(),
            u"red"_s,
            {{u"aircraft.cfg"_s, "[fltsim.0]\r\ntitle=Solo Red\r\nsim=solo\r\ntexture=red\r\n"},
             {u"texture.red/a.bmp"_s, "r"}}));
        QVERIFY(aircraft.ok() && repaint.ok());
        const QString file = m_world->simulatorPath(u"SimObjects\\Airplanes\\Solo\\aircraft.cfg"_s);
        QCOMPARE(titlesOf(file), (QStringList{u"Solo One"_s, u"Solo Red"_s}));
        const TreeSnapshot whole = m_world->tree();
        QByteArray damaged = *m_world->files.read(file, 1 << 20);
        damaged.replace("atc_type=S", "atc_type=??").replace("Solo One", "Solo Mine");
        QVERIFY(m_world->actions.replace(file, damaged));
        QVERIFY(m_world->reinstall(*aircraft));
        QCOMPARE(titlesOf(file), (QStringList{u"Solo One"_s, u"Solo Mine"_s, u"Solo Red"_s}));
        QVERIFY(m_world->files.read(file, 1 << 20)->contains("atc_type=S\r\n"));
        // A repaint whose section went comes back into its aircraft.
        QVERIFY(m_world->actions.replace(file, cfg));
        QVERIFY(m_world->reinstall(*repaint));
        QCOMPARE(titlesOf(file), (QStringList{u"Solo One"_s, u"Solo Red"_s}));
        QCOMPARE(since(whole), QStringList());
        QVERIFY(m_world->remove(*aircraft));
        QVERIFY(m_world->remove(*repaint));
        QCOMPARE(since(m_beginning), QStringList());
    }

    void runningSimulator_isWarnedOf_andLostSourceIsNamed()
    {
        const SampleAddon sample = sampleAddon(u"harbour-scenery"_s);
        const QString archive = writePack(m_dir->path(), sample.name, sample.files);
        const ResultOf<qint64> key = m_world->install(archive);
        const TreeSnapshot whole = m_world->tree();
        QVERIFY(m_world->actions.remove(recordedFiles(*key).first()));
        const TreeSnapshot damaged = m_world->tree();
        m_world->simulatorRuns = true;
        const Result declined = m_world->reinstall(*key); // No is the default
        QCOMPARE(declined.kind, ErrorKind::Declined);
        QVERIFY(m_world->prompts.asked.last() == reinstallWarning(m_world->global.names));
        QCOMPARE(since(damaged), QStringList());

        m_world->simulatorRuns = false;
        const QString moved = m_dir->filePath(u"elsewhere.zip"_s);
        QVERIFY(QFile::rename(archive, moved));
        const Result lost = m_world->reinstall(*key);
        QCOMPARE(lost.kind, ErrorKind::Surroundings);
        QVERIFY2(lost.text.contains(m_world->drives.toWindows(archive)), qPrintable(lost.text));
        QVERIFY(m_world->reinstall(*key, {}, moved));
        QCOMPARE(since(whole), QStringList());
    }
};

VT_TEST_CLASS(TestReinstall)
#include "test_reinstall.moc"
