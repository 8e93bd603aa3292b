// Variations are added to and removed from an aircraft.cfg, with their records, names and folders.
#include "AircraftWorld.h"
#include "addondb/AddonDatabase.h"
#include "addondb/JournalTable.h"
#include "platform/FileTransaction.h"
#include "simconfig/InstalledTitles.h"
#include "simconfig/VariationPictures.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QString kestrel = u"SimObjects/Airplanes/Kestrel_K2"_s;
const QString kestrelCfg = kestrel + u"/aircraft.cfg"_s;

struct Installed final : InstalledTitles
{
    QStringList titles;
    QStringList variations;

    bool titleIsUsed(const QString& title, const QString&, const QString&) const override
    {
        return titles.contains(title, Qt::CaseInsensitive);
    }

    bool variationIsUsed(const QString& name, const QString&, const QString&) const override
    {
        return variations.contains(name, Qt::CaseInsensitive);
    }
};

CTextureGroup blueGroup(const AnsiCodec& ansi)
{
    CTextureGroup group;
    group.sarraySectionLines =
        LineArray::ofBytes("[fltsim.X]\r\ntitle=Old title // remark\r\n"
                           "sim=kestrel_k2\r\npanel=\r\nsound=\r\n"
                           "texture=old\r\nvtlocator=x\r\nPanelFile=x\r\n"
                           "soundfile=x\r\ntexturepath=x\r\nTexturePath=y\r\n"
                           "ui_variation=\"Old / old\"",
                           ansi);
    group.sTextureSource = u"texture.blue"_s;
    group.lngAddonMasterKey = 12;
    return group;
}

struct VariantWorld : AircraftWorld
{
    VariantWorld()
    {
        (void)actions.makeFolder(global.programFolder);
        database = Connection::create(gate, global.databaseFile).connection;
        [&] { QVERIFY(database); }();
    }

    ~VariantWorld() { database.reset(); }

    CAircraft loaded(const QString& section = u"fltsim.0"_s) { return aircraft(kestrel, section); }

    [[nodiscard]] bool hasRow(const QString& section)
    {
        return modDatabase_Addon::itemDetail(
                   *database, ItemTable::Aircraft, windows(kestrelCfg), section)
            .has_value();
    }

    std::unique_ptr<Connection> database;
};

} // namespace

class TestVariants : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names_data();
    void names();
    void names_areAskedUntilTheyFit();
    void add_setsAndRemovesEntries();
    void add_copyBelongsToNobody();
    void add_afterReordering();
    void add_failsWhole_data();
    void add_failsWhole();
    void suffixes_data();
    void suffixes();
    void manyInOneTransaction_andOutAgain();
    void records_followTheNumbers();
    void remove_asks();
    void remove_deletesWhatNobodyUses();
    void allDetails_includeHidden();
    void database_tellsTheOwner();
};

void TestVariants::names_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("titleText");
    QTest::addColumn<QString>("variation");
    QTest::addColumn<QString>("variationText");
    QTest::addColumn<QString>("fixed");
    QTest::newRow("free") << u"New"_s << u""_s << u"New"_s << u""_s << u"New"_s;
    QTest::newRow("empty") << u" "_s << u"Please provide an aircraft title."_s << u""_s
                           << u"Please provide a variation name."_s << u""_s;
    QTest::newRow("installed")
        << u" cub "_s
        << u"Specified title is used by another aircraft. Please enter a unique title name."_s
        << u"BLUE"_s << u"Warning: another aircraft variant uses this variation name."_s
        << u"cub 4"_s;
    QTest::newRow("new") << u"Fresh"_s << u"'Fresh' in 'texture.f' already uses that title."_s
                         << u"F"_s
                         << u"Warning: 'Fresh' in 'texture.f' already uses that variation name."_s
                         << u"Fresh 2"_s;
}

