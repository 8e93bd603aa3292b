// What an installation could not install, tried again: it comes to the record that is there, and a
// removal afterwards still ends at the beginning.
#include "addondb/AddonDatabase.h"
#include "flow/FlowWorld.h"
#include "support/TestMain.h"
#include "support/ZipBuilder.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

class TestFlowComplete : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    TreeSnapshot m_beginning;

    static constexpr auto kestrel = "SimObjects\\Airplanes\\Kestrel_K2\\";

    /// An archive in which the entries \a damaged have a wrong check sum.
    QString pack(const std::vector<std::pair<QByteArray, QByteArray>>& files,
                 const QSet<QByteArray>& damaged = {})
    {
        ZipBuilder zip;
        for (const auto& [name, bytes] : files) {
            ZipOptions options;
            if (damaged.contains(name))
                options.crc = 1;
            zip.add(name, bytes, options);
        }
        const QString path = m_dir->filePath(u"pack.zip"_s);
        return zip.save(path) ? path : QString();
    }

    QList<AddonRecord> recorded() { return *modDatabase_Addon::addons(*m_world->database); }

    qsizetype filesOf(qint64 key)
    {
        return modDatabase_Addon::detailsOf(*m_world->database, key)->size();
    }

    void removeAll(qint64 key)
    {
        const Result removed = m_world->remove(key);
        QVERIFY2(removed, qPrintable(removed.text));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->path());
        QVERIFY(m_world->start());
        m_beginning = m_world->tree();
        m_world->prompts.defaultsBeyondQueue = true;
    }

    void cleanup() { m_world.reset(); }

    void failedFiles_comeToTheSameRecord()
    {
        const std::vector<std::pair<QByteArray, QByteArray>> files = {
            {"Effects/fx_a.fx", "a"},
            {"Effects/fx_b.fx", "b"},
            {"SimObjects/Airplanes/Kestrel_K2/texture/new.bmp", "new"},
            {"docs/manual.txt", "read me"},
            {"docs/more.txt", "and me"},
            {"scenery/Here/scenery/a.bgl", "bgl"},
            {"scenery/Here/scenery/b.bgl", "bgl 2"}};
        const ResultOf<qint64> key = m_world->install(
            pack(files, {"Effects/fx_b.fx", "docs/more.txt", "scenery/Here/scenery/b.bgl"}));
        QVERIFY2(key, qPrintable(key.text));
        QCOMPARE(m_world->results.count(resultgroup::notInstalled), 3);
        const qsizetype before = filesOf(*key);
        const AddonRecord first = recorded().first();
        const QString areas =
            QString::fromLatin1(*m_world->files.read(m_world->global.sceneryCfgFile, 1 << 20));

        // Still damaged: nothing changes.
        const Result none = m_world->complete(*key, m_dir->filePath(u"pack.zip"_s));
        QVERIFY(!none && none.text.startsWith(u"Nothing was installed"_s));
        QCOMPARE(filesOf(*key), before);

        // One of them, then the others.
        const QString whole = pack(files);
        Result done = m_world->complete(*key, whole, {u"Effects\\fx_b.fx"_s});
        QVERIFY2(done, qPrintable(done.text));
        QCOMPARE(m_world->results.texts(resultgroup::installed),
                 QStringList{m_world->simulatorPath(u"Effects\\fx_b.fx was installed."_s)});
        QCOMPARE(filesOf(*key), before + 1);
        done = m_world->complete(*key, whole);
        QVERIFY2(done, qPrintable(done.text));
        QCOMPARE(filesOf(*key), before + 3);
        QCOMPARE(m_world->files.read(m_world->simulatorPath(u"Effects\\fx_b.fx"_s), 10).value,
                 QByteArray("b"));
        QCOMPARE(QString::fromLatin1(*m_world->files.read(m_world->global.sceneryCfgFile, 1 << 20)),
                 areas);

        // Nothing is left, and another source is not taken for this one.
        done = m_world->complete(*key, whole);
        QVERIFY2(!done && done.text.contains(u"has everything that"_s), qPrintable(done.text));
        done = m_world->complete(
            *key, pack({{"Effects/fx_a.fx", "another"}, {"Effects/fx_new.fx", "new"}}));
        QVERIFY2(!done && done.text.contains(u"holds other files"_s), qPrintable(done.text));

        // One add-on, as it was named, installed and dated, in one place below Addons.
        QCOMPARE(recorded().size(), 1);
        QCOMPARE(recorded().first().name, first.name);
        QCOMPARE(recorded().first().dateInstalled, first.dateInstalled);
        QCOMPARE(recorded().first().categories, first.categories);
        QCOMPARE(modDatabase_Addon::history(*m_world->database)->size(), 1);
        QCOMPARE(m_world->files.filesBelow(m_world->global.addonsFolder).size(), 2);
        removeAll(*key);
    }

    void chosenFolders_holdForTheRest()
    {
        InstallOptions options;
        options.targets = {{u"fx_a.fx"_s, m_world->simulatorPath(u"Effects\\mine\\"_s)}};
        const std::vector<std::pair<QByteArray, QByteArray>> files = {{"Effects/fx_a.fx", "a"},
                                                                      {"Effects/fx_b.fx", "b"}};
        const ResultOf<qint64> key = m_world->install(pack(files, {"Effects/fx_b.fx"}), options);
        QVERIFY2(key, qPrintable(key.text));
        QVERIFY(m_world->complete(*key, pack(files)));
        QVERIFY(m_world->files.isFile(m_world->simulatorPath(u"Effects\\mine\\fx_b.fx"_s)));
        removeAll(*key);
    }

    void replacedFile_isKept()
    {
        const QString wanted = QLatin1String(kestrel) + u"kestrel_k2.air"_s;
        const QByteArray old = *m_world->files.read(m_world->simulatorPath(wanted), 1 << 20);
        QByteArray name = wanted.toLatin1();
        name.replace('\\', '/');
        const std::vector<std::pair<QByteArray, QByteArray>> files = {{"Effects/fx_a.fx", "a"},
                                                                      {name, "mine"}};
        const ResultOf<qint64> key = m_world->install(pack(files, {name}));
        QVERIFY2(key, qPrintable(key.text));
        const Result done = m_world->complete(*key, pack(files));
        QVERIFY2(done, qPrintable(done.text));
        QCOMPARE(*m_world->files.read(m_world->simulatorPath(wanted), 10), QByteArray("mine"));
        removeAll(*key);
        QCOMPARE(*m_world->files.read(m_world->simulatorPath(wanted), 1 << 20), old);
    }

    void variations_areNotAddedTwice_data()
    {
        QTest::addColumn<QString>("aircraft");
        QTest::newRow("told by a text") << QString();
        QTest::newRow("chosen") << QString::fromLatin1(kestrel);
    }

    void variations_areNotAddedTwice()
    {
        QFETCH(QString, aircraft);
        const QByteArray block = "[fltsim.X]\r\ntitle=Blue Bird\r\nsim=kestrel_k2\r\n"
                                 "texture=blue\r\nui_variation=Blue\r\n";
        const std::vector<std::pair<QByteArray, QByteArray>> files = {
            {"readme.txt", aircraft.isEmpty() ? block : QByteArray("Blue!")},
            {"texture.blue/a.bmp", "a"},
            {"texture.blue/b.bmp", "b"}};
        InstallOptions options;
        options.aircraftFolder = aircraft;
        const ResultOf<qint64> key = m_world->install(pack(files, {"texture.blue/b.bmp"}), options);
        QVERIFY2(key, qPrintable(key.text));
        const QString cfg = m_world->simulatorPath(QLatin1String(kestrel) + u"aircraft.cfg"_s);
        const QByteArray once = *m_world->files.read(cfg, 1 << 20);
        QCOMPARE(once.count("texture=blue"), 1);
        const Result done = m_world->complete(*key, pack(files));
        QVERIFY2(done, qPrintable(done.text));
        QVERIFY(!m_world->anyFailed);
        QCOMPARE(*m_world->files.read(cfg, 1 << 20), once);
        QVERIFY(m_world->files.isFile(
            m_world->simulatorPath(QLatin1String(kestrel) + u"texture.blue\\b.bmp"_s)));
        removeAll(*key);
    }
};

VT_TEST_CLASS(TestFlowComplete)

#include "test_complete.moc"
