// What an add-on's aircraft.cfg, or a text that holds aircraft sections between prose, tells about
// its aircraft. Tolerant: reads any line ends, tabs, quotes and comments; edits nothing.
#pragma once

#include "platform/AnsiCodec.h"

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringView>

namespace vt {

struct AircraftSection
{
    QString section; ///< "fltsim.0", "fltsim.X", as written
    QString title;
    QString sim;
    QString model;
    QString panel;
    QString sound;
    QString texture; ///< "\" as separator
    QString manufacturer;
    QString type;
    QString variation;
};

struct AircraftFacts
{
    QList<AircraftSection> sections;
    QString category; ///< "Helicopter", "airplane"

    /// A name for the aircraft's folder: the title of a single variation, else manufacturer and
    /// type, else the first title; made valid, empty when nothing is told.
    [[nodiscard]] QString folderName() const;
};

/// Sections named "fltsim." + anything. A bare "[fltsim]" (of a texture.cfg) does not count.
[[nodiscard]] AircraftFacts aircraftFacts(QStringView text);

/// Text of a file: UTF-16 and UTF-8 by their marks, else the ANSI code page.
[[nodiscard]] QString decodedText(QByteArrayView bytes, const AnsiCodec& ansi);

} // namespace vt
