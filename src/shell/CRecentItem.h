// One remembered archive, file or folder.
#pragma once

#include <QDateTime>
#include <QString>

namespace vt {

struct CRecentItem
{
    QString sRecentItem;    ///< full path
    QDateTime dteDateAdded; ///< local time, whole seconds; of the first adding

    friend bool operator==(const CRecentItem&, const CRecentItem&) = default;
};

} // namespace vt
