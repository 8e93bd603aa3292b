#include "archive/ZipDirectory.h"

#include "archive/LowFirst.h"
#include "archive/ZipNames.h"
#include "platform/Text.h"

#include <algorithm>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr quint32 localSignature = 0x04034B50;
constexpr quint32 centralSignature = 0x02014B50;
constexpr quint32 endSignature = 0x06054B50;
constexpr quint32 end64Signature = 0x06064B50;
constexpr quint32 locatorSignature = 0x07064B50;
constexpr qint64 localHeaderBytes = 30;
constexpr qint64 centralHeaderBytes = 46;
constexpr qint64 endBytes = 22;
constexpr qint64 end64Bytes = 56;
constexpr qint64 locatorBytes = 20;
constexpr qint64 longestComment = 0xFFFF;

EntryKind kindOf(QByteArrayView name, quint16 madeBy, quint32 attributes)
{
    const int host = madeBy >> 8;
    const quint32 type = attributes >> 28;
    if (host == 3 || host == 19) {
        if (type == 0xA)
            return EntryKind::Link;
        if (type != 0 && type != 8 && type != 4)
            return EntryKind::Device;
    }
    if (name.endsWith('/') || name.endsWith('\\') || (attributes & 0x10) != 0 ||
        ((host == 3 || host == 19) && type == 4))
        return EntryKind::Folder;
    return (attributes & 0x08) != 0 ? EntryKind::Device : EntryKind::File;
}

} // namespace

void UnpackTally::add(const ZipEntry& entry)
{
    add(entry.size, entry.packed);
}

void UnpackTally::add(qint64 size, qint64 packed, bool alone)
{
    const bool dense = alone && size / ziplimits::ratio > packed;
    add(UnpackTally{size, dense ? size : 0});
}

void UnpackTally::add(const UnpackTally& other)
{
    constexpr qint64 most = qint64(1) << 62;
    bytes += qMin(other.bytes, most - bytes);
    denseBytes += qMin(other.denseBytes, most - denseBytes);
}

QString UnpackTally::excess(qint64 sourceBytes) const
{
    if (bytes > ziplimits::ratioFreeBytes && bytes / ziplimits::ratio > sourceBytes)
        return u"would unpack to more than 200 times its size."_s;
    if (denseBytes > ziplimits::denseFreeBytes)
        return u"holds more than 512 MB that unpack to more than 200 times their packed size."_s;
    return {};
}

/// What the end records say, checked against the file's size.
struct ZipDirectory::EndRecord
{
    qint64 entries = 0;
    qint64 directoryBytes = 0;
    qint64 directoryOffset = 0; ///< in the source, prefix included
    qint64 prefix = 0;
    bool exactCount = false; ///< entries is no 16-bit number that may have run over
};

/// Fills one ZipDirectory; every step leaves its failure in place of a value.
class ZipDirectory::Parser
{
public:
    Parser(ZipDirectory& directory, int& code) : m_d(directory), m_code(code) {}

    Result run();

private:
    Result damaged(const QString& why)
    {
        m_code = ZIP_ER_INCONS;
        return Result::failure(u"The archive '"_s + m_d.m_source->name() + u"' is damaged: "_s +
                                   why,
                               ErrorKind::Surroundings);
    }

    Result tooMuch(const QString& why)
    {
        m_code = ZIP_ER_INCONS;
        return Result::failure(u"The archive '"_s + m_d.m_source->name() + u"' is refused: "_s +
                               why);
    }

    Result noArchive(QByteArrayView beginning);
    Result findEnd(EndRecord& end);
    bool readEnd(qint64 at, const char* record, EndRecord& end, Result& problem);
    bool readEnd64(qint64 endAt, EndRecord& end, Result& problem);
    bool locate(qint64 directoryEnd, quint64 bytes, quint64 offset, EndRecord& end);
    Result readEntries(const EndRecord& end);
    Result readEntry(const char* header, qint64 room, ZipEntry& entry, qint64& used);
    static void applyAes(QByteArrayView extra, ZipEntry& entry);
    Result applyExtra64(QByteArrayView extra, ZipEntry& entry, quint64 (&values)[3]);
    Result checkEntry(const ZipEntry& entry);
    Result checkOverlaps();
    Result checkRatio();

