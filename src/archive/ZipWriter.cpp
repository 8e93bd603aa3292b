#include "archive/ZipWriter.h"

#include "archive/LowFirst.h"

#include <QDateTime>
#include <QtEndian>

#include <libdeflate.h>
#include <zlib.h>

using namespace Qt::StringLiterals;

namespace vt {

/// What local header and directory record of a new entry tell.
struct ZipWriter::Header
{
    QByteArray name;
    quint16 flags = 0;
    quint16 method = 0;
    quint32 stamp = 0;
    quint32 attributes = 0;
    quint32 crc = 0;
    qint64 size = 0;
    qint64 packed = 0;
    qint64 offset = 0;
    bool wide = false; ///< sizes in a ZIP64 field of the local header
};

namespace {

constexpr quint32 localSignature = 0x04034B50;
constexpr quint32 centralSignature = 0x02014B50;
constexpr quint32 descriptorSignature = 0x08074B50;
constexpr qint64 localBytes = 30;
constexpr qint64 centralBytes = 46;
constexpr qint64 saturated = 0xFFFFFFFF;
constexpr qint64 bufferBytes = 256LL * 1024;
constexpr qint64 piece = 1 << 20;
constexpr quint16 flagDescriptor = 0x0008;
constexpr quint16 flagUtf8 = 0x0800;
constexpr quint16 versionPlain = 20;
constexpr quint16 versionWide = 45;
constexpr quint16 extraWide = 1;

quint32 saturate(qint64 value)
{
    return quint32(qMin(value, saturated));
}

/// Local time with two seconds' precision, from 1980 to 2107.
quint32 stampOf(qint64 modifiedNs)
{
    constexpr quint32 first = 1 << 21 | 1 << 16;
    const QDateTime at = QDateTime::fromMSecsSinceEpoch(modifiedNs / 1'000'000);
    const QDate day = at.date();
    const QTime time = at.time();
    if (day.year() < 1980)
        return first;
    if (day.year() > 2107)
        return 127U << 25 | 12U << 21 | 31U << 16;
    return quint32(day.year() - 1980) << 25 | quint32(day.month()) << 21 |
           quint32(day.day()) << 16 | quint32(time.hour()) << 11 | quint32(time.minute()) << 5 |
           quint32(time.second() / 2);
}

bool isAscii(const QByteArray& bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return uchar(c) < 0x80; });
}

Result noContent(const QString& why)
{
    return Result::failure(why);
}

/// The extra fields without the ZIP64 one, which depends on where the entry lies.
QByteArray withoutWide(QByteArrayView extra)
{
    QByteArray rest;
    while (extra.size() >= 4) {
        const qsizetype length = 4 + qFromLittleEndian<quint16>(extra.data() + 2);
        if (length > extra.size())
            break;
        if (qFromLittleEndian<quint16>(extra.data()) != extraWide)
            rest.append(extra.first(length));
        extra = extra.sliced(length);
    }
    return rest;
}

/// The ZIP64 field of a directory record: those of the three that its own fields cannot hold.
QByteArray wideField(qint64 size, qint64 packed, qint64 offset)
{
    QByteArray values;
    for (const qint64 value : {size, packed, offset}) {
        if (value >= saturated)
            putLow<quint64>(values, quint64(value));
    }
    if (values.isEmpty())
        return {};
    QByteArray field;
    putLow<quint16>(field, extraWide);
    putLow<quint16>(field, quint16(values.size()));
    return field + values;
}

