// Where an outside tool lies and whether it is whole; shared by the traffic tools and the airport
// editor. Finding asks nobody; asking remembers the answer in the settings.
#pragma once

#include "platform/Gate.h"
#include "platform/Processes.h"
#include "platform/Result.h"
#include "shell/Context.h"
#include "shell/SettingsTable.h"

#include <QString>
#include <QStringList>

namespace vt {

/// What is known of a tool.
struct OutsideTool
{
    QString title;        ///< "Traffic Tools"
    SettingKey setting;   ///< its folder
    RootId root;          ///< by which its folder may be written
    QStringList folders;  ///< looked at when the setting is empty; each ends in "\"
    QStringList programs; ///< file names that must be there
    QString question;     ///< what the user is asked
    QString invalid;      ///< said of a folder that is not the tool's
    QString missing;      ///< said when a program is not there; empty: the program is named
};

namespace outsidetool {

/// Success when every program is there; else why the folder is not the tool's.
[[nodiscard]] Result check(const Files& files, const OutsideTool& tool, const QString& folder);

/// The folder of the settings if one is set, else the first usual one that holds the tool; empty
/// when there is none. A folder that is returned has become a root of the gate.
[[nodiscard]] QString find(Context& context, const OutsideTool& tool);

/// As find(), and asks when there is none. A folder that is not the tool's is announced ("Invalid
/// Program Configuration") and refused; a new one is kept in the settings. Kind Surroundings when
/// the user named none.
[[nodiscard]] ResultOf<QString> locate(Context& context, const OutsideTool& tool);

/// Keeps a folder that was checked in the settings; from now on it may be written.
Result remember(Context& context, const OutsideTool& tool, const QString& folder);

/// Why a finished process did not do its work; empty when it ended well. A crash is announced too
/// ("Unexpected Error").
[[nodiscard]] QString complaint(Context& context, const QString& program, const ProcessEnd& end);

} // namespace outsidetool
} // namespace vt
