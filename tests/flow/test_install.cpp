// Whole installations and removals of real-shaped add-ons: what the plan says is done, decisions
// about existing files, damaged sources, a full disk, the scenery library, the source's handling.
#include "addondb/AddonDatabase.h"
#include "demo/SampleAddons.h"
#include "flow/FlowWorld.h"
#include "platform/WinPath.h"
#include "support/TestMain.h"
#include "support/ZipBuilder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

class TestInstall : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    TreeSnapshot m_beginning;

    QString pack(const ZipBuilder& zip)
    {
        const QString path = m_dir->filePath(u"pack.zip"_s);
        if (!const_cast<ZipBuilder&>(zip).save(path))
            qFatal("the archive cannot be written");
        return path;
    }

    QByteArray bytesAt(const QString& relative)
    {
        const ResultOf<QByteArray> bytes =
            m_world->files.read(m_world->simulatorPath(relative), 1 << 24);
        return bytes ? *bytes : QByteArray("(missing)");
    }

    QStringList changes(Backups backups = Backups::Ignore)
    {
        return differences(m_beginning, m_world->tree(), backups);
    }

    QByteArray log()
    {
        return m_world->files.read(m_world->global.programFolder + u"INSTALL.LOG"_s, 1 << 24)
            .value.value_or(QByteArray());
    }

    /// Two effects: one is new, the other replaces one of the simulator's.
    QString effectsPack(quint32 stamp = 0x58B2'6000)
    {
        ZipOptions options;
        options.stamp = stamp;
        ZipBuilder zip;
        zip.add("Effects/fx_new.fx", "new effect\r\n", options);
        zip.add("Effects/" + existingEffect().toUtf8(), "replaced\r\n", options);
        zip.add("Effects/fx_other.fx", "other effect\r\n", options);
        return pack(zip);
    }

    QString existingEffect()
    {
        const QList<FileInfo> effects = m_world->files.list(m_world->global.effectsFolder);
        for (const FileInfo& effect : effects) {
            if (endsWithNoCase(effect.name, u".fx"))
                return effect.name;
        }
        qFatal("the demonstration simulator has no effects");
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->filePath(u"world"_s));
        QVERIFY(m_world->start());
        m_beginning = m_world->tree();
    }

    void cleanup()
    {
        m_world.reset();
        m_dir.reset();
    }

    void samples_doWhatThePlanSays_andComeOutAgain_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("otherFolders");
        for (const bool other : {false, true}) {
            for (const SampleAddon& sample : sampleAddons())
                QTest::addRow("%s%s", qPrintable(sample.name), other ? ", other folders" : "")
                    << sample.name << other;
        }
    }

    /// The last method of every family that the add-on holds.
    QList<MethodChoice> lastMethods(const QString& archive, const InstallOptions& options)
    {
        CAddonInstallationDetails details(m_world->context);
        if (!details.prepare(m_world->drives.toWindows(archive), options))
            qFatal("the sample cannot be used");
        QList<MethodChoice> out;
        for (const MappedGroup family : ruledFamilies()) {
            const QList<MethodLabel> offered = methodLabels(family, m_world->global.names);
            if (details.groups(family).empty() || offered.size() < 2)
                continue;
            const QString folder =
                family == MappedGroup::Missions ? u"Missions\\Mine"_s
                : family == MappedGroup::Texture
                    ? m_world->files.list(m_world->global.aircraftFolder).first().name
                    : u"SimObjects\\Airplanes\\Mine"_s;
            out.append({family, offered.last().method, folder});
        }
        return out;
    }

    void samples_doWhatThePlanSays_andComeOutAgain()
    {
        QFETCH(QString, name);
        QFETCH(bool, otherFolders);
        m_world->prompts.defaultsBeyondQueue = true;
        const SampleAddon sample = sampleAddon(name);
        const QString archive = writePack(m_dir->path(), name, sample.files);
        InstallOptions options;
        if (name == u"kestrel-repaint")
            options.aircraftFolder =
                m_world->global.aircraftFolder +
                winpath::name(m_world->files.list(m_world->global.aircraftFolder).first().name);
        if (otherFolders)
            options.methods = lastMethods(archive, options);

        QStringList planned;
        QStringList areas;
        QStringList edited; // aircraft.cfg files that get new sections
        {
            CAddonInstallationDetails details(m_world->context);
            const Result prepared = details.prepare(m_world->drives.toWindows(archive), options);
            QVERIFY2(prepared.ok, qPrintable(prepared.text));
            for (const CAddon_Item& item : details.addon().colAddonItems()) {
                if (item.boolProcess)
                    planned += item.sFolder_Installation + item.sName_Installation;
            }
            for (const SceneryAreaToAdd& area : details.facts().sceneryAreas())
                areas += area.folder;
            for (const PlannedVariant& variant : details.variants())
                edited += foldCase(m_world->drives.toHost(variant.file));
        }
        QCOMPARE(changes(), QStringList()); // planning wrote nothing

        const ResultOf<qint64> key = m_world->install(archive, options);
        QVERIFY2(key.ok(), qPrintable(key.text));
        QStringList done = m_world->results.texts(resultgroup::installed);
        for (QString& text : done)
            text.chop(qstrlen(" was installed."));
        QCOMPARE(done, planned);
        QCOMPARE(m_world->results.count(resultgroup::notInstalled), 0);
        QCOMPARE(m_world->results.count(resultgroup::failedSpecialActions), 0);
        // The tree changed by the planned files and by nothing else.
        QSet<QString> expected;
        for (const QString& path : std::as_const(planned))
            expected.insert(foldCase(m_world->drives.toHost(m_world->files.spelled(path))));
        for (const QString& line : changes()) {
            const QString path =
                m_world->demo.prefixHost + u'/' + line.sliced(line.indexOf(u": ") + 2);
            const bool folder = QFileInfo(path).isDir();
            const bool library = path.endsWith(u"Scenery.cfg") && !areas.isEmpty();
            QVERIFY2(folder || library || edited.contains(foldCase(path)) ||
                         expected.contains(foldCase(path)),
                     qPrintable(line));
        }
        const auto recorded = modDatabase_Addon::detailsOf(*m_world->database, *key);
        QVERIFY(recorded.ok());
        const qsizetype dataFiles = edited.isEmpty() ? 0 : 1; // that tells the variations
        QCOMPARE(recorded->size(), planned.size() + dataFiles);

        QVERIFY(m_world->remove(*key));
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(changes(), QStringList());
        QCOMPARE(m_world->files.filesBelow(m_world->global.originalsFolder), QStringList());
        QCOMPARE(m_world->files.names(m_world->global.addonsFolder), QStringList());
        QCOMPARE(modDatabase_Addon::addons(*m_world->database)->size(), 0);
        const auto history = modDatabase_Addon::history(*m_world->database);
        QVERIFY(history.ok());
        QCOMPARE(history->size(), 1);
        QVERIFY(history->first().dateUninstalled.isValid());
    }

    void existingFiles_areDecidedByTheUser_data()
    {
        QTest::addColumn<QList<Button>>("answers");
        QTest::addColumn<int>("installed");
        QTest::addColumn<bool>("replaced");
        using Answers = QList<Button>;
        QTest::newRow("yes") << Answers{Button::Yes} << 3 << true;
        QTest::newRow("no") << Answers{Button::No} << 2 << false;
        QTest::newRow("yes to all") << Answers{Button::YesToAll} << 3 << true;
        QTest::newRow("no to all") << Answers{Button::NoToAll} << 2 << false;
        QTest::newRow("cancel") << Answers{Button::Cancel} << 1 << false;
    }

    void existingFiles_areDecidedByTheUser()
    {
        QFETCH(QList<Button>, answers);
        QFETCH(int, installed);
        QFETCH(bool, replaced);
        const QString effect = existingEffect();
        const QByteArray old = bytesAt(u"Effects\\"_s + effect);
        for (const Button answer : answers)
            m_world->prompts.expect(u"The following file already exists"_s, answer);
        const ResultOf<qint64> key = m_world->install(effectsPack());
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(m_world->results.count(resultgroup::installed), installed);
        QCOMPARE(bytesAt(u"Effects\\"_s + effect), replaced ? QByteArray("replaced\r\n") : old);
        if (installed == 2)
            QVERIFY(m_world->results.texts(resultgroup::notInstalled)
                        .first()
                        .endsWith(u"because the client decided not to install the file."));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList());
    }

    void toAll_answersEveryLaterFile()
    {
        // The same add-on once more: every file exists now.
        m_world->prompts.expect(u"already exists"_s, Button::Yes);
        const ResultOf<qint64> first = m_world->install(effectsPack());
        QVERIFY(first.ok());
        m_world->prompts.expect(u"already exists"_s, Button::NoToAll);
        const ResultOf<qint64> none = m_world->install(effectsPack());
        QVERIFY(!none.ok()); // nothing was left to install
        QCOMPARE(m_world->results.count(resultgroup::notInstalled), 3);
        m_world->prompts.expect(u"already exists"_s, Button::YesToAll);
        const ResultOf<qint64> second = m_world->install(effectsPack());
        QVERIFY(second.ok());
        QCOMPARE(m_world->results.count(resultgroup::installed), 3);
        QVERIFY(m_world->remove(*first));
        QCOMPARE(m_world->results.count(resultgroup::processed), 0);
        QVERIFY(m_world->results.texts(resultgroup::notProcessed)
                    .first()
                    .endsWith(u" was NOT removed because another addon depends on it."));
        QVERIFY(m_world->remove(*second));
        QCOMPARE(changes(), QStringList());
    }

    void newerOnly_leavesMoreRecentFiles()
    {
        InstallOptions options;
        options.replace = ReplacePolicy::Newer;
        // The simulator's files are from 2006; 1990 is older, 2024 is more recent.
        const QByteArray old = bytesAt(u"Effects\\"_s + existingEffect());
        ResultOf<qint64> key = m_world->install(effectsPack(0x1421'6000), options);
        QVERIFY(key.ok());
        QCOMPARE(m_world->results.texts(resultgroup::notInstalled).size(), 1);
        QVERIFY(m_world->results.texts(resultgroup::notInstalled)
                    .first()
                    .endsWith(u" was NOT installed because the existing file was more recent."));
        QCOMPARE(bytesAt(u"Effects\\"_s + existingEffect()), old);
        QVERIFY(m_world->remove(*key));
        key = m_world->install(effectsPack(), options);
        QVERIFY(key.ok());
        QCOMPARE(m_world->results.count(resultgroup::installed), 3);
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList());
    }

    void readOnlyFile_isAnnounced_replaced_andComesBackReadOnly()
    {
        const QString effect = existingEffect();
        const QByteArray host = QFile::encodeName(m_world->hostPath(u"Effects\\"_s + effect));
        QCOMPARE(chmod(host, 0444), 0);
        m_beginning = m_world->tree();
        m_world->prompts.expect(u"The following read-only file already exists"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(effectsPack());
        QVERIFY(key.ok());
        QCOMPARE(bytesAt(u"Effects\\"_s + effect), QByteArray("replaced\r\n"));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList()); // the snapshot tells read-only files apart
    }

    void log_tellsEveryDecision()
    {
        m_world->prompts.expect(u"already exists"_s, Button::Yes);
        QVERIFY(m_world->install(effectsPack()).ok());
        const QByteArray text = log();
        for (const QByteArray& line :
             {QByteArray("Installing addon ...begin.\r\n"),
              QByteArray(44, '-') + " FX_NEW.FX\r\n     Installing file Effects\\fx_new.fx to ",
              QByteArray("   Destination file does not exist. Install this one straightaway.\r\n"),
              QByteArray(
                  "   File already exists.\r\n   Sizes are different!\r\n   Ask user if file "
                  "should be replaced-show ConfirmFileReplace dialog.\r\n   User opted to "
                  "install this file.\r\n   Copy file to Originals.\r\n   Copy source file "
                  "to destination.\r\n"),
              QByteArray(136, '-') + "\r\n",
              QByteArray("Installing addon ...end.\r\n")})
            QVERIFY2(text.contains(line), line.constData());
    }

    void unreadableEntries_areCode4_andTheOthersGoOn()
    {
        ZipOptions wrong;
        wrong.crc = 0x12345678;
        ZipOptions locked;
        locked.encrypted = true;
        ZipBuilder zip;
        zip.add("Effects/fx_a.fx", "good");
        zip.add("Effects/fx_b.fx", "bad", wrong);
        zip.add("Sound/new/folder/b.wav", "bad", wrong); // leaves no folder behind either
        // No question is asked about a file that cannot come; its password is.
        const auto noPassword = [this] {
            m_world->prompts.expectText(u"are encrypted. Enter the archive's password"_s,
                                        std::nullopt);
        };
        noPassword();
        zip.add("Effects/" + existingEffect().toUtf8(), "secret", locked);
        zip.add("Effects/fx_c.fx", "good");
        const ResultOf<qint64> key = m_world->install(pack(zip));
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(m_world->results.count(resultgroup::installed), 2);
        const QStringList notInstalled = m_world->results.texts(resultgroup::notInstalled);
        QCOMPARE(notInstalled.size(), 3);
        QCOMPARE(
            notInstalled.first(),
            m_world->simulatorPath(
                u"Effects\\fx_b.fx was NOT installed because the file could not be extracted from the zip file."_s));
        const QStringList causes = m_world->results.texts(resultgroup::failedSpecialActions);
        QCOMPARE(causes.size(), 3);
        QVERIFY2(causes.first().contains(m_world->simulatorPath(u"Effects\\fx_b.fx"_s)) &&
                     causes.first().contains(u"its check sum (CRC) is wrong"),
                 qPrintable(causes.first()));
        QVERIFY2(causes.last().contains(u"is encrypted"), qPrintable(causes.last()));
        QCOMPARE(bytesAt(u"Effects\\fx_b.fx"_s), QByteArray("(missing)"));
        QCOMPARE(modDatabase_Addon::detailsOf(*m_world->database, *key)->size(), 2);
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList());

        ZipBuilder all;
        all.add("Effects/fx_b.fx", "secret", locked);
        noPassword();
        const ResultOf<qint64> none = m_world->install(pack(all));
        QVERIFY(!none.ok());
        QVERIFY2(none.text.startsWith(u"Nothing was installed: none of the files of '"_s) &&
                     none.text.contains(u"pack.zip"_s) && none.text.contains(u"is encrypted"_s),
                 qPrintable(none.text));
    }

    void fullDisk_leavesNothingBehind_data()
    {
        QTest::addColumn<int>("point");
        for (const int point : {1, 3, 5})
            QTest::addRow("at file %d", point) << point;
    }

    void fullDisk_leavesNothingBehind()
    {
        QFETCH(int, point);
        m_world->prompts.defaultsBeyondQueue = true;
        const SampleAddon sample = sampleAddon(u"swift-aircraft"_s);
        int left = point;
        m_world->gate.faultHook = [&](const char* action, const QByteArray&) {
            return qstrcmp(action, "stage") == 0 && --left <= 0 ? ENOSPC : 0;
        };
        const ResultOf<qint64> key =
            m_world->install(writePack(m_dir->path(), sample.name, sample.files));
        m_world->gate.faultHook = {};
        QVERIFY(!key.ok());
        QVERIFY(key.text.contains(u"the disk is full"));
        QCOMPARE(key.kind, ErrorKind::Surroundings);
        QCOMPARE(changes(Backups::Compare), QStringList());
        QCOMPARE(modDatabase_Addon::addons(*m_world->database)->size(), 0);
        QCOMPARE(m_world->files.filesBelow(m_world->global.originalsFolder), QStringList());
    }

    void changedFile_isSetAside_whenItsAddonGoes()
    {
        m_world->prompts.expect(u"already exists"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(effectsPack());
        QVERIFY(key.ok());
        QVERIFY(m_world->actions.replace(m_world->simulatorPath(u"Effects\\fx_new.fx"_s), "mine"));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList());
        const QStringList kept = m_world->files.filesBelow(m_world->global.backupsFolder);
        QCOMPARE(kept.size(), 1);
        QCOMPARE(*m_world->files.read(m_world->global.backupsFolder + kept.first(), 100),
                 QByteArray("mine"));
        QVERIFY(m_world->results.texts(resultgroup::specialActions)
                    .join(u'\n')
                    .contains(m_world->global.backupsFolder + kept.first()));
    }

    void missingFile_isTold_andTheRestGoes()
    {
        m_world->prompts.expect(u"already exists"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(effectsPack());
        QVERIFY(key.ok());
        const QString effect = existingEffect();
        QVERIFY(QFile::remove(m_world->hostPath(u"Effects\\fx_new.fx"_s)));
        m_world->files.newOperation();
        QVERIFY(m_world->remove(*key));
        QCOMPARE(m_world->results.texts(resultgroup::notProcessed),
                 QStringList({m_world->simulatorPath(
                     u"Effects\\fx_new.fx was NOT removed because it no longer exists."_s)}));
        QCOMPARE(changes(), QStringList());
        QVERIFY(effect == existingEffect());
    }

    void removal_stoppedBetweenFiles_changesNothing()
    {
        m_world->prompts.expect(u"already exists"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(effectsPack());
        QVERIFY(key.ok());
        QVERIFY(m_world->actions.replace(m_world->simulatorPath(u"Effects\\fx_new.fx"_s), "mine"));
        const TreeSnapshot installed = m_world->tree();
        m_world->status.looksUntilStop = 2;
        const Result stopped = m_world->remove(*key);
        m_world->status.looksUntilStop = -1;
        QVERIFY(!stopped.ok);
        QCOMPARE(stopped.kind, ErrorKind::Declined);
        QCOMPARE(differences(installed, m_world->tree(), Backups::Compare), QStringList());
        QCOMPARE(modDatabase_Addon::detailsOf(*m_world->database, *key)->size(), 3);
        QCOMPARE(m_world->files.filesBelow(m_world->global.backupsFolder), QStringList());
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList());
    }

    void failedFile_staysRecorded_withItsAddon()
    {
        m_world->prompts.expect(u"already exists"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(effectsPack());
        QVERIFY(key.ok());
        m_world->gate.faultHook = [](const char* action, const QByteArray& host) {
            return qstrcmp(action, "carry out") == 0 && host.endsWith("fx_new.fx") ? EACCES : 0;
        };
        QVERIFY(m_world->remove(*key));
        m_world->gate.faultHook = {};
        QVERIFY(m_world->anyFailed);
        QVERIFY(m_world->results.texts(resultgroup::notProcessed)
                    .contains(m_world->simulatorPath(
                        u"Effects\\fx_new.fx was NOT removed due to an error."_s)));
        const auto left = modDatabase_Addon::detailsOf(*m_world->database, *key);
        QVERIFY(left.ok());
        QCOMPARE(left->size(), 1);
        QVERIFY(modDatabase_Addon::addon(*m_world->database, *key).ok());
        QVERIFY(m_world->remove(*key)); // tried again
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(changes(), QStringList());
    }

    void configuration_isBroughtToTheSimulatorsForm()
    {
        ZipBuilder zip;
        zip.add("Bird/aircraft.cfg", "[fltsim.0]\ntitle=Bird\nsim=bird\n[General]\natc_type=X\n");
        zip.add("Bird/bird.air", "air");
        zip.add("Bird/model/model.cfg", "[models]\nnormal=bird\n");
        zip.add("Bird/model/bird.mdl", "mdl");
        const ResultOf<qint64> key = m_world->install(pack(zip));
        QVERIFY2(key.ok(), qPrintable(key.text));
        QCOMPARE(bytesAt(u"SimObjects\\Airplanes\\Bird\\aircraft.cfg"_s),
                 QByteArray("[fltsim.0]\r\ntitle=Bird\r\nsim=bird\r\n[General]\r\natc_type=X\r\n"));
        QCOMPARE(m_world->results.count(resultgroup::specialActions), 2);
    }

    void sceneryLibrary_isRestored_afterEveryOrder()
    {
        m_world->prompts.defaultsBeyondQueue = true;
        QList<qint64> keys;
        for (const char* name : {"Alpha", "Beta", "Gamma"}) {
            ZipBuilder zip;
            zip.add(QByteArray(name) + "/scenery/a.bgl", name);
            zip.add(QByteArray(name) + "/texture/a.dds", name);
            const ResultOf<qint64> key = m_world->install(pack(zip));
            QVERIFY2(key.ok(), qPrintable(key.text));
            QVERIFY(m_world->results.texts(resultgroup::specialActions)
                        .contains(u"Scenery library was updated."_s));
            keys.prepend(*key);
        }
        keys.swapItemsAt(0, 1);
        for (const qint64 key : keys)
            QVERIFY(m_world->remove(key));
        QCOMPARE(changes(), QStringList());

        // An area whose folder holds another's scenery stays.
        ZipBuilder zip;
        zip.add("Delta/scenery/a.bgl", "delta").add("Delta/texture/a.bmp", "of no panel");
        const ResultOf<qint64> key = m_world->install(pack(zip));
        QVERIFY(key.ok());
        QCOMPARE(modDatabase_Addon::addon(*m_world->database, *key)->categories,
                 Categories(Category::Scenery));
        const QString other = m_world->global.sceneryAddonFolder + u"Delta\\scenery\\mine.bgl"_s;
        QVERIFY(m_world->actions.replace(other, "by hand"));
        QVERIFY(m_world->remove(*key));
        QVERIFY(m_world->results.texts(resultgroup::specialActions)
                    .join(u'\n')
                    .contains(u"because there are additional scenery files in that folder."));
    }

    void areasThatCannotGo_stayRecorded_andGoLater_data()
    {
        QTest::addColumn<bool>("unreadable"); // or else the writing fails
        QTest::newRow("library unreadable") << true;
        QTest::newRow("library not written") << false;
    }

    void areasThatCannotGo_stayRecorded_andGoLater()
    {
        QFETCH(bool, unreadable);
        m_world->prompts.defaultsBeyondQueue = true;
        ZipBuilder zip;
        zip.add("Delta/scenery/a.bgl", "delta").add("Fjord/scenery/a.bgl", "fjord");
        const ResultOf<qint64> key = m_world->install(pack(zip));
        QVERIFY(key.ok());
        const QString library = m_world->global.sceneryCfgFile;
        const QByteArray bytes = *m_world->files.read(library, 1 << 24);
        if (unreadable)
            QVERIFY(m_world->actions.replace(library, QByteArray("[Area.001]\n", 11)));
        else
            m_world->gate.faultHook = [](const char* action, const QByteArray& host) {
                return qstrcmp(action, "carry out") == 0 && host.endsWith("Scenery.cfg") ? EACCES
                                                                                         : 0;
            };
        QVERIFY(m_world->remove(*key));
        m_world->gate.faultHook = {};
        QVERIFY(m_world->anyFailed);
        QStringList failed = m_world->results.texts(resultgroup::failedSpecialActions);
        QVERIFY2(failed.takeLast().contains(library), "the cause is missing");
        QCOMPARE(
            failed,
            (QStringList{
                u"Scenery library area covering 'Delta' was not removed from the scenery library."_s,
                u"Scenery library area covering 'Fjord' was not removed from the scenery library."_s,
                u"Scenery library was NOT updated."_s}));
        QCOMPARE(m_world->results.count(resultgroup::specialActions), 0);
        QCOMPARE(modDatabase_Addon::sceneryAreasOf(*m_world->database, *key)->size(), 2);
        if (unreadable) {
            // A new add-on's files come all the same; each area is told once.
            ZipBuilder other;
            other.add("Ghent/scenery/a.bgl", "ghent").add("Hull/scenery/a.bgl", "hull");
            const ResultOf<qint64> second = m_world->install(pack(other));
            QVERIFY(second.ok());
            QCOMPARE(m_world->results.count(resultgroup::installed), 2);
            QCOMPARE(m_world->results.count(resultgroup::failedSpecialActions), 4);
            QVERIFY(m_world->remove(*second));
            QVERIFY(m_world->actions.replace(library, bytes));
        }
        QVERIFY(m_world->remove(*key)); // tried again
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(changes(), QStringList());
        QVERIFY(!modDatabase_Addon::addon(*m_world->database, *key).ok());
    }

    void sharedArea_goesWithTheLastOfItsAddons_inEveryOrder()
    {
        m_world->prompts.defaultsBeyondQueue = true;
        QStringList packs;
        for (const char* name : {"one", "two", "three"}) {
            ZipBuilder zip;
            zip.add("Bay/scenery/" + QByteArray(name) + ".bgl", name);
            zip.add("Bay/scenery/same.bgl", name);
            if (qstrcmp(name, "three") == 0)
                zip.add("Cove/scenery/a.bgl", name);
            packs += m_dir->filePath(QLatin1StringView(name) + u".zip"_s);
            QVERIFY(zip.save(packs.last()));
        }
        QList<int> in = {0, 1, 2};
        do {
            QList<int> out = {0, 1, 2};
            do {
                QMap<int, qint64> keys;
                for (const int pack : std::as_const(in)) {
                    const ResultOf<qint64> key = m_world->install(packs[pack]);
                    QVERIFY2(key.ok(), qPrintable(key.text));
                    keys[pack] = *key;
                }
                for (const int pack : std::as_const(out))
                    QVERIFY(m_world->remove(keys[pack]));
                const QStringList wrong = changes();
                QVERIFY2(wrong.isEmpty(),
                         qPrintable(u"in %1%2%3 out %4%5%6: "_s.arg(in[0])
                                        .arg(in[1])
                                        .arg(in[2])
                                        .arg(out[0])
                                        .arg(out[1])
                                        .arg(out[2]) +
                                    wrong.value(0)));
            } while (std::next_permutation(out.begin(), out.end()));
        } while (std::next_permutation(in.begin(), in.end()));
    }

    void secondRemoval_doesNotTouchWhatTheFirstSetAside()
    {
        m_world->prompts.expect(u"already exists"_s, Button::Yes);
        const ResultOf<qint64> key = m_world->install(effectsPack());
        QVERIFY(key.ok());
        for (const char* name : {"fx_new.fx", "fx_other.fx"})
            QVERIFY(m_world->actions.replace(
                m_world->simulatorPath(u"Effects\\"_s + QLatin1StringView(name)), "mine"));
        const auto failAt = [](const char* wanted, const char* ending) {
            return [wanted, ending](const char* action, const QByteArray& host) {
                return qstrcmp(action, wanted) == 0 && host.endsWith(ending) ? EACCES : 0;
            };
        };
        m_world->gate.faultHook = failAt("carry out", "fx_other.fx");
        QVERIFY(m_world->remove(*key));
        QVERIFY(m_world->anyFailed);
        m_world->gate.faultHook = failAt("commit", "apply");
        QVERIFY(!m_world->remove(*key)); // taken back
        m_world->gate.faultHook = {};
        m_world->files.newOperation();
        QVERIFY(m_world->files.filesBelow(m_world->global.backupsFolder)
                    .join(u'\n')
                    .contains(u"fx_new.fx"));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList());
        QCOMPARE(m_world->files.filesBelow(m_world->global.backupsFolder)
                     .filter(u"fx_other.fx"_s)
                     .isEmpty(),
                 false);
    }

    void source_isArchivedOrDeleted()
    {
        const QString drawer = m_dir->filePath(u"drawer"_s);
        m_world->gate.setRoot(RootId::Chosen, m_world->drives.toWindows(m_dir->path()));
        InstallOptions options;
        options.replace = ReplacePolicy::Yes;
        options.archiveSourceFolder = m_world->drives.toWindows(drawer + u'/');
        QString source = effectsPack();
        QVERIFY(m_world->install(source, options).ok());
        QVERIFY(!QFile::exists(source));
        QVERIFY(QFile::exists(drawer + u"/pack.zip"_s));

        options.archiveSourceFolder.clear();
        options.deleteSource = true;
        options.confirmSourceHandling = true;
        m_world->prompts.expect(u"Confirm Delete Source Files"_s, Button::No);
        source = effectsPack();
        QVERIFY(m_world->install(source, options).ok());
        QVERIFY(QFile::exists(source));
        m_world->prompts.expect(u"Are you sure you want to delete "_s, Button::Yes);
        QVERIFY(m_world->install(source, options).ok());
        QVERIFY(!QFile::exists(source));
    }
};

VT_TEST_CLASS(TestInstall)
#include "test_install.moc"
