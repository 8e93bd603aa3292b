// The Windows ANSI code page of the simulator's configuration files. Lossless both ways: every byte
// string decodes to a text that encodes back to the same bytes, damaged or foreign ones included.
// Not for UTF-16 files: ask looksLikeUtf16OrBinary() before editing one.
#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <array>
#include <vector>

namespace vt {

class AnsiCodec
{
public:
    /// Windows numbers (1252, 1250, 932, ...). A page that is unknown or no byte or double-byte
    /// table falls back to 1252.
    explicit AnsiCodec(int codePage = 1252);

    /// The page in use, which is 1252 after a fallback.
    [[nodiscard]] int codePage() const { return m_codePage; }

    /// A byte without meaning in the page becomes a private character (U+F800 + byte) that encode()
    /// turns back.
    [[nodiscard]] QString decode(QByteArrayView bytes) const;
    /// Refuses a text with a character that the page lacks; the failure's text names the character.
    [[nodiscard]] ResultOf<QByteArray> encode(QStringView text) const;

    /// A UTF-16 byte-order mark (FF FE, FE FF), or a NUL anywhere.
    [[nodiscard]] static bool looksLikeUtf16OrBinary(QByteArrayView bytes);

private:
    bool build(int codePage);
    void buildPairs(const char* name);

    int m_codePage = 1252;
    std::array<char16_t, 256> m_single{}; ///< noCharacter where a byte means nothing by itself
    std::vector<char16_t> m_pairs;        ///< by lead * 256 + trail; empty for single-byte pages
    std::vector<quint16> m_bytes;         ///< by character: one byte, lead * 256 + trail, or none
};

} // namespace vt
