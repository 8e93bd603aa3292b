// Typed sight of the settings table over the store. Program-wide settings are held in memory once
// Registry_LoadSettings() ran; all others are read when asked for. A value that is missing, empty
// or of the wrong type reads as its default, and reading never writes.
#pragma once

#include "platform/Result.h"
#include "shell/SettingsTable.h"

#include <QString>

#include <array>
#include <functional>
#include <optional>

namespace vt {

class CRegistry_Manipulation;
class FileActions;
struct GlobalRecord;

class Settings
{
public:
    /// Both must outlive this; the generation in \a global decides some defaults.
    Settings(CRegistry_Manipulation& registry, GlobalRecord& global);

    /// Loads the program-wide settings in the table's order; names each group as the current
    /// procedure.
    void Registry_LoadSettings();
    /// Writes the same settings back, in the same order. False when a write failed.
    bool Registry_SaveSettings();

    [[nodiscard]] QString text(SettingKey key);
    [[nodiscard]] bool flag(SettingKey key);
    [[nodiscard]] qint32 number(SettingKey key);
    /// 24-bit, red in the low byte; -1 stands for the desktop's own colour.
    [[nodiscard]] qint32 colour(SettingKey key);

    /// Written at once; a program-wide setting is changed in memory too. False when the write
    /// failed or the text is no value of the setting's type.
    bool setText(SettingKey key, const QString& value);
    bool setFlag(SettingKey key, bool value);
    bool setNumber(SettingKey key, qint32 value);
    bool setColour(SettingKey key, qint32 value);
    /// Saves what was written to the disk at once, for what must outlive a sudden end.
    Result store(FileActions& actions);
    /// Back to the default: the stored value is deleted.
    bool clear(SettingKey key);

    [[nodiscard]] QString
    layoutText(Section window, LayoutValue value, ViewPrefix prefix = ViewPrefix::None);
    bool setLayoutText(Section window,
                       LayoutValue value,
                       const QString& text,
                       ViewPrefix prefix = ViewPrefix::None);
    /// What is stored in a section under any name; nothing when the value is missing or empty.
    [[nodiscard]] std::optional<QString> stored(Section section, const QString& name);

    /// Off only when "File Open Type" is 1.
    [[nodiscard]] bool opensWithViewer();

    /// Says whether a font is installed; one that is not is replaced by the default. Without it
    /// every font counts as installed.
    std::function<bool(const QString&)> fontInstalled;

private:
    /// The value after the type's and the row's rules, as it would be stored.
    QString effective(SettingKey key);
    QString ruled(SettingKey key, const QString& stored) const;
    bool write(SettingKey key, const QString& canonical);

    CRegistry_Manipulation& m_registry;
    GlobalRecord& m_global;
    std::array<std::optional<QString>, programWideSettingCount> m_loaded;
};

} // namespace vt
