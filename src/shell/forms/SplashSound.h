// The sound of the splash window: three soft tones, computed, so that no file need be brought
// along.
#pragma once

#include "shell/Context.h"

#include <QByteArray>

namespace vt::splashsound {

/// The whole sound as a WAVE file, 16 bits, one channel.
[[nodiscard]] QByteArray wave();

/// Hands it to the desktop's players, until one of them can play it (one that is there may have no
/// server to play to), and does not wait. Silence where none can, or where there is no desktop to
/// sit at: a start never fails for its sound.
void play(Context& context);

} // namespace vt::splashsound
