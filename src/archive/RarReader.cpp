#include "archive/RarReader.h"

#include "archive/ZipDirectory.h"

#include <blake2.h>
#include <libdeflate.h>

using namespace Qt::StringLiterals;

namespace vt {

struct RarReader::Saved
{
    qint64 offset = 0; ///< in the spool
    RarEnd end;
    bool rightSum = false;
};

/// Packed entries that need those before them.
struct RarReader::Group
{
    std::vector<const RarEntry*> members;
    std::vector<Saved> saved; ///< of the first ones, as far as unpacked
    std::unique_ptr<RarUnpacker> unpacker;
};

namespace {

constexpr int noGroup = -1;
constexpr int blocked = -2;
constexpr qint64 spoolMemory = 64LL << 20;
constexpr qint64 readPiece = 1 << 20;

/// What an entry's bytes must add up to.
class CheckSum
{
public:
    explicit CheckSum(const RarEntry& entry) : m_entry(entry)
    {
        if (!entry.blake2sp.isEmpty())
            blake2sp_init(&m_blake, size_t(entry.blake2sp.size()));
    }

    void add(QByteArrayView bytes)
    {
        if (m_entry.hasCrc)
            m_crc = libdeflate_crc32(m_crc, bytes.data(), size_t(bytes.size()));
        if (!m_entry.blake2sp.isEmpty())
            blake2sp_update(
                &m_blake, reinterpret_cast<const uint8_t*>(bytes.data()), size_t(bytes.size()));
        m_bytes += bytes.size();
    }