    ZipDirectory& m_d;
    int& m_code;
    zipnames::Splitter m_splitter;
};

ResultOf<std::shared_ptr<const ZipDirectory>> ZipDirectory::open(std::shared_ptr<ByteSource> source,
                                                                 int& code)
{
    code = ZIP_ER_READ;
    const auto directory = std::make_shared<ZipDirectory>();
    directory->m_source = std::move(source);
    if (Result read = Parser(*directory, code).run(); !read)
        return read;
    code = ZIP_ER_OK;
    return std::shared_ptr<const ZipDirectory>(directory);
}

QByteArrayView ZipDirectory::record(const ZipEntry& entry) const
{
    const qsizetype at = qsizetype(entry.nameAt) - centralHeaderBytes;
    const char* header = m_bytes.constData() + at;
    return QByteArrayView(m_bytes).sliced(at,
                                          centralHeaderBytes + entry.nameBytes +
                                              low<quint16>(header + 30) +
                                              low<quint16>(header + 32));
}

Result ZipDirectory::Parser::run()
{
    EndRecord end;
    if (Result found = findEnd(end); !found)
        return found;
    m_d.m_directoryOffset = end.directoryOffset;
    m_d.m_prefix = end.prefix;
    if (end.directoryBytes > ziplimits::directoryBytes)
        return tooMuch(u"its directory is larger than the limit of 128 MB."_s);
    m_d.m_bytes = QByteArray(qsizetype(end.directoryBytes), Qt::Uninitialized);
    if (Result r = m_d.m_source->read(end.directoryOffset, m_d.m_bytes.data(), end.directoryBytes);
        !r)
        return r;
    if (Result r = readEntries(end); !r)
        return r;
    if (Result r = checkOverlaps(); !r)
        return r;
    return checkRatio();
}

Result ZipDirectory::Parser::noArchive(QByteArrayView beginning)
{
    const QString name = u"'"_s + m_d.m_source->name() + u"'"_s;
    m_code = ZIP_ER_NOZIP;
    if (beginning.startsWith("PK\x03\x04"))
        return Result::failure(
            u"The archive "_s + name +
                u" is truncated or damaged: its directory is missing at its end."_s,
            ErrorKind::Surroundings);
    return Result::failure(
        name + (beginning.isEmpty() ? u" is empty and no archive."_s : u" is not a ZIP archive."_s),
        ErrorKind::Surroundings);
}

/// The last end record whose directory lies where it says. Bytes behind its comment are tolerated
/// as far as the search reaches.
Result ZipDirectory::Parser::findEnd(EndRecord& end)
{
    const ByteSource& source = *m_d.m_source;
    char beginning[4];
    const qint64 head = qMin<qint64>(source.size(), 4);
    if (Result r = source.read(0, beginning, head); !r)
        return r;
    const qint64 tailBytes = qMin(source.size(), endBytes + longestComment);
    QByteArray tail(qsizetype(tailBytes), Qt::Uninitialized);
    if (Result r = source.read(source.size() - tailBytes, tail.data(), tailBytes); !r)
        return r;
    Result problem = noArchive(QByteArrayView(beginning, head));
    for (qint64 at = tailBytes - endBytes; at >= 0; --at) {
        const char* record = tail.constData() + at;
        if (record[0] != 'P' || low<quint32>(record) != endSignature)
            continue;
        if (!readEnd(source.size() - tailBytes + at, record, end, problem))
            continue;
        m_d.m_comment = tail.sliced(at + endBytes, low<quint16>(record + 20));
        return Result::success();
    }
    return problem;
}

