// The entries of one RAR archive (versions 1.5 to 4, and 5), over all of its volumes, read by
// ourselves from the headers as the published notes on the two formats describe them. Unpacks
// nothing. Trusts nothing: every length is checked, every limit holds before memory is taken.
#pragma once

#include "archive/ByteSource.h"
#include "archive/CZIPFileItem.h"
#include "archive/RarSignature.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <vector>

namespace vt {

/// The codes with which failures are numbered; MTKUnrar has their texts.
enum class RarCode : int
{
    Ok = 0,
    NoMemory = 11,
    BadData = 12, ///< a broken header, a wrong check sum
    BadArchive = 13,
    UnknownFormat = 14,
    Open = 15,
    Create = 16,
    Close = 17,
    Read = 18,
    Write = 19,
    SmallBuffer = 20,
    Relocation = 5003, ///< an extracted file could not be moved to its place
};

/// A stretch of an entry's packed bytes.
struct RarPart
{
    int volume = 0; ///< index
    qint64 offset = 0;
    qint64 bytes = 0;
};

struct RarEntry
{
    QString folder; ///< "a\b\", shared between neighbours
    QString name;
    EntryKind kind = EntryKind::File;
    qint64 size = 0; ///< -1: the archive does not tell
    qint64 packed = 0;
    QDateTime modified; ///< local, null without a valid one
    quint32 attributes = 0;
    bool dosAttributes = true; ///< else a Unix mode
    quint32 crc = 0;
    bool hasCrc = false;
    QByteArray blake2sp; ///< 32 bytes, or empty
    bool encrypted = false;
    bool stored = false;
    bool solid = false;   ///< needs what was unpacked before it
    bool complete = true; ///< all of its parts are there
    quint32 dosStamp = 0; ///< RAR4
    quint8 host = 0;      ///< RAR4
    quint8 version = 0;   ///< RAR4: that it needs
    quint8 method = 0;    ///< RAR4: 0x30 stored
    quint16 flags = 0;    ///< RAR4: of its header
    quint64 packing = 0;  ///< RAR5: version, solid, method, dictionary
    int copyOf = -1;      ///< RAR5: index of the entry whose bytes it has
    std::vector<RarPart> parts;

    [[nodiscard]] QString fullName() const { return folder + name; }
};

class RarDirectory
{
public:
    /// Reads the headers of the archive that \a path names, and of the volumes that follow it. When
    /// it is a later volume, the first one is taken. What was read before a failure is there.
    [[nodiscard]] static std::shared_ptr<const RarDirectory> open(const Files& files,
                                                                  const QString& path);
    /// Of a single volume that lies somewhere else than in a file of its own.
    [[nodiscard]] static std::shared_ptr<const RarDirectory> open(std::shared_ptr<ByteSource> one);

    /// Success, or why not all entries could be listed; kind Surroundings, or Failed for a limit.
    [[nodiscard]] const Result& result() const { return m_result; }

    [[nodiscard]] RarCode code() const { return m_code; }

    [[nodiscard]] rarsignature::Format format() const { return m_format; }

    [[nodiscard]] const std::vector<RarEntry>& entries() const { return m_entries; }

    [[nodiscard]] const std::vector<std::shared_ptr<ByteSource>>& volumes() const
    {
        return m_volumes;
    }

    /// Of the first volume; what messages call the archive.
    [[nodiscard]] const QString& name() const { return m_name; }

    [[nodiscard]] bool solid() const { return m_solid; }

    /// Of all volumes.
    [[nodiscard]] qint64 bytes() const;

    /// How the archive comments itself.
    struct Comment
    {
        bool present = false;
        bool old = false;   ///< packed inside the main header, as versions before 3 did
        bool utf16 = false; ///< else UTF-8 (RAR5) or bytes of an unknown page
        RarEntry entry;     ///< where its bytes lie
    };

    [[nodiscard]] const Comment& comment() const { return m_comment; }

    /// The volume that is missing, a Windows path; empty when none is.
    [[nodiscard]] const QString& missingVolume() const { return m_missing; }

private:
    class Reader;
    class Reader4;
    class Reader5;

    void openVolumes(const Files& files, const QString& path);
    void run(const Files* files, const QString& path);
    bool openVolume(const Files& files, const QString& path, const QString& missing);
    bool readVolume(bool& more, bool& numbered, bool& first);
    void resolveCopies();
    void fail(RarCode code, const QString& why, ErrorKind kind = ErrorKind::Surroundings);

    QString m_name;
    rarsignature::Format m_format = rarsignature::Format::None;
    std::vector<std::shared_ptr<ByteSource>> m_volumes;
    std::vector<RarEntry> m_entries;
    std::vector<std::pair<int, QString>> m_copies; ///< entry, name that it copies
    Comment m_comment;
    QString m_missing;
    Result m_result;
    RarCode m_code = RarCode::Ok;
    bool m_solid = false;
};

} // namespace vt
