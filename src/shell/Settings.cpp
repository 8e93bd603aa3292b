#include "shell/Settings.h"

#include "shell/CRegistry_Manipulation.h"
#include "shell/GlobalRecord.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// A group of program-wide settings by its last member, with the name that the current procedure
/// gives it.
struct SettingGroup
{
    SettingKey last;
    const char16_t* name;
};

constexpr SettingGroup settingGroups[] = {
    {SettingKey::ThumbnailMaxWidth, u"Addon Installation"},
    {SettingKey::ShowRunningFSWarnings, u"Addon Removal"},
    {SettingKey::DatabaseHistory, u"Database"},
    {SettingKey::Font, u"Display"},
    {SettingKey::FileOpenType, u"Files"},
    {SettingKey::ConfirmStart, u"Flight Simulator"},
    {SettingKey::OpenWith, u"Startup"},
    {SettingKey::ToolbarCaptions, u"Toolbar"},
};

size_t indexOf(SettingKey key)
{
    return static_cast<size_t>(key);
}

bool isProgramWide(SettingKey key)
{
    return static_cast<int>(key) < programWideSettingCount;
}

/// Calls \a visit with each program-wide setting, in order, naming each group before its first.
template <typename Visit>
void eachProgramWide(GlobalRecord& global, const QString& routine, Visit visit)
{
    size_t key = 0;
    for (const SettingGroup& group : settingGroups) {
        global.currentProcedure = routine + u" : "_s + QString::fromUtf16(group.name);
        for (; key <= indexOf(group.last); ++key)
            visit(static_cast<SettingKey>(key));
    }
    global.currentProcedure = routine + u" (END)"_s;
}

QString ranged(const SettingRow& row, const QString& text)
{
    if (!row.range)
        return text;
    const qint32 number = text.toInt();
    if (number < row.range->least)
        return QString::number(row.range->belowBecomes);
    if (number > row.range->most)
        return QString::number(row.range->most);
    return text;
}

} // namespace

Settings::Settings(CRegistry_Manipulation& registry, GlobalRecord& global)
    : m_registry(registry), m_global(global)
{}

QString Settings::ruled(SettingKey key, const QString& stored) const
{
    const SettingRow& row = settingRow(key);
    const QString fallback = settingDefault(row, m_global.generation);
    if (stored.isEmpty())
        return fallback;
    const std::optional<QString> canonical = canonicalSetting(row.type, stored);
    if (!canonical)
        return fallback;
    if (key == SettingKey::Font && fontInstalled && !fontInstalled(*canonical))
        return fallback;
    return ranged(row, *canonical);
}

QString Settings::effective(SettingKey key)
{
    if (isProgramWide(key) && m_loaded[indexOf(key)])
        return *m_loaded[indexOf(key)];
    return ruled(key,
                 m_registry.GetSetting(sectionName(settingRow(key).section), settingName(key)));
}

void Settings::Registry_LoadSettings()
{
    m_loaded.fill(std::nullopt);
    eachProgramWide(m_global, u"Registry_LoadSettings"_s, [this](SettingKey key) {
        if (key == SettingKey::ThumbnailMaxWidth && m_global.generation == FS2004)
            m_loaded[indexOf(key)] = settingDefault(settingRow(key), FS2004);
        else
            m_loaded[indexOf(key)] = effective(key);
    });
}

bool Settings::Registry_SaveSettings()
{
    bool ok = true;
    eachProgramWide(m_global, u"Registry_SaveSettings"_s, [this, &ok](SettingKey key) {
        if (key == SettingKey::ThumbnailMaxWidth && m_global.generation == FS2004)
            return;
        if (!write(key, effective(key)))
            ok = false;
    });
    return ok;
}

QString Settings::text(SettingKey key)
{
    return effective(key);
}

bool Settings::flag(SettingKey key)
{
    Q_ASSERT(settingRow(key).type == SettingType::Boolean);
    return effective(key) == u"True";
}

qint32 Settings::number(SettingKey key)
{
    Q_ASSERT(settingRow(key).type == SettingType::Integer ||
             settingRow(key).type == SettingType::Long);
    return effective(key).toInt();
}

qint32 Settings::colour(SettingKey key)
{
    Q_ASSERT(settingRow(key).type == SettingType::Colour);
    return effective(key).toInt();
}

bool Settings::write(SettingKey key, const QString& canonical)
{
    if (isProgramWide(key))
        m_loaded[indexOf(key)] = canonical;
    return m_registry.SaveSetting(
        sectionName(settingRow(key).section), settingName(key), canonical);
}

bool Settings::setText(SettingKey key, const QString& value)
{
    const SettingRow& row = settingRow(key);
    const std::optional<QString> canonical = canonicalSetting(row.type, value);
    return canonical && write(key, ranged(row, *canonical));
}

bool Settings::setFlag(SettingKey key, bool value)
{
    return setText(key, value ? u"True"_s : u"False"_s);
}

bool Settings::setNumber(SettingKey key, qint32 value)
{
    return setText(key, QString::number(value));
}

bool Settings::setColour(SettingKey key, qint32 value)
{
    return setText(key, QString::number(value));
}

Result Settings::store(FileActions& actions)
{
    return m_registry.Save(actions);
}

bool Settings::clear(SettingKey key)
{
    if (isProgramWide(key))
        m_loaded[indexOf(key)] = settingDefault(settingRow(key), m_global.generation);
    return m_registry.DeleteSetting(sectionName(settingRow(key).section), settingName(key));
}

QString Settings::layoutText(Section window, LayoutValue value, ViewPrefix prefix)
{
    const SettingRow& row = layoutRow(value);
    const QString text = m_registry.GetSetting(sectionName(window), layoutName(value, prefix));
    const std::optional<QString> canonical = canonicalSetting(row.type, text);
    if (text.isEmpty() || !canonical)
        return settingDefault(row, m_global.generation);
    return ranged(row, *canonical);
}

bool Settings::setLayoutText(Section window,
                             LayoutValue value,
                             const QString& text,
                             ViewPrefix prefix)
{
    const SettingRow& row = layoutRow(value);
    const std::optional<QString> canonical = canonicalSetting(row.type, text);
    return canonical && m_registry.SaveSetting(sectionName(window),
                                               layoutName(value, prefix),
                                               ranged(row, *canonical));
}

std::optional<QString> Settings::stored(Section section, const QString& name)
{
    const QString text = m_registry.GetSetting(sectionName(section), name);
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

bool Settings::opensWithViewer()
{
    return number(SettingKey::FileOpenType) != 1;
}

} // namespace vt
