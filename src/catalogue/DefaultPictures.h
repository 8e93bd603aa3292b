// Pictures for what the simulator brought itself: its aircraft show the thumbnail of their texture,
// its panels their first bitmap, its scenery a picture that lies in the area's folder. What has a
// picture keeps it, and what an add-on brought is left alone.
#pragma once

#include "addondb/Connection.h"
#include "catalogue/Catalogue.h"
#include "platform/Prompt.h"
#include "shell/Context.h"

#include <QStringList>

namespace vt::defaultpictures {

struct Outcome
{
    int changed = 0;      ///< assigned, or cleared
    int kept = 0;         ///< had a picture before
    int without = 0;      ///< nothing was found to make one of
    QStringList problems; ///< a sentence for each picture that could not be used or cleared
    bool stopped = false; ///< by the user

    /// "12 default pictures were assigned; 3 were there before." and the like.
    [[nodiscard]] QString assignedText() const;
    /// "12 default pictures were cleared."
    [[nodiscard]] QString clearedText() const;
};

/// "This action will assign default pictures to the aircraft, panels and scenery ..."
[[nodiscard]] Prompt confirmReload(const DisplayNames& names);

/// Panels, aircraft and scenery, in this order. \a catalogue is what is installed now.
Outcome assign(Context& context, Connection& database, const Catalogue& catalogue);
/// Deletes the pictures that assign() made; those that the user chose stay.
Outcome clear(Context& context, Connection& database, const Catalogue& catalogue);

} // namespace vt::defaultpictures
