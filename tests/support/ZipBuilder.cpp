#include "support/ZipBuilder.h"

#include <QFile>
#include <QtEndian>

#include <libdeflate.h>

namespace vt::test {

namespace {

void put16(QByteArray& to, quint64 value)
{
    char bytes[2];
    qToLittleEndian(quint16(value), bytes);
    to.append(bytes, 2);
}

void put32(QByteArray& to, quint64 value)
{
    char bytes[4];
    qToLittleEndian(quint32(value), bytes);
    to.append(bytes, 4);
}

void put64(QByteArray& to, quint64 value)
{
    char bytes[8];
    qToLittleEndian(value, bytes);
    to.append(bytes, 8);
}

} // namespace

ZipBuilder::~ZipBuilder()
{
    libdeflate_free_compressor(m_compressor);
}

ZipBuilder& ZipBuilder::prefix(const QByteArray& bytes)
{
    m_prefix = bytes;
    return *this;
}

ZipBuilder& ZipBuilder::comment(const QByteArray& text)
{
    m_comment = text;
    return *this;
}

ZipBuilder& ZipBuilder::zip64End()
{
    m_zip64End = true;
    return *this;
}

ZipBuilder& ZipBuilder::claimedEntries(quint16 count)
{
    m_claimed = count;
    return *this;
}

ZipBuilder& ZipBuilder::disk(quint16 number)
{
    m_disk = number;
    return *this;
}

quint32 ZipBuilder::crc32(const QByteArray& data)
{
    return libdeflate_crc32(0, data.constData(), size_t(data.size()));
}

QByteArray ZipBuilder::packedBytes(const QByteArray& data, int level)
{
    if (level == 0)
        return data;
    if (level != m_level) {
        libdeflate_free_compressor(m_compressor);
        m_compressor = libdeflate_alloc_compressor(level);
        m_level = level;
    }
    const size_t room = libdeflate_deflate_compress_bound(m_compressor, size_t(data.size()));
    QByteArray packed(qsizetype(room), Qt::Uninitialized);
    packed.resize(qsizetype(libdeflate_deflate_compress(
        m_compressor, data.constData(), size_t(data.size()), packed.data(), room)));
    return packed;
}

ZipBuilder& ZipBuilder::add(const QByteArray& name, const QByteArray& data, const Options& options)
{
    const bool folder = name.endsWith('/');
    const int level = folder || data.isEmpty() ? 0 : options.level;
    const QByteArray bytes = options.raw ? *options.raw : packedBytes(data, level);
    const quint16 method = options.method.value_or(level == 0 && !options.raw ? 0 : 8);
    const quint16 flags =
        quint16(options.flags | (options.encrypted ? 1 : 0) | (options.dataDescriptor ? 8 : 0));
    const quint32 crc = options.crc.value_or(crc32(data));
    const quint64 size = options.size.value_or(quint64(data.size()));
    const quint64 packed = options.packed.value_or(quint64(bytes.size()));
    const quint64 offset = options.offset.value_or(quint64(m_files.size()));
    const quint32 attributes = options.attributes | (folder ? 0x10U : 0U);
    const QByteArray localName = options.localName.value_or(name);
    const quint16 needed = options.zip64 ? 45 : 20;

    QByteArray localExtra;
    if (options.zip64) {
        put16(localExtra, 1);
        put16(localExtra, 16);
        put64(localExtra, size);
        put64(localExtra, packed);
    }
    put32(m_files, 0x04034B50);
    put16(m_files, needed);
    put16(m_files, flags);
    put16(m_files, options.localMethod.value_or(method));
    put32(m_files, options.stamp);
    put32(m_files, options.dataDescriptor ? 0 : crc);
    put32(m_files, options.zip64 ? 0xFFFFFFFF : options.dataDescriptor ? 0 : packed);
    put32(m_files, options.zip64 ? 0xFFFFFFFF : options.dataDescriptor ? 0 : size);
    put16(m_files, quint64(localName.size()));
    put16(m_files, quint64(localExtra.size()));
    m_files += localName + localExtra + bytes;
    if (options.dataDescriptor) {
        put32(m_files, 0x08074B50);
        put32(m_files, crc);
        put32(m_files, packed);
        put32(m_files, size);
    }

    QByteArray extra = options.extra;
    if (options.zip64) {
        put16(extra, 1);
        put16(extra, 24);
        put64(extra, size);
        put64(extra, packed);
        put64(extra, offset);
    }
    put32(m_central, 0x02014B50);
    put16(m_central, options.madeBy);
    put16(m_central, needed);
    put16(m_central, flags);
    put16(m_central, method);
    put32(m_central, options.stamp);
    put32(m_central, crc);
    put32(m_central, options.zip64 ? 0xFFFFFFFF : packed);
    put32(m_central, options.zip64 ? 0xFFFFFFFF : size);
    put16(m_central, quint64(name.size()));
    put16(m_central, quint64(extra.size()));
    put16(m_central, 0);
    put16(m_central, 0);
    put16(m_central, 0);
    put32(m_central, attributes);
    put32(m_central, options.zip64 ? 0xFFFFFFFF : offset);
    m_central += name + extra;
    ++m_count;
    return *this;
}

QByteArray ZipBuilder::build() const
{
    QByteArray end;
    const quint64 directoryOffset = quint64(m_files.size());
    if (m_zip64End) {
        put32(end, 0x06064B50);
        put64(end, 44);
        put16(end, 45);
        put16(end, 45);
        put32(end, 0);
        put32(end, 0);
        put64(end, quint64(m_count));
        put64(end, quint64(m_count));
        put64(end, quint64(m_central.size()));
        put64(end, directoryOffset);
        put32(end, 0x07064B50);
        put32(end, 0);
        put64(end, directoryOffset + quint64(m_central.size()));
        put32(end, 1);
    }
    const quint16 count = m_zip64End ? 0xFFFF : m_claimed.value_or(quint16(m_count));
    put32(end, 0x06054B50);
    put16(end, m_disk);
    put16(end, m_disk);
    put16(end, count);
    put16(end, count);
    put32(end, m_zip64End ? 0xFFFFFFFF : quint64(m_central.size()));
    put32(end, m_zip64End ? 0xFFFFFFFF : directoryOffset);
    put16(end, quint64(m_comment.size()));
    return m_prefix + m_files + m_central + end + m_comment;
}

bool ZipBuilder::save(const QString& hostPath) const
{
    QFile file(hostPath);
    const QByteArray bytes = build();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

QByteArray ZipBuilder::unicodePathExtra(const QByteArray& stored, const QString& name)
{
    const QByteArray utf8 = name.toUtf8();
    QByteArray extra;
    put16(extra, 0x7075);
    put16(extra, quint64(5 + utf8.size()));
    extra.append('\x01');
    put32(extra, crc32(stored));
    return extra + utf8;
}

} // namespace vt::test
