#include "ShellFixture.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QSet>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::Rows;
using vt::test::ScriptedPrompts;
using vt::test::ShellFixture;

namespace {

const QString settingsKey = u"Software\\Vantrel for Flight Simulator X\\"_s;

void store(ShellFixture& shell, SettingKey key, const QString& text)
{
    QVERIFY(shell.store.setValue(Hive::CurrentUser,
                                 settingsKey + sectionName(settingRow(key).section),
                                 settingName(key),
                                 text));
}

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void table_namesAreUniqueAndDefaultsFitTheirTypes()
    {
        QSet<QString> seen;
        for (int i = 0; i < static_cast<int>(SettingKey::Count); ++i) {
            const auto key = static_cast<SettingKey>(i);
            const SettingRow& row = settingRow(key);
            const QString full = sectionName(row.section) + u'/' + settingName(key);
            QVERIFY2(!seen.contains(full.toLower()), qPrintable(full));
            seen.insert(full.toLower());
            for (const int generation : {FS2002, FS2004, FSX}) {
                const QString fallback = settingDefault(row, generation);
                QVERIFY2(canonicalSetting(row.type, fallback) == fallback, qPrintable(full));
                if (row.range)
                    QVERIFY2(fallback.toInt() >= row.range->least &&
                                 fallback.toInt() <= row.range->most,
                             qPrintable(full));
            }
        }
        for (int i = 0; i < static_cast<int>(LayoutValue::Count); ++i) {
            const SettingRow& row = layoutRow(static_cast<LayoutValue>(i));
            QVERIFY(canonicalSetting(row.type, settingDefault(row, FSX)).has_value());
        }
    }

    void names_areFoundAgainWithoutRegardToCase()
    {
        for (int i = 0; i < static_cast<int>(SettingKey::Count); ++i) {
            const auto key = static_cast<SettingKey>(i);
            const Section section = settingRow(key).section;
            QCOMPARE(sectionNamed(sectionName(section).toUpper()), section);
            QCOMPARE(settingNamed(section, settingName(key).toLower()), key);
        }
        QVERIFY(!sectionNamed(u"Databases"));
        QVERIFY(!settingNamed(Section::Database, u"Show Report"));
        QCOMPARE(settingName(SettingKey::LastExtractionFolder), u"Last Extaction Folder"_s);
    }

    void number_isCorrectedByItsRange()
    {
        const auto factor = SettingKey::OptimizationFactor;
        const Rows<SettingKey, QString, int> rows = {
            {"negative factor", factor, u"-5"_s, 1},
            {"factor above 3", factor, u"7"_s, 3},
            {"factor 0 stays", factor, u"0"_s, 0},
            {"no number", factor, u"often"_s, 1},
            {"beyond 16 bits", factor, u"40000"_s, 1},
            {"blanks around", factor, u" 2 "_s, 2},
            {"negative history", SettingKey::DatabaseHistory, u"-1"_s, 0},
            {"history", SettingKey::DatabaseHistory, u"13"_s, 13},
            {"open with is not bounded", SettingKey::OpenWith, u"99"_s, 99},
        };
        for (const auto& [key, stored, read] : rows) {
            ShellFixture shell;
            store(shell, key, stored);
            QCOMPARE(shell.settings.number(key), read);
            shell.settings.Registry_LoadSettings();
            QCOMPARE(shell.settings.number(key), read);
        }
    }

    void value_ofTheWrongTypeReadsAsDefault()
    {
        ShellFixture shell;
        QVERIFY(shell.settings.flag(SettingKey::AutoOptimize));
        QVERIFY(!shell.settings.flag(SettingKey::MDIOpenMaximized));
        store(shell, SettingKey::AutoOptimize, u"No"_s);
        store(shell, SettingKey::MDIOpenMaximized, u"true"_s);
        store(shell, SettingKey::ShowSplashScreen, u""_s);
        QVERIFY(shell.settings.flag(SettingKey::AutoOptimize));
        QVERIFY(shell.settings.flag(SettingKey::MDIOpenMaximized));
        QVERIFY(shell.settings.flag(SettingKey::ShowSplashScreen));
        store(shell, SettingKey::AutoOptimize, u"False"_s);
        QVERIFY(!shell.settings.flag(SettingKey::AutoOptimize));
        QVERIFY2(!shell.settings.stored(Section::Display, u"Font"_s), "reading must not write");
    }