    [[nodiscard]] bool right()
    {
        if (m_bytes != m_entry.size || (m_entry.hasCrc && m_crc != m_entry.crc))
            return false;
        if (m_entry.blake2sp.isEmpty())
            return true;
        QByteArray sum(m_entry.blake2sp.size(), Qt::Uninitialized);
        blake2sp_final(&m_blake, reinterpret_cast<uint8_t*>(sum.data()), size_t(sum.size()));
        return sum == m_entry.blake2sp;
    }

private:
    const RarEntry& m_entry;
    quint32 m_crc = 0;
    qint64 m_bytes = 0;
    blake2sp_state m_blake{};
};

bool isRar4(const RarDirectory& directory)
{
    return directory.format() == rarsignature::Format::Rar4;
}

} // namespace

RarReader::RarReader(std::shared_ptr<const RarDirectory> directory, UnpackHelper helper)
    : m_directory(std::move(directory)), m_helper(std::move(helper))
{
    formGroups();
}

RarReader::~RarReader() = default;

void RarReader::formGroups()
{
    const std::vector<RarEntry>& entries = m_directory->entries();
    m_places.resize(entries.size(), {noGroup, 0});
    bool broken = false;
    int group = noGroup;
    for (size_t i = 0; i < entries.size(); ++i) {
        const RarEntry& entry = entries[i];
        if (entry.kind != EntryKind::File || entry.stored || entry.copyOf >= 0 || entry.size == 0)
            continue;
        if (!entry.solid || group == noGroup) {
            m_groups.push_back(std::make_unique<Group>());
            group = int(m_groups.size()) - 1;
            broken = false;
        }
        const bool usable = !entry.encrypted && entry.complete && entry.size >= 0;
        if (broken) {
            m_places[i] = {blocked, 0};
        } else if (usable) {
            m_places[i] = {group, m_groups.back()->members.size()};
            m_groups.back()->members.push_back(&entry);
        }
        broken = broken || !usable;
    }
}

Result RarReader::told(const RarEntry& entry, const QString& why) const
{
    return Result::failure(u"The entry '"_s + entry.fullName() + u"' of the archive '"_s +
                           m_directory->name() + u"' "_s + why);
}

Result RarReader::failed(const RarEntry& entry, RarCode code, const QString& why)
{
    m_code = code;
    return told(entry, why);
}

Result RarReader::wrongSum(const RarEntry& entry)
{
    return failed(entry, RarCode::BadData, u"is damaged: its check sum (CRC) is wrong."_s);
}

Result RarReader::ended(const RarEntry& entry, const RarEnd& end)
{
    if (end.code == RarCode::Write || end.code == RarCode::Read)
        return failed(entry, end.code, u"could not be unpacked. "_s + end.why);
    return failed(entry, end.code, u"is damaged: "_s + end.why + u'.');
}

Result RarReader::check(int key, RarCode& code) const
{
    const std::vector<RarEntry>& entries = m_directory->entries();
    code = RarCode::BadArchive;
    if (key < 1 || size_t(key) > entries.size())
        return Result::failure(u"The archive '"_s + m_directory->name() +
                               u"' has no entry number "_s + QString::number(key) + u'.');
    const RarEntry& entry = entries[size_t(key - 1)];
    code = RarCode::UnknownFormat;
    if (entry.kind == EntryKind::Link)
        return told(entry, u"is a link, which is never extracted."_s);
    if (entry.kind == EntryKind::Device)
        return told(entry, u"is no file and is never extracted."_s);
    if (entry.kind == EntryKind::File && entry.copyOf >= 0)
        return check(entry.copyOf + 1, code);
    code = RarCode::BadData;
    if (entry.kind == EntryKind::File && entry.encrypted)
        return told(
            entry,
            u"is encrypted, and RAR archives cannot be decrypted here; unpack it elsewhere and install the folder."_s);
    code = RarCode::Open;
    if (!entry.complete)
        return told(entry,
                    m_directory->missingVolume().isEmpty()
                        ? u"is not whole in this archive."_s
                        : u"goes on in the volume '"_s + m_directory->missingVolume() +
                              u"', which is missing."_s);
    code = RarCode::UnknownFormat;
    if (entry.size < 0)
        return told(entry, u"does not tell its size and cannot be extracted."_s);
    const bool known = isRar4(*m_directory) ? entry.version >= 20 && entry.version <= 36
                                            : (entry.packing & 0x3F) == 0;
    if (entry.kind == EntryKind::File && !entry.stored && entry.size > 0 && !known)
        return told(entry, u"is packed by a version of RAR that cannot be unpacked."_s);
    code = RarCode::BadData;
    if (m_places[size_t(key - 1)].first == blocked)
        return told(entry,
                    u"needs an entry before it in this solid archive that cannot be unpacked."_s);
    code = RarCode::Ok;
    return Result::success();
}

Result RarReader::readable(int key) const
{
    RarCode code = RarCode::Ok;
    return check(key, code);
}

Result RarReader::read(int key, const Content::Sink& sink)
{
    if (Result checked = check(key, m_code); !checked)
        return checked;
    const RarEntry* entry = &m_directory->entries()[size_t(key - 1)];
    if (entry->copyOf >= 0) {
        key = entry->copyOf + 1;
        entry = &m_directory->entries()[size_t(key - 1)];
    }
    if (entry->kind == EntryKind::Folder)
        return Result::success();
    if (entry->stored || entry->size == 0)
        return readStored(*entry, sink);
    const auto [group, place] = m_places[size_t(key - 1)];
    if (group >= 0 && m_groups[size_t(group)]->members.size() > 1)
        return readSolid(*entry, *m_groups[size_t(group)], place, sink);
    return entry->size <= ziplimits::wholeEntryBytes ? readWhole(*entry, sink)
                                                     : readLarge(*entry, sink);
}

Result RarReader::readStored(const RarEntry& entry, const Content::Sink& sink)
{
    if (entry.size == 0) // whatever was packed to come to nothing
        return CheckSum(entry).right() ? Result::success() : wrongSum(entry);
    if (entry.packed != entry.size)
        return failed(
            entry, RarCode::BadData, u"is damaged: it has not the size that it announces."_s);
    const bool whole = entry.size <= ziplimits::wholeEntryBytes;
    CheckSum sum(entry);
    m_whole.resize(whole ? entry.size : readPiece);
    qint64 done = 0;
    for (const RarPart& part : entry.parts) {
        for (qint64 at = 0; at < part.bytes;) {
            const qint64 n = qMin(part.bytes - at, whole ? part.bytes : readPiece);
            char* to = m_whole.data() + (whole ? done : 0);
            if (Result r =
                    m_directory->volumes()[size_t(part.volume)]->read(part.offset + at, to, n);
                !r)
                return failed(entry, RarCode::Read, u"cannot be read. "_s + r.text);
            sum.add(QByteArrayView(to, n));
            if (!whole && !sink(QByteArrayView(to, n)))
                return Result::success();
            at += n;
            done += n;
        }
    }
    if (!sum.right())
        return wrongSum(entry);
    if (whole && done > 0)
        (void)sink(m_whole);
    return Result::success();
}

Result RarReader::readWhole(const RarEntry& entry, const Content::Sink& sink)
{
    if (Result r = unpackWhole(entry, m_whole); !r)
        return r;
    (void)sink(m_whole);
    return Result::success();
}

/// By the one library, and by the other where that fails.
Result RarReader::unpackWhole(const RarEntry& entry, QByteArray& to)
{
    Result first;
    for (const bool second : {false, true}) {
        if (second && !isRar4(*m_directory))
            break;
        const auto unpacker = second ? unpackByUnarr(*m_directory, {&entry}, m_helper)
                                     : unpackByLibarchive(*m_directory, {&entry}, m_helper);
        to.resize(0);
        to.reserve(entry.size);
        CheckSum sum(entry);
        const RarEnd end = unpacker->next([&](QByteArrayView bytes) {
            sum.add(bytes);
            to.append(bytes);
            return true;
        });
        if (end.code == RarCode::Ok && sum.right()) {
            m_code = RarCode::Ok;
            return Result::success();
        }
        if (!second)
            first = end.code == RarCode::Ok ? wrongSum(entry) : ended(entry, end);
    }
    return first;
}

/// RAR5 straight on; older ones, which may need the second library, are set aside first.
Result RarReader::readLarge(const RarEntry& entry, const Content::Sink& sink)
{
    CheckSum sum(entry);
    if (!isRar4(*m_directory)) {
        const RarEnd end =
            unpackByLibarchive(*m_directory, {&entry}, m_helper)->next([&](QByteArrayView bytes) {
                sum.add(bytes);
                return sink(bytes);
            });
        if (end.sinkRefused)
            return Result::success();
        if (end.code != RarCode::Ok)
            return ended(entry, end);
        return sum.right() ? Result::success() : wrongSum(entry);
    }
    Group alone;
    alone.members = {&entry};
    return readSolid(entry, alone, 0, sink);
}

Result
RarReader::readSolid(const RarEntry& entry, Group& group, size_t place, const Content::Sink& sink)
{
    if (!m_spool)
        m_spool = std::make_unique<Spool>(m_directory->name(), spoolMemory);
    const qint64 before = m_spool->size();
    unpackSolid(group, place);
    const bool there = place < group.saved.size();
    const Saved& saved = there ? group.saved[place] : group.saved.back();
    Result result;
    if (!m_spool->problem())
        result =
            failed(entry, RarCode::Write, u"could not be unpacked. "_s + m_spool->problem().text);
    else if (!there)
        result =
            failed(entry,
                   RarCode::BadData,
                   u"needs an entry before it in this solid archive that cannot be unpacked."_s);
    else if (saved.end.code != RarCode::Ok)
        result = ended(entry, saved.end);
    else if (!saved.rightSum)
        result = wrongSum(entry);
    else
        result = deliver(*m_spool, saved.offset, entry.size, sink);
    if (group.members.size() == 1)
        m_spool->truncate(before);
    return result;
}

/// Goes on until the member \a place is set aside, or nothing more can be.
void RarReader::unpackSolid(Group& group, size_t place)
{
    const bool old = isRar4(*m_directory);
    const bool alone = group.members.size() == 1;
    for (const bool second : {false, true}) {
        // The first library knows no solid archives of the old format.
        if (second && !(old && alone))
            break;
        if (second)
            group.saved.clear();
        if (second || !group.unpacker)
            group.unpacker = second || (old && !alone)
                                 ? unpackByUnarr(*m_directory, group.members, m_helper)
                                 : unpackByLibarchive(*m_directory, group.members, m_helper);
        while (group.saved.size() <= place &&
               (group.saved.empty() || group.saved.back().end.code == RarCode::Ok)) {
            Saved& saved = group.saved.emplace_back();
            const RarEntry& entry = *group.members[group.saved.size() - 1];
            saved.offset = m_spool->size();
            CheckSum sum(entry);
            saved.end = group.unpacker->next([&](QByteArrayView bytes) {
                sum.add(bytes);
                return m_spool->append(bytes);
            });
            if (saved.end.sinkRefused)
                saved.end = {RarCode::Write, m_spool->problem().text, true};
            saved.rightSum = saved.end.code == RarCode::Ok && sum.right();
        }
        if (!alone || group.saved.back().rightSum || group.saved.back().end.sinkRefused)
            break;
    }
    if (group.saved.size() == group.members.size() || group.saved.back().end.code != RarCode::Ok)
        group.unpacker.reset();
}

Result
RarReader::deliver(const ByteSource& from, qint64 offset, qint64 bytes, const Content::Sink& sink)
{
    m_code = RarCode::Ok;
    const bool whole = bytes <= ziplimits::wholeEntryBytes;
    for (qint64 done = 0; done < bytes;) {
        m_whole.resize(whole ? bytes : qMin(readPiece, bytes - done));
        if (Result r = from.read(offset + done, m_whole.data(), m_whole.size()); !r) {
            m_code = RarCode::Read;
            return r;
        }
        done += m_whole.size();
        if (!sink(m_whole))
            break;
    }
    return Result::success();
}

ResultOf<QByteArray> RarReader::readAlone(const RarEntry& entry, qint64 limit)
{
    m_code = RarCode::SmallBuffer;
    if (entry.size > limit)
        return Result::failure(u"It is larger than its reader takes."_s);
    m_code = RarCode::UnknownFormat;
    if (entry.encrypted || entry.size < 0)
        return Result::failure(u"It is encrypted or does not tell its size."_s);
    QByteArray bytes;
    m_code = RarCode::Ok;
    const Result read = entry.stored ? readStored(entry,
                                                  [&](QByteArrayView piece) {
                                                      bytes.append(piece);
                                                      return true;
                                                  })
                                     : unpackWhole(entry, bytes);
    if (!read)
        return read;
    return bytes;
}

} // namespace vt
