// RAR5: headers of check sum (4 bytes), size, type and flags as numbers of seven bits a byte, with
// an area of further records at their end and data behind them.
#include "archive/RarHeaders.h"
#include "archive/RarNames.h"

#include <QTimeZone>
#include <QtEndian>

#include <libdeflate.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr quint64 typeMain5 = 1;
constexpr quint64 typeFile5 = 2;
constexpr quint64 typeService5 = 3;
constexpr quint64 typeEncryption5 = 4;
constexpr quint64 typeEnd5 = 5;

constexpr quint64 headerExtra = 0x01;
constexpr quint64 headerData = 0x02;
constexpr quint64 headerSplitBefore = 0x08;
constexpr quint64 headerSplitAfter = 0x10;
constexpr quint64 mainVolume5 = 0x01;
constexpr quint64 mainNumber5 = 0x02;
constexpr quint64 mainSolid5 = 0x04;
constexpr quint64 endMore5 = 0x01;
constexpr quint64 fileFolder = 0x01;
constexpr quint64 fileTime = 0x02;
constexpr quint64 fileCrc = 0x04;
constexpr quint64 fileUnknownSize = 0x08;

constexpr quint64 extraEncryption = 1;
constexpr quint64 extraHash = 2;
constexpr quint64 extraTime = 3;
constexpr quint64 extraVersion = 4;
constexpr quint64 extraRedirection = 5;

constexpr qint64 mostHeaderBytes = 2 << 20;
constexpr qint64 fileTimeTo1970 = 116'444'736'000'000'000LL; ///< in 100 ns

} // namespace

/// Takes numbers and bytes one after another; once something was missing, everything is 0.
class RarDirectory::Reader5::Fields
{
public:
    explicit Fields(QByteArrayView bytes) : m_left(bytes) {}

    [[nodiscard]] bool whole() const { return m_whole; }

    [[nodiscard]] QByteArrayView left() const { return m_left; }

    quint64 number()
    {
        quint64 value = 0;
        for (int shift = 0; shift < 64; shift += 7) {
            if (m_left.isEmpty())
                break;
            const auto byte = quint8(m_left.front());
            m_left = m_left.sliced(1);
            if (shift == 63 && (byte & 0x7E) != 0)
                break;
            value |= quint64(byte & 0x7F) << shift;
            if ((byte & 0x80) == 0)
                return value;
        }
        m_whole = false;
        m_left = {};
        return 0;
    }

    QByteArrayView bytes(quint64 count)
    {
        if (count > quint64(m_left.size())) {
            m_whole = false;
            m_left = {};
            return {};
        }
        const QByteArrayView taken = m_left.first(qsizetype(count));
        m_left = m_left.sliced(qsizetype(count));
        return taken;
    }

    template <typename T> T fixed()
    {
        const QByteArrayView taken = bytes(sizeof(T));
        return taken.isEmpty() ? T() : qFromLittleEndian<T>(taken.data());
    }

private:
    QByteArrayView m_left;
    bool m_whole = true;
};

bool RarDirectory::Reader5::read(qint64 at)
{
    QByteArray header;
    bool main = false;
    for (;;) {
        const qint64 room = m_source.size() - at;
        if (room < 7)
            return truncated();
        if (!take(at, 7, header))
            return false;
        Fields size(QByteArrayView(header).sliced(4));
        const qint64 bytes = qint64(size.number());
        if (!size.whole() || bytes <= 0 || bytes > mostHeaderBytes)
            return damaged(u"a header announces an impossible size."_s);
        const qint64 fixed = 7 - size.left().size();
        if (!take(at, fixed + bytes, header))
            return false;
        const quint32 sum = qFromLittleEndian<quint32>(header.constData());
        if (libdeflate_crc32(0, header.constData() + 4, size_t(header.size() - 4)) != sum)
            return damaged(u"the check sum of a header is wrong."_s);
        Fields fields(QByteArrayView(header).sliced(fixed));
        const quint64 type = fields.number();
        const quint64 flags = fields.number();
        const quint64 extraBytes = (flags & headerExtra) != 0 ? fields.number() : 0;
        const quint64 dataBytes = (flags & headerData) != 0 ? fields.number() : 0;
        if (!fields.whole() || extraBytes > quint64(fields.left().size()))
            return damaged(u"a header is shorter than it tells."_s);
        const qint64 data = at + fixed + bytes;
        const QByteArrayView extra = fields.left().last(qsizetype(extraBytes));
        Fields body(fields.left().chopped(qsizetype(extraBytes)));
        if (dataBytes > quint64(1) << 62)
            return damaged(u"a header announces an impossible size."_s);
        if (type == typeEncryption5)
            return encryptedHeaders();
        if (!main && type != typeMain5)
            return damaged(u"its main header is missing."_s);
        if (type == typeMain5) {
            main = true;
            if (!readMain(body))
                return false;
        } else if (type == typeFile5 || type == typeService5) {
            if (!readEntry(body, type, flags, extra, data, qint64(dataBytes)))
                return false;
        } else if (type == typeEnd5) {
            moreVolumes = (body.number() & endMore5) != 0;
            return true;
        }
        at = data + qint64(dataBytes);
    }
}

