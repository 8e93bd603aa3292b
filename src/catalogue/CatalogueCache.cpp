#include "catalogue/CatalogueCache.h"

#include "platform/Hash.h"

#include <bit>
#include <cstring>
#include <type_traits>

using namespace Qt::StringLiterals;

namespace vt::catalogue {

namespace {

constexpr char magic[8] = {'V', 'T', 'C', 'A', 'T', 'L', 'G', '\n'};
constexpr quint32 version = 2;
constexpr qint64 cacheLimit = 256 * 1024 * 1024;
constexpr qsizetype sumSize = 16;

// Rows are written as they lie in memory: their sizes are part of the form.
static_assert(std::endian::native == std::endian::little);
static_assert(sizeof(AreaRow) == 40 && sizeof(FolderRow) == 48 && sizeof(ConfigRow) == 64 &&
              sizeof(VariationRow) == 52 && sizeof(RefRow) == 8);

QByteArray keyBytes(const CacheKey& key)
{
    return key.simulator.toUtf8() + '|' + QByteArray::number(key.codePage);
}

class Writer
{
public:
    QByteArray bytes;

    void number(quint32 value) { raw(&value, sizeof value); }

    void raw(const void* data, size_t size)
    {
        bytes.append(static_cast<const char*>(data), qsizetype(size));
    }

    template <typename T> void rows(const std::vector<T>& all)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        number(quint32(all.size()));
        raw(all.data(), all.size() * sizeof(T));
    }
};

/// Every read is checked against what is left; after a failure nothing is read.
class Reader
{
public:
    explicit Reader(QByteArrayView bytes) : m_rest(bytes) {}

    [[nodiscard]] QByteArrayView take(size_t size)
    {
        if (size > size_t(m_rest.size())) {
            m_good = false;
            m_rest = {};
            return {};
        }
        const QByteArrayView piece = m_rest.first(qsizetype(size));
        m_rest = m_rest.sliced(qsizetype(size));
        return piece;
    }

    [[nodiscard]] quint32 number()
    {
        quint32 value = 0;
        const QByteArrayView piece = take(sizeof value);
        if (!piece.isEmpty())
            std::memcpy(&value, piece.data(), sizeof value);
        return value;
    }

    template <typename T> [[nodiscard]] std::vector<T> rows()
    {
        const size_t count = number();
        const QByteArrayView piece = take(count * sizeof(T));
        std::vector<T> all(m_good ? count : 0);
        if (!all.empty())
            std::memcpy(all.data(), piece.data(), count * sizeof(T));
        return all;
    }

    [[nodiscard]] bool complete() const { return m_good && m_rest.isEmpty(); }

private:
    QByteArrayView m_rest;
    bool m_good = true;
};

bool readStore(QByteArrayView bytes, const CacheKey& key, Store& store)
{
    if (bytes.size() < sumSize || !bytes.startsWith(QByteArrayView(magic, sizeof magic)))
        return false;
    const QByteArrayView summed = bytes.chopped(sumSize);
    if (xxh3(summed) != bytes.last(sumSize))
        return false;
    Reader in(summed.sliced(sizeof magic));
    if (in.number() != version)
        return false;
    const quint32 keySize = in.number();
    if (in.take(keySize) != keyBytes(key))
        return false;
    auto units = in.rows<char16_t>();
    auto starts = in.rows<quint32>();
    store.areas = in.rows<AreaRow>();
    store.folders = in.rows<FolderRow>();
    store.configs = in.rows<ConfigRow>();
    store.variations = in.rows<VariationRow>();
    store.refs = in.rows<RefRow>();
    return in.complete() && store.texts.restore(std::move(units), std::move(starts)) &&
           store.consistent();
}

} // namespace

bool loadCache(const Files& files, const QString& path, const CacheKey& key, Store& store)
{
    store = {};
    if (key.simulator.isEmpty() || !files.isFile(path))
        return false;
    const ResultOf<QByteArray> bytes = files.read(path, cacheLimit);
    if (bytes && readStore(*bytes, key, store))
        return true;
    store = {};
    return false;
}

Result saveCache(FileActions& actions, const QString& path, const CacheKey& key, const Store& store)
{
    const Store live = store.compacted();
    Writer out;
    const QByteArray keyText = keyBytes(key);
    out.raw(magic, sizeof magic);
    out.number(version);
    out.number(quint32(keyText.size()));
    out.raw(keyText.constData(), size_t(keyText.size()));
    out.rows(live.texts.units());
    out.rows(live.texts.starts());
    out.rows(live.areas);
    out.rows(live.folders);
    out.rows(live.configs);
    out.rows(live.variations);
    out.rows(live.refs);
    out.bytes += xxh3(out.bytes);
    return actions.replace(path, out.bytes);
}

} // namespace vt::catalogue
