// The central directory of one ZIP archive, read by ourselves: a library cannot tell a stamp that
// is no date, a local header that contradicts, or a prefix, and takes five times as long.
// Trusts nothing: every length and offset is checked, every limit holds before memory is taken.
#pragma once

#include "archive/ByteSource.h"
#include "archive/CZIPFileItem.h"
#include "platform/Result.h"

#include <QByteArrayView>
#include <QString>

#include <memory>
#include <vector>

namespace vt {

namespace ziplimits {

constexpr qint64 entries = 200'000;            ///< in one source, inner archives included
constexpr qint64 directoryBytes = 128LL << 20; ///< of one archive
constexpr int ratio = 200;                     ///< unpacked to packed size, ...
constexpr qint64 ratioFreeBytes = 1LL << 30;   ///< ... looked at from this size of all entries on
constexpr qint64 denseFreeBytes = 1LL << 29;   ///< unpacked, of entries that alone are over ratio
constexpr int nesting = 8;                     ///< archives inside archives
constexpr qint64 wholeEntryBytes = 32LL << 20; ///< up to here entries are read whole

} // namespace ziplimits

struct ZipEntry
{
    qint64 headerOffset = 0; ///< of the local header in the source, prefix included
    qint64 size = 0;
    qint64 packed = 0;
    quint32 crc = 0;
    quint32 stamp = 0;      ///< DOS date << 16 | time
    quint32 attributes = 0; ///< external: DOS in the low byte, Unix mode in the high half
    quint32 nameAt = 0;     ///< of the stored name in the directory's bytes
    quint16 nameBytes = 0;
    quint16 method = 0; ///< 0 stored, 8 deflated, ...
    quint16 flags = 0;
    quint16 aesMethod = 0;  ///< under method 99: the method of what is encrypted
    quint8 aesVersion = 0;  ///< 1 or 2; 0 when nothing is told of AES
    quint8 aesStrength = 0; ///< 1 to 3: keys of 128, 192, 256 bits
    EntryKind kind = EntryKind::File;
    QString folder; ///< "a\b\", shared between entries
    QString name;

    [[nodiscard]] bool encrypted() const { return (flags & 0x2001) != 0; }
};

/// What entries would unpack to. One rule for an archive alone and for one with those inside it.
struct UnpackTally
{
    qint64 bytes = 0;
    qint64 denseBytes = 0; ///< of entries whose own ratio is over the limit, whatever pads them

    void add(const ZipEntry& entry);
    /// \a alone: the ratio of the entry itself counts too.
    void add(qint64 size, qint64 packed, bool alone = true);
    void add(const UnpackTally& other);
    /// Why a source of that size that unpacks to all this is refused ("would unpack to more than
    /// ..."); empty when it is not.
    [[nodiscard]] QString excess(qint64 sourceBytes) const;
};

class ZipDirectory
{
public:
    /// Reads the directory. \a code: the number of the failure in libzip's numbering. Not an
    /// archive, truncated, split or damaged: kind Surroundings; over a limit: kind Failed.
    [[nodiscard]] static ResultOf<std::shared_ptr<const ZipDirectory>>
    open(std::shared_ptr<ByteSource> source, int& code);

    [[nodiscard]] const std::vector<ZipEntry>& entries() const { return m_entries; }

    [[nodiscard]] const ByteSource& source() const { return *m_source; }

    /// The name as stored; local headers must hold the same bytes.
    [[nodiscard]] QByteArrayView storedName(const ZipEntry& entry) const
    {
        return QByteArrayView(m_bytes).sliced(entry.nameAt, entry.nameBytes);
    }

    /// The entry's record in the directory, as it lies in the archive: 46 bytes, name, extra
    /// fields, comment.
    [[nodiscard]] QByteArrayView record(const ZipEntry& entry) const;

    /// The archive's own comment, as stored.
    [[nodiscard]] const QByteArray& comment() const { return m_comment; }

    [[nodiscard]] const UnpackTally& unpacked() const { return m_unpacked; }

    /// Where the entries' data must end.
    [[nodiscard]] qint64 dataEnd() const { return m_directoryOffset; }

    /// Bytes before the first header that belong to no entry: 0, or a self-extractor's program.
    [[nodiscard]] qint64 prefixBytes() const { return m_prefix; }

private:
    struct EndRecord;
    class Parser;

    std::shared_ptr<ByteSource> m_source;
    QByteArray m_bytes; ///< the central directory as it lies in the archive
    QByteArray m_comment;
    std::vector<ZipEntry> m_entries;
    qint64 m_directoryOffset = 0;
    qint64 m_prefix = 0;
    UnpackTally m_unpacked;
};

} // namespace vt
