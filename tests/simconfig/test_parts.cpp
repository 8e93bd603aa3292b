// CPanel and CSound, on a small simulator in the likeness of a real one.
#include "engine/ConfigDisk.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSound.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;

namespace {

const QString airplanes = u"C:\\FSX\\SimObjects\\Airplanes\\"_s;

/// What panels and sounds of shipped and downloaded aircraft look like, faultless.
struct Simulator : test::ConfigDisk
{
    Simulator()
    {
        global.setSimulatorFolder(u"C:\\FSX\\"_s);
        for (const char* name : {"Gauges/Cessna.cab",
                                 "Gauges/Magnetic.gau",
                                 "Gauges/Radios.dll",
                                 "Gauges/Clock/Clock.xml",
                                 "Gauges/Clock/face.bmp",
                                 "Sound/stall.wav",
                                 "SimObjects/Airplanes/Cub/Panel/main.bmp",
                                 "SimObjects/Airplanes/Cub/Panel/Stop Watch.xml",
                                 "SimObjects/Airplanes/Cub/Panel/Jets/Lever.xml",
                                 "SimObjects/Airplanes/Cub/Panel/Jets/lever.bmp",
                                 "SimObjects/Airplanes/Cub/Panel/pages/map.bmp",
                                 "SimObjects/Airplanes/Cub/texture.red/vc.bmp",
                                 "SimObjects/Airplanes/Cub/sound/run.wav",
                                 "SimObjects/Airplanes/Cub/sound/start.wma",
                                 "SimObjects/Airplanes/Other/sound/horn.wav"})
            write(u"FSX/"_s + QLatin1StringView(name), "x");
        write(u"FSX/SimObjects/Airplanes/Cub/Panel/Panel.cfg"_s, cubPanel);
        write(u"FSX/SimObjects/Airplanes/Cub/sound/sound.cfg"_s, cubSound);
    }

    [[nodiscard]] static QString hostOf(const QString& windowsPath)
    {
        return windowsPath.sliced(3).replace(u'\\', u'/');
    }

    void put(const QString& windowsPath, const QByteArray& bytes)
    {
        write(hostOf(windowsPath), bytes);
    }

    [[nodiscard]] QByteArray bytesOf(const QString& windowsPath) const
    {
        return read(hostOf(windowsPath));
    }

    static const QByteArray cubPanel;
    static const QByteArray cubSound;

    GlobalRecord global;
    CPanel panel{access, files, global};
    CSound sound{access, files, global};
};

const QByteArray Simulator::cubPanel = "// Panel of the Cub; a pilot's own\r\n"
                                       "[Window Titles]\r\n"
                                       "Window00=Main Panel\r\n"
                                       "Window01=GPS // map\r\n"
                                       "[Window00]\r\n"
                                       "file=main.bmp ; day\r\n"
                                       "file_1024=main_1024.bmp\r\n"
                                       "palette=MAIN\r\n"
                                       "gauge00=Cessna!Airspeed,\t10, 20 // stock\r\n"
                                       "gauge01 = Cessna.cab!Altimeter, 1,2,3,4\r\n"
                                       "gauge02=Magnetic!Compass,1,2,3,4,./config.ini\r\n"
                                       "gauge03=radios!COM1, 1,2\r\n"
                                       "gauge04=Clock!Clock, 5,6\r\n"
                                       "gauge05=Stop Watch, 5,6\r\n"
                                       "gauge06=Jets/Lever, 5,6\r\n"
                                       "gauge07=Jets!Lever, 5,6\r\n"
                                       "gauge08=\r\n"
                                       ";gauge09=Gone!Away, 1\r\n"
                                       "[Window01]\r\n"
                                       "file=pages/map.bmp\r\n"
                                       "[VCockpit01]\r\n"
                                       "size_mm=512,512\r\n"
                                       "file=$vc_1.bmp\r\n"
                                       "texture=$vc_1\r\n"
                                       "[vcockpit02]\r\n"
                                       "size_mm=256\r\n"
                                       "file=vc.bmp\r\n"
                                       "gauge00=..\\Panel\\Jets!Lever.xml, 1,1\r\n";

const QByteArray Simulator::cubSound = "[SOUND_ENGINE]\r\n"
                                       "number_of_engines=1\r\n"
                                       "[COMBUSTION.1.00]\r\n"
                                       "filename=run // no ending\r\n"
                                       "[STARTER.1]\r\n"
                                       "filename=start.wma\r\n"
                                       "[STALL]\r\n"
                                       "FileName=stall\r\n"
                                       "[HORN]\r\n"
                                       "filename=..\\..\\Other\\sound\\horn.wav\r\n";

QByteArray utf16(const QByteArray& ascii)
{
    QByteArray bytes("\xff\xfe", 2);
    for (const char c : ascii)
        bytes.append(c).append('\0');
    return bytes;
}

} // namespace

class TestParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void panel_tellsWhatItNames();
    void sound_tellsWhatItNames();
    void alias_isFollowedAndNamesItsFiles();
    void states_data();
    void states();
    void reports_haveTheirTexts();
    void faults_areFoundAndMended_data();
    void faults_areFoundAndMended();
    void repair_takesNoAliasThatCouldBeMeant();
    void repair_bringsALostFileBack();
    void badInput_isToldOnceAndLeftAlone_data();
    void badInput_isToldOnceAndLeftAlone();
    void aliasSet_data();
    void aliasSet();
    void aliasSet_keepsEveryDefinition();
    void aliasSet_failures_leaveTheFileAlone();
    void staged_bytesAreSeen();
};

void TestParts::panel_tellsWhatItNames()
{
    Simulator sim;
    QVERIFY(sim.panel.Load(airplanes + u"Cub\\Panel\\panel.cfg"_s));
    QVERIFY(sim.panel.IsOriginal() && !sim.panel.IsAlias());
    QCOMPARE(sim.panel.Title_Get(), u"Cub\\Panel"_s);
    const QList<CPanel::Entry> entries = sim.panel.Entries_Get();
    QCOMPARE(entries.size(), 13);
    QCOMPARE(entries.at(0).bitmap, u"main.bmp"_s);
    QCOMPARE(entries.at(2).section, u"Window00"_s);
    QCOMPARE(entries.at(2).value, u"Cessna!Airspeed,10, 20"_s);
    QCOMPARE(entries.at(2).collection, u"Cessna"_s);
    QCOMPARE(entries.at(2).gauge, u"Airspeed"_s);
    QCOMPARE(entries.at(7).collection, u"Stop Watch"_s);
    QVERIFY(entries.at(7).gauge.isEmpty());
    QCOMPARE(sim.panel.WindowTitles_Get().size(), 2);
    QCOMPARE(sim.panel.WindowTitles_Get().at(1).number, 1);
    QCOMPARE(sim.panel.WindowTitles_Get().at(1).text, u"GPS"_s);
    QCOMPARE(sim.panel.VCockpits_Get().size(), 2);
    QCOMPARE(sim.panel.VCockpits_Get().at(1).text, u"256"_s);
    const QString cub = airplanes + u"Cub\\"_s;
    QCOMPARE(sim.panel.GaugeFiles_Existing_Get(),
             (QStringList{u"C:\\FSX\\Gauges\\Cessna.cab"_s,
                          u"C:\\FSX\\Gauges\\Magnetic.gau"_s,
                          u"C:\\FSX\\Gauges\\Radios.dll"_s,
                          u"C:\\FSX\\Gauges\\Clock\\Clock.xml"_s,
                          u"C:\\FSX\\Gauges\\Clock\\face.bmp"_s,
                          cub + u"Panel\\Stop Watch.xml"_s,
                          cub + u"Panel\\Jets\\Lever.xml"_s,
                          cub + u"Panel\\Jets\\lever.bmp"_s}));
    QCOMPARE(sim.panel.PanelFiles_Get(),
             (QStringList{cub + u"Panel\\Panel.cfg"_s,
                          cub + u"Panel\\main.bmp"_s,
                          cub + u"Panel\\pages\\map.bmp"_s,
                          cub + u"texture.red\\vc.bmp"_s}));
    QVERIFY(sim.panel.Pictures_CanBeCleared().ok);
}