void TestVariants::names()
{
    QFETCH(QString, title);
    QFETCH(QString, variation);
    QFETCH(QString, titleText);
    QFETCH(QString, variationText);
    AircraftWorld world;
    const CAircraft aircraft(world.access);
    Installed installed;
    installed.titles = {u"Cub"_s, u"Cub 2"_s};
    installed.variations = {u"Blue"_s};
    const QList<NewVariation> others = {{u"fresh"_s, u"f"_s, u"'Fresh' in 'texture.f'"_s},
                                        {u"cub 3"_s, u""_s, u"x"_s}};
    const NameChecks checks{&installed, &others, {}, {}};
    const Result byTitle = aircraft.Title_Validate(title, checks);
    QCOMPARE(byTitle.text, titleText);
    QCOMPARE(byTitle.ok, titleText.isEmpty());
    const Result byVariation = aircraft.Variation_Validate(variation, checks);
    QCOMPARE(byVariation.text, variationText);
    QCOMPARE(byVariation.ok, !variationText.startsWith(u"Please"_s)); // a clash only warns
    QTEST(aircraft.Title_FixDuplicate(title, checks), "fixed");
    QVERIFY(aircraft.Title_Validate(u"cub"_s, {}).ok);
}

void TestVariants::names_areAskedUntilTheyFit()
{
    AircraftWorld world;
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.0"_s);
    Installed installed;
    installed.titles = {u"Taken"_s};
    installed.variations = {u"Blue"_s};
    CAircraft::VariantSwitches switches;
    switches.nameChecks.installed = &installed;
    const QStringList titles = {u"Taken"_s, u"Mine"_s, u"Mine"_s, u"Mine"_s};
    const QStringList variations = {u"Blue"_s, u""_s, u"Blue"_s, u"Blue"_s};
    QStringList told;
    switches.askNames = [&](VariantNames& names) {
        told.append(names.problem + names.warning);
        names.title = titles.value(told.size() - 1);
        names.variation = variations.value(told.size() - 1);
        return told.size() <= titles.size();
    };
    QList<CTextureGroup> groups = {CTextureGroup()};
    const auto added = aircraft.Variant_Add(groups, switches, world.global);
    QVERIFY2(added.ok(), qPrintable(added.text));
    QCOMPARE(told.size(), 4); // the warning was accepted by giving the same name again
    QVERIFY(told.at(1).contains(u"is used by another aircraft"_s));
    QVERIFY(told.at(2).contains(u"variation name"_s) && told.at(3).startsWith(u"Warning: "_s));
    QCOMPARE(groups.first().sTitle, u"Mine"_s);

    const QByteArray before = world.read(kestrelCfg);
    switches.askNames = [](VariantNames&) { return false; };
    const auto cancelled = aircraft.Variant_Add(groups, switches, world.global);
    QCOMPARE(cancelled.kind, ErrorKind::Declined);
    QCOMPARE(world.read(kestrelCfg), before);
}

void TestVariants::add_setsAndRemovesEntries()
{
    VariantWorld world;
    const QByteArray before = world.read(kestrelCfg);
    CAircraft aircraft = world.loaded();
    QList<CTextureGroup> groups = {blueGroup(world.ansi), blueGroup(world.ansi)};
    groups[1].sTitle = u"Given title"_s;
    groups[1].sVariation = u"Given"_s;
    groups[1].sPanel = u"ifr"_s;
    groups[1].sTexture = u"Landor\\G-CIVB"_s;
    const auto added = aircraft.Variant_Add(groups, {}, world.global);
    QVERIFY2(added.ok(), qPrintable(added.text));
    QCOMPARE(added->sections, (QStringList{u"fltsim.3"_s, u"fltsim.4"_s}));
    const QByteArray expected = "\r\n[fltsim.3]\r\nvt_texture_addon_master_key=12\r\n"
                                "title=Old title\r\nsim=kestrel_k2\r\npanel=\r\nsound=\r\n"
                                "texture=blue\r\nui_variation=Old / old\r\n"
                                "\r\n[fltsim.4]\r\nvt_texture_addon_master_key=12\r\n"
                                "title=Given title\r\nsim=kestrel_k2\r\npanel=ifr\r\nsound=\r\n"
                                "texture=Landor\\G-CIVB\r\nui_variation=Given\r\n"
                                "\r\n[General]\r\n";
    QVERIFY2(world.read(kestrelCfg).contains(expected), world.read(kestrelCfg).constData());
    QCOMPARE(world.read(kestrel + u"/Aircraft.vtb"_s), before);
    QVERIFY(!QFile::exists(world.host(kestrel + u"/Temp.vtb"_s)));
    QCOMPARE(aircraft.Variant_SearchByVTTextureAddonMasterKey(12), added->sections);
    QVERIFY(aircraft.Variant_Add_UpdateDatabase(*world.database, *added).ok);
    QVERIFY(world.hasRow(u"fltsim.4"_s));

    const auto removed = aircraft.Variant_Remove_All(added->sections, world.global);
    QVERIFY2(removed.ok(), qPrintable(removed.text));
    QCOMPARE(world.read(kestrelCfg), before);
    QCOMPARE(removed->titles.last(), u"Given title"_s);
    QVERIFY(aircraft.Variant_Remove_UpdateDatabase(*world.database, *removed).ok);
    QVERIFY(!world.hasRow(u"fltsim.3"_s) && !world.hasRow(u"fltsim.4"_s));
}

