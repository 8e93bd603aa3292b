#include "archive/RarUnpack.h"

#include "archive/LowFirst.h"

#include <archive.h>
#include <archive_entry.h>
#include <cstdio>
#include <fcntl.h>
#include <libdeflate.h>
#include <unarr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 rarPiece = 256LL * 1024;

void putNumber(QByteArray& to, quint64 value)
{
    for (; value >= 0x80; value >>= 7)
        to.append(char(0x80 | (value & 0x7F)));
    to.append(char(value));
}

/// A made-up archive: stretches of memory and of the volumes.
class MadeUpRar
{
public:
    MadeUpRar(const RarDirectory& directory, const std::vector<const RarEntry*>& group)
        : m_directory(directory)
    {
        const bool solid = group.size() > 1;
        if (directory.format() == rarsignature::Format::Rar4) {
            QByteArray head("Rar!\x1a\x07\x00", 7);
            head += header4(0x73, solid ? 0x0008 : 0, QByteArray(6, '\0'));
            m_pieces.push_back({head, {}});
            for (size_t i = 0; i < group.size(); ++i)
                addEntry(entry4(*group[i], i), *group[i]);
            m_pieces.push_back({header4(0x7B, 0x4000, {}), {}});
            return;
        }
        QByteArray head("Rar!\x1a\x07\x01\x00", 8);
        QByteArray main;
        putNumber(main, 1);
        putNumber(main, 0);
        putNumber(main, solid ? 4 : 0);
        m_pieces.push_back({head + header5(main), {}});
        for (size_t i = 0; i < group.size(); ++i)
            addEntry(entry5(*group[i], i), *group[i]);
        m_pieces.push_back({header5(QByteArray("\x05\x00\x00", 3)), {}});
    }

    /// Up to \a bytes of what comes next; fewer at the end, -1 when the source fails.
    qint64 read(char* to, qint64 bytes)
    {
        qint64 done = 0;
        while (done < bytes && m_piece < m_pieces.size()) {
            const Piece& piece = m_pieces[m_piece];
            const qint64 length = piece.memory.isNull() ? piece.part.bytes : piece.memory.size();
            const qint64 n = qMin(bytes - done, length - m_at);
            if (!piece.memory.isNull()) {
                std::copy_n(piece.memory.constData() + m_at, n, to + done);
            } else if (n > 0) {
                const ByteSource& volume = *m_directory.volumes()[size_t(piece.part.volume)];
                if (const Result r = volume.read(piece.part.offset + m_at, to + done, n); !r) {
                    m_problem = r.text;
                    return -1;
                }
            }
            done += n;
            m_at += n;
            if (m_at == length) {
                ++m_piece;
                m_at = 0;
            }
        }
        return done;
    }

    [[nodiscard]] const QString& problem() const { return m_problem; }

private:
    struct Piece
    {
        QByteArray memory; ///< null: the part
        RarPart part;
    };

    static QByteArray header4(quint8 type, quint16 flags, const QByteArray& rest)
    {
        QByteArray bytes;
        putLow<quint8>(bytes, type);
        putLow<quint16>(bytes, flags);
        putLow<quint16>(bytes, quint16(7 + rest.size()));
        bytes += rest;
        QByteArray sum;
        putLow<quint16>(
            sum, quint16(libdeflate_crc32(0, bytes.constData(), size_t(bytes.size())) & 0xFFFF));
        return sum + bytes;
    }

