#include "archive/ZipReader.h"

#include "archive/ZipStream.h"

#include <QtEndian>

#include <algorithm>
#include <libdeflate.h>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 headerBytes = 30;
/// Local extra fields are seldom longer, so that one read covers header and data.
constexpr qint64 expectedExtra = 64;
constexpr qint64 leastAhead = 16LL * 1024;
constexpr qint64 mostAhead = 1 << 20;
constexpr qint64 roomStep = 64LL * 1024;

QString methodName(int method)
{
    switch (method) {
    case 1:
        return u"Shrink"_s;
    case 6:
        return u"Implode"_s;
    case 9:
        return u"Deflate64"_s;
    case 12:
        return u"BZIP2"_s;
    case 14:
        return u"LZMA"_s;
    case 93:
        return u"Zstandard"_s;
    case 95:
        return u"XZ"_s;
    case 98:
        return u"PPMd"_s;
    case 99:
        return u"AES (encrypted)"_s;
    default:
        return u"number "_s + QString::number(method);
    }
}

void makeRoom(std::unique_ptr<char[]>& data, qint64& room, qint64 wanted)
{
    if (wanted <= room)
        return;
    room = (wanted + qMin(wanted, mostAhead) / 4 + roomStep - 1) / roomStep * roomStep;
    data.reset(); // never both at once
    data = std::make_unique_for_overwrite<char[]>(size_t(room));
}

} // namespace

ZipScratch::ZipScratch() : decompressor(libdeflate_alloc_decompressor()) {}

ZipScratch::~ZipScratch()
{
    libdeflate_free_decompressor(decompressor);
}

ZipReader::ZipReader(std::shared_ptr<const ZipDirectory> directory,
                     std::shared_ptr<ZipScratch> scratch)
    : m_directory(std::move(directory)), m_scratch(std::move(scratch))
{
    int key = 0;
    for (const ZipEntry& entry : m_directory->entries()) {
        ++key;
        if (entry.encrypted() && entry.kind == EntryKind::File && canDecrypt(entry))
            m_locked += key;
    }
}

ZipReader::~ZipReader()
{
    // Another source may come to lie at the same address.
    if (m_scratch->window.source == &m_directory->source())
        m_scratch->window.source = nullptr;
}

Result ZipReader::told(const ZipEntry& entry, const QString& why) const
{
    return Result::failure(u"The entry '"_s + entry.folder + entry.name + u"' of the archive '"_s +
                           m_directory->source().name() + u"' "_s + why);
}

Result ZipReader::failed(const ZipEntry& entry, int code, const QString& why)
{
    m_code = code;
    return told(entry, why);
}

Result ZipReader::wrongCrc(const ZipEntry& entry)
{
    return failed(entry, ZIP_ER_CRC, u"is damaged: its check sum (CRC) is wrong."_s);
}

const ZipEntry& ZipReader::entryOf(int key) const
{
    return m_directory->entries()[size_t(key - 1)];
}

Result ZipReader::check(int key, int& code) const
{
    const std::vector<ZipEntry>& entries = m_directory->entries();
    if (key < 1 || size_t(key) > entries.size()) {
        code = ZIP_ER_NOENT;
        return Result::failure(u"The archive '"_s + m_directory->source().name() +
                               u"' has no entry number "_s + QString::number(key) + u'.');
    }
    const ZipEntry& entry = entryOf(key);
    code = ZIP_ER_OPNOTSUPP;
    if (entry.kind == EntryKind::Link)
        return told(entry, u"is a link, which is never extracted."_s);
    if (entry.kind == EntryKind::Device)
        return told(entry, u"is no file and is never extracted."_s);
    code = ZIP_ER_ENCRNOTSUPP;
    if (entry.kind == EntryKind::File && entry.encrypted()) {
        if (!canDecrypt(entry))
            return told(entry, u"is encrypted in a way that cannot be decrypted here."_s);
        if (std::binary_search(m_locked.begin(), m_locked.end(), key))
            return told(
                entry,
                m_passwords.isEmpty()
                    ? u"is encrypted and cannot be extracted without its password."_s
                    : u"is encrypted with another password, or its beginning is damaged."_s);
        code = ZIP_ER_OK;
        return Result::success();
    }
    code = ZIP_ER_COMPNOTSUPP;
    if (entry.kind == EntryKind::File && entry.method != 0 && entry.method != 8 &&
        !canStreamMethod(entry.method))
        return told(entry,
                    u"is packed by the method "_s + methodName(entry.method) +
                        u", which cannot be unpacked."_s);
    code = ZIP_ER_OK;
    return Result::success();
}

Result ZipReader::readable(int key) const
{
    int code = ZIP_ER_OK;
    return check(key, code);
}

Result ZipReader::read(int key, const Content::Sink& sink)
{
    if (Result checked = check(key, m_code); !checked)
        return checked;
    const ZipEntry& entry = entryOf(key);
    if (entry.kind == EntryKind::Folder)
        return Result::success();
    const bool whole = entry.size <= ziplimits::wholeEntryBytes &&
                       entry.packed <= ziplimits::wholeEntryBytes + roomStep;
    if (entry.encrypted())
        return decrypt(entry, whole, sink);
    if (whole && (entry.method == 0 || entry.method == 8))
        return readWhole(entry, sink);
    return entry.method == 0 ? streamStored(entry, sink) : streamPacked(entry, sink);
}