void TestParts::sound_tellsWhatItNames()
{
    Simulator sim;
    const QString folder = airplanes + u"Cub\\sound\\"_s;
    QVERIFY(sim.sound.Load(folder + u"sound.cfg"_s));
    const auto entries = sim.sound.WAVEntries_Get();
    QCOMPARE(entries.size(), 4);
    QCOMPARE(entries.at(0).file, u"run.wav"_s);
    QCOMPARE(entries.at(3).section, u"HORN"_s);
    QCOMPARE(sim.sound.SoundFiles_WAVFiles_Get(),
             (QStringList{folder + u"run.wav"_s,
                          folder + u"start.wma"_s,
                          u"C:\\FSX\\Sound\\stall.wav"_s,
                          airplanes + u"Other\\sound\\horn.wav"_s}));
    QCOMPARE(sim.sound.SoundFiles_Get().first(), folder + u"sound.cfg"_s);
    QCOMPARE(sim.sound.SoundFiles_Get().size(), 5);
    QVERIFY(sim.sound.Verify().problems.isEmpty());
}

void TestParts::alias_isFollowedAndNamesItsFiles()
{
    Simulator sim;
    const QString own = airplanes + u"Guest\\panel\\panel.cfg"_s;
    sim.put(own, "[fltsim]\r\nalias=cub/PANEL\t\r\n");
    QVERIFY(sim.panel.Load(own));
    QVERIFY(sim.panel.IsAlias());
    QCOMPARE(sim.panel.sAlias, u"cub/PANEL"_s);
    QCOMPARE(sim.panel.sTargetFile, airplanes + u"Cub\\Panel\\Panel.cfg"_s);
    QCOMPARE(sim.panel.Entries_Get().size(), 13);
    QCOMPARE(sim.panel.PanelFiles_Get().size(), 5);
    QCOMPARE(sim.panel.PanelFiles_Get().first(), own);
    QVERIFY(sim.panel.Verify().problems.isEmpty());
    QCOMPARE(sim.panel.Pictures_CanBeCleared().text,
             u"You can only clear the pictures of original panel definitions."_s);
}

void TestParts::states_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("panelState");
    QTest::addColumn<int>("soundState");
    QTest::addColumn<QString>("message"); ///< of the panel

    QTest::newRow("dangling") << QByteArray("[fltsim]\r\nalias=Gone\\x\r\n") << 3 << 3
                              << u"refers to another panel but the referenced"_s;
    QTest::newRow("leads out") << QByteArray("[fltsim]\r\nalias=..\\..\\x\r\n") << 3 << 3
                               << u"does not exist."_s;
    QTest::newRow("to a file without content")
        << QByteArray("[fltsim]\r\nalias=Empty\\part\r\n") << 4 << 4 << u"file is not valid."_s;
    QTest::newRow("to itself") << QByteArray("[fltsim]\r\nalias=Guest\\part\r\n") << 4 << 4
                               << u"file is not valid."_s;
    QTest::newRow("neither")
        << QByteArray("[General]\r\na=1\r\n") << 5 << 12
        << u"The panel configuration file is not valid. It is not an original panel definition nor does it reference another panel configuration file."_s;
    QTest::newRow("nothing") << QByteArray() << 10 << 10
                             << u"This panel will not appear in FS X."_s;
    QTest::newRow("only a mark") << QByteArray("\xef\xbb\xbf") << 10 << 10
                                 << u"This panel will not appear in FS X."_s;
    QTest::newRow("both") << QByteArray("[fltsim]\r\nalias=Cub\\x\r\n[Window00]\r\nsize_mm=1\r\n"
                                        "[a]\r\nfilename=b\r\n")
                          << 11 << 11 << u"yet it also aliases another panel 'Cub\\x'."_s;
}

void TestParts::states()
{
    QFETCH(QByteArray, bytes);
    Simulator sim;
    for (const QString& name : {u"Panel.cfg"_s, u"Sound.cfg"_s}) {
        sim.put(airplanes + u"Guest\\part\\"_s + name, bytes);
        sim.put(airplanes + u"Empty\\part\\"_s + name, "; nothing\r\n");
    }
    QVERIFY(!sim.panel.Load(airplanes + u"Guest\\part\\panel.cfg"_s));
    QTEST(sim.panel.State_Get(), "panelState");
    QFETCH(QString, message);
    QVERIFY2(sim.panel.State_GetMessage().contains(message),
             qPrintable(sim.panel.State_GetMessage()));
    QVERIFY(!sim.sound.Load(airplanes + u"Guest\\part\\sound.cfg"_s));
    QTEST(sim.sound.State_Get(), "soundState");
    QVERIFY(!sim.sound.State_GetMessage().startsWith(u"Unknown"_s));
    QVERIFY(!sim.panel.Load({}));
    QCOMPARE(sim.panel.State_GetMessage(), u"No target panel was provided."_s);
    QVERIFY(!sim.sound.Load(airplanes + u"none.cfg"_s));
    QCOMPARE(sim.sound.State_GetMessage(), u"The sound configuration file does not exist."_s);
}

