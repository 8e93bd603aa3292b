#include "engine/ConfigDisk.h"
#include "shell/GlobalRecord.h"
#include "simconfig/CAircraft.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QString folder = u"C:\\FSX\\SimObjects\\Airplanes\\Cub\\"_s;
const QString aircraftCfg = folder + u"aircraft.cfg"_s;
const QString aircraftHost = u"FSX/SimObjects/Airplanes/Cub/"_s;

const QByteArray cubText =
    crlf("; a Cub|[fltsim.0]|title=Piper Cub // stock|sim=Cub|model=|panel=ifr|sound=|"
         "texture=red|kb_checklists=Cub_check|kb_reference=Cub_ref|ui_manufacturer=Piper|"
         "ui_type=\"J-3\"|ui_variation=Pilot's choice|ui_typerole=Single Engine Prop|"
         "ui_createdby=A. Nonym|atc_id=N123 'ident|vt_texture_addon_master_key=17|"
         "description=a\\/b\\s c\\nsecond||[fltsim.1]|title=Empty Cub|[General]|"
         "performance=80 kts\\n100 hp ; not a comment|Category=airplane|");

struct Cub : ConfigDisk
{
    explicit Cub(const QByteArray& text = cubText) { store(text); }

    void store(const QByteArray& text) { write(aircraftHost + u"aircraft.cfg"_s, text); }

    [[nodiscard]] QByteArray stored() const { return read(aircraftHost + u"aircraft.cfg"_s); }

    bool load(bool onlyTitle = false)
    {
        return aircraft.Load(aircraftCfg, u"fltsim.0"_s, onlyTitle);
    }

    Result setPanel(const QString& value)
    {
        return aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Panel, value);
    }

    CAircraft aircraft{access};
};

} // namespace

