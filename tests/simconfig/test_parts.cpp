// CPanel and CSound, on a small simulator in the likeness of a real one.
#include "engine/ConfigDisk.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSound.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QString airplanes = u"C:\\FSX\\SimObjects\\Airplanes\\"_s;
const QString guestPanel = airplanes + u"Guest\\panel\\panel.cfg"_s;

const QByteArray cubPanel =
    crlf("// Panel of the Cub; a pilot's own|[Window Titles]|Window00=Main Panel|"
         "Window01=GPS // map|[Window00]|file=main.bmp ; day|"
         "file_1024=main_1024.bmp|palette=MAIN|"
         "gauge00=Cessna!Airspeed,\t10, 20 // stock|"
         "gauge01 = Cessna.cab!Altimeter, 1,2,3,4|"
         "gauge02=Magnetic!Compass,1,2,3,4,./config.ini|gauge03=radios!COM1, 1,2|"
         "gauge04=Clock!Clock, 5,6|gauge05=Stop Watch, 5,6|gauge06=Jets/Lever, 5,6|"
         "gauge07=Jets!Lever, 5,6|gauge08=|;gauge09=Gone!Away, 1|[Window01]|"
         "file=pages/map.bmp|[VCockpit01]|size_mm=512,512|file=$vc_1.bmp|"
         "texture=$vc_1|[vcockpit02]|size_mm=256|file=vc.bmp|"
         "gauge00=..\\Panel\\Jets!Lever.xml, 1,1|");

const QByteArray cubSound = crlf("[SOUND_ENGINE]|number_of_engines=1|[COMBUSTION.1.00]|"
                                 "filename=run // no ending|[STARTER.1]|filename=start.wma|[STALL]|"
                                 "FileName=stall|[HORN]|filename=..\\..\\Other\\sound\\horn.wav|");

/// What panels and sounds of shipped and downloaded aircraft look like, faultless. Paths are those
/// of Windows.
struct Simulator : ConfigDisk
{
    Simulator()
    {
        global.setSimulatorFolder(u"C:\\FSX\\"_s);
        for (const QString& name :
             u"Gauges/Cessna.cab Gauges/Magnetic.gau Gauges/Radios.dll "
             "Gauges/Clock/Clock.xml Gauges/Clock/face.bmp Sound/stall.wav"_s.split(u' '))
            write(u"FSX/"_s + name);
        for (const QString& name :
             u"Cub/Panel/main.bmp|Cub/Panel/Stop Watch.xml|"
             "Cub/Panel/Jets/Lever.xml|Cub/Panel/Jets/lever.bmp|"
             "Cub/Panel/pages/map.bmp|Cub/texture.red/vc.bmp|"
             "Cub/sound/run.wav|Cub/sound/start.wma|Other/sound/horn.wav"_s.split(u'|'))
            put(airplanes + name, "x");
        put(airplanes + u"Cub\\Panel\\Panel.cfg"_s, cubPanel);
        put(airplanes + u"Cub\\sound\\sound.cfg"_s, cubSound);
        put(airplanes + u"Chain\\panel\\panel.cfg"_s, crlf("[fltsim]|alias=Cub\\Panel|"));
    }

    [[nodiscard]] static QString hostOf(const QString& path)
    {
        return path.sliced(3).replace(u'\\', u'/');
    }

    void put(const QString& path, const QByteArray& bytes) { write(hostOf(path), bytes); }

    [[nodiscard]] QByteArray bytesOf(const QString& path) const { return read(hostOf(path)); }

    AliasConfig& part(bool isSound) { return isSound ? static_cast<AliasConfig&>(sound) : panel; }

    GlobalRecord global;
    CPanel panel{access, files, global};
    CSound sound{access, files, global};
};

} // namespace

class TestParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void panel_tellsWhatItNames()
    {
        Simulator sim;
        CPanel& panel = sim.panel;
        QVERIFY(panel.Load(airplanes + u"Cub\\Panel\\panel.cfg"_s));
        QVERIFY(panel.IsOriginal() && !panel.IsAlias());
        QCOMPARE(panel.Title_Get(), u"Cub\\Panel"_s);
        const QList<CPanel::Entry> entries = panel.Entries_Get();
        QCOMPARE(entries.size(), 13);
        QCOMPARE(entries.at(0).bitmap, u"main.bmp"_s);
        QCOMPARE(entries.at(2).section, u"Window00"_s);
        QCOMPARE(entries.at(2).value, u"Cessna!Airspeed,10, 20"_s);
        QCOMPARE(entries.at(2).collection + u'|' + entries.at(2).gauge, u"Cessna|Airspeed"_s);
        QCOMPARE(entries.at(7).collection + u'|' + entries.at(7).gauge, u"Stop Watch|"_s);
        QCOMPARE(panel.WindowTitles_Get().size(), 2);
        QCOMPARE(panel.WindowTitles_Get().at(1).number, 1);
        QCOMPARE(panel.WindowTitles_Get().at(1).text, u"GPS"_s);
        QCOMPARE(panel.VCockpits_Get().size(), 2);
        QCOMPARE(panel.VCockpits_Get().at(1).text, u"256"_s);
        const QString cub = airplanes + u"Cub\\"_s;
        QCOMPARE(panel.GaugeFiles_Existing_Get(),
                 (QStringList{u"C:\\FSX\\Gauges\\Cessna.cab"_s,
                              u"C:\\FSX\\Gauges\\Magnetic.gau"_s,
                              u"C:\\FSX\\Gauges\\Radios.dll"_s,
                              u"C:\\FSX\\Gauges\\Clock\\Clock.xml"_s,
                              u"C:\\FSX\\Gauges\\Clock\\face.bmp"_s,
                              cub + u"Panel\\Stop Watch.xml"_s,
                              cub + u"Panel\\Jets\\Lever.xml"_s,
                              cub + u"Panel\\Jets\\lever.bmp"_s}));
        QCOMPARE(panel.PanelFiles_Get(),
                 (QStringList{cub + u"Panel\\Panel.cfg"_s,
                              cub + u"Panel\\main.bmp"_s,
                              cub + u"Panel\\pages\\map.bmp"_s,
                              cub + u"texture.red\\vc.bmp"_s}));
        QVERIFY(panel.Pictures_CanBeCleared().ok);
        QCOMPARE(panel.Verify_Report_GetTitle(), u"Panel Configuration Report"_s);
        QCOMPARE(panel.Verify_Report(), u"No panel configuration problems were detected."_s);

        sim.put(guestPanel, crlf("[fltsim]|alias=cub/PANEL\t|"));
        QVERIFY(panel.Load(guestPanel));
        QVERIFY(panel.IsAlias());
        QCOMPARE(panel.sAlias, u"cub/PANEL"_s);
        QCOMPARE(panel.sTargetFile, cub + u"Panel\\Panel.cfg"_s);
        QCOMPARE(panel.Entries_Get().size(), 13);
        QCOMPARE(panel.PanelFiles_Get().size(), 5);
        QCOMPARE(panel.PanelFiles_Get().first(), guestPanel);
        QVERIFY(panel.Verify().problems.isEmpty());
        QCOMPARE(panel.Pictures_CanBeCleared().text,
                 u"You can only clear the pictures of original panel definitions."_s);
    }

    void sound_tellsWhatItNames()
    {
        Simulator sim;
        const QString folder = airplanes + u"Cub\\sound\\"_s;
        QVERIFY(sim.sound.Load(folder + u"sound.cfg"_s));
        const auto entries = sim.sound.WAVEntries_Get();
        QCOMPARE(entries.size(), 4);
        QCOMPARE(entries.at(0).file, u"run.wav"_s);
        QCOMPARE(entries.at(3).section, u"HORN"_s);
        const QStringList files = {folder + u"run.wav"_s,
                                   folder + u"start.wma"_s,
                                   u"C:\\FSX\\Sound\\stall.wav"_s,
                                   airplanes + u"Other\\sound\\horn.wav"_s};
        QCOMPARE(sim.sound.SoundFiles_WAVFiles_Get(), files);
        QCOMPARE(sim.sound.SoundFiles_Get(), QStringList{folder + u"sound.cfg"_s} + files);
        QVERIFY(sim.sound.Verify().problems.isEmpty());
    }

    void states()
    {
        const QString dangling = u"refers to another panel but the referenced"_s;
        const QString notValid = u"file is not valid."_s;
        const QString neither =
            u"The panel configuration file is not valid. It is not an original panel definition nor does it reference another panel configuration file."_s;
        const QString nothing = u"This panel will not appear in FS X."_s;
        const QString both = u"yet it also aliases another panel 'Cub\\x'."_s;
        const QByteArray full = "[Window00]|size_mm=1|[a]|filename=b|";
        // message: of the panel
        const Rows<QByteArray, int, int, QString> rows = {
            {"dangling", "[fltsim]|alias=Gone\\x|", 3, 3, dangling},
            {"leads out", "[fltsim]|alias=..\\..\\x|", 3, 3, u"does not exist."_s},
            {"to a file without content", "[fltsim]|alias=Empty\\part|", 4, 4, notValid},
            {"to itself", "[fltsim]|alias=Guest\\part|", 4, 4, notValid},
            {"neither", "[General]|a=1|", 5, 12, neither},
            {"nothing", "", 10, 10, nothing},
            {"only a mark", "\xef\xbb\xbf", 10, 10, nothing},
            {"both", "[fltsim]|alias=Cub\\x|" + full, 11, 11, both},
        };
        for (const auto& [bytes, panelState, soundState, message] : rows) {
            Simulator sim;
            for (const QString& name : {u"Panel.cfg"_s, u"Sound.cfg"_s}) {
                sim.put(airplanes + u"Guest\\part\\"_s + name, crlf(bytes));
                sim.put(airplanes + u"Empty\\part\\"_s + name, "; nothing\r\n");
            }
            QVERIFY(!sim.panel.Load(airplanes + u"Guest\\part\\panel.cfg"_s));
            QCOMPARE(sim.panel.State_Get(), panelState);
            const QString told = sim.panel.State_GetMessage();
            QVERIFY2(told.contains(message), qPrintable(told));
            QVERIFY(!sim.sound.Load(airplanes + u"Guest\\part\\sound.cfg"_s));
            QCOMPARE(sim.sound.State_Get(), soundState);
            QVERIFY(!sim.sound.State_GetMessage().startsWith(u"Unknown"_s));
            QVERIFY(!sim.panel.Load({}));
            QCOMPARE(sim.panel.State_GetMessage(), u"No target panel was provided."_s);
            QVERIFY(!sim.sound.Load(airplanes + u"none.cfg"_s));
            QCOMPARE(sim.sound.State_GetMessage(),
                     u"The sound configuration file does not exist."_s);
        }
        QCOMPARE(CPanel::State_GetMessage(77, {}, {}), u"Unknown panel error. Error code = 77"_s);
    }

    void reports_listWhatIsMissing()
    {
        Simulator sim;
        sim.panel.Load(airplanes + u"Gone\\panel.cfg"_s);
        QCOMPARE(
            sim.panel.Verify_Report(),
            u"- The panel configuration file does not exist.  The file '"_s + airplanes +
                u"Gone\\panel.cfg' was not found.\nUse Repair to attempt to fix panel issues."_s);
        const QString sound = airplanes + u"Cub\\sound\\sound.cfg"_s;
        sim.put(sound, crlf("[a]|filename=gone|[b]|filename=GONE.wav|[c]|filename=off.mp3|"));
        QVERIFY(sim.sound.Load(sound));
        QCOMPARE(
            sim.sound.Verify_Report(),
            u"- One or more audio files specified in the sound configuration file are missing:\n\tgone.wav\n\toff.mp3\nUse Repair to attempt to fix sound issues."_s);
    }

    void faults_areFoundAndMended()
    {
        const QByteArray head = "[Window00]|size_mm=1|";
        const QByteArray cub = "[fltsim]|alias=Cub\\Panel|";
        const QByteArray cubSounds = "[fltsim]|alias=Cub\\sound|";
        const QByteArray alike = " = ..\\Airplanes\\cub-master\\panel|";
        const QByteArray lacking = "gauge00=No!x|";
        const QByteArray wide = utf16("[a]\r\nfilename=run\r\n");
        const QByteArray several = "[window00]\nfile=map.bmp\ngauge00=No!x\n";
        const QString gauges =
            u"gauges specified in the panel configuration file are missing:\n\t"_s;
        const QString bitmaps =
            u"bitmap files specified in the panel configuration file are missing:\n\t"_s;
        const QString gone = u"does not exist."_s;
        const QString chain = u"does not refer to an original panel definition."_s;
        const QString both = u"yet it also aliases"_s;
        const QString form = u"line ends other than CR LF"_s;
        // problem: part of the only one; code: as Repair returns it; change: from, to
        const Rows<QByteArray, QString, int, QByteArrayList> rows = {
            {"gauge gone", head + "gauge00=Gone!Away,1|", gauges + u"Gone!Away"_s, 0, {}},
            {"gauge not in its folder", head + "gauge00=Clock!Alarm|", u"Clock!Alarm"_s, 0, {}},
            {"gauge below",
             head + "gauge00=Deep!x|gauge01=No|",
             u"Deep!x"_s,
             2,
             {"De", "pages\\De"}},
            {"gauge folder", head + "gauge00=Set!Dial|", u"Set!Dial"_s, 1, {"Set", "pages\\Set"}},
            {"two gauges of one name", head + "gauge00=Two!x|", u"Two!x"_s, 0, {}},
            {"bitmap gone", head + "file=none.bmp|", bitmaps + u"none.bmp"_s, 0, {}},
            {"bitmap's type",
             head + "File=main.pcx // old|",
             u"main.pcx"_s,
             1,
             {"pcx // old", "bmp"}},
            {"bitmap below", head + "file=map.bmp|", u"map.bmp"_s, 1, {"=map", "=pages\\map"}},
            {"audio gone", "[a]|filename=x|", u"x.wav"_s, 0, {}},
            {"audio's type", "[a]|filename=start.wav|", u"start.wav"_s, 1, {"wav", "wma"}},
            {"other panel folder",
             "[fltsim]|alias=Cub\\panel.ifr|",
             gone,
             1,
             {"panel.ifr", "Panel"}},
            {"name alike", "; x|[FLTSIM]|Alias" + alike, gone, 1, {alike, "=Cub\\Panel|"}},
            {"alias without folder", "[fltsim]|alias=Cub|", gone, 1, {"Cub", "Cub\\Panel"}},
            {"two could be meant", "[fltsim]|alias=Pair\\panel.night|", gone, 0, {}},
            {"only sounds for others there", "[fltsim]|alias=Other\\sound|", gone, 0, {}},
            {"alias of nobody", "[fltsim]|alias=Nobody\\panel|", gone, 0, {}},
            {"chain", "[fltsim]|alias=Chain\\panel|", chain, 1, {"Chain\\panel", "Cub\\Panel"}},
            {"both, definition whole", cub + "|" + head, both, 1, {cub + "|", ""}},
            {"both, other entries", "[fltsim]|other=1|alias=x|" + head, both, 1, {"alias=x|", ""}},
            {"both, sound", cubSounds + "[a]|filename=gone|", both, 2, {cubSounds, ""}},
            {"both, files lacking", cub + head + lacking, both, 1, {head + lacking, ""}},
            {"bare LF", QByteArray(head).replace('|', '\n'), form, 1, {"\n", "|"}},
            {"UTF-16", wide, u"is a UTF-16 text."_s, 1, {wide, "[a]|filename=run|"}},
            {"several",
             several,
             u"map.bmp"_s,
             2,
             {several, "[window00]|file=pages\\map.bmp|gauge00=No!x|"}},
        };
        for (const auto& [bars, problem, code, change] : rows) {
            const QByteArray before = crlf(bars);
            QByteArray after = bars;
            if (!change.isEmpty())
                after.replace(change.first(), change.last());
            after = crlf(after);
            const bool isSound =
                bars == wide || bars.contains("filename") || bars.contains("sound");
            Simulator sim;
            const QString folder =
                airplanes + (isSound ? u"Cub\\sound.x\\"_s : u"Guest\\panel\\"_s);
            const QString file = folder + (isSound ? u"sound.cfg"_s : u"panel.cfg"_s);
            sim.put(file, before);
            for (const QString& name : u"main.bmp pages/map.bmp pages/Deep.gau pages/Set/Dial.xml "
                                       "run.wav start.wma a/Two.gau b/Two.gau"_s.split(u' '))
                sim.put(folder + name, "x");
            for (const QString& own : {u"panel"_s, u"panel.ifr"_s})
                sim.put(airplanes + u"Pair\\"_s + own + u"\\panel.cfg"_s, crlf(head));
            sim.put(airplanes + u"Other\\soundai\\soundai.cfg"_s, crlf("[a]|filename=stall|"));
            AliasConfig& part = sim.part(isSound);
            part.Load(file);
            const QStringList problems = part.Verify().problems;
            QVERIFY2(problems.join(u'\n').contains(problem), qPrintable(problems.join(u'\n')));
            QCOMPARE(sim.bytesOf(file), before);

            const RepairResult repaired = part.Repair();
            const bool any = code != RepairResult::NotRepaired;
            QVERIFY2(repaired.code == code, qPrintable(repaired.left.join(u'\n')));
            QCOMPARE(repaired.done.isEmpty(), !any);
            QCOMPARE(sim.bytesOf(file), after);
            QCOMPARE(sim.files.isFile(part.BackupFile_Get()), any);
            if (any)
                QCOMPARE(sim.bytesOf(part.BackupFile_Get()), before);
            QVERIFY(!sim.files.isFile(folder + u"Temp.vtb"_s));
            part.Load(file);
            QCOMPARE(part.Verify().problems, repaired.left);
            QCOMPARE(part.Verify().problems.isEmpty(), code == RepairResult::FullyRepaired);
        }
    }

    void repair_bringsALostFileBack()
    {
        Simulator sim;
        const QString folder = airplanes + u"Cub\\Panel\\"_s;
        QVERIFY(sim.actions.copy(folder + u"Panel.cfg"_s, folder + u"Panel.vtb"_s).ok);
        QVERIFY(sim.actions.remove(folder + u"Panel.cfg"_s).ok);
        QVERIFY(!sim.panel.Load(folder + u"Panel.cfg"_s));
        QCOMPARE(sim.panel.Repair().code, int(RepairResult::FullyRepaired));
        QCOMPARE(sim.bytesOf(folder + u"Panel.cfg"_s), cubPanel);
        QVERIFY(sim.files.isFile(folder + u"Panel.vtb"_s));
        QVERIFY(sim.panel.BackupConfigurationFile_Restore().ok);
        QVERIFY(!sim.panel.BackupConfigurationFile_Restore().ok);
        QCOMPARE(sim.panel.State_Get(), 9);
    }

    void aliasSet()
    {
        constexpr bool panel = false;
        constexpr bool sound = true;
        const QByteArray two = "[fltsim]|alias=Cub\\Panel|";
        const QByteArray twoSound = "[fltsim]|alias=Cub\\sound|";
        const QByteArray old = "; mine|[FltSim]|Alias=Old\\panel ; keep|other=1|";
        const QByteArray updated = "; mine|[FltSim]|Alias=Cub\\Panel|other=1|";
        const QByteArray full = "[Window00]|size_mm=1|";
        const QByteArray fullSound = "[a]|filename=b|";
        const QByteArray none; // no file
        const QString cub = u"Cub\\Panel"_s;
        const QString cubSounds = u"Cub\\sound"_s;
        const Rows<bool, QByteArray, QString, int, QByteArray> rows = {
            {"panel, new", panel, none, cub, 0, two},
            {"panel, alias", panel, old, cub, 0, updated},
            {"bare LF", panel, "[fltsim]\nalias=x\n", cub, 0, "[fltsim]\nalias=Cub\\Panel\n"},
            {"panel, full", panel, full, u"/cub/panel/panel.cfg"_s, 0, two},
            {"panel, both", panel, two + full, cub, 0, two},
            {"panel, empty", panel, "", cub, 0, two},
            {"panel, to nothing", panel, full, u"Gone\\panel"_s, 8, full},
            {"panel, to itself", panel, full, u"Guest\\panel"_s, 8, full},
            {"panel, out", panel, full, u"..\\x"_s, 8, full},
            {"panel, to an alias", panel, full, u"Chain\\panel"_s, 0, two},
            {"sound, new", sound, none, cubSounds, 0, twoSound},
            {"sound, alias", sound, "[fltsim]|alias=x|", cubSounds, 0, twoSound},
            {"sound, full", sound, fullSound, cubSounds, 6, fullSound},
            {"sound, to nothing", sound, none, u"Gone\\sound"_s, 8, none},
            {"sound, without audio", sound, none, u"Mute\\sound"_s, 5, none},
        };
        for (const auto& [isSound, bars, alias, state, after] : rows) {
            const QByteArray before = crlf(bars);
            Simulator sim;
            sim.put(airplanes + u"Mute\\sound\\sound.cfg"_s, crlf("[a]|filename=gone|"));
            const QString file = isSound ? airplanes + u"Guest\\sound\\sound.cfg"_s : guestPanel;
            if (!bars.isNull())
                sim.put(file, before);
            AliasConfig& part = sim.part(isSound);
            part.Load(file);
            const Result set = part.Alias_Set(alias);
            QVERIFY2(part.State_Get() == state, qPrintable(set.text));
            QCOMPARE(set.ok, state == 0);
            QVERIFY2(set.ok || set.text.startsWith(part.State_GetMessage()), qPrintable(set.text));
            QCOMPARE(sim.files.isFile(file), !after.isNull());
            QVERIFY(after.isNull() || sim.bytesOf(file) == crlf(after));
            const bool kept = set.ok && !bars.isNull();
            QCOMPARE(sim.files.isFile(part.BackupFile_Get()), kept);
            QVERIFY(!kept || sim.bytesOf(part.BackupFile_Get()) == before);
            if (set.ok)
                QCOMPARE(part.Verify().problems.isEmpty(), !before.contains("]\n"));
        }
    }

    void aliasSet_keepsEveryDefinition()
    {
        Simulator sim;
        for (const char* definition : {"[Window00]|a=1|", "[Window00]|a=2|", "[Window00]|a=1|"}) {
            sim.put(guestPanel, crlf(definition));
            sim.panel.Load(guestPanel);
            QVERIFY(sim.panel.Alias_Set(u"Cub\\Panel"_s).ok);
        }
        const QString folder = winpath::parent(guestPanel);
        QCOMPARE(sim.bytesOf(folder + u"Panel.vtb"_s), crlf("[Window00]|a=1|"));
        QCOMPARE(sim.bytesOf(folder + u"Panel 2.vtb"_s), crlf("[Window00]|a=2|"));
        QCOMPARE(sim.files.names(folder).size(), 3);
        QCOMPARE(sim.panel.Alias_TextFor(airplanes + u"Cub\\Panel\\Panel.cfg"_s), u"Cub\\Panel"_s);
        QVERIFY(sim.panel.Alias_TextFor(u"C:\\Elsewhere\\Panel.cfg"_s).isEmpty());
    }

    void aliasSet_failures_leaveTheFileAlone()
    {
        Simulator sim;
        const QByteArray full = crlf("[Window00]|a=1|");
        sim.put(guestPanel, full);
        const auto set = [&](const QByteArray& failing) {
            sim.panel.Load(guestPanel);
            sim.failOnce(failing);
            return sim.panel.Alias_Set(u"Cub\\Panel"_s);
        };
        QVERIFY(!set("Panel.vtb").ok);
        QCOMPARE(sim.panel.State_Get(), 6);
        const Result failed = set("panel.cfg");
        QCOMPARE(sim.panel.State_Get(), 7);
        QVERIFY2(failed.text.startsWith(u"Could not update the panel configuration file."_s),
                 qPrintable(failed.text));
        QCOMPARE(sim.bytesOf(guestPanel), full);
        sim.panel.Load(guestPanel);
        sim.put(guestPanel, full + "b=2\r\n");
        sim.prompts.expect(u"modified the panel configuration file"_s, Button::No);
        QCOMPARE(sim.panel.Alias_Set(u"Cub\\Panel"_s).kind, ErrorKind::Declined);
        QCOMPARE(sim.bytesOf(guestPanel), full + "b=2\r\n");
    }

    void staged_bytesAreSeen()
    {
        Simulator sim;
        MemoryActions staged;
        const QString target = airplanes + u"Target\\panel\\"_s;
        QVERIFY(staged.replace(guestPanel, crlf("[fltsim]|alias=Target\\panel|")).ok);
        CPanel panel({staged, sim.prompts, sim.ansi}, sim.files, sim.global);
        QVERIFY(!panel.Load(guestPanel));
        QCOMPARE(panel.State_Get(), 3);
        QVERIFY(staged.replace(target + u"Panel.cfg"_s, crlf("[Window00]|file=a.bmp|")).ok);
        QVERIFY(panel.Load(guestPanel));
        QVERIFY(staged.replace(target + u"a.bmp"_s, "x").ok);
        QCOMPARE(panel.PanelFiles_Get().size(), 3);
    }
};

VT_TEST_CLASS(TestParts)

#include "test_parts.moc"
