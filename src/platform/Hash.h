// What identifies contents: XXH3-128 for fingerprints, CRC-32 for archives.
#pragma once

#include "platform/FileActions.h"
#include "platform/Files.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>

#include <memory>

namespace vt {

/// XXH3-128 in canonical form, 16 bytes.
[[nodiscard]] QByteArray xxh3(QByteArrayView bytes);

/// The same over pieces.
class Xxh3
{
public:
    Xxh3();
    ~Xxh3();
    Xxh3(Xxh3&&) noexcept;
    Xxh3& operator=(Xxh3&&) noexcept;

    void add(QByteArrayView piece);
    /// Of everything added so far; more may follow.
    [[nodiscard]] QByteArray result() const;
    void reset();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Size, time and hash of a file, read in pieces; of a link itself.
[[nodiscard]] ResultOf<Fingerprint> fingerprint(const Files& files, QStringView path);

/// CRC-32 as in ZIP archives; \a before continues an earlier piece.
[[nodiscard]] quint32 crc32(QByteArrayView bytes, quint32 before = 0);

} // namespace vt
