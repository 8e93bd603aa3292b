// RAR 1.5 to 4: blocks of check sum (2 bytes), type (1), flags (2), size (2), and for some the size
// of the data that follow (4).
#include "archive/LowFirst.h"
#include "archive/RarHeaders.h"
#include "archive/RarNames.h"

#include <libdeflate.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr quint8 typeMain = 0x73;
constexpr quint8 typeFile = 0x74;
constexpr quint8 typeOldFirst = 0x75;
constexpr quint8 typeOldLast = 0x79;
constexpr quint8 typeService = 0x7A;
constexpr quint8 typeEnd = 0x7B;

constexpr quint16 flagData = 0x8000;
constexpr quint16 mainVolume = 0x0001;
constexpr quint16 mainComment = 0x0002;
constexpr quint16 mainSolid = 0x0008;
constexpr quint16 mainNumbered = 0x0010;
constexpr quint16 mainEncrypted = 0x0080;
constexpr quint16 mainFirst = 0x0100;
constexpr quint16 fileSplitBefore = 0x0001;
constexpr quint16 fileSplitAfter = 0x0002;
constexpr quint16 fileEncrypted = 0x0004;
constexpr quint16 fileComment = 0x0008;
constexpr quint16 fileSolid = 0x0010;
constexpr quint16 fileWindow = 0x00E0; ///< all of its bits: a folder
constexpr quint16 fileLarge = 0x0100;
constexpr quint16 fileUnicode = 0x0200;
constexpr quint16 fileSalt = 0x0400;
constexpr quint16 fileExactTime = 0x1000;
constexpr quint16 endMore = 0x0001;

constexpr qint64 blockBytes = 7;
constexpr qint64 fileBytes = 32;

EntryKind kindOf4(quint16 flags, int host, quint32 attributes)
{
    const quint32 type = attributes >> 12 & 0xF;
    const bool modes = host == 3 || host == 5;
    if (modes && type == 0xA)
        return EntryKind::Link;
    if ((flags & fileWindow) == fileWindow || (modes ? type == 4 : (attributes & 0x10) != 0))
        return EntryKind::Folder;
    if (modes)
        return type == 0 || type == 8 ? EntryKind::File : EntryKind::Device;
    return (attributes & 0x08) != 0 ? EntryKind::Device : EntryKind::File;
}

/// DOS stamps have even seconds alone; the field behind the name may tell the odd one.
QDateTime exactTime(quint32 stamp, QByteArrayView field)
{
    const QDateTime even = rarnames::stampOf(stamp);
    if (field.size() < 2 || !even.isValid())
        return even;
    const int modified = low<quint16>(field.data()) >> 12;
    return (modified & 0x8) != 0 && (modified & 0x4) != 0 ? even.addSecs(1) : even;
}

} // namespace

bool RarDirectory::Reader4::read(qint64 at)
{
    QByteArray header;
    bool main = false;
    for (;;) {
        // Versions before 3 wrote no end block.
        if (main && at == m_source.size()) {
            moreVolumes = !m_d.m_entries.empty() && !m_d.m_entries.back().complete;
            return true;
        }
        if (!take(at, blockBytes, header))
            return false;
        const quint16 size = low<quint16>(header.constData() + 5);
        if (size < blockBytes)
            return damaged(u"a header is shorter than headers are."_s);
        if (!take(at, size, header))
            return false;
        const auto type = quint8(header[2]);
        const quint16 flags = low<quint16>(header.constData() + 3);
        if (!checkHeader(type, flags, header))
            return false;
        if (!main && type != typeMain)
            return damaged(u"its main header is missing."_s);
        qint64 next = at + size;
        if (type == typeMain) {
            main = true;
            m_mainFlags = flags;
            m_d.m_solid = (flags & mainSolid) != 0;
            numberedNames = (flags & mainNumbered) != 0;
            first = (flags & mainVolume) == 0 || (flags & mainFirst) != 0;
            if ((flags & mainEncrypted) != 0)
                return encryptedHeaders();
            if ((flags & mainComment) != 0)
                m_d.m_comment.present = m_d.m_comment.old = true;
        } else if (type == typeFile || type == typeService) {
            if (!readEntry(type, flags, header, at, next))
                return false;
        } else if (type == typeEnd) {
            moreVolumes = (flags & endMore) != 0;
            return true;
        } else if ((flags & flagData) != 0) {
            if (size < blockBytes + 4)
                return damaged(u"a header is shorter than headers are."_s);
            next += low<quint32>(header.constData() + 7);
        }
        at = next;
    }
}