bool ZipDirectory::Parser::readEnd(qint64 at, const char* record, EndRecord& end, Result& problem)
{
    if (low<quint16>(record + 20) > m_d.m_source->size() - at - endBytes) {
        problem = damaged(u"its comment is cut off."_s);
        return false;
    }
    const quint16 disk = low<quint16>(record + 4);
    const quint16 directoryDisk = low<quint16>(record + 6);
    const quint16 here = low<quint16>(record + 8);
    const quint16 all = low<quint16>(record + 10);
    const quint32 bytes = low<quint32>(record + 12);
    const quint32 offset = low<quint32>(record + 16);
    end = {};
    if (disk == 0xFFFF || here == 0xFFFF || all == 0xFFFF || bytes == 0xFFFFFFFF ||
        offset == 0xFFFFFFFF) {
        Result problem64 = Result::success();
        if (readEnd64(at, end, problem64))
            return true;
        if (!problem64) {
            problem = problem64;
            return false;
        }
    }
    if (disk != 0 || directoryDisk != 0 || here != all) {
        problem = damaged(u"it is one part of an archive that was split over several files."_s);
        return false;
    }
    end.entries = all;
    if (!locate(at, bytes, offset, end)) {
        problem = damaged(u"its directory does not lie where its end record says."_s);
        return false;
    }
    return true;
}

/// False with \a problem untouched when there is no ZIP64 end record.
bool ZipDirectory::Parser::readEnd64(qint64 endAt, EndRecord& end, Result& problem)
{
    const ByteSource& source = *m_d.m_source;
    char locator[locatorBytes];
    if (endAt < locatorBytes || !source.read(endAt - locatorBytes, locator, locatorBytes) ||
        low<quint32>(locator) != locatorSignature)
        return false;
    // The record usually stands directly before its locator, whatever a prefix did to its offset.
    const qint64 stated = qint64(low<quint64>(locator + 8));
    char record[end64Bytes];
    qint64 at = -1;
    for (const qint64 candidate : {endAt - locatorBytes - end64Bytes, stated}) {
        if (candidate >= 0 && candidate <= endAt - locatorBytes - end64Bytes &&
            source.read(candidate, record, end64Bytes) && low<quint32>(record) == end64Signature) {
            at = candidate;
            break;
        }
    }
    if (at < 0) {
        problem = damaged(u"its ZIP64 end record is missing."_s);
        return false;
    }
    if (low<quint32>(record + 16) != 0 || low<quint32>(record + 20) != 0 ||
        low<quint64>(record + 24) != low<quint64>(record + 32)) {
        problem = damaged(u"it is one part of an archive that was split over several files."_s);
        return false;
    }
    end.exactCount = true;
    end.entries = qint64(qMin<quint64>(low<quint64>(record + 32), quint64(1) << 62));
    if (locate(at, low<quint64>(record + 40), low<quint64>(record + 48), end))
        return true;
    problem = damaged(u"its directory does not lie where its end record says."_s);
    return false;
}

/// Finds the directory directly before its end record (which a prefix does not disturb), or else
/// at the stated offset (where something stands between the two).
bool ZipDirectory::Parser::locate(qint64 directoryEnd,
                                  quint64 bytes,
                                  quint64 offset,
                                  EndRecord& end)
{
    const quint64 room = quint64(directoryEnd);
    if (bytes > room || offset > room - bytes)
        return false;
    end.directoryBytes = qint64(bytes);
    for (const qint64 prefix : {qint64(room - bytes - offset), qint64(0)}) {
        char signature[4];
        end.prefix = prefix;
        end.directoryOffset = prefix + qint64(offset);
        if (bytes == 0)
            return true;
        if (bytes >= quint64(centralHeaderBytes) &&
            m_d.m_source->read(end.directoryOffset, signature, 4) &&
            low<quint32>(signature) == centralSignature)
            return true;
    }
    return false;
}

