// What the names of folders and files in add-ons tell: the simulator's own folders, wrappers that
// mean nothing, left-overs, documents without a known ending. Pure text.
#pragma once

#include "simconfig/ConfigFacts.h"

#include <QString>
#include <QStringView>

namespace vt::foldernames {

/// Folders of the simulator by which an add-on's tree is recognised.
enum class Anchor : quint8
{
    None,
    SimObjects,
    AircraftType,     ///< "Airplanes", "Rotorcraft", ...: below SimObjects
    PreviousAircraft, ///< "Aircraft": where the previous generation kept them
    AddonScenery,
    Scenery,
    Texture,
    Effects,
    Gauges,
    Sound,
    Fonts,
    Modules,
    Missions,
    Panels,
    Flights,
    Weather,
    Autogen,
};

[[nodiscard]] Anchor anchorOf(QStringView name);
/// Whether the name alone is proof of a simulator tree; "Scenery", "Texture", "Sound" and
/// "Aircraft" also stand inside other things.
[[nodiscard]] bool isStrongAnchor(Anchor anchor);

using configfacts::isPartFolder;
using configfacts::isRealTexture;
using configfacts::partSuffix;

/// Names that say nothing about their content ("FSX", "files", "main").
[[nodiscard]] bool isGeneric(QStringView name);
/// Without "-master" or "-main" at the end, which downloads of repositories add.
[[nodiscard]] QString withoutRepositoryEnding(QStringView name);
[[nodiscard]] bool hasRepositoryEnding(QStringView name);

/// Files that no pilot copies: version control, desktop and file system left-overs.
[[nodiscard]] bool isJunk(QStringView name);
/// Folders of such files ("__MACOSX", ".git").
[[nodiscard]] bool isJunkFolder(QStringView name);
/// A text or a program by its name, though the rules of types call it a texture: "README",
/// "LICENSE", "readme.md".
[[nodiscard]] bool isUntypedDocument(QStringView name);
/// "readme.txt", "License.rtf", "install notes.doc": meant for people wherever it lies.
[[nodiscard]] bool isReadme(QStringView name);
/// .jpg, .png, .gif, ...: pictures for people, and thumbnails.
[[nodiscard]] bool isPicture(QStringView name);
/// Programs, scripts and archives: never left inside the simulator's folders.
[[nodiscard]] bool isProgramOrArchive(QStringView name);

} // namespace vt::foldernames
