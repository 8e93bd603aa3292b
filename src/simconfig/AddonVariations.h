// The variations that an add-on added to aircraft.cfg files, found again: its data file tells where
// they went, the key in each section which they are now, whatever their numbers have become.
#pragma once

#include "addondb/AddonRecords.h"
#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace vt::addonvariations {

/// Name of the file in an add-on's storage folder that tells its variations.
[[nodiscard]] QString dataFilename();

struct Variation
{
    QString file; ///< the aircraft.cfg
    QString section;
    QString title;
    QString texture;
    QStringList lines = {}; ///< of the section as it was added, its header first
};

/// The lines of a section, its header first, without the empty ones.
[[nodiscard]] QStringList linesOf(const LineArray& file, const QString& section);

/// The data file's bytes: a section "[Variant.N]" with title, file, section, texture and lines for
/// each.
[[nodiscard]] QByteArray dataFile(const QList<Variation>& variations, const AnsiCodec& ansi);
/// Back.
[[nodiscard]] QList<Variation> readDataFile(const QByteArray& bytes, const AnsiCodec& ansi);

/// The aircraft.cfg files that an add-on with these detail rows added sections to, as its data file
/// and the places of its textures tell, and those that it recorded itself; each once.
[[nodiscard]] QStringList files(const ConfigAccess& access, const QList<DetailRecord>& details);

/// Sections of those files that bear the add-on's key, in the order of files and sections.
[[nodiscard]] QList<Variation>
find(const ConfigAccess& access, qint64 masterKey, const QList<DetailRecord>& details);

} // namespace vt::addonvariations
