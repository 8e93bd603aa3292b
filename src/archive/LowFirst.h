// Numbers into bytes and out of them, as archives hold them: low byte first.
#pragma once

#include <QByteArray>
#include <QtEndian>

namespace vt {

template <typename T> void putLow(QByteArray& to, T value)
{
    char bytes[sizeof(T)];
    qToLittleEndian(value, bytes);
    to.append(bytes, sizeof(T));
}

template <typename T> [[nodiscard]] T low(const char* bytes)
{
    return qFromLittleEndian<T>(bytes);
}

} // namespace vt