    void load_holdsProgramWideValuesAndNamesItsGroups()
    {
        ShellFixture shell;
        QStringList procedures;
        shell.settings.fontInstalled = [&](const QString&) {
            procedures.append(shell.global.currentProcedure);
            return true;
        };
        store(shell, SettingKey::Font, u"DejaVu Sans"_s);
        store(shell, SettingKey::OpenWith, u"5"_s);
        shell.settings.Registry_LoadSettings();
        QCOMPARE(procedures, QStringList{u"Registry_LoadSettings : Display"_s});
        QCOMPARE(shell.global.currentProcedure, u"Registry_LoadSettings (END)"_s);

        // A program-wide value is what was loaded; one read on demand is what is stored now.
        store(shell, SettingKey::OpenWith, u"7"_s);
        store(shell, SettingKey::ZipCompressionLevel, u"9"_s);
        QCOMPARE(shell.settings.number(SettingKey::OpenWith), 5);
        QCOMPARE(shell.settings.number(SettingKey::ZipCompressionLevel), 9);
        QVERIFY(shell.settings.setNumber(SettingKey::OpenWith, 3));
        QCOMPARE(shell.settings.number(SettingKey::OpenWith), 3);
    }

    void save_writesEveryProgramWideValue()
    {
        ShellFixture shell;
        shell.settings.Registry_LoadSettings();
        QVERIFY(!shell.store.changed());
        QVERIFY(shell.settings.Registry_SaveSettings());
        qsizetype count = 0;
        for (int s = 0; s < static_cast<int>(Section::Count); ++s) {
            const QString key = settingsKey + sectionName(static_cast<Section>(s));
            count += shell.store.valueNames(Hive::CurrentUser, key).size();
        }
        QCOMPARE(count, qsizetype(programWideSettingCount));
        QCOMPARE(shell.store.value(Hive::CurrentUser, settingsKey + u"Toolbar"_s, u"Captions"_s),
                 u"True"_s);
    }

    void reading_hasItsExceptions()
    {
        for (const int generation : {FSX, FS2004}) {
            ShellFixture shell(generation);
            shell.settings.fontInstalled = [](const QString& font) { return font == u"Carlito"_s; };
            store(shell, SettingKey::Font, u"Comic"_s);
            QCOMPARE(shell.settings.text(SettingKey::Font),
                     generation == FSX ? u"Tahoma"_s : u"Arial"_s);
            store(shell, SettingKey::Font, u"Carlito"_s);
            QCOMPARE(shell.settings.text(SettingKey::Font), u"Carlito"_s);
            for (const auto& [type, viewer] : {std::pair(u"1"_s, false), {u"2"_s, true}}) {
                QVERIFY(shell.settings.opensWithViewer() || type == u"2");
                store(shell, SettingKey::FileOpenType, type);
                QCOMPARE(shell.settings.opensWithViewer(), viewer);
            }
            store(shell, SettingKey::ThumbnailMaxWidth, u"200"_s);
            shell.settings.Registry_LoadSettings();
            QCOMPARE(shell.settings.number(SettingKey::ThumbnailMaxWidth),
                     generation == FSX ? 200 : 320);
        }
    }

    void set_refusesForeignTextAndClearGoesBack()
    {
        ShellFixture shell;
        QVERIFY(!shell.settings.setText(SettingKey::AutoOptimize, u"maybe"_s));
        QVERIFY(!shell.settings.setText(SettingKey::OptimizationFactor, u"2.5"_s));
        QVERIFY(!shell.store.changed());
        QVERIFY(shell.settings.setNumber(SettingKey::OptimizationFactor, 9));
        QCOMPARE(shell.settings.stored(Section::Database, u"Optimization Factor"_s), u"3"_s);
        QVERIFY(shell.settings.clear(SettingKey::OptimizationFactor));
        QCOMPARE(shell.settings.number(SettingKey::OptimizationFactor), 1);
        QVERIFY(!shell.settings.stored(Section::Database, u"Optimization Factor"_s));
    }

    void layout_valuesCarryTheirViewsPrefix()
    {
        ShellFixture shell;
        Settings& settings = shell.settings;
        QVERIFY(settings.setLayoutText(
            Section::WorkWithZip, LayoutValue::SortBy, u"4"_s, ViewPrefix::Zip));
        QCOMPARE(settings.stored(Section::WorkWithZip, u"Zip - Sort By"_s), u"4"_s);
        QCOMPARE(settings.layoutText(Section::WorkWithZip, LayoutValue::SortBy, ViewPrefix::Files),
                 u"0"_s);
        QCOMPARE(settings.layoutText(Section::WorkWithZip, LayoutValue::SortBy, ViewPrefix::Zip),
                 u"4"_s);
        const std::optional<LayoutName> named = layoutNamed(u"favorite - current columns");
        QVERIFY(named && named->value == LayoutValue::CurrentColumns &&
                named->prefix == ViewPrefix::Favorite);
        QVERIFY(!layoutNamed(u"Zip - Window State"));
    }