void TestParts::reports_haveTheirTexts()
{
    Simulator sim;
    QVERIFY(sim.panel.Load(airplanes + u"Cub\\Panel\\Panel.cfg"_s));
    QCOMPARE(sim.panel.Verify_Report_GetTitle(), u"Panel Configuration Report"_s);
    QCOMPARE(sim.panel.Verify_Report(), u"No panel configuration problems were detected."_s);
    sim.panel.Load(airplanes + u"Gone\\panel.cfg"_s);
    QCOMPARE(sim.panel.Verify_Report(),
             u"- The panel configuration file does not exist.  The file '"_s + airplanes +
                 u"Gone\\panel.cfg' was not found.\nUse Repair to attempt to fix panel issues."_s);
    sim.put(airplanes + u"Cub\\sound\\sound.cfg"_s,
            "[a]\r\nfilename=gone\r\n[b]\r\nfilename=GONE.wav\r\n[c]\r\nfilename=off.mp3\r\n");
    QVERIFY(sim.sound.Load(airplanes + u"Cub\\sound\\sound.cfg"_s));
    QCOMPARE(
        sim.sound.Verify_Report(),
        u"- One or more audio files specified in the sound configuration file are missing:\n\tgone.wav\n\toff.mp3\nUse Repair to attempt to fix sound issues."_s);
    QCOMPARE(CPanel::State_GetMessage(77, {}, {}), u"Unknown panel error. Error code = 77"_s);
}

