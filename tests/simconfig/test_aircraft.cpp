#include "engine/ConfigDisk.h"
#include "shell/GlobalRecord.h"
#include "simconfig/CAircraft.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;
using namespace vt;

namespace {

const QString aircraftCfg = u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\aircraft.cfg"_s;
const QString aircraftHost = u"FSX/SimObjects/Airplanes/Cub/"_s;

const QByteArray cubText = "; a Cub\r\n"
                           "[fltsim.0]\r\n"
                           "title=Piper Cub // stock\r\n"
                           "sim=Cub\r\n"
                           "model=\r\n"
                           "panel=ifr\r\n"
                           "sound=\r\n"
                           "texture=red\r\n"
                           "kb_checklists=Cub_check\r\n"
                           "kb_reference=Cub_ref\r\n"
                           "ui_manufacturer=Piper\r\n"
                           "ui_type=\"J-3\"\r\n"
                           "ui_variation=Pilot's choice\r\n"
                           "ui_typerole=Single Engine Prop\r\n"
                           "ui_createdby=A. Nonym\r\n"
                           "atc_id=N123 'ident\r\n"
                           "vt_texture_addon_master_key=17\r\n"
                           "description=a\\/b\\s c\\nsecond\r\n"
                           "\r\n"
                           "[fltsim.1]\r\n"
                           "title=Empty Cub\r\n"
                           "[General]\r\n"
                           "performance=80 kts\\n100 hp ; not a comment\r\n"
                           "Category=airplane\r\n";

struct Cub : test::ConfigDisk
{
    Cub() { write(aircraftHost + u"aircraft.cfg"_s, cubText); }

    CAircraft aircraft{access};
};

} // namespace

class TestAircraft : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void load_derivesFoldersAndFiles();
    void load_states_data();
    void load_states();
    void load_readsBareLineFeeds();
    void folders_data();
    void folders();
    void details_dependOnTheGeneration();
    void extraInfo_isReadWholeAndTranslated();
    void performance_roundTrips();
    void headers_onlyAircraftSections();
    void headerSectionEmpty();
    void order_data();
    void order();
    void panelUpdate_savesOneLine();
    void panelUpdate_refusesAndLeavesAlone();
    void panelUpdate_afterAnotherChange();
    void restore_bringsTheBackupBack();
};

void TestAircraft::load_derivesFoldersAndFiles()
{
    Cub cub;
    cub.write(aircraftHost + u"Cub_check.txt"_s, "x");
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"FLTSIM.0"_s));
    const QString folder = u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\"_s;
    QCOMPARE(cub.aircraft.State_Get(), 0);
    QCOMPARE(cub.aircraft.sTitle, u"Piper Cub"_s);
    QCOMPARE(cub.aircraft.Folder_AircraftModel_Get(), folder + u"Model\\"_s);
    QCOMPARE(cub.aircraft.sModelConfigurationFile, folder + u"Model\\Model.cfg"_s);
    QCOMPARE(cub.aircraft.sPanelConfigurationFile, folder + u"Panel.ifr\\Panel.cfg"_s);
    QCOMPARE(cub.aircraft.sSoundConfigurationFile, folder + u"Sound\\Sound.cfg"_s);
    QCOMPARE(cub.aircraft.Folder_AircraftTexture_Get(), folder + u"Texture.red\\"_s);
    QCOMPARE(cub.aircraft.sKB_ChecklistFileAlt, folder + u"Cub_check.txt"_s);
    QCOMPARE(cub.aircraft.sKB_ReferencelistFileAlt, folder + u"Cub_ref.htm"_s);
    QCOMPARE(cub.aircraft.sNotesFile, folder + u"Cub_Notes.txt"_s);
    QCOMPARE(cub.aircraft.sFlightDynamicsCDPFile, folder + u"Cub.cdp"_s);
    QCOMPARE(cub.aircraft.sFlightDynamicsDPFile, folder + u"Cub.dp"_s);
    QCOMPARE(cub.aircraft.SIMFilename_Get(), folder + u"Cub.air"_s);
    cub.write(aircraftHost + u"Cub_check.htm"_s, "x");
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    QCOMPARE(cub.aircraft.sKB_ChecklistFileAlt, folder + u"Cub_check.htm"_s);
}

