#include "support/RarMaker.h"

#include <QFile>
#include <QtEndian>

#include <blake2.h>
#include <libdeflate.h>

namespace vt::test {

namespace {

template <typename T> void put(QByteArray& to, T value)
{
    char bytes[sizeof(T)];
    qToLittleEndian(value, bytes);
    to.append(bytes, sizeof(T));
}

void number(QByteArray& to, quint64 value)
{
    for (; value >= 0x80; value >>= 7)
        to.append(char(0x80 | (value & 0x7F)));
    to.append(char(value));
}

quint32 crcOf(const QByteArray& bytes)
{
    return libdeflate_crc32(0, bytes.constData(), size_t(bytes.size()));
}

QByteArray block4(quint8 type, quint16 flags, const QByteArray& rest)
{
    QByteArray bytes;
    put<quint8>(bytes, type);
    put<quint16>(bytes, flags);
    put<quint16>(bytes, quint16(7 + rest.size()));
    bytes += rest;
    QByteArray sum;
    put<quint16>(sum, quint16(crcOf(bytes)));
    return sum + bytes;
}

QByteArray block5(const QByteArray& rest)
{
    QByteArray bytes;
    number(bytes, quint64(rest.size()));
    bytes += rest;
    QByteArray sum;
    put<quint32>(sum, crcOf(bytes));
    return sum + bytes;
}

/// Bits from the highest of each byte on.
class Bits
{
public:
    void put(quint32 value, int count)
    {
        m_waiting = m_waiting << count | value;
        m_used += count;
        for (m_bits += count; m_bits >= 8; m_bits -= 8)
            m_whole.append(char(m_waiting >> (m_bits - 8)));
    }

    void zeros(int count)
    {
        for (; count > 0; --count)
            put(0, 1);
    }

    [[nodiscard]] QByteArray bytes() const
    {
        return m_bits == 0 ? m_whole : m_whole + char(m_waiting << (8 - m_bits));
    }