void TestVariants::add_copyBelongsToNobody()
{
    AircraftWorld world;
    world.replace(
        kestrelCfg, "sim=kestrel_k2\r\n", "sim=kestrel_k2\r\nVT_texture_addon_master_key=5\r\n");
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.1"_s);
    Installed installed;
    installed.titles = {u"Kestrel K2 Red"_s};
    CAircraft::VariantSwitches switches;
    switches.nameChecks.installed = &installed;
    QList<CTextureGroup> groups = {CTextureGroup(), CTextureGroup()};
    QVERIFY(aircraft.Variant_Add(groups, switches, world.global).ok());
    QCOMPARE(aircraft.Variant_SearchByVTTextureAddonMasterKey(5).size(), 3);
    const CAircraft copy = world.aircraft(kestrel, u"fltsim.4"_s);
    QCOMPARE(copy.sTitle, u"Kestrel K2 Red 3"_s);
    QCOMPARE(copy.sTexture, u"red"_s); // the source's own
}

void TestVariants::add_afterReordering()
{
    VariantWorld world;
    world.replace(kestrelCfg, "[fltsim.1]", "[fltsim.7]");
    CAircraft aircraft = world.loaded(u"fltsim.7"_s);
    QList<CTextureGroup> groups = {CTextureGroup()};
    groups.first().sSourceSection = u"fltsim.2"_s;
    groups.first().sTitle = u"Copy of the second"_s;
    const auto added = aircraft.Variant_Add(groups, {}, world.global);
    QVERIFY(added.ok());
    QCOMPARE(added->sections, QStringList{u"fltsim.3"_s});
    QCOMPARE(added->renamed.size(), 2);
    QCOMPARE(aircraft.sSection, u"fltsim.2"_s);
    QCOMPARE(world.loaded(u"fltsim.3"_s).sTexture, u"ete"_s);
    QCOMPARE(world.loaded(u"fltsim.2"_s).sTitle, u"Kestrel K2 Red"_s);
}

void TestVariants::add_failsWhole_data()
{
    QTest::addColumn<int>("what");
    QTest::addColumn<QString>("text");
    QTest::newRow("no source") << 0 << u"Error retrieving section fltsim.9"_s;
    QTest::newRow("character") << 1 << u"Error updating sarrayINILines(). "_s;
    QTest::newRow("line ends") << 2 << u"'C:\\"_s;
    QTest::newRow("no file") << 3 << u"Could not read 'C:\\"_s;
}

void TestVariants::add_failsWhole()
{
    QFETCH(int, what);
    QFETCH(QString, text);
    AircraftWorld world;
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.0"_s);
    QList<CTextureGroup> groups = {blueGroup(world.ansi), CTextureGroup()};
    groups[1].sTitle = what == 1 ? u"\u65e5"_s : u"x"_s;
    groups[1].sSourceSection = what == 0 ? u"fltsim.9"_s : u"fltsim.1"_s;
    if (what == 2)
        world.replace(kestrelCfg, "\r\n[General]", "\n[General]");
    if (what == 3)
        world.remove(kestrelCfg);
    const QByteArray before = world.read(kestrelCfg);
    const auto added = aircraft.Variant_Add(groups, {}, world.global);
    QVERIFY(!added.ok());
    QVERIFY2(added.text.startsWith(text), qPrintable(added.text));
    QVERIFY(!groups.first().sTexture && groups.first().sTitle.isEmpty());
    QCOMPARE(world.read(kestrelCfg), before);
    QVERIFY(!QFile::exists(world.host(kestrel + u"/Aircraft.vtb"_s)));
}

