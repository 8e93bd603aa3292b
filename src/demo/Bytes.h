// Two helpers of everything that makes bytes here: little-endian numbers, and random numbers that
// are the same on every machine (the library's engines are not all specified).
#pragma once

#include <QByteArray>
#include <QtEndian>

#include <array>

namespace vt::demobytes {

template <typename T> void appendLe(QByteArray& out, T value)
{
    std::array<char, sizeof(T)> raw;
    qToLittleEndian(value, raw.data());
    out.append(raw.data(), static_cast<qsizetype>(raw.size()));
}

/// The next number of SplitMix64; \a state is the generator, any value a seed.
inline quint64 nextNumber(quint64& state)
{
    state += 0x9E3779B97F4A7C15ULL;
    quint64 z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

} // namespace vt::demobytes