    void productName_missingIsWarnedAboutOnce()
    {
        RegistryStore store;
        ScriptedPrompts prompts;
        CRegistry_Manipulation registry(store, prompts, {});
        prompts.expect(u"Registry functions will assume 'TEST APPLICATION'."_s, Button::Ok);
        QVERIFY(registry.SaveSetting(u"Toolbar"_s, u"On"_s, u"False"_s));
        QCOMPARE(registry.GetSetting(u"Toolbar"_s, u"On"_s), u"False"_s);
        QCOMPARE(prompts.asked.size(), 1);
        QCOMPARE(prompts.asked.first().caption, u"Registry Class Warning"_s);
        QCOMPARE(registry.GetKey(Hive::CurrentUser, u"TEST APPLICATION"_s, u"Toolbar"_s, u"On"_s),
                 u"False"_s);
        registry.AppName(u"Other"_s);
        QCOMPARE(registry.GetSetting(u"Toolbar"_s, u"On"_s, u"none"_s), u"none"_s);
    }

    void keys_areAddressedBelowSoftware()
    {
        ShellFixture shell;
        QVERIFY(shell.registry.SaveKey(
            Hive::LocalMachine, u"Maker\\Game"_s, u"10.0"_s, u"Path"_s, u"C:\\G"_s));
        QVERIFY(shell.registry.SaveKey(
            Hive::LocalMachine, u"Maker\\Game"_s, {}, u"Path"_s, u"C:\\H"_s));
        const CRegistry_Manipulation& registry = shell.registry;
        QCOMPARE(
            registry.GetKeyDirect(Hive::LocalMachine, u"Software\\Maker\\Game\\10.0"_s, u"path"_s),
            u"C:\\G"_s);
        QCOMPARE(registry.GetKeyDirect(Hive::LocalMachine, u"Software\\Maker\\Game"_s, u"Path"_s),
                 u"C:\\H"_s);
        QCOMPARE(registry.GetKey(Hive::CurrentUser, u"Maker\\Game"_s, {}, u"Path"_s), QString());
        QCOMPARE(registry.EnumerateSubKeys(Hive::LocalMachine, u"Software\\Maker\\Game"_s),
                 QStringList{u"10.0"_s});
    }

    void getKey_readsForeignHivesAsLocalMachine()
    {
        ShellFixture shell;
        QVERIFY(shell.registry.SaveKey(Hive::LocalMachine, u"Maker"_s, {}, u"Path"_s, u"here"_s));
        QCOMPARE(shell.registry.GetKey(static_cast<Hive>(77), u"Maker"_s, {}, u"Path"_s),
                 u"here"_s);
    }

    void star_isTheDefaultValue()
    {
        ShellFixture shell;
        QVERIFY(shell.registry.SaveKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s, u"ZipFile"_s));
        QCOMPARE(shell.store.value(Hive::ClassesRoot, u".zip"_s, u""_s), u"ZipFile"_s);
        QCOMPARE(shell.registry.GetKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s), u"ZipFile"_s);
        QVERIFY(shell.registry.DeleteKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s));
        QCOMPARE(shell.registry.GetKeyDirect(Hive::ClassesRoot, u".zip"_s, u"*"_s), QString());
    }

    void delete_takesValuesAndWholeKeys()
    {
        ShellFixture shell;
        CRegistry_Manipulation& registry = shell.registry;
        QVERIFY(registry.SaveSetting(u"Edit Panels"_s, u"Sort By"_s, u"2"_s));
        QVERIFY(registry.SaveSetting(u"Edit Panels"_s, u"Flip Bar"_s, u"True"_s));
        QVERIFY(registry.DeleteSetting(u"Edit Panels"_s, u"Sort By"_s));
        QCOMPARE(registry.GetSetting(u"Edit Panels"_s, u"Sort By"_s, u"0"_s), u"0"_s);
        QCOMPARE(registry.GetSetting(u"Edit Panels"_s, u"Flip Bar"_s), u"True"_s);
        QVERIFY(
            registry.DeleteKeyAndSubKeys(Hive::CurrentUser, u"Software\\"_s + registry.AppName()));
        QCOMPARE(registry.GetSetting(u"Edit Panels"_s, u"Flip Bar"_s), QString());
    }
};

VT_TEST_CLASS(TestSettings)

#include "test_settings.moc"
