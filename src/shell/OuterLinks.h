// Links of the user's own inside a folder that may be written, which lead out of it (a scenery
// folder moved to another disk): asked about once, before anything is written, and remembered with
// where they lead. One that leads elsewhere later is asked about again.
#pragma once

#include "platform/Gate.h"
#include "platform/Prompt.h"
#include "shell/Context.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace vt::outerlinks {

/// Lets the gate follow the links that the settings remember; both must live as long as the gate
/// is used.
void attach(Gate& gate, Settings& settings);

/// "Confirm Link"; the default is No.
[[nodiscard]] Prompt question(const OuterLink& link);

/// Asks about each link on the way to these folders that is not confirmed yet, and remembers a Yes
/// at once, on the disk too. Returns the links that stay closed: declined, or leading nowhere.
[[nodiscard]] QList<OuterLink> confirm(Context& context, const QStringList& folders);

/// Why nothing was written behind a link that stays closed.
[[nodiscard]] QString closedText(const OuterLink& link);

} // namespace vt::outerlinks