/// How long the sizes behind the packed bytes are, of which four forms are about; 0 for none.
qint64 descriptorLength(QByteArrayView behind, const ZipEntry& entry)
{
    const auto sizes = [&](qsizetype at, bool wide) {
        const qsizetype each = wide ? 8 : 4;
        if (behind.size() < at + 4 + 2 * each)
            return false;
        const char* p = behind.data() + at;
        const auto value = [&](const char* q) {
            return wide ? qint64(qFromLittleEndian<quint64>(q)) : qFromLittleEndian<quint32>(q);
        };
        return qFromLittleEndian<quint32>(p) == entry.crc && value(p + 4) == entry.packed &&
               value(p + 4 + each) == entry.size;
    };
    const bool sign =
        behind.size() >= 4 && qFromLittleEndian<quint32>(behind.data()) == descriptorSignature;
    if (sign && sizes(4, false))
        return 16;
    if (sign && sizes(4, true))
        return 24;
    if (sizes(0, false))
        return 12;
    return sizes(0, true) ? 20 : 0;
}

} // namespace

ZipWriter::ZipWriter(Content::Sink sink, int level)
    : m_sink(std::move(sink)), m_level(qBound(0, level, 9))
{
    if (m_level > 0)
        m_compressor = libdeflate_alloc_compressor(m_level);
    m_buffer.reserve(bufferBytes);
}

ZipWriter::~ZipWriter()
{
    if (m_compressor)
        libdeflate_free_compressor(m_compressor);
}

bool ZipWriter::flush()
{
    if (!m_refused && !m_buffer.isEmpty())
        m_refused = !m_sink(m_buffer);
    m_buffer.resize(0);
    return !m_refused;
}

bool ZipWriter::put(QByteArrayView bytes)
{
    m_offset += bytes.size();
    if (m_buffer.size() + bytes.size() > bufferBytes && !flush())
        return false;
    if (bytes.size() <= bufferBytes / 4) {
        m_buffer.append(bytes);
        return true;
    }
    if (!flush())
        return false;
    m_refused = !m_sink(bytes);
    return !m_refused;
}

/// The sink knows better why it took no more.
Result ZipWriter::ended() const
{
    return m_refused ? Result::failure(u"the archive could not be written."_s) : Result::success();
}

Result ZipWriter::countOne()
{
    if (m_entries >= ziplimits::entries)
        return Result::failure(u"the archive would hold more entries than the limit of 200,000."_s);
    ++m_entries;
    return Result::success();
}

Result ZipWriter::copyPrefix(const ZipDirectory& from)
{
    qint64 end = from.dataEnd();
    for (const ZipEntry& entry : from.entries())
        end = qMin(end, entry.headerOffset);
    for (qint64 at = 0; at < end && !m_refused; at += piece) {
        m_content.resize(qMin(piece, end - at));
        if (Result r = from.source().read(at, m_content.data(), m_content.size()); !r)
            return r;
        put(m_content);
    }
    return ended();
}

Result ZipWriter::copy(const ZipDirectory& from, const ZipEntry& entry)
{
    if (Result r = countOne(); !r)
        return r;
    const auto damaged = [&](const QString& why) {
        return Result::failure(u"The entry '"_s + entry.folder + entry.name +
                               u"' of the archive '"_s + from.source().name() +
                               u"' is damaged: "_s + why);
    };
    char header[localBytes];
    if (Result r = from.source().read(entry.headerOffset, header, localBytes); !r)
        return r;
    if (qFromLittleEndian<quint32>(header) != localSignature)
        return damaged(u"its header is missing."_s);
    const qint64 dataAt = entry.headerOffset + localBytes +
                          qFromLittleEndian<quint16>(header + 26) +
                          qFromLittleEndian<quint16>(header + 28);
    qint64 end = dataAt + entry.packed;
    if (end > from.dataEnd())
        return damaged(u"its data are cut off."_s);
    if ((qFromLittleEndian<quint16>(header + 6) & flagDescriptor) != 0) {
        char behind[24];
        const qint64 length = qMin<qint64>(sizeof behind, from.dataEnd() - end);
        if (Result r = from.source().read(end, behind, length); !r)
            return r;
        end += descriptorLength(QByteArrayView(behind, length), entry);
    }
    const qint64 offset = m_offset;
    for (qint64 at = entry.headerOffset; at < end && !m_refused; at += piece) {
        m_content.resize(qMin(piece, end - at));
        if (Result r = from.source().read(at, m_content.data(), m_content.size()); !r)
            return r;
        put(m_content);
    }
    const QByteArrayView old = from.record(entry);
    const qsizetype extraBytes = qFromLittleEndian<quint16>(old.data() + 30);
    const QByteArray extra = wideField(entry.size, entry.packed, offset) +
                             withoutWide(old.sliced(centralBytes + entry.nameBytes, extraBytes));
    QByteArray record = old.first(centralBytes).toByteArray();
    qToLittleEndian(saturate(entry.packed), record.data() + 20);
    qToLittleEndian(saturate(entry.size), record.data() + 24);
    qToLittleEndian(quint16(extra.size()), record.data() + 30);
    qToLittleEndian(quint16(0), record.data() + 34); // the first disk, were it saturated
    qToLittleEndian(saturate(offset), record.data() + 42);
    m_directory += record;
    m_directory += old.sliced(centralBytes, entry.nameBytes);
    m_directory += extra;
    m_directory += old.sliced(centralBytes + entry.nameBytes + extraBytes);
    return ended();
}