void TestParts::faults_areFoundAndMended_data()
{
    QTest::addColumn<bool>("isSound");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("problem"); ///< is part of the only problem
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("after");

    const QByteArray head = "[Window00]\r\nsize_mm=1\r\n";
    const QByteArray cub = "[fltsim]\r\nalias=Cub\\Panel\r\n";
    QTest::newRow("gauge gone")
        << false << head + "gauge00=Gone!Away,1\r\n"
        << u"gauges specified in the panel configuration file are missing:\n\tGone!Away"_s << 0
        << head + "gauge00=Gone!Away,1\r\n";
    QTest::newRow("gauge not in its folder")
        << false << head + "gauge00=Clock!Alarm,1\r\n"
        << u"\n\tClock!Alarm"_s << 0 << head + "gauge00=Clock!Alarm,1\r\n";
    QTest::newRow("gauge in a sub-folder")
        << false << head + "gauge00=Deep!Needle, 1,2\r\ngauge01=Gone\r\n"
        << u"\n\tDeep!Needle"_s << 2
        << head + "gauge00=pages\\Deep!Needle, 1,2\r\ngauge01=Gone\r\n";
    QTest::newRow("folder of gauges in a sub-folder")
        << false << head + "gauge00=Set!Dial, 1\r\n"
        << u"\n\tSet!Dial"_s << 1 << head + "gauge00=pages\\Set!Dial, 1\r\n";
    QTest::newRow("bitmap gone")
        << false << head + "file=none.bmp\r\n"
        << u"bitmap files specified in the panel configuration file are missing:\n\tnone.bmp"_s << 0
        << head + "file=none.bmp\r\n";
    QTest::newRow("bitmap of another type") << false << head + "File=main.pcx // old\r\n"
                                            << u"\n\tmain.pcx"_s << 1 << head + "File=main.bmp\r\n";
    QTest::newRow("bitmap in a sub-folder")
        << false << head + "file=map.bmp\r\n"
        << u"\n\tmap.bmp"_s << 1 << head + "file=pages\\map.bmp\r\n";
    QTest::newRow("audio gone") << true << QByteArray("[a]\r\nfilename=x\r\n") << u"\n\tx.wav"_s
                                << 0 << QByteArray("[a]\r\nfilename=x\r\n");
    QTest::newRow("audio of another type")
        << true << QByteArray("[a]\r\nfilename=start.wav\r\n") << u"\n\tstart.wav"_s << 1
        << QByteArray("[a]\r\nfilename=start.wma\r\n");
    QTest::newRow("alias, other panel folder")
        << false << QByteArray("[fltsim]\r\nalias=Cub\\panel.ifr\r\n")
        << u"does not exist.  The file '"_s << 1 << cub;
    QTest::newRow("alias, name alike")
        << false << QByteArray("; mine\r\n[FLTSIM]\r\nAlias = ..\\Airplanes\\cub-master\\panel\r\n")
        << u"does not exist."_s << 1 << QByteArray("; mine\r\n[FLTSIM]\r\nAlias=Cub\\Panel\r\n");
    QTest::newRow("alias without folder")
        << false << QByteArray("[fltsim]\r\nalias=Cub\r\n") << u"does not exist."_s << 1 << cub;
    QTest::newRow("alias, only sounds for others there")
        << true << QByteArray("[fltsim]\r\nalias=Other\\sound\r\n") << u"does not exist."_s << 0
        << QByteArray("[fltsim]\r\nalias=Other\\sound\r\n");
    QTest::newRow("alias of nobody")
        << false << QByteArray("[fltsim]\r\nalias=Nobody\\panel\r\n") << u"does not exist."_s << 0
        << QByteArray("[fltsim]\r\nalias=Nobody\\panel\r\n");
    QTest::newRow("alias of an alias")
        << false << QByteArray("[fltsim]\r\nalias=Chain\\panel\r\n")
        << u"does not refer to an original panel definition."_s << 1 << cub;
    QTest::newRow("both, definition whole")
        << false << "[fltsim]\r\nalias=Cub\\Panel\r\n\r\n" + head << u"yet it also aliases"_s << 1
        << head;
    QTest::newRow("both, other entries")
        << false << "[fltsim]\r\nother=1\r\nalias=Gone\r\n" + head << u"yet it also aliases"_s << 1
        << "[fltsim]\r\nother=1\r\n" + head;
    QTest::newRow("both, sound") << true
                                 << QByteArray("[fltsim]\r\nalias=Cub\\sound\r\n"
                                               "[a]\r\nfilename=gone\r\n")
                                 << u"yet it also aliases"_s << 2
                                 << QByteArray("[a]\r\nfilename=gone\r\n");
    QTest::newRow("both, definition lacks files")
        << false << "[fltsim]\r\nalias=Cub\\Panel\r\n" + head + "gauge00=Gone!x\r\n"
        << u"yet it also aliases"_s << 1 << cub;
    QTest::newRow("bare LF") << false << QByteArray(head).replace("\r\n", "\n")
                             << u"line ends other than CR LF"_s << 1 << head;
    QTest::newRow("UTF-16") << true << utf16("[a]\r\nfilename=run\r\n") << u"is a UTF-16 text."_s
                            << 1 << QByteArray("[a]\r\nfilename=run\r\n");
    QTest::newRow("several at once")
        << false << QByteArray("[window00]\nfile=map.bmp\ngauge00=No!x\n") << u"\n\tmap.bmp"_s << 2
        << QByteArray("[window00]\r\nfile=pages\\map.bmp\r\n"
                      "gauge00=No!x\r\n");
}

void TestParts::faults_areFoundAndMended()
{
    QFETCH(bool, isSound);
    QFETCH(QByteArray, before);
    QFETCH(QString, problem);
    QFETCH(int, code);
    QFETCH(QByteArray, after);
    Simulator sim;
    const QString folder = airplanes + (isSound ? u"Cub\\sound.x\\"_s : u"Guest\\panel\\"_s);
    const QString file = folder + (isSound ? u"sound.cfg"_s : u"panel.cfg"_s);
    sim.put(file, before);
    for (const char* name : {"main.bmp",
                             "pages\\map.bmp",
                             "pages\\Deep.gau",
                             "pages\\Set\\Dial.xml",
                             "run.wav",
                             "start.wma"})
        sim.put(folder + QLatin1StringView(name), "x");
    sim.put(airplanes + u"Chain\\panel\\panel.cfg"_s, "[fltsim]\r\nalias=Cub\\Panel\r\n");
    sim.put(airplanes + u"Other\\soundai\\soundai.cfg"_s, "[a]\r\nfilename=stall\r\n");
    AliasConfig& part = isSound ? static_cast<AliasConfig&>(sim.sound) : sim.panel;
    part.Load(file);
    const QStringList problems = part.Verify().problems;
    QVERIFY2(problems.join(u'\n').contains(problem), qPrintable(problems.join(u'\n')));
    QCOMPARE(sim.bytesOf(file), before);

    const RepairResult repaired = part.Repair();
    QVERIFY2(repaired.code == code, qPrintable(repaired.left.join(u'\n')));
    QCOMPARE(repaired.done.isEmpty(), code == RepairResult::NotRepaired);
    QCOMPARE(sim.bytesOf(file), after);
    QCOMPARE(sim.files.isFile(part.BackupFile_Get()), code != RepairResult::NotRepaired);
    if (code != RepairResult::NotRepaired)
        QCOMPARE(sim.bytesOf(part.BackupFile_Get()), before);
    QVERIFY(!sim.files.isFile(folder + u"Temp.vtb"_s));
    part.Load(file);
    QCOMPARE(part.Verify().problems, repaired.left);
    QCOMPARE(part.Verify().problems.isEmpty(), code == RepairResult::FullyRepaired);
}

