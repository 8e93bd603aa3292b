// Repaints and aircraft that come to an aircraft which is installed already: their sections in
// aircraft.cfg, told by the plan as they then stand, and gone again in any order of removals.
#include "addondb/AddonDatabase.h"
#include "demo/SampleAddons.h"
#include "flow/FlowWorld.h"
#include "simconfig/AddonVariations.h"
#include "simconfig/CAircraft.h"
#include "support/TestMain.h"
#include "support/ZipBuilder.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QByteArray readme = "Blue repaint. Copy the block into aircraft.cfg:\r\n\r\n"
                          "[fltsim.X]\r\ntitle\t= Blue Bird / HS-TBA\r\nsim\t= kestrel_k2\r\n"
                          "model=\r\npanel=nosuch\r\nsound=\r\ntexture\t= blue\r\n"
                          "ui_variation=\"Blue\"\r\n\r\nEnjoy = it!\r\n";
const QByteArray whole = "[fltsim.0]\ntitle=Green Kestrel\nsim=kestrel_k2\ntexture=green\n"
                         "ui_variation=Green\n\n[General]\natc_type=X\n";

} // namespace

class TestFlowVariants : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    TreeSnapshot m_beginning;

    static constexpr auto kestrel = "SimObjects\\Airplanes\\Kestrel_K2\\";

    QString cfgPath() { return m_world->simulatorPath(QLatin1String(kestrel) + u"aircraft.cfg"_s); }

    QByteArray cfg()
    {
        return m_world->files.read(cfgPath(), 1 << 20).value.value_or(QByteArray("(missing)"));
    }

    QString pack(const QString& name, const DemoFiles& files)
    {
        return writePack(m_dir->path(), name, files);
    }

    /// A pack of a whole aircraft for the folder of the installed one.
    QString aircraftPack()
    {
        QByteArray sections = cfg();
        const qsizetype end = sections.indexOf("[General]");
        sections = sections.first(end) + "[fltsim.9]\r\ntitle=Kestrel Merged\r\n" +
                   "sim=kestrel_k2\r\ntexture=merged\r\n\r\n[General]\r\nother=1\r\n";
        return pack(u"full.zip"_s,
                    {{u"SimObjects/Airplanes/Kestrel_K2/aircraft.cfg"_s, sections},
                     {u"SimObjects/Airplanes/Kestrel_K2/kestrel_k2.air"_s, "air"},
                     {u"SimObjects/Airplanes/Kestrel_K2/texture.merged/m.bmp"_s, "m"}});
    }

    QStringList titles()
    {
        CAircraft aircraft{ConfigAccess(m_world->services)};
        aircraft.sConfigurationFile = cfgPath();
        QStringList out;
        for (const CAircraft& variation : aircraft.Variant_Details_GetAll())
            out.append(variation.sTitle);
        return out;
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->path());
        QVERIFY(m_world->start());
        m_beginning = m_world->tree();
    }

    void cleanup() { m_world.reset(); }

    void repaint_data()
    {
        QTest::addColumn<DemoFiles>("files");
        QTest::addColumn<QString>("aircraft"); // chosen by the user
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("folder");
        QTest::newRow("block in a text")
            << DemoFiles{{u"readme.txt"_s, readme}, {u"texture.blue/a.bmp"_s, "a"}} << QString()
            << u"Blue Bird / HS-TBA"_s << u"texture.blue\\"_s;
        QTest::newRow("whole aircraft.cfg without flight model")
            << DemoFiles{{u"aircraft.cfg"_s, whole}, {u"texture.green/a.bmp"_s, "a"}} << QString()
            << u"Green Kestrel"_s << u"texture.green\\"_s;
        QTest::newRow("textures alone")
            << DemoFiles{{u"texture.crimson/a.bmp"_s, "a"}, {u"readme.txt"_s, "Red!"}}
            << QString::fromLatin1(kestrel) << u"Kestrel_K2 crimson"_s << u"texture.crimson\\"_s;
        QTest::newRow("sub-folder as suffix")
            << DemoFiles{{u"aircraft.cfg"_s,
                          QByteArray(whole).replace("texture=green", "texture=Landor/G-CIVB")},
                         {u"texture.Landor/G-CIVB/a.bmp"_s, "a"}}
            << QString() << u"Green Kestrel"_s << u"texture.Landor\\G-CIVB\\"_s;
    }

    void repaint()
    {
        QFETCH(DemoFiles, files);
        QFETCH(QString, aircraft);
        QFETCH(QString, title);
        QFETCH(QString, folder);
        const QString source = pack(u"repaint.zip"_s, files);
        InstallOptions options;
        if (!aircraft.isEmpty())
            options.aircraftFolder = m_world->simulatorPath(aircraft);
        options.masterKey = 1;

        CAddonInstallationDetails details(m_world->context);
        QVERIFY(details.prepare(m_world->drives.toWindows(source), options));
        const PlanFacts plan = details.facts();
        QCOMPARE(plan.variants().size(), 1);
        QCOMPARE(plan.variants().at(0).title, title);
        const LineArray before = LineArray::ofBytes(cfg(), m_world->ansi);

        const ResultOf<qint64> key = m_world->install(source, options);
        QVERIFY2(key, qPrintable(key.text));
        const LineArray after = LineArray::ofBytes(cfg(), m_world->ansi);
        const LineChanges changes = lineChanges(before, after);
        QCOMPARE(changes.removed, QStringList());
        QCOMPARE(changes.added, plan.configChanges().at(0).lines.added);
        const QString bmp = m_world->simulatorPath(QLatin1String(kestrel) + folder + u"a.bmp"_s);
        QVERIFY2(m_world->files.isFile(bmp), qPrintable(bmp));

        CAircraft added{ConfigAccess(m_world->services)};
        added.sConfigurationFile = cfgPath();
        const QStringList sections = added.Variant_SearchByVTTextureAddonMasterKey(*key);
        QCOMPARE(sections.size(), 1);
        QVERIFY(added.Load(cfgPath(), sections.at(0)));
        QCOMPARE(added.Folder_AircraftTexture_Get().toLower(),
                 m_world->simulatorPath(QLatin1String(kestrel) + folder).toLower());
        QCOMPARE(added.sPanel, QString()); // "nosuch" is not there: the aircraft's own
        QVERIFY(!cfg().contains("Enjoy"));

        QVERIFY(m_world->remove(*key));
        QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
    }

    void anyOrderOfRemovals()
    {
        const QString blue =
            pack(u"blue.zip"_s, {{u"readme.txt"_s, readme}, {u"texture.blue/a.bmp"_s, "a"}});
        const QString green =
            pack(u"green.zip"_s, {{u"aircraft.cfg"_s, whole}, {u"texture.green/a.bmp"_s, "a"}});
        const QString full = aircraftPack();
        QList<int> order = {0, 1, 2, 3};
        InstallOptions options;
        options.replace = ReplacePolicy::No; // merging replaces nothing
        do {
            QList<qint64> keys;
            for (const QString& source : {blue, full, blue, green}) {
                const ResultOf<qint64> key = m_world->install(source, options);
                QVERIFY2(key, qPrintable(key.text));
                keys.append(*key);
            }
            QVERIFY(cfg().contains("title=Blue Bird / HS-TBA 2\r\n")); // no title twice
            QVERIFY(titles().contains(u"Kestrel Merged"_s));
            QVERIFY(!cfg().contains("other=1"));
            for (const int which : order) {
                const QStringList before = titles();
                QVERIFY(m_world->remove(keys.at(which)));
                QVERIFY(!m_world->anyFailed);
                QCOMPARE(titles().size(), before.size() - 1);
                CAircraft aircraft{ConfigAccess(m_world->services)};
                QVERIFY(CAircraft::sectionOrder(aircraft.Headers_LoadAll(cfgPath())).good);
            }
            QCOMPARE(differences(m_beginning, m_world->tree(), Backups::Ignore), QStringList());
        } while (std::next_permutation(order.begin(), order.end()));
    }

    void effectsInUseStay()
    {
        // An effect that an aircraft of the user's names from now on.
        const ResultOf<qint64> key = m_world->install(
            pack(u"fx.zip"_s,
                 {{u"Effects/fx_mine.fx"_s, "mine"}, {u"Effects/fx_nobody.fx"_s, "nobody's"}}));
        QVERIFY(key);
        QByteArray lines = cfg();
        lines.replace("[EFFECTS]\r\n", "[EFFECTS]\r\ntouchdown=fx_mine, 1\r\n");
        QVERIFY(m_world->actions.replace(cfgPath(), lines));
        QVERIFY(m_world->remove(*key));
        QVERIFY(m_world->files.isFile(m_world->simulatorPath(u"Effects\\fx_mine.fx"_s)));
        QVERIFY(!m_world->files.exists(m_world->simulatorPath(u"Effects\\fx_nobody.fx"_s)));
        QVERIFY(m_world->results.texts(resultgroup::notProcessed)
                    .join(u'|')
                    .contains(u"because another addon depends on it"_s));
    }
};

VT_TEST_CLASS(TestFlowVariants)
#include "test_variants.moc"
