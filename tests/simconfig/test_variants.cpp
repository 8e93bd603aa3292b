// Variations are added to and removed from an aircraft.cfg, with their records, names and folders.
#include "AircraftWorld.h"
#include "addondb/AddonDatabase.h"
#include "addondb/JournalTable.h"
#include "addondb/Pictures.h"
#include "platform/FileTransaction.h"
#include "simconfig/InstalledTitles.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

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
    group.sarraySectionLines = LineArray::ofBytes(
        crlf("[fltsim.X]|title=Old title // remark|sim=kestrel_k2|panel=|sound=|texture=old|"
             "vtlocator=x|PanelFile=x|soundfile=x|texturepath=x|TexturePath=y|"
             "ui_variation=\"Old / old\""),
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

    void names()
    {
        const QString other =
            u"Specified title is used by another aircraft. Please enter a unique title name."_s;
        const QString fresh = u"'Fresh' in 'texture.f' already uses that title."_s;
        const Rows<QString, QString, QString> titles = {
            {"free", u"New"_s, {}, u"New"_s},
            {"empty", u" "_s, u"Please provide an aircraft title."_s, {}},
            {"installed", u" cub "_s, other, u"cub 4"_s},
            {"new", u"Fresh"_s, fresh, u"Fresh 2"_s},
        };
        const Rows<QString, QString> variations = {
            {"free", u"New"_s, {}},
            {"empty", u""_s, u"Please provide a variation name."_s},
            {"installed",
             u"BLUE"_s,
             u"Warning: another aircraft variant uses this variation name."_s},
            {"new", u"F"_s, u"Warning: 'Fresh' in 'texture.f' already uses that variation name."_s},
        };
        AircraftWorld world;
        const CAircraft aircraft(world.access);
        Installed installed;
        installed.titles = {u"Cub"_s, u"Cub 2"_s};
        installed.variations = {u"Blue"_s};
        const QList<NewVariation> others = {{u"fresh"_s, u"f"_s, u"'Fresh' in 'texture.f'"_s},
                                            {u"cub 3"_s, u""_s, u"x"_s}};
        const NameChecks checks{&installed, &others, {}, {}};
        for (const auto& [title, text, fixed] : titles) {
            const Result checked = aircraft.Title_Validate(title, checks);
            QCOMPARE(checked.text, text);
            QCOMPARE(checked.ok, text.isEmpty());
            QCOMPARE(aircraft.Title_FixDuplicate(title, checks), fixed);
        }
        for (const auto& [variation, text] : variations) {
            const Result checked = aircraft.Variation_Validate(variation, checks);
            QCOMPARE(checked.text, text);
            QCOMPARE(checked.ok, !text.startsWith(u"Please"_s)); // a clash only warns
        }
        QVERIFY(aircraft.Title_Validate(u"cub"_s, {}).ok);
    }

    void names_areAskedUntilTheyFit()
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

    void add_setsAndRemovesEntries()
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
        const QByteArray expected =
            crlf("|[fltsim.3]|vt_texture_addon_master_key=12|title=Old title|sim=kestrel_k2|"
                 "panel=|sound=|texture=blue|ui_variation=Old / old|"
                 "|[fltsim.4]|vt_texture_addon_master_key=12|title=Given title|sim=kestrel_k2|"
                 "panel=ifr|sound=|texture=Landor\\G-CIVB|ui_variation=Given||[General]|");
        QVERIFY2(world.read(kestrelCfg).contains(expected), world.read(kestrelCfg).constData());
        QCOMPARE(world.read(kestrel + u"/Aircraft.vtb"_s), before);
        QVERIFY(!world.exists(kestrel + u"/Temp.vtb"_s));
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

    void add_copyBelongsToNobody()
    {
        AircraftWorld world;
        world.replace(
            kestrelCfg, "=kestrel_k2\r\n", "=kestrel_k2\r\nVT_texture_addon_master_key=5\r\n");
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

    void add_afterReordering()
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

    void add_failsWhole()
    {
        // lineEnd: of one line in the file; null: no file
        const Rows<QString, QString, QByteArray, QString> rows = {
            {"source", u"fltsim.9"_s, u"x"_s, "\r\n", u"Error retrieving section fltsim.9"_s},
            {"title", u"fltsim.1"_s, u"\u65e5"_s, "\r\n", u"Error updating sarrayINILines(). "_s},
            {"line ends", u"fltsim.1"_s, u"x"_s, "\n", u"'C:\\"_s},
            {"no file", u"fltsim.1"_s, u"x"_s, {}, u"Could not read 'C:\\"_s},
        };
        for (const auto& [source, title, lineEnd, text] : rows) {
            AircraftWorld world;
            CAircraft aircraft = world.aircraft(kestrel, u"fltsim.0"_s);
            QList<CTextureGroup> groups = {blueGroup(world.ansi), CTextureGroup()};
            groups[1].sTitle = title;
            groups[1].sSourceSection = source;
            world.replace(kestrelCfg, "\r\n[General]", lineEnd + "[General]");
            if (lineEnd.isNull())
                world.remove(kestrelCfg);
            const QByteArray before = world.read(kestrelCfg);
            const auto added = aircraft.Variant_Add(groups, {}, world.global);
            QVERIFY2(!added.ok() && added.text.startsWith(text), qPrintable(added.text));
            QVERIFY(!groups.first().sTexture && groups.first().sTitle.isEmpty());
            QCOMPARE(world.read(kestrelCfg), before);
            QVERIFY(!world.exists(kestrel + u"/Aircraft.vtb"_s));
        }
    }

    void suffixes()
    {
        const Rows<QString, QString, QString> rows = {
            {"own", u"texture.blue"_s, u"x"_s, u"blue"_s},
            {"section has it", u"Texture.RED"_s, u"x"_s, u"RED 3"_s},
            {"folder has it", u"texture.left"_s, u"x"_s, u"left 2"_s},
            {"sub-folders", u"texture.Landor/G-CIVB\\"_s, u"x"_s, u"Landor\\G-CIVB"_s},
            {"plain", u"texture"_s, u"Night: two/tone"_s, u"Night twotone"_s},
            {"plain, nothing told", u"texture"_s, u"?"_s, u"New"_s},
            {"leads out", u"texture...\\..\\x"_s, u"v"_s, u"x"_s},
        };
        AircraftWorld world;
        world.write(kestrel + u"/Texture.Left/a.bmp"_s, "x");
        world.write(kestrel + u"/Texture.red 2/a.bmp"_s, "x");
        CAircraft aircraft = world.aircraft(kestrel, u"fltsim.0"_s);
        QVERIFY(aircraft.INILines_Load());
        for (const auto& [source, variation, suffix] : rows) {
            CTextureGroup group;
            group.sTextureSource = source;
            group.sVariation = variation;
            CAircraft::SuffixesTaken taken = aircraft.suffixesTaken();
            QCOMPARE(*aircraft.Variant_Add_DetermineNewTexture(group, taken), suffix);
            QVERIFY(*aircraft.Variant_Add_DetermineNewTexture(group, taken) != suffix);
            QVERIFY(!aircraft.Variant_Add_DetermineNewPanel(group, taken));
        }
    }

    void manyInOneTransaction_andOutAgain()
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
        QVERIFY(!world.exists(kestrel + u"/Temp.vtb"_s));
        CAircraft aircraft = world.loaded(u"fltsim.102"_s);
        QCOMPARE(aircraft.Variant_SearchByVTTextureAddonMasterKey(12), sections);
        QVERIFY(aircraft.Variant_Remove_All(sections, world.global).ok());
        QCOMPARE(world.read(kestrelCfg), before);
    }

    void records_followTheNumbers()
    {
        VariantWorld world;
        const QString file = world.windows(kestrelCfg);
        const auto picture = [&](const QString& section) {
            return pictures::itemThumbnail(world.global, file, section);
        };
        for (int i = 0; i < 3; ++i) {
            ItemDetailRecord record;
            record.item = file;
            record.section = u"fltsim."_s + QString::number(i);
            record.custom[0] = QString::number(i);
            QVERIFY(modDatabase_Addon::setItemDetail(*world.database, ItemTable::Aircraft, record));
            QVERIFY(world.actions.replace(picture(record.section), QByteArray::number(i)));
        }
        // What a section has of its own: record, picture.
        const auto owned = [&](const QString& section) {
            const auto row =
                modDatabase_Addon::itemDetail(*world.database, ItemTable::Aircraft, file, section);
            const auto bytes = world.actions.read(picture(section), 100);
            return (row ? row->custom[0].toLatin1() : "-") + bytes.value.value_or("-");
        };
        CAircraft aircraft = world.loaded(u"fltsim.0"_s);
        const auto removed = aircraft.Variant_Remove_All({u"fltsim.0"_s}, world.global);
        QVERIFY(removed.ok());
        QVERIFY(aircraft.Variant_Remove_UpdateDatabase(*world.database, *removed).ok);
        QCOMPARE(owned(u"fltsim.0"_s), "11"_ba);
        QCOMPARE(owned(u"fltsim.1"_s), "22"_ba);
        QCOMPARE(owned(u"fltsim.2"_s), "--"_ba);

        CAircraft hiding = world.loaded(u"fltsim.0"_s);
        const auto hidden = hiding.Hide(world.global);
        QVERIFY(hidden.ok());
        QCOMPARE(hiding.sSection, u"hidden.fltsim.0"_s);
        QVERIFY(hiding.Variants_Renamed_UpdateDatabase(*world.database, hidden->renamed).ok);
        QCOMPARE(owned(u"hidden.fltsim.0"_s), "11"_ba);
        QCOMPARE(owned(u"fltsim.0"_s), "22"_ba);
    }

    void remove_asks()
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

    void remove_deletesWhatNobodyUses()
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
        QVERIFY(!world.exists(kestrel + u"/Panel.p"_s));
        QVERIFY(world.exists(kestrel + u"/Sound.s/own.wav"_s)); // more than an alias

        // Shared by another variation, plain, or outside of the aircraft: all stay.
        world.replace(kestrelCfg, "texture=ete", "texture=..\\..\\Northwind_Carrier\\texture");
        CAircraft outside = world.aircraft(kestrel, u"fltsim.1"_s);
        QVERIFY(outside.Variant_Remove({}, world.global).ok());
        QVERIFY(outside
                    .Variant_Remove_DeleteCfgFilesAndFolder(world.files,
                                                            [](const QString&) { return false; })
                    .isEmpty());
        QVERIFY(world.exists(u"SimObjects/Airplanes/Northwind_Carrier/texture"_s));
    }

    void allDetails_includeHidden()
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
        QVERIFY(aircraft.Clone()->Hide(world.global).ok()); // a copy's edit is its own
        QVERIFY(aircraft.INILines_Load());
        QCOMPARE(aircraft.Load_GetEffects(),
                 (QStringList{u"fx_kestrel_light"_s, u"fx_kestrel_smoke"_s}));
        QCOMPARE(aircraft.Load_GetEffectsTextures(u"fx_kestrel_light"_s, world.global),
                 QStringList{u"fx_kestrel_light.bmp"_s});
    }

    void database_tellsTheOwner()
    {
        VariantWorld world;
        CAircraft aircraft = world.loaded();
        QVERIFY(!aircraft.Database_AircraftIsInDatabase(*world.database));
        AddonRecord addon;
        addon.name = u"Kestrel"_s;
        QVERIFY(modDatabase_Addon::createAddon(*world.database, addon));
        QList<DetailRecord> details = {
            {0, 0, u"aircraft.cfg"_s, world.windows(kestrel) + u'\\', u"aircraft.cfg"_s, {}, {}}};
        QVERIFY(modDatabase_Addon::addDetails(*world.database, addon.key, details).ok());
        QCOMPARE(aircraft.Database_AircraftIsInDatabase(*world.database).value_or(0), addon.key);
        QVERIFY(aircraft.SuppressionStatus_Save(*world.database, true).ok);
        QVERIFY(aircraft.SuppressionStatus_Load(*world.database));
        QVERIFY(!world.loaded(u"fltsim.1"_s).SuppressionStatus_Load(*world.database));
    }
};

VT_TEST_CLASS(TestVariants)
#include "test_variants.moc"