Result ZipDirectory::Parser::readEntries(const EndRecord& end)
{
    const char* bytes = m_d.m_bytes.constData();
    const qint64 total = m_d.m_bytes.size();
    m_d.m_entries.reserve(size_t(qMin(total / centralHeaderBytes, end.entries)));
    qint64 at = 0;
    while (total - at >= centralHeaderBytes && low<quint32>(bytes + at) == centralSignature) {
        if (qint64(m_d.m_entries.size()) == ziplimits::entries)
            return tooMuch(u"it holds more entries than the limit of 200,000."_s);
        qint64 used = 0;
        ZipEntry& entry = m_d.m_entries.emplace_back();
        entry.nameAt = quint32(at + centralHeaderBytes);
        if (Result r = readEntry(bytes + at, total - at, entry, used); !r)
            return r;
        at += used;
    }
    const qint64 found = qint64(m_d.m_entries.size());
    // Old tools let the 16-bit number run over instead of writing ZIP64.
    if (found != end.entries && (end.exactCount || (found & 0xFFFF) != end.entries))
        return damaged(u"its directory holds "_s + countText(found, u"entry"_s, u"entries"_s) +
                       u", its end record says "_s + QString::number(end.entries) + u'.');
    return Result::success();
}

Result
ZipDirectory::Parser::readEntry(const char* header, qint64 room, ZipEntry& entry, qint64& used)
{
    entry.nameBytes = low<quint16>(header + 28);
    const qint64 extraBytes = low<quint16>(header + 30);
    const qint64 commentBytes = low<quint16>(header + 32);
    used = centralHeaderBytes + entry.nameBytes + extraBytes + commentBytes;
    if (used > room)
        return damaged(u"an entry of its directory is cut off."_s);
    const quint16 madeBy = low<quint16>(header + 4);
    const quint16 disk = low<quint16>(header + 34);
    entry.flags = low<quint16>(header + 8);
    entry.method = low<quint16>(header + 10);
    entry.stamp = quint32(low<quint16>(header + 14)) << 16 | low<quint16>(header + 12);
    entry.crc = low<quint32>(header + 16);
    entry.attributes = low<quint32>(header + 38);
    quint64 values[3] = {
        low<quint32>(header + 24), low<quint32>(header + 20), low<quint32>(header + 42)};

    const QByteArrayView stored(header + centralHeaderBytes, entry.nameBytes);
    const QByteArrayView extra(header + centralHeaderBytes + entry.nameBytes, extraBytes);
    entry.kind = kindOf(stored, madeBy, entry.attributes);
    const QByteArrayView unicode = extra.isEmpty() ? extra : zipnames::unicodePath(extra, stored);
    if (unicode.isEmpty())
        m_splitter.split(
            stored, zipnames::pageOf(stored, madeBy, entry.flags), entry.folder, entry.name);
    else
        m_splitter.split(unicode, zipnames::Page::Utf8, entry.folder, entry.name);

    if (disk != 0 && disk != 0xFFFF)
        return damaged(u"it is one part of an archive that was split over several files."_s);
    if (Result r = applyExtra64(extra, entry, values); !r)
        return r;
    if (entry.encrypted())
        applyAes(extra, entry);
    constexpr quint64 most = quint64(1) << 62;
    if (values[0] > most || values[1] > most || values[2] > most)
        return damaged(u"the entry '"_s + entry.folder + entry.name +
                       u"' announces an impossible size."_s);
    entry.size = qint64(values[0]);
    entry.packed = qint64(values[1]);
    entry.headerOffset = qint64(values[2]) + m_d.m_prefix;
    return checkEntry(entry);
}

/// What is told of AES: version, "AE", strength, method.
void ZipDirectory::Parser::applyAes(QByteArrayView extra, ZipEntry& entry)
{
    while (extra.size() >= 4) {
        const quint16 id = low<quint16>(extra.data());
        const qsizetype length = low<quint16>(extra.data() + 2);
        if (length > extra.size() - 4)
            return;
        if (id == 0x9901 && length >= 7) {
            entry.aesVersion = quint8(qMin<quint16>(low<quint16>(extra.data() + 4), 0xFF));
            entry.aesStrength = quint8(extra[8]);
            entry.aesMethod = low<quint16>(extra.data() + 9);
            return;
        }
        extra = extra.sliced(4 + length);
    }
}