void TestAircraft::load_states_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("section");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("message");

    QTest::newRow("no file") << QString() << u"fltsim.0"_s << 1
                             << u"No target aircraft was provided."_s;
    QTest::newRow("no section") << aircraftCfg << QString() << 1
                                << u"No target aircraft was provided."_s;
    QTest::newRow("missing") << u"C:\\FSX\\none.cfg"_s << u"fltsim.0"_s << 2
                             << u"The aircraft configuration file does not exist."_s;
    QTest::newRow("a folder") << u"C:\\FSX"_s << u"fltsim.0"_s << 2
                              << u"The aircraft configuration file does not exist."_s;
    QTest::newRow("no flight model") << aircraftCfg << u"fltsim.1"_s << 2
                                     << u"The aircraft configuration file does not exist."_s;
}

void TestAircraft::load_states()
{
    QFETCH(QString, file);
    QFETCH(QString, section);
    QFETCH(int, state);
    QFETCH(QString, message);
    Cub cub;
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    QVERIFY(!cub.aircraft.Load(file, section));
    QCOMPARE(cub.aircraft.State_Get(), state);
    QCOMPARE(CAircraft::State_GetMessage(state), message);
    QVERIFY(cub.aircraft.sTitle.isEmpty());
    QCOMPARE(CAircraft::State_GetMessage(77), u"Unknown aircraft error. Error code = 77"_s);
}

void TestAircraft::load_readsBareLineFeeds()
{
    Cub cub;
    cub.write(aircraftHost + u"aircraft.cfg"_s, QByteArray(cubText).replace("\r\n", "\n"));
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    QCOMPARE(cub.aircraft.sTexture, u"red"_s);
    const Result refused =
        cub.aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Panel, u"vfr"_s);
    QVERIFY(!refused.ok);
    QCOMPARE(cub.aircraft.State_Get(), 4);
    QVERIFY2(refused.text.contains(u"LF alone"_s), qPrintable(refused.text));
    QCOMPARE(cub.read(aircraftHost + u"aircraft.cfg"_s), QByteArray(cubText).replace("\r\n", "\n"));
}

void TestAircraft::folders_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("folder");

    QTest::newRow("empty") << u""_s << u"C:\\a\\Texture\\"_s;
    QTest::newRow("suffix") << u"red"_s << u"C:\\a\\Texture.red\\"_s;
    QTest::newRow("separator first") << u"\\red"_s << u"C:\\a\\Texture\\red\\"_s;
    QTest::newRow("sub-folders") << u"Landor/G-CIVB"_s << u"C:\\a\\Texture.Landor\\G-CIVB\\"_s;
    QTest::newRow("separator last") << u"red\\"_s << u"C:\\a\\Texture.red\\"_s;
}

void TestAircraft::folders()
{
    QFETCH(QString, value);
    QFETCH(QString, folder);
    QCOMPARE(CAircraft::folderFor(u"C:\\a\\"_s, u"Texture"_s, value), folder);
}

void TestAircraft::details_dependOnTheGeneration()
{
    Cub cub;
    QVERIFY(!cub.aircraft.LoadManufacturerDetails(FSX));
    QCOMPARE(cub.aircraft.State_Get(), 1);
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s, true));
    QVERIFY(cub.aircraft.LoadManufacturerDetails(FSX));
    QCOMPARE(cub.aircraft.sVariation, u"Pilot's choice"_s);
    QCOMPARE(cub.aircraft.sTypeRole, u"Single Engine Prop"_s);
    QCOMPARE(cub.aircraft.sCategory, u"airplane"_s);
    QVERIFY(cub.aircraft.LoadManufacturerDetails(FS2004));
    QCOMPARE(cub.aircraft.sManufacturer, u"Piper"_s);
    QVERIFY(cub.aircraft.sTypeRole.isEmpty() && cub.aircraft.sCreatedBy.isEmpty());
    QVERIFY(cub.aircraft.LoadVTTextureAddonMasterKey());
    QCOMPARE(cub.aircraft.lngVTTextureAddonMasterKey, 17);
}