void TestParts::repair_takesNoAliasThatCouldBeMeant()
{
    Simulator sim;
    sim.put(airplanes + u"Cub\\Panel.ifr\\panel.cfg"_s, Simulator::cubPanel);
    const QString file = airplanes + u"Guest\\panel\\panel.cfg"_s;
    const QByteArray two = "[fltsim]\r\nalias=Cub\\panel.night\r\n";
    sim.put(file, two);
    sim.panel.Load(file);
    QCOMPARE(sim.panel.Repair().code, int(RepairResult::NotRepaired));
    QCOMPARE(sim.bytesOf(file), two);
    // Two gauges of one name below the panel folder: neither is taken.
    sim.put(airplanes + u"Guest\\panel\\a\\Deep.gau"_s, "x");
    sim.put(airplanes + u"Guest\\panel\\b\\Deep.gau"_s, "x");
    sim.put(file, "[Window00]\r\ngauge00=Deep!x\r\n");
    sim.panel.Load(file);
    QCOMPARE(sim.panel.Repair().code, int(RepairResult::NotRepaired));
}

void TestParts::repair_bringsALostFileBack()
{
    Simulator sim;
    const QString folder = airplanes + u"Cub\\Panel\\"_s;
    QVERIFY(sim.actions.copy(folder + u"Panel.cfg"_s, folder + u"Panel.vtb"_s).ok);
    QVERIFY(sim.actions.remove(folder + u"Panel.cfg"_s).ok);
    QVERIFY(!sim.panel.Load(folder + u"Panel.cfg"_s));
    QCOMPARE(sim.panel.Repair().code, int(RepairResult::FullyRepaired));
    QCOMPARE(sim.bytesOf(folder + u"Panel.cfg"_s), Simulator::cubPanel);
    QVERIFY(sim.files.isFile(folder + u"Panel.vtb"_s));
    QVERIFY(sim.panel.BackupConfigurationFile_Restore().ok);
    QVERIFY(!sim.panel.BackupConfigurationFile_Restore().ok);
    QCOMPARE(sim.panel.State_Get(), 9);
}

void TestParts::badInput_isToldOnceAndLeftAlone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray garbage;
    for (int i = 0; i < 200'000; ++i)
        garbage.append(char((i * 7919 + i / 251) & 0xff));
    QByteArray sections;
    for (int i = 0; i < 1'000'000; ++i)
        sections += "[s" + QByteArray::number(i) + "]\r\n";
    QTest::newRow("garbage") << garbage;
    QTest::newRow("NULs") << QByteArray("[Window00]\r\n\0\0size_mm=1\r\n", 26);
    QTest::newRow("long lines") << QByteArray(10'000'000, 'a') + "\r\n" +
                                       QByteArray(10'000'000, '\'') + '=' +
                                       QByteArray(10'000'000, '/');
    QTest::newRow("a million sections") << sections;
    QTest::newRow("unclosed brackets")
        << QByteArray("[fltsim\r\nalias=Cub\\Panel\r\n[[[Window00\r\n");
    QTest::newRow("UTF-16 beyond the page") << QByteArray("\xff\xfe[\0\x2d\x4e]\0", 8);
}