bool RarDirectory::Reader5::readMain(Fields& fields)
{
    const quint64 flags = fields.number();
    const quint64 number = (flags & mainNumber5) != 0 ? fields.number() : 0;
    if (!fields.whole())
        return damaged(u"its main header is shorter than it tells."_s);
    m_d.m_solid = (flags & mainSolid5) != 0;
    numberedNames = true;
    first = (flags & mainVolume5) == 0 || number == 0;
    if (m_volume > 0 && number != quint64(m_volume)) {
        m_d.fail(RarCode::BadArchive,
                 u"'"_s + m_source.name() + u"' is its volume "_s + QString::number(number + 1) +
                     u", where volume "_s + QString::number(m_volume + 1) + u" belongs."_s);
        return false;
    }
    return true;
}

bool RarDirectory::Reader5::readEntry(Fields& fields,
                                      quint64 type,
                                      quint64 flags,
                                      QByteArrayView extra,
                                      qint64 data,
                                      qint64 dataBytes)
{
    const quint64 file = fields.number();
    const quint64 size = fields.number();
    const quint64 attributes = fields.number();
    const quint32 time = (file & fileTime) != 0 ? fields.fixed<quint32>() : 0;
    RarEntry entry;
    entry.crc = (file & fileCrc) != 0 ? fields.fixed<quint32>() : 0;
    entry.packing = fields.number();
    const quint64 host = fields.number();
    const QByteArrayView name = fields.bytes(fields.number());
    if (!fields.whole())
        return damaged(u"the header of an entry is shorter than it tells."_s);
    entry.hasCrc = (file & fileCrc) != 0;
    entry.size = (file & fileUnknownSize) != 0 ? -1 : qint64(qMin(size, ~quint64(0) >> 1));
    entry.packed = dataBytes;
    entry.attributes = quint32(attributes);
    entry.dosAttributes = host == 0;
    entry.stored = (entry.packing >> 7 & 7) == 0;
    entry.solid = (entry.packing & 0x40) != 0;
    if ((file & fileTime) != 0)
        entry.modified = QDateTime::fromSecsSinceEpoch(time);
    if (type == typeFile5) {
        if (!m_d.m_entries.empty())
            entry.folder = m_d.m_entries.back().folder;
        rarnames::split(QString::fromUtf8(name), entry.folder, entry.name);
    }
    if ((file & fileFolder) != 0)
        entry.kind = EntryKind::Folder;
    QString copied;
    if (!readExtra(extra, entry, copied))
        return damaged(u"the header of the entry '"_s + entry.fullName() +
                       u"' is shorter than it tells."_s);
    if (!checkSizes(entry))
        return false;
    entry.parts.push_back({m_volume, data, dataBytes});
    const bool cut = dataBytes > m_source.size() - data;
    if (type == typeService5) {
        if (name == "CMT" && !cut)
            m_d.m_comment = {true, false, false, entry};
        return cut ? truncated() : true;
    }
    const QString full = entry.fullName();
    const size_t before = m_d.m_entries.size();
    if (!add(std::move(entry),
             (flags & headerSplitBefore) != 0,
             cut || (flags & headerSplitAfter) != 0))
        return false;
    if (!copied.isEmpty() && m_d.m_entries.size() > before)
        m_d.m_copies.emplace_back(int(before), copied);
    return cut ? damaged(u"the data of the entry '"_s + full + u"' are cut off."_s) : true;
}

/// \a copied: the name of the entry that this one repeats.
bool RarDirectory::Reader5::readExtra(QByteArrayView extra, RarEntry& entry, QString& copied)
{
    Fields records(extra);
    while (!records.left().isEmpty()) {
        Fields record(records.bytes(records.number()));
        if (!records.whole())
            return false;
        const quint64 type = record.number();
        if (type == extraEncryption) {
            entry.encrypted = true;
        } else if (type == extraHash) {
            if (record.number() == 0)
                entry.blake2sp = record.bytes(32).toByteArray();
        } else if (type == extraTime) {
            const quint64 flags = record.number();
            if ((flags & 0x02) == 0)
                continue;
            if ((flags & 0x01) != 0)
                entry.modified = QDateTime::fromSecsSinceEpoch(record.fixed<quint32>());
            else if (const qint64 ticks = qint64(record.fixed<quint64>()); ticks > fileTimeTo1970)
                entry.modified = QDateTime::fromMSecsSinceEpoch((ticks - fileTimeTo1970) / 10'000);
        } else if (type == extraVersion) {
            // An older version of a file that is there under its own name.
            (void)record.number();
            entry.name += u';' + QString::number(record.number());
        } else if (type == extraRedirection) {
            const quint64 way = record.number();
            (void)record.number();
            const QByteArrayView target = record.bytes(record.number());
            if (way == 4 || way == 5) {
                copied = QString::fromUtf8(target);
                copied.replace(u'/', u'\\');
            } else {
                entry.kind = EntryKind::Link;
            }
        }
        if (!record.whole())
            return false;
    }
    return true;
}

} // namespace vt
