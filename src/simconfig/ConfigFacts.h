// What single entries of aircraft.cfg, panel.cfg, sound.cfg and effects files name: which effect,
// gauge, picture or audio file. Pure functions over one name or value; files and sections are
// walked by their callers. Every rule stands once, for texts and for undecoded bytes.
#pragma once

#include "platform/AnsiCodec.h"

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace vt::configfacts {

// Values may still have their comment; quotes are taken off. The views that are returned point into
// the value.

/// The value as the simulator reads it: without a comment (";", a free-standing "//"), surrounding
/// blanks and one pair of quotes. A single slash is part of it ("Cub Intl / HS-TBA").
[[nodiscard]] QStringView plainValue(QStringView value);
[[nodiscard]] QByteArrayView plainValue(QByteArrayView value);

/// The number of an aircraft section ("fltsim.12": 12), -1 for any other name.
[[nodiscard]] int aircraftSectionNumber(QStringView name);
[[nodiscard]] int aircraftSectionNumber(QByteArrayView name);
/// "fltsim." and digits, without regard to case.
[[nodiscard]] bool isAircraftSection(QStringView name);
/// "fltsim." and the number.
[[nodiscard]] QString aircraftSectionName(qsizetype number);

/// "hidden." before the name of an aircraft section: what the simulator is not to show.
inline constexpr QStringView hiddenStem = u"hidden.";
/// The number of a hidden aircraft section ("hidden.fltsim.12": 12), -1 for any other name.
[[nodiscard]] int hiddenSectionNumber(QStringView name);
[[nodiscard]] int hiddenSectionNumber(QByteArrayView name);

/// "texture", "texture.blue": the stem alone or with a suffix behind a point.
[[nodiscard]] bool isPartFolder(QStringView name, QStringView stem);
/// "texture.blue" gives "blue", "texture" gives "".
[[nodiscard]] QString partSuffix(QStringView name);
/// Endings that pictures of aircraft and scenery really have (.dds, .bmp, .?af, .r8, ...).
[[nodiscard]] bool isRealTexture(QStringView name);

/// Whether the entries of a section of aircraft.cfg name effects: LIGHTS, EFFECTS, SMOKESYSTEM.
[[nodiscard]] bool isEffectSection(QStringView section);
[[nodiscard]] bool isEffectSection(QByteArrayView section);
/// Base name of the effects file that an entry names, without folders and ".fx": the first part
/// between commas that is no number. Empty in other sections and when there are numbers only.
[[nodiscard]] QStringView effectOf(QStringView section, QStringView value);
/// Of a value in an effect section.
[[nodiscard]] QByteArrayView effectOf(QByteArrayView value);

/// Of "Cessna!Airspeed, 10, 20". An entry without "!" has a collection only, which then is a file
/// or a folder by itself.
template <typename View> struct GaugeOf
{
    View collection; ///< without ".gau", ".cab", ".xml", ".dll"; may hold folders before the name
    View gauge;
};

[[nodiscard]] GaugeOf<QStringView> gaugeOf(QStringView value);
[[nodiscard]] GaugeOf<QByteArrayView> gaugeOf(QByteArrayView value);
/// Whether the key begins with "gauge".
[[nodiscard]] bool isGaugeKey(QStringView key);
[[nodiscard]] bool isGaugeKey(QByteArrayView key);

/// Whether the key names a picture of the panel: file, palette.
[[nodiscard]] bool isBitmapKey(QStringView key);
[[nodiscard]] bool isBitmapKey(QByteArrayView key);
/// The picture's file, relative to the panel folder, "\" as separator, ".bmp" added to a name
/// without an extension; empty for an empty value.
[[nodiscard]] QString bitmapOf(QStringView value);

/// Whether the key names an audio file: filename.
[[nodiscard]] bool isWaveKey(QStringView key);
[[nodiscard]] bool isWaveKey(QByteArrayView key);
/// The audio file relative to the sound folder ("..\Other\run.wav"), "\" as separator, ".wav" added
/// to a name without an extension of audio files; empty for an empty value.
[[nodiscard]] QString waveOf(QStringView value);

/// The pictures that an effects file names in entries "Texture", each once, in file order, without
/// regard to its line ends. They lie in "Effects\Texture\".
[[nodiscard]] QStringList effectTexturesOf(QByteArrayView fx, const AnsiCodec& ansi);

} // namespace vt::configfacts