Result ZipWriter::add(const QString& name, const Content& content, bool readOnly)
{
    if (Result r = countOne(); !r)
        return r;
    Header header;
    header.name = QString(name).replace(u'\\', u'/').toUtf8();
    if (header.name.isEmpty() || header.name.size() > 0xFFFF)
        return noContent(u"its name is empty or too long for an archive."_s);
    if (!isAscii(header.name))
        header.flags |= flagUtf8;
    header.stamp =
        stampOf(content.modifiedNs >= 0 ? content.modifiedNs
                                        : QDateTime::currentMSecsSinceEpoch() * 1'000'000);
    header.attributes = readOnly ? 0x21 : 0x20;
    header.offset = m_offset;
    if (header.name.endsWith('/')) {
        header.attributes = 0x10;
        m_content.resize(0);
        return addStored(header, Content::ofBytes({}));
    }
    if (content.size >= 0 && content.size <= ziplimits::wholeEntryBytes)
        return addWhole(header, content);
    if (content.size >= 0 && (m_level == 0 || !worthPacking(content)))
        return addStored(header, content);
    return addStreamed(header, content);
}

namespace {

QByteArray localHeader(const auto& header)
{
    QByteArray bytes;
    const bool later = (header.flags & flagDescriptor) != 0;
    putLow<quint32>(bytes, localSignature);
    putLow<quint16>(bytes, header.wide ? versionWide : versionPlain);
    putLow<quint16>(bytes, header.flags);
    putLow<quint16>(bytes, header.method);
    putLow<quint32>(bytes, header.stamp);
    putLow<quint32>(bytes, later ? 0 : header.crc);
    putLow<quint32>(bytes, header.wide ? quint32(saturated) : later ? 0 : quint32(header.packed));
    putLow<quint32>(bytes, header.wide ? quint32(saturated) : later ? 0 : quint32(header.size));
    putLow<quint16>(bytes, quint16(header.name.size()));
    putLow<quint16>(bytes, header.wide ? 20 : 0);
    bytes += header.name;
    if (header.wide) {
        putLow<quint16>(bytes, extraWide);
        putLow<quint16>(bytes, 16);
        putLow<quint64>(bytes, later ? 0 : quint64(header.size));
        putLow<quint64>(bytes, later ? 0 : quint64(header.packed));
    }
    return bytes;
}

/// Whether \a transfer gave \a size bytes (any number when -1).
Result whole(const Result& given, qint64 wanted, qint64 got)
{
    if (!given)
        return given;
    if (wanted >= 0 && wanted != got)
        return noContent(u"it changed while it was read."_s);
    return Result::success();
}

} // namespace

