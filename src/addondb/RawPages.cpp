#include "addondb/RawPages.h"

#include "addondb/PageChecks.h"
#include "addondb/Schema.h"

#include <QtEndian>

#include <bit>

namespace vt::rawpages {

namespace {

constexpr qint64 headerSize = 100;
constexpr qint64 largestValue = 1'000'000'000;

/// A number of one to nine bytes at the beginning of \a bytes, which is taken off them.
std::optional<qint64> takeVarint(QByteArrayView& bytes)
{
    quint64 number = 0;
    for (int i = 0; i < 9 && i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool last = i == 8;
        number = last ? number << 8 | byte : number << 7 | (byte & 0x7f);
        if (last || byte < 0x80) {
            bytes = bytes.sliced(i + 1);
            return static_cast<qint64>(number);
        }
    }
    return std::nullopt;
}

/// Bytes that a value of this type takes in a record.
qint64 sizeOfType(qint64 type)
{
    constexpr qint64 fixed[] = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
    return type < 10 ? fixed[type] : type < 12 ? -1 : (type - 12) / 2;
}

Value valueOf(qint64 type, QByteArrayView bytes)
{
    if (type == 0)
        return {};
    if (type == 8 || type == 9)
        return {Value::Integer, type - 8, {}};
    if (type == 7)
        return {Value::Real, 0, {}};
    if (type >= 12)
        return {type % 2 == 1 ? Value::Text : Value::Blob, 0, bytes.toByteArray()};
    // Big-endian with the sign in the first byte.
    qint64 number = static_cast<signed char>(bytes[0]);
    for (qsizetype i = 1; i < bytes.size(); ++i)
        number = number * 256 + static_cast<unsigned char>(bytes[i]);
    return {Value::Integer, number, {}};
}

/// The values of a record; nothing unless the record is used up exactly.
std::optional<std::vector<Value>> valuesOf(QByteArrayView record)
{
    QByteArrayView header = record;
    const std::optional<qint64> headerLength = takeVarint(header);
    if (!headerLength || *headerLength > record.size() ||
        *headerLength < record.size() - header.size())
        return std::nullopt;
    header = record.first(*headerLength).sliced(record.size() - header.size());
    QByteArrayView body = record.sliced(*headerLength);
    std::vector<Value> values;
    while (!header.isEmpty()) {
        const std::optional<qint64> type = takeVarint(header);
        const qint64 size = type && *type >= 0 ? sizeOfType(*type) : -1;
        if (size < 0 || size > body.size())
            return std::nullopt;
        values.push_back(valueOf(*type, body.first(size)));
        body = body.sliced(size);
    }
    return body.isEmpty() ? std::optional(std::move(values)) : std::nullopt;
}

} // namespace

bool RawPages::open(const QByteArray& hostFile)
{
    m_file.setFileName(QFile::decodeName(hostFile));
    if (!m_file.open(QIODevice::ReadOnly) || m_file.size() == 0)
        return false;
    m_bytes = m_file.map(0, m_file.size());
    if (m_bytes == nullptr)
        return false;
    m_pageSize = schema::pageSize;
    m_count = m_file.size() / m_pageSize;
    m_sound.assign(size_t(m_count), false);
    qint64 fitting = 0;
    for (qint64 page = 1; page <= m_count; ++page) {
        m_sound[size_t(page - 1)] = pagechecks::isSound(at(page), page);
        fitting += m_sound[size_t(page - 1)] ? 1 : 0;
    }
    m_checked = fitting > 0;
    m_broken = m_count - fitting;
    m_usable = m_pageSize - pagechecks::reservedBytes;
    if (m_checked)
        return m_count > 0;
    // Without checksums the header alone tells the pages' size; ours is the likeliest.
    m_usable = m_pageSize;
    m_broken = 0;
    const int size =
        m_file.size() >= headerSize ? qFromBigEndian<quint16>(m_bytes + 16) : m_pageSize;
    if (size >= 512 && std::has_single_bit(unsigned(size))) {
        m_pageSize = size;
        m_usable = size - qMin<int>(m_bytes[20], size / 8);
    }
    m_count = m_file.size() / m_pageSize;
    m_sound.assign(size_t(m_count), true);
    return m_count > 0;
}

bool RawPages::isSound(qint64 page) const
{
    return page >= 1 && page <= m_count && m_sound[size_t(page - 1)];
}

const unsigned char* RawPages::at(qint64 page) const
{
    return m_bytes + (page - 1) * m_pageSize;
}

PageKind RawPages::kind(qint64 page) const
{
    if (page < 1 || page > m_count)
        return PageKind::Other;
    switch (at(page)[page == 1 ? headerSize : 0]) {
    case 0x0d:
        return PageKind::TableLeaf;
    case 0x05:
        return PageKind::TableInterior;
    case 0x0a:
        return PageKind::IndexLeaf;
    case 0x02:
        return PageKind::IndexInterior;
    default:
        return PageKind::Other;
    }
}

int RawPages::cells(qint64 page) const
{
    const PageKind what = kind(page);
    if (what == PageKind::Other)
        return 0;
    const int count = qFromBigEndian<quint16>(at(page) + (page == 1 ? headerSize : 0) + 3);
    return count <= m_usable / 4 ? count : 0;
}

/// The cell from its beginning to the end of the page.
std::optional<QByteArrayView> RawPages::cellBytes(qint64 page, int cell) const
{
    const PageKind what = kind(page);
    const bool interior = what == PageKind::TableInterior || what == PageKind::IndexInterior;
    const qint64 pointers = (page == 1 ? headerSize : 0) + (interior ? 12 : 8);
    const qint64 pointer = pointers + 2LL * cell;
    if (cell < 0 || cell >= cells(page) || pointer + 2 > m_usable)
        return std::nullopt;
    const qint64 start = qFromBigEndian<quint16>(at(page) + pointer);
    if (start < pointers || start >= m_usable)
        return std::nullopt;
    return QByteArrayView(at(page) + start, m_usable - start);
}

QList<qint64> RawPages::children(qint64 page) const
{
    QList<qint64> pages;
    if (kind(page) != PageKind::TableInterior)
        return pages;
    for (int cell = 0; cell < cells(page); ++cell) {
        const std::optional<QByteArrayView> bytes = cellBytes(page, cell);
        if (bytes && bytes->size() >= 4)
            pages.push_back(qFromBigEndian<quint32>(bytes->data()));
    }
    pages.push_back(qFromBigEndian<quint32>(at(page) + (page == 1 ? headerSize : 0) + 8));
    return pages;
}

/// \a most: bytes that fit into a cell; \a least: what stays there when not all do.
std::optional<QByteArray>
RawPages::payload(QByteArrayView cell, qint64 size, qint64 most, qint64 least) const
{
    if (size < 0 || size > largestValue)
        return std::nullopt;
    if (size <= most)
        return size <= cell.size() ? std::optional(cell.first(size).toByteArray()) : std::nullopt;
    const qint64 perPage = m_usable - 4;
    const qint64 wanted = least + (size - least) % perPage;
    const qint64 here = wanted <= most ? wanted : least;
    if (here + 4 > cell.size() || (size - here) / perPage > m_count)
        return std::nullopt;
    QByteArray bytes = cell.first(here).toByteArray();
    qint64 next = qFromBigEndian<quint32>(cell.data() + here);
    while (bytes.size() < size) {
        if (!isSound(next))
            return std::nullopt;
        const qint64 piece = qMin(perPage, size - bytes.size());
        bytes.append(reinterpret_cast<const char*>(at(next)) + 4, piece);
        next = qFromBigEndian<quint32>(at(next));
    }
    return bytes;
}

std::optional<Row> RawPages::row(qint64 page, int cell) const
{
    std::optional<QByteArrayView> bytes =
        kind(page) == PageKind::TableLeaf ? cellBytes(page, cell) : std::nullopt;
    if (!bytes)
        return std::nullopt;
    const std::optional<qint64> size = takeVarint(*bytes);
    const std::optional<qint64> number = size ? takeVarint(*bytes) : std::nullopt;
    if (!number)
        return std::nullopt;
    const std::optional<QByteArray> record =
        payload(*bytes, *size, m_usable - 35, (m_usable - 12) * 32 / 255 - 23);
    std::optional<std::vector<Value>> values = record ? valuesOf(*record) : std::nullopt;
    if (!values)
        return std::nullopt;
    return Row{*number, std::move(*values)};
}

std::optional<Row> RawPages::entry(qint64 page, int cell) const
{
    const PageKind what = kind(page);
    std::optional<QByteArrayView> bytes =
        what == PageKind::IndexLeaf || what == PageKind::IndexInterior ? cellBytes(page, cell)
                                                                       : std::nullopt;
    if (!bytes || bytes->size() < 4)
        return std::nullopt;
    if (what == PageKind::IndexInterior)
        *bytes = bytes->sliced(4);
    const std::optional<qint64> size = takeVarint(*bytes);
    if (!size)
        return std::nullopt;
    const qint64 least = (m_usable - 12) * 32 / 255 - 23;
    const std::optional<QByteArray> record =
        payload(*bytes, *size, (m_usable - 12) * 64 / 255 - 23, least);
    std::optional<std::vector<Value>> values = record ? valuesOf(*record) : std::nullopt;
    if (!values || values->empty() || values->back().kind != Value::Integer)
        return std::nullopt;
    return Row{values->back().number, std::move(*values)};
}

QList<qint64> RawPages::freePages() const
{
    QList<qint64> pages;
    if (!isSound(1))
        return pages;
    qint64 trunk = qFromBigEndian<quint32>(at(1) + 32);
    while (isSound(trunk) && pages.size() <= m_count) {
        pages.push_back(trunk);
        const qint64 leaves =
            qMin<qint64>(qFromBigEndian<quint32>(at(trunk) + 4), m_usable / 4 - 2);
        for (qint64 i = 0; i < leaves; ++i)
            pages.push_back(qFromBigEndian<quint32>(at(trunk) + 8 + 4 * i));
        trunk = qFromBigEndian<quint32>(at(trunk));
    }
    return pages;
}

} // namespace vt::rawpages