    static QByteArray entry4(const RarEntry& entry, size_t number)
    {
        const QByteArray name = 'e' + QByteArray::number(qulonglong(number));
        // Data, and of the entry's own: window, and whether it needs what is before it.
        quint16 flags = 0x8000 | (entry.flags & 0x00E0);
        if (number > 0)
            flags |= entry.flags & 0x0010;
        const bool large = entry.size > 0x7FFFFFFF || entry.packed > 0x7FFFFFFF;
        QByteArray rest;
        putLow<quint32>(rest, quint32(entry.packed));
        putLow<quint32>(rest, quint32(entry.size));
        putLow<quint8>(rest, 2);
        putLow<quint32>(rest, entry.crc);
        putLow<quint32>(rest, 0x5021'0000);
        putLow<quint8>(rest, entry.version);
        putLow<quint8>(rest, entry.method);
        putLow<quint16>(rest, quint16(name.size()));
        putLow<quint32>(rest, 0x20);
        if (large) {
            flags |= 0x0100;
            putLow<quint32>(rest, quint32(entry.packed >> 32));
            putLow<quint32>(rest, quint32(entry.size >> 32));
        }
        return header4(0x74, flags, rest + name);
    }

    static QByteArray header5(const QByteArray& rest)
    {
        QByteArray bytes;
        putNumber(bytes, quint64(rest.size()));
        bytes += rest;
        QByteArray sum;
        putLow<quint32>(sum, libdeflate_crc32(0, bytes.constData(), size_t(bytes.size())));
        return sum + bytes;
    }

    static QByteArray entry5(const RarEntry& entry, size_t number)
    {
        const QByteArray name = 'e' + QByteArray::number(qulonglong(number));
        QByteArray rest;
        putNumber(rest, 2);
        putNumber(rest, 2); // data follow
        putNumber(rest, quint64(entry.packed));
        putNumber(rest, entry.hasCrc ? 4 : 0);
        putNumber(rest, quint64(entry.size));
        putNumber(rest, 0x20);
        if (entry.hasCrc)
            putLow<quint32>(rest, entry.crc);
        putNumber(rest, number > 0 ? entry.packing : entry.packing & ~quint64(0x40));
        putNumber(rest, 0);
        putNumber(rest, quint64(name.size()));
        return header5(rest + name);
    }

    void addEntry(const QByteArray& header, const RarEntry& entry)
    {
        m_pieces.push_back({header, {}});
        for (const RarPart& part : entry.parts)
            m_pieces.push_back({{}, part});
    }

    const RarDirectory& m_directory;
    std::vector<Piece> m_pieces;
    size_t m_piece = 0;
    qint64 m_at = 0;
    QString m_problem;
};

/// Hands pieces on and sees to it that they are as many bytes as announced.
RarEnd transferTo(const Content::Sink& sink,
                  qint64 size,
                  const std::function<qint64(char*, qint64)>& read,
                  const std::function<QString()>& why)
{
    const auto buffer = std::make_unique_for_overwrite<char[]>(rarPiece);
    for (qint64 left = size; left > 0;) {
        const qint64 n = read(buffer.get(), qMin(left, rarPiece));
        if (n <= 0)
            return {RarCode::BadData, n < 0 ? why() : u"its data end too early"_s, false};
        if (!sink(QByteArrayView(buffer.get(), n)))
            return {RarCode::Ok, {}, true};
        left -= n;
    }
    return {};
}

class LibarchiveUnpacker final : public RarUnpacker
{
public:
    LibarchiveUnpacker(const RarDirectory& directory, std::vector<const RarEntry*> group)
        : m_group(std::move(group)), m_made(directory, m_group),
          m_buffer(std::make_unique_for_overwrite<char[]>(rarPiece)), m_archive(archive_read_new())
    {
        if (!m_archive)
            return;
        archive_read_support_format_rar(m_archive);
        archive_read_support_format_rar5(m_archive);
        m_open = archive_read_open(m_archive, this, nullptr, &LibarchiveUnpacker::give, nullptr) ==
                 ARCHIVE_OK;
    }

    ~LibarchiveUnpacker() override
    {
        if (m_archive)
            archive_read_free(m_archive);
    }

    LibarchiveUnpacker(const LibarchiveUnpacker&) = delete;
    LibarchiveUnpacker& operator=(const LibarchiveUnpacker&) = delete;

    RarEnd next(const Content::Sink& sink) override
    {
        if (!m_archive)
            return {RarCode::NoMemory, u"there is not enough memory"_s, false};
        archive_entry* header = nullptr;
        if (!m_open || m_next >= m_group.size() ||
            archive_read_next_header(m_archive, &header) < ARCHIVE_WARN)
            return failed();
        const RarEntry& entry = *m_group[m_next++];
        RarEnd end = transferTo(
            sink,
            entry.size,
            [this](char* to, qint64 bytes) {
                return qint64(archive_read_data(m_archive, to, size_t(bytes)));
            },
            [this] { return failed().why; });
        if (end.code != RarCode::Ok || end.sinkRefused)
            return end;
        char more = 0;
        if (const auto n = archive_read_data(m_archive, &more, 1); n != 0)
            return n < 0 ? failed()
                         : RarEnd{RarCode::BadData, u"it is longer than it announces"_s, false};
        return end;
    }

private:
    static la_ssize_t give(archive*, void* self, const void** bytes)
    {
        auto& my = *static_cast<LibarchiveUnpacker*>(self);
        *bytes = my.m_buffer.get();
        return la_ssize_t(my.m_made.read(my.m_buffer.get(), rarPiece));
    }