Result ZipWriter::addWhole(Header& header, const Content& content)
{
    m_content.resize(0);
    m_content.reserve(content.size);
    const Result given = content.transfer([&](QByteArrayView bytes) {
        if (m_content.size() + bytes.size() > content.size)
            return false;
        m_content.append(bytes);
        return true;
    });
    if (Result r = whole(given, content.size, m_content.size()); !r)
        return r;
    header.size = header.packed = m_content.size();
    header.crc = libdeflate_crc32(0, m_content.constData(), size_t(m_content.size()));
    QByteArrayView data = m_content;
    // What does not become smaller does not fit.
    if (m_compressor && m_content.size() > 1) {
        if (m_packed.size() < m_content.size())
            m_packed.resize(m_content.size());
        const size_t packed = libdeflate_deflate_compress(m_compressor,
                                                          m_content.constData(),
                                                          size_t(m_content.size()),
                                                          m_packed.data(),
                                                          size_t(m_content.size() - 1));
        if (packed > 0) {
            header.method = 8;
            header.packed = qint64(packed);
            data = QByteArrayView(m_packed.constData(), header.packed);
        }
    }
    put(localHeader(header));
    put(data);
    record(header);
    return ended();
}

/// Read once for the check sum, which stands before the data, and once for the data.
Result ZipWriter::addStored(Header& header, const Content& content)
{
    const auto pass = [&](quint32& crc, bool write) {
        qint64 got = 0;
        const Result given = content.transfer([&](QByteArrayView bytes) {
            crc = libdeflate_crc32(crc, bytes.data(), size_t(bytes.size()));
            got += bytes.size();
            return !write || put(bytes);
        });
        if (m_refused)
            return ended();
        return whole(given, content.size, got);
    };
    if (Result r = pass(header.crc, false); !r)
        return r;
    header.size = header.packed = content.size;
    header.wide = content.size >= saturated;
    put(localHeader(header));
    quint32 crc = 0;
    if (Result r = pass(crc, true); !r)
        return r;
    if (crc != header.crc)
        return noContent(u"it changed while it was read."_s);
    record(header);
    return ended();
}

/// Sizes and check sum stand behind the data.
Result ZipWriter::addStreamed(Header& header, const Content& content)
{
    z_stream stream{};
    if (deflateInit2(&stream, qMax(m_level, 1), Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) !=
        Z_OK)
        return noContent(u"there is not enough memory to pack it."_s);
    header.method = 8;
    header.flags |= flagDescriptor;
    // Deflate makes what cannot be packed a little larger.
    header.wide = content.size < 0 || content.size + content.size / 1000 + piece >= saturated;
    put(localHeader(header));
    m_packed.resize(qMax<qsizetype>(m_packed.size(), bufferBytes));
    const auto pack = [&](QByteArrayView bytes, int mode) {
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
        stream.avail_in = uInt(bytes.size());
        do {
            stream.next_out = reinterpret_cast<Bytef*>(m_packed.data());
            stream.avail_out = uInt(bufferBytes);
            (void)deflate(&stream, mode);
            const qint64 made = bufferBytes - stream.avail_out;
            header.packed += made;
            if (made > 0 && !put(QByteArrayView(m_packed.constData(), made)))
                return false;
        } while (stream.avail_out == 0);
        return true;
    };
    const Result given = content.transfer([&](QByteArrayView bytes) {
        header.crc = libdeflate_crc32(header.crc, bytes.data(), size_t(bytes.size()));
        header.size += bytes.size();
        while (!bytes.isEmpty()) {
            const QByteArrayView part = bytes.first(qMin(bytes.size(), piece));
            bytes = bytes.sliced(part.size());
            if (!pack(part, Z_NO_FLUSH))
                return false;
        }
        return true;
    });
    if (given && !m_refused)
        pack({}, Z_FINISH);
    deflateEnd(&stream);
    if (m_refused)
        return ended();
    if (Result r = whole(given, content.size, header.size); !r)
        return r;
    QByteArray behind;
    putLow<quint32>(behind, descriptorSignature);
    putLow<quint32>(behind, header.crc);
    for (const qint64 size : {header.packed, header.size}) {
        if (header.wide)
            putLow<quint64>(behind, quint64(size));
        else
            putLow<quint32>(behind, quint32(size));
    }
    put(behind);
    record(header);
    return ended();
}

