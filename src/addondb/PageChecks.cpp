#include "addondb/PageChecks.h"

#include "addondb/Schema.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <sqlite3.h>
#include <xxhash.h>

namespace vt::pagechecks {

namespace {

constexpr int pageSize = schema::pageSize;
constexpr int contentSize = pageSize - reservedBytes;
constexpr qsizetype brokenNamed = 100;
/// Where the file's header counts the pages that nothing uses.
constexpr int freePagesAt = 36;

quint64 checksum(const unsigned char* page, qint64 number)
{
    return XXH3_64bits_withSeed(page, contentSize, quint64(number));
}

bool isWholePage(int amount, sqlite3_int64 offset)
{
    return amount == pageSize && offset % pageSize == 0;
}

/// What the engine holds as an open database file; the real one lies directly behind it.
struct CheckedFile
{
    sqlite3_file base;

    [[nodiscard]] sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

static_assert(sizeof(CheckedFile) % alignof(sqlite3_int64) == 0);

sqlite3_file* realOf(sqlite3_file* file)
{
    return reinterpret_cast<CheckedFile*>(file)->real();
}

int readPage(sqlite3_file* file, void* to, int amount, sqlite3_int64 offset)
{
    sqlite3_file* real = realOf(file);
    const int code = real->pMethods->xRead(real, to, amount, offset);
    if (code != SQLITE_OK || !isWholePage(amount, offset))
        return code;
    return isSound(static_cast<unsigned char*>(to), offset / pageSize + 1) ? SQLITE_OK
                                                                           : SQLITE_IOERR_DATA;
}

int writePage(sqlite3_file* file, const void* from, int amount, sqlite3_int64 offset)
{
    sqlite3_file* real = realOf(file);
    if (!isWholePage(amount, offset))
        return real->pMethods->xWrite(real, from, amount, offset);
    thread_local std::array<unsigned char, pageSize> page;
    std::memcpy(page.data(), from, contentSize);
    seal(page.data(), offset / pageSize + 1);
    return real->pMethods->xWrite(real, page.data(), amount, offset);
}

/// The methods of an open file: reading and writing are ours, the rest goes to the real file. The
/// version leaves memory mapping out, which would read past the check.
const sqlite3_io_methods checkedMethods = {
    2,
    [](sqlite3_file* f) { return realOf(f)->pMethods->xClose(realOf(f)); },
    readPage,
    writePage,
    [](sqlite3_file* f, sqlite3_int64 size) {
        return realOf(f)->pMethods->xTruncate(realOf(f), size);
    },
    [](sqlite3_file* f, int flags) { return realOf(f)->pMethods->xSync(realOf(f), flags); },
    [](sqlite3_file* f, sqlite3_int64* size) {
        return realOf(f)->pMethods->xFileSize(realOf(f), size);
    },
    [](sqlite3_file* f, int lock) { return realOf(f)->pMethods->xLock(realOf(f), lock); },
    [](sqlite3_file* f, int lock) { return realOf(f)->pMethods->xUnlock(realOf(f), lock); },
    [](sqlite3_file* f, int* held) {
        return realOf(f)->pMethods->xCheckReservedLock(realOf(f), held);
    },
    [](sqlite3_file* f, int what, void* argument) {
        return realOf(f)->pMethods->xFileControl(realOf(f), what, argument);
    },
    [](sqlite3_file* f) { return realOf(f)->pMethods->xSectorSize(realOf(f)); },
    [](sqlite3_file* f) {
        int traits = realOf(f)->pMethods->xDeviceCharacteristics(realOf(f));
#ifdef SQLITE_IOCAP_SUBPAGE_READ
        traits &= ~SQLITE_IOCAP_SUBPAGE_READ; // a part of a page cannot be compared
#endif
        return traits;
    },
    [](sqlite3_file* f, int region, int size, int extend, void volatile** memory) {
        return realOf(f)->pMethods->xShmMap(realOf(f), region, size, extend, memory);
    },
    [](sqlite3_file* f, int offset, int count, int flags) {
        return realOf(f)->pMethods->xShmLock(realOf(f), offset, count, flags);
    },
    [](sqlite3_file* f) { realOf(f)->pMethods->xShmBarrier(realOf(f)); },
    [](sqlite3_file* f, int remove) { return realOf(f)->pMethods->xShmUnmap(realOf(f), remove); },
    nullptr,
    nullptr,
};

/// The log and the journals are the engine's own: it checks those itself.
int openFile(sqlite3_vfs* layer, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    Q_UNUSED(layer)
    sqlite3_vfs* below = sqlite3_vfs_find(nullptr);
    if ((flags & SQLITE_OPEN_MAIN_DB) == 0)
        return below->xOpen(below, name, file, flags, outFlags);
    file->pMethods = nullptr;
    sqlite3_file* real = realOf(file);
    real->pMethods = nullptr;
    const int code = below->xOpen(below, name, real, flags, outFlags);
    if (real->pMethods != nullptr)
        file->pMethods = &checkedMethods;
    return code;
}

sqlite3_vfs* makeLayer()
{
    static sqlite3_vfs layer = *sqlite3_vfs_find(nullptr);
    layer.zName = "vantrel-checked";
    layer.pNext = nullptr;
    layer.szOsFile += int(sizeof(CheckedFile));
    layer.xOpen = openFile;
    sqlite3_vfs_register(&layer, 0);
    return &layer;
}

} // namespace

const char* fileLayer()
{
    static const sqlite3_vfs* const layer = makeLayer();
    return layer->zName;
}

bool isSound(const unsigned char* page, qint64 number)
{
    return qFromBigEndian<quint64>(page + contentSize) == checksum(page, number);
}

void seal(unsigned char* page, qint64 number)
{
    qToBigEndian(checksum(page, number), page + contentSize);
}

Scan scan(const QByteArray& hostFile)
{
    constexpr qint64 pagesAtOnce = 16;
    Scan result;
    qint64 unused = 0; // pages that may be empty
    const auto passes = [&](const unsigned char* page, qint64 length) {
        if (length < pageSize)
            return false;
        if (result.pages == 1)
            unused = qFromBigEndian<quint32>(page + freePagesAt);
        if (isSound(page, result.pages))
            return true;
        return unused-- > 0 && std::all_of(page, page + length, [](auto b) { return b == 0; });
    };
    QFile file(QFile::decodeName(hostFile));
    result.readable = file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    QByteArray piece(pagesAtOnce * pageSize, Qt::Uninitialized);
    while (result.readable) {
        const qint64 size = file.read(piece.data(), piece.size());
        result.readable = size >= 0;
        for (qint64 at = 0; at < size; at += pageSize) {
            const auto* page = reinterpret_cast<const unsigned char*>(piece.constData()) + at;
            ++result.pages;
            if (!passes(page, qMin<qint64>(pageSize, size - at)) &&
                result.broken.size() < brokenNamed)
                result.broken.push_back(result.pages);
        }
        if (size < piece.size())
            break;
    }
    return result;
}

} // namespace vt::pagechecks
