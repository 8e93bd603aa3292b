// Panels and sounds that several aircraft share: aliases made by an installation, and what becomes
// of those who use a sound or panel that is removed.
#include "addondb/AddonDatabase.h"
#include "demo/DemoAircraft.h"
#include "flow/FlowWorld.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

class TestShared : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FlowWorld> m_world;
    TreeSnapshot m_beginning;

    QString air(const QString& relative)
    {
        return m_world->simulatorPath(u"SimObjects\\Airplanes\\"_s + relative);
    }

    QByteArray bytes(const QString& relative)
    {
        return m_world->files.read(air(relative), 1 << 20).value.value_or("(missing)");
    }

    qint64 install(const DemoFiles& files, const InstallOptions& options = {})
    {
        const ResultOf<qint64> key =
            m_world->install(writePack(m_dir->path(), u"pack.zip"_s, files), options);
        return key ? *key : -1;
    }

    QStringList changes() { return differences(m_beginning, m_world->tree(), Backups::Ignore); }

    static DemoAircraft aircraft(const QString& folder, const QString& alias)
    {
        return {u"SimObjects/Airplanes/"_s + folder,
                folder.toLower(),
                u"Nest"_s,
                folder,
                u"1"_s,
                u"Demo_Kestrel"_s,
                {u"Airspeed"_s},
                alias,
                u"fx_none"_s,
                {{folder + u" White"_s, u"White"_s, {}}}};
    }

