// Builds RAR archives of both formats byte by byte, stored or in a packed form of literals alone:
// ordinary ones, volumes, and every kind of lying one. Knows nothing of the reader that it serves
// to test.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace vt::test {

/// How one entry is written. What is not set is told truthfully.
struct RarOptions
{
    bool packed = false;
    bool solid = false;     ///< flag: needs what is before it
    bool encrypted = false; ///< flag only, the bytes stay plain
    bool folder = false;
    bool blake = false;     ///< RAR5: BLAKE2sp instead of a CRC
    bool exactTime = false; ///< RAR4: an odd second; RAR5: a Windows time in an extra record
    bool unixHost = false;  ///< attributes are a Unix mode
    bool unknownSize = false;
    bool splitBefore = false;
    bool splitAfter = false;
    quint32 attributes = 0x20;
    quint32 stamp = 0x58B2'6000; ///< RAR4: DOS date << 16 | time; 2024-05-18 12:00:00
    quint32 unixTime = 0;        ///< RAR5
    QByteArray unicode = {};     ///< RAR4: the packed Unicode name behind the plain one
    QByteArray copyOf = {};      ///< RAR5: name of the entry that this one repeats
    std::optional<quint32> crc = {};
    std::optional<quint64> size = {};
    std::optional<quint64> packedSize = {};
    std::optional<QByteArray> raw = {}; ///< the packed bytes themselves
};

class RarMaker
{
public:
    /// \a format 4 or 5. \a mainFlags: as the format numbers them (solid 8 or 4, volume 1).
    explicit RarMaker(int format, quint32 mainFlags = 0, int volume = 0);

    RarMaker& add(const QByteArray& name, const QByteArray& data, const RarOptions& options = {});
    RarMaker& comment(const QByteArray& text);
    /// A block of the given type, for what has no function of its own.
    RarMaker& block(quint8 type, const QByteArray& rest, quint16 flags = 0);
    /// What stands before everything.
    RarMaker& prefix(const QByteArray& bytes);
    [[nodiscard]] QByteArray build(bool moreVolumes = false) const;
    /// build() written to a host path; false when that failed.
    bool save(const QString& hostPath) const;

    /// One file over so many volumes.
    [[nodiscard]] static QList<QByteArray> volumes(
        int format, const QByteArray& name, const QByteArray& data, int count, bool packed = false);
    /// The bytes as the format packs them when it finds no repetition.
    [[nodiscard]] static QByteArray pack(int format, const QByteArray& data);
    /// RAR5: packed bytes of an entry of 1 MB on which an unpacker that waits for room turns in a
    /// circle for ever.
    [[nodiscard]] static QByteArray packEndless();

private:
    void service(const QByteArray& name, const QByteArray& data);
    QByteArray header4(const QByteArray& name,
                       quint64 packed,
                       quint32 crc,
                       quint64 size,
                       const RarOptions& options,
                       quint8 type) const;
    QByteArray header5(const QByteArray& name,
                       const QByteArray& data,
                       quint64 packed,
                       quint32 crc,
                       quint64 size,
                       const RarOptions& options,
                       quint8 type) const;

    int m_format;
    QByteArray m_prefix;
    QByteArray m_bytes;
};

} // namespace vt::test