    /// Of the last byte, less one.
    [[nodiscard]] quint8 lastBits() const { return quint8((m_used + 7) % 8); }

private:
    QByteArray m_whole;
    quint64 m_waiting = 0;
    int m_bits = 0;
    qint64 m_used = 0;
};

/// Lengths of 20 codes for the lengths that follow: 8 is "0", 9 is "10", many zeros are "11".
void putLengthCodes(Bits& bits)
{
    for (int i = 0; i < 20; ++i)
        bits.put(i == 8 ? 1 : i == 9 || i == 19 ? 2 : 0, 4);
}

void putZeros(Bits& bits, int count)
{
    for (int n; count > 0; count -= n) {
        n = count > 138 + 11 ? 138 : count > 138 ? count - 11 : count;
        bits.put(3, 2);
        bits.put(quint32(n - 11), 7);
    }
}

/// 255 literals of eight bits, the last one and the end of the block of nine.
void putLiterals(Bits& bits, int codes, const QByteArray& data)
{
    putLengthCodes(bits);
    bits.zeros(255);
    bits.put(0b1010, 4);
    putZeros(bits, codes - 257);
    for (const char c : data) {
        if (uchar(c) == 255)
            bits.put(510, 9);
        else
            bits.put(uchar(c), 8);
    }
}

/// The bits with the head of a block before them: a table is there, the size has three bytes.
QByteArray block5Of(const Bits& bits, bool last)
{
    const QByteArray packed = bits.bytes();
    const auto size = quint32(packed.size());
    QByteArray head;
    put<quint8>(head, quint8(0x80 | (last ? 0x40 : 0) | 0x10 | bits.lastBits()));
    quint32 sum = 0x5A ^ uchar(head[0]);
    for (int at = 0; at < 24; at += 8)
        sum ^= size >> at & 0xFF;
    put<quint8>(head, quint8(sum));
    for (int at = 0; at < 24; at += 8)
        put<quint8>(head, quint8(size >> at));
    return head + packed;
}

} // namespace

RarMaker::RarMaker(int format, quint32 mainFlags, int volume) : m_format(format)
{
    if (format == 4) {
        m_bytes = QByteArray("Rar!\x1a\x07\x00", 7) +
                  block4(0x73, quint16(mainFlags), QByteArray(6, '\0'));
        return;
    }
    QByteArray main;
    number(main, 1);
    number(main, 0);
    number(main, volume > 0 ? mainFlags | 2 : mainFlags);
    if (volume > 0)
        number(main, quint64(volume));
    m_bytes = QByteArray("Rar!\x1a\x07\x01\x00", 8) + block5(main);
}

QByteArray RarMaker::packEndless()
{
    // A filter from the beginning on, over 1 MB: more than half a window of 256 KB, which an
    // unpacker may want to keep back until the filter can be applied.
    Bits bits;
    putLiterals(bits, 430, {});
    bits.put(511, 9);
    bits.put(0, 2); // starts in one byte: here
    bits.put(0, 8);
    bits.put(2, 2); // reaches over three bytes' worth: 0x100000
    for (const quint32 byte : {0x00, 0x00, 0x10})
        bits.put(byte, 8);
    bits.put(1, 3); // of the kind that corrects calls
    const int before = 200'000;
    for (int i = 0; i < before; ++i)
        bits.put('x', 8);
    return block5Of(bits, true);
}

QByteArray RarMaker::pack(int format, const QByteArray& data)
{
    if (format == 4) {
        Bits bits;
        bits.put(0, 2); // no PPM, no older table
        putLiterals(bits, 404, data);
        bits.put(511, 9); // the end of the file, and a new table for the next one
        bits.put(1, 2);
        return bits.bytes();
    }
    QByteArray all;
    constexpr qsizetype most = 20'000;
    for (qsizetype at = 0; at < data.size() || at == 0; at += most) {
        Bits bits;
        putLiterals(bits, 430, data.mid(at, most));
        all += block5Of(bits, at + most >= data.size());
    }
    return all;
}

QByteArray RarMaker::header4(const QByteArray& name,
                             quint64 packed,
                             quint32 crc,
                             quint64 size,
                             const RarOptions& o,
                             quint8 type) const
{
    quint16 flags = 0x8000;
    flags |= o.splitBefore ? 1 : 0;
    flags |= o.splitAfter ? 2 : 0;
    flags |= o.encrypted ? 4 : 0;
    flags |= o.solid ? 0x10 : 0;
    flags |= o.folder ? 0xE0 : 0;
    flags |= o.unicode.isEmpty() ? 0 : 0x200;
    flags |= o.exactTime ? 0x1000 : 0;
    const bool large = (packed | size) >> 32 != 0;
    flags |= large ? 0x100 : 0;
    const QByteArray field = o.unicode.isEmpty() ? name : name + '\0' + o.unicode;
    QByteArray rest;
    put<quint32>(rest, quint32(packed));
    put<quint32>(rest, o.unknownSize ? 0xFFFFFFFF : quint32(size));
    put<quint8>(rest, o.unixHost ? 3 : 2);
    put<quint32>(rest, crc);
    put<quint32>(rest, o.stamp);
    put<quint8>(rest, 29);
    put<quint8>(rest, o.packed ? 0x33 : 0x30);
    put<quint16>(rest, quint16(field.size()));
    put<quint32>(rest, o.attributes);
    if (large) {
        put<quint32>(rest, quint32(packed >> 32));
        put<quint32>(rest, quint32(size >> 32));
    }
    rest += field;
    if (o.exactTime)
        put<quint16>(rest, 0xC000);
    return block4(type, flags, rest);
}

QByteArray RarMaker::header5(const QByteArray& name,
                             const QByteArray& data,
                             quint64 packed,
                             quint32 crc,
                             quint64 size,
                             const RarOptions& o,
                             quint8 type) const
{
    QByteArray extra;
    const auto record = [&](const QByteArray& bytes) {
        number(extra, quint64(bytes.size()));
        extra += bytes;
    };
    if (o.encrypted)
        record(QByteArray("\x01\x00\x00\x0f", 4) + QByteArray(32, 's'));
    if (o.blake) {
        QByteArray sum(32, '\0');
        blake2sp(reinterpret_cast<uint8_t*>(sum.data()),
                 data.constData(),
                 nullptr,
                 32,
                 size_t(data.size()),
                 0);
        record(QByteArray("\x02\x00", 2) + sum);
    }
    if (o.exactTime) {
        QByteArray time("\x03\x02", 2);
        put<quint64>(time, (quint64(o.unixTime) * 10'000'000) + 116'444'736'000'000'000ULL);
        record(time);
    }
    if (!o.copyOf.isEmpty()) {
        QByteArray copy("\x05\x05\x00", 3);
        number(copy, quint64(o.copyOf.size()));
        record(copy + o.copyOf);
    }
    QByteArray rest;
    number(rest, type);
    number(rest, 2 | (extra.isEmpty() ? 0 : 1) | (o.splitBefore ? 8 : 0) | (o.splitAfter ? 16 : 0));
    if (!extra.isEmpty())
        number(rest, quint64(extra.size()));
    number(rest, packed);
    number(rest,
           (o.folder ? 1 : 0) | (o.unixTime && !o.exactTime ? 2 : 0) | (o.blake ? 0 : 4) |
               (o.unknownSize ? 8 : 0));
    number(rest, size);
    number(rest, o.attributes);
    if (o.unixTime && !o.exactTime)
        put<quint32>(rest, o.unixTime);
    if (!o.blake)
        put<quint32>(rest, crc);
    number(rest, (o.solid ? 0x40 : 0) | (o.packed ? 3 << 7 : 0) | 1 << 10);
    number(rest, o.unixHost ? 1 : 0);
    number(rest, quint64(name.size()));
    return block5(rest + name + extra);
}

RarMaker& RarMaker::add(const QByteArray& name, const QByteArray& data, const RarOptions& options)
{
    const QByteArray bytes = options.raw      ? *options.raw
                             : options.packed ? pack(m_format, data)
                                              : data;
    const quint64 packed = options.packedSize.value_or(quint64(bytes.size()));
    const quint64 size = options.size.value_or(quint64(data.size()));
    const quint32 crc = options.crc.value_or(crcOf(data));
    m_bytes += m_format == 4 ? header4(name, packed, crc, size, options, 0x74)
                             : header5(name, data, packed, crc, size, options, 2);
    m_bytes += bytes;
    return *this;
}

RarMaker& RarMaker::comment(const QByteArray& text)
{
    const RarOptions plain{.attributes = 0};
    const auto size = quint64(text.size());
    m_bytes += m_format == 4 ? header4("CMT", size, crcOf(text), size, plain, 0x7A)
                             : header5("CMT", text, size, crcOf(text), size, plain, 3);
    m_bytes += text;
    return *this;
}

RarMaker& RarMaker::block(quint8 type, const QByteArray& rest, quint16 flags)
{
    QByteArray head;
    number(head, type);
    number(head, flags);
    m_bytes += m_format == 4 ? block4(type, flags, rest) : block5(head + rest);
    return *this;
}

RarMaker& RarMaker::prefix(const QByteArray& bytes)
{
    m_prefix = bytes;
    return *this;
}

QByteArray RarMaker::build(bool moreVolumes) const
{
    return m_prefix + m_bytes +
           (m_format == 4 ? block4(0x7B, moreVolumes ? 0x4001 : 0x4000, {})
                          : block5(QByteArray("\x05\x00", 2) + (moreVolumes ? '\x01' : '\0')));
}

bool RarMaker::save(const QString& hostPath) const
{
    QFile file(hostPath);
    return file.open(QIODevice::WriteOnly) && file.write(build()) > 0;
}

QList<QByteArray> RarMaker::volumes(
    int format, const QByteArray& name, const QByteArray& data, int count, bool packed)
{
    const QByteArray all = packed ? pack(format, data) : data;
    const qsizetype each = all.size() / count;
    QList<QByteArray> made;
    for (int i = 0; i < count; ++i) {
        const QByteArray part = i + 1 < count ? all.mid(i * each, each) : all.mid(i * each);
        RarMaker maker(format, format == 4 ? 0x11 | (i == 0 ? 0x100 : 0) : 1, i);
        RarOptions options{.packed = packed, .splitBefore = i > 0, .splitAfter = i + 1 < count};
        options.raw = part;
        if (i + 1 < count)
            options.crc = crcOf(part); // of the part; the last one tells that of the whole
        maker.add(name, data, options);
        made += maker.build(i + 1 < count);
    }
    return made;
}

} // namespace vt::test
