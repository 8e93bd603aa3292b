#include "demo/ZipMaker.h"

#include "demo/Bytes.h"
#include "demo/FreshTree.h"

#include <QBuffer>

#include <algorithm>
#include <libdeflate.h>
#include <memory>

using namespace Qt::StringLiterals;

namespace vt {

using demobytes::appendLe;

namespace {

constexpr quint16 versionNeeded = 20;
constexpr quint16 versionZip64 = 45;
constexpr quint16 utf8Names = 1U << 11;

struct FreeCompressor
{
    void operator()(libdeflate_compressor* compressor) const
    {
        libdeflate_free_compressor(compressor);
    }
};

bool isAscii(const QByteArray& name)
{
    return std::all_of(name.begin(), name.end(), [](char c) { return (c & 0x80) == 0; });
}

quint32 dosTime(const QDateTime& when)
{
    const QDate date = when.date();
    const QTime time = when.time();
    const int day = (date.year() - 1980) << 9 | date.month() << 5 | date.day();
    const int seconds = time.hour() << 11 | time.minute() << 5 | time.second() / 2;
    return static_cast<quint32>(day) << 16 | static_cast<quint32>(seconds);
}

} // namespace

ZipPiece zipPiece(const QString& name, const QByteArray& bytes, int level)
{
    ZipPiece piece;
    piece.name = name.toUtf8();
    piece.size = static_cast<quint32>(bytes.size());
    piece.crc32 = libdeflate_crc32(0, bytes.constData(), static_cast<size_t>(bytes.size()));
    piece.data = bytes;
    if (level == 0 || bytes.isEmpty())
        return piece;
    thread_local std::unique_ptr<libdeflate_compressor, FreeCompressor> compressor;
    thread_local int compressorLevel = -1;
    if (compressorLevel != level) {
        compressor.reset(libdeflate_alloc_compressor(level));
        compressorLevel = level;
    }
    QByteArray packed(bytes.size(), Qt::Uninitialized);
    const size_t used = libdeflate_deflate_compress(compressor.get(),
                                                    bytes.constData(),
                                                    static_cast<size_t>(bytes.size()),
                                                    packed.data(),
                                                    static_cast<size_t>(packed.size()));
    if (used != 0) {
        packed.truncate(static_cast<qsizetype>(used));
        piece.data = packed;
        piece.deflated = true;
    }
    return piece;
}

ZipMaker::ZipMaker(QIODevice& out, const QDateTime& modified)
    : m_out(out), m_dosTime(dosTime(modified))
{}

Result ZipMaker::write(const QByteArray& bytes)
{
    if (m_out.write(bytes) != bytes.size())
        return Result::failure(u"The archive could not be written: "_s + m_out.errorString() +
                               u"."_s);
    m_offset += static_cast<quint64>(bytes.size());
    return Result::success();
}

/// What the local and the central header share, from "version needed" to the name's length.
QByteArray ZipMaker::header(const ZipPiece& piece) const
{
    QByteArray out;
    appendLe<quint16>(out, versionNeeded);
    appendLe<quint16>(out, isAscii(piece.name) ? quint16{0} : utf8Names);
    appendLe<quint16>(out, piece.deflated ? 8 : 0);
    appendLe<quint32>(out, m_dosTime);
    appendLe<quint32>(out, piece.crc32);
    appendLe<quint32>(out, static_cast<quint32>(piece.data.size()));
    appendLe<quint32>(out, piece.size);
    appendLe<quint16>(out, static_cast<quint16>(piece.name.size()));
    appendLe<quint16>(out, 0);
    return out;
}

Result ZipMaker::add(const ZipPiece& piece)
{
    if (m_offset + static_cast<quint64>(piece.data.size()) > 0xFFFF0000ULL)
        return Result::failure(u"The archive would be larger than 4 GB, which is not made here."_s);
    const QByteArray shared = header(piece);
    m_directory += "PK\1\2";
    appendLe<quint16>(m_directory, versionNeeded);
    m_directory += shared;
    appendLe<quint16>(m_directory, 0); // comment
    appendLe<quint16>(m_directory, 0); // disk
    appendLe<quint16>(m_directory, 0); // internal attributes
    appendLe<quint32>(m_directory, piece.name.endsWith('/') ? 0x10U : 0x20U);
    appendLe<quint32>(m_directory, static_cast<quint32>(m_offset));
    m_directory += piece.name;
    ++m_count;
    if (const Result head = write("PK\3\4" + shared + piece.name); !head)
        return head;
    return write(piece.data);
}

Result ZipMaker::finish()
{
    const quint64 start = m_offset;
    const quint64 length = static_cast<quint64>(m_directory.size());
    QByteArray end;
    if (m_count >= 0xFFFF) {
        end += "PK\6\6";
        appendLe<quint64>(end, 44);
        appendLe<quint16>(end, versionZip64);
        appendLe<quint16>(end, versionZip64);
        appendLe<quint32>(end, 0);
        appendLe<quint32>(end, 0);
        appendLe<quint64>(end, m_count);
        appendLe<quint64>(end, m_count);
        appendLe<quint64>(end, length);
        appendLe<quint64>(end, start);
        end += "PK\6\7";
        appendLe<quint32>(end, 0);
        appendLe<quint64>(end, start + length);
        appendLe<quint32>(end, 1);
    }
    const quint16 count = static_cast<quint16>(qMin<quint64>(m_count, 0xFFFF));
    end += "PK\5\6";
    appendLe<quint32>(end, 0);
    appendLe<quint16>(end, count);
    appendLe<quint16>(end, count);
    appendLe<quint32>(end, static_cast<quint32>(length));
    appendLe<quint32>(end, static_cast<quint32>(start));
    appendLe<quint16>(end, 0);
    return write(m_directory + end);
}

QByteArray zipOf(const DemoFiles& files, const QDateTime& modified)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ZipMaker maker(buffer, modified.isValid() ? modified : FreshTree::fileDate());
    Result result;
    for (const DemoFile& file : files)
        if (result)
            result = maker.add(zipPiece(file.path, file.bytes));
    if (result)
        result = maker.finish();
    Q_ASSERT(result.ok); // memory does not refuse
    return buffer.data();
}

} // namespace vt