void TestParts::badInput_isToldOnceAndLeftAlone()
{
    QFETCH(QByteArray, bytes);
    Simulator sim;
    const QString panel = airplanes + u"Bad\\panel\\panel.cfg"_s;
    const QString sound = airplanes + u"Bad\\sound\\sound.cfg"_s;
    sim.put(panel, bytes);
    sim.put(sound, bytes);
    for (AliasConfig* part :
         {static_cast<AliasConfig*>(&sim.panel), static_cast<AliasConfig*>(&sim.sound)}) {
        const QString file = part == &sim.panel ? panel : sound;
        QVERIFY(!part->Load(file));
        QCOMPARE(part->Verify().problems.size(), 1);
        QVERIFY2(part->Verify().problems.first().contains(u"is not valid."_s),
                 qPrintable(part->Verify().problems.first()));
        QCOMPARE(part->Repair().code, int(RepairResult::NotRepaired));
        QVERIFY(sim.bytesOf(file) == bytes);
        QCOMPARE(sim.files.names(winpath::parent(file)).size(), 1);
    }
}

void TestParts::aliasSet_data()
{
    QTest::addColumn<bool>("isSound");
    QTest::addColumn<QByteArray>("before"); ///< "-": no file
    QTest::addColumn<QString>("alias");
    QTest::addColumn<int>("state");
    QTest::addColumn<QByteArray>("after");

    const QByteArray two = "[fltsim]\r\nalias=Cub\\Panel\r\n";
    const QByteArray twoSound = "[fltsim]\r\nalias=Cub\\sound\r\n";
    const QByteArray old = "; mine\r\n[FltSim]\r\nAlias=Old\\panel ; keep\r\nother=1\r\n";
    const QByteArray full = "[Window00]\r\nsize_mm=1\r\n";
    const QByteArray fullSound = "[a]\r\nfilename=b\r\n";
    const QString cub = u"Cub\\Panel"_s;
    QTest::newRow("panel, new") << false << QByteArray("-") << cub << 0 << two;
    QTest::newRow("panel, alias") << false << old << cub << 0
                                  << QByteArray(old).replace("Old\\panel ; keep", "Cub\\Panel");
    QTest::newRow("panel, alias with bare LF") << false << QByteArray("[fltsim]\nalias=x\n") << cub
                                               << 0 << QByteArray("[fltsim]\nalias=Cub\\Panel\n");
    QTest::newRow("panel, full") << false << full << u"/cub/panel/panel.cfg"_s << 0 << two;
    QTest::newRow("panel, both") << false << two + full << cub << 0 << two;
    QTest::newRow("panel, empty") << false << QByteArray() << cub << 0 << two;
    QTest::newRow("panel, to nothing") << false << full << u"Gone\\panel"_s << 8 << full;
    QTest::newRow("panel, to itself") << false << full << u"Guest\\panel"_s << 8 << full;
    QTest::newRow("panel, out") << false << full << u"..\\x"_s << 8 << full;
    QTest::newRow("panel, to an alias") << false << full << u"Chain\\panel"_s << 0 << two;
    QTest::newRow("sound, new") << true << QByteArray("-") << u"Cub\\sound"_s << 0 << twoSound;
    QTest::newRow("sound, alias") << true << QByteArray("[FLTSIM]\r\nalias=x\r\n")
                                  << u"Cub\\sound"_s << 0
                                  << QByteArray("[FLTSIM]\r\nalias=Cub\\sound\r\n");
    QTest::newRow("sound, full") << true << fullSound << u"Cub\\sound"_s << 6 << fullSound;
    QTest::newRow("sound, to nothing")
        << true << QByteArray("-") << u"Gone\\sound"_s << 8 << QByteArray("-");
    QTest::newRow("sound, without audio")
        << true << QByteArray("-") << u"Mute\\sound"_s << 5 << QByteArray("-");
}

void TestParts::aliasSet()
{
    QFETCH(bool, isSound);
    QFETCH(QByteArray, before);
    QFETCH(QString, alias);
    QFETCH(int, state);
    QFETCH(QByteArray, after);
    Simulator sim;
    sim.put(airplanes + u"Chain\\panel\\panel.cfg"_s, "[fltsim]\r\nalias=Cub\\Panel\r\n");
    sim.put(airplanes + u"Mute\\sound\\sound.cfg"_s, "[a]\r\nfilename=gone\r\n");
    const QString file =
        airplanes + (isSound ? u"Guest\\sound\\sound.cfg"_s : u"Guest\\panel\\panel.cfg"_s);
    if (before != "-")
        sim.put(file, before);
    AliasConfig& part = isSound ? static_cast<AliasConfig&>(sim.sound) : sim.panel;
    part.Load(file);
    const Result set = part.Alias_Set(alias);
    QVERIFY2(part.State_Get() == state, qPrintable(set.text));
    QCOMPARE(set.ok, state == 0);
    QCOMPARE(set.ok ? QString() : part.State_GetMessage(),
             set.text.first(std::min(set.text.size(), part.State_GetMessage().size())));
    QCOMPARE(sim.files.isFile(file) ? sim.bytesOf(file) : QByteArray("-"), after);
    QCOMPARE(sim.files.isFile(part.BackupFile_Get()), set.ok && before != "-");
    if (set.ok && before != "-")
        QCOMPARE(sim.bytesOf(part.BackupFile_Get()), before);
    if (set.ok)
        QCOMPARE(part.Verify().problems.isEmpty(), !before.contains("]\n"));
}

