// SQL made from the lists of Tables.h: creation of the tables, and the conditions and orders of an
// index. With Connection.cpp and Recordset.cpp the only place of SQL text.
#pragma once

#include "addondb/Tables.h"

#include <QByteArray>
#include <QByteArrayList>

#include <cstddef>

namespace vt::schema {

/// "VTDB" in the file's header, by which it is recognised.
inline constexpr int applicationId = 0x56544442;
/// Version of the structure in the file's header. From 2 on every page has a checksum.
inline constexpr int structureVersion = 2;
inline constexpr int firstCheckedVersion = 2;
/// Measured: the fastest for large installations (docs/decisions/0008-place-indexes.md).
inline constexpr int pageSize = 16384;

/// Every statement that makes an empty database, in order.
[[nodiscard]] QByteArrayList creation();
[[nodiscard]] QByteArray createTable(Table table);
/// What makes a file one of ours, of the present structure.
[[nodiscard]] QByteArrayList marks();
[[nodiscard]] QByteArray addField(Table table, Field field);
/// Empty for a row key, which needs nothing of its own.
[[nodiscard]] QByteArray createIndex(Index index);

/// All fields, comma-separated; the file may have them in another order.
[[nodiscard]] QByteArray fields(Table table);
/// "rowid" and all fields, comma-separated, in the order of the table.
[[nodiscard]] QByteArray columns(Table table);
/// Condition: the first \a keys fields of the index equal ?1, ?2, ...
[[nodiscard]] QByteArray equalTo(Index index, std::size_t keys);
/// Condition: at or after ?1, ?2, ...; not for the indexes by hash.
[[nodiscard]] QByteArray atOrAfter(Index index, std::size_t keys);
/// The order of the index, rows that are equal by their number. \a direction: "" or " DESC".
[[nodiscard]] QByteArray order(Index index, const char* direction);
/// The field's name in quotes.
[[nodiscard]] QByteArray quoted(Field field);
[[nodiscard]] QByteArray quoted(Table table);

} // namespace vt::schema
