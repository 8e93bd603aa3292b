// Large archives to measure with: many files whose bytes deflate to about 60 %, laid out as scenery
// areas. Made by all cores at once; the same options give the same archive.
#pragma once

#include "platform/Result.h"

#include <QString>

namespace vt {

struct BenchmarkPack
{
    QString out; ///< host path of the archive; replaced when it exists
    int files = 0;
    qint64 bytesMin = 0; ///< each file's size lies between these two
    qint64 bytesMax = 0;
    int folders = 1;                                          ///< scenery areas
    QString into = QStringLiteral("Addon Scenery/Benchmark"); ///< "<into> 01/scenery/..."
    quint64 seed = 1;
};

struct BenchmarkPackMade
{
    qint64 bytes = 0;  ///< of all files
    qint64 packed = 0; ///< of the archive
};

/// On failure no archive is left.
[[nodiscard]] ResultOf<BenchmarkPackMade> writeBenchmarkPack(const BenchmarkPack& pack);

/// Bytes that deflate to about 60 %: letters of unequal frequency and repeated stretches.
[[nodiscard]] QByteArray benchmarkBytes(qint64 size, quint64 seed);

} // namespace vt
