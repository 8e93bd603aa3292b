#include "archive/RarUnpack.h"

#include "archive/LowFirst.h"
#include "unpack/Wire.h"

#include <libdeflate.h>

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
            const qint64 length = piece.bytes();
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
            m_given += n;
            m_at += n;
            if (m_at == length) {
                ++m_piece;
                m_at = 0;
            }
        }
        return done;
    }

    /// All that read() gives, from the beginning on.
    [[nodiscard]] qint64 size() const
    {
        qint64 bytes = 0;
        for (const Piece& piece : m_pieces)
            bytes += piece.bytes();
        return bytes;
    }

    [[nodiscard]] qint64 given() const { return m_given; }

    [[nodiscard]] const QString& problem() const { return m_problem; }

private:
    struct Piece
    {
        QByteArray memory; ///< null: the part
        RarPart part;

        [[nodiscard]] qint64 bytes() const { return memory.isNull() ? part.bytes : memory.size(); }
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
    qint64 m_given = 0;
    QString m_problem;
};

/// Longer than this for each megabyte of an entry is no work, but going in circles.
constexpr qint64 msEachMegabyte = 1000;
/// What libunarr gets as bytes.
constexpr qint64 inMemory = 64LL << 20;
/// More that is left over is not worth giving, only to ask the same helper again.
constexpr qint64 givenAnyway = 4LL << 20;

QByteArray
requestOf(unpack::Library library, const std::vector<const RarEntry*>& group, qint64 archiveBytes)
{
    const unpack::Request request{library, quint32(group.size()), quint64(archiveBytes)};
    QByteArray bytes(reinterpret_cast<const char*>(&request), sizeof request);
    for (const RarEntry* entry : group) {
        const auto size = quint64(entry->size);
        bytes.append(reinterpret_cast<const char*>(&size), sizeof size);
    }
    return bytes;
}

class HelpedUnpacker final : public RarUnpacker
{
public:
    HelpedUnpacker(UnpackHelper& helper, std::vector<const RarEntry*> group)
        : m_helper(helper), m_group(std::move(group))
    {}

    ~HelpedUnpacker() override
    {
        // One that has answered all that it was asked can be asked again.
        if (m_stream && m_answered && !m_spool && m_made->size() - m_made->given() <= givenAnyway &&
            m_stream->finishGiving())
            m_helper.idle = std::move(m_stream);
    }

    HelpedUnpacker(const HelpedUnpacker&) = delete;
    HelpedUnpacker& operator=(const HelpedUnpacker&) = delete;

    void ask(const RarDirectory& directory, unpack::Library library)
    {
        m_made = std::make_unique<MadeUpRar>(directory, m_group);
        const qint64 bytes = m_made->size();
        if (library == unpack::Library::Unarr && bytes > inMemory) {
            if (setAside(directory.name()) && start(m_spool->descriptor()))
                m_stream->give(requestOf(library, m_group, 0), {});
            return;
        }
        if (m_helper.idle)
            m_stream = std::move(m_helper.idle);
        else if (!start(-1))
            return;
        m_stream->give(requestOf(library, m_group, bytes),
                       [this](char* to, qint64 n) { return m_made->read(to, n); });
    }

    RarEnd next(const Content::Sink& sink) override
    {
        if (m_problem.code != RarCode::Ok)
            return m_problem;
        if (m_stopped || m_next >= m_group.size())
            return {RarCode::BadData, u"its data cannot be unpacked"_s, false};
        m_answered = false;
        const RarEntry& entry = *m_group[m_next++];
        m_stream->allow(m_helper.patienceMs + msEachMegabyte * ((entry.size + entry.packed) >> 20));
        RarEnd end = receive(sink, entry.size);
        m_stopped = end.code != RarCode::Ok || end.sinkRefused;
        return end;
    }

private:
    /// libunarr goes to and fro in an archive: what is too large for its memory becomes a file.
    bool setAside(const QString& name)
    {
        m_spool = std::make_unique<Spool>(name, 0);
        const auto buffer = std::make_unique_for_overwrite<char[]>(rarPiece);
        for (qint64 n = 1; n > 0 && m_problem.code == RarCode::Ok;) {
            n = m_made->read(buffer.get(), rarPiece);
            if (n < 0)
                m_problem = {RarCode::Read, m_made->problem(), false};
            else if (n > 0 && !m_spool->append(QByteArrayView(buffer.get(), n)))
                m_problem = {RarCode::Write, m_spool->problem().text, false};
        }
        return m_problem.code == RarCode::Ok;
    }

