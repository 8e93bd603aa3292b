#include "archive/ZipStream.h"

#include "archive/LowFirst.h"

#include <cstring>
#include <memory>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr quint16 aesMethod = 99;
constexpr qint64 streamPiece = 256LL * 1024;

/// An archive of one entry, always in ZIP64 form: header + the packed bytes where they lie +
/// directory.
class MadeUpArchive
{
public:
    MadeUpArchive(const ByteSource& source, const ZipEntry& entry, qint64 dataOffset)
        : m_source(source), m_dataOffset(dataOffset), m_packed(entry.packed)
    {
        putCommon(m_head, entry, false);
        putCommon(m_tail, entry, true);
        const quint64 directoryBytes = quint64(m_tail.size());
        const quint64 directoryOffset = quint64(m_head.size() + m_packed);
        putLow<quint32>(m_tail, 0x06064B50);
        putLow<quint64>(m_tail, 44);
        putLow<quint16>(m_tail, 63);
        putLow<quint16>(m_tail, 63);
        putLow<quint64>(m_tail, 0); // both disks
        putLow<quint64>(m_tail, 1);
        putLow<quint64>(m_tail, 1);
        putLow<quint64>(m_tail, directoryBytes);
        putLow<quint64>(m_tail, directoryOffset);
        putLow<quint32>(m_tail, 0x07064B50);
        putLow<quint32>(m_tail, 0);
        putLow<quint64>(m_tail, directoryOffset + directoryBytes);
        putLow<quint32>(m_tail, 1);
        putLow<quint32>(m_tail, 0x06054B50);
        putLow<quint32>(m_tail, 0); // both disks
        putLow<quint16>(m_tail, 0xFFFF);
        putLow<quint16>(m_tail, 0xFFFF);
        putLow<quint32>(m_tail, 0xFFFFFFFF);
        putLow<quint32>(m_tail, 0xFFFFFFFF);
        putLow<quint16>(m_tail, 0);
        zip_error_init(&m_error);
    }

    ~MadeUpArchive() { zip_error_fini(&m_error); }

    MadeUpArchive(const MadeUpArchive&) = delete;
    MadeUpArchive& operator=(const MadeUpArchive&) = delete;

    static zip_int64_t answer(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command)
    {
        return static_cast<MadeUpArchive*>(self)->answer(data, length, command);
    }

private:
    [[nodiscard]] qint64 size() const { return m_head.size() + m_packed + m_tail.size(); }

    static void putCommon(QByteArray& to, const ZipEntry& entry, bool central)
    {
        putLow<quint32>(to, central ? 0x02014B50 : 0x04034B50);
        if (central)
            putLow<quint16>(to, 63);
        putLow<quint16>(to, 63);
        // How the method was used, whether it is encrypted, and against what that can be checked.
        putLow<quint16>(to, quint16(entry.flags & (entry.encrypted() ? 0x000F : 0x0006)));
        putLow<quint16>(to, entry.method);
        putLow<quint32>(to, entry.encrypted() ? entry.stamp : 0x0021'0000);
        putLow<quint32>(to, entry.crc);
        putLow<quint32>(to, 0xFFFFFFFF);
        putLow<quint32>(to, 0xFFFFFFFF);
        const bool aes = entry.encrypted() && entry.method == aesMethod;
        putLow<quint16>(to, 1);
        putLow<quint16>(to, aes ? 31 : 20);
        if (central) {
            putLow<quint16>(to, 0);
            putLow<quint32>(to, 0);
            putLow<quint32>(to, 0);
            putLow<quint32>(to, 0);
        }
        to.append('e');
        putLow<quint16>(to, 1);
        putLow<quint16>(to, 16);
        putLow<quint64>(to, quint64(entry.size));
        putLow<quint64>(to, quint64(entry.packed));
        if (!aes)
            return;
        putLow<quint16>(to, 0x9901);
        putLow<quint16>(to, 7);
        putLow<quint16>(to, entry.aesVersion);
        to.append("AE");
        putLow<quint8>(to, entry.aesStrength);
        putLow<quint16>(to, entry.aesMethod);
    }

    zip_int64_t answer(void* data, zip_uint64_t length, zip_source_cmd_t command)
    {
        switch (command) {
        case ZIP_SOURCE_OPEN:
            m_at = 0;
            return 0;
        case ZIP_SOURCE_READ:
            return read(static_cast<char*>(data), qint64(length));
        case ZIP_SOURCE_SEEK: {
            const zip_int64_t to = zip_source_seek_compute_offset(
                zip_uint64_t(m_at), zip_uint64_t(size()), data, length, &m_error);
            if (to < 0)
                return -1;
            m_at = to;
            return 0;
        }
        case ZIP_SOURCE_TELL:
            return m_at;
        case ZIP_SOURCE_STAT: {
            auto* stat = static_cast<zip_stat_t*>(data);
            zip_stat_init(stat);
            stat->valid |= ZIP_STAT_SIZE;
            stat->size = zip_uint64_t(size());
            return sizeof(zip_stat_t);
        }
        case ZIP_SOURCE_ERROR:
            return zip_error_to_data(&m_error, data, length);
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN,
                                                  ZIP_SOURCE_READ,
                                                  ZIP_SOURCE_CLOSE,
                                                  ZIP_SOURCE_STAT,
                                                  ZIP_SOURCE_ERROR,
                                                  ZIP_SOURCE_FREE,
                                                  ZIP_SOURCE_SEEK,
                                                  ZIP_SOURCE_TELL,
                                                  ZIP_SOURCE_SUPPORTS,
                                                  -1);
        case ZIP_SOURCE_CLOSE:
        case ZIP_SOURCE_FREE:
            return 0;
        default:
            zip_error_set(&m_error, ZIP_ER_OPNOTSUPP, 0);
            return -1;
        }
    }