class TestAircraft : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void load_derivesFoldersAndFiles()
    {
        Cub cub;
        CAircraft& aircraft = cub.aircraft;
        cub.write(aircraftHost + u"Cub_check.txt"_s);
        QVERIFY(aircraft.Load(aircraftCfg, u"FLTSIM.0"_s));
        QCOMPARE(aircraft.State_Get(), 0);
        QCOMPARE(aircraft.sTitle, u"Piper Cub"_s);
        QCOMPARE(aircraft.Folder_AircraftModel_Get(), folder + u"Model\\"_s);
        QCOMPARE(aircraft.sModelConfigurationFile, folder + u"Model\\Model.cfg"_s);
        QCOMPARE(aircraft.sPanelConfigurationFile, folder + u"Panel.ifr\\Panel.cfg"_s);
        QCOMPARE(aircraft.sSoundConfigurationFile, folder + u"Sound\\Sound.cfg"_s);
        QCOMPARE(aircraft.Folder_AircraftTexture_Get(), folder + u"Texture.red\\"_s);
        QCOMPARE(aircraft.sKB_ChecklistFileAlt, folder + u"Cub_check.txt"_s);
        QCOMPARE(aircraft.sKB_ReferencelistFileAlt, folder + u"Cub_ref.htm"_s);
        QCOMPARE(aircraft.sNotesFile, folder + u"Cub_Notes.txt"_s);
        QCOMPARE(aircraft.sFlightDynamicsCDPFile, folder + u"Cub.cdp"_s);
        QCOMPARE(aircraft.sFlightDynamicsDPFile, folder + u"Cub.dp"_s);
        QCOMPARE(aircraft.SIMFilename_Get(), folder + u"Cub.air"_s);
        cub.write(aircraftHost + u"Cub_check.htm"_s);
        QVERIFY(cub.load());
        QCOMPARE(aircraft.sKB_ChecklistFileAlt, folder + u"Cub_check.htm"_s);
    }

    void load_states()
    {
        const QString fltsim = u"fltsim.0"_s;
        const QString noTarget = u"No target aircraft was provided."_s;
        const QString noFile = u"The aircraft configuration file does not exist."_s;
        const Rows<QString, QString, int, QString> rows = {
            {"no file", {}, fltsim, 1, noTarget},
            {"no section", aircraftCfg, {}, 1, noTarget},
            {"missing", u"C:\\FSX\\none.cfg"_s, fltsim, 2, noFile},
            {"a folder", u"C:\\FSX"_s, fltsim, 2, noFile},
            {"no flight model", aircraftCfg, u"fltsim.1"_s, 2, noFile},
        };
        Cub cub;
        for (const auto& [file, section, state, message] : rows) {
            QVERIFY(cub.load());
            QVERIFY(!cub.aircraft.Load(file, section));
            QCOMPARE(cub.aircraft.State_Get(), state);
            QCOMPARE(CAircraft::State_GetMessage(state), message);
            QVERIFY(cub.aircraft.sTitle.isEmpty());
        }
        QCOMPARE(CAircraft::State_GetMessage(77), u"Unknown aircraft error. Error code = 77"_s);
    }

    void folders()
    {
        const Rows<QString, QString> rows = {
            {"empty", u""_s, u"C:\\a\\Texture\\"_s},
            {"suffix", u"red"_s, u"C:\\a\\Texture.red\\"_s},
            {"separator first", u"\\red"_s, u"C:\\a\\Texture\\red\\"_s},
            {"sub-folders", u"Landor/G-CIVB"_s, u"C:\\a\\Texture.Landor\\G-CIVB\\"_s},
            {"separator last", u"red\\"_s, u"C:\\a\\Texture.red\\"_s},
        };
        for (const auto& [value, path] : rows)
            QCOMPARE(CAircraft::folderFor(u"C:\\a\\"_s, u"Texture"_s, value), path);
    }

    void details_dependOnTheGeneration()
    {
        Cub cub;
        CAircraft& aircraft = cub.aircraft;
        QVERIFY(!aircraft.LoadManufacturerDetails(FSX));
        QCOMPARE(aircraft.State_Get(), 1);
        QVERIFY(cub.load(true));
        QVERIFY(aircraft.LoadManufacturerDetails(FSX));
        QCOMPARE(aircraft.sVariation, u"Pilot's choice"_s);
        QCOMPARE(aircraft.sTypeRole, u"Single Engine Prop"_s);
        QCOMPARE(aircraft.sCategory, u"airplane"_s);
        QVERIFY(aircraft.LoadManufacturerDetails(FS2004));
        QCOMPARE(aircraft.sManufacturer, u"Piper"_s);
        QVERIFY(aircraft.sTypeRole.isEmpty() && aircraft.sCreatedBy.isEmpty());
        QVERIFY(aircraft.LoadVTTextureAddonMasterKey());
        QCOMPARE(aircraft.lngVTTextureAddonMasterKey, 17);
        QVERIFY(aircraft.LoadExtraInfo());
        QCOMPARE(aircraft.sDescription, u"a/b; c\r\nsecond"_s);
        QCOMPARE(aircraft.sPerformance, u"80 kts\r\n100 hp ; not a comment"_s);
        QCOMPARE(aircraft.sATC_ID, u"N123"_s);
    }

    void performance_roundTrips()
    {
        using P = CAircraft::Performance;
        QCOMPARE(CAircraft::PerformanceData_Translate(u"a/b; c"_s, P::DisplayToFile),
                 u"a\\/b\\s c"_s);
        QRandomGenerator random(3);
        const QStringList pieces = u"\r\n|/|\t|;|n|s|t| |ab|'"_s.split(u'|');
        for (int round = 0; round < 2'000; ++round) {
            QString text;
            for (int i = random.bounded(12); i > 0; --i)
                text += pieces.at(random.bounded(pieces.size()));
            const QString stored = CAircraft::PerformanceData_Translate(text, P::DisplayToFile);
            QVERIFY(!stored.contains(u'\n') && !stored.contains(u';') && !stored.contains(u'\t'));
            QCOMPARE(CAircraft::PerformanceData_Translate(stored, P::FileToDisplay), text);
        }
    }

    void headers_onlyAircraftSections()
    {
        Cub cub;
        QCOMPARE(cub.aircraft.Headers_LoadAll(aircraftCfg),
                 (QStringList{u"fltsim.0"_s, u"fltsim.1"_s, u"General"_s}));
        QCOMPARE(
            CAircraft::Headers_ReturnOnlyAircraftHeaders(
                u"FltSim.10 fltsim fltsim.X fltsim. fltsim.2 fltsim.-1 fltsim.99999999999"_s.split(
                    u' ')),
            (QStringList{u"FltSim.10"_s, u"fltsim.2"_s}));
        cub.store("no header\r\n");
        QVERIFY(cub.aircraft.Headers_LoadAll(aircraftCfg).isEmpty());
        QCOMPARE(cub.aircraft.State_Get(), 3);
    }

    void headerSectionEmpty()
    {
        Cub cub(crlf("[fltsim.0]|sim=x|[fltsim.1]|;title=x|title=||[fltsim.2]|"));
        QVERIFY(cub.load());
        QVERIFY(!cub.aircraft.IsHeaderSectionEmpty(u"fltsim.0"_s));
        for (const QString& section : {u"fltsim.1"_s, u"fltsim.2"_s, u"fltsim.3"_s})
            QVERIFY2(cub.aircraft.IsHeaderSectionEmpty(section), qPrintable(section));
    }

    void order()
    {
        // sections: numbers, or other names; chain: none for a good order
        const Rows<QString, bool, QString> rows = {
            {"continuous", u"0 1 General 2"_s, true, {}},
            {"only the place differs", u"1 0"_s, true, {}},
            {"by number, not by text", u"0 1 2 3 4 5 6 7 8 9 10"_s, true, {}},
            {"gap", u"0 1 3"_s, false, u"fltsim.0->fltsim.1->fltsim.3"_s},
            {"not from zero", u"1 2"_s, false, u"fltsim.1->fltsim.2"_s},
            {"twice", u"0 0"_s, false, u"fltsim.0->fltsim.0"_s},
            {"none", u"General"_s, false, {}},
        };
        for (const auto& [sections, good, chain] : rows) {
            QStringList names = sections.split(u' ');
            for (QString& name : names)
                name.prepend(name == u"General" ? u""_s : u"fltsim."_s);
            const CAircraft::SectionOrder order = CAircraft::sectionOrder(names);
            QCOMPARE(order.good, good);
            QCOMPARE(order.chain, chain);
            QCOMPARE(order.problem(u"FS X"_s),
                     chain.isEmpty()
                         ? QString()
                         : u"- One or more aircraft sections are out of continuous order ("_s +
                               chain +
                               u"). The out of order aircraft sections will not appear in FS X."_s);
        }
    }

    void panelUpdate_savesOneLine()
    {
        Cub cub;
        QVERIFY(cub.load());
        QVERIFY(!cub.aircraft.BackupConfigurationFile_Restore().ok);
        QCOMPARE(cub.aircraft.State_Get(), 9);
        QVERIFY(cub.setPanel(u"vfr"_s).ok);
        QVERIFY(cub.aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Sound, u"loud"_s).ok);
        QCOMPARE(cub.stored(),
                 QByteArray(cubText)
                     .replace("panel=ifr", "panel=vfr")
                     .replace("sound=\r", "sound=loud\r"));
        QCOMPARE(cub.read(aircraftHost + u"Aircraft.vtb"_s), cubText);
        QCOMPARE(cub.aircraft.Folder_AircraftPanel_Get(), folder + u"Panel.vfr\\"_s);
        QCOMPARE(cub.aircraft.AircraftMasterSourceTextFile_BackupFile(),
                 folder + u"Aircraft.vtb"_s);
        QVERIFY(cub.aircraft.BackupConfigurationFile_Restore().ok);
        QCOMPARE(cub.stored(), cubText);
    }

    void panelUpdate_refusesAndLeavesAlone()
    {
        const QByteArray bareLf = QByteArray(cubText).replace("\r\n", "\n");
        const Rows<QByteArray, QString, QString, QString> rows = {
            {"character", cubText, u"fltsim.0"_s, u"\u4e2d"_s, u"\u4e2d"_s},
            {"section", cubText, u"fltsim.9"_s, u"vfr"_s, {}},
            {"bare LF", bareLf, u"fltsim.0"_s, u"vfr"_s, u"LF alone"_s},
        };
        for (const auto& [text, section, panel, told] : rows) {
            Cub cub(text);
            QVERIFY(cub.load());
            QCOMPARE(cub.aircraft.sTexture, u"red"_s);
            cub.aircraft.sSection = section;
            const Result refused = cub.setPanel(panel);
            QVERIFY2(!refused.ok && refused.text.contains(told), qPrintable(refused.text));
            QCOMPARE(cub.aircraft.State_Get(), 4);
            QCOMPARE(cub.aircraft.sErrorText(), refused.text);
            QCOMPARE(cub.stored(), text);
            QVERIFY(!cub.exists(aircraftHost + u"Aircraft.vtb"_s));
        }
    }

    void save_afterAnotherChange()
    {
        Cub cub;
        QVERIFY(cub.load() && cub.aircraft.INILines_Load());
        cub.aircraft.sarrayINILines.lines[0] = "; mine";
        cub.store("; other\r\n");
        cub.prompts.expect(u"aircraft configuration file. Would you still like to update it?"_s,
                           Button::No);
        QCOMPARE(cub.aircraft.Save().kind, ErrorKind::Declined);
        QCOMPARE(cub.aircraft.State_Get(), 4);
        QCOMPARE(cub.stored(), "; other\r\n"_ba);
    }
};

VT_TEST_CLASS(TestAircraft)
#include "test_aircraft.moc"