    bool start(int file)
    {
        auto started = GuardedStream::start(m_helper.program, file);
        if (!started) {
            m_problem = {RarCode::Read, started.text, false};
            return false;
        }
        m_stream = std::move(*started);
        return true;
    }

    RarEnd receive(const Content::Sink& sink, qint64 size)
    {
        const auto buffer = std::make_unique_for_overwrite<char[]>(unpack::pieceBytes);
        for (qint64 left = size;;) {
            quint32 piece = 0;
            if (!get(&piece, sizeof piece))
                return broken();
            if (piece == 0)
                return told(left);
            if (piece > unpack::pieceBytes || piece > left)
                return nonsense();
            if (!get(buffer.get(), piece))
                return broken();
            if (!sink(QByteArrayView(buffer.get(), piece)))
                return {RarCode::Ok, {}, true};
            left -= piece;
        }
    }

    /// What stands behind an entry's pieces.
    RarEnd told(qint64 left)
    {
        unpack::Ended ended;
        if (!get(&ended, sizeof ended))
            return broken();
        if (ended.textBytes > unpack::textLimit)
            return nonsense();
        QByteArray text(ended.textBytes, Qt::Uninitialized);
        if (!get(text.data(), text.size()))
            return broken();
        if (!m_made->problem().isEmpty())
            return {RarCode::Read, m_made->problem(), false};
        // After a failure it answers nothing more.
        m_answered = m_next == m_group.size() || ended.outcome != unpack::Outcome::Ok;
        if (ended.outcome == unpack::Outcome::Ok)
            return left == 0 ? RarEnd{} : nonsense();
        return {ended.outcome == unpack::Outcome::NoMemory ? RarCode::NoMemory : RarCode::BadData,
                text.isEmpty() ? u"its data cannot be unpacked"_s : QString::fromUtf8(text),
                false};
    }

    bool get(void* to, qint64 bytes) { return m_stream->read(static_cast<char*>(to), bytes); }

    [[nodiscard]] RarEnd broken() const
    {
        if (!m_made->problem().isEmpty())
            return {RarCode::Read, m_made->problem(), false};
        return {RarCode::BadData, u"unpacking it "_s + m_stream->problem(), false};
    }

    [[nodiscard]] static RarEnd nonsense()
    {
        return {RarCode::BadData, u"its unpacker answers what makes no sense"_s, false};
    }

    UnpackHelper& m_helper;
    std::vector<const RarEntry*> m_group;
    std::unique_ptr<MadeUpRar> m_made;
    std::unique_ptr<Spool> m_spool;
    std::unique_ptr<GuardedStream> m_stream;
    RarEnd m_problem;
    size_t m_next = 0;
    bool m_stopped = false;
    bool m_answered = false;
};

} // namespace

std::unique_ptr<RarUnpacker> unpackByLibarchive(const RarDirectory& directory,
                                                std::vector<const RarEntry*> group,
                                                UnpackHelper& helper)
{
    auto unpacker = std::make_unique<HelpedUnpacker>(helper, std::move(group));
    unpacker->ask(directory, unpack::Library::Libarchive);
    return unpacker;
}

std::unique_ptr<RarUnpacker> unpackByUnarr(const RarDirectory& directory,
                                           std::vector<const RarEntry*> group,
                                           UnpackHelper& helper)
{
    auto unpacker = std::make_unique<HelpedUnpacker>(helper, std::move(group));
    unpacker->ask(directory, unpack::Library::Unarr);
    return unpacker;
}

} // namespace vt
