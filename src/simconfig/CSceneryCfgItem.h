// One scenery area of the simulator's scenery library, as its section says.
#pragma once

#include <QString>

namespace vt {

/// How the library's file writes a flag.
inline QString sceneryFlagText(bool value)
{
    return value ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
}

struct CSceneryCfgItem
{
    int intArea = 0; ///< number in the section's name "[Area.001]"
    QString sTitle;
    QString sLocal; ///< as written: relative to the simulator's folder, or absolute
    QString sRemote;
    bool boolActive = true;
    bool boolRequired = false;
    int intLayer = 0; ///< 0 when the section names none

    friend bool operator==(const CSceneryCfgItem&, const CSceneryCfgItem&) = default;
};

} // namespace vt