void TestVariants::suffixes_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("variation");
    QTest::addColumn<QString>("suffix");
    QTest::newRow("own") << u"texture.blue"_s << u"x"_s << u"blue"_s;
    QTest::newRow("section has it") << u"Texture.RED"_s << u"x"_s << u"RED 3"_s;
    QTest::newRow("folder has it") << u"texture.left"_s << u"x"_s << u"left 2"_s;
    QTest::newRow("sub-folders") << u"texture.Landor/G-CIVB\\"_s << u"x"_s << u"Landor\\G-CIVB"_s;
    QTest::newRow("plain") << u"texture"_s << u"Night: two/tone"_s << u"Night twotone"_s;
    QTest::newRow("plain, nothing told") << u"texture"_s << u"?"_s << u"New"_s;
    QTest::newRow("leads out") << u"texture...\\..\\x"_s << u"v"_s << u"x"_s;
}

void TestVariants::suffixes()
{
    QFETCH(QString, source);
    QFETCH(QString, variation);
    AircraftWorld world;
    world.write(kestrel + u"/Texture.Left/a.bmp"_s, "x");
    world.write(kestrel + u"/Texture.red 2/a.bmp"_s, "x");
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.0"_s);
    QVERIFY(aircraft.INILines_Load());
    CTextureGroup group;
    group.sTextureSource = source;
    group.sVariation = variation;
    CAircraft::SuffixesTaken taken = aircraft.suffixesTaken();
    const auto suffix = aircraft.Variant_Add_DetermineNewTexture(group, taken);
    QTEST(*suffix, "suffix");
    QVERIFY(*aircraft.Variant_Add_DetermineNewTexture(group, taken) != *suffix);
    QVERIFY(!aircraft.Variant_Add_DetermineNewPanel(group, taken));
}

void TestVariants::manyInOneTransaction_andOutAgain()
{
    VariantWorld world;
    const QByteArray before = world.read(kestrelCfg);
    QStringList sections;
    {
        JournalTable journal(*world.database, world.gate);
        FileTransaction transaction(world.gate, journal);
        QVERIFY(transaction.begin(OperationKind::Configuration, u"test"_s));
        QVERIFY(transaction.replace(world.windows(kestrel + u"/Texture.blue/a.bmp"_s), "x"));
        const ConfigAccess access(transaction, world.prompts, world.ansi);
        QList<CTextureGroup> groups(100, blueGroup(world.ansi));
        CAircraft aircraft(access);
        QVERIFY(aircraft.Load(world.windows(kestrelCfg), u"fltsim.0"_s));
        const auto first = aircraft.Variant_Add(groups, {}, world.global);
        QVERIFY2(first.ok(), qPrintable(first.text));
        QCOMPARE(groups.first().sTexture.value_or(QString()), u"blue 2"_s); // the staged folder
        QCOMPARE(groups.last().sTexture.value_or(QString()), u"blue 101"_s);
        QVERIFY(aircraft.Load(world.windows(kestrelCfg), u"fltsim.102"_s)); // staged bytes
        QCOMPARE(world.read(kestrelCfg), before);
        sections = first->sections;
        const auto applied = transaction.apply(
            {}, [&] { return aircraft.Variant_Add_UpdateDatabase(*world.database, *first); });
        QVERIFY2(applied.ok() && applied->isEmpty(), qPrintable(applied.text));
    }
    QVERIFY(world.hasRow(u"fltsim.102"_s));
    QVERIFY(!QFile::exists(world.host(kestrel + u"/Temp.vtb"_s)));
    CAircraft aircraft = world.loaded(u"fltsim.102"_s);
    QCOMPARE(aircraft.Variant_SearchByVTTextureAddonMasterKey(12), sections);
    QVERIFY(aircraft.Variant_Remove_All(sections, world.global).ok());
    QCOMPARE(world.read(kestrelCfg), before);
}

