// Brings an add-on's configuration file to what the simulator and the engine expect: CR LF line
// ends and the ANSI code page. Bytes in, bytes out; what is already so comes back unchanged.
#pragma once

#include "addondb/FileType.h"
#include "platform/AnsiCodec.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QString>

namespace vt {

struct NormalizedConfig
{
    QByteArray bytes;
    bool changed = false;
    QString done; ///< "line ends brought to CR LF", ...; empty when nothing was
};

/// Whether files of this type are configuration files that the simulator reads (34 to 37, 39 to
/// 41).
[[nodiscard]] bool isSimulatorConfiguration(FileType type);

/// UTF-16 (with or without its mark) and UTF-8 with its mark are brought to \a ansi; bare LF and
/// bare CR become CR LF. Fails, with the character named, when a character is missing in the page;
/// binary content (NULs that are no UTF-16) fails too.
[[nodiscard]] ResultOf<NormalizedConfig> normalizeConfig(const QByteArray& bytes,
                                                         const AnsiCodec& ansi);

} // namespace vt
