#include "demo/BenchmarkPack.h"

#include "demo/Bytes.h"
#include "demo/FreshTree.h"
#include "demo/ZipMaker.h"

#include <QSaveFile>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace vt {

using demobytes::nextNumber;

namespace {

/// 256 places filled with letters whose frequency falls, so that a letter weighs some 6.3 bits.
std::array<char, 256> letters()
{
    std::array<char, 256> table;
    size_t at = 0;
    for (int letter = 0; at < table.size(); ++letter) {
        const size_t often = letter < 8 ? 9 : letter < 24 ? 4 : letter < 64 ? 2 : 1;
        for (size_t i = 0; i < often && at < table.size(); ++i)
            table[at++] = static_cast<char>(letter * 37);
    }
    return table;
}

qint64 sizeOfFile(const BenchmarkPack& pack, int index)
{
    const quint64 span = static_cast<quint64>(pack.bytesMax - pack.bytesMin + 1);
    quint64 random = static_cast<quint64>(index) * 7919 + 13;
    return pack.bytesMin + static_cast<qint64>(nextNumber(random) % span);
}

/// Two files of three are scenery, the third is one of its textures.
QString nameOfFile(const BenchmarkPack& pack, int index)
{
    const int area = index % pack.folders;
    const QString top = pack.into + u' ' + QString::number(area + 1).rightJustified(2, u'0');
    const QString number = QString::number(index).rightJustified(6, u'0');
    if (index / pack.folders % 3 == 2)
        return top + u"/texture/tx"_s + number + u".bmp"_s;
    return top + u"/scenery/sc"_s + number + u".bgl"_s;
}

/// Pieces \a first to \a end of the pack, prepared by all cores.
std::vector<ZipPiece> preparePieces(const BenchmarkPack& pack, int first, int end)
{
    std::vector<ZipPiece> pieces(static_cast<size_t>(end - first));
    std::atomic<int> next = first;
    const auto work = [&] {
        for (int index = next++; index < end; index = next++)
            pieces[static_cast<size_t>(index - first)] =
                zipPiece(nameOfFile(pack, index),
                         benchmarkBytes(sizeOfFile(pack, index),
                                        pack.seed * 1'000'003 + static_cast<quint64>(index)));
    };
    std::vector<std::jthread> threads;
    for (unsigned i = 1; i < std::thread::hardware_concurrency(); ++i)
        threads.emplace_back(work);
    work();
    threads.clear(); // waits for them
    return pieces;
}

} // namespace

QByteArray benchmarkBytes(qint64 size, quint64 seed)
{
    static const std::array<char, 256> table = letters();
    constexpr qsizetype window = 8192;
    // A small file has less to repeat from and its own code tables, so it repeats more often.
    const quint64 repeatOneOf = size < 8192 ? 4 : 6;
    QByteArray out(size, Qt::Uninitialized);
    char* data = out.data();
    for (qsizetype at = 0; at < size;) {
        const quint64 choice = nextNumber(seed);
        if (at > 64 && choice % repeatOneOf == 0) { // a stretch seen before
            const qsizetype length = qMin<qsizetype>(6 + (choice >> 2) % 26, size - at);
            const qsizetype reach = qMin(at, window);
            const qsizetype back = qMin(
                reach, 32 + static_cast<qsizetype>((choice >> 16) % static_cast<quint64>(reach)));
            memcpy(data + at, data + at - back, static_cast<size_t>(qMin(length, back)));
            at += qMin(length, back);
            continue;
        }
        quint64 number = nextNumber(seed);
        for (const qsizetype stop = qMin<qsizetype>(at + 8, size); at < stop; number >>= 8)
            data[at++] = table[number & 0xFF];
    }
    return out;
}

ResultOf<BenchmarkPackMade> writeBenchmarkPack(const BenchmarkPack& pack)
{
    QSaveFile out(pack.out);
    if (!out.open(QIODevice::WriteOnly))
        return Result::failure(u"'"_s + pack.out + u"' could not be written: "_s +
                               out.errorString() + u"."_s);
    ZipMaker maker(out, FreshTree::fileDate());
    BenchmarkPackMade made;
    const int batch =
        static_cast<int>(std::clamp<qint64>(64'000'000 / qMax<qint64>(1, pack.bytesMax), 16, 4096));
    for (int first = 0; first < pack.files; first += batch) {
        for (const ZipPiece& piece : preparePieces(pack, first, qMin(first + batch, pack.files))) {
            if (const Result added = maker.add(piece); !added)
                return added;
            made.bytes += piece.size;
        }
    }
    if (const Result finished = maker.finish(); !finished)
        return finished;
    made.packed = out.pos();
    if (!out.commit())
        return Result::failure(u"'"_s + pack.out + u"' could not be written: "_s +
                               out.errorString() + u"."_s);
    return made;
}

} // namespace vt
