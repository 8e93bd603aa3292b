// Names, stamps and volume names of RAR archives as texts.
#pragma once

#include <QByteArrayView>
#include <QDateTime>
#include <QString>

namespace vt::rarnames {

/// The name in a header of versions 1.5 to 4: the plain name in the code page of its system, or
/// UTF-8, or (\a unicode) the plain name, a zero, and how the Unicode name differs from it.
[[nodiscard]] QString decode4(QByteArrayView field, bool unicode, int host);

/// Splits at the last separator. Folders get "\" and lose "." parts, as in ZIP archives; what leads
/// out of the archive is kept, to be seen and refused.
void split(const QString& full, QString& folder, QString& name);

/// Date and time of a DOS stamp (date << 16 | time); null when it is no valid date.
[[nodiscard]] QDateTime stampOf(quint32 stamp);

/// What follows the volume of that name: "a.part1.rar" -> "a.part2.rar" (\a numbered), "a.rar" ->
/// "a.r00" -> "a.r01" ... "a.r99" -> "a.s00". A self-extractor ("a.part1.exe") goes on as ".rar".
[[nodiscard]] QString nextVolume(const QString& path, bool numbered);
/// The first volume of the set that \a path belongs to, by its name alone.
[[nodiscard]] QString firstVolume(const QString& path, bool numbered);

} // namespace vt::rarnames
