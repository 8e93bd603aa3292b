// Changes what is recorded about an add-on, all or nothing.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "shell/Context.h"

#include <QString>

#include <optional>

namespace vt {

inline constexpr qint64 highestRating = 5;

/// What is not set stays as it is.
struct AddonChanges
{
    std::optional<QString> name;
    std::optional<QString> description;
    std::optional<QString> authors;
    std::optional<qint64> rating;       ///< 0 none, 1 to highestRating
    std::optional<QString> pictureFile; ///< full path of a file of the user's; empty: no picture

    [[nodiscard]] bool any() const
    {
        return name || description || authors || rating || pictureFile;
    }
};

/// "An add-on needs a name." and the like (kind Usage), before anything is changed.
[[nodiscard]] Result checkChanges(const AddonChanges& changes);
/// Kind Failed for an unknown key.
Result
changeAddon(Context& context, Connection& database, qint64 masterKey, const AddonChanges& changes);

/// Takes the installation out of the history, with its description. Refused while the add-on is
/// there, whose removal is told by this row.
Result forgetInstallation(Connection& database, const HistoryRecord& record);

} // namespace vt
