// What the command line of the program says.
#pragma once

#include "platform/Result.h"
#include "session/Session.h"

#include <QString>
#include <QStringList>

namespace vt::app {

struct Options
{
    SessionOptions session;
    QStringList arguments; ///< as typed, for the file to install
    bool help = false;
    bool version = false;
};

/// \a arguments: without the program's own path. "--home DIR" and "--home=DIR" are the same; what
/// begins with "-file" ends the options. Fails, kind Usage, at an option that is not known.
[[nodiscard]] ResultOf<Options> optionsOf(const QStringList& arguments);

/// Options that are followed by a value, in which no file is searched.
[[nodiscard]] QStringList optionsWithValue();

[[nodiscard]] QString usage();

} // namespace vt::app
