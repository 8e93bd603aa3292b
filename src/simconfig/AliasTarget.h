// Where the "alias" entry of a panel.cfg, sound.cfg or model.cfg leads. The text comes from a file
// that anybody may have written, so it passes the same checks as a path that is to be written.
#pragma once

#include "platform/Files.h"
#include "shell/GlobalRecord.h"

#include <QString>
#include <QStringList>
#include <QStringView>

namespace vt::aliastarget {

enum class Kind
{
    Panel, ///< panel.cfg
    Sound, ///< sound.cfg; soundai.cfg in a folder "soundai"
    Model, ///< model.cfg
};

/// "Panel.cfg", "Sound.cfg" ("SoundAI.cfg" for a folder of that name), "Model.cfg".
[[nodiscard]] QString configFileName(Kind kind, QStringView folder);

struct Target
{
    /// Full path of the referenced configuration file, spelled as on the disk where it exists;
    /// empty when the text cannot be a path.
    QString file;
    bool exists = false;
    QString problem; ///< why the text was refused: one sentence; empty otherwise
};

/// Full paths in the order of preference: below each folder of aircraft (Airplanes, Rotorcraft),
/// then below the simulator's. Empty when the text is refused; \a problem then tells why.
[[nodiscard]] QStringList
candidates(const GlobalRecord& global, QStringView alias, Kind kind, QString* problem = nullptr);

/// The first candidate that exists, else the first of all. \a alias names a folder, or the
/// configuration file in it; quotes, "/" and separators at its ends do not matter. "..", drives and
/// names that no file may have are refused.
[[nodiscard]] Target
resolve(const Files& files, const GlobalRecord& global, QStringView alias, Kind kind);

} // namespace vt::aliastarget