Result ZipReader::view(qint64 offset, qint64 bytes, QByteArrayView& data)
{
    const ByteSource& source = m_directory->source();
    ZipScratch::Window& window = m_scratch->window;
    const bool same = window.source == &source && offset >= window.offset;
    if (same && offset + bytes <= window.offset + window.bytes) {
        data = QByteArrayView(window.data.get() + (offset - window.offset), bytes);
        return Result::success();
    }
    // Whoever reads on where the last reading ended will do so again.
    const bool onwards = same && offset <= window.offset + window.bytes + leastAhead;
    window.ahead = onwards ? qMin(qMax(window.ahead * 4, leastAhead), mostAhead) : 0;
    const qint64 length = qMin(qMax(bytes, window.ahead), source.size() - offset);
    window.source = nullptr;
    makeRoom(window.data, window.room, qMax(length, bytes));
    if (Result r = source.read(offset, window.data.get(), qMax(length, bytes)); !r) {
        m_code = ZIP_ER_READ;
        return r;
    }
    window.source = &source;
    window.offset = offset;
    window.bytes = length;
    data = QByteArrayView(window.data.get(), bytes);
    return Result::success();
}

/// \a header: the local header with its name.
Result ZipReader::checkLocal(const ZipEntry& entry, QByteArrayView header)
{
    const char* p = header.data();
    if (qFromLittleEndian<quint32>(p) != 0x04034B50)
        return failed(entry, ZIP_ER_INCONS, u"is damaged: its header is missing."_s);
    const QByteArrayView name = m_directory->storedName(entry);
    if (qFromLittleEndian<quint16>(p + 26) != name.size() ||
        header.sliced(headerBytes, name.size()) != name)
        return failed(entry,
                      ZIP_ER_INCONS,
                      u"is refused: its header and the archive's directory name it differently."_s);
    if (qFromLittleEndian<quint16>(p + 8) != entry.method ||
        ((qFromLittleEndian<quint16>(p + 6) ^ entry.flags) & 1) != 0)
        return failed(
            entry, ZIP_ER_INCONS, u"is damaged: its header contradicts the archive's directory."_s);
    return Result::success();
}

Result ZipReader::findData(const ZipEntry& entry, qint64& offset)
{
    QByteArrayView header;
    if (Result r = view(entry.headerOffset, headerBytes + entry.nameBytes, header); !r)
        return r;
    if (Result r = checkLocal(entry, header); !r)
        return r;
    offset = entry.headerOffset + headerBytes + entry.nameBytes +
             qFromLittleEndian<quint16>(header.data() + 28);
    if (offset > m_directory->dataEnd() - entry.packed)
        return failed(entry, ZIP_ER_INCONS, u"is damaged: its data are cut off."_s);
    return Result::success();
}

Result ZipReader::readWhole(const ZipEntry& entry, const Content::Sink& sink)
{
    // First header and data in one read, then the header's own word on where the data begin.
    const qint64 room = m_directory->source().size() - entry.headerOffset;
    QByteArrayView data;
    if (Result r = view(entry.headerOffset,
                        qMin(headerBytes + entry.nameBytes + expectedExtra + entry.packed, room),
                        data);
        !r)
        return r;
    qint64 offset = 0;
    if (Result r = findData(entry, offset); !r)
        return r;
    if (Result r = view(offset, entry.packed, data); !r)
        return r;
    if (entry.method == 8) {
        if (Result r = inflate(entry, data, data); !r)
            return r;
    }
    if (libdeflate_crc32(0, data.data(), size_t(data.size())) != entry.crc)
        return wrongCrc(entry);
    if (!data.isEmpty())
        (void)sink(data);
    return Result::success();
}

Result ZipReader::inflate(const ZipEntry& entry, QByteArrayView packed, QByteArrayView& data)
{
    ZipScratch& scratch = *m_scratch;
    makeRoom(scratch.output, scratch.outputRoom, qMax<qint64>(entry.size, 1));
    const libdeflate_result result = libdeflate_deflate_decompress(scratch.decompressor,
                                                                   packed.data(),
                                                                   size_t(packed.size()),
                                                                   scratch.output.get(),
                                                                   size_t(entry.size),
                                                                   nullptr);
    data = QByteArrayView(scratch.output.get(), entry.size);
    if (result == LIBDEFLATE_SUCCESS)
        return Result::success();
    if (result == LIBDEFLATE_BAD_DATA)
        return failed(entry, ZIP_ER_COMPRESSED_DATA, u"is damaged: its data cannot be unpacked."_s);
    return failed(entry, ZIP_ER_INCONS, u"is damaged: it has not the size that it announces."_s);
}

Result ZipReader::streamStored(const ZipEntry& entry, const Content::Sink& sink)
{
    qint64 offset = 0;
    if (Result r = findData(entry, offset); !r)
        return r;
    quint32 crc = 0;
    for (qint64 left = entry.packed; left > 0;) {
        QByteArrayView piece;
        if (Result r = view(offset, qMin(left, mostAhead), piece); !r)
            return r;
        crc = libdeflate_crc32(crc, piece.data(), size_t(piece.size()));
        if (!sink(piece))
            return Result::success();
        offset += piece.size();
        left -= piece.size();
    }
    return crc == entry.crc ? Result::success() : wrongCrc(entry);
}

Result ZipReader::streamPacked(const ZipEntry& entry, const Content::Sink& sink)
{
    return streamWith(entry, entry.encrypted() ? passwordOf(entry) : QByteArray(), sink);
}

/// \a password: ignored unless the entry is encrypted.
Result
ZipReader::streamWith(const ZipEntry& entry, const QByteArray& password, const Content::Sink& sink)
{
    qint64 offset = 0;
    if (Result r = findData(entry, offset); !r)
        return r;
    const StreamEnd end = streamEntry(m_directory->source(), entry, offset, password, sink);
    if (end.code == ZIP_ER_OK || end.sinkRefused)
        return Result::success();
    if (end.code == ZIP_ER_CRC)
        return wrongCrc(entry);
    return failed(entry, end.code, u"is damaged: "_s + end.why + u'.');
}

} // namespace vt
