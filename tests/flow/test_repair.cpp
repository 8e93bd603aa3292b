// Missing and damaged files of an installed add-on are found again and copied into place; a removal
// afterwards still ends at the beginning, wherever the repair was interrupted.
#include "addondb/AddonDatabase.h"
#include "addondb/AddonList.h"
#include "flow/FlowWorld.h"
#include "platform/WinPath.h"
#include "remove/CRepairPresentationManager.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QString stall = u"Sound\\stall.wav"_s;             ///< replaces a file of the simulator's
const QString smoke = u"Effects\\fx_harbour.fx"_s;       ///< in a folder that is there
const QString gauge = u"Gauges\\Harbour\\Harbour.xml"_s; ///< in a folder of its own
const QString cfg = u"SimObjects\\Airplanes\\Heron\\aircraft.cfg"_s;
const QStringList all = {stall, smoke, gauge, cfg};

const DemoFiles packFiles = {
    {u"Sound/stall.wav"_s, "RIFF of the pack"},
    {u"Effects/fx_harbour.fx"_s, "[Library Effect]\r\nLifetime=5\r\n"},
    {u"Gauges/Harbour/Harbour.xml"_s, "<Gauge Name=\"Harbour\"/>"},
    // Bare LF: what is installed are other bytes than those of the archive.
    {u"SimObjects/Airplanes/Heron/aircraft.cfg"_s,
     "[fltsim.0]\ntitle=Heron\nsim=heron\n\n[General]\natc_type=X\n"},
    {u"SimObjects/Airplanes/Heron/heron.air"_s, "air"},
};

} // namespace