void TestVariants::records_followTheNumbers()
{
    VariantWorld world;
    const QString pictures = variationpictures::folder(world.global, world.windows(kestrelCfg));
    QCOMPARE(pictures, u"P:\\program\\Images\\Aircraft\\SimObjects\\Airplanes\\Kestrel_K2\\"_s);
    for (int i = 0; i < 3; ++i) {
        const QString section = u"fltsim."_s + QString::number(i);
        ItemDetailRecord record;
        record.item = world.windows(kestrelCfg);
        record.section = section;
        record.custom[0] = u"row %1"_s.arg(i);
        QVERIFY(modDatabase_Addon::setItemDetail(*world.database, ItemTable::Aircraft, record));
        QVERIFY(world.actions.replace(pictures + section + u".jpg"_s, QByteArray::number(i)));
    }
    CAircraft aircraft = world.loaded(u"fltsim.0"_s);
    const auto removed = aircraft.Variant_Remove_All({u"fltsim.0"_s}, world.global);
    QVERIFY(removed.ok());
    QVERIFY(aircraft.Variant_Remove_UpdateDatabase(*world.database, *removed).ok);
    const auto custom = [&](const QString& section) {
        const auto row = modDatabase_Addon::itemDetail(
            *world.database, ItemTable::Aircraft, world.windows(kestrelCfg), section);
        return row ? row->custom[0] : u"none"_s;
    };
    const auto picture = [&](const QString& section) {
        return world.actions.read(pictures + section + u".jpg"_s, 100).value.value_or("none");
    };
    QCOMPARE(custom(u"fltsim.0"_s), u"row 1"_s);
    QCOMPARE(custom(u"fltsim.1"_s), u"row 2"_s);
    QCOMPARE(custom(u"fltsim.2"_s), u"none"_s);
    QCOMPARE(picture(u"fltsim.0"_s), "1"_ba);
    QCOMPARE(picture(u"fltsim.1"_s), "2"_ba);
    QCOMPARE(picture(u"fltsim.2"_s), "none"_ba);

    CAircraft hiding = world.loaded(u"fltsim.0"_s);
    const auto hidden = hiding.Hide(world.global);
    QVERIFY(hidden.ok());
    QCOMPARE(hiding.sSection, u"hidden.fltsim.0"_s);
    QVERIFY(hiding.Variants_Renamed_UpdateDatabase(*world.database, hidden->renamed).ok);
    QCOMPARE(custom(u"hidden.fltsim.0"_s), u"row 1"_s);
    QCOMPARE(custom(u"fltsim.0"_s), u"row 2"_s);
    QCOMPARE(picture(u"fltsim.0"_s), "2"_ba);
}

void TestVariants::remove_asks()
{
    AircraftWorld world;
    const QByteArray before = world.read(kestrelCfg);
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.1"_s);
    const CAircraft::VariantRemoval asking{true, true, u"FS X"_s};
    world.prompts.expect(u"Are you sure you want to permanently remove 'Kestrel K2 Red'"_s,
                         Button::No);
    QCOMPARE(aircraft.Variant_Remove(asking, world.global).text,
             u"Remove operation was aborted."_s);
    world.prompts.expect(u"Confirm Removal"_s, Button::Yes);
    world.prompts.expect(
        u"'Kestrel K2 Red' is part of an original FS X addon. Are you certain you want to permanently remove it?"_s,
        Button::No);
    QCOMPARE(aircraft.Variant_Remove(asking, world.global).kind, ErrorKind::Declined);
    QCOMPARE(world.prompts.asked.constLast().caption, u"Confirm Removal of Original Addon"_s);
    QCOMPARE(world.read(kestrelCfg), before);
    QVERIFY(aircraft.Variant_Remove({}, world.global).ok());
    QVERIFY(!world.read(kestrelCfg).contains("Kestrel K2 Red"));
    QCOMPARE(world.aircraft(kestrel, u"fltsim.1"_s).sTexture, u"ete"_s);
    QVERIFY(aircraft.Variant_Remove_All({u"General"_s}, world.global)
                .text.startsWith(u"Error editing "_s));
}