    zip_int64_t read(char* to, qint64 length)
    {
        length = qMin(length, size() - m_at);
        qint64 left = length;
        const auto fromMemory = [&](const QByteArray& part, qint64 begin) {
            const qint64 n = qMin(left, begin + part.size() - m_at);
            if (m_at < begin || n <= 0)
                return;
            std::memcpy(to, part.constData() + (m_at - begin), size_t(n));
            to += n;
            m_at += n;
            left -= n;
        };
        fromMemory(m_head, 0);
        const qint64 n = qMin(left, m_head.size() + m_packed - m_at);
        if (n > 0) {
            if (!m_source.read(m_dataOffset + m_at - m_head.size(), to, n)) {
                zip_error_set(&m_error, ZIP_ER_READ, 0);
                return -1;
            }
            to += n;
            m_at += n;
            left -= n;
        }
        fromMemory(m_tail, m_head.size() + m_packed);
        return length;
    }

    const ByteSource& m_source;
    qint64 m_dataOffset;
    qint64 m_packed;
    QByteArray m_head;
    QByteArray m_tail;
    qint64 m_at = 0;
    zip_error_t m_error;
};

StreamEnd endOf(zip_error_t* error)
{
    return {zip_error_code_zip(error), QString::fromUtf8(zip_error_strerror(error)), false};
}

StreamEnd pump(zip_file_t* file, const ZipEntry& entry, const Content::Sink& sink)
{
    const auto buffer = std::make_unique_for_overwrite<char[]>(streamPiece);
    qint64 total = 0;
    for (;;) {
        const zip_int64_t n = zip_fread(file, buffer.get(), streamPiece);
        if (n < 0)
            return endOf(zip_file_get_error(file));
        total += n;
        if (total > entry.size || (n == 0 && total < entry.size))
            return {ZIP_ER_INCONS, u"it has not the size that it announces"_s, false};
        if (n == 0)
            return {};
        if (!sink(QByteArrayView(buffer.get(), n)))
            return {ZIP_ER_CANCELLED, {}, true};
    }
}

/// Under AES an entry has a seal at its end, and in the second version of it no other check sum.
/// The library compares it when it reads past the end, which unpacking does not do.
bool sealedOnly(const ZipEntry& entry)
{
    return entry.encrypted() && entry.method == aesMethod && entry.aesVersion == 2 &&
           entry.aesMethod != 0;
}

StreamEnd drain(zip_file_t* file)
{
    const auto buffer = std::make_unique_for_overwrite<char[]>(streamPiece);
    zip_int64_t n = 0;
    do
        n = zip_fread(file, buffer.get(), streamPiece);
    while (n > 0);
    return n < 0 ? endOf(zip_file_get_error(file)) : StreamEnd();
}

/// What \a use says of the opened entry, or why it does not open.
template <typename Use>
StreamEnd opened(const ByteSource& source,
                 const ZipEntry& entry,
                 qint64 dataOffset,
                 const QByteArray& password,
                 zip_flags_t flags,
                 const Use& use)
{
    MadeUpArchive archive(source, entry, dataOffset);
    zip_error_t error;
    zip_error_init(&error);
    StreamEnd end;
    zip_source_t* zipSource = zip_source_function_create(&MadeUpArchive::answer, &archive, &error);
    zip_t* zip = zipSource ? zip_open_from_source(zipSource, ZIP_RDONLY, &error) : nullptr;
    if (!zip) {
        end = endOf(&error);
        if (zipSource)
            zip_source_free(zipSource);
    } else if (zip_file_t* file = entry.encrypted() ? zip_fopen_index_encrypted(
                                                          zip, 0, flags, password.constData())
                                                    : zip_fopen_index(zip, 0, flags)) {
        end = use(file);
        zip_fclose(file);
        zip_discard(zip);
    } else {
        end = endOf(zip_get_error(zip));
        zip_discard(zip);
    }
    zip_error_fini(&error);
    return end;
}

} // namespace

bool canStreamMethod(int method)
{
    return zip_compression_method_supported(method, 0) != 0;
}

bool canDecrypt(const ZipEntry& entry)
{
    constexpr quint16 ownKindOfThePacker = 0x2040;
    if (!entry.encrypted() || (entry.flags & ownKindOfThePacker) != 0)
        return false;
    if (entry.method != aesMethod)
        return zip_encryption_method_supported(ZIP_EM_TRAD_PKWARE, 0) != 0 &&
               canStreamMethod(entry.method);
    return (entry.aesVersion == 1 || entry.aesVersion == 2) && entry.aesStrength >= 1 &&
           entry.aesStrength <= 3 &&
           zip_encryption_method_supported(quint16(ZIP_EM_AES_128 - 1 + entry.aesStrength), 0) !=
               0 &&
           canStreamMethod(entry.aesMethod);
}

StreamEnd streamEntry(const ByteSource& source,
                      const ZipEntry& entry,
                      qint64 dataOffset,
                      const QByteArray& password,
                      const Content::Sink& sink)
{
    if (sealedOnly(entry)) {
        const StreamEnd sealed =
            opened(source, entry, dataOffset, password, ZIP_FL_COMPRESSED, drain);
        if (sealed.code != ZIP_ER_OK)
            return sealed;
    }
    return opened(source, entry, dataOffset, password, 0, [&](zip_file_t* file) {
        return pump(file, entry, sink);
    });
}

StreamEnd streamBeginning(const ByteSource& source,
                          const ZipEntry& entry,
                          qint64 dataOffset,
                          const QByteArray& password)
{
    return opened(source, entry, dataOffset, password, 0, [](zip_file_t*) { return StreamEnd(); });
}

} // namespace vt