/// \a values: size, packed size, offset; each that is saturated is taken from the ZIP64 field.
Result
ZipDirectory::Parser::applyExtra64(QByteArrayView extra, ZipEntry& entry, quint64 (&values)[3])
{
    constexpr quint64 saturated = 0xFFFFFFFF;
    if (values[0] != saturated && values[1] != saturated && values[2] != saturated)
        return Result::success();
    while (extra.size() >= 4) {
        const quint16 id = low<quint16>(extra.data());
        const qsizetype length = low<quint16>(extra.data() + 2);
        if (length > extra.size() - 4)
            break;
        QByteArrayView field = extra.sliced(4, length);
        extra = extra.sliced(4 + length);
        if (id != 1)
            continue;
        for (quint64& value : values) {
            if (value != saturated)
                continue;
            if (field.size() < 8)
                return damaged(u"the sizes of the entry '"_s + entry.folder + entry.name +
                               u"' are cut off."_s);
            value = low<quint64>(field.data());
            field = field.sliced(8);
        }
        break;
    }
    return Result::success();
}

Result ZipDirectory::Parser::checkEntry(const ZipEntry& entry)
{
    // Deflate cannot do better than 1,032 to 1, so such an entry lies about its size.
    constexpr qint64 bestDeflate = 1032;
    const qint64 leastEnd = m_d.m_directoryOffset - localHeaderBytes - entry.nameBytes;
    if (entry.packed > leastEnd || entry.headerOffset > leastEnd - entry.packed)
        return damaged(u"the data of the entry '"_s + entry.folder + entry.name +
                       u"' lie outside of the archive."_s);
    if (entry.kind != EntryKind::File || entry.encrypted())
        return Result::success();
    const bool lies = entry.method == 0
                          ? entry.size != entry.packed
                          : entry.method == 8 && entry.size / bestDeflate > entry.packed;
    if (lies)
        return damaged(u"the entry '"_s + entry.folder + entry.name +
                       u"' announces a size that its data cannot have."_s);
    return Result::success();
}

/// Entries that share their data make small archives unpack to any size.
Result ZipDirectory::Parser::checkOverlaps()
{
    const auto endOf = [](const ZipEntry& e) {
        return e.headerOffset + localHeaderBytes + e.nameBytes + e.packed;
    };
    const auto overlap = [this](const ZipEntry& e) {
        return damaged(u"the entry '"_s + e.folder + e.name +
                       u"' overlaps with another one's data."_s);
    };
    const std::vector<ZipEntry>& entries = m_d.m_entries;
    bool ascending = true;
    for (size_t i = 1; i < entries.size() && ascending; ++i)
        ascending = entries[i].headerOffset >= entries[i - 1].headerOffset;
    if (ascending) {
        for (size_t i = 1; i < entries.size(); ++i) {
            if (endOf(entries[i - 1]) > entries[i].headerOffset)
                return overlap(entries[i]);
        }
        return Result::success();
    }
    std::vector<const ZipEntry*> order;
    order.reserve(entries.size());
    for (const ZipEntry& entry : entries)
        order.push_back(&entry);
    std::sort(order.begin(), order.end(), [](const ZipEntry* a, const ZipEntry* b) {
        return a->headerOffset < b->headerOffset;
    });
    for (size_t i = 1; i < order.size(); ++i) {
        if (endOf(*order[i - 1]) > order[i]->headerOffset)
            return overlap(*order[i]);
    }
    return Result::success();
}

Result ZipDirectory::Parser::checkRatio()
{
    for (const ZipEntry& entry : m_d.m_entries)
        m_d.m_unpacked.add(entry);
    const QString excess = m_d.m_unpacked.excess(m_d.m_source->size());
    return excess.isEmpty() ? Result::success() : tooMuch(u"it "_s + excess);
}

} // namespace vt
