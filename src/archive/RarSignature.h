// What tells RAR archives from others: eight or seven bytes at the beginning, or behind the program
// of a self-extractor.
#pragma once

#include "archive/ByteSource.h"

namespace vt::rarsignature {

enum class Format : quint8
{
    None,
    Rar4, ///< versions 1.5 to 4
    Rar5,
};

struct Found
{
    Format format = Format::None;
    qint64 at = 0;    ///< of the signature
    qint64 bytes = 0; ///< of the signature
};

/// At the very beginning.
[[nodiscard]] Found atBeginning(const ByteSource& source);
/// At the beginning or behind a Windows, DOS or Unix program, at most 1 MiB into the file.
[[nodiscard]] Found find(const ByteSource& source);

/// Whether the file is called one or begins like one.
[[nodiscard]] bool isRar(const Files& files, const QString& path);

} // namespace vt::rarsignature
