// Numbers into bytes, as archives hold them.
#pragma once

#include <QByteArray>
#include <QtEndian>

namespace vt {

/// Appends \a value, low byte first.
template <typename T> void putLow(QByteArray& to, T value)
{
    char bytes[sizeof(T)];
    qToLittleEndian(value, bytes);
    to.append(bytes, sizeof(T));
}

} // namespace vt
