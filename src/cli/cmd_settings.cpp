// settings list, get, set: the table of settings with what is stored.
#include "cli/Command.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

QString typeName(SettingType type)
{
    switch (type) {
    case SettingType::Boolean:
        return u"boolean"_s;
    case SettingType::Integer:
    case SettingType::Long:
        return u"integer"_s;
    case SettingType::Colour:
        return u"colour"_s;
    case SettingType::Text:
        break;
    }
    return u"text"_s;
}

/// One setting as it was addressed, found in the table.
struct Addressed
{
    Section section = Section::Count;
    std::optional<SettingKey> key;
    std::optional<LayoutName> layout;

    [[nodiscard]] const SettingRow& row() const
    {
        return key ? settingRow(*key) : layoutRow(layout->value);
    }

    [[nodiscard]] QString name() const
    {
        return key ? settingName(*key) : layoutName(layout->value, layout->prefix);
    }
};

ResultOf<Addressed> addressed(const Arguments& arguments)
{
    const QString section = arguments.one(u"SECTION"_s);
    const QString name = arguments.one(u"NAME"_s);
    const std::optional<Section> found = sectionNamed(section);
    if (!found)
        return Result::failure(u"There is no section '"_s + section +
                               u"' in the settings; 'settings list' shows them."_s);
    Addressed result;
    result.section = *found;
    result.key = settingNamed(*found, name);
    if (!result.key && isWindowSection(*found))
        result.layout = layoutNamed(name);
    if (!result.key && !result.layout)
        return Result::failure(u"There is no setting '"_s + name + u"' in the section '"_s +
                               sectionName(*found) + u"'; 'settings list' shows them."_s);
    return result;
}

QString valueOf(Settings& settings, const Addressed& setting)
{
    return setting.key ? settings.text(*setting.key)
                       : settings.layoutText(
                             setting.section, setting.layout->value, setting.layout->prefix);
}

/// The members of one setting, without the braces.
void writeSetting(JsonStream& out, Settings& settings, const Addressed& setting, int generation)
{
    const SettingRow& row = setting.row();
    out.field(u"section", sectionName(setting.section));
    out.field(u"name", setting.name());
    out.field(u"value", valueOf(settings, setting));
    out.field(u"default", settingDefault(row, generation));
    out.field(u"stored", settings.stored(setting.section, setting.name()).has_value());
    out.field(u"type", typeName(row.type));
    out.field(u"meaning", QString::fromUtf8(row.meaning));
}

/// Every setting of the table, and the layout values that are stored.
std::vector<Addressed> allSettings(Settings& settings)
{
    std::vector<Addressed> all;
    for (size_t i = 0; i < static_cast<size_t>(SettingKey::Count); ++i) {
        const auto key = static_cast<SettingKey>(i);
        all.push_back({settingRow(key).section, key, {}});
    }
    for (size_t s = 0; s < static_cast<size_t>(Section::Count); ++s) {
        const auto section = static_cast<Section>(s);
        if (!isWindowSection(section))
            continue;
        for (size_t v = 0; v < static_cast<size_t>(LayoutValue::Count); ++v)
            for (size_t p = 0; p < static_cast<size_t>(ViewPrefix::Count); ++p) {
                const auto value = static_cast<LayoutValue>(v);
                const auto prefix = static_cast<ViewPrefix>(p);
                const QString name = layoutName(value, prefix);
                if (p > 0 && name == layoutName(value))
                    break;
                if (settings.stored(section, name))
                    all.push_back({section, {}, LayoutName{value, prefix}});
            }
    }
    return all;
}

int listSettings(World& world, const Arguments&)
{
    Context& context = world.context();
    JsonStream& out = world.out();
    out.beginArray();
    for (const Addressed& setting : allSettings(context.settings)) {
        out.beginObject();
        writeSetting(out, context.settings, setting, context.global.generation);
        out.endObject();
        world.say(sectionName(setting.section) + u" / "_s + setting.name() + u" = "_s +
                  valueOf(context.settings, setting));
    }
    out.endArray();
    return Done;
}

void showSetting(World& world, const Addressed& setting)
{
    Context& context = world.context();
    JsonStream& out = world.out();
    out.beginObject();
    writeSetting(out, context.settings, setting, context.global.generation);
    out.endObject();
    world.say(valueOf(context.settings, setting));
}

int getSetting(World& world, const Arguments& arguments)
{
    const ResultOf<Addressed> setting = addressed(arguments);
    if (!setting)
        return world.fail(setting.error());
    showSetting(world, *setting);
    return Done;
}

/// What a setting takes, as the end of a sentence.
QString takes(const SettingRow& row)
{
    if (row.type == SettingType::Boolean)
        return u"True or False"_s;
    if (!row.range)
        return u"a whole number"_s;
    return u"a whole number from "_s + QString::number(row.range->least) + u" to "_s +
           QString::number(row.range->most);
}

bool fits(const SettingRow& row, const QString& value)
{
    const std::optional<QString> canonical = canonicalSetting(row.type, value);
    if (!canonical || !row.range)
        return canonical.has_value();
    const qint32 number = canonical->toInt();
    return number >= row.range->least && number <= row.range->most;
}

int setSetting(World& world, const Arguments& arguments)
{
    const ResultOf<Addressed> setting = addressed(arguments);
    if (!setting)
        return world.fail(setting.error());
    const QString value = arguments.one(u"VALUE"_s);
    if (!fits(setting->row(), value))
        return world.fail(Result::failure(u"'"_s + value + u"' is no value for '"_s +
                                          setting->name() + u"': it takes "_s +
                                          takes(setting->row()) + u'.'));
    if (Result fit = world.needWriting(); !fit)
        return world.fail(fit);
    Settings& settings = world.context().settings;
    const bool written =
        setting->key
            ? settings.setText(*setting->key, value)
            : settings.setLayoutText(
                  setting->section, setting->layout->value, value, setting->layout->prefix);
    if (!written)
        return world.fail(Result::failure(u"'"_s + value + u"' cannot be stored for '"_s +
                                          setting->name() +
                                          u"': it holds characters that no setting may hold."_s));
    if (Result saved = world.saveRegistry(); !saved)
        return world.fail(saved);
    showSetting(world, *setting);
    return Done;
}

} // namespace

std::vector<Command> settingsCommands()
{
    return {
        {"settings list", "every setting with its value", {}, {}, listSettings},
        {"settings get",
         "the value of one setting",
         {{"SECTION", "section, such as \"Database\""}, {"NAME", "name of the setting"}},
         {},
         getSetting},
        {"settings set",
         "stores a value",
         {{"SECTION", "section, such as \"Database\""},
          {"NAME", "name of the setting"},
          {"VALUE", "True or False, a whole number, or a text"}},
         {},
         setSetting},
    };
}

} // namespace vt::cli