void TestParts::aliasSet_keepsEveryDefinition()
{
    Simulator sim;
    const QString folder = airplanes + u"Guest\\panel\\"_s;
    const QString file = folder + u"panel.cfg"_s;
    for (const char* definition :
         {"[Window00]\r\na=1\r\n", "[Window00]\r\na=2\r\n", "[Window00]\r\na=1\r\n"}) {
        sim.put(file, definition);
        sim.panel.Load(file);
        QVERIFY(sim.panel.Alias_Set(u"Cub\\Panel"_s).ok);
    }
    QCOMPARE(sim.bytesOf(folder + u"Panel.vtb"_s), QByteArray("[Window00]\r\na=1\r\n"));
    QCOMPARE(sim.bytesOf(folder + u"Panel 2.vtb"_s), QByteArray("[Window00]\r\na=2\r\n"));
    QCOMPARE(sim.files.names(folder).size(), 3);
    QCOMPARE(sim.panel.Alias_TextFor(airplanes + u"Cub\\Panel\\Panel.cfg"_s), u"Cub\\Panel"_s);
    QVERIFY(sim.panel.Alias_TextFor(u"C:\\Elsewhere\\Panel.cfg"_s).isEmpty());
}

void TestParts::aliasSet_failures_leaveTheFileAlone()
{
    Simulator sim;
    const QString folder = airplanes + u"Guest\\panel\\"_s;
    const QString file = folder + u"panel.cfg"_s;
    const QByteArray full = "[Window00]\r\na=1\r\n";
    sim.put(file, full);
    test::FailingActions failing(sim.actions);
    CPanel panel({failing, sim.prompts, sim.ansi}, sim.files, sim.global);
    failing.failCopyTo = folder + u"Panel.vtb"_s;
    panel.Load(file);
    QVERIFY(!panel.Alias_Set(u"Cub\\Panel"_s).ok);
    QCOMPARE(panel.State_Get(), 6);
    failing.failCopyTo.clear();
    failing.failReplace = file;
    panel.Load(file);
    const Result failed = panel.Alias_Set(u"Cub\\Panel"_s);
    QCOMPARE(panel.State_Get(), 7);
    QVERIFY2(failed.text.startsWith(u"Could not update the panel configuration file."_s),
             qPrintable(failed.text));
    QCOMPARE(sim.bytesOf(file), full);
    failing.failReplace.clear();
    panel.Load(file);
    sim.put(file, full + "b=2\r\n");
    sim.prompts.expect(u"modified the panel configuration file"_s, Button::No);
    QCOMPARE(panel.Alias_Set(u"Cub\\Panel"_s).kind, ErrorKind::Declined);
    QCOMPARE(sim.bytesOf(file), full + "b=2\r\n");
}

void TestParts::staged_bytesAreSeen()
{
    Simulator sim;
    test::MemoryActions staged;
    const QString file = airplanes + u"New\\panel\\panel.cfg"_s;
    const QString target = airplanes + u"Target\\panel\\Panel.cfg"_s;
    QVERIFY(staged.replace(file, "[fltsim]\r\nalias=Target\\panel\r\n").ok);
    CPanel panel({staged, sim.prompts, sim.ansi}, sim.files, sim.global);
    QVERIFY(!panel.Load(file));
    QCOMPARE(panel.State_Get(), 3);
    QVERIFY(staged.replace(target, "[Window00]\r\nfile=a.bmp\r\n").ok);
    QVERIFY(panel.Load(file));
    QVERIFY(staged.replace(airplanes + u"Target\\panel\\a.bmp"_s, "x").ok);
    QCOMPARE(panel.PanelFiles_Get().size(), 3);
}

VT_TEST_CLASS(TestParts)

#include "test_parts.moc"
