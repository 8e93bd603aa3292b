// What lies in the simulator is found, recorded, and treated like what was installed: nothing
// twice, nothing on the disk changed, and any order of installing over it and removing ends right.
#include "addondb/AddonDatabase.h"
#include "addondb/AddonList.h"
#include "addondb/Pictures.h"
#include "demo/OverlappingPacks.h"
#include "flow/FlowWorld.h"
#include "import/CAddonImportMgr.h"
#include "platform/Processes.h"
#include "platform/WinPath.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "support/TestMain.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

class TestImport : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    std::unique_ptr<Catalogue> m_catalogue;

    QString m_stock; ///< name of an aircraft's folder that the simulator brings

    void write(const QString& relative, const QByteArray& bytes = "x")
    {
        QVERIFY(m_world->actions.replace(m_world->simulatorPath(relative), bytes));
    }

    std::unique_ptr<CAddonImportMgr> gather(const ImportOptions& options = {})
    {
        m_catalogue = std::make_unique<Catalogue>(m_world->global);
        m_catalogue->open(m_world->services);
        auto manager = std::make_unique<CAddonImportMgr>(
            m_world->context, *m_catalogue, m_world->database.get());
        manager->options = options;
        const Result found = manager->Addons_Import_GatherAddons(true);
        if (!found)
            qFatal("%s", qPrintable(found.text));
        return manager;
    }

    Result import(CAddonImportMgr& manager)
    {
        return manager.Addon_Install_ImportGroups(Processes(m_world->files, {}));
    }

    static QStringList names(CAddonImportMgr& manager, ImportFamily family)
    {
        QStringList out;
        for (const ImportGroup& group : manager.groups()) {
            if (group.family == family)
                out += group.addon.sGroupName;
        }
        return out;
    }

    static const ImportGroup* groupOf(CAddonImportMgr& manager, const QString& name)
    {
        for (const ImportGroup& group : manager.groups()) {
            if (group.addon.sGroupName == name)
                return &group;
        }
        return nullptr;
    }

    static ImportOptions properNames()
    {
        ImportOptions options;
        options.optGroupNaming = ImportNaming::ProperName;
        return options;
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->filePath(u"world"_s));
        m_world->prompts.defaultsBeyondQueue = true;
        QVERIFY(m_world->start());
        const QString airplanes = u"SimObjects\\Airplanes\\"_s;
        write(airplanes + u"C172\\aircraft.cfg"_s,
              "[fltsim.0]\r\ntitle=Trainer\r\nui_manufacturer=Ridge\r\nui_type=R172\r\n");
        write(airplanes + u"C172\\c172.air"_s);
        write(airplanes + u"Ridge\\aircraft.cfg"_s,
              "[fltsim.0]\r\ntitle=Ridge\r\nui_manufacturer=Ridge\r\nui_type=R9\r\n"
              "ui_createdby=\"A / B\"\r\n");
        write(airplanes + u"Ridge\\panel\\panel.cfg"_s, "[Window Titles]\r\n");
        write(airplanes + u"Ridge\\readme.txt"_s);
        write(airplanes + u"Ridge\\aircraft.vtb"_s);
        write(airplanes + u"Lear45\\panel\\panel.cfg"_s, "[Window Titles]\r\n");
        write(airplanes + u"Lear45\\sound\\sound.cfg"_s, "[SOUND_ENGINE]\r\n");
        write(u"Addon Scenery\\Fjord\\scenery\\fjord.bgl"_s);
        write(u"Addon Scenery\\Fjord\\texture\\fjord.bmp"_s);
        write(u"Addon Scenery\\scenery\\loose.bgl"_s);
    }

    void cleanup()
    {
        m_catalogue.reset();
        m_world.reset();
    }

    void everything_isFoundOnce_andOnlyRecorded()
    {
        const TreeSnapshot before = m_world->tree();
        const auto manager = gather(properNames());
        QVERIFY(names(*manager, ImportFamily::Aircraft).contains(u"Ridge R9"_s));
        QCOMPARE(names(*manager, ImportFamily::Panels), QStringList{u"Lear45 panel"_s});
        QCOMPARE(names(*manager, ImportFamily::Sounds), QStringList{u"Lear45 sound"_s});
        QVERIFY(names(*manager, ImportFamily::Scenery).contains(u"Fjord"_s));
        QVERIFY(!names(*manager, ImportFamily::Missions).isEmpty());
        const QStringList aircraft = names(*manager, ImportFamily::Aircraft);
        QStringList sorted = aircraft;
        std::sort(sorted.begin(), sorted.end(), [](const QString& a, const QString& b) {
            return compareNoCase(a, b) < 0;
        });
        QCOMPARE(aircraft, sorted);

        const ImportGroup* ridge = groupOf(*manager, u"Ridge R9"_s);
        QCOMPARE(ridge->addon.sAuthors, u"A / B"_s);
        QCOMPARE(ridge->addon.colAddonItems().size(), size_t(3)); // not the backup
        const ImportGroup* stock = groupOf(*manager, u"Ridge R172"_s);
        QVERIFY(stock->addon.boolOriginal_Addon && !ridge->addon.boolOriginal_Addon);
        QCOMPARE(stock->addon.sAuthors, u"Microsoft"_s);

        const qsizetype groups = qsizetype(manager->groups().size());
        m_world->prompts.expect(u"Are you sure you want to import these addons?"_s, Button::Yes);
        QVERIFY(import(*manager));
        QCOMPARE(m_world->prompts.asked.last().caption,
                 u"Confirm Import of "_s + QString::number(groups) + u" Addons"_s);
        QCOMPARE(manager->results().count(importgroup::imported), groups);
        QVERIFY(
            manager->results().texts(importgroup::imported).contains(u"Ridge R9 was imported."_s));
        QCOMPARE(differences(before, m_world->tree()), QStringList());

        const auto rows = addonRows(*m_world->database, {});
        QVERIFY(rows.ok());
        QCOMPARE(rows->size(), groups);
        for (const AddonRow& row : *rows) {
            QCOMPARE(row.addon.status, InstallationStatus::Imported);
            const auto items = AddonItems::load(*m_world->database, row.addon.key);
            QVERIFY(items.ok());
            for (const DetailRecord& detail : items->details())
                QCOMPARE(items->state(*m_world->database, m_world->gate, detail), ItemState::Ok);
        }
        const auto history = modDatabase_Addon::history(*m_world->database);
        QVERIFY(history->first().addon.description.startsWith(u"Addon imported 20"_s));
        QVERIFY(gather(properNames())->groups().empty());

        const OverlappingPack pack = overlappingPacks(3).first();
        const auto key = m_world->install(writePack(m_dir->path(), pack.name, pack.files));
        QVERIFY2(key.ok(), qPrintable(key.text));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(differences(before, m_world->tree(), Backups::Ignore), QStringList());
    }

    void options_decideWhatIsFound()
    {
        ImportOptions options = properNames();
        options.chkIncludeAllFoldersAndFiles = false;
        options.chkImportScenery = options.chkImportMissions = options.chkImportSounds = false;
        auto manager = gather(options);
        QCOMPARE(groupOf(*manager, u"Ridge R9"_s)->addon.colAddonItems().size(), size_t(2));
        QVERIFY(names(*manager, ImportFamily::Scenery).isEmpty());
        QVERIFY(names(*manager, ImportFamily::Sounds).isEmpty());

        // Without the aircraft its panel is found when it may stand in an aircraft's folder.
        options.chkImportAircraft = options.chkImportPanels_StandaloneOnly = false;
        manager = gather(options);
        QVERIFY(names(*manager, ImportFamily::Panels).contains(u"Ridge panel"_s));
        options.chkImportPanels = false;
        QVERIFY(gather(options)->groups().empty());

        options = ImportOptions();
        options.chkImportPanels = false;
        m_world->prompts.expect(u"Are you sure you want to import this addon?"_s, Button::No);
        manager = gather(options);
        for (ImportGroup& group : manager->groups())
            group.boolProcess = group.family == ImportFamily::Sounds;
        QVERIFY(names(*manager, ImportFamily::Sounds).first().startsWith(u"Sound imported 20"_s));
        QCOMPARE(import(*manager).kind, ErrorKind::Declined);
        for (ImportGroup& group : manager->groups())
            group.boolProcess = false;
        QCOMPARE(import(*manager).text, u"No groups to import."_s);
        QVERIFY(addonRows(*m_world->database, {})->isEmpty());
    }

    void previouslyImported_newFilesJoinTheirAddon()
    {
        ImportOptions options = properNames();
        auto manager = gather(options);
        QVERIFY(import(*manager));
        const qint64 key = groupOf(*manager, u"Ridge R9"_s)->addon.lngKey;
        write(u"SimObjects\\Airplanes\\Ridge\\texture\\new.bmp"_s);
        write(u"Addon Scenery\\scenery\\later.bgl"_s); // scenery has no file that stands for it
        QCOMPARE(names(*gather(options), ImportFamily::Aircraft), QStringList());
        options.chkDoNotImportPreviouslyImportedAddons = false;
        manager = gather(options);
        const auto known =
            std::find_if(manager->groups().begin(),
                         manager->groups().end(),
                         [&](const ImportGroup& group) { return group.addon.lngKey == key; });
        QVERIFY(known != manager->groups().end());
        QVERIFY(!known->boolProcess);
        known->boolProcess = true;
        QVERIFY(import(*manager));
        QCOMPARE(addonRow(*m_world->database, key)->files, 4);
    }

    void groupThatFails_isLeftOutAlone()
    {
        const auto manager = gather(properNames());
        QVERIFY(QDir(m_world->hostPath(u"SimObjects\\Airplanes\\Ridge"_s)).removeRecursively());
        QVERIFY(import(*manager));
        QCOMPARE(manager->results().texts(importgroup::notImported),
                 QStringList{u"Ridge R9 was NOT properly imported due to an error."_s});
        QCOMPARE(addonRows(*m_world->database, {})->size(),
                 qsizetype(manager->groups().size() - 1));
        QCOMPARE(modDatabase_Addon::history(*m_world->database)->size(),
                 qsizetype(manager->groups().size() - 1));
    }

    void picture_goesWithItsAddon()
    {
        ImportOptions options;
        options.chkImportAircraft = options.chkImportScenery = options.chkImportMissions = false;
        options.chkImportSounds = false;
        const auto manager = gather(options);
        QVERIFY(import(*manager));
        const qint64 key = manager->groups().front().addon.lngKey;
        const QString picture = pictures::addonPicture(m_world->global, key);
        QVERIFY(m_world->actions.replace(picture, "jpeg"));
        QVERIFY(modDatabase_Addon::addPicture(*m_world->database, {key, 0, {}, true}));
        QVERIFY(m_world->remove(key));
        QVERIFY(!m_world->files.exists(winpath::parent(picture)));
        QVERIFY(modDatabase_Addon::picturesOf(*m_world->database, key)->isEmpty());
    }

    void startup_looksOnlyWhenAsked()
    {
        auto manager = gather();
        QVERIFY(!manager->Addons_ImportAtStartup());
        m_world->settings.setFlag(SettingKey::SearchForNewAddonsDuringStartup, true);
        QVERIFY(manager->Addons_ImportAtStartup());
        QVERIFY(import(*manager));
        QVERIFY(!manager->Addons_ImportAtStartup());
    }

    /// Each place holds what the topmost add-on put there, the imported one being the lowest.
    void anyOrderOverImported_endsRight()
    {
        const QList<OverlappingPack> packs = overlappingPacks(5, 4);
        QStringList archives;
        for (const OverlappingPack& pack : packs)
            archives += writePack(m_dir->filePath(u"packs"_s), pack.name, pack.files);
        const QString start = m_dir->filePath(u"start"_s);
        m_world.reset();
        copyTree(m_dir->filePath(u"world"_s), start);
        QRandomGenerator random(20261122);
        int importedBelow = 0;
        for (int sequence = 0; sequence < 25; ++sequence) {
            const QString folder = m_dir->filePath(u"trial"_s);
            m_catalogue.reset();
            m_world.reset();
            QDir(folder).removeRecursively();
            copyTree(start, folder);
            m_world = std::make_unique<FlowWorld>(folder);
            m_world->prompts.defaultsBeyondQueue = true;
            QVERIFY(m_world->start());
            const TreeSnapshot beginning = m_world->tree();
            QSet<QString> taken; ///< folded paths of files that imported add-ons may take along
            QSet<QString> gone;  ///< those that they did
            QList<qint64> standing;
            QList<int> free = {0, 1, 2, 3};
            bool imported = false;
            for (int step = 0; step < 12; ++step) {
                const int what = random.bounded(10);
                if (what < 4 && !free.isEmpty()) {
                    const int pack = free.takeAt(random.bounded(free.size()));
                    const auto key = m_world->install(archives[pack]);
                    if (key) {
                        standing += *key;
                    } else { // its picture needs an aircraft that was imported and removed
                        QVERIFY2(!gone.isEmpty(), qPrintable(key.text));
                        free += pack;
                    }
                } else if (what < 7 && !imported) {
                    imported = true;
                    importedBelow += standing.isEmpty() ? 0 : 1;
                    const auto manager = gather();
                    QVERIFY(import(*manager));
                    for (const ImportGroup& group : manager->groups())
                        standing += group.addon.lngKey;
                } else if (!standing.isEmpty()) {
                    takeOut(standing, random.bounded(standing.size()), taken, gone);
                }
            }
            while (!standing.isEmpty())
                takeOut(standing, random.bounded(standing.size()), taken, gone);
            CSceneryCfgMgr library(ConfigAccess(m_world->services),
                                   m_world->global.sceneryCfgFile,
                                   m_world->global.simulatorFolder);
            QVERIFY(library.SceneryCfg_Load());
            for (const CSceneryCfgItem& area : library.areas())
                QVERIFY2(m_world->files.isFolder(library.folderOf(area)), qPrintable(area.sTitle));
            QStringList wrong;
            for (const QString& line : differences(beginning, m_world->tree(), Backups::Ignore)) {
                const QString path = line.section(u": "_s, 1);
                if (imported && line.endsWith(u"/Scenery.cfg"_s))
                    continue; // without the areas of imported sceneries
                const bool folderGone = line.startsWith(u"missing"_s) && beginning[path].folder;
                if (!folderGone &&
                    !(line.startsWith(u"missing"_s) && taken.contains(path.toLower())))
                    wrong += line;
            }
            QVERIFY2(wrong.isEmpty(),
                     qPrintable(u"sequence %1: "_s.arg(sequence) + wrong.join(u"; "_s)));
            for (auto it = beginning.cbegin(); it != beginning.cend(); ++it) {
                if (gone.contains(it.key().toLower()))
                    QVERIFY2(!m_world->tree().contains(it.key()), qPrintable(it.key()));
            }
        }
        QVERIFY(importedBelow > 3);
    }

