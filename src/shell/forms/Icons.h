// The program's own icons: two tones, drawn in the palette's text colour and a colour of meaning,
// so that they stand on light and dark grounds alike. They follow a change of the palette.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace vt::icons {

/// What a thing's state is; beside each icon stands its word.
enum class State
{
    Done,
    Here,
    Attention,
    Nothing,
    New,
    Replaces,
    Same,
    Skipped,
    Problem,
    Whole,
    Changed,
    Missing,
    TrashCan,
    Own,
    Simulator,
    Cabinet,
};

/// What a file is.
enum class Kind
{
    Folder,
    File,
    Archive,
    Configuration,
    Document,
    Picture,
    Sound,
    Model,
    Gauge,
    Program,
    Scenery,
    Movie,
    Flight,
};

/// Of a command: "install", "remove", "import", "all-addons", "cabinet", "history", "aircraft",
/// "panels", "sounds", "scenery", "traffic", "start-flying", "browse", "customize", "optimize",
/// "info", "help", "web", "exit". Asserts that there is one of that name.
[[nodiscard]] QIcon command(const QString& name);
[[nodiscard]] QIcon state(State state);
[[nodiscard]] QIcon kind(Kind kind);
/// Of the program, in its own colours.
[[nodiscard]] QIcon program();

/// The colour that stands for a state, readable as text on the palette's base.
[[nodiscard]] QColor stateColour(State state);

} // namespace vt::icons