/// By its beginning: films, music and archives would only cost time.
bool ZipWriter::worthPacking(const Content& content)
{
    m_content.resize(0);
    (void)content.transfer([&](QByteArrayView bytes) {
        m_content.append(bytes.first(qMin(bytes.size(), piece - m_content.size())));
        return m_content.size() < piece;
    });
    if (m_content.isEmpty())
        return true;
    m_packed.resize(qMax(m_packed.size(), m_content.size()));
    return libdeflate_deflate_compress(m_compressor,
                                       m_content.constData(),
                                       size_t(m_content.size()),
                                       m_packed.data(),
                                       size_t(m_content.size() / 50 * 49)) > 0;
}

void ZipWriter::record(const Header& header)
{
    const QByteArray extra = wideField(header.size, header.packed, header.offset);
    const bool wide = header.wide || !extra.isEmpty();
    QByteArray& bytes = m_directory;
    putLow<quint32>(bytes, centralSignature);
    putLow<quint16>(bytes, wide ? versionWide : versionPlain); // made by, under DOS's rules
    putLow<quint16>(bytes, wide ? versionWide : versionPlain);
    putLow<quint16>(bytes, header.flags);
    putLow<quint16>(bytes, header.method);
    putLow<quint32>(bytes, header.stamp);
    putLow<quint32>(bytes, header.crc);
    putLow<quint32>(bytes, saturate(header.packed));
    putLow<quint32>(bytes, saturate(header.size));
    putLow<quint16>(bytes, quint16(header.name.size()));
    putLow<quint16>(bytes, quint16(extra.size()));
    putLow<quint16>(bytes, 0); // comment
    putLow<quint16>(bytes, 0); // disk
    putLow<quint16>(bytes, 0); // internal attributes
    putLow<quint32>(bytes, header.attributes);
    putLow<quint32>(bytes, saturate(header.offset));
    bytes += header.name;
    bytes += extra;
}

Result ZipWriter::finish(QByteArrayView comment)
{
    const qint64 directoryAt = m_offset;
    const qint64 directoryBytes = m_directory.size();
    put(m_directory);
    QByteArray end;
    if (m_entries >= 0xFFFF || directoryAt >= saturated || directoryBytes >= saturated) {
        const qint64 endAt = m_offset;
        putLow<quint32>(end, 0x06064B50);
        putLow<quint64>(end, 44);
        putLow<quint16>(end, versionWide);
        putLow<quint16>(end, versionWide);
        putLow<quint64>(end, 0); // both disks
        putLow<quint64>(end, quint64(m_entries));
        putLow<quint64>(end, quint64(m_entries));
        putLow<quint64>(end, quint64(directoryBytes));
        putLow<quint64>(end, quint64(directoryAt));
        putLow<quint32>(end, 0x07064B50);
        putLow<quint32>(end, 0);
        putLow<quint64>(end, quint64(endAt));
        putLow<quint32>(end, 1);
    }
    putLow<quint32>(end, 0x06054B50);
    putLow<quint32>(end, 0); // both disks
    putLow<quint16>(end, quint16(qMin<qint64>(m_entries, 0xFFFF)));
    putLow<quint16>(end, quint16(qMin<qint64>(m_entries, 0xFFFF)));
    putLow<quint32>(end, saturate(directoryBytes));
    putLow<quint32>(end, saturate(directoryAt));
    putLow<quint16>(end, quint16(comment.size()));
    end += comment;
    put(end);
    flush();
    return ended();
}

} // namespace vt