void TestAircraft::extraInfo_isReadWholeAndTranslated()
{
    Cub cub;
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s, true));
    QVERIFY(cub.aircraft.LoadExtraInfo());
    QCOMPARE(cub.aircraft.sDescription, u"a/b; c\r\nsecond"_s);
    QCOMPARE(cub.aircraft.sPerformance, u"80 kts\r\n100 hp ; not a comment"_s);
    QCOMPARE(cub.aircraft.sATC_ID, u"N123"_s);
}

void TestAircraft::performance_roundTrips()
{
    using P = CAircraft::Performance;
    QCOMPARE(CAircraft::PerformanceData_Translate(u"a/b; c"_s, P::DisplayToFile), u"a\\/b\\s c"_s);
    QRandomGenerator random(3);
    const QStringList pieces = {
        u"\r\n"_s, u"/"_s, u"\t"_s, u";"_s, u"n"_s, u"s"_s, u"t"_s, u" "_s, u"ab"_s, u"'"_s};
    for (int round = 0; round < 2'000; ++round) {
        QString text;
        for (int i = random.bounded(12); i > 0; --i)
            text += pieces.at(random.bounded(pieces.size()));
        const QString stored = CAircraft::PerformanceData_Translate(text, P::DisplayToFile);
        QVERIFY(!stored.contains(u'\n') && !stored.contains(u';') && !stored.contains(u'\t'));
        QCOMPARE(CAircraft::PerformanceData_Translate(stored, P::FileToDisplay), text);
    }
}

void TestAircraft::headers_onlyAircraftSections()
{
    Cub cub;
    const QStringList all = cub.aircraft.Headers_LoadAll(aircraftCfg);
    QCOMPARE(all, (QStringList{u"fltsim.0"_s, u"fltsim.1"_s, u"General"_s}));
    QCOMPARE(CAircraft::Headers_ReturnOnlyAircraftHeaders({u"FltSim.10"_s,
                                                           u"fltsim"_s,
                                                           u"fltsim.X"_s,
                                                           u"fltsim."_s,
                                                           u"fltsim.2"_s,
                                                           u"fltsim.-1"_s,
                                                           u"fltsim.99999999999"_s}),
             (QStringList{u"FltSim.10"_s, u"fltsim.2"_s}));
    cub.write(aircraftHost + u"aircraft.cfg"_s, "no header\r\n");
    QVERIFY(cub.aircraft.Headers_LoadAll(aircraftCfg).isEmpty());
    QCOMPARE(cub.aircraft.State_Get(), 3);
}

void TestAircraft::headerSectionEmpty()
{
    Cub cub;
    cub.write(aircraftHost + u"aircraft.cfg"_s,
              "[fltsim.0]\r\nsim=x\r\n[fltsim.1]\r\n;title=x\r\ntitle=\r\n\r\n[fltsim.2]\r\n");
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    QVERIFY(!cub.aircraft.IsHeaderSectionEmpty(u"fltsim.0"_s));
    QVERIFY(cub.aircraft.IsHeaderSectionEmpty(u"fltsim.1"_s));
    QVERIFY(cub.aircraft.IsHeaderSectionEmpty(u"fltsim.2"_s));
    QVERIFY(cub.aircraft.IsHeaderSectionEmpty(u"fltsim.3"_s));
}

void TestAircraft::order_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("good");
    QTest::addColumn<QString>("chain");

    const auto s = [](int number) { return u"fltsim."_s + QString::number(number); };
    QTest::newRow("continuous") << QStringList{s(0), s(1), u"General"_s, s(2)} << true << QString();
    QTest::newRow("only the place differs") << QStringList{s(1), s(0)} << true << QString();
    QTest::newRow("by number, not by text")
        << QStringList{s(0), s(1), s(2), s(3), s(4), s(5), s(6), s(7), s(8), s(9), s(10)} << true
        << QString();
    QTest::newRow("gap") << QStringList{s(0), s(1), s(3)} << false
                         << u"fltsim.0->fltsim.1->fltsim.3"_s;
    QTest::newRow("not from zero") << QStringList{s(1), s(2)} << false << u"fltsim.1->fltsim.2"_s;
    QTest::newRow("twice") << QStringList{s(0), s(0)} << false << u"fltsim.0->fltsim.0"_s;
    QTest::newRow("none") << QStringList{u"General"_s} << false << QString();
}

