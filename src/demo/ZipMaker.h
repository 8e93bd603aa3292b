// Makes ZIP archives in one pass: entry by entry to a device, central directory at the end, ZIP64
// end record where there are more than 65,534 entries. Only makes them: whoever wants to read or
// change archives takes CZIP. Names are written as given, so a test may write any name.
#pragma once

#include "demo/DemoAircraft.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QDateTime>
#include <QIODevice>
#include <QString>

namespace vt {

/// One entry ready to be written: deflated where that saves something, stored otherwise.
struct ZipPiece
{
    QByteArray name; ///< UTF-8 bytes; a folder's ends in "/"
    QByteArray data; ///< as it will stand in the archive
    quint32 crc32 = 0;
    quint32 size = 0; ///< bytes once unpacked
    bool deflated = false;
};

/// Deflates \a bytes; independent of any maker, so that several threads may prepare pieces.
/// \a level 0 stores.
[[nodiscard]] ZipPiece zipPiece(const QString& name, const QByteArray& bytes, int level = 6);

class ZipMaker
{
public:
    /// \a out stands open for writing and outlives this; \a modified is every entry's date (local
    /// time, even seconds).
    ZipMaker(QIODevice& out, const QDateTime& modified);

    [[nodiscard]] Result add(const ZipPiece& piece);
    /// Writes the central directory. Nothing may be added afterwards.
    [[nodiscard]] Result finish();

private:
    [[nodiscard]] Result write(const QByteArray& bytes);
    [[nodiscard]] QByteArray header(const ZipPiece& piece) const;

    QIODevice& m_out;
    QByteArray m_directory;
    quint64 m_offset = 0;
    quint64 m_count = 0;
    quint32 m_dosTime = 0;
};

/// A whole archive in memory, entries in the given order, dated FreshTree::fileDate() unless told.
[[nodiscard]] QByteArray zipOf(const DemoFiles& files, const QDateTime& modified = {});

} // namespace vt