class TestRepair : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    QString m_pack;
    TreeSnapshot m_beginning;
    TreeSnapshot m_installed;
    qint64 m_key = 0;

    /// Missing: one file, and a whole folder. Damaged: one that replaced another, one that was
    /// normalised.
    void damage(FlowWorld& world)
    {
        QVERIFY(QFile::remove(world.hostPath(smoke)));
        QVERIFY(QDir(QFileInfo(world.hostPath(gauge)).path()).removeRecursively());
        QVERIFY(world.actions.replace(world.simulatorPath(stall), "RIFF of the disk"));
        QVERIFY(world.actions.replace(world.simulatorPath(cfg), "[General"));
        world.files.newOperation();
    }

    static Result repairAll(FlowWorld& world, qint64 key)
    {
        CRepairPresentationManager repair(world.context, *world.database);
        if (Result set = repair.Setup(key); !set)
            return set;
        if (Result found = repair.RepairItems_Analyze(); !found)
            return found;
        repair.RepairItems_ChooseMostRecent();
        Result fixed = repair.RepairItems_Fix();
        world.results = repair.results();
        return fixed;
    }

    static QStringList damaged(FlowWorld& world, qint64 key)
    {
        CRepairPresentationManager repair(world.context, *world.database);
        if (!repair.Setup(key))
            return {u"not set up"_s};
        QStringList out;
        for (const CRepairItem& item : repair.items().colRepairItems())
            out += winpath::relativeTo(item.path(), world.global.simulatorFolder);
        return out;
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->filePath(u"world"_s));
        m_world->prompts.defaultsBeyondQueue = true;
        QVERIFY(m_world->start());
        m_pack = writePack(m_dir->path(), u"Harbour"_s, packFiles);
        m_beginning = m_world->tree();
        const ResultOf<qint64> key = m_world->install(m_pack);
        QVERIFY2(key.ok(), qPrintable(key.text));
        m_key = *key;
        m_installed = m_world->tree();
    }

    void cleanup() { m_world.reset(); }

    /// The record of a file that its archive cannot give stays, and so does the archive.
    void damagedInTheFileCabinet_isMissingAndComesBack()
    {
        RemovalOptions toCabinet;
        toCabinet.method = RemovalMethod::FileCabinet;
        QVERIFY(m_world->remove(m_key, toCabinet));
        const QString cabinet = m_world->global.cabinetFolder;
        const QString archive = cabinet + m_world->files.names(cabinet).filter(u".zip"_s).value(0);
        QByteArray bytes = *m_world->files.read(archive, 1 << 20);
        const QByteArray name = QByteArray(smoke.toLatin1()).replace('\\', '/').split('/').last();
        const qsizetype header = bytes.lastIndexOf("PK\3\4", bytes.indexOf(name));
        const qsizetype data = bytes.indexOf(name) + name.size() + bytes.at(header + 28);
        bytes[data] = char(bytes.at(data) ^ 0x5A);
        QVERIFY(m_world->actions.replace(archive, bytes));

        const Result again = m_world->reinstall(m_key);
        QVERIFY2(again, qPrintable(again.text));
        QVERIFY(m_world->anyFailed);
        QCOMPARE(damaged(*m_world, m_key), QStringList{smoke});
        QVERIFY(m_world->files.isFile(archive));
        const Result fixed = repairAll(*m_world, m_key);
        QVERIFY2(fixed, qPrintable(fixed.text));
        QCOMPARE(differences(m_installed, m_world->tree(), Backups::Ignore), QStringList());
        QVERIFY(m_world->remove(m_key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void sourceStillThere_everythingComesBack()
    {
        QVERIFY(damaged(*m_world, m_key).isEmpty());
        damage(*m_world);
        QStringList found = damaged(*m_world, m_key);
        found.sort();
        QStringList expected = all;
        expected.sort();
        QCOMPARE(found, expected);

        const Result fixed = repairAll(*m_world, m_key);
        QVERIFY2(fixed.ok, qPrintable(fixed.text));
        QCOMPARE(m_world->results.count(resultgroup::processed), all.size());
        QCOMPARE(differences(m_installed, m_world->tree()), QStringList());
        QVERIFY(damaged(*m_world, m_key).isEmpty());
        const QString kept = m_world->global.backupsFolder + u"Harbour - "_s +
                             QString::number(m_key) + u'\\' + stall;
        QCOMPARE(*m_world->files.read(kept, 100), QByteArray("RIFF of the disk"));

        QVERIFY(m_world->remove(m_key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void noSource_mostRecentOfEqualSize_oneCopyFails()
    {
        damage(*m_world);
        QVERIFY(QFile::remove(m_pack));
        const auto standIn = [this](const QString& path, const QByteArray& bytes, int year) {
            QVERIFY(m_world->actions.replace(m_world->simulatorPath(path), bytes));
            QFile file(m_world->hostPath(path));
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(QDateTime(QDate(year, 5, 1), QTime(12, 0)),
                                     QFileDevice::FileModificationTime));
        };
        const QByteArray effect = packFiles[1].bytes;
        QByteArray similar = effect;
        similar.back() = ' ';
        standIn(u"Old\\fx_harbour.fx"_s, effect, 2008);
        standIn(u"New\\fx_harbour.fx"_s, similar, 2024); // other bytes: the recorded ones go first
        standIn(u"Short\\fx_harbour.fx"_s, "x", 2025);
        standIn(u"Old\\Harbour.xml"_s, "<Gauge Name=\"HARBOUR\"/>", 2008);
        standIn(u"New\\Harbour.xml"_s, "<Gauge Name=\"HArbour\"/>", 2012);

        CRepairPresentationManager repair(m_world->context, *m_world->database);
        QVERIFY(repair.Setup(m_key));
        QVERIFY(repair.RepairItems_Analyze());
        QMap<QString, QStringList> folders;
        for (const CRepairItem& item : repair.items().colRepairItems()) {
            for (const RepairCandidate& one : item.candidates)
                folders[item.item.sName_Installation] +=
                    winpath::relativeTo(one.folder, m_world->global.simulatorFolder);
        }
        QCOMPARE(folders.value(u"fx_harbour.fx"_s), QStringList{u"Old\\"_s});
        QCOMPARE(folders.value(u"Harbour.xml"_s), (QStringList{u"New\\"_s, u"Old\\"_s}));

        repair.RepairItems_ChooseMostRecent();
        QVERIFY(QFile::remove(m_world->hostPath(u"Old\\fx_harbour.fx"_s)));
        m_world->files.newOperation();
        QVERIFY(repair.RepairItems_Fix());
        QCOMPARE(*m_world->files.read(m_world->simulatorPath(gauge), 100),
                 QByteArray("<Gauge Name=\"HArbour\"/>"));
        QVERIFY(!m_world->files.exists(m_world->simulatorPath(smoke)));
        QVERIFY(repair.missingFilesText().startsWith(m_world->simulatorPath(smoke) + u'\n'));
        QVERIFY(!repair.missingFilesText().contains(gauge));
        QVERIFY(repair.results()
                    .texts(resultgroup::failedSpecialActions)
                    .value(0)
                    .contains(u"no longer there"_s));
        // The record follows the copy.
        const QStringList left = damaged(*m_world, m_key);
        QVERIFY(!left.contains(gauge));
        QVERIFY(left.contains(smoke));

        for (const QString& folder : {u"Old"_s, u"New"_s, u"Short"_s})
            QVERIFY(QDir(m_world->hostPath(folder)).removeRecursively());
        QVERIFY(m_world->remove(m_key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void nothingFits_isTold()
    {
        damage(*m_world);
        QVERIFY(QFile::remove(m_pack));
        const TreeSnapshot before = m_world->tree();
        const Result done = repairAll(*m_world, m_key);
        QCOMPARE(done.text,
                 u"Vantrel could not locate any files to use to repair this aircraft."_s);
        QCOMPARE(differences(before, m_world->tree()), QStringList());
    }

    void laterAddonsFile_isNotTouched()
    {
        const QString upper =
            writePack(m_dir->path(), u"Upper"_s, {{u"Sound/stall.wav"_s, "upper"}});
        const ResultOf<qint64> key = m_world->install(upper);
        QVERIFY(key);
        QVERIFY(m_world->actions.replace(m_world->simulatorPath(stall), "broken"));
        QVERIFY(damaged(*m_world, m_key).isEmpty());
        QVERIFY(repairAll(*m_world, *key));
        QCOMPARE(*m_world->files.read(m_world->simulatorPath(stall), 100), QByteArray("upper"));
        QVERIFY(m_world->remove(m_key));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void repair_endsAnywhere_isUndoneOrCompleted()
    {
        damage(*m_world);
        const TreeSnapshot before = m_world->tree();
        m_world.reset();
        const QString base = m_dir->filePath(u"world"_s);
        const QString trial = m_dir->filePath(u"trial"_s);
        const auto work = [this](FlowWorld& world) { (void)repairAll(world, m_key); };
        const auto fresh = [&] {
            QDir(trial).removeRecursively();
            copyTree(base, trial);
        };
        fresh();
        int points = 0;
        {
            FlowWorld world(trial);
            QVERIFY(world.start());
            points = countPoints(world, work);
        }
        QVERIFY(points > 10);
        int undone = 0;
        for (int n = 1; n <= points; n += stride) {
            fresh();
            QVERIFY(runAndEnd(trial, n, work));
            FlowWorld world(trial);
            QVERIFY(world.start());
            const bool repaired = damaged(world, m_key).isEmpty();
            const QStringList wrong = differences(repaired ? m_installed : before, world.tree());
            QVERIFY2(wrong.isEmpty(), qPrintable(u"point %1: "_s.arg(n) + wrong.value(0)));
            undone += repaired ? 0 : 1;
            QVERIFY(repairAll(world, m_key));
            QVERIFY(world.remove(m_key));
            QCOMPARE(differences(m_beginning, world.tree(), Backups::Ignore), QStringList());
        }
        QVERIFY(undone > 0 && undone < points);
    }
};

VT_TEST_CLASS(TestRepair)
#include "test_repair.moc"
