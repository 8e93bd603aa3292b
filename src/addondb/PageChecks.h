// A checksum in every page of a database file: the last eight bytes of a page hold the XXH3-64 of
// the others, seeded with the page's number. A layer between the engine and its files writes it
// with the page and compares it whenever the page is read, so that no damaged page is ever used.
#pragma once

#include <QByteArray>
#include <QList>

namespace vt::pagechecks {

/// Bytes at the end of each page that the engine leaves alone (byte 20 of the file's header).
inline constexpr int reservedBytes = 8;

/// Name of the engine's file layer that keeps the checksums; made known to the engine by the first
/// call. For files that were made with the reserved bytes only.
[[nodiscard]] const char* fileLayer();

/// Whether \a page (schema::pageSize bytes) is what was written as page \a number (1-based).
[[nodiscard]] bool isSound(const unsigned char* page, qint64 number);

/// Writes the checksum into \a page.
void seal(unsigned char* page, qint64 number);

struct Scan
{
    bool readable = true;
    qint64 pages = 0;     ///< pages of the file, a part of one counts as one
    QList<qint64> broken; ///< 1-based; at most a hundred are named
};

/// Reads the file page by page, past the engine. As many pages as nothing uses may be empty (all
/// zero, never written); whether those are the right ones is for the engine to find out.
[[nodiscard]] Scan scan(const QByteArray& hostFile);

} // namespace vt::pagechecks