bool RarDirectory::Reader4::checkHeader(quint8 type, quint16 flags, QByteArrayView header)
{
    // Comments inside headers, which old versions wrote, are left out of the sum.
    const bool commented = (type == typeFile && (flags & fileComment) != 0) ||
                           (type == typeMain && (flags & mainComment) != 0);
    if (commented || (type >= typeOldFirst && type <= typeOldLast))
        return true;
    const quint32 sum = libdeflate_crc32(0, header.data() + 2, size_t(header.size() - 2));
    if ((sum & 0xFFFF) == low<quint16>(header.data()))
        return true;
    return damaged(u"the check sum of a header is wrong."_s);
}

bool RarDirectory::Reader4::readEntry(
    quint8 type, quint16 flags, QByteArrayView header, qint64 at, qint64& next)
{
    const char* p = header.data();
    const qint64 fixed = fileBytes + ((flags & fileLarge) != 0 ? 8 : 0);
    if (header.size() < fixed)
        return damaged(u"a header is shorter than headers are."_s);
    const qint64 nameBytes = low<quint16>(p + 26);
    if (fixed + nameBytes > header.size())
        return damaged(u"a name is cut off."_s);
    RarEntry entry;
    quint64 packed = low<quint32>(p + 7);
    quint64 size = low<quint32>(p + 11);
    bool unknown = size == 0xFFFFFFFF;
    if ((flags & fileLarge) != 0) {
        packed |= quint64(low<quint32>(p + 32)) << 32;
        size |= quint64(low<quint32>(p + 36)) << 32;
        unknown = size == ~quint64(0);
    }
    entry.flags = flags;
    entry.host = quint8(p[15]);
    entry.crc = low<quint32>(p + 16);
    entry.hasCrc = true;
    entry.dosStamp = low<quint32>(p + 20);
    entry.version = quint8(p[24]);
    entry.method = quint8(p[25]);
    entry.stored = entry.method == 0x30;
    entry.attributes = low<quint32>(p + 28);
    entry.dosAttributes = entry.host != 3 && entry.host != 5;
    entry.packed = qint64(packed);
    entry.size = unknown ? -1 : qint64(size);
    entry.encrypted = (flags & fileEncrypted) != 0;
    entry.solid = (flags & fileSolid) != 0;
    const QByteArrayView name = header.sliced(fixed, nameBytes);
    qint64 behind = fixed + nameBytes + ((flags & fileSalt) != 0 ? 8 : 0);
    entry.modified =
        exactTime(entry.dosStamp,
                  (flags & fileExactTime) != 0 && behind < header.size() ? header.sliced(behind)
                                                                         : QByteArrayView());
    if (type == typeFile) {
        if (!m_d.m_entries.empty())
            entry.folder = m_d.m_entries.back().folder;
        rarnames::split(rarnames::decode4(name, (flags & fileUnicode) != 0, entry.host),
                        entry.folder,
                        entry.name);
        entry.kind = kindOf4(flags, entry.host, entry.attributes);
    }
    if (packed > quint64(1) << 62 || (!unknown && size > quint64(1) << 62))
        return damaged(u"the entry '"_s + entry.fullName() + u"' announces an impossible size."_s);
    const qint64 data = at + header.size();
    entry.parts.push_back({m_volume, data, entry.packed});
    next = data + entry.packed;
    const bool cut = next > m_source.size();
    if (type == typeService) {
        if (name == "CMT" && !cut)
            m_d.m_comment = {true, false, (entry.attributes & 1) != 0, entry};
    } else {
        const QString full = entry.fullName();
        if (!add(std::move(entry),
                 (flags & fileSplitBefore) != 0,
                 cut || (flags & fileSplitAfter) != 0))
            return false;
        if (cut)
            return damaged(u"the data of the entry '"_s + full + u"' are cut off."_s);
    }
    return cut ? truncated() : true;
}

} // namespace vt