    [[nodiscard]] RarEnd failed() const
    {
        if (!m_made.problem().isEmpty())
            return {RarCode::Read, m_made.problem(), false};
        const char* text = archive_error_string(m_archive);
        return {RarCode::BadData,
                text ? QString::fromUtf8(text) : u"its data cannot be unpacked"_s,
                false};
    }

    std::vector<const RarEntry*> m_group;
    MadeUpRar m_made;
    std::unique_ptr<char[]> m_buffer;
    archive* m_archive;
    size_t m_next = 0;
    bool m_open = false;
};

/// libunarr tells every fault on standard error, where only our own sentences belong.
class QuietLibrary
{
public:
    QuietLibrary() : m_kept(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3))
    {
        std::fflush(stderr);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (m_kept >= 0 && nowhere >= 0)
            dup2(nowhere, STDERR_FILENO);
        if (nowhere >= 0)
            close(nowhere);
    }

    ~QuietLibrary()
    {
        std::fflush(stderr);
        if (m_kept < 0)
            return;
        dup2(m_kept, STDERR_FILENO);
        close(m_kept);
    }

    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;

private:
    int m_kept;
};

class UnarrUnpacker final : public RarUnpacker
{
public:
    UnarrUnpacker(const RarDirectory& directory, std::vector<const RarEntry*> group)
        : m_group(std::move(group)), m_spool(directory.name(), 0)
    {
        MadeUpRar made(directory, m_group);
        const auto buffer = std::make_unique_for_overwrite<char[]>(rarPiece);
        for (;;) {
            const qint64 n = made.read(buffer.get(), rarPiece);
            if (n < 0)
                m_problem = {RarCode::Read, made.problem(), false};
            else if (n > 0 && !m_spool.append(QByteArrayView(buffer.get(), n)))
                m_problem = {RarCode::Write, m_spool.problem().text, false};
            if (n <= 0 || m_problem.code != RarCode::Ok)
                break;
        }
        const QuietLibrary quiet;
        if (m_problem.code == RarCode::Ok)
            m_stream = ar_open_file(m_spool.hostPath().constData());
        m_archive = m_stream ? ar_open_rar_archive(m_stream) : nullptr;
    }

    ~UnarrUnpacker() override
    {
        if (m_archive)
            ar_close_archive(m_archive);
        if (m_stream)
            ar_close(m_stream);
    }

    UnarrUnpacker(const UnarrUnpacker&) = delete;
    UnarrUnpacker& operator=(const UnarrUnpacker&) = delete;

    RarEnd next(const Content::Sink& sink) override
    {
        if (m_problem.code != RarCode::Ok)
            return m_problem;
        const QuietLibrary quiet;
        const RarEnd damaged{RarCode::BadData, u"its data cannot be unpacked"_s, false};
        if (!m_archive || m_next >= m_group.size() || !ar_parse_entry(m_archive))
            return damaged;
        const RarEntry& entry = *m_group[m_next++];
        if (qint64(ar_entry_get_size(m_archive)) != entry.size)
            return damaged;
        return transferTo(
            sink,
            entry.size,
            [this](char* to, qint64 bytes) {
                return ar_entry_uncompress(m_archive, to, size_t(bytes)) ? bytes : qint64(-1);
            },
            [&] { return damaged.why; });
    }

private:
    std::vector<const RarEntry*> m_group;
    Spool m_spool;
    RarEnd m_problem;
    ar_stream* m_stream = nullptr;
    ar_archive* m_archive = nullptr;
    size_t m_next = 0;
};

} // namespace

std::unique_ptr<RarUnpacker> unpackByLibarchive(const RarDirectory& directory,
                                                std::vector<const RarEntry*> group)
{
    return std::make_unique<LibarchiveUnpacker>(directory, std::move(group));
}

std::unique_ptr<RarUnpacker> unpackByUnarr(const RarDirectory& directory,
                                           std::vector<const RarEntry*> group)
{
    return std::make_unique<UnarrUnpacker>(directory, std::move(group));
}

} // namespace vt