private Q_SLOTS:

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(temporaryTemplate());
        m_world = std::make_unique<FlowWorld>(m_dir->filePath(u"world"_s));
        QVERIFY(m_world->start());
        m_beginning = m_world->tree();
    }

    void cleanup() { m_world.reset(); }

    void aliasesOfWhatGoes_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QByteArray>("sound"); // of the aircraft that stays
        const QByteArray old = "[fltsim]\r\nalias=Owl\\sound\r\n";
        QTest::newRow("No") << u"no"_s << old;
        QTest::newRow("Yes") << u"yes"_s << old;
        QTest::newRow("Yes with a new one")
            << u"ticked"_s << QByteArray("[fltsim]\r\nalias=Kestrel_K2\\sound\r\n");
        QTest::newRow("named before")
            << u"named"_s << QByteArray("[fltsim]\r\nalias=Kestrel_K2\\sound\r\n");
        QTest::newRow("named, but it goes as well") << u"itself"_s << old;
    }

    void aliasesOfWhatGoes()
    {
        QFETCH(QString, answer);
        QFETCH(QByteArray, sound);
        const qint64 owl = install(aircraftFiles(aircraft(u"Owl"_s, {})));
        const qint64 wren = install(aircraftFiles(aircraft(u"Wren"_s, u"Owl"_s)));
        QVERIFY(owl > 0 && wren > 0);
        QVERIFY(bytes(u"Wren\\sound\\sound.cfg"_s).contains("alias=Owl\\sound"));
        const TreeSnapshot both = m_world->tree();
        RemovalOptions options;
        ScriptedPrompts& prompts = m_world->prompts;
        if (answer == u"no") {
            prompts.expect(u"Confirm Sound Removal"_s, Button::No);
        } else if (answer == u"yes") {
            prompts.expect(u"Nest Wren (sound)"_s, Button::Yes);
            prompts.expect(u"Confirm Panel Removal"_s, Button::Yes);
        } else if (answer == u"ticked") {
            prompts.expectTicked(u"Confirm Sound Removal"_s, u"Kestrel K2"_s);
            prompts.expect(u"Confirm Panel Removal"_s, Button::Yes);
        } else {
            options.soundInstead = answer == u"named" ? u"Kestrel_K2\\sound"_s : u"Owl\\sound"_s;
            options.panelInstead = u"Kestrel_K2\\panel"_s;
        }
        const Result removed = m_world->remove(owl, options);
        QCOMPARE(bytes(u"Wren\\sound\\sound.cfg"_s), sound);
        const bool goes = answer != u"no" && answer != u"itself";
        QCOMPARE(removed.ok, goes);
        if (!goes)
            QCOMPARE(differences(both, m_world->tree(), Backups::Compare), QStringList());
        if (answer == u"ticked" || answer == u"named") {
            const QString told = m_world->results.texts(resultgroup::specialActions).join(u'|');
            QVERIFY2(
                told.contains(
                    u"Dependent sounds were updated to reference the replacement sound you selected."_s),
                qPrintable(told));
            QCOMPARE(told.contains(u"Dependent panels were updated"_s), answer == u"named");
        }
        QVERIFY(m_world->remove(wren));
        QVERIFY(!m_world->anyFailed);
        if (goes) // nothing counts as changed by the user
            QCOMPARE(changes(), QStringList());
    }

    void folderThatAnAircraftNames_getsAnAlias()
    {
        const qint64 loud =
            install({{u"SimObjects/Airplanes/Kestrel_K2/sound.loud/sound.cfg"_s,
                      "[STARTER.1]\r\nfilename=loud.wav\r\n"},
                     {u"SimObjects/Airplanes/Kestrel_K2/sound.loud/loud.wav"_s, "RIFF"}});
        QVERIFY(loud > 0);
        QByteArray cfg = bytes(u"Kestrel_K2\\aircraft.cfg"_s);
        cfg.replace(cfg.indexOf("sound="), 6, "sound=loud");
        QVERIFY(m_world->actions.replace(air(u"Kestrel_K2\\aircraft.cfg"_s), cfg));
        m_world->files.newOperation();
        RemovalOptions options;
        options.soundInstead = u"Kestrel_K2\\sound"_s;
        QVERIFY(m_world->remove(loud, options));
        QCOMPARE(bytes(u"Kestrel_K2\\sound.loud\\sound.cfg"_s),
                 QByteArray("[fltsim]\r\nalias=Kestrel_K2\\sound\r\n"));
        QVERIFY(!m_world->files.exists(air(u"Kestrel_K2\\sound.loud\\loud.wav"_s)));
    }

    void aircraftWithoutPanel_sharesOne()
    {
        DemoFiles files = aircraftFiles(aircraft(u"Owl"_s, {}));
        files.removeIf([](const DemoFile& file) {
            return file.path.contains(u"/panel/"_s) || file.path.contains(u"/sound/"_s);
        });
        InstallOptions options;
        options.panelFrom = u"Kestrel_K2"_s;
        options.soundFrom = air(u"Kestrel_K2\\sound"_s);
        const QString source = writePack(m_dir->path(), u"owl.zip"_s, files);
        QSet<QString> planned;
        {
            CAddonInstallationDetails details(m_world->context);
            QVERIFY(details.prepare(m_world->drives.toWindows(source), options));
            for (const ConfigChange& change : details.facts().configChanges())
                planned.insert(change.file + u": "_s + change.lines.added.join(u'|'));
        }
        const auto line = [&](const QString& stem) {
            return air(u"Owl\\"_s + stem + u'\\' + stem + u".cfg"_s) +
                   u": [fltsim]|alias=Kestrel_K2\\"_s + stem;
        };
        QCOMPARE(foldCase(QStringList(planned.cbegin(), planned.cend()).join(u'\n')).size(),
                 (line(u"panel"_s) + u'\n' + line(u"sound"_s)).size());
        const ResultOf<qint64> key = m_world->install(source, options);
        QVERIFY2(key, qPrintable(key.text));
        const QStringList told = m_world->results.texts(resultgroup::specialActions);
        QVERIFY(told.contains(u"Panel alias was created."_s));
        QVERIFY(told.contains(u"Sound alias was created."_s));
        QCOMPARE(bytes(u"Owl\\panel\\panel.cfg"_s),
                 QByteArray("[fltsim]\r\nalias=Kestrel_K2\\panel\r\n"));
        QVERIFY(m_world->remove(*key));
        QCOMPARE(changes(), QStringList());

        options.panelFrom = u"Nosuch"_s;
        QVERIFY(!m_world->install(source, options));
        QCOMPARE(changes(), QStringList());
    }

    void aircraftCfgThatCannotBeRenamed_isForgotten()
    {
        // The section cannot come to the aircraft: its records say so, and later edits work.
        const DemoFiles repaint = {
            {u"readme.txt"_s, "[fltsim.X]\r\ntitle=Blue\r\nsim=kestrel_k2\r\ntexture=blue\r\n"},
            {u"texture.blue/a.bmp"_s, "a"}};
        m_world->gate.faultHook = [](const char* action, const QByteArray& host) {
            return qstrcmp(action, "carry out") == 0 && host.endsWith("aircraft.cfg") ? EACCES : 0;
        };
        const qint64 failed = install(repaint);
        m_world->gate.faultHook = {};
        QVERIFY(failed > 0);
        const ResultOf<Place> place = m_world->gate.place(air(u"Kestrel_K2\\aircraft.cfg"_s));
        QVERIFY(!modDatabase_Addon::configBase(*m_world->database, *place));
        QVERIFY(
            m_world->files.names(m_world->global.originalsFolder + u"Configuration\\"_s).isEmpty());
        const qint64 second = install(repaint);
        QVERIFY(modDatabase_Addon::configBase(*m_world->database, *place)->edits == 1);
        QVERIFY(m_world->remove(second));
        QVERIFY(m_world->remove(failed));
        QCOMPARE(changes(), QStringList());
    }
};

VT_TEST_CLASS(TestShared)
#include "test_shared.moc"