void TestVariants::remove_deletesWhatNobodyUses()
{
    AircraftWorld world;
    world.write(kestrel + u"/Panel.p/panel.cfg"_s, "[fltsim]\r\nalias=Aurelia_700\\panel\r\n");
    world.write(kestrel + u"/Sound.s/sound.cfg"_s, "[fltsim]\r\nalias=Aurelia_700\\sound\r\n");
    world.write(kestrel + u"/Sound.s/own.wav"_s, "x");
    world.write(kestrel + u"/texture.red/deep/more.bmp"_s, "x");
    world.replace(
        kestrelCfg, "panel=\r\nsound=\r\ntexture=red", "panel=p\r\nsound=s\r\ntexture=red");
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.1"_s);
    QVERIFY(aircraft.Variant_Remove({}, world.global).ok());
    const QString kept = world.windows(kestrel) + u"\\texture.red\\thumbnail.jpg"_s;
    const QStringList told =
        aircraft.Variant_Remove_DeleteCfgFilesAndFolder(world.files, [&](const QString& path) {
            return path.compare(kept, Qt::CaseInsensitive) == 0;
        });
    QVERIFY(told.constFirst().contains(u"thumbnail.jpg' was left"_s));
    QCOMPARE(QDir(world.host(kestrel + u"/texture.red"_s))
                 .entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             QStringList{u"thumbnail.jpg"_s});
    QVERIFY(!QFile::exists(world.host(kestrel + u"/Panel.p"_s)));
    QVERIFY(QFile::exists(world.host(kestrel + u"/Sound.s/own.wav"_s))); // more than an alias

    // Shared by another variation, plain, or outside of the aircraft: all stay.
    world.replace(kestrelCfg, "texture=ete", "texture=..\\..\\Northwind_Carrier\\texture");
    CAircraft outside = world.aircraft(kestrel, u"fltsim.1"_s);
    QVERIFY(outside.Variant_Remove({}, world.global).ok());
    QVERIFY(outside
                .Variant_Remove_DeleteCfgFilesAndFolder(world.files,
                                                        [](const QString&) { return false; })
                .isEmpty());
    QVERIFY(QFile::exists(world.host(u"SimObjects/Airplanes/Northwind_Carrier/texture"_s)));
}

void TestVariants::allDetails_includeHidden()
{
    AircraftWorld world;
    CAircraft aircraft = world.aircraft(kestrel, u"fltsim.1"_s);
    const QByteArray before = world.read(kestrelCfg);
    QVERIFY(aircraft.Hide(world.global).ok());
    const std::vector<CAircraft> all = aircraft.Variant_Details_GetAll();
    QCOMPARE(all.size(), size_t(3));
    QCOMPARE(all[1].sTitle, u"Kestrel K2 Red"_s);
    QVERIFY(all[1].IsHidden() && !all[2].IsHidden());
    QCOMPARE(all[2].sSection, u"fltsim.1"_s);
    QCOMPARE(all[2].sVariation, u"Été"_s);
    QCOMPARE(aircraft.Folder_AircraftTexture_LoadAll().size(), 3);
    QVERIFY(aircraft.ShowAgain(world.global).ok());
    QCOMPARE(aircraft.sSection, u"fltsim.1"_s);
    QCOMPARE(world.read(kestrelCfg), before);
    const auto copy = aircraft.Clone();
    QCOMPARE(copy->sTitle, aircraft.sTitle);
    QVERIFY(copy->Hide(world.global).ok());
    // The copy's edit is one of another's to the original, which asks before it overwrites it.
    QVERIFY(aircraft.INILines_Load());
    QCOMPARE(aircraft.Load_GetEffects(),
             (QStringList{u"fx_kestrel_light"_s, u"fx_kestrel_smoke"_s}));
    QCOMPARE(aircraft.Load_GetEffectsTextures(u"fx_kestrel_light"_s, world.global),
             QStringList{u"fx_kestrel_light.bmp"_s});
}

void TestVariants::database_tellsTheOwner()
{
    VariantWorld world;
    CAircraft aircraft = world.loaded();
    QVERIFY(!aircraft.Database_AircraftIsInDatabase(*world.database));
    AddonRecord addon;
    addon.name = u"Kestrel"_s;
    addon.dateInstalled = QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9));
    QVERIFY(modDatabase_Addon::createAddon(*world.database, addon));
    QList<DetailRecord> details = {
        {0, 0, u"aircraft.cfg"_s, world.windows(kestrel) + u'\\', u"aircraft.cfg"_s, {}, {}}};
    QVERIFY(modDatabase_Addon::addDetails(*world.database, addon.key, details).ok());
    QCOMPARE(aircraft.Database_AircraftIsInDatabase(*world.database).value_or(0), addon.key);
    QVERIFY(aircraft.SuppressionStatus_Save(*world.database, true).ok);
    QVERIFY(aircraft.SuppressionStatus_Load(*world.database));
    QVERIFY(!world.loaded(u"fltsim.1"_s).SuppressionStatus_Load(*world.database));
}

VT_TEST_CLASS(TestVariants)
#include "test_variants.moc"
