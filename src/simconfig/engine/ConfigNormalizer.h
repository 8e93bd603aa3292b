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
    QString done; ///< "line ends brought to CR LF", ...; empty when nothing was
};

/// UTF-16 (with or without its mark) and UTF-8 with its mark are brought to \a ansi; bare LF and
/// bare CR become CR LF. Fails, with the character named, when a character is missing in the page;
/// binary content (NULs that are no UTF-16) fails too.
[[nodiscard]] ResultOf<NormalizedConfig> normalizeConfig(const QByteArray& bytes,
                                                         const AnsiCodec& ansi);

/// What an editor or the simulator would stumble over in the bytes, as the line of a verification;
/// empty for a good file. \a normal is what normalizeConfig() gave, \a kind "aircraft", "panel" or
/// "sound".
[[nodiscard]] QString
formProblem(const QByteArray& bytes, const ResultOf<NormalizedConfig>& normal, const QString& kind);

} // namespace vt
