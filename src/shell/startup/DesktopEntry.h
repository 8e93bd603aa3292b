// What file managers of the desktop offer for archives: "Install to FSX using Vantrel". An entry
// and an icon in the user's own data folder, written and taken back as the setting "Windows
// Explorer Context Menu" says.
#pragma once

#include "platform/Result.h"
#include "shell/Context.h"

#include <QByteArray>
#include <QString>

namespace vt::desktopentry {

/// Host paths.
struct Surroundings
{
    QString dataHome;   ///< "/home/pilot/.local/share"
    QString executable; ///< of this program
    QByteArray icon;    ///< SVG
};

/// The entry's text for that program.
[[nodiscard]] QByteArray entry(const GlobalRecord& global, const QString& executable);

/// Writes what is missing or differs, or deletes what was written when the setting is off. Tells
/// whether anything changed, which the desktop's list of types should then follow.
ResultOf<bool> apply(Context& context, const Surroundings& surroundings);

} // namespace vt::desktopentry