void TestAircraft::order()
{
    QFETCH(QStringList, names);
    QFETCH(bool, good);
    QFETCH(QString, chain);
    const CAircraft::SectionOrder order = CAircraft::sectionOrder(names);
    QCOMPARE(order.good, good);
    QCOMPARE(order.chain, chain);
    QCOMPARE(order.problem(u"FS X"_s),
             chain.isEmpty()
                 ? QString()
                 : u"- One or more aircraft sections are out of continuous order ("_s + chain +
                       u"). The out of order aircraft sections will not appear in FS X."_s);
}

void TestAircraft::panelUpdate_savesOneLine()
{
    Cub cub;
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    QVERIFY(cub.aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Panel, u"vfr"_s).ok);
    QVERIFY(cub.aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Sound, u"loud"_s).ok);
    QCOMPARE(
        cub.read(aircraftHost + u"aircraft.cfg"_s),
        QByteArray(cubText).replace("panel=ifr", "panel=vfr").replace("sound=\r", "sound=loud\r"));
    QCOMPARE(cub.read(aircraftHost + u"Aircraft.vtb"_s), cubText);
    QCOMPARE(cub.aircraft.Folder_AircraftPanel_Get(),
             u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\Panel.vfr\\"_s);
    QCOMPARE(cub.aircraft.AircraftMasterSourceTextFile_BackupFile(),
             u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\Aircraft.vtb"_s);
}

void TestAircraft::panelUpdate_refusesAndLeavesAlone()
{
    Cub cub;
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    const Result refused =
        cub.aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Panel, u"\u4e2d"_s);
    QVERIFY(!refused.ok && refused.text.contains(u'\u4e2d'));
    QCOMPARE(cub.aircraft.State_Get(), 4);
    QCOMPARE(cub.aircraft.sErrorText(), refused.text);
    cub.aircraft.sSection = u"fltsim.9"_s;
    QVERIFY(!cub.aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Panel, u"vfr"_s).ok);
    QCOMPARE(cub.read(aircraftHost + u"aircraft.cfg"_s), cubText);
    QVERIFY(!QFile::exists(cub.host(aircraftHost + u"Aircraft.vtb"_s)));
}

void TestAircraft::panelUpdate_afterAnotherChange()
{
    Cub cub;
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    QVERIFY(cub.aircraft.INILines_Load());
    cub.aircraft.sarrayINILines.lines[0] = "; mine";
    cub.write(aircraftHost + u"aircraft.cfg"_s, "; other\r\n");
    cub.prompts.expect(u"aircraft configuration file. Would you still like to update it?"_s,
                       Button::No);
    const Result saved = cub.aircraft.Save();
    QCOMPARE(saved.kind, ErrorKind::Declined);
    QCOMPARE(cub.aircraft.State_Get(), 4);
    QCOMPARE(cub.read(aircraftHost + u"aircraft.cfg"_s), "; other\r\n"_ba);
}

void TestAircraft::restore_bringsTheBackupBack()
{
    Cub cub;
    QVERIFY(cub.aircraft.Load(aircraftCfg, u"fltsim.0"_s));
    QVERIFY(!cub.aircraft.BackupConfigurationFile_Restore().ok);
    QCOMPARE(cub.aircraft.State_Get(), 9);
    QVERIFY(cub.aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Panel, u"vfr"_s).ok);
    QVERIFY(cub.aircraft.BackupConfigurationFile_Restore().ok);
    QCOMPARE(cub.read(aircraftHost + u"aircraft.cfg"_s), cubText);
}

VT_TEST_CLASS(TestAircraft)
#include "test_aircraft.moc"
