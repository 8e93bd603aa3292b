// Brings a configuration file to what the simulator and the engine expect: CR LF line ends and the
// ANSI code page; an add-on's on its way in, an installed one when it is repaired. Bytes in, bytes
// out; what is already so comes back unchanged.
#pragma once

#include "platform/AnsiCodec.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QString>

namespace vt {

struct NormalizedConfig
{
    QByteArray bytes;
    bool changed = false;
    QString found; ///< "UTF-16 text", "line ends other than CR LF", ...; empty when all was well
    QString done;  ///< "line ends brought to CR LF", ...; empty when nothing was

    /// The line of a verification about a file that can be read but not edited as it is; empty when
    /// all was well. \a kind: "aircraft", "panel", "sound".
    [[nodiscard]] QString problem(const QString& kind) const;
};

/// UTF-16 (with or without its mark) and UTF-8 with its mark are brought to \a ansi; bare LF and
/// bare CR become CR LF. Fails, with the character named, when a character is missing in the page;
/// binary content (NULs that are no UTF-16) fails too.
[[nodiscard]] ResultOf<NormalizedConfig> normalizeConfig(const QByteArray& bytes,
                                                         const AnsiCodec& ansi);

} // namespace vt
