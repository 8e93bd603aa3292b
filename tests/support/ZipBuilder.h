// Builds ZIP archives byte by byte: ordinary ones, and every kind of lying one that a library would
// refuse to write. Knows nothing of the reader that it serves to test.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

struct libdeflate_compressor;

namespace vt::test {

/// How one entry is written. What is not set is told truthfully.
struct ZipOptions
{
    int level = 6;               ///< 0 stores, 1 to 12 deflates (libdeflate's levels)
    quint32 stamp = 0x58B2'6000; ///< DOS date << 16 | time; 2024-05-18 12:00:00
    quint16 madeBy = 20;         ///< high byte: 0 DOS, 3 Unix, 10 NTFS
    quint16 flags = 0;           ///< 0x0800: the name is UTF-8
    quint32 attributes = 0x20;   ///< external attributes; Unix mode in the high half
    bool encrypted = false;      ///< flag only, the bytes stay plain
    bool zip64 = false;          ///< sizes and offset in a ZIP64 extra field
    bool dataDescriptor = false; ///< zero sizes in the local header, told behind the data
    QByteArray extra = {};       ///< further extra fields of the central header
    std::optional<QByteArray> localName = {};
    std::optional<quint16> method = {}; ///< told; the bytes stay stored or deflated by level
    std::optional<quint16> localMethod = {};
    std::optional<quint32> crc = {};
    std::optional<quint64> size = {};
    std::optional<quint64> packed = {};
    std::optional<quint64> offset = {};
    std::optional<QByteArray> raw = {}; ///< the packed bytes themselves
};

class ZipBuilder
{
public:
    using Options = ZipOptions;

    ZipBuilder() = default;
    ~ZipBuilder();
    ZipBuilder(const ZipBuilder&) = delete;
    ZipBuilder& operator=(const ZipBuilder&) = delete;

    /// \a name as stored: "/" or "\" as given, a folder ends in "/".
    ZipBuilder& add(const QByteArray& name, const QByteArray& data, const Options& options = {});
    /// Bytes before the first header; the offsets stay as if there were none, as in a
    /// self-extractor that was glued together.
    ZipBuilder& prefix(const QByteArray& bytes);
    ZipBuilder& comment(const QByteArray& text);
    /// Writes a ZIP64 end record and saturates the ordinary one.
    ZipBuilder& zip64End();
    /// The end record claims this many entries.
    ZipBuilder& claimedEntries(quint16 count);
    /// The end record claims to be on this disk.
    ZipBuilder& disk(quint16 number);

    [[nodiscard]] int count() const { return m_count; }

    [[nodiscard]] QByteArray build() const;
    /// build() written to a host path; false when that failed.
    bool save(const QString& hostPath) const;

    /// A Unicode path extra field (0x7075) for the given stored name.
    [[nodiscard]] static QByteArray unicodePathExtra(const QByteArray& stored, const QString& name);
    [[nodiscard]] static quint32 crc32(const QByteArray& data);

private:
    QByteArray packedBytes(const QByteArray& data, int level);

    QByteArray m_prefix;
    QByteArray m_files;
    QByteArray m_central;
    QByteArray m_comment;
    int m_count = 0;
    bool m_zip64End = false;
    std::optional<quint16> m_claimed;
    quint16 m_disk = 0;
    int m_level = -1;
    libdeflate_compressor* m_compressor = nullptr;
};

} // namespace vt::test
