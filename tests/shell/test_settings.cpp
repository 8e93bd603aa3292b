#include "ShellFixture.h"
#include "support/TestMain.h"

#include <QSet>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ShellFixture;

class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table_namesAreUniqueAndDefaultsFitTheirTypes();
    void names_areFoundAgainWithoutRegardToCase();
    void number_isCorrectedByItsRange_data();
    void number_isCorrectedByItsRange();
    void value_ofTheWrongTypeReadsAsDefault();
    void defaults_differByGeneration();
    void load_holdsProgramWideValuesAndNamesItsGroups();
    void save_writesEveryProgramWideValue();
    void thumbnailWidth_isNotReadForGeneration4();
    void font_thatIsNotInstalledIsReplaced();
    void set_refusesForeignTextAndClearGoesBack();
    void layout_valuesCarryTheirViewsPrefix();
    void viewer_isOffOnlyForOne();
};

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

void TestSettings::table_namesAreUniqueAndDefaultsFitTheirTypes()
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

void TestSettings::names_areFoundAgainWithoutRegardToCase()
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

void TestSettings::number_isCorrectedByItsRange_data()
{
    QTest::addColumn<SettingKey>("key");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("read");
    const auto factor = SettingKey::OptimizationFactor;
    QTest::newRow("negative factor") << factor << u"-5"_s << 1;
    QTest::newRow("factor above 3") << factor << u"7"_s << 3;
    QTest::newRow("factor 0 stays") << factor << u"0"_s << 0;
    QTest::newRow("no number") << factor << u"often"_s << 1;
    QTest::newRow("beyond 16 bits") << factor << u"40000"_s << 1;
    QTest::newRow("blanks around") << factor << u" 2 "_s << 2;
    QTest::newRow("negative history") << SettingKey::DatabaseHistory << u"-1"_s << 0;
    QTest::newRow("history") << SettingKey::DatabaseHistory << u"13"_s << 13;
    QTest::newRow("open with is not bounded") << SettingKey::OpenWith << u"99"_s << 99;
}

void TestSettings::number_isCorrectedByItsRange()
{
    QFETCH(SettingKey, key);
    QFETCH(QString, stored);
    ShellFixture shell;
    store(shell, key, stored);
    QTEST(shell.settings.number(key), "read");
    shell.settings.Registry_LoadSettings();
    QTEST(shell.settings.number(key), "read");
}

void TestSettings::value_ofTheWrongTypeReadsAsDefault()
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

void TestSettings::defaults_differByGeneration()
{
    const auto colourOf = [](int red, int green, int blue) {
        return red + 256 * green + 65536 * blue;
    };
    ShellFixture fsx(FSX);
    ShellFixture fs2004(FS2004);
    ShellFixture fs2002(FS2002);
    const auto background = SettingKey::MDIBackgroundColor;
    QCOMPARE(fsx.settings.colour(background), colourOf(251, 239, 223));
    QCOMPARE(fs2004.settings.colour(background), colourOf(166, 202, 240));
    QCOMPARE(fs2002.settings.colour(background), colourOf(128, 128, 192));
    QCOMPARE(fsx.settings.text(SettingKey::Font), u"Tahoma"_s);
    QCOMPARE(fs2004.settings.text(SettingKey::Font), u"Arial"_s);
}

void TestSettings::load_holdsProgramWideValuesAndNamesItsGroups()
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

void TestSettings::save_writesEveryProgramWideValue()
{
    ShellFixture shell;
    shell.settings.Registry_LoadSettings();
    QVERIFY(!shell.store.changed());
    QVERIFY(shell.settings.Registry_SaveSettings());
    int count = 0;
    for (int s = 0; s < static_cast<int>(Section::Count); ++s)
        count += static_cast<int>(
            shell.store
                .valueNames(Hive::CurrentUser, settingsKey + sectionName(static_cast<Section>(s)))
                .size());
    QCOMPARE(count, programWideSettingCount);
    QCOMPARE(shell.store.value(Hive::CurrentUser, settingsKey + u"Toolbar"_s, u"Captions"_s),
             u"True"_s);
}

void TestSettings::thumbnailWidth_isNotReadForGeneration4()
{
    for (const int generation : {FSX, FS2004}) {
        ShellFixture shell(generation);
        store(shell, SettingKey::ThumbnailMaxWidth, u"200"_s);
        shell.settings.Registry_LoadSettings();
        QCOMPARE(shell.settings.number(SettingKey::ThumbnailMaxWidth),
                 generation == FSX ? 200 : 320);
    }
}

void TestSettings::font_thatIsNotInstalledIsReplaced()
{
    ShellFixture shell;
    shell.settings.fontInstalled = [](const QString& font) { return font == u"Carlito"_s; };
    store(shell, SettingKey::Font, u"Comic"_s);
    QCOMPARE(shell.settings.text(SettingKey::Font), u"Tahoma"_s);
    store(shell, SettingKey::Font, u"Carlito"_s);
    QCOMPARE(shell.settings.text(SettingKey::Font), u"Carlito"_s);
}

void TestSettings::set_refusesForeignTextAndClearGoesBack()
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

void TestSettings::layout_valuesCarryTheirViewsPrefix()
{
    ShellFixture shell;
    Settings& settings = shell.settings;
    QVERIFY(
        settings.setLayoutText(Section::WorkWithZip, LayoutValue::SortBy, u"4"_s, ViewPrefix::Zip));
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

void TestSettings::viewer_isOffOnlyForOne()
{
    ShellFixture shell;
    QVERIFY(shell.settings.opensWithViewer());
    store(shell, SettingKey::FileOpenType, u"1"_s);
    QVERIFY(!shell.settings.opensWithViewer());
    store(shell, SettingKey::FileOpenType, u"2"_s);
    QVERIFY(shell.settings.opensWithViewer());
}

VT_TEST_CLASS(TestSettings)

#include "test_settings.moc"