private:
    void
    takeOut(QList<qint64>& standing, qsizetype index, QSet<QString>& taken, QSet<QString>& gone)
    {
        const qint64 key = standing.takeAt(index);
        const auto inTree = [](QString path) {
            return path.replace(u"C:\\"_s, u"drive_c/"_s).replace(u'\\', u'/').toLower();
        };
        QSet<QString> own;
        if (modDatabase_Addon::addon(*m_world->database, key)->status ==
            InstallationStatus::Imported) {
            const auto details = modDatabase_Addon::detailsOf(*m_world->database, key);
            QVERIFY(details.ok());
            for (const DetailRecord& detail : *details)
                own += inTree(detail.location + detail.name);
            taken += own;
        }
        // Originals, and what others depend on, are asked about.
        Result removed = m_world->remove(key);
        for (int questions = 1; removed.kind == ErrorKind::Declined && questions < 4; ++questions) {
            for (int i = 0; i < questions; ++i)
                m_world->prompts.expect(QString(), Button::Yes);
            removed = m_world->remove(key);
        }
        QVERIFY2(removed.ok, qPrintable(removed.text));
        QVERIFY(!m_world->anyFailed);
        for (const QString& text : m_world->results.texts(resultgroup::processed)) {
            const QString path = inTree(text.chopped(QStringView(u" was removed.").size()));
            if (own.contains(path))
                gone += path;
        }
    }
};

VT_TEST_CLASS(TestImport)
#include "test_import.moc"
