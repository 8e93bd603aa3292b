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

/// Registers the comparison and three functions on texts: vt_name(text), the hash;
/// vt_location(text), the hash shifted left by 32 bits, which is the lowest number of all places in
/// that folder; vt_place(location, name), vt_location(location) + vt_name(name). Returns the
/// engine's code.
int registerOn(sqlite3* handle);

} // namespace vt::collation
