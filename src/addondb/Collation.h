// How the database compares texts (without regard to case, as vt::compareNoCase) and hashes places.
// The hash is part of the file's format: it may never change.
#pragma once

#include <QByteArrayView>
#include <QStringView>

#include <cstdint>

struct sqlite3;

namespace vt::collation {

/// Name of the comparison in the file.
inline constexpr char collationName[] = "VANTREL_NOCASE";

/// As compareNoCase(), on UTF-8.
[[nodiscard]] int compare(QByteArrayView a, QByteArrayView b);

/// 32 bits of XXH3-64 over the folded UTF-8 text; equal for texts that are equal without regard to
/// case.
[[nodiscard]] std::uint32_t hash(QByteArrayView text);

/// What the index of a place holds: hash(name) in the upper 32 bits, hash(location) in the lower.
[[nodiscard]] std::int64_t placeHash(QByteArrayView location, QByteArrayView name);

/// Registers the comparison and the functions vt_place(location, name) and vt_name(name), the
/// first place hash of a name. Returns the engine's code.
int registerOn(sqlite3* handle);

} // namespace vt::collation
