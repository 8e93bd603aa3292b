#include "addondb/Collation.h"

#include "platform/Text.h"

#include <QString>

#include <bit>
#include <cstring>
#include <sqlite3.h>
#include <utility>
#include <xxhash.h>

namespace vt::collation {

namespace {

inline unsigned lowered(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? c + 32U : c;
}

int compareDecoded(QByteArrayView a, QByteArrayView b)
{
    return compareNoCase(QString::fromUtf8(a), QString::fromUtf8(b));
}

/// Index of the first byte at or after \a from in which both differ, \a end when there is none.
qsizetype firstDifference(const char* a, const char* b, qsizetype from, qsizetype end)
{
    while (from + 8 <= end) {
        quint64 x = 0;
        quint64 y = 0;
        std::memcpy(&x, a + from, 8);
        std::memcpy(&y, b + from, 8);
        if (x != y) {
            if constexpr (std::endian::native == std::endian::little)
                return from + (std::countr_zero(x ^ y) >> 3);
            break;
        }
        from += 8;
    }
    while (from < end && a[from] == b[from])
        ++from;
    return from;
}

int collate(void*, int sizeA, const void* a, int sizeB, const void* b)
{
    return compare({static_cast<const char*>(a), sizeA}, {static_cast<const char*>(b), sizeB});
}

QByteArrayView textOf(sqlite3_value* value)
{
    // The text must be asked for before its length.
    const unsigned char* text = sqlite3_value_text(value);
    return {text, sqlite3_value_bytes(value)};
}

sqlite3_int64 place(std::uint32_t location, std::uint32_t name)
{
    return static_cast<sqlite3_int64>(std::uint64_t(location) << 32 | name);
}

/// The location of the row before: files come folder by folder, so its hash is mostly known.
struct LastLocation
{
    QByteArray text;
    std::uint32_t hash = 0;
    bool known = false;
};

void placeFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    auto* last = static_cast<LastLocation*>(sqlite3_user_data(context));
    const QByteArrayView location = textOf(values[0]);
    if (!last->known || last->text != location) {
        last->text = location.toByteArray();
        last->hash = hash(location);
        last->known = true;
    }
    sqlite3_result_int64(context, place(last->hash, hash(textOf(values[1]))));
}

void locationFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    sqlite3_result_int64(context, place(hash(textOf(values[0])), 0));
}

void nameFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    sqlite3_result_int64(context, hash(textOf(values[0])));
}

} // namespace

int compare(QByteArrayView a, QByteArrayView b)
{
    const qsizetype end = qMin(a.size(), b.size());
    qsizetype i = 0;
    for (;;) {
        i = firstDifference(a.data(), b.data(), i, end);
        if (i == end)
            return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
        const auto x = static_cast<unsigned char>(a[i]);
        const auto y = static_cast<unsigned char>(b[i]);
        if (x >= 0x80 || y >= 0x80)
            return compareDecoded(a, b);
        if (lowered(x) != lowered(y))
            return lowered(x) < lowered(y) ? -1 : 1;
        ++i;
    }
}

std::uint32_t hash(QByteArrayView text)
{
    char buffer[512];
    bool ascii = text.size() <= qsizetype(sizeof buffer);
    if (ascii) {
        unsigned char all = 0;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const auto c = static_cast<unsigned char>(text[i]);
            all |= c;
            buffer[i] = static_cast<char>(lowered(c));
        }
        ascii = all < 0x80;
    }
    if (ascii)
        return static_cast<std::uint32_t>(XXH3_64bits(buffer, size_t(text.size())));
    const QByteArray folded = foldCase(QString::fromUtf8(text)).toUtf8();
    return static_cast<std::uint32_t>(XXH3_64bits(folded.constData(), size_t(folded.size())));
}

int registerOn(sqlite3* handle)
{
    constexpr int traits = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    int code =
        sqlite3_create_collation_v2(handle, collationName, SQLITE_UTF8, nullptr, collate, nullptr);
    if (code == SQLITE_OK) {
        code =
            sqlite3_create_function_v2(handle,
                                       "vt_place",
                                       2,
                                       traits,
                                       new LastLocation,
                                       placeFunction,
                                       nullptr,
                                       nullptr,
                                       [](void* last) { delete static_cast<LastLocation*>(last); });
    }
    for (const auto& [name, function] :
         {std::pair<const char*, decltype(&nameFunction)>("vt_location", locationFunction),
          std::pair<const char*, decltype(&nameFunction)>("vt_name", nameFunction)}) {
        if (code == SQLITE_OK) {
            code = sqlite3_create_function_v2(
                handle, name, 1, traits, nullptr, function, nullptr, nullptr, nullptr);
        }
    }
    return code;
}

} // namespace vt::collation
